// The lines of the trace, piece by piece as a call of an operation comes by them.
#ifndef LOTRIX_TESTS_SUPPORT_EXPECTED_TRACE_H
#define LOTRIX_TESTS_SUPPORT_EXPECTED_TRACE_H

#include <initializer_list>
#include <string>

#include "tests/support/fixture.h"

namespace lotrix::test {

[[nodiscard]] Lines Joined(std::initializer_list<Lines> parts);

[[nodiscard]] std::string BeginOf(const std::string& name);
[[nodiscard]] std::string EndOf(const std::string& name);
[[nodiscard]] std::string ProblemOf(const std::string& name, const std::string& description);
[[nodiscard]] Lines Logged(const std::string& statement);

// The service object's connection, looked at by the operation.
[[nodiscard]] Lines ConnectionRead();

[[nodiscard]] Lines Passed(const std::string& routine);
[[nodiscard]] Lines Refused(const std::string& routine, const std::string& description);
// The same of a routine called with the connection.
[[nodiscard]] Lines Asked(const std::string& routine);
[[nodiscard]] Lines RefusedBy(const std::string& routine, const std::string& description);

// Read and counted on.
[[nodiscard]] Lines KeyTaken();

// ValidateProviderPIN where the provider has to be active.
[[nodiscard]] Lines ActiveProviderPassed();
[[nodiscard]] Lines InactiveProviderRefused(const std::string& description);

// ValidateAgainstpVaccRefTable where the vaccine has to be active. The routine has
// no Begin line: its End line stands on entry too.
[[nodiscard]] Lines ActiveVaccinePassed();
[[nodiscard]] Lines InactiveVaccineRefused(const std::string& description);
// Before its activity is looked at.
[[nodiscard]] Lines VaccineReferenceRefused(const std::string& description);

}  // namespace lotrix::test

#endif

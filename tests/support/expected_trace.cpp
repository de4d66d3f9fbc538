#include "tests/support/expected_trace.h"

namespace lotrix::test {

Lines Joined(std::initializer_list<Lines> parts) {
  Lines all;
  for (const Lines& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

std::string BeginOf(const std::string& name) { return "information Begin: " + name + "()"; }
std::string EndOf(const std::string& name) { return "information End: " + name + "()"; }
std::string ProblemOf(const std::string& name, const std::string& description) {
  return "error Problem: In " + name + "() " + description;
}
Lines Logged(const std::string& statement) { return {"information " + statement}; }

Lines ConnectionRead() {
  return {"information Begin: Get Connection()", "information End: GetConnection()"};
}

Lines Passed(const std::string& routine) { return {BeginOf(routine), EndOf(routine)}; }
Lines Refused(const std::string& routine, const std::string& description) {
  return {BeginOf(routine), ProblemOf(routine, description)};
}
Lines Asked(const std::string& routine) { return Joined({ConnectionRead(), Passed(routine)}); }
Lines RefusedBy(const std::string& routine, const std::string& description) {
  return Joined({ConnectionRead(), Refused(routine, description)});
}

Lines KeyTaken() { return Joined({ConnectionRead(), ConnectionRead()}); }

Lines ActiveProviderPassed() {
  return Joined({ConnectionRead(),
                 {BeginOf("ValidateProviderPIN")},
                 Passed("ValidateProviderActiveStatus"),
                 {EndOf("ValidateProviderPIN")}});
}
Lines InactiveProviderRefused(const std::string& description) {
  return Joined({ConnectionRead(),
                 {BeginOf("ValidateProviderPIN")},
                 Refused("ValidateProviderActiveStatus", description),
                 {ProblemOf("ValidateProviderPIN", description)}});
}

Lines ActiveVaccinePassed() {
  return Joined({ConnectionRead(),
                 {EndOf("ValidateAgainstpVaccRefTable")},
                 Passed("ValidateVaccineActiveStatus"),
                 {EndOf("ValidateAgainstpVaccRefTable")}});
}
Lines InactiveVaccineRefused(const std::string& description) {
  return Joined({ConnectionRead(),
                 {EndOf("ValidateAgainstpVaccRefTable")},
                 Passed("ValidateVaccineActiveStatus"),
                 {ProblemOf("ValidateAgainstpVaccRefTable", description)}});
}
Lines VaccineReferenceRefused(const std::string& description) {
  return Joined({ConnectionRead(),
                 {EndOf("ValidateAgainstpVaccRefTable"),
                  ProblemOf("ValidateAgainstpVaccRefTable", description)}});
}

}  // namespace lotrix::test

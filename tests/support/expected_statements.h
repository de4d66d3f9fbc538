// The statements that several operations build alike.
#ifndef LOTRIX_TESTS_SUPPORT_EXPECTED_STATEMENTS_H
#define LOTRIX_TESTS_SUPPORT_EXPECTED_STATEMENTS_H

#include <string>

namespace lotrix::test {

[[nodiscard]] std::string ProviderCount(const std::string& pin);
[[nodiscard]] std::string ProviderActive(const std::string& pin);
[[nodiscard]] std::string DepotCount(const std::string& pin);

[[nodiscard]] std::string VaccineCount(const std::string& vaccine);
[[nodiscard]] std::string VaccineActiveCount(const std::string& vaccine);

[[nodiscard]] std::string EnrollmentCount(const std::string& pin);
[[nodiscard]] std::string CountyQuery(const std::string& zip);

// The table's name in capitals, as it is asked for.
[[nodiscard]] std::string KeyQuery(const std::string& table);
[[nodiscard]] std::string KeyUpdate(const std::string& table, const std::string& key);

}  // namespace lotrix::test

#endif

#include "tests/support/expected_statements.h"

namespace lotrix::test {

std::string ProviderCount(const std::string& pin) {
  return "SELECT count(*) FROM provider WHERE Sector BETWEEN 10 AND 29 AND ltrim(rtrim(pin)) = '" +
         pin + "'";
}
std::string ProviderActive(const std::string& pin) {
  return "SELECT active FROM provider WHERE Sector BETWEEN 10 AND 29 AND ltrim(rtrim(pin)) = '" +
         pin + "'";
}
std::string DepotCount(const std::string& pin) {
  return "SELECT count(*) FROM provider WHERE ltrim(rtrim(active)) = 'Y' AND sector BETWEEN 30 AND "
         "31 AND ltrim(rtrim(pin)) = '" +
         pin + "'";
}

std::string VaccineCount(const std::string& vaccine) {
  return "SELECT count(*) FROM pvaccref WHERE ltrim(rtrim(vaccine)) == '" + vaccine + "'";
}
std::string VaccineActiveCount(const std::string& vaccine) {
  return "SELECT count(*) FROM pvaccref WHERE ltrim(rtrim(vaccine)) == '" + vaccine +
         "' AND locactiv = .F.";
}

std::string EnrollmentCount(const std::string& pin) {
  return "SELECT count(*) FROM enroll WHERE ltrim(rtrim(pin)) = '" + pin + "'";
}
std::string CountyQuery(const std::string& zip) {
  return "SELECT DISTINCT cntyname FROM zipcodes WHERE zip = '" + zip + "' ";
}

std::string KeyQuery(const std::string& table) {
  return "SELECT inextid FROM Nextid WHERE ltrim(rtrim(upper(ctablename))) = '" + table + "' ";
}
std::string KeyUpdate(const std::string& table, const std::string& key) {
  return "UPDATE nextid SET inextid  = " + key + " WHERE ltrim(rtrim(upper(ctablename))) = '" +
         table + "' ";
}

}  // namespace lotrix::test

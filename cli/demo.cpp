// A working day, as a new user would want to see it once.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "cli/client.h"
#include "cli/table.h"
#include "src/platform/clock.h"
#include "src/platform/dates.h"
#include "src/resultset/recordset_conversion.h"

namespace lotrix::cli {

namespace {

class DemoFolder {
 public:
  DemoFolder() : path_((std::filesystem::temp_directory_path() / "lotrix-demo-XXXXXX").string()) {
    if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no folder for the demo");
  }
  ~DemoFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  DemoFolder(const DemoFolder&) = delete;
  DemoFolder& operator=(const DemoFolder&) = delete;
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_;
};

class Day {
 public:
  explicit Day(const Common& common) : client_(common), log_(common.logPath) {}

  void Say(const std::string& text) { std::cout << "\n" << text << '\n'; }

  // Shows the call as it would be typed, and its answer.
  Answer Call(const std::string& operation, const NamedArguments& arguments) {
    std::cout << "\n$ lotrix call " << operation;
    for (const auto& [name, argument] : arguments) {
      std::cout << " '" << name << '=' << std::get<std::string>(*argument) << '\'';
    }
    std::cout << '\n';
    traceStart_ = static_cast<std::streamoff>(std::filesystem::file_size(log_));
    Answer answer = client_.Call(operation, arguments);
    if (answer.error) {
      std::cout << "refused: " << ErrorLine(*answer.error) << '\n';
      refused_ = true;
    } else if (answer.table) {
      WriteTable(std::cout, *answer.table);
    } else {
      std::cout << answer.message.value_or("accepted") << '\n';
    }
    return answer;
  }

  void ShowTrace() {
    std::ifstream log(log_, std::ios::binary);
    log.seekg(traceStart_);
    std::cout << "The trace of that call:\n";
    for (std::string line; std::getline(log, line);) std::cout << "  " << line << '\n';
  }

  void ShowRows(const std::string& title, const std::string& query) {
    const auto rows = client_.lotrix().Connection()->Execute(query);
    std::cout << '\n' << title << ":\n";
    WriteTable(std::cout, RecordsetToResultSet(*rows));
  }

  // Whether a call was refused since this was asked last.
  bool WasRefused() { return std::exchange(refused_, false); }

 private:
  Client client_;
  std::string log_;
  std::streamoff traceStart_ = 0;
  bool refused_ = false;
};

}  // namespace

int Demo() {
  const DemoFolder folder;
  const Common fresh{
      .connectionString = "Provider=SQLite;Data Source=\"" + folder.path() + "/demo.db\"",
      .logPath = folder.path() + "/Lotrix.log"};
  std::cout << "A fresh embedded database with the sample data of a small state's programme.\n";
  if (const int failed = Init(fresh, true, false); failed != kAllWell) return failed;
  Day day(fresh);
  const std::string today = DateText(Today(std::chrono::system_clock::now));
  const NamedArguments order = {{"anOrderDate", today},  {"aPIN", "p00001"},
                                {"aVaccine", "DTAP"},    {"aDoseCount", "20"},
                                {"aFundingSource", "1"}, {"aMfg", "MKRA"}};
  const std::string ordersOfToday =
      "SELECT pin, orddate, vaccine, orddose, fcode1, size, cost, maker, chgdate, userid "
      "FROM neworder WHERE orddate = {" +
      today + "}";

  day.Say("A provider orders vaccine from the manufacturer.");
  day.Call("manufacturerProviderOrderCreateUpdate", order);
  day.ShowTrace();
  day.ShowRows("The order as the database holds it", ordersOfToday);

  day.Say("The same order again, for 30 doses, replaces the count.");
  NamedArguments again = order;
  again[3].second = "30";
  day.Call("manufacturerProviderOrderCreateUpdate", again);
  day.ShowRows("The order as the database holds it", ordersOfToday);

  day.Say("A new clinic opens, moves its deliveries, reports its children and its physician.");
  day.Call("providerProfileUpdate", {{"aPIN", "NEW001"},
                                     {"aFacilityLastName", "Lantern Street Clinic"},
                                     {"aShippingContact", "Orla Thistle"},
                                     {"aShippingAddress1", "1 Lantern St."},
                                     {"aShippingAddress2", ""},
                                     {"aShippingCity", "Amberbrook"},
                                     {"aShippingState", "ZZ"},
                                     {"aShippingZipCode", "69401"},
                                     {"aShippingInstructions", ""},
                                     {"aShippingPhoneNumber", "(217) 555-0100"},
                                     {"aShippingFaxNumber", ""},
                                     {"aMailContact", ""},
                                     {"aMailAddress1", ""},
                                     {"aMailAddress2", ""},
                                     {"aMailCity", ""},
                                     {"aMailState", ""},
                                     {"aMailZipCode", ""},
                                     {"aMailPhoneNumber", ""},
                                     {"aMailFaxNumber", ""},
                                     {"aVaricellaEligibilityStatus", "True"},
                                     {"aClassificationCode", "10"}});
  day.Call("providerShippingDataUpdate", {{"aPIN", "NEW001"},
                                          {"aFacilityLastName", "Lantern Street Clinic"},
                                          {"aShippingContact", "Orla Thistle"},
                                          {"aShippingAddress1", "3 Lantern St."},
                                          {"aShippingAddress2", "Back door"},
                                          {"aShippingCity", "Amberbrook"},
                                          {"aShippingState", "ZZ"},
                                          {"aShippingZipCode", "69401"},
                                          {"aShippingInstructions", "Ring twice"},
                                          {"aPhoneNumber", "(217) 555-0101"},
                                          {"aFaxNumber", ""},
                                          {"aTitle", "Ms"}});
  day.Call("providerAdditionalInfoUpdate", {{"aPIN", "NEW001"},
                                            {"aProviderType", "CLINIC"},
                                            {"aClassification", "11"},
                                            {"aCurrentVFCCert", "January 5, 2026"},
                                            {"aCohort", "C1"},
                                            {"aEmpIdNum", "E-100"},
                                            {"aQuorvin", "yes"}});
  day.Call("providerEnrollmentAddUpdate", {{"aPIN", "NEW001"},
                                           {"aSource", "A"},
                                           {"aAgeGroup", "1"},
                                           {"aAll", "120"},
                                           {"aMedicaid", "40"},
                                           {"aUninsured", "12"},
                                           {"aAmIndian", "0"},
                                           {"aFQHC_RHC", "5"},
                                           {"aVFC", "57"},
                                           {"aG317", "3"},
                                           {"aState", "60"}});
  day.Call("physicianAddUpdate", {{"aPIN", "NEW001"},
                                  {"aLastName", "Thistle"},
                                  {"aFirstName", "Orla"},
                                  {"aMiddleInitial", "B"},
                                  {"aTitle", "MD"},
                                  {"aSiteMedID", ""},
                                  {"aMedicaidNum", ""},
                                  {"aLicenseNum", "L-77"}});

  day.Say(
      "A depot ships, a provider loses two doses of a lot, counts its stock and reports doses.");
  day.Call("DepotProviderOrderUpdate", {{"aShipmentDate", today},
                                        {"aDepotID", "D00001"},
                                        {"aPIN", "NEW001"},
                                        {"aVaccine", "MMR"},
                                        {"aDoseCount", "10"},
                                        {"aLotNumber", "D1046-02"}});
  const Answer stock = day.Call("stockTableRead", {{"aVaccine", "DTAP"}});
  const std::string lot = stock.table ? stock.table->GetValue(1, 4) : "";
  day.Call("providerInventoryAdjustmentUpdate", {{"aDepotPIN", "D00001"},
                                                 {"anEntryDate", today},
                                                 {"aTransactionDate", today},
                                                 {"aTransactionType", "Lo"},
                                                 {"aPIN", "P00001"},
                                                 {"aVaccine", "DTAP"},
                                                 {"aLotNumber", lot},
                                                 {"aDoseCount", "-2"}});
  day.Call("provinvAdd",
           {{"aPIN", "P00001"}, {"aVacc", "DTAP"}, {"aInv", "48"}, {"aIdate", today}});
  day.Call("DosesAdministeredUpdate", {{"aReportingDate", today},
                                       {"aPIN", "P00001"},
                                       {"aVaccine", "DTAP"},
                                       {"aDoseInSeries", "1"},
                                       {"aDoseCountLessThanOne", "7"},
                                       {"aDoseCountForOneYear", "3"},
                                       {"aTotalDoses", "10"}});

  day.Say("What can be read.");
  day.Call("vaccineReferenceTableRead", {});
  day.Call("inventoryOnHandRead", {{"aDepotPIN", "D00001"}, {"aVaccine", "MMR"}});
  day.ShowTrace();
  day.Call("manufacturerProviderOrderRead",
           {{"aPIN", "P00001"}, {"aShipmentBeginDate", "1/1/2000"}, {"aShipmentEndDate", today}});
  day.Call("CheckVaccActive", {{"aVaccine", "DTAP"}});

  day.Say("What the day has left in the database.");
  const std::string ours = " WHERE userid = 'LTX_DLL'";
  day.ShowRows("Providers",
               "SELECT pin, lastname, address, county, sector, cat1, datevfc, phone, "
               "active FROM provider" +
                   ours);
  day.ShowRows("Enrollment",
               "SELECT pin, ensource, allkids1, medicaid1, vfckids1, allkids2 "
               "FROM enroll" +
                   ours);
  day.ShowRows("Physicians",
               "SELECT pin, lastname, firstname, initial, title, medlicense "
               "FROM physicn WHERE pin = 'NEW001'");
  day.ShowRows("Orders", ordersOfToday);
  day.ShowRows("Adjustments",
               "SELECT dateout, frompin, pin, vaccine, lot, doses, status, notes "
               "FROM distrib" +
                   ours);
  day.ShowRows("Counted stock", "SELECT pin, vaccine, doses, idate FROM provhas" + ours);
  day.ShowRows("Doses given",
               "SELECT adate, pin, vaccine, dose, sector, g1, g2, rowtot "
               "FROM dosesadm" +
                   ours);
  if (day.WasRefused()) throw std::runtime_error("the day was to have no refusal until now");

  day.Say("And what is refused, with the words and the number that programs know.");
  NamedArguments none = order;
  none[3].second = "0";
  day.Call("manufacturerProviderOrderCreateUpdate", none);
  NamedArguments unknown = order;
  unknown[2].second = "NOSUCH";
  day.Call("manufacturerProviderOrderCreateUpdate", unknown);
  day.ShowTrace();

  day.Say("The physician leaves.");
  day.Call("physicianDeleteByPin", {{"aPIN", "NEW001"}});
  return kAllWell;
}

}  // namespace lotrix::cli

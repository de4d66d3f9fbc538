// The whole error catalogue, row by row and raiser by raiser: each is shown to be
// raised by a call, or named with the reason why none can raise it.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <set>
#include <span>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "lotrix/members.h"
#include "src/validation/validation.h"
#include "tests/support/fixture.h"

namespace lotrix::test {
namespace {

// --- The catalogue -------------------------------------------------------------

struct CatalogueRow {
  std::int32_t code;
  std::string message;  // with a word between angle brackets where a name goes in
  std::vector<std::string> raisers;
};

const std::vector<CatalogueRow>& Catalogue() {
  static const std::vector<CatalogueRow> rows = {
      {2000, "2000", {"DepotProviderOrderUpdate", "DosesAdministeredUpdate"}},
      {2000,
       "A null provider PIN was entered",
       {"ValidateProviderPIN", "ValidateProvideraVaricellaEligibility",
        "manufacturerProviderOrderRead", "physicianAddUpdate", "providerAdditionalInfoUpdate"}},
      {20001,
       "Null provider name was entered",
       {"providerProfileUpdate", "providerShippingDataUpdate"}},
      {20002,
       "Null shipping contact was entered",
       {"providerProfileUpdate", "providerShippingDataUpdate"}},
      {20003,
       "Provider PIN entered has a duplicate",
       {"ValidateProviderPIN", "ValidateProvideraVaricellaEligibility"}},
      {20004,
       "Provider entered not found in LOTRIX",
       {"DepotProviderOrderUpdate", "DosesAdministeredUpdate",
        "manufacturerProviderOrderCreateUpdate", "providerAdditionalInfoUpdate",
        "providerInventoryAdjustmentUpdate"}},
      {20005,
       "Error while verifying provider PIN in LOTRIX",
       {"ValidateProviderActiveStatus", "ValidateProviderPIN",
        "ValidateProvideraVaricellaEligibility"}},
      {20006,
       "The first field of the shipping address cannot be null",
       {"ValidateShippingAddress"}},
      {20007, "The city field in the shipping address cannot be null", {"ValidateShippingAddress"}},
      {20008,
       "The state field in the shipping address cannot be null",
       {"ValidateShippingAddress"}},
      {20014, "Error while verifying depot PIN in LOTRIX", {"ValidateDepotPIN"}},
      {20015, "Provider PIN entered has a duplicate", {"ValidateDepotPIN"}},
      {20016,
       "Error while verifying vaccine reference table in LOTRIX",
       {"ValidateAgainstVaccRefTable", "ValidateAgainstpVaccRefTable"}},
      {20018,
       "Error while verifying duplicate depot provider order in LOTRIX",
       {"DepotProviderOrderUpdate", "ValidateDuplicateDepotProviderOrder"}},
      {20021,
       "A Null Shipment Date is entered",
       {"DepotProviderOrderUpdate", "manufacturerProviderOrderRead"}},
      {20022, "A NULL depot pin is entered", {"DepotProviderOrderUpdate"}},
      {20023,
       "A NULL vaccine name is entered",
       {"DepotProviderOrderUpdate", "DosesAdministeredUpdate"}},
      {20024, "A NULL lot number is entered", {"DepotProviderOrderUpdate"}},
      {20025,
       "The number of doses for an order must be greater than zero",
       {"DepotProviderOrderUpdate", "manufacturerProviderOrderCreateUpdate"}},
      {20028, "A NULL report date is entered", {"DosesAdministeredUpdate"}},
      {20029, "The sum of the distribution does not match the Total", {"ValidateTotalDoses"}},
      {20031, "A NULL sector is entered", {"ValidateSector"}},
      {20031, "Error while verifying sector", {"ValidateSector"}},
      {20032, "Error while verifying duplicate doses admin", {"ValidateDuplicateDosesAdmin"}},
      {20033, "Provider PIN not found for shipping data update", {"providerShippingDataUpdate"}},
      {20034, "Error verifying lot number", {"ValidateVaccineLot"}},
      {20036, "Error verifying adjustment type", {"ValidateActionCode", "action-code lookup"}},
      {20037, "Duplicate adjustment type found", {"ValidateActionCode", "action-code lookup"}},
      {20038,
       "More than one record for the same adjustment was found",
       {"ValidateDuplicateProviderInventoryAdjustment"}},
      {20039,
       "Error while looking for duplicate adjustment records",
       {"ValidateDuplicateProviderInventoryAdjustment"}},
      {20040,
       "The adjustment entered cannot be inserted into LOTRIX with this application",
       {"providerInventoryAdjustmentUpdate"}},
      {20041, "Unknown adjustment for update", {"providerInventoryAdjustmentUpdate"}},
      {20042,
       "Error determining current doses for inventory adjustment update",
       {"current-doses query", "current-ordered-doses query"}},
      {20043,
       "Null transaction date was entered for inventory adjustment update",
       {"providerInventoryAdjustmentUpdate"}},
      {20044,
       "Null entry date was entered for inventory adjustment update",
       {"providerInventoryAdjustmentUpdate"}},
      {20046, "A state PO number is required for state funding code", {"ValidateFundingCodeandPO"}},
      {20047, "Error while verifying funding code", {"ValidateFundingCodeandPO"}},
      {20048, "Funding code entered has not been defined in LOTRIX", {"ValidateFundingCodeandPO"}},
      {20049, "Duplicate funding codes found in LOTRIX", {"ValidateFundingCodeandPO"}},
      {20051,
       "Vaccine not available to private provider in LOTRIX",
       {"ValidateAgainstVaccRefTable", "ValidateAgainstpVaccRefTable"}},
      {20052,
       "Error while verifying order against vaccine contract table",
       {"DepotProviderOrderUpdate", "VerifyVaccineContract"}},
      {20054,
       "Error while verifing order against duplicates",
       {"ValidateDuplicateManufacturerOrder"}},
      {20055,
       "More than one record for the same manufacturer order was found",
       {"ValidateDuplicateManufacturerOrder", "ValidateEventDateManufacturerProviderOrder"}},
      {20056, "Invalid fax number format", {"providerShippingDataUpdate"}},
      {20057, "Invalid phone number format", {"providerShippingDataUpdate"}},
      {20060, "Invalid classification code for a provider", {"providerProfileUpdate"}},
      {20061,
       "Classification code is needed when creating new provider records in LOTRIX",
       {"providerAdditionalInfoUpdate", "providerProfileUpdate"}},
      {20062, "The Shipment Begin Date that was entered is not a valid date", {"stockTableRead"}},
      {20063, "The Shipment End Date that was entered is not a valid date", {"stockTableRead"}},
      {20065, "Error while verifying provider subdivision", {"ValidateSubdivision"}},
      {20066, "Duplicate subdivisions found", {"ValidateSubdivision"}},
      {20067, "The subdivision entered does not exist in the database", {"ValidateSubdivision"}},
      {20068, "The excess allowance is out of range", {"ValidateExcessAllowance"}},
      {20069,
       "The end of the date range must be later than the beginning of the range, and both must "
       "be valid dates",
       {"stockTableRead"}},
      {20070,
       "Error while checking status of manufacturer order",
       {"ValidateEventDateManufacturerProviderOrder"}},
      {20071,
       "A manufacturer order with the same parameters has already been sent to the Vorsk. "
       "Cannot update current order.",
       {"ValidateEventDateManufacturerProviderOrder"}},
      {20072,
       "The given pin number is reserved and cannot be assigned to a new provider.",
       {"ValidateNewProviderPIN"}},
      {20073,
       "VFC certification date is not a valid date",
       {"ValidateVFCCertDate", "providerAdditionalInfoUpdate"}},
      {20074,
       "Entry date for the adjustment is not a valid date",
       {"ValidateProviderInventoryAdjustDates"}},
      {20074,
       "Transaction date for the adjustment is not a valid date",
       {"ValidateProviderInventoryAdjustDates"}},
      {20075,
       "Order date for the manufacturer order is not a valid date",
       {"manufacturerProviderOrderCreateUpdate"}},
      {20076, "Null value for manufacturer order date", {"manufacturerProviderOrderCreateUpdate"}},
      {20078,
       "The number of characters in the pin entered exceeds the maximum allowed",
       {"ValidateDepotPIN", "ValidateProviderPIN", "ValidateProvideraVaricellaEligibility"}},
      {20079,
       "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed.",
       {"ValidateProviderPIN", "ValidateProvideraVaricellaEligibility"}},
      {20080,
       "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed.",
       {"ValidateDepotPIN"}},
      {20082,
       "The number of doses in an inventory adjustment record must be greater than zero",
       {"providerInventoryAdjustmentUpdate"}},
      {20083,
       "The provider enter is currently inactivate in LOTRIX. Cannot proceed with the current "
       "operation",
       {"ValidateProviderActiveStatus"}},
      {20084, "Pin number cannot be zero for a new provider record", {"ValidateNewProviderPIN"}},
      {20085,
       "The given sector is not a valid doses administered sector",
       {"ValidateVaccAdminSector"}},
      {20086,
       "The vaccine being used in the current operation is inactive in LOTRIX",
       {"ValidateAgainstVaccRefTable", "ValidateAgainstpVaccRefTable"}},
      {20087,
       "The dose in series number given is less than the minimum allowed for all vaccines",
       {"ValidateDoseSeriesNumber", "ValidateDoseSeriesNumberPvaccref"}},
      {20088,
       "The dose in series number given is greater than the maximum allowed for the vaccine",
       {"ValidateDoseSeriesNumber", "ValidateDoseSeriesNumberPvaccref"}},
      {20089,
       "Error while reading enrollment data for current provider",
       {"ValidateEnrollmentRecord"}},
      {20090,
       "There are duplicate enrollment data records for the current provider",
       {"ValidateEnrollmentRecord"}},
      {20091, "A Null funding source is entered", {"manufacturerProviderOrderCreateUpdate"}},
      {20092,
       "The provider is not eligible for ordering VAR",
       {"manufacturerProviderOrderCreateUpdate"}},
      {20093, "The state PO is not needed for federal funded order", {"ValidateFundingCodeandPO"}},
      {20095, "The active code entered is not Y nor N", {"providerProfileUpdate"}},
      {20096, "<table> does not exist in the NextID table.", {"GetNextID"}},
      {20096, "More than one instance of <table> exists in the NextID table.", {"GetNextID"}},
      {20096, "Error while reading physicn data for current physician", {"ValidatePhysicnRecord"}},
      {20097,
       "There are duplicate physicn data records for the current provider",
       {"ValidatePhysicnRecord"}},
      {20098, "Null PIN for Enroll table Add/Update", {"providerEnrollmentAddUpdate"}},
      {20099, "Null Source for Enroll table Add/Update", {"providerEnrollmentAddUpdate"}},
      {20100, "Null Age Group for Enroll table Add/Update", {"providerEnrollmentAddUpdate"}},
      {20101, "Null AllKids Total for Enroll table Add/Update", {"providerEnrollmentAddUpdate"}},
      {20102, "Null Medicaid Total for Enroll table Add/Update", {"providerEnrollmentAddUpdate"}},
      {20103, "Null Uninsured Total for Enroll table Add/Update", {"providerEnrollmentAddUpdate"}},
      {20104,
       "Null American Indian Total for Enroll table Add/Update",
       {"providerEnrollmentAddUpdate"}},
      {20105, "Null FQHC_RHC Total for Enroll table Add/Update", {"providerEnrollmentAddUpdate"}},
      {20106, "Null VFC Total for Enroll table Add/Update", {"providerEnrollmentAddUpdate"}},
      {20107, "Null G317 Total for Enroll table Add/Update", {"providerEnrollmentAddUpdate"}},
      {20108, "Null State Total for Enroll table Add/Update", {"providerEnrollmentAddUpdate"}},
      {20109,
       "Non-numeric or invalid age group for Enroll table Add/Update",
       {"providerEnrollmentAddUpdate"}},
      {20110,
       "Non-numeric All Kids Total for Enroll table Add/Update",
       {"providerEnrollmentAddUpdate"}},
      {20111,
       "Non-numeric Medicaid Total for Enroll table Add/Update",
       {"providerEnrollmentAddUpdate"}},
      {20112,
       "Non-numeric Uninsured Total for Enroll table Add/Update",
       {"providerEnrollmentAddUpdate"}},
      {20113,
       "Non-numeric American Indian Total for Enroll table Add/Update",
       {"providerEnrollmentAddUpdate"}},
      {20114,
       "Non-numeric FQHC_RHC Total for Enroll table Add/Update",
       {"providerEnrollmentAddUpdate"}},
      {20115, "Non-numeric VFC Total for Enroll table Add/Update", {"providerEnrollmentAddUpdate"}},
      {20116,
       "Non-numeric G317 Total for Enroll table Add/Update",
       {"providerEnrollmentAddUpdate"}},
      {20117,
       "Non-numeric State Total for Enroll table Add/Update",
       {"providerEnrollmentAddUpdate"}},
      {20118,
       "Source value not A-G or Z for Enroll table Add/Update",
       {"providerEnrollmentAddUpdate"}},
      {20119, "Null Provider Type for Provider table Update", {"providerAdditionalInfoUpdate"}},
      {20120,
       "Null VFC Certification Date for Provider table Add/Update",
       {"providerAdditionalInfoUpdate"}},
      {20121, "Null Cohort for Provider table Update", {"providerAdditionalInfoUpdate"}},
      {20122,
       "Null Employee ID Number for Provider table Update",
       {"providerAdditionalInfoUpdate"}},
      {20123, "Null Quorvin Value for Provider table Update", {"providerAdditionalInfoUpdate"}},
      {20124,
       "Quorvin Value not YES/NO for Provider table Update",
       {"providerAdditionalInfoUpdate"}},
      {20125,
       "Non-numeric Classification for Provider table Update",
       {"providerAdditionalInfoUpdate"}},
      {20126, "Null Last Name for Physicn table Add/Update", {"physicianAddUpdate"}},
      {20127, "Null First Name for Physicn table Add/Update", {"physicianAddUpdate"}},
      {20131,
       "Incorrect field length for Physicn table Add/Update: <label>",
       {"physicianAddUpdate"}},
      {20132,
       "Incorrect field length for Provider table Update: <label>",
       {"providerAdditionalInfoUpdate"}},
      {20133,
       "Incorrect field length for Enroll table Add/Update: <label>",
       {"providerEnrollmentAddUpdate"}},
      {20134, "Null Vaccine field for Provider Inventory Add/Update", {"provinvAdd"}},
      {20135, "Null Inventory field for Provider Inventory Add/Update", {"provinvAdd"}},
      {20136, "Non numeric Inventory field for Provider Inventory Add/Update", {"provinvAdd"}},
      {20138, "Null Inventory Date field for Provider Inventory Add/Update", {"provinvAdd"}},
      {20139, "Invalid Inventory Date field for Provider Inventory Add/Update", {"provinvAdd"}},
      {20140, "Invalid mailing phone number format", {"providerProfileUpdate"}},
      {20141, "Invalid mailing fax number format", {"providerProfileUpdate"}},
      {20142, "Invalid shipping phone number format", {"providerProfileUpdate"}},
      {20143, "Invalid shipping fax number format", {"providerProfileUpdate"}},
      {50000, "Invalid Row Specified", {"GetValue", "SetValue"}},
      {50001, "Invalid Col Specified", {"GetValue"}},
  };
  return rows;
}

// The nth row, from 0, of a code.
const CatalogueRow& RowOf(std::int32_t code, int nth) {
  for (const CatalogueRow& row : Catalogue()) {
    if (row.code == code && nth-- == 0) return row;
  }
  throw std::out_of_range("no such row: " + std::to_string(code));
}

// Raisers of a row that no call can make raise it.
struct Unreachable {
  std::int32_t code;
  int nth;
  std::string raiser;
  std::string reason;
};

const std::vector<Unreachable>& UnreachableRaisers() {
  static const std::vector<Unreachable> raisers = {
      {2000, 1, "ValidateProviderPIN",
       "a blank PIN is not alphanumeric, which is tested first: 20079"},
      {2000, 1, "ValidateProvideraVaricellaEligibility",
       "a blank PIN is not alphanumeric, which is tested first: 20079"},
  };
  return raisers;
}

// --- The walk ------------------------------------------------------------------

// Arguments of an operation in place of those that pass, by their names.
using Given = std::vector<std::pair<std::string, Argument>>;

class CatalogueWalk;
using WalkCall = std::function<void(CatalogueWalk& walk)>;

// A call that raises a row of the catalogue.
struct Proof {
  std::int32_t code = 0;
  int nth = 0;  // which of the code's rows
  std::string raiser;
  std::string rows = {};  // what the call is to find, as SQL
  WalkCall call;
  std::string name = {};  // what goes in between the angle brackets
  // Whose Problem line comes first, when it is not the raiser's own.
  std::string loggedBy = {};
  // Something of a query that the engine answers wrongly, and its wrong answer.
  std::string query = {};
  std::vector<Value> answer = {};
};

void PrintTo(const Proof& proof, std::ostream* out) { *out << proof.code << " " << proof.raiser; }

std::string DescriptionOf(const Proof& proof) {
  std::string text = RowOf(proof.code, proof.nth).message;
  const std::size_t start = text.find('<');
  if (start == std::string::npos) return text;
  return text.replace(start, text.find('>') - start + 1, proof.name);
}

class CatalogueWalk : public DatabaseTest, public ::testing::WithParamInterface<Proof> {
 public:
  using DatabaseTest::connection;
  using DatabaseTest::Execute;
  using DatabaseTest::log;
  using DatabaseTest::lotrix;

 protected:
  void SetUp() override {
    Execute(
        "BEGIN; INSERT INTO provider (pin, sector, active, codes) VALUES ('P1', 15, 'Y', ''),"
        " ('OFF', 15, 'N', ''), ('TWO', 15, 'Y', 'V'), ('TWO', 16, 'Y', 'V'),"
        " ('D01', 30, 'Y', ''), ('D2', 30, 'Y', ''), ('D2', 31, 'Y', '');"
        "INSERT INTO sectoref (sector) VALUES (15), (16), (16);"
        "INSERT INTO subdiv (subdiv) VALUES ('NORTH'), ('SOUTH'), ('SOUTH');"
        "INSERT INTO funding (fundcode) VALUES ('1'), ('3'), ('9'), ('9');"
        "INSERT INTO actref (status, action) VALUES ('RE', 2), ('DI', 1), ('NI', 9), ('TE', 10),"
        " ('TW', 2), ('TW', 2), (' LE', 2);"
        "INSERT INTO stock (pin, lot, vaccine, tracking) VALUES ('P1', 'A1', 'HEPA', 'T');"
        "INSERT INTO pvaccref (vaccine, maker, \"begin\", \"end\", minbulk, unitsize, pkgsize, "
        "ndcno, cost, contractid, sel_maker, dos_wind, excfunds, descrip, locactiv, maxno) VALUES "
        "('HEPA', 'MERCK', '2004-01-01', '2004-12-31', 1, 1, 10, 'N', 12.5, 'C', 'S', 'W', 'E', "
        "'D', (1 = 0), 3), "
        "('FIVE', 'MERCK', '2004-01-01', '2004-12-31', 1, 1, 5, 'N', 12.5, 'C', 'S', 'W', 'E', "
        "'D', (1 = 0), 3), "
        "('OLD', 'MERCK', '2004-01-01', '2004-12-31', 1, 1, 10, 'N', 12.5, 'C', 'S', 'W', 'E', "
        "'D', (1 = 1), 3);"
        "INSERT INTO vaccref (vaccine, maxno, locactiv) VALUES ('HEPA', 3, 'Y'), ('OLD', 3, 'N');"
        "INSERT INTO nextid (ctablename, inextid) VALUES ('DISTRIB', 1), ('SEEKDIST', 1), "
        "('PROVHAS', 1), ('DOSESADM', 1), ('PROVIDER', 1); COMMIT");
  }

  void AnswerWrongly(Connection& counting) {
    const Proof& proof = GetParam();
    Watch(counting, [&](const std::string& text) -> std::optional<std::vector<Value>> {
      if (text.find(proof.query) == std::string::npos) return std::nullopt;
      return proof.answer;
    });
  }

  // Every table but the key table, whose keys stay taken.
  std::map<std::string, std::vector<Row>> Tables() {
    std::map<std::string, std::vector<Row>> tables;
    for (const char* const table :
         {"provider", "enroll", "physicn", "neworder", "influenza", "distrib", "provhas",
          "dosesadm", "stock", "lots", "pvaccref", "vaccref", "funding", "actref", "sectoref",
          "subdiv", "zipcodes"}) {
      tables[table] = Query(std::string("SELECT * FROM ") + table);
    }
    return tables;
  }

  [[nodiscard]] std::vector<std::string> ProblemLines() {
    std::vector<std::string> lines = Trace();
    std::erase_if(lines, [](const std::string& line) { return !line.starts_with("error "); });
    return lines;
  }
};

// An operation's arguments that pass, one for each parameter.
std::vector<Argument> PassingArguments(const std::string& operation) {
  const auto count = [](std::int64_t number) { return Argument(Value(number)); };
  if (operation == "manufacturerProviderOrderRead" || operation == "stockTableRead") {
    return std::vector<Argument>(5, Value(""));
  }
  if (operation == "manufacturerProviderOrderCreateUpdate") {
    return {Value("1/5/2004"), Value("P1"), Value("HEPA"), count(20),
            Value("1"),        Value("1"),  Value(""),     Value("MERCK")};
  }
  if (operation == "providerProfileUpdate") {
    std::vector<Argument> arguments(19, Value("X"));
    arguments[0] = Value("NEW");
    for (const std::size_t number : {9U, 10U, 17U, 18U})
      arguments[number] = Value("(217) 555-0100");
    arguments.emplace_back(Value(false));
    arguments.emplace_back(count(15));
    arguments.resize(33);
    return arguments;
  }
  if (operation == "providerInventoryAdjustmentUpdate") {
    return {Value("D01"), Value("1/5/2004"), Value("1/6/2004"), Value("RE"),
            Value("P1"),  Value("HEPA"),     Value("A1"),       count(5)};
  }
  if (operation == "providerShippingDataUpdate") {
    std::vector<Argument> arguments(11, Value("X"));
    arguments[0] = Value("P1");
    for (const std::size_t number : {9U, 10U}) arguments[number] = Value("(217) 555-0100");
    arguments.resize(15);
    return arguments;
  }
  if (operation == "DosesAdministeredUpdate") {
    return {Value("1/5/2004"), Value("P1"), Value("HEPA"), Value("2")};
  }
  if (operation == "DepotProviderOrderUpdate") {
    return {Value("1/5/2004"), Value("D01"), Value("P1"), Value("HEPA"), count(20), Value("A1")};
  }
  if (operation == "providerEnrollmentAddUpdate") {
    std::vector<Argument> arguments(11, Value("1"));
    arguments[0] = Value("P1");
    arguments[1] = Value("A");
    return arguments;
  }
  if (operation == "providerAdditionalInfoUpdate") {
    return {Value("P1"),     Value("TYPE"), Value("15"), Value("1/5/2004"),
            Value("COHORT"), Value("EMP"),  Value("YES")};
  }
  if (operation == "physicianAddUpdate") {
    return {Value("P1"), Value("DOE"), Value("ANN"), Value("B"),
            Value("MD"), Value("S1"),  Value("M1"),  Value("L1")};
  }
  if (operation == "provinvAdd") {
    return {Value("P1"), Value("HEPA"), Value("12"), Value("1/5/2004")};
  }
  throw std::out_of_range("no such operation: " + operation);
}

WalkCall Operation(const std::string& operation, const Given& given = {}) {
  return [=](CatalogueWalk& walk) {
    const Member& member = MemberNamed(operation);
    std::vector<Argument> arguments = PassingArguments(operation);
    for (const auto& [name, value] : given) {
      const auto parameter = std::find_if(
          member.parameters.begin(), member.parameters.end(),
          [&, &wanted = name](const Parameter& candidate) { return candidate.name == wanted; });
      ASSERT_NE(parameter, member.parameters.end()) << name;
      const auto position = static_cast<std::size_t>(parameter - member.parameters.begin());
      if (arguments.size() <= position) arguments.resize(position + 1);
      arguments[position] = value;
    }
    Call(walk.lotrix(), member, std::span<const Argument>(arguments));
  };
}

const std::string kOneDistribution =
    "INSERT INTO distrib (frompin, pin, vaccine, lot, dateout, action, doses) VALUES "
    "('D01', 'P1', 'HEPA', 'A1', '2004-01-05', 1, 7)";
const std::string kOneAdjustment =
    "INSERT INTO distrib (frompin, pin, vaccine, lot, dateout, action, doses) VALUES "
    "('D01', 'P1', 'HEPA', 'A1', '2004-01-06', 2, 7)";

// Orders of one key, told apart by their marks only.
std::string Orders(const std::vector<std::string>& seekids) {
  std::string sql = "INSERT INTO neworder (pin, orddate, vaccine, fcode1, orddose, seekid) VALUES ";
  for (const std::string& seekid : seekids) {
    sql += "('P1', '2004-01-05', 'HEPA', '1', 5, " + seekid + ")" +
           (&seekid == &seekids.back() ? "" : ", ");
  }
  return sql;
}

const std::string kSevenLetters = "ABCDEFG";

void AddOperationProofs(std::vector<Proof>& proofs) {
  const auto add = [&](std::int32_t code, const std::string& operation, const Given& given,
                       const std::string& name = {}, int nth = 0) {
    Proof& proof = proofs.emplace_back();
    proof.code = code;
    proof.nth = nth;
    proof.raiser = operation;
    proof.call = Operation(operation, given);
    proof.name = name;
    if (operation == "provinvAdd") proof.loggedBy = "provinvAddUpdate";
  };
  const auto blank = [&](std::int32_t code, const std::string& operation,
                         const std::string& argument) {
    add(code, operation, {{argument, Value("")}});
    add(code, operation, {{argument, Value("  ")}});
  };
  const Argument none = Value("NONE");
  const Argument notADate = Value("2/30/2004");
  const Argument zero = Value(std::int64_t{0});
  const Given dates = {{"aPIN", Value("P1")}, {"aShipmentBeginDate", Value("1/5/2004")}};
  const auto dated = [&](const Given& more) {
    Given given = dates;
    given.insert(given.end(), more.begin(), more.end());
    return given;
  };

  const std::string order = "manufacturerProviderOrderCreateUpdate";
  const std::string depot = "DepotProviderOrderUpdate";
  const std::string doses = "DosesAdministeredUpdate";
  const std::string adjustment = "providerInventoryAdjustmentUpdate";
  const std::string profile = "providerProfileUpdate";
  const std::string shipping = "providerShippingDataUpdate";
  const std::string enrollment = "providerEnrollmentAddUpdate";
  const std::string info = "providerAdditionalInfoUpdate";
  const std::string physician = "physicianAddUpdate";

  blank(2000, depot, "aPIN");
  blank(2000, doses, "aPIN");
  for (const std::string& operation :
       {std::string("manufacturerProviderOrderRead"), physician, info}) {
    add(2000, operation, {{"aPIN", Value("")}}, "", 1);
    add(2000, operation, {{"aPIN", Value("  ")}}, "", 1);
  }
  for (const std::string& operation : {profile, shipping}) {
    blank(20001, operation, "aFacilityLastName");
    blank(20002, operation, "aShippingContact");
  }
  for (const std::string& operation : {depot, doses, order, info, adjustment}) {
    add(20004, operation, {{"aPIN", none}});
  }
  blank(20021, depot, "aShipmentDate");
  add(20021, "manufacturerProviderOrderRead", {{"aPIN", Value("P1")}});
  blank(20022, depot, "aDepotID");
  blank(20023, depot, "aVaccine");
  blank(20023, doses, "aVaccine");
  blank(20024, depot, "aLotNumber");
  for (const std::string& operation : {depot, order}) {
    add(20025, operation, {{"aDoseCount", zero}});
    add(20025, operation, {{"aDoseCount", Value(std::int64_t{-1})}});
  }
  blank(20028, doses, "aReportingDate");
  add(20033, shipping, {{"aPIN", none}});
  add(20040, adjustment, {{"aTransactionType", Value("DI")}});
  add(20040, adjustment, {{"aTransactionType", Value("NI")}});
  add(20041, adjustment, {{"aTransactionType", Value("TE")}});
  blank(20043, adjustment, "aTransactionDate");
  blank(20044, adjustment, "anEntryDate");
  add(20052, depot, {{"aVaccine", Value("FIVE")}});
  add(20056, shipping, {{"aFaxNumber", Value("555-0100")}});
  add(20057, shipping, {{"aPhoneNumber", Value("555-0100")}});
  add(20057, shipping, {{"aPhoneNumber", Value("")}});
  add(20060, profile, {{"aClassificationCode", Value(std::int64_t{20})}});
  add(20060, profile, {{"aPIN", Value("P1")}, {"aClassificationCode", Value(std::int64_t{20})}});
  blank(20061, info, "aClassification");
  add(20061, profile, {{"aClassificationCode", std::nullopt}});
  add(20062, "stockTableRead", {{"aShipmentBeginDate", notADate}});
  add(20063, "stockTableRead", dated({{"aShipmentEndDate", notADate}}));
  add(20069, "stockTableRead", {{"aShipmentEndDate", Value("1/5/2004")}});
  add(20069, "stockTableRead", dated({{"aShipmentEndDate", Value("1/4/2004")}}));
  add(20073, info, {{"aCurrentVFCCert", notADate}});
  add(20075, order, {{"anOrderDate", notADate}});
  blank(20076, order, "anOrderDate");
  add(20082, adjustment, {{"aDoseCount", zero}});
  blank(20091, order, "aFundingSource");
  add(20092, order, {{"aVaccine", Value("VAR")}});
  add(20095, profile, {{"anActiveStatus", Value("YES")}});
  add(20095, profile, {{"anActiveStatus", Value("")}});

  const std::vector<std::pair<std::string, std::string>> counts = {
      {"aAll", "All Kids Total"},        {"aMedicaid", "Medicaid Total"},
      {"aUninsured", "Uninsured Total"}, {"aAmIndian", "American Indian Total"},
      {"aFQHC_RHC", "FQHC/RHC Total"},   {"aVFC", "VFC Total"},
      {"aG317", "G317 Total"},           {"aState", "State Total"}};
  blank(20098, enrollment, "aPIN");
  blank(20099, enrollment, "aSource");
  blank(20100, enrollment, "aAgeGroup");
  for (const char* const group : {"0", "5", "X"}) {
    add(20109, enrollment, {{"aAgeGroup", Value(group)}});
  }
  add(20118, enrollment, {{"aSource", Value("H")}});
  add(20133, enrollment, {{"aSource", Value("ABCDEFGHIJK")}}, "Source");
  for (std::size_t index = 0; index < counts.size(); ++index) {
    const auto& [argument, label] = counts[index];
    const auto offset = static_cast<std::int32_t>(index);
    blank(20101 + offset, enrollment, argument);
    add(20110 + offset, enrollment, {{argument, Value("X")}});
    add(20133, enrollment, {{argument, Value("12345678")}}, label);
  }

  blank(20119, info, "aProviderType");
  blank(20120, info, "aCurrentVFCCert");
  blank(20121, info, "aCohort");
  blank(20122, info, "aEmpIdNum");
  blank(20123, info, "aQuorvin");
  add(20124, info, {{"aQuorvin", Value("Y")}});
  add(20125, info, {{"aClassification", Value("AB")}});
  add(20132, info, {{"aProviderType", Value(std::string(11, 'A'))}}, "Provider Type");
  add(20132, info, {{"aClassification", Value("123")}}, "Classification");
  add(20132, info, {{"aCohort", Value(std::string(11, 'A'))}}, "Cohort");
  add(20132, info, {{"aEmpIdNum", Value(std::string(16, 'A'))}}, "Employee ID Number");

  blank(20126, physician, "aLastName");
  blank(20127, physician, "aFirstName");
  add(20131, physician, {{"aLastName", Value(std::string(21, 'A'))}}, "Last Name");
  add(20131, physician, {{"aFirstName", Value(std::string(16, 'A'))}}, "First Name");
  add(20131, physician, {{"aMiddleInitial", Value("AB")}}, "Middle Initial");
  add(20131, physician, {{"aTitle", Value(std::string(10, 'A'))}}, "Title");
  add(20131, physician, {{"aSiteMedID", Value(std::string(13, 'A'))}}, "Site Med ID");
  add(20131, physician, {{"aMedicaidNum", Value(std::string(13, 'A'))}}, "Medicaid Number");
  add(20131, physician, {{"aLicenseNum", Value(std::string(13, 'A'))}}, "License Number");

  blank(20134, "provinvAdd", "aVacc");
  blank(20135, "provinvAdd", "aInv");
  add(20136, "provinvAdd", {{"aInv", Value("abc")}});
  blank(20138, "provinvAdd", "aIdate");
  add(20139, "provinvAdd", {{"aIdate", Value("2/30/2001")}});

  add(20140, profile, {{"aMailPhoneNumber", Value("555-0100")}});
  add(20141, profile, {{"aMailFaxNumber", Value("555-0100")}});
  add(20142, profile, {{"aShippingPhoneNumber", Value("555-0100")}});
  add(20142, profile, {{"aShippingPhoneNumber", Value("")}});
  add(20143, profile, {{"aShippingFaxNumber", Value("555-0100")}});

  // Asked again after the duplicate check has found exactly one.
  add(20018, depot, {});
  proofs.back().rows = kOneDistribution;
  proofs.back().query = "SELECT doses FROM distrib";
}

// Routines without lines of their own are called by an operation, whose Problem
// line is then the first.
void AddLookupProofs(std::vector<Proof>& proofs) {
  const std::string adjustment = "providerInventoryAdjustmentUpdate";
  const std::string order = "manufacturerProviderOrderCreateUpdate";
  // Found by its trimmed form, and not by the untrimmed one.
  proofs.push_back({.code = 20036,
                    .raiser = "action-code lookup",
                    .call = Operation(adjustment, {{"aTransactionType", Value("LE")}}),
                    .loggedBy = adjustment});
  proofs.push_back({.code = 20037,
                    .raiser = "action-code lookup",
                    .call = Operation(adjustment),
                    .loggedBy = adjustment,
                    .query = "SELECT action FROM actref",
                    .answer = {std::int64_t{2}, std::int64_t{2}}});
  for (const std::vector<Value>& answer :
       {std::vector<Value>{}, std::vector<Value>{std::int64_t{7}, std::int64_t{7}}}) {
    proofs.push_back({.code = 20042,
                      .raiser = "current-doses query",
                      .rows = kOneAdjustment,
                      .call = Operation(adjustment),
                      .loggedBy = adjustment,
                      .query = "SELECT doses FROM distrib",
                      .answer = answer});
  }
  // A Null mark is neither 0 nor anything else.
  proofs.push_back({.code = 20042,
                    .raiser = "current-ordered-doses query",
                    .rows = Orders({"0", "NULL"}),
                    .call = Operation(order),
                    .loggedBy = order});
  proofs.push_back({.code = 20052,
                    .raiser = "VerifyVaccineContract",
                    .call = Operation(order, {{"aMfg", Value("NOBODY")}}),
                    .loggedBy = order});

  const std::vector<std::array<std::string, 3>> keys = {
      {"provhas", "provinvAdd", "provinvAddUpdate"},
      {"Dosesadm", "DosesAdministeredUpdate", "DosesAdministeredUpdate"},
      {"Provider", "providerProfileUpdate", "providerProfileUpdate"},
      {"distrib", "DepotProviderOrderUpdate", "DepotProviderOrderUpdate"},
      {"seekdist", "DepotProviderOrderUpdate", "DepotProviderOrderUpdate"}};
  for (const auto& [table, operation, logName] : keys) {
    const std::string same = "lower(ctablename) = lower('" + table + "')";
    proofs.push_back({.code = 20096,
                      .raiser = "GetNextID",
                      .rows = "DELETE FROM nextid WHERE " + same,
                      .call = Operation(operation),
                      .name = table,
                      .loggedBy = logName});
    proofs.push_back({.code = 20096,
                      .nth = 1,
                      .raiser = "GetNextID",
                      .rows = "INSERT INTO nextid SELECT * FROM nextid WHERE " + same,
                      .call = Operation(operation),
                      .name = table,
                      .loggedBy = logName});
  }
}

void AddProviderRoutineProofs(std::vector<Proof>& proofs) {
  const auto provider = [](const std::string& pin) {
    return [=](CatalogueWalk& walk) {
      static_cast<void>(ValidateProviderPIN(walk.log(), pin, true, walk.connection()));
    };
  };
  const auto eligible = [](const std::string& pin) {
    return [=](CatalogueWalk& walk) {
      static_cast<void>(ValidateProvideraVaricellaEligibility(walk.log(), pin, walk.connection()));
    };
  };
  const auto active = [](const std::string& pin) {
    return [=](CatalogueWalk& walk) {
      ValidateProviderActiveStatus(walk.log(), pin, walk.connection());
    };
  };
  const auto depot = [](const std::string& pin) {
    return [=](CatalogueWalk& walk) { ValidateDepotPIN(walk.log(), pin, walk.connection()); };
  };
  const auto fresh = [](const std::string& pin) {
    return [=](CatalogueWalk& walk) { ValidateNewProviderPIN(walk.log(), pin); };
  };
  const auto subdivision = [](const std::string& name) {
    return [=](CatalogueWalk& walk) { ValidateSubdivision(walk.log(), name, walk.connection()); };
  };
  const auto address = [](const std::string& line, const std::string& city,
                          const std::string& state) {
    return [=](CatalogueWalk& walk) {
      ValidateShippingAddress(walk.log(), line, "", city, "", state, walk.connection());
    };
  };
  const WalkCall sector = [](CatalogueWalk& walk) {
    static_cast<void>(ValidateSector(walk.log(), 16, walk.connection()));
  };
  const WalkCall enrollment = [](CatalogueWalk& walk) {
    static_cast<void>(ValidateEnrollmentRecord(walk.log(), "P1", walk.connection()));
  };
  const WalkCall physician = [](CatalogueWalk& walk) {
    static_cast<void>(ValidatePhysicnRecord(walk.log(), "P1", "DOE", "ANN", walk.connection()));
  };
  const std::string pinRoutine = "ValidateProviderPIN";
  const std::string varicella = "ValidateProvideraVaricellaEligibility";

  proofs.push_back({.code = 20003, .raiser = pinRoutine, .call = provider("TWO")});
  proofs.push_back({.code = 20003, .raiser = varicella, .call = eligible("TWO")});
  for (const char* const pin : {"NONE", "TWO"}) {
    proofs.push_back(
        {.code = 20005, .raiser = "ValidateProviderActiveStatus", .call = active(pin)});
  }
  const std::vector<std::array<std::string, 3>> addresses = {
      {" ", "CITY", "ST"}, {"LINE", " ", "ST"}, {"LINE", "CITY", " "}};
  for (std::size_t index = 0; index < addresses.size(); ++index) {
    const auto& [line, city, state] = addresses[index];
    proofs.push_back({.code = 20006 + static_cast<std::int32_t>(index),
                      .raiser = "ValidateShippingAddress",
                      .call = address(line, city, state)});
  }
  proofs.push_back({.code = 20014, .raiser = "ValidateDepotPIN", .call = depot("NONE")});
  proofs.push_back({.code = 20015, .raiser = "ValidateDepotPIN", .call = depot("D2")});
  proofs.push_back({.code = 20031, .raiser = "ValidateSector", .call = sector});
  proofs.push_back({.code = 20066, .raiser = "ValidateSubdivision", .call = subdivision("SOUTH")});
  proofs.push_back({.code = 20067, .raiser = "ValidateSubdivision", .call = subdivision("WEST")});
  for (const char* const pin : {"999999", "999998"}) {
    proofs.push_back({.code = 20072, .raiser = "ValidateNewProviderPIN", .call = fresh(pin)});
  }
  proofs.push_back({.code = 20084, .raiser = "ValidateNewProviderPIN", .call = fresh("0")});
  proofs.push_back({.code = 20078, .raiser = "ValidateDepotPIN", .call = depot(kSevenLetters)});
  proofs.push_back({.code = 20078, .raiser = pinRoutine, .call = provider(kSevenLetters)});
  proofs.push_back({.code = 20078, .raiser = varicella, .call = eligible(kSevenLetters)});
  for (const char* const pin : {"A-1", "", " "}) {
    proofs.push_back({.code = 20079, .raiser = pinRoutine, .call = provider(pin)});
    proofs.push_back({.code = 20079, .raiser = varicella, .call = eligible(pin)});
    proofs.push_back({.code = 20080, .raiser = "ValidateDepotPIN", .call = depot(pin)});
  }
  proofs.push_back(
      {.code = 20083, .raiser = "ValidateProviderActiveStatus", .call = active("OFF")});
  proofs.push_back({.code = 20090,
                    .raiser = "ValidateEnrollmentRecord",
                    .rows = "INSERT INTO enroll (pin) VALUES ('P1'), ('P1')",
                    .call = enrollment});
  proofs.push_back({.code = 20097,
                    .raiser = "ValidatePhysicnRecord",
                    .rows = "INSERT INTO physicn (pin, lastname, firstname) VALUES "
                            "('P1', 'DOE', 'ANN'), ('P1', 'DOE', 'ANN')",
                    .call = physician});

  // No engine counts like this.
  for (const std::vector<Value>& answer :
       {std::vector<Value>{}, std::vector<Value>{std::int64_t{1}, std::int64_t{1}},
        std::vector<Value>{std::int64_t{-1}}}) {
    const auto wrong = [&](std::int32_t code, int nth, const std::string& raiser,
                           const WalkCall& call) {
      proofs.push_back({.code = code,
                        .nth = nth,
                        .raiser = raiser,
                        .call = call,
                        .query = "SELECT count(*)",
                        .answer = answer});
    };
    wrong(20005, 0, pinRoutine, provider("P1"));
    wrong(20005, 0, varicella, eligible("P1"));
    wrong(20014, 0, "ValidateDepotPIN", depot("D01"));
    wrong(20031, 1, "ValidateSector", sector);
    wrong(20065, 0, "ValidateSubdivision", subdivision("NORTH"));
    wrong(20089, 0, "ValidateEnrollmentRecord", enrollment);
    wrong(20096, 2, "ValidatePhysicnRecord", physician);
  }
}

void AddVaccineAndValueRoutineProofs(std::vector<Proof>& proofs) {
  const auto add = [&](std::int32_t code, const std::string& raiser, const WalkCall& call,
                       int nth = 0) {
    proofs.push_back({.code = code, .nth = nth, .raiser = raiser, .call = call});
  };
  const auto publicVaccine = [](const std::string& vaccine) {
    return [=](CatalogueWalk& walk) {
      ValidateAgainstVaccRefTable(walk.log(), vaccine, walk.connection(), true);
    };
  };
  const auto privateVaccine = [](const std::string& vaccine) {
    return [=](CatalogueWalk& walk) {
      ValidateAgainstpVaccRefTable(walk.log(), vaccine, walk.connection(), true);
    };
  };
  const auto publicDose = [](const std::string& dose) {
    return [=](CatalogueWalk& walk) {
      ValidateDoseSeriesNumber(walk.log(), dose, "HEPA", walk.connection());
    };
  };
  const auto privateDose = [](const std::string& dose) {
    return [=](CatalogueWalk& walk) {
      ValidateDoseSeriesNumberPvaccref(walk.log(), dose, "HEPA", walk.connection());
    };
  };
  const auto dates = [](const std::string& entry, const std::string& transaction) {
    return [=](CatalogueWalk& walk) {
      ValidateProviderInventoryAdjustDates(walk.log(), entry, transaction);
    };
  };

  for (const auto& [table, raiser, call] :
       {std::tuple(" FROM vaccref ", "ValidateAgainstVaccRefTable",
                   WalkCall(publicVaccine("HEPA"))),
        std::tuple(" FROM pvaccref ", "ValidateAgainstpVaccRefTable",
                   WalkCall(privateVaccine("HEPA")))}) {
    proofs.push_back({.code = 20016,
                      .raiser = raiser,
                      .call = call,
                      .query = table,
                      .answer = {std::int64_t{-1}}});
  }
  add(20051, "ValidateAgainstVaccRefTable", publicVaccine("NONE"));
  add(20051, "ValidateAgainstpVaccRefTable", privateVaccine("NONE"));
  add(20086, "ValidateAgainstVaccRefTable", publicVaccine("OLD"));
  add(20086, "ValidateAgainstpVaccRefTable", privateVaccine("OLD"));
  for (const char* const dose : {"0", "-1"}) {
    add(20087, "ValidateDoseSeriesNumber", publicDose(dose));
    add(20087, "ValidateDoseSeriesNumberPvaccref", privateDose(dose));
  }
  add(20088, "ValidateDoseSeriesNumber", publicDose("4"));
  add(20088, "ValidateDoseSeriesNumberPvaccref", privateDose("4"));
  add(20074, "ValidateProviderInventoryAdjustDates", dates("13/45/2001", "1/6/2004"));
  add(20074, "ValidateProviderInventoryAdjustDates", dates("1/5/2004", "13/45/2001"), 1);
  for (const char* const allowance : {"0", "6"}) {
    add(20068, "ValidateExcessAllowance",
        [=](CatalogueWalk& walk) { ValidateExcessAllowance(walk.log(), allowance); });
  }
  add(20073, "ValidateVFCCertDate",
      [](CatalogueWalk& walk) { ValidateVFCCertDate(walk.log(), "2/30/2004"); });
  for (const char* const sector : {"3", "01", " 1", ""}) {
    add(20085, "ValidateVaccAdminSector",
        [=](CatalogueWalk& walk) { ValidateVaccAdminSector(walk.log(), sector); });
  }
  add(20029, "ValidateTotalDoses", [](CatalogueWalk& walk) {
    ValidateTotalDoses(walk.log(), {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}, 12);
  });
}

void AddOrderAndInventoryRoutineProofs(std::vector<Proof>& proofs) {
  const auto add = [&](std::int32_t code, const std::string& raiser, const WalkCall& call) {
    proofs.push_back({.code = code, .raiser = raiser, .call = call});
  };
  const auto found = [&](std::int32_t code, const std::string& raiser, const std::string& rows,
                         const WalkCall& call) {
    proofs.push_back({.code = code, .raiser = raiser, .rows = rows, .call = call});
  };
  const auto funding = [](const std::string& code, const std::string& statePO) {
    return [=](CatalogueWalk& walk) {
      ValidateFundingCodeandPO(walk.log(), code, statePO, walk.connection());
    };
  };
  const auto action = [](const std::string& type) {
    return [=](CatalogueWalk& walk) { ValidateActionCode(walk.log(), type, walk.connection()); };
  };
  const WalkCall order = [](CatalogueWalk& walk) {
    static_cast<void>(ValidateDuplicateManufacturerOrder(walk.log(), "1/5/2004", "P1", "HEPA", "1",
                                                         walk.connection()));
  };
  const WalkCall passedOn = [](CatalogueWalk& walk) {
    ValidateEventDateManufacturerProviderOrder(walk.log(), "1/5/2004", "P1", "HEPA", "1",
                                               walk.connection());
  };
  const WalkCall distribution = [](CatalogueWalk& walk) {
    static_cast<void>(ValidateDuplicateDepotProviderOrder(walk.log(), "1/5/2004", "1/5/2004", "D01",
                                                          "P1", "HEPA", "A1", walk.connection()));
  };
  const WalkCall adjustment = [](CatalogueWalk& walk) {
    static_cast<void>(ValidateDuplicateProviderInventoryAdjustment(
        walk.log(), "1/6/2004", 2, "D01", "P1", "HEPA", "A1", walk.connection()));
  };
  const WalkCall report = [](CatalogueWalk& walk) {
    static_cast<void>(ValidateDuplicateDosesAdmin(walk.log(), "P1", "HEPA", "2", "1", "1/5/2004",
                                                  walk.connection()));
  };
  const auto lot = [](const std::string& number) {
    return [=](CatalogueWalk& walk) {
      ValidateVaccineLot(walk.log(), "HEPA", number, walk.connection());
    };
  };
  const std::string duplicateOrder = "ValidateDuplicateManufacturerOrder";
  const std::string orderStatus = "ValidateEventDateManufacturerProviderOrder";

  found(20018, "ValidateDuplicateDepotProviderOrder", kOneDistribution + ";" + kOneDistribution,
        distribution);
  found(20032, "ValidateDuplicateDosesAdmin",
        "INSERT INTO dosesadm (pin, vaccine, dose, sector, adate) VALUES "
        "('P1', 'HEPA', 2, 1, '2004-01-05'), ('P1', 'HEPA', 2, 1, '2004-01-05')",
        report);
  add(20034, "ValidateVaccineLot", lot("A2"));
  add(20036, "ValidateActionCode", action("XX"));
  add(20037, "ValidateActionCode", action("TW"));
  found(20038, "ValidateDuplicateProviderInventoryAdjustment",
        kOneAdjustment + ";" + kOneAdjustment, adjustment);
  add(20046, "ValidateFundingCodeandPO", funding("3", " "));
  add(20048, "ValidateFundingCodeandPO", funding("7", ""));
  add(20049, "ValidateFundingCodeandPO", funding("9", "PO"));
  add(20093, "ValidateFundingCodeandPO", funding("1", "PO"));
  found(20055, duplicateOrder, Orders({"0", "0"}), order);
  found(20055, orderStatus, Orders({"5", "6"}), passedOn);
  found(20071, orderStatus, Orders({"5"}), passedOn);

  // No engine counts like this.
  const auto wrong = [&](std::int32_t code, const std::string& raiser, const WalkCall& call,
                         const std::string& query, const std::vector<Value>& answer) {
    proofs.push_back(
        {.code = code, .raiser = raiser, .call = call, .query = query, .answer = answer});
  };
  const std::vector<Value> negative = {std::int64_t{-1}};
  const std::vector<Value> two = {std::int64_t{1}, std::int64_t{1}};
  for (const std::vector<Value>& answer : {std::vector<Value>{}, negative}) {
    wrong(20018, "ValidateDuplicateDepotProviderOrder", distribution, "SELECT count(*)", answer);
    wrong(20032, "ValidateDuplicateDosesAdmin", report, "SELECT count(*)", answer);
    wrong(20034, "ValidateVaccineLot", lot("A1"), "SELECT count(*)", answer);
    wrong(20036, "ValidateActionCode", action("RE"), "SELECT count(*)", answer);
    wrong(20039, "ValidateDuplicateProviderInventoryAdjustment", adjustment, "SELECT count(*)",
          answer);
    wrong(20047, "ValidateFundingCodeandPO", funding("1", ""), "SELECT count(*)", answer);
  }
  for (const std::vector<Value>& answer : {std::vector<Value>{}, two, negative}) {
    wrong(20054, duplicateOrder, order, "AND seekid = 0", answer);
    wrong(20070, orderStatus, passedOn, "AND seekid <> 0", answer);
  }
}

void AddResultSetProofs(std::vector<Proof>& proofs) {
  // One row of two cells.
  const auto table = [] {
    cResultSet made;
    made.Data(std::make_shared<Collection>());
    made.Cols(2);
    made.AddRow();
    return made;
  };
  proofs.push_back({.code = 50000, .raiser = "GetValue", .call = [=](CatalogueWalk& /*walk*/) {
                      static_cast<void>(table().GetValue(2, 1));
                    }});
  proofs.push_back({.code = 50000, .raiser = "SetValue", .call = [=](CatalogueWalk& /*walk*/) {
                      table().SetValue(2, 1, "x");
                    }});
  proofs.push_back({.code = 50001, .raiser = "GetValue", .call = [=](CatalogueWalk& /*walk*/) {
                      static_cast<void>(table().GetValue(1, 3));
                    }});
}

const std::vector<Proof>& Proofs() {
  static const std::vector<Proof> proofs = [] {
    std::vector<Proof> made;
    AddOperationProofs(made);
    AddLookupProofs(made);
    AddProviderRoutineProofs(made);
    AddVaccineAndValueRoutineProofs(made);
    AddOrderAndInventoryRoutineProofs(made);
    AddResultSetProofs(made);
    return made;
  }();
  return proofs;
}

TEST_P(CatalogueWalk, IsRaised) {
  const Proof& proof = GetParam();
  const std::string description = DescriptionOf(proof);
  const bool ofATable = proof.raiser == "GetValue" || proof.raiser == "SetValue";
  if (!proof.rows.empty()) Execute(proof.rows);
  Connection& routines = connection();
  Connection& operations = *lotrix().Connection();
  if (!proof.query.empty()) {
    AnswerWrongly(routines);
    AnswerWrongly(operations);
  }
  const auto before = Tables();
  ForgetTrace();

  ExpectError(Refusal([&] { proof.call(*this); }), Coded(proof.code), description,
              ofATable ? "Lotrix" : "LOTRIX DLL");

  const std::vector<std::string> problems = ProblemLines();
  if (ofATable) {
    EXPECT_EQ(problems, std::vector<std::string>{});
  } else {
    ASSERT_FALSE(problems.empty());
    EXPECT_EQ(problems[0], "error Problem: In " +
                               (proof.loggedBy.empty() ? proof.raiser : proof.loggedBy) + "() " +
                               description);
  }
  EXPECT_EQ(Tables(), before);
}

std::string NameOf(const ::testing::TestParamInfo<Proof>& proof) {
  std::string name = std::to_string(proof.param.code) + "_" + proof.param.raiser + "_" +
                     std::to_string(proof.index);
  std::erase_if(name, [](char letter) { return letter == ' ' || letter == '-'; });
  return name;
}

INSTANTIATE_TEST_SUITE_P(Catalogue, CatalogueWalk, ::testing::ValuesIn(Proofs()), NameOf);

// --- The table as a whole -------------------------------------------------------

using RowAndRaiser = std::pair<std::string, std::string>;

RowAndRaiser Pair(std::int32_t code, int nth, const std::string& raiser) {
  return {std::to_string(code) + " " + RowOf(code, nth).message, raiser};
}

TEST(CatalogueCoverage, EveryRaiserOfEveryRowIsShownOrNamedAsUnreachable) {
  std::multiset<RowAndRaiser> listed;
  for (const CatalogueRow& row : Catalogue()) {
    ASSERT_FALSE(row.raisers.empty()) << row.message;
    for (const std::string& raiser : row.raisers) {
      listed.emplace(std::to_string(row.code) + " " + row.message, raiser);
    }
  }
  std::set<RowAndRaiser> shown;
  for (const Proof& proof : Proofs()) shown.insert(Pair(proof.code, proof.nth, proof.raiser));
  std::multiset<RowAndRaiser> covered(shown.begin(), shown.end());
  for (const Unreachable& raiser : UnreachableRaisers()) {
    EXPECT_FALSE(raiser.reason.empty());
    covered.insert(Pair(raiser.code, raiser.nth, raiser.raiser));
  }
  EXPECT_EQ(covered, listed);
}

TEST(CatalogueCoverage, EveryRowIsRaisedByACallAtLeastOnce) {
  std::set<std::pair<std::int32_t, int>> shown;
  for (const Proof& proof : Proofs()) shown.emplace(proof.code, proof.nth);
  EXPECT_EQ(shown.size(), Catalogue().size());
}

TEST(CatalogueCoverage, RowsStandInAscendingOrderAndAreAllDifferent) {
  std::set<std::pair<std::int32_t, std::string>> rows;
  std::int32_t last = 0;
  for (const CatalogueRow& row : Catalogue()) {
    EXPECT_GE(row.code, last);
    last = row.code;
    EXPECT_TRUE(rows.emplace(row.code, row.message).second) << row.code << row.message;
  }
}

// A name that goes into a message is given where, and only where, there is a place.
TEST(CatalogueCoverage, NamesAreGivenWhereTheyGoIn) {
  for (const Proof& proof : Proofs()) {
    const bool wanted = RowOf(proof.code, proof.nth).message.find('<') != std::string::npos;
    EXPECT_EQ(!proof.name.empty(), wanted) << proof.code << " " << proof.raiser;
  }
}

}  // namespace
}  // namespace lotrix::test

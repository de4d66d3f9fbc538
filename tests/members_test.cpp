#include "lotrix/members.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "tests/support/fixture.h"

namespace lotrix::test {
namespace {

using Arguments = std::vector<Argument>;

// What a client may know of a parameter.
struct Published {
  std::string name;
  ParameterType type;
  bool optional;
  std::optional<std::string> defaultText;
  bool operator==(const Published&) const = default;
};

void PrintTo(const Published& parameter, std::ostream* out) {
  *out << parameter.name << " " << ParameterTypeName(parameter.type)
       << (parameter.optional ? " optional" : "") << " ["
       << parameter.defaultText.value_or("no default") << "]";
}

Published Required(const std::string& name, ParameterType type = ParameterType::kString) {
  return {name, type, false, std::nullopt};
}
Published Optional(const std::string& name) {
  return {name, ParameterType::kString, true, std::nullopt};
}
Published OptionalOne(const std::string& name) { return {name, ParameterType::kString, true, "1"}; }

std::vector<Published> ParametersOf(const Member& member) {
  std::vector<Published> parameters;
  for (const Parameter& parameter : member.parameters) {
    std::optional<std::string> defaultText;
    if (parameter.defaultText) defaultText = std::string(*parameter.defaultText);
    parameters.push_back(
        {std::string(parameter.name), parameter.type, parameter.optional, defaultText});
  }
  return parameters;
}

Published OptionalVariant(const std::string& name) {
  return {name, ParameterType::kVariant, true, std::nullopt};
}
Published OptionalCount(const std::string& name) { return {name, ParameterType::kLong, true, "0"}; }

void ExpectMember(const std::string& name, std::uint32_t dispatchId, MemberKind kind,
                  const std::vector<Published>& parameters, const std::string& result = {}) {
  SCOPED_TRACE(name);
  const Member& member = MemberNamed(name);
  EXPECT_EQ(member.result, result);
  EXPECT_EQ(member.name, name);
  EXPECT_EQ(member.dispatchId, dispatchId);
  EXPECT_EQ(member.kind, kind);
  EXPECT_EQ(ParametersOf(member), parameters);
}

// --- The table ----------------------------------------------------------------

TEST(Members, TheConnectionMembers) {
  ExpectMember("Connection", 0x68030000, MemberKind::kPropertyGet, {}, "ADODB.Connection");
  ExpectMember("openConnection", 0x60030002, MemberKind::kMethod, {Required("aConnectionString")});
  ExpectMember("closeConnection", 0x60030003, MemberKind::kMethod, {});
}

TEST(Members, TheReads) {
  ExpectMember("manufacturerProviderOrderRead", 0x60030008, MemberKind::kMethod,
               {Required("aPIN"), Required("aShipmentBeginDate"), Optional("aVaccine"),
                Optional("aLotNumber"), Optional("aShipmentEndDate")},
               "cResultSet");
  ExpectMember("stockTableRead", 0x60030009, MemberKind::kMethod,
               {Optional("aPIN"), Optional("aVaccine"), Optional("aLotNumber"),
                Optional("aShipmentBeginDate"), Optional("aShipmentEndDate")},
               "cResultSet");
  ExpectMember("vaccineReferenceTableRead", 0x6003000A, MemberKind::kMethod, {}, "cResultSet");
  ExpectMember("inventoryOnHandRead", 0x6003000B, MemberKind::kMethod,
               {Required("aDepotPIN"), Optional("aVaccine")}, "cResultSet");
  ExpectMember("CheckVaccActive", 0x60030018, MemberKind::kMethod, {Required("aVaccine")});
}

TEST(Members, TheManufacturerOrder) {
  ExpectMember("manufacturerProviderOrderCreateUpdate", 0x6003000C, MemberKind::kMethod,
               {Required("anOrderDate"), Required("aPIN"), Required("aVaccine"),
                Required("aDoseCount", ParameterType::kLong), Required("aFundingSource"),
                OptionalOne("anExcessAllowance"), Optional("aStatePO"), Optional("aMfg")});
}

TEST(Members, TheProviderProfile) {
  ExpectMember("providerProfileUpdate", 0x6003000D, MemberKind::kMethod,
               {Required("aPIN"),
                Required("aFacilityLastName"),
                Required("aShippingContact"),
                Required("aShippingAddress1"),
                Required("aShippingAddress2"),
                Required("aShippingCity"),
                Required("aShippingState"),
                Required("aShippingZipCode"),
                Required("aShippingInstructions"),
                Required("aShippingPhoneNumber"),
                Required("aShippingFaxNumber"),
                Required("aMailContact"),
                Required("aMailAddress1"),
                Required("aMailAddress2"),
                Required("aMailCity"),
                Required("aMailState"),
                Required("aMailZipCode"),
                Required("aMailPhoneNumber"),
                Required("aMailFaxNumber"),
                Required("aVaricellaEligibilityStatus", ParameterType::kBoolean),
                OptionalVariant("aClassificationCode"),
                OptionalVariant("aVFCCertificationDate"),
                OptionalVariant("aPhoneExtension"),
                OptionalVariant("aFirstName"),
                OptionalVariant("aMiddleInitial"),
                OptionalVariant("aTitle"),
                OptionalVariant("aParentProviderID"),
                OptionalVariant("anAdditionalID"),
                OptionalVariant("anActiveStatus"),
                OptionalVariant("aSubdivision"),
                OptionalVariant("aCategory1"),
                OptionalVariant("aCategory2"),
                OptionalVariant("aCategory3")});
}

TEST(Members, TheInventoryAdjustment) {
  ExpectMember("providerInventoryAdjustmentUpdate", 0x6003000E, MemberKind::kMethod,
               {Required("aDepotPIN"), Required("anEntryDate"), Required("aTransactionDate"),
                Required("aTransactionType"), Required("aPIN"), Required("aVaccine"),
                Required("aLotNumber"), Required("aDoseCount", ParameterType::kLong)});
}

TEST(Members, TheShippingData) {
  ExpectMember("providerShippingDataUpdate", 0x6003000F, MemberKind::kMethod,
               {Required("aPIN"), Required("aFacilityLastName"), Required("aShippingContact"),
                Required("aShippingAddress1"), Required("aShippingAddress2"),
                Required("aShippingCity"), Required("aShippingState"), Required("aShippingZipCode"),
                Required("aShippingInstructions"), Required("aPhoneNumber"), Required("aFaxNumber"),
                OptionalVariant("aPhoneExtension"), OptionalVariant("aFirstName"),
                OptionalVariant("aMiddleInitial"), OptionalVariant("aTitle")});
}

TEST(Members, TheDosesAdministered) {
  ExpectMember("DosesAdministeredUpdate", 0x60030011, MemberKind::kMethod,
               {Required("aReportingDate"),
                Required("aPIN"),
                Required("aVaccine"),
                Required("aDoseInSeries"),
                OptionalOne("aSector"),
                OptionalCount("aDoseCountLessThanOne"),
                OptionalCount("aDoseCountForOneYear"),
                OptionalCount("aDoseCountForTwoYears"),
                OptionalCount("aDoseCountForThreetoFourYears"),
                OptionalCount("aDoseCountForFiveYears"),
                OptionalCount("aDoseCountForSixtoNineYears"),
                OptionalCount("aDoseCountForTentoFourteenYears"),
                OptionalCount("aDoseCountForFifteentoNineteenYears"),
                OptionalCount("aDoseCountForTwentytoTwentyFourYears"),
                OptionalCount("aDoseCountForTwentyFivetoFourtyFourYears"),
                OptionalCount("aDoseCountForFourtyFivetoSixtyFourYears"),
                OptionalCount("aDoseCountForGreaterThanSixtyFiveYears"),
                OptionalCount("anUnknown"),
                OptionalCount("aTotalDoses"),
                OptionalCount("aUserDefinedCategory1"),
                OptionalCount("aUserDefinedCategory2"),
                OptionalCount("aUserDefinedCategory3")});
}

TEST(Members, TheDepotOrder) {
  ExpectMember("DepotProviderOrderUpdate", 0x60030012, MemberKind::kMethod,
               {Required("aShipmentDate"), Required("aDepotID"), Required("aPIN"),
                Required("aVaccine"), Required("aDoseCount", ParameterType::kLong),
                Required("aLotNumber"), OptionalOne("anExcessAllow"), Optional("anOrderDate")});
}

TEST(Members, TheEnrollment) {
  ExpectMember("providerEnrollmentAddUpdate", 0x60030013, MemberKind::kMethod,
               {Required("aPIN"), Required("aSource"), Required("aAgeGroup"), Required("aAll"),
                Required("aMedicaid"), Required("aUninsured"), Required("aAmIndian"),
                Required("aFQHC_RHC"), Required("aVFC"), Required("aG317"), Required("aState")});
}

TEST(Members, TheAdditionalInformation) {
  ExpectMember("providerAdditionalInfoUpdate", 0x60030014, MemberKind::kMethod,
               {Required("aPIN"), Required("aProviderType"), Required("aClassification"),
                Required("aCurrentVFCCert"), Required("aCohort"), Required("aEmpIdNum"),
                Required("aQuorvin")});
}

TEST(Members, ThePhysicians) {
  ExpectMember("physicianAddUpdate", 0x60030015, MemberKind::kMethod,
               {Required("aPIN"), Required("aLastName"), Required("aFirstName"),
                Required("aMiddleInitial"), Required("aTitle"), Required("aSiteMedID"),
                Required("aMedicaidNum"), Required("aLicenseNum")});
  ExpectMember("physicianDeleteByPin", 0x60030017, MemberKind::kMethod, {Required("aPIN")});
}

TEST(Members, TheCountedInventory) {
  ExpectMember("provinvAdd", 0x60030016, MemberKind::kMethod,
               {Required("aPIN"), Required("aVacc"), Required("aInv"), Required("aIdate")});
}

TEST(Members, WhichOfThemAnswer) {
  for (const char* const read : {"manufacturerProviderOrderRead", "stockTableRead",
                                 "vaccineReferenceTableRead", "inventoryOnHandRead"}) {
    EXPECT_EQ(MemberNamed(read).result, "cResultSet") << read;
  }
  for (const char* const other : {"openConnection", "closeConnection", "CheckVaccActive",
                                  "manufacturerProviderOrderCreateUpdate", "providerProfileUpdate",
                                  "providerInventoryAdjustmentUpdate", "providerShippingDataUpdate",
                                  "DosesAdministeredUpdate", "DepotProviderOrderUpdate",
                                  "providerEnrollmentAddUpdate", "providerAdditionalInfoUpdate",
                                  "physicianAddUpdate", "provinvAdd", "physicianDeleteByPin"}) {
    EXPECT_EQ(MemberNamed(other).result, "") << other;
  }
  EXPECT_EQ(MemberNamed("Connection").result, "ADODB.Connection");
}

TEST(Members, TheTypesHaveTheirPublishedNames) {
  EXPECT_EQ(ParameterTypeName(ParameterType::kString), "String");
  EXPECT_EQ(ParameterTypeName(ParameterType::kLong), "Long");
  EXPECT_EQ(ParameterTypeName(ParameterType::kBoolean), "Boolean");
  EXPECT_EQ(ParameterTypeName(ParameterType::kVariant), "Variant");
}

// All that may ever be published, in interface order.
const std::vector<std::pair<std::string, std::uint32_t>>& Interface() {
  static const std::vector<std::pair<std::string, std::uint32_t>> members = {
      {"Connection", 0x68030000},
      {"openConnection", 0x60030002},
      {"closeConnection", 0x60030003},
      {"manufacturerProviderOrderRead", 0x60030008},
      {"stockTableRead", 0x60030009},
      {"vaccineReferenceTableRead", 0x6003000A},
      {"inventoryOnHandRead", 0x6003000B},
      {"manufacturerProviderOrderCreateUpdate", 0x6003000C},
      {"providerProfileUpdate", 0x6003000D},
      {"providerInventoryAdjustmentUpdate", 0x6003000E},
      {"providerShippingDataUpdate", 0x6003000F},
      {"DosesAdministeredUpdate", 0x60030011},
      {"DepotProviderOrderUpdate", 0x60030012},
      {"providerEnrollmentAddUpdate", 0x60030013},
      {"providerAdditionalInfoUpdate", 0x60030014},
      {"physicianAddUpdate", 0x60030015},
      {"provinvAdd", 0x60030016},
      {"physicianDeleteByPin", 0x60030017},
      {"CheckVaccActive", 0x60030018}};
  return members;
}

TEST(Members, AreExactlyNineteenInInterfaceOrderUnderTheirOwnIdentifiers) {
  std::vector<std::pair<std::string, std::uint32_t>> members;
  for (const Member& member : Members()) {
    members.emplace_back(std::string(member.name), member.dispatchId);
  }
  EXPECT_EQ(members.size(), 19U);
  EXPECT_EQ(members, Interface());
}

TEST(Members, OnlyTheConnectionIsAProperty) {
  for (const Member& member : Members()) {
    EXPECT_EQ(member.kind == MemberKind::kPropertyGet, member.name == "Connection") << member.name;
  }
}

TEST(Members, RequiredParametersStandBeforeOptionalOnes) {
  for (const Member& member : Members()) {
    bool optional = false;
    for (const Parameter& parameter : member.parameters) {
      EXPECT_TRUE(parameter.optional || !optional) << member.name << " " << parameter.name;
      optional = parameter.optional;
    }
  }
}

TEST(Members, AreFoundWithoutRegardToCase) {
  for (const char* const name :
       {"checkvaccactive", "CHECKVACCACTIVE", "CheckVaccActive", "cHECKvACCaCTIVE"}) {
    EXPECT_EQ(MemberNamed(name).dispatchId, 0x60030018U) << name;
  }
}

TEST(Members, OneThatIsNotPublishedIsUnknown) {
  for (const char* const name :
       {"", " ", "nothing", "stockTableRead ", " stockTableRead", "stockTableRead()", "GetNextID",
        "VerifyVaccineContract", "Class_Initialize", "Class_Terminate", "GetConnection"}) {
    SCOPED_TRACE(name);
    const Error error = Refusal([&] { static_cast<void>(MemberNamed(name)); });
    EXPECT_EQ(error.number(), 438);
    EXPECT_EQ(error.source(), "Lotrix");
    EXPECT_FALSE(error.description().empty());
  }
}

// --- Calls ---------------------------------------------------------------------

class MemberCalls : public DatabaseTest {
 protected:
  void SetUp() override {
    Execute(
        "INSERT INTO provider (pin, sector, active, codes) VALUES ('P1', 15, 'Y', ''), "
        "('D01', 30, 'Y', '');"
        "INSERT INTO funding (fundcode) VALUES ('1'), ('3');"
        "INSERT INTO pvaccref (vaccine, maker, \"begin\", \"end\", minbulk, unitsize, pkgsize, "
        "ndcno, cost, contractid, sel_maker, dos_wind, excfunds, descrip, locactiv, maxno) VALUES "
        "('HEPA', 'MERCK', '2004-01-01', '2004-12-31', 1, 1, 10, 'N', 12.5, 'C', 'S', 'W', 'E', "
        "'D', (1 = 0), 3);"
        "INSERT INTO stock (pin, datein, lot, vaccine, tracking) VALUES ('P1', '2004-01-05', "
        "'A1', 'HEPA', 'T'), ('P1', '2004-01-06', 'A2', 'HEPA', 'T')");
    Watch(*lotrix().Connection());
    ForgetTrace();
  }

  CallResult ByName(const std::string& member, const NamedArguments& arguments) {
    return Call(lotrix(), MemberNamed(member), arguments);
  }
  CallResult InOrder(const std::string& member, const Arguments& arguments) {
    return Call(lotrix(), MemberNamed(member), std::span<const Argument>(arguments));
  }

  // Refused before the member runs: nothing is logged, no statement runs.
  void ExpectNotCalled(const std::function<void()>& call, std::int32_t number) {
    ForgetTrace();
    static_cast<void>(Statements());
    const Error error = Refusal(call);
    EXPECT_EQ(error.number(), number);
    EXPECT_EQ(error.source(), "Lotrix");
    EXPECT_FALSE(error.description().empty());
    EXPECT_EQ(Trace(), Lines{});
    EXPECT_EQ(Statements(), Lines{});
  }

  // An order's arguments by name, all of them right.
  static NamedArguments OrderArguments() {
    return {{"anOrderDate", Text("1/5/2004")}, {"aPIN", Text("P1")},
            {"aVaccine", Text("HEPA")},        {"aDoseCount", Number(20)},
            {"aFundingSource", Text("1")},     {"aMfg", Text("MERCK")}};
  }
  // The same with one argument in place of its like, which may be omitted.
  static NamedArguments OrderWith(const std::string& name, const Argument& value) {
    NamedArguments arguments = OrderArguments();
    for (auto& argument : arguments) {
      if (argument.first == name) {
        argument.second = value;
        return arguments;
      }
    }
    arguments.emplace_back(name, value);
    return arguments;
  }
  static NamedArguments OrderWithout(const std::string& name) {
    NamedArguments arguments = OrderArguments();
    std::erase_if(arguments, [&](const auto& argument) { return argument.first == name; });
    return arguments;
  }

  static Argument Text(const std::string& text) { return Value(text); }
  static Argument Number(std::int64_t number) { return Value(number); }
  static Argument Array() { return Value(std::make_shared<Collection>()); }

  // The vaccine that reaches the statement of CheckVaccActive.
  std::string VaccineAsked(const Argument& vaccine) {
    static_cast<void>(Statements());
    InOrder("CheckVaccActive", {vaccine});
    const std::string before = "SELECT count(*) FROM pvaccref WHERE ltrim(rtrim(vaccine)) == '";
    const std::string after = "' AND locactiv = .F.";
    const Lines statements = Statements();
    if (statements.size() != 1 || statements[0].size() < before.size() + after.size()) {
      return "no such statement";
    }
    return statements[0].substr(before.size(), statements[0].size() - before.size() - after.size());
  }
  // The count of an order that was given `count`.
  std::string DosesOrdered(const Argument& count) {
    Execute("DELETE FROM neworder");
    ByName("manufacturerProviderOrderCreateUpdate", OrderWith("aDoseCount", count));
    const std::vector<Row> rows = Query("SELECT orddose FROM neworder");
    return rows.size() == 1 ? rows[0][0] : "no order";
  }
};

const std::string kOrder = "manufacturerProviderOrderCreateUpdate";

TEST_F(MemberCalls, AReadAnswersWithItsTable) {
  const CallResult result = ByName("stockTableRead", {});
  ASSERT_TRUE(std::holds_alternative<cResultSet>(result));
  EXPECT_EQ(std::get<cResultSet>(result).Rows(), 2);
  EXPECT_EQ(Trace(),
            (Lines{"information Begin: stockTableRead()", "information Begin: Get Connection()",
                   "information End: GetConnection()", "information End: stockTableRead()"}));
}

TEST_F(MemberCalls, TheConnectionPropertyAnswersWithTheConnection) {
  const std::shared_ptr<Connection> connection = lotrix().Connection();
  ForgetTrace();
  const CallResult result = ByName("Connection", {});
  ASSERT_TRUE(std::holds_alternative<std::shared_ptr<Connection>>(result));
  EXPECT_EQ(std::get<std::shared_ptr<Connection>>(result), connection);
  EXPECT_EQ(Trace(),
            (Lines{"information Begin: Get Connection()", "information End: GetConnection()"}));
}

TEST_F(MemberCalls, OpenAndCloseConnectionReachTheObject) {
  const std::shared_ptr<Connection> connection = lotrix().Connection();
  ForgetTrace();
  EXPECT_TRUE(std::holds_alternative<Empty>(InOrder("closeConnection", {})));
  EXPECT_EQ(connection->State(), ObjectState::kClosed);
  EXPECT_TRUE(std::holds_alternative<Empty>(
      ByName("openConnection", {{"aConnectionString", Text("Provider=Nowhere")}})));
  EXPECT_EQ(Trace(),
            (Lines{"information Begin: closeConnection()", "information End: closeConnection()",
                   "information Begin: openConnection()", "information Begin: openConnection()"}));
  ExpectError(Refusal([&] { InOrder("Connection", {}); }), 3706,
              "Provider cannot be found. It may not be properly installed.");
}

TEST_F(MemberCalls, EveryReadIsReached) {
  const auto firstLine = [&](const std::string& member, const Arguments& arguments) {
    ForgetTrace();
    EXPECT_TRUE(std::holds_alternative<cResultSet>(InOrder(member, arguments))) << member;
    const Lines lines = Trace();
    return lines.empty() ? "no line" : lines[0];
  };
  EXPECT_EQ(firstLine("manufacturerProviderOrderRead", {Text("P1"), Text("1/5/2004")}),
            "information Begin: manufacturerProviderOrderRead()");
  EXPECT_EQ(firstLine("vaccineReferenceTableRead", {}),
            "information Begin: vaccineReferenceTableRead()");
  EXPECT_EQ(firstLine("inventoryOnHandRead", {Text("D01")}),
            "information Begin: inventoryOnHandRead()");
}

TEST_F(MemberCalls, CheckVaccActiveAnswersWithNothing) {
  EXPECT_TRUE(
      std::holds_alternative<Empty>(ByName("CheckVaccActive", {{"aVaccine", Text("HEPA")}})));
  EXPECT_EQ(shown(), Lines{"Vaccine is Active"});
}

TEST_F(MemberCalls, ArgumentsByNameReachTheirParametersInAnyOrderAndCase) {
  EXPECT_TRUE(std::holds_alternative<Empty>(ByName(kOrder, {{"AMFG", Text("MERCK")},
                                                            {"adosecount", Number(20)},
                                                            {"ASTATEPO", Text("PO")},
                                                            {"aFundingSource", Text("3")},
                                                            {"anexcessallowance", Text("5")},
                                                            {"Avaccine", Text("HEPA")},
                                                            {"apin", Text("P1")},
                                                            {"ANORDERDATE", Text("1/5/2004")}})));
  EXPECT_EQ(Query("SELECT pin, vaccine, orddate, orddose, fcode1, maker FROM neworder"),
            (std::vector<Row>{{"P1", "HEPA", "2004-01-05", "20", "3", "MERCK"}}));
}

TEST_F(MemberCalls, ArgumentsInOrderReachTheirParameters) {
  InOrder(kOrder, {Text("1/5/2004"), Text("P1"), Text("HEPA"), Number(20), Text("3"), Text("5"),
                   Text("PO"), Text("MERCK")});
  EXPECT_EQ(Query("SELECT pin, vaccine, orddate, orddose, fcode1, maker FROM neworder"),
            (std::vector<Row>{{"P1", "HEPA", "2004-01-05", "20", "3", "MERCK"}}));
}

TEST_F(MemberCalls, TheReadsTakeTheirArgumentsInTheirOwnOrders) {
  const std::string query =
      "SELECT Pin, Datein, Doses, Lot, Vaccine, Maker, Expiry FROM Stock WHERE "
      "ltrim(rtrim(Vaccine)) = 'HEPA' AND ltrim(rtrim(Pin)) = 'P1' AND  "
      "ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = 'A1'  AND  Datein BETWEEN {1/1/2004}  "
      "AND {1/31/2004}  AND  tracking != ' '  and lot != ' '  order by datein desc ";
  InOrder("stockTableRead",
          {Text("P1"), Text("HEPA"), Text("A1"), Text("1/1/2004"), Text("1/31/2004")});
  EXPECT_EQ(Statements().back(), query);
  InOrder("manufacturerProviderOrderRead",
          {Text("P1"), Text("1/1/2004"), Text("HEPA"), Text("A1"), Text("1/31/2004")});
  EXPECT_EQ(Statements().back(), query);
}

// Every argument of a write has a value of its own, so that none can take the place
// of another.
TEST_F(MemberCalls, TheProfilesArgumentsReachTheirColumns) {
  Execute(
      "INSERT INTO sectoref (sector) VALUES (17); INSERT INTO subdiv (subdiv) VALUES ('NORTH');"
      "INSERT INTO nextid (ctablename, inextid) VALUES ('PROVIDER', 40)");
  const Arguments arguments = {Text("NEW1"),
                               Text("NAME"),
                               Text("CONTACT"),
                               Text("LINE1"),
                               Text("LINE2"),
                               Text("CITY"),
                               Text("ST"),
                               Text("62701"),
                               Text("NOTE"),
                               Text("(217) 555-0101"),
                               Text("(217) 555-0102"),
                               Text("MCONTACT"),
                               Text("MLINE1"),
                               Text("MLINE2"),
                               Text("MCITY"),
                               Text("MS"),
                               Text("62702"),
                               Text("(217) 555-0103"),
                               Text("(217) 555-0104"),
                               Value(true),
                               Number(17),
                               Text("1/5/2004"),
                               Text("EXT"),
                               Text("FIRST"),
                               Text("I"),
                               Text("TITLE"),
                               Text("LINK"),
                               Text("ALPHA"),
                               Text("N"),
                               Text("NORTH"),
                               Text("C1"),
                               Text("C2"),
                               Text("C3")};
  EXPECT_TRUE(std::holds_alternative<Empty>(InOrder("providerProfileUpdate", arguments)));
  const std::string columns =
      "SELECT lastname, contact, address, addres2, city, state, zipcode, note, phone, fax, "
      "ml_contact, ml_address, ml_addres2, ml_city, ml_state, ml_zipcode, phone2, fax2, codes, "
      "sector, datevfc, extension, firstname, initial, title, linkpin, alphaid, active, subdiv, "
      "cat1, cat2, cat3 FROM provider WHERE pin = ";
  const Row values = {"NAME",
                      "CONTACT",
                      "LINE1",
                      "LINE2",
                      "CITY",
                      "ST",
                      "62701",
                      "NOTE",
                      "(217) 555-0101",
                      "(217) 555-0102",
                      "MCONTACT",
                      "MLINE1",
                      "MLINE2",
                      "MCITY",
                      "MS",
                      "62702",
                      "(217) 555-0103",
                      "(217) 555-0104",
                      "V",
                      "17",
                      "2004-01-05",
                      "EXT",
                      "FIRST",
                      "I",
                      "TITLE",
                      "LINK",
                      "ALPHA",
                      "N",
                      "NORTH",
                      "C1",
                      "C2",
                      "C3"};
  EXPECT_EQ(Query(columns + "'NEW1'"), std::vector<Row>{values});

  NamedArguments named;
  const Member& member = MemberNamed("providerProfileUpdate");
  for (std::size_t index = arguments.size(); index-- > 0;) {
    named.emplace_back(std::string(member.parameters[index].name), arguments[index]);
  }
  named.back().second = Text("NEW2");
  ByName("providerProfileUpdate", named);
  EXPECT_EQ(Query(columns + "'NEW2'"), std::vector<Row>{values});
}

TEST_F(MemberCalls, AnOmittedVariantIsMissingAndNotEmpty) {
  Execute(
      "UPDATE provider SET extension = '1', firstname = '2', initial = '3', title = '4' "
      "WHERE pin = 'P1'");
  Arguments arguments = {Text("P1"),
                         Text("NAME"),
                         Text("CONTACT"),
                         Text("LINE1"),
                         Text("LINE2"),
                         Text("CITY"),
                         Text("ST"),
                         Text("62701"),
                         Text("NOTE"),
                         Text("(217) 555-0101"),
                         Text("(217) 555-0102")};
  const std::string query =
      "SELECT extension, firstname, initial, title FROM provider WHERE pin = 'P1'";
  InOrder("providerShippingDataUpdate", arguments);
  EXPECT_EQ(Query(query), (std::vector<Row>{{"1", "2", "3", "4"}}));
  arguments.insert(arguments.end(), {Text(""), std::nullopt, Text("x"), std::nullopt});
  InOrder("providerShippingDataUpdate", arguments);
  EXPECT_EQ(Query(query), (std::vector<Row>{{"", "2", "X", "4"}}));
}

TEST_F(MemberCalls, TheShippingDatasArgumentsReachTheirColumns) {
  InOrder("providerShippingDataUpdate",
          {Text("P1"), Text("NAME"), Text("CONTACT"), Text("LINE1"), Text("LINE2"), Text("CITY"),
           Text("ST"), Text("62701"), Text("NOTE"), Text("(217) 555-0101"), Text("(217) 555-0102"),
           Text("EXT"), Text("FIRST"), Text("I"), Text("TITLE")});
  EXPECT_EQ(Query("SELECT lastname, contact, address, addres2, city, state, zipcode, note, phone, "
                  "fax, extension, firstname, initial, title FROM provider WHERE pin = 'P1'"),
            (std::vector<Row>{{"NAME", "CONTACT", "LINE1", "LINE2", "CITY", "ST", "62701", "NOTE",
                               "(217) 555-0101", "(217) 555-0102", "EXT", "FIRST", "I", "TITLE"}}));
}

TEST_F(MemberCalls, TheDosesArgumentsReachTheirColumns) {
  Execute("INSERT INTO nextid (ctablename, inextid) VALUES ('DOSESADM', 40)");
  Arguments arguments = {Text("1/5/2004"), Text("P1"), Text("HEPA"), Text("2"), Text("2")};
  for (std::int64_t group = 1; group <= 13; ++group) arguments.push_back(Number(group));
  arguments.insert(arguments.end(), {Number(91), Number(101), Number(102), Number(103)});
  InOrder("DosesAdministeredUpdate", arguments);
  InOrder("DosesAdministeredUpdate", {Text("1/6/2004"), Text("P1"), Text("HEPA"), Text("2")});
  EXPECT_EQ(
      Query("SELECT adate, pin, vaccine, dose, sector, g1, g2, g3, g4, g5, g6, g7, g8, g9, g10, "
            "g11, g12, g13, rowtot, dauzr1, dauzr2, dauzr3 FROM dosesadm ORDER BY adate"),
      (std::vector<Row>{
          {"2004-01-05", "P1", "HEPA", "2",  "2",  "1",  "2",  "3",  "4",   "5",   "6",
           "7",          "8",  "9",    "10", "11", "12", "13", "91", "101", "102", "103"},
          {"2004-01-06", "P1", "HEPA", "2", "1", "0", "0", "0", "0", "0", "0",
           "0",          "0",  "0",    "0", "0", "0", "0", "0", "0", "0", "0"}}));
}

TEST_F(MemberCalls, TheAdjustmentsArgumentsReachTheirColumns) {
  Execute("INSERT INTO actref (status, action) VALUES ('RE', 2)");
  InOrder("providerInventoryAdjustmentUpdate",
          {Text("D01"), Text("1/5/2004"), Text("1/6/2004"), Text("RE"), Text("P1"), Text("HEPA"),
           Text("A1"), Number(7)});
  EXPECT_EQ(Query("SELECT frompin, input, dateout, action, pin, vaccine, lot, doses FROM distrib"),
            (std::vector<Row>{{"D01", "2004-01-05", "2004-01-06", "2", "P1", "HEPA", "A1", "7"}}));
}

TEST_F(MemberCalls, TheDepotOrdersArgumentsReachTheirColumns) {
  Execute("INSERT INTO nextid (ctablename, inextid) VALUES ('DISTRIB', 1), ('SEEKDIST', 1)");
  const Arguments arguments = {Text("1/5/2004"), Text("D01"), Text("P1"), Text("HEPA"),
                               Number(20),       Text("A1"),  Text("5"),  Text("1/4/2004")};
  InOrder("DepotProviderOrderUpdate", arguments);
  EXPECT_EQ(Query("SELECT orddate, pin, vaccine, orddose FROM neworder"),
            (std::vector<Row>{{"2004-01-05", "P1", "HEPA", "20"}}));
  // The depot and the lot show in the distribution that they find.
  Execute(
      "INSERT INTO distrib (frompin, pin, vaccine, lot, dateout, action, doses) VALUES "
      "('D01', 'P1', 'HEPA', 'A1', '2004-01-05', 1, 7)");
  InOrder("DepotProviderOrderUpdate", arguments);
  EXPECT_EQ(Query("SELECT doses FROM distrib"), (std::vector<Row>{{"27"}}));
  EXPECT_EQ(Query("SELECT count(*) FROM neworder"), (std::vector<Row>{{"1"}}));
}

TEST_F(MemberCalls, TheEnrollmentsArgumentsReachTheirColumns) {
  InOrder("providerEnrollmentAddUpdate",
          {Text("P1"), Text("B"), Text("3"), Text("11"), Text("12"), Text("13"), Text("14"),
           Text("15"), Text("16"), Text("17"), Text("18")});
  EXPECT_EQ(Query("SELECT pin, ensource, allkids3, medicaid3, uninsured3, amindian3, fqhc_rhc3, "
                  "vfckids3, g317kids3, statekids3 FROM enroll"),
            (std::vector<Row>{{"P1", "B", "11", "12", "13", "14", "15", "16", "17", "18"}}));
}

TEST_F(MemberCalls, TheAdditionalInformationsArgumentsReachTheirColumns) {
  InOrder("providerAdditionalInfoUpdate", {Text("P1"), Text("TYPE"), Text("17"), Text("1/5/2004"),
                                           Text("COHORT"), Text("EMP"), Text("NO")});
  EXPECT_EQ(
      Query("SELECT cat2, sector, datevfc, cat4, alphaid, cat1 FROM provider WHERE pin = 'P1'"),
      (std::vector<Row>{{"TYPE", "17", "2004-01-05", "COHORT", "EMP", "NO"}}));
}

TEST_F(MemberCalls, ThePhysiciansArgumentsReachTheirColumns) {
  InOrder("physicianAddUpdate", {Text("P1"), Text("LAST"), Text("FIRST"), Text("I"), Text("TITLE"),
                                 Text("SITE"), Text("MEDICAID"), Text("LICENSE")});
  EXPECT_EQ(
      Query("SELECT pin, lastname, firstname, initial, title, other1, medicaidno, "
            "medlicense FROM physicn"),
      (std::vector<Row>{{"P1", "LAST", "FIRST", "I", "TITLE", "SITE", "MEDICAID", "LICENSE"}}));
  InOrder("physicianDeleteByPin", {Text("P1")});
  EXPECT_EQ(Query("SELECT count(*) FROM physicn"), (std::vector<Row>{{"0"}}));
}

TEST_F(MemberCalls, TheCountedInventorysArgumentsReachTheirColumns) {
  Execute("INSERT INTO nextid (ctablename, inextid) VALUES ('PROVHAS', 40)");
  InOrder("provinvAdd", {Text("P1"), Text("HEPA"), Text("12"), Text("1/5/2004")});
  EXPECT_EQ(Query("SELECT pin, vaccine, doses, idate, provhasid FROM provhas"),
            (std::vector<Row>{{"P1", "HEPA", "12", "2004-01-05", "41"}}));
}

TEST_F(MemberCalls, AnOmittedOptionalTextIsTheEmptyText) {
  const std::string query =
      "SELECT Pin, Datein, Doses, Lot, Vaccine, Maker, Expiry FROM Stock WHERE  "
      "ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = 'A1'  AND  tracking != ' '  and lot != ' "
      "'  order by datein desc ";
  ByName("stockTableRead", {{"aLotNumber", Text("A1")}});
  EXPECT_EQ(Statements(), Lines{query});
  ByName("stockTableRead", {{"aPIN", std::nullopt}, {"aLotNumber", Text("A1")}});
  EXPECT_EQ(Statements(), Lines{query});
  InOrder("stockTableRead", {std::nullopt, std::nullopt, Text("A1")});
  EXPECT_EQ(Statements(), Lines{query});
  InOrder("stockTableRead", {std::nullopt, std::nullopt, Text("A1"), std::nullopt, std::nullopt});
  EXPECT_EQ(Statements(), Lines{query});
}

TEST_F(MemberCalls, AnOmittedExcessAllowanceIsOne) {
  ByName(kOrder, OrderArguments());
  EXPECT_EQ(Query("SELECT orddose FROM neworder"), (std::vector<Row>{{"20"}}));
  InOrder(kOrder, {Text("1/6/2004"), Text("P1"), Text("HEPA"), Number(30), Text("1"), std::nullopt,
                   std::nullopt, Text("MERCK")});
  EXPECT_EQ(Query("SELECT orddose FROM neworder ORDER BY orddose"),
            (std::vector<Row>{{"20"}, {"30"}}));
}

TEST_F(MemberCalls, WhatAMemberThrowsComesOutAsItIs) {
  ExpectError(Refusal([&] { InOrder("inventoryOnHandRead", {Text("")}); }), 20022,
              "A NULL depot pin is entered");
  EXPECT_EQ(Trace(),
            (Lines{"information Begin: inventoryOnHandRead()",
                   "error Problem: In inventoryOnHandRead() A NULL depot pin is entered"}));
}

// --- Refused before the member runs -----------------------------------------------

TEST_F(MemberCalls, AnUnknownArgumentName) {
  for (const char* const name : {"aNothing", "", "aPIN ", "PIN"}) {
    SCOPED_TRACE(name);
    ExpectNotCalled([&] { ByName("stockTableRead", {{name, Text("x")}}); }, 448);
  }
  ExpectNotCalled([&] { ByName("closeConnection", {{"aPIN", Text("x")}}); }, 448);
  ExpectNotCalled([&] { ByName("stockTableRead", {{"aNothing", std::nullopt}}); }, 448);
}

TEST_F(MemberCalls, AnUnknownArgumentNameComesBeforeAMissingOneAndBeforeConversions) {
  ExpectNotCalled([&] { ByName(kOrder, {{"aNothing", Text("x")}}); }, 448);
  NamedArguments arguments = OrderWith("aDoseCount", Text("many"));
  arguments.emplace_back("aNothing", Text("x"));
  ExpectNotCalled([&] { ByName(kOrder, arguments); }, 448);
}

TEST_F(MemberCalls, TooManyArguments) {
  ExpectNotCalled([&] { InOrder("closeConnection", {Text("x")}); }, 450);
  ExpectNotCalled([&] { InOrder("Connection", {Text("x")}); }, 450);
  ExpectNotCalled([&] { InOrder("CheckVaccActive", {Text("x"), Text("y")}); }, 450);
  ExpectNotCalled([&] { InOrder("vaccineReferenceTableRead", {std::nullopt}); }, 450);
  ExpectNotCalled([&] { InOrder("stockTableRead", Arguments(6, Text(""))); }, 450);
}

TEST_F(MemberCalls, TooManyArgumentsComeBeforeAMissingOneAndBeforeConversions) {
  ExpectNotCalled([&] { InOrder("CheckVaccActive", {std::nullopt, Text("x")}); }, 450);
  ExpectNotCalled([&] { InOrder("CheckVaccActive", {Array(), Text("x")}); }, 450);
}

TEST_F(MemberCalls, ARequiredArgumentThatIsMissing) {
  for (const char* const name :
       {"anOrderDate", "aPIN", "aVaccine", "aDoseCount", "aFundingSource"}) {
    SCOPED_TRACE(name);
    ExpectNotCalled([&] { ByName(kOrder, OrderWithout(name)); }, 449);
    ExpectNotCalled([&] { ByName(kOrder, OrderWith(name, std::nullopt)); }, 449);
  }
  ExpectNotCalled([&] { ByName("openConnection", {}); }, 449);
  ExpectNotCalled([&] { ByName("CheckVaccActive", {}); }, 449);
  ExpectNotCalled([&] { InOrder("inventoryOnHandRead", {}); }, 449);
  ExpectNotCalled([&] { InOrder("inventoryOnHandRead", {std::nullopt, Text("HEPA")}); }, 449);
  ExpectNotCalled([&] { InOrder("manufacturerProviderOrderRead", {Text("P1")}); }, 449);
  EXPECT_EQ(Query("SELECT count(*) FROM neworder"), (std::vector<Row>{{"0"}}));
}

TEST_F(MemberCalls, AMissingArgumentComesBeforeConversionsEvenOfThoseBeforeIt) {
  NamedArguments arguments = OrderWithout("aFundingSource");
  for (auto& argument : arguments) argument.second = Array();
  ExpectNotCalled([&] { ByName(kOrder, arguments); }, 449);
  ExpectNotCalled([&] { InOrder("manufacturerProviderOrderRead", {Array()}); }, 449);
}

TEST_F(MemberCalls, ConversionsRunFromLeftToRight) {
  const Argument tooLarge = Number(std::int64_t{1} << 40U);
  // A count that overflows between two texts that are none.
  ExpectNotCalled(
      [&] {
        InOrder(kOrder, {Text("1/5/2004"), Text("P1"), Array(), tooLarge, Text("1"), Text("1")});
      },
      13);
  ExpectNotCalled(
      [&] {
        InOrder(kOrder, {Text("1/5/2004"), Text("P1"), Text("HEPA"), tooLarge, Array(), Text("1")});
      },
      6);
  ExpectNotCalled(
      [&] {
        ByName(kOrder, {{"aFundingSource", Array()},
                        {"aDoseCount", tooLarge},
                        {"aVaccine", Text("HEPA")},
                        {"aPIN", Text("P1")},
                        {"anOrderDate", Text("1/5/2004")}});
      },
      6);
}

TEST_F(MemberCalls, EveryConversionIsDoneBeforeTheMemberRuns) {
  ExpectNotCalled(
      [&] {
        InOrder(kOrder, {Text("1/5/2004"), Text("P1"), Text("HEPA"), Number(0), Text("1"),
                         Text("1"), Text(""), Array()});
      },
      13);
}

TEST_F(MemberCalls, AnArrayOrObjectIsOfTheWrongType) {
  ExpectNotCalled([&] { InOrder("CheckVaccActive", {Array()}); }, 13);
  ExpectNotCalled([&] { ByName(kOrder, OrderWith("aDoseCount", Array())); }, 13);
  ExpectNotCalled([&] { ByName("openConnection", {{"aConnectionString", Array()}}); }, 13);
}

TEST_F(MemberCalls, ATextThatIsNotUtf8) {
  for (const char* const bad : {"\xFF", "A\xC3", "\xED\xA0\x80", "\xC0\x80"}) {
    ExpectNotCalled([&] { InOrder("CheckVaccActive", {Text(bad)}); }, 5);
    ExpectNotCalled([&] { ByName(kOrder, OrderWith("aMfg", Text(bad))); }, 5);
    ExpectNotCalled([&] { ByName("openConnection", {{"aConnectionString", Text(bad)}}); }, 5);
  }
}

TEST_F(MemberCalls, ANameGivenTwice) {
  ExpectNotCalled(
      [&] {
        ByName("CheckVaccActive", {{"aVaccine", Text("A")}, {"AVACCINE", Text("B")}});
      },
      5);
}

// --- Conversions to the parameters' types -------------------------------------------

TEST_F(MemberCalls, NumbersAndLogicalsBecomeTexts) {
  EXPECT_EQ(VaccineAsked(Text("HEPA")), "HEPA");
  EXPECT_EQ(VaccineAsked(Number(42)), "42");
  EXPECT_EQ(VaccineAsked(Number(-7)), "-7");
  EXPECT_EQ(VaccineAsked(Value(12.5)), "12.5");
  EXPECT_EQ(VaccineAsked(Value(0.1 + 0.2)), "0.3");
  EXPECT_EQ(VaccineAsked(Value(-0.0)), "0");
  EXPECT_EQ(VaccineAsked(Value(1e15)), "1E+15");
  EXPECT_EQ(VaccineAsked(Value(0.00001)), "0.00001");
  EXPECT_EQ(VaccineAsked(Value(true)), "True");
  EXPECT_EQ(VaccineAsked(Value(false)), "False");
}

TEST_F(MemberCalls, NumbersAndTextsBecomeWholeNumbers) {
  EXPECT_EQ(DosesOrdered(Number(2147483647)), "2147483647");
  EXPECT_EQ(DosesOrdered(Text("20")), "20");
  EXPECT_EQ(DosesOrdered(Text(" 1,000 ")), "1000");
  EXPECT_EQ(DosesOrdered(Text("&H1F")), "31");
  EXPECT_EQ(DosesOrdered(Text("2147483647.4")), "2147483647");
}

TEST_F(MemberCalls, AFractionIsRoundedHalfToEven) {
  EXPECT_EQ(DosesOrdered(Value(1.5)), "2");
  EXPECT_EQ(DosesOrdered(Value(2.5)), "2");
  EXPECT_EQ(DosesOrdered(Value(3.5)), "4");
  EXPECT_EQ(DosesOrdered(Value(2.51)), "3");
  EXPECT_EQ(DosesOrdered(Value(2147483647.4)), "2147483647");
  EXPECT_EQ(DosesOrdered(Text("2.5")), "2");
}

TEST_F(MemberCalls, LogicalsBecomeWholeNumbersBelowOne) {
  for (const bool logical : {true, false}) {
    ExpectError(Refusal([&] { DosesOrdered(Value(logical)); }), Coded(20025),
                "The number of doses for an order must be greater than zero");
  }
}

TEST_F(MemberCalls, WholeNumbersBeyond32BitsOverflow) {
  for (const Argument& count :
       {Number(2147483648), Number(-2147483649), Argument(Value(2147483647.5)),
        Argument(Value(1e300)), Text("2147483647.5"), Text("&H1FFFFFFFF")}) {
    ExpectNotCalled([&] { ByName(kOrder, OrderWith("aDoseCount", count)); }, 6);
  }
}

TEST_F(MemberCalls, ATextThatIsNoNumberIsOfTheWrongType) {
  for (const char* const count : {"", " ", "many", "1 2", "True", "0x1F", "5%"}) {
    SCOPED_TRACE(count);
    ExpectNotCalled([&] { ByName(kOrder, OrderWith("aDoseCount", Text(count))); }, 13);
  }
}

struct TableMember {
  std::uint32_t dispatchId;
  std::string name;
  MemberKind kind;
  std::vector<Published> parameters;
  std::string result;
  bool operator==(const TableMember&) const = default;
};

void PrintTo(const TableMember& member, std::ostream* out) {
  *out << std::hex << member.dispatchId << std::dec << " " << member.name << " kind "
       << static_cast<int>(member.kind) << " of " << member.parameters.size() << " -> "
       << member.result;
}

TEST(PublishedResultSet, HasTheseMembersInThisOrder) {
  using enum MemberKind;
  const std::vector<Published> longValue = {Required("value", ParameterType::kLong)};
  const std::vector<Published> collectionValue = {Required("value", ParameterType::kCollection)};
  const Published aRow = Required("aRow", ParameterType::kLong);
  const Published aCol = Required("aCol", ParameterType::kLong);
  const std::vector<TableMember> expected = {
      {0x68030003, "Cols", kPropertyGet, {}, "Long"},
      {0x68030003, "Cols", kPropertyLet, longValue, ""},
      {0x68030002, "Rows", kPropertyGet, {}, "Long"},
      {0x68030002, "Rows", kPropertyLet, longValue, ""},
      {0x68030001, "Data", kPropertyGet, {}, "Collection"},
      {0x68030001, "Data", kPropertySet, collectionValue, ""},
      {0x68030000, "Headers", kPropertyGet, {}, "Collection"},
      {0x68030000, "Headers", kPropertySet, collectionValue, ""},
      {0x60030006, "CLEAR", kMethod, {}, ""},
      {0x60030007, "SetValue", kMethod, {aRow, aCol, Required("aValue")}, ""},
      {0x60030008, "GetValue", kMethod, {aRow, aCol}, "String"},
      {0x60030009, "AddRow", kMethod, {OptionalVariant("aCollection")}, ""},
      {0x6003000A, "DeleteRow", kMethod, {aRow}, ""},
  };
  std::vector<TableMember> found;
  for (const MemberDescription& member : ResultSetMembers()) {
    std::vector<Published> parameters;
    for (const Parameter& parameter : member.parameters) {
      // Its methods take their arguments by reference, its properties by value.
      EXPECT_EQ(parameter.byReference, member.kind == kMethod) << member.name;
      EXPECT_FALSE(parameter.defaultText.has_value()) << member.name;
      parameters.push_back(
          {std::string(parameter.name), parameter.type, parameter.optional, std::nullopt});
    }
    found.push_back({member.dispatchId, std::string(member.name), member.kind, parameters,
                     std::string(member.result)});
  }
  EXPECT_EQ(found, expected);
}

TEST(PublishedResultSet, TheServiceTakesItsArgumentsByValue) {
  for (const Member& member : Members()) {
    for (const Parameter& parameter : member.parameters) {
      EXPECT_FALSE(parameter.byReference) << member.name << " " << parameter.name;
    }
  }
}

TEST(PublishedContract, HasTheseFieldsInThisOrder) {
  std::vector<std::string> fields;
  for (const RecordField& field : ContractFields()) {
    fields.push_back(std::string(field.name) + " " + std::string(field.type));
  }
  EXPECT_EQ(fields,
            (std::vector<std::string>{
                "vaccine String", "maker String", "begin Date", "end Date", "minbulk Long",
                "unitsize Long", "pkgsize Long", "ndcno String", "cost Double", "contractid String",
                "sel_maker String", "dos_wind String", "excfunds String", "descrip String"}));
}

}  // namespace
}  // namespace lotrix::test

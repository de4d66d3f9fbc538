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

using Lines = std::vector<std::string>;
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

void ExpectMember(const std::string& name, std::uint32_t dispatchId, MemberKind kind,
                  const std::vector<Published>& parameters) {
  SCOPED_TRACE(name);
  const Member& member = MemberNamed(name);
  EXPECT_EQ(member.name, name);
  EXPECT_EQ(member.dispatchId, dispatchId);
  EXPECT_EQ(member.kind, kind);
  EXPECT_EQ(ParametersOf(member), parameters);
}

// --- The table ----------------------------------------------------------------

TEST(Members, TheConnectionMembers) {
  ExpectMember("Connection", 0x68030000, MemberKind::kPropertyGet, {});
  ExpectMember("openConnection", 0x60030002, MemberKind::kMethod, {Required("aConnectionString")});
  ExpectMember("closeConnection", 0x60030003, MemberKind::kMethod, {});
}

TEST(Members, TheReads) {
  ExpectMember("manufacturerProviderOrderRead", 0x60030008, MemberKind::kMethod,
               {Required("aPIN"), Required("aShipmentBeginDate"), Optional("aVaccine"),
                Optional("aLotNumber"), Optional("aShipmentEndDate")});
  ExpectMember("stockTableRead", 0x60030009, MemberKind::kMethod,
               {Optional("aPIN"), Optional("aVaccine"), Optional("aLotNumber"),
                Optional("aShipmentBeginDate"), Optional("aShipmentEndDate")});
  ExpectMember("vaccineReferenceTableRead", 0x6003000A, MemberKind::kMethod, {});
  ExpectMember("inventoryOnHandRead", 0x6003000B, MemberKind::kMethod,
               {Required("aDepotPIN"), Optional("aVaccine")});
  ExpectMember("CheckVaccActive", 0x60030018, MemberKind::kMethod, {Required("aVaccine")});
}

TEST(Members, TheManufacturerOrder) {
  ExpectMember("manufacturerProviderOrderCreateUpdate", 0x6003000C, MemberKind::kMethod,
               {Required("anOrderDate"), Required("aPIN"), Required("aVaccine"),
                Required("aDoseCount", ParameterType::kLong), Required("aFundingSource"),
                OptionalOne("anExcessAllowance"), Optional("aStatePO"), Optional("aMfg")});
}

TEST(Members, WhichOfThemAnswer) {
  for (const char* const read : {"manufacturerProviderOrderRead", "stockTableRead",
                                 "vaccineReferenceTableRead", "inventoryOnHandRead"}) {
    EXPECT_EQ(MemberNamed(read).result, "cResultSet") << read;
  }
  for (const char* const other : {"openConnection", "closeConnection", "CheckVaccActive",
                                  "manufacturerProviderOrderCreateUpdate"}) {
    EXPECT_EQ(MemberNamed(other).result, "") << other;
  }
  EXPECT_NE(MemberNamed("Connection").result, "");
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

TEST(Members, StandInInterfaceOrderUnderTheirOwnIdentifiers) {
  std::size_t next = 0;
  for (const Member& member : Members()) {
    while (next < Interface().size() && Interface()[next].first != member.name) ++next;
    ASSERT_LT(next, Interface().size()) << member.name << " is not published, or out of order";
    EXPECT_EQ(member.dispatchId, Interface()[next].second) << member.name;
    ++next;
  }
  EXPECT_GE(Members().size(), 9U);
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

}  // namespace
}  // namespace lotrix::test

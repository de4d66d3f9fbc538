#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/expected_statements.h"
#include "tests/support/expected_trace.h"
#include "tests/support/extremes.h"
#include "tests/support/operation_fixture.h"

namespace lotrix::test {
namespace {

using std::string_literals::operator""s;

// A call's arguments; as they stand, shipping data that are accepted.
struct Shipping {
  std::string pin = "P1";
  std::string facility = "CLINIC";
  std::string contact = "ANN";
  std::string address1 = "1 MAIN ST";
  std::string address2 = "SUITE 2";
  std::string city = "SPRINGFIELD";
  std::string state = "IL";
  std::string zip = "62701-1234";
  std::string instructions = "RING TWICE";
  std::string phone = "(217) 555-0100";
  std::string fax = "(217) 555-0101";
  Variant extension = {};
  Variant firstName = {};
  Variant initial = {};
  Variant title = {};
};

// The lines of the trace, piece by piece as a call comes by them.

const std::string kOperation = "providerShippingDataUpdate";

Lines Begun() { return {BeginOf(kOperation)}; }
Lines Ended() { return {EndOf(kOperation)}; }
Lines BeforeAddress() {
  return Joined({{"information Before calling ValidateShippingAddress"}, ConnectionRead()});
}
Lines AddressPassed() {
  return Joined({BeforeAddress(),
                 Passed("ValidateShippingAddress"),
                 {"information After calling ValidateShippingAddress"}});
}
Lines NumberLookedAt() { return Passed("ValidatePhoneFaxFormat"); }
Lines ChecksPassed() {
  return Joined({ActiveProviderPassed(), AddressPassed(), NumberLookedAt(), NumberLookedAt()});
}
Lines CountyFound() { return ConnectionRead(); }

// The statements as a call builds them.

Lines PinQueries() { return {ProviderCount("P1"), ProviderActive("P1")}; }
std::string UpdateStatement(const std::string& optionals,
                            const std::string& county = "county = 'SANGAMON', ",
                            const std::string& contact = "ANN") {
  return "UPDATE provider SET " + optionals + county + "contact = '" + contact +
         "', lastname = 'CLINIC', address = '1 MAIN ST', addres2 = 'SUITE 2', "
         "city = 'SPRINGFIELD', state = 'IL', zipcode = '62701-1234', note = 'RING TWICE', "
         "phone = '(217) 555-0100', fax = '(217) 555-0101', chgdate = {11/20/2026}, "
         "userid = 'LTX_DLL' WHERE ltrim(rtrim(pin)) = 'P1'";
}

void Call(cLotrix& lotrix, const Shipping& given) {
  lotrix.providerShippingDataUpdate(given.pin, given.facility, given.contact, given.address1,
                                    given.address2, given.city, given.state, given.zip,
                                    given.instructions, given.phone, given.fax, given.extension,
                                    given.firstName, given.initial, given.title);
}

class ShippingOperation : public OperationTest {
 protected:
  void SetUp() override {
    AddFilledProvider("P1", "15", "Y");
    Execute(
        "INSERT INTO zipcodes (zip, cntyname) VALUES ('62701', 'SANGAMON'), ('62701', 'SANGAMON'), "
        "('60601', 'COOK'), ('11111', 'ONE'), ('11111', 'TWO'), ('00000', NULL)");
    Execute("INSERT INTO nextid (ctablename, inextid) VALUES ('Provider', 41)");
    WatchOperations();
  }

  void Run(const Shipping& shipping) { Call(lotrix(), shipping); }
  std::string StatementOf(const Shipping& shipping) {
    return LastStatementOf([&] { Run(shipping); });
  }

  [[nodiscard]] Rows Tables() { return Contents({"provider", "enroll", "zipcodes", "nextid"}); }

  // Refused with that number, the whole trace as `lines` tells it, and nothing
  // written.
  Error ExpectRefused(const Shipping& shipping, std::int32_t number,
                      const std::function<Lines(const std::string& description)>& lines) {
    const auto before = Tables();
    Error error = ExpectRefusal(
        kOperation, [&] { Run(shipping); }, number, lines);
    EXPECT_EQ(Tables(), before);
    return error;
  }
  // A catalogue refusal; `lines` stand between the operation's first and last.
  void ExpectRefused(const Shipping& shipping, std::int32_t code, const std::string& message,
                     const Lines& lines, const Lines& statements) {
    const Error error =
        ExpectRefused(shipping, Coded(code), [&](const std::string&) { return lines; });
    EXPECT_EQ(error.description(), message);
    EXPECT_EQ(Statements(), statements);
  }
};

// --- Accepted ---------------------------------------------------------------

TEST_F(ShippingOperation, TheShippingSideIsRewrittenAndTheOtherColumnsStay) {
  Run({});
  EXPECT_EQ(
      Query("SELECT pin, contact, lastname, address, addres2, city, state, zipcode, note, phone, "
            "fax, county, extension, firstname, initial, title, chgdate, userid FROM provider"),
      (Rows{{"P1", "ANN", "CLINIC", "1 MAIN ST", "SUITE 2", "SPRINGFIELD", "IL", "62701-1234",
             "RING TWICE", "(217) 555-0100", "(217) 555-0101", "SANGAMON", "OE", "OFN", "OI", "OT",
             "2026-11-20", "LTX_DLL"}}));
  EXPECT_EQ(
      Query("SELECT ml_contact, ml_address, ml_addres2, ml_city, ml_state, ml_zipcode, codes, "
            "phone2, fax2, createdate, provid, sector, datevfc, linkpin, alphaid, active, subdiv, "
            "cat1, cat2, cat3, cat4 FROM provider"),
      (Rows{{"OMC", "OMA1", "OMA2",       "OMCI", "OMS", "OMZ",        "OV",
             "OP2", "OF2",  "1999-01-02", "5",    "15",  "1999-03-04", "OLP",
             "OAI", "Y",    "OSD",        "OC1",  "OC2", "OC3",        "OC4"}}));
  EXPECT_EQ(Query("SELECT * FROM enroll"), Rows{});
  EXPECT_EQ(Query("SELECT inextid FROM nextid"), (Rows{{"41"}}));
}

TEST_F(ShippingOperation, TheStatementsOfAnUpdate) {
  Run({});
  EXPECT_EQ(Statements(),
            (Lines{"SELECT count(*) FROM provider WHERE Sector BETWEEN 10 AND 29 AND "
                   "ltrim(rtrim(pin)) = 'P1'",
                   "SELECT active FROM provider WHERE Sector BETWEEN 10 AND 29 AND "
                   "ltrim(rtrim(pin)) = 'P1'",
                   "SELECT DISTINCT cntyname FROM zipcodes WHERE zip = '62701' ",
                   "UPDATE provider SET county = 'SANGAMON', contact = 'ANN', "
                   "lastname = 'CLINIC', address = '1 MAIN ST', addres2 = 'SUITE 2', "
                   "city = 'SPRINGFIELD', state = 'IL', zipcode = '62701-1234', "
                   "note = 'RING TWICE', phone = '(217) 555-0100', fax = '(217) 555-0101', "
                   "chgdate = {11/20/2026}, userid = 'LTX_DLL' WHERE ltrim(rtrim(pin)) = 'P1'"}));
}

TEST_F(ShippingOperation, TheTraceOfAnUpdate) {
  Run({});
  EXPECT_EQ(Trace(), (Lines{"information Begin: providerShippingDataUpdate()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: ValidateProviderPIN()",
                            "information Begin: ValidateProviderActiveStatus()",
                            "information End: ValidateProviderActiveStatus()",
                            "information End: ValidateProviderPIN()",
                            "information Before calling ValidateShippingAddress",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: ValidateShippingAddress()",
                            "information End: ValidateShippingAddress()",
                            "information After calling ValidateShippingAddress",
                            "information Begin: ValidatePhoneFaxFormat()",
                            "information End: ValidatePhoneFaxFormat()",
                            "information Begin: ValidatePhoneFaxFormat()",
                            "information End: ValidatePhoneFaxFormat()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information " + UpdateStatement(""),
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information End: providerShippingDataUpdate()"}));
}

struct Optional {
  const char* column;
  Variant Shipping::*argument;
};
const Optional kOptionals[] = {{"extension", &Shipping::extension},
                               {"firstname", &Shipping::firstName},
                               {"initial", &Shipping::initial},
                               {"title", &Shipping::title}};

TEST_F(ShippingOperation, EachOptionalAlone) {
  for (const Optional& optional : kOptionals) {
    const std::string column = optional.column;
    SCOPED_TRACE(column);
    Execute("DELETE FROM provider");
    AddFilledProvider("P1", "15", "Y");
    Rows expected = Query("SELECT extension, firstname, initial, title FROM provider");
    Shipping shipping;
    shipping.*optional.argument = " straße é ";
    EXPECT_EQ(StatementOf(shipping), UpdateStatement(column + " = ' STRAßE É ', "));
    expected[0][static_cast<std::size_t>(&optional - kOptionals)] = " STRAßE É ";
    EXPECT_EQ(Query("SELECT extension, firstname, initial, title FROM provider"), expected);
  }
}

TEST_F(ShippingOperation, EveryOptionalTogether) {
  Shipping shipping;
  shipping.extension = "77";
  shipping.firstName = "Carol";
  shipping.initial = "d";
  shipping.title = "md";
  EXPECT_EQ(
      StatementOf(shipping),
      UpdateStatement("extension = '77', firstname = 'CAROL', initial = 'D', title = 'MD', "));
  EXPECT_EQ(Query("SELECT extension, firstname, initial, title FROM provider"),
            (Rows{{"77", "CAROL", "D", "MD"}}));
}

TEST_F(ShippingOperation, OptionalsThatArePresentButEmptyClearTheirColumns) {
  Shipping shipping;
  shipping.extension = "";
  shipping.firstName = "";
  shipping.initial = "";
  shipping.title = "";
  EXPECT_EQ(StatementOf(shipping),
            UpdateStatement("extension = '', firstname = '', initial = '', title = '', "));
  EXPECT_EQ(Query("SELECT extension, firstname, initial, title FROM provider"),
            (Rows{{"", "", "", ""}}));
}

TEST_F(ShippingOperation, OptionalsMayBeNumbersAndLogicals) {
  Shipping shipping;
  shipping.extension = std::int64_t{77};
  shipping.initial = true;
  shipping.title = 12.5;
  EXPECT_EQ(StatementOf(shipping),
            UpdateStatement("extension = '77', initial = 'TRUE', title = '12.5', "));
}

TEST_F(ShippingOperation, TheTextsAreStoredInUpperCaseAndUntrimmed) {
  const Shipping shipping{.pin = "p1 ",
                          .facility = " clinic é ",
                          .contact = " ann ÿ ",
                          .address1 = " 1 main st ",
                          .address2 = " suite ",
                          .city = " peoria ",
                          .state = " il ",
                          .zip = "60601 x ",
                          .instructions = " ring straße ",
                          .phone = "(abc) def-ghij",
                          .fax = "(fax) fax-faxx"};
  EXPECT_EQ(StatementOf(shipping),
            "UPDATE provider SET county = 'COOK', contact = ' ANN Ÿ ', lastname = ' CLINIC É ', "
            "address = ' 1 MAIN ST ', addres2 = ' SUITE ', city = ' PEORIA ', state = ' IL ', "
            "zipcode = '60601 X ', note = ' RING STRAßE ', phone = '(ABC) DEF-GHIJ', "
            "fax = '(FAX) FAX-FAXX', chgdate = {11/20/2026}, userid = 'LTX_DLL' WHERE "
            "ltrim(rtrim(pin)) = 'P1 '");
  EXPECT_EQ(Query("SELECT pin, contact, lastname, address, addres2, city, state, zipcode, note, "
                  "phone, fax, county FROM provider"),
            (Rows{{"P1", " ANN Ÿ ", " CLINIC É ", " 1 MAIN ST ", " SUITE ", " PEORIA ", " IL ",
                   "60601 X ", " RING STRAßE ", "(ABC) DEF-GHIJ", "(FAX) FAX-FAXX", "COOK"}}));
}

TEST_F(ShippingOperation, SpecialCharactersAreRemovedFromSixFields) {
  const std::string special = "!@#$%^&*()+|\\/{}[]:<>?\"'";
  const std::string kept = " -,._=;~`";
  Shipping shipping;
  for (std::string Shipping::*const field :
       {&Shipping::address1, &Shipping::address2, &Shipping::city, &Shipping::state, &Shipping::zip,
        &Shipping::instructions}) {
    shipping.*field = "a" + special + kept + special + "b";
  }
  Run(shipping);
  EXPECT_EQ(Query("SELECT address, addres2, city, state, zipcode, note FROM provider"),
            Rows{Row(6, "A" + kept + "B")});
}

TEST_F(ShippingOperation, SpecialCharactersStayInTheOtherFields) {
  const std::string special = "!@#$%^&*()+|\\/{}[]:<>?\"";
  Shipping shipping;
  shipping.facility = special;
  shipping.contact = special;
  for (const Optional& optional : kOptionals) shipping.*optional.argument = special;
  Run(shipping);
  EXPECT_EQ(Query("SELECT lastname, contact, extension, firstname, initial, title FROM provider"),
            Rows{Row(6, special)});
}

TEST_F(ShippingOperation, TheCountyIsLookedUpByFiveCharactersOfTheCleanedZipCode) {
  Shipping shipping;
  shipping.zip = "(60'6/0)1-77'";
  Run(shipping);
  EXPECT_EQ(Statements()[2], CountyQuery("60601"));
  EXPECT_EQ(Query("SELECT zipcode, county FROM provider"), (Rows{{"60601-77", "COOK"}}));
  shipping.zip = "";
  Run(shipping);
  EXPECT_EQ(Statements()[2], CountyQuery(""));
  EXPECT_EQ(Query("SELECT zipcode, county FROM provider"), (Rows{{"", "COOK"}}));
}

TEST_F(ShippingOperation, AZipCodeWithoutACountyLeavesTheCounty) {
  for (const char* const zip : {"99999", "11111"}) {
    SCOPED_TRACE(zip);
    Shipping shipping;
    shipping.zip = zip;
    Run(shipping);
    EXPECT_EQ(Query("SELECT zipcode, county FROM provider"), (Rows{{zip, "OCO"}}));
  }
  Execute("DELETE FROM zipcodes");
  EXPECT_EQ(StatementOf({}), UpdateStatement("", ""));
}

TEST_F(ShippingOperation, ACountyIsTrimmedAndKeepsItsCase) {
  Execute("DELETE FROM zipcodes; INSERT INTO zipcodes VALUES ('62701', '  Sangamon ')");
  EXPECT_EQ(StatementOf({}), UpdateStatement("", "county = 'Sangamon', "));
}

TEST_F(ShippingOperation, BlankInstructionsBecomeNone) {
  for (const char* const instructions : {"", "   ", "!?", " ' "}) {
    SCOPED_TRACE(instructions);
    Shipping shipping;
    shipping.instructions = instructions;
    Run(shipping);
    EXPECT_EQ(Query("SELECT note FROM provider"), (Rows{{"NONE"}}));
  }
}

TEST_F(ShippingOperation, ABlankFaxIsAcceptedUnlooked) {
  for (const char* const fax : {"", "  "}) {
    Shipping shipping;
    shipping.fax = fax;
    ForgetTrace();
    const std::string statement = StatementOf(shipping);
    EXPECT_EQ(Trace(), Joined({Begun(), ActiveProviderPassed(), AddressPassed(), NumberLookedAt(),
                               CountyFound(), Logged(statement), ConnectionRead(), Ended()}));
    EXPECT_EQ(Query("SELECT phone, fax FROM provider"), (Rows{{"(217) 555-0100", fax}}));
  }
}

TEST_F(ShippingOperation, ABlankSecondAddressFieldIsAccepted) {
  Shipping shipping;
  shipping.address2 = "";
  Run(shipping);
  EXPECT_EQ(Query("SELECT address, addres2 FROM provider"), (Rows{{"1 MAIN ST", ""}}));
}

TEST_F(ShippingOperation, EveryRowOfThePinIsUpdated) {
  AddFilledProvider(" P1 ", "31", "N");
  AddFilledProvider("P2", "15", "Y");
  Run({});
  EXPECT_EQ(
      Query("SELECT pin, lastname, sector, active FROM provider ORDER BY sector, pin"),
      (Rows{{"P1", "CLINIC", "15", "Y"}, {"P2", "OL", "15", "Y"}, {" P1 ", "CLINIC", "31", "N"}}));
}

// The day may change while a call runs.
TEST_F(ShippingOperation, TodayIsTakenAtTheStart) {
  RunAcrossMidnight([](cLotrix& own) { Call(own, {}); });
  EXPECT_EQ(Query("SELECT chgdate FROM provider"), (Rows{{"2026-11-20"}}));
}

// --- The checks, in their order ---------------------------------------------

enum Check {
  kPinLength,
  kPinCharacters,
  kPin,
  kFacility,
  kContact,
  kAddress,
  kCity,
  kState,
  kPhone,
  kFax,
  kCounty,
  kStatement
};

// Wrong from that check on: the order of the checks is the order in which the
// faults are found when they are mended one by one.
Shipping WrongFrom(Check first) {
  Shipping wrong;
  wrong.pin = first > kPin             ? "P1"
              : first > kPinCharacters ? "NOBODY"
              : first > kPinLength     ? "P-1"
                                       : "TOO-LONG";
  wrong.facility = first > kFacility ? "CLINIC" : " ";
  wrong.contact = first > kContact ? "O'NEIL" : " ";
  wrong.address1 = first > kAddress ? "1 MAIN ST" : "!?";
  wrong.city = first > kCity ? "SPRINGFIELD" : "'";
  wrong.state = first > kState ? "IL" : "  ";
  wrong.zip = first > kCounty ? "62701-1234" : "00000";
  wrong.phone = first > kPhone ? "(217) 555-0100" : "";
  wrong.fax = first > kFax ? "(217) 555-0101" : "217-555-0100";
  return wrong;
}

TEST_F(ShippingOperation, FirstTheLengthOfThePin) {
  const std::string message =
      "The number of characters in the pin entered exceeds the maximum allowed";
  for (const std::string& pin :
       {"TOO-LONG"s, "1234567"s, "ÉÉÉÉÉÉÉ"s, "😀😀😀1"s, std::string(kMebibyte, 'P')}) {
    Shipping wrong = WrongFrom(kPinLength);
    wrong.pin = pin;
    ExpectRefused(wrong, 20078, message, RefusedBy("ValidateProviderPIN", message), {});
  }
}

TEST_F(ShippingOperation, ThenTheCharactersOfThePin) {
  const std::string message =
      "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed.";
  for (const std::string& pin : {"P-1"s, "P1'"s, ""s, "   "s, " P1"s, "ÉÉÉÉÉÉ"s, "😀😀😀"s, "P1\0"s}) {
    Shipping wrong = WrongFrom(kPinCharacters);
    wrong.pin = pin;
    ExpectRefused(wrong, 20079, message, RefusedBy("ValidateProviderPIN", message), {});
  }
}

TEST_F(ShippingOperation, APinThatTwoProvidersHaveIsRefused) {
  AddFilledProvider("TWIN", "10", "Y");
  AddFilledProvider("TWIN", "29", "Y");
  const std::string message = "Provider PIN entered has a duplicate";
  Shipping wrong = WrongFrom(kFacility);
  wrong.pin = "TWIN";
  ExpectRefused(wrong, 20003, message, RefusedBy("ValidateProviderPIN", message),
                {ProviderCount("TWIN")});
}

TEST_F(ShippingOperation, APinCountThatIsNoneIsRefused) {
  const std::string message = "Error while verifying provider PIN in LOTRIX";
  const std::vector<std::vector<Value>> answers = {
      {}, {std::int64_t{0}, std::int64_t{0}}, {std::int64_t{-1}}};
  for (const std::vector<Value>& rows : answers) {
    AnswerEveryQuery(rows);
    ExpectRefused(WrongFrom(kFacility), 20005, message, RefusedBy("ValidateProviderPIN", message),
                  {ProviderCount("P1")});
  }
}

TEST_F(ShippingOperation, AnInactiveProviderIsRefusedBeforeAnyField) {
  Execute("UPDATE provider SET active = 'N'");
  const std::string message =
      "The provider enter is currently inactivate in LOTRIX. Cannot proceed with the current "
      "operation";
  ExpectRefused(WrongFrom(kFacility), 20083, message, InactiveProviderRefused(message),
                PinQueries());
}

TEST_F(ShippingOperation, ThenThatTheProviderIsThere) {
  AddFilledProvider("NOBODY", "31", "Y");
  for (const char* const pin : {"NOBODY", "P2", "0", "999999"}) {
    Shipping wrong = WrongFrom(kPin);
    wrong.pin = pin;
    ExpectRefused(wrong, 20033, "Provider PIN not found for shipping data update",
                  Asked("ValidateProviderPIN"), {ProviderCount(pin)});
  }
}

TEST_F(ShippingOperation, ThenTheName) {
  for (const char* const name : {"", "   "}) {
    Shipping wrong = WrongFrom(kFacility);
    wrong.facility = name;
    ExpectRefused(wrong, 20001, "Null provider name was entered", ActiveProviderPassed(),
                  PinQueries());
  }
}

TEST_F(ShippingOperation, ThenTheContact) {
  for (const char* const contact : {"", "   "}) {
    Shipping wrong = WrongFrom(kContact);
    wrong.contact = contact;
    ExpectRefused(wrong, 20002, "Null shipping contact was entered", ActiveProviderPassed(),
                  PinQueries());
  }
}

TEST_F(ShippingOperation, ThenTheFirstAddressField) {
  const std::string message = "The first field of the shipping address cannot be null";
  for (const char* const address : {"", "  ", "!?", " ' "}) {
    Shipping wrong = WrongFrom(kAddress);
    wrong.address1 = address;
    ExpectRefused(wrong, 20006, message,
                  Joined({ActiveProviderPassed(), BeforeAddress(),
                          Refused("ValidateShippingAddress", message)}),
                  PinQueries());
  }
}

TEST_F(ShippingOperation, ThenTheCity) {
  const std::string message = "The city field in the shipping address cannot be null";
  for (const char* const city : {"", "  ", "'"}) {
    Shipping wrong = WrongFrom(kCity);
    wrong.city = city;
    ExpectRefused(wrong, 20007, message,
                  Joined({ActiveProviderPassed(), BeforeAddress(),
                          Refused("ValidateShippingAddress", message)}),
                  PinQueries());
  }
}

TEST_F(ShippingOperation, ThenTheState) {
  const std::string message = "The state field in the shipping address cannot be null";
  for (const char* const state : {"", "  ", "()"}) {
    Shipping wrong = WrongFrom(kState);
    wrong.state = state;
    wrong.zip = "";
    ExpectRefused(wrong, 20008, message,
                  Joined({ActiveProviderPassed(), BeforeAddress(),
                          Refused("ValidateShippingAddress", message)}),
                  PinQueries());
  }
}

const std::string kNoNumbers[] = {"217-555-0100",    "2175550100",      "(217)555-01000",
                                  "(217) 555-010",   "(217) 555-01000", " (217) 555-0100",
                                  "(217) 555-0100 ", "(217) 555 0100",  "(2 7) 555-0100"};

TEST_F(ShippingOperation, ThenThePhoneEvenWhenBlank) {
  Shipping wrong = WrongFrom(kPhone);
  for (const std::string& phone : {""s, "  "s, "              "s, std::string(kMebibyte, '1')}) {
    wrong.phone = phone;
    ExpectRefused(wrong, 20057, "Invalid phone number format",
                  Joined({ActiveProviderPassed(), AddressPassed(), NumberLookedAt()}),
                  PinQueries());
  }
  for (const std::string& phone : kNoNumbers) {
    wrong.phone = phone;
    ExpectRefused(wrong, 20057, "Invalid phone number format",
                  Joined({ActiveProviderPassed(), AddressPassed(), NumberLookedAt()}),
                  PinQueries());
  }
}

TEST_F(ShippingOperation, ThenTheFax) {
  for (const std::string& fax : kNoNumbers) {
    Shipping wrong = WrongFrom(kFax);
    wrong.fax = fax;
    ExpectRefused(wrong, 20056, "Invalid fax number format", ChecksPassed(), PinQueries());
  }
}

TEST_F(ShippingOperation, ThenACountyWithoutAName) {
  ExpectRefused(WrongFrom(kCounty), 94, [](const std::string&) {
    return Joined({ChecksPassed(), CountyFound()});
  });
  EXPECT_EQ(Statements(), Joined({PinQueries(), {CountyQuery("00000")}}));
}

TEST_F(ShippingOperation, TheStatementComesLast) {
  ExpectRefused(WrongFrom(kStatement), Numbered(EngineError::kStatementRefused),
                [](const std::string&) {
                  return Joined({ChecksPassed(), CountyFound(),
                                 Logged(UpdateStatement("", "county = 'SANGAMON', ", "O'NEIL")),
                                 ConnectionRead()});
                });
}

// --- Values that would leave their place ------------------------------------

class BrokenShipping : public ShippingOperation {
 protected:
  // The engine's error through the handler, the statement logged, nothing written.
  void ExpectBroken(const Shipping& shipping) {
    const auto before = Tables();
    ForgetTrace();
    const Error error = Refusal([&] { Run(shipping); });
    EXPECT_EQ(error.number(), Numbered(EngineError::kStatementRefused));
    EXPECT_EQ(error.source(), "LOTRIX DLL");
    const Lines trace = Trace();
    ASSERT_GE(trace.size(), 4U);
    const std::string& logged = trace[trace.size() - 4];
    EXPECT_EQ(logged.compare(0, 32, "information UPDATE provider SET "), 0);
    EXPECT_EQ(trace, Joined({Begun(),
                             ChecksPassed(),
                             CountyFound(),
                             {logged},
                             ConnectionRead(),
                             {ProblemOf(kOperation, error.description())}}));
    EXPECT_EQ(Tables(), before);
  }
};

const std::string kBreaking[] = {"O'NEIL", "'",  "''", "X', sector = '11", "X'; DELETE FROM x; --",
                                 "X\0"s,   "\0"s};

TEST_F(BrokenShipping, AnApostropheOrZeroCharacterInANameIsRefusedAsSyntax) {
  for (const std::string& text : kBreaking) {
    SCOPED_TRACE(text);
    Shipping shipping;
    shipping.facility = text;
    ExpectBroken(shipping);
    shipping = {};
    shipping.contact = text;
    ExpectBroken(shipping);
  }
}

TEST_F(BrokenShipping, AnApostropheOrZeroCharacterInANumberIsRefusedAsSyntax) {
  for (const std::string& text : {"(217) 555-010'"s, "(''') '''-''''"s, "(217) 555-010\0"s}) {
    SCOPED_TRACE(text);
    Shipping shipping;
    shipping.phone = text;
    ExpectBroken(shipping);
    shipping = {};
    shipping.fax = text;
    ExpectBroken(shipping);
  }
}

TEST_F(BrokenShipping, AnApostropheOrZeroCharacterInAnOptionalIsRefusedAsSyntax) {
  for (const Optional& optional : kOptionals) {
    for (const std::string& text : kBreaking) {
      SCOPED_TRACE(optional.column + ("|" + text));
      Shipping shipping;
      shipping.*optional.argument = text;
      ExpectBroken(shipping);
    }
  }
}

TEST_F(BrokenShipping, AZeroCharacterInACleanedTextIsRefusedAsSyntax) {
  for (std::string Shipping::*const field :
       {&Shipping::address1, &Shipping::address2, &Shipping::city, &Shipping::state, &Shipping::zip,
        &Shipping::instructions}) {
    Shipping shipping;
    shipping.*field = "62701 X\0Y"s;
    ExpectBroken(shipping);
  }
}

TEST_F(BrokenShipping, AZeroCharacterInTheFrontOfTheZipCodeIsRefusedWhereItIsLookedUp) {
  Shipping shipping;
  shipping.zip = "6270\0"s;
  ExpectRefused(shipping, Numbered(EngineError::kStatementRefused), [](const std::string&) {
    return Joined({ChecksPassed(), CountyFound()});
  });
}

TEST_F(BrokenShipping, ACountyWithAnApostropheBreaksTheStatement) {
  Execute("UPDATE zipcodes SET cntyname = 'O''Brien' WHERE zip = '62701'");
  ExpectBroken({});
}

TEST_F(BrokenShipping, ARefusedCallLeavesTheObjectUsable) {
  Shipping shipping;
  shipping.contact = "O'NEIL";
  ExpectBroken(shipping);
  Run({});
  EXPECT_EQ(Query("SELECT contact FROM provider"), (Rows{{"ANN"}}));
}

TEST_F(BrokenShipping, AnErrorOfTheEngineIsAProblemOfTheOperation) {
  answer_ = [this](const std::string& text) -> std::optional<std::vector<Value>> {
    if (text == CountyQuery("62701")) Execute("ALTER TABLE provider RENAME TO hidden");
    return std::nullopt;
  };
  const Error error = Refusal([&] { Run({}); });
  EXPECT_EQ(error.number(), Numbered(EngineError::kNoSuchTable));
  EXPECT_EQ(error.source(), "LOTRIX DLL");
  EXPECT_EQ(Trace(), Joined({Begun(),
                             ChecksPassed(),
                             CountyFound(),
                             Logged(UpdateStatement("")),
                             ConnectionRead(),
                             {ProblemOf(kOperation, error.description())}}));
}

// --- Very long arguments ----------------------------------------------------

TEST_F(ShippingOperation, AVeryLongTextOverflowsWhereItIsCleaned) {
  for (std::string Shipping::*const field :
       {&Shipping::address1, &Shipping::address2, &Shipping::city, &Shipping::state, &Shipping::zip,
        &Shipping::instructions}) {
    for (const std::string& text :
         {std::string(kMebibyte, 'x'), std::string(32768, ' '), Repeated("😀", 16384)}) {
      Shipping wrong = WrongFrom(kPinLength);
      wrong.*field = text;
      ExpectRefused(wrong, 6, [](const std::string&) { return Lines{}; });
      EXPECT_EQ(Statements(), Lines{});
    }
  }
}

TEST_F(ShippingOperation, AVeryLongTextOverflowsWhereItIsTestedForBlank) {
  for (const std::string& text : {std::string(kMebibyte, 'x'), Repeated("é", 32768)}) {
    Shipping wrong = WrongFrom(kFacility);
    wrong.facility = text;
    ExpectRefused(wrong, 6, [](const std::string&) { return ActiveProviderPassed(); });
    wrong = WrongFrom(kContact);
    wrong.contact = text;
    ExpectRefused(wrong, 6, [](const std::string&) { return ActiveProviderPassed(); });
    wrong = WrongFrom(kFax);
    wrong.fax = text;
    ExpectRefused(wrong, 6, [](const std::string&) {
      return Joined({ActiveProviderPassed(), AddressPassed(), NumberLookedAt()});
    });
  }
}

TEST_F(ShippingOperation, AsManyCharactersAs16BitsCountAreStored) {
  const std::string text = Repeated("É", 32767);
  Shipping shipping;
  shipping.facility = text + "  ";
  shipping.contact = text;
  shipping.address1 = text;
  shipping.instructions = text;
  Run(shipping);
  EXPECT_EQ(Query("SELECT lastname, contact, address, note FROM provider"),
            (Rows{{text + "  ", text, text, text}}));
}

TEST_F(ShippingOperation, VeryLongOptionalsAreStored) {
  const std::string text(kMebibyte, 'X');
  Shipping shipping;
  for (const Optional& optional : kOptionals) shipping.*optional.argument = text;
  Run(shipping);
  EXPECT_EQ(Query("SELECT extension, firstname, initial, title FROM provider"), Rows{Row(4, text)});
}

}  // namespace
}  // namespace lotrix::test

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/expected_statements.h"
#include "tests/support/expected_trace.h"
#include "tests/support/extremes.h"
#include "tests/support/operation_fixture.h"

namespace lotrix::test {
namespace {

using std::string_literals::operator""s;

// A call's arguments; as they stand, information that is accepted.
struct Info {
  std::string pin = "P1";
  std::string type = "PRIVATE";
  std::string classification = "12";
  std::string certification = "1/5/2004";
  std::string cohort = "C-7";
  std::string employee = "36-1234567";
  std::string quorvin = "YES";
};

// The lines of the trace, piece by piece as a call comes by them.

const std::string kOperation = "providerAdditionalInfoUpdate";

Lines Begun() { return {BeginOf(kOperation)}; }
Lines Ended() { return {EndOf(kOperation)}; }
Lines PinRefused(const std::string& description) {
  return RefusedBy("ValidateProviderPIN", description);
}

// The statements as a call builds them.

// Of a call whose values are spliced as they stand here.
std::string UpdateStatement(const Info& info) {
  return "UPDATE provider SET cat2 = '" + info.type +
         "', chgdate = {11/20/2026}, sector = " + info.classification + ", datevfc = {" +
         info.certification + "}, cat4 = '" + info.cohort + "', alphaid = '" + info.employee +
         "', cat1 = '" + info.quorvin + "' WHERE  ltrim(rtrim(Pin)) = '" + info.pin + "' ";
}

void Call(cLotrix& lotrix, const Info& given) {
  lotrix.providerAdditionalInfoUpdate(given.pin, given.type, given.classification,
                                      given.certification, given.cohort, given.employee,
                                      given.quorvin);
}

class AdditionalInfo : public OperationTest {
 protected:
  void SetUp() override {
    AddFilledProvider("P1", "15", "Y");
    WatchOperations();
  }

  void Run(const Info& info) { Call(lotrix(), info); }
  // The call, and what its last statement was.
  std::string StatementOf(const Info& info) {
    std::string statement = LastStatementOf([&] { Run(info); });
    Execute("UPDATE provider SET sector = 15");
    return statement;
  }

  // Refused with that number, the whole trace as `lines` tells it, and nothing
  // written.
  Error ExpectRefused(const Info& info, std::int32_t number,
                      const std::function<Lines(const std::string& description)>& lines) {
    const Rows before = Query("SELECT * FROM provider");
    Error error = ExpectRefusal(
        kOperation, [&] { Run(info); }, number, lines);
    EXPECT_EQ(Query("SELECT * FROM provider"), before);
    return error;
  }
  // A catalogue refusal; `lines` stand between the operation's first and last.
  void ExpectRefused(const Info& info, std::int32_t code, const std::string& message,
                     const Lines& lines, const Lines& statements) {
    const Error error = ExpectRefused(info, Coded(code), [&](const std::string&) { return lines; });
    EXPECT_EQ(error.description(), message);
    EXPECT_EQ(Statements(), statements);
  }
  // Before anything is asked of the engine.
  void ExpectRefusedUnasked(const Info& info, std::int32_t code, const std::string& message) {
    ExpectRefused(info, code, message, {}, {});
  }
};

// --- Accepted -----------------------------------------------------------------

TEST_F(AdditionalInfo, SixAttributesAndTheDateAreWrittenAndTheOtherColumnsStay) {
  Run({});
  EXPECT_EQ(Query("SELECT cat2, chgdate, sector, datevfc, cat4, alphaid, cat1 FROM provider"),
            (Rows{{"PRIVATE", "2026-11-20", "12", "2004-01-05", "C-7", "36-1234567", "YES"}}));
  EXPECT_EQ(
      Query("SELECT pin, contact, lastname, address, addres2, city, state, zipcode, ml_contact, "
            "ml_address, ml_addres2, ml_city, ml_state, ml_zipcode, note, phone, fax, codes, "
            "phone2, fax2, createdate, county, provid, extension, firstname, initial, title, "
            "linkpin, active, subdiv, cat3, userid FROM provider"),
      (Rows{{"P1",   "OC",  "OL",  "OA1", "OA2", "OCI", "OS", "OZ",  "OMC", "OMA1",       "OMA2",
             "OMCI", "OMS", "OMZ", "ON",  "OP",  "OF",  "OV", "OP2", "OF2", "1999-01-02", "OCO",
             "5",    "OE",  "OFN", "OI",  "OT",  "OLP", "Y",  "OSD", "OC3", "OU"}}));
}

TEST_F(AdditionalInfo, TheStatementsOfAnUpdate) {
  Run({});
  EXPECT_EQ(Statements(),
            (Lines{"SELECT count(*) FROM provider WHERE Sector BETWEEN 10 AND 29 AND "
                   "ltrim(rtrim(pin)) = 'P1'",
                   "SELECT active FROM provider WHERE Sector BETWEEN 10 AND 29 AND "
                   "ltrim(rtrim(pin)) = 'P1'",
                   "UPDATE provider SET cat2 = 'PRIVATE', chgdate = {11/20/2026}, sector = 12, "
                   "datevfc = {1/5/2004}, cat4 = 'C-7', alphaid = '36-1234567', cat1 = 'YES' "
                   "WHERE  ltrim(rtrim(Pin)) = 'P1' "}));
}

TEST_F(AdditionalInfo, TheTraceOfAnUpdate) {
  Run({});
  EXPECT_EQ(Trace(),
            (Lines{"information Begin: providerAdditionalInfoUpdate()",
                   "information Begin: Get Connection()", "information End: GetConnection()",
                   "information Begin: ValidateProviderPIN()",
                   "information Begin: ValidateProviderActiveStatus()",
                   "information End: ValidateProviderActiveStatus()",
                   "information End: ValidateProviderPIN()",
                   "information UPDATE provider SET cat2 = 'PRIVATE', chgdate = {11/20/2026}, "
                   "sector = 12, datevfc = {1/5/2004}, cat4 = 'C-7', alphaid = '36-1234567', "
                   "cat1 = 'YES' WHERE  ltrim(rtrim(Pin)) = 'P1' ",
                   "information Begin: Get Connection()", "information End: GetConnection()",
                   "information End: providerAdditionalInfoUpdate()"}));
}

TEST_F(AdditionalInfo, TheTextsAreStoredInUpperCaseAndUntrimmedButForTheFlag) {
  const Info info{.pin = "p1 ",
                  .type = " private é ",
                  .classification = " 12 ",
                  .certification = "january 5, 2004",
                  .cohort = " straße ",
                  .employee = " ab-ÿ ",
                  .quorvin = " no "};
  EXPECT_EQ(StatementOf(info), UpdateStatement({.pin = "P1 ",
                                                .type = " PRIVATE É ",
                                                .classification = "12",
                                                .certification = "1/5/2004",
                                                .cohort = " STRAßE ",
                                                .employee = " AB-Ÿ ",
                                                .quorvin = "NO"}));
  EXPECT_EQ(Query("SELECT pin, cat2, cat4, alphaid, cat1 FROM provider"),
            (Rows{{"P1", " PRIVATE É ", " STRAßE ", " AB-Ÿ ", "NO"}}));
}

TEST_F(AdditionalInfo, AFlagIsYesOrNoInAnyCaseWithBlanksAround) {
  const std::pair<std::string, std::string> cases[] = {{"YES", "YES"},
                                                       {"NO", "NO"},
                                                       {"yes", "YES"},
                                                       {"no", "NO"},
                                                       {"  yes  ", "YES"},
                                                       {" No", "NO"},
                                                       {std::string(40000, ' ') + "yEs ", "YES"}};
  for (const auto& [given, stored] : cases) {
    Info info;
    info.quorvin = given;
    Info spliced;
    spliced.quorvin = stored;
    EXPECT_EQ(StatementOf(info), UpdateStatement(spliced));
    EXPECT_EQ(Query("SELECT cat1 FROM provider"), (Rows{{stored}}));
  }
}

TEST_F(AdditionalInfo, ACertificationDateIsSplicedAsItsValue) {
  const std::pair<std::string, std::string> cases[] = {
      {"01/05/2004", "1/5/2004"}, {"January 5, 2004 10:30 PM", "1/5/2004"},
      {"5-jan-04", "1/5/2004"},   {"2004-01-05", "1/5/2004"},
      {"2/29/2004", "2/29/2004"}, {"12/31/9999", "12/31/9999"},
      {" 1/5/2004 ", "1/5/2004"}, {"1/5/2004\0x"s, "1/5/2004"},
      {"1/5/29", "1/5/2029"},     {"1/5/30", "1/5/1930"}};
  for (const auto& [given, value] : cases) {
    SCOPED_TRACE(given);
    Info info;
    info.certification = given;
    Info spliced;
    spliced.certification = value;
    EXPECT_EQ(StatementOf(info), UpdateStatement(spliced));
  }
}

TEST_F(AdditionalInfo, AClassificationIsSplicedAsAWholeNumberAndAskedNothingElse) {
  const std::pair<std::string, std::string> cases[] = {
      {"12", "12"},     {"99", "99"}, {"0", "0"},   {"-1", "-1"}, {"5-", "-5"},
      {".5", "0"},      {".6", "1"},  {"7.", "7"},  {"$5", "5"},  {"+9", "9"},
      {"  31  ", "31"}, {"05", "5"},  {"3\0"s, "3"}};
  for (const auto& [given, number] : cases) {
    SCOPED_TRACE(given);
    Info info;
    info.classification = given;
    static_cast<void>(Statements());
    Run(info);
    Info spliced;
    spliced.classification = number;
    EXPECT_EQ(Statements().back(), UpdateStatement(spliced));
    EXPECT_EQ(Query("SELECT sector FROM provider"), (Rows{{number}}));
    Execute("UPDATE provider SET sector = 15");
  }
}

TEST_F(AdditionalInfo, TextsOfTheirExactLimitsAreAccepted) {
  for (const std::string& ten : {"TENLETTERS"s, Repeated("É", 10), Repeated("😀", 5)}) {
    for (const std::string& fifteen :
         {"FIFTEENLETTERS-"s, Repeated("É", 15), Repeated("😀", 7) + "X"}) {
      Info info;
      info.type = "  " + ten + "  ";
      info.cohort = ten;
      info.employee = " " + fifteen + " ";
      EXPECT_EQ(StatementOf(info), UpdateStatement(info));
      EXPECT_EQ(Query("SELECT cat2, cat4, alphaid FROM provider"),
                (Rows{{"  " + ten + "  ", ten, " " + fifteen + " "}}));
    }
  }
}

TEST_F(AdditionalInfo, EveryRowOfThePinIsUpdated) {
  AddFilledProvider(" P1 ", "31", "N");
  AddFilledProvider("P2", "15", "Y");
  Run({});
  EXPECT_EQ(Query("SELECT pin, cat2, sector FROM provider ORDER BY pin"),
            (Rows{{" P1 ", "PRIVATE", "12"}, {"P1", "PRIVATE", "12"}, {"P2", "OC2", "15"}}));
}

// The day may change while a call runs.
TEST_F(AdditionalInfo, TodayIsTakenAtTheStart) {
  RunAcrossMidnight([](cLotrix& own) { Call(own, {}); });
  EXPECT_EQ(Query("SELECT chgdate FROM provider"), (Rows{{"2026-11-20"}}));
}

// --- The checks, in their order -------------------------------------------------

enum Check {
  kBlankPin,
  kBlankType,
  kBlankClassification,
  kBlankCertification,
  kBlankCohort,
  kBlankEmployee,
  kBlankQuorvin,
  kTypeLength,
  kClassificationLength,
  kCohortLength,
  kEmployeeLength,
  kCertification,
  kClassification,
  kQuorvin,
  kPinLength,
  kPinCharacters,
  kPin,
  kStatement
};

// Wrong from that check on: the order of the checks is the order in which the
// faults are found when they are mended one by one.
Info WrongFrom(Check first) {
  Info wrong;
  wrong.pin = first > kPin             ? "P1"
              : first > kPinCharacters ? "NOBODY"
              : first > kPinLength     ? "P-1"
              : first > kBlankPin      ? "TOO-LONG"
                                       : " ";
  wrong.type = first > kTypeLength ? "O'NEIL" : first > kBlankType ? "ELEVEN LONG" : " ";
  wrong.classification = first > kClassification         ? "12"
                         : first > kClassificationLength ? "AB"
                         : first > kBlankClassification  ? "ABC"
                                                         : " ";
  wrong.certification = first > kCertification        ? "1/5/2004"
                        : first > kBlankCertification ? "13/45/2001"
                                                      : " ";
  wrong.cohort = first > kCohortLength ? "O'NEIL" : first > kBlankCohort ? "ELEVEN LONG" : " ";
  wrong.employee = first > kEmployeeLength  ? "O'NEIL"
                   : first > kBlankEmployee ? "SIXTEEN LETTERS-"
                                            : " ";
  wrong.quorvin = first > kQuorvin ? "YES" : first > kBlankQuorvin ? "Y" : " ";
  return wrong;
}

struct Blank {
  Check check;
  std::string Info::*field;
  std::int32_t code;
  const char* message;
};
const Blank kBlanks[] = {
    {kBlankPin, &Info::pin, 2000, "A null provider PIN was entered"},
    {kBlankType, &Info::type, 20119, "Null Provider Type for Provider table Update"},
    {kBlankClassification, &Info::classification, 20061,
     "Classification code is needed when creating new provider records in LOTRIX"},
    {kBlankCertification, &Info::certification, 20120,
     "Null VFC Certification Date for Provider table Add/Update"},
    {kBlankCohort, &Info::cohort, 20121, "Null Cohort for Provider table Update"},
    {kBlankEmployee, &Info::employee, 20122, "Null Employee ID Number for Provider table Update"},
    {kBlankQuorvin, &Info::quorvin, 20123, "Null Quorvin Value for Provider table Update"}};

TEST_F(AdditionalInfo, FirstTheBlankArgumentsInTheirOrder) {
  for (const Blank& blank : kBlanks) {
    for (const char* const text : {"", "   "}) {
      SCOPED_TRACE(blank.message);
      Info wrong = WrongFrom(blank.check);
      wrong.*blank.field = text;
      ExpectRefusedUnasked(wrong, blank.code, blank.message);
    }
  }
}

TEST_F(AdditionalInfo, ABlankArgumentAloneIsRefused) {
  for (const Blank& blank : kBlanks) {
    SCOPED_TRACE(blank.message);
    Info info;
    info.*blank.field = " ";
    ExpectRefusedUnasked(info, blank.code, blank.message);
  }
}

struct Limit {
  Check check;
  std::string Info::*field;
  int characters;
  const char* message;
};
const Limit kLimits[] = {
    {kTypeLength, &Info::type, 10,
     "Incorrect field length for Provider table Update: Provider Type"},
    {kClassificationLength, &Info::classification, 2,
     "Incorrect field length for Provider table Update: Classification"},
    {kCohortLength, &Info::cohort, 10, "Incorrect field length for Provider table Update: Cohort"},
    {kEmployeeLength, &Info::employee, 15,
     "Incorrect field length for Provider table Update: Employee ID Number"}};

TEST_F(AdditionalInfo, ThenTheLengthsInTheirOrder) {
  for (const Limit& limit : kLimits) {
    const int one = limit.characters + 1;
    for (const std::string& text :
         {std::string(static_cast<std::size_t>(one), '1'),
          "  " + std::string(static_cast<std::size_t>(one), 'X') + "  ", Repeated("é", one),
          Repeated("😀", limit.characters / 2 + 1),
          "X" + std::string(static_cast<std::size_t>(limit.characters - 1), ' ') + "X",
          Repeated("É", 32767)}) {
      SCOPED_TRACE(limit.message);
      Info wrong = WrongFrom(limit.check);
      wrong.*limit.field = text;
      ExpectRefusedUnasked(wrong, 20132, limit.message);
    }
  }
}

TEST_F(AdditionalInfo, ThenTheCertificationDate) {
  for (const std::string& date :
       {"13/45/2001"s, "2/30/2004"s, "2/29/2003"s, "SOON"s, "1/5"s, "5"s, "1/5/2004'"s,
        "1/5/2004}"s, "10:30"s, "1/5/2004 25:00"s, "13/5/2001"s,
        "\0"
        "1/5/2004"s}) {
    SCOPED_TRACE(date);
    Info wrong = WrongFrom(kCertification);
    wrong.certification = date;
    ExpectRefusedUnasked(wrong, 20073, "VFC certification date is not a valid date");
    wrong = {};
    wrong.certification = date;
    ExpectRefusedUnasked(wrong, 20073, "VFC certification date is not a valid date");
  }
}

TEST_F(AdditionalInfo, ThenThatTheClassificationIsANumber) {
  for (const std::string& classification :
       {"AB"s, "1A"s, "1%"s, "."s, "$"s, "&H"s, "1E"s, "1'"s, "--"s, "é"s, "😀"s,
        "\0"
        "1"s}) {
    SCOPED_TRACE(classification);
    Info wrong = WrongFrom(kClassification);
    wrong.classification = classification;
    ExpectRefusedUnasked(wrong, 20125, "Non-numeric Classification for Provider table Update");
  }
}

TEST_F(AdditionalInfo, ThenTheFlag) {
  for (const std::string& flag : {"Y"s, "N"s, "YE"s, "YESS"s, "N O"s, "TRUE"s, "YES'"s, "YES\0"s,
                                  "1"s, "\u00a0YES"s, std::string(32767, 'Y')}) {
    SCOPED_TRACE(flag);
    Info wrong = WrongFrom(kQuorvin);
    wrong.quorvin = flag;
    ExpectRefusedUnasked(wrong, 20124, "Quorvin Value not YES/NO for Provider table Update");
  }
}

TEST_F(AdditionalInfo, ThenTheLengthOfThePin) {
  const std::string message =
      "The number of characters in the pin entered exceeds the maximum allowed";
  for (const std::string& pin :
       {"TOO-LONG"s, "1234567"s, "ÉÉÉÉÉÉÉ"s, "      7"s, std::string(32767, 'P')}) {
    Info wrong = WrongFrom(kPinLength);
    wrong.pin = pin;
    ExpectRefused(wrong, 20078, message, PinRefused(message), {});
  }
}

TEST_F(AdditionalInfo, ThenTheCharactersOfThePin) {
  const std::string message =
      "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed.";
  for (const std::string& pin : {"P-1"s, "P1'"s, " P1"s, "ÉÉÉÉÉÉ"s, "P1\0"s, "\0"s}) {
    Info wrong = WrongFrom(kPinCharacters);
    wrong.pin = pin;
    ExpectRefused(wrong, 20079, message, PinRefused(message), {});
  }
}

TEST_F(AdditionalInfo, APinThatTwoProvidersHaveIsRefused) {
  AddFilledProvider("TWIN", "10", "Y");
  AddFilledProvider("TWIN", "29", "Y");
  const std::string message = "Provider PIN entered has a duplicate";
  Info wrong = WrongFrom(kStatement);
  wrong.pin = "TWIN";
  ExpectRefused(wrong, 20003, message, PinRefused(message), {ProviderCount("TWIN")});
}

TEST_F(AdditionalInfo, APinCountThatIsNoneIsRefused) {
  const std::string message = "Error while verifying provider PIN in LOTRIX";
  const std::vector<std::vector<Value>> answers = {
      {}, {std::int64_t{0}, std::int64_t{0}}, {std::int64_t{-1}}};
  for (const std::vector<Value>& rows : answers) {
    AnswerEveryQuery(rows);
    ExpectRefused(WrongFrom(kStatement), 20005, message, PinRefused(message),
                  {ProviderCount("P1")});
  }
}

TEST_F(AdditionalInfo, AnInactiveProviderIsRefused) {
  Execute("UPDATE provider SET active = 'N'");
  const std::string message =
      "The provider enter is currently inactivate in LOTRIX. Cannot proceed with the current "
      "operation";
  ExpectRefused(WrongFrom(kStatement), 20083, message, InactiveProviderRefused(message),
                {ProviderCount("P1"), ProviderActive("P1")});
}

TEST_F(AdditionalInfo, ThenThatTheProviderIsThere) {
  AddFilledProvider("DEPOT", "31", "Y");
  for (const char* const pin : {"NOBODY", "DEPOT", "0"}) {
    Info wrong = WrongFrom(kPin);
    wrong.pin = pin;
    ExpectRefused(
        wrong, 20004, "Provider entered not found in LOTRIX",
        Joined({ConnectionRead(), {BeginOf("ValidateProviderPIN"), EndOf("ValidateProviderPIN")}}),
        {ProviderCount(pin)});
    Info info;
    info.pin = pin;
    ExpectRefused(
        info, 20004, "Provider entered not found in LOTRIX",
        Joined({ConnectionRead(), {BeginOf("ValidateProviderPIN"), EndOf("ValidateProviderPIN")}}),
        {ProviderCount(pin)});
  }
}

// --- Values that would leave their place, and very long ones --------------------

Lines StatementRefused(const Info& spliced) {
  return Joined(
      {ActiveProviderPassed(), {"information " + UpdateStatement(spliced)}, ConnectionRead()});
}

TEST_F(AdditionalInfo, TheStatementComesLast) {
  const Info wrong = WrongFrom(kStatement);
  ExpectRefused(wrong, Numbered(EngineError::kStatementRefused),
                [&](const std::string&) { return StatementRefused(wrong); });
}

TEST_F(AdditionalInfo, AnApostropheOrZeroCharacterInAFreeTextIsRefusedAsSyntax) {
  for (std::string Info::*const field : {&Info::type, &Info::cohort, &Info::employee}) {
    for (const std::string& text : {"O'NEIL"s, "'"s, "''"s, "A', A='B"s, "X\0"s, "\0"s}) {
      SCOPED_TRACE(text);
      Info info;
      info.*field = text;
      const Error error =
          ExpectRefused(info, Numbered(EngineError::kStatementRefused), [&](const std::string&) {
            Info logged = info;
            return StatementRefused(logged);
          });
    }
  }
  Run({});
  EXPECT_EQ(Query("SELECT cat2, cat4, alphaid FROM provider"),
            (Rows{{"PRIVATE", "C-7", "36-1234567"}}));
}

TEST_F(AdditionalInfo, AnErrorOfTheEngineIsAProblemOfTheOperation) {
  answer_ = [this](const std::string& text) -> std::optional<std::vector<Value>> {
    if (text != ProviderActive("P1")) return std::nullopt;
    database().Forbid("UPDATE", "provider");
    return std::nullopt;
  };
  const Error error = Refusal([&] { Run({}); });
  EXPECT_EQ(error.source(), "LOTRIX DLL");
  EXPECT_EQ(Trace(),
            Joined({Begun(), StatementRefused({}), {ProblemOf(kOperation, error.description())}}));
  EXPECT_EQ(Query("SELECT cat2 FROM provider"), (Rows{{"OC2"}}));
  answer_ = {};
  database().Allow("provider");
  Run({});
  EXPECT_EQ(Trace(), Joined({Begun(), StatementRefused({}), Ended()}));
  EXPECT_EQ(Query("SELECT cat2 FROM provider"), (Rows{{"PRIVATE"}}));
}

TEST_F(AdditionalInfo, AVeryLongArgumentOverflowsWhereItIsTestedForBlank) {
  for (const Blank& blank : kBlanks) {
    for (const std::string& text : {std::string(kMebibyte, '1'), Repeated("é", 32768)}) {
      SCOPED_TRACE(blank.message);
      Info wrong = WrongFrom(blank.check);
      wrong.*blank.field = text;
      ExpectRefused(wrong, 6, [](const std::string&) { return Lines{}; });
      EXPECT_EQ(Statements(), Lines{});
    }
  }
}

TEST_F(AdditionalInfo, VeryManyBlanksAroundATextAreStored) {
  Info info;
  info.type = std::string(kMebibyte, ' ') + "TENLETTERS";
  EXPECT_EQ(StatementOf(info), UpdateStatement(info));
  EXPECT_EQ(Query("SELECT cat2 FROM provider"), (Rows{{info.type}}));
}

}  // namespace
}  // namespace lotrix::test

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/expected_statements.h"
#include "tests/support/expected_trace.h"
#include "tests/support/extremes.h"
#include "tests/support/operation_fixture.h"

namespace lotrix::test {
namespace {

using std::string_literals::operator""s;

// A call's arguments; as they stand, a physician without any optional field.
struct Physician {
  std::string pin = "P1";
  std::string lastName = "SMITH";
  std::string firstName = "ANN";
  std::string initial = {};
  std::string title = {};
  std::string site = {};
  std::string medicaid = {};
  std::string license = {};
};

Physician WithEveryOptional() {
  Physician physician;
  physician.initial = "q";
  physician.title = "md";
  physician.site = "site-1";
  physician.medicaid = "Med-2a";
  physician.license = "lic-3";
  return physician;
}

struct Optional {
  const char* column;
  std::string Physician::*argument;
};
// In the order of the statements.
const Optional kOptionals[] = {{"initial", &Physician::initial},
                               {"title", &Physician::title},
                               {"other1", &Physician::site},
                               {"medicaidno", &Physician::medicaid},
                               {"medlicense", &Physician::license}};

// The lines of the trace, piece by piece as a call comes by them.

Lines LookedFor() { return Asked("ValidatePhysicnRecord"); }
Lines LookRefused(const std::string& description) {
  return RefusedBy("ValidatePhysicnRecord", description);
}

// The statements as a call builds them.

std::string PhysicianCount(const std::string& pin, const std::string& lastName,
                           const std::string& firstName) {
  return "SELECT count(*) FROM physicn WHERE pin = '" + pin + "' AND lastname = '" + lastName +
         "' AND firstname = '" + firstName + "' ";
}
std::string InsertStatement(const std::string& columns, const std::string& values) {
  return "INSERT INTO physicn (pin, lastname, firstname, " + columns +
         "chgdate) VALUES ( 'P1', 'SMITH', 'ANN', " + values + "{11/20/2026} )";
}
std::string UpdateStatement(const std::string& optionals) {
  return "UPDATE physicn SET firstname = 'ANN', " + optionals +
         "chgdate = {11/20/2026} WHERE  pin = 'P1' AND lastname = 'SMITH' ";
}
std::string DeleteStatement(const std::string& pin) {
  return "Delete From physicn Where pin == '" + pin + "'";
}

void Call(cLotrix& lotrix, const Physician& given) {
  lotrix.physicianAddUpdate(given.pin, given.lastName, given.firstName, given.initial, given.title,
                            given.site, given.medicaid, given.license);
}

class PhysicianTable : public OperationTest {
 protected:
  void SetUp() override { WatchOperations(); }

  void Add(const std::string& pin, const std::string& lastName, const std::string& firstName) {
    Execute(
        "INSERT INTO physicn (pin, lastname, firstname, initial, title, other1, medicaidno, "
        "medlicense, chgdate) VALUES ('" +
        pin + "', '" + lastName + "', '" + firstName +
        "', 'O', 'OT', 'OS', 'OM', 'OL', '1999-01-02')");
  }
  [[nodiscard]] Rows Physicians() {
    return Query(
        "SELECT pin, lastname, firstname, initial, title, other1, medicaidno, medlicense, chgdate "
        "FROM physicn ORDER BY pin, lastname, firstname");
  }
};

class PhysicianAddUpdate : public PhysicianTable {
 protected:
  void Run(const Physician& physician) { Call(lotrix(), physician); }
  std::string StatementOf(const Physician& physician) {
    return LastStatementOf([&] { Run(physician); });
  }

  // Refused with that number, the whole trace as `lines` tells it, and nothing
  // written.
  Error ExpectRefused(const Physician& physician, std::int32_t number,
                      const std::function<Lines(const std::string& description)>& lines) {
    const Rows before = Physicians();
    Error error = ExpectRefusal(
        "physicianAddUpdate", [&] { Run(physician); }, number, lines);
    EXPECT_EQ(Physicians(), before);
    return error;
  }
  // Before anything is asked of the engine.
  void ExpectRefusedUnasked(const Physician& physician, std::int32_t number,
                            const std::string& message = {}) {
    const Error error =
        ExpectRefused(physician, number, [](const std::string&) { return Lines{}; });
    if (!message.empty()) {
      EXPECT_EQ(error.description(), message);
    }
    EXPECT_EQ(Statements(), Lines{});
  }
};

// --- A physician who is not there yet -------------------------------------------

TEST_F(PhysicianAddUpdate, APhysicianIsAdded) {
  Run({});
  EXPECT_EQ(Physicians(), (Rows{{"P1", "SMITH", "ANN", "<null>", "<null>", "<null>", "<null>",
                                 "<null>", "2026-11-20"}}));
}

TEST_F(PhysicianAddUpdate, TheStatementsOfANewPhysician) {
  Run({});
  EXPECT_EQ(Statements(),
            (Lines{"SELECT count(*) FROM physicn WHERE pin = 'P1' AND lastname = 'SMITH' AND "
                   "firstname = 'ANN' ",
                   "INSERT INTO physicn (pin, lastname, firstname, chgdate) VALUES ( 'P1', "
                   "'SMITH', 'ANN', {11/20/2026} )"}));
}

TEST_F(PhysicianAddUpdate, TheTraceOfANewPhysicianHasNoEndLine) {
  Run({});
  EXPECT_EQ(Trace(),
            (Lines{"information Begin: physicianAddUpdate()", "information Begin: Get Connection()",
                   "information End: GetConnection()", "information Begin: ValidatePhysicnRecord()",
                   "information End: ValidatePhysicnRecord()",
                   "information INSERT INTO physicn (pin, lastname, firstname, chgdate) VALUES ( "
                   "'P1', 'SMITH', 'ANN', {11/20/2026} )",
                   "information Begin: Get Connection()", "information End: GetConnection()"}));
}

TEST_F(PhysicianAddUpdate, AnInsertWithEveryOptional) {
  EXPECT_EQ(StatementOf(WithEveryOptional()),
            "INSERT INTO physicn (pin, lastname, firstname, initial, title, other1, medicaidno, "
            "medlicense, chgdate) VALUES ( 'P1', 'SMITH', 'ANN', 'Q', 'MD', 'SITE-1', 'Med-2a', "
            "'LIC-3', {11/20/2026} )");
  EXPECT_EQ(Physicians(),
            (Rows{{"P1", "SMITH", "ANN", "Q", "MD", "SITE-1", "Med-2a", "LIC-3", "2026-11-20"}}));
}

TEST_F(PhysicianAddUpdate, AnInsertWithEachOptionalAlone) {
  for (const Optional& optional : kOptionals) {
    const std::string column = optional.column;
    SCOPED_TRACE(column);
    Physician physician;
    physician.*optional.argument = " é ";
    const std::string stored = column == "medicaidno" ? " é " : " É ";
    EXPECT_EQ(StatementOf(physician), InsertStatement(column + ", ", "'" + stored + "', "));
    EXPECT_EQ(Query("SELECT " + column + " FROM physicn"), (Rows{{stored}}));
    Execute("DELETE FROM physicn");
  }
}

TEST_F(PhysicianAddUpdate, BlankOptionalsAreNotInserted) {
  Physician physician;
  for (const Optional& optional : kOptionals) physician.*optional.argument = "   ";
  physician.title = std::string(kMebibyte, ' ');
  EXPECT_EQ(StatementOf(physician), InsertStatement("", ""));
}

TEST_F(PhysicianAddUpdate, TheTextsAreStoredInUpperCaseAndUntrimmedButForTheMedicaidNumber) {
  Run({.pin = " p1 ",
       .lastName = " o neil é ",
       .firstName = " ann straße ",
       .initial = " q ",
       .title = " md ÿ",
       .site = " a ",
       .medicaid = " bÉé ",
       .license = " c "});
  EXPECT_EQ(Physicians(), (Rows{{" P1 ", " O NEIL É ", " ANN STRAßE ", " Q ", " MD Ÿ", " A ",
                                 " bÉé ", " C ", "2026-11-20"}}));
}

TEST_F(PhysicianAddUpdate, TheProviderIsNotLookedFor) {
  Physician physician;
  physician.pin = "no such provider!";
  Run(physician);
  EXPECT_EQ(Query("SELECT pin FROM physicn"), (Rows{{"NO SUCH PROVIDER!"}}));
}

// --- A physician who is there ------------------------------------------------------

TEST_F(PhysicianAddUpdate, ABlankOptionalKeepsItsStoredValue) {
  Add("P1", "SMITH", "ANN");
  Physician physician;
  physician.title = "   ";
  Run(physician);
  EXPECT_EQ(Physicians(),
            (Rows{{"P1", "SMITH", "ANN", "O", "OT", "OS", "OM", "OL", "2026-11-20"}}));
}

TEST_F(PhysicianAddUpdate, TheStatementsOfAnUpdate) {
  Add("P1", "SMITH", "ANN");
  Run({});
  EXPECT_EQ(Statements(),
            (Lines{"SELECT count(*) FROM physicn WHERE pin = 'P1' AND lastname = 'SMITH' AND "
                   "firstname = 'ANN' ",
                   "UPDATE physicn SET firstname = 'ANN', chgdate = {11/20/2026} WHERE  pin = "
                   "'P1' AND lastname = 'SMITH' "}));
}

TEST_F(PhysicianAddUpdate, TheTraceOfAnUpdateHasNoEndLine) {
  Add("P1", "SMITH", "ANN");
  Run({});
  EXPECT_EQ(Trace(),
            (Lines{"information Begin: physicianAddUpdate()", "information Begin: Get Connection()",
                   "information End: GetConnection()", "information Begin: ValidatePhysicnRecord()",
                   "information End: ValidatePhysicnRecord()",
                   "information UPDATE physicn SET firstname = 'ANN', chgdate = {11/20/2026} "
                   "WHERE  pin = 'P1' AND lastname = 'SMITH' ",
                   "information Begin: Get Connection()", "information End: GetConnection()"}));
}

TEST_F(PhysicianAddUpdate, AnUpdateWithEveryOptional) {
  Add("P1", "SMITH", "ANN");
  EXPECT_EQ(StatementOf(WithEveryOptional()),
            "UPDATE physicn SET firstname = 'ANN', initial = 'Q', title = 'MD', "
            "other1 = 'SITE-1', medicaidno = 'Med-2a', medlicense = 'LIC-3', "
            "chgdate = {11/20/2026} WHERE  pin = 'P1' AND lastname = 'SMITH' ");
  EXPECT_EQ(Physicians(),
            (Rows{{"P1", "SMITH", "ANN", "Q", "MD", "SITE-1", "Med-2a", "LIC-3", "2026-11-20"}}));
}

TEST_F(PhysicianAddUpdate, AnUpdateWithEachOptionalAlone) {
  for (std::size_t position = 0; position < std::size(kOptionals); ++position) {
    const Optional& optional = kOptionals[position];
    const std::string column = optional.column;
    SCOPED_TRACE(column);
    Execute("DELETE FROM physicn");
    Add("P1", "SMITH", "ANN");
    Row expected{"P1", "SMITH", "ANN", "O", "OT", "OS", "OM", "OL", "2026-11-20"};
    Physician physician;
    physician.*optional.argument = " é ";
    const std::string stored = column == "medicaidno" ? " é " : " É ";
    expected[3 + position] = stored;
    EXPECT_EQ(StatementOf(physician), UpdateStatement(column + " = '" + stored + "', "));
    EXPECT_EQ(Physicians(), Rows{expected});
  }
}

TEST_F(PhysicianAddUpdate, OtherPhysiciansStay) {
  Add("P2", "SMITH", "ANN");
  Add("P1", "SMITHE", "ANN");
  Add("P1", "SMITH", "ANN");
  Run(WithEveryOptional());
  EXPECT_EQ(Physicians(),
            (Rows{{"P1", "SMITH", "ANN", "Q", "MD", "SITE-1", "Med-2a", "LIC-3", "2026-11-20"},
                  {"P1", "SMITHE", "ANN", "O", "OT", "OS", "OM", "OL", "1999-01-02"},
                  {"P2", "SMITH", "ANN", "O", "OT", "OS", "OM", "OL", "1999-01-02"}}));
}

// Whether the physician is there is asked with the first name, what is updated
// goes by the last name alone.
TEST_F(PhysicianAddUpdate, AnotherFirstNameIsAnotherPhysician) {
  Add("P1", "SMITH", "BETTY");
  Run({});
  EXPECT_EQ(Query("SELECT lastname, firstname FROM physicn ORDER BY firstname"),
            (Rows{{"SMITH", "ANN"}, {"SMITH", "BETTY"}}));
}

TEST_F(PhysicianAddUpdate, AnUpdateReachesEveryRowOfTheLastName) {
  Add("P1", "SMITH", "ANN");
  Add("P1", "SMITH", "BETTY");
  Physician physician;
  physician.title = "DR";
  Run(physician);
  EXPECT_EQ(Physicians(),
            (Rows{{"P1", "SMITH", "ANN", "O", "DR", "OS", "OM", "OL", "2026-11-20"},
                  {"P1", "SMITH", "ANN", "O", "DR", "OS", "OM", "OL", "2026-11-20"}}));
  const std::string message = "There are duplicate physicn data records for the current provider";
  const Error error = ExpectRefused(physician, Coded(20097),
                                    [&](const std::string&) { return LookRefused(message); });
  EXPECT_EQ(error.description(), message);
}

TEST_F(PhysicianAddUpdate, LeadingBlanksCountInTheKeyAndTrailingOnesDoNot) {
  Add("P1", "SMITH", "ANN");
  Run({.pin = "p1 ", .lastName = "smith  ", .firstName = "ann "});
  EXPECT_EQ(Statements().back(),
            "UPDATE physicn SET firstname = 'ANN ', chgdate = {11/20/2026} WHERE  pin = 'P1 ' AND "
            "lastname = 'SMITH  ' ");
  EXPECT_EQ(Query("SELECT pin, lastname, firstname FROM physicn"), (Rows{{"P1", "SMITH", "ANN "}}));
  Run({.lastName = " smith"});
  EXPECT_EQ(Query("SELECT pin, lastname, firstname FROM physicn ORDER BY lastname"),
            (Rows{{"P1", " SMITH", "ANN"}, {"P1", "SMITH", "ANN "}}));
}

TEST_F(PhysicianAddUpdate, ASecondCallFindsThePhysicianOfTheFirst) {
  const Physician physician{.lastName = " van é ", .firstName = " ann "};
  Run(physician);
  Run(physician);
  EXPECT_EQ(Query("SELECT lastname, firstname FROM physicn"), (Rows{{" VAN É ", " ANN "}}));
}

// The day may change while a call runs.
TEST_F(PhysicianAddUpdate, TodayIsTakenAtTheStart) {
  RunAcrossMidnight([](cLotrix& own) { Call(own, {}); });
  EXPECT_EQ(Query("SELECT chgdate FROM physicn"), (Rows{{"2026-11-20"}}));
}

// --- The checks, in their order ---------------------------------------------------

enum Check {
  kBlankPin,
  kBlankLastName,
  kBlankFirstName,
  kLastName,
  kFirstName,
  kInitial,
  kTitle,
  kSite,
  kMedicaid,
  kLicense,
  kRecord
};

// Wrong from that check on: the order of the checks is the order in which the
// faults are found when they are mended one by one.
Physician WrongFrom(Check first) {
  Physician wrong;
  wrong.pin = first > kBlankPin ? "TWIN" : " ";
  wrong.lastName = first > kLastName        ? "SMITH"
                   : first > kBlankLastName ? "TWENTY-ONE CHARACTERS"
                                            : " ";
  wrong.firstName = first > kFirstName ? "ANN" : first > kBlankFirstName ? "SIXTEEN LETTERS-" : " ";
  wrong.initial = first > kInitial ? "Q" : "QR";
  wrong.title = first > kTitle ? "O'NEIL" : "PROFESSORS";
  wrong.site = first > kSite ? "O'NEIL" : "THIRTEEN CHAR";
  wrong.medicaid = first > kMedicaid ? "O'NEIL" : "THIRTEEN CHAR";
  wrong.license = first > kLicense ? "O'NEIL" : "THIRTEEN CHAR";
  return wrong;
}

struct Blank {
  Check check;
  std::string Physician::*field;
  std::int32_t code;
  const char* message;
};
const Blank kBlanks[] = {
    {kBlankPin, &Physician::pin, 2000, "A null provider PIN was entered"},
    {kBlankLastName, &Physician::lastName, 20126, "Null Last Name for Physicn table Add/Update"},
    {kBlankFirstName, &Physician::firstName, 20127,
     "Null First Name for Physicn table Add/Update"}};

TEST_F(PhysicianAddUpdate, FirstTheBlankArgumentsInTheirOrder) {
  for (const Blank& blank : kBlanks) {
    for (const char* const text : {"", "   "}) {
      SCOPED_TRACE(blank.message);
      Physician wrong = WrongFrom(blank.check);
      wrong.*blank.field = text;
      ExpectRefusedUnasked(wrong, Coded(blank.code), blank.message);
      Physician physician;
      physician.*blank.field = text;
      ExpectRefusedUnasked(physician, Coded(blank.code), blank.message);
    }
  }
}

struct Limit {
  Check check;
  std::string Physician::*field;
  int characters;
  const char* message;
};
const Limit kLimits[] = {
    {kLastName, &Physician::lastName, 20,
     "Incorrect field length for Physicn table Add/Update: Last Name"},
    {kFirstName, &Physician::firstName, 15,
     "Incorrect field length for Physicn table Add/Update: First Name"},
    {kInitial, &Physician::initial, 1,
     "Incorrect field length for Physicn table Add/Update: Middle Initial"},
    {kTitle, &Physician::title, 9, "Incorrect field length for Physicn table Add/Update: Title"},
    {kSite, &Physician::site, 12,
     "Incorrect field length for Physicn table Add/Update: Site Med ID"},
    {kMedicaid, &Physician::medicaid, 12,
     "Incorrect field length for Physicn table Add/Update: Medicaid Number"},
    {kLicense, &Physician::license, 12,
     "Incorrect field length for Physicn table Add/Update: License Number"}};

TEST_F(PhysicianAddUpdate, ThenTheLengthsInTheirOrder) {
  for (const Limit& limit : kLimits) {
    const int one = limit.characters + 1;
    for (const std::string& text :
         {std::string(static_cast<std::size_t>(one), 'X'),
          "  " + std::string(static_cast<std::size_t>(one), 'X') + "  ", Repeated("é", one),
          Repeated("😀", limit.characters / 2 + 1), Repeated("X", one - 1) + "\u0301",
          Repeated("X", one - 1) + "\0"s, Repeated("É", 32767)}) {
      SCOPED_TRACE(limit.message);
      Physician wrong = WrongFrom(limit.check);
      wrong.*limit.field = text;
      ExpectRefusedUnasked(wrong, Coded(20131), limit.message);
    }
  }
}

TEST_F(PhysicianAddUpdate, TextsOfTheirExactLimitsAreAccepted) {
  for (const Limit& limit : kLimits) {
    for (const std::string& text :
         {Repeated("X", limit.characters), Repeated("É", limit.characters),
          Repeated("😀", limit.characters / 2) + Repeated("X", limit.characters % 2),
          Repeated("X", limit.characters - 1) + "ß"}) {
      SCOPED_TRACE(limit.message);
      const std::string blanks = "  " + text + "  ";
      Physician physician;
      physician.*limit.field = blanks;
      EXPECT_NE(StatementOf(physician).find("'" + blanks + "'"), std::string::npos);
      EXPECT_EQ(Query("SELECT count(*) FROM physicn WHERE '" + blanks +
                      "' IN (lastname, firstname, initial, title, other1, medicaidno, medlicense)"),
                (Rows{{"1"}}));
      Execute("DELETE FROM physicn");
    }
  }
}

TEST_F(PhysicianAddUpdate, ThenThatThePhysicianIsNotThereTwice) {
  Add("TWIN", "SMITH", "ANN");
  Add("TWIN", "SMITH", "ANN");
  const std::string message = "There are duplicate physicn data records for the current provider";
  const Error error = ExpectRefused(WrongFrom(kRecord), Coded(20097),
                                    [&](const std::string&) { return LookRefused(message); });
  EXPECT_EQ(error.description(), message);
  EXPECT_EQ(Statements(), Lines{PhysicianCount("TWIN", "SMITH", "ANN")});
}

TEST_F(PhysicianAddUpdate, ACountThatIsNoneIsRefused) {
  const std::string message = "Error while reading physicn data for current physician";
  const std::vector<std::vector<Value>> answers = {
      {}, {std::int64_t{0}, std::int64_t{0}}, {std::int64_t{-1}}};
  for (const std::vector<Value>& rows : answers) {
    AnswerEveryQuery(rows);
    const Error error =
        ExpectRefused({}, Coded(20096), [&](const std::string&) { return LookRefused(message); });
    EXPECT_EQ(error.description(), message);
    EXPECT_EQ(Statements(), Lines{PhysicianCount("P1", "SMITH", "ANN")});
  }
}

// --- Values that would leave their place, and very long ones ------------------------

TEST_F(PhysicianAddUpdate, AnApostropheOrZeroCharacterInTheKeyIsRefusedWhereItIsLookedUp) {
  Add("P1", "SMITH", "ANN");
  for (std::string Physician::*const field :
       {&Physician::pin, &Physician::lastName, &Physician::firstName}) {
    for (const std::string& text : {"O'NEIL"s, "'"s, "X' OR '1'='1"s, "X\0"s, "\0"s}) {
      SCOPED_TRACE(text);
      Physician physician;
      physician.*field = text;
      ExpectRefused(physician, Numbered(EngineError::kStatementRefused), LookRefused);
    }
  }
}

TEST_F(PhysicianAddUpdate, AnApostropheOrZeroCharacterInAnOptionalIsRefusedAsSyntax) {
  for (const bool there : {false, true}) {
    if (there) Add("P1", "SMITH", "ANN");
    for (const Optional& optional : kOptionals) {
      for (const std::string& text : {"'"s, "\0"s}) {
        SCOPED_TRACE(optional.column);
        Physician physician;
        physician.*optional.argument = text;
        const std::string column = optional.column;
        ExpectRefused(physician, Numbered(EngineError::kStatementRefused), [&](const std::string&) {
          return Joined({LookedFor(),
                         Logged(there ? UpdateStatement(column + " = '" + text + "', ")
                                      : InsertStatement(column + ", ", "'" + text + "', ")),
                         ConnectionRead()});
        });
      }
    }
  }
  Run({});
  EXPECT_EQ(Query("SELECT chgdate FROM physicn"), (Rows{{"2026-11-20"}}));
}

TEST_F(PhysicianAddUpdate, AnErrorOfTheEngineIsAProblemOfTheOperation) {
  database().Forbid("INSERT", "physicn");
  const Error error = Refusal([&] { Run({}); });
  EXPECT_EQ(error.source(), "LOTRIX DLL");
  EXPECT_EQ(Trace(), Joined({{"information Begin: physicianAddUpdate()"},
                             LookedFor(),
                             Logged(InsertStatement("", "")),
                             ConnectionRead(),
                             {"error Problem: In physicianAddUpdate() " + error.description()}}));
  EXPECT_EQ(Physicians(), Rows{});
  Execute("DROP TABLE physicn");
  ForgetTrace();
  const Error missing = Refusal([&] { Run({}); });
  EXPECT_EQ(missing.number(), Numbered(EngineError::kNoSuchTable));
  EXPECT_EQ(Trace(), Joined({{"information Begin: physicianAddUpdate()"},
                             LookRefused(missing.description()),
                             {"error Problem: In physicianAddUpdate() " + missing.description()}}));
}

TEST_F(PhysicianAddUpdate, AVeryLongArgumentOverflowsWhereItIsTestedForBlank) {
  for (const std::string& text : {std::string(kMebibyte, 'X'), Repeated("é", 32768)}) {
    for (const Blank& blank : kBlanks) {
      Physician wrong = WrongFrom(blank.check);
      wrong.*blank.field = text;
      ExpectRefusedUnasked(wrong, 6);
    }
    // The optionals are tested for blank before any length is looked at.
    for (const Optional& optional : kOptionals) {
      Physician wrong = WrongFrom(kLastName);
      wrong.*optional.argument = text;
      ExpectRefusedUnasked(wrong, 6);
    }
  }
}

TEST_F(PhysicianAddUpdate, APinOfAsManyCharactersAs16BitsCountIsStored) {
  Physician physician;
  physician.pin = Repeated("É", 32767);
  Run(physician);
  Run(physician);
  EXPECT_EQ(Query("SELECT pin FROM physicn"), (Rows{{physician.pin}}));
}

// --- physicianDeleteByPin ------------------------------------------------------------

class PhysicianDelete : public PhysicianTable {
 protected:
  void SetUp() override {
    PhysicianTable::SetUp();
    AddProvider("P1", "15", "Y");
  }
  void AddProvider(const std::string& pin, const std::string& sector, const std::string& active) {
    Execute("INSERT INTO provider (pin, sector, active) VALUES ('" + pin + "', " + sector + ", '" +
            active + "')");
  }
  void ExpectRefused(const std::string& pin, std::int32_t code, const std::string& message,
                     const Lines& lines, const Lines& statements) {
    const Rows before = Physicians();
    ForgetTrace();
    static_cast<void>(Statements());
    ExpectError(Refusal([&] { lotrix().physicianDeleteByPin(pin); }), Coded(code), message);
    EXPECT_EQ(Trace(), Joined({{"information Begin: physicianDeleteByPin()"},
                               ConnectionRead(),
                               {BeginOf("ValidateProviderPIN")},
                               lines,
                               {ProblemOf("ValidateProviderPIN", message),
                                "error Problem: In physicianDeleteByPin() " + message}}));
    EXPECT_EQ(Statements(), statements);
    EXPECT_EQ(Physicians(), before);
  }
};

TEST_F(PhysicianDelete, EveryPhysicianOfThePinIsRemovedAndNoOther) {
  Add("P1", "SMITH", "ANN");
  Add("P1", "SMITH", "ANN");
  Add("P1 ", "JONES", "BOB");
  Add("P2", "SMITH", "ANN");
  Add("P11", "SMITH", "ANN");
  Add(" P1", "SMITH", "ANN");
  Add("p1", "SMITH", "ANN");
  lotrix().physicianDeleteByPin("P1");
  EXPECT_EQ(Query("SELECT pin FROM physicn ORDER BY pin"),
            (Rows{{" P1"}, {"P11"}, {"P2"}, {"p1"}}));
  EXPECT_EQ(Query("SELECT pin FROM provider"), (Rows{{"P1"}}));
}

TEST_F(PhysicianDelete, ItsStatements) {
  lotrix().physicianDeleteByPin("P1");
  EXPECT_EQ(Statements(), (Lines{"SELECT count(*) FROM provider WHERE Sector BETWEEN 10 AND 29 AND "
                                 "ltrim(rtrim(pin)) = 'P1'",
                                 "SELECT active FROM provider WHERE Sector BETWEEN 10 AND 29 AND "
                                 "ltrim(rtrim(pin)) = 'P1'",
                                 "Delete From physicn Where pin == 'P1'"}));
}

TEST_F(PhysicianDelete, ItsTraceHasNoEndLine) {
  lotrix().physicianDeleteByPin("P1");
  EXPECT_EQ(
      Trace(),
      (Lines{"information Begin: physicianDeleteByPin()", "information Begin: Get Connection()",
             "information End: GetConnection()", "information Begin: ValidateProviderPIN()",
             "information Begin: ValidateProviderActiveStatus()",
             "information End: ValidateProviderActiveStatus()",
             "information End: ValidateProviderPIN()",
             "information Delete From physicn Where pin == 'P1'",
             "information Begin: Get Connection()", "information End: GetConnection()"}));
}

TEST_F(PhysicianDelete, WithoutPhysiciansItSucceeds) {
  Add("P2", "SMITH", "ANN");
  EXPECT_NO_THROW(lotrix().physicianDeleteByPin("P1"));
  EXPECT_EQ(Query("SELECT pin FROM physicn"), (Rows{{"P2"}}));
}

TEST_F(PhysicianDelete, AnUnknownProvidersPhysiciansAreRemovedAllTheSame) {
  AddProvider("DEPOT", "31", "N");
  for (const char* const pin : {"NOBODY", "DEPOT"}) {
    SCOPED_TRACE(pin);
    Add(pin, "SMITH", "ANN");
    static_cast<void>(Statements());
    ForgetTrace();
    lotrix().physicianDeleteByPin(pin);
    EXPECT_EQ(Physicians(), Rows{});
    EXPECT_EQ(Statements(), (Lines{ProviderCount(pin), DeleteStatement(pin)}));
    EXPECT_EQ(Trace(), Joined({{"information Begin: physicianDeleteByPin()"},
                               ConnectionRead(),
                               {BeginOf("ValidateProviderPIN"), EndOf("ValidateProviderPIN")},
                               Logged(DeleteStatement(pin)),
                               ConnectionRead()}));
  }
}

// The provider is looked for in upper case, the physicians are not.
TEST_F(PhysicianDelete, ThePinIsComparedAsItIsGiven) {
  AddProvider("ABC", "15", "Y");
  Add("ABC", "SMITH", "ANN");
  lotrix().physicianDeleteByPin("abc");
  EXPECT_EQ(Statements(),
            (Lines{ProviderCount("ABC"), ProviderActive("ABC"), DeleteStatement("abc")}));
  EXPECT_EQ(Query("SELECT pin FROM physicn"), (Rows{{"ABC"}}));
  Add("abc", "SMITH", "ANN");
  lotrix().physicianDeleteByPin("abc");
  EXPECT_EQ(Query("SELECT pin FROM physicn"), (Rows{{"ABC"}}));
  lotrix().physicianDeleteByPin("ABC  ");
  EXPECT_EQ(Statements().back(), DeleteStatement("ABC  "));
  EXPECT_EQ(Physicians(), Rows{});
}

TEST_F(PhysicianDelete, APinTooLongIsRefused) {
  const std::string message =
      "The number of characters in the pin entered exceeds the maximum allowed";
  for (const std::string& pin :
       {"TOO-LONG"s, "1234567"s, "ÉÉÉÉÉÉÉ"s, std::string(kMebibyte, 'P')}) {
    if (pin.size() <= database().LongestIndexedText()) Add(pin, "SMITH", "ANN");
    ExpectRefused(pin, 20078, message, {}, {});
  }
}

TEST_F(PhysicianDelete, APinThatIsNotAlphanumericIsRefused) {
  const std::string message =
      "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed.";
  Add("P1", "SMITH", "ANN");
  for (const std::string& pin : {"P-1"s, ""s, "  "s, " P1"s, "P1'"s, "'='"s, "P1\0"s, "É"s}) {
    SCOPED_TRACE(pin);
    ExpectRefused(pin, 20079, message, {}, {});
  }
}

TEST_F(PhysicianDelete, APinThatTwoProvidersHaveIsRefused) {
  AddProvider("P1", "29", "Y");
  Add("P1", "SMITH", "ANN");
  ExpectRefused("P1", 20003, "Provider PIN entered has a duplicate", {}, {ProviderCount("P1")});
}

TEST_F(PhysicianDelete, APinCountThatIsNoneIsRefused) {
  Add("P1", "SMITH", "ANN");
  const std::vector<std::vector<Value>> answers = {
      {}, {std::int64_t{0}, std::int64_t{0}}, {std::int64_t{-1}}};
  for (const std::vector<Value>& rows : answers) {
    AnswerEveryQuery(rows);
    ExpectRefused("P1", 20005, "Error while verifying provider PIN in LOTRIX", {},
                  {ProviderCount("P1")});
  }
}

TEST_F(PhysicianDelete, AnInactiveProviderIsRefused) {
  AddProvider("OFF", "15", "N");
  Add("OFF", "SMITH", "ANN");
  const std::string message =
      "The provider enter is currently inactivate in LOTRIX. Cannot proceed with the current "
      "operation";
  ExpectRefused(
      "OFF", 20083, message,
      {BeginOf("ValidateProviderActiveStatus"), ProblemOf("ValidateProviderActiveStatus", message)},
      {ProviderCount("OFF"), ProviderActive("OFF")});
}

TEST_F(PhysicianDelete, AnErrorOfTheEngineIsAProblemOfTheOperation) {
  Execute("DROP TABLE physicn");
  const Error error = Refusal([&] { lotrix().physicianDeleteByPin("P1"); });
  EXPECT_EQ(error.number(), Numbered(EngineError::kNoSuchTable));
  EXPECT_EQ(error.source(), "LOTRIX DLL");
  EXPECT_EQ(Trace(), Joined({{"information Begin: physicianDeleteByPin()"},
                             ActiveProviderPassed(),
                             Logged(DeleteStatement("P1")),
                             ConnectionRead(),
                             {"error Problem: In physicianDeleteByPin() " + error.description()}}));
}

}  // namespace
}  // namespace lotrix::test

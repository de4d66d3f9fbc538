#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/expected_statements.h"
#include "tests/support/expected_trace.h"
#include "tests/support/extremes.h"
#include "tests/support/operation_fixture.h"

namespace lotrix::test {
namespace {

// A call's arguments; as they stand, a count that is accepted.
struct Count {
  std::string pin = "P1";
  std::string vaccine = "HEPA";
  std::string doses = "12";
  std::string date = "1/5/2004";
};

// Wrong in every argument: the order of the checks is the order in which its
// faults are found when they are mended one by one.
Count AllWrong() { return {.pin = "TOOLONG", .vaccine = " ", .doses = " ", .date = " "}; }

// The lines of the trace, piece by piece as a call comes by them.

// The name that the operation has among its lines.
const std::string kOperation = "provinvAddUpdate";

Lines Begun() { return {BeginOf(kOperation)}; }
Lines ProviderPassed() { return Asked("ValidateProviderPIN"); }
Lines ChecksPassed() { return Joined({ProviderPassed(), ActiveVaccinePassed()}); }

Lines ProviderRefused(const std::string& description) {
  return RefusedBy("ValidateProviderPIN", description);
}
Lines VaccineRefused(const std::string& description) {
  return Joined({ProviderPassed(), VaccineReferenceRefused(description)});
}

// The statements as a call builds them.

std::string Insert(const std::string& pin, const std::string& vaccine, const std::string& doses,
                   const std::string& date, const std::string& key) {
  return "INSERT INTO provhas (pin, vaccine, doses, chgdate, idate, provhasid, userid) VALUES ( '" +
         pin + "', '" + vaccine + "', " + doses + ", {11/20/2026}, {" + date + "}, " + key +
         ", 'LTX_DLL') ";
}
// The pin in capitals, as it is asked for.
Lines CheckQueries(const std::string& pin, const std::string& vaccine) {
  return {ProviderCount(pin), VaccineCount(vaccine), VaccineActiveCount(vaccine)};
}

class InventoryAdd : public OperationTest {
 protected:
  void SetUp() override {
    Execute("INSERT INTO provider (pin, sector, active) VALUES ('P1', 15, 'Y')");
    AddVaccine("HEPA");
    Execute("INSERT INTO nextid (ctablename, inextid) VALUES ('PROVHAS', 41), ('OTHER', 7)");
    WatchOperations();
  }

  void AddVaccine(const std::string& vaccine, const std::string& locactiv = "(1 = 0)") {
    Execute("INSERT INTO pvaccref (vaccine, locactiv) VALUES ('" + vaccine + "', " + locactiv +
            ")");
  }

  void Run(const Count& count) {
    lotrix().provinvAdd(count.pin, count.vaccine, count.doses, count.date);
  }

  [[nodiscard]] Rows Counts() {
    return Query(
        "SELECT pin, vaccine, doses, chgdate, idate, provhasid, userid FROM provhas ORDER BY "
        "provhasid");
  }
  [[nodiscard]] Rows Keys() {
    return Query("SELECT ctablename, inextid FROM nextid ORDER BY ctablename DESC, inextid");
  }
  [[nodiscard]] Rows Everything() {
    return Contents({"provhas", "provider", "pvaccref", "distrib"});
  }

  // Refused with that number, the whole trace as `lines` tells it, nothing written
  // and no key taken.
  Error ExpectRefused(const Count& count, std::int32_t number,
                      const std::function<Lines(const std::string& description)>& lines) {
    const Rows before = Everything();
    const Rows keys = Keys();
    Error error = ExpectRefusal(
        kOperation, [&] { Run(count); }, number, lines);
    EXPECT_EQ(Everything(), before);
    EXPECT_EQ(Keys(), keys);
    return error;
  }
  // A catalogue refusal; `lines` stand between the operation's first and last.
  void ExpectRefused(const Count& count, std::int32_t code, const std::string& message,
                     const Lines& lines, const Lines& statements) {
    const Error error =
        ExpectRefused(count, Coded(code), [&](const std::string&) { return lines; });
    EXPECT_EQ(error.description(), message);
    EXPECT_EQ(Statements(), statements);
  }
};

// --- A count that is accepted -----------------------------------------------

TEST_F(InventoryAdd, ACountIsInserted) {
  Run({});
  EXPECT_EQ(Counts(), (Rows{{"P1", "HEPA", "12", "2026-11-20", "2004-01-05", "42", "LTX_DLL"}}));
  EXPECT_EQ(Keys(), (Rows{{"PROVHAS", "42"}, {"OTHER", "7"}}));
}

TEST_F(InventoryAdd, TheStatementsLetterForLetter) {
  Run({});
  EXPECT_EQ(
      Statements(),
      (Lines{
          "SELECT count(*) FROM provider WHERE Sector BETWEEN 10 AND 29 AND ltrim(rtrim(pin)) = "
          "'P1'",
          "SELECT count(*) FROM pvaccref WHERE ltrim(rtrim(vaccine)) == 'HEPA'",
          "SELECT count(*) FROM pvaccref WHERE ltrim(rtrim(vaccine)) == 'HEPA' AND locactiv = .F.",
          "SELECT inextid FROM Nextid WHERE ltrim(rtrim(upper(ctablename))) = 'PROVHAS' ",
          "UPDATE nextid SET inextid  = 42 WHERE ltrim(rtrim(upper(ctablename))) = 'PROVHAS' ",
          "INSERT INTO provhas (pin, vaccine, doses, chgdate, idate, provhasid, userid) VALUES ( "
          "'P1', 'HEPA', 12, {11/20/2026}, {1/5/2004}, 42, 'LTX_DLL') "}));
}

// The statement stands in place of an End line.
TEST_F(InventoryAdd, TheTraceLineByLine) {
  Run({});
  EXPECT_EQ(
      Trace(),
      (Lines{"information Begin: provinvAddUpdate()", "information Begin: Get Connection()",
             "information End: GetConnection()", "information Begin: ValidateProviderPIN()",
             "information End: ValidateProviderPIN()", "information Begin: Get Connection()",
             "information End: GetConnection()", "information End: ValidateAgainstpVaccRefTable()",
             "information Begin: ValidateVaccineActiveStatus()",
             "information End: ValidateVaccineActiveStatus()",
             "information End: ValidateAgainstpVaccRefTable()",
             "information Begin: Get Connection()", "information End: GetConnection()",
             "information Begin: Get Connection()", "information End: GetConnection()",
             "information INSERT INTO provhas (pin, vaccine, doses, chgdate, idate, "
             "provhasid, userid) VALUES ( 'P1', 'HEPA', 12, {11/20/2026}, {1/5/2004}, 42, "
             "'LTX_DLL') ",
             "information Begin: Get Connection()", "information End: GetConnection()"}));
}

TEST_F(InventoryAdd, ARepeatedCountIsAnotherRowWithAnotherKey) {
  Run({});
  Run({});
  EXPECT_EQ(Counts(), (Rows{{"P1", "HEPA", "12", "2026-11-20", "2004-01-05", "42", "LTX_DLL"},
                            {"P1", "HEPA", "12", "2026-11-20", "2004-01-05", "43", "LTX_DLL"}}));
  EXPECT_EQ(Keys(), (Rows{{"PROVHAS", "43"}, {"OTHER", "7"}}));
}

TEST_F(InventoryAdd, ThePinIsStoredWithItsCaseAndBlanks) {
  Count count;
  count.pin = "p1  ";
  Run(count);
  EXPECT_EQ(Statements(), Joined({CheckQueries("P1  ", "HEPA"),
                                  {KeyQuery("PROVHAS"), KeyUpdate("PROVHAS", "42"),
                                   Insert("p1  ", "HEPA", "12", "1/5/2004", "42")}}));
  EXPECT_EQ(Query("SELECT pin FROM provhas"), (Rows{{"p1  "}}));
}

TEST_F(InventoryAdd, TheVaccineCountsInUpperCaseUntrimmed) {
  Count count;
  count.vaccine = "hepa ";
  Run(count);
  EXPECT_EQ(Statements(), Joined({CheckQueries("P1", "HEPA "),
                                  {KeyQuery("PROVHAS"), KeyUpdate("PROVHAS", "42"),
                                   Insert("P1", "HEPA ", "12", "1/5/2004", "42")}}));
  EXPECT_EQ(Query("SELECT vaccine FROM provhas"), (Rows{{"HEPA "}}));
}

TEST_F(InventoryAdd, LettersBeyondAsciiAreUpperCasedOneByOne) {
  AddVaccine("GRIPPE ÉŸЯ STRAßE");
  Count count;
  count.vaccine = "grippe éÿя straße";
  Run(count);
  EXPECT_EQ(Query("SELECT vaccine FROM provhas"), (Rows{{"GRIPPE ÉŸЯ STRAßE"}}));
}

TEST_F(InventoryAdd, TextThatOnlyLooksLikeSqlStaysAValue) {
  const std::string odd = "A\"B;--%_\\{}]/*";
  AddVaccine(odd);
  Count count;
  count.vaccine = odd;
  Run(count);
  EXPECT_EQ(Query("SELECT vaccine FROM provhas"), (Rows{{odd}}));
}

TEST_F(InventoryAdd, ALineBreakIsStoredAndShownAsTwoCharacters) {
  AddVaccine("HE\nPA\r");
  Count count;
  count.vaccine = "HE\nPA\r";
  Run(count);
  EXPECT_EQ(Query("SELECT vaccine FROM provhas"), (Rows{{"HE\nPA\r"}}));
  EXPECT_EQ(Trace(), Joined({Begun(),
                             ChecksPassed(),
                             KeyTaken(),
                             {"information " + Insert("P1", "HE\\nPA\\r", "12", "1/5/2004", "42")},
                             ConnectionRead()}));
}

TEST_F(InventoryAdd, WhetherTheProviderIsThereIsNotLookedAt) {
  Execute("INSERT INTO provider (pin, sector, active) VALUES ('P2', 15, 'N'), ('D1', 30, 'Y')");
  for (const char* const pin : {"NOBODY", "P2", "D1"}) {
    SCOPED_TRACE(pin);
    Count count;
    count.pin = pin;
    ForgetTrace();
    Run(count);
    EXPECT_EQ(Query("SELECT pin FROM provhas"), (Rows{{pin}}));
    const Lines trace = Trace();
    ASSERT_EQ(trace.size(), 18U);
    EXPECT_EQ(Lines(trace.begin(), trace.begin() + 11), Joined({Begun(), ChecksPassed()}));
    Execute("DELETE FROM provhas");
  }
}

TEST_F(InventoryAdd, AVaccineThatIsThereTwiceOrActiveInOneRowIsAccepted) {
  AddVaccine("HEPA");
  AddVaccine("HEPA", "(1 = 1)");
  Run({});
  EXPECT_EQ(Query("SELECT vaccine FROM provhas"), (Rows{{"HEPA"}}));
}

TEST_F(InventoryAdd, TheCountIsTheNumberOfItsText) {
  const std::vector<std::pair<std::string, std::string>> counts = {
      {"12", "12"},
      {"0", "0"},
      {"-0", "0"},
      {"-3", "-3"},
      {"3-", "-3"},
      {"(5)", "-5"},
      {"-(5)", "-5"},
      {"+4", "4"},
      {" 7 ", "7"},
      {"\t7", "7"},
      {"2.5", "2"},
      {"3.5", "4"},
      {"0.5", "0"},
      {"1.5", "2"},
      {"-2.5", "-2"},
      {"2.50000000001", "3"},
      {".5", "0"},
      {"5.", "5"},
      {"1,234", "1234"},
      {"1,2,3", "123"},
      {"$12", "12"},
      {"1e3", "1000"},
      {"1D2", "100"},
      {"1e-400", "0"},
      {"&H1f", "31"},
      {"&hFFFFFFFF", "-1"},
      {"&HFFFF", "65535"},
      {"&O17", "15"},
      {"2147483647", "2147483647"},
      {"2147483647.4", "2147483647"},
      {"-2147483648", "-2147483648"},
      {"-2147483648.5", "-2147483648"}};
  for (const auto& [text, doses] : counts) {
    SCOPED_TRACE(text);
    Execute("UPDATE nextid SET inextid = 41 WHERE ctablename = 'PROVHAS'");
    Count count;
    count.doses = text;
    static_cast<void>(Statements());
    Run(count);
    EXPECT_EQ(Statements(), Joined({CheckQueries("P1", "HEPA"),
                                    {KeyQuery("PROVHAS"), KeyUpdate("PROVHAS", "42"),
                                     Insert("P1", "HEPA", doses, "1/5/2004", "42")}}));
    EXPECT_EQ(Query("SELECT doses FROM provhas"), (Rows{{doses}}));
    Execute("DELETE FROM provhas");
  }
}

TEST_F(InventoryAdd, TheDateIsRewrittenFromItsValue) {
  const std::vector<std::pair<std::string, std::string>> dates = {{"01/05/2004", "1/5/2004"},
                                                                  {"1-5-04", "1/5/2004"},
                                                                  {"2004-1-5", "1/5/2004"},
                                                                  {"2004/01/05", "1/5/2004"},
                                                                  {"5-Jan-2004", "1/5/2004"},
                                                                  {"january 5, 2004", "1/5/2004"},
                                                                  {"2004 Jan 5", "1/5/2004"},
                                                                  {" 1 / 5 / 2004 ", "1/5/2004"},
                                                                  {"1/5/2004 10:30 PM", "1/5/2004"},
                                                                  {"12/31/9999", "12/31/9999"},
                                                                  {"1/1/100", "1/1/100"},
                                                                  {"2/29/2004", "2/29/2004"},
                                                                  {"11/20/29", "11/20/2029"},
                                                                  {"11/20/30", "11/20/1930"}};
  for (const auto& [text, date] : dates) {
    SCOPED_TRACE(text);
    Execute("UPDATE nextid SET inextid = 41 WHERE ctablename = 'PROVHAS'");
    Count count;
    count.date = text;
    static_cast<void>(Statements());
    Run(count);
    EXPECT_EQ(Statements(), Joined({CheckQueries("P1", "HEPA"),
                                    {KeyQuery("PROVHAS"), KeyUpdate("PROVHAS", "42"),
                                     Insert("P1", "HEPA", "12", date, "42")}}));
    Execute("DELETE FROM provhas");
  }
}

TEST_F(InventoryAdd, TheDateIsStoredAsADay) {
  const std::vector<std::pair<std::string, std::string>> dates = {
      {"1/5/2004 10:30 PM", "2004-01-05"}, {"12/31/9999", "9999-12-31"}, {"1/1/100", "0100-01-01"}};
  for (const auto& [text, day] : dates) {
    SCOPED_TRACE(text);
    Count count;
    count.date = text;
    Run(count);
    EXPECT_EQ(Query("SELECT idate FROM provhas"), (Rows{{day}}));
    Execute("DELETE FROM provhas");
  }
}

TEST_F(InventoryAdd, TheZeroDateIsRewrittenAsATimeOfThatDay) {
  Count count;
  count.date = "12/30/1899";
  Run(count);
  EXPECT_EQ(Statements(), Joined({CheckQueries("P1", "HEPA"),
                                  {KeyQuery("PROVHAS"), KeyUpdate("PROVHAS", "42"),
                                   Insert("P1", "HEPA", "12", "12:00:00 AM", "42")}}));
  EXPECT_EQ(Query("SELECT idate FROM provhas"), (Rows{{"1899-12-30"}}));
}

TEST_F(InventoryAdd, TheLargestKeyCanBeStored) {
  Execute("UPDATE nextid SET inextid = 2147483646 WHERE ctablename = 'PROVHAS'");
  Run({});
  EXPECT_EQ(Query("SELECT provhasid FROM provhas"), (Rows{{"2147483647"}}));
  EXPECT_EQ(Keys(), (Rows{{"PROVHAS", "2147483647"}, {"OTHER", "7"}}));
}

// --- The checks, each with every later one failing too ---------------------

TEST_F(InventoryAdd, FirstTheLengthOfThePin) {
  const std::string message =
      "The number of characters in the pin entered exceeds the maximum allowed";
  for (const char* const pin : {"1234567", "P-12345", "P1     ", "       "}) {
    SCOPED_TRACE(pin);
    Count count = AllWrong();
    count.pin = pin;
    ExpectRefused(count, 20078, message, ProviderRefused(message), {});
  }
}

TEST_F(InventoryAdd, FirstTheCharactersOfThePin) {
  const std::string message =
      "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed.";
  for (const char* const pin : {"", " ", "P-1", " P1", "P'1", "é", "P 1"}) {
    SCOPED_TRACE(pin);
    Count count = AllWrong();
    count.pin = pin;
    ExpectRefused(count, 20079, message, ProviderRefused(message), {});
  }
}

TEST_F(InventoryAdd, FirstThatNotTwoProvidersHaveThePin) {
  const std::string message = "Provider PIN entered has a duplicate";
  Execute("INSERT INTO provider (pin, sector) VALUES (' P1 ', 29)");
  Count count = AllWrong();
  count.pin = "p1";
  ExpectRefused(count, 20003, message, ProviderRefused(message), {ProviderCount("P1")});
}

TEST_F(InventoryAdd, AProviderCountThatIsNoneIsRefused) {
  const std::string message = "Error while verifying provider PIN in LOTRIX";
  Count count = AllWrong();
  count.pin = "P1";
  const std::vector<std::vector<Value>> answers = {
      {}, {std::int64_t{1}, std::int64_t{1}}, {std::int64_t{-1}}};
  for (const std::vector<Value>& records : answers) {
    SCOPED_TRACE(records.size());
    AnswerTo(ProviderCount("P1"), records);
    ExpectRefused(count, 20005, message, ProviderRefused(message), {ProviderCount("P1")});
  }
}

Count WrongFromTheVaccineOn() {
  Count count = AllWrong();
  count.pin = "P1";
  return count;
}

TEST_F(InventoryAdd, ThenThatTheVaccineIsNotBlank) {
  for (const char* const vaccine : {"", " ", "     "}) {
    SCOPED_TRACE(vaccine);
    Count count = WrongFromTheVaccineOn();
    count.vaccine = vaccine;
    ExpectRefused(count, 20134, "Null Vaccine field for Provider Inventory Add/Update",
                  ProviderPassed(), {ProviderCount("P1")});
  }
}

TEST_F(InventoryAdd, ThenThatTheCountIsNotBlank) {
  for (const char* const doses : {"", " ", "     "}) {
    SCOPED_TRACE(doses);
    Count count = WrongFromTheVaccineOn();
    count.vaccine = "NONE";
    count.doses = doses;
    ExpectRefused(count, 20135, "Null Inventory field for Provider Inventory Add/Update",
                  ProviderPassed(), {ProviderCount("P1")});
  }
}

TEST_F(InventoryAdd, ThenThatTheDateIsNotBlank) {
  for (const char* const date : {"", " ", "     "}) {
    SCOPED_TRACE(date);
    Count count = WrongFromTheVaccineOn();
    count.vaccine = "NONE";
    count.doses = "abc";
    count.date = date;
    ExpectRefused(count, 20138, "Null Inventory Date field for Provider Inventory Add/Update",
                  ProviderPassed(), {ProviderCount("P1")});
  }
}

Count WrongFromTheCountOn() {
  return {.pin = "P1", .vaccine = "NONE", .doses = "abc", .date = "2/30/2001"};
}

TEST_F(InventoryAdd, ThenThatTheCountIsANumber) {
  for (const char* const doses :
       {"abc", ".",           "-",    "$",   "1 234", "1e 5",  "5%",    "0x1F",        ",5", "True",
        "12x", "1e",          "12'",  "--1", "(5",    "1.2.3", "1e400", "-1e400",      "&H", "&HG",
        "&O8", "&H1FFFFFFFF", "１２", "½",   "\t",    "12/3",  "(-5)-", "-1e999999999"}) {
    SCOPED_TRACE(doses);
    Count count = WrongFromTheCountOn();
    count.doses = doses;
    ExpectRefused(count, 20136, "Non numeric Inventory field for Provider Inventory Add/Update",
                  ProviderPassed(), {ProviderCount("P1")});
  }
}

TEST_F(InventoryAdd, ANumberBeyond32BitsOverflowsBeforeTheVaccineIsLookedAt) {
  for (const char* const doses : {"2147483648", "2147483647.5", "-2147483649", "-2147483648.51",
                                  "1e10", "1e308", "99999999999999999999"}) {
    SCOPED_TRACE(doses);
    Count count = WrongFromTheCountOn();
    count.doses = doses;
    ExpectRefused(count, 6, [](const std::string&) { return ProviderPassed(); });
    EXPECT_EQ(Statements(), (Lines{ProviderCount("P1")}));
  }
}

Count WrongFromTheReferenceOn() {
  Count count = WrongFromTheCountOn();
  count.doses = "12";
  return count;
}

TEST_F(InventoryAdd, ThenThatTheVaccineIsInTheReference) {
  const std::string message = "Vaccine not available to private provider in LOTRIX";
  for (const char* const vaccine : {"NONE", "HEP", "HEPAA", " HEPA"}) {
    SCOPED_TRACE(vaccine);
    Count count = WrongFromTheReferenceOn();
    count.vaccine = vaccine;
    ExpectRefused(count, 20051, message, VaccineRefused(message),
                  {ProviderCount("P1"), VaccineCount(vaccine)});
  }
}

TEST_F(InventoryAdd, AVaccineOfTheOtherReferenceIsNotInThisOne) {
  const std::string message = "Vaccine not available to private provider in LOTRIX";
  Execute("INSERT INTO vaccref (vaccine, maxno, locactiv) VALUES ('MMR-V', 3, 'Y')");
  Count count = WrongFromTheReferenceOn();
  count.vaccine = "MMR-V";
  ExpectRefused(count, 20051, message, VaccineRefused(message),
                {ProviderCount("P1"), VaccineCount("MMR-V")});
}

TEST_F(InventoryAdd, ANegativeVaccineCountIsRefused) {
  const std::string message = "Error while verifying vaccine reference table in LOTRIX";
  Count count = WrongFromTheReferenceOn();
  count.vaccine = "HEPA";
  AnswerTo(VaccineCount("HEPA"), {std::int64_t{-1}});
  ExpectRefused(count, 20016, message, VaccineRefused(message),
                {ProviderCount("P1"), VaccineCount("HEPA")});
}

TEST_F(InventoryAdd, ThenThatTheVaccineIsActive) {
  const std::string message =
      "The vaccine being used in the current operation is inactive in LOTRIX";
  AddVaccine("OLD", "(1 = 1)");
  AddVaccine("UNKNOWN", "NULL");
  for (const char* const vaccine : {"OLD", "UNKNOWN"}) {
    SCOPED_TRACE(vaccine);
    Count count = WrongFromTheReferenceOn();
    count.vaccine = vaccine;
    ExpectRefused(count, 20086, message,
                  Joined({ProviderPassed(), InactiveVaccineRefused(message)}),
                  CheckQueries("P1", vaccine));
  }
}

TEST_F(InventoryAdd, ThenThatTheDateIsADate) {
  Execute("DELETE FROM nextid");
  for (const char* const date :
       {"2/30/2001", "13/45/2001", "13/5/2001", "2/29/2003", "soon", "1/5", "38000", "10:30",
        "12:00:00 AM", "1/5/10000", "1/5/2004'", "1/5/2004}", "1/5/2004 25:00", "\t"}) {
    SCOPED_TRACE(date);
    Count count = WrongFromTheReferenceOn();
    count.vaccine = "HEPA";
    count.date = date;
    ExpectRefused(count, 20139, "Invalid Inventory Date field for Provider Inventory Add/Update",
                  ChecksPassed(), CheckQueries("P1", "HEPA"));
  }
}

TEST_F(InventoryAdd, ThenThatThereIsAKey) {
  Execute("DELETE FROM nextid WHERE ctablename = 'PROVHAS'");
  ExpectRefused({}, 20096, "provhas does not exist in the NextID table.",
                Joined({ChecksPassed(), ConnectionRead()}),
                Joined({CheckQueries("P1", "HEPA"), {KeyQuery("PROVHAS")}}));
}

TEST_F(InventoryAdd, ThenThatThereAreNotTwoKeys) {
  Execute("INSERT INTO nextid (ctablename, inextid) VALUES (' provhas ', 90)");
  ExpectRefused({}, 20096, "More than one instance of provhas exists in the NextID table.",
                Joined({ChecksPassed(), ConnectionRead()}),
                Joined({CheckQueries("P1", "HEPA"), {KeyQuery("PROVHAS")}}));
}

TEST_F(InventoryAdd, AKeyBehindTheLargestOverflows) {
  Execute("UPDATE nextid SET inextid = 2147483647 WHERE ctablename = 'PROVHAS'");
  ExpectRefused({}, 6, [](const std::string&) {
    return Joined({ChecksPassed(), ConnectionRead()});
  });
}

TEST_F(InventoryAdd, AKeyStaysTakenWhenTheStatementFails) {
  Execute("DROP TABLE provhas");
  const Error error = Refusal([&] { Run({}); });
  EXPECT_EQ(error.number(), Numbered(EngineError::kNoSuchTable));
  EXPECT_EQ(error.source(), "LOTRIX DLL");
  EXPECT_EQ(Trace(), Joined({Begun(),
                             ChecksPassed(),
                             KeyTaken(),
                             {"information " + Insert("P1", "HEPA", "12", "1/5/2004", "42")},
                             ConnectionRead(),
                             {ProblemOf(kOperation, error.description())}}));
  EXPECT_EQ(Keys(), (Rows{{"PROVHAS", "42"}, {"OTHER", "7"}}));
}

TEST_F(InventoryAdd, ARefusedCallLeavesTheObjectUsable) {
  Count wrong;
  wrong.doses = "abc";
  ExpectError(Refusal([&] { Run(wrong); }), Coded(20136),
              "Non numeric Inventory field for Provider Inventory Add/Update");
  Run({});
  EXPECT_EQ(Query("SELECT doses, provhasid FROM provhas"), (Rows{{"12", "42"}}));
}

// --- Values that would leave their place -----------------------------------

TEST_F(InventoryAdd, AnApostropheInTheVaccineIsRefusedAsSyntax) {
  for (const char* const vaccine :
       {"HEP'A", "HEPA'", "'", "HEPA' OR '1'='1", "HEPA'; DELETE FROM provhas; --", "HEPA''"}) {
    SCOPED_TRACE(vaccine);
    Count count;
    count.vaccine = vaccine;
    ExpectRefused(count, Numbered(EngineError::kStatementRefused), VaccineRefused);
  }
}

TEST_F(InventoryAdd, AZeroCharacterInThePinIsNotAlphanumeric) {
  const std::string message =
      "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed.";
  Count count = AllWrong();
  count.pin = std::string("P1\0", 3);
  ExpectRefused(count, 20079, message, ProviderRefused(message), {});
}

TEST_F(InventoryAdd, AZeroCharacterInTheVaccineIsRefusedAsSyntax) {
  for (const std::string& vaccine : {std::string("HEPA\0", 5), std::string("\0", 1)}) {
    Count count;
    count.vaccine = vaccine;
    ExpectRefused(count, Numbered(EngineError::kStatementRefused), VaccineRefused);
  }
}

TEST_F(InventoryAdd, TheCountAndTheDateAreReadUpToTheirZeroCharacter) {
  Count count;
  count.doses = std::string("12\0x", 4);
  count.date = std::string("1/5/2004\0'}", 11);
  Run(count);
  EXPECT_EQ(Statements(), Joined({CheckQueries("P1", "HEPA"),
                                  {KeyQuery("PROVHAS"), KeyUpdate("PROVHAS", "42"),
                                   Insert("P1", "HEPA", "12", "1/5/2004", "42")}}));
  EXPECT_EQ(Query("SELECT doses, idate FROM provhas"), (Rows{{"12", "2004-01-05"}}));
}

TEST_F(InventoryAdd, AZeroCharacterAloneIsNeitherANumberNorADate) {
  Count count;
  count.doses = std::string("\0", 1);
  ExpectRefused(count, 20136, "Non numeric Inventory field for Provider Inventory Add/Update",
                ProviderPassed(), {ProviderCount("P1")});
  count = {};
  count.date = std::string("\0", 1);
  ExpectRefused(count, 20139, "Invalid Inventory Date field for Provider Inventory Add/Update",
                ChecksPassed(), CheckQueries("P1", "HEPA"));
}

// --- Very long arguments ----------------------------------------------------

TEST_F(InventoryAdd, AVeryLongPinIsTooLong) {
  const std::string message =
      "The number of characters in the pin entered exceeds the maximum allowed";
  Count count = AllWrong();
  count.pin = std::string(kMebibyte, 'p');
  ExpectRefused(count, 20078, message, ProviderRefused(message), {});
}

TEST_F(InventoryAdd, AVeryLongTextOverflowsWhereItIsTestedForBlank) {
  Count count = WrongFromTheVaccineOn();
  count.vaccine = std::string(kMebibyte, 'v');
  ExpectRefused(count, 6, [](const std::string&) { return ProviderPassed(); });
  count = WrongFromTheVaccineOn();
  count.vaccine = "NONE";
  count.doses = std::string(kMebibyte, '1');
  ExpectRefused(count, 6, [](const std::string&) { return ProviderPassed(); });
  count.doses = "abc";
  count.date = std::string(kMebibyte, '1');
  ExpectRefused(count, 6, [](const std::string&) { return ProviderPassed(); });
}

TEST_F(InventoryAdd, AsManyCharactersAs16BitsCountAreNoOverflow) {
  std::string vaccine;
  for (int letter = 0; letter < 32767; ++letter) vaccine += "É";
  AddVaccine(vaccine);
  Count count;
  count.vaccine = vaccine;
  Run(count);
  EXPECT_TRUE(Query("SELECT vaccine FROM provhas") == (Rows{{vaccine}}));
  count.vaccine = vaccine + "É";
  ExpectRefused(count, 6, [](const std::string&) { return ProviderPassed(); });
}

}  // namespace
}  // namespace lotrix::test

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "src/utility/keys_and_lookups.h"
#include "tests/support/expected_statements.h"
#include "tests/support/expected_trace.h"
#include "tests/support/extremes.h"
#include "tests/support/operation_fixture.h"

namespace lotrix::test {
namespace {

// A call's arguments; as they stand, an adjustment that is accepted. The reference
// has a status "aN" for every action code N.
struct Adjustment {
  std::string depot = "D1";
  std::string entry = "1/5/2004";
  std::string date = "1/6/2004";
  std::string type = "a2";
  std::string pin = "P1";
  std::string vaccine = "HEPA";
  std::string lot = "AB-12";
  std::int32_t doses = 5;
};

// Wrong in every argument: the order of the checks is the order in which its
// faults are found when they are mended one by one.
Adjustment AllWrong() {
  return {.depot = "TOOLONG",
          .entry = " ",
          .date = " ",
          .type = "unknown",
          .pin = "TOOLONG",
          .vaccine = "NONE",
          .lot = "NONE",
          .doses = 0};
}

// The lines of the trace, piece by piece as a call comes by them.

const std::string kOperation = "providerInventoryAdjustmentUpdate";

Lines Begun() { return {BeginOf(kOperation)}; }
Lines Ended() { return {EndOf(kOperation)}; }

Lines DatesPassed() { return Passed("ValidateProviderInventoryAdjustDates"); }
Lines ProviderPassed() { return Joined({DatesPassed(), Asked("ValidateProviderPIN")}); }
Lines DepotPassed() { return Joined({ProviderPassed(), Asked("ValidateDepotPIN")}); }
Lines LotPassed() { return Joined({DepotPassed(), Asked("ValidateVaccineLot")}); }
Lines ActionPassed() { return Joined({LotPassed(), Asked("ValidateActionCode")}); }
Lines ActionLookedUp() { return Joined({ActionPassed(), ConnectionRead()}); }
Lines ChecksPassed() {
  return Joined({ActionLookedUp(), Asked("ValidateDuplicateProviderInventoryAdjustment")});
}

// The statements as a call builds them.

std::string WithoutDashes(const std::string& lot) {
  std::string rest;
  for (const char letter : lot) {
    if (letter != '-') rest += letter;
  }
  return rest;
}

std::string LotCount(const std::string& vaccine, const std::string& lot) {
  return "SELECT count(*) FROM stock WHERE ltrim(rtrim(vaccine)) = '" + vaccine +
         "' AND ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = '" + WithoutDashes(lot) + "'";
}
std::string ActionCount(const std::string& type) {
  return "SELECT count(*) FROM actref WHERE ltrim(rtrim(status)) = '" + type + "' ";
}
std::string ActionQuery(const std::string& type) {
  return "SELECT action FROM actref WHERE status = '" + type + "'";
}
std::string Key(const Adjustment& adjustment, const std::string& action, const std::string& source,
                const std::string& sourceColumn) {
  return "WHERE action = " + action + " AND ltrim(rtrim(pin)) = '" + adjustment.pin +
         "' AND ltrim(rtrim(vaccine)) = '" + adjustment.vaccine +
         "' AND ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = '" +
         WithoutDashes(adjustment.lot) + "' AND dateout = {" + adjustment.date +
         "} AND ltrim(rtrim(" + sourceColumn + ")) = '" + source + "'";
}
std::string DuplicateCount(const Adjustment& adjustment, const std::string& action = "2",
                           const std::string& source = "D1") {
  return "SELECT count(*) FROM distrib " + Key(adjustment, action, source, "frompin");
}
std::string DosesQuery(const Adjustment& adjustment, const std::string& action = "2",
                       const std::string& source = "D1") {
  return "SELECT doses FROM distrib " + Key(adjustment, action, source, "frompin");
}
std::string Update(const Adjustment& adjustment, const std::string& doses,
                   const std::string& action = "2", const std::string& source = "D1") {
  return "UPDATE distrib SET doses  = " + doses + ", chgdate = {11/20/2026}, userid = 'LTX_DLL' " +
         Key(adjustment, action, source, "fromPIN");
}
std::string Insert(const Adjustment& adjustment, const std::string& doses,
                   const std::string& action = "2", const std::string& source = "D1",
                   const std::string& status = "Re") {
  return "INSERT INTO distrib (input, dateout, frompin, pin, vaccine, lot, doses, action, distid, "
         "notes, chgdate, status, shipped, userid) values ( {" +
         adjustment.entry + "},  {" + adjustment.date + "}, '" + source + "', '" + adjustment.pin +
         "', '" + adjustment.vaccine + "', '" + adjustment.lot + "', " + doses + ", " + action +
         ", 0, 'Entered from Quorvin front-end.',  {11/20/2026}, '" + status + "', 0, 'LTX_DLL')";
}

Lines QueriesUpToTheAction(const Adjustment& adjustment) {
  return {ProviderCount(adjustment.pin), DepotCount(adjustment.depot),
          LotCount(adjustment.vaccine, adjustment.lot), ActionCount(adjustment.type)};
}
Lines QueriesUpToTheLookup(const Adjustment& adjustment) {
  return Joined({QueriesUpToTheAction(adjustment), {ActionQuery(adjustment.type)}});
}
Lines CheckQueries(const Adjustment& adjustment, const std::string& action = "2",
                   const std::string& source = "D1") {
  return Joined({QueriesUpToTheLookup(adjustment), {DuplicateCount(adjustment, action, source)}});
}

class InventoryAdjustment : public OperationTest {
 protected:
  void SetUp() override {
    Execute(
        "INSERT INTO provider (pin, sector, active) VALUES ('P1', 15, 'Y'), ('P2', 15, 'Y'), "
        "('D1', 30, 'Y'), ('D2', 31, 'Y')");
    AddStock("HEPA", "AB12");
    for (int action = -1; action <= 14; ++action) {
      AddAction("a" + std::to_string(action), std::to_string(action));
    }
    Execute("INSERT INTO nextid (ctablename, inextid) VALUES ('DISTRIB', 41)");
    WatchOperations();
  }

  void AddStock(const std::string& vaccine, const std::string& lot) {
    Execute("INSERT INTO stock (vaccine, lot) VALUES ('" + vaccine + "', '" + lot + "')");
  }
  void AddAction(const std::string& status, const std::string& action) {
    Execute("INSERT INTO actref (status, action) VALUES ('" + status + "', " + action + ")");
  }
  // The adjustment of the default key as another program may have left it.
  void AddMovement(const std::string& doses, const std::string& action = "2",
                   const std::string& source = "D1", const std::string& lot = "AB12",
                   const std::string& pin = "P1", const std::string& vaccine = "HEPA",
                   const std::string& date = "2004-01-06") {
    Execute(
        "INSERT INTO distrib (input, dateout, frompin, pin, vaccine, lot, doses, units, fdose1, "
        "action, distid, notes, chgdate, status, shipped, userid) VALUES ('2003-03-03', '" +
        date + "', '" + source + "', '" + pin + "', '" + vaccine + "', '" + lot + "', " + doses +
        ", 6, 7, " + action + ", 8, 'OLD', '2003-04-04', 'Xx', 9, 'SOMEONE')");
  }

  void Run(const Adjustment& adjustment) {
    lotrix().providerInventoryAdjustmentUpdate(adjustment.depot, adjustment.entry, adjustment.date,
                                               adjustment.type, adjustment.pin, adjustment.vaccine,
                                               adjustment.lot, adjustment.doses);
  }

  [[nodiscard]] Rows Movements() {
    return Query(
        "SELECT input, dateout, frompin, pin, vaccine, lot, doses, units, fdose1, action, distid, "
        "notes, chgdate, status, shipped, userid FROM distrib");
  }
  [[nodiscard]] Rows Everything() {
    return Contents({"distrib", "provider", "stock", "actref", "nextid", "neworder"});
  }

  // Refused with that number, the whole trace as `lines` tells it, and nothing
  // written.
  Error ExpectRefused(const Adjustment& adjustment, std::int32_t number,
                      const std::function<Lines(const std::string& description)>& lines) {
    const Rows before = Everything();
    Error error = ExpectRefusal(
        kOperation, [&] { Run(adjustment); }, number, lines);
    EXPECT_EQ(Everything(), before);
    return error;
  }
  // A catalogue refusal; `lines` stand between the operation's first and last.
  void ExpectRefused(const Adjustment& adjustment, std::int32_t code, const std::string& message,
                     const Lines& lines, const Lines& statements) {
    const Error error =
        ExpectRefused(adjustment, Coded(code), [&](const std::string&) { return lines; });
    EXPECT_EQ(error.description(), message);
    EXPECT_EQ(Statements(), statements);
  }
};

// --- A movement that is not there yet --------------------------------------

TEST_F(InventoryAdjustment, ANewMovementIsInserted) {
  Run({});
  EXPECT_EQ(Movements(),
            (Rows{{"2004-01-05", "2004-01-06", "D1", "P1", "HEPA", "AB-12", "5", "0", "0", "2", "0",
                   "Entered from Quorvin front-end.", "2026-11-20", "Re", "0", "LTX_DLL"}}));
}

TEST_F(InventoryAdjustment, NoKeyIsTaken) {
  Run({});
  Run({});
  EXPECT_EQ(Query("SELECT ctablename, inextid FROM nextid"), (Rows{{"DISTRIB", "41"}}));
}

// Once without helpers: what the texts say, letter for letter.
TEST_F(InventoryAdjustment, TheStatementsOfANewMovementLetterForLetter) {
  Run({});
  EXPECT_EQ(
      Statements(),
      (Lines{"SELECT count(*) FROM provider WHERE Sector BETWEEN 10 AND 29 AND ltrim(rtrim(pin)) = "
             "'P1'",
             "SELECT count(*) FROM provider WHERE ltrim(rtrim(active)) = 'Y' AND sector BETWEEN 30 "
             "AND 31 AND ltrim(rtrim(pin)) = 'D1'",
             "SELECT count(*) FROM stock WHERE ltrim(rtrim(vaccine)) = 'HEPA' AND "
             "ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = 'AB12'",
             "SELECT count(*) FROM actref WHERE ltrim(rtrim(status)) = 'a2' ",
             "SELECT action FROM actref WHERE status = 'a2'",
             "SELECT count(*) FROM distrib WHERE action = 2 AND ltrim(rtrim(pin)) = 'P1' AND "
             "ltrim(rtrim(vaccine)) = 'HEPA' AND ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = "
             "'AB12' AND dateout = {1/6/2004} AND ltrim(rtrim(frompin)) = 'D1'",
             "INSERT INTO distrib (input, dateout, frompin, pin, vaccine, lot, doses, action, "
             "distid, notes, chgdate, status, shipped, userid) values ( {1/5/2004},  {1/6/2004}, "
             "'D1', 'P1', 'HEPA', 'AB-12', 5, 2, 0, 'Entered from Quorvin front-end.',  "
             "{11/20/2026}, 'Re', 0, 'LTX_DLL')"}));
}

// Its statement is not among the lines.
TEST_F(InventoryAdjustment, TheTraceOfANewMovement) {
  Run({});
  EXPECT_EQ(Trace(), (Lines{"information Begin: providerInventoryAdjustmentUpdate()",
                            "information Begin: ValidateProviderInventoryAdjustDates()",
                            "information End: ValidateProviderInventoryAdjustDates()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: ValidateProviderPIN()",
                            "information End: ValidateProviderPIN()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: ValidateDepotPIN()",
                            "information End: ValidateDepotPIN()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: ValidateVaccineLot()",
                            "information End: ValidateVaccineLot()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: ValidateActionCode()",
                            "information End: ValidateActionCode()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: ValidateDuplicateProviderInventoryAdjustment()",
                            "information End: ValidateDuplicateProviderInventoryAdjustment()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information End: providerInventoryAdjustmentUpdate()"}));
}

TEST_F(InventoryAdjustment, EveryAcceptedActionHasItsStatusAndTheDepotAsItsSource) {
  const std::vector<std::pair<std::string, std::string>> kinds = {
      {"2", "Re"}, {"3", "Sp"}, {"4", "Ex"},  {"5", "Lo"},
      {"6", "Im"}, {"7", "Fa"}, {"11", "Ac"}, {"12", "Us"}};
  for (const auto& [action, status] : kinds) {
    SCOPED_TRACE(action);
    Adjustment adjustment;
    adjustment.type = "a" + action;
    static_cast<void>(Statements());
    Run(adjustment);
    EXPECT_EQ(Statements(), Joined({CheckQueries(adjustment, action),
                                    {Insert(adjustment, "5", action, "D1", status)}}));
    EXPECT_EQ(Query("SELECT frompin, action, status, distid, shipped FROM distrib"),
              (Rows{{"D1", action, status, "0", "0"}}));
    Execute("DELETE FROM distrib");
  }
}

TEST_F(InventoryAdjustment, AnAdjustmentOfAction8HasNoSource) {
  for (const char* const depot : {"D1", "D2"}) {
    SCOPED_TRACE(depot);
    Adjustment adjustment;
    adjustment.depot = depot;
    adjustment.type = "a8";
    static_cast<void>(Statements());
    Run(adjustment);
    EXPECT_EQ(Statements(), Joined({CheckQueries(adjustment, "8", "NONE"),
                                    {Insert(adjustment, "5", "8", "NONE", "Tr")}}));
    EXPECT_EQ(Query("SELECT frompin, action, status FROM distrib"), (Rows{{"NONE", "8", "Tr"}}));
    Execute("DELETE FROM distrib");
  }
}

TEST_F(InventoryAdjustment, TheSignOfTheCountIsDropped) {
  Adjustment adjustment;
  adjustment.doses = -5;
  Run(adjustment);
  EXPECT_EQ(Statements(), Joined({CheckQueries(adjustment), {Insert(adjustment, "5")}}));
  EXPECT_EQ(Query("SELECT doses FROM distrib"), (Rows{{"5"}}));
}

TEST_F(InventoryAdjustment, TheCountsAtTheEndsOfTheRange) {
  const std::vector<std::pair<std::int32_t, std::string>> counts = {
      {1, "1"}, {-1, "1"}, {kLargest, "2147483647"}, {-kLargest, "2147483647"}};
  for (const auto& [doses, stored] : counts) {
    SCOPED_TRACE(doses);
    Adjustment adjustment;
    adjustment.doses = doses;
    Run(adjustment);
    EXPECT_EQ(Query("SELECT doses FROM distrib"), (Rows{{stored}}));
    Execute("DELETE FROM distrib");
  }
}

TEST_F(InventoryAdjustment, TheArgumentsCountInUpperCaseButTheType) {
  AddAction("A2", "5");
  const Adjustment adjustment{.depot = "d1",
                              .entry = "jan 5, 2004",
                              .date = "jan 6, 2004 10:30 pm",
                              .type = "a2",
                              .pin = "p1",
                              .vaccine = "hepa",
                              .lot = "ab-12",
                              .doses = 5};
  const Adjustment upper{.depot = "D1",
                         .entry = "JAN 5, 2004",
                         .date = "JAN 6, 2004 10:30 PM",
                         .type = "a2",
                         .pin = "P1",
                         .vaccine = "HEPA",
                         .lot = "AB-12",
                         .doses = 5};
  Run(adjustment);
  EXPECT_EQ(Statements(), Joined({CheckQueries(upper), {Insert(upper, "5")}}));
  EXPECT_EQ(Query("SELECT input, dateout, frompin, pin, vaccine, lot, action FROM distrib"),
            (Rows{{"2004-01-05", "2004-01-06", "D1", "P1", "HEPA", "AB-12", "2"}}));
}

TEST_F(InventoryAdjustment, LettersBeyondAsciiAreUpperCasedOneByOneButTheType) {
  AddStock("GRIPPE ÉŸЯ STRAßE", "Ñ9");
  AddAction("été", "3");
  const Adjustment adjustment{.type = "été", .vaccine = "grippe éÿя straße", .lot = "ñ-9"};
  const Adjustment upper{.type = "été", .vaccine = "GRIPPE ÉŸЯ STRAßE", .lot = "Ñ-9"};
  Run(adjustment);
  EXPECT_EQ(Statements(),
            Joined({CheckQueries(upper, "3"), {Insert(upper, "5", "3", "D1", "Sp")}}));
  EXPECT_EQ(Query("SELECT vaccine, lot, action FROM distrib"),
            (Rows{{"GRIPPE ÉŸЯ STRAßE", "Ñ-9", "3"}}));
}

TEST_F(InventoryAdjustment, ATypeInOtherCaseIsAnotherType) {
  Adjustment adjustment;
  adjustment.type = "A2";
  ExpectRefused(
      adjustment, 20036, "Error verifying adjustment type",
      Joined({LotPassed(), RefusedBy("ValidateActionCode", "Error verifying adjustment type")}),
      QueriesUpToTheAction(adjustment));
}

TEST_F(InventoryAdjustment, NoValueIsTrimmed) {
  const Adjustment adjustment{.depot = "D1 ",
                              .entry = " 1/5/2004 ",
                              .date = " 1/6/2004 ",
                              .type = "a2 ",
                              .pin = "P1  ",
                              .vaccine = "HEPA ",
                              .lot = "AB-12 "};
  Run(adjustment);
  EXPECT_EQ(Statements(),
            Joined({CheckQueries(adjustment, "2", "D1 "), {Insert(adjustment, "5", "2", "D1 ")}}));
  EXPECT_EQ(Query("SELECT input, dateout, frompin, pin, vaccine, lot FROM distrib"),
            (Rows{{"2004-01-05", "2004-01-06", "D1 ", "P1  ", "HEPA ", "AB-12 "}}));
}

TEST_F(InventoryAdjustment, TheDatesAreSplicedAsGivenAndStoredAsDays) {
  for (const char* const date :
       {"01/05/2004", "1-5-04", "2004-1-5", "5-JAN-2004", "JANUARY 5, 2004", "1/5/2004 10:30 PM"}) {
    SCOPED_TRACE(date);
    Adjustment adjustment;
    adjustment.entry = date;
    adjustment.date = date;
    static_cast<void>(Statements());
    Run(adjustment);
    EXPECT_EQ(Statements(), Joined({CheckQueries(adjustment), {Insert(adjustment, "5")}}));
    EXPECT_EQ(Query("SELECT input, dateout FROM distrib"), (Rows{{"2004-01-05", "2004-01-05"}}));
    Execute("DELETE FROM distrib");
  }
}

TEST_F(InventoryAdjustment, TheDatesAreComparedNeitherWithEachOtherNorWithToday) {
  Adjustment adjustment;
  adjustment.entry = "12/31/9999";
  adjustment.date = "1/1/100";
  Run(adjustment);
  EXPECT_EQ(Query("SELECT input, dateout FROM distrib"), (Rows{{"9999-12-31", "0100-01-01"}}));
}

TEST_F(InventoryAdjustment, AnInactiveProviderIsAccepted) {
  Execute("UPDATE provider SET active = 'N' WHERE pin = 'P1'");
  Run({});
  EXPECT_EQ(Query("SELECT pin, doses FROM distrib"), (Rows{{"P1", "5"}}));
}

TEST_F(InventoryAdjustment, ProvidersAreSectors10To29AndDepots30To31) {
  for (const char* const sector : {"10", "29"}) {
    SCOPED_TRACE(sector);
    Execute("UPDATE provider SET sector = " + std::string(sector) + " WHERE pin = 'P1'");
    Run({});
    EXPECT_EQ(Query("SELECT pin FROM distrib"), (Rows{{"P1"}}));
    Execute("DELETE FROM distrib");
  }
  Adjustment second;
  second.depot = "D2";
  Run(second);
  EXPECT_EQ(Query("SELECT frompin FROM distrib"), (Rows{{"D2"}}));
}

TEST_F(InventoryAdjustment, TextThatOnlyLooksLikeSqlStaysAValue) {
  const std::string odd = "A\"B;--%_\\{}]/*";
  AddStock(odd, odd);
  AddAction(odd, "3");
  Adjustment adjustment;
  adjustment.type = odd;
  adjustment.vaccine = odd;
  adjustment.lot = odd;
  Run(adjustment);
  Run(adjustment);
  EXPECT_EQ(Query("SELECT vaccine, lot, action, doses FROM distrib"),
            (Rows{{odd, odd, "3", "10"}}));
}

TEST_F(InventoryAdjustment, AnActionIsReadAsAWholeNumber) {
  Execute("UPDATE actref SET action = 2.5 WHERE status = 'a2'");
  Run({});
  EXPECT_EQ(Statements(), Joined({CheckQueries({}), {Insert({}, "5")}}));
  EXPECT_EQ(Query("SELECT action, status FROM distrib"), (Rows{{"2", "Re"}}));
}

// --- A movement that is there ----------------------------------------------

TEST_F(InventoryAdjustment, MovementsOfTheSameKeyAccumulate) {
  Run({});
  Adjustment second;
  second.doses = 7;
  Run(second);
  second.doses = -8;
  Run(second);
  EXPECT_EQ(Movements(),
            (Rows{{"2004-01-05", "2004-01-06", "D1", "P1", "HEPA", "AB-12", "20", "0", "0", "2",
                   "0", "Entered from Quorvin front-end.", "2026-11-20", "Re", "0", "LTX_DLL"}}));
}

TEST_F(InventoryAdjustment, AnUpdateTouchesOnlyTheCountAndTheStamps) {
  AddMovement("3");
  Run({});
  EXPECT_EQ(Movements(), (Rows{{"2003-03-03", "2004-01-06", "D1", "P1", "HEPA", "AB12", "8", "6",
                                "7", "2", "8", "OLD", "2026-11-20", "Xx", "9", "LTX_DLL"}}));
}

TEST_F(InventoryAdjustment, TheStatementsOfAnUpdateLetterForLetter) {
  AddMovement("3");
  Run({});
  EXPECT_EQ(
      Statements(),
      Joined({CheckQueries({}),
              {"SELECT doses FROM distrib WHERE action = 2 AND ltrim(rtrim(pin)) = 'P1' AND "
               "ltrim(rtrim(vaccine)) = 'HEPA' AND "
               "ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = 'AB12' AND dateout = {1/6/2004} "
               "AND ltrim(rtrim(frompin)) = 'D1'",
               "UPDATE distrib SET doses  = 8, chgdate = {11/20/2026}, userid = 'LTX_DLL' WHERE "
               "action = 2 AND ltrim(rtrim(pin)) = 'P1' AND ltrim(rtrim(vaccine)) = 'HEPA' AND "
               "ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = 'AB12' AND dateout = {1/6/2004} "
               "AND ltrim(rtrim(fromPIN)) = 'D1'"}}));
}

TEST_F(InventoryAdjustment, TheTraceOfAnUpdate) {
  AddMovement("3");
  Run({});
  EXPECT_EQ(Trace(),
            Joined({Begun(), ChecksPassed(), ConnectionRead(), ConnectionRead(), Ended()}));
}

TEST_F(InventoryAdjustment, ANegativeCountIsAddedWithoutItsSign) {
  AddMovement("3");
  Adjustment adjustment;
  adjustment.doses = -5;
  Run(adjustment);
  EXPECT_EQ(Statements(),
            Joined({CheckQueries(adjustment), {DosesQuery(adjustment), Update(adjustment, "8")}}));
  EXPECT_EQ(Query("SELECT doses FROM distrib"), (Rows{{"8"}}));
}

TEST_F(InventoryAdjustment, AnUpdateOfAction8IsFoundWithoutASource) {
  AddMovement("3", "8", "NONE");
  Adjustment adjustment;
  adjustment.depot = "D2";
  adjustment.type = "a8";
  Run(adjustment);
  EXPECT_EQ(Statements(),
            Joined({CheckQueries(adjustment, "8", "NONE"),
                    {DosesQuery(adjustment, "8", "NONE"), Update(adjustment, "8", "8", "NONE")}}));
  EXPECT_EQ(Query("SELECT doses, frompin FROM distrib"), (Rows{{"8", "NONE"}}));
}

TEST_F(InventoryAdjustment, AMovementIsFoundByItsTrimmedKeysAndWithoutDashes) {
  AddMovement("3", "2", " D1  ", " A-B-12 ", "  P1 ", " HEPA ");
  Adjustment adjustment;
  adjustment.lot = "AB-1-2-";
  Run(adjustment);
  EXPECT_EQ(Query("SELECT frompin, pin, vaccine, lot, doses, userid FROM distrib"),
            (Rows{{" D1  ", "  P1 ", " HEPA ", " A-B-12 ", "8", "LTX_DLL"}}));
}

TEST_F(InventoryAdjustment, EveryPartOfTheKeyCountsAndTheEntryDateDoesNot) {
  AddStock("HEPB", "AB12");
  AddStock("HEPA", "CD34");
  Run({});
  Run({.depot = "D2"});
  Run({.entry = "2/2/2004"});
  Run({.date = "1/7/2004"});
  Run({.type = "a3"});
  Run({.pin = "P2"});
  Run({.vaccine = "HEPB"});
  Run({.lot = "CD34"});
  EXPECT_EQ(Query("SELECT frompin, dateout, action, pin, vaccine, lot, input, doses FROM distrib "
                  "ORDER BY frompin, dateout, action, pin, vaccine, lot"),
            (Rows{{"D1", "2004-01-06", "2", "P1", "HEPA", "AB-12", "2004-01-05", "10"},
                  {"D1", "2004-01-06", "2", "P1", "HEPA", "CD34", "2004-01-05", "5"},
                  {"D1", "2004-01-06", "2", "P1", "HEPB", "AB-12", "2004-01-05", "5"},
                  {"D1", "2004-01-06", "2", "P2", "HEPA", "AB-12", "2004-01-05", "5"},
                  {"D1", "2004-01-06", "3", "P1", "HEPA", "AB-12", "2004-01-05", "5"},
                  {"D1", "2004-01-07", "2", "P1", "HEPA", "AB-12", "2004-01-05", "5"},
                  {"D2", "2004-01-06", "2", "P1", "HEPA", "AB-12", "2004-01-05", "5"}}));
}

TEST_F(InventoryAdjustment, OtherMovementsStayAsTheyAre) {
  AddMovement("3");
  AddMovement("4", "3");
  AddMovement("5", "2", "D2");
  AddMovement("6", "2", "D1", "CD34");
  AddMovement("7", "2", "D1", "AB12", "P2");
  AddMovement("8", "2", "D1", "AB12", "P1", "HEPB");
  AddMovement("9", "2", "D1", "AB12", "P1", "HEPA", "2004-01-07");
  Run({});
  EXPECT_EQ(Query("SELECT doses, userid FROM distrib ORDER BY userid, doses"),
            (Rows{{"8", "LTX_DLL"},
                  {"4", "SOMEONE"},
                  {"5", "SOMEONE"},
                  {"6", "SOMEONE"},
                  {"7", "SOMEONE"},
                  {"8", "SOMEONE"},
                  {"9", "SOMEONE"}}));
}

TEST_F(InventoryAdjustment, AMissingCurrentCountIsZero) {
  AddMovement("NULL");
  Run({});
  EXPECT_EQ(Query("SELECT doses FROM distrib"), (Rows{{"5"}}));
}

TEST_F(InventoryAdjustment, TheSumMayReachTheLargestNumber) {
  AddMovement("2147483642");
  Run({});
  EXPECT_EQ(Query("SELECT doses FROM distrib"), (Rows{{"2147483647"}}));
}

TEST_F(InventoryAdjustment, ANegativeCurrentCountLeavesMoreRoom) {
  AddMovement("-1");
  Adjustment adjustment;
  adjustment.doses = kLargest;
  Run(adjustment);
  EXPECT_EQ(Query("SELECT doses FROM distrib"), (Rows{{"2147483646"}}));
}

TEST_F(InventoryAdjustment, ASumBeyondTheLargestNumberOverflows) {
  AddMovement("2147483643");
  for (const std::int32_t doses : {5, -5, kLargest, -kLargest}) {
    SCOPED_TRACE(doses);
    Adjustment adjustment;
    adjustment.doses = doses;
    ExpectRefused(adjustment, 6, [](const std::string&) {
      return Joined({ChecksPassed(), ConnectionRead()});
    });
    EXPECT_EQ(Statements(), Joined({CheckQueries(adjustment), {DosesQuery(adjustment)}}));
  }
}

TEST_F(InventoryAdjustment, ACurrentCountBeyond32BitsOverflows) {
  AddMovement("3");
  AnswerTo(DosesQuery({}), {std::int64_t{2147483648}});
  ExpectRefused({}, 6, [](const std::string&) {
    return Joined({ChecksPassed(), ConnectionRead()});
  });
}

TEST_F(InventoryAdjustment, ACurrentCountThatIsNotThereOnceIsRefused) {
  AddMovement("3");
  const std::vector<std::vector<Value>> answers = {{}, {std::int64_t{3}, std::int64_t{3}}};
  for (const std::vector<Value>& records : answers) {
    SCOPED_TRACE(records.size());
    AnswerTo(DosesQuery({}), records);
    ExpectRefused({}, 20042, "Error determining current doses for inventory adjustment update",
                  Joined({ChecksPassed(), ConnectionRead()}),
                  Joined({CheckQueries({}), {DosesQuery({})}}));
  }
}

// --- The checks, each with every later one failing too ---------------------

TEST_F(InventoryAdjustment, FirstThatTheCountIsNotZero) {
  ExpectRefused(AllWrong(), 20082,
                "The number of doses in an inventory adjustment record must be greater than zero",
                {}, {});
}

TEST_F(InventoryAdjustment, ACountWithoutAnAbsoluteValueOverflows) {
  Adjustment adjustment = AllWrong();
  adjustment.doses = kSmallest;
  ExpectRefused(adjustment, 6, [](const std::string&) { return Lines{}; });
  EXPECT_EQ(Statements(), Lines{});
}

Adjustment WrongFromTheEntryDateOn() {
  Adjustment adjustment = AllWrong();
  adjustment.doses = -5;
  return adjustment;
}

TEST_F(InventoryAdjustment, ThenTheEntryDateIsNotBlank) {
  for (const char* const entry : {"", " ", "     "}) {
    SCOPED_TRACE(entry);
    Adjustment adjustment = WrongFromTheEntryDateOn();
    adjustment.entry = entry;
    ExpectRefused(adjustment, 20044, "Null entry date was entered for inventory adjustment update",
                  {}, {});
  }
}

TEST_F(InventoryAdjustment, ThenTheTransactionDateIsNotBlank) {
  for (const char* const date : {"", " ", "     "}) {
    SCOPED_TRACE(date);
    Adjustment adjustment = WrongFromTheEntryDateOn();
    adjustment.entry = "13/45/2001";
    adjustment.date = date;
    ExpectRefused(adjustment, 20043,
                  "Null transaction date was entered for inventory adjustment update", {}, {});
  }
}

TEST_F(InventoryAdjustment, ThenThatTheEntryDateIsADate) {
  const std::string message = "Entry date for the adjustment is not a valid date";
  for (const char* const entry :
       {"13/45/2001", "13/5/2001", "2/30/2004", "2/29/2003", "soon", "1/5", "38000", "10:30",
        "1/5/10000", "1/5/2004'", "1/5/2004}", "1/5/2004 25:00"}) {
    SCOPED_TRACE(entry);
    Adjustment adjustment = WrongFromTheEntryDateOn();
    adjustment.entry = entry;
    adjustment.date = "2/30/2004";
    ExpectRefused(adjustment, 20074, message,
                  Refused("ValidateProviderInventoryAdjustDates", message), {});
  }
}

TEST_F(InventoryAdjustment, ThenThatTheTransactionDateIsADate) {
  const std::string message = "Transaction date for the adjustment is not a valid date";
  for (const char* const date :
       {"13/45/2001", "13/5/2001", "2/30/2004", "2/29/2003", "soon", "1/5", "38000", "10:30",
        "1/5/10000", "1/5/2004'", "1/5/2004}", "1/5/2004 25:00"}) {
    SCOPED_TRACE(date);
    Adjustment adjustment = WrongFromTheEntryDateOn();
    adjustment.entry = "1/5/2004";
    adjustment.date = date;
    ExpectRefused(adjustment, 20074, message,
                  Refused("ValidateProviderInventoryAdjustDates", message), {});
  }
}

Adjustment WrongFromTheProviderOn() {
  Adjustment adjustment = WrongFromTheEntryDateOn();
  adjustment.entry = "1/5/2004";
  adjustment.date = "1/6/2004";
  return adjustment;
}

Lines ProviderRefused(const std::string& description) {
  return Joined({DatesPassed(), RefusedBy("ValidateProviderPIN", description)});
}

TEST_F(InventoryAdjustment, ThenTheLengthOfTheProviderPin) {
  const std::string message =
      "The number of characters in the pin entered exceeds the maximum allowed";
  for (const char* const pin : {"1234567", "P-12345", "P1     ", "       "}) {
    SCOPED_TRACE(pin);
    Adjustment adjustment = WrongFromTheProviderOn();
    adjustment.pin = pin;
    ExpectRefused(adjustment, 20078, message, ProviderRefused(message), {});
  }
}

TEST_F(InventoryAdjustment, ThenTheCharactersOfTheProviderPin) {
  const std::string message =
      "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed.";
  for (const char* const pin : {"", "   ", "P-1", " P1", "P'1", "É", "P 1"}) {
    SCOPED_TRACE(pin);
    Adjustment adjustment = WrongFromTheProviderOn();
    adjustment.pin = pin;
    ExpectRefused(adjustment, 20079, message, ProviderRefused(message), {});
  }
}

TEST_F(InventoryAdjustment, ThenThatNotTwoProvidersHaveThePin) {
  const std::string message = "Provider PIN entered has a duplicate";
  Execute("INSERT INTO provider (pin, sector) VALUES (' P2', 20)");
  Adjustment adjustment = WrongFromTheProviderOn();
  adjustment.pin = "P2";
  ExpectRefused(adjustment, 20003, message, ProviderRefused(message), {ProviderCount("P2")});
}

TEST_F(InventoryAdjustment, AProviderCountThatIsNoneIsRefused) {
  const std::string message = "Error while verifying provider PIN in LOTRIX";
  Adjustment adjustment = WrongFromTheProviderOn();
  adjustment.pin = "P1";
  const std::vector<std::vector<Value>> answers = {
      {}, {std::int64_t{1}, std::int64_t{1}}, {std::int64_t{-1}}};
  for (const std::vector<Value>& records : answers) {
    SCOPED_TRACE(records.size());
    AnswerTo(ProviderCount("P1"), records);
    ExpectRefused(adjustment, 20005, message, ProviderRefused(message), {ProviderCount("P1")});
  }
}

TEST_F(InventoryAdjustment, ThenThatTheProviderIsThere) {
  Execute("INSERT INTO provider (pin, sector, active) VALUES ('S9', 9, 'Y'), ('S30', 30, 'Y')");
  for (const char* const pin : {"NOBODY", "S9", "S30", "D1"}) {
    SCOPED_TRACE(pin);
    Adjustment adjustment = WrongFromTheProviderOn();
    adjustment.pin = pin;
    ExpectRefused(adjustment, 20004, "Provider entered not found in LOTRIX", ProviderPassed(),
                  {ProviderCount(pin)});
  }
}

Adjustment WrongFromTheDepotOn() {
  Adjustment adjustment = WrongFromTheProviderOn();
  adjustment.pin = "P1";
  return adjustment;
}

Lines DepotRefused(const std::string& description) {
  return Joined({ProviderPassed(), RefusedBy("ValidateDepotPIN", description)});
}

TEST_F(InventoryAdjustment, ThenTheLengthOfTheDepotPin) {
  const std::string message =
      "The number of characters in the pin entered exceeds the maximum allowed";
  for (const char* const depot : {"1234567", "D-12345", "D1     "}) {
    SCOPED_TRACE(depot);
    Adjustment adjustment = WrongFromTheDepotOn();
    adjustment.depot = depot;
    ExpectRefused(adjustment, 20078, message, DepotRefused(message), {ProviderCount("P1")});
  }
}

TEST_F(InventoryAdjustment, ThenTheCharactersOfTheDepotPin) {
  const std::string message =
      "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed.";
  for (const char* const depot : {"", "   ", "D-1", " D1", "D'1", "É"}) {
    SCOPED_TRACE(depot);
    Adjustment adjustment = WrongFromTheDepotOn();
    adjustment.depot = depot;
    ExpectRefused(adjustment, 20080, message, DepotRefused(message), {ProviderCount("P1")});
  }
}

TEST_F(InventoryAdjustment, ThenThatTheDepotIsThereAndActive) {
  const std::string message = "Error while verifying depot PIN in LOTRIX";
  Execute(
      "INSERT INTO provider (pin, sector, active) VALUES ('D3', 30, 'N'), ('D4', 30, NULL), "
      "('S29', 29, 'Y'), ('S32', 32, 'Y')");
  for (const char* const depot : {"NOBODY", "D3", "D4", "S29", "S32", "P1"}) {
    SCOPED_TRACE(depot);
    Adjustment adjustment = WrongFromTheDepotOn();
    adjustment.depot = depot;
    ExpectRefused(adjustment, 20014, message, DepotRefused(message),
                  {ProviderCount("P1"), DepotCount(depot)});
  }
}

TEST_F(InventoryAdjustment, ThenThatNotTwoDepotsHaveThePin) {
  const std::string message = "Provider PIN entered has a duplicate";
  Execute("INSERT INTO provider (pin, sector, active) VALUES ('D1 ', 31, 'Y')");
  Adjustment adjustment = WrongFromTheDepotOn();
  adjustment.depot = "D1";
  ExpectRefused(adjustment, 20015, message, DepotRefused(message),
                {ProviderCount("P1"), DepotCount("D1")});
}

TEST_F(InventoryAdjustment, TheDepotOfAnAdjustmentWithoutASourceIsCheckedToo) {
  const std::string message = "Error while verifying depot PIN in LOTRIX";
  Adjustment adjustment;
  adjustment.type = "a8";
  adjustment.depot = "NOBODY";
  ExpectRefused(adjustment, 20014, message, DepotRefused(message),
                {ProviderCount("P1"), DepotCount("NOBODY")});
}

Adjustment WrongFromTheLotOn() {
  Adjustment adjustment = WrongFromTheDepotOn();
  adjustment.depot = "D1";
  return adjustment;
}

Lines LotRefused(const std::string& description) {
  return Joined({DepotPassed(), RefusedBy("ValidateVaccineLot", description)});
}

TEST_F(InventoryAdjustment, ThenThatTheVaccineHasTheLot) {
  const std::string message = "Error verifying lot number";
  AddStock("HEPB", "CD34");
  const std::vector<std::pair<std::string, std::string>> stocks = {
      {"HEPA", "CD-34"}, {"HEPB", "AB-12"}, {"", ""}, {" HEPA", "AB12"}, {"HEPA", " AB12"}};
  for (const auto& [vaccine, lot] : stocks) {
    SCOPED_TRACE(vaccine + "/" + lot);
    Adjustment adjustment = WrongFromTheLotOn();
    adjustment.vaccine = vaccine;
    adjustment.lot = lot;
    ExpectRefused(adjustment, 20034, message, LotRefused(message),
                  {ProviderCount("P1"), DepotCount("D1"), LotCount(vaccine, lot)});
  }
}

Adjustment WrongFromTheTypeOn() {
  Adjustment adjustment = WrongFromTheLotOn();
  adjustment.vaccine = "HEPA";
  adjustment.lot = "AB-12";
  return adjustment;
}

Lines TypeRefused(const std::string& description) {
  return Joined({LotPassed(), RefusedBy("ValidateActionCode", description)});
}

TEST_F(InventoryAdjustment, ThenThatTheTypeIsThere) {
  const std::string message = "Error verifying adjustment type";
  for (const char* const type : {"unknown", "", " a2", "a", "2"}) {
    SCOPED_TRACE(type);
    Adjustment adjustment = WrongFromTheTypeOn();
    adjustment.type = type;
    ExpectRefused(adjustment, 20036, message, TypeRefused(message),
                  QueriesUpToTheAction(adjustment));
  }
}

TEST_F(InventoryAdjustment, ThenThatTheTypeIsNotThereTwice) {
  const std::string message = "Duplicate adjustment type found";
  for (const char* const stored : {"a1", " a1", "a1  "}) {
    SCOPED_TRACE(stored);
    AddAction(stored, "2");
    Adjustment adjustment = WrongFromTheTypeOn();
    adjustment.type = "a1";
    ExpectRefused(adjustment, 20037, message, TypeRefused(message),
                  QueriesUpToTheAction(adjustment));
    Execute("DELETE FROM actref WHERE action = 2");
  }
}

// Validated on its trimmed form, looked up as it stands.
TEST_F(InventoryAdjustment, ATypeStoredBehindABlankIsNotLookedUp) {
  AddAction(" left", "2");
  Adjustment adjustment;
  adjustment.type = "left";
  ExpectRefused(adjustment, 20036, "Error verifying adjustment type", ActionLookedUp(),
                QueriesUpToTheLookup(adjustment));
}

TEST_F(InventoryAdjustment, ATypeStoredBeforeABlankIsLookedUp) {
  AddAction("right  ", "2");
  Adjustment adjustment;
  adjustment.type = "right";
  Run(adjustment);
  EXPECT_EQ(Query("SELECT action FROM distrib"), (Rows{{"2"}}));
}

TEST_F(InventoryAdjustment, ATypeThatIsLookedUpTwiceIsRefused) {
  Adjustment adjustment;
  adjustment.type = "a1";
  AnswerTo(ActionQuery("a1"), {std::int64_t{1}, std::int64_t{1}});
  ExpectRefused(adjustment, 20037, "Duplicate adjustment type found", ActionLookedUp(),
                QueriesUpToTheLookup(adjustment));
}

TEST_F(InventoryAdjustment, AnActionBeyond32BitsOverflows) {
  for (const char* const action : {"2147483648", "-2147483649"}) {
    SCOPED_TRACE(action);
    Execute("UPDATE actref SET action = " + std::string(action) + " WHERE status = 'a2'");
    ExpectRefused({}, 6, [](const std::string&) { return ActionLookedUp(); });
    EXPECT_EQ(Statements(), QueriesUpToTheLookup({}));
  }
}

TEST_F(InventoryAdjustment, ThenThatTheActionIsNotOneOfAnotherDoor) {
  for (const char* const action : {"1", "9"}) {
    SCOPED_TRACE(action);
    for (const char* const source : {"D1", "D1", "NONE", "NONE"}) AddMovement("3", action, source);
    Adjustment adjustment;
    adjustment.type = "a" + std::string(action);
    ExpectRefused(adjustment, 20040,
                  "The adjustment entered cannot be inserted into LOTRIX with this application",
                  ActionLookedUp(), QueriesUpToTheLookup(adjustment));
  }
}

TEST_F(InventoryAdjustment, ThenThatTheActionIsKnown) {
  AddAction("a15", "15");
  AddAction("abig", "2147483647");
  AddAction("asmall", "-2147483648");
  AddAction("anull", "NULL");
  for (const char* const type :
       {"a0", "a10", "a13", "a14", "a15", "a-1", "abig", "asmall", "anull"}) {
    SCOPED_TRACE(type);
    Execute("DELETE FROM distrib");
    for (const char* const source : {"D1", "D1", "NONE", "NONE"}) {
      Execute(
          "INSERT INTO distrib (dateout, frompin, pin, vaccine, lot, action) SELECT "
          "'2004-01-06', '" +
          std::string(source) +
          "', 'P1', 'HEPA', 'AB12', coalesce(action, 0) FROM actref "
          "WHERE status = '" +
          type + "'");
    }
    Adjustment adjustment;
    adjustment.type = type;
    ExpectRefused(adjustment, 20041, "Unknown adjustment for update", ActionLookedUp(),
                  QueriesUpToTheLookup(adjustment));
  }
}

Lines DuplicateRefused(const std::string& description) {
  return Joined(
      {ActionLookedUp(), RefusedBy("ValidateDuplicateProviderInventoryAdjustment", description)});
}

TEST_F(InventoryAdjustment, ThenThatTheMovementIsNotThereTwice) {
  const std::string message = "More than one record for the same adjustment was found";
  AddMovement("3");
  AddMovement("2147483647", "2", "D1", "A-B-12");
  ExpectRefused({}, 20038, message, DuplicateRefused(message), CheckQueries({}));
}

TEST_F(InventoryAdjustment, ADuplicateCountThatIsNoneIsRefused) {
  const std::string message = "Error while looking for duplicate adjustment records";
  for (const std::vector<Value>& records :
       {std::vector<Value>{}, std::vector<Value>{std::int64_t{-1}}}) {
    SCOPED_TRACE(records.size());
    AnswerTo(DuplicateCount({}), records);
    ExpectRefused({}, 20039, message, DuplicateRefused(message), CheckQueries({}));
  }
}

TEST_F(InventoryAdjustment, AnEngineErrorOfACheckKeepsItsNumber) {
  Execute("DROP TABLE actref");
  const Error error = Refusal([&] { Run({}); });
  EXPECT_EQ(error.number(), Numbered(EngineError::kNoSuchTable));
  EXPECT_EQ(error.source(), "LOTRIX DLL");
  EXPECT_EQ(Trace(), Joined({Begun(),
                             TypeRefused(error.description()),
                             {ProblemOf(kOperation, error.description())}}));
  EXPECT_EQ(Movements(), Rows{});
}

TEST_F(InventoryAdjustment, AStatementThatTheEngineRefusesIsAProblemOfTheOperation) {
  Execute("DROP TABLE distrib");
  AnswerTo(DuplicateCount({}), {std::int64_t{0}});
  const Error error = Refusal([&] { Run({}); });
  EXPECT_EQ(error.number(), Numbered(EngineError::kNoSuchTable));
  EXPECT_EQ(error.source(), "LOTRIX DLL");
  EXPECT_EQ(Trace(), Joined({Begun(),
                             ChecksPassed(),
                             ConnectionRead(),
                             {ProblemOf(kOperation, error.description())}}));
}

TEST_F(InventoryAdjustment, ALookupThatTheEngineRefusesIsAProblemOfTheOperation) {
  Execute("DROP TABLE distrib");
  AnswerTo(DuplicateCount({}), {std::int64_t{1}});
  const Error error = Refusal([&] { Run({}); });
  EXPECT_EQ(error.number(), Numbered(EngineError::kNoSuchTable));
  EXPECT_EQ(error.source(), "LOTRIX DLL");
  EXPECT_EQ(Trace(), Joined({Begun(),
                             ChecksPassed(),
                             ConnectionRead(),
                             {ProblemOf(kOperation, error.description())}}));
}

TEST_F(InventoryAdjustment, ARefusedCallLeavesTheObjectUsable) {
  Adjustment wrong;
  wrong.type = "a1";
  ExpectError(Refusal([&] { Run(wrong); }), Coded(20040),
              "The adjustment entered cannot be inserted into LOTRIX with this application");
  Run({});
  EXPECT_EQ(Query("SELECT doses FROM distrib"), (Rows{{"5"}}));
}

// --- Values that would leave their place -----------------------------------

TEST_F(InventoryAdjustment, AnApostropheInTheVaccineIsRefusedAsSyntax) {
  for (const char* const vaccine :
       {"HEP'A", "HEPA'", "'", "HEPA' OR '1'='1", "HEPA'; DELETE FROM distrib; --", "HEPA''"}) {
    SCOPED_TRACE(vaccine);
    Adjustment adjustment;
    adjustment.vaccine = vaccine;
    ExpectRefused(adjustment, Numbered(EngineError::kStatementRefused), LotRefused);
  }
}

TEST_F(InventoryAdjustment, AnApostropheInTheLotIsRefusedAsSyntax) {
  for (const char* const lot : {"AB'12", "AB12'", "'", "X' OR '1'='1", "AB12' --", "A''B"}) {
    SCOPED_TRACE(lot);
    Adjustment adjustment;
    adjustment.lot = lot;
    ExpectRefused(adjustment, Numbered(EngineError::kStatementRefused), LotRefused);
  }
}

TEST_F(InventoryAdjustment, AnApostropheInTheTypeIsRefusedAsSyntax) {
  for (const char* const type : {"a'2", "a2'", "'", "x' OR '1'='1", "a2'; DROP TABLE actref; --"}) {
    SCOPED_TRACE(type);
    Adjustment adjustment;
    adjustment.type = type;
    ExpectRefused(adjustment, Numbered(EngineError::kStatementRefused), TypeRefused);
  }
}

TEST_F(InventoryAdjustment, AnApostropheInAnUpdateIsRefusedTheSameWay) {
  AddMovement("3");
  Adjustment adjustment;
  adjustment.lot = "AB12'";
  ExpectRefused(adjustment, Numbered(EngineError::kStatementRefused), LotRefused);
}

// --- Zero characters --------------------------------------------------------

TEST_F(InventoryAdjustment, AZeroCharacterInAPinIsNotAlphanumeric) {
  const std::string message =
      "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed.";
  Adjustment adjustment = WrongFromTheProviderOn();
  adjustment.pin = std::string("P1\0", 3);
  ExpectRefused(adjustment, 20079, message, ProviderRefused(message), {});
  adjustment = WrongFromTheDepotOn();
  adjustment.depot = std::string("D1\0", 3);
  ExpectRefused(adjustment, 20080, message, DepotRefused(message), {ProviderCount("P1")});
}

TEST_F(InventoryAdjustment, AZeroCharacterInATextIsRefusedAsSyntax) {
  Adjustment adjustment;
  adjustment.vaccine = std::string("HEPA\0", 5);
  ExpectRefused(adjustment, Numbered(EngineError::kStatementRefused), LotRefused);
  adjustment = {};
  adjustment.lot = std::string("AB12\0", 5);
  ExpectRefused(adjustment, Numbered(EngineError::kStatementRefused), LotRefused);
  adjustment = {};
  adjustment.type = std::string("a2\0", 3);
  ExpectRefused(adjustment, Numbered(EngineError::kStatementRefused), TypeRefused);
}

// The date test reads up to the zero character; what stands behind it must not
// reach the engine.
TEST_F(InventoryAdjustment, AZeroCharacterInADateIsRefusedAsSyntax) {
  using std::string_literals::operator""s;
  for (const std::string& date : {"1/6/2004\0"s, "1/6/2004\0} OR 1 = 1 --"s, "1/6/2004\0'"s}) {
    Adjustment adjustment;
    adjustment.date = date;
    ExpectRefused(adjustment, Numbered(EngineError::kStatementRefused), DuplicateRefused);
    adjustment = {};
    adjustment.entry = date;
    ExpectRefused(adjustment, Numbered(EngineError::kStatementRefused), [](const std::string&) {
      return Joined({ChecksPassed(), ConnectionRead()});
    });
  }
}

TEST_F(InventoryAdjustment, AZeroCharacterAloneIsNoDate) {
  const std::string message = "Entry date for the adjustment is not a valid date";
  Adjustment adjustment = WrongFromTheEntryDateOn();
  adjustment.entry = std::string("\0", 1);
  adjustment.date = "1/6/2004";
  ExpectRefused(adjustment, 20074, message,
                Refused("ValidateProviderInventoryAdjustDates", message), {});
}

TEST_F(InventoryAdjustment, TheEntryDateOfAnUpdateReachesNoStatement) {
  AddMovement("3");
  Adjustment adjustment;
  adjustment.entry = std::string("1/5/2004\0'", 10);
  Run(adjustment);
  EXPECT_EQ(Query("SELECT input, doses FROM distrib"), (Rows{{"2003-03-03", "8"}}));
}

// --- Very long arguments ----------------------------------------------------

TEST_F(InventoryAdjustment, AVeryLongPinIsTooLong) {
  const std::string message =
      "The number of characters in the pin entered exceeds the maximum allowed";
  Adjustment adjustment = WrongFromTheProviderOn();
  adjustment.pin = std::string(kMebibyte, 'p');
  ExpectRefused(adjustment, 20078, message, ProviderRefused(message), {});
  adjustment = WrongFromTheDepotOn();
  adjustment.depot = std::string(kMebibyte, 'd');
  ExpectRefused(adjustment, 20078, message, DepotRefused(message), {ProviderCount("P1")});
}

TEST_F(InventoryAdjustment, AVeryLongTypeIsUnknown) {
  const std::string message = "Error verifying adjustment type";
  Adjustment adjustment = WrongFromTheTypeOn();
  adjustment.type = std::string(kMebibyte, 't');
  ExpectRefused(adjustment, 20036, message, TypeRefused(message), QueriesUpToTheAction(adjustment));
}

TEST_F(InventoryAdjustment, AVeryLongVaccineAndLotAreStoredWhole) {
  const std::size_t length = database().LongestIndexedText() / 2;
  const std::string vaccine(length, 'V');
  const std::string lot(length, 'L');
  AddStock(vaccine, lot);
  Adjustment adjustment;
  adjustment.vaccine = std::string(length, 'v');
  adjustment.lot = std::string(length, 'l');
  Run(adjustment);
  Run(adjustment);
  EXPECT_TRUE(Query("SELECT vaccine, lot, doses FROM distrib") == (Rows{{vaccine, lot, "10"}}));
}

TEST_F(InventoryAdjustment, AVeryLongDateOverflowsWhereItIsTestedForBlank) {
  Adjustment adjustment = WrongFromTheEntryDateOn();
  adjustment.entry = std::string(kMebibyte, '1');
  ExpectRefused(adjustment, 6, [](const std::string&) { return Lines{}; });
  adjustment = WrongFromTheEntryDateOn();
  adjustment.entry = "13/45/2001";
  adjustment.date = std::string(kMebibyte, '1');
  ExpectRefused(adjustment, 6, [](const std::string&) { return Lines{}; });
}

TEST_F(InventoryAdjustment, AsManyCharactersAs16BitsCountAreNoOverflow) {
  const std::string message = "Entry date for the adjustment is not a valid date";
  std::string accents;
  for (int count = 0; count < 32767; ++count) accents += "é";
  Adjustment adjustment = WrongFromTheProviderOn();
  adjustment.entry = accents;
  ExpectRefused(adjustment, 20074, message,
                Refused("ValidateProviderInventoryAdjustDates", message), {});
  adjustment.entry = accents + "é";
  ExpectRefused(adjustment, 6, [](const std::string&) { return Lines{}; });
}

// --- The action code lookup -------------------------------------------------

class AdjustmentLookups : public DatabaseTest {
 protected:
  void SetUp() override {
    Watch(connection(), [this](const std::string&) { return answer_; });
  }

  void AddAction(const std::string& status, const std::string& action) {
    Execute("INSERT INTO actref (status, action) VALUES ('" + status + "', " + action + ")");
  }
  void AddMovement(const std::string& doses, const std::string& action = "2",
                   const std::string& lot = "AB12") {
    Execute(
        "INSERT INTO distrib (dateout, frompin, pin, vaccine, lot, doses, action) VALUES "
        "('2004-01-06', 'D1', 'P1', 'HEPA', '" +
        lot + "', " + doses + ", " + action + ")");
  }
  [[nodiscard]] std::int32_t Action(const std::string& status) {
    return ActionCodeOf(status, connection());
  }
  [[nodiscard]] std::int32_t Doses(const std::string& lot = "AB-12", std::int32_t action = 2) {
    return CurrentDoses(action, "P1", "HEPA", lot, "1/6/2004", "D1", connection());
  }

  // Refused with that number and text, and not a line written.
  void ExpectRefused(std::int32_t code, const std::string& message,
                     const std::function<void()>& call) {
    static_cast<void>(connection());
    const Error error = Refusal(call);
    EXPECT_EQ(error.number(), Coded(code));
    EXPECT_EQ(error.description(), message);
    EXPECT_EQ(Trace(), Lines{});
    EXPECT_EQ(connection().State(), ObjectState::kOpen);
  }
  void ExpectNumber(std::int32_t number, const std::function<void()>& call) {
    static_cast<void>(connection());
    const Error error = Refusal(call);
    EXPECT_EQ(error.number(), number);
    EXPECT_NE(error.description(), "");
    EXPECT_EQ(Trace(), Lines{});
  }

  std::optional<std::vector<Value>> answer_;
};

TEST_F(AdjustmentLookups, AnActionIsThatOfItsStatus) {
  AddAction("a", "3");
  AddAction("b", "-4");
  EXPECT_EQ(Action("a"), 3);
  EXPECT_EQ(Action("b"), -4);
  EXPECT_EQ(Statements(), (Lines{"SELECT action FROM actref WHERE status = 'a'",
                                 "SELECT action FROM actref WHERE status = 'b'"}));
  EXPECT_EQ(Trace(), Lines{});
}

TEST_F(AdjustmentLookups, AnActionThatIsNotThereIsRefused) {
  AddAction("a", "3");
  ExpectRefused(20036, "Error verifying adjustment type", [&] { static_cast<void>(Action("b")); });
}

TEST_F(AdjustmentLookups, AnActionThatIsThereTwiceIsRefused) {
  AddAction("a", "3");
  AddAction("a", "3");
  ExpectRefused(20037, "Duplicate adjustment type found", [&] { static_cast<void>(Action("a")); });
  AddAction("a", "4");
  ExpectRefused(20037, "Duplicate adjustment type found", [&] { static_cast<void>(Action("a")); });
}

TEST_F(AdjustmentLookups, StatusesCompareAsTheyStandButForTrailingBlanks) {
  AddAction("a ", "3");
  AddAction(" a", "4");
  AddAction("A", "5");
  EXPECT_EQ(Action("a"), 3);
  EXPECT_EQ(Action("a   "), 3);
  EXPECT_EQ(Action(" a"), 4);
  EXPECT_EQ(Action("A"), 5);
  ExpectRefused(20036, "Error verifying adjustment type",
                [&] { static_cast<void>(Action("  a")); });
}

TEST_F(AdjustmentLookups, AMissingActionIsZero) {
  AddAction("a", "NULL");
  EXPECT_EQ(Action("a"), 0);
}

TEST_F(AdjustmentLookups, AnActionIsA32BitNumberRoundedHalfToEven) {
  const std::vector<std::pair<std::string, std::int32_t>> actions = {{"0.5", 0},
                                                                     {"1.5", 2},
                                                                     {"2.5", 2},
                                                                     {"-2.5", -2},
                                                                     {"2147483647", kLargest},
                                                                     {"-2147483648", kSmallest},
                                                                     {"2147483647.4", kLargest}};
  for (const auto& [stored, action] : actions) {
    SCOPED_TRACE(stored);
    Execute("DELETE FROM actref");
    AddAction("a", stored);
    EXPECT_EQ(Action("a"), action);
  }
  for (const char* const stored : {"2147483648", "-2147483649", "2147483647.5", "1e300"}) {
    SCOPED_TRACE(stored);
    Execute("DELETE FROM actref");
    AddAction("a", stored);
    ExpectNumber(6, [&] { static_cast<void>(Action("a")); });
  }
}

TEST_F(AdjustmentLookups, AStatusThatWouldLeaveItsPlaceIsRefused) {
  AddAction("a", "3");
  for (const std::string& status :
       {std::string("a'"), std::string("' OR '1'='1"), std::string("a\0", 2)}) {
    ExpectNumber(Numbered(EngineError::kStatementRefused),
                 [&] { static_cast<void>(Action(status)); });
  }
}

TEST_F(AdjustmentLookups, AnEngineErrorOfTheActionLookupKeepsItsNumber) {
  Execute("DROP TABLE actref");
  ExpectNumber(Numbered(EngineError::kNoSuchTable), [&] { static_cast<void>(Action("a")); });
}

// --- The current doses ------------------------------------------------------

TEST_F(AdjustmentLookups, CurrentDosesAreThoseOfTheMovement) {
  AddMovement("7");
  AddMovement("8", "3");
  AddMovement("9", "2", "CD34");
  EXPECT_EQ(Doses("A-B-12"), 7);
  EXPECT_EQ(Statements(),
            (Lines{"SELECT doses FROM distrib WHERE action = 2 AND ltrim(rtrim(pin)) = 'P1' AND "
                   "ltrim(rtrim(vaccine)) = 'HEPA' AND "
                   "ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = 'AB12' AND dateout = "
                   "{1/6/2004} AND ltrim(rtrim(frompin)) = 'D1'"}));
  EXPECT_EQ(Trace(), Lines{});
}

TEST_F(AdjustmentLookups, ValuesAreSplicedAsGivenButForTheDashesOfTheLot) {
  ExpectRefused(20042, "Error determining current doses for inventory adjustment update", [&] {
    static_cast<void>(
        CurrentDoses(-12, " P-1 ", " h-a ", " -a-b- ", "Jan 6, 2004", " d-1 ", connection()));
  });
  EXPECT_EQ(Statements(),
            (Lines{"SELECT doses FROM distrib WHERE action = -12 AND ltrim(rtrim(pin)) = ' P-1 ' "
                   "AND ltrim(rtrim(vaccine)) = ' h-a ' AND "
                   "ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = ' ab ' AND dateout = {Jan "
                   "6, 2004} AND ltrim(rtrim(frompin)) = ' d-1 '"}));
}

TEST_F(AdjustmentLookups, EveryPartOfTheMovementCounts) {
  AddMovement("7");
  const std::vector<std::function<std::int32_t()>> calls = {
      [&] { return CurrentDoses(3, "P1", "HEPA", "AB12", "1/6/2004", "D1", connection()); },
      [&] { return CurrentDoses(2, "P2", "HEPA", "AB12", "1/6/2004", "D1", connection()); },
      [&] { return CurrentDoses(2, "P1", "HEPB", "AB12", "1/6/2004", "D1", connection()); },
      [&] { return CurrentDoses(2, "P1", "HEPA", "AB13", "1/6/2004", "D1", connection()); },
      [&] { return CurrentDoses(2, "P1", "HEPA", "AB12", "1/7/2004", "D1", connection()); },
      [&] { return CurrentDoses(2, "P1", "HEPA", "AB12", "1/6/2004", "D2", connection()); }};
  for (const auto& call : calls) {
    ExpectRefused(20042, "Error determining current doses for inventory adjustment update",
                  [&] { static_cast<void>(call()); });
  }
}

TEST_F(AdjustmentLookups, CurrentDosesThatAreNotThereOnceAreRefused) {
  const std::string message = "Error determining current doses for inventory adjustment update";
  ExpectRefused(20042, message, [&] { static_cast<void>(Doses()); });
  AddMovement("7");
  AddMovement("7", "2", "A-B12");
  ExpectRefused(20042, message, [&] { static_cast<void>(Doses()); });
}

TEST_F(AdjustmentLookups, MissingCurrentDosesAreZero) {
  AddMovement("NULL");
  EXPECT_EQ(Doses(), 0);
}

TEST_F(AdjustmentLookups, CurrentDosesAreA32BitNumber) {
  AddMovement("2147483647");
  EXPECT_EQ(Doses(), kLargest);
  AddMovement("-2147483648", "3");
  EXPECT_EQ(Doses("AB12", 3), kSmallest);
  answer_ = std::vector<Value>{std::int64_t{2147483648}};
  ExpectNumber(6, [&] { static_cast<void>(Doses()); });
  answer_ = std::vector<Value>{std::int64_t{-2147483649}};
  ExpectNumber(6, [&] { static_cast<void>(Doses()); });
}

TEST_F(AdjustmentLookups, AMovementThatWouldLeaveItsPlaceIsRefused) {
  AddMovement("7");
  const std::vector<std::function<std::int32_t()>> calls = {
      [&] { return CurrentDoses(2, "P'1", "HEPA", "AB12", "1/6/2004", "D1", connection()); },
      [&] { return CurrentDoses(2, "P1", "HEP'A", "AB12", "1/6/2004", "D1", connection()); },
      [&] { return CurrentDoses(2, "P1", "HEPA", "AB'12", "1/6/2004", "D1", connection()); },
      [&] { return CurrentDoses(2, "P1", "HEPA", "AB12", "1/6/2004}", "D1", connection()); },
      [&] { return CurrentDoses(2, "P1", "HEPA", "AB12", "soon", "D'1", connection()); }};
  for (const auto& call : calls) {
    ExpectNumber(Numbered(EngineError::kStatementRefused), [&] { static_cast<void>(call()); });
  }
}

TEST_F(AdjustmentLookups, ADateThatIsNoneCannotBeConverted) {
  AddMovement("7");
  for (const char* const date : {"soon", "13/45/2004", "1'6/2004"}) {
    SCOPED_TRACE(date);
    ExpectNumber(Numbered(EngineError::kValueCannotBeConverted), [&] {
      static_cast<void>(CurrentDoses(2, "P1", "HEPA", "AB12", date, "D1", connection()));
    });
  }
}

TEST_F(AdjustmentLookups, AnEngineErrorOfTheCurrentDosesKeepsItsNumber) {
  Execute("DROP TABLE distrib");
  ExpectNumber(Numbered(EngineError::kNoSuchTable), [&] { static_cast<void>(Doses()); });
}

}  // namespace
}  // namespace lotrix::test

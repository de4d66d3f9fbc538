#include <gtest/gtest.h>

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

// A call's arguments; as they stand, a shipment that is accepted.
struct Shipment {
  std::string date = "1/5/2004";
  std::string depot = "D1";
  std::string pin = "P1";
  std::string vaccine = "HEPA";
  std::int32_t doses = 20;
  std::string lot = "AB-12";
  std::string excess = "1";
  std::string orderDate = {};
};

// Wrong in every argument: the order of the checks is the order in which its
// faults are found when they are mended one by one.
Shipment AllWrong() {
  return {.date = " ",
          .depot = " ",
          .pin = " ",
          .vaccine = " ",
          .doses = 0,
          .lot = " ",
          .excess = "9",
          .orderDate = std::string(kMebibyte, '1')};
}

// The lines of the trace, piece by piece as a call comes by them.

const std::string kOperation = "DepotProviderOrderUpdate";

Lines Begun() { return {BeginOf(kOperation)}; }

// The routine has no End line.
Lines ExcessPassed() { return {BeginOf("ValidateExcessAllowance")}; }
Lines ContractRead() { return Joined({ExcessPassed(), ConnectionRead()}); }
Lines DuplicatePassed() {
  return Joined({ContractRead(), Asked("ValidateDuplicateDepotProviderOrder")});
}
Lines DepotPassed() { return Joined({DuplicatePassed(), Asked("ValidateDepotPIN")}); }
Lines ProviderPassed() { return Joined({DepotPassed(), ActiveProviderPassed()}); }
Lines VaccinePassed() { return Joined({ProviderPassed(), ActiveVaccinePassed()}); }
Lines KeysTaken() { return Joined({VaccinePassed(), KeyTaken(), KeyTaken()}); }

Lines ExcessRefused(const std::string& description) {
  return Refused("ValidateExcessAllowance", description);
}
Lines DuplicateRefused(const std::string& description) {
  return Joined({ContractRead(), RefusedBy("ValidateDuplicateDepotProviderOrder", description)});
}
Lines DepotRefused(const std::string& description) {
  return Joined({DuplicatePassed(), RefusedBy("ValidateDepotPIN", description)});
}
Lines ProviderRefused(const std::string& description) {
  return Joined({DepotPassed(), RefusedBy("ValidateProviderPIN", description)});
}

// The statements as a call builds them.

std::string WithoutDashes(const std::string& lot) {
  std::string rest;
  for (const char letter : lot) {
    if (letter != '-') rest += letter;
  }
  return rest;
}

std::string ContractQuery(const std::string& vaccine, const std::string& size = "10") {
  return "SELECT * FROM pvaccref WHERE ltrim(rtrim(vaccine)) = '" + vaccine +
         "' AND pkgsize=" + size;
}
std::string SelectionOf(const Shipment& shipment) {
  return "FROM distrib WHERE  ltrim(rtrim(FromPin)) = '" + shipment.depot +
         "' AND    ltrim(rtrim(pin)) ='" + shipment.pin + "' AND    ltrim(rtrim(vaccine))='" +
         shipment.vaccine + "' AND    ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),'')))='" +
         WithoutDashes(shipment.lot) + "' AND    dateout={" + shipment.date + "} AND    action=1";
}
std::string DuplicateCount(const Shipment& shipment) {
  return "SELECT count(*) " + SelectionOf(shipment);
}
std::string DosesQuery(const Shipment& shipment) { return "SELECT doses " + SelectionOf(shipment); }
std::string Update(const Shipment& shipment, const std::string& doses) {
  return "UPDATE distrib SET doses = " + doses + ", units = 0, fdose1 = " + doses +
         ", chgdate = {11/20/2026}, userid = 'LTX_DLL' WHERE  ltrim(rtrim(FromPin)) = '" +
         shipment.depot + "' AND    ltrim(rtrim(pin)) = '" + shipment.pin +
         "' AND    ltrim(rtrim(vaccine))= '" + shipment.vaccine +
         "' AND    ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),'')))= '" +
         WithoutDashes(shipment.lot) + "' AND    dateout= {" + shipment.date + "} AND    action= 1";
}
// With the contract of the default vaccine but for its size.
std::string Insert(const Shipment& shipment, const std::string& doses = "20",
                   const std::string& size = "10") {
  return "INSERT INTO neworder(rectype, pin, orddate, orddose, size, vaccine, maker, cost, "
         "contract, fcode1, fdose1, chgdate, userid, ndcno, descrip) VALUES('5', '" +
         shipment.pin + "',  {" + shipment.date + "}, " + doses + ", " + size + ", '" +
         shipment.vaccine + "', 'MERCK', 12.5, 'C-77', '1', " + doses + ",  {" + shipment.date +
         "}, 'LTX_DLL', '0006-4831', 'Ten doses') ";
}

Lines QueriesUpToTheDuplicate(const Shipment& shipment) {
  return {ContractQuery(shipment.vaccine), DuplicateCount(shipment)};
}
Lines QueriesUpToTheDepot(const Shipment& shipment) {
  return Joined({QueriesUpToTheDuplicate(shipment), {DepotCount(shipment.depot)}});
}
Lines QueriesUpToTheVaccine(const Shipment& shipment) {
  return Joined({QueriesUpToTheDepot(shipment),
                 {ProviderCount(shipment.pin), ProviderActive(shipment.pin),
                  VaccineCount(shipment.vaccine), VaccineActiveCount(shipment.vaccine)}});
}
Lines CheckQueries(const Shipment& shipment) {
  return Joined({QueriesUpToTheVaccine(shipment),
                 {KeyQuery("DISTRIB"), KeyUpdate("DISTRIB", "42"), KeyQuery("SEEKDIST"),
                  KeyUpdate("SEEKDIST", "72")}});
}

const Rows kUntouchedKeys = {{"OTHER", "7"}, {"DISTRIB", "41"}, {"SeekDist", "71"}};
const Rows kTakenKeys = {{"OTHER", "7"}, {"DISTRIB", "42"}, {"SeekDist", "72"}};

class DepotOrder : public OperationTest {
 protected:
  void SetUp() override {
    Execute(
        "INSERT INTO provider (pin, sector, active) VALUES ('P1', 15, 'Y'), ('P2', 15, 'Y'), "
        "('D1', 30, 'Y'), ('D2', 31, 'Y')");
    AddContract("HEPA", "10");
    Execute(
        "INSERT INTO nextid (ctablename, inextid) VALUES ('DISTRIB', 41), ('SeekDist', 71), "
        "('OTHER', 7)");
    WatchOperations();
  }

  void AddContract(const std::string& vaccine, const std::string& size,
                   const std::string& maker = "MERCK", const std::string& locactiv = "(1 = 0)") {
    Execute(
        "INSERT INTO pvaccref (vaccine, maker, \"begin\", \"end\", minbulk, unitsize, pkgsize, "
        "ndcno, cost, contractid, sel_maker, dos_wind, excfunds, descrip, locactiv, maxno) "
        "VALUES ('" +
        vaccine + "', '" + maker + "', '2004-01-01', '2004-12-31', 1, 1, " + size +
        ", '0006-4831', 12.5, 'C-77', 'S', 'W', 'E', 'Ten doses', " + locactiv + ", 3)");
  }
  // The distribution of the default key as another program may have left it.
  void AddDistribution(const std::string& doses, const std::string& depot = "D1",
                       const std::string& pin = "P1", const std::string& vaccine = "HEPA",
                       const std::string& lot = "AB12", const std::string& date = "2004-01-05",
                       const std::string& action = "1") {
    Execute(
        "INSERT INTO distrib (input, dateout, frompin, pin, vaccine, lot, doses, units, fdose1, "
        "action, distid, notes, chgdate, status, shipped, userid) VALUES ('2003-03-03', '" +
        date + "', '" + depot + "', '" + pin + "', '" + vaccine + "', '" + lot + "', " + doses +
        ", 6, 7, " + action + ", 8, 'OLD', '2003-04-04', 'Xx', 9, 'SOMEONE')");
  }

  void Run(const Shipment& shipment) {
    lotrix().DepotProviderOrderUpdate(shipment.date, shipment.depot, shipment.pin, shipment.vaccine,
                                      shipment.doses, shipment.lot, shipment.excess,
                                      shipment.orderDate);
  }

  [[nodiscard]] Rows Orders() {
    return Query(
        "SELECT ordpin, rectype, pin, orddate, vaccine, orddose, fcode1, fdose1, size, cost, "
        "maker, contract, ndcno, chgdate, userid, descrip, seekid FROM neworder");
  }
  [[nodiscard]] Rows Distributions() {
    return Query(
        "SELECT input, dateout, frompin, pin, vaccine, lot, doses, units, fdose1, action, distid, "
        "notes, chgdate, status, shipped, userid FROM distrib");
  }
  [[nodiscard]] Rows Keys() {
    return Query("SELECT ctablename, inextid FROM nextid ORDER BY inextid");
  }
  [[nodiscard]] Rows Everything() {
    return Contents({"neworder", "influenza", "distrib", "pvaccref", "provider"});
  }

  // Refused with that number, the whole trace as `lines` tells it, nothing written,
  // and the keys as told afterwards.
  Error ExpectRefused(const Shipment& shipment, std::int32_t number,
                      const std::function<Lines(const std::string& description)>& lines,
                      const Rows& keys = kUntouchedKeys) {
    const Rows before = Everything();
    Error error = ExpectRefusal(
        kOperation, [&] { Run(shipment); }, number, lines);
    EXPECT_EQ(Everything(), before);
    EXPECT_EQ(Keys(), keys);
    return error;
  }
  // A catalogue refusal; `lines` stand between the operation's first and last.
  void ExpectRefused(const Shipment& shipment, std::int32_t code, const std::string& message,
                     const Lines& lines, const Lines& statements,
                     const Rows& keys = kUntouchedKeys) {
    const Error error = ExpectRefused(
        shipment, Coded(code), [&](const std::string&) { return lines; }, keys);
    EXPECT_EQ(error.description(), message);
    EXPECT_EQ(Statements(), statements);
  }
};

// --- A first shipment ------------------------------------------------------

TEST_F(DepotOrder, AFirstShipmentIsEnteredAsAnOrder) {
  Run({});
  EXPECT_EQ(Orders(),
            (Rows{{"<null>", "5", "P1", "2004-01-05", "HEPA", "20", "1", "20", "10", "12.5",
                   "MERCK", "C-77", "0006-4831", "2004-01-05", "LTX_DLL", "Ten doses", "0"}}));
  EXPECT_EQ(Distributions(), Rows{});
  EXPECT_EQ(Keys(), kTakenKeys);
}

// Once without helpers: what the texts say, letter for letter.
TEST_F(DepotOrder, TheStatementsOfAFirstShipmentLetterForLetter) {
  Run({});
  EXPECT_EQ(
      Statements(),
      (Lines{
          "SELECT * FROM pvaccref WHERE ltrim(rtrim(vaccine)) = 'HEPA' AND pkgsize=10",
          "SELECT count(*) FROM distrib WHERE  ltrim(rtrim(FromPin)) = 'D1' AND    "
          "ltrim(rtrim(pin)) ='P1' AND    ltrim(rtrim(vaccine))='HEPA' AND    "
          "ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),'')))='AB12' AND    dateout={1/5/2004} AND   "
          " action=1",
          "SELECT count(*) FROM provider WHERE ltrim(rtrim(active)) = 'Y' AND sector BETWEEN 30 "
          "AND 31 AND ltrim(rtrim(pin)) = 'D1'",
          "SELECT count(*) FROM provider WHERE Sector BETWEEN 10 AND 29 AND ltrim(rtrim(pin)) = "
          "'P1'",
          "SELECT active FROM provider WHERE Sector BETWEEN 10 AND 29 AND ltrim(rtrim(pin)) = "
          "'P1'",
          "SELECT count(*) FROM pvaccref WHERE ltrim(rtrim(vaccine)) == 'HEPA'",
          "SELECT count(*) FROM pvaccref WHERE ltrim(rtrim(vaccine)) == 'HEPA' AND locactiv = .F.",
          "SELECT inextid FROM Nextid WHERE ltrim(rtrim(upper(ctablename))) = 'DISTRIB' ",
          "UPDATE nextid SET inextid  = 42 WHERE ltrim(rtrim(upper(ctablename))) = 'DISTRIB' ",
          "SELECT inextid FROM Nextid WHERE ltrim(rtrim(upper(ctablename))) = 'SEEKDIST' ",
          "UPDATE nextid SET inextid  = 72 WHERE ltrim(rtrim(upper(ctablename))) = 'SEEKDIST' ",
          "INSERT INTO neworder(rectype, pin, orddate, orddose, size, vaccine, maker, cost, "
          "contract, fcode1, fdose1, chgdate, userid, ndcno, descrip) VALUES('5', 'P1',  "
          "{1/5/2004}, 20, 10, 'HEPA', 'MERCK', 12.5, 'C-77', '1', 20,  {1/5/2004}, 'LTX_DLL', "
          "'0006-4831', 'Ten doses') "}));
}

TEST_F(DepotOrder, TheTraceOfAFirstShipmentShowsItsStatement) {
  Run({});
  EXPECT_EQ(
      Trace(),
      (Lines{"information Begin: DepotProviderOrderUpdate()",
             "information Begin: ValidateExcessAllowance()",
             "information Begin: Get Connection()",
             "information End: GetConnection()",
             "information Begin: Get Connection()",
             "information End: GetConnection()",
             "information Begin: ValidateDuplicateDepotProviderOrder()",
             "information End: ValidateDuplicateDepotProviderOrder()",
             "information Begin: Get Connection()",
             "information End: GetConnection()",
             "information Begin: ValidateDepotPIN()",
             "information End: ValidateDepotPIN()",
             "information Begin: Get Connection()",
             "information End: GetConnection()",
             "information Begin: ValidateProviderPIN()",
             "information Begin: ValidateProviderActiveStatus()",
             "information End: ValidateProviderActiveStatus()",
             "information End: ValidateProviderPIN()",
             "information Begin: Get Connection()",
             "information End: GetConnection()",
             "information End: ValidateAgainstpVaccRefTable()",
             "information Begin: ValidateVaccineActiveStatus()",
             "information End: ValidateVaccineActiveStatus()",
             "information End: ValidateAgainstpVaccRefTable()",
             "information Begin: Get Connection()",
             "information End: GetConnection()",
             "information Begin: Get Connection()",
             "information End: GetConnection()",
             "information Begin: Get Connection()",
             "information End: GetConnection()",
             "information Begin: Get Connection()",
             "information End: GetConnection()",
             "information INSERT INTO neworder(rectype, pin, orddate, orddose, size, vaccine, "
             "maker, cost, contract, fcode1, fdose1, chgdate, userid, ndcno, descrip) "
             "VALUES('5', 'P1',  {1/5/2004}, 20, 10, 'HEPA', 'MERCK', 12.5, 'C-77', '1', 20,  "
             "{1/5/2004}, 'LTX_DLL', '0006-4831', 'Ten doses') ",
             "information Begin: Get Connection()",
             "information End: GetConnection()",
             "information End: DepotProviderOrderUpdate()"}));
}

TEST_F(DepotOrder, TheOptionalArgumentsMayBeOmitted) {
  lotrix().DepotProviderOrderUpdate("1/5/2004", "D1", "P1", "HEPA", 20, "AB-12");
  EXPECT_EQ(Statements(), Joined({CheckQueries({}), {Insert({})}}));
  EXPECT_EQ(Query("SELECT orddose FROM neworder"), (Rows{{"20"}}));
}

TEST_F(DepotOrder, AShipmentThatOnlyMakesAnOrderIsAFirstOneEachTime) {
  Run({});
  Run({});
  EXPECT_EQ(Query("SELECT orddose FROM neworder"), (Rows{{"20"}, {"20"}}));
  EXPECT_EQ(Distributions(), Rows{});
  EXPECT_EQ(Keys(), (Rows{{"OTHER", "7"}, {"DISTRIB", "43"}, {"SeekDist", "73"}}));
}

TEST_F(DepotOrder, InfluenzaIsAVaccineLikeAnyOther) {
  AddContract("FLU", "10");
  Shipment shipment;
  shipment.vaccine = "FLU";
  Run(shipment);
  EXPECT_EQ(Query("SELECT vaccine, rectype, descrip FROM neworder"),
            (Rows{{"FLU", "5", "Ten doses"}}));
  EXPECT_EQ(Query("SELECT vaccine FROM influenza"), Rows{});
}

TEST_F(DepotOrder, OneDoseAndTheLargestCountAreAccepted) {
  Shipment shipment;
  shipment.doses = 1;
  Run(shipment);
  shipment.doses = kLargest;
  Run(shipment);
  EXPECT_EQ(Query("SELECT orddose, fdose1 FROM neworder ORDER BY orddose"),
            (Rows{{"1", "1"}, {"2147483647", "2147483647"}}));
}

TEST_F(DepotOrder, TheArgumentsCountInUpperCase) {
  const Shipment shipment{.date = "jan 5, 2004",
                          .depot = "d1",
                          .pin = "p1",
                          .vaccine = "hepa",
                          .lot = "ab-12",
                          .excess = "&h2",
                          .orderDate = "jan 4, 2004"};
  const Shipment upper{
      .date = "JAN 5, 2004", .depot = "D1", .pin = "P1", .vaccine = "HEPA", .lot = "AB-12"};
  Run(shipment);
  EXPECT_EQ(Statements(), Joined({CheckQueries(upper), {Insert(upper)}}));
  EXPECT_EQ(Query("SELECT pin, orddate, vaccine, chgdate FROM neworder"),
            (Rows{{"P1", "2004-01-05", "HEPA", "2004-01-05"}}));
}

TEST_F(DepotOrder, LettersBeyondAsciiAreUpperCasedOneByOne) {
  AddContract("GRIPPE ÉŸЯ STRAßE", "10");
  AddDistribution("5", "D1", "P1", "GRIPPE ÉŸЯ STRAßE", "Ñ9");
  Shipment shipment;
  shipment.vaccine = "grippe éÿя straße";
  Run(shipment);
  EXPECT_EQ(Query("SELECT vaccine FROM neworder"), (Rows{{"GRIPPE ÉŸЯ STRAßE"}}));
  shipment.lot = "ñ-9";
  Run(shipment);
  EXPECT_EQ(Query("SELECT lot, doses FROM distrib"), (Rows{{"Ñ9", "25"}}));
}

// The pin alone is trimmed, and only where the order is written.
TEST_F(DepotOrder, ThePinIsTrimmedForTheOrder) {
  const Shipment shipment{
      .date = " 1/5/2004 ", .depot = "D1 ", .pin = "P1  ", .vaccine = "HEPA ", .lot = "AB-12 "};
  Run(shipment);
  Shipment trimmed = shipment;
  trimmed.pin = "P1";
  EXPECT_EQ(Statements(), Joined({CheckQueries(shipment), {Insert(trimmed)}}));
  EXPECT_EQ(Query("SELECT pin, vaccine, orddate FROM neworder"),
            (Rows{{"P1", "HEPA ", "2004-01-05"}}));
}

TEST_F(DepotOrder, TheDateIsSplicedAsGivenAndStoredAsADay) {
  const std::vector<std::pair<std::string, std::string>> dates = {
      {"01/05/2004", "2004-01-05"},
      {"1-5-04", "2004-01-05"},
      {"2004-1-5", "2004-01-05"},
      {"5-JAN-2004", "2004-01-05"},
      {"1/5/2004 10:30 PM", "2004-01-05"},
      {"12/31/9999", "9999-12-31"},
      {"1/1/100", "0100-01-01"},
      {"12:00:00 AM", "1899-12-30"},
      {"10:30", "1899-12-30"},
      {"\t", "<null>"}};
  for (const auto& [date, day] : dates) {
    SCOPED_TRACE(date);
    Execute("UPDATE nextid SET inextid = 41 WHERE ctablename = 'DISTRIB'");
    Execute("UPDATE nextid SET inextid = 71 WHERE ctablename = 'SeekDist'");
    Shipment shipment;
    shipment.date = date;
    static_cast<void>(Statements());
    Run(shipment);
    EXPECT_EQ(Statements(), Joined({CheckQueries(shipment), {Insert(shipment)}}));
    EXPECT_EQ(Query("SELECT orddate, chgdate FROM neworder"), (Rows{{day, day}}));
    Execute("DELETE FROM neworder");
  }
}

TEST_F(DepotOrder, TheContractIsNotAskedForItsDatesNorItsMaker) {
  Shipment shipment;
  shipment.date = "1/5/1990";
  Run(shipment);
  EXPECT_EQ(Query("SELECT orddate, maker FROM neworder"), (Rows{{"1990-01-05", "MERCK"}}));
}

TEST_F(DepotOrder, TextThatOnlyLooksLikeSqlStaysAValue) {
  const std::string odd = "A\"B;--%_\\{}]/*";
  AddContract(odd, "10", odd);
  Shipment shipment;
  shipment.vaccine = odd;
  shipment.lot = odd;
  Run(shipment);
  EXPECT_EQ(Query("SELECT vaccine, maker FROM neworder"), (Rows{{odd, odd}}));
}

TEST_F(DepotOrder, TheOrderDateReachesNoStatement) {
  for (const std::string& date :
       {std::string("1/4/2004"), std::string("soon"), std::string("1/4/2004'"), std::string("}"),
        std::string("' OR '1'='1"), std::string("1/4/2004\0x", 10), std::string("   ")}) {
    SCOPED_TRACE(date);
    Execute("UPDATE nextid SET inextid = 41 WHERE ctablename = 'DISTRIB'");
    Execute("UPDATE nextid SET inextid = 71 WHERE ctablename = 'SeekDist'");
    Shipment shipment;
    shipment.orderDate = date;
    static_cast<void>(Statements());
    Run(shipment);
    EXPECT_EQ(Statements(), Joined({CheckQueries(shipment), {Insert(shipment)}}));
    EXPECT_EQ(Query("SELECT orddate, chgdate FROM neworder"), (Rows{{"2004-01-05", "2004-01-05"}}));
    Execute("DELETE FROM neworder");
  }
}

TEST_F(DepotOrder, TheOrderDateOfAnUpdateReachesNoStatementEither) {
  AddDistribution("5");
  Shipment shipment;
  shipment.orderDate = "soon'";
  Run(shipment);
  EXPECT_EQ(Statements(), (Lines{ContractQuery("HEPA"), DuplicateCount(shipment),
                                 DosesQuery(shipment), Update(shipment, "25")}));
}

TEST_F(DepotOrder, AnExcessAllowanceOfBlanksCountsAsOne) {
  for (const char* const excess : {"", "   "}) {
    SCOPED_TRACE(excess);
    Shipment shipment;
    shipment.excess = excess;
    Run(shipment);
    EXPECT_EQ(Query("SELECT orddose FROM neworder"), (Rows{{"20"}}));
    Execute("DELETE FROM neworder");
  }
}

TEST_F(DepotOrder, ExcessAllowancesFromOneToFivePass) {
  for (const char* const excess : {"1", "2", "3", "4", "5", "0.6", "5.4", " 3 ", "&H5"}) {
    SCOPED_TRACE(excess);
    Shipment shipment;
    shipment.excess = excess;
    Run(shipment);
    EXPECT_EQ(Query("SELECT orddose FROM neworder"), (Rows{{"20"}}));
    Execute("DELETE FROM neworder");
  }
}

// --- The contract ----------------------------------------------------------

TEST_F(DepotOrder, OneVaccineIsPricedFromItsPackageOfFive) {
  AddContract("MCV4", "10", "TENS");
  AddContract("MCV4", "5");
  Shipment shipment;
  shipment.vaccine = "mcv4";
  Run(shipment);
  Shipment upper = shipment;
  upper.vaccine = "MCV4";
  const Lines statements = Statements();
  ASSERT_EQ(statements.size(), 12U);
  EXPECT_EQ(statements.front(),
            "SELECT * FROM pvaccref WHERE ltrim(rtrim(vaccine)) = 'MCV4' AND pkgsize=5");
  EXPECT_EQ(statements.back(), Insert(upper, "20", "5"));
  EXPECT_EQ(Query("SELECT vaccine, maker, size FROM neworder"), (Rows{{"MCV4", "MERCK", "5"}}));
}

TEST_F(DepotOrder, EveryOtherIsPricedFromItsPackageOfTen) {
  AddContract("HEPA", "5", "FIVES");
  AddContract("MCV", "10");
  AddContract("MCV4X", "10");
  AddContract("MCV4", "5", "FIVES");
  AddContract("MCV4 ", "10");
  for (const char* const vaccine : {"HEPA", "MCV", "MCV4X", "MCV4 "}) {
    SCOPED_TRACE(vaccine);
    Shipment shipment;
    shipment.vaccine = vaccine;
    Run(shipment);
    EXPECT_EQ(Query("SELECT vaccine, maker, size FROM neworder"), (Rows{{vaccine, "MERCK", "10"}}));
    Execute("DELETE FROM neworder");
  }
}

TEST_F(DepotOrder, TheTextsOfAContractAreTrimmed) {
  Execute(
      "UPDATE pvaccref SET maker = '  MERCK ', ndcno = '  N 1 ', contractid = ' C ', descrip = "
      "'   ' WHERE vaccine = 'HEPA'");
  Run({});
  EXPECT_EQ(Query("SELECT maker, ndcno, contract, descrip FROM neworder"),
            (Rows{{"MERCK", "N 1", "C", ""}}));
}

TEST_F(DepotOrder, TheCostIsWrittenInPlainDecimalForm) {
  const std::vector<std::pair<std::string, std::string>> costs = {
      {"10", "10"},           {"0", "0"},        {"0.1 + 0.2", "0.3"},
      {"0.00001", "0.00001"}, {"1e15", "1E+15"}, {"-3.25", "-3.25"}};
  for (const auto& [stored, text] : costs) {
    SCOPED_TRACE(stored);
    Execute("UPDATE pvaccref SET cost = " + stored + " WHERE vaccine = 'HEPA'");
    static_cast<void>(Statements());
    Run({});
    const Lines statements = Statements();
    ASSERT_EQ(statements.size(), 12U);
    EXPECT_EQ(statements.back(),
              "INSERT INTO neworder(rectype, pin, orddate, orddose, size, vaccine, maker, cost, "
              "contract, fcode1, fdose1, chgdate, userid, ndcno, descrip) VALUES('5', 'P1',  "
              "{1/5/2004}, 20, 10, 'HEPA', 'MERCK', " +
                  text + ", 'C-77', '1', 20,  {1/5/2004}, 'LTX_DLL', '0006-4831', 'Ten doses') ");
    EXPECT_EQ(Query("SELECT count(*) FROM neworder WHERE cost = " + text), (Rows{{"1"}}));
    Execute("DELETE FROM neworder");
  }
}

TEST_F(DepotOrder, FurtherContractsAreIgnored) {
  AddContract("HEPA", "10");
  AddContract("HEPA", "10", "MERCK", "(1 = 1)");
  Run({});
  EXPECT_EQ(Query("SELECT orddose, maker FROM neworder"), (Rows{{"20", "MERCK"}}));
}

TEST_F(DepotOrder, AContractWithAMissingValueFailsWithInvalidUseOfNull) {
  for (const char* const column :
       {"maker", "\"begin\"", "\"end\"", "minbulk", "unitsize", "ndcno", "cost", "contractid",
        "sel_maker", "dos_wind", "excfunds", "descrip"}) {
    SCOPED_TRACE(column);
    Execute("DELETE FROM pvaccref WHERE vaccine = 'HEPA'");
    AddContract("HEPA", "10");
    Execute("UPDATE pvaccref SET " + std::string(column) + " = NULL WHERE vaccine = 'HEPA'");
    ExpectRefused({}, 94, [](const std::string&) { return ContractRead(); });
    EXPECT_EQ(Statements(), (Lines{ContractQuery("HEPA")}));
  }
}

TEST_F(DepotOrder, AnUpdateFailsTooForAContractWithAMissingValueItDoesNotWrite) {
  AddDistribution("5");
  Execute("UPDATE pvaccref SET sel_maker = NULL WHERE vaccine = 'HEPA'");
  ExpectRefused({}, 94, [](const std::string&) { return ContractRead(); });
}

// --- A repeated shipment ----------------------------------------------------

TEST_F(DepotOrder, ARepeatedShipmentIsAddedToItsDistribution) {
  AddDistribution("5");
  Run({});
  EXPECT_EQ(Distributions(),
            (Rows{{"2003-03-03", "2004-01-05", "D1", "P1", "HEPA", "AB12", "25", "0", "25", "1",
                   "8", "OLD", "2026-11-20", "Xx", "9", "LTX_DLL"}}));
  EXPECT_EQ(Orders(), Rows{});
  EXPECT_EQ(Keys(), kUntouchedKeys);
  Shipment third;
  third.doses = 7;
  Run(third);
  EXPECT_EQ(Query("SELECT doses, units, fdose1 FROM distrib"), (Rows{{"32", "0", "32"}}));
  EXPECT_EQ(Orders(), Rows{});
  EXPECT_EQ(Keys(), kUntouchedKeys);
}

TEST_F(DepotOrder, TheStatementsOfARepeatedShipmentLetterForLetter) {
  AddDistribution("5");
  Run({});
  EXPECT_EQ(
      Statements(),
      (Lines{
          "SELECT * FROM pvaccref WHERE ltrim(rtrim(vaccine)) = 'HEPA' AND pkgsize=10",
          "SELECT count(*) FROM distrib WHERE  ltrim(rtrim(FromPin)) = 'D1' AND    "
          "ltrim(rtrim(pin)) ='P1' AND    ltrim(rtrim(vaccine))='HEPA' AND    "
          "ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),'')))='AB12' AND    dateout={1/5/2004} AND   "
          " action=1",
          "SELECT doses FROM distrib WHERE  ltrim(rtrim(FromPin)) = 'D1' AND    "
          "ltrim(rtrim(pin)) ='P1' AND    ltrim(rtrim(vaccine))='HEPA' AND    "
          "ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),'')))='AB12' AND    dateout={1/5/2004} AND   "
          " action=1",
          "UPDATE distrib SET doses = 25, units = 0, fdose1 = 25, chgdate = {11/20/2026}, userid "
          "= 'LTX_DLL' WHERE  ltrim(rtrim(FromPin)) = 'D1' AND    ltrim(rtrim(pin)) = 'P1' AND    "
          "ltrim(rtrim(vaccine))= 'HEPA' AND    "
          "ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),'')))= 'AB12' AND    dateout= {1/5/2004} AND "
          "   action= 1"}));
}

// Its statement is not among the lines.
TEST_F(DepotOrder, TheTraceOfARepeatedShipment) {
  AddDistribution("5");
  Run({});
  EXPECT_EQ(Trace(),
            (Lines{"information Begin: DepotProviderOrderUpdate()",
                   "information Begin: ValidateExcessAllowance()",
                   "information Begin: Get Connection()", "information End: GetConnection()",
                   "information Begin: Get Connection()", "information End: GetConnection()",
                   "information Begin: ValidateDuplicateDepotProviderOrder()",
                   "information End: ValidateDuplicateDepotProviderOrder()",
                   "information Begin: Get Connection()", "information End: GetConnection()",
                   "information Begin: Get Connection()", "information End: GetConnection()",
                   "information End: DepotProviderOrderUpdate()"}));
}

TEST_F(DepotOrder, ADistributionIsFoundByItsTrimmedKeysAndWithoutDashes) {
  AddDistribution("5", " D1  ", "  P1 ", " HEPA ", " A-B-12 ");
  Shipment shipment;
  shipment.lot = "AB1-2-";
  Run(shipment);
  EXPECT_EQ(Query("SELECT frompin, pin, vaccine, lot, doses FROM distrib"),
            (Rows{{" D1  ", "  P1 ", " HEPA ", " A-B-12 ", "25"}}));
  EXPECT_EQ(Orders(), Rows{});
}

TEST_F(DepotOrder, ValuesOfAnUpdateAreSplicedAsGiven) {
  AddDistribution("5");
  const Shipment shipment{
      .date = " 1-5-04 ", .depot = "D1 ", .pin = "P1  ", .vaccine = "HEPA ", .lot = "A-B-12 "};
  Run(shipment);
  EXPECT_EQ(Statements(), (Lines{ContractQuery("HEPA "), DuplicateCount(shipment),
                                 DosesQuery(shipment), Update(shipment, "25")}));
  EXPECT_EQ(Query("SELECT doses FROM distrib"), (Rows{{"25"}}));
}

TEST_F(DepotOrder, EveryPartOfTheKeyCounts) {
  AddContract("HEPB", "10");
  AddDistribution("5", "D2");
  AddDistribution("5", "D1", "P2");
  AddDistribution("5", "D1", "P1", "HEPB");
  AddDistribution("5", "D1", "P1", "HEPA", "CD34");
  AddDistribution("5", "D1", "P1", "HEPA", "AB12", "2004-01-06");
  AddDistribution("5", "D1", "P1", "HEPA", "AB12", "2004-01-05", "2");
  const Rows before = Distributions();
  Run({});
  EXPECT_EQ(Distributions(), before);
  EXPECT_EQ(Query("SELECT pin, orddose FROM neworder"), (Rows{{"P1", "20"}}));
}

TEST_F(DepotOrder, OtherDistributionsStayAsTheyAre) {
  AddDistribution("1", "D2");
  AddDistribution("2", "D1", "P2");
  AddDistribution("3", "D1", "P1", "HEPB");
  AddDistribution("4", "D1", "P1", "HEPA", "CD34");
  AddDistribution("5", "D1", "P1", "HEPA", "AB12", "2004-01-06");
  AddDistribution("6", "D1", "P1", "HEPA", "AB12", "2004-01-05", "2");
  AddDistribution("7");
  Run({});
  EXPECT_EQ(Query("SELECT doses, userid FROM distrib ORDER BY doses"), (Rows{{"1", "SOMEONE"},
                                                                             {"2", "SOMEONE"},
                                                                             {"3", "SOMEONE"},
                                                                             {"4", "SOMEONE"},
                                                                             {"5", "SOMEONE"},
                                                                             {"6", "SOMEONE"},
                                                                             {"27", "LTX_DLL"}}));
}

TEST_F(DepotOrder, ARepeatedShipmentIsCheckedNeitherForItsPinsNorItsVaccine) {
  Execute("UPDATE provider SET active = 'N'");
  Execute("UPDATE pvaccref SET locactiv = (1 = 1)");
  Execute("DELETE FROM nextid");
  AddDistribution("5", "TOOLONG-D", "P-É 1");
  Shipment shipment;
  shipment.depot = "toolong-d";
  shipment.pin = "p-é 1";
  Run(shipment);
  EXPECT_EQ(Query("SELECT frompin, pin, doses FROM distrib"), (Rows{{"TOOLONG-D", "P-É 1", "25"}}));
  EXPECT_EQ(Orders(), Rows{});
}

TEST_F(DepotOrder, AMissingCurrentCountIsZero) {
  AddDistribution("NULL");
  Run({});
  EXPECT_EQ(Query("SELECT doses, units, fdose1 FROM distrib"), (Rows{{"20", "0", "20"}}));
}

TEST_F(DepotOrder, TheSumMayReachTheLargestNumber) {
  AddDistribution("2147483627");
  Run({});
  EXPECT_EQ(Query("SELECT doses, fdose1 FROM distrib"), (Rows{{"2147483647", "2147483647"}}));
}

TEST_F(DepotOrder, ANegativeCurrentCountLeavesMoreRoom) {
  AddDistribution("-1");
  Shipment shipment;
  shipment.doses = kLargest;
  Run(shipment);
  EXPECT_EQ(Query("SELECT doses FROM distrib"), (Rows{{"2147483646"}}));
}

TEST_F(DepotOrder, ASumBeyondTheLargestNumberOverflows) {
  AddDistribution("2147483628");
  for (const std::int32_t doses : {20, kLargest}) {
    SCOPED_TRACE(doses);
    Shipment shipment;
    shipment.doses = doses;
    ExpectRefused(shipment, 6, [](const std::string&) {
      return Joined({DuplicatePassed(), ConnectionRead()});
    });
    EXPECT_EQ(Statements(),
              (Lines{ContractQuery("HEPA"), DuplicateCount(shipment), DosesQuery(shipment)}));
  }
}

TEST_F(DepotOrder, ACurrentCountBeyond32BitsOverflows) {
  AddDistribution("5");
  AnswerTo(DosesQuery({}), {std::int64_t{2147483648}});
  ExpectRefused({}, 6, [](const std::string&) {
    return Joined({DuplicatePassed(), ConnectionRead()});
  });
}

TEST_F(DepotOrder, ACurrentCountThatIsNotThereOnceIsRefused) {
  const std::string message = "Error while verifying duplicate depot provider order in LOTRIX";
  AddDistribution("5");
  const std::vector<std::vector<Value>> answers = {{}, {std::int64_t{5}, std::int64_t{5}}};
  for (const std::vector<Value>& records : answers) {
    SCOPED_TRACE(records.size());
    AnswerTo(DosesQuery({}), records);
    ExpectRefused({}, 20018, message, Joined({DuplicatePassed(), ConnectionRead()}),
                  {ContractQuery("HEPA"), DuplicateCount({}), DosesQuery({})});
  }
}

// --- The checks, each with every later one failing too ---------------------

TEST_F(DepotOrder, FirstThatTheExcessAllowanceCanBeTestedForBlank) {
  Shipment shipment = AllWrong();
  shipment.excess = std::string(kMebibyte, '1');
  ExpectRefused(shipment, 6, [](const std::string&) { return Lines{}; });
}

TEST_F(DepotOrder, ThenThatTheShipmentDateIsNotBlank) {
  for (const char* const date : {"", " ", "     "}) {
    SCOPED_TRACE(date);
    Shipment shipment = AllWrong();
    shipment.date = date;
    ExpectRefused(shipment, 20021, "A Null Shipment Date is entered", {}, {});
  }
}

Shipment WrongFromTheDepotOn() {
  Shipment shipment = AllWrong();
  shipment.date = "soon";
  return shipment;
}

TEST_F(DepotOrder, ThenThatTheDepotIsNotBlank) {
  for (const char* const depot : {"", " ", "          "}) {
    SCOPED_TRACE(depot);
    Shipment shipment = WrongFromTheDepotOn();
    shipment.depot = depot;
    ExpectRefused(shipment, 20022, "A NULL depot pin is entered", {}, {});
  }
}

Shipment WrongFromThePinOn() {
  Shipment shipment = WrongFromTheDepotOn();
  shipment.depot = "TOOLONG";
  return shipment;
}

TEST_F(DepotOrder, ThenThatThePinIsNotBlank) {
  for (const char* const pin : {"", " ", "          "}) {
    SCOPED_TRACE(pin);
    Shipment shipment = WrongFromThePinOn();
    shipment.pin = pin;
    ExpectRefused(shipment, 2000, "2000", {}, {});
  }
}

Shipment WrongFromTheVaccineOn() {
  Shipment shipment = WrongFromThePinOn();
  shipment.pin = "TOOLONG";
  return shipment;
}

TEST_F(DepotOrder, ThenThatTheVaccineIsNotBlank) {
  for (const char* const vaccine : {"", " ", "     "}) {
    SCOPED_TRACE(vaccine);
    Shipment shipment = WrongFromTheVaccineOn();
    shipment.vaccine = vaccine;
    ExpectRefused(shipment, 20023, "A NULL vaccine name is entered", {}, {});
  }
}

Shipment WrongFromTheLotOn() {
  Shipment shipment = WrongFromTheVaccineOn();
  shipment.vaccine = "NONE";
  return shipment;
}

TEST_F(DepotOrder, ThenThatTheLotIsNotBlank) {
  for (const char* const lot : {"", " ", "     "}) {
    SCOPED_TRACE(lot);
    Shipment shipment = WrongFromTheLotOn();
    shipment.lot = lot;
    ExpectRefused(shipment, 20024, "A NULL lot number is entered", {}, {});
  }
}

Shipment WrongFromTheCountOn() {
  Shipment shipment = WrongFromTheLotOn();
  shipment.lot = "-";
  return shipment;
}

TEST_F(DepotOrder, ThenTheDoseCount) {
  for (const std::int32_t doses : {0, -1, kSmallest}) {
    SCOPED_TRACE(doses);
    Shipment shipment = WrongFromTheCountOn();
    shipment.doses = doses;
    ExpectRefused(shipment, 20025, "The number of doses for an order must be greater than zero", {},
                  {});
  }
}

TEST_F(DepotOrder, ThenThatTheOrderDateCanBeTestedForBlank) {
  Shipment shipment = WrongFromTheCountOn();
  shipment.doses = 1;
  ExpectRefused(shipment, 6, [](const std::string&) { return Lines{}; });
  EXPECT_EQ(Statements(), Lines{});
}

Shipment WrongFromTheExcessOn() {
  Shipment shipment = WrongFromTheCountOn();
  shipment.doses = 1;
  shipment.orderDate = "soon";
  return shipment;
}

TEST_F(DepotOrder, ThenTheExcessAllowance) {
  const std::string message = "The excess allowance is out of range";
  for (const char* const excess : {"0", "6", "-1", "0.5", "5.5", "2147483647", "(1)"}) {
    SCOPED_TRACE(excess);
    Shipment shipment = WrongFromTheExcessOn();
    shipment.excess = excess;
    ExpectRefused(shipment, 20068, message, ExcessRefused(message), {});
  }
}

TEST_F(DepotOrder, AnExcessAllowanceThatIsNoNumberDoesNotMatchItsType) {
  for (const char* const excess : {"one", "1'", "1 2", "-", "\t"}) {
    SCOPED_TRACE(excess);
    Shipment shipment = WrongFromTheExcessOn();
    shipment.excess = excess;
    ExpectRefused(shipment, 13, ExcessRefused);
    EXPECT_EQ(Statements(), Lines{});
  }
}

TEST_F(DepotOrder, AnExcessAllowanceBeyond32BitsOverflows) {
  for (const char* const excess : {"2147483648", "-2147483649", "1e10"}) {
    SCOPED_TRACE(excess);
    Shipment shipment = WrongFromTheExcessOn();
    shipment.excess = excess;
    ExpectRefused(shipment, 6, ExcessRefused);
  }
}

Shipment WrongFromTheContractOn() {
  Shipment shipment = WrongFromTheExcessOn();
  shipment.excess = "5";
  return shipment;
}

TEST_F(DepotOrder, ThenThatThereIsAContractOfThatPackageSize) {
  const std::string message = "Error while verifying order against vaccine contract table";
  AddContract("FIVE", "5");
  AddContract("MISSING", "NULL");
  for (const char* const vaccine : {"NONE", "FIVE", "MISSING", " HEPA", "HEPAA"}) {
    SCOPED_TRACE(vaccine);
    Shipment shipment = WrongFromTheContractOn();
    shipment.vaccine = vaccine;
    ExpectRefused(shipment, 20052, message, ContractRead(), {ContractQuery(vaccine)});
  }
}

TEST_F(DepotOrder, ThePackageOfTenDoesNotCountWhereFiveIsAskedFor) {
  AddContract("MCV4", "10");
  Shipment shipment = WrongFromTheContractOn();
  shipment.vaccine = "MCV4";
  ExpectRefused(shipment, 20052, "Error while verifying order against vaccine contract table",
                ContractRead(), {ContractQuery("MCV4", "5")});
}

TEST_F(DepotOrder, AShipmentWithoutAContractIsRefusedThoughItsDistributionIsThere) {
  Execute("DELETE FROM pvaccref");
  AddDistribution("5");
  AddDistribution("5");
  ExpectRefused({}, 20052, "Error while verifying order against vaccine contract table",
                ContractRead(), {ContractQuery("HEPA")});
}

TEST_F(DepotOrder, ThenThatTheDistributionIsNotThereTwice) {
  const std::string message = "Error while verifying duplicate depot provider order in LOTRIX";
  AddDistribution("5", "NOBODY", "NOONE");
  AddDistribution("2147483647", " NOBODY", "NOONE ", "HEPA", "A-B12");
  Shipment shipment;
  shipment.depot = "NOBODY";
  shipment.pin = "NOONE";
  ExpectRefused(shipment, 20018, message, DuplicateRefused(message),
                QueriesUpToTheDuplicate(shipment));
}

TEST_F(DepotOrder, ADuplicateCountThatIsNoneIsRefused) {
  const std::string message = "Error while verifying duplicate depot provider order in LOTRIX";
  for (const std::vector<Value>& records :
       {std::vector<Value>{}, std::vector<Value>{std::int64_t{-1}},
        std::vector<Value>{std::int64_t{3}}}) {
    SCOPED_TRACE(records.size());
    AnswerTo(DuplicateCount({}), records);
    ExpectRefused({}, 20018, message, DuplicateRefused(message), QueriesUpToTheDuplicate({}));
  }
}

// The vaccine has a contract, but is not active.
Shipment WrongFromTheDepotsPinOn() {
  Shipment shipment;
  shipment.depot = "TOOLONG";
  shipment.pin = "TOOLONG";
  shipment.vaccine = "OLD";
  return shipment;
}

TEST_F(DepotOrder, ThenTheLengthOfTheDepotPin) {
  const std::string message =
      "The number of characters in the pin entered exceeds the maximum allowed";
  AddContract("OLD", "10", "MERCK", "(1 = 1)");
  for (const char* const depot : {"1234567", "D-12345", "D1     "}) {
    SCOPED_TRACE(depot);
    Shipment shipment = WrongFromTheDepotsPinOn();
    shipment.depot = depot;
    ExpectRefused(shipment, 20078, message, DepotRefused(message),
                  QueriesUpToTheDuplicate(shipment));
  }
}

TEST_F(DepotOrder, ThenTheCharactersOfTheDepotPin) {
  const std::string message =
      "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed.";
  AddContract("OLD", "10", "MERCK", "(1 = 1)");
  for (const char* const depot : {"D-1", " D1", "É", "D 1"}) {
    SCOPED_TRACE(depot);
    Shipment shipment = WrongFromTheDepotsPinOn();
    shipment.depot = depot;
    ExpectRefused(shipment, 20080, message, DepotRefused(message),
                  QueriesUpToTheDuplicate(shipment));
  }
}

TEST_F(DepotOrder, ThenThatTheDepotIsThereAndActive) {
  const std::string message = "Error while verifying depot PIN in LOTRIX";
  AddContract("OLD", "10", "MERCK", "(1 = 1)");
  Execute(
      "INSERT INTO provider (pin, sector, active) VALUES ('D3', 30, 'N'), ('S29', 29, 'Y'), "
      "('S32', 32, 'Y')");
  for (const char* const depot : {"NOBODY", "D3", "S29", "S32", "P1"}) {
    SCOPED_TRACE(depot);
    Shipment shipment = WrongFromTheDepotsPinOn();
    shipment.depot = depot;
    ExpectRefused(shipment, 20014, message, DepotRefused(message), QueriesUpToTheDepot(shipment));
  }
}

TEST_F(DepotOrder, ThenThatNotTwoDepotsHaveThePin) {
  const std::string message = "Provider PIN entered has a duplicate";
  AddContract("OLD", "10", "MERCK", "(1 = 1)");
  Execute("INSERT INTO provider (pin, sector, active) VALUES (' D1', 31, 'Y')");
  Shipment shipment = WrongFromTheDepotsPinOn();
  shipment.depot = "D1";
  ExpectRefused(shipment, 20015, message, DepotRefused(message), QueriesUpToTheDepot(shipment));
}

Shipment WrongFromTheProviderOn() {
  Shipment shipment = WrongFromTheDepotsPinOn();
  shipment.depot = "D2";
  return shipment;
}

TEST_F(DepotOrder, ThenTheLengthOfTheProviderPin) {
  const std::string message =
      "The number of characters in the pin entered exceeds the maximum allowed";
  AddContract("OLD", "10", "MERCK", "(1 = 1)");
  for (const char* const pin : {"1234567", "P-12345", "P1     "}) {
    SCOPED_TRACE(pin);
    Shipment shipment = WrongFromTheProviderOn();
    shipment.pin = pin;
    ExpectRefused(shipment, 20078, message, ProviderRefused(message),
                  QueriesUpToTheDepot(shipment));
  }
}

TEST_F(DepotOrder, ThenTheCharactersOfTheProviderPin) {
  const std::string message =
      "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed.";
  AddContract("OLD", "10", "MERCK", "(1 = 1)");
  for (const char* const pin : {"P-1", " P1", "É", "P 1"}) {
    SCOPED_TRACE(pin);
    Shipment shipment = WrongFromTheProviderOn();
    shipment.pin = pin;
    ExpectRefused(shipment, 20079, message, ProviderRefused(message),
                  QueriesUpToTheDepot(shipment));
  }
}

TEST_F(DepotOrder, ThenThatNotTwoProvidersHaveThePin) {
  const std::string message = "Provider PIN entered has a duplicate";
  AddContract("OLD", "10", "MERCK", "(1 = 1)");
  Execute("INSERT INTO provider (pin, sector) VALUES (' P2', 20)");
  Shipment shipment = WrongFromTheProviderOn();
  shipment.pin = "P2";
  ExpectRefused(shipment, 20003, message, ProviderRefused(message),
                Joined({QueriesUpToTheDepot(shipment), {ProviderCount("P2")}}));
}

TEST_F(DepotOrder, AProviderCountThatIsNoneIsRefused) {
  const std::string message = "Error while verifying provider PIN in LOTRIX";
  AddContract("OLD", "10", "MERCK", "(1 = 1)");
  Shipment shipment = WrongFromTheProviderOn();
  shipment.pin = "P1";
  const std::vector<std::vector<Value>> answers = {
      {}, {std::int64_t{1}, std::int64_t{1}}, {std::int64_t{-1}}};
  for (const std::vector<Value>& records : answers) {
    SCOPED_TRACE(records.size());
    AnswerTo(ProviderCount("P1"), records);
    ExpectRefused(shipment, 20005, message, ProviderRefused(message),
                  Joined({QueriesUpToTheDepot(shipment), {ProviderCount("P1")}}));
  }
}

TEST_F(DepotOrder, ThenThatTheProviderIsThere) {
  AddContract("OLD", "10", "MERCK", "(1 = 1)");
  Execute("INSERT INTO provider (pin, sector, active) VALUES ('S9', 9, 'Y'), ('S30', 30, 'Y')");
  for (const char* const pin : {"NOBODY", "S9", "S30"}) {
    SCOPED_TRACE(pin);
    Shipment shipment = WrongFromTheProviderOn();
    shipment.pin = pin;
    ExpectRefused(shipment, 20004, "Provider entered not found in LOTRIX",
                  Joined({DepotPassed(), Asked("ValidateProviderPIN")}),
                  Joined({QueriesUpToTheDepot(shipment), {ProviderCount(pin)}}));
  }
}

TEST_F(DepotOrder, ThenThatTheProviderIsActive) {
  const std::string message =
      "The provider enter is currently inactivate in LOTRIX. Cannot proceed with the current "
      "operation";
  AddContract("OLD", "10", "MERCK", "(1 = 1)");
  Execute(
      "INSERT INTO provider (pin, sector, active) VALUES ('N1', 15, 'N'), ('N2', 15, NULL), "
      "('N3', 15, '')");
  for (const char* const pin : {"N1", "N2", "N3"}) {
    SCOPED_TRACE(pin);
    Shipment shipment = WrongFromTheProviderOn();
    shipment.pin = pin;
    ExpectRefused(
        shipment, 20083, message, Joined({DepotPassed(), InactiveProviderRefused(message)}),
        Joined({QueriesUpToTheDepot(shipment), {ProviderCount(pin), ProviderActive(pin)}}));
  }
}

Lines VaccineRefused(const std::string& description) {
  return Joined({ProviderPassed(), VaccineReferenceRefused(description)});
}

TEST_F(DepotOrder, ThenThatTheVaccineIsInTheReference) {
  AnswerTo(VaccineCount("HEPA"), {std::int64_t{0}});
  std::string message = "Vaccine not available to private provider in LOTRIX";
  const Lines statements = Joined(
      {QueriesUpToTheDepot({}), {ProviderCount("P1"), ProviderActive("P1"), VaccineCount("HEPA")}});
  ExpectRefused({}, 20051, message, VaccineRefused(message), statements);
  AnswerTo(VaccineCount("HEPA"), {std::int64_t{-1}});
  message = "Error while verifying vaccine reference table in LOTRIX";
  ExpectRefused({}, 20016, message, VaccineRefused(message), statements);
}

TEST_F(DepotOrder, ThenThatTheVaccineIsActive) {
  const std::string message =
      "The vaccine being used in the current operation is inactive in LOTRIX";
  Execute("DELETE FROM nextid");
  AddContract("OLD", "10", "MERCK", "(1 = 1)");
  Shipment shipment = WrongFromTheProviderOn();
  shipment.pin = "P1";
  ExpectRefused(shipment, 20086, message,
                Joined({ProviderPassed(), InactiveVaccineRefused(message)}),
                QueriesUpToTheVaccine(shipment), {});
}

TEST_F(DepotOrder, AVaccineThatIsActiveInAnotherPackageIsActive) {
  AddContract("OLD", "10", "MERCK", "(1 = 1)");
  AddContract("OLD", "5");
  Shipment shipment;
  shipment.vaccine = "OLD";
  Run(shipment);
  EXPECT_EQ(Query("SELECT vaccine, size FROM neworder"), (Rows{{"OLD", "10"}}));
}

TEST_F(DepotOrder, ThenThatThereIsAKeyForDistributions) {
  Execute("DELETE FROM nextid WHERE ctablename <> 'OTHER'");
  ExpectRefused({}, 20096, "distrib does not exist in the NextID table.",
                Joined({VaccinePassed(), ConnectionRead()}),
                Joined({QueriesUpToTheVaccine({}), {KeyQuery("DISTRIB")}}), {{"OTHER", "7"}});
}

TEST_F(DepotOrder, ThenThatThereAreNotTwoKeysForDistributions) {
  Execute("INSERT INTO nextid (ctablename, inextid) VALUES (' distrib ', 90)");
  ExpectRefused({}, 20096, "More than one instance of distrib exists in the NextID table.",
                Joined({VaccinePassed(), ConnectionRead()}),
                Joined({QueriesUpToTheVaccine({}), {KeyQuery("DISTRIB")}}), Keys());
}

TEST_F(DepotOrder, ThenThatThereIsAKeyForThePassingOn) {
  Execute("DELETE FROM nextid WHERE ctablename = 'SeekDist'");
  ExpectRefused({}, 20096, "seekdist does not exist in the NextID table.",
                Joined({VaccinePassed(), KeyTaken(), ConnectionRead()}),
                Joined({QueriesUpToTheVaccine({}),
                        {KeyQuery("DISTRIB"), KeyUpdate("DISTRIB", "42"), KeyQuery("SEEKDIST")}}),
                {{"OTHER", "7"}, {"DISTRIB", "42"}});
}

TEST_F(DepotOrder, ThenThatThereAreNotTwoKeysForThePassingOn) {
  Execute("INSERT INTO nextid (ctablename, inextid) VALUES ('seekdist', 90)");
  ExpectRefused({}, 20096, "More than one instance of seekdist exists in the NextID table.",
                Joined({VaccinePassed(), KeyTaken(), ConnectionRead()}),
                Joined({QueriesUpToTheVaccine({}),
                        {KeyQuery("DISTRIB"), KeyUpdate("DISTRIB", "42"), KeyQuery("SEEKDIST")}}),
                {{"OTHER", "7"}, {"DISTRIB", "42"}, {"SeekDist", "71"}, {"seekdist", "90"}});
}

TEST_F(DepotOrder, AKeyBehindTheLargestOverflows) {
  Execute("UPDATE nextid SET inextid = 2147483647 WHERE ctablename = 'SeekDist'");
  ExpectRefused({}, 6,
                [](const std::string&) {
                  return Joined({VaccinePassed(), KeyTaken(), ConnectionRead()});
                },
                {{"OTHER", "7"}, {"DISTRIB", "42"}, {"SeekDist", "2147483647"}});
}

TEST_F(DepotOrder, KeysStayTakenWhenTheStatementFails) {
  Execute("DROP TABLE neworder");
  const Error error = Refusal([&] { Run({}); });
  EXPECT_EQ(error.number(), Numbered(EngineError::kNoSuchTable));
  EXPECT_EQ(error.source(), "LOTRIX DLL");
  EXPECT_EQ(Trace(), Joined({Begun(),
                             KeysTaken(),
                             {"information " + Insert({})},
                             ConnectionRead(),
                             {ProblemOf(kOperation, error.description())}}));
  EXPECT_EQ(Distributions(), Rows{});
  EXPECT_EQ(Keys(), kTakenKeys);
}

TEST_F(DepotOrder, AnUpdateThatTheEngineRefusesIsAProblemOfTheOperation) {
  Execute("DROP TABLE distrib");
  answer_ = [](const std::string& text) -> std::optional<std::vector<Value>> {
    if (text == DuplicateCount({})) return std::vector<Value>{std::int64_t{1}};
    if (text == DosesQuery({})) return std::vector<Value>{std::int64_t{5}};
    return std::nullopt;
  };
  const Error error = Refusal([&] { Run({}); });
  EXPECT_EQ(error.number(), Numbered(EngineError::kNoSuchTable));
  EXPECT_EQ(error.source(), "LOTRIX DLL");
  EXPECT_EQ(Trace(), Joined({Begun(),
                             DuplicatePassed(),
                             ConnectionRead(),
                             ConnectionRead(),
                             {ProblemOf(kOperation, error.description())}}));
  EXPECT_EQ(Keys(), kUntouchedKeys);
}

TEST_F(DepotOrder, ARefusedCallLeavesTheObjectUsable) {
  Shipment wrong;
  wrong.vaccine = "NONE";
  ExpectError(Refusal([&] { Run(wrong); }), Coded(20052),
              "Error while verifying order against vaccine contract table");
  Run({});
  EXPECT_EQ(Query("SELECT orddose FROM neworder"), (Rows{{"20"}}));
}

// --- Values that would leave their place -----------------------------------

TEST_F(DepotOrder, AnApostropheInTheVaccineIsRefusedAsSyntax) {
  AddDistribution("5");
  for (const char* const vaccine : {"HEP'A", "HEPA'", "'", "HEPA' OR '1'='1",
                                    "HEPA'; DELETE FROM neworder; --", "HEPA''", "MCV4'"}) {
    SCOPED_TRACE(vaccine);
    Shipment shipment;
    shipment.vaccine = vaccine;
    ExpectRefused(shipment, Numbered(EngineError::kStatementRefused),
                  [](const std::string&) { return ContractRead(); });
  }
}

TEST_F(DepotOrder, AnApostropheInTheOtherTextsIsRefusedAsSyntax) {
  AddDistribution("5");
  for (const char* const text : {"A'B", "AB12'", "'", "X' OR '1'='1", "D1' --", "A''B"}) {
    SCOPED_TRACE(text);
    Shipment shipment;
    shipment.depot = text;
    ExpectRefused(shipment, Numbered(EngineError::kStatementRefused), DuplicateRefused);
    shipment = {};
    shipment.pin = text;
    ExpectRefused(shipment, Numbered(EngineError::kStatementRefused), DuplicateRefused);
    shipment = {};
    shipment.lot = text;
    ExpectRefused(shipment, Numbered(EngineError::kStatementRefused), DuplicateRefused);
  }
}

TEST_F(DepotOrder, AnApostropheInAContractBreaksTheOrderButNotTheUpdate) {
  for (const char* const column : {"maker", "ndcno", "contractid", "descrip"}) {
    SCOPED_TRACE(column);
    Execute("DELETE FROM pvaccref WHERE vaccine = 'HEPA'");
    AddContract("HEPA", "10");
    Execute("UPDATE pvaccref SET " + std::string(column) +
            " = 'Children''s' WHERE vaccine = 'HEPA'");
    Execute("UPDATE nextid SET inextid = 41 WHERE ctablename = 'DISTRIB'");
    Execute("UPDATE nextid SET inextid = 71 WHERE ctablename = 'SeekDist'");
    const auto logged = [&](const std::string& name, const std::string& value) {
      return std::string(name == column ? "Children's" : value);
    };
    const std::string statement =
        "information INSERT INTO neworder(rectype, pin, orddate, orddose, size, vaccine, maker, "
        "cost, contract, fcode1, fdose1, chgdate, userid, ndcno, descrip) VALUES('5', 'P1',  "
        "{1/5/2004}, 20, 10, 'HEPA', '" +
        logged("maker", "MERCK") + "', 12.5, '" + logged("contractid", "C-77") +
        "', '1', 20,  {1/5/2004}, 'LTX_DLL', '" + logged("ndcno", "0006-4831") + "', '" +
        logged("descrip", "Ten doses") + "') ";
    ExpectRefused(
        {}, Numbered(EngineError::kStatementRefused),
        [&](const std::string&) {
          return Joined({KeysTaken(), {statement}, ConnectionRead()});
        },
        kTakenKeys);
    AddDistribution("5");
    Run({});
    EXPECT_EQ(Query("SELECT doses FROM distrib"), (Rows{{"25"}}));
    Execute("DELETE FROM distrib");
  }
}

TEST_F(DepotOrder, ADateThatIsNoneCannotBeConverted) {
  for (const char* const date : {"soon", "13/45/2004", "13/5/2004", "2/30/2004", "1/5", "38000",
                                 "1/5/2004'", "1'5/2004", "1/5/2004 25:00"}) {
    SCOPED_TRACE(date);
    Shipment shipment;
    shipment.date = date;
    ExpectRefused(shipment, Numbered(EngineError::kValueCannotBeConverted), DuplicateRefused);
  }
}

TEST_F(DepotOrder, ABraceInTheDateIsRefusedAsSyntax) {
  for (const char* const date : {"1/5/2004}", "{1/5/2004", "1/5/2004} OR 1 = 1 --", "}"}) {
    SCOPED_TRACE(date);
    Shipment shipment;
    shipment.date = date;
    ExpectRefused(shipment, Numbered(EngineError::kStatementRefused), DuplicateRefused);
  }
}

TEST_F(DepotOrder, AZeroCharacterIsRefusedAsSyntax) {
  using std::string_literals::operator""s;
  AddDistribution("5");
  Shipment shipment;
  shipment.vaccine = "HEPA\0"s;
  ExpectRefused(shipment, Numbered(EngineError::kStatementRefused),
                [](const std::string&) { return ContractRead(); });
  shipment.vaccine = "MCV4\0"s;
  ExpectRefused(shipment, Numbered(EngineError::kStatementRefused),
                [](const std::string&) { return ContractRead(); });
  for (const Shipment& wrong :
       {Shipment{.date = "1/5/2004\0"s}, Shipment{.date = "1/5/2004\0} OR 1 = 1 --"s},
        Shipment{.depot = "D1\0"s}, Shipment{.pin = "P1\0"s}, Shipment{.lot = "AB12\0"s},
        Shipment{.lot = "\0"s}}) {
    ExpectRefused(wrong, Numbered(EngineError::kStatementRefused), DuplicateRefused);
  }
}

TEST_F(DepotOrder, AnExcessAllowanceIsReadUpToItsZeroCharacter) {
  const std::string message = "The excess allowance is out of range";
  Shipment shipment = WrongFromTheExcessOn();
  shipment.excess = std::string("6\0x", 3);
  ExpectRefused(shipment, 20068, message, ExcessRefused(message), {});
  shipment.excess = std::string("\0", 1);
  ExpectRefused(shipment, 13, ExcessRefused);
  shipment = {};
  shipment.excess = std::string("5\0x", 3);
  Run(shipment);
  EXPECT_EQ(Query("SELECT orddose FROM neworder"), (Rows{{"20"}}));
}

// --- Very long arguments ----------------------------------------------------

TEST_F(DepotOrder, AVeryLongTextOverflowsWhereItIsTestedForBlank) {
  const auto nothing = [](const std::string&) { return Lines{}; };
  const std::string text(kMebibyte, '1');
  Shipment shipment = AllWrong();
  shipment.date = text;
  ExpectRefused(shipment, 6, nothing);
  shipment = WrongFromTheDepotOn();
  shipment.depot = text;
  ExpectRefused(shipment, 6, nothing);
  shipment = WrongFromThePinOn();
  shipment.pin = text;
  ExpectRefused(shipment, 6, nothing);
  shipment = WrongFromTheVaccineOn();
  shipment.vaccine = text;
  ExpectRefused(shipment, 6, nothing);
  shipment = WrongFromTheLotOn();
  shipment.lot = text;
  ExpectRefused(shipment, 6, nothing);
}

TEST_F(DepotOrder, AsManyCharactersAs16BitsCountAreNoOverflow) {
  std::string accents;
  for (int letter = 0; letter < 32767; ++letter) accents += "É";
  AddContract(accents, "10");
  AddDistribution("5", accents, accents, accents, accents);
  Shipment shipment;
  shipment.depot = accents;
  shipment.pin = accents;
  shipment.vaccine = accents;
  shipment.lot = accents;
  shipment.orderDate = accents;
  Run(shipment);
  EXPECT_EQ(Query("SELECT doses FROM distrib"), (Rows{{"25"}}));
  shipment.orderDate = accents + "É";
  ExpectRefused(shipment, 6, [](const std::string&) { return Lines{}; });
}

TEST_F(DepotOrder, AVeryLongContractIsWrittenWhole) {
  const std::string text(kMebibyte, 'd');
  Execute("UPDATE pvaccref SET descrip = '" + text + "'");
  Run({});
  EXPECT_TRUE(Query("SELECT descrip FROM neworder") == (Rows{{text}}));
}

}  // namespace
}  // namespace lotrix::test

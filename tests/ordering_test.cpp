#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
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

bool StartsWith(const std::string& text, const std::string& start) {
  return text.compare(0, start.size(), start) == 0;
}

// A call's arguments; as they stand, an order that is accepted.
struct Order {
  std::string date = "1/5/2004";
  std::string pin = "P1";
  std::string vaccine = "HEPA";
  std::int32_t doses = 20;
  std::string funding = "1";
  std::string excess = "1";
  std::string po = {};
  std::string mfg = "MERCK";
};

// Wrong in every argument: the order of the checks is the order in which its
// faults are found when they are mended one by one.
Order AllWrong() {
  return {.date = " ",
          .pin = "TOOLONG",
          .vaccine = "NONE",
          .doses = 0,
          .funding = " ",
          .excess = "9",
          .po = "PO7",
          .mfg = "NOBODY"};
}

// The lines of the trace, piece by piece as a call comes by them.

const std::string kOperation = "manufacturerProviderOrderCreateUpdate";

Lines Begun() { return {BeginOf(kOperation)}; }
Lines Ended() { return {EndOf(kOperation)}; }

Lines VaricellaPassed() { return Asked("ValidateProvideraVaricellaEligibility"); }
Lines FundingPassed() { return Asked("ValidateFundingCodeandPO"); }
Lines ExcessPassed() { return {BeginOf("ValidateExcessAllowance")}; }
Lines DuplicatePassed() {
  return Joined({ConnectionRead(),
                 {BeginOf("ValidateDuplicateManufacturerOrder")},
                 Passed("ValidateEventDateManufacturerProviderOrder"),
                 {EndOf("ValidateDuplicateManufacturerOrder")}});
}
Lines ChecksPassed() {
  return Joined({ActiveProviderPassed(), ActiveVaccinePassed(), FundingPassed(), ExcessPassed(),
                 DuplicatePassed()});
}
Lines VaricellaChecksPassed() {
  return Joined({ActiveProviderPassed(), VaricellaPassed(), ActiveVaccinePassed(), FundingPassed(),
                 ExcessPassed(), DuplicatePassed()});
}

// The statements as a call builds them.

std::string VaricellaCount(const std::string& pin) {
  return "SELECT count(*) FROM provider WHERE ltrim(rtrim(pin)) = '" + pin +
         "' and trim(codes)='V'";
}
std::string FundingCount(const std::string& funding) {
  return "SELECT count(*) FROM funding WHERE ltrim(rtrim(fundcode)) = '" + funding + "'";
}
std::string OrderCount(const Order& order, const std::string& seekid) {
  return "SELECT count(*) FROM neworder WHERE orddate = {" + order.date +
         "} AND ltrim(rtrim(pin)) = '" + order.pin + "' AND ltrim(rtrim(vaccine)) = '" +
         order.vaccine + "' AND ltrim(rtrim(fcode1)) = '" + order.funding + "' AND seekid " +
         seekid;
}
std::string CurrentDoses(const Order& order) {
  return "SELECT orddose FROM neworder WHERE ltrim(rtrim(pin)) = '" + order.pin +
         "' AND ltrim(rtrim(vaccine)) = '" + order.vaccine + "' AND orddate = {" + order.date +
         "} AND ltrim(rtrim(fcode1)) = '" + order.funding + "'";
}
std::string ContractQuery(const Order& order) {
  return "SELECT * FROM pvaccref WHERE ltrim(rtrim(vaccine)) == '" + order.vaccine + "' AND ({" +
         order.date + "} BETWEEN begin AND end)  and maker == '" + order.mfg +
         "'  AND locactiv = .F.";
}
Lines CheckQueries(const Order& order) {
  return {ProviderCount(order.pin),    ProviderActive(order.pin),
          VaccineCount(order.vaccine), VaccineActiveCount(order.vaccine),
          FundingCount(order.funding), OrderCount(order, "<> 0"),
          OrderCount(order, "= 0")};
}

class Ordering : public OperationTest {
 protected:
  void SetUp() override {
    AddProvider("P1", 15, "Y", "");
    AddProvider("VP", 15, "Y", "V");
    for (const char* const vaccine : {"HEPA", "FLU", "FLU-PF", "VAR"}) AddContract(vaccine);
    Execute("INSERT INTO funding (fundcode) VALUES ('1'), ('2'), ('3')");
    WatchOperations();
  }

  void AddProvider(const std::string& pin, int sector, const std::string& active,
                   const std::string& codes) {
    Execute("INSERT INTO provider (pin, sector, active, codes) VALUES ('" + pin + "', " +
            std::to_string(sector) + ", '" + active + "', '" + codes + "')");
  }

  void AddContract(const std::string& vaccine, const std::string& maker = "MERCK",
                   const std::string& active = "(1 = 0)") {
    Execute(
        "INSERT INTO pvaccref (vaccine, maker, \"begin\", \"end\", minbulk, unitsize, pkgsize, "
        "ndcno, cost, contractid, sel_maker, dos_wind, excfunds, descrip, locactiv, maxno) "
        "VALUES ('" +
        vaccine + "', '" + maker +
        "', '2004-01-01', '2004-12-31', 1, 1, 10, '0006-4831', 12.5, 'C-77', 'S', 'W', 'E', "
        "'Ten doses', " +
        active + ", 3)");
  }

  // An order of P1 from 1/5/2004 as another program may have left it.
  void AddOrder(const std::string& table, const std::string& vaccine, const std::string& doses,
                const std::string& seekid, const std::string& funding = "1") {
    Execute("INSERT INTO " + table +
            " (ordpin, rectype, pin, orddate, vaccine, orddose, fcode1, fdose1, size, cost, "
            "maker, contract, ndcno, chgdate, userid, descrip, seekid) VALUES ('OLD', '9', 'P1', "
            "'2004-01-05', '" +
            vaccine + "', " + doses + ", '" + funding +
            "', 3, 4, 5.5, 'OLDM', 'OLDC', 'OLDN', '2004-02-02', 'SOMEONE', 'OLDD', " + seekid +
            ")");
  }

  void Run(const Order& order) {
    lotrix().manufacturerProviderOrderCreateUpdate(order.date, order.pin, order.vaccine,
                                                   order.doses, order.funding, order.excess,
                                                   order.po, order.mfg);
  }

  [[nodiscard]] Rows OrderRows(const std::string& table) {
    return Query(
        "SELECT ordpin, rectype, pin, orddate, vaccine, orddose, fcode1, fdose1, size, cost, "
        "maker, contract, ndcno, chgdate, userid, descrip, seekid FROM " +
        table);
  }
  [[nodiscard]] Rows Everything() {
    return Contents({"neworder", "influenza", "pvaccref", "provider", "funding"});
  }

  // Refused with that number, the whole trace as `lines` tells it, and nothing
  // written.
  Error ExpectRefused(const Order& order, std::int32_t number,
                      const std::function<Lines(const std::string& description)>& lines) {
    const Rows before = Everything();
    Error error = ExpectRefusal(
        kOperation, [&] { Run(order); }, number, lines);
    EXPECT_EQ(Everything(), before);
    return error;
  }
  // A catalogue refusal; `lines` stand between the operation's first and last.
  void ExpectRefused(const Order& order, std::int32_t code, const std::string& message,
                     const Lines& lines, const Lines& statements) {
    const Error error =
        ExpectRefused(order, Coded(code), [&](const std::string&) { return lines; });
    EXPECT_EQ(error.description(), message);
    EXPECT_EQ(Statements(), statements);
  }
};

// --- An order that is not there yet ---------------------------------------

TEST_F(Ordering, ANewOrderIsInsertedWithTheValuesOfItsContract) {
  Run({});
  EXPECT_EQ(OrderRows("neworder"),
            (Rows{{"", "5", "P1", "2004-01-05", "HEPA", "20", "1", "20", "10", "12.5", "MERCK",
                   "C-77", "0006-4831", "2004-01-05", "LTX_DLL", "Ten doses", "0"}}));
  EXPECT_EQ(OrderRows("influenza"), Rows{});
}

TEST_F(Ordering, TheStatementsOfANewOrder) {
  const Order order;
  Run(order);
  EXPECT_EQ(Statements(),
            Joined({CheckQueries(order),
                    {ContractQuery(order),
                     "INSERT INTO neworder( ordpin, rectype, pin, orddate, vaccine, orddose, "
                     "fcode1, fdose1, size, cost, maker, contract, ndcno, chgdate, userid, descrip "
                     ") VALUES(  '',  '5', 'P1', {1/5/2004}, 'HEPA',20, '1', 20, 10, 12.5, "
                     "'MERCK', 'C-77', '0006-4831', {1/5/2004}, 'LTX_DLL', 'Ten doses')"}}));
}

// Once without helpers: what the texts say, letter for letter.
TEST_F(Ordering, TheQueriesOfANewOrderLetterForLetter) {
  Run({});
  Lines statements = Statements();
  ASSERT_EQ(statements.size(), 9U);
  statements.pop_back();
  EXPECT_EQ(
      statements,
      (Lines{
          "SELECT count(*) FROM provider WHERE Sector BETWEEN 10 AND 29 AND ltrim(rtrim(pin)) = "
          "'P1'",
          "SELECT active FROM provider WHERE Sector BETWEEN 10 AND 29 AND ltrim(rtrim(pin)) = "
          "'P1'",
          "SELECT count(*) FROM pvaccref WHERE ltrim(rtrim(vaccine)) == 'HEPA'",
          "SELECT count(*) FROM pvaccref WHERE ltrim(rtrim(vaccine)) == 'HEPA' AND locactiv = .F.",
          "SELECT count(*) FROM funding WHERE ltrim(rtrim(fundcode)) = '1'",
          "SELECT count(*) FROM neworder WHERE orddate = {1/5/2004} AND ltrim(rtrim(pin)) = 'P1' "
          "AND ltrim(rtrim(vaccine)) = 'HEPA' AND ltrim(rtrim(fcode1)) = '1' AND seekid <> 0",
          "SELECT count(*) FROM neworder WHERE orddate = {1/5/2004} AND ltrim(rtrim(pin)) = 'P1' "
          "AND ltrim(rtrim(vaccine)) = 'HEPA' AND ltrim(rtrim(fcode1)) = '1' AND seekid = 0",
          "SELECT * FROM pvaccref WHERE ltrim(rtrim(vaccine)) == 'HEPA' AND ({1/5/2004} BETWEEN "
          "begin AND end)  and maker == 'MERCK'  AND locactiv = .F."}));
}

TEST_F(Ordering, TheTraceOfANewOrder) {
  Run({});
  EXPECT_EQ(Trace(), (Lines{"information Begin: manufacturerProviderOrderCreateUpdate()",
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
                            "information Begin: ValidateFundingCodeandPO()",
                            "information End: ValidateFundingCodeandPO()",
                            "information Begin: ValidateExcessAllowance()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: ValidateDuplicateManufacturerOrder()",
                            "information Begin: ValidateEventDateManufacturerProviderOrder()",
                            "information End: ValidateEventDateManufacturerProviderOrder()",
                            "information End: ValidateDuplicateManufacturerOrder()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information End: manufacturerProviderOrderCreateUpdate()"}));
}

TEST_F(Ordering, TheOptionalArgumentsMayBeOmitted) {
  AddContract("HEPA", "   ");
  lotrix().manufacturerProviderOrderCreateUpdate("1/5/2004", "P1", "HEPA", 20, "1");
  Order omitted;
  omitted.mfg = "";
  const Lines statements = Statements();
  ASSERT_EQ(statements.size(), 9U);
  EXPECT_EQ(statements[7], ContractQuery(omitted));
  EXPECT_EQ(Query("SELECT maker, ordpin FROM neworder"), (Rows{{"", ""}}));
}

TEST_F(Ordering, WithoutAManufacturerOnlyAContractWithABlankMakerCovers) {
  Order order;
  order.mfg = "";
  ExpectRefused(order, 20052, "Error while verifying order against vaccine contract table",
                Joined({ChecksPassed(), ConnectionRead()}),
                Joined({CheckQueries(order), {ContractQuery(order)}}));
}

TEST_F(Ordering, ACountThatIsNoMultipleOfThePackageSizeIsAccepted) {
  Order order;
  order.doses = 7;
  Run(order);
  EXPECT_EQ(Query("SELECT orddose, fdose1, size FROM neworder"), (Rows{{"7", "7", "10"}}));
}

TEST_F(Ordering, OneDoseAndTheLargestCountAreAccepted) {
  Order order;
  order.doses = 1;
  Run(order);
  order.date = "1/6/2004";
  order.doses = kLargest;
  Run(order);
  EXPECT_EQ(Query("SELECT orddose, fdose1 FROM neworder ORDER BY orddate"),
            (Rows{{"1", "1"}, {"2147483647", "2147483647"}}));
}

TEST_F(Ordering, TheArgumentsCountInUpperCase) {
  Execute("INSERT INTO funding (fundcode) VALUES ('1E0')");
  const Order order{.date = "jan 5, 2004",
                    .pin = "p1",
                    .vaccine = "hepa",
                    .doses = 20,
                    .funding = "1e0",
                    .excess = "&h2",
                    .po = " ",
                    .mfg = "MERCK"};
  Run(order);
  const Order upper{.date = "JAN 5, 2004",
                    .pin = "P1",
                    .vaccine = "HEPA",
                    .doses = 20,
                    .funding = "1E0",
                    .excess = "&H2",
                    .po = "",
                    .mfg = "MERCK"};
  EXPECT_EQ(Statements(),
            Joined({CheckQueries(upper),
                    {ContractQuery(upper),
                     "INSERT INTO neworder( ordpin, rectype, pin, orddate, vaccine, orddose, "
                     "fcode1, fdose1, size, cost, maker, contract, ndcno, chgdate, userid, descrip "
                     ") VALUES(  '',  '5', 'P1', {JAN 5, 2004}, 'HEPA',20, '1E0', 20, 10, 12.5, "
                     "'MERCK', 'C-77', '0006-4831', {JAN 5, 2004}, 'LTX_DLL', 'Ten doses')"}}));
  EXPECT_EQ(Query("SELECT pin, orddate, vaccine, fcode1, chgdate FROM neworder"),
            (Rows{{"P1", "2004-01-05", "HEPA", "1E0", "2004-01-05"}}));
}

TEST_F(Ordering, LettersBeyondAsciiAreUpperCasedOneByOne) {
  AddContract("GRIPPE ÉŸЯ STRAßE");
  Order order;
  order.vaccine = "grippe éÿя straße";
  Run(order);
  EXPECT_EQ(Query("SELECT vaccine FROM neworder"), (Rows{{"GRIPPE ÉŸЯ STRAßE"}}));
}

TEST_F(Ordering, TheManufacturerIsNotUpperCased) {
  AddContract("MMR", "Merck & Co");
  Order order;
  order.vaccine = "MMR";
  order.mfg = "Merck & Co";
  Run(order);
  EXPECT_EQ(Query("SELECT maker FROM neworder"), (Rows{{"Merck & Co"}}));
}

TEST_F(Ordering, AManufacturerInOtherCaseHasNoContract) {
  AddContract("MMR", "Merck & Co");
  Order order;
  order.vaccine = "MMR";
  order.mfg = "MERCK & CO";
  ExpectRefused(order, 20052, "Error while verifying order against vaccine contract table",
                Joined({ChecksPassed(), ConnectionRead()}),
                Joined({CheckQueries(order), {ContractQuery(order)}}));
}

TEST_F(Ordering, NoValueIsTrimmed) {
  const Order order{.date = "1/5/2004 ",
                    .pin = "P1  ",
                    .vaccine = "HEPA ",
                    .doses = 20,
                    .funding = "1 ",
                    .excess = " 1 ",
                    .po = "  ",
                    .mfg = "MERCK "};
  Run(order);
  EXPECT_EQ(Statements(),
            Joined({CheckQueries(order),
                    {ContractQuery(order),
                     "INSERT INTO neworder( ordpin, rectype, pin, orddate, vaccine, orddose, "
                     "fcode1, fdose1, size, cost, maker, contract, ndcno, chgdate, userid, descrip "
                     ") VALUES(  '',  '5', 'P1  ', {1/5/2004 }, 'HEPA ',20, '1 ', 20, 10, 12.5, "
                     "'MERCK', 'C-77', '0006-4831', {1/5/2004 }, 'LTX_DLL', 'Ten doses')"}}));
  EXPECT_EQ(Query("SELECT pin, vaccine, fcode1 FROM neworder"), (Rows{{"P1  ", "HEPA ", "1 "}}));
}

TEST_F(Ordering, TheDateIsSplicedAsGivenAndStoredAsADay) {
  for (const char* const date :
       {"01/05/2004", "1-5-04", "2004-1-5", "5-Jan-2004", "January 5, 2004", "1/5/2004 10:30 PM"}) {
    SCOPED_TRACE(date);
    Order order;
    order.date = date;
    Run(order);
    EXPECT_EQ(Query("SELECT orddate FROM neworder"), (Rows{{"2004-01-05"}}));
    Execute("DELETE FROM neworder");
  }
}

TEST_F(Ordering, TextThatOnlyLooksLikeSqlStaysAValue) {
  const std::string odd = "A\"B;--%_\\{}]/*";
  AddContract(odd, odd);
  Order order;
  order.vaccine = odd;
  order.mfg = odd;
  Run(order);
  EXPECT_EQ(Query("SELECT vaccine, maker FROM neworder"), (Rows{{odd, odd}}));
  order.doses = 30;
  Run(order);
  EXPECT_EQ(Query("SELECT vaccine, orddose FROM neworder"), (Rows{{odd, "30"}}));
}

TEST_F(Ordering, AStatePurchaseOrderIsNotWrittenWhateverItHolds) {
  for (const char* const po : {"PO7", "O'Neil", "'); DROP TABLE neworder; --", "p"}) {
    SCOPED_TRACE(po);
    Order order;
    order.funding = "3";
    order.po = po;
    Run(order);
    EXPECT_EQ(OrderRows("neworder"),
              (Rows{{"", "5", "P1", "2004-01-05", "HEPA", "20", "3", "20", "10", "12.5", "MERCK",
                     "C-77", "0006-4831", "2004-01-05", "LTX_DLL", "Ten doses", "0"}}));
    Execute("DELETE FROM neworder");
  }
}

TEST_F(Ordering, AnExcessAllowanceOfBlanksCountsAsOne) {
  Order order;
  order.excess = "   ";
  Run(order);
  EXPECT_EQ(Query("SELECT orddose FROM neworder"), (Rows{{"20"}}));
  EXPECT_EQ(Trace(),
            Joined({Begun(), ChecksPassed(), ConnectionRead(), ConnectionRead(), Ended()}));
}

TEST_F(Ordering, ExcessAllowancesFromOneToFivePass) {
  for (const char* const excess : {"1", "2", "3", "4", "5", "0.6", "5.4", " 3 "}) {
    SCOPED_TRACE(excess);
    Order order;
    order.excess = excess;
    Run(order);
    EXPECT_EQ(Query("SELECT orddose FROM neworder"), (Rows{{"20"}}));
    Execute("DELETE FROM neworder");
  }
}

// --- The contract ---------------------------------------------------------

TEST_F(Ordering, TheTextsOfAContractAreTrimmed) {
  Execute(
      "UPDATE pvaccref SET maker = 'MERCK  ', ndcno = '  N 1 ', contractid = ' C ', descrip = "
      "'   ' WHERE vaccine = 'HEPA'");
  Run({});
  EXPECT_EQ(Query("SELECT maker, ndcno, contract, descrip FROM neworder"),
            (Rows{{"MERCK", "N 1", "C", ""}}));
}

TEST_F(Ordering, TheCostIsWrittenInPlainDecimalForm) {
  const std::vector<std::pair<std::string, std::string>> costs = {
      {"10", "10"},           {"0", "0"},        {"0.1 + 0.2", "0.3"},
      {"0.00001", "0.00001"}, {"1e15", "1E+15"}, {"-3.25", "-3.25"}};
  for (const auto& [stored, text] : costs) {
    SCOPED_TRACE(stored);
    Execute("UPDATE pvaccref SET cost = " + stored + " WHERE vaccine = 'HEPA'");
    static_cast<void>(Statements());
    Run({});
    const Lines statements = Statements();
    ASSERT_EQ(statements.size(), 9U);
    EXPECT_EQ(statements[8],
              "INSERT INTO neworder( ordpin, rectype, pin, orddate, vaccine, orddose, fcode1, "
              "fdose1, size, cost, maker, contract, ndcno, chgdate, userid, descrip ) VALUES(  '', "
              " '5', 'P1', {1/5/2004}, 'HEPA',20, '1', 20, 10, " +
                  text + ", 'MERCK', 'C-77', '0006-4831', {1/5/2004}, 'LTX_DLL', 'Ten doses')");
    EXPECT_EQ(Query("SELECT count(*) FROM neworder WHERE cost = " + text), (Rows{{"1"}}));
    Execute("DELETE FROM neworder");
  }
}

TEST_F(Ordering, AContractCoversItsFirstAndItsLastDay) {
  Order order;
  order.date = "1/1/2004";
  Run(order);
  order.date = "12/31/2004";
  Run(order);
  EXPECT_EQ(Query("SELECT orddate FROM neworder ORDER BY orddate"),
            (Rows{{"2004-01-01"}, {"2004-12-31"}}));
}

TEST_F(Ordering, ADayOutsideTheContractIsRefused) {
  for (const char* const date : {"12/31/2003", "1/1/2005"}) {
    SCOPED_TRACE(date);
    Order order;
    order.date = date;
    ExpectRefused(order, 20052, "Error while verifying order against vaccine contract table",
                  Joined({ChecksPassed(), ConnectionRead()}),
                  Joined({CheckQueries(order), {ContractQuery(order)}}));
  }
}

TEST_F(Ordering, AContractMarkedTrueDoesNotCover) {
  AddContract("HEPA", "OTHER", "(1 = 1)");
  Order order;
  order.mfg = "OTHER";
  ExpectRefused(order, 20052, "Error while verifying order against vaccine contract table",
                Joined({ChecksPassed(), ConnectionRead()}),
                Joined({CheckQueries(order), {ContractQuery(order)}}));
}

TEST_F(Ordering, FurtherContractsAreIgnored) {
  AddContract("HEPA");
  AddContract("HEPA");
  Run({});
  EXPECT_EQ(Query("SELECT vaccine, orddose, contract FROM neworder"),
            (Rows{{"HEPA", "20", "C-77"}}));
}

TEST_F(Ordering, AContractWithAMissingValueFailsWithInvalidUseOfNull) {
  for (const char* const column : {"minbulk", "unitsize", "pkgsize", "ndcno", "cost", "contractid",
                                   "sel_maker", "dos_wind", "excfunds", "descrip"}) {
    SCOPED_TRACE(column);
    Execute("DELETE FROM pvaccref WHERE vaccine = 'HEPA'");
    AddContract("HEPA");
    Execute("UPDATE pvaccref SET " + std::string(column) + " = NULL WHERE vaccine = 'HEPA'");
    ExpectRefused(Order{}, 94, [](const std::string&) {
      return Joined({ChecksPassed(), ConnectionRead()});
    });
  }
}

TEST_F(Ordering, AnUpdateFailsTooForAContractWithAMissingValueItDoesNotWrite) {
  AddOrder("neworder", "HEPA", "2", "0");
  Execute("UPDATE pvaccref SET sel_maker = NULL WHERE vaccine = 'HEPA'");
  ExpectRefused(Order{}, 94, [](const std::string&) {
    return Joined({ChecksPassed(), ConnectionRead(), ConnectionRead()});
  });
}

// --- An order that is there -----------------------------------------------

TEST_F(Ordering, ASecondOrderReplacesTheCountsAndIsStampedToday) {
  Run({});
  EXPECT_EQ(Query("SELECT orddose, chgdate FROM neworder"), (Rows{{"20", "2004-01-05"}}));
  Order second;
  second.doses = 30;
  Run(second);
  EXPECT_EQ(OrderRows("neworder"),
            (Rows{{"", "5", "P1", "2004-01-05", "HEPA", "30", "1", "30", "10", "12.5", "MERCK",
                   "C-77", "0006-4831", "2026-11-20", "LTX_DLL", "Ten doses", "0"}}));
  EXPECT_EQ(OrderRows("influenza"), Rows{});
}

TEST_F(Ordering, AnUpdateTouchesOnlyCountsSizeCostAndStamps) {
  AddOrder("neworder", "HEPA", "2", "0");
  Run({});
  EXPECT_EQ(OrderRows("neworder"),
            (Rows{{"OLD", "9", "P1", "2004-01-05", "HEPA", "20", "1", "20", "10", "12.5", "OLDM",
                   "OLDC", "OLDN", "2026-11-20", "LTX_DLL", "OLDD", "0"}}));
}

TEST_F(Ordering, TheStatementsOfAnUpdate) {
  AddOrder("neworder", "HEPA", "2", "0");
  const Order order;
  Run(order);
  EXPECT_EQ(
      Statements(),
      Joined({CheckQueries(order),
              {"SELECT orddose FROM neworder WHERE ltrim(rtrim(pin)) = 'P1' AND "
               "ltrim(rtrim(vaccine)) = 'HEPA' AND orddate = {1/5/2004} AND ltrim(rtrim(fcode1)) "
               "= '1'",
               ContractQuery(order),
               "UPDATE neworder SET orddose = 20, fdose1 = 20, chgdate = {11/20/2026}, userid = "
               "'LTX_DLL', size = 10, cost = 12.5 WHERE ltrim(rtrim(pin)) = 'P1' AND "
               "ltrim(rtrim(vaccine)) = 'HEPA' AND orddate = {1/5/2004} AND ltrim(rtrim(fcode1)) "
               "= '1'"}}));
}

TEST_F(Ordering, TheTraceOfAnUpdate) {
  AddOrder("neworder", "HEPA", "2", "0");
  Run({});
  EXPECT_EQ(Trace(), Joined({Begun(), ChecksPassed(), ConnectionRead(), ConnectionRead(),
                             ConnectionRead(), Ended()}));
}

TEST_F(Ordering, AnOrderIsFoundByItsTrimmedKeys) {
  Execute(
      "INSERT INTO neworder (pin, orddate, vaccine, orddose, fcode1) VALUES ('  P1 ', "
      "'2004-01-05', ' HEPA', 2, ' 1 ')");
  Run({});
  EXPECT_EQ(Query("SELECT pin, vaccine, fcode1, orddose, fdose1, userid FROM neworder"),
            (Rows{{"  P1 ", " HEPA", " 1 ", "20", "20", "LTX_DLL"}}));
}

TEST_F(Ordering, AnotherProviderVaccineDateOrFundingSourceIsAnotherOrder) {
  Run({});
  Order order;
  order.pin = "VP";
  Run(order);
  order = {};
  order.vaccine = "VAR";
  order.pin = "VP";
  Run(order);
  order = {};
  order.date = "1/6/2004";
  Run(order);
  order = {};
  order.funding = "2";
  Run(order);
  EXPECT_EQ(Query("SELECT pin, vaccine, orddate, fcode1, orddose FROM neworder ORDER BY pin, "
                  "vaccine, orddate, fcode1"),
            (Rows{{"P1", "HEPA", "2004-01-05", "1", "20"},
                  {"P1", "HEPA", "2004-01-05", "2", "20"},
                  {"P1", "HEPA", "2004-01-06", "1", "20"},
                  {"VP", "HEPA", "2004-01-05", "1", "20"},
                  {"VP", "VAR", "2004-01-05", "1", "20"}}));
}

TEST_F(Ordering, OtherOrdersStayAsTheyAre) {
  AddOrder("neworder", "HEPA", "2", "0");
  AddOrder("neworder", "HEPA", "3", "0", "2");
  AddOrder("neworder", "HEPB", "4", "0");
  Run({});
  EXPECT_EQ(Query("SELECT vaccine, fcode1, orddose, chgdate FROM neworder ORDER BY vaccine, "
                  "fcode1"),
            (Rows{{"HEPA", "1", "20", "2026-11-20"},
                  {"HEPA", "2", "3", "2004-02-02"},
                  {"HEPB", "1", "4", "2004-02-02"}}));
}

TEST_F(Ordering, AMissingCurrentCountIsZero) {
  AddOrder("neworder", "HEPA", "NULL", "0");
  Order order;
  order.doses = kLargest;
  Run(order);
  EXPECT_EQ(Query("SELECT orddose, fdose1 FROM neworder"), (Rows{{"2147483647", "2147483647"}}));
}

TEST_F(Ordering, TheSumOfOldAndNewCountMayReachTheLargestNumber) {
  AddOrder("neworder", "HEPA", "2147483627", "0");
  Run({});
  EXPECT_EQ(Query("SELECT orddose, fdose1 FROM neworder"), (Rows{{"20", "20"}}));
}

TEST_F(Ordering, ANegativeCurrentCountLeavesMoreRoom) {
  AddOrder("neworder", "HEPA", "-1", "0");
  Order order;
  order.doses = kLargest;
  Run(order);
  EXPECT_EQ(Query("SELECT orddose FROM neworder"), (Rows{{"2147483647"}}));
}

TEST_F(Ordering, ASumBeyondTheLargestNumberOverflowsBeforeTheContractIsLookedAt) {
  AddOrder("neworder", "HEPA", "2147483628", "0");
  Order order;
  order.mfg = "NOBODY";
  ExpectRefused(order, 6, [](const std::string&) {
    return Joined({ChecksPassed(), ConnectionRead()});
  });
  EXPECT_EQ(Statements(), Joined({CheckQueries(order), {CurrentDoses(order)}}));
}

TEST_F(Ordering, ACurrentCountBeyond32BitsOverflows) {
  AddOrder("neworder", "HEPA", "2", "0");
  answer_ = [](const std::string& text) -> std::optional<std::vector<Value>> {
    if (!StartsWith(text, "SELECT orddose")) return std::nullopt;
    return std::vector<Value>{std::int64_t{2147483648}};
  };
  ExpectRefused(Order{}, 6, [](const std::string&) {
    return Joined({ChecksPassed(), ConnectionRead()});
  });
}

// Neither equal to 0 nor different from it: the counts pass it over, the reading
// of the current doses does not.
TEST_F(Ordering, ASecondRowWithoutSeekidMakesTheCurrentCountUncertain) {
  AddOrder("neworder", "HEPA", "2", "0");
  AddOrder("neworder", "HEPA", "3", "NULL");
  Order order;
  order.mfg = "NOBODY";
  ExpectRefused(order, 20042, "Error determining current doses for inventory adjustment update",
                Joined({ChecksPassed(), ConnectionRead()}),
                Joined({CheckQueries(order), {CurrentDoses(order)}}));
}

TEST_F(Ordering, NoRowWhereTheCurrentCountIsReadIsRefused) {
  AddOrder("neworder", "HEPA", "2", "0");
  answer_ = [](const std::string& text) -> std::optional<std::vector<Value>> {
    if (!StartsWith(text, "SELECT orddose")) return std::nullopt;
    return std::vector<Value>{};
  };
  Order order;
  order.mfg = "NOBODY";
  ExpectRefused(order, 20042, "Error determining current doses for inventory adjustment update",
                Joined({ChecksPassed(), ConnectionRead()}),
                Joined({CheckQueries(order), {CurrentDoses(order)}}));
}

TEST_F(Ordering, AnUpdateWithoutAContractIsRefused) {
  AddOrder("neworder", "HEPA", "2", "0");
  Order order;
  order.mfg = "NOBODY";
  ExpectRefused(order, 20052, "Error while verifying order against vaccine contract table",
                Joined({ChecksPassed(), ConnectionRead(), ConnectionRead()}),
                Joined({CheckQueries(order), {CurrentDoses(order), ContractQuery(order)}}));
}

TEST_F(Ordering, ARowWithoutSeekidAloneIsNoOrderAndAnotherIsInserted) {
  AddOrder("neworder", "HEPA", "3", "NULL");
  Run({});
  EXPECT_EQ(Query("SELECT orddose, userid FROM neworder ORDER BY orddose"),
            (Rows{{"3", "SOMEONE"}, {"20", "LTX_DLL"}}));
}

// --- Influenza ------------------------------------------------------------

TEST_F(Ordering, InfluenzaOrdersGoToTheirOwnTable) {
  for (const char* const vaccine : {"flu", "Flu-Pf"}) {
    Order order;
    order.vaccine = vaccine;
    Run(order);
  }
  EXPECT_EQ(OrderRows("influenza"),
            (Rows{{"", "5", "P1", "2004-01-05", "FLU", "20", "1", "20", "10", "12.5", "MERCK",
                   "C-77", "0006-4831", "2004-01-05", "LTX_DLL", "Ten doses", "0"},
                  {"", "5", "P1", "2004-01-05", "FLU-PF", "20", "1", "20", "10", "12.5", "MERCK",
                   "C-77", "0006-4831", "2004-01-05", "LTX_DLL", "Ten doses", "0"}}));
  EXPECT_EQ(OrderRows("neworder"), Rows{});
}

TEST_F(Ordering, TheStatementsOfANewInfluenzaOrder) {
  for (const char* const vaccine : {"FLU", "FLU-PF"}) {
    SCOPED_TRACE(vaccine);
    Order order;
    order.vaccine = vaccine;
    static_cast<void>(Statements());
    Run(order);
    EXPECT_EQ(Statements(),
              Joined({CheckQueries(order),
                      {ContractQuery(order),
                       "INSERT INTO influenza( ordpin, rectype, pin, orddate, vaccine, orddose, "
                       "fcode1, fdose1, size, cost, maker, contract, ndcno, chgdate, userid, "
                       "descrip ) VALUES(  '',  '5', 'P1', {1/5/2004}, '" +
                           order.vaccine +
                           "',20, '1', 20, 10, 12.5, 'MERCK', 'C-77', '0006-4831', {1/5/2004}, "
                           "'LTX_DLL', 'Ten doses')"}}));
  }
}

TEST_F(Ordering, OnlyTheVeryNamesAreInfluenza) {
  AddContract("FLUX");
  AddContract("FLU PF");
  for (const char* const vaccine : {"FLUX", "FLU PF", "FLU "}) {
    Order order;
    order.vaccine = vaccine;
    Run(order);
  }
  EXPECT_EQ(Query("SELECT vaccine FROM neworder ORDER BY vaccine DESC"),
            (Rows{{"FLUX"}, {"FLU PF"}, {"FLU "}}));
  EXPECT_EQ(OrderRows("influenza"), Rows{});
}

TEST_F(Ordering, ARepeatedInfluenzaOrderIsInsertedAgain) {
  Order order;
  order.vaccine = "FLU";
  Run(order);
  order.doses = 30;
  Run(order);
  EXPECT_EQ(Query("SELECT orddose, chgdate FROM influenza ORDER BY orddose"),
            (Rows{{"20", "2004-01-05"}, {"30", "2004-01-05"}}));
}

TEST_F(Ordering, AnOrderOfTheSameKeyAmongTheOthersUpdatesTheInfluenzaRow) {
  AddOrder("neworder", "FLU", "2", "0");
  AddOrder("influenza", "FLU", "3", "0");
  Order order;
  order.vaccine = "FLU";
  Run(order);
  EXPECT_EQ(OrderRows("influenza"),
            (Rows{{"OLD", "9", "P1", "2004-01-05", "FLU", "20", "1", "20", "10", "12.5", "OLDM",
                   "OLDC", "OLDN", "2026-11-20", "LTX_DLL", "OLDD", "0"}}));
  EXPECT_EQ(Query("SELECT orddose, fdose1, userid FROM neworder"), (Rows{{"2", "3", "SOMEONE"}}));
}

TEST_F(Ordering, TheStatementsOfAnInfluenzaUpdate) {
  for (const char* const vaccine : {"FLU", "FLU-PF"}) {
    SCOPED_TRACE(vaccine);
    AddOrder("neworder", vaccine, "2", "0");
    Order order;
    order.vaccine = vaccine;
    static_cast<void>(Statements());
    Run(order);
    EXPECT_EQ(Statements(),
              Joined({CheckQueries(order),
                      {CurrentDoses(order), ContractQuery(order),
                       "UPDATE influenza SET orddose = 20, fdose1 = 20, chgdate = {11/20/2026}, "
                       "userid = 'LTX_DLL', size = 10, cost = 12.5 WHERE ltrim(rtrim(pin)) = 'P1' "
                       "AND ltrim(rtrim(vaccine)) = '" +
                           order.vaccine +
                           "' AND orddate = {1/5/2004} AND ltrim(rtrim(fcode1)) = '1'"}}));
  }
}

TEST_F(Ordering, AnUpdateThatFindsNoInfluenzaRowReturnsAndChangesNothing) {
  AddOrder("neworder", "FLU", "2", "0");
  const Rows before = Everything();
  Order order;
  order.vaccine = "FLU";
  Run(order);
  EXPECT_EQ(Everything(), before);
  EXPECT_EQ(Trace(), Joined({Begun(), ChecksPassed(), ConnectionRead(), ConnectionRead(),
                             ConnectionRead(), Ended()}));
}

TEST_F(Ordering, TheCurrentCountOfAnInfluenzaOrderIsReadAmongTheOthers) {
  AddOrder("neworder", "FLU", "2147483647", "0");
  AddOrder("influenza", "FLU", "3", "0");
  Order order;
  order.vaccine = "FLU";
  ExpectRefused(order, 6, [](const std::string&) {
    return Joined({ChecksPassed(), ConnectionRead()});
  });
}

TEST_F(Ordering, AnInfluenzaOrderPassedOnDoesNotCount) {
  AddOrder("influenza", "FLU", "3", "7");
  Order order;
  order.vaccine = "FLU";
  Run(order);
  EXPECT_EQ(Query("SELECT orddose, seekid FROM influenza ORDER BY orddose"),
            (Rows{{"3", "7"}, {"20", "0"}}));
}

// --- Varicella ------------------------------------------------------------

TEST_F(Ordering, AVaricellaOrderIsMarkedAsOneFromItsManufacturer) {
  Order order;
  order.pin = "vp";
  order.vaccine = "var";
  Run(order);
  EXPECT_EQ(OrderRows("neworder"),
            (Rows{{"MERCKC", "2", "VP", "2004-01-05", "VAR", "20", "1", "20", "10", "12.5", "MERCK",
                   "C-77", "0006-4831", "2004-01-05", "LTX_DLL", "", "0"}}));
}

TEST_F(Ordering, TheStatementsOfANewVaricellaOrder) {
  Order order;
  order.pin = "VP";
  order.vaccine = "VAR";
  Run(order);
  EXPECT_EQ(
      Statements(),
      (Lines{ProviderCount("VP"), ProviderActive("VP"),
             "SELECT count(*) FROM provider WHERE ltrim(rtrim(pin)) = 'VP' and trim(codes)='V'",
             VaccineCount("VAR"), VaccineActiveCount("VAR"), FundingCount("1"),
             OrderCount(order, "<> 0"), OrderCount(order, "= 0"), ContractQuery(order),
             "INSERT INTO neworder( ordpin, rectype, pin, orddate, vaccine, orddose, fcode1, "
             "fdose1, size, cost, maker, contract, ndcno, chgdate, userid, descrip ) VALUES( "
             "'MERCKC', '2', 'VP', {1/5/2004}, 'VAR',20, '1', 20, 10, 12.5, 'MERCK', 'C-77', "
             "'0006-4831', {1/5/2004}, 'LTX_DLL',  '' )"}));
}

TEST_F(Ordering, TheTraceOfANewVaricellaOrder) {
  Order order;
  order.pin = "VP";
  order.vaccine = "VAR";
  Run(order);
  EXPECT_EQ(Trace(), Joined({Begun(), VaricellaChecksPassed(), ConnectionRead(), ConnectionRead(),
                             Ended()}));
}

TEST_F(Ordering, ARepeatedVaricellaOrderIsUpdatedLikeAnyOther) {
  Order order;
  order.pin = "VP";
  order.vaccine = "VAR";
  Run(order);
  order.doses = 30;
  static_cast<void>(Statements());
  Run(order);
  const Lines statements = Statements();
  ASSERT_EQ(statements.size(), 11U);
  EXPECT_EQ(statements[10],
            "UPDATE neworder SET orddose = 30, fdose1 = 30, chgdate = {11/20/2026}, userid = "
            "'LTX_DLL', size = 10, cost = 12.5 WHERE ltrim(rtrim(pin)) = 'VP' AND "
            "ltrim(rtrim(vaccine)) = 'VAR' AND orddate = {1/5/2004} AND ltrim(rtrim(fcode1)) = "
            "'1'");
  EXPECT_EQ(Query("SELECT ordpin, rectype, orddose, fdose1, descrip, chgdate FROM neworder"),
            (Rows{{"MERCKC", "2", "30", "30", "", "2026-11-20"}}));
}

TEST_F(Ordering, EligibilityIsTheTrimmedCodeVInItsCase) {
  const std::vector<std::pair<std::string, bool>> codes = {
      {" V ", true}, {"v", false}, {"VV", false}, {"", false}};
  for (const auto& [code, eligible] : codes) {
    SCOPED_TRACE(code);
    Execute("UPDATE provider SET codes = '" + code + "' WHERE pin = 'VP'");
    Order order;
    order.pin = "VP";
    order.vaccine = "VAR";
    if (eligible) {
      Run(order);
    } else {
      ExpectError(Refusal([&] { Run(order); }), Coded(20092),
                  "The provider is not eligible for ordering VAR");
    }
    EXPECT_EQ(Query("SELECT count(*) FROM neworder"), (Rows{{eligible ? "1" : "0"}}));
    Execute("DELETE FROM neworder");
  }
}

TEST_F(Ordering, OnlyTheVeryNameIsVaricella) {
  AddContract("VARX");
  for (const char* const vaccine : {"VARX", "VAR "}) {
    SCOPED_TRACE(vaccine);
    Order order;
    order.vaccine = vaccine;
    Run(order);
    EXPECT_EQ(Query("SELECT ordpin, rectype, vaccine, descrip FROM neworder"),
              (Rows{{"", "5", vaccine, "Ten doses"}}));
    Execute("DELETE FROM neworder");
  }
}

// --- The checks, each with every later one failing too ---------------------

TEST_F(Ordering, FirstTheDoseCount) {
  for (const std::int32_t doses : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
    SCOPED_TRACE(doses);
    Order order = AllWrong();
    order.doses = doses;
    ExpectRefused(order, 20025, "The number of doses for an order must be greater than zero", {},
                  {});
  }
}

TEST_F(Ordering, ThenTheFundingSource) {
  for (const char* const funding : {"", " ", "     "}) {
    SCOPED_TRACE(funding);
    Order order = AllWrong();
    order.doses = 1;
    order.funding = funding;
    ExpectRefused(order, 20091, "A Null funding source is entered", {}, {});
  }
}

Order WrongFromTheProviderOn() {
  Order order = AllWrong();
  order.doses = 1;
  order.funding = "9";
  return order;
}

TEST_F(Ordering, ThenTheLengthOfThePin) {
  for (const char* const pin : {"TOOLONG", "TOO-LON", "       "}) {
    SCOPED_TRACE(pin);
    Order order = WrongFromTheProviderOn();
    order.pin = pin;
    ExpectRefused(order, 20078,
                  "The number of characters in the pin entered exceeds the maximum allowed",
                  RefusedBy("ValidateProviderPIN",
                            "The number of characters in the pin entered exceeds the maximum "
                            "allowed"),
                  {});
  }
}

TEST_F(Ordering, ThenTheCharactersOfThePin) {
  const std::string message =
      "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed.";
  for (const char* const pin : {"", "   ", " P1", "P-1", "P'1", "É"}) {
    SCOPED_TRACE(pin);
    Order order = WrongFromTheProviderOn();
    order.pin = pin;
    ExpectRefused(order, 20079, message, RefusedBy("ValidateProviderPIN", message), {});
  }
}

TEST_F(Ordering, ThenThatOneProviderHasThePin) {
  AddProvider("P1", 29, "Y", "");
  Order order = WrongFromTheProviderOn();
  order.pin = "P1";
  ExpectRefused(order, 20003, "Provider PIN entered has a duplicate",
                RefusedBy("ValidateProviderPIN", "Provider PIN entered has a duplicate"),
                {ProviderCount("P1")});
}

TEST_F(Ordering, AProviderCountThatIsNoneIsRefused) {
  const std::vector<std::vector<Value>> answers = {
      {}, {std::int64_t{1}, std::int64_t{1}}, {std::int64_t{-1}}};
  for (const std::vector<Value>& rows : answers) {
    SCOPED_TRACE(rows.size());
    AnswerTo(ProviderCount("P1"), rows);
    Order order = WrongFromTheProviderOn();
    order.pin = "P1";
    ExpectRefused(order, 20005, "Error while verifying provider PIN in LOTRIX",
                  RefusedBy("ValidateProviderPIN", "Error while verifying provider PIN in LOTRIX"),
                  {ProviderCount("P1")});
  }
}

TEST_F(Ordering, ThenThatTheProviderIsKnown) {
  AddProvider("P3", 30, "Y", "");
  for (const char* const pin : {"P2", "P3"}) {
    SCOPED_TRACE(pin);
    Order order = WrongFromTheProviderOn();
    order.pin = pin;
    ExpectRefused(order, 20004, "Provider entered not found in LOTRIX",
                  Asked("ValidateProviderPIN"), {ProviderCount(pin)});
  }
}

TEST_F(Ordering, ThenThatTheProviderIsActive) {
  const std::string message =
      "The provider enter is currently inactivate in LOTRIX. Cannot proceed with the current "
      "operation";
  for (const char* const active : {"'N'", "''", "NULL"}) {
    SCOPED_TRACE(active);
    Execute("UPDATE provider SET active = " + std::string(active) + " WHERE pin = 'P1'");
    Order order = WrongFromTheProviderOn();
    order.pin = "P1";
    ExpectRefused(order, 20083, message, InactiveProviderRefused(message),
                  {ProviderCount("P1"), ProviderActive("P1")});
  }
}

Order WrongFromTheDateOn() {
  Order order = WrongFromTheProviderOn();
  order.pin = "P1";
  order.vaccine = "VAR";
  return order;
}

TEST_F(Ordering, ThenThatThereIsADate) {
  Execute("DELETE FROM pvaccref");
  for (const char* const date : {"", "   "}) {
    SCOPED_TRACE(date);
    Order order = WrongFromTheDateOn();
    order.date = date;
    ExpectRefused(order, 20076, "Null value for manufacturer order date", ActiveProviderPassed(),
                  {ProviderCount("P1"), ProviderActive("P1")});
  }
}

TEST_F(Ordering, ThenThatTheDateIsOne) {
  Execute("DELETE FROM pvaccref");
  for (const char* const date : {"tomorrow", "2/30/2004", "13/5/2004", "1/5", "1/5/2004}",
                                 "{1/5/2004", "1/5'/2004", "1/5/2004' OR '1'='1", "20040105"}) {
    SCOPED_TRACE(date);
    Order order = WrongFromTheDateOn();
    order.date = date;
    ExpectRefused(order, 20075, "Order date for the manufacturer order is not a valid date",
                  ActiveProviderPassed(), {ProviderCount("P1"), ProviderActive("P1")});
  }
}

Order WrongFromVaricellaOn() {
  Order order = WrongFromTheDateOn();
  order.date = "1/5/2004";
  return order;
}

TEST_F(Ordering, ThenThatTheProviderIsEligibleForVaricella) {
  Execute("DELETE FROM pvaccref");
  Order order = WrongFromVaricellaOn();
  order.vaccine = "var";
  ExpectRefused(order, 20092, "The provider is not eligible for ordering VAR",
                Joined({ActiveProviderPassed(), VaricellaPassed()}),
                {ProviderCount("P1"), ProviderActive("P1"), VaricellaCount("P1")});
}

TEST_F(Ordering, TwoEligibleRowsOfAPinAreRefusedWhateverTheirSectors) {
  Execute("DELETE FROM pvaccref");
  AddProvider("VP", 30, "Y", "V");
  Order order = WrongFromVaricellaOn();
  order.pin = "VP";
  ExpectRefused(order, 20003, "Provider PIN entered has a duplicate",
                Joined({ActiveProviderPassed(), RefusedBy("ValidateProvideraVaricellaEligibility",
                                                          "Provider PIN entered has a duplicate")}),
                {ProviderCount("VP"), ProviderActive("VP"), VaricellaCount("VP")});
}

TEST_F(Ordering, AnEligibilityCountThatIsNoneIsRefused) {
  Execute("DELETE FROM pvaccref");
  const std::vector<std::vector<Value>> answers = {
      {}, {std::int64_t{1}, std::int64_t{1}}, {std::int64_t{-1}}};
  for (const std::vector<Value>& rows : answers) {
    SCOPED_TRACE(rows.size());
    AnswerTo(VaricellaCount("P1"), rows);
    ExpectRefused(
        WrongFromVaricellaOn(), 20005, "Error while verifying provider PIN in LOTRIX",
        Joined({ActiveProviderPassed(), RefusedBy("ValidateProvideraVaricellaEligibility",
                                                  "Error while verifying provider PIN in LOTRIX")}),
        {ProviderCount("P1"), ProviderActive("P1"), VaricellaCount("P1")});
  }
}

Order WrongFromTheVaccineOn() {
  Order order = WrongFromVaricellaOn();
  order.vaccine = "NONE";
  return order;
}

// The reference check of the vaccine has no Begin line: its End line stands on
// entry.

TEST_F(Ordering, ThenThatTheVaccineIsKnown) {
  const std::string message = "Vaccine not available to private provider in LOTRIX";
  for (const char* const vaccine : {"NONE", "", " HEPA", "HEP"}) {
    SCOPED_TRACE(vaccine);
    Order order = WrongFromTheVaccineOn();
    order.vaccine = vaccine;
    ExpectRefused(order, 20051, message,
                  Joined({ActiveProviderPassed(), VaccineReferenceRefused(message)}),
                  {ProviderCount("P1"), ProviderActive("P1"), VaccineCount(vaccine)});
  }
}

TEST_F(Ordering, AVaricellaVaccineThatIsUnknownIsFoundAfterEligibility) {
  const std::string message = "Vaccine not available to private provider in LOTRIX";
  Execute("DELETE FROM pvaccref");
  Order order = WrongFromVaricellaOn();
  order.pin = "VP";
  ExpectRefused(
      order, 20051, message,
      Joined({ActiveProviderPassed(), VaricellaPassed(), VaccineReferenceRefused(message)}),
      {ProviderCount("VP"), ProviderActive("VP"), VaricellaCount("VP"), VaccineCount("VAR")});
}

TEST_F(Ordering, AVaccineCountBelowNoneIsRefused) {
  const std::string message = "Error while verifying vaccine reference table in LOTRIX";
  AnswerTo(VaccineCount("NONE"), {std::int64_t{-1}});
  ExpectRefused(WrongFromTheVaccineOn(), 20016, message,
                Joined({ActiveProviderPassed(), VaccineReferenceRefused(message)}),
                {ProviderCount("P1"), ProviderActive("P1"), VaccineCount("NONE")});
}

TEST_F(Ordering, ThenThatTheVaccineIsActive) {
  const std::string message =
      "The vaccine being used in the current operation is inactive in LOTRIX";
  AddContract("OLDV", "MERCK", "(1 = 1)");
  Order order = WrongFromTheVaccineOn();
  order.vaccine = "OLDV";
  ExpectRefused(order, 20086, message,
                Joined({ActiveProviderPassed(), InactiveVaccineRefused(message)}),
                {ProviderCount("P1"), ProviderActive("P1"), VaccineCount("OLDV"),
                 VaccineActiveCount("OLDV")});
}

Order WrongFromTheFundingOn() {
  Order order = WrongFromTheVaccineOn();
  order.vaccine = "HEPA";
  return order;
}

Lines FundingRefused(const std::string& description) {
  return Joined({ActiveProviderPassed(), ActiveVaccinePassed(),
                 RefusedBy("ValidateFundingCodeandPO", description)});
}
Lines QueriesUpToTheFunding(const std::string& funding) {
  return {ProviderCount("P1"), ProviderActive("P1"), VaccineCount("HEPA"),
          VaccineActiveCount("HEPA"), FundingCount(funding)};
}

TEST_F(Ordering, ThenThatTheFundingCodeIsDefined) {
  const std::string message = "Funding code entered has not been defined in LOTRIX";
  for (const char* const funding : {"9", " 1", "X"}) {
    SCOPED_TRACE(funding);
    Order order = WrongFromTheFundingOn();
    order.funding = funding;
    ExpectRefused(order, 20048, message, FundingRefused(message), QueriesUpToTheFunding(funding));
  }
}

TEST_F(Ordering, ThenThatTheFundingCodeIsThereOnce) {
  const std::string message = "Duplicate funding codes found in LOTRIX";
  Execute("INSERT INTO funding (fundcode) VALUES (' 1 ')");
  Order order = WrongFromTheFundingOn();
  order.funding = "1";
  ExpectRefused(order, 20049, message, FundingRefused(message), QueriesUpToTheFunding("1"));
}

TEST_F(Ordering, AFundingCountThatIsNoneIsRefused) {
  const std::string message = "Error while verifying funding code";
  const std::vector<std::vector<Value>> answers = {{}, {std::int64_t{-1}}};
  for (const std::vector<Value>& rows : answers) {
    SCOPED_TRACE(rows.size());
    AnswerTo(FundingCount("1"), rows);
    Order order = WrongFromTheFundingOn();
    order.funding = "1";
    ExpectRefused(order, 20047, message, FundingRefused(message), QueriesUpToTheFunding("1"));
  }
}

TEST_F(Ordering, ThenThatTheFundingCodeIsANumber) {
  Execute("INSERT INTO funding (fundcode) VALUES ('ST')");
  Order order = WrongFromTheFundingOn();
  order.funding = "st";
  ExpectRefused(order, 13,
                [](const std::string& description) { return FundingRefused(description); });
  EXPECT_EQ(Statements(), QueriesUpToTheFunding("ST"));
}

TEST_F(Ordering, ThenThatAFederalOrderHasNoStatePurchaseOrder) {
  const std::string message = "The state PO is not needed for federal funded order";
  Execute("INSERT INTO funding (fundcode) VALUES ('01'), ('2.0')");
  for (const char* const funding : {"1", "2", "01", "2.0"}) {
    SCOPED_TRACE(funding);
    Order order = WrongFromTheFundingOn();
    order.funding = funding;
    ExpectRefused(order, 20093, message, FundingRefused(message), QueriesUpToTheFunding(funding));
  }
}

TEST_F(Ordering, ThenThatAStateOrderHasAPurchaseOrder) {
  const std::string message = "A state PO number is required for state funding code";
  Execute("INSERT INTO funding (fundcode) VALUES ('1.5'), ('0'), ('-1')");
  for (const char* const funding : {"3", "1.5", "0", "-1"}) {
    for (const char* const po : {"", "   "}) {
      SCOPED_TRACE(std::string(funding) + "|" + po);
      Order order = WrongFromTheFundingOn();
      order.funding = funding;
      order.po = po;
      ExpectRefused(order, 20046, message, FundingRefused(message), QueriesUpToTheFunding(funding));
    }
  }
}

Order WrongFromTheExcessOn() {
  Order order = WrongFromTheFundingOn();
  order.funding = "1";
  order.po = "";
  return order;
}

Lines ExcessRefused(const std::string& description) {
  return Joined(
      {ActiveProviderPassed(),
       ActiveVaccinePassed(),
       FundingPassed(),
       {BeginOf("ValidateExcessAllowance"), ProblemOf("ValidateExcessAllowance", description)}});
}

TEST_F(Ordering, ThenTheExcessAllowance) {
  AddOrder("neworder", "HEPA", "2", "7");
  for (const char* const excess : {"0", "6", "-1", "0.5", "5.5", "2147483647"}) {
    SCOPED_TRACE(excess);
    Order order = WrongFromTheExcessOn();
    order.excess = excess;
    ExpectRefused(order, 20068, "The excess allowance is out of range",
                  ExcessRefused("The excess allowance is out of range"),
                  QueriesUpToTheFunding("1"));
  }
}

TEST_F(Ordering, AnExcessAllowanceThatIsNoNumberDoesNotMatchItsType) {
  AddOrder("neworder", "HEPA", "2", "7");
  for (const char* const excess : {"one", "1'", "1 2", "-"}) {
    SCOPED_TRACE(excess);
    Order order = WrongFromTheExcessOn();
    order.excess = excess;
    ExpectRefused(order, 13, ExcessRefused);
  }
}

TEST_F(Ordering, AnExcessAllowanceBeyond32BitsOverflows) {
  AddOrder("neworder", "HEPA", "2", "7");
  Order order = WrongFromTheExcessOn();
  order.excess = "2147483648";
  ExpectRefused(order, 6, ExcessRefused);
}

Order WithoutAContract() {
  Order order;
  order.mfg = "NOBODY";
  return order;
}

Lines StatusRefused(const std::string& description) {
  return Joined({ActiveProviderPassed(),
                 ActiveVaccinePassed(),
                 FundingPassed(),
                 ExcessPassed(),
                 ConnectionRead(),
                 {BeginOf("ValidateDuplicateManufacturerOrder"),
                  BeginOf("ValidateEventDateManufacturerProviderOrder"),
                  ProblemOf("ValidateEventDateManufacturerProviderOrder", description),
                  ProblemOf("ValidateDuplicateManufacturerOrder", description)}});
}
Lines QueriesUpToTheStatus(const Order& order) {
  return Joined({QueriesUpToTheFunding(order.funding), {OrderCount(order, "<> 0")}});
}

TEST_F(Ordering, ThenThatTheOrderIsNotPassedOnEvenWhenTwoAreOpen) {
  const std::string message =
      "A manufacturer order with the same parameters has already been sent to the Vorsk. Cannot "
      "update current order.";
  AddOrder("neworder", "HEPA", "2", "7");
  AddOrder("neworder", "HEPA", "3", "0");
  AddOrder("neworder", "HEPA", "4", "0");
  const Order order = WithoutAContract();
  ExpectRefused(order, 20071, message, StatusRefused(message), QueriesUpToTheStatus(order));
}

TEST_F(Ordering, AnInfluenzaOrderPassedOnAmongTheOthersIsRefused) {
  const std::string message =
      "A manufacturer order with the same parameters has already been sent to the Vorsk. Cannot "
      "update current order.";
  AddOrder("neworder", "FLU", "2", "-7");
  Order order = WithoutAContract();
  order.vaccine = "FLU";
  ExpectRefused(order, 20071, message, StatusRefused(message),
                {ProviderCount("P1"), ProviderActive("P1"), VaccineCount("FLU"),
                 VaccineActiveCount("FLU"), FundingCount("1"), OrderCount(order, "<> 0")});
}

TEST_F(Ordering, TwoOrdersPassedOnAreRefusedAsDuplicates) {
  const std::string message = "More than one record for the same manufacturer order was found";
  AddOrder("neworder", "HEPA", "2", "7");
  AddOrder("neworder", "HEPA", "3", "8");
  const Order order = WithoutAContract();
  ExpectRefused(order, 20055, message, StatusRefused(message), QueriesUpToTheStatus(order));
}

TEST_F(Ordering, AStatusCountThatIsNoneIsRefused) {
  const std::string message = "Error while checking status of manufacturer order";
  const Order order = WithoutAContract();
  const std::vector<std::vector<Value>> answers = {
      {}, {std::int64_t{0}, std::int64_t{0}}, {std::int64_t{-1}}};
  for (const std::vector<Value>& rows : answers) {
    SCOPED_TRACE(rows.size());
    AnswerTo(OrderCount(order, "<> 0"), rows);
    ExpectRefused(order, 20070, message, StatusRefused(message), QueriesUpToTheStatus(order));
  }
}

Lines DuplicateRefused(const std::string& description) {
  return Joined({ActiveProviderPassed(),
                 ActiveVaccinePassed(),
                 FundingPassed(),
                 ExcessPassed(),
                 ConnectionRead(),
                 {BeginOf("ValidateDuplicateManufacturerOrder")},
                 Passed("ValidateEventDateManufacturerProviderOrder"),
                 {ProblemOf("ValidateDuplicateManufacturerOrder", description)}});
}

TEST_F(Ordering, ThenThatNotTwoOrdersAreOpen) {
  const std::string message = "More than one record for the same manufacturer order was found";
  AddOrder("neworder", "HEPA", "2", "0");
  AddOrder("neworder", "HEPA", "3", "0");
  const Order order = WithoutAContract();
  ExpectRefused(order, 20055, message, DuplicateRefused(message), CheckQueries(order));
}

TEST_F(Ordering, AnOpenOrderCountThatIsNoneIsRefused) {
  const std::string message = "Error while verifing order against duplicates";
  const Order order = WithoutAContract();
  const std::vector<std::vector<Value>> answers = {
      {}, {std::int64_t{0}, std::int64_t{0}}, {std::int64_t{-1}}};
  for (const std::vector<Value>& rows : answers) {
    SCOPED_TRACE(rows.size());
    AnswerTo(OrderCount(order, "= 0"), rows);
    ExpectRefused(order, 20054, message, DuplicateRefused(message), CheckQueries(order));
  }
}

TEST_F(Ordering, ThenThatAContractCovers) {
  const Order order = WithoutAContract();
  ExpectRefused(order, 20052, "Error while verifying order against vaccine contract table",
                Joined({ChecksPassed(), ConnectionRead()}),
                Joined({CheckQueries(order), {ContractQuery(order)}}));
}

TEST_F(Ordering, AStatementThatTheEngineRefusesIsAProblemOfTheOperation) {
  Execute("DROP TABLE influenza");
  Order order;
  order.vaccine = "FLU";
  const Error error = Refusal([&] { Run(order); });
  EXPECT_EQ(error.number(), Numbered(EngineError::kNoSuchTable));
  EXPECT_EQ(error.source(), "LOTRIX DLL");
  EXPECT_EQ(Trace(), Joined({Begun(),
                             ChecksPassed(),
                             ConnectionRead(),
                             ConnectionRead(),
                             {ProblemOf(kOperation, error.description())}}));
  EXPECT_EQ(OrderRows("neworder"), Rows{});
}

TEST_F(Ordering, ARefusedCallLeavesTheObjectUsable) {
  ExpectError(Refusal([&] { Run(WithoutAContract()); }), Coded(20052),
              "Error while verifying order against vaccine contract table");
  Run({});
  EXPECT_EQ(Query("SELECT orddose FROM neworder"), (Rows{{"20"}}));
}

// --- Values that would leave their place -----------------------------------

TEST_F(Ordering, AnApostropheInTheVaccineIsRefusedAsSyntax) {
  for (const char* const vaccine : {"HEP'A", "HEPA'", "'", "HEPA' OR '1'='1", "HEPA' --",
                                    "HEPA'; DELETE FROM neworder; --", "HEPA''", "VAR'"}) {
    SCOPED_TRACE(vaccine);
    Order order;
    order.vaccine = vaccine;
    ExpectRefused(order, Numbered(EngineError::kStatementRefused),
                  [](const std::string& description) {
                    return Joined({ActiveProviderPassed(), VaccineReferenceRefused(description)});
                  });
  }
}

TEST_F(Ordering, AnApostropheInTheFundingSourceIsRefusedAsSyntax) {
  for (const char* const funding :
       {"1'", "'", "1' OR '1'='1", "1'; DROP TABLE funding; --", "9' OR fundcode = '1"}) {
    SCOPED_TRACE(funding);
    Order order;
    order.funding = funding;
    ExpectRefused(order, Numbered(EngineError::kStatementRefused), FundingRefused);
  }
}

TEST_F(Ordering, AnApostropheInTheManufacturerIsRefusedAsSyntax) {
  for (const char* const mfg :
       {"O'Neil", "MERCK'", "MERCK' OR '1'='1", "X' OR maker <> '", "MERCK'; DROP TABLE x; --"}) {
    SCOPED_TRACE(mfg);
    Order order;
    order.mfg = mfg;
    ExpectRefused(order, Numbered(EngineError::kStatementRefused), [](const std::string&) {
      return Joined({ChecksPassed(), ConnectionRead()});
    });
  }
}

TEST_F(Ordering, AnApostropheInTheManufacturerOfAnUpdateIsRefusedAsSyntax) {
  AddOrder("neworder", "HEPA", "2", "0");
  Order order;
  order.mfg = "O'Neil";
  ExpectRefused(order, Numbered(EngineError::kStatementRefused), [](const std::string&) {
    return Joined({ChecksPassed(), ConnectionRead(), ConnectionRead()});
  });
}

TEST_F(Ordering, AnApostropheInAContractBreaksTheInsertButNotTheUpdate) {
  for (const char* const column : {"ndcno", "contractid", "descrip"}) {
    SCOPED_TRACE(column);
    Execute("DELETE FROM pvaccref WHERE vaccine = 'HEPA'");
    AddContract("HEPA");
    Execute("UPDATE pvaccref SET " + std::string(column) +
            " = 'Children''s' WHERE vaccine = 'HEPA'");
    ExpectRefused(Order{}, Numbered(EngineError::kStatementRefused), [](const std::string&) {
      return Joined({ChecksPassed(), ConnectionRead(), ConnectionRead()});
    });
    AddOrder("neworder", "HEPA", "2", "0");
    Run({});
    EXPECT_EQ(Query("SELECT orddose FROM neworder"), (Rows{{"20"}}));
    Execute("DELETE FROM neworder");
  }
}

TEST_F(Ordering, AnApostropheInTheDescriptionOfVaricellaReachesNoStatement) {
  Execute("UPDATE pvaccref SET descrip = 'Children''s' WHERE vaccine = 'VAR'");
  Order order;
  order.pin = "VP";
  order.vaccine = "VAR";
  Run(order);
  EXPECT_EQ(Query("SELECT vaccine, descrip FROM neworder"), (Rows{{"VAR", ""}}));
}

// --- Zero characters --------------------------------------------------------

TEST_F(Ordering, AZeroCharacterInThePinIsNotAlphanumeric) {
  const std::string message =
      "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed.";
  Order order = WrongFromTheProviderOn();
  order.pin = std::string("P1\0", 3);
  ExpectRefused(order, 20079, message, RefusedBy("ValidateProviderPIN", message), {});
}

TEST_F(Ordering, AZeroCharacterInTheVaccineIsRefusedAsSyntax) {
  Order order;
  order.vaccine = std::string("HEPA\0", 5);
  ExpectRefused(order, Numbered(EngineError::kStatementRefused),
                [](const std::string& description) {
                  return Joined({ActiveProviderPassed(), VaccineReferenceRefused(description)});
                });
}

TEST_F(Ordering, AZeroCharacterInTheFundingSourceIsRefusedAsSyntax) {
  Order order;
  order.funding = std::string("1\0", 2);
  ExpectRefused(order, Numbered(EngineError::kStatementRefused), FundingRefused);
}

TEST_F(Ordering, AZeroCharacterInTheManufacturerIsRefusedAsSyntax) {
  Order order;
  order.mfg = std::string("MERCK\0", 6);
  ExpectRefused(order, Numbered(EngineError::kStatementRefused), [](const std::string&) {
    return Joined({ChecksPassed(), ConnectionRead()});
  });
}

// The date test reads up to the zero character; what stands behind it must not
// reach the engine.
TEST_F(Ordering, AZeroCharacterInTheDateIsRefusedAsSyntax) {
  using std::string_literals::operator""s;
  for (const std::string& date : {"1/5/2004\0"s, "1/5/2004\0} OR 1 = 1 --"s, "1/5/2004\0'"s}) {
    Order order;
    order.date = date;
    ExpectRefused(order, Numbered(EngineError::kStatementRefused), StatusRefused);
  }
}

TEST_F(Ordering, AnExcessAllowanceIsReadUpToItsZeroCharacter) {
  Order order;
  order.excess = std::string("5\0x", 3);
  Run(order);
  EXPECT_EQ(Query("SELECT orddose FROM neworder"), (Rows{{"20"}}));
  order.excess = std::string("6\0x", 3);
  ExpectRefused(order, 20068, "The excess allowance is out of range",
                ExcessRefused("The excess allowance is out of range"), QueriesUpToTheFunding("1"));
}

TEST_F(Ordering, AStatePurchaseOrderOfAZeroCharacterIsNotBlank) {
  Order order;
  order.funding = "3";
  order.po = std::string("\0", 1);
  Run(order);
  EXPECT_EQ(Query("SELECT fcode1 FROM neworder"), (Rows{{"3"}}));
}

// --- Very long arguments ----------------------------------------------------

TEST_F(Ordering, AVeryLongPinIsTooLong) {
  const std::string message =
      "The number of characters in the pin entered exceeds the maximum allowed";
  Order order = WrongFromTheProviderOn();
  order.pin = std::string(kMebibyte, 'p');
  ExpectRefused(order, 20078, message, RefusedBy("ValidateProviderPIN", message), {});
}

TEST_F(Ordering, AVeryLongVaccineIsUnknown) {
  const std::string message = "Vaccine not available to private provider in LOTRIX";
  Order order;
  order.vaccine = std::string(kMebibyte, 'v');
  ExpectRefused(
      order, 20051, message, Joined({ActiveProviderPassed(), VaccineReferenceRefused(message)}),
      {ProviderCount("P1"), ProviderActive("P1"), VaccineCount(std::string(kMebibyte, 'V'))});
}

TEST_F(Ordering, AVeryLongManufacturerHasNoContract) {
  Order order;
  order.mfg = std::string(kMebibyte, 'm');
  ExpectRefused(order, 20052, "Error while verifying order against vaccine contract table",
                Joined({ChecksPassed(), ConnectionRead()}),
                Joined({CheckQueries(order), {ContractQuery(order)}}));
}

TEST_F(Ordering, AVeryLongTextOverflowsWhereItIsTestedForBlank) {
  Order order = WrongFromTheProviderOn();
  order.funding = std::string(kMebibyte, '1');
  ExpectRefused(order, 6, [](const std::string&) { return Lines{}; });
  order = WrongFromTheProviderOn();
  order.excess = std::string(kMebibyte, '1');
  ExpectRefused(order, 6, [](const std::string&) { return Lines{}; });
  order = WrongFromTheProviderOn();
  order.po = std::string(kMebibyte, '1');
  ExpectRefused(order, 6, [](const std::string&) { return Lines{}; });
  order = WrongFromTheDateOn();
  order.date = std::string(kMebibyte, '1');
  ExpectRefused(order, 6, [](const std::string&) { return ActiveProviderPassed(); });
}

TEST_F(Ordering, AsManyCharactersAs16BitsCountAreNoOverflow) {
  const std::string message = "Funding code entered has not been defined in LOTRIX";
  std::string accents;
  for (int count = 0; count < 32767; ++count) accents += "É";
  Order order;
  order.funding = accents;
  ExpectRefused(order, 20048, message, FundingRefused(message), QueriesUpToTheFunding(accents));
  order.funding = accents + "É";
  ExpectRefused(order, 6, [](const std::string&) { return Lines{}; });
}

}  // namespace
}  // namespace lotrix::test

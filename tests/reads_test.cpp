#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "tests/support/expected_statements.h"
#include "tests/support/expected_trace.h"
#include "tests/support/extremes.h"
#include "tests/support/operation_fixture.h"

namespace lotrix::test {
namespace {

const std::string kSelectStock =
    "SELECT Pin, Datein, Doses, Lot, Vaccine, Maker, Expiry FROM Stock";
const std::string kTrackedNewestFirst = " tracking != ' '  and lot != ' '  order by datein desc ";

const std::string kTooLong =
    "The number of characters in the pin entered exceeds the maximum allowed";
const std::string kNotAlphanumeric =
    "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed.";
const std::string kNotAvailable = "Vaccine not available to private provider in LOTRIX";
const std::string kInactiveVaccine =
    "The vaccine being used in the current operation is inactive in LOTRIX";
const std::string kInactiveProvider =
    "The provider enter is currently inactivate in LOTRIX. Cannot proceed with the current "
    "operation";
const std::string kRange =
    "The end of the date range must be later than the beginning of the range, and both must be "
    "valid dates";
const std::string kBeginNoDate = "The Shipment Begin Date that was entered is not a valid date";
const std::string kEndNoDate = "The Shipment End Date that was entered is not a valid date";

class Reads : public OperationTest {
 protected:
  void SetUp() override {
    AddProvider("P1", 10, "'Y'");
    AddProvider("P2", 29, "'y'");
    AddProvider("D01", 30, "'Y'");
    AddVaccine("HEPA", false);
    AddVaccine("MMR", false);
    WatchOperations();
  }

  void AddProvider(const std::string& pin, int sector, const std::string& active) {
    Execute("INSERT INTO provider (pin, sector, active) VALUES ('" + pin + "', " +
            std::to_string(sector) + ", " + active + ")");
  }
  void AddVaccine(const std::string& vaccine, bool locactiv) {
    Execute("INSERT INTO pvaccref (vaccine, locactiv) VALUES ('" + vaccine + "', " +
            (locactiv ? "(1 = 1)" : "(1 = 0)") + ")");
  }
  void AddStock(const std::string& pin, const std::string& datein, const std::string& lot,
                const std::string& vaccine, const std::string& tracking = "T1") {
    Execute(
        "INSERT INTO stock (pin, datein, doses, lot, vaccine, maker, expiry, tracking) VALUES "
        "('" +
        pin + "', '" + datein + "', 10, '" + lot + "', '" + vaccine +
        "', 'MERCK', '2005-03-07', '" + tracking + "')");
  }
  void AddLot(const std::string& lot, const std::string& rest) {
    Execute("INSERT INTO lots (lot, vaccine, pin, expiry, maker, remain, size) VALUES ('" + lot +
            "', " + rest + ")");
  }

  // A refusal with exactly these lines and statements.
  void ExpectRefused(const std::function<void()>& call, std::int32_t number,
                     const std::string& message, const Lines& lines, const Lines& statements) {
    ForgetTrace();
    static_cast<void>(Statements());
    ExpectError(Refusal(call), number, message);
    EXPECT_EQ(Trace(), lines);
    EXPECT_EQ(Statements(), statements);
  }
  // The same for an error whose text is the run time's or the engine's.
  void ExpectFailed(const std::function<void()>& call, std::int32_t number,
                    const std::function<Lines(const std::string& description)>& lines) {
    ForgetTrace();
    const Error error = Refusal(call);
    EXPECT_EQ(error.number(), number);
    EXPECT_EQ(error.source(), "LOTRIX DLL");
    EXPECT_FALSE(error.description().empty());
    EXPECT_EQ(Trace(), lines(error.description()));
  }

  // The lots of the rows that a read returns, in order.
  static Lines Lots(const cResultSet& table) {
    Lines lots;
    for (const Row& row : Cells(table)) lots.push_back(row[3]);
    return lots;
  }
};

// --- stockTableRead: the query ----------------------------------------------

class StockRead : public Reads {
 protected:
  struct Filter {
    std::string pin = {};
    std::string vaccine = {};
    std::string lot = {};
    std::string begin = {};
    std::string end = {};
  };

  cResultSet Read(const Filter& filter) {
    return lotrix().stockTableRead(filter.pin, filter.vaccine, filter.lot, filter.begin,
                                   filter.end);
  }
  // The query of a read that passes its checks.
  std::string QueryOf(const Filter& filter) {
    static_cast<void>(Statements());
    Read(filter);
    const Lines statements = Statements();
    return statements.empty() ? "no statement" : statements.back();
  }
  void ExpectStockRefused(const Filter& filter, std::int32_t code, const std::string& message,
                          const Lines& lines, const Lines& statements) {
    ExpectRefused(
        [&] { Read(filter); }, Coded(code), message,
        Joined({{BeginOf("stockTableRead")}, lines, {ProblemOf("stockTableRead", message)}}),
        statements);
  }
  void ExpectStockFailed(const Filter& filter, std::int32_t number,
                         const std::function<Lines(const std::string&)>& lines) {
    ExpectFailed([&] { Read(filter); }, number,
                 [&](const std::string& description) {
                   return Joined({{BeginOf("stockTableRead")},
                                  lines(description),
                                  {ProblemOf("stockTableRead", description)}});
                 });
  }
};

TEST_F(StockRead, WithoutArgumentsEveryTrackedShipmentIsRead) {
  AddStock("P1", "2004-01-05", "A1", "HEPA");
  AddStock("P2", "2004-02-05", "B2", "MMR");
  EXPECT_EQ(Lots(lotrix().stockTableRead()), (Lines{"B2", "A1"}));
  EXPECT_EQ(Statements(),
            (Lines{"SELECT Pin, Datein, Doses, Lot, Vaccine, Maker, Expiry FROM Stock WHERE  "
                   "tracking != ' '  and lot != ' '  order by datein desc "}));
  EXPECT_EQ(Trace(),
            (Lines{"information Begin: stockTableRead()", "information Begin: Get Connection()",
                   "information End: GetConnection()", "information End: stockTableRead()"}));
}

TEST_F(StockRead, EveryFilterTogether) {
  AddStock("P1", "2004-01-05", "A-B12", "HEPA");
  EXPECT_EQ(Lots(Read({"P1", "HEPA", "AB-12", "1/1/2004", "1/31/2004"})), Lines{"A-B12"});
  EXPECT_EQ(Statements(),
            (Lines{ProviderCount("P1"), ProviderActive("P1"), VaccineCount("HEPA"),
                   VaccineActiveCount("HEPA"),
                   "SELECT Pin, Datein, Doses, Lot, Vaccine, Maker, Expiry FROM Stock WHERE "
                   "ltrim(rtrim(Vaccine)) = 'HEPA' AND ltrim(rtrim(Pin)) = 'P1' AND  "
                   "ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = 'AB12'  AND  Datein BETWEEN "
                   "{1/1/2004}  AND {1/31/2004}  AND  tracking != ' '  and lot != ' '  order by "
                   "datein desc "}));
  EXPECT_EQ(Trace(), Joined({{BeginOf("stockTableRead")},
                             ActiveProviderPassed(),
                             ActiveVaccinePassed(),
                             ConnectionRead(),
                             {EndOf("stockTableRead")}}));
}

TEST_F(StockRead, ThePinAlone) {
  EXPECT_EQ(QueryOf({.pin = "P1"}),
            kSelectStock + " WHERE ltrim(rtrim(Pin)) = 'P1' AND " + kTrackedNewestFirst);
}

TEST_F(StockRead, TheVaccineAlone) {
  EXPECT_EQ(QueryOf({.vaccine = "MMR"}),
            kSelectStock + " WHERE ltrim(rtrim(Vaccine)) = 'MMR' AND " + kTrackedNewestFirst);
}

TEST_F(StockRead, TheLotAlone) {
  EXPECT_EQ(QueryOf({.lot = "L1"}),
            kSelectStock + " WHERE  ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = 'L1'  AND " +
                kTrackedNewestFirst);
}

TEST_F(StockRead, TheBeginDateAloneIsOneDay) {
  AddStock("P1", "2004-01-05", "A1", "HEPA");
  AddStock("P1", "2004-01-06", "A2", "HEPA");
  EXPECT_EQ(Lots(Read({.begin = "1/5/2004"})), Lines{"A1"});
  EXPECT_EQ(Statements(),
            (Lines{kSelectStock + " WHERE  Datein = {1/5/2004}  AND " + kTrackedNewestFirst}));
}

TEST_F(StockRead, ADateRangeAlone) {
  EXPECT_EQ(QueryOf({.begin = "1/5/2004", .end = "1/6/2004"}),
            kSelectStock + " WHERE  Datein BETWEEN {1/5/2004}  AND {1/6/2004}  AND " +
                kTrackedNewestFirst);
}

TEST_F(StockRead, ThePinAndTheLot) {
  EXPECT_EQ(QueryOf({.pin = "P1", .lot = "L1"}),
            kSelectStock +
                " WHERE ltrim(rtrim(Pin)) = 'P1' AND  "
                "ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = 'L1'  AND " +
                kTrackedNewestFirst);
}

TEST_F(StockRead, TheVaccineAndTheBeginDate) {
  EXPECT_EQ(QueryOf({.vaccine = "MMR", .begin = "1/5/2004"}),
            kSelectStock + " WHERE ltrim(rtrim(Vaccine)) = 'MMR' AND  Datein = {1/5/2004}  AND " +
                kTrackedNewestFirst);
}

TEST_F(StockRead, TheLotAndADateRange) {
  EXPECT_EQ(QueryOf({.lot = "L1", .begin = "1/5/2004", .end = "1/6/2004"}),
            kSelectStock +
                " WHERE  ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = 'L1'  AND  Datein "
                "BETWEEN {1/5/2004}  AND {1/6/2004}  AND " +
                kTrackedNewestFirst);
}

TEST_F(StockRead, ArgumentsOfBlanksFilterNothing) {
  EXPECT_EQ(QueryOf({"  ", " ", "   ", " ", "  "}), kSelectStock + " WHERE " + kTrackedNewestFirst);
}

TEST_F(StockRead, TheArgumentsAreUsedAsGiven) {
  AddVaccine("mmr", false);
  EXPECT_EQ(QueryOf({"p1", "mmr ", "ab-12", " jan 5 2004", "1/6/2004 "}),
            kSelectStock +
                " WHERE ltrim(rtrim(Vaccine)) = 'mmr ' AND ltrim(rtrim(Pin)) = 'p1' AND  "
                "ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = 'ab12'  AND  Datein BETWEEN { "
                "jan 5 2004}  AND {1/6/2004 }  AND " +
                kTrackedNewestFirst);
}

TEST_F(StockRead, APinInLowerCasePassesItsCheckButFindsNoStockOfThePinInUpperCase) {
  AddStock("P1", "2004-01-05", "A1", "HEPA");
  AddStock("p1", "2004-01-05", "a1", "HEPA");
  EXPECT_EQ(Lots(Read({.pin = "p1"})), Lines{"a1"});
}

TEST_F(StockRead, DashesOfALotDoNotCountOnEitherSide) {
  AddStock("P1", "2004-01-03", "AB12", "HEPA");
  AddStock("P1", "2004-01-02", "A-B12", "HEPA");
  AddStock("P1", "2004-01-01", "-AB-1-2-", "HEPA");
  AddStock("P1", "2004-01-04", "AB 12", "HEPA");
  AddStock("P1", "2004-01-04", "ab12", "HEPA");
  EXPECT_EQ(Lots(Read({.lot = "AB-12"})), (Lines{"AB12", "A-B12", "-AB-1-2-"}));
}

TEST_F(StockRead, OnlyDashesAreRemovedFromALot) {
  AddStock("P1", "2004-01-04", "A B/12", "HEPA");
  EXPECT_EQ(Lots(Read({.lot = "A B/1-2"})), Lines{"A B/12"});
  EXPECT_EQ(Statements().back(), kSelectStock +
                                     " WHERE  ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = "
                                     "'A B/12'  AND " +
                                     kTrackedNewestFirst);
}

TEST_F(StockRead, ALotOfDashesIsNotBlank) {
  AddStock("P1", "2004-01-04", "--", "HEPA");
  AddStock("P1", "2004-01-04", "A1", "HEPA");
  EXPECT_EQ(Lots(Read({.lot = "-"})), Lines{"--"});
  EXPECT_EQ(Statements().back(),
            kSelectStock + " WHERE  ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = ''  AND " +
                kTrackedNewestFirst);
}

TEST_F(StockRead, ALotThatIsNotTrimmedFindsNothingBehindALeadingBlank) {
  AddStock("P1", "2004-01-04", "A1", "HEPA");
  EXPECT_EQ(Lots(Read({.lot = " A1"})), Lines{});
  EXPECT_EQ(Lots(Read({.lot = "A1 "})), Lines{"A1"});
}

TEST_F(StockRead, StoredPinsAndVaccinesAreComparedTrimmed) {
  AddStock(" P1 ", "2004-01-04", "A1", " HEPA ");
  EXPECT_EQ(Lots(Read({.pin = "P1", .vaccine = "HEPA"})), Lines{"A1"});
}

TEST_F(StockRead, OnlyShipmentsWithTrackingAndLotAreRead) {
  AddStock("P1", "2004-01-05", "A1", "HEPA");
  AddStock("P1", "2004-01-05", "A2", "HEPA", "");
  AddStock("P1", "2004-01-05", "A3", "HEPA", "   ");
  AddStock("P1", "2004-01-05", "", "HEPA");
  AddStock("P1", "2004-01-05", "  ", "HEPA");
  Execute("INSERT INTO stock (pin, datein, lot, vaccine) VALUES ('P1', '2004-01-05', 'A4', 'X')");
  Execute("INSERT INTO stock (pin, datein, tracking) VALUES ('P1', '2004-01-05', 'T1')");
  EXPECT_EQ(Lots(lotrix().stockTableRead()), Lines{"A1"});
}

TEST_F(StockRead, TheTableHasTheNewestShipmentFirst) {
  AddStock("P1", "2004-01-05", "A1", "HEPA");
  AddStock("P2", "2004-12-31", "A2", "HEPA");
  AddStock("P1", "2003-12-31", "A3", "MMR");
  EXPECT_EQ(Lots(lotrix().stockTableRead()), (Lines{"A2", "A1", "A3"}));
}

TEST_F(StockRead, TheTablesColumnsAndCells) {
  AddStock(" P1 ", "2004-01-05", " A-1 ", "HEPA");
  Execute(
      "INSERT INTO stock (pin, datein, doses, lot, vaccine, maker, expiry, tracking) VALUES "
      "('', '2003-11-30', NULL, 'B1', NULL, '  ', NULL, 'T')");
  const cResultSet table = lotrix().stockTableRead();
  EXPECT_EQ(HeaderNames(table),
            (Row{"pin", "datein", "doses", "lot", "vaccine", "maker", "expiry"}));
  EXPECT_EQ(table.Rows(), 2);
  EXPECT_EQ(table.Cols(), 7);
  EXPECT_EQ(Cells(table), (Rows{{"P1", "01/05/2004", "10", "A-1", "HEPA", "MERCK", "03/07/2005"},
                                {" ", "11/30/2003", "<null>", "B1", "<null>", " ", "<null>"}}));
}

TEST_F(StockRead, NoShipmentGivesATableOfHeaders) {
  const cResultSet table = lotrix().stockTableRead();
  EXPECT_EQ(HeaderNames(table),
            (Row{"pin", "datein", "doses", "lot", "vaccine", "maker", "expiry"}));
  EXPECT_EQ(table.Rows(), 0);
  EXPECT_EQ(table.Cols(), 7);
  ASSERT_NE(table.Data(), nullptr);
  EXPECT_EQ(table.Data()->Count(), 0);
}

TEST_F(StockRead, ARangeHoldsItsFirstAndItsLastDay) {
  for (const char* const day : {"04", "05", "06", "07", "08"}) {
    AddStock("P1", "2004-01-" + std::string(day), std::string("L") + day, "HEPA");
  }
  EXPECT_EQ(Lots(Read({.begin = "1/5/2004", .end = "1/7/2004"})), (Lines{"L07", "L06", "L05"}));
}

TEST_F(StockRead, AnEndDateEqualToTheBeginDateIsARangeOfOneDay) {
  AddStock("P1", "2004-01-05", "A1", "HEPA");
  AddStock("P1", "2004-01-06", "A2", "HEPA");
  EXPECT_EQ(Lots(Read({.begin = "1/5/2004", .end = "Jan 5, 2004"})), Lines{"A1"});
  EXPECT_EQ(Statements(),
            (Lines{kSelectStock + " WHERE  Datein BETWEEN {1/5/2004}  AND {Jan 5, 2004}  AND " +
                   kTrackedNewestFirst}));
}

TEST_F(StockRead, DatesAreComparedAsDatesNotAsTexts) {
  AddStock("P1", "2004-09-05", "A1", "HEPA");
  EXPECT_EQ(Lots(Read({.begin = "9/1/2004", .end = "10/1/2004"})), Lines{"A1"});
}

// --- stockTableRead: the checks, each with every later one failing too -------

TEST_F(StockRead, FirstThePin) {
  ExpectStockRefused({"TOOLONG", "NONE", "", "x", "y"}, 20078, kTooLong,
                     RefusedBy("ValidateProviderPIN", kTooLong), {});
  for (const char* const pin : {"P-1", " P1", "P'1"}) {
    SCOPED_TRACE(pin);
    ExpectStockRefused({pin, "NONE", "", "x", "y"}, 20079, kNotAlphanumeric,
                       RefusedBy("ValidateProviderPIN", kNotAlphanumeric), {});
  }
}

// Whether the provider is known is not this read's concern: the answer is not
// looked at.
TEST_F(StockRead, AnUnknownPinFindsWhatThereIs) {
  AddStock("P9", "2004-01-05", "A1", "HEPA");
  EXPECT_EQ(Lots(Read({.pin = "P9"})), Lines{"A1"});
  EXPECT_EQ(Statements(),
            (Lines{ProviderCount("P9"),
                   kSelectStock + " WHERE ltrim(rtrim(Pin)) = 'P9' AND " + kTrackedNewestFirst}));
  EXPECT_EQ(Trace(), Joined({{BeginOf("stockTableRead")},
                             ConnectionRead(),
                             Passed("ValidateProviderPIN"),
                             ConnectionRead(),
                             {EndOf("stockTableRead")}}));
}

TEST_F(StockRead, APinOfTwoProviders) {
  AddProvider(" P1", 11, "'N'");
  ExpectStockRefused({"P1", "NONE", "", "x", "y"}, 20003, "Provider PIN entered has a duplicate",
                     RefusedBy("ValidateProviderPIN", "Provider PIN entered has a duplicate"),
                     {ProviderCount("P1")});
}

TEST_F(StockRead, AnInactiveProvider) {
  AddProvider("P3", 11, "'N'");
  ExpectStockRefused({"p3", "NONE", "", "x", "y"}, 20083, kInactiveProvider,
                     InactiveProviderRefused(kInactiveProvider),
                     {ProviderCount("P3"), ProviderActive("P3")});
}

TEST_F(StockRead, AProviderCountThatIsNone) {
  const std::string message = "Error while verifying provider PIN in LOTRIX";
  AnswerTo(ProviderCount("P1"), {std::int64_t{-1}});
  ExpectStockRefused({"P1", "NONE", "", "x", "y"}, 20005, message,
                     RefusedBy("ValidateProviderPIN", message), {ProviderCount("P1")});
}

TEST_F(StockRead, ThenTheVaccine) {
  for (const char* const vaccine : {"NONE", " HEPA", "hepa"}) {
    SCOPED_TRACE(vaccine);
    ExpectStockRefused({"P1", vaccine, "", "x", "y"}, 20051, kNotAvailable,
                       Joined({ActiveProviderPassed(), VaccineReferenceRefused(kNotAvailable)}),
                       {ProviderCount("P1"), ProviderActive("P1"), VaccineCount(vaccine)});
  }
}

TEST_F(StockRead, AnInactiveVaccine) {
  AddVaccine("OLD", true);
  ExpectStockRefused({"", "OLD", "", "x", "y"}, 20086, kInactiveVaccine,
                     InactiveVaccineRefused(kInactiveVaccine),
                     {VaccineCount("OLD"), VaccineActiveCount("OLD")});
}

TEST_F(StockRead, AVaccineCountBelowNone) {
  const std::string message = "Error while verifying vaccine reference table in LOTRIX";
  AnswerTo(VaccineCount("HEPA"), {std::int64_t{-1}});
  ExpectStockRefused({"", "HEPA", "", "x", "y"}, 20016, message, VaccineReferenceRefused(message),
                     {VaccineCount("HEPA")});
}

TEST_F(StockRead, ThenTheBeginDate) {
  for (const char* const date : {"x", "2/30/2004", "13/5/2004", "1/5/2004}", "1/5'/2004", "5"}) {
    SCOPED_TRACE(date);
    ExpectStockRefused({"P1", "HEPA", "", date, "y"}, 20062, kBeginNoDate,
                       Joined({ActiveProviderPassed(), ActiveVaccinePassed()}),
                       {ProviderCount("P1"), ProviderActive("P1"), VaccineCount("HEPA"),
                        VaccineActiveCount("HEPA")});
  }
}

TEST_F(StockRead, AnEndDateWithoutABeginDate) {
  for (const char* const date : {"1/5/2004", "y"}) {
    SCOPED_TRACE(date);
    ExpectStockRefused({.begin = " ", .end = date}, 20069, kRange, {}, {});
  }
}

TEST_F(StockRead, ThenTheEndDate) {
  for (const char* const date : {"y", "2/30/2004", "13/5/2004", "1/5/2004}", "1/5'/2004"}) {
    SCOPED_TRACE(date);
    ExpectStockRefused({.begin = "1/5/2004", .end = date}, 20063, kEndNoDate, {}, {});
  }
}

TEST_F(StockRead, ThenTheOrderOfTheDates) {
  ExpectStockRefused({.begin = "1/5/2004", .end = "1/4/2004"}, 20069, kRange, {}, {});
  ExpectStockRefused({.begin = "10/1/2004", .end = "9/1/2004"}, 20069, kRange, {}, {});
}

// --- stockTableRead: values that would leave their place, and long ones -------

TEST_F(StockRead, AnApostropheInTheVaccineIsRefusedAsSyntax) {
  for (const char* const vaccine : {"HEP'A", "HEPA' OR '1'='1", "'; DROP TABLE stock; --"}) {
    SCOPED_TRACE(vaccine);
    ExpectStockFailed({.vaccine = vaccine}, Numbered(EngineError::kStatementRefused),
                      VaccineReferenceRefused);
  }
}

TEST_F(StockRead, AnApostropheInTheLotIsRefusedAsSyntax) {
  AddStock("P1", "2004-01-05", "A1", "HEPA");
  for (const char* const lot : {"A'1", "A1'", "' OR '1'='1", "A1' --", "'; DROP TABLE stock; --"}) {
    SCOPED_TRACE(lot);
    ExpectStockFailed({.lot = lot}, Numbered(EngineError::kStatementRefused),
                      [](const std::string&) { return ConnectionRead(); });
  }
  EXPECT_EQ(Lots(lotrix().stockTableRead()), Lines{"A1"});
}

TEST_F(StockRead, AZeroCharacterIsRefusedAsSyntax) {
  using std::string_literals::operator""s;
  ExpectStockRefused({.pin = "P1\0"s}, 20079, kNotAlphanumeric,
                     RefusedBy("ValidateProviderPIN", kNotAlphanumeric), {});
  ExpectStockFailed({.vaccine = "HEPA\0"s}, Numbered(EngineError::kStatementRefused),
                    VaccineReferenceRefused);
  const auto atTheQuery = [](const std::string&) { return ConnectionRead(); };
  ExpectStockFailed({.lot = "A1\0"s}, Numbered(EngineError::kStatementRefused), atTheQuery);
  // The date test reads up to the zero character.
  ExpectStockFailed({.begin = "1/5/2004\0} OR 1 = 1"s}, Numbered(EngineError::kStatementRefused),
                    atTheQuery);
  ExpectStockFailed({.begin = "1/5/2004", .end = "1/5/2004\0"s},
                    Numbered(EngineError::kStatementRefused), atTheQuery);
}

TEST_F(StockRead, AVeryLongArgumentOverflowsWhereItIsTestedForBlank) {
  const std::string longText(kMebibyte, '1');
  const auto atOnce = [](const std::string&) { return Lines{}; };
  ExpectStockFailed({longText, "NONE", "", "x", "y"}, 6, atOnce);
  ExpectStockFailed({.vaccine = longText, .begin = "x"}, 6, atOnce);
  ExpectStockFailed({.begin = longText, .end = "y"}, 6, atOnce);
  ExpectStockFailed({.begin = "1/5/2004", .end = longText}, 6, atOnce);
  ExpectStockFailed({.lot = longText}, 6, atOnce);
}

TEST_F(StockRead, TextThatOnlyLooksLikeSqlStaysAValue) {
  const std::string odd = "A\"B;%_\\{}]/*";
  AddVaccine(odd, false);
  AddStock("P1", "2004-01-05", odd, odd);
  AddStock("P1", "2004-01-05", "A1", "HEPA");
  EXPECT_EQ(Lots(Read({.vaccine = odd, .lot = odd})), Lines{odd});
}

TEST_F(StockRead, AnEngineErrorIsAProblemOfTheRead) {
  Execute("DROP TABLE stock");
  ExpectStockFailed({}, Numbered(EngineError::kNoSuchTable),
                    [](const std::string&) { return ConnectionRead(); });
}

TEST_F(StockRead, AReadReopensAClosedConnection) {
  AddStock("P1", "2004-01-05", "A1", "HEPA");
  lotrix().closeConnection();
  ForgetTrace();
  EXPECT_EQ(Lots(lotrix().stockTableRead()), Lines{"A1"});
  EXPECT_EQ(Trace(),
            Joined({{BeginOf("stockTableRead")}, ConnectionRead(), {EndOf("stockTableRead")}}));
}

// --- manufacturerProviderOrderRead -------------------------------------------

class OrderRead : public Reads {
 protected:
  // Its own lines around those of the read inside.
  static Lines Around(const Lines& inside) {
    return Joined({{BeginOf("manufacturerProviderOrderRead"), BeginOf("stockTableRead")},
                   inside,
                   {EndOf("stockTableRead"), EndOf("manufacturerProviderOrderRead")}});
  }
  static Lines AroundProblem(const Lines& inside, const std::string& description) {
    return Joined({{BeginOf("manufacturerProviderOrderRead"), BeginOf("stockTableRead")},
                   inside,
                   {ProblemOf("stockTableRead", description),
                    ProblemOf("manufacturerProviderOrderRead", description)}});
  }
};

TEST_F(OrderRead, ABlankPinIsRefusedBeforeTheDate) {
  for (const char* const pin : {"", "   "}) {
    SCOPED_TRACE(pin);
    ExpectRefused([&] { lotrix().manufacturerProviderOrderRead(pin, " ", "NONE", "", "y"); },
                  Coded(2000), "A null provider PIN was entered",
                  {"information Begin: manufacturerProviderOrderRead()",
                   "error Problem: In manufacturerProviderOrderRead() A null provider PIN was "
                   "entered"},
                  {});
  }
}

TEST_F(OrderRead, ABlankShipmentDateIsRefusedBeforeTheRest) {
  for (const char* const date : {"", "   "}) {
    SCOPED_TRACE(date);
    ExpectRefused([&] { lotrix().manufacturerProviderOrderRead("TOOLONG", date, "NONE", "", "y"); },
                  Coded(20021), "A Null Shipment Date is entered",
                  {"information Begin: manufacturerProviderOrderRead()",
                   "error Problem: In manufacturerProviderOrderRead() A Null Shipment Date is "
                   "entered"},
                  {});
  }
}

TEST_F(OrderRead, PinAndDateAloneReadOneDayOfOneProvider) {
  AddStock("P1", "2004-01-05", "A1", "HEPA");
  AddStock("P1", "2004-01-06", "A2", "HEPA");
  AddStock("P2", "2004-01-05", "A3", "HEPA");
  EXPECT_EQ(Lots(lotrix().manufacturerProviderOrderRead("p1", "1/5/2004")), Lines{"A1"});
  EXPECT_EQ(Statements(),
            (Lines{ProviderCount("P1"), ProviderActive("P1"),
                   kSelectStock + " WHERE ltrim(rtrim(Pin)) = 'P1' AND  Datein = {1/5/2004}  AND " +
                       kTrackedNewestFirst}));
  EXPECT_EQ(Trace(), Around(Joined({ActiveProviderPassed(), ConnectionRead()})));
}

TEST_F(OrderRead, EveryArgumentCountsInUpperCase) {
  AddStock("P1", "2004-01-05", "AB12", "HEPA");
  const cResultSet table =
      lotrix().manufacturerProviderOrderRead("p1", "jan 1 2004", "hepa", "ab-12", "jan 31 2004");
  EXPECT_EQ(Cells(table),
            (Rows{{"P1", "01/05/2004", "10", "AB12", "HEPA", "MERCK", "03/07/2005"}}));
  EXPECT_EQ(HeaderNames(table),
            (Row{"pin", "datein", "doses", "lot", "vaccine", "maker", "expiry"}));
  EXPECT_EQ(Statements(),
            (Lines{ProviderCount("P1"), ProviderActive("P1"), VaccineCount("HEPA"),
                   VaccineActiveCount("HEPA"),
                   "SELECT Pin, Datein, Doses, Lot, Vaccine, Maker, Expiry FROM Stock WHERE "
                   "ltrim(rtrim(Vaccine)) = 'HEPA' AND ltrim(rtrim(Pin)) = 'P1' AND  "
                   "ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = 'AB12'  AND  Datein BETWEEN "
                   "{JAN 1 2004}  AND {JAN 31 2004}  AND  tracking != ' '  and lot != ' '  order "
                   "by datein desc "}));
  EXPECT_EQ(Trace(),
            Around(Joined({ActiveProviderPassed(), ActiveVaccinePassed(), ConnectionRead()})));
}

TEST_F(OrderRead, LettersBeyondAsciiAreUpperCased) {
  AddVaccine("GRIPPE É", false);
  AddStock("P1", "2004-01-05", "LÖTß", "GRIPPE É");
  EXPECT_EQ(Lots(lotrix().manufacturerProviderOrderRead("P1", "1/5/2004", "grippe é", "lö-tß")),
            Lines{"LÖTß"});
}

TEST_F(OrderRead, AFailureInsideIsAProblemOfBoth) {
  ExpectRefused([&] { lotrix().manufacturerProviderOrderRead("TOOLONG", "x", "NONE", "", "y"); },
                Coded(20078), kTooLong,
                AroundProblem(RefusedBy("ValidateProviderPIN", kTooLong), kTooLong), {});
  ExpectRefused(
      [&] { lotrix().manufacturerProviderOrderRead("P1", "x", "none", "", "y"); }, Coded(20051),
      kNotAvailable,
      AroundProblem(Joined({ActiveProviderPassed(), VaccineReferenceRefused(kNotAvailable)}),
                    kNotAvailable),
      {ProviderCount("P1"), ProviderActive("P1"), VaccineCount("NONE")});
  ExpectRefused([&] { lotrix().manufacturerProviderOrderRead("P1", "x", "", "", "y"); },
                Coded(20062), kBeginNoDate, AroundProblem(ActiveProviderPassed(), kBeginNoDate),
                {ProviderCount("P1"), ProviderActive("P1")});
  ExpectRefused([&] { lotrix().manufacturerProviderOrderRead("P1", "1/5/2004", "", "", "y"); },
                Coded(20063), kEndNoDate, AroundProblem(ActiveProviderPassed(), kEndNoDate),
                {ProviderCount("P1"), ProviderActive("P1")});
  ExpectRefused(
      [&] { lotrix().manufacturerProviderOrderRead("P1", "1/5/2004", "", "", "1/4/2004"); },
      Coded(20069), kRange, AroundProblem(ActiveProviderPassed(), kRange),
      {ProviderCount("P1"), ProviderActive("P1")});
}

TEST_F(OrderRead, AnApostropheInTheLotIsRefusedAsSyntax) {
  ExpectFailed(
      [&] { lotrix().manufacturerProviderOrderRead("P1", "1/5/2004", "", "A'1"); },
      Numbered(EngineError::kStatementRefused),
      [](const std::string& description) {
        return AroundProblem(Joined({ActiveProviderPassed(), ConnectionRead()}), description);
      });
}

TEST_F(OrderRead, AVeryLongPinOrDateOverflowsBeforeAnythingInside) {
  const std::string longText(kMebibyte, '1');
  const auto lines = [](const std::string& description) {
    return Lines{BeginOf("manufacturerProviderOrderRead"),
                 ProblemOf("manufacturerProviderOrderRead", description)};
  };
  ExpectFailed([&] { lotrix().manufacturerProviderOrderRead(longText, ""); }, 6, lines);
  ExpectFailed([&] { lotrix().manufacturerProviderOrderRead("TOOLONG", longText); }, 6, lines);
}

// --- vaccineReferenceTableRead -----------------------------------------------

TEST_F(Reads, EveryVaccineOfTheContractTableIsReadOnce) {
  AddVaccine("HEPA", true);
  AddVaccine("MMR  ", false);
  AddVaccine("OLD", true);
  const cResultSet table = lotrix().vaccineReferenceTableRead();
  Rows cells = Cells(table);
  std::sort(cells.begin(), cells.end());
  EXPECT_EQ(cells, (Rows{{"HEPA"}, {"MMR"}, {"OLD"}}));
  EXPECT_EQ(HeaderNames(table), Row{"vaccine"});
  EXPECT_EQ(table.Rows(), 3);
  EXPECT_EQ(table.Cols(), 1);
  EXPECT_EQ(Statements(), Lines{"Select Distinct Vaccine From pVaccref"});
  EXPECT_EQ(Trace(),
            (Lines{"information Begin: vaccineReferenceTableRead()",
                   "information Begin: Get Connection()", "information End: GetConnection()",
                   "information End: vaccineReferenceTableRead()"}));
}

TEST_F(Reads, NoVaccineGivesATableOfOneHeader) {
  Execute("DELETE FROM pvaccref");
  const cResultSet table = lotrix().vaccineReferenceTableRead();
  EXPECT_EQ(HeaderNames(table), Row{"vaccine"});
  EXPECT_EQ(table.Rows(), 0);
  EXPECT_EQ(table.Cols(), 1);
}

TEST_F(Reads, AFailedVaccineReadHasNoEndLine) {
  Execute("DROP TABLE pvaccref");
  ExpectFailed([&] { lotrix().vaccineReferenceTableRead(); }, Numbered(EngineError::kNoSuchTable),
               [](const std::string& description) {
                 return Joined({{BeginOf("vaccineReferenceTableRead")},
                                ConnectionRead(),
                                {ProblemOf("vaccineReferenceTableRead", description)}});
               });
}

// --- inventoryOnHandRead -----------------------------------------------------

class OnHandRead : public Reads {
 protected:
  void SetUp() override {
    Reads::SetUp();
    // Marked true in the contract table, which is what the query asks for; the
    // row marked false is what the check of a vaccine asks for.
    AddVaccine("HEPA", true);
    ForgetTrace();
  }

  static std::string BeginLine() { return "information Begin: inventoryOnHandRead()"; }
  static std::string EndLine() { return "information End: inventoryOnHandRead()"; }
  static Lines DepotPassed() { return Asked("ValidateDepotPIN"); }

  static Lines OnHandLots(const cResultSet& table) {
    Lines lots;
    for (const Row& row : Cells(table)) lots.push_back(row[1]);
    return lots;
  }
  void ExpectOnHandRefused(const std::string& pin, const std::string& vaccine, std::int32_t code,
                           const std::string& message, const Lines& lines,
                           const Lines& statements) {
    ExpectRefused([&] { lotrix().inventoryOnHandRead(pin, vaccine); }, Coded(code), message,
                  Joined({{BeginLine()}, lines, {ProblemOf("inventoryOnHandRead", message)}}),
                  statements);
  }
  void ExpectOnHandFailed(const std::string& pin, const std::string& vaccine, std::int32_t number,
                          const std::function<Lines(const std::string&)>& lines) {
    ExpectFailed(
        [&] { lotrix().inventoryOnHandRead(pin, vaccine); }, number,
        [&](const std::string& description) {
          return Joined(
              {{BeginLine()}, lines(description), {ProblemOf("inventoryOnHandRead", description)}});
        });
  }
};

TEST_F(OnHandRead, ABlankDepotPinIsRefusedWithThePlainNumber) {
  for (const char* const pin : {"", "   "}) {
    SCOPED_TRACE(pin);
    ExpectRefused([&] { lotrix().inventoryOnHandRead(pin, "NONE"); }, 20022,
                  "A NULL depot pin is entered",
                  {"information Begin: inventoryOnHandRead()",
                   "error Problem: In inventoryOnHandRead() A NULL depot pin is entered"},
                  {});
  }
}

TEST_F(OnHandRead, WithoutAVaccineTheFilterBeginsWithThePin) {
  const std::string query =
      "Select l.Vaccine, l.Lot, l.Expiry, l.Maker, l.Remain, l.Size From Lots l, pvaccref v WHERE "
      "ltrim(rtrim(l.Pin)) = 'D01' AND l.Expiry >=  {11/20/2026}  AND l.Size > 0  AND l.Remain >= "
      "0  AND trim(l.Maker) is not NULL AND trim(l.vaccine) == trim(v.vaccine) AND v.locactiv = "
      ".T. ORDER BY l.Vaccine, l.Lot, l.Expiry";
  AddLot("A1", "'HEPA', 'D01', '2027-01-01', 'MERCK', 5, 10");
  EXPECT_EQ(OnHandLots(lotrix().inventoryOnHandRead("d01")), Lines{"A1"});
  EXPECT_EQ(Statements(), (Lines{DepotCount("D01"), query}));
  EXPECT_EQ(Trace(),
            (Lines{"information Begin: inventoryOnHandRead()",
                   "information Begin: Get Connection()", "information End: GetConnection()",
                   "information Begin: ValidateDepotPIN()", "information End: ValidateDepotPIN()",
                   "information " + query, "information Begin: Get Connection()",
                   "information End: GetConnection()", "information End: inventoryOnHandRead()"}));
}

TEST_F(OnHandRead, WithAVaccine) {
  const std::string query =
      "Select l.Vaccine, l.Lot, l.Expiry, l.Maker, l.Remain, l.Size From Lots l, pvaccref v WHERE "
      "ltrim(rtrim(l.Vaccine)) = 'HEPA' AND ltrim(rtrim(l.Pin)) = 'D01' AND l.Expiry >=  "
      "{11/20/2026}  AND l.Size > 0  AND l.Remain >= 0  AND trim(l.Maker) is not NULL AND "
      "trim(l.vaccine) == trim(v.vaccine) AND v.locactiv = .T. ORDER BY l.Vaccine, l.Lot, "
      "l.Expiry";
  AddVaccine("MMR", true);
  AddLot("A1", "'HEPA', 'D01', '2027-01-01', 'MERCK', 5, 10");
  AddLot("A2", "'MMR', 'D01', '2027-01-01', 'MERCK', 5, 10");
  EXPECT_EQ(OnHandLots(lotrix().inventoryOnHandRead("d01", "hepa")), Lines{"A1"});
  EXPECT_EQ(Statements(),
            (Lines{DepotCount("D01"), VaccineCount("HEPA"), VaccineActiveCount("HEPA"), query}));
  EXPECT_EQ(Trace(), Joined({{BeginLine()},
                             DepotPassed(),
                             ActiveVaccinePassed(),
                             {"information " + query},
                             ConnectionRead(),
                             {EndLine()}}));
}

TEST_F(OnHandRead, AVaccineOfBlanksFiltersNothing) {
  AddLot("A1", "'HEPA', 'D01', '2027-01-01', 'MERCK', 5, 10");
  EXPECT_EQ(OnHandLots(lotrix().inventoryOnHandRead("D01", "  ")), Lines{"A1"});
  EXPECT_EQ(Statements().size(), 2U);
}

TEST_F(OnHandRead, LettersBeyondAsciiAreUpperCased) {
  AddVaccine("GRIPPE É", false);
  AddVaccine("GRIPPE É", true);
  AddLot("A1", "'GRIPPE É', 'D01', '2027-01-01', 'MERCK', 5, 10");
  EXPECT_EQ(OnHandLots(lotrix().inventoryOnHandRead("D01", "grippe é")), Lines{"A1"});
}

TEST_F(OnHandRead, TheTablesColumnsAndCells) {
  AddLot(" A-1 ", "' HEPA ', ' D01 ', '2027-03-07', ' MERCK', 5, 10");
  const cResultSet table = lotrix().inventoryOnHandRead("D01");
  EXPECT_EQ(HeaderNames(table), (Row{"vaccine", "lot", "expiry", "maker", "remain", "size"}));
  EXPECT_EQ(Cells(table), (Rows{{"HEPA", "A-1", "03/07/2027", "MERCK", "5", "10"}}));
  EXPECT_EQ(table.Rows(), 1);
  EXPECT_EQ(table.Cols(), 6);
}

TEST_F(OnHandRead, NoLotGivesATableOfHeaders) {
  const cResultSet table = lotrix().inventoryOnHandRead("D01");
  EXPECT_EQ(HeaderNames(table), (Row{"vaccine", "lot", "expiry", "maker", "remain", "size"}));
  EXPECT_EQ(table.Rows(), 0);
}

TEST_F(OnHandRead, ALotThatExpiresTodayIsIncluded) {
  AddLot("YESTERDAY", "'HEPA', 'D01', '2026-11-19', 'MERCK', 5, 10");
  AddLot("TODAY", "'HEPA', 'D01', '2026-11-20', 'MERCK', 5, 10");
  AddLot("TOMORROW", "'HEPA', 'D01', '2026-11-21', 'MERCK', 5, 10");
  AddLot("UNKNOWN", "'HEPA', 'D01', NULL, 'MERCK', 5, 10");
  EXPECT_EQ(OnHandLots(lotrix().inventoryOnHandRead("D01")), (Lines{"TODAY", "TOMORROW"}));
}

TEST_F(OnHandRead, OnlyLotsWithASizeARemainderAndAMakerAreIncluded) {
  AddLot("NONELEFT", "'HEPA', 'D01', '2027-01-01', 'MERCK', 0, 1");
  AddLot("NEGATIVE", "'HEPA', 'D01', '2027-01-01', 'MERCK', -1, 10");
  AddLot("NOSIZE", "'HEPA', 'D01', '2027-01-01', 'MERCK', 5, 0");
  AddLot("NULLSIZE", "'HEPA', 'D01', '2027-01-01', 'MERCK', 5, NULL");
  AddLot("NULLLEFT", "'HEPA', 'D01', '2027-01-01', 'MERCK', NULL, 10");
  AddLot("NOMAKER", "'HEPA', 'D01', '2027-01-01', NULL, 5, 10");
  AddLot("OTHERPIN", "'HEPA', 'D02', '2027-01-01', 'MERCK', 5, 10");
  EXPECT_EQ(OnHandLots(lotrix().inventoryOnHandRead("D01")), Lines{"NONELEFT"});
}

// A blank maker is a text, not a missing value.
TEST_F(OnHandRead, ALotWithABlankMakerIsIncluded) {
  AddLot("A1", "'HEPA', 'D01', '2027-01-01', '  ', 5, 10");
  EXPECT_EQ(Cells(lotrix().inventoryOnHandRead("D01")),
            (Rows{{"HEPA", "A1", "01/01/2027", " ", "5", "10"}}));
}

TEST_F(OnHandRead, OnlyLotsOfVaccinesMarkedTrueAreIncluded) {
  AddLot("A1", "'HEPA', 'D01', '2027-01-01', 'MERCK', 5, 10");
  AddLot("A2", "'MMR', 'D01', '2027-01-01', 'MERCK', 5, 10");
  AddLot("A3", "'NONE', 'D01', '2027-01-01', 'MERCK', 5, 10");
  AddLot("A4", "'NULLV', 'D01', '2027-01-01', 'MERCK', 5, 10");
  Execute("INSERT INTO pvaccref (vaccine, locactiv) VALUES ('NULLV', NULL)");
  EXPECT_EQ(OnHandLots(lotrix().inventoryOnHandRead("D01")), Lines{"A1"});
}

// The check asks for a row marked false, the query for one marked true.
TEST_F(OnHandRead, AVaccineThatPassesItsCheckMayStillHaveNoLots) {
  AddLot("A2", "'MMR', 'D01', '2027-01-01', 'MERCK', 5, 10");
  EXPECT_EQ(OnHandLots(lotrix().inventoryOnHandRead("D01", "MMR")), Lines{});
}

TEST_F(OnHandRead, ALotOccursOnceForEveryRowOfItsVaccineMarkedTrue) {
  AddVaccine(" HEPA ", true);
  AddLot("A1", "'HEPA', 'D01', '2027-01-01', 'MERCK', 5, 10");
  EXPECT_EQ(OnHandLots(lotrix().inventoryOnHandRead("D01", "HEPA")), (Lines{"A1", "A1"}));
}

TEST_F(OnHandRead, LotsAreOrderedByVaccineLotAndExpiry) {
  AddVaccine("BCG", true);
  AddLot("B2", "'HEPA', 'D01', '2027-01-01', 'MERCK', 5, 10");
  AddLot("B1", "'HEPA', 'D01', '2028-02-02', 'MERCK', 5, 10");
  AddLot("B1", "'HEPA', 'D01', '2027-12-31', 'MERCK', 5, 10");
  AddLot("Z9", "'BCG', 'D01', '2029-01-01', 'MERCK', 5, 10");
  EXPECT_EQ(Cells(lotrix().inventoryOnHandRead("D01")),
            (Rows{{"BCG", "Z9", "01/01/2029", "MERCK", "5", "10"},
                  {"HEPA", "B1", "12/31/2027", "MERCK", "5", "10"},
                  {"HEPA", "B1", "02/02/2028", "MERCK", "5", "10"},
                  {"HEPA", "B2", "01/01/2027", "MERCK", "5", "10"}}));
}

TEST_F(OnHandRead, TheDepotPinIsCheckedBeforeTheVaccine) {
  const std::string unknown = "Error while verifying depot PIN in LOTRIX";
  ExpectOnHandRefused("TOOLONG", "NONE", 20078, kTooLong, RefusedBy("ValidateDepotPIN", kTooLong),
                      {});
  ExpectOnHandRefused("TOO-LON", "NONE", 20078, kTooLong, RefusedBy("ValidateDepotPIN", kTooLong),
                      {});
  ExpectOnHandRefused("D-1", "NONE", 20080, kNotAlphanumeric,
                      RefusedBy("ValidateDepotPIN", kNotAlphanumeric), {});
  ExpectOnHandRefused("D'1", "NONE", 20080, kNotAlphanumeric,
                      RefusedBy("ValidateDepotPIN", kNotAlphanumeric), {});
  ExpectOnHandRefused("d99", "NONE", 20014, unknown, RefusedBy("ValidateDepotPIN", unknown),
                      {DepotCount("D99")});
}

TEST_F(OnHandRead, AProviderOrAnInactiveDepotIsUnknown) {
  const std::string unknown = "Error while verifying depot PIN in LOTRIX";
  AddProvider("D02", 31, "'N'");
  for (const char* const pin : {"P1", "D02"}) {
    SCOPED_TRACE(pin);
    ExpectOnHandRefused(pin, "NONE", 20014, unknown, RefusedBy("ValidateDepotPIN", unknown),
                        {DepotCount(pin)});
  }
}

TEST_F(OnHandRead, ADepotPinHeldTwiceIsRefused) {
  AddProvider(" D01", 31, "'Y'");
  ExpectOnHandRefused("D01", "NONE", 20015, "Provider PIN entered has a duplicate",
                      RefusedBy("ValidateDepotPIN", "Provider PIN entered has a duplicate"),
                      {DepotCount("D01")});
}

TEST_F(OnHandRead, AnUnknownOrInactiveVaccineIsRefused) {
  AddVaccine("OLD", true);
  ExpectOnHandRefused("D01", "none", 20051, kNotAvailable,
                      Joined({DepotPassed(), VaccineReferenceRefused(kNotAvailable)}),
                      {DepotCount("D01"), VaccineCount("NONE")});
  ExpectOnHandRefused("D01", "OLD", 20086, kInactiveVaccine,
                      Joined({DepotPassed(), InactiveVaccineRefused(kInactiveVaccine)}),
                      {DepotCount("D01"), VaccineCount("OLD"), VaccineActiveCount("OLD")});
}

TEST_F(OnHandRead, TheQueryIsLoggedBeforeItRuns) {
  Execute("DROP TABLE lots");
  ExpectOnHandFailed("D01", "", Numbered(EngineError::kNoSuchTable), [](const std::string&) {
    return Joined({DepotPassed(),
                   {"information Select l.Vaccine, l.Lot, l.Expiry, l.Maker, l.Remain, l.Size From "
                    "Lots l, pvaccref v WHERE ltrim(rtrim(l.Pin)) = 'D01' AND l.Expiry >=  "
                    "{11/20/2026}  AND l.Size > 0  AND l.Remain >= 0  AND trim(l.Maker) is not "
                    "NULL AND trim(l.vaccine) == trim(v.vaccine) AND v.locactiv = .T. ORDER BY "
                    "l.Vaccine, l.Lot, l.Expiry"},
                   ConnectionRead()});
  });
}

TEST_F(OnHandRead, AnApostropheOrAZeroCharacterInTheVaccineIsRefusedAsSyntax) {
  using std::string_literals::operator""s;
  for (const std::string& vaccine : {"HEP'A"s, "HEPA' OR '1'='1"s, "HEPA\0"s}) {
    SCOPED_TRACE(vaccine);
    ExpectOnHandFailed("D01", vaccine, Numbered(EngineError::kStatementRefused),
                       [](const std::string& description) {
                         return Joined({DepotPassed(), VaccineReferenceRefused(description)});
                       });
  }
}

TEST_F(OnHandRead, VeryLongArguments) {
  const std::string longText(kMebibyte, '1');
  ExpectOnHandFailed(longText, "", 6, [](const std::string&) { return Lines{}; });
  ExpectOnHandFailed("D01", longText, 6, [](const std::string&) { return DepotPassed(); });
  const std::string longest(32767, '1');
  ExpectOnHandRefused("D01", longest, 20051, kNotAvailable,
                      Joined({DepotPassed(), VaccineReferenceRefused(kNotAvailable)}),
                      {DepotCount("D01"), VaccineCount(longest)});
  ExpectOnHandFailed("D01", longest + "1", 6, [](const std::string&) { return DepotPassed(); });
}

// --- CheckVaccActive ----------------------------------------------------------

class CheckActive : public Reads {
 protected:
  // It writes no lines of its own.
  static Lines Checked() {
    return {"information Begin: Get Connection()", "information End: GetConnection()",
            "information Begin: ValidateVaccineActiveStatus()",
            "information End: ValidateVaccineActiveStatus()"};
  }
  Lines ShownFor(const std::string& vaccine) {
    const std::size_t before = shown().size();
    lotrix().CheckVaccActive(vaccine);
    return {shown().begin() + static_cast<std::ptrdiff_t>(before), shown().end()};
  }
};

TEST_F(CheckActive, AnActiveVaccine) {
  EXPECT_EQ(ShownFor("HEPA"), Lines{"Vaccine is Active"});
  EXPECT_EQ(Trace(), Checked());
  EXPECT_EQ(Statements(), Lines{"SELECT count(*) FROM pvaccref WHERE ltrim(rtrim(vaccine)) == "
                                "'HEPA' AND locactiv = .F."});
}

TEST_F(CheckActive, AnInactiveVaccine) {
  AddVaccine("OLD", true);
  EXPECT_EQ(ShownFor("OLD"), Lines{"Vaccine is inactive"});
  EXPECT_EQ(Trace(), Checked());
  EXPECT_EQ(Statements(), Lines{VaccineActiveCount("OLD")});
}

TEST_F(CheckActive, AVaccineThatIsNotMarkedOrNotThereIsInactive) {
  Execute("INSERT INTO pvaccref (vaccine, locactiv) VALUES ('NULLV', NULL)");
  for (const char* const vaccine : {"NULLV", "NONE", "", "  ", " HEPA", "hepa"}) {
    SCOPED_TRACE(vaccine);
    EXPECT_EQ(ShownFor(vaccine), Lines{"Vaccine is inactive"});
  }
}

TEST_F(CheckActive, OneRowMarkedFalseAmongOthersIsEnough) {
  AddVaccine("HEPA", true);
  AddVaccine("HEPA", false);
  EXPECT_EQ(ShownFor("HEPA"), Lines{"Vaccine is Active"});
}

TEST_F(CheckActive, AVeryLongNameIsInactive) {
  EXPECT_EQ(ShownFor(std::string(kMebibyte, 'v')), Lines{"Vaccine is inactive"});
}

TEST_F(CheckActive, AnErrorComesOutAsTheRoutineInsideRaisedIt) {
  using std::string_literals::operator""s;
  for (const std::string& vaccine : {"HEP'A"s, "HEPA' OR '1'='1"s, "HEPA\0"s}) {
    SCOPED_TRACE(vaccine);
    ExpectFailed([&] { lotrix().CheckVaccActive(vaccine); },
                 Numbered(EngineError::kStatementRefused),
                 [](const std::string& description) {
                   return RefusedBy("ValidateVaccineActiveStatus", description);
                 });
  }
  EXPECT_EQ(shown(), Lines{});
}

TEST_F(CheckActive, AFailureToConnectIsAProblemOfTheConnectionAlone) {
  cLotrix unconnected(MakeHost());
  ForgetTrace();
  const Error error = Refusal([&] { unconnected.CheckVaccActive("HEPA"); });
  ExpectError(error, 3706, "Provider cannot be found. It may not be properly installed.");
  EXPECT_EQ(Trace(), (Lines{"information Begin: Get Connection()",
                            "error Problem: In GetConnection() Provider cannot be found. It may "
                            "not be properly installed."}));
  EXPECT_EQ(shown(), Lines{});
}

}  // namespace
}  // namespace lotrix::test

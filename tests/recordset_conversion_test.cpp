#include "src/resultset/recordset_conversion.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "lotrix/collection.h"
#include "lotrix/connection.h"
#include "lotrix/error.h"
#include "lotrix/recordset.h"
#include "tests/support/fixture.h"

namespace lotrix::test {
namespace {

class RecordsetConversionTest : public DatabaseTest {
 protected:
  void Open(const std::string& query) {
    if (recordset_.State() == ObjectState::kOpen) recordset_.Close();
    recordset_.Open(query, connection(), CursorType::kKeyset, LockType::kReadOnly,
                    CommandType::kText);
  }
  cResultSet Converted(const std::string& query) {
    Open(query);
    return RecordsetToResultSet(recordset());
  }
  // The one cell of a query's one record.
  Value Cell(const std::string& query) {
    const cResultSet table = Converted(query);
    EXPECT_EQ(table.Rows(), 1);
    EXPECT_EQ(table.Cols(), 1);
    return std::get<std::shared_ptr<Collection>>(table.Data()->Item("1"))->Item("1");
  }
  // The cell that a stored lot becomes; `sql` is a literal of the engine.
  Value TextCell(const std::string& sql) {
    Execute("DELETE FROM stock; INSERT INTO stock (lot) VALUES (" + sql + ")");
    return Cell("SELECT lot FROM stock");
  }
  Value NumberCell(const std::string& column, const std::string& sql) {
    Execute("DELETE FROM pvaccref; INSERT INTO pvaccref (" + column + ") VALUES (" + sql + ")");
    return Cell("SELECT " + column + " FROM pvaccref");
  }
  Value DateCell(const std::string& sql) {
    Execute("DELETE FROM stock; INSERT INTO stock (datein) VALUES (" + sql + ")");
    return Cell("SELECT datein FROM stock");
  }
  Recordset& recordset() { return recordset_; }

 private:
  Recordset recordset_;
};

Value V(const std::string& text) { return text; }

TEST_F(RecordsetConversionTest, ADateIsMonthDayYearWithTwoTwoAndFourDigits) {
  EXPECT_EQ(DateCell("'2004-03-07'"), V("03/07/2004"));
  EXPECT_EQ(DateCell("'2004-12-31'"), V("12/31/2004"));
  EXPECT_EQ(DateCell("'1899-12-30'"), V("12/30/1899"));
  EXPECT_EQ(DateCell("'0450-03-07'"), V("03/07/0450"));
  EXPECT_EQ(DateCell("'9999-01-01'"), V("01/01/9999"));
}

TEST_F(RecordsetConversionTest, ANullDateStaysNull) {
  EXPECT_EQ(DateCell("NULL"), Value(Null{}));
  const cResultSet table = Converted("SELECT datein FROM stock");
  EXPECT_EQ(table.GetValue(1, 1), "");
}

TEST_F(RecordsetConversionTest, ANullOfAnyTypeStaysNull) {
  EXPECT_EQ(TextCell("NULL"), Value(Null{}));
  EXPECT_EQ(NumberCell("maxno", "NULL"), Value(Null{}));
  EXPECT_EQ(NumberCell("cost", "NULL"), Value(Null{}));
  EXPECT_EQ(NumberCell("locactiv", "NULL"), Value(Null{}));
  Execute("DELETE FROM stock; INSERT INTO stock (lot) VALUES (NULL)");
  EXPECT_EQ(Converted("SELECT lot FROM stock").GetValue(1, 1), "");
}

TEST_F(RecordsetConversionTest, ATextOfBlanksOrNothingIsOneBlank) {
  EXPECT_EQ(TextCell("''"), V(" "));
  EXPECT_EQ(TextCell("' '"), V(" "));
  EXPECT_EQ(TextCell("'   '"), V(" "));
  EXPECT_EQ(Converted("SELECT lot FROM stock").GetValue(1, 1), " ");
}

TEST_F(RecordsetConversionTest, OtherTextsLoseTheBlanksAroundThem) {
  EXPECT_EQ(TextCell("'AB'"), V("AB"));
  EXPECT_EQ(TextCell("'  AB  '"), V("AB"));
  EXPECT_EQ(TextCell("' A  B '"), V("A  B"));
  EXPECT_EQ(TextCell("'  é😀 '"), V("é😀"));
}

TEST_F(RecordsetConversionTest, OnlyBlanksAreTrimmed) {
  EXPECT_EQ(TextCell("' \t '"), V("\t"));
  EXPECT_EQ(TextCell("'\nAB\r'"), V("\nAB\r"));
  EXPECT_EQ(TextCell("'\xC2\xA0'"), V("\xC2\xA0"));
}

TEST_F(RecordsetConversionTest, ATextThatLooksLikeADateIsNoDate) {
  EXPECT_EQ(TextCell("'2004-03-07'"), V("2004-03-07"));
}

TEST_F(RecordsetConversionTest, WholeNumbersAreTheirText) {
  EXPECT_EQ(NumberCell("maxno", "12"), V("12"));
  EXPECT_EQ(NumberCell("maxno", "0"), V("0"));
  EXPECT_EQ(NumberCell("maxno", "-5"), V("-5"));
  EXPECT_EQ(NumberCell("maxno", "9223372036854775807"), V("9223372036854775807"));
  EXPECT_EQ(NumberCell("maxno", "-9223372036854775807 - 1"), V("-9223372036854775808"));
}

TEST_F(RecordsetConversionTest, DoublesAreTheirTextOfFifteenDigits) {
  EXPECT_EQ(NumberCell("cost", "12.5"), V("12.5"));
  EXPECT_EQ(NumberCell("cost", "12"), V("12"));
  EXPECT_EQ(NumberCell("cost", "0.1 + 0.2"), V("0.3"));
  EXPECT_EQ(NumberCell("cost", "-0.25"), V("-0.25"));
  EXPECT_EQ(NumberCell("cost", "0.00001"), V("0.00001"));
  EXPECT_EQ(NumberCell("cost", "1e15"), V("1E+15"));
  EXPECT_EQ(NumberCell("cost", "123456789012345.0"), V("123456789012345"));
  EXPECT_EQ(NumberCell("cost", "1.0 / 12"), V("8.33333333333333E-02"));
}

TEST_F(RecordsetConversionTest, LogicalsAreTrueAndFalse) {
  EXPECT_EQ(NumberCell("locactiv", "(1 = 1)"), V("True"));
  EXPECT_EQ(NumberCell("locactiv", "(1 = 0)"), V("False"));
}

TEST_F(RecordsetConversionTest, ACountIsItsText) {
  Execute("INSERT INTO stock (lot) VALUES ('a'), ('b')");
  EXPECT_EQ(Cell("SELECT count(*) FROM stock"), V("2"));
}

TEST_F(RecordsetConversionTest, HeadersRowsAndCellsAreKeyedByTheirNumbers) {
  Execute(
      "INSERT INTO stock (pin, lot, doses) VALUES ('P1', 'L1', 1), ('P2', 'L2', 2), ('P3', 'L3', "
      "3)");
  const cResultSet table = Converted("SELECT Pin, LOT, doses FROM Stock ORDER BY Lot DESC");
  EXPECT_EQ(table.Rows(), 3);
  EXPECT_EQ(table.Cols(), 3);
  ASSERT_EQ(table.Headers()->Count(), 3);
  EXPECT_EQ(table.Headers()->Item("1"), V("pin"));
  EXPECT_EQ(table.Headers()->Item("2"), V("lot"));
  EXPECT_EQ(table.Headers()->Item("3"), V("doses"));
  EXPECT_EQ(HeaderNames(table), (Row{"pin", "lot", "doses"}));
  EXPECT_EQ(table.Data()->Count(), 3);
  const std::vector<Row> expected{{"P3", "L3", "3"}, {"P2", "L2", "2"}, {"P1", "L1", "1"}};
  for (std::int32_t row = 1; row <= 3; ++row) {
    const auto byKey =
        std::get<std::shared_ptr<Collection>>(table.Data()->Item(std::to_string(row)));
    EXPECT_EQ(byKey, std::get<std::shared_ptr<Collection>>(table.Data()->Item(row)));
    EXPECT_EQ(byKey->Count(), 3);
    for (std::int32_t column = 1; column <= 3; ++column) {
      const std::string& cell =
          expected[static_cast<std::size_t>(row) - 1][static_cast<std::size_t>(column) - 1];
      EXPECT_EQ(byKey->Item(std::to_string(column)), V(cell));
      EXPECT_EQ(byKey->Item(column), V(cell));
    }
  }
}

TEST_F(RecordsetConversionTest, ATableMayBeChangedAfterwards) {
  Execute("INSERT INTO stock (lot) VALUES ('a'), ('b'), ('c')");
  cResultSet table = Converted("SELECT lot FROM stock ORDER BY lot");
  table.SetValue(1, 1, "x");
  table.DeleteRow(1);
  table.AddRow();
  EXPECT_EQ(Cells(table), (std::vector<Row>{{"c"}, {"x"}, {""}}));
}

TEST_F(RecordsetConversionTest, HeadersOfTheSameNameAreKeptBoth) {
  Execute("INSERT INTO stock (vaccine) VALUES ('A'); INSERT INTO pvaccref (vaccine) VALUES ('B')");
  const cResultSet table = Converted("SELECT l.Vaccine, v.Vaccine FROM stock l, pvaccref v");
  EXPECT_EQ(HeaderNames(table), (Row{"vaccine", "vaccine"}));
  EXPECT_EQ(Cells(table), (std::vector<Row>{{"A", "B"}}));
}

TEST_F(RecordsetConversionTest, WithoutRecordsThereAreHeadersAndAnEmptyList) {
  const cResultSet table = Converted("SELECT pin, lot FROM stock");
  EXPECT_EQ(table.Rows(), 0);
  EXPECT_EQ(table.Cols(), 2);
  EXPECT_EQ(HeaderNames(table), (Row{"pin", "lot"}));
  ASSERT_NE(table.Data(), nullptr);
  EXPECT_EQ(table.Data()->Count(), 0);
  EXPECT_EQ(recordset().State(), ObjectState::kOpen);
}

TEST_F(RecordsetConversionTest, TheWalkStartsWhereTheRecordsetStands) {
  Execute("INSERT INTO stock (lot) VALUES ('a'), ('b'), ('c')");
  Open("SELECT lot FROM stock ORDER BY lot");
  recordset().MoveNext();
  cResultSet table = RecordsetToResultSet(recordset());
  EXPECT_EQ(Cells(table), (std::vector<Row>{{"b"}, {"c"}}));
  EXPECT_EQ(table.Data()->Item("1") == table.Data()->Item(1), true);
  EXPECT_EQ(recordset().RecordCount(), 3);
  table = RecordsetToResultSet(recordset());
  EXPECT_EQ(table.Rows(), 0);
  EXPECT_EQ(HeaderNames(table), Row{"lot"});
}

TEST_F(RecordsetConversionTest, CountingFirstChangesNothing) {
  Execute(
      "INSERT INTO pvaccref (vaccine, \"begin\", cost, locactiv, maker) VALUES "
      "(' A ', '2004-03-07', 12.5, (1 = 1), NULL), ('  ', NULL, NULL, NULL, '')");
  const std::string query = "SELECT vaccine, begin, cost, locactiv, maker FROM pvaccref";
  const std::vector<Row> expected{{"A", "03/07/2004", "12.5", "True", "<null>"},
                                  {" ", "<null>", "<null>", "<null>", " "}};
  EXPECT_EQ(Cells(Converted(query)), expected);
  Open(query);
  EXPECT_EQ(recordset().RecordCount(), 2);
  EXPECT_EQ(Cells(RecordsetToResultSet(recordset())), expected);
}

TEST_F(RecordsetConversionTest, TheRecordsetIsLeftOpenAtItsEnd) {
  Execute("INSERT INTO stock (lot) VALUES ('a')");
  static_cast<void>(Converted("SELECT lot FROM stock"));
  EXPECT_EQ(recordset().State(), ObjectState::kOpen);
  EXPECT_TRUE(recordset().EndOfFile());
}

TEST_F(RecordsetConversionTest, TheTableOutlivesItsRecordset) {
  Execute("INSERT INTO stock (lot) VALUES ('a')");
  const cResultSet table = Converted("SELECT lot FROM stock");
  recordset().Close();
  service().connection.CloseIfOpen();
  EXPECT_EQ(Cells(table), (std::vector<Row>{{"a"}}));
}

TEST_F(RecordsetConversionTest, ManyRecordsAreAllConverted) {
  std::string values = "('0')";
  for (int i = 1; i < 3000; ++i) values += ",('" + std::to_string(i) + "')";
  Execute("INSERT INTO stock (lot) VALUES " + values);
  const cResultSet table = Converted("SELECT lot FROM stock");
  ASSERT_EQ(table.Rows(), 3000);
  EXPECT_EQ(table.GetValue(1, 1), "0");
  EXPECT_EQ(table.GetValue(3000, 1), "2999");
}

TEST_F(RecordsetConversionTest, AnErrorPassesUnchangedAndNothingIsLogged) {
  static_cast<void>(connection());
  Recordset closed;
  const Error error = Refusal([&] { static_cast<void>(RecordsetToResultSet(closed)); });
  EXPECT_EQ(error.number(), 3704);
  EXPECT_EQ(error.source(), "Lotrix");
  EXPECT_EQ(error.description(),
            Refusal([&] { static_cast<void>(closed.EndOfFile()); }).description());
  EXPECT_TRUE(Trace().empty());
}

TEST_F(RecordsetConversionTest, NeitherRoutineLogs) {
  Execute("INSERT INTO stock (lot) VALUES ('a')");
  Open("SELECT lot FROM stock");
  ForgetTrace();
  static_cast<void>(RecordsetToResultSet(recordset()));
  CloseRecordset(recordset());
  EXPECT_TRUE(Trace().empty());
}

// --- CloseRecordset --------------------------------------------------------

TEST_F(RecordsetConversionTest, AnOpenRecordsetIsClosed) {
  Execute("INSERT INTO stock (lot) VALUES ('a'), ('b')");
  Open("SELECT lot FROM stock");
  CloseRecordset(recordset());
  EXPECT_EQ(recordset().State(), ObjectState::kClosed);
  Open("SELECT lot FROM stock");
  EXPECT_EQ(recordset().RecordCount(), 2);
}

TEST_F(RecordsetConversionTest, ARecordsetThatIsNotOpenIsLeftAlone) {
  Recordset neverOpened;
  EXPECT_NO_THROW(CloseRecordset(neverOpened));
  EXPECT_EQ(neverOpened.State(), ObjectState::kClosed);
  Open("SELECT lot FROM stock");
  CloseRecordset(recordset());
  EXPECT_NO_THROW(CloseRecordset(recordset()));
  Recordset ran;
  ran.Open("DELETE FROM stock", connection());
  EXPECT_NO_THROW(CloseRecordset(ran));
}

TEST_F(RecordsetConversionTest, ARecordsetOfAClosedConnectionIsLeftAlone) {
  Open("SELECT lot FROM stock");
  service().connection.CloseIfOpen();
  EXPECT_NO_THROW(CloseRecordset(recordset()));
  EXPECT_EQ(recordset().State(), ObjectState::kClosed);
}

}  // namespace
}  // namespace lotrix::test

#include "lotrix/result_set.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lotrix/collection.h"
#include "lotrix/error.h"
#include "tests/support/fixture.h"

namespace lotrix::test {
namespace {

using Texts = std::vector<std::string>;
using CollectionPtr = std::shared_ptr<Collection>;

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
constexpr auto kInvalidRow = static_cast<std::int32_t>(0x8004C350U);
constexpr auto kInvalidCol = static_cast<std::int32_t>(0x8004C351U);

Value V(const std::string& text) { return text; }

CollectionPtr RowOf(const std::vector<Value>& cells) {
  auto row = std::make_shared<Collection>();
  for (const Value& cell : cells) row->AddNumbered(cell);
  return row;
}

// A table of those rows, as a read would return it.
cResultSet Table(const std::vector<std::vector<Value>>& rows) {
  auto data = std::make_shared<Collection>();
  for (const std::vector<Value>& cells : rows) data->AddNumbered(RowOf(cells));
  cResultSet table;
  table.Data(data);
  table.Rows(static_cast<std::int32_t>(rows.size()));
  table.Cols(rows.empty() ? 0 : static_cast<std::int32_t>(rows[0].size()));
  return table;
}

// Three rows of three cells: a1 a2 a3, b1 b2 b3, c1 c2 c3.
cResultSet ThreeByThree() {
  return Table(
      {{V("a1"), V("a2"), V("a3")}, {V("b1"), V("b2"), V("b3")}, {V("c1"), V("c2"), V("c3")}});
}

CollectionPtr RowAt(const cResultSet& table, std::int32_t position) {
  return std::get<CollectionPtr>(table.Data()->Item(position));
}

CollectionPtr RowOfKey(const cResultSet& table, const std::string& key) {
  return std::get<CollectionPtr>(table.Data()->Item(key));
}

// The cells of one row in the order of their positions; all of them texts.
Texts CellsOf(const Collection& row) {
  Texts cells;
  for (const Value& cell : row) cells.push_back(std::get<std::string>(cell));
  return cells;
}

// The first cell by key "1" of every row, in the order of the rows' positions.
Texts FirstCells(const cResultSet& table) {
  Texts cells;
  for (const Value& row : *table.Data()) {
    cells.push_back(std::get<std::string>(std::get<CollectionPtr>(row)->Item("1")));
  }
  return cells;
}

void ExpectNumber(std::int32_t number, const std::function<void()>& call) {
  const Error error = Refusal(call);
  EXPECT_EQ(error.number(), number) << error.description();
  EXPECT_EQ(error.source(), "Lotrix");
}

void ExpectInvalidRow(const std::function<void()>& call) {
  ExpectError(Refusal(call), kInvalidRow, "Invalid Row Specified", "Lotrix");
}

void ExpectInvalidCol(const std::function<void()>& call) {
  ExpectError(Refusal(call), kInvalidCol, "Invalid Col Specified", "Lotrix");
}

// --- The state of a new table, and its properties --------------------------

TEST(ResultSet, ANewTableIsNothing) {
  const cResultSet table;
  EXPECT_EQ(table.Rows(), 0);
  EXPECT_EQ(table.Cols(), 0);
  EXPECT_EQ(table.Data(), nullptr);
  EXPECT_EQ(table.Headers(), nullptr);
}

TEST(ResultSet, PropertiesAreStoredAsTheyAre) {
  cResultSet table;
  for (const std::int32_t value : {5, 0, -7, kMost, kLeast}) {
    table.Cols(value);
    table.Rows(value);
    EXPECT_EQ(table.Cols(), value);
    EXPECT_EQ(table.Rows(), value);
  }
  const auto data = std::make_shared<Collection>();
  const auto headers = std::make_shared<Collection>();
  table.Data(data);
  table.Headers(headers);
  EXPECT_EQ(table.Data(), data);
  EXPECT_EQ(table.Headers(), headers);
  EXPECT_EQ(table.Rows(), kLeast);
  table.Data(nullptr);
  table.Headers(nullptr);
  EXPECT_EQ(table.Data(), nullptr);
  EXPECT_EQ(table.Headers(), nullptr);
}

TEST(ResultSet, DataAndHeadersAreHandedOutByReference) {
  cResultSet table = ThreeByThree();
  table.Headers(RowOf({V("h1")}));
  const CollectionPtr data = table.Data();
  data->AddNumbered(RowOf({V("d1")}));
  EXPECT_EQ(table.GetValue(4, 1), "d1");
  EXPECT_EQ(table.Rows(), 3);
  table.SetValue(4, 1, "new");
  EXPECT_EQ(std::get<CollectionPtr>(data->Item("4"))->Item("1"), V("new"));
  const CollectionPtr headers = table.Headers();
  headers->AddNumbered(V("h2"));
  EXPECT_EQ(table.Headers()->Count(), 2);
}

TEST(ResultSet, CopiesShareTheirCollections) {
  cResultSet table = ThreeByThree();
  cResultSet copy = table;
  copy.SetValue(1, 1, "x");
  copy.Rows(9);
  EXPECT_EQ(table.GetValue(1, 1), "x");
  EXPECT_EQ(table.Rows(), 3);
}

TEST(ResultSet, CountsAreNotKeptInStepWithTheCells) {
  cResultSet table = ThreeByThree();
  table.Rows(100);
  table.Cols(100);
  ExpectInvalidRow([&] { static_cast<void>(table.GetValue(4, 1)); });
  ExpectInvalidCol([&] { static_cast<void>(table.GetValue(1, 4)); });
  table.Rows(0);
  table.Cols(0);
  EXPECT_EQ(table.GetValue(3, 3), "c3");
}

TEST(ResultSet, ClearGoesBackToTheStateOfANewTable) {
  cResultSet table = ThreeByThree();
  table.Headers(std::make_shared<Collection>());
  const CollectionPtr data = table.Data();
  table.CLEAR();
  EXPECT_EQ(table.Rows(), 0);
  EXPECT_EQ(table.Cols(), 0);
  EXPECT_EQ(table.Data(), nullptr);
  EXPECT_EQ(table.Headers(), nullptr);
  EXPECT_EQ(data->Count(), 3);
  table.CLEAR();
  EXPECT_EQ(table.Rows(), 0);
}

// --- On nothing ------------------------------------------------------------

TEST(ResultSet, WithoutDataTheMembersFailWithObjectNotSet) {
  cResultSet table;
  ExpectNumber(91, [&] { static_cast<void>(table.GetValue(1, 1)); });
  ExpectNumber(91, [&] { table.SetValue(1, 1, "x"); });
  ExpectNumber(91, [&] { static_cast<void>(table.GetValue(0, 0)); });
  EXPECT_EQ(table.Rows(), 0);
}

TEST(ResultSet, WithoutDataTheRowsAreCountedAllTheSame) {
  cResultSet table;
  ExpectNumber(91, [&] { table.AddRow(); });
  EXPECT_EQ(table.Rows(), 1);
  ExpectNumber(91, [&] { table.AddRow(RowOf({})); });
  EXPECT_EQ(table.Rows(), 2);
  ExpectNumber(91, [&] { table.DeleteRow(1); });
  EXPECT_EQ(table.Rows(), 1);
  EXPECT_EQ(table.Data(), nullptr);
}

TEST(ResultSet, AClearedTableHasNoData) {
  cResultSet table = ThreeByThree();
  table.CLEAR();
  ExpectNumber(91, [&] { static_cast<void>(table.GetValue(1, 1)); });
}

// --- GetValue --------------------------------------------------------------

TEST(ResultSet, CellsAreReadByTheirNumbers) {
  const cResultSet table = ThreeByThree();
  EXPECT_EQ(table.GetValue(1, 1), "a1");
  EXPECT_EQ(table.GetValue(2, 3), "b3");
  EXPECT_EQ(table.GetValue(3, 2), "c2");
}

TEST(ResultSet, ARowBeyondTheLastIsInvalid) {
  const cResultSet table = ThreeByThree();
  ExpectInvalidRow([&] { static_cast<void>(table.GetValue(4, 1)); });
  ExpectInvalidRow([&] { static_cast<void>(table.GetValue(kMost, 1)); });
  ExpectInvalidRow([&] { static_cast<void>(table.GetValue(4, 99)); });
}

TEST(ResultSet, AColumnBeyondTheRowIsInvalid) {
  const cResultSet table = ThreeByThree();
  ExpectInvalidCol([&] { static_cast<void>(table.GetValue(1, 4)); });
  ExpectInvalidCol([&] { static_cast<void>(table.GetValue(1, kMost)); });
}

TEST(ResultSet, NumbersBelowOneAreUnknownKeys) {
  const cResultSet table = ThreeByThree();
  for (const std::int32_t number : {0, -1, kLeast}) {
    ExpectNumber(5, [&] { static_cast<void>(table.GetValue(number, 1)); });
    ExpectNumber(5, [&] { static_cast<void>(table.GetValue(1, number)); });
    ExpectNumber(5, [&] { static_cast<void>(table.GetValue(number, 99)); });
  }
}

TEST(ResultSet, ANullCellIsTheEmptyText) {
  const cResultSet table = Table({{Null{}, V(" "), V("")}});
  EXPECT_EQ(table.GetValue(1, 1), "");
  EXPECT_EQ(table.GetValue(1, 2), " ");
  EXPECT_EQ(table.GetValue(1, 3), "");
}

TEST(ResultSet, OtherCellsAreConvertedToText) {
  const cResultSet table =
      Table({{std::int64_t{12}, -0.5, 12.0, 1e15, true, false, Date{2004, 3, 7}}});
  EXPECT_EQ(table.GetValue(1, 1), "12");
  EXPECT_EQ(table.GetValue(1, 2), "-0.5");
  EXPECT_EQ(table.GetValue(1, 3), "12");
  EXPECT_EQ(table.GetValue(1, 4), "1E+15");
  EXPECT_EQ(table.GetValue(1, 5), "True");
  EXPECT_EQ(table.GetValue(1, 6), "False");
  EXPECT_EQ(table.GetValue(1, 7), "3/7/2004");
}

TEST(ResultSet, ARowMissingFromTheMiddleIsAnUnknownKey) {
  cResultSet table = ThreeByThree();
  table.Data()->Remove("2");
  ExpectNumber(5, [&] { static_cast<void>(table.GetValue(2, 1)); });
  EXPECT_EQ(table.GetValue(1, 1), "a1");
  ExpectInvalidRow([&] { static_cast<void>(table.GetValue(3, 1)); });
}

// --- SetValue --------------------------------------------------------------

TEST(ResultSet, AValueIsSetAndItsRowMovesToTheEnd) {
  cResultSet table = ThreeByThree();
  table.SetValue(2, 1, "x");
  EXPECT_EQ(table.GetValue(2, 1), "x");
  EXPECT_EQ(FirstCells(table), (Texts{"a1", "c1", "x"}));
  EXPECT_EQ(table.Rows(), 3);
  EXPECT_EQ(table.Cols(), 3);
  table.DeleteRow(2);
  EXPECT_EQ(FirstCells(table), (Texts{"a1", "x"}));
  EXPECT_EQ(table.GetValue(1, 1), "a1");
  EXPECT_EQ(table.GetValue(2, 1), "x");
  EXPECT_EQ(table.Rows(), 2);
}

TEST(ResultSet, TheCellThatIsSetMovesToTheEndOfItsRow) {
  cResultSet table = ThreeByThree();
  table.SetValue(1, 1, "x");
  const CollectionPtr row = RowOfKey(table, "1");
  EXPECT_EQ(CellsOf(*row), (Texts{"a2", "a3", "x"}));
  EXPECT_EQ(row->Item("1"), V("x"));
  EXPECT_EQ(row->Item("2"), V("a2"));
  EXPECT_EQ(table.GetValue(1, 2), "a2");
}

TEST(ResultSet, TheRowThatMovesIsTheSameObject) {
  cResultSet table = ThreeByThree();
  const CollectionPtr row = RowAt(table, 1);
  table.SetValue(1, 2, "x");
  EXPECT_EQ(RowAt(table, 3), row);
  EXPECT_EQ(RowOfKey(table, "1"), row);
}

TEST(ResultSet, AColumnBeyondTheRowIsAddedUnderItsNumber) {
  cResultSet table = ThreeByThree();
  table.SetValue(1, 5, "x");
  const CollectionPtr row = RowOfKey(table, "1");
  EXPECT_EQ(row->Count(), 4);
  EXPECT_EQ(row->Item("5"), V("x"));
  ExpectInvalidCol([&] { static_cast<void>(table.GetValue(1, 5)); });
  ExpectNumber(5, [&] { static_cast<void>(table.GetValue(1, 4)); });
  EXPECT_EQ(table.Cols(), 3);
}

TEST(ResultSet, TheNextColumnIsAddedAndReadBack) {
  cResultSet table = ThreeByThree();
  table.SetValue(1, 4, "x");
  EXPECT_EQ(table.GetValue(1, 4), "x");
  EXPECT_EQ(table.Cols(), 3);
}

TEST(ResultSet, SettingInARowBeyondTheLastIsInvalid) {
  cResultSet table = ThreeByThree();
  ExpectInvalidRow([&] { table.SetValue(4, 1, "x"); });
  ExpectInvalidRow([&] { table.SetValue(kMost, 1, "x"); });
  EXPECT_EQ(FirstCells(table), (Texts{"a1", "b1", "c1"}));
}

TEST(ResultSet, SettingBelowOneIsAnUnknownKeyAndChangesNothing) {
  cResultSet table = ThreeByThree();
  for (const std::int32_t number : {0, -1, kLeast}) {
    ExpectNumber(5, [&] { table.SetValue(number, 1, "x"); });
    ExpectNumber(5, [&] { table.SetValue(1, number, "x"); });
  }
  EXPECT_EQ(FirstCells(table), (Texts{"a1", "b1", "c1"}));
  EXPECT_EQ(CellsOf(*RowAt(table, 1)), (Texts{"a1", "a2", "a3"}));
}

TEST(ResultSet, SettingAMissingCellIsAnUnknownKeyAndChangesNothing) {
  cResultSet table = ThreeByThree();
  table.SetValue(1, 5, "x");
  ExpectNumber(5, [&] { table.SetValue(1, 4, "y"); });
  EXPECT_EQ(CellsOf(*RowOfKey(table, "1")), (Texts{"a1", "a2", "a3", "x"}));
}

TEST(ResultSet, SettingACellBeyondTheCountThatIsThereAlreadyIs457) {
  cResultSet table = ThreeByThree();
  table.SetValue(1, 5, "x");
  ExpectNumber(457, [&] { table.SetValue(1, 5, "y"); });
  EXPECT_EQ(RowOfKey(table, "1")->Item("5"), V("x"));
}

TEST(ResultSet, ANullCellMayBeSet) {
  cResultSet table = Table({{Null{}, V("b")}});
  table.SetValue(1, 1, "x");
  EXPECT_EQ(table.GetValue(1, 1), "x");
  table.SetValue(1, 1, "");
  EXPECT_EQ(table.GetValue(1, 1), "");
  EXPECT_TRUE(RowAt(table, 1)->Item("1") == V(""));
}

TEST(ResultSet, AValueIsStoredAsGiven) {
  cResultSet table = ThreeByThree();
  const std::string value = "  é😀 ' \n" + std::string(1, '\0') + std::string(100, 'x');
  table.SetValue(1, 1, value);
  EXPECT_EQ(table.GetValue(1, 1), value);
}

TEST(ResultSet, AValueThatIsNoUnicodeIsRefusedBeforeAnything) {
  cResultSet table = ThreeByThree();
  ExpectNumber(5, [&] { table.SetValue(1, 1, std::string("\xff")); });
  EXPECT_EQ(FirstCells(table), (Texts{"a1", "b1", "c1"}));
}

// --- AddRow ----------------------------------------------------------------

TEST(ResultSet, AClientBuildsATable) {
  cResultSet table;
  table.Data(std::make_shared<Collection>());
  table.Cols(2);
  table.AddRow();
  table.AddRow();
  table.SetValue(1, 1, "a1");
  table.SetValue(1, 2, "a2");
  table.SetValue(2, 1, "b1");
  EXPECT_EQ(table.Rows(), 2);
  EXPECT_EQ(table.GetValue(1, 1), "a1");
  EXPECT_EQ(table.GetValue(1, 2), "a2");
  EXPECT_EQ(table.GetValue(2, 1), "b1");
  EXPECT_EQ(table.GetValue(2, 2), "");
}

TEST(ResultSet, ANewRowHasAnEmptyTextForEveryColumn) {
  cResultSet table = ThreeByThree();
  table.AddRow();
  EXPECT_EQ(table.Rows(), 4);
  EXPECT_EQ(table.Data()->Count(), 4);
  EXPECT_EQ(CellsOf(*RowAt(table, 4)), (Texts{"", "", ""}));
  for (std::int32_t column = 1; column <= 3; ++column) {
    EXPECT_EQ(RowOfKey(table, "4")->Item(std::to_string(column)), V(""));
  }
}

TEST(ResultSet, WithoutColumnsANewRowIsEmpty) {
  for (const std::int32_t columns : {0, -5}) {
    cResultSet table;
    table.Data(std::make_shared<Collection>());
    table.Cols(columns);
    table.AddRow();
    EXPECT_EQ(table.Rows(), 1);
    EXPECT_EQ(table.Data()->Count(), 1);
    EXPECT_EQ(RowOfKey(table, "1")->Count(), 0);
    ExpectInvalidCol([&] { static_cast<void>(table.GetValue(1, 1)); });
  }
}

TEST(ResultSet, AGivenRowIsTakenAsItIs) {
  cResultSet table = ThreeByThree();
  const CollectionPtr row = RowOf({V("d1")});
  table.AddRow(row);
  EXPECT_EQ(table.Rows(), 4);
  EXPECT_EQ(table.Cols(), 3);
  EXPECT_EQ(RowAt(table, 4), row);
  EXPECT_EQ(RowOfKey(table, "4"), row);
  EXPECT_EQ(table.GetValue(4, 1), "d1");
  ExpectInvalidCol([&] { static_cast<void>(table.GetValue(4, 2)); });
  row->AddNumbered(V("d2"));
  EXPECT_EQ(table.GetValue(4, 2), "d2");
}

TEST(ResultSet, RowsAreCountedFromThePropertyAndKeyedFromTheData) {
  cResultSet table = ThreeByThree();
  table.Rows(10);
  table.AddRow(RowOf({V("d1")}));
  EXPECT_EQ(table.Rows(), 11);
  EXPECT_EQ(table.GetValue(4, 1), "d1");
}

TEST(ResultSet, ARowNumberThatIsThereAlreadyIs457AndTheRowIsCounted) {
  cResultSet table = ThreeByThree();
  table.Data()->Remove("1");
  ExpectNumber(457, [&] { table.AddRow(); });
  EXPECT_EQ(table.Rows(), 4);
  ExpectNumber(457, [&] { table.AddRow(RowOf({V("d1")})); });
  EXPECT_EQ(table.Rows(), 5);
  EXPECT_EQ(FirstCells(table), (Texts{"b1", "c1"}));
}

TEST(ResultSet, RowsOverflowAndNothingIsAdded) {
  cResultSet table = ThreeByThree();
  table.Rows(kMost);
  ExpectNumber(6, [&] { table.AddRow(); });
  ExpectNumber(6, [&] { table.AddRow(RowOf({V("d1")})); });
  EXPECT_EQ(table.Rows(), kMost);
  EXPECT_EQ(table.Data()->Count(), 3);
}

// --- DeleteRow -------------------------------------------------------------

TEST(ResultSet, ADeletedRowIsGoneAndTheOthersAreNumberedAnew) {
  cResultSet table = ThreeByThree();
  const CollectionPtr last = RowAt(table, 3);
  table.DeleteRow(1);
  EXPECT_EQ(table.Rows(), 2);
  EXPECT_EQ(table.GetValue(1, 1), "b1");
  EXPECT_EQ(table.GetValue(2, 3), "c3");
  ExpectInvalidRow([&] { static_cast<void>(table.GetValue(3, 1)); });
  EXPECT_EQ(RowOfKey(table, "2"), last);
  EXPECT_EQ(table.Cols(), 3);
}

TEST(ResultSet, DeletingTheOnlyRowLeavesAnEmptyList) {
  cResultSet table = Table({{V("a")}});
  table.DeleteRow(1);
  EXPECT_EQ(table.Rows(), 0);
  ASSERT_NE(table.Data(), nullptr);
  EXPECT_EQ(table.Data()->Count(), 0);
}

TEST(ResultSet, DeletingARowThatIsNotThereLowersTheCountAllTheSame) {
  for (const std::int32_t row : {99, 4, 0, -1, kMost, kLeast}) {
    cResultSet table = ThreeByThree();
    table.DeleteRow(row);
    EXPECT_EQ(table.Rows(), 2) << row;
    EXPECT_EQ(FirstCells(table), (Texts{"a1", "b1", "c1"})) << row;
    EXPECT_EQ(table.GetValue(3, 1), "c1") << row;
  }
}

TEST(ResultSet, DeletingGoesByPositionAndNumbersByPosition) {
  cResultSet table = ThreeByThree();
  table.SetValue(1, 2, "x");
  EXPECT_EQ(FirstCells(table), (Texts{"b1", "c1", "a1"}));
  table.DeleteRow(99);
  EXPECT_EQ(table.GetValue(1, 1), "b1");
  EXPECT_EQ(table.GetValue(2, 1), "c1");
  EXPECT_EQ(table.GetValue(3, 1), "a1");
}

TEST(ResultSet, DeletingPutsANewListInPlace) {
  cResultSet table = ThreeByThree();
  const CollectionPtr before = table.Data();
  table.DeleteRow(2);
  EXPECT_NE(table.Data(), before);
  EXPECT_EQ(before->Count(), 3);
  EXPECT_EQ(std::get<CollectionPtr>(before->Item("1")), RowOfKey(table, "1"));
}

TEST(ResultSet, DeletingFromAnEmptyTableCountsBelowZero) {
  cResultSet table = Table({});
  table.DeleteRow(1);
  EXPECT_EQ(table.Rows(), -1);
  EXPECT_EQ(table.Data()->Count(), 0);
  table.AddRow();
  EXPECT_EQ(table.Rows(), 0);
  EXPECT_EQ(table.Data()->Count(), 1);
}

TEST(ResultSet, RowsUnderflowAndNothingIsDeleted) {
  cResultSet table = ThreeByThree();
  table.Rows(kLeast);
  const CollectionPtr before = table.Data();
  ExpectNumber(6, [&] { table.DeleteRow(1); });
  EXPECT_EQ(table.Rows(), kLeast);
  EXPECT_EQ(table.Data(), before);
  EXPECT_EQ(table.Data()->Count(), 3);
}

// --- Against a plain model -------------------------------------------------

using Cells = std::vector<std::pair<std::int32_t, std::string>>;
using Rows = std::vector<std::pair<std::int32_t, Cells>>;

template <class List>
auto At(List& list, std::int32_t key) {
  return std::find_if(list.begin(), list.end(),
                      [&](const auto& item) { return item.first == key; });
}

// Rows and cells in the order of their positions, each with its number. Every
// member gives the number of the error it ends with, or 0.
struct PlainTable {
  std::int32_t cols = 0;
  std::int32_t count = 0;
  std::optional<Rows> rows;

  int Set(std::int32_t row, std::int32_t column, const std::string& value) {
    if (!rows) return 91;
    if (row > Size(*rows)) return kInvalidRow;
    const auto found = At(*rows, row);
    if (found == rows->end()) return 5;
    Cells& cells = found->second;
    const auto cell = At(cells, column);
    if (column <= Size(cells)) {
      if (cell == cells.end()) return 5;
      cells.erase(cell);
    } else if (cell != cells.end()) {
      return 457;
    }
    cells.emplace_back(column, value);
    std::rotate(found, found + 1, rows->end());
    return 0;
  }
  [[nodiscard]] std::pair<int, std::string> Get(std::int32_t row, std::int32_t column) const {
    if (!rows) return {91, ""};
    if (row > Size(*rows)) return {kInvalidRow, ""};
    const auto found = At(*rows, row);
    if (found == rows->end()) return {5, ""};
    if (column > Size(found->second)) return {kInvalidCol, ""};
    const auto cell = At(found->second, column);
    if (cell == found->second.end()) return {5, ""};
    return {0, cell->second};
  }
  int Add(const std::optional<Cells>& given) {
    if (count == kMost) return 6;
    ++count;
    if (!rows) return 91;
    const std::int32_t key = Size(*rows) + 1;
    if (At(*rows, key) != rows->end()) return 457;
    Cells cells = given.value_or(Cells{});
    for (std::int32_t column = 1; !given && column <= cols; ++column) {
      cells.emplace_back(column, "");
    }
    rows->emplace_back(key, cells);
    return 0;
  }
  int Delete(std::int32_t position) {
    if (count == kLeast) return 6;
    --count;
    if (!rows) return 91;
    Rows kept;
    for (std::int32_t i = 1; i <= Size(*rows); ++i) {
      if (i == position) continue;
      kept.emplace_back(Size(kept) + 1, (*rows)[static_cast<std::size_t>(i) - 1].second);
    }
    rows = std::move(kept);
    return 0;
  }

  template <class List>
  static std::int32_t Size(const List& list) {
    return static_cast<std::int32_t>(list.size());
  }
};

// From low to high - 1, each as likely however early in the run.
int Pick(int low, int high) {
  return *rc::gen::resize(rc::kNominalSize, rc::gen::inRange(low, high));
}

int NumberOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const Error& error) {
    return error.number();
  }
  return 0;
}

void AssertSame(const cResultSet& table, const PlainTable& model) {
  RC_ASSERT(table.Rows() == model.count);
  RC_ASSERT(table.Cols() == model.cols);
  RC_ASSERT((table.Data() != nullptr) == model.rows.has_value());
  if (!model.rows) return;
  RC_ASSERT(table.Data()->Count() == PlainTable::Size(*model.rows));
  std::int32_t position = 0;
  for (const auto& [key, cells] : *model.rows) {
    const CollectionPtr row = RowAt(table, ++position);
    RC_ASSERT(RowOfKey(table, std::to_string(key)) == row);
    RC_ASSERT(row->Count() == PlainTable::Size(cells));
    std::int32_t cellPosition = 0;
    for (const auto& [column, value] : cells) {
      RC_ASSERT(row->Item(++cellPosition) == V(value));
      RC_ASSERT(row->Item(std::to_string(column)) == V(value));
    }
  }
}

RC_GTEST_PROP(ResultSetProperty, IsAPlainTable, ()) {
  cResultSet table;
  PlainTable model;
  const int operations = Pick(0, 200);
  for (int i = 0; i < operations; ++i) {
    const std::int32_t row = Pick(-1, 5);
    const std::int32_t column = Pick(-1, 6);
    const std::string value = "v" + std::to_string(i);
    int expected = 0;
    int actual = 0;
    switch (*rc::gen::weightedElement<int>(
        {{12, 0}, {12, 1}, {6, 2}, {3, 3}, {3, 4}, {1, 5}, {3, 6}, {1, 7}, {1, 8}, {1, 9}})) {
      case 0:
        expected = model.Set(row, column, value);
        actual = NumberOf([&] { table.SetValue(row, column, value); });
        break;
      case 1: {
        const auto [number, text] = model.Get(row, column);
        expected = number;
        std::string read;
        actual = NumberOf([&] { read = table.GetValue(row, column); });
        RC_ASSERT(read == text);
        break;
      }
      case 2:
        expected = model.Add({});
        actual = NumberOf([&] { table.AddRow(); });
        break;
      case 3: {
        const CollectionPtr given = RowOf({V(value), V(value + "'")});
        expected = model.Add(Cells{{1, value}, {2, value + "'"}});
        actual = NumberOf([&] { table.AddRow(given); });
        break;
      }
      case 4:
        expected = model.Delete(row);
        actual = NumberOf([&] { table.DeleteRow(row); });
        break;
      case 5:
        model = {};
        table.CLEAR();
        break;
      case 6:
        model.cols = column;
        table.Cols(column);
        break;
      case 7:
        model.count = *rc::gen::elementOf(std::vector<std::int32_t>{kMost - 3, kLeast + 3, row});
        table.Rows(model.count);
        break;
      case 8:
        // By reference, past the table.
        if (!model.rows || model.rows->empty()) break;
        model.rows->erase(model.rows->begin());
        table.Data()->Remove(1);
        break;
      default:
        model.rows = Rows{};
        table.Data(std::make_shared<Collection>());
    }
    if (i == 0 && !model.rows) {
      model.rows = Rows{};
      table.Data(std::make_shared<Collection>());
    }
    RC_ASSERT(actual == expected);
    AssertSame(table, model);
  }
}

}  // namespace
}  // namespace lotrix::test

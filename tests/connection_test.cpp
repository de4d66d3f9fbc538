// The connection and its recordsets, and what of SQLite shows through them.
#include "lotrix/connection.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "lotrix/recordset.h"
#include "src/database/statement.h"
#include "tests/support/engine.h"
#include "tests/support/fixture.h"

namespace lotrix::test {
namespace {

constexpr std::int32_t Hex(std::uint32_t number) { return static_cast<std::int32_t>(number); }

constexpr std::int32_t kFailed = Hex(0x80004005U);
constexpr std::int32_t kRefused = Hex(0x80040E14U);
constexpr std::int32_t kNoDate = Hex(0x80040E07U);

void ExpectNumber(std::int32_t number, const std::function<void()>& call) {
  const Error error = Refusal(call);
  EXPECT_EQ(error.number(), number) << error.description();
  EXPECT_EQ(error.source(), "Lotrix");
}

std::string TextValue(const Recordset& recordset, std::int32_t index) {
  return std::get<std::string>(recordset.Fields().Item(index).Value());
}

// The first column, as text, of all records from the current one on.
std::vector<std::string> Remaining(Recordset& recordset) {
  std::vector<std::string> texts;
  for (; !recordset.EndOfFile(); recordset.MoveNext()) texts.push_back(TextValue(recordset, 0));
  return texts;
}

using Texts = std::vector<std::string>;

class ConnectionTest : public DatabaseTest {
 protected:
  [[nodiscard]] std::string String() { return database().ConnectionString(); }
  // Fills the table stock with one row for each lot.
  void Lots(const Texts& lots) {
    for (const std::string& lot : lots) {
      Execute("INSERT INTO stock (pin, lot) VALUES ('A1', '" + lot + "')");
    }
  }
  [[nodiscard]] std::string StockCount() { return Query("SELECT count(*) FROM stock")[0][0]; }
};

// --- Opening and closing ---------------------------------------------------

TEST_F(ConnectionTest, ANewConnectionIsClosedAndEmpty) {
  const Connection connection;
  EXPECT_EQ(connection.State(), ObjectState::kClosed);
  EXPECT_EQ(connection.ConnectionString(), "");
  EXPECT_EQ(connection.Mode(), ConnectMode::kUnknown);
}

TEST_F(ConnectionTest, TheStatesHaveTheirAdoNumbers) {
  EXPECT_EQ(static_cast<int>(ObjectState::kClosed), 0);
  EXPECT_EQ(static_cast<int>(ObjectState::kOpen), 1);
  EXPECT_EQ(static_cast<int>(ConnectMode::kReadWrite), 3);
  EXPECT_EQ(static_cast<int>(CursorType::kKeyset), 1);
  EXPECT_EQ(static_cast<int>(LockType::kReadOnly), 1);
  EXPECT_EQ(static_cast<int>(CommandType::kText), 1);
  EXPECT_EQ(static_cast<int>(DataType::kDBDate), 133);
}

TEST_F(ConnectionTest, OpensWithThePropertyAndReopensAfterClose) {
  Connection connection;
  connection.ConnectionString(String());
  connection.Mode(ConnectMode::kReadWrite);
  EXPECT_EQ(connection.ConnectionString(), String());
  EXPECT_EQ(connection.Mode(), ConnectMode::kReadWrite);
  EXPECT_EQ(connection.State(), ObjectState::kClosed);
  connection.Open();
  EXPECT_EQ(connection.State(), ObjectState::kOpen);
  connection.Close();
  EXPECT_EQ(connection.State(), ObjectState::kClosed);
  connection.Open();
  EXPECT_EQ(connection.State(), ObjectState::kOpen);
  EXPECT_EQ(connection.Execute("SELECT pin FROM stock")->RecordCount(), 0);
}

TEST_F(ConnectionTest, TheArgumentGoesBeforeTheProperty) {
  Connection connection;
  connection.ConnectionString("Provider=NoSuchProvider");
  connection.Open(String());
  EXPECT_EQ(connection.State(), ObjectState::kOpen);
}

TEST_F(ConnectionTest, OpeningTwiceIs3705AndLeavesItOpen) {
  Connection connection;
  connection.Open(String());
  ExpectNumber(3705, [&] { connection.Open(String()); });
  EXPECT_EQ(connection.State(), ObjectState::kOpen);
  EXPECT_EQ(connection.Execute("SELECT pin FROM stock")->RecordCount(), 0);
}

TEST_F(ConnectionTest, TheStringOfAnOpenConnectionCannotBeChanged) {
  Connection connection;
  connection.ConnectionString(String());
  connection.Open();
  ExpectNumber(3705, [&] { connection.ConnectionString("Provider=SQLite;Data Source=other.db"); });
  EXPECT_EQ(connection.ConnectionString(), String());
}

TEST_F(ConnectionTest, ClosingAClosedConnectionIs3704) {
  Connection connection;
  ExpectNumber(3704, [&] { connection.Close(); });
  connection.Open(String());
  connection.Close();
  ExpectNumber(3704, [&] { connection.Close(); });
}

TEST_F(ConnectionTest, NothingRunsOnAClosedConnection) {
  Connection connection;
  connection.ConnectionString(String());
  ExpectNumber(3704, [&] { connection.Execute("SELECT pin FROM stock"); });
  ExpectNumber(3704, [&] { connection.BeginTrans(); });
  ExpectNumber(3704, [&] { connection.CommitTrans(); });
  ExpectNumber(3704, [&] { connection.RollbackTrans(); });
  ExpectNumber(3704, [&] { connection.CreateSchema(); });
  EXPECT_EQ(connection.State(), ObjectState::kClosed);
}

TEST_F(ConnectionTest, NoOrAnUnknownProviderIs3706WithItsText) {
  for (const std::string text :
       {"", "   ", "x.db", "Data Source=x.db", "Provider=", "Provider=NoSuchProvider",
        "Provider=NoSuchProvider;Data Source=x.db"}) {
    Connection connection;
    connection.ConnectionString(text);
    ExpectError(Refusal([&] { connection.Open(); }), 3706,
                "Provider cannot be found. It may not be properly installed.", "Lotrix");
    EXPECT_EQ(connection.State(), ObjectState::kClosed);
    EXPECT_FALSE(std::filesystem::exists("x.db"));
  }
}

TEST_F(ConnectionTest, AConnectionThatCouldNotOpenCanBeOpenedLater) {
  Connection connection;
  ExpectNumber(3706, [&] { connection.Open("Provider=NoSuchProvider"); });
  connection.Open(String());
  EXPECT_EQ(connection.State(), ObjectState::kOpen);
}

TEST_F(ConnectionTest, TextThatIsNoUtf8IsRefusedBeforeAnythingRuns) {
  Lots({"L1"});
  Watch(connection());
  ExpectNumber(5, [&] { connection().Execute(std::string("DELETE FROM stock\xff")); });
  EXPECT_EQ(Statements(), Texts{});
  EXPECT_EQ(StockCount(), "1");
}

// --- Execute ---------------------------------------------------------------

TEST_F(ConnectionTest, AQueryGivesAnOpenRecordsetOnItsFirstRecord) {
  Lots({"L1", "L2"});
  const std::unique_ptr<Recordset> rows =
      connection().Execute("SELECT lot FROM stock ORDER BY lot");
  ASSERT_EQ(rows->State(), ObjectState::kOpen);
  EXPECT_EQ(Remaining(*rows), (Texts{"L1", "L2"}));
}

TEST_F(ConnectionTest, AStatementWithoutRowsRunsAndGivesAClosedRecordset) {
  const std::unique_ptr<Recordset> inserted =
      connection().Execute("INSERT INTO stock (pin, lot) VALUES ('A1', 'L1')");
  ASSERT_NE(inserted, nullptr);
  EXPECT_EQ(inserted->State(), ObjectState::kClosed);
  EXPECT_EQ(Query("SELECT pin, lot FROM stock"), (std::vector<Row>{{"A1", "L1"}}));
  EXPECT_EQ(connection().Execute("UPDATE stock SET lot = 'L2'")->State(), ObjectState::kClosed);
  EXPECT_EQ(Query("SELECT lot FROM stock"), (std::vector<Row>{{"L2"}}));
  EXPECT_EQ(connection().Execute("DELETE FROM stock")->State(), ObjectState::kClosed);
  EXPECT_EQ(StockCount(), "0");
}

TEST_F(ConnectionTest, AWriteIsThereWhenExecuteReturns) {
  connection().Execute("INSERT INTO stock (lot) VALUES ('L1')");
  Connection other;
  other.Open(String());
  EXPECT_EQ(other.Execute("SELECT lot FROM stock")->RecordCount(), 1);
}

TEST_F(ConnectionTest, AStatementThatKnowsItsSplicesRunsWithTheirValues) {
  const std::string lot = "AB-1 ";
  const std::int32_t doses = -12;
  const std::string date = "1/5/2004";
  Statement insert;
  insert << "INSERT INTO stock (lot, doses, datein) VALUES ('" << lot << "', " << doses << ", {"
         << date << "})";
  EXPECT_EQ(connection().Execute(insert)->State(), ObjectState::kClosed);
  EXPECT_EQ(Query("SELECT lot, doses, datein FROM stock"),
            (std::vector<Row>{{"AB-1 ", "-12", "2004-01-05"}}));
}

TEST_F(ConnectionTest, ARefusedStatementChangesNothing) {
  Lots({"L1", "L2"});
  ExpectNumber(kRefused, [&] { connection().Execute("DELETE FROM stock WHERE nosuch = 'L1'"); });
  ExpectNumber(kRefused, [&] { connection().Execute("DELETE FROM stock WHERE"); });
  ExpectNumber(kNoDate, [&] { connection().Execute("UPDATE stock SET datein = {2/30/2004}"); });
  EXPECT_EQ(Query("SELECT lot, datein FROM stock"),
            (std::vector<Row>{{"L1", "<null>"}, {"L2", "<null>"}}));
}

TEST_F(ConnectionTest, AnEmptyStatementIsRefused) {
  ExpectNumber(kRefused, [&] { connection().Execute(""); });
  ExpectNumber(kRefused, [&] { connection().Execute("   "); });
}

TEST_F(ConnectionTest, AConnectionGoesOnAfterARefusal) {
  ExpectNumber(kRefused, [&] { connection().Execute("SELECT nosuch FROM stock"); });
  EXPECT_EQ(connection().State(), ObjectState::kOpen);
  connection().Execute("INSERT INTO stock (lot) VALUES ('L1')");
  EXPECT_EQ(StockCount(), "1");
}

TEST_F(ConnectionTest, EngineErrorsHaveTheirNumbers) {
  Execute("CREATE UNIQUE INDEX one_lot ON stock (lot)");
  Lots({"L1"});
  ExpectNumber(Hex(0x80040E14U), [&] { connection().Execute("SELECT FROM WHERE"); });
  ExpectNumber(Hex(0x80040E14U), [&] { connection().Execute("SELECT nosuch FROM stock"); });
  ExpectNumber(Hex(0x80040E37U), [&] { connection().Execute("SELECT pin FROM nosuch"); });
  ExpectNumber(Hex(0x80040E37U), [&] { connection().Execute("DELETE FROM nosuch"); });
  ExpectNumber(Hex(0x80040E07U),
               [&] { connection().Execute("SELECT pin FROM stock WHERE datein = {soon}"); });
  ExpectNumber(Hex(0x80040E2FU),
               [&] { connection().Execute("INSERT INTO stock (lot) VALUES ('L1')"); });
  EXPECT_EQ(StockCount(), "1");
}

TEST_F(ConnectionTest, AConstraintHitByOneRowOfSeveralLeavesAllAsTheyWere) {
  Execute("CREATE UNIQUE INDEX one_lot ON stock (lot)");
  Lots({"L1", "L2", "L3"});
  ExpectNumber(Hex(0x80040E2FU), [&] { connection().Execute("UPDATE stock SET lot = 'L9'"); });
  EXPECT_EQ(Query("SELECT lot FROM stock ORDER BY lot"),
            (std::vector<Row>{{"L1"}, {"L2"}, {"L3"}}));
}

// --- What is refused, and in which order -----------------------------------

TEST_F(ConnectionTest, AValueThatWouldLeaveItsPlaceIsRefusedOnEveryRoad) {
  Lots({"L1"});
  Watch(connection());
  const std::string value = "x' OR 'a'='a";
  Statement statement;
  statement << "DELETE FROM stock WHERE lot = '" << value << "'";
  ExpectNumber(kRefused, [&] { connection().Execute(statement); });
  Recordset recordset;
  ExpectNumber(kRefused, [&] {
    recordset.Open(statement, connection(), CursorType::kKeyset, LockType::kReadOnly,
                   CommandType::kText);
  });
  EXPECT_EQ(recordset.State(), ObjectState::kClosed);
  EXPECT_EQ(Statements(), Texts{});
  EXPECT_EQ(StockCount(), "1");
}

TEST_F(ConnectionTest, ANulIsRefusedInAWholeTextToo) {
  Lots({"L1"});
  const std::string text("DELETE FROM stock WHERE lot = 'L\0001'", 36);
  ASSERT_EQ(text.find('\0'), 32U);
  ExpectNumber(kRefused, [&] { connection().Execute(text); });
  Recordset recordset;
  ExpectNumber(kRefused, [&] { recordset.Open(text, connection()); });
  ExpectNumber(kRefused, [&] { connection().Execute(std::string("DELETE FROM stock\0", 18)); });
  ExpectNumber(kRefused, [&] {
    connection().Execute(std::string("DELETE FROM stock WHERE doses = \0", 33));
  });
  EXPECT_EQ(StockCount(), "1");
}

TEST_F(ConnectionTest, AShapeIsRefusedBeforeADate) {
  const std::string value = "O'Neil";
  const std::string date = "13/45/2001";
  Statement statement;
  statement << "UPDATE stock SET datein = {" << date << "}, lot = '" << value << "'";
  ExpectNumber(kRefused, [&] { connection().Execute(statement); });
  ExpectNumber(kRefused, [&] {
    connection().Execute("UPDATE stock SET datein = {13/45/2001}, lot = 'O'Neil'");
  });
}

TEST_F(ConnectionTest, ADateIsRefusedBeforeTheEngineIsAsked) {
  const std::string date = "13/45/2001";
  Statement table;
  table << "UPDATE nosuch SET datein = {" << date << "}";
  ExpectNumber(kNoDate, [&] { connection().Execute(table); });
  Statement column;
  column << "UPDATE stock SET nosuch = 1 WHERE datein = {" << date << "}";
  ExpectNumber(kNoDate, [&] { connection().Execute(column); });
  ExpectNumber(kNoDate,
               [&] { connection().Execute("SELECT nosuch FROM nosuch WHERE a = {13/45/2001}"); });
}

TEST_F(ConnectionTest, AnApostropheInADateOnlyMakesItNoDate) {
  const std::string date = "1/5/2004'";
  Statement statement;
  statement << "UPDATE stock SET datein = {" << date << "}";
  ExpectNumber(kNoDate, [&] { connection().Execute(statement); });
}

TEST_F(ConnectionTest, AGoodStatementDoesNotCarryTheNextOneOfItsKind) {
  Lots({"L1"});
  const auto update = [](const std::string& date) {
    Statement statement;
    statement << "UPDATE stock SET datein = {" << date << "}";
    return statement;
  };
  connection().Execute(update("1/5/2004"));
  ExpectNumber(kNoDate, [&] { connection().Execute(update("1/32/2004")); });
  EXPECT_EQ(Query("SELECT datein FROM stock"), (std::vector<Row>{{"2004-01-05"}}));
  connection().Execute(update(""));
  EXPECT_EQ(Query("SELECT datein FROM stock"), (std::vector<Row>{{"<null>"}}));
}

// --- Transactions ----------------------------------------------------------

TEST_F(ConnectionTest, ATransactionIsCommittedAsAWhole) {
  EXPECT_FALSE(connection().InTransaction());
  connection().BeginTrans();
  EXPECT_TRUE(connection().InTransaction());
  connection().Execute("INSERT INTO stock (lot) VALUES ('L1')");
  connection().Execute("INSERT INTO stock (lot) VALUES ('L2')");
  EXPECT_EQ(StockCount(), "0");
  connection().CommitTrans();
  EXPECT_FALSE(connection().InTransaction());
  EXPECT_EQ(StockCount(), "2");
}

TEST_F(ConnectionTest, ATransactionIsRolledBackAsAWhole) {
  Lots({"L1"});
  connection().BeginTrans();
  connection().Execute("INSERT INTO stock (lot) VALUES ('L2')");
  connection().Execute("DELETE FROM stock WHERE lot = 'L1'");
  connection().RollbackTrans();
  EXPECT_FALSE(connection().InTransaction());
  EXPECT_EQ(Query("SELECT lot FROM stock"), (std::vector<Row>{{"L1"}}));
}

TEST_F(ConnectionTest, OneTransactionAtATime) {
  connection().BeginTrans();
  connection().Execute("INSERT INTO stock (lot) VALUES ('L1')");
  ExpectNumber(kFailed, [&] { connection().BeginTrans(); });
  EXPECT_TRUE(connection().InTransaction());
  connection().CommitTrans();
  EXPECT_EQ(StockCount(), "1");
}

TEST_F(ConnectionTest, NothingToCommitOrRollBackIsAnError) {
  ExpectNumber(kFailed, [&] { connection().CommitTrans(); });
  ExpectNumber(kFailed, [&] { connection().RollbackTrans(); });
  connection().BeginTrans();
  connection().CommitTrans();
  ExpectNumber(kFailed, [&] { connection().CommitTrans(); });
  ExpectNumber(kFailed, [&] { connection().RollbackTrans(); });
}

TEST_F(ConnectionTest, ClosingRollsAnOpenTransactionBack) {
  Connection closed;
  closed.Open(String());
  closed.BeginTrans();
  closed.Execute("INSERT INTO stock (lot) VALUES ('L1')");
  closed.Close();
  EXPECT_EQ(StockCount(), "0");
  closed.Open(String());
  EXPECT_FALSE(closed.InTransaction());
}

TEST_F(ConnectionTest, GivingTheConnectionUpRollsAnOpenTransactionBack) {
  {
    Connection released;
    released.Open(String());
    released.BeginTrans();
    released.Execute("INSERT INTO stock (lot) VALUES ('L1')");
  }
  EXPECT_EQ(StockCount(), "0");
  Execute("INSERT INTO stock (lot) VALUES ('L2')");
  EXPECT_EQ(StockCount(), "1");
}

// --- The schema ------------------------------------------------------------

TEST_F(ConnectionTest, MakingTheSchemaAgainKeepsTheRows) {
  Lots({"L1"});
  connection().CreateSchema();
  connection().CreateSchema();
  EXPECT_EQ(StockCount(), "1");
  EXPECT_FALSE(connection().InTransaction());
}

// --- Recordsets: opening and closing ---------------------------------------

TEST_F(ConnectionTest, EveryMemberOfAClosedRecordsetButOpenAndStateIs3704) {
  Recordset recordset;
  EXPECT_EQ(recordset.State(), ObjectState::kClosed);
  ExpectNumber(3704, [&] { recordset.Close(); });
  ExpectNumber(3704, [&] { static_cast<void>(recordset.RecordCount()); });
  ExpectNumber(3704, [&] { static_cast<void>(recordset.EndOfFile()); });
  ExpectNumber(3704, [&] { recordset.MoveNext(); });
  ExpectNumber(3704, [&] { static_cast<void>(recordset.Fields().Count()); });
  ExpectNumber(3704, [&] { static_cast<void>(recordset.Fields().Item(0)); });
  ExpectNumber(3704, [&] { static_cast<void>(recordset.Fields().Item("pin")); });
}

TEST_F(ConnectionTest, ARecordsetOpensClosesAndOpensAgain) {
  Lots({"L1"});
  Recordset recordset;
  recordset.Open("SELECT lot FROM stock", connection(), CursorType::kKeyset, LockType::kReadOnly,
                 CommandType::kText);
  EXPECT_EQ(recordset.State(), ObjectState::kOpen);
  EXPECT_EQ(TextValue(recordset, 0), "L1");
  recordset.Close();
  EXPECT_EQ(recordset.State(), ObjectState::kClosed);
  ExpectNumber(3704, [&] { recordset.Close(); });
  ExpectNumber(3704, [&] { static_cast<void>(recordset.RecordCount()); });
  recordset.Open("SELECT pin FROM stock", connection());
  EXPECT_EQ(TextValue(recordset, 0), "A1");
}

TEST_F(ConnectionTest, ARecordsetOfAClosedConnectionIs3704) {
  Connection closed;
  Recordset recordset;
  ExpectNumber(3704, [&] { recordset.Open("SELECT lot FROM stock", closed); });
  EXPECT_EQ(recordset.State(), ObjectState::kClosed);
}

TEST_F(ConnectionTest, OpeningAnOpenRecordsetIs3705AndRunsNothing) {
  Lots({"L1"});
  Watch(connection());
  Recordset recordset;
  recordset.Open("SELECT lot FROM stock", connection());
  ExpectNumber(3705, [&] { recordset.Open("DELETE FROM stock", connection()); });
  EXPECT_EQ(Statements(), Texts{"SELECT lot FROM stock"});
  EXPECT_EQ(StockCount(), "1");
}

TEST_F(ConnectionTest, ARecordsetThatWasRefusedIsClosedAndCanBeOpened) {
  Lots({"L1"});
  Recordset recordset;
  ExpectNumber(kRefused, [&] { recordset.Open("SELECT nosuch FROM stock", connection()); });
  EXPECT_EQ(recordset.State(), ObjectState::kClosed);
  recordset.Open("SELECT lot FROM stock", connection());
  EXPECT_EQ(TextValue(recordset, 0), "L1");
}

TEST_F(ConnectionTest, AStatementWithoutRowsRunsAndLeavesTheRecordsetClosed) {
  Lots({"L1"});
  Recordset recordset;
  recordset.Open("UPDATE stock SET lot = 'L2'", connection(), CursorType::kKeyset,
                 LockType::kReadOnly, CommandType::kText);
  EXPECT_EQ(recordset.State(), ObjectState::kClosed);
  EXPECT_EQ(Query("SELECT lot FROM stock"), (std::vector<Row>{{"L2"}}));
  recordset.Open("SELECT lot FROM stock", connection());
  EXPECT_EQ(TextValue(recordset, 0), "L2");
}

TEST_F(ConnectionTest, ClosingTheConnectionClosesItsRecordsets) {
  Lots({"L1", "L2"});
  Connection closed;
  closed.Open(String());
  Recordset streaming;
  streaming.Open("SELECT lot FROM stock", closed);
  Recordset fetched;
  fetched.Open("SELECT lot, pin FROM stock", closed);
  EXPECT_EQ(fetched.RecordCount(), 2);
  const std::unique_ptr<Recordset> executed = closed.Execute("SELECT pin FROM stock");
  const Field field = streaming.Fields().Item(0);
  closed.Close();
  EXPECT_EQ(streaming.State(), ObjectState::kClosed);
  EXPECT_EQ(fetched.State(), ObjectState::kClosed);
  EXPECT_EQ(executed->State(), ObjectState::kClosed);
  ExpectNumber(3704, [&] { streaming.MoveNext(); });
  ExpectNumber(3704, [&] { static_cast<void>(fetched.RecordCount()); });
  ExpectNumber(3704, [&] { static_cast<void>(executed->EndOfFile()); });
  ExpectNumber(3704, [&] { static_cast<void>(field.Value()); });
  streaming.Open("SELECT lot FROM stock", connection());
  EXPECT_EQ(streaming.RecordCount(), 2);
}

TEST_F(ConnectionTest, GivingTheConnectionUpClosesItsRecordsets) {
  Lots({"L1"});
  Recordset recordset;
  {
    Connection released;
    released.Open(String());
    recordset.Open("SELECT lot FROM stock", released);
  }
  EXPECT_EQ(recordset.State(), ObjectState::kClosed);
}

TEST_F(ConnectionTest, ARecordsetGivenUpEarlyIsNoConcernOfItsConnection) {
  Lots({"L1", "L2"});
  Connection closed;
  closed.Open(String());
  {
    Recordset recordset;
    recordset.Open("SELECT lot FROM stock", closed);
  }
  closed.Execute("SELECT lot FROM stock").reset();
  closed.Execute("DELETE FROM stock");
  closed.Close();
  EXPECT_EQ(StockCount(), "0");
}

// --- Recordsets: walking and counting --------------------------------------

TEST_F(ConnectionTest, ARecordsetWalksForwardToItsEnd) {
  Lots({"L1", "L2"});
  Recordset recordset;
  recordset.Open("SELECT lot FROM stock ORDER BY lot", connection());
  EXPECT_FALSE(recordset.EndOfFile());
  EXPECT_EQ(TextValue(recordset, 0), "L1");
  recordset.MoveNext();
  EXPECT_FALSE(recordset.EndOfFile());
  EXPECT_EQ(TextValue(recordset, 0), "L2");
  recordset.MoveNext();
  EXPECT_TRUE(recordset.EndOfFile());
  EXPECT_EQ(recordset.State(), ObjectState::kOpen);
  ExpectNumber(3021, [&] { recordset.MoveNext(); });
  ExpectNumber(3021, [&] { static_cast<void>(recordset.Fields().Item(0).Value()); });
  EXPECT_EQ(recordset.Fields().Item(0).Name(), "lot");
}

TEST_F(ConnectionTest, ARecordsetWithoutRecordsIsOpenAtItsEnd) {
  Recordset recordset;
  recordset.Open("SELECT lot, pin FROM stock", connection());
  EXPECT_EQ(recordset.State(), ObjectState::kOpen);
  EXPECT_TRUE(recordset.EndOfFile());
  EXPECT_EQ(recordset.RecordCount(), 0);
  EXPECT_EQ(recordset.Fields().Count(), 2);
  ExpectNumber(3021, [&] { recordset.MoveNext(); });
}

TEST_F(ConnectionTest, TheCountIsOfAllRecordsWhereverTheRecordsetStands) {
  Lots({"L1", "L2", "L3"});
  for (int moves = 0; moves <= 3; ++moves) {
    Recordset recordset;
    recordset.Open("SELECT lot FROM stock ORDER BY lot", connection());
    for (int i = 0; i < moves; ++i) recordset.MoveNext();
    EXPECT_EQ(recordset.RecordCount(), 3) << moves;
    EXPECT_EQ(recordset.RecordCount(), 3) << moves;
    Texts expected{"L1", "L2", "L3"};
    expected.erase(expected.begin(), expected.begin() + moves);
    EXPECT_EQ(Remaining(recordset), expected) << moves;
    EXPECT_EQ(recordset.RecordCount(), 3) << moves;
    ExpectNumber(3021, [&] { recordset.MoveNext(); });
    ExpectNumber(3021, [&] { static_cast<void>(recordset.Fields().Item(0).Value()); });
  }
}

TEST_F(ConnectionTest, CountingNeverRunsTheQueryAgain) {
  Lots({"L1", "L2"});
  Watch(connection());
  Recordset recordset;
  recordset.Open("SELECT lot FROM stock", connection());
  static_cast<void>(recordset.RecordCount());
  Execute("INSERT INTO stock (lot) VALUES ('L3')");
  EXPECT_EQ(recordset.RecordCount(), 2);
  recordset.MoveNext();
  EXPECT_EQ(recordset.RecordCount(), 2);
  recordset.MoveNext();
  EXPECT_TRUE(recordset.EndOfFile());
  EXPECT_EQ(Statements(), Texts{"SELECT lot FROM stock"});
}

TEST_F(ConnectionTest, CountingKeepsEveryKindOfValue) {
  Execute(
      "INSERT INTO pvaccref (vaccine, \"begin\", cost, locactiv, maxno, maker) VALUES "
      "('A', '2004-03-07', 12.5, (1 = 1), 3, NULL), "
      "('  ', NULL, NULL, (1 = 0), -9223372036854775807, 'é😀'), "
      "('', '1899-12-30', 0.1, NULL, NULL, '')");
  using Values = std::vector<Value>;
  std::vector<Values> seen[2];
  for (const bool counted : {false, true}) {
    Recordset recordset;
    recordset.Open("SELECT vaccine, begin, cost, locactiv, maxno, maker FROM pvaccref",
                   connection());
    EXPECT_TRUE(!counted || recordset.RecordCount() == 3);
    for (; !recordset.EndOfFile(); recordset.MoveNext()) {
      Values values;
      for (std::int32_t i = 0; i < recordset.Fields().Count(); ++i) {
        values.push_back(recordset.Fields().Item(i).Value());
      }
      seen[counted ? 1 : 0].push_back(std::move(values));
    }
  }
  const std::vector<Values> expected{
      {std::string("A"), Date{2004, 3, 7}, 12.5, true, std::int64_t{3}, Null{}},
      {std::string("  "), Null{}, Null{}, false, std::int64_t{-9223372036854775807},
       std::string("é😀")},
      {std::string(), kZeroDate, 0.1, Null{}, Null{}, std::string()}};
  EXPECT_TRUE(seen[0] == expected);
  EXPECT_TRUE(seen[1] == expected);
}

TEST_F(ConnectionTest, RowsAreStreamed) {
  std::string rows = "(0)";
  for (int i = 1; i < 60; ++i) rows += ",(" + std::to_string(i) + ")";
  Execute("INSERT INTO sectoref (sector) VALUES " + rows);
  const std::string query =
      "SELECT a.sector FROM sectoref a, sectoref b, sectoref c";  // 216000 records
  using Clock = std::chrono::steady_clock;
  // The least of some, for other programs may hold up any of them.
  Clock::duration opened = Clock::duration::max();
  Clock::duration walked = Clock::duration::max();
  for (int times = 0; times < 3; ++times) {
    const Clock::time_point start = Clock::now();
    Recordset recordset;
    recordset.Open(query, connection());
    recordset.MoveNext();
    opened = std::min(opened, Clock::now() - start);
    std::int32_t moves = 1;
    for (; !recordset.EndOfFile(); recordset.MoveNext()) ++moves;
    walked = std::min(walked, Clock::now() - start);
    EXPECT_EQ(moves, 216000);
  }
  EXPECT_LT(opened * 4, walked);
}

TEST_F(ConnectionTest, TheSameTextOpenTwiceIsTwoRecordsets) {
  Lots({"L1", "L2"});
  const std::string query = "SELECT lot FROM stock ORDER BY lot";
  Recordset first;
  first.Open(query, connection());
  Recordset second;
  second.Open(query, connection());
  first.MoveNext();
  EXPECT_EQ(TextValue(first, 0), "L2");
  EXPECT_EQ(TextValue(second, 0), "L1");
  first.Close();
  EXPECT_EQ(Remaining(second), (Texts{"L1", "L2"}));
}

TEST_F(ConnectionTest, AWriteBesideAnOpenRecordsetRunsAndTheRecordsetGoesOn) {
  Lots({"L1", "L2"});
  Recordset recordset;
  recordset.Open("SELECT lot FROM stock ORDER BY lot", connection());
  connection().Execute("INSERT INTO funding (fundcode) VALUES ('F')");
  EXPECT_EQ(Query("SELECT fundcode FROM funding"), (std::vector<Row>{{"F"}}));
  EXPECT_EQ(Remaining(recordset), (Texts{"L1", "L2"}));
}

// --- Fields ----------------------------------------------------------------

TEST_F(ConnectionTest, FieldsAreFoundByPositionAndByNameWithoutCase) {
  Execute("INSERT INTO stock (pin, lot) VALUES ('A1', 'L1')");
  Recordset recordset;
  recordset.Open("SELECT Pin, LOT FROM Stock", connection());
  const Fields fields = recordset.Fields();
  EXPECT_EQ(fields.Count(), 2);
  EXPECT_EQ(fields.Item(0).Name(), "pin");
  EXPECT_EQ(fields.Item(1).Name(), "lot");
  EXPECT_EQ(std::get<std::string>(fields.Item("pin").Value()), "A1");
  EXPECT_EQ(std::get<std::string>(fields.Item("LoT").Value()), "L1");
  ExpectNumber(9, [&] { static_cast<void>(fields.Item(-1)); });
  ExpectNumber(9, [&] { static_cast<void>(fields.Item(2)); });
  ExpectNumber(5, [&] { static_cast<void>(fields.Item("nosuch")); });
}

TEST_F(ConnectionTest, FieldsAreOfTheTypesTheirColumnsAreDeclaredWith) {
  Recordset recordset;
  recordset.Open("SELECT vaccine, begin, cost, locactiv, maxno FROM pvaccref", connection());
  EXPECT_EQ(recordset.Fields().Item(0).Type(), DataType::kVarWChar);
  EXPECT_EQ(recordset.Fields().Item(1).Type(), DataType::kDBDate);
  EXPECT_EQ(recordset.Fields().Item(2).Type(), DataType::kDouble);
  EXPECT_EQ(recordset.Fields().Item(3).Type(), DataType::kBoolean);
  const DataType whole = recordset.Fields().Item(4).Type();
  EXPECT_TRUE(whole == DataType::kInteger || whole == DataType::kBigInt);
}

TEST_F(ConnectionTest, ADateFieldIsOfTheDateTypeEvenWhenItIsNull) {
  Execute("INSERT INTO stock (datein) VALUES (NULL), ('2004-03-07')");
  Recordset recordset;
  recordset.Open("SELECT datein FROM stock ORDER BY datein", connection());
  EXPECT_EQ(recordset.Fields().Item(0).Type(), DataType::kDBDate);
  EXPECT_TRUE(recordset.Fields().Item(0).Value() == Value(Null{}));
  recordset.MoveNext();
  EXPECT_EQ(recordset.Fields().Item(0).Type(), DataType::kDBDate);
  EXPECT_TRUE(recordset.Fields().Item(0).Value() == Value(Date{2004, 3, 7}));
}

TEST_F(ConnectionTest, ACountIsAWholeNumber) {
  Lots({"L1", "L2"});
  Recordset recordset;
  recordset.Open("SELECT count(*) FROM stock", connection());
  EXPECT_EQ(recordset.Fields().Count(), 1);
  EXPECT_TRUE(recordset.Fields().Item(0).Value() == Value(std::int64_t{2}));
  EXPECT_EQ(recordset.RecordCount(), 1);
}

TEST_F(ConnectionTest, AllColumnsComeInTheOrderOfTheTable) {
  Recordset recordset;
  recordset.Open("SELECT * FROM pvaccref", connection());
  Texts names;
  for (std::int32_t i = 0; i < recordset.Fields().Count(); ++i) {
    names.push_back(recordset.Fields().Item(i).Name());
  }
  EXPECT_EQ(names, (Texts{"vaccine", "maker", "begin", "end", "minbulk", "unitsize", "pkgsize",
                          "ndcno", "cost", "contractid", "sel_maker", "dos_wind", "excfunds",
                          "descrip", "locactiv", "maxno"}));
}

// --- SQLite ----------------------------------------------------------------

// Another program with the same file.
class RawSqlite {
 public:
  explicit RawSqlite(const std::string& file) {
    if (sqlite3_open(file.c_str(), &database_) != SQLITE_OK) throw std::runtime_error(file);
  }
  ~RawSqlite() { sqlite3_close(database_); }
  RawSqlite(const RawSqlite&) = delete;
  RawSqlite& operator=(const RawSqlite&) = delete;

  void Run(const std::string& sql) { static_cast<void>(One(database_, sql)); }
  std::string One(const std::string& sql) { return One(database_, sql); }

  // The first cell of the first row; empty without rows.
  static std::string One(sqlite3* database, const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(database, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
      throw std::runtime_error(sqlite3_errmsg(database));
    }
    std::string text;
    const int result = sqlite3_step(statement);
    if (result == SQLITE_ROW) {
      const auto* const cell = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
      text = cell == nullptr ? "" : cell;
    }
    sqlite3_finalize(statement);
    if (result != SQLITE_ROW && result != SQLITE_DONE) {
      throw std::runtime_error(sqlite3_errmsg(database));
    }
    return text;
  }

 private:
  sqlite3* database_ = nullptr;
};

sqlite3* lastOpened = nullptr;

int RememberHandle(sqlite3* database, char** /*message*/, const sqlite3_api_routines* /*api*/) {
  lastOpened = database;
  return SQLITE_OK;
}

// Opens the connection and gives the engine's handle behind it, whose settings
// are nobody else's to see.
sqlite3* OpenAndCatchHandle(Connection& connection, const std::string& connectionString) {
  const auto entry = reinterpret_cast<void (*)()>(RememberHandle);
  lastOpened = nullptr;
  sqlite3_auto_extension(entry);
  connection.Open(connectionString);
  sqlite3_cancel_auto_extension(entry);
  return lastOpened;
}

class SqliteConnectionTest : public ::testing::Test {
 protected:
  [[nodiscard]] std::string File(const std::string& name = "test.db") const {
    return folder_.path() + "/" + name;
  }
  [[nodiscard]] std::string String(const std::string& more = {}) const {
    return "Provider=SQLite;Data Source=" + File() + more;
  }
  void MakeDatabase() const {
    Connection connection;
    connection.Open(String());
    connection.CreateSchema();
  }
  [[nodiscard]] const std::string& folder() const { return folder_.path(); }

 private:
  TemporaryFolder folder_;
};

TEST_F(SqliteConnectionTest, TheFileIsMadeWhenItsFolderExists) {
  EXPECT_FALSE(std::filesystem::exists(File()));
  MakeDatabase();
  EXPECT_TRUE(std::filesystem::exists(File()));
}

TEST_F(SqliteConnectionTest, AMissingFolderIsAnErrorAndIsNotMade) {
  Connection connection;
  ExpectNumber(kFailed, [&] {
    connection.Open("Provider=SQLite;Data Source=" + folder() + "/no/such/folder/test.db");
  });
  EXPECT_EQ(connection.State(), ObjectState::kClosed);
  EXPECT_FALSE(std::filesystem::exists(folder() + "/no"));
}

TEST_F(SqliteConnectionTest, NoFileNamedIsAnError) {
  for (const std::string text : {"Provider=SQLite", "Provider=SQLite;",
                                 "Provider=SQLite;Data Source=", "Provider=SQLite;Data Source=''",
                                 "Provider=SQLite;Synchronous=FULL"}) {
    Connection connection;
    ExpectNumber(kFailed, [&] { connection.Open(text); });
    EXPECT_EQ(connection.State(), ObjectState::kClosed) << text;
  }
}

TEST_F(SqliteConnectionTest, AFolderInPlaceOfAFileIsAnError) {
  Connection connection;
  ExpectNumber(kFailed, [&] { connection.Open("Provider=SQLite;Data Source=" + folder()); });
  EXPECT_EQ(connection.State(), ObjectState::kClosed);
}

TEST_F(SqliteConnectionTest, AFileThatIsNoDatabaseIsAnErrorAndIsLeftAlone) {
  const std::string content =
      "This is a letter and no database, and long enough to tell. " + std::string(2000, '.');
  std::ofstream(File()) << content;
  Connection connection;
  ExpectNumber(kFailed, [&] {
    connection.Open(String());
    connection.Execute("SELECT pin FROM stock");
  });
  std::ifstream file(File());
  const std::string kept((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  EXPECT_EQ(kept, content);
}

TEST_F(SqliteConnectionTest, AFileMayHaveAnyName) {
  for (const std::string name :
       {"two words.db", "semi;colon.db", "equals=sign.db", "per%20cent?mode=memory#x.db", "it's.db",
        "quote\".db", "M\xC3\xA9moire \xF0\x9F\x98\x80.db"}) {
    std::string quoted = "\"";
    for (const char c : File(name)) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    Connection connection;
    connection.Open("Provider=SQLite;Data Source=" + quoted + "\"");
    connection.CreateSchema();
    EXPECT_TRUE(std::filesystem::exists(File(name))) << name;
  }
}

TEST_F(SqliteConnectionTest, TheProviderAndTheKeywordsAreReadWithoutCase) {
  Connection connection;
  connection.Open("PROVIDER=sqlite;data source=" + File() + ";BUSY TIMEOUT=10;synchronous=Normal");
  EXPECT_EQ(connection.State(), ObjectState::kOpen);
  EXPECT_TRUE(std::filesystem::exists(File()));
}

TEST_F(SqliteConnectionTest, AnUnknownKeywordOrSettingIsAnErrorThatShowsNoValue) {
  for (const std::string more : {";Password=s3cret", ";Synchronous=s3cret", ";Busy Timeout=s3cret",
                                 ";Cache Size=s3cret", ";No Such Keyword=s3cret", ";s3cret"}) {
    Connection connection;
    const Error error = Refusal([&] { connection.Open(String(more)); });
    EXPECT_EQ(error.number(), kFailed) << more;
    EXPECT_EQ(error.description().find("s3cret"), std::string::npos) << error.description();
    EXPECT_EQ(connection.State(), ObjectState::kClosed) << more;
  }
}

TEST_F(SqliteConnectionTest, TheJournalIsWrittenAhead) {
  MakeDatabase();
  RawSqlite raw(File());
  EXPECT_EQ(raw.One("PRAGMA journal_mode"), "wal");
}

TEST_F(SqliteConnectionTest, EveryCommitIsWithTheDiskUnlessToldOtherwise) {
  const std::vector<std::pair<std::string, std::string>> levels{{"", "2"},
                                                                {";Synchronous=FULL", "2"},
                                                                {";Synchronous=off", "0"},
                                                                {";Synchronous=Normal", "1"},
                                                                {";Synchronous=EXTRA", "3"}};
  for (const auto& [setting, level] : levels) {
    Connection connection;
    sqlite3* const handle = OpenAndCatchHandle(connection, String(setting));
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(RawSqlite::One(handle, "PRAGMA synchronous"), level) << setting;
  }
}

TEST_F(SqliteConnectionTest, TheCacheIsAsLargeAsTheStringSays) {
  Connection connection;
  sqlite3* const handle = OpenAndCatchHandle(connection, String(";Cache Size=1234"));
  ASSERT_NE(handle, nullptr);
  EXPECT_EQ(RawSqlite::One(handle, "PRAGMA cache_size"), "-1234");
}

TEST_F(SqliteConnectionTest, QuotationMarksNeverStandForTexts) {
  MakeDatabase();
  Connection connection;
  sqlite3* const handle = OpenAndCatchHandle(connection, String());
  ASSERT_NE(handle, nullptr);
  EXPECT_THROW(RawSqlite::One(handle, "SELECT count(*) FROM stock WHERE \"nosuch\" = 'x'"),
               std::runtime_error);
  EXPECT_THROW(RawSqlite::One(handle, "CREATE INDEX i ON stock (lot) WHERE \"nosuch\" = 'x'"),
               std::runtime_error);
  ExpectNumber(kRefused,
               [&] { connection.Execute("SELECT count(*) FROM stock WHERE nosuch = 'x'"); });
}

TEST_F(SqliteConnectionTest, TheEnginesOwnMessageAndCodeStayReadable) {
  MakeDatabase();
  Connection connection;
  connection.Open(String());
  const Error table = Refusal([&] { connection.Execute("SELECT pin FROM nosuch"); });
  ExpectError(table, Hex(0x80040E37U), "no such table: nosuch", "Lotrix");
  EXPECT_EQ(table.engineCode(), SQLITE_ERROR);
  const Error column = Refusal([&] { connection.Execute("SELECT nosuch FROM stock"); });
  ExpectError(column, Hex(0x80040E14U), "no such column: nosuch", "Lotrix");
  EXPECT_EQ(column.engineCode(), SQLITE_ERROR);
  RawSqlite(File()).Run("CREATE UNIQUE INDEX one_lot ON stock (lot)");
  connection.Execute("INSERT INTO stock (lot) VALUES ('L1')");
  const Error twice = Refusal([&] { connection.Execute("INSERT INTO stock (lot) VALUES ('L1')"); });
  ExpectError(twice, Hex(0x80040E2FU), "UNIQUE constraint failed: stock.lot", "Lotrix");
  EXPECT_EQ(twice.engineCode(), SQLITE_CONSTRAINT_UNIQUE);
}

TEST_F(SqliteConnectionTest, AnErrorWithoutAnEngineHasNoEngineCode) {
  Connection connection;
  EXPECT_EQ(Refusal([&] { connection.Execute("SELECT pin FROM stock"); }).engineCode(), 0);
  EXPECT_EQ(Refusal([&] { connection.Open("Provider=NoSuchProvider"); }).engineCode(), 0);
}

TEST_F(SqliteConnectionTest, AReadOnlyModeIsNotPermittedToWrite) {
  MakeDatabase();
  Connection connection;
  connection.Mode(ConnectMode::kRead);
  connection.Open(String());
  EXPECT_EQ(connection.Execute("SELECT pin FROM stock")->RecordCount(), 0);
  ExpectNumber(Hex(0x80040E09U),
               [&] { connection.Execute("INSERT INTO stock (lot) VALUES ('L1')"); });
  EXPECT_EQ(RawSqlite(File()).One("SELECT count(*) FROM stock"), "0");
}

TEST_F(SqliteConnectionTest, ABusyDatabaseIsGivenUpAfterTheBusyTimeout) {
  MakeDatabase();
  RawSqlite raw(File());
  raw.Run("BEGIN IMMEDIATE");
  using Clock = std::chrono::steady_clock;
  for (const int timeout : {0, 300}) {
    Connection connection;
    connection.Open(String(";Busy Timeout=" + std::to_string(timeout)));
    const Clock::time_point start = Clock::now();
    const Error error =
        Refusal([&] { connection.Execute("INSERT INTO stock (lot) VALUES ('L1')"); });
    const Clock::duration waited = Clock::now() - start;
    EXPECT_EQ(error.number(), Hex(0x80040E31U)) << error.description();
    EXPECT_EQ(error.description(), "database is locked");
    EXPECT_EQ(error.engineCode() & 0xff, SQLITE_BUSY);
    EXPECT_GE(waited, std::chrono::milliseconds(timeout * 3 / 4));
    EXPECT_LT(waited, std::chrono::milliseconds(timeout + 2000));
    EXPECT_FALSE(connection.InTransaction());
  }
  raw.Run("COMMIT");
  EXPECT_EQ(raw.One("SELECT count(*) FROM stock"), "0");
}

TEST_F(SqliteConnectionTest, ABusyDatabaseIsWaitedFor) {
  MakeDatabase();
  RawSqlite raw(File());
  raw.Run("BEGIN IMMEDIATE");
  raw.Run("INSERT INTO stock (lot) VALUES ('L1')");
  std::thread release([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    raw.Run("COMMIT");
  });
  Connection connection;
  connection.Open(String(";Busy Timeout=20000"));
  EXPECT_NO_THROW(connection.Execute("INSERT INTO stock (lot) VALUES ('L2')"));
  release.join();
  EXPECT_EQ(raw.One("SELECT count(*) FROM stock"), "2");
}

TEST_F(SqliteConnectionTest, ReadersAreNotHeldUpByAWriter) {
  MakeDatabase();
  RawSqlite raw(File());
  raw.Run("INSERT INTO stock (lot) VALUES ('L1')");
  raw.Run("BEGIN IMMEDIATE");
  raw.Run("INSERT INTO stock (lot) VALUES ('L2')");
  Connection connection;
  connection.Open(String(";Busy Timeout=0"));
  EXPECT_EQ(connection.Execute("SELECT lot FROM stock")->RecordCount(), 1);
  raw.Run("COMMIT");
  EXPECT_EQ(connection.Execute("SELECT lot FROM stock")->RecordCount(), 2);
}

// A reader that stands in the middle of its rows holds up the checkpoint.
TEST_F(SqliteConnectionTest, ARecordsetAtItsEndHoldsNothingUp) {
  MakeDatabase();
  RawSqlite raw(File());
  raw.Run("INSERT INTO stock (lot) VALUES ('L1'), ('L2')");
  const std::string checkpoint = "PRAGMA wal_checkpoint(TRUNCATE)";
  Connection connection;
  connection.Open(String());
  Recordset walked;
  walked.Open("SELECT lot FROM stock", connection);
  EXPECT_EQ(raw.One(checkpoint), "1");
  walked.MoveNext();
  walked.MoveNext();
  EXPECT_TRUE(walked.EndOfFile());
  EXPECT_EQ(raw.One(checkpoint), "0");
  Recordset counted;
  counted.Open("SELECT lot FROM stock", connection);
  EXPECT_EQ(counted.RecordCount(), 2);
  EXPECT_EQ(raw.One(checkpoint), "0");
  Recordset closed;
  closed.Open("SELECT lot FROM stock", connection);
  closed.Close();
  EXPECT_EQ(raw.One(checkpoint), "0");
}

TEST_F(SqliteConnectionTest, AColumnMadeMeanwhileIsSeen) {
  MakeDatabase();
  Connection connection;
  connection.Open(String());
  EXPECT_EQ(connection.Execute("SELECT * FROM funding")->Fields().Count(), 1);
  RawSqlite raw(File());
  raw.Run("ALTER TABLE funding ADD COLUMN more TEXT");
  raw.Run("INSERT INTO funding (fundcode, more) VALUES ('F', 'm')");
  const std::unique_ptr<Recordset> rows = connection.Execute("SELECT * FROM funding");
  ASSERT_EQ(rows->Fields().Count(), 2);
  EXPECT_EQ(rows->Fields().Item(1).Name(), "more");
  EXPECT_EQ(TextValue(*rows, 1), "m");
}

TEST_F(SqliteConnectionTest, ManyDifferentStatementsLeaveTheirResultsRight) {
  MakeDatabase();
  RawSqlite raw(File());
  raw.Run("INSERT INTO sectoref (sector) VALUES (10), (11)");
  Connection connection;
  connection.Open(String());
  std::string condition = "sector = 10";
  for (int i = 0; i < 300; ++i) {
    EXPECT_EQ(connection.Execute("SELECT sector FROM sectoref WHERE " + condition)->RecordCount(),
              1);
    condition += " AND sector = 10";
  }
  EXPECT_EQ(connection.Execute("SELECT sector FROM sectoref WHERE sector = 10")->RecordCount(), 1);
}

}  // namespace
}  // namespace lotrix::test

// Failures in odd moments: what is refused there is refused as elsewhere, and the
// objects stay usable.
#include <sys/stat.h>

#include <thread>

#include "tests/support/fixture.h"

namespace lotrix::test {
namespace {

class Faults : public DatabaseTest {};
class SqliteFaults : public Faults {};

TEST_F(Faults, ALongValueForATableThatIsMissingIsNoSuchTable) {
  Execute("DROP TABLE pvaccref");
  lotrix().Connection();
  const Error error = Refusal([&] { lotrix().CheckVaccActive(std::string(5000, 'X')); });
  EXPECT_EQ(error.number(), Numbered(EngineError::kNoSuchTable));
  EXPECT_EQ(Refusal([&] { lotrix().CheckVaccActive("X"); }).number(),
            Numbered(EngineError::kNoSuchTable));
}

TEST_F(Faults, ALongDateThatIsNoneCannotBeConverted) {
  const std::string query = "SELECT pin FROM stock WHERE lot = '" + std::string(5000, 'x') +
                            "' AND datein = {" + std::string(5000, 'x') + "}";
  Connection& open = connection();
  EXPECT_EQ(Refusal([&] { open.Execute(query); }).number(),
            Numbered(EngineError::kValueCannotBeConverted));
  Execute(
      "INSERT INTO provider(pin, sector, active) VALUES('P1', 10, 'Y');"
      "INSERT INTO pvaccref(vaccine, locactiv, maxno) VALUES('DTAP', (1 = 0), 3);"
      "INSERT INTO nextid VALUES('DOSESADM', 1)");
  const Error error =
      Refusal([&] { lotrix().DosesAdministeredUpdate(std::string(5000, 'x'), "P1", "DTAP", "1"); });
  ExpectError(error, Numbered(EngineError::kValueCannotBeConverted), error.description());
  EXPECT_EQ(Query("SELECT count(*) FROM dosesadm"), (std::vector<Row>{{"0"}}));
}

TEST_F(SqliteFaults, AnEnginesErrorBetweenTwoRowsClosesTheRecordset) {
  Execute(
      "INSERT INTO distrib(pin, doses) VALUES('A', 1), ('B', 9223372036854775807),"
      " ('B', 9223372036854775807), ('C', 1)");
  const auto records =
      connection().Execute("SELECT pin, sum(doses) FROM distrib GROUP BY pin ORDER BY pin");
  ASSERT_EQ(records->Fields().Item(0).Value(), Value("A"));
  EXPECT_EQ(Refusal([&] { records->MoveNext(); }).number(),
            Numbered(EngineError::kValueOutOfRange));
  EXPECT_EQ(records->State(), ObjectState::kClosed);
}

TEST_F(Faults, ParenthesesDoNotChangeAComparison) {
  Execute("INSERT INTO physicn(pin, lastname) VALUES('1', 'x'), ('2', 'x  ')");
  for (const std::string condition :
       {"ltrim(lastname) = ('x ')", "(ltrim(lastname)) = ('x ')", "(ltrim(lastname)) IN ('x ')",
        "('x ') = ltrim(lastname)", "((ltrim(lastname))) = (('x '))", "ltrim(lastname) = 'x '"}) {
    const auto found = connection().Execute("SELECT pin FROM physicn WHERE " + condition);
    EXPECT_EQ(found->RecordCount(), 2) << condition;
  }
}

TEST_F(Faults, LikeIsNoWordOfTheDialect) {
  EXPECT_EQ(
      Refusal([&] { connection().Execute("SELECT pin FROM physicn WHERE pin LIKE 'A'"); }).number(),
      Numbered(EngineError::kStatementRefused));
}

TEST_F(Faults, TheSchemaIsNotMadeInsideATransactionOfTheClient) {
  Connection& open = connection();
  open.BeginTrans();
  EXPECT_EQ(Refusal([&] { open.CreateSchema(); }).number(), Numbered(EngineError::kFailed));
  EXPECT_TRUE(open.InTransaction());
  open.RollbackTrans();
}

TEST(CollectionWalk, ReadingByPositionInsideIsHarmless) {
  Collection items;
  for (int i = 1; i <= 5; ++i) items.Add(Value(std::int64_t{i}));
  items.Remove(2);
  std::vector<std::int64_t> seen;
  for (const Value& item : items) {
    EXPECT_EQ(items.Item(1), Value(std::int64_t{1}));
    seen.push_back(std::get<std::int64_t>(item));
  }
  EXPECT_EQ(seen, (std::vector<std::int64_t>{1, 3, 4, 5}));
}

TEST(NewFile, SeveralThatOpenItAtOnceWaitForEachOther) {
  for (int round = 0; round < 10; ++round) {
    const TemporaryFolder folder;
    std::vector<std::thread> clients;
    std::vector<int> failed(8);
    for (std::size_t client = 0; client < failed.size(); ++client) {
      clients.emplace_back([&, client] {
        try {
          Connection connection;
          connection.Open("Provider=SQLite;Data Source=" + folder.path() + "/new.db");
        } catch (const Error& error) {
          failed[client] = error.number();
        }
      });
    }
    for (std::thread& client : clients) client.join();
    EXPECT_EQ(failed, std::vector<int>(8));
  }
}

TEST(LogPipe, APipeThatNobodyReadsHoldsNothingUp) {
  const TemporaryFolder folder;
  const std::string pipe = folder.path() + "/pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  cLotrix service(Host{.clock = {}, .notify = {}, .logPath = pipe});
  service.openConnection("Provider=SQLite;Data Source=" + folder.path() + "/a.db");
  EXPECT_EQ(service.Connection()->State(), ObjectState::kOpen);
}

// A day passes with the first statement that reaches the engine.
class Midnight : public DatabaseTest {
 protected:
  cLotrix& LateLotrix() {
    Host host = MakeHost();
    host.clock = [this] { return late_ ? Now() + std::chrono::hours(24) : Now(); };
    service_ = std::make_unique<cLotrix>(host);
    service_->openConnection(database().ConnectionString());
    Watch(*service_->Connection(), [this](const std::string&) {
      late_ = true;
      return std::nullopt;
    });
    return *service_;
  }

 private:
  bool late_ = false;
  std::unique_ptr<cLotrix> service_;
};

TEST_F(Midnight, AnAdjustmentIsOfTheDayOnWhichItsCallBegan) {
  Execute(
      "INSERT INTO provider(pin, sector, active) VALUES('P1', 10, 'Y'), ('D1', 30, 'Y');"
      "INSERT INTO stock(vaccine, lot) VALUES('DTAP', 'L1'); INSERT INTO actref VALUES('Lo', 5)");
  LateLotrix().providerInventoryAdjustmentUpdate("D1", "1/5/2026", "1/5/2026", "Lo", "P1", "DTAP",
                                                 "L1", 1);
  EXPECT_EQ(Query("SELECT chgdate FROM distrib"), (std::vector<Row>{{"2026-11-20"}}));
}

TEST_F(Midnight, CountedStockIsOfTheDayOnWhichItsCallBegan) {
  Execute(
      "INSERT INTO pvaccref(vaccine, locactiv) VALUES('DTAP', (1 = 0));"
      "INSERT INTO nextid VALUES('PROVHAS', 1)");
  LateLotrix().provinvAdd("P1", "DTAP", "3", "1/5/2026");
  EXPECT_EQ(Query("SELECT chgdate FROM provhas"), (std::vector<Row>{{"2026-11-20"}}));
}

}  // namespace
}  // namespace lotrix::test

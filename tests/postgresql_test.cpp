// What of PostgreSQL shows through the connection: its strings, its server's going
// and coming, its errors, its settings.
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "lotrix/connection.h"
#include "lotrix/recordset.h"
#include "src/database/statement.h"
#include "src/utility/keys_and_lookups.h"
#include "tests/support/cutting_proxy.h"
#include "tests/support/engine_postgresql.h"
#include "tests/support/fixture.h"

namespace lotrix::test {
namespace {

using Texts = std::vector<std::string>;
using Clock = std::chrono::steady_clock;

constexpr std::int32_t Hex(std::uint32_t number) { return static_cast<std::int32_t>(number); }

constexpr std::int32_t kFailed = Hex(0x80004005U);
constexpr std::int32_t kRefused = Hex(0x80040E14U);
constexpr std::int32_t kNoTable = Hex(0x80040E37U);
constexpr std::int32_t kNoValue = Hex(0x80040E07U);
constexpr std::int32_t kViolated = Hex(0x80040E2FU);
constexpr std::int32_t kOutOfRange = Hex(0x80040E57U);
constexpr std::int32_t kBusy = Hex(0x80040E31U);
constexpr std::int32_t kNotPermitted = Hex(0x80040E09U);
constexpr std::int32_t kLoginRefused = Hex(0x80040E4DU);
constexpr std::int32_t kNotReachable = Hex(0x8004D01CU);
constexpr std::int32_t kInDoubt = Hex(0x8004D016U);

void ExpectNumber(std::int32_t number, const std::function<void()>& call) {
  const Error error = Refusal(call);
  EXPECT_EQ(error.number(), number) << error.description();
  EXPECT_EQ(error.source(), "Lotrix");
  EXPECT_NE(error.description(), "");
}

// An environment variable, as long as the object is there.
class Variable {
 public:
  Variable(std::string name, const std::string& value) : name_(std::move(name)) {
    if (const char* const before = std::getenv(name_.c_str())) before_ = before;
    setenv(name_.c_str(), value.c_str(), 1);
  }
  ~Variable() {
    if (before_) {
      setenv(name_.c_str(), before_->c_str(), 1);
    } else {
      unsetenv(name_.c_str());
    }
  }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;

 private:
  std::string name_;
  std::optional<std::string> before_;
};

class PostgresqlConnectionTest : public DatabaseTest {
 protected:
  [[nodiscard]] std::string String() { return database().ConnectionString(); }
  [[nodiscard]] std::string Name() { return Query("SELECT current_database()")[0][0]; }
  // With these keywords behind the provider: @ stands for the server, # for the
  // database and ! for the @ of a URI.
  [[nodiscard]] std::string StringOf(std::string keywords) {
    for (std::size_t at = 0; at < keywords.size(); ++at) {
      if (keywords[at] == '@') {
        keywords.replace(at, 1, PostgresqlServer());
      } else if (keywords[at] == '#') {
        keywords.replace(at, 1, Name());
      } else if (keywords[at] == '!') {
        keywords[at] = '@';
      }
    }
    return "Provider=PostgreSQL;" + keywords;
  }
  void ExpectOpens(const std::string& keywords) {
    SCOPED_TRACE(keywords);
    Connection connection;
    ASSERT_NO_THROW(connection.Open(StringOf(keywords)));
    EXPECT_EQ(connection.State(), ObjectState::kOpen);
    EXPECT_EQ(connection.Execute("SELECT lot FROM stock")->RecordCount(), 0);
  }
  // Without any of the values, wherever they stand.
  void ExpectDoesNotOpen(const std::string& keywords, std::int32_t number,
                         const Texts& values = {"s3cret"}) {
    SCOPED_TRACE(keywords);
    Connection connection;
    const Error error = Refusal([&] { connection.Open(StringOf(keywords)); });
    EXPECT_EQ(error.number(), number) << error.description();
    EXPECT_EQ(error.source(), "Lotrix");
    for (const std::string& value : values) {
      EXPECT_EQ(error.description().find(value), std::string::npos) << error.description();
    }
    EXPECT_EQ(connection.State(), ObjectState::kClosed);
  }
  // For every session of the database that opens from now on.
  void Set(const std::string& setting) {
    RawPostgresql("postgres", "admin").Execute("ALTER DATABASE " + Name() + " SET " + setting);
  }
  [[nodiscard]] std::string StockCount() { return Query("SELECT count(*) FROM stock")[0][0]; }
};

// --- Connection strings ------------------------------------------------------

TEST_F(PostgresqlConnectionTest, OpensByTheKeywordsOfTheContract) {
  ExpectOpens("Host=@;Port=5432;Database=#;User ID=clerk");
  ExpectOpens("Host=@;Database=#;User ID=clerk;Password=of no use here");
  ExpectOpens("host=@;PORT=5432;dataBase=#;uSER id=clerk");
  ExpectOpens("Host=\"@\";Database='#';User ID=\"clerk\"");
  ExpectOpens("  Host = @ ; Database = # ;; User  ID = clerk ;");
}

TEST_F(PostgresqlConnectionTest, OpensByTheKeywordsOfTheLibrary) {
  ExpectOpens("host=@;port=5432;dbname=#;user=clerk");
  ExpectOpens("Host=@;Database=#;User ID=clerk;connect_timeout=5;sslmode=disable");
  ExpectOpens("Host=@;Database=#;User ID=clerk;Target_Session_Attrs=read-write");
}

TEST_F(PostgresqlConnectionTest, AKeywordOfTheLibraryReachesTheServer) {
  Connection named;
  named.Open(String() + ";application_name=front desk 7");
  EXPECT_EQ(Query("SELECT count(*) FROM pg_stat_activity WHERE application_name = 'front desk 7'"),
            (std::vector<Row>{{"1"}}));
}

TEST_F(PostgresqlConnectionTest, OpensByUri) {
  ExpectOpens("URI=postgresql://clerk!/#?host=@");
  ExpectOpens("URI=postgres://clerk!/#?host=@&port=5432&sslmode=disable");
  ExpectOpens("uri='postgresql:///?host=@&dbname=#&user=clerk'");
}

TEST_F(PostgresqlConnectionTest, OpensByUriAndKeywords) {
  ExpectOpens("URI=postgresql:///nosuch?host=@;Database=#;User ID=clerk");
}

TEST_F(PostgresqlConnectionTest, TheFirstHostThatAnswersIsTaken) {
  const TemporaryFolder empty;
  ExpectOpens("Host=" + empty.path() + ",@;Database=#;User ID=clerk");
  ExpectOpens("Host=@," + empty.path() + ";Database=#;User ID=clerk");
}

TEST_F(PostgresqlConnectionTest, TheArgumentsOfOpenGoBeforeTheString) {
  Connection connection;
  connection.Open(StringOf("Host=@;Database=#;User ID=nobody;Password=wrong"), "guarded",
                  "open sesame");
  EXPECT_EQ(connection.State(), ObjectState::kOpen);
}

TEST_F(PostgresqlConnectionTest, WhatCannotBeTakenIsAnErrorThatShowsNoValue) {
  const std::string good = "Host=@;Database=#;User ID=clerk";
  for (const std::string more :
       {";No Such Keyword=s3cret", ";Data Source=s3cret", ";Synchronous=s3cret", ";s3cret",
        ";sslmode=s3cret", ";Port=s3cret", ";connect_timeout=s3cret",
        ";target_session_attrs=s3cret", ";URI=s3cret", ";URI=mysql://s3cret",
        ";URI=postgresql:///?s3cret=s3cret", ";URI=postgresql://s3cret:port:1/x"}) {
    ExpectDoesNotOpen(good + more, kFailed);
  }
  ExpectDoesNotOpen(good + ";=s3cret", kFailed);
}

TEST_F(PostgresqlConnectionTest, AConnectionForReplicationCannotBeAskedFor) {
  ExpectDoesNotOpen("Host=@;Database=#;User ID=clerk;replication=database", kFailed);
}

TEST_F(PostgresqlConnectionTest, AHostThatSaysNothingIsGivenUpAfterTheTimeGiven) {
  const TemporaryFolder folder;
  const std::string path = folder.path() + "/.s.PGSQL.5432";
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof(address.sun_path) - 1);
  const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_EQ(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
  ASSERT_EQ(listen(listener, 1), 0);
  const Clock::time_point start = Clock::now();
  ExpectDoesNotOpen("Host=" + folder.path() + ";Database=x;User ID=clerk;connect_timeout=2",
                    kNotReachable);
  EXPECT_LT(Clock::now() - start, std::chrono::seconds(10));
  close(listener);
}

TEST_F(PostgresqlConnectionTest, NothingThatListensIsNotReachable) {
  const TemporaryFolder s3cret;
  ExpectDoesNotOpen("Host=" + s3cret.path() + ";Database=#;User ID=clerk", kNotReachable,
                    {s3cret.path()});
  ExpectDoesNotOpen("Host=/no/such/s3cret;Database=#;User ID=clerk", kNotReachable);
  ExpectDoesNotOpen("Host=127.0.0.1;Port=1;Database=#;User ID=clerk;Password=s3cret",
                    kNotReachable);
  ExpectDoesNotOpen("Host=@;Port=5433;Database=#;User ID=clerk;Password=s3cret", kNotReachable);
  ExpectDoesNotOpen("URI=postgresql://clerk:s3cret!127.0.0.1:1/x", kNotReachable);
}

TEST_F(PostgresqlConnectionTest, ALoginIsRefusedWithoutShowingAnything) {
  ExpectDoesNotOpen("Host=@;Database=#;User ID=guarded;Password=s3cret", kLoginRefused,
                    {"s3cret", "guarded"});
  ExpectDoesNotOpen("Host=@;Database=#;User ID=guarded", kLoginRefused, {"guarded"});
  ExpectDoesNotOpen("Host=@;Database=#;User ID=nosuchclerk;Password=s3cret", kLoginRefused,
                    {"s3cret", "nosuchclerk"});
}

TEST_F(PostgresqlConnectionTest, NoSuchDatabaseIsAnErrorThatShowsNothing) {
  ExpectDoesNotOpen("Host=@;Database=nosuchthing;User ID=clerk;Password=s3cret", kFailed,
                    {"s3cret", "nosuchthing"});
}

TEST_F(PostgresqlConnectionTest, ThePasswordIsOfTheStringTheEnvironmentOrTheFile) {
  const std::string user = "Host=@;Database=#;User ID=guarded";
  const auto opens = [&](const std::string& keywords) {
    Connection connection;
    try {
      connection.Open(StringOf(keywords));
    } catch (const Error& error) {
      EXPECT_EQ(error.number(), kLoginRefused) << error.description();
    }
    return connection.State() == ObjectState::kOpen;
  };
  EXPECT_FALSE(opens(user));
  EXPECT_TRUE(opens(user + ";Password=open sesame"));
  EXPECT_TRUE(opens("URI=postgresql://guarded:open%20sesame!/#?host=@"));
  {
    const Variable password("PGPASSWORD", "open sesame");
    EXPECT_TRUE(opens(user));
    EXPECT_FALSE(opens(user + ";Password=wrong"));
  }
  const TemporaryFolder folder;
  const std::string file = folder.path() + "/passwords";
  std::ofstream(file) << "*:*:*:guarded:open sesame\n";
  ASSERT_EQ(chmod(file.c_str(), 0600), 0);
  const Variable passwords("PGPASSFILE", file);
  EXPECT_TRUE(opens(user));
}

TEST_F(PostgresqlConnectionTest, AReadOnlyConnectionReadsAndIsNotPermittedToWrite) {
  Execute("INSERT INTO stock (lot) VALUES ('L1')");
  Connection connection;
  connection.Mode(ConnectMode::kRead);
  connection.Open(String());
  EXPECT_EQ(connection.Execute("SELECT lot FROM stock")->RecordCount(), 1);
  ExpectNumber(kNotPermitted, [&] { connection.Execute("DELETE FROM stock"); });
  connection.BeginTrans();
  ExpectNumber(kNotPermitted, [&] { connection.Execute("UPDATE stock SET lot = 'L2'"); });
  connection.RollbackTrans();
  EXPECT_EQ(Query("SELECT lot FROM stock"), (std::vector<Row>{{"L1"}}));
}

// --- Errors ------------------------------------------------------------------

TEST_F(PostgresqlConnectionTest, ErrorsHaveTheirNumbersTheServersMessageAndItsCode) {
  Execute("CREATE UNIQUE INDEX one_lot ON stock (lot); INSERT INTO stock (lot) VALUES ('L1')");
  Execute("ALTER TABLE funding ALTER COLUMN fundcode SET NOT NULL");
  struct Expected {
    std::string text;
    std::int32_t number;
    std::string description;
    int code;
  };
  // The five characters read as a number to base 36.
  const auto code = [](const std::string& state) { return std::stoi(state, nullptr, 36); };
  for (const Expected& expected : std::vector<Expected>{
           {"SELECT nosuch FROM stock", kRefused, "column \"nosuch\" does not exist",
            code("42703")},
           {"SELECT pin FROM nosuch", kNoTable, "relation \"nosuch\" does not exist",
            code("42P01")},
           {"UPDATE nosuch SET pin = 'A'", kNoTable, "relation \"nosuch\" does not exist",
            code("42P01")},
           {"INSERT INTO stock (doses) VALUES ('many')", kNoValue,
            "invalid input syntax for type bigint: \"many\"", code("22P02")},
           {"INSERT INTO stock (lot) VALUES ('L1')", kViolated,
            "duplicate key value violates unique constraint \"one_lot\"", code("23505")},
           {"INSERT INTO funding (fundcode) VALUES (NULL)", kViolated,
            "null value in column \"fundcode\" of relation \"funding\" violates not-null "
            "constraint",
            code("23502")}}) {
    SCOPED_TRACE(expected.text);
    const Error error = Refusal([&] { connection().Execute(expected.text); });
    ExpectError(error, expected.number, expected.description, "Lotrix");
    EXPECT_EQ(error.engineCode(), expected.code);
    EXPECT_EQ(connection().State(), ObjectState::kOpen);
  }
  EXPECT_EQ(code("23505"), 3505685);
  EXPECT_EQ(StockCount(), "1");
}

TEST_F(PostgresqlConnectionTest, AValueBeyondItsColumnIsOutOfRange) {
  for (const std::string number : {"99999999999999999999", "-9223372036854775809"}) {
    ExpectNumber(kOutOfRange, [&] {
      connection().Execute("INSERT INTO stock (doses) VALUES (" + number + ")");
    });
  }
  ExpectNumber(kOutOfRange,
               [&] { connection().Execute("INSERT INTO pvaccref (cost) VALUES (1E999)"); });
  connection().Execute("INSERT INTO stock (doses) VALUES (9223372036854775807)");
  EXPECT_EQ(Query("SELECT doses FROM stock"), (std::vector<Row>{{"9223372036854775807"}}));
}

TEST_F(PostgresqlConnectionTest, ANumberBeyondTheLargestDoubleCannotBeRead) {
  Execute("INSERT INTO dosesadm (pin, dose) VALUES ('A1', 1e400), ('A2', -1e400), ('A3', 1e-400)");
  const auto read = [&](const std::string& pin) {
    return connection()
        .Execute("SELECT dose FROM dosesadm WHERE pin = '" + pin + "'")
        ->Fields()
        .Item(0)
        .Value();
  };
  ExpectNumber(kOutOfRange, [&] { static_cast<void>(read("A1")); });
  ExpectNumber(kOutOfRange, [&] { static_cast<void>(read("A2")); });
  EXPECT_TRUE(read("A3") == Value(0.0));
}

TEST_F(PostgresqlConnectionTest, WhatWaitsTooLongIsBusy) {
  Set("lock_timeout = '100ms'");
  connection().Close();
  RawPostgresql other(Name(), "clerk");
  other.Execute("BEGIN; LOCK TABLE stock");
  ExpectNumber(kBusy, [&] { connection().Execute("INSERT INTO stock (lot) VALUES ('L1')"); });
  ExpectNumber(kBusy, [&] { connection().Execute("SELECT lot FROM stock"); });
  EXPECT_FALSE(connection().InTransaction());
  other.Execute("COMMIT");
  connection().Execute("INSERT INTO stock (lot) VALUES ('L2')");
  EXPECT_EQ(Query("SELECT lot FROM stock"), (std::vector<Row>{{"L2"}}));
}

TEST_F(PostgresqlConnectionTest, AStatementThatTakesTooLongIsBusy) {
  Set("statement_timeout = '100ms'");
  connection().Close();
  std::string rows = "(0)";
  for (int i = 1; i < 1000; ++i) rows += ",(" + std::to_string(i) + ")";
  Execute("INSERT INTO sectoref (sector) VALUES " + rows);
  ExpectNumber(kBusy, [&] {
    connection().Execute("SELECT count(*) FROM sectoref a, sectoref b, sectoref c");
  });
  EXPECT_EQ(connection().Execute("SELECT sector FROM sectoref WHERE sector = 1")->RecordCount(), 1);
}

TEST_F(PostgresqlConnectionTest, ADeadlockIsBusyForOneOfTheTwo) {
  Set("deadlock_timeout = '100ms'");
  connection().Close();
  Execute("INSERT INTO stock (lot, doses) VALUES ('L1', 0), ('L2', 0)");
  const auto take = [](Connection& client, const std::string& lot) {
    client.Execute("UPDATE stock SET doses = doses + 1 WHERE lot = '" + lot + "'");
  };
  Connection& mine = connection();
  Connection other;
  other.Open(String());
  mine.BeginTrans();
  other.BeginTrans();
  take(mine, "L1");
  take(other, "L2");
  std::int32_t refused = 0;
  std::thread crossing([&] {
    try {
      take(other, "L1");
    } catch (const Error& error) {
      refused = error.number();
    }
    if (refused != 0) {
      other.RollbackTrans();
    } else {
      other.CommitTrans();
    }
  });
  std::int32_t mineRefused = 0;
  try {
    take(mine, "L2");
  } catch (const Error& error) {
    mineRefused = error.number();
  }
  if (mineRefused != 0) {
    mine.RollbackTrans();
  } else {
    mine.CommitTrans();
  }
  crossing.join();
  EXPECT_EQ((std::set<std::int32_t>{refused, mineRefused}), (std::set<std::int32_t>{0, kBusy}));
  EXPECT_EQ(Query("SELECT lot, doses FROM stock ORDER BY lot"),
            (std::vector<Row>{{"L1", "1"}, {"L2", "1"}}));
}

TEST_F(PostgresqlConnectionTest, WithoutTheRightsNothingIsPermitted) {
  Connection guarded;
  guarded.Open(StringOf("Host=@;Database=#;User ID=guarded;Password=open sesame"));
  ExpectNumber(kNotPermitted, [&] { guarded.Execute("SELECT lot FROM stock"); });
  ExpectNumber(kNotPermitted, [&] { guarded.Execute("DELETE FROM stock"); });
  EXPECT_EQ(guarded.State(), ObjectState::kOpen);
}

TEST_F(PostgresqlConnectionTest, AnIndexedTextIsStoredUpToItsLimitAndRefusedBeyond) {
  // Letters that no compression makes shorter.
  std::string text;
  std::uint32_t random = 1;
  while (text.size() < 9000) {
    random = random * 1664525 + 1013904223;
    text += static_cast<char>('(' + (random >> 16) % 80);
  }
  const std::string longest = text.substr(0, database().LongestIndexedText());
  connection().Execute("INSERT INTO stock (lot) VALUES ('" + longest + "')");
  EXPECT_EQ(
      connection().Execute("SELECT pin FROM stock WHERE lot = '" + longest + "'")->RecordCount(),
      1);
  ExpectNumber(kOutOfRange,
               [&] { connection().Execute("INSERT INTO stock (lot) VALUES ('" + text + "')"); });
  // What no operation filters by has no limit.
  connection().Execute("UPDATE stock SET tracking = '" + text + "'");
  EXPECT_TRUE(Query("SELECT lot, tracking FROM stock") == (std::vector<Row>{{longest, text}}));
}

// --- Settings ------------------------------------------------------------------

TEST_F(PostgresqlConnectionTest, SettingsOfTheServerAndTheEnvironmentChangeNoAnswer) {
  for (const std::string setting :
       {"datestyle = 'German'", "standard_conforming_strings = off", "extra_float_digits = -10",
        "bytea_output = 'escape'", "client_encoding = 'LATIN1'", "timezone = 'Pacific/Apia'",
        "intervalstyle = 'sql_standard'", "transform_null_equals = on", "lc_numeric = 'C.UTF-8'",
        "default_transaction_isolation = 'serializable'", "array_nulls = off",
        "quote_all_identifiers = on", "backslash_quote = on", "from_collapse_limit = 1",
        "plan_cache_mode = 'force_generic_plan'", "client_min_messages = 'debug1'"}) {
    Set(setting);
  }
  const Variable style("PGDATESTYLE", "SQL, DMY");
  const Variable encoding("PGCLIENTENCODING", "LATIN1");
  const Variable zone("PGTZ", "Pacific/Apia");
  const Variable options("PGOPTIONS", "-c datestyle=SQL,DMY -c extra_float_digits=-5");
  Connection hostile;
  hostile.Open(String());
  const std::string text = "back\\slash é😀";
  const std::string date = "3/4/2005";
  Statement insert;
  insert << "INSERT INTO pvaccref (vaccine, maker, begin, cost, locactiv) VALUES ('" << text
         << "', '\\\\', {" << date << "}, " << 0.1 << ", .T.)";
  hostile.Execute(insert);
  hostile.Execute("UPDATE pvaccref SET cost = 8.33333333333333E-02 WHERE begin = {3/4/2005}");
  EXPECT_EQ(Query("SELECT vaccine, maker, \"begin\", cost, locactiv FROM pvaccref"),
            (std::vector<Row>{{text, "\\\\", "2005-03-04", "0.0833333333333333", "1"}}));
  const auto rows = hostile.Execute("SELECT vaccine, maker, begin, cost, locactiv FROM pvaccref");
  EXPECT_TRUE(rows->Fields().Item(0).Value() == Value(text));
  EXPECT_TRUE(rows->Fields().Item(1).Value() == Value(std::string("\\\\")));
  EXPECT_TRUE(rows->Fields().Item(2).Value() == Value(Date{2005, 3, 4}));
  EXPECT_TRUE(rows->Fields().Item(3).Value() == Value(8.33333333333333E-02));
  EXPECT_TRUE(rows->Fields().Item(4).Value() == Value(true));
  EXPECT_EQ(hostile.Execute("SELECT vaccine FROM pvaccref WHERE end = NULL")->RecordCount(), 0);
}

TEST_F(PostgresqlConnectionTest, ADoubleComesBackAsItIs) {
  Set("extra_float_digits = -15");
  connection().Close();
  for (const std::string number : {"0.30000000000000004", "5e-324", "1.7976931348623157e308",
                                   "-2.2250738585072014e-308", "123456789012345680"}) {
    Execute("DELETE FROM pvaccref; INSERT INTO pvaccref (cost) VALUES (" + number + ")");
    const auto rows = connection().Execute("SELECT cost FROM pvaccref");
    EXPECT_EQ(std::get<double>(rows->Fields().Item(0).Value()),
              std::strtod(number.c_str(), nullptr))
        << number;
  }
}

TEST_F(PostgresqlConnectionTest, NothingIsWrittenToStandardError) {
  ::testing::internal::CaptureStderr();
  {
    Connection other;
    other.Open(String());
    other.CreateSchema();
    ExpectNumber(kRefused, [&] { other.Execute("SELECT nosuch FROM stock"); });
  }
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

// --- A server that goes ----------------------------------------------------------

class PostgresqlLossTest : public PostgresqlConnectionTest {
 protected:
  PostgresqlLossTest() : proxy_(PostgresqlServer()) {}

  [[nodiscard]] std::string Proxied() {
    return "Provider=PostgreSQL;Host=" + proxy_.folder() + ";Database=" + Name() + ";User ID=clerk";
  }
  // Open through the proxy, and each statement of these tests known to the server.
  void OpenProxied(Connection& connection) {
    connection.Open(Proxied());
    for (int times = 0; times < 2; ++times) {
      Insert(connection, "warm");
      Select(connection);
      connection.Execute("DELETE FROM stock WHERE lot = 'warm'");
    }
    ASSERT_EQ(StockCount(), "0");
  }
  // Right behind an answer the server is taken to be there.
  static void BecomeIdle() { std::this_thread::sleep_for(std::chrono::milliseconds(5)); }
  static void Insert(Connection& connection, const std::string& lot) {
    Statement insert;
    insert << "INSERT INTO stock (lot) VALUES ('" << lot << "')";
    connection.Execute(insert);
  }
  static std::int32_t Select(Connection& connection) {
    return connection.Execute("SELECT lot FROM stock")->RecordCount();
  }
  // Ends the server's side of every session of the database but the test's own.
  void EndSessions() {
    BecomeIdle();
    Execute(
        "SELECT pg_terminate_backend(pid, 10000) FROM pg_stat_activity WHERE datname = "
        "current_database() AND pid <> pg_backend_pid()");
  }
  void WaitUntilOneWaitsForALock() { WaitForSessions("wait_event_type = 'Lock'", "1"); }
  // A statement whose line is cut still comes to its end at the server.
  void WaitUntilTheServerHasEndedTheOthers() { WaitForSessions("pid <> pg_backend_pid()", "0"); }
  void CutWhileIdle() {
    BecomeIdle();
    proxy().Cut();
  }
  CuttingProxy& proxy() { return proxy_; }

 private:
  void WaitForSessions(const std::string& condition, const std::string& count) {
    for (int i = 0; i < 2000; ++i) {
      if (Query("SELECT count(*) FROM pg_stat_activity WHERE datname = current_database() AND " +
                condition) == std::vector<Row>{{count}}) {
        return;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    FAIL() << "never " << count << " sessions with " << condition;
  }

  CuttingProxy proxy_;
};

TEST_F(PostgresqlLossTest, AWriteOnALineThatWasCutWhileIdleIsNotSent) {
  Connection connection;
  OpenProxied(connection);
  CutWhileIdle();
  EXPECT_EQ(connection.State(), ObjectState::kOpen);
  ExpectNumber(kNotReachable, [&] { Insert(connection, "L1"); });
  EXPECT_EQ(connection.State(), ObjectState::kClosed);
  ExpectNumber(3704, [&] { Insert(connection, "L1"); });
  EXPECT_EQ(StockCount(), "0");
  connection.Open(Proxied());
  Insert(connection, "L2");
  EXPECT_EQ(Query("SELECT lot FROM stock"), (std::vector<Row>{{"L2"}}));
}

TEST_F(PostgresqlLossTest, OfWritesOneBehindAnotherTheLastAloneIsInDoubtWhenTheLineIsCut) {
  int inDoubt = 0;
  for (int round = 0; round < 10; ++round) {
    Execute("DELETE FROM stock");
    Connection connection;
    OpenProxied(connection);
    std::thread cutting([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(3));
      proxy().Cut();
    });
    int done = 0;
    std::optional<Error> failure;
    while (!failure) {
      try {
        Insert(connection, "L" + std::to_string(done));
        ++done;
      } catch (const Error& error) {
        failure = error;
      }
    }
    cutting.join();
    EXPECT_EQ(connection.State(), ObjectState::kClosed);
    EXPECT_NE(failure->description(), "");
    WaitUntilTheServerHasEndedTheOthers();
    const Rows lots = Query("SELECT lot FROM stock");
    const std::set<Row> different(lots.begin(), lots.end());
    EXPECT_EQ(different.size(), lots.size());
    const int stored = static_cast<int>(lots.size());
    if (failure->number() == kInDoubt) {
      ++inDoubt;
      EXPECT_TRUE(stored == done || stored == done + 1) << stored << " of " << done;
    } else {
      EXPECT_EQ(failure->number(), kNotReachable);
      EXPECT_EQ(stored, done);
    }
  }
  EXPECT_GT(inDoubt, 0);
}

TEST_F(PostgresqlLossTest, AReadOnALineThatWasCutWhileIdleIsNotReachable) {
  Connection connection;
  OpenProxied(connection);
  CutWhileIdle();
  ExpectNumber(kNotReachable, [&] { Select(connection); });
  EXPECT_EQ(connection.State(), ObjectState::kClosed);
}

TEST_F(PostgresqlLossTest, AWriteWhoseAnswerIsLostIsInDoubtAndDoneOnce) {
  Connection connection;
  OpenProxied(connection);
  proxy().LoseNextAnswer();
  ExpectNumber(kInDoubt, [&] { Insert(connection, "L1"); });
  EXPECT_EQ(connection.State(), ObjectState::kClosed);
  EXPECT_EQ(Query("SELECT lot FROM stock"), (std::vector<Row>{{"L1"}}));
  connection.Open(Proxied());
  Insert(connection, "L2");
  EXPECT_EQ(Query("SELECT lot FROM stock ORDER BY lot"), (std::vector<Row>{{"L1"}, {"L2"}}));
}

TEST_F(PostgresqlLossTest, AReadWhoseAnswerIsLostLeavesNothingInDoubt) {
  Connection connection;
  OpenProxied(connection);
  proxy().LoseNextAnswer();
  ExpectNumber(kNotReachable, [&] { Select(connection); });
  EXPECT_EQ(connection.State(), ObjectState::kClosed);
}

TEST_F(PostgresqlLossTest, ACommitWhoseAnswerIsLostIsInDoubt) {
  Connection connection;
  OpenProxied(connection);
  connection.BeginTrans();
  Insert(connection, "L1");
  proxy().LoseNextAnswer();
  ExpectNumber(kInDoubt, [&] { connection.CommitTrans(); });
  EXPECT_EQ(connection.State(), ObjectState::kClosed);
  EXPECT_EQ(Query("SELECT lot FROM stock"), (std::vector<Row>{{"L1"}}));
}

TEST_F(PostgresqlLossTest, ATransactionIsGoneWithItsServer) {
  Connection connection;
  OpenProxied(connection);
  connection.BeginTrans();
  Insert(connection, "L1");
  CutWhileIdle();
  ExpectNumber(kNotReachable, [&] { Insert(connection, "L2"); });
  EXPECT_EQ(connection.State(), ObjectState::kClosed);
  connection.Open(Proxied());
  EXPECT_FALSE(connection.InTransaction());
  Insert(connection, "L3");
  EXPECT_EQ(Query("SELECT lot FROM stock"), (std::vector<Row>{{"L3"}}));
}

TEST_F(PostgresqlLossTest, ClosingALostConnectionIsHarmless) {
  {
    Connection connection;
    OpenProxied(connection);
    CutWhileIdle();
    connection.Close();
    EXPECT_EQ(connection.State(), ObjectState::kClosed);
    connection.Open(Proxied());
    CutWhileIdle();
  }
  Connection connection;
  OpenProxied(connection);
  Recordset recordset;
  recordset.Open("SELECT lot FROM stock", connection);
  CutWhileIdle();
  ExpectNumber(kNotReachable, [&] { Insert(connection, "L1"); });
  ExpectNumber(3704, [&] { connection.Close(); });
  EXPECT_EQ(recordset.State(), ObjectState::kClosed);
}

TEST_F(PostgresqlLossTest, ASessionThatTheServerEndedIsFoundOutByTheNextCall) {
  Connection& connection = this->connection();
  connection.Execute("INSERT INTO stock (lot) VALUES ('L1')");
  EndSessions();
  const Error error = Refusal([&] { connection.Execute("INSERT INTO stock (lot) VALUES ('L2')"); });
  // The server's last word.
  ExpectError(error, kNotReachable, "terminating connection due to administrator command",
              "Lotrix");
  EXPECT_EQ(error.engineCode(), std::stoi("57P01", nullptr, 36));
  EXPECT_EQ(connection.State(), ObjectState::kClosed);
  EXPECT_EQ(Query("SELECT lot FROM stock"), (std::vector<Row>{{"L1"}}));
}

TEST_F(PostgresqlLossTest, AWriteThatIsEndedWhileItWaitsIsInDoubtAndNotRepeated) {
  Connection& connection = this->connection();
  connection.Execute("INSERT INTO stock (lot) VALUES ('L1')");
  RawPostgresql other(Name(), "admin");
  other.Execute("BEGIN; LOCK TABLE stock");
  std::thread ending([&] {
    WaitUntilOneWaitsForALock();
    Execute(
        "SELECT pg_terminate_backend(pid, 10000) FROM pg_stat_activity WHERE datname = "
        "current_database() AND wait_event_type = 'Lock'");
  });
  ExpectNumber(kInDoubt, [&] { connection.Execute("INSERT INTO stock (lot) VALUES ('L2')"); });
  ending.join();
  other.Execute("COMMIT");
  EXPECT_EQ(connection.State(), ObjectState::kClosed);
  EXPECT_EQ(Query("SELECT lot FROM stock"), (std::vector<Row>{{"L1"}}));
}

TEST_F(PostgresqlLossTest, TheServiceObjectConnectsAgainByItself) {
  Execute(
      "INSERT INTO pvaccref (vaccine) VALUES ('HEPA'); INSERT INTO provider (pin, sector, active) "
      "VALUES ('P1', 10, 'Y'); INSERT INTO physicn (pin, lastname) VALUES ('P1', 'SMITH')");
  EXPECT_EQ(lotrix().vaccineReferenceTableRead().Rows(), 1);
  EndSessions();
  const Error read = Refusal([&] { static_cast<void>(lotrix().vaccineReferenceTableRead()); });
  EXPECT_EQ(read.number(), kNotReachable);
  EXPECT_EQ(read.source(), "LOTRIX DLL");
  EXPECT_EQ(lotrix().vaccineReferenceTableRead().Rows(), 1);
  EndSessions();
  EXPECT_EQ(Refusal([&] { lotrix().physicianDeleteByPin("P1"); }).number(), kNotReachable);
  EXPECT_EQ(Query("SELECT pin FROM physicn"), (std::vector<Row>{{"P1"}}));
  lotrix().physicianDeleteByPin("P1");
  EXPECT_EQ(Query("SELECT pin FROM physicn"), std::vector<Row>{});
}

TEST_F(PostgresqlLossTest, AStatementThatTheServerKnowsTakesOneRoundTrip) {
  Connection connection;
  OpenProxied(connection);
  const int before = proxy().requests();
  for (int i = 0; i < 10; ++i) Insert(connection, "L" + std::to_string(i));
  EXPECT_EQ(Select(connection), 10);
  EXPECT_EQ(proxy().requests() - before, 11);
}

// --- Reading -----------------------------------------------------------------------

class PostgresqlReadTest : public PostgresqlConnectionTest {
 protected:
  // 300 of them; their product with themselves is 90,000, and again 27,000,000.
  void FillSectors() { Execute("INSERT INTO sectoref (sector) SELECT generate_series(1, 300)"); }
  static std::size_t ResidentBytes() {
    std::ifstream statm("/proc/self/statm");
    std::size_t pages = 0;
    statm >> pages >> pages;
    return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  }
  static std::size_t AllocatedBytes() {
    const auto allocated = mallinfo2();
    return allocated.uordblks + allocated.hblkhd;
  }
  static std::size_t MostResidentBytes() {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word && word != "VmHWM:") {
    }
    std::size_t kibibytes = 0;
    status >> kibibytes;
    return kibibytes * 1024;
  }
};

TEST_F(PostgresqlReadTest, ALargeReadNeedsNoMemoryForItsRows) {
  FillSectors();
  Execute("INSERT INTO stock (tracking) VALUES ('" + std::string(1000, 'x') + "')");
  Recordset recordset;
  recordset.Open("SELECT tracking FROM stock, sectoref a, sectoref b", connection());
  const std::size_t before = ResidentBytes();
  std::size_t most = 0;
  std::int32_t rows = 0;
  for (; !recordset.EndOfFile(); recordset.MoveNext()) {
    if (++rows % 1000 == 0) most = std::max(most, ResidentBytes());
  }
  EXPECT_EQ(rows, 90000);
  EXPECT_LT(most, before + 20000000);
}

TEST_F(PostgresqlReadTest, ALargeReadNeedsMemoryForItsTableAlone) {
  FillSectors();
  Execute(
      "INSERT INTO stock (pin, datein, lot, tracking) SELECT 'P1', '2026-01-01', repeat('L', 500), "
      "'T' FROM sectoref a, sectoref b WHERE b.sector <= 100");
  const std::size_t before = ResidentBytes();
  const std::size_t allocatedBefore = AllocatedBytes();
  std::ofstream("/proc/self/clear_refs") << "5";  // the most so far is forgotten
  const cResultSet table = lotrix().stockTableRead("", "", "", "", "");
  const std::size_t tableBytes = AllocatedBytes() - allocatedBefore;
  EXPECT_EQ(table.Rows(), 30000);
  // A second copy of the texts alone would be 15 million bytes more.
  EXPECT_LT(MostResidentBytes(), before + tableBytes + 7000000);
}

TEST_F(PostgresqlReadTest, ATableWithoutColumnsIsRefused) {
  Execute("CREATE TABLE nothing (); INSERT INTO nothing DEFAULT VALUES");
  ExpectNumber(kRefused, [&] { connection().Execute("SELECT * FROM nothing"); });
  ExpectNumber(kRefused, [&] { connection().Execute(Statement() << "SELECT * FROM nothing"); });
  EXPECT_EQ(connection().Execute("SELECT sector FROM sectoref")->RecordCount(), 0);
}

TEST_F(PostgresqlReadTest, AllRecordsOfAStatementsQueryAreThere) {
  Execute("INSERT INTO sectoref (sector) SELECT generate_series(1, 50)");
  const auto query = [](int least) {
    return Statement() << "SELECT sector FROM sectoref WHERE sector > " << least
                       << " ORDER BY sector";
  };
  Recordset outer;
  OpenQuery(outer, query(0), connection());
  std::int64_t expected = 0;
  for (; !outer.EndOfFile(); outer.MoveNext()) {
    ++expected;
    ASSERT_TRUE(outer.Fields().Item(0).Value() == Value(expected));
    Recordset inner;
    OpenQuery(inner, query(static_cast<int>(expected)), connection());
    EXPECT_EQ(inner.RecordCount(), 50 - expected);
    EXPECT_EQ(inner.EndOfFile(), expected == 50);
    EXPECT_EQ(outer.RecordCount(), 50);
  }
  EXPECT_EQ(expected, 50);
  EXPECT_EQ(outer.RecordCount(), 50);
}

TEST_F(PostgresqlReadTest, ALargeReadThatIsGivenUpIsNotReadToItsEnd) {
  FillSectors();
  const Clock::time_point start = Clock::now();
  {
    Recordset recordset;
    recordset.Open("SELECT a.sector FROM sectoref a, sectoref b, sectoref c", connection());
    recordset.MoveNext();
  }
  EXPECT_EQ(connection().Execute("SELECT sector FROM sectoref WHERE sector = 7")->RecordCount(), 1);
  EXPECT_LT(Clock::now() - start, std::chrono::seconds(5));
}

TEST_F(PostgresqlReadTest, StatementsRunWhileARecordsetIsHalfRead) {
  Execute("INSERT INTO sectoref (sector) SELECT generate_series(1, 1000)");
  Recordset outer;
  outer.Open("SELECT sector FROM sectoref ORDER BY sector", connection());
  Recordset second;
  second.Open("SELECT sector FROM sectoref ORDER BY sector DESC", connection());
  std::int64_t expected = 0;
  for (; !outer.EndOfFile(); outer.MoveNext()) {
    ++expected;
    ASSERT_TRUE(outer.Fields().Item(0).Value() == Value(expected));
    ASSERT_TRUE(second.Fields().Item(0).Value() == Value(1001 - expected));
    if (expected % 100 == 0) {
      connection().Execute("INSERT INTO stock (lot) VALUES ('L')");
      EXPECT_EQ(connection().Execute("SELECT lot FROM stock")->RecordCount(), expected / 100);
    }
    second.MoveNext();
  }
  EXPECT_EQ(expected, 1000);
  EXPECT_TRUE(second.EndOfFile());
  EXPECT_EQ(outer.RecordCount(), 1000);
}

TEST_F(PostgresqlReadTest, AnErrorBetweenTwoRowsClosesTheRecordset) {
  Execute("INSERT INTO stock (lot, tracking) VALUES ('L1', '1'), ('L2', 'two')");
  Execute(
      "ALTER TABLE stock RENAME TO goods; CREATE VIEW stock AS SELECT lot, tracking::int AS doses "
      "FROM goods");
  Recordset recordset;
  recordset.Open("SELECT doses FROM stock", connection());
  ASSERT_TRUE(recordset.Fields().Item(0).Value() == Value(std::int64_t{1}));
  ExpectNumber(kNoValue, [&] { recordset.MoveNext(); });
  EXPECT_EQ(recordset.State(), ObjectState::kClosed);
  EXPECT_EQ(connection().Execute("SELECT lot FROM goods")->RecordCount(), 2);
}

TEST_F(PostgresqlReadTest, PlansThatOutliveTheirTablesAreMadeAgain) {
  for (int i = 0; i < 8; ++i) {
    EXPECT_EQ(connection().Execute("SELECT * FROM funding")->Fields().Count(), 1);
  }
  Execute("ALTER TABLE funding ADD COLUMN more text; INSERT INTO funding VALUES ('F', 'm')");
  for (int i = 0; i < 8; ++i) {
    const auto rows = connection().Execute("SELECT * FROM funding");
    ASSERT_EQ(rows->Fields().Count(), 2);
    EXPECT_EQ(rows->Fields().Item(1).Name(), "more");
    EXPECT_TRUE(rows->Fields().Item(1).Value() == Value(std::string("m")));
  }
  Execute("ALTER TABLE funding DROP COLUMN more, ADD COLUMN more date");
  const auto rows = connection().Execute("SELECT * FROM funding");
  ASSERT_EQ(rows->Fields().Count(), 2);
  EXPECT_EQ(rows->Fields().Item(1).Type(), DataType::kDBDate);
}

TEST_F(PostgresqlReadTest, PlansAreMadeAgainInsideATransactionToo) {
  EXPECT_EQ(connection().Execute("SELECT * FROM funding")->Fields().Count(), 1);
  Execute("ALTER TABLE funding ADD COLUMN more text");
  connection().BeginTrans();
  connection().Execute("INSERT INTO stock (lot) VALUES ('L1')");
  EXPECT_EQ(connection().Execute("SELECT * FROM funding")->Fields().Count(), 2);
  connection().CommitTrans();
  EXPECT_EQ(StockCount(), "1");
}

TEST_F(PostgresqlReadTest, TheServerKeepsABoundedNumberOfStatements) {
  for (int i = 0; i < 1500; ++i) {
    connection().Execute("SELECT sector AS s" + std::to_string(i) + " FROM sectoref");
  }
  const auto kept = connection().Execute("SELECT count(*) FROM pg_prepared_statements");
  EXPECT_LT(std::get<std::int64_t>(kept->Fields().Item(0).Value()), 750);
}

// --- Transactions and several clients ------------------------------------------------

TEST_F(PostgresqlConnectionTest, AStatementThatFailsInATransactionLeavesItOpenAndUnchanged) {
  Execute("CREATE UNIQUE INDEX one_lot ON stock (lot)");
  Connection& open = connection();
  open.BeginTrans();
  open.Execute("INSERT INTO stock (lot) VALUES ('L1')");
  ExpectNumber(kViolated, [&] { open.Execute("INSERT INTO stock (lot) VALUES ('L1')"); });
  ExpectNumber(kRefused, [&] { open.Execute("SELECT nosuch FROM stock"); });
  ExpectNumber(kNoTable, [&] { open.Execute("SELECT pin FROM nosuch"); });
  EXPECT_TRUE(open.InTransaction());
  open.Execute("INSERT INTO stock (lot) VALUES ('L2')");
  open.CommitTrans();
  EXPECT_EQ(Query("SELECT lot FROM stock ORDER BY lot"), (std::vector<Row>{{"L1"}, {"L2"}}));
}

TEST_F(PostgresqlConnectionTest, ReadersAreNotHeldUpByAWriter) {
  Execute("INSERT INTO stock (lot) VALUES ('L1')");
  RawPostgresql writer(Name(), "clerk");
  writer.Execute("BEGIN; UPDATE stock SET lot = 'L2'; INSERT INTO stock (lot) VALUES ('L3')");
  EXPECT_EQ(connection().Execute("SELECT lot FROM stock WHERE lot = 'L1'")->RecordCount(), 1);
  writer.Execute("COMMIT");
  EXPECT_EQ(connection().Execute("SELECT lot FROM stock")->RecordCount(), 2);
}

TEST_F(PostgresqlConnectionTest, MakingTheSchemaThatIsThereWaitsForNobodyAndNeedsNoRight) {
  RawPostgresql writer(Name(), "clerk");
  writer.Execute("BEGIN; INSERT INTO stock (lot) VALUES ('L1')");
  Set("lock_timeout = '2s'");
  connection().Close();
  EXPECT_NO_THROW(connection().CreateSchema());
  Connection guarded;
  guarded.Open(StringOf("Host=@;Database=#;User ID=guarded;Password=open sesame"));
  EXPECT_NO_THROW(guarded.CreateSchema());
  writer.Execute("COMMIT");
  EXPECT_EQ(StockCount(), "1");
}

TEST_F(PostgresqlConnectionTest, SeveralClientsMayMakeTheSchemaAtOnce) {
  RawPostgresql admin("postgres", "admin");
  const std::string name = Name() + "_new";
  admin.Execute("CREATE DATABASE " + name + " OWNER clerk");
  std::vector<std::thread> clients;
  Texts failures(8);
  for (std::string& failure : failures) {
    clients.emplace_back([&] {
      try {
        Connection client;
        client.Open("Provider=PostgreSQL;Host=" + PostgresqlServer() + ";Database=" + name +
                    ";User ID=clerk");
        client.CreateSchema();
        EXPECT_EQ(client.Execute("SELECT lot FROM stock")->RecordCount(), 0);
      } catch (const Error& error) {
        failure = error.description();
      }
    });
  }
  for (std::thread& client : clients) client.join();
  EXPECT_EQ(failures, Texts(8));
  EXPECT_EQ(RawPostgresql(name, "clerk")
                .Query("SELECT count(*) FROM pg_class WHERE relkind = 'r' AND relnamespace = "
                       "'public'::regnamespace"),
            (std::vector<Row>{{"18"}}));
  admin.Execute("DROP DATABASE " + name + " WITH (FORCE)");
}

}  // namespace
}  // namespace lotrix::test

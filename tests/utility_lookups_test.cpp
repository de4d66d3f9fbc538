#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "src/utility/keys_and_lookups.h"
#include "tests/support/extremes.h"
#include "tests/support/fixture.h"

namespace lotrix {
namespace {

using test::Coded;
using test::ExpectError;
using test::kLargest;
using test::Numbered;
using test::Refusal;
using test::Row;

class LookupTest : public test::DatabaseTest {
 protected:
  // What reading the connection writes, once for each time.
  static std::vector<std::string> ConnectionLines(int times) {
    std::vector<std::string> lines;
    for (int i = 0; i < times; ++i) {
      lines.emplace_back("information Begin: Get Connection()");
      lines.emplace_back("information End: GetConnection()");
    }
    return lines;
  }

  // The number alone where the text is the engine's or the run time's own.
  static void ExpectNumber(std::int32_t number, const std::function<void()>& call) {
    const Error error = Refusal(call);
    EXPECT_EQ(error.number(), number);
    EXPECT_EQ(error.source(), "Lotrix");
    EXPECT_NE(error.description(), "");
  }
};

// --- GetNextID -------------------------------------------------------------

class GetNextIDTest : public LookupTest {
 protected:
  void InsertKey(const std::string& name, const std::string& last) {
    Execute("INSERT INTO nextid (ctablename, inextid) VALUES ('" + name + "', " + last + ")");
  }
  std::vector<Row> Keys() {
    return Query("SELECT ctablename, inextid FROM nextid ORDER BY ctablename, inextid");
  }
  // A second client, with a connection of its own.
  std::unique_ptr<Service> AnotherClient() {
    auto client = std::make_unique<Service>(MakeHost());
    client->connection.ConnectionString(database().ConnectionString());
    return client;
  }
};

TEST_F(GetNextIDTest, IsOneMoreThanTheLastKeyAndIsStored) {
  InsertKey("DISTRIB", "41");
  EXPECT_EQ(GetNextID(service(), "distrib"), 42);
  EXPECT_EQ(Keys(), (std::vector<Row>{{"DISTRIB", "42"}}));
}

TEST_F(GetNextIDTest, RunsTwoStatementsAndReadsTheConnectionForEach) {
  InsertKey("DISTRIB", "41");
  Watch(connection());
  EXPECT_EQ(GetNextID(service(), "distrib"), 42);
  EXPECT_EQ(
      Statements(),
      (std::vector<std::string>{
          "SELECT inextid FROM Nextid WHERE ltrim(rtrim(upper(ctablename))) = 'DISTRIB' ",
          "UPDATE nextid SET inextid  = 42 WHERE ltrim(rtrim(upper(ctablename))) = 'DISTRIB' "}));
  EXPECT_EQ(Trace(), ConnectionLines(2));
}

TEST_F(GetNextIDTest, OpensTheConnection) {
  InsertKey("provhas", "6");
  EXPECT_EQ(GetNextID(service(), "provhas"), 7);
  EXPECT_EQ(Trace(), ConnectionLines(2));
}

TEST_F(GetNextIDTest, EachCallGivesTheNextKey) {
  InsertKey("Provider", "0");
  EXPECT_EQ(GetNextID(service(), "Provider"), 1);
  EXPECT_EQ(GetNextID(service(), "Provider"), 2);
  EXPECT_EQ(GetNextID(service(), "Provider"), 3);
  EXPECT_EQ(Keys(), (std::vector<Row>{{"Provider", "3"}}));
}

TEST_F(GetNextIDTest, LeavesTheKeysOfOtherTablesAlone) {
  InsertKey("distrib", "41");
  InsertKey("distribs", "3");
  InsertKey("seekdist", "5");
  EXPECT_EQ(GetNextID(service(), "distrib"), 42);
  EXPECT_EQ(Keys(), (std::vector<Row>{{"distrib", "42"}, {"distribs", "3"}, {"seekdist", "5"}}));
}

TEST_F(GetNextIDTest, TheStoredNameCountsTrimmedAndInUpperCase) {
  InsertKey("  DosesAdm ", "9");
  EXPECT_EQ(GetNextID(service(), "Dosesadm"), 10);
  EXPECT_EQ(Keys(), (std::vector<Row>{{"  DosesAdm ", "10"}}));
}

TEST_F(GetNextIDTest, TheNameGivenIsNotTrimmed) {
  InsertKey("distrib", "41");
  Watch(connection());
  ExpectError(Refusal([&] { static_cast<void>(GetNextID(service(), " distrib")); }), Coded(20096),
              " distrib does not exist in the NextID table.", "Lotrix");
  EXPECT_EQ(Statements(),
            (std::vector<std::string>{
                "SELECT inextid FROM Nextid WHERE ltrim(rtrim(upper(ctablename))) = ' DISTRIB' "}));

  EXPECT_EQ(GetNextID(service(), "distrib "), 42);
  EXPECT_EQ(
      Statements(),
      (std::vector<std::string>{
          "SELECT inextid FROM Nextid WHERE ltrim(rtrim(upper(ctablename))) = 'DISTRIB ' ",
          "UPDATE nextid SET inextid  = 42 WHERE ltrim(rtrim(upper(ctablename))) = 'DISTRIB ' "}));
  EXPECT_EQ(Keys(), (std::vector<Row>{{"distrib", "42"}}));
}

TEST_F(GetNextIDTest, ATableThatIsNotThereIsRefusedUnderItsNameAsGiven) {
  InsertKey("distrib", "41");
  Watch(connection());
  ExpectError(Refusal([&] { static_cast<void>(GetNextID(service(), "Unknown")); }), Coded(20096),
              "Unknown does not exist in the NextID table.", "Lotrix");
  EXPECT_EQ(Statements(),
            (std::vector<std::string>{
                "SELECT inextid FROM Nextid WHERE ltrim(rtrim(upper(ctablename))) = 'UNKNOWN' "}));
  EXPECT_EQ(Trace(), ConnectionLines(1));
  EXPECT_EQ(Keys(), (std::vector<Row>{{"distrib", "41"}}));
  EXPECT_FALSE(connection().InTransaction());
}

TEST_F(GetNextIDTest, ATableThatIsThereTwiceIsRefused) {
  InsertKey("PROVIDER", "41");
  InsertKey("provider ", "50");
  Watch(connection());
  ExpectError(Refusal([&] { static_cast<void>(GetNextID(service(), "Provider")); }), Coded(20096),
              "More than one instance of Provider exists in the NextID table.", "Lotrix");
  EXPECT_EQ(Statements(),
            (std::vector<std::string>{
                "SELECT inextid FROM Nextid WHERE ltrim(rtrim(upper(ctablename))) = 'PROVIDER' "}));
  EXPECT_EQ(Trace(), ConnectionLines(1));
  EXPECT_EQ(Query("SELECT inextid FROM nextid ORDER BY inextid"),
            (std::vector<Row>{{"41"}, {"50"}}));
  EXPECT_FALSE(connection().InTransaction());
}

TEST_F(GetNextIDTest, ThreeRowsAreRefusedToo) {
  for (const char* const last : {"1", "2", "3"}) InsertKey("provider", last);
  ExpectError(Refusal([&] { static_cast<void>(GetNextID(service(), "provider")); }), Coded(20096),
              "More than one instance of provider exists in the NextID table.", "Lotrix");
  EXPECT_EQ(Query("SELECT inextid FROM nextid ORDER BY inextid"),
            (std::vector<Row>{{"1"}, {"2"}, {"3"}}));
}

TEST_F(GetNextIDTest, TheLargestKeyCanBeHandedOut) {
  InsertKey("distrib", "2147483646");
  EXPECT_EQ(GetNextID(service(), "distrib"), kLargest);
  EXPECT_EQ(Keys(), (std::vector<Row>{{"distrib", "2147483647"}}));
}

TEST_F(GetNextIDTest, OverflowsBehindTheLargestKeyAndStoresNothing) {
  InsertKey("distrib", "2147483647");
  Watch(connection());
  ExpectNumber(6, [&] { static_cast<void>(GetNextID(service(), "distrib")); });
  EXPECT_EQ(Statements(),
            (std::vector<std::string>{
                "SELECT inextid FROM Nextid WHERE ltrim(rtrim(upper(ctablename))) = 'DISTRIB' "}));
  EXPECT_EQ(Keys(), (std::vector<Row>{{"distrib", "2147483647"}}));
  EXPECT_FALSE(connection().InTransaction());
}

TEST_F(GetNextIDTest, NegativeKeysAreCountedUpToo) {
  InsertKey("distrib", "-5");
  Watch(connection());
  EXPECT_EQ(GetNextID(service(), "distrib"), -4);
  EXPECT_EQ(Statements().back(),
            "UPDATE nextid SET inextid  = -4 WHERE ltrim(rtrim(upper(ctablename))) = 'DISTRIB' ");
  EXPECT_EQ(Keys(), (std::vector<Row>{{"distrib", "-4"}}));
}

TEST_F(GetNextIDTest, ANullKeyIsAnInvalidUseOfNull) {
  InsertKey("distrib", "NULL");
  ExpectNumber(94, [&] { static_cast<void>(GetNextID(service(), "distrib")); });
  EXPECT_EQ(Keys(), (std::vector<Row>{{"distrib", "<null>"}}));
  EXPECT_FALSE(connection().InTransaction());
}

TEST_F(GetNextIDTest, AnApostropheInTheNameIsRefused) {
  InsertKey("distrib", "41");
  ExpectNumber(Numbered(EngineError::kStatementRefused),
               [&] { static_cast<void>(GetNextID(service(), "x' OR 'a' = 'a")); });
  EXPECT_EQ(Keys(), (std::vector<Row>{{"distrib", "41"}}));
  EXPECT_FALSE(connection().InTransaction());
}

TEST_F(GetNextIDTest, BothStatementsRunInOneTransactionThatEndsWithTheCall) {
  InsertKey("distrib", "41");
  std::vector<bool> inTransaction;
  Connection& open = connection();
  Watch(open, [&](const std::string&) {
    inTransaction.push_back(open.InTransaction());
    return std::nullopt;
  });
  EXPECT_EQ(GetNextID(service(), "distrib"), 42);
  EXPECT_EQ(inTransaction, (std::vector<bool>{true, true}));
  EXPECT_FALSE(open.InTransaction());
  EXPECT_EQ(Keys(), (std::vector<Row>{{"distrib", "42"}}));
}

TEST_F(GetNextIDTest, AFailingUpdateEndsTheTransactionAndStoresNothing) {
  InsertKey("distrib", "41");
  bool fails = true;
  Watch(connection(), [&](const std::string& text) -> std::optional<std::vector<Value>> {
    if (fails && text.starts_with("UPDATE")) {
      throw Error(Numbered(EngineError::kFailed), "disk I/O error");
    }
    return std::nullopt;
  });
  const Error error = Refusal([&] { static_cast<void>(GetNextID(service(), "distrib")); });
  EXPECT_EQ(error.number(), Numbered(EngineError::kFailed));
  EXPECT_EQ(error.description(), "disk I/O error");
  EXPECT_FALSE(connection().InTransaction());
  EXPECT_EQ(Keys(), (std::vector<Row>{{"distrib", "41"}}));

  fails = false;
  EXPECT_EQ(GetNextID(service(), "distrib"), 42);
}

TEST_F(GetNextIDTest, AClientThatAsksBetweenTheTwoStatementsWaitsForItsOwnKey) {
  InsertKey("distrib", "41");
  std::future<std::int32_t> other;
  Watch(connection(), [&](const std::string& text) {
    if (text.starts_with("UPDATE")) {
      other =
          std::async(std::launch::async, [&] { return GetNextID(*AnotherClient(), "distrib"); });
      // Time enough for a client that nothing stops to take the same key.
      other.wait_for(std::chrono::milliseconds(200));
    }
    return std::nullopt;
  });
  EXPECT_EQ(GetNextID(service(), "distrib"), 42);
  ASSERT_TRUE(other.valid());
  EXPECT_EQ(other.get(), 43);
  EXPECT_EQ(Keys(), (std::vector<Row>{{"distrib", "43"}}));
}

TEST_F(GetNextIDTest, TwoConnectionsTakeTurns) {
  InsertKey("distrib", "41");
  const auto other = AnotherClient();
  EXPECT_EQ(GetNextID(service(), "distrib"), 42);
  EXPECT_EQ(GetNextID(*other, "distrib"), 43);
  EXPECT_EQ(GetNextID(service(), "distrib"), 44);
  EXPECT_EQ(GetNextID(*other, "distrib"), 45);
}

TEST_F(GetNextIDTest, ClientsThatAskAtOnceNeverGetTheSameKey) {
  constexpr int kClients = 4;
  constexpr int kKeysEach = 50;
  InsertKey("distrib", "1000");
  std::vector<std::future<std::vector<std::int32_t>>> clients;
  for (int client = 0; client < kClients; ++client) {
    clients.push_back(std::async(std::launch::async, [&] {
      const auto mine = AnotherClient();
      std::vector<std::int32_t> keys;
      for (int i = 0; i < kKeysEach; ++i) keys.push_back(GetNextID(*mine, "distrib"));
      return keys;
    }));
  }
  std::set<std::int32_t> all;
  for (auto& client : clients) {
    const std::vector<std::int32_t> keys = client.get();
    EXPECT_TRUE(std::is_sorted(keys.begin(), keys.end()));
    all.insert(keys.begin(), keys.end());
  }
  EXPECT_EQ(all.size(), kClients * kKeysEach);
  EXPECT_EQ(*all.begin(), 1001);
  EXPECT_EQ(*all.rbegin(), 1000 + kClients * kKeysEach);
  EXPECT_EQ(Keys(), (std::vector<Row>{{"distrib", "1200"}}));
}

TEST_F(GetNextIDTest, UsesTheClientsOwnTransactionAndLeavesTheEndToIt) {
  InsertKey("distrib", "41");
  Connection& open = connection();
  open.BeginTrans();
  EXPECT_EQ(GetNextID(service(), "distrib"), 42);
  EXPECT_EQ(GetNextID(service(), "distrib"), 43);
  EXPECT_TRUE(open.InTransaction());
  EXPECT_EQ(Keys(), (std::vector<Row>{{"distrib", "41"}}));
  open.CommitTrans();
  EXPECT_EQ(Keys(), (std::vector<Row>{{"distrib", "43"}}));
}

TEST_F(GetNextIDTest, AKeyGoesBackWithTheClientsOwnTransaction) {
  InsertKey("distrib", "41");
  Connection& open = connection();
  open.BeginTrans();
  EXPECT_EQ(GetNextID(service(), "distrib"), 42);
  open.RollbackTrans();
  EXPECT_EQ(Keys(), (std::vector<Row>{{"distrib", "41"}}));
  EXPECT_EQ(GetNextID(service(), "distrib"), 42);
}

TEST_F(GetNextIDTest, ARefusalLeavesTheClientsOwnTransactionOpen) {
  InsertKey("distrib", "41");
  Connection& open = connection();
  open.BeginTrans();
  open.Execute("UPDATE nextid SET inextid = 7 WHERE ctablename = 'distrib'");
  ExpectError(Refusal([&] { static_cast<void>(GetNextID(service(), "Unknown")); }), Coded(20096),
              "Unknown does not exist in the NextID table.", "Lotrix");
  EXPECT_TRUE(open.InTransaction());
  EXPECT_EQ(Keys(), (std::vector<Row>{{"distrib", "41"}}));
  open.CommitTrans();
  EXPECT_EQ(Keys(), (std::vector<Row>{{"distrib", "7"}}));
}

// --- GetKeyPrefix ----------------------------------------------------------

TEST(GetKeyPrefix, EveryKindWithoutAndWithTheFlag) {
  struct Case {
    std::int32_t kind;
    const char* plain;
    const char* flagged;
  };
  for (const Case& one :
       {Case{1, "Di", "Aj"}, Case{2, "Re", "Aj"}, Case{3, "Sp", "Sp"}, Case{4, "Ex", "Ex"},
        Case{5, "Lo", "Lo"}, Case{6, "Im", "Im"}, Case{7, "Fa", "Fa"}, Case{8, "Tr", "Tr"},
        Case{9, "", ""}, Case{10, "", ""}, Case{11, "Ac", "Ac"}, Case{12, "Us", "Us"}}) {
    SCOPED_TRACE(one.kind);
    EXPECT_EQ(GetKeyPrefix(one.kind), one.plain);
    EXPECT_EQ(GetKeyPrefix(one.kind, false), one.plain);
    EXPECT_EQ(GetKeyPrefix(one.kind, true), one.flagged);
  }
}

TEST(GetKeyPrefix, AnyOtherKindHasNone) {
  for (const std::int32_t kind : {0, -1, 13, 101, kLargest, -kLargest - 1}) {
    SCOPED_TRACE(kind);
    EXPECT_EQ(GetKeyPrefix(kind), "");
    EXPECT_EQ(GetKeyPrefix(kind, true), "");
  }
}

// --- GetCountyName ---------------------------------------------------------

class GetCountyNameTest : public LookupTest {
 protected:
  // `county` with its apostrophes, or NULL.
  void InsertZip(const std::string& zip, const std::string& county) {
    Execute("INSERT INTO zipcodes (zip, cntyname) VALUES ('" + zip + "', " + county + ")");
  }
};

TEST_F(GetCountyNameTest, IsTheCountyOfTheFirstFiveCharacters) {
  InsertZip("12345", "'Cook'");
  InsertZip("67890", "'Lake'");
  Watch(connection());
  EXPECT_EQ(GetCountyName(service(), "12345-6789"), "Cook");
  EXPECT_EQ(
      Statements(),
      (std::vector<std::string>{"SELECT DISTINCT cntyname FROM zipcodes WHERE zip = '12345' "}));
  EXPECT_EQ(Trace(), ConnectionLines(1));
  EXPECT_EQ(GetCountyName(service(), "12345"), "Cook");
  EXPECT_EQ(GetCountyName(service(), "678901"), "Lake");
}

TEST_F(GetCountyNameTest, AShorterZipIsTakenWhole) {
  InsertZip("123", "'Cook'");
  Watch(connection());
  EXPECT_EQ(GetCountyName(service(), "123"), "Cook");
  EXPECT_EQ(GetCountyName(service(), ""), "");
  EXPECT_EQ(Statements(),
            (std::vector<std::string>{"SELECT DISTINCT cntyname FROM zipcodes WHERE zip = '123' ",
                                      "SELECT DISTINCT cntyname FROM zipcodes WHERE zip = '' "}));
}

TEST_F(GetCountyNameTest, CharactersAreNotBytes) {
  Watch(connection());
  EXPECT_EQ(GetCountyName(service(), "éèêëàù"), "");
  EXPECT_EQ(
      Statements(),
      (std::vector<std::string>{"SELECT DISTINCT cntyname FROM zipcodes WHERE zip = 'éèêëà' "}));
}

TEST_F(GetCountyNameTest, TheZipIsNotTrimmed) {
  InsertZip("12345", "'Cook'");
  Watch(connection());
  EXPECT_EQ(GetCountyName(service(), " 12345"), "");
  EXPECT_EQ(
      Statements(),
      (std::vector<std::string>{"SELECT DISTINCT cntyname FROM zipcodes WHERE zip = ' 1234' "}));
}

TEST_F(GetCountyNameTest, TrailingBlanksOfTheStoredZipDoNotCountLeadingOnesDo) {
  InsertZip("12345  ", "'Cook'");
  InsertZip(" 6789", "'Lake'");
  EXPECT_EQ(GetCountyName(service(), "12345"), "Cook");
  EXPECT_EQ(GetCountyName(service(), "6789"), "");
  EXPECT_EQ(GetCountyName(service(), " 6789"), "Lake");
}

TEST_F(GetCountyNameTest, TheNameIsTrimmedAtBothEnds) {
  InsertZip("12345", "'  De  Kalb '");
  EXPECT_EQ(GetCountyName(service(), "12345"), "De  Kalb");
}

TEST_F(GetCountyNameTest, NoCountyIsNoError) {
  InsertZip("12345", "'Cook'");
  Watch(connection());
  EXPECT_EQ(GetCountyName(service(), "99999"), "");
  EXPECT_EQ(
      Statements(),
      (std::vector<std::string>{"SELECT DISTINCT cntyname FROM zipcodes WHERE zip = '99999' "}));
  EXPECT_EQ(Trace(), ConnectionLines(1));
}

TEST_F(GetCountyNameTest, TwoCountiesAreNone) {
  InsertZip("12345", "'Cook'");
  InsertZip("12345", "'Lake'");
  EXPECT_EQ(GetCountyName(service(), "12345"), "");
}

TEST_F(GetCountyNameTest, TheSameCountyTwiceIsOne) {
  InsertZip("12345", "'Cook'");
  InsertZip("12345", "'Cook'");
  EXPECT_EQ(GetCountyName(service(), "12345"), "Cook");
}

TEST_F(GetCountyNameTest, CountiesThatDifferInTrailingBlanksAreOneInCaseTwo) {
  InsertZip("12345", "'Cook'");
  InsertZip("12345", "'Cook  '");
  EXPECT_EQ(GetCountyName(service(), "12345"), "Cook");
  InsertZip("67890", "'Lake'");
  InsertZip("67890", "'LAKE'");
  EXPECT_EQ(GetCountyName(service(), "67890"), "");
}

TEST_F(GetCountyNameTest, ANullNameIsAnInvalidUseOfNull) {
  InsertZip("12345", "NULL");
  ExpectNumber(94, [&] { static_cast<void>(GetCountyName(service(), "12345")); });
}

TEST_F(GetCountyNameTest, ANullNameBesideAnotherIsNoneOfTwo) {
  InsertZip("12345", "NULL");
  InsertZip("12345", "'Cook'");
  EXPECT_EQ(GetCountyName(service(), "12345"), "");
}

TEST_F(GetCountyNameTest, AnEngineErrorPassesUnchanged) {
  ExpectNumber(Numbered(EngineError::kStatementRefused),
               [&] { static_cast<void>(GetCountyName(service(), "1'345")); });
  Execute("DROP TABLE zipcodes");
  ExpectNumber(Numbered(EngineError::kNoSuchTable),
               [&] { static_cast<void>(GetCountyName(service(), "12345")); });
}

TEST_F(GetCountyNameTest, AnApostropheBehindTheFifthCharacterReachesNoStatement) {
  InsertZip("12345", "'Cook'");
  EXPECT_EQ(GetCountyName(service(), "12345'"), "Cook");
}

// --- VerifyVaccineContract -------------------------------------------------

class VaccineContractTest : public LookupTest {
 protected:
  using Changes = std::map<std::string, std::string>;

  // Column names and values as SQL writes them.
  void InsertContract(const Changes& changes = {}) {
    Changes row{{"vaccine", "'MMR'"},      {"maker", "'MSD'"},
                {"begin", "'2026-01-01'"}, {"end", "'2026-12-31'"},
                {"minbulk", "10"},         {"unitsize", "5"},
                {"pkgsize", "50"},         {"ndcno", "'00006-1'"},
                {"cost", "12.5"},          {"contractid", "'C-77'"},
                {"sel_maker", "'Y'"},      {"dos_wind", "'W'"},
                {"excfunds", "'E'"},       {"descrip", "'text'"},
                {"locactiv", "'0'"},       {"maxno", "2"}};
    for (const auto& [column, value] : changes) row.at(column) = value;
    std::string columns;
    std::string values;
    for (const auto& [column, value] : row) {
      columns += (columns.empty() ? "\"" : ", \"") + column + "\"";
      values += (values.empty() ? "" : ", ") + value;
    }
    Execute("INSERT INTO pvaccref (" + columns + ") VALUES (" + values + ")");
  }

  Contract Verify(const std::string& date = "11/20/2026", const std::string& vaccine = "MMR",
                  const std::string& maker = "MSD") {
    return VerifyVaccineContract(service(), date, vaccine, 1, maker);
  }

  void ExpectNone(const std::string& date = "11/20/2026", const std::string& vaccine = "MMR",
                  const std::string& maker = "MSD") {
    ExpectError(Refusal([&] { static_cast<void>(Verify(date, vaccine, maker)); }), Coded(20052),
                "Error while verifying order against vaccine contract table", "Lotrix");
  }
};

const char* const kContractColumns[] = {"vaccine",   "maker",    "begin",    "end",    "minbulk",
                                        "unitsize",  "pkgsize",  "ndcno",    "cost",   "contractid",
                                        "sel_maker", "dos_wind", "excfunds", "descrip"};

void ExpectTheContract(const Contract& contract) {
  EXPECT_EQ(contract.vaccine, "MMR");
  EXPECT_EQ(contract.maker, "MSD");
  EXPECT_EQ(contract.begin, (Date{2026, 1, 1}));
  EXPECT_EQ(contract.end, (Date{2026, 12, 31}));
  EXPECT_EQ(contract.minbulk, 10);
  EXPECT_EQ(contract.unitsize, 5);
  EXPECT_EQ(contract.pkgsize, 50);
  EXPECT_EQ(contract.ndcno, "00006-1");
  EXPECT_EQ(contract.cost, 12.5);
  EXPECT_EQ(contract.contractid, "C-77");
  EXPECT_EQ(contract.sel_maker, "Y");
  EXPECT_EQ(contract.dos_wind, "W");
  EXPECT_EQ(contract.excfunds, "E");
  EXPECT_EQ(contract.descrip, "text");
}

TEST_F(VaccineContractTest, FillsTheRecordFromTheFourteenColumns) {
  InsertContract();
  ExpectTheContract(Verify());
}

TEST_F(VaccineContractTest, RunsOneStatementAndReadsTheConnectionOnce) {
  InsertContract();
  Watch(connection());
  static_cast<void>(Verify());
  EXPECT_EQ(Statements(),
            (std::vector<std::string>{
                "SELECT * FROM pvaccref WHERE ltrim(rtrim(vaccine)) == 'MMR' AND ({11/20/2026} "
                "BETWEEN begin AND end)  and maker == 'MSD'  AND locactiv = .F."}));
  EXPECT_EQ(Trace(), ConnectionLines(1));
}

TEST_F(VaccineContractTest, TheThirdValueHasNoPartInIt) {
  InsertContract();
  Watch(connection());
  for (const std::int32_t ignored : {0, -1, 1, kLargest}) {
    ExpectTheContract(VerifyVaccineContract(service(), "11/20/2026", "MMR", ignored, "MSD"));
  }
  EXPECT_EQ(Statements(),
            (std::vector<std::string>(
                4,
                "SELECT * FROM pvaccref WHERE ltrim(rtrim(vaccine)) == 'MMR' AND ({11/20/2026} "
                "BETWEEN begin AND end)  and maker == 'MSD'  AND locactiv = .F.")));
}

TEST_F(VaccineContractTest, ValuesAreSplicedAsGiven) {
  InsertContract();
  Watch(connection());
  ExpectTheContract(Verify("Nov 20, 2026", "MMR ", "MSD  "));
  EXPECT_EQ(Statements(),
            (std::vector<std::string>{
                "SELECT * FROM pvaccref WHERE ltrim(rtrim(vaccine)) == 'MMR ' AND ({Nov 20, 2026} "
                "BETWEEN begin AND end)  and maker == 'MSD  '  AND locactiv = .F."}));
}

TEST_F(VaccineContractTest, TextsAreTrimmed) {
  InsertContract({{"vaccine", "'  MMR '"},
                  {"maker", "'MSD  '"},
                  {"ndcno", "' 00006-1 '"},
                  {"contractid", "' C-77 '"},
                  {"sel_maker", "' Y '"},
                  {"dos_wind", "' W '"},
                  {"excfunds", "' E '"},
                  {"descrip", "'  text  '"}});
  ExpectTheContract(Verify());
}

TEST_F(VaccineContractTest, EmptyTextsAndZerosAreValues) {
  InsertContract({{"minbulk", "0"}, {"cost", "0"}, {"ndcno", "''"}, {"descrip", "'   '"}});
  const Contract contract = Verify();
  EXPECT_EQ(contract.minbulk, 0);
  EXPECT_EQ(contract.cost, 0.0);
  EXPECT_EQ(contract.ndcno, "");
  EXPECT_EQ(contract.descrip, "");
}

TEST_F(VaccineContractTest, NoRowIsRefused) {
  Watch(connection());
  ExpectNone();
  EXPECT_EQ(Statements(),
            (std::vector<std::string>{
                "SELECT * FROM pvaccref WHERE ltrim(rtrim(vaccine)) == 'MMR' AND ({11/20/2026} "
                "BETWEEN begin AND end)  and maker == 'MSD'  AND locactiv = .F."}));
  EXPECT_EQ(Trace(), ConnectionLines(1));
}

TEST_F(VaccineContractTest, TheRangeIncludesBothItsEnds) {
  InsertContract({{"begin", "'2026-11-01'"}, {"end", "'2026-11-30'"}});
  ExpectNone("10/31/2026");
  EXPECT_EQ(Verify("11/1/2026").vaccine, "MMR");
  EXPECT_EQ(Verify("11/30/2026").vaccine, "MMR");
  ExpectNone("12/1/2026");
}

TEST_F(VaccineContractTest, AnotherVaccineOrMakerIsRefused) {
  InsertContract();
  ExpectNone("11/20/2026", "DTP");
  ExpectNone("11/20/2026", "MM");
  ExpectNone("11/20/2026", "MMRV");
  ExpectNone("11/20/2026", "MMR", "PMC");
  ExpectNone("11/20/2026", "MMR", "");
}

TEST_F(VaccineContractTest, CaseCounts) {
  InsertContract();
  ExpectNone("11/20/2026", "mmr");
  ExpectNone("11/20/2026", "MMR", "msd");
}

TEST_F(VaccineContractTest, LeadingBlanksOfTheStoredMakerCount) {
  InsertContract({{"maker", "' MSD'"}});
  ExpectNone();
  EXPECT_EQ(Verify("11/20/2026", "MMR", " MSD").maker, "MSD");
}

TEST_F(VaccineContractTest, LeadingBlanksOfTheValueGivenCount) {
  InsertContract({{"vaccine", "' MMR'"}});
  ExpectNone("11/20/2026", " MMR");
  EXPECT_EQ(Verify().vaccine, "MMR");
}

TEST_F(VaccineContractTest, OnlyRowsWithLocactivFalseCount) {
  InsertContract({{"locactiv", "'1'"}});
  ExpectNone();
  InsertContract({{"locactiv", "NULL"}});
  ExpectNone();
  InsertContract();
  ExpectTheContract(Verify());
}

TEST_F(VaccineContractTest, FurtherRowsAreIgnored) {
  InsertContract();
  InsertContract();
  InsertContract({{"maker", "'PMC'"}, {"cost", "99"}});
  ExpectTheContract(Verify());
}

TEST_F(VaccineContractTest, ANullInAnyOfTheFourteenColumnsIsAnInvalidUseOfNull) {
  for (const char* const column : kContractColumns) {
    SCOPED_TRACE(column);
    Execute("DELETE FROM pvaccref");
    InsertContract({{column, "NULL"}});
    Recordset recordset;
    recordset.Open("SELECT * FROM pvaccref", connection(), CursorType::kKeyset, LockType::kReadOnly,
                   CommandType::kText);
    ExpectNumber(94, [&] { static_cast<void>(ReadContract(recordset)); });
  }
}

TEST_F(VaccineContractTest, ANullThatTheSelectionLetsThroughComesOutAsSuch) {
  for (const char* const column : kContractColumns) {
    SCOPED_TRACE(column);
    Execute("DELETE FROM pvaccref");
    InsertContract({{column, "NULL"}});
    const std::string name = column;
    if (name == "vaccine" || name == "maker" || name == "begin" || name == "end") {
      ExpectNone();
    } else {
      ExpectNumber(94, [&] { static_cast<void>(Verify()); });
    }
  }
}

TEST_F(VaccineContractTest, ANullBehindTheFourteenColumnsDoesNotMatter) {
  InsertContract({{"maxno", "NULL"}});
  ExpectTheContract(Verify());
}

TEST_F(VaccineContractTest, ReadContractReadsTheRecordTheRecordsetStandsOn) {
  InsertContract({{"vaccine", "'A'"}, {"cost", "1"}});
  InsertContract({{"vaccine", "'B'"}, {"cost", "2"}});
  Recordset recordset;
  recordset.Open("SELECT * FROM pvaccref ORDER BY vaccine", connection(), CursorType::kKeyset,
                 LockType::kReadOnly, CommandType::kText);
  EXPECT_EQ(ReadContract(recordset).cost, 1.0);
  recordset.MoveNext();
  EXPECT_EQ(ReadContract(recordset).cost, 2.0);
}

TEST_F(VaccineContractTest, ADateThatIsNoneCannotBeConverted) {
  InsertContract();
  for (const char* const text : {"13/45/2026", "soon", "1'1/2026"}) {
    SCOPED_TRACE(text);
    ExpectNumber(Numbered(EngineError::kValueCannotBeConverted),
                 [&] { static_cast<void>(Verify(text)); });
  }
}

TEST_F(VaccineContractTest, ABlankDateIsNullAndLiesInNoRange) {
  InsertContract();
  ExpectNone("");
  ExpectNone("  ");
}

TEST_F(VaccineContractTest, AValueThatWouldLeaveItsPlaceIsRefused) {
  InsertContract();
  const std::int32_t refused = Numbered(EngineError::kStatementRefused);
  ExpectNumber(refused, [&] { static_cast<void>(Verify("11/20/2026}")); });
  ExpectNumber(refused, [&] { static_cast<void>(Verify("11/20/2026", "M'R")); });
  ExpectNumber(refused, [&] { static_cast<void>(Verify("11/20/2026", "MMR", "M'D")); });
  // Before the date is looked at.
  ExpectNumber(refused, [&] { static_cast<void>(Verify("soon", "M'R")); });
}

}  // namespace
}  // namespace lotrix

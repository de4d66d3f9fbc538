#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/fixture.h"

namespace lotrix::test {
namespace {

namespace fs = std::filesystem;

const std::string kNoProvider = "Provider cannot be found. It may not be properly installed.";

std::string FileText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

Lines WholeLines(const std::string& path) {
  Lines lines;
  std::ifstream file(path, std::ios::binary);
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

mode_t ModeOf(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
  return status.st_mode & 07777U;
}

// Sets a variable of the environment, or removes it, until the end of the block.
class EnvironmentVariable {
 public:
  EnvironmentVariable(std::string name, const std::optional<std::string>& value)
      : name_(std::move(name)) {
    if (const char* const before = std::getenv(name_.c_str())) before_ = before;
    Set(value);
  }
  ~EnvironmentVariable() { Set(before_); }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

 private:
  void Set(const std::optional<std::string>& value) const {
    if (value) {
      setenv(name_.c_str(), value->c_str(), 1);
    } else {
      unsetenv(name_.c_str());
    }
  }

  std::string name_;
  std::optional<std::string> before_;
};

// The local time as a time stamp shows it.
std::chrono::system_clock::time_point LocalTime(int year, int month, int day, int hour, int minute,
                                                int second, int microseconds) {
  std::tm local{};
  local.tm_year = year - 1900;
  local.tm_mon = month - 1;
  local.tm_mday = day;
  local.tm_hour = hour;
  local.tm_min = minute;
  local.tm_sec = second;
  local.tm_isdst = -1;
  return std::chrono::system_clock::from_time_t(std::mktime(&local)) +
         std::chrono::microseconds(microseconds);
}

// --- Lifetime -----------------------------------------------------------------

class Component : public DatabaseTest {
 protected:
  // A second object on the same log; it has been given nothing yet.
  std::unique_ptr<cLotrix> Fresh() {
    auto fresh = std::make_unique<cLotrix>(MakeHost());
    ForgetTrace();
    return fresh;
  }
};

TEST_F(Component, CreatingWritesNoLine) {
  const cLotrix created(MakeHost());
  EXPECT_EQ(Trace(), Lines{});
}

TEST_F(Component, DestroyingWritesTwoLines) {
  auto object = Fresh();
  object.reset();
  EXPECT_EQ(Trace(),
            (Lines{"information Begin: Class_Terminate()", "information End: Class_Terminate()"}));
}

TEST_F(Component, DestroyingWithAnOpenConnectionWritesTheSameTwoLines) {
  auto object = Fresh();
  object->openConnection(database().ConnectionString());
  object->vaccineReferenceTableRead();
  ForgetTrace();
  object.reset();
  EXPECT_EQ(Trace(),
            (Lines{"information Begin: Class_Terminate()", "information End: Class_Terminate()"}));
}

TEST_F(Component, DestroyingOnlyReleasesTheConnection) {
  auto object = Fresh();
  object->openConnection(database().ConnectionString());
  const std::shared_ptr<Connection> held = object->Connection();
  object.reset();
  EXPECT_EQ(held->State(), ObjectState::kOpen);
  EXPECT_EQ(held.use_count(), 1);
}

// --- openConnection, Connection, closeConnection --------------------------------

TEST_F(Component, OpenConnectionWritesItsBeginLineTwiceAndNoEndLine) {
  auto object = Fresh();
  object->openConnection(database().ConnectionString());
  EXPECT_EQ(Trace(),
            (Lines{"information Begin: openConnection()", "information Begin: openConnection()"}));
}

TEST_F(Component, OpenConnectionOpensNothing) {
  const TemporaryFolder folder;
  const std::string file = folder.path() + "/new.db";
  auto object = Fresh();
  object->openConnection("Provider=SQLite;Data Source=" + file);
  EXPECT_FALSE(fs::exists(file));
  object->Connection();
  EXPECT_TRUE(fs::exists(file));
}

TEST_F(Component, OpenConnectionTakesAnyText) {
  auto object = Fresh();
  object->openConnection("no connection string at all");
  object->openConnection("");
  EXPECT_EQ(Trace(), Lines(4, "information Begin: openConnection()"));
}

TEST_F(Component, ReadingTheConnectionOpensItForReadingAndWriting) {
  auto object = Fresh();
  object->openConnection(database().ConnectionString());
  ForgetTrace();
  const std::shared_ptr<Connection> opened = object->Connection();
  ASSERT_NE(opened, nullptr);
  EXPECT_EQ(opened->State(), ObjectState::kOpen);
  EXPECT_EQ(opened->Mode(), ConnectMode::kReadWrite);
  EXPECT_EQ(opened->ConnectionString(), database().ConnectionString());
  EXPECT_EQ(Trace(),
            (Lines{"information Begin: Get Connection()", "information End: GetConnection()"}));
}

TEST_F(Component, ReadingAnOpenConnectionWritesItsTwoLinesAgain) {
  const std::shared_ptr<Connection> first = lotrix().Connection();
  ForgetTrace();
  EXPECT_EQ(lotrix().Connection(), first);
  EXPECT_EQ(Trace(),
            (Lines{"information Begin: Get Connection()", "information End: GetConnection()"}));
}

TEST_F(Component, CloseConnectionClosesAndKeepsTheObject) {
  const std::shared_ptr<Connection> held = lotrix().Connection();
  ForgetTrace();
  lotrix().closeConnection();
  EXPECT_EQ(Trace(),
            (Lines{"information Begin: closeConnection()", "information End: closeConnection()"}));
  EXPECT_EQ(held->State(), ObjectState::kClosed);
  EXPECT_EQ(lotrix().Connection(), held);
  EXPECT_EQ(held->State(), ObjectState::kOpen);
}

TEST_F(Component, ClosingAClosedConnectionWritesItsTwoLines) {
  auto object = Fresh();
  object->closeConnection();
  object->closeConnection();
  EXPECT_EQ(Trace(),
            (Lines{"information Begin: closeConnection()", "information End: closeConnection()",
                   "information Begin: closeConnection()", "information End: closeConnection()"}));
}

TEST_F(Component, AReadAfterCloseConnectionReopensWithTheStoredString) {
  Execute("INSERT INTO pvaccref (vaccine) VALUES ('HEPA')");
  lotrix().vaccineReferenceTableRead();
  lotrix().closeConnection();
  ForgetTrace();
  EXPECT_EQ(Cells(lotrix().vaccineReferenceTableRead()), (std::vector<Row>{{"HEPA"}}));
  EXPECT_EQ(Trace(),
            (Lines{"information Begin: vaccineReferenceTableRead()",
                   "information Begin: Get Connection()", "information End: GetConnection()",
                   "information End: vaccineReferenceTableRead()"}));
}

TEST_F(Component, AConnectionThatItsClientClosedIsReopened) {
  Execute("INSERT INTO pvaccref (vaccine) VALUES ('HEPA')");
  lotrix().Connection()->Close();
  EXPECT_EQ(Cells(lotrix().vaccineReferenceTableRead()), (std::vector<Row>{{"HEPA"}}));
}

TEST_F(Component, AnotherStringHasNoEffectUntilTheConnectionIsClosed) {
  const std::unique_ptr<TestDatabase> other = MakeTestDatabase();
  Execute("INSERT INTO pvaccref (vaccine) VALUES ('HERE')");
  other->Execute("INSERT INTO pvaccref (vaccine) VALUES ('THERE')");
  EXPECT_EQ(Cells(lotrix().vaccineReferenceTableRead()), (std::vector<Row>{{"HERE"}}));
  lotrix().openConnection(other->ConnectionString());
  EXPECT_EQ(Cells(lotrix().vaccineReferenceTableRead()), (std::vector<Row>{{"HERE"}}));
  lotrix().closeConnection();
  EXPECT_EQ(Cells(lotrix().vaccineReferenceTableRead()), (std::vector<Row>{{"THERE"}}));
}

TEST_F(Component, TheStringGivenLastIsTheOneThatCounts) {
  Execute("INSERT INTO pvaccref (vaccine) VALUES ('HERE')");
  auto object = Fresh();
  object->openConnection("Provider=Nowhere");
  object->openConnection(database().ConnectionString());
  EXPECT_EQ(Cells(object->vaccineReferenceTableRead()), (std::vector<Row>{{"HERE"}}));
}

TEST_F(Component, TwoObjectsHaveConnectionsOfTheirOwn) {
  auto object = Fresh();
  object->openConnection(database().ConnectionString());
  const std::shared_ptr<Connection> other = object->Connection();
  EXPECT_NE(other, lotrix().Connection());
  lotrix().closeConnection();
  EXPECT_EQ(other->State(), ObjectState::kOpen);
}

// --- Connections that fail --------------------------------------------------------

TEST_F(Component, AnOperationBeforeOpenConnectionFails) {
  auto object = Fresh();
  ExpectError(Refusal([&] { object->stockTableRead(); }), 3706, kNoProvider);
  EXPECT_EQ(Trace(),
            (Lines{"information Begin: stockTableRead()", "information Begin: Get Connection()",
                   "error Problem: In GetConnection() " + kNoProvider,
                   "error Problem: In stockTableRead() " + kNoProvider}));
}

TEST_F(Component, ReadingTheConnectionBeforeOpenConnectionFails) {
  auto object = Fresh();
  ExpectError(Refusal([&] { object->Connection(); }), 3706, kNoProvider);
  EXPECT_EQ(Trace(), (Lines{"information Begin: Get Connection()",
                            "error Problem: In GetConnection() " + kNoProvider}));
}

TEST_F(Component, NoProviderOrAnUnknownOneCannotBeFound) {
  for (const char* const text : {"", "   ", "Data Source=x.db", "Provider=", "Provider=Nowhere",
                                 "Provider=Nowhere;Data Source=x.db"}) {
    SCOPED_TRACE(text);
    auto object = Fresh();
    object->openConnection(text);
    ExpectError(Refusal([&] { object->Connection(); }), 3706, kNoProvider);
    ExpectError(Refusal([&] { object->vaccineReferenceTableRead(); }), 3706, kNoProvider);
  }
}

TEST_F(Component, NoFileOrAMissingFolderIsAnErrorOfTheEngine) {
  const TemporaryFolder folder;
  for (const std::string& text :
       {std::string("Provider=SQLite"), std::string("Provider=SQLite;Data Source="),
        "Provider=SQLite;Data Source=" + folder.path() + "/missing/x.db"}) {
    SCOPED_TRACE(text);
    auto object = Fresh();
    object->openConnection(text);
    ForgetTrace();
    const Error error = Refusal([&] { object->vaccineReferenceTableRead(); });
    EXPECT_EQ(error.number(), Numbered(EngineError::kFailed));
    EXPECT_EQ(error.source(), "LOTRIX DLL");
    EXPECT_FALSE(error.description().empty());
    EXPECT_EQ(Trace(),
              (Lines{"information Begin: vaccineReferenceTableRead()",
                     "information Begin: Get Connection()",
                     "error Problem: In GetConnection() " + error.description(),
                     "error Problem: In vaccineReferenceTableRead() " + error.description()}));
  }
  EXPECT_FALSE(fs::exists(folder.path() + "/missing"));
}

TEST_F(Component, AFailedOpeningIsTriedAgain) {
  Execute("INSERT INTO pvaccref (vaccine) VALUES ('HERE')");
  auto object = Fresh();
  object->openConnection("Provider=Nowhere");
  ExpectError(Refusal([&] { object->vaccineReferenceTableRead(); }), 3706, kNoProvider);
  ExpectError(Refusal([&] { object->vaccineReferenceTableRead(); }), 3706, kNoProvider);
  object->openConnection(database().ConnectionString());
  EXPECT_EQ(Cells(object->vaccineReferenceTableRead()), (std::vector<Row>{{"HERE"}}));
}

TEST_F(Component, AFailedReopeningLeavesTheConnectionClosed) {
  const std::shared_ptr<Connection> held = lotrix().Connection();
  lotrix().closeConnection();
  lotrix().openConnection("Provider=Nowhere");
  ExpectError(Refusal([&] { lotrix().Connection(); }), 3706, kNoProvider);
  EXPECT_EQ(held->State(), ObjectState::kClosed);
}

TEST_F(Component, KeywordsHaveNoCaseAndValuesMayBeQuoted) {
  const TemporaryFolder folder;
  int number = 0;
  for (const std::string& keywords :
       {std::string("provider=sqlite;data source="), std::string("PROVIDER=SQLITE;DATA SOURCE="),
        std::string("Data Source=")}) {
    for (const std::string& quote : {std::string(), std::string("\""), std::string("'")}) {
      const std::string file = folder.path() + "/" + std::to_string(++number) + ".db";
      auto object = Fresh();
      object->openConnection(keywords + quote + file + quote +
                             (keywords[0] == 'D' ? ";Provider=\"SQLite\"" : ""));
      object->Connection();
      EXPECT_TRUE(fs::exists(file)) << keywords << quote;
    }
  }
}

TEST_F(Component, AQuotedValueMayHoldASemicolon) {
  const TemporaryFolder folder;
  const std::string file = folder.path() + "/a;b.db";
  auto object = Fresh();
  object->openConnection("Provider=SQLite;Data Source=\"" + file + "\"");
  object->Connection();
  EXPECT_TRUE(fs::exists(file));
}

TEST_F(Component, TheEnginesOwnKeywordsAreTaken) {
  const TemporaryFolder folder;
  auto object = Fresh();
  object->openConnection("Provider=SQLite;Data Source=" + folder.path() +
                         "/a.db;Synchronous=NORMAL;Busy Timeout=250;Cache Size=4096");
  EXPECT_EQ(object->Connection()->State(), ObjectState::kOpen);
}

TEST_F(Component, AConnectionStringIsNeverWrittenToTheLog) {
  const TemporaryFolder folder;
  for (const std::string& text :
       {std::string("Provider=Nowhere;Password=sesame"), std::string("Password=sesame"),
        std::string("sesame"), "Provider=SQLite;Data Source=" + folder.path() + "/sesame/x.db",
        "Provider=SQLite;Password=sesame;Data Source=" + folder.path() + "/y.db",
        "Provider=SQLite;Data Source=" + folder.path() + "/z.db;sesame=sesame;sesame"}) {
    SCOPED_TRACE(text);
    cLotrix object(MakeHost());
    object.openConnection(text);
    for (int attempt = 0; attempt < 2; ++attempt) {
      try {
        object.vaccineReferenceTableRead();
      } catch (const Error&) {  // whether it opens does not matter here
      }
    }
    object.closeConnection();
  }
  const std::string log = FileText(logPath());
  EXPECT_NE(log.find("information Begin: vaccineReferenceTableRead()"), std::string::npos);
  EXPECT_EQ(log.find("sesame"), std::string::npos);
  EXPECT_EQ(log.find("Data Source"), std::string::npos);
}

TEST_F(Component, AFailedOperationHasNoEndLine) {
  lotrix().Connection();
  ForgetTrace();
  ExpectError(Refusal([&] { lotrix().stockTableRead("", "", "", "x"); }), Coded(20062),
              "The Shipment Begin Date that was entered is not a valid date");
  EXPECT_EQ(Trace(), (Lines{"information Begin: stockTableRead()",
                            "error Problem: In stockTableRead() The Shipment Begin Date that was "
                            "entered is not a valid date"}));
}

// --- Texts that are none ------------------------------------------------------------

const std::vector<std::string>& InvalidTexts() {
  static const std::vector<std::string> texts = {
      "\xFF",              // never a byte of UTF-8
      "\x80",              // a continuation without a lead
      "A\xC3",             // cut off
      "\xE2\x82",          // cut off
      "\xC0\x80",          // two bytes for U+0000
      "\xE0\x80\xAF",      // three bytes for a slash
      "\xED\xA0\x80",      // half of a surrogate pair
      "\xF4\x90\x80\x80",  // beyond U+10FFFF
      "caf\xE9",           // another encoding
  };
  return texts;
}

TEST_F(Component, InvalidUtf8InAnyArgumentIsRefusedAndNothingLogged) {
  cLotrix& object = lotrix();
  using Call = std::function<void(const std::string&)>;
  const std::vector<Call> calls = {
      [&](const std::string& bad) { object.openConnection(bad); },
      [&](const std::string& bad) { object.CheckVaccActive(bad); },
      [&](const std::string& bad) { object.inventoryOnHandRead(bad); },
      [&](const std::string& bad) { object.inventoryOnHandRead("", bad); },
      [&](const std::string& bad) { object.stockTableRead(bad); },
      [&](const std::string& bad) { object.stockTableRead("", bad); },
      [&](const std::string& bad) { object.stockTableRead("", "", bad); },
      [&](const std::string& bad) { object.stockTableRead("", "", "", bad); },
      [&](const std::string& bad) { object.stockTableRead("", "", "", "", bad); },
      [&](const std::string& bad) { object.manufacturerProviderOrderRead(bad, ""); },
      [&](const std::string& bad) { object.manufacturerProviderOrderRead("", bad); },
      [&](const std::string& bad) { object.manufacturerProviderOrderRead("", "", bad); },
      [&](const std::string& bad) { object.manufacturerProviderOrderRead("", "", "", bad); },
      [&](const std::string& bad) { object.manufacturerProviderOrderRead("", "", "", "", bad); },
      [&](const std::string& bad) {
        object.manufacturerProviderOrderCreateUpdate(bad, "", "", 0, "");
      },
      [&](const std::string& bad) {
        object.manufacturerProviderOrderCreateUpdate("", bad, "", 0, "");
      },
      [&](const std::string& bad) {
        object.manufacturerProviderOrderCreateUpdate("", "", bad, 0, "");
      },
      [&](const std::string& bad) {
        object.manufacturerProviderOrderCreateUpdate("", "", "", 0, bad);
      },
      [&](const std::string& bad) {
        object.manufacturerProviderOrderCreateUpdate("", "", "", 0, "", bad);
      },
      [&](const std::string& bad) {
        object.manufacturerProviderOrderCreateUpdate("", "", "", 0, "", "1", bad);
      },
      [&](const std::string& bad) {
        object.manufacturerProviderOrderCreateUpdate("", "", "", 0, "", "1", "", bad);
      }};
  for (std::size_t call = 0; call < calls.size(); ++call) {
    for (const std::string& bad : InvalidTexts()) {
      SCOPED_TRACE(call);
      const Error error = Refusal([&] { calls[call](bad); });
      EXPECT_EQ(error.number(), 5);
      EXPECT_EQ(error.source(), "Lotrix");
      EXPECT_EQ(Trace(), Lines{});
    }
  }
}

TEST_F(Component, ARefusedTextLeavesTheStoredStringAsItWas) {
  Execute("INSERT INTO pvaccref (vaccine) VALUES ('HERE')");
  EXPECT_EQ(Refusal([&] { lotrix().openConnection("Provider=\xFF"); }).number(), 5);
  EXPECT_EQ(Cells(lotrix().vaccineReferenceTableRead()), (std::vector<Row>{{"HERE"}}));
}

// --- The trace log -------------------------------------------------------------------

TEST_F(Component, ALineIsTimeProcessEventAndText) {
  auto object = Fresh();
  object->openConnection("Provider=Nowhere");
  ASSERT_EQ(Refusal([&] { object->Connection(); }).number(), 3706);
  const std::string start = "2026-11-20 13:45:12.123456 " + std::to_string(getpid()) + " ";
  EXPECT_EQ(FileText(logPath()), start + "information Begin: openConnection()\n" + start +
                                     "information Begin: openConnection()\n" + start +
                                     "information Begin: Get Connection()\n" + start +
                                     "error Problem: In GetConnection() " + kNoProvider + "\n");
}

TEST_F(Component, EveryPartOfTheTimeHasItsFullWidth) {
  const TemporaryFolder folder;
  const std::string path = folder.path() + "/x.log";
  auto time = LocalTime(2026, 1, 2, 3, 4, 5, 7);
  cLotrix object({.clock = [&] { return time; }, .notify = {}, .logPath = path});
  object.openConnection("");
  time = LocalTime(2026, 12, 31, 23, 59, 59, 999999);
  object.openConnection("");
  time = LocalTime(2027, 1, 1, 0, 0, 0, 0);
  object.openConnection("");
  const std::string rest = " " + std::to_string(getpid()) + " information Begin: openConnection()";
  EXPECT_EQ(WholeLines(path),
            (Lines{"2026-01-02 03:04:05.000007" + rest, "2026-01-02 03:04:05.000007" + rest,
                   "2026-12-31 23:59:59.999999" + rest, "2026-12-31 23:59:59.999999" + rest,
                   "2027-01-01 00:00:00.000000" + rest, "2027-01-01 00:00:00.000000" + rest}));
}

TEST_F(Component, WithoutAClockOfItsOwnTheLogTellsTheTimeOfTheSystem) {
  const TemporaryFolder folder;
  const std::string path = folder.path() + "/x.log";
  const auto stamp = [] {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char text[32];
    static_cast<void>(std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local));
    return std::string(text);
  };
  const std::string before = stamp();
  {
    cLotrix object({.clock = {}, .notify = {}, .logPath = path});
    object.openConnection("");
  }
  const std::string after = stamp();
  const Lines lines = WholeLines(path);
  ASSERT_EQ(lines.size(), 4U);
  for (const std::string& line : lines) {
    EXPECT_GE(line.substr(0, 19), before);
    EXPECT_LE(line.substr(0, 19), after);
  }
}

TEST_F(Component, TheLinesAreInTheFileWhenACallReturns) {
  auto object = Fresh();
  std::size_t lines = 0;
  const auto expectGrowthBy = [&](std::size_t count) {
    lines += count;
    EXPECT_EQ(WholeLines(logPath()).size(), lines);
  };
  object->openConnection(database().ConnectionString());
  expectGrowthBy(2);
  object->Connection();
  expectGrowthBy(2);
  object->vaccineReferenceTableRead();
  expectGrowthBy(4);
  EXPECT_EQ(Refusal([&] { object->inventoryOnHandRead(""); }).number(), 20022);
  expectGrowthBy(2);
  object->CheckVaccActive("HEPA");
  expectGrowthBy(4);
  object->closeConnection();
  expectGrowthBy(2);
  object.reset();
  expectGrowthBy(2);
}

TEST_F(Component, LineBreaksInATextAreWrittenAsEscapes) {
  Execute(
      "INSERT INTO provider (pin, sector, active) VALUES ('D01', 30, 'Y');"
      "INSERT INTO pvaccref (vaccine, locactiv) VALUES ('A\nB\r\nC\n', (1 = 0))");
  lotrix().inventoryOnHandRead("D01", "A\nB\r\nC\n");
  const Lines lines = Trace();
  ASSERT_EQ(lines.size(), 15U);
  EXPECT_EQ(lines[11],
            "information Select l.Vaccine, l.Lot, l.Expiry, l.Maker, l.Remain, l.Size From Lots l, "
            "pvaccref v WHERE ltrim(rtrim(l.Vaccine)) = 'A\\nB\\r\\nC\\n' AND "
            "ltrim(rtrim(l.Pin)) = 'D01' AND l.Expiry >=  {11/20/2026}  AND l.Size > 0  AND "
            "l.Remain >= 0  AND trim(l.Maker) is not NULL AND trim(l.vaccine) == "
            "trim(v.vaccine) AND v.locactiv = .T. ORDER BY l.Vaccine, l.Lot, l.Expiry");
  EXPECT_EQ(FileText(logPath()).find('\r'), std::string::npos);
}

TEST_F(Component, ALogThatIsThereIsAppendedTo) {
  const TemporaryFolder folder;
  const std::string path = folder.path() + "/x.log";
  std::ofstream(path) << "what was there\n";
  for (int time = 0; time < 2; ++time) {
    cLotrix object({.clock = Now, .notify = {}, .logPath = path});
    object.closeConnection();
  }
  Lines lines = WholeLines(path);
  ASSERT_EQ(lines.size(), 9U);
  EXPECT_EQ(lines[0], "what was there");
}

TEST_F(Component, ALogThatCannotBeOpenedIsNoFailure) {
  Execute("INSERT INTO pvaccref (vaccine, locactiv) VALUES ('HERE', (1 = 0))");
  const TemporaryFolder folder;
  std::ofstream(folder.path() + "/file") << "x";
  for (const std::string& path :
       {folder.path() + "/missing/Lotrix.log", folder.path(), folder.path() + "/file/Lotrix.log"}) {
    SCOPED_TRACE(path);
    Host host = MakeHost();
    host.logPath = path;
    cLotrix object(host);
    object.openConnection(database().ConnectionString());
    EXPECT_EQ(Cells(object.vaccineReferenceTableRead()), (std::vector<Row>{{"HERE"}}));
    ExpectError(Refusal([&] { object.stockTableRead("", "", "", "x"); }), Coded(20062),
                "The Shipment Begin Date that was entered is not a valid date");
    object.closeConnection();
  }
  EXPECT_FALSE(fs::exists(folder.path() + "/missing"));
  EXPECT_EQ(FileText(folder.path() + "/file"), "x");
}

TEST_F(Component, ALogPathMayHoldLettersBeyondAscii) {
  const TemporaryFolder folder;
  const std::string path = folder.path() + "/Protokoll é я.log";
  cLotrix object({.clock = Now, .notify = {}, .logPath = path});
  object.closeConnection();
  EXPECT_EQ(WholeLines(path).size(), 2U);
}

// --- Where the log is ------------------------------------------------------------------

class LogPath : public ::testing::Test {
 protected:
  static void CallOnce(const std::string& logPath = {}) {
    cLotrix object({.clock = {}, .notify = {}, .logPath = logPath});
    object.closeConnection();
  }
  [[nodiscard]] std::string In(const std::string& name) const {
    return folder_.path() + "/" + name;
  }

  TemporaryFolder folder_;
};

TEST_F(LogPath, TheGivenPathGoesFirst) {
  const EnvironmentVariable log("LOTRIX_LOG", In("variable.log"));
  const EnvironmentVariable state("XDG_STATE_HOME", folder_.path());
  CallOnce(In("given.log"));
  EXPECT_EQ(WholeLines(In("given.log")).size(), 4U);
  EXPECT_FALSE(fs::exists(In("variable.log")));
  EXPECT_FALSE(fs::exists(In("lotrix")));
}

TEST_F(LogPath, ThenTheVariable) {
  const EnvironmentVariable log("LOTRIX_LOG", In("variable.log"));
  const EnvironmentVariable state("XDG_STATE_HOME", folder_.path());
  CallOnce();
  EXPECT_EQ(WholeLines(In("variable.log")).size(), 4U);
  EXPECT_FALSE(fs::exists(In("lotrix")));
}

TEST_F(LogPath, TheFolderOfTheVariableIsNotMade) {
  const EnvironmentVariable log("LOTRIX_LOG", In("missing/variable.log"));
  CallOnce();
  EXPECT_FALSE(fs::exists(In("missing")));
}

TEST_F(LogPath, ThenTheStateFolderWhoseLastElementIsMadeForItsOwnerAlone) {
  const EnvironmentVariable log("LOTRIX_LOG", std::nullopt);
  const EnvironmentVariable state("XDG_STATE_HOME", folder_.path());
  const mode_t before = umask(0);
  CallOnce();
  umask(before);
  EXPECT_EQ(WholeLines(In("lotrix/Lotrix.log")).size(), 4U);
  EXPECT_EQ(ModeOf(In("lotrix")), 0700U);
}

TEST_F(LogPath, AStateFolderThatIsThereIsUsedAsItIs) {
  const EnvironmentVariable log("LOTRIX_LOG", std::nullopt);
  const EnvironmentVariable state("XDG_STATE_HOME", folder_.path());
  fs::create_directory(In("lotrix"));
  chmod(In("lotrix").c_str(), 0750);
  CallOnce();
  CallOnce();
  EXPECT_EQ(WholeLines(In("lotrix/Lotrix.log")).size(), 8U);
  EXPECT_EQ(ModeOf(In("lotrix")), 0750U);
}

TEST_F(LogPath, NoOtherFolderIsMade) {
  const EnvironmentVariable log("LOTRIX_LOG", std::nullopt);
  const EnvironmentVariable state("XDG_STATE_HOME", In("missing"));
  CallOnce();
  EXPECT_FALSE(fs::exists(In("missing")));
}

// --- Several writers of one log ----------------------------------------------------------

// Calls whose lines are long: the read of a depot's lots logs its query, and the
// vaccine in it is as long as a text may be.
constexpr int kCalls = 30;

std::string LongVaccine(char letter) { return std::string(32000, letter); }

Lines LinesOfACall(char letter) {
  return {"information Begin: inventoryOnHandRead()",
          "information Begin: Get Connection()",
          "information End: GetConnection()",
          "information Begin: ValidateDepotPIN()",
          "information End: ValidateDepotPIN()",
          "information Begin: Get Connection()",
          "information End: GetConnection()",
          "information End: ValidateAgainstpVaccRefTable()",
          "information Begin: ValidateVaccineActiveStatus()",
          "information End: ValidateVaccineActiveStatus()",
          "information End: ValidateAgainstpVaccRefTable()",
          "information Select l.Vaccine, l.Lot, l.Expiry, l.Maker, l.Remain, l.Size From Lots l, "
          "pvaccref v WHERE ltrim(rtrim(l.Vaccine)) = '" +
              LongVaccine(letter) +
              "' AND ltrim(rtrim(l.Pin)) = 'D01' AND l.Expiry >=  {11/20/2026}  AND l.Size > 0  "
              "AND l.Remain >= 0  AND trim(l.Maker) is not NULL AND trim(l.vaccine) == "
              "trim(v.vaccine) AND v.locactiv = .T. ORDER BY l.Vaccine, l.Lot, l.Expiry",
          "information Begin: Get Connection()",
          "information End: GetConnection()",
          "information End: inventoryOnHandRead()"};
}

// On a database of its own, made by the product alone, so that it may run in a
// process of its own too.
void WriteLongLines(const std::string& folder, const std::string& log, char letter,
                    std::chrono::system_clock::time_point now) {
  cLotrix object({.clock = [now] { return now; }, .notify = {}, .logPath = log});
  object.openConnection("Provider=SQLite;Data Source=" + folder + "/" + letter +
                        ".db;Synchronous=OFF");
  const std::shared_ptr<Connection> connection = object.Connection();
  connection->CreateSchema();
  connection->Execute("INSERT INTO provider (pin, sector, active) VALUES('D01', 30, 'Y')");
  connection->Execute("INSERT INTO pvaccref (vaccine, locactiv) VALUES('" + LongVaccine(letter) +
                      "', .F.)");
  for (int call = 0; call < kCalls; ++call) {
    object.inventoryOnHandRead("D01", LongVaccine(letter));
  }
}

Lines AllLinesOf(char letter) {
  Lines lines = {"information Begin: openConnection()", "information Begin: openConnection()",
                 "information Begin: Get Connection()", "information End: GetConnection()"};
  const Lines call = LinesOfACall(letter);
  for (int count = 0; count < kCalls; ++count) lines.insert(lines.end(), call.begin(), call.end());
  lines.insert(lines.end(),
               {"information Begin: Class_Terminate()", "information End: Class_Terminate()"});
  return lines;
}

// The lines without time and process, by process; every line must have both.
std::map<std::string, Lines> LinesByProcess(const std::string& path) {
  const std::string time = "2026-11-20 13:45:12.123456 ";
  std::map<std::string, Lines> byProcess;
  for (const std::string& line : WholeLines(path)) {
    const std::size_t end = line.find(' ', time.size());
    if (line.compare(0, time.size(), time) != 0 || end == std::string::npos) {
      ADD_FAILURE() << "a torn line: " << line.substr(0, 200);
      continue;
    }
    byProcess[line.substr(time.size(), end - time.size())].push_back(line.substr(end + 1));
  }
  return byProcess;
}

TEST(LogWriters, TwoProcessesTearNoLine) {
  const TemporaryFolder folder;
  const std::string log = folder.path() + "/x.log";
  const auto now = LocalTime(2026, 11, 20, 13, 45, 12, 123456);
  std::map<std::string, char> children;
  for (const char letter : {'A', 'B'}) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      try {
        WriteLongLines(folder.path(), log, letter, now);
      } catch (...) {
        _exit(1);
      }
      _exit(0);
    }
    children[std::to_string(child)] = letter;
  }
  for (const auto& [process, letter] : children) {
    int status = 0;
    ASSERT_EQ(waitpid(static_cast<pid_t>(std::stol(process)), &status, 0), std::stol(process));
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << letter;
  }
  const std::map<std::string, Lines> byProcess = LinesByProcess(log);
  ASSERT_EQ(byProcess.size(), 2U);
  for (const auto& [process, letter] : children) {
    ASSERT_EQ(byProcess.count(process), 1U);
    EXPECT_TRUE(byProcess.at(process) == AllLinesOf(letter)) << letter;
  }
}

TEST(LogWriters, TwoObjectsOfOneProcessTearNoLine) {
  const TemporaryFolder folder;
  const std::string log = folder.path() + "/x.log";
  const auto now = LocalTime(2026, 11, 20, 13, 45, 12, 123456);
  std::vector<std::thread> threads;
  for (const char letter : {'A', 'B'}) {
    threads.emplace_back([&, letter] { WriteLongLines(folder.path(), log, letter, now); });
  }
  for (std::thread& thread : threads) thread.join();
  const std::map<std::string, Lines> byProcess = LinesByProcess(log);
  ASSERT_EQ(byProcess.size(), 1U);
  Lines lines = byProcess.begin()->second;
  EXPECT_EQ(byProcess.begin()->first, std::to_string(getpid()));
  Lines expected = AllLinesOf('A');
  const Lines others = AllLinesOf('B');
  expected.insert(expected.end(), others.begin(), others.end());
  std::sort(lines.begin(), lines.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_TRUE(lines == expected) << lines.size() << " lines of " << expected.size();
}

TEST(LogWriters, AnObjectThatAForkedProcessGoesOnWithLogsUnderThatProcess) {
  const TemporaryFolder folder;
  const std::string log = folder.path() + "/x.log";
  const auto now = LocalTime(2026, 11, 20, 13, 45, 12, 123456);
  cLotrix object({.clock = [now] { return now; }, .notify = {}, .logPath = log});
  object.openConnection("");
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    object.closeConnection();
    _exit(0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  const std::map<std::string, Lines> expected = {
      {std::to_string(getpid()),
       {"information Begin: openConnection()", "information Begin: openConnection()"}},
      {std::to_string(child),
       {"information Begin: closeConnection()", "information End: closeConnection()"}}};
  EXPECT_EQ(LinesByProcess(log), expected);
}

TEST(LogWriters, TwoObjectsOfOneThreadWriteInTheOrderOfTheirCalls) {
  const TemporaryFolder folder;
  const std::string log = folder.path() + "/x.log";
  cLotrix first({.clock = {}, .notify = {}, .logPath = log});
  cLotrix second({.clock = {}, .notify = {}, .logPath = log});
  first.openConnection("");
  second.closeConnection();
  first.closeConnection();
  EXPECT_EQ(TraceLines(log),
            (Lines{"information Begin: openConnection()", "information Begin: openConnection()",
                   "information Begin: closeConnection()", "information End: closeConnection()",
                   "information Begin: closeConnection()", "information End: closeConnection()"}));
}

}  // namespace
}  // namespace lotrix::test

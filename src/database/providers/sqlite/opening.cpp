#include "src/database/providers/sqlite/opening.h"

#include <charconv>
#include <chrono>
#include <cstdint>
#include <limits>
#include <string_view>
#include <thread>

#include "src/database/providers/sqlite/errors.h"
#include "src/errors/raise_error.h"
#include "src/platform/text.h"

namespace lotrix::sqlite {

namespace {

[[noreturn]] void RefuseSetting(const std::string& keyword) {
  RaiseEngineError(EngineError::kFailed,
                   "Connection string: the value of " + keyword + " is not one it can take.");
}

std::int64_t NumberSetting(const std::string& keyword, const std::string& value,
                           std::int64_t most) {
  std::int64_t number = 0;
  const char* const end = value.data() + value.size();
  const auto read = std::from_chars(value.data(), end, number);
  if (value.empty() || read.ec != std::errc() || read.ptr != end || number < 0 || number > most) {
    RefuseSetting(keyword);
  }
  return number;
}

struct SqliteSettings {
  std::string file;
  std::string synchronous = "full";
  std::int64_t busyTimeout = 5000;
  std::int64_t cacheSize = 65536;
};

SqliteSettings ReadSettings(const ConnectionSettings& settings) {
  SqliteSettings read;
  constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
  for (const auto& [keyword, value] : settings.values) {
    if (keyword == "data source") {
      read.file = value;
    } else if (keyword == "synchronous") {
      read.synchronous = LowerAscii(value);
      if (read.synchronous != "off" && read.synchronous != "normal" && read.synchronous != "full" &&
          read.synchronous != "extra") {
        RefuseSetting("Synchronous");
      }
    } else if (keyword == "busy timeout") {
      read.busyTimeout = NumberSetting("Busy Timeout", value, kMost);
    } else if (keyword == "cache size") {
      read.cacheSize = NumberSetting("Cache Size", value, kMost);
    } else {
      // Not named: it may be what is left of a value that needed quotes.
      RaiseEngineError(EngineError::kFailed, "Connection string: a keyword is unknown.");
    }
  }
  if (read.file.empty()) {
    RaiseEngineError(EngineError::kFailed, "Connection string: no Data Source is named.");
  }
  if (read.file.find('\0') != std::string::npos) RefuseSetting("Data Source");
  return read;
}

bool UsesWriteAheadLog(sqlite3* database) {
  std::string mode;
  const auto take = [](void* into, int, char** values, char**) {
    *static_cast<std::string*>(into) = values[0];
    return 0;
  };
  Check(database, sqlite3_exec(database, "PRAGMA journal_mode", take, &mode, nullptr));
  return mode == "wal" || mode == "memory";
}

// SQLite does not wait for the lock that the switch takes when others open the
// same new file, so the waiting is done here.
void SwitchToWriteAheadLog(sqlite3* database, std::int64_t busyTimeout) {
  constexpr auto kPause = std::chrono::milliseconds(5);
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(busyTimeout);
  while (!UsesWriteAheadLog(database)) {
    const int result = sqlite3_exec(database, "PRAGMA journal_mode=WAL", nullptr, nullptr, nullptr);
    if (result == SQLITE_OK && UsesWriteAheadLog(database)) return;
    const bool busy = (result & 0xFF) == SQLITE_BUSY || result == SQLITE_OK;
    if (!busy || std::chrono::steady_clock::now() >= end) {
      RaiseSqliteError(database, result == SQLITE_OK ? SQLITE_BUSY : result);
    }
    std::this_thread::sleep_for(kPause);
  }
}

}  // namespace

void Check(sqlite3* database, int resultCode) {
  if (resultCode != SQLITE_OK) RaiseSqliteError(database, resultCode);
}

void ExecuteNative(sqlite3* database, const std::string& sql) {
  Check(database, sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr));
}

std::string FileOf(const ConnectionSettings& settings) { return ReadSettings(settings).file; }

Database Connect(const ConnectionSettings& settings, ConnectMode mode) {
  const SqliteSettings wanted = ReadSettings(settings);
  const bool readOnly = mode == ConnectMode::kRead;
  const int flags = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE |
                    (readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  sqlite3* opened = nullptr;
  const int result = sqlite3_open_v2(wanted.file.c_str(), &opened, flags, nullptr);
  Database database(opened);
  Check(database.get(), result);

  // A misspelt column must be an error, not a text; and the schema of a database
  // file from elsewhere must not call functions with effects of their own.
  for (const int switchedOff :
       {SQLITE_DBCONFIG_DQS_DML, SQLITE_DBCONFIG_DQS_DDL, SQLITE_DBCONFIG_TRUSTED_SCHEMA}) {
    Check(database.get(), sqlite3_db_config(database.get(), switchedOff, 0, nullptr));
  }
  Check(database.get(), sqlite3_db_config(database.get(), SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr));

  Check(database.get(), sqlite3_busy_timeout(database.get(), static_cast<int>(wanted.busyTimeout)));
  if (!readOnly) SwitchToWriteAheadLog(database.get(), wanted.busyTimeout);
  ExecuteNative(database.get(), "PRAGMA synchronous=" + wanted.synchronous);
  ExecuteNative(database.get(), "PRAGMA cache_size=-" + std::to_string(wanted.cacheSize));
  return database;
}

}  // namespace lotrix::sqlite

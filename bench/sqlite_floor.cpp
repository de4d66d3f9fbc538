#include "bench/sqlite_floor.h"

#include <sqlite3.h>

#include <map>
#include <utility>

#include "src/database/connection_access.h"
#include "src/database/providers/sqlite/dialect.h"
#include "src/platform/dates.h"

namespace lotrix::bench {

namespace {

BoundValue ToBound(Place place, const std::string& text) {
  if (place == Place::kText) return text;
  if (place == Place::kDate) {
    const auto date = DateLiteralValue(text);
    return std::holds_alternative<Date>(date) ? BoundValue(IsoDateText(std::get<Date>(date)))
                                              : BoundValue(Null{});
  }
  if (text.find_first_of(".eE") != std::string::npos) return std::stod(text);
  return std::int64_t{std::stoll(text)};
}

class RecordingSession final : public Session {
 public:
  RecordingSession(std::unique_ptr<Session> session, std::vector<RecordedStatement>& statements)
      : session_(std::move(session)), statements_(statements) {}

  std::unique_ptr<Cursor> Run(const Statement& statement) override {
    const sqlite::Translation translation = sqlite::Translate(statement.templateText());
    RecordedStatement recorded{.sql = translation.sql, .values = {}, .types = {}};
    auto splice = statement.splices().begin();
    for (const sqlite::Parameter& parameter : translation.parameters) {
      std::string content;
      for (const char c : parameter.content) {
        if (c == Statement::kMark) {
          content += (splice++)->value;
        } else {
          content += c;
        }
      }
      recorded.values.push_back(ToBound(parameter.place, content));
    }
    statements_.push_back(std::move(recorded));
    return session_->Run(statement);
  }
  void Begin() override {
    statements_.push_back({.sql = "BEGIN IMMEDIATE", .values = {}, .types = {}});
    session_->Begin();
  }
  void Commit() override {
    statements_.push_back({.sql = "COMMIT", .values = {}, .types = {}});
    session_->Commit();
  }
  void Rollback() override { session_->Rollback(); }
  [[nodiscard]] bool InTransaction() const override { return session_->InTransaction(); }
  void CreateSchema() override { session_->CreateSchema(); }

 private:
  std::unique_ptr<Session> session_;
  std::vector<RecordedStatement>& statements_;
};

// Takes the recording session off again.
class Watch {
 public:
  Watch(Connection& connection, std::vector<RecordedStatement>& statements)
      : connection_(connection) {
    ConnectionAccess::WrapSession(connection, [&](std::unique_ptr<Session> session) {
      return std::make_unique<RecordingSession>(std::move(session), statements);
    });
  }
  ~Watch() { connection_.Close(); }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

 private:
  Connection& connection_;
};

class SqliteFloor final : public Floor {
 public:
  SqliteFloor(const std::string& databasePath, const std::string& logPath) : log_(logPath) {
    if (sqlite3_open_v2(databasePath.c_str(), &database_,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr) != SQLITE_OK) {
      Fail("cannot open " + databasePath);
    }
    for (const char* pragma : {"PRAGMA busy_timeout=5000", "PRAGMA journal_mode=WAL",
                               "PRAGMA synchronous=NORMAL", "PRAGMA cache_size=-65536"}) {
      if (sqlite3_exec(database_, pragma, nullptr, nullptr, nullptr) != SQLITE_OK) Fail(pragma);
    }
  }
  ~SqliteFloor() override {
    for (const auto& [sql, statement] : prepared_) sqlite3_finalize(statement);
    sqlite3_close(database_);
  }
  SqliteFloor(const SqliteFloor&) = delete;
  SqliteFloor& operator=(const SqliteFloor&) = delete;

  void Prepare(const Recording& recording) override {
    for (const RecordedStatement& statement : recording.statements) {
      sqlite3_stmt*& handle = prepared_[statement.sql];
      if (handle != nullptr) continue;
      if (sqlite3_prepare_v3(database_, statement.sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT,
                             &handle, nullptr) != SQLITE_OK) {
        Fail(statement.sql + ": " + sqlite3_errmsg(database_));
      }
    }
  }

  void Run(const Recording& recording, bool copyCells) override {
    std::vector<std::vector<std::string>> cells;
    for (const RecordedStatement& statement : recording.statements) {
      sqlite3_stmt* const handle = prepared_.find(statement.sql)->second;
      int index = 0;
      for (const BoundValue& value : statement.values) {
        ++index;
        if (const auto* const text = std::get_if<std::string>(&value)) {
          sqlite3_bind_text(handle, index, text->data(), static_cast<int>(text->size()),
                            SQLITE_STATIC);
        } else if (const auto* const whole = std::get_if<std::int64_t>(&value)) {
          sqlite3_bind_int64(handle, index, *whole);
        } else if (const auto* const number = std::get_if<double>(&value)) {
          sqlite3_bind_double(handle, index, *number);
        } else {
          sqlite3_bind_null(handle, index);
        }
      }
      const bool copies = copyCells && &statement == &recording.statements.back();
      int result = sqlite3_step(handle);
      for (; result == SQLITE_ROW; result = sqlite3_step(handle)) {
        const int columns = sqlite3_column_count(handle);
        if (copies) cells.emplace_back().reserve(static_cast<std::size_t>(columns));
        for (int column = 0; column < columns; ++column) {
          const auto* const text = static_cast<const char*>(
              static_cast<const void*>(sqlite3_column_text(handle, column)));
          const auto bytes = static_cast<std::size_t>(sqlite3_column_bytes(handle, column));
          if (copies) cells.back().emplace_back(text == nullptr ? "" : text, bytes);
        }
      }
      if (result != SQLITE_DONE) Fail(statement.sql + ": " + sqlite3_errmsg(database_));
      sqlite3_reset(handle);
    }
    log_.Write(recording.lines);
  }

 private:
  sqlite3* database_ = nullptr;
  std::map<std::string, sqlite3_stmt*> prepared_;
  Log log_;
};

}  // namespace

std::vector<RecordedStatement> RecordSqlite(Connection& connection,
                                            const std::function<void()>& call) {
  std::vector<RecordedStatement> statements;
  const Watch watch(connection, statements);
  call();
  return statements;
}

std::unique_ptr<Floor> OpenSqliteFloor(const std::string& file, const std::string& logPath) {
  return std::make_unique<SqliteFloor>(file, logPath);
}

}  // namespace lotrix::bench

#include "bench/recording.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <utility>

#include "src/database/connection_access.h"
#include "src/database/providers/sqlite/dialect.h"
#include "src/platform/dates.h"

namespace lotrix::bench {

namespace {

[[noreturn]] void Fail(const std::string& what) {
  std::cerr << "lotrix_bench: " << what << '\n';
  std::exit(70);
}

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
    RecordedStatement recorded{translation.sql, {}};
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
    statements_.push_back({"BEGIN IMMEDIATE", {}});
    session_->Begin();
  }
  void Commit() override {
    statements_.push_back({"COMMIT", {}});
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

}  // namespace

Recording Record(cLotrix& service, const std::string& logPath, const std::function<void()>& call) {
  Recording recording;
  const std::shared_ptr<Connection> connection = service.Connection();
  const Watch watch(*connection, recording.statements);
  std::ifstream log(logPath, std::ios::binary);
  log.seekg(0, std::ios::end);
  call();
  for (std::string line; std::getline(log, line);) recording.lines.push_back(line + '\n');
  return recording;
}

Floor::Floor(const std::string& databasePath, const std::string& logPath) {
  if (sqlite3_open_v2(databasePath.c_str(), &database_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX,
                      nullptr) != SQLITE_OK) {
    Fail("cannot open " + databasePath);
  }
  for (const char* pragma : {"PRAGMA busy_timeout=5000", "PRAGMA journal_mode=WAL",
                             "PRAGMA synchronous=NORMAL", "PRAGMA cache_size=-65536"}) {
    if (sqlite3_exec(database_, pragma, nullptr, nullptr, nullptr) != SQLITE_OK) Fail(pragma);
  }
  log_ = ::open(logPath.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
  if (log_ < 0) Fail("cannot open " + logPath);
}

Floor::~Floor() {
  for (const auto& [sql, statement] : prepared_) sqlite3_finalize(statement);
  sqlite3_close(database_);
  ::close(log_);
}

void Floor::Prepare(const Recording& recording) {
  for (const RecordedStatement& statement : recording.statements) {
    sqlite3_stmt*& handle = prepared_[statement.sql];
    if (handle != nullptr) continue;
    if (sqlite3_prepare_v3(database_, statement.sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &handle,
                           nullptr) != SQLITE_OK) {
      Fail(statement.sql + ": " + sqlite3_errmsg(database_));
    }
  }
}

void Floor::Run(const Recording& recording, bool copyCells) {
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
        const auto* const text =
            static_cast<const char*>(static_cast<const void*>(sqlite3_column_text(handle, column)));
        const auto bytes = static_cast<std::size_t>(sqlite3_column_bytes(handle, column));
        if (copies) cells.back().emplace_back(text == nullptr ? "" : text, bytes);
      }
    }
    if (result != SQLITE_DONE) Fail(statement.sql + ": " + sqlite3_errmsg(database_));
    sqlite3_reset(handle);
  }
  lines_.clear();
  for (const std::string& line : recording.lines) lines_ += line;
  if (::write(log_, lines_.data(), lines_.size()) < 0) Fail("cannot write the log");
}

}  // namespace lotrix::bench

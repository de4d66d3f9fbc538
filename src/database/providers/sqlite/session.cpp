#include "src/database/providers/sqlite/session.h"

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "src/database/providers/sqlite/dialect.h"
#include "src/database/providers/sqlite/errors.h"
#include "src/database/providers/sqlite/opening.h"
#include "src/database/providers/statement_cache.h"
#include "src/database/providers/values.h"
#include "src/errors/raise_error.h"
#include "src/platform/text.h"

namespace lotrix {
extern const std::string_view kSqliteSchema;
extern const std::string_view kSqliteUniqueIndexes;
}  // namespace lotrix

namespace lotrix::sqlite {

namespace {

struct PreparedStatement {
  struct Column {
    std::string name;  // lower case
    DataType type;     // kEmpty when only each value tells it
  };

  Translation translation;
  NativeStatement handle;  // null until first used
  std::vector<Column> columns;
  // SQLite reads the texts where they are until the statement is reset; kept
  // afterwards for their room.
  std::vector<ParameterValue> bound;
  int preparations = 0;  // how often SQLite had made it anew when columns was read
  bool inUse = false;
};

std::shared_ptr<PreparedStatement> MakeStatement(std::string_view templateText) {
  auto statement = std::make_shared<PreparedStatement>();
  statement->translation = Translate(templateText);
  return statement;
}

DataType TypeDeclaredAs(const char* declaration) {
  const std::string_view type = declaration == nullptr ? "" : declaration;
  if (type == "DATE") return DataType::kDBDate;
  if (type == "LOGICAL") return DataType::kBoolean;
  if (type == "INTEGER") return DataType::kInteger;
  if (type == "DOUBLE") return DataType::kDouble;
  if (type == "TEXT") return DataType::kVarWChar;
  return DataType::kEmpty;
}

void ReadColumns(PreparedStatement& statement) {
  sqlite3_stmt* const handle = statement.handle.get();
  statement.columns.clear();
  for (int column = 0; column < sqlite3_column_count(handle); ++column) {
    statement.columns.push_back({LowerAscii(sqlite3_column_name(handle, column)),
                                 TypeDeclaredAs(sqlite3_column_decltype(handle, column))});
  }
  statement.preparations = sqlite3_stmt_status(handle, SQLITE_STMTSTATUS_REPREPARE, 0);
}

// A statement in hand: reset, and given back to the cache, when it goes.
class StatementInUse {
 public:
  StatementInUse(sqlite3* database, std::shared_ptr<PreparedStatement> statement)
      : database_(database), statement_(std::move(statement)) {
    statement_->inUse = true;
  }
  StatementInUse(StatementInUse&& other) noexcept = default;
  StatementInUse& operator=(StatementInUse&&) = delete;
  ~StatementInUse() {
    if (statement_ == nullptr) return;
    Reset();
    DropLargeTexts();
    statement_->inUse = false;
  }

  // A reset statement holds up no checkpoint.
  void Reset() {
    if (statement_->handle != nullptr) sqlite3_reset(statement_->handle.get());
  }

  [[nodiscard]] sqlite3* database() const { return database_; }
  [[nodiscard]] sqlite3_stmt* handle() const { return statement_->handle.get(); }
  [[nodiscard]] PreparedStatement& prepared() const { return *statement_; }

  // Whether there is a row.
  bool Step() {
    const int result = sqlite3_step(handle());
    if (result == SQLITE_ROW) return true;
    if (result != SQLITE_DONE) RaiseSqliteError(database_, result);
    Reset();
    return false;
  }

 private:
  // A megabyte that was looked for once must not stay with the statement.
  void DropLargeTexts() {
    constexpr std::size_t kLarge = 4096;
    for (ParameterValue& bound : statement_->bound) {
      if (bound.text.capacity() <= kLarge) continue;
      // A statement that failed before it was prepared has no bindings yet.
      if (handle() != nullptr) sqlite3_clear_bindings(handle());
      bound.text = std::string();
    }
  }

  sqlite3* database_;
  std::shared_ptr<PreparedStatement> statement_;
};

class SqliteCursor final : public Cursor {
 public:
  explicit SqliteCursor(StatementInUse statement)
      : statement_(std::move(statement)), atEnd_(!statement_.Step()) {
    // A change of the schema shows up at the first step.
    PreparedStatement& prepared = statement_.prepared();
    if (sqlite3_stmt_status(statement_.handle(), SQLITE_STMTSTATUS_REPREPARE, 0) !=
        prepared.preparations) {
      ReadColumns(prepared);
    }
  }

  [[nodiscard]] int ColumnCount() const override {
    return static_cast<int>(statement_.prepared().columns.size());
  }

  [[nodiscard]] const std::string& ColumnName(int column) const override {
    return Column(column).name;
  }

  [[nodiscard]] DataType DeclaredType(int column) const override { return Column(column).type; }

  [[nodiscard]] ValueView ColumnValue(int column) const override {
    sqlite3_stmt* const handle = statement_.handle();
    const DataType declared = Column(column).type;
    if (declared == DataType::kVarWChar || declared == DataType::kDBDate) {
      const std::string_view text = ColumnText(column);
      if (text.data() == nullptr) return Null{};
      if (declared == DataType::kVarWChar) return text;
      return ReadStoredDate(text);
    }
    const int stored = sqlite3_column_type(handle, column);
    if (stored == SQLITE_NULL) return Null{};
    if (declared == DataType::kBoolean) {
      if (stored != SQLITE_INTEGER) {
        RaiseEngineError(EngineError::kValueCannotBeConverted,
                         "A logical column holds something that is no logical.");
      }
      return sqlite3_column_int64(handle, column) != 0;
    }
    if (stored == SQLITE_INTEGER) return std::int64_t{sqlite3_column_int64(handle, column)};
    if (stored == SQLITE_FLOAT) return sqlite3_column_double(handle, column);
    return ColumnText(column);
  }

  [[nodiscard]] bool AtEnd() const override { return atEnd_; }
  void Next() override { atEnd_ = !statement_.Step(); }

 private:
  [[nodiscard]] const PreparedStatement::Column& Column(int column) const {
    return statement_.prepared().columns[static_cast<std::size_t>(column)];
  }

  // A null pointer stands for Null.
  [[nodiscard]] std::string_view ColumnText(int column) const {
    const void* const text = sqlite3_column_text(statement_.handle(), column);
    const int bytes = sqlite3_column_bytes(statement_.handle(), column);
    return {static_cast<const char*>(text), static_cast<std::size_t>(bytes)};
  }

  StatementInUse statement_;
  bool atEnd_;
};

int Bind(sqlite3_stmt* handle, int index, const ParameterValue& bound) {
  if (std::holds_alternative<std::monostate>(bound.other)) {
    return sqlite3_bind_text64(handle, index, bound.text.data(), bound.text.size(), SQLITE_STATIC,
                               SQLITE_UTF8);
  }
  if (const auto* const whole = std::get_if<std::int64_t>(&bound.other)) {
    return sqlite3_bind_int64(handle, index, *whole);
  }
  if (const auto* const number = std::get_if<double>(&bound.other)) {
    return sqlite3_bind_double(handle, index, *number);
  }
  return sqlite3_bind_null(handle, index);
}

class SqliteSession final : public Session {
 public:
  explicit SqliteSession(Database database) : database_(std::move(database)) {}

  std::unique_ptr<Cursor> Run(const Statement& statement) override {
    StatementInUse inUse(database_.get(), Take(statement.templateText()));
    PreparedStatement& prepared = inUse.prepared();
    // Before SQLite sees anything: a date that is none must not have had effects.
    TakeValues(prepared.translation.parameters, statement, prepared.bound);
    if (prepared.handle == nullptr) Prepare(prepared);
    int index = 0;
    for (const ParameterValue& value : prepared.bound) {
      Check(database_.get(), Bind(inUse.handle(), ++index, value));
    }
    if (prepared.columns.empty()) {
      while (inUse.Step()) {
      }
      return nullptr;
    }
    return std::make_unique<SqliteCursor>(std::move(inUse));
  }

  void Begin() override { ExecuteNative(database_.get(), "BEGIN IMMEDIATE"); }
  void BeginSnapshot() override { ExecuteNative(database_.get(), "BEGIN"); }
  void Commit() override { ExecuteNative(database_.get(), "COMMIT"); }
  void Rollback() override { ExecuteNative(database_.get(), "ROLLBACK"); }
  [[nodiscard]] bool InTransaction() const override {
    return sqlite3_get_autocommit(database_.get()) == 0;
  }

  void CreateSchema() override { ExecuteAll(kSqliteSchema); }
  void CreateUniqueIndexes() override { ExecuteAll(kSqliteUniqueIndexes); }

 private:
  // All the statements or none of them.
  void ExecuteAll(std::string_view sql) {
    Begin();
    try {
      ExecuteNative(database_.get(), std::string(sql));
      Commit();
    } catch (...) {
      if (InTransaction()) Rollback();
      throw;
    }
  }

  // A handle has one set of rows at a time, so a statement whose kept one is in
  // use comes fresh.
  std::shared_ptr<PreparedStatement> Take(std::string_view templateText) {
    const auto make = [&] { return MakeStatement(templateText); };
    std::shared_ptr<PreparedStatement> kept = cache_.Take(templateText, make);
    return kept->inUse ? make() : kept;
  }

  void Prepare(PreparedStatement& prepared) {
    sqlite3_stmt* handle = nullptr;
    const std::string& sql = prepared.translation.sql;
    const int result = sqlite3_prepare_v3(database_.get(), sql.data(), static_cast<int>(sql.size()),
                                          SQLITE_PREPARE_PERSISTENT, &handle, nullptr);
    prepared.handle.reset(handle);
    Check(database_.get(), result);
    ReadColumns(prepared);
  }

  Database database_;  // closed after the statements of the cache
  StatementCache<PreparedStatement> cache_;
};

}  // namespace

std::string Engine() { return std::string("SQLite ") + sqlite3_libversion(); }

std::unique_ptr<Session> Open(const ConnectionSettings& settings, ConnectMode mode) {
  return std::make_unique<SqliteSession>(Connect(settings, mode));
}

}  // namespace lotrix::sqlite

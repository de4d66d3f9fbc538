#include "src/database/providers/postgresql/session.h"

#include <charconv>
#include <chrono>
#include <cstdint>
#include <exception>
#include <optional>
#include <random>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <variant>
#include <vector>

#include "src/database/providers/postgresql/dialect.h"
#include "src/database/providers/postgresql/errors.h"
#include "src/database/providers/postgresql/exchange.h"
#include "src/database/providers/postgresql/opening.h"
#include "src/database/providers/postgresql/rows.h"
#include "src/database/providers/statement_cache.h"
#include "src/database/providers/values.h"
#include "src/errors/raise_error.h"

namespace lotrix {
extern const std::string_view kPostgresqlSchema;
extern const std::string_view kPostgresqlUniqueIndexes;
}  // namespace lotrix

namespace lotrix::postgresql {

namespace {

using Names = std::vector<std::string>;

struct PreparedStatement {
  PreparedStatement(Translation written, std::shared_ptr<Names> left)
      : translation(std::move(written)), leftOnServer(std::move(left)) {}
  PreparedStatement(const PreparedStatement&) = delete;
  PreparedStatement& operator=(const PreparedStatement&) = delete;
  ~PreparedStatement() { Leave(); }

  // The server's own one is dropped later.
  void Leave() {
    if (!name.empty()) leftOnServer->push_back(std::move(name));
    name.clear();
  }

  Translation translation;  // written without knowing any table until it has a name
  std::string name;         // on the server
  std::shared_ptr<const std::vector<Column>> columns;  // once it has run
  std::shared_ptr<Names> leftOnServer;
};

// What the reader of an exchange's rows is told when others need the connection.
class Reader {
 public:
  virtual ~Reader() = default;
  // Takes all the rest of the rows into memory. Keeps what fails for itself.
  virtual void TakeRest() noexcept = 0;
};

// An exchange, the statements on the server, and who reads rows now.
struct Line {
  explicit Line(Link link) : exchange(std::move(link)) {}

  // The next row; nothing behind the last, when the exchange is finished.
  Result NextRow() {
    Result row = exchange.NextRow();
    if (PQresultStatus(row.get()) == PGRES_SINGLE_TUPLE) return row;
    reader = nullptr;
    const Result failure = exchange.Finish(std::move(row));
    if (failure != nullptr) RaisePostgresqlError(failure.get());
    return nullptr;
  }

  // Before anything else is said.
  void EndReading() {
    if (reader != nullptr) reader->TakeRest();
  }

  // Nobody wants the rest of the rows, nor what may be wrong with them.
  void Abandon() noexcept {
    if (reader == nullptr) return;
    reader = nullptr;
    try {
      exchange.Abandon();
    } catch (...) {
      // The next statement finds out that the server is gone.
    }
  }

  Exchange exchange;
  Reader* reader = nullptr;  // while an exchange's rows are being read
};

class PostgresqlCursor final : public Cursor, private Reader {
 public:
  // `rows` are all of them, nothing when there are none, or the first one alone.
  PostgresqlCursor(std::shared_ptr<Line> line, std::shared_ptr<const std::vector<Column>> columns,
                   Result rows)
      : line_(std::move(line)), columns_(std::move(columns)), rows_(std::move(rows)) {
    if (PQresultStatus(rows_.get()) == PGRES_SINGLE_TUPLE) line_->reader = this;
  }
  ~PostgresqlCursor() override {
    if (line_->reader == this) line_->Abandon();
  }
  PostgresqlCursor(const PostgresqlCursor&) = delete;
  PostgresqlCursor& operator=(const PostgresqlCursor&) = delete;

  [[nodiscard]] int ColumnCount() const override { return static_cast<int>(columns_->size()); }
  [[nodiscard]] const std::string& ColumnName(int column) const override {
    return ColumnAt(column).name;
  }
  [[nodiscard]] DataType DeclaredType(int column) const override {
    return ColumnAt(column).declared;
  }

  [[nodiscard]] ValueView ColumnValue(int column) const override {
    if (rows_ == nullptr) {
      const std::size_t cell = stored_ + static_cast<std::size_t>(column);
      if (rest_.IsNull(cell)) return Null{};
      return ReadValue(ColumnAt(column), rest_.Text(cell));
    }
    if (PQgetisnull(rows_.get(), row_, column) != 0) return Null{};
    const auto length = static_cast<std::size_t>(PQgetlength(rows_.get(), row_, column));
    return ReadValue(ColumnAt(column), {PQgetvalue(rows_.get(), row_, column), length});
  }

  [[nodiscard]] bool AtEnd() const override { return rows_ == nullptr && stored_ == rest_.cells(); }

  std::optional<std::int64_t> RecordCount() override {
    if (line_->reader == this) TakeRest();
    if (failure_ != nullptr) std::rethrow_exception(failure_);
    const int inHand = rows_ == nullptr ? 0 : PQntuples(rows_.get()) - row_;
    return passed_ + inHand +
           static_cast<std::int64_t>((rest_.cells() - stored_) / columns_->size());
  }

  void Next() override {
    ++passed_;
    if (line_->reader == this) {
      rows_ = line_->NextRow();
      return;
    }
    if (rows_ != nullptr) {
      if (++row_ < PQntuples(rows_.get())) return;
      rows_.reset();
    } else {
      stored_ += columns_->size();
    }
    if (stored_ == rest_.cells() && failure_ != nullptr) std::rethrow_exception(failure_);
  }

 private:
  void TakeRest() noexcept override {
    try {
      while (const Result row = line_->NextRow()) rest_.Add(row.get());
    } catch (...) {
      failure_ = std::current_exception();
      line_->Abandon();
    }
  }

  [[nodiscard]] const Column& ColumnAt(int column) const {
    return (*columns_)[static_cast<std::size_t>(column)];
  }

  std::shared_ptr<Line> line_;
  std::shared_ptr<const std::vector<Column>> columns_;
  Result rows_;
  int row_ = 0;  // of rows_
  std::int64_t passed_ = 0;
  StoredRows rest_;
  std::size_t stored_ = 0;  // the first cell of the current row, when it is one of rest_
  std::exception_ptr failure_;
};

constexpr std::string_view kPlanIsStale = "0A000";
constexpr std::string_view kNoSuchStatement = "26000";
constexpr std::string_view kNameIsTaken = "42P05";

// The statement on the server has become useless: its table has changed, or somebody
// between here and the server has dropped it, or made another of its name.
bool IsStale(std::string_view sqlState, bool wasThere) {
  if (!wasThere) return sqlState == kNameIsTaken;
  return sqlState == kPlanIsStale || sqlState == kNoSuchStatement;
}

// Not another client's, should a proxy let several use one session of the server.
std::string NamePrefix() {
  constexpr std::uint64_t kBase = std::uint64_t{1} << 32U;
  std::random_device random;
  return "lotrix_" + std::to_string(random() * kBase + random()) + '_';
}

// Others make the same tables at the same moment.
bool IsRaceOfSchemas(std::string_view sqlState) {
  return sqlState == "23505" || sqlState == "42P07" || sqlState == "42710" || sqlState == "40001" ||
         sqlState == "40P01";
}

// The tables and indexes that the schema's text makes.
Names NamesInSchema() {
  constexpr std::string_view kBefore = " IF NOT EXISTS ";
  Names names;
  std::string_view rest = kPostgresqlSchema;
  for (std::size_t at = rest.find(kBefore); at != std::string_view::npos; at = rest.find(kBefore)) {
    rest.remove_prefix(at + kBefore.size());
    names.emplace_back(rest.substr(0, rest.find(' ')));
  }
  return names;
}

// Texts are left to the server, which knows what they are compared with or stored
// into. A number of any other type than the column's would cost it its index.
void WriteArguments(const std::vector<StatementParameter>& parameters,
                    std::vector<ParameterValue>& values, Arguments& arguments) {
  arguments.texts.clear();
  arguments.types.clear();
  for (std::size_t i = 0; i < values.size(); ++i) {
    std::string& text = values[i].text;
    if (const auto* const whole = std::get_if<std::int64_t>(&values[i].other)) {
      text = std::to_string(*whole);
    } else if (const auto* const number = std::get_if<double>(&values[i].other)) {
      constexpr std::size_t kLongest = 32;
      text.resize(kLongest);
      const auto written = std::to_chars(text.data(), text.data() + text.size(), *number);
      text.resize(static_cast<std::size_t>(written.ptr - text.data()));
    }
    const bool isNull = std::holds_alternative<Null>(values[i].other);
    arguments.texts.push_back(isNull ? nullptr : text.c_str());
    arguments.types.push_back(parameters[i].place == Place::kDate               ? kDate
                              : parameters[i].place == Place::kText             ? InvalidOid
                              : std::holds_alternative<double>(values[i].other) ? kNumeric
                                                                                : kInt8);
  }
}

class PostgresqlSession final : public Session {
 public:
  explicit PostgresqlSession(Link link) : line_(std::make_shared<Line>(std::move(link))) {}

  std::unique_ptr<Cursor> Run(const Statement& statement) override {
    const std::shared_ptr<PreparedStatement> prepared = Take(statement);
    // Before the server sees anything: a date that is none must not have had
    // effects.
    TakeValues(prepared->translation.parameters, statement, values_);
    WriteArguments(prepared->translation.parameters, values_, arguments_);
    line_->EndReading();
    const bool wasThere = !prepared->name.empty();
    if (!wasThere) Write(*prepared, statement);
    DropLeftStatements();
    Result answer = Send(*prepared, statement.givesTable());
    if (IsStale(SqlState(answer.get()), wasThere)) {
      if (SqlState(answer.get()) == kNoSuchStatement) prepared->name.clear();
      line_->exchange.Finish(std::move(answer));
      prepared->Leave();
      tables_.clear();
      Write(*prepared, statement);
      answer = Send(*prepared, statement.givesTable());
    }
    DropLargeTexts();
    return Receive(*prepared, std::move(answer));
  }

  [[nodiscard]] bool IsOpen() const override { return line_->exchange.IsOpen(); }
  void GiveUpCursors() noexcept override {
    line_->reader = nullptr;
    line_->exchange.Close();
  }

  void Begin() override { line_->exchange.BeginTransaction(); }
  // The session's later transactions see one moment, too.
  void BeginSnapshot() override {
    line_->EndReading();
    const Result answer = line_->exchange.RunText(
        "SET SESSION CHARACTERISTICS AS TRANSACTION ISOLATION LEVEL REPEATABLE READ, READ ONLY",
        false);
    if (IsFailure(answer)) RaisePostgresqlError(answer.get());
    Begin();
  }
  void Commit() override {
    line_->EndReading();
    line_->exchange.Commit();
  }
  void Rollback() override {
    line_->EndReading();
    line_->exchange.Rollback();
  }
  [[nodiscard]] bool InTransaction() const override { return line_->exchange.InTransaction(); }

  void CreateSchema() override {
    constexpr int kMostTries = 20;
    constexpr auto kPause = std::chrono::milliseconds(20);
    line_->EndReading();
    tables_.clear();
    if (HasSchema()) return;
    for (int tries = 1;; ++tries) {
      const Result answer = line_->exchange.RunText(std::string(kPostgresqlSchema), true);
      if (!IsFailure(answer)) return;
      if (tries == kMostTries || !IsRaceOfSchemas(SqlState(answer.get()))) {
        RaisePostgresqlError(answer.get());
      }
      std::this_thread::sleep_for(tries * kPause);
    }
  }

  void CreateUniqueIndexes() override {
    line_->EndReading();
    const Result answer = line_->exchange.RunText(std::string(kPostgresqlUniqueIndexes), true);
    if (IsFailure(answer)) RaisePostgresqlError(answer.get());
  }

 private:
  // Making what is there already would wait for all who write.
  bool HasSchema() {
    const Names names = NamesInSchema();
    std::string query =
        "SELECT count(*) FROM pg_catalog.pg_class WHERE relnamespace = (SELECT oid FROM "
        "pg_catalog.pg_namespace WHERE nspname = current_schema()) AND relname IN ('";
    for (const std::string& name : names) query += name + "', '";
    const Result answer = line_->exchange.RunText(query + "')", false);
    if (IsFailure(answer)) RaisePostgresqlError(answer.get());
    return PQgetvalue(answer.get(), 0, 0) == std::to_string(names.size());
  }

  // Kept by the template and the kinds of its numbers, which the server's one is
  // made for.
  std::shared_ptr<PreparedStatement> Take(const Statement& statement) {
    key_ = statement.templateText();
    key_ += Statement::kMark;
    if (statement.locksRows()) key_ += 'l';
    for (const Statement::Splice& splice : statement.splices()) {
      if (splice.place != Place::kNumber) continue;
      key_ += std::holds_alternative<double>(ReadNumber(splice.value)) ? 'd' : 'i';
    }
    return cache_.Take(key_, [&] {
      return std::make_shared<PreparedStatement>(
          Translate(statement.templateText(), {}, statement.locksRows()), leftOnServer_);
    });
  }

  // Writes the statement with what is known of its tables.
  void Write(PreparedStatement& prepared, const Statement& statement) {
    Translation& translation = prepared.translation;
    if (!translation.asksForColumns) return;
    const auto write = [&] {
      translation = Translate(statement.templateText(), tables_, statement.locksRows());
    };
    bool asked = false;
    for (const std::string& table : Names(translation.tables)) {
      if (tables_.count(table) != 0) continue;
      ReadTable(table);
      asked = true;
    }
    write();
    if (!asked && translation.missesColumn) {
      // It may have been added meanwhile.
      for (const std::string& table : Names(translation.tables)) ReadTable(table);
      write();
    }
    if (!translation.noColumn.empty()) {
      RaiseEngineError(EngineError::kStatementRefused,
                       "There is no column " + translation.noColumn + '.');
    }
  }

  // Asks for the table's columns without reading it.
  void ReadTable(const std::string& table) {
    Exchange& exchange = line_->exchange;
    exchange.Begin(false, false);
    exchange.AddPreparation({}, "SELECT * FROM \"" + table + '"', {});
    exchange.AddDescription({});
    Result answer = exchange.Send();
    std::vector<TableColumn> columns;
    if (!IsFailure(answer)) {
      for (const Column& column : ReadColumns(answer.get())) {
        columns.push_back({column.name, column.declared == DataType::kVarWChar  ? Kind::kText
                                        : column.declared == DataType::kInteger ? Kind::kWhole
                                                                                : Kind::kOther});
      }
    }
    const Result failure = exchange.Finish(std::move(answer));
    if (failure != nullptr) RaisePostgresqlError(failure.get());
    tables_[table] = std::move(columns);
  }

  // One that somebody else has dropped is no harm.
  void DropLeftStatements() {
    if (leftOnServer_->empty() || InTransaction()) return;
    const Names names = std::move(*leftOnServer_);
    leftOnServer_->clear();
    for (const std::string& name : names) {
      line_->exchange.Begin(false, true);
      line_->exchange.Add("DEALLOCATE " + name);
      line_->exchange.Finish(line_->exchange.Send());
    }
  }

  Result Send(PreparedStatement& prepared, bool rowByRow) {
    Exchange& exchange = line_->exchange;
    const bool isNew = prepared.name.empty();
    exchange.Begin(!prepared.translation.isQuery, !isNew);
    const std::string name = isNew ? namePrefix_ + std::to_string(++statements_) : prepared.name;
    if (isNew) exchange.AddPreparation(name, prepared.translation.sql, arguments_.types);
    exchange.AddExecution(name, arguments_, rowByRow);
    Result answer = exchange.Send();
    if (isNew && exchange.Succeeded() + 1 >= exchange.Added()) {
      prepared.name = name;
      prepared.columns = nullptr;
    }
    return answer;
  }

  std::unique_ptr<Cursor> Receive(PreparedStatement& prepared, Result answer) {
    const ExecStatusType status = PQresultStatus(answer.get());
    const bool hasRows = status == PGRES_SINGLE_TUPLE || status == PGRES_TUPLES_OK;
    if (hasRows && PQnfields(answer.get()) == 0) RefuseRowsOfNothing(status);
    if (hasRows && prepared.columns == nullptr) {
      prepared.columns = std::make_shared<const std::vector<Column>>(ReadColumns(answer.get()));
    }
    if (status != PGRES_SINGLE_TUPLE) {
      const Result failure = line_->exchange.Finish(hasRows ? nullptr : std::move(answer));
      if (failure != nullptr) RaisePostgresqlError(failure.get());
      if (!hasRows) return nullptr;
      if (PQntuples(answer.get()) == 0) answer.reset();
    }
    return std::make_unique<PostgresqlCursor>(line_, prepared.columns, std::move(answer));
  }

  // Of somebody's table without columns.
  [[noreturn]] void RefuseRowsOfNothing(ExecStatusType status) {
    if (status == PGRES_SINGLE_TUPLE) {
      line_->exchange.Abandon();
    } else {
      line_->exchange.Finish(nullptr);
    }
    RaiseEngineError(EngineError::kStatementRefused, "A SELECT names no columns.");
  }

  // A megabyte that was looked for once must not stay.
  void DropLargeTexts() {
    constexpr std::size_t kLarge = 4096;
    for (ParameterValue& value : values_) {
      if (value.text.capacity() > kLarge) value.text = std::string();
    }
  }

  std::shared_ptr<Line> line_;
  std::shared_ptr<Names> leftOnServer_ = std::make_shared<Names>();
  StatementCache<PreparedStatement> cache_;
  Tables tables_;
  std::string namePrefix_ = NamePrefix();
  int statements_ = 0;  // made so far
  std::string key_;
  // Kept for their room.
  std::vector<ParameterValue> values_;
  Arguments arguments_;
};

}  // namespace

std::string Engine() {
  constexpr int kMajor = 10000;
  const int version = PQlibVersion();
  return "PostgreSQL " + std::to_string(version / kMajor) + '.' + std::to_string(version % kMajor);
}

std::unique_ptr<Session> Open(const ConnectionSettings& settings, ConnectMode mode) {
  return std::make_unique<PostgresqlSession>(Connect(settings, mode));
}

}  // namespace lotrix::postgresql

#include "src/database/providers/sqlite/table_writer.h"

#include <cmath>
#include <filesystem>
#include <utility>

#include "src/database/providers/sqlite/errors.h"
#include "src/database/providers/sqlite/opening.h"
#include "src/platform/dates.h"

namespace lotrix::sqlite {

namespace {

class SqliteTableWriter final : public TableWriter {
 public:
  SqliteTableWriter(Database database, const TableColumns& table)
      : database_(std::move(database)), columns_(table.columns), dates_(columns_.size()) {
    ExecuteNative(database_.get(), "BEGIN IMMEDIATE");
    std::string sql =
        "INSERT INTO " + QuotedNames({table.table}) + " (" + QuotedNames(columns_) + ") VALUES (";
    for (std::size_t i = 0; i < columns_.size(); ++i) sql += i == 0 ? "?" : ",?";
    sql += ')';
    sqlite3_stmt* handle = nullptr;
    const int result = sqlite3_prepare_v2(database_.get(), sql.data(), static_cast<int>(sql.size()),
                                          &handle, nullptr);
    insert_.reset(handle);
    Check(database_.get(), result);
  }

  void Add(const std::vector<ValueView>& row) override {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      Check(database_.get(), std::visit([&](const auto& value) { return Bind(i, value); }, row[i]));
    }
    const int result = sqlite3_step(insert_.get());
    if (result != SQLITE_DONE) RaiseSqliteError(database_.get(), result);
    sqlite3_reset(insert_.get());
  }

  void Commit() override {
    insert_.reset();
    ExecuteNative(database_.get(), "COMMIT");
  }

 private:
  static int Place(std::size_t column) { return static_cast<int>(column) + 1; }

  int Bind(std::size_t column, Null /*value*/) {
    return sqlite3_bind_null(insert_.get(), Place(column));
  }
  int Bind(std::size_t column, bool value) {
    return sqlite3_bind_int(insert_.get(), Place(column), value ? 1 : 0);
  }
  int Bind(std::size_t column, std::int64_t value) {
    return sqlite3_bind_int64(insert_.get(), Place(column), value);
  }
  int Bind(std::size_t column, double value) {
    // SQLite would store Null for the one and zero for the other.
    if (std::isnan(value)) {
      RaiseCannotHold(columns_[column], "a value that is no number, which cannot be stored");
    }
    if (value == 0 && std::signbit(value)) {
      RaiseCannotHold(columns_[column], "a negative zero, which cannot be stored");
    }
    return sqlite3_bind_double(insert_.get(), Place(column), value);
  }
  int Bind(std::size_t column, Date value) {
    dates_[column] = IsoDateText(value);
    return Bind(column, std::string_view(dates_[column]));
  }
  // The text is read where it is until the next row.
  int Bind(std::size_t column, std::string_view value) {
    return sqlite3_bind_text64(insert_.get(), Place(column),
                               value.data() == nullptr ? "" : value.data(), value.size(),
                               SQLITE_STATIC, SQLITE_UTF8);
  }

  Database database_;
  std::vector<std::string> columns_;
  std::vector<std::string> dates_;
  NativeStatement insert_;
};

}  // namespace

std::unique_ptr<TableWriter> OpenTableWriter(const ConnectionSettings& settings,
                                             const TableColumns& table) {
  return std::make_unique<SqliteTableWriter>(Connect(settings, ConnectMode::kReadWrite), table);
}

std::string Identity(const ConnectionSettings& settings) {
  const std::filesystem::path file(FileOf(settings));
  std::error_code failed;
  const std::filesystem::path canonical = std::filesystem::weakly_canonical(file, failed);
  return "SQLite " + (failed ? file : canonical).string();
}

}  // namespace lotrix::sqlite

#include "tests/support/engine.h"

#include <sqlite3.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string_view>

#include "lotrix/connection.h"

namespace lotrix::test {

namespace {

class SqliteDatabase final : public TestDatabase {
 public:
  SqliteDatabase() : file_(folder_.path() + "/test.db") {
    Connection connection;
    connection.Open(ConnectionString());
    connection.CreateSchema();
    if (sqlite3_open(file_.c_str(), &database_) != SQLITE_OK) Fail();
    sqlite3_busy_timeout(database_, 5000);
  }
  ~SqliteDatabase() override { sqlite3_close(database_); }

  [[nodiscard]] std::string ConnectionString() const override {
    // Without waiting for the disk: these files do not outlive their test.
    return "Provider=SQLite;Data Source=" + file_ + ";Synchronous=OFF";
  }

  void Execute(const std::string& sql) override {
    if (sqlite3_exec(database_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) Fail();
  }

  [[nodiscard]] std::vector<Row> Query(const std::string& sql) override {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(database_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) Fail();
    std::vector<Row> rows;
    int result = sqlite3_step(statement);
    for (; result == SQLITE_ROW; result = sqlite3_step(statement)) {
      Row row;
      for (int column = 0; column < sqlite3_column_count(statement); ++column) {
        const auto* const text = sqlite3_column_blob(statement, column);
        const int bytes = sqlite3_column_bytes(statement, column);
        if (sqlite3_column_type(statement, column) == SQLITE_NULL) {
          row.emplace_back("<null>");
        } else {
          row.emplace_back(static_cast<const char*>(text), static_cast<std::size_t>(bytes));
        }
      }
      rows.push_back(std::move(row));
    }
    sqlite3_finalize(statement);
    if (result != SQLITE_DONE) Fail();
    return rows;
  }

 private:
  [[noreturn]] void Fail() const { throw std::runtime_error(sqlite3_errmsg(database_)); }

  TemporaryFolder folder_;
  std::string file_;
  sqlite3* database_ = nullptr;
};

}  // namespace

std::unique_ptr<TestDatabase> MakeTestDatabase() {
  const char* const engine = std::getenv("LOTRIX_TEST_ENGINE");
  if (engine == nullptr || std::string_view(engine) == "sqlite") {
    return std::make_unique<SqliteDatabase>();
  }
  throw std::runtime_error(std::string("LOTRIX_TEST_ENGINE names no engine: ") + engine);
}

TemporaryFolder::TemporaryFolder() {
  path_ = (std::filesystem::temp_directory_path() / "lotrix-test-XXXXXX").string();
  if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no temporary folder: " + path_);
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace lotrix::test

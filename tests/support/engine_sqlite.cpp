#include "tests/support/engine_sqlite.h"

#include <sqlite3.h>

#include <stdexcept>

#include "lotrix/connection.h"

namespace lotrix::test {

SqliteDatabase::SqliteDatabase() : file_(folder_.path() + "/test.db") {
  Connection connection;
  connection.Open(ConnectionString());
  connection.CreateSchema();
  if (sqlite3_open(file_.c_str(), &database_) != SQLITE_OK) Fail();
  sqlite3_busy_timeout(database_, 5000);
}

SqliteDatabase::~SqliteDatabase() { sqlite3_close(database_); }

std::string SqliteDatabase::ConnectionString() const {
  // Without waiting for the disk: these files do not outlive their test.
  return "Provider=SQLite;Data Source=" + file_ + ";Synchronous=OFF";
}

void SqliteDatabase::Execute(const std::string& sql) {
  if (sqlite3_exec(database_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) Fail();
}

std::vector<Row> SqliteDatabase::Query(const std::string& sql) {
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

void SqliteDatabase::Forbid(const std::string& verb, const std::string& table) {
  Execute("CREATE TRIGGER closed_" + table + " BEFORE " + verb + " ON " + table +
          " BEGIN SELECT RAISE(ABORT, 'closed'); END");
}

void SqliteDatabase::Allow(const std::string& table) { Execute("DROP TRIGGER closed_" + table); }

std::vector<std::string> SqliteDatabase::TableNames() {
  std::vector<std::string> names;
  for (const Row& row :
       Query("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name")) {
    names.push_back(row[0]);
  }
  return names;
}

std::vector<Row> SqliteDatabase::Definitions() {
  return Query("SELECT type, name, tbl_name, sql FROM sqlite_master ORDER BY type, name");
}

void SqliteDatabase::Fail() const { throw std::runtime_error(sqlite3_errmsg(database_)); }

}  // namespace lotrix::test

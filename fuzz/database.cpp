#include "fuzz/database.h"

#include "fuzz/require.h"
#include "lotrix/schema.h"

namespace lotrix::fuzz {

namespace {

constexpr const char* kShapeQuery =
    "SELECT type, name, tbl_name, sql FROM sqlite_master ORDER BY name";

}  // namespace

void AddSmallSample(Connection& connection) {
  AddSampleData(connection);
  for (const char* const table : {"provider", "enroll", "physicn", "neworder", "influenza",
                                  "distrib", "provhas", "dosesadm", "stock", "lots"}) {
    connection.Execute("DELETE FROM " + std::string(table) +
                       " WHERE NOT (pin IN ('D00001', 'P00001', 'P00002'))");
  }
  connection.Execute("DELETE FROM zipcodes WHERE zip > '69405'");
}

Database::Database(const std::function<void(Connection&)>& fill) {
  Connection connection;
  connection.Open(ConnectionString());
  connection.CreateSchema();
  fill(connection);
  const std::string firstFile = folder_.path() + "/first.db";
  watcher_ = Open(folder_.path() + "/fuzz.db");
  first_ = Open(firstFile);
  static_cast<void>(Query("VACUUM"));
  Copy(watcher_.get(), first_.get());
  static_cast<void>(Query("ATTACH '" + firstFile + "' AS first"));
  shape_ = Query(kShapeQuery);
  firstRows_ = Rows();
  dataVersion_ = DataVersion();
}

std::string Database::ConnectionString() const {
  return "Provider=SQLite;Synchronous=OFF;Data Source=" + folder_.path() + "/fuzz.db";
}

bool Database::Changed() { return DataVersion() != dataVersion_; }

void Database::RequireShape() {
  Require(Query(kShapeQuery) == shape_, "the tables keep their shape");
}

Database::RowCounts Database::Rows() {
  RowCounts rows;
  for (const auto& table : Query("SELECT name FROM sqlite_master WHERE type = 'table'")) {
    rows[table[0]] = std::stoll(Query("SELECT count(*) FROM main.\"" + table[0] + '"')[0][0]);
  }
  return rows;
}

std::vector<std::string> Database::ChangedTables() {
  std::vector<std::string> changed;
  for (const auto& [table, count] : firstRows_) {
    const std::string name = ".\"" + table + '"';
    if (Query("SELECT * FROM main" + name) != Query("SELECT * FROM first" + name)) {
      changed.push_back(table);
    }
  }
  return changed;
}

void Database::Restore() {
  Copy(first_.get(), watcher_.get());
  dataVersion_ = DataVersion();
  Require(!Changed(), "the database is restored");
}

Database::Handle Database::Open(const std::string& file) {
  sqlite3* opened = nullptr;
  const int result = sqlite3_open(file.c_str(), &opened);
  Handle handle(opened);
  Require(result == SQLITE_OK, "the watcher opens the database");
  sqlite3_exec(opened, "PRAGMA synchronous=OFF", nullptr, nullptr, nullptr);
  sqlite3_busy_timeout(opened, 1000);
  return handle;
}

void Database::Copy(sqlite3* from, sqlite3* to) {
  sqlite3_backup* const copy = sqlite3_backup_init(to, "main", from, "main");
  Require(copy != nullptr, "the copying begins");
  const int result = sqlite3_backup_step(copy, -1);
  sqlite3_backup_finish(copy);
  Require(result == SQLITE_DONE, "the database is copied");
}

Database::Table Database::Query(const std::string& sql) {
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(watcher_.get(), sql.c_str(), -1, &statement, nullptr);
  Table rows;
  int result = sqlite3_step(statement);
  for (; result == SQLITE_ROW; result = sqlite3_step(statement)) {
    test::Row row;
    for (int column = 0; column < sqlite3_column_count(statement); ++column) {
      const auto* const text = static_cast<const char*>(sqlite3_column_blob(statement, column));
      const int bytes = sqlite3_column_bytes(statement, column);
      row.emplace_back(text == nullptr ? std::string()
                                       : std::string(text, static_cast<std::size_t>(bytes)));
    }
    rows.push_back(std::move(row));
  }
  sqlite3_finalize(statement);
  Require(result == SQLITE_DONE, "the watcher's query runs");
  return rows;
}

}  // namespace lotrix::fuzz

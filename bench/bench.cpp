// Each operation beside its floor, in one run, on SQLite with synchronous=NORMAL,
// so that the disk does not hide the code.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdlib>
#include <filesystem>

#include "bench/pairs.h"
#include "bench/sqlite_floor.h"
#include "src/resultset/recordset_conversion.h"

namespace lotrix::bench {
namespace {

namespace fs = std::filesystem;

std::string ConnectionTo(const std::string& file) {
  return "Provider=SQLite;Data Source=" + file + ";Synchronous=NORMAL";
}

std::string MakeDatabase(const std::string& name, int providers) {
  const std::string file = TemporaryFile(name);
  Connection connection;
  connection.Open("Provider=SQLite;Data Source=" + file + ";Synchronous=OFF");
  connection.CreateSchema();
  AddRows(connection, providers);
  return file;
}

std::string CopyDatabase(const std::string& file, const std::string& name) {
  const std::string copy = TemporaryFile(name + ".db");
  Connection connection;  // closing it moves the write-ahead log into the file
  connection.Open(ConnectionTo(file));
  connection.Close();
  fs::copy_file(file, copy, fs::copy_options::overwrite_existing);
  return copy;
}

constexpr int kRepetitions = 5;

// 1,000,000 rows of 7 columns, as an import tool would read them.
constexpr int kManyRows = 1'000'000;
constexpr const char* kAllStock =
    "SELECT pin, datein, doses, lot, vaccine, maker, expiry FROM stock";

std::string MakeStock() {
  const std::string file = TemporaryFile("stock.db");
  Connection connection;
  connection.Open("Provider=SQLite;Data Source=" + file + ";Synchronous=OFF");
  connection.CreateSchema();
  connection.Close();
  sqlite3* database = nullptr;
  sqlite3_open(file.c_str(), &database);
  const std::string fill =
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
      std::to_string(kManyRows) +
      ") INSERT INTO stock(pin, datein, doses, lot, vaccine, maker, expiry, tracking) "
      "SELECT printf('P%05d', i % 100000), date('2010-01-01', (i % 5000) || ' days'), i % 500, "
      "printf('LOT-%08d-A', i), 'DTAP', 'MKR', date('2026-01-01', (i % 900) || ' days'), 'T' "
      "FROM n";
  if (sqlite3_exec(database, fill.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) std::exit(70);
  sqlite3_close(database);
  return file;
}

void RegisterLargeRead() {
  static const std::string kFile = MakeStock();
  benchmark::RegisterBenchmark("read 1,000,000 rows",
                               [](benchmark::State& state) {
                                 Connection connection;
                                 connection.Open(ConnectionTo(kFile));
                                 for (auto _ : state) {
                                   const auto records = connection.Execute(kAllStock);
                                   const cResultSet table = RecordsetToResultSet(*records);
                                   if (table.Rows() != kManyRows)
                                     state.SkipWithError("rows are missing");
                                 }
                               })
      ->Unit(benchmark::kMillisecond)
      ->Repetitions(kRepetitions)
      ->ComputeStatistics(kQuarter, Quarter);
  benchmark::RegisterBenchmark(
      "read 1,000,000 rows/floor",
      [](benchmark::State& state) {
        sqlite3* database = nullptr;
        sqlite3_open_v2(kFile.c_str(), &database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX,
                        nullptr);
        sqlite3_exec(database, "PRAGMA cache_size=-65536", nullptr, nullptr, nullptr);
        for (auto _ : state) {
          sqlite3_stmt* statement = nullptr;
          sqlite3_prepare_v2(database, kAllStock, -1, &statement, nullptr);
          std::vector<std::vector<std::string>> rows;
          while (sqlite3_step(statement) == SQLITE_ROW) {
            const int columns = sqlite3_column_count(statement);
            std::vector<std::string>& row = rows.emplace_back();
            row.reserve(static_cast<std::size_t>(columns));
            for (int column = 0; column < columns; ++column) {
              const void* const text = sqlite3_column_text(statement, column);
              row.emplace_back(static_cast<const char*>(text),
                               static_cast<std::size_t>(sqlite3_column_bytes(statement, column)));
            }
          }
          sqlite3_finalize(statement);
          if (rows.size() != kManyRows) state.SkipWithError("rows are missing");
        }
        sqlite3_close(database);
      })
      ->Unit(benchmark::kMillisecond)
      ->Repetitions(kRepetitions)
      ->ComputeStatistics(kQuarter, Quarter);
  AddBound("read 1,000,000 rows", "read 1,000,000 rows/floor", 1.5);
}

}  // namespace
}  // namespace lotrix::bench

int main(int argc, char** argv) {
  using namespace lotrix::bench;  // NOLINT(google-build-using-namespace): a program of its own
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  const Engine sqlite = {.copy = CopyDatabase,
                         .drop = [](const std::string&) {},
                         .connectionTo = ConnectionTo,
                         .record = RecordSqlite,
                         .openFloor = OpenSqliteFloor,
                         .repetitions = 60,
                         .most = 1.3};
  const std::string few = MakeDatabase("few.db", 1000);
  RegisterOperations(sqlite, few);
  RegisterManyProviders(sqlite, few, MakeDatabase("million.db", 1'000'000));
  RegisterLargeRead();
  RunBenchmarks();
  return 0;
}

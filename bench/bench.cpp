// Each operation beside its floor, in one run, on SQLite with synchronous=NORMAL,
// so that the disk does not hide the code.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <map>

#include "bench/recording.h"
#include "src/database/statement.h"
#include "src/resultset/recordset_conversion.h"

namespace lotrix::bench {
namespace {

namespace fs = std::filesystem;

// What has to hold, by the name of the pair.
struct Bound {
  const char* numerator;
  const char* denominator;
  double most;
};
std::vector<Bound>& Bounds() {
  static std::vector<Bound> bounds;
  return bounds;
}

class Folder {
 public:
  Folder() : path_((fs::temp_directory_path() / "lotrix-bench-XXXXXX").string()) {
    if (mkdtemp(path_.data()) == nullptr) std::exit(70);
  }
  ~Folder() { fs::remove_all(path_); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  [[nodiscard]] std::string File(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

Folder& TheFolder() {
  static Folder folder;
  return folder;
}

std::string ConnectionTo(const std::string& file) {
  return "Provider=SQLite;Data Source=" + file + ";Synchronous=NORMAL";
}

// The sample data, and beside it so many providers with PINs of their own.
std::string MakeDatabase(const std::string& name, int providers) {
  const std::string file = TheFolder().File(name);
  Connection connection;
  connection.Open("Provider=SQLite;Data Source=" + file + ";Synchronous=OFF");
  connection.CreateSchema();
  AddSampleData(connection);
  connection.BeginTrans();
  static_cast<void>(connection.Execute(
      "INSERT INTO pvaccref VALUES('DTAP', 'BENCHM', {1/1/2004}, {12/31/2030}, 1, 1, 10, 'N', "
      "12.5, 'C', 'S', 'D', 'E', 'BENCH', .F., 5)"));
  for (int i = 0; i < providers; ++i) {
    char pin[7];
    std::snprintf(pin, sizeof pin, "B%05X", static_cast<unsigned>(i));
    static_cast<void>(connection.Execute(
        Statement() << "INSERT INTO provider(pin, lastname, city, state, sector, active) VALUES('"
                    << std::string(pin) << "', 'BENCH CLINIC', 'SPRINGFIELD', 'IL', 10, 'Y')"));
  }
  connection.CommitTrans();
  return file;
}

std::string CopyDatabase(const std::string& file, const std::string& name) {
  const std::string copy = TheFolder().File(name);
  Connection connection;  // closing it moves the write-ahead log into the file
  connection.Open(ConnectionTo(file));
  connection.Close();
  fs::copy_file(file, copy, fs::copy_options::overwrite_existing);
  return copy;
}

std::string PinOf(int provider) {
  char pin[7];
  std::snprintf(pin, sizeof pin, "B%05X", static_cast<unsigned>(provider));
  return pin;
}

// An operation, called with the arguments that belong to a number.
struct Operation {
  const char* name;
  bool givesTable;
  int variants;
  // Whether a call with the same arguments again does another thing.
  bool once;
  std::function<void(cLotrix&, int variant)> call;
};

std::string OrderDate(int variant) {
  return std::to_string(variant % 12 + 1) + "/" + std::to_string(variant / 12 % 28 + 1) + "/" +
         std::to_string(2008 + variant / 336 % 20);
}

void Order(cLotrix& service, const std::string& date, const std::string& pin, int doses) {
  service.manufacturerProviderOrderCreateUpdate(date, pin, "DTAP", doses, "1", "1", "", "BENCHM");
}

std::vector<Operation> Operations() {
  return {
      {"stockTableRead", true, 50, false,
       [](cLotrix& s, int v) {
         benchmark::DoNotOptimize(s.stockTableRead("", "DTAP", "", OrderDate(v)));
       }},
      {"manufacturerProviderOrderRead", true, 50, false,
       [](cLotrix& s, int v) {
         benchmark::DoNotOptimize(
             s.manufacturerProviderOrderRead(PinOf(v), "1/1/2008", "DTAP", "", "12/31/2027"));
       }},
      {"vaccineReferenceTableRead", true, 1, false,
       [](cLotrix& s, int) { benchmark::DoNotOptimize(s.vaccineReferenceTableRead()); }},
      {"inventoryOnHandRead", true, 2, false,
       [](cLotrix& s, int v) {
         benchmark::DoNotOptimize(s.inventoryOnHandRead("D00001", v == 0 ? "DTAP" : "MMR"));
       }},
      {"CheckVaccActive", false, 1, false, [](cLotrix& s, int) { s.CheckVaccActive("DTAP"); }},
      {"order/insert", false, 30000, true,
       [](cLotrix& s, int v) { Order(s, OrderDate(v), PinOf(v % 1000), 10); }},
      {"order/update", false, 2, false,
       [](cLotrix& s, int v) { Order(s, "7/4/2012", PinOf(7), 10 + v); }},
  };
}

// One service object, or one floor, on a copy of a database.
struct Side {
  Side(const std::string& original, const std::string& name)
      : database(CopyDatabase(original, name + ".db")), log(TheFolder().File(name + ".log")) {}
  std::string database;
  std::string log;
};

std::unique_ptr<cLotrix> MakeService(const Side& side) {
  auto service = std::make_unique<cLotrix>(
      Host{.clock = {}, .notify = [](std::string_view) {}, .logPath = side.log});
  service->openConnection(ConnectionTo(side.database));
  return service;
}

void Register(const Operation& operation, const std::string& original) {
  const std::string name = operation.name;
  std::string fileName = name;
  std::replace(fileName.begin(), fileName.end(), '/', '-');

  // A call that is an insert the first time only needs as many arguments as there
  // are iterations, on both sides.
  const auto iterations = operation.once ? operation.variants / 6 : 0;
  auto* component =
      benchmark::RegisterBenchmark(name.c_str(), [=, next = 0](benchmark::State& state) mutable {
        const Side side(original, fileName + "-component");
        const auto service = MakeService(side);
        if (!operation.once) next = 0;
        for (int v = 0; v < std::min(operation.variants, 50); ++v) {
          if (!operation.once) operation.call(*service, v);
        }
        for (auto _ : state) {
          operation.call(*service, next);
          if (++next == operation.variants) next = 0;
        }
      });
  auto* floor = benchmark::RegisterBenchmark(
      (name + "/floor").c_str(), [=, next = 0](benchmark::State& state) mutable {
        const Side recordingSide(original, fileName + "-recording");
        const auto service = MakeService(recordingSide);
        if (!operation.once) {
          for (int v = 0; v < operation.variants; ++v) operation.call(*service, v);
        }
        std::vector<Recording> recordings;
        const int taken = operation.once ? iterations : operation.variants;
        for (int v = 0; v < taken; ++v) {
          recordings.push_back(
              Record(*service, recordingSide.log, [&] { operation.call(*service, v); }));
        }
        const Side side(original, fileName + "-floor");
        Floor floorOf(side.database, side.log);
        for (const Recording& recording : recordings) floorOf.Prepare(recording);
        if (!operation.once) {
          for (const Recording& recording : recordings) {
            floorOf.Run(recording, operation.givesTable);
          }
        }
        next = 0;
        for (auto _ : state) {
          floorOf.Run(recordings[static_cast<std::size_t>(next)], operation.givesTable);
          if (++next == taken) next = 0;
        }
      });
  if (operation.once) {
    component->Iterations(iterations);
    floor->Iterations(iterations);
  }
  Bounds().push_back({operation.name, nullptr, 1.3});
}

void RegisterOperations(const std::string& original) {
  for (const Operation& operation : Operations()) Register(operation, original);
}

// 1,000,000 rows of 7 columns, as an import tool would read them.
constexpr int kManyRows = 1'000'000;
constexpr const char* kAllStock =
    "SELECT pin, datein, doses, lot, vaccine, maker, expiry FROM stock";

std::string MakeStock() {
  const std::string file = TheFolder().File("stock.db");
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
  benchmark::RegisterBenchmark("read 1,000,000 rows", [](benchmark::State& state) {
    Connection connection;
    connection.Open(ConnectionTo(kFile));
    for (auto _ : state) {
      const auto records = connection.Execute(kAllStock);
      const cResultSet table = RecordsetToResultSet(*records);
      if (table.Rows() != kManyRows) state.SkipWithError("rows are missing");
    }
  })->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("read 1,000,000 rows/floor", [](benchmark::State& state) {
    sqlite3* database = nullptr;
    sqlite3_open_v2(kFile.c_str(), &database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
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
  })->Unit(benchmark::kMillisecond);
  Bounds().push_back({"read 1,000,000 rows", nullptr, 1.5});
}

// An order costs the same whatever the number of providers.
void RegisterManyProviders(const std::string& few) {
  static const std::string kMany = MakeDatabase("million.db", 1'000'000);
  static const std::string kFew = few;
  const auto orderAgainst = [](const std::string& original, const std::string& name,
                               int providers) {
    return [=](benchmark::State& state) {
      const Side side(original, name);
      const auto service = MakeService(side);
      int next = 0;
      for (auto _ : state) {
        // Over the whole table, and with a new count each time.
        const auto provider = static_cast<int>(next * 7919LL % providers);
        Order(*service, "7/4/2012", PinOf(provider), next % 1000 + 1);
        ++next;
      }
    };
  };
  benchmark::RegisterBenchmark("order of 1,000 providers", orderAgainst(kFew, "order-few", 1000));
  benchmark::RegisterBenchmark("order of 1,000,000 providers",
                               orderAgainst(kMany, "order-many", 1'000'000));
  Bounds().push_back({"order of 1,000,000 providers", "order of 1,000 providers", 1.3});
}

// The console's lines, and behind them each pair's ratio of medians.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.aggregate_name == "median") {
        std::string name = run.run_name.function_name;
        medians_[name] = run.GetAdjustedRealTime();
      }
    }
  }

  void PrintRatios() const {
    std::printf("\n%-36s %12s %12s %7s %6s\n", "", "component", "floor", "ratio", "bound");
    for (const Bound& bound : Bounds()) {
      const std::string floor = bound.denominator == nullptr
                                    ? std::string(bound.numerator) + "/floor"
                                    : bound.denominator;
      const auto measured = medians_.find(bound.numerator);
      const auto against = medians_.find(floor);
      if (measured == medians_.end() || against == medians_.end()) continue;
      std::printf("%-36s %12.1f %12.1f %7.2f %6.1f\n", bound.numerator, measured->second,
                  against->second, measured->second / against->second, bound.most);
    }
  }

 private:
  std::map<std::string, double> medians_;
};

}  // namespace
}  // namespace lotrix::bench

int main(int argc, char** argv) {
  using namespace lotrix::bench;  // NOLINT(google-build-using-namespace): a program of its own
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  const std::string few = MakeDatabase("few.db", 1000);
  RegisterOperations(few);
  RegisterManyProviders(few);
  RegisterLargeRead();
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintRatios();
  return 0;
}

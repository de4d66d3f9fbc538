// Each operation beside its floor, in one run, on SQLite with synchronous=NORMAL,
// so that the disk does not hide the code.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <map>

#include "bench/recording.h"
#include "src/database/statement.h"
#include "src/platform/dates.h"
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

double Least(const std::vector<double>& measured) {
  return *std::min_element(measured.begin(), measured.end());
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

std::string PinOf(int provider) {
  std::array<char, 16> pin{};
  std::snprintf(pin.data(), pin.size(), "B%05X", static_cast<unsigned>(provider));
  return pin.data();
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
    static_cast<void>(connection.Execute(
        Statement() << "INSERT INTO provider(pin, lastname, city, state, sector, active) VALUES('"
                    << PinOf(i) << "', 'BENCH CLINIC', 'SPRINGFIELD', 'IL', 10, 'Y')"));
  }
  static_cast<void>(connection.Execute(
      "INSERT INTO stock(pin, lot, vaccine, tracking) VALUES('B00000', 'BENCH1', 'DTAP', 'T')"));
  // What the depot has shipped on one day is added to.
  static_cast<void>(
      connection.Execute("INSERT INTO distrib(dateout, frompin, pin, vaccine, lot, doses, action) "
                         "VALUES({7/5/2012}, 'D00001', 'B00008', 'DTAP', 'BENCH1', 1, 1)"));
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

// As many calls as one run makes.
constexpr int kCalls = 1500;

// An operation, called with the arguments that belong to a number.
struct Operation {
  const char* name;
  bool givesTable;
  // How many different calls there are; kCalls where a call made twice does
  // another thing the second time.
  int variants;
  std::function<void(cLotrix&, int variant)> call;
};

std::string DateOf(int variant) {
  return DateText({.year = static_cast<std::int16_t>(2008 + variant / 336 % 20),
                   .month = static_cast<std::uint8_t>(variant % 12 + 1),
                   .day = static_cast<std::uint8_t>(variant / 12 % 28 + 1)});
}

void Order(cLotrix& service, const std::string& date, const std::string& pin, int doses) {
  service.manufacturerProviderOrderCreateUpdate(date, pin, "DTAP", doses, "1", "1", "", "BENCHM");
}

void Adjust(cLotrix& service, const std::string& date, const std::string& pin, int doses) {
  service.providerInventoryAdjustmentUpdate("D00001", date, date, "Lo", pin, "DTAP", "BENCH-1",
                                            doses);
}

void Dose(cLotrix& service, const std::string& date, const std::string& pin, int doses) {
  service.DosesAdministeredUpdate(date, pin, "DTAP", "1", "1", doses, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,
                                  1, 1, doses + 12, 1, 2, 3);
}

void Profile(cLotrix& service, const std::string& pin, const std::string& contact) {
  service.providerProfileUpdate(pin, "Bench Clinic", contact, "1 Lantern St.", "", "Amberbrook",
                                "ZZ", "69401", "Ring twice", "(217) 555-0100", "", "", "", "", "",
                                "", "", "", "", true, "10", {}, "17", "Orla", "B", "MD");
}

void Physician(cLotrix& service, const std::string& lastName, const std::string& license) {
  service.physicianAddUpdate("B00009", lastName, "Orla", "B", "MD", "S-1", "M-1", license);
}

std::vector<Operation> Operations() {
  const auto keep = [](auto&& table) { benchmark::DoNotOptimize(table); };
  return {
      {"stockTableRead", true, 50,
       [=](cLotrix& s, int v) { keep(s.stockTableRead("", "DTAP", "", DateOf(v))); }},
      {"manufacturerProviderOrderRead", true, 50,
       [=](cLotrix& s, int v) {
         keep(s.manufacturerProviderOrderRead(PinOf(v), "1/1/2008", "DTAP", "", "12/31/2027"));
       }},
      {"vaccineReferenceTableRead", true, 1,
       [=](cLotrix& s, int) { keep(s.vaccineReferenceTableRead()); }},
      {"inventoryOnHandRead", true, 2,
       [=](cLotrix& s, int v) { keep(s.inventoryOnHandRead("D00001", v == 0 ? "DTAP" : "MMR")); }},
      {"CheckVaccActive", false, 1, [](cLotrix& s, int) { s.CheckVaccActive("DTAP"); }},
      {"manufacturer order: insert", false, kCalls,
       [](cLotrix& s, int v) { Order(s, DateOf(v), PinOf(v % 1000), 10); }},
      {"manufacturer order: update", false, 2,
       [](cLotrix& s, int v) { Order(s, "7/4/2012", PinOf(7), 10 + v); }},
      {"depot order: insert", false, kCalls,
       [](cLotrix& s, int v) {
         s.DepotProviderOrderUpdate("7/4/2012", "D00001", PinOf(v % 1000), "DTAP", 10, "BENCH-1");
       }},
      {"depot order: update", false, 2,
       [](cLotrix& s, int v) {
         s.DepotProviderOrderUpdate("7/5/2012", "D00001", PinOf(8), "DTAP", 1 + v, "BENCH-1");
       }},
      {"adjustment: insert", false, kCalls,
       [](cLotrix& s, int v) { Adjust(s, DateOf(v), PinOf(v % 1000), 2); }},
      {"adjustment: update", false, 2,
       [](cLotrix& s, int v) { Adjust(s, "7/4/2012", PinOf(7), 2 + v); }},
      {"provinvAdd", false, kCalls,
       [](cLotrix& s, int v) { s.provinvAdd(PinOf(v % 1000), "DTAP", "48", DateOf(v)); }},
      {"doses administered: insert", false, kCalls,
       [](cLotrix& s, int v) { Dose(s, DateOf(v), PinOf(v % 1000), 5); }},
      {"doses administered: update", false, kCalls,
       [](cLotrix& s, int v) { Dose(s, "7/4/2012", PinOf(7), v); }},
      {"profile: insert", false, kCalls,
       [](cLotrix& s, int v) { Profile(s, "X" + std::to_string(10000 + v), "Orla"); }},
      {"profile: update", false, kCalls,
       [](cLotrix& s, int v) { Profile(s, PinOf(9), "Orla " + std::to_string(v)); }},
      {"shipping data", false, 2,
       [](cLotrix& s, int v) {
         s.providerShippingDataUpdate(PinOf(10), "Bench Clinic", v == 0 ? "Orla" : "Benno",
                                      "1 Lantern St.", "", "Amberbrook", "ZZ", "69401", "",
                                      "(217) 555-0100", "");
       }},
      {"enrollment", false, 2,
       [](cLotrix& s, int v) {
         s.providerEnrollmentAddUpdate("P00001", "A", "2", v == 0 ? "100" : "101", "1", "2", "3",
                                       "4", "5", "6", "7");
       }},
      {"additional info", false, 2,
       [](cLotrix& s, int v) {
         s.providerAdditionalInfoUpdate(PinOf(11), v == 0 ? "CLINIC" : "SCHOOL", "11", "1/5/2026",
                                        "C1", "E-100", "YES");
       }},
      {"physician: insert", false, kCalls,
       [](cLotrix& s, int v) { Physician(s, "Thistle" + std::to_string(v), "L-1"); }},
      {"physician: update", false, 2,
       [](cLotrix& s, int v) { Physician(s, "Linnet", v == 0 ? "L-1" : "L-2"); }},
      {"physicianDeleteByPin", false, 50,
       [](cLotrix& s, int v) { s.physicianDeleteByPin(PinOf(v + 20)); }},
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

// Both sides begin each run on a fresh copy of the database; what is called again
// and again is called once beforehand.
void Register(const Operation& operation, const std::string& original) {
  const std::string name = operation.name;
  std::string fileName = name;
  std::replace(fileName.begin(), fileName.end(), ' ', '-');
  const bool repeats = operation.variants < kCalls;

  benchmark::RegisterBenchmark(name.c_str(),
                               [=](benchmark::State& state) {
                                 const Side side(original, fileName + "-component");
                                 const auto service = MakeService(side);
                                 service->CheckVaccActive("DTAP");  // opens the connection
                                 for (int v = 0; repeats && v < operation.variants; ++v)
                                   operation.call(*service, v);
                                 int next = 0;
                                 for (auto _ : state) {
                                   operation.call(*service, next);
                                   if (++next == operation.variants) next = 0;
                                 }
                               })
      ->Iterations(kCalls)
      ->ComputeStatistics("min", Least);

  benchmark::RegisterBenchmark(
      (name + "/floor").c_str(),
      [=](benchmark::State& state) {
        const Side recordingSide(original, fileName + "-recording");
        const auto service = MakeService(recordingSide);
        for (int v = 0; repeats && v < operation.variants; ++v) operation.call(*service, v);
        std::vector<Recording> recordings;
        for (int v = 0; v < operation.variants; ++v) {
          recordings.push_back(
              Record(*service, recordingSide.log, [&] { operation.call(*service, v); }));
        }
        // The rows that repeated calls change are there after the recording.
        const Side side(repeats ? recordingSide.database : original, fileName + "-floor");
        Floor floor(side.database, side.log);
        for (const Recording& recording : recordings) floor.Prepare(recording);
        for (int v = 0; repeats && v < operation.variants; ++v) {
          floor.Run(recordings[static_cast<std::size_t>(v)], operation.givesTable);
        }
        std::size_t next = 0;
        for (auto _ : state) {
          floor.Run(recordings[next], operation.givesTable);
          if (++next == recordings.size()) next = 0;
        }
      })
      ->Iterations(kCalls)
      ->ComputeStatistics("min", Least);
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
      ->ComputeStatistics("min", Least);
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
      ->ComputeStatistics("min", Least);
  Bounds().push_back({"read 1,000,000 rows", nullptr, 1.5});
}

// A new order costs the same whatever the number of providers.
void RegisterManyProviders(const std::string& few) {
  static const std::string kMany = MakeDatabase("million.db", 1'000'000);
  static const std::string kFew = few;
  const auto orderAgainst = [](const std::string& original, const std::string& name,
                               int providers) {
    return [=](benchmark::State& state) {
      const Side side(original, name);
      const auto service = MakeService(side);
      service->CheckVaccActive("DTAP");  // opens the connection
      // A thousand providers spread over the whole table, each of whom has ordered
      // once before: pages that were never read cost a read of the file on either
      // side, which is the disk's matter.
      const auto order = [&](int call) {
        const int provider = call % 1000 * (providers / 1000);
        Order(*service, DateOf(call / 1000), PinOf(provider), 10);
      };
      for (int call = 0; call < 1000; ++call) order(call);
      int next = 1000;
      for (auto _ : state) order(next++);
    };
  };
  benchmark::RegisterBenchmark("order of 1,000 providers", orderAgainst(kFew, "order-few", 1000))
      ->Iterations(kCalls)
      ->ComputeStatistics("min", Least);
  benchmark::RegisterBenchmark("order of 1,000,000 providers",
                               orderAgainst(kMany, "order-many", 1'000'000))
      ->Iterations(kCalls)
      ->ComputeStatistics("min", Least);
  Bounds().push_back({"order of 1,000,000 providers", "order of 1,000 providers", 1.3});
}

// The console's lines, and behind them each pair's ratio. Of the repetitions the
// quickest counts on either side: whatever else the machine does only adds.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.aggregate_name == "min") {
        const std::string& name = run.run_name.function_name;
        least_[name] = run.GetAdjustedRealTime();
      }
    }
  }

  void PrintRatios() const {
    std::printf("\n%-36s %12s %12s %7s %6s\n", "", "component", "floor", "ratio", "bound");
    for (const Bound& bound : Bounds()) {
      const std::string floor = bound.denominator == nullptr
                                    ? std::string(bound.numerator) + "/floor"
                                    : bound.denominator;
      const auto measured = least_.find(bound.numerator);
      const auto against = least_.find(floor);
      if (measured == least_.end() || against == least_.end()) continue;
      std::printf("%-36s %12.1f %12.1f %7.2f %6.1f\n", bound.numerator, measured->second,
                  against->second, measured->second / against->second, bound.most);
    }
  }

 private:
  std::map<std::string, double> least_;
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

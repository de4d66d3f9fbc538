#include "bench/pairs.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <numeric>
#include <regex>

namespace lotrix::bench {

namespace {

namespace fs = std::filesystem;

// What has to hold, by the name of the pair.
struct Bound {
  std::string numerator;
  std::string denominator;
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

// The console's lines, and behind them each pair's ratio.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.aggregate_name == kQuarter) {
        times_[run.run_name.function_name] = run.GetAdjustedRealTime();
      }
    }
  }

  void PrintRatios() const {
    std::printf("\n%-36s %12s %12s %7s %6s\n", "", "component", "floor", "ratio", "bound");
    for (const Bound& bound : Bounds()) {
      const auto measured = times_.find(bound.numerator);
      const auto against = times_.find(bound.denominator);
      if (measured == times_.end() || against == times_.end()) continue;
      std::printf("%-36s %12.1f %12.1f %7.2f %6.1f\n", bound.numerator.c_str(), measured->second,
                  against->second, measured->second / against->second, bound.most);
    }
  }

 private:
  std::map<std::string, double> times_;
};

// Calls before what is measured: all of those that are called again and again, else
// some that are not called later.
std::vector<int> WarmUps(const Operation& operation) {
  constexpr int kOthers = 8;  // until the engine's plans stay
  const bool repeats = operation.variants < kCalls;
  std::vector<int> variants(static_cast<std::size_t>(repeats ? operation.variants : kOthers));
  std::iota(variants.begin(), variants.end(), repeats ? 0 : kCalls);
  return variants;
}

// The component's side of a pair. The runs of a benchmark go on with it where the one
// before ended, so that no call is made twice that may not be.
struct ComponentRuns {
  ComponentRuns(const Engine& engine, const Operation& operation, const std::string& original,
                const std::string& name)
      : side(engine, original, name + "-component"), service(MakeService(side)) {
    for (const int v : WarmUps(operation)) operation.call(*service, v);
  }
  Side side;
  std::unique_ptr<cLotrix> service;
  int next = 0;
};

// The floor's side, on which the same calls are recorded first.
struct FloorRuns {
  FloorRuns(const Engine& engine, const Operation& operation, const std::string& original,
            const std::string& name)
      : recordingSide(engine, original, name + "-recording") {
    std::vector<Recording> warmUps;
    {
      const auto service = MakeService(recordingSide);
      const auto record = [&](int v) {
        return Record(engine.record, *service, recordingSide.log,
                      [&] { operation.call(*service, v); });
      };
      for (const int v : WarmUps(operation)) operation.call(*service, v);
      for (const int v : WarmUps(operation)) warmUps.push_back(record(v));
      for (int v = 0; v < operation.variants; ++v) recordings.push_back(record(v));
    }
    // The rows that repeated calls change are there after the recording.
    const bool repeats = operation.variants < kCalls;
    side = std::make_unique<Side>(engine, repeats ? recordingSide.database : original,
                                  name + "-floor");
    floor = engine.openFloor(side->database, side->log);
    for (const Recording& recording : warmUps) floor->Prepare(recording);
    for (const Recording& recording : recordings) floor->Prepare(recording);
    for (const Recording& recording : warmUps) floor->Run(recording, operation.givesTable);
  }
  Side recordingSide;
  std::vector<Recording> recordings;
  std::unique_ptr<Side> side;
  std::unique_ptr<Floor> floor;
  std::size_t next = 0;
};

// Has the measured runs, whose calls are kCalls in all.
void RegisterRuns(const Engine& engine, const std::string& name,
                  const std::function<void(benchmark::State&)>& run) {
  benchmark::RegisterBenchmark(name.c_str(), run)
      ->Iterations(kCalls / engine.repetitions)
      ->Repetitions(engine.repetitions)
      ->ComputeStatistics(kQuarter, Quarter);
}

// Each side has a copy of the database of its own.
void Register(const Engine& engine, const Operation& operation, const std::string& original) {
  const std::string name = operation.name;
  std::string fileName = name;
  std::replace_if(
      fileName.begin(), fileName.end(), [](char c) { return c == ' ' || c == ':'; }, '-');
  RegisterRuns(
      engine, name,
      [=, &engine, runs = std::shared_ptr<ComponentRuns>()](benchmark::State& state) mutable {
        if (runs == nullptr) {
          runs = std::make_shared<ComponentRuns>(engine, operation, original, fileName);
        }
        for (auto _ : state) {
          operation.call(*runs->service, runs->next);
          if (++runs->next == operation.variants) runs->next = 0;
        }
      });
  RegisterRuns(engine, name + "/floor",
               [=, &engine, runs = std::shared_ptr<FloorRuns>()](benchmark::State& state) mutable {
                 if (runs == nullptr) {
                   runs = std::make_shared<FloorRuns>(engine, operation, original, fileName);
                 }
                 for (auto _ : state) {
                   runs->floor->Run(runs->recordings[runs->next], operation.givesTable);
                   if (++runs->next == runs->recordings.size()) runs->next = 0;
                 }
               });
  AddBound(operation.name, name + "/floor", engine.most);
}

// Orders of a thousand providers spread over the whole table, each of whom has ordered
// once before: pages that were never read cost a read of the file, which is the disk's
// matter.
struct OrderRuns {
  OrderRuns(const Engine& engine, const std::string& original, const std::string& name,
            int providers)
      : side(engine, original, name), service(MakeService(side)), step(providers / 1000) {
    while (next < 1000) OrderNext();
  }
  void OrderNext() {
    Order(*service, DateOf(next / 1000), PinOf(next % 1000 * step), 10);
    ++next;
  }
  Side side;
  std::unique_ptr<cLotrix> service;
  int step;
  int next = 0;
};

void RegisterOrders(const Engine& engine, const std::string& name, const std::string& original,
                    int providers) {
  RegisterRuns(engine, name,
               [=, &engine, runs = std::shared_ptr<OrderRuns>()](benchmark::State& state) mutable {
                 if (runs == nullptr) {
                   runs = std::make_shared<OrderRuns>(
                       engine, original, "order-" + std::to_string(providers), providers);
                 }
                 for (auto _ : state) runs->OrderNext();
               });
}

}  // namespace

Side::Side(const Engine& anEngine, const std::string& original, const std::string& name)
    : engine(anEngine), database(engine.copy(original, name)), log(TemporaryFile(name + ".log")) {}

Side::~Side() { engine.drop(database); }

std::unique_ptr<cLotrix> MakeService(const Side& side) {
  auto service = std::make_unique<cLotrix>(
      Host{.clock = {}, .notify = [](std::string_view) {}, .logPath = side.log});
  service->openConnection(side.engine.connectionTo(side.database));
  return service;
}

std::string TemporaryFile(const std::string& name) { return TheFolder().File(name); }

double Quarter(const std::vector<double>& measured) {
  std::vector<double> sorted = measured;
  const auto quarter = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 4);
  std::nth_element(sorted.begin(), quarter, sorted.end());
  return *quarter;
}

void AddBound(const std::string& numerator, const std::string& denominator, double most) {
  Bounds().push_back({numerator, denominator, most});
}

void RegisterOperations(const Engine& engine, const std::string& original) {
  for (const Operation& operation : Operations()) Register(engine, operation, original);
}

void RegisterManyProviders(const Engine& engine, const std::string& few, const std::string& many) {
  RegisterOrders(engine, "order of 1,000 providers", few, 1000);
  RegisterOrders(engine, "order of 1,000,000 providers", many, 1'000'000);
  AddBound("order of 1,000,000 providers", "order of 1,000 providers", 1.3);
}

void RunBenchmarks() {
  RatioReporter reporter;
  const std::regex filter(benchmark::GetBenchmarkFilter());
  for (const Bound& bound : Bounds()) {
    if (!std::regex_search(bound.numerator, filter)) continue;
    // The two sides of a pair run among each other, whatever the machine does meanwhile.
    benchmark::RunSpecifiedBenchmarks(
        &reporter, "^(" + bound.numerator + '|' + bound.denominator + ")/(iterations|repeats):");
  }
  benchmark::ClearRegisteredBenchmarks();  // and what their runs hold open
  reporter.PrintRatios();
}

}  // namespace lotrix::bench

// Each operation beside its floor, in one run.
#ifndef LOTRIX_BENCH_PAIRS_H
#define LOTRIX_BENCH_PAIRS_H

#include <string>

#include "bench/operations.h"
#include "bench/recording.h"

namespace lotrix::bench {

// What has to be known of an engine.
struct Engine {
  // A copy of the database for one side, and its end.
  std::function<std::string(const std::string& original, const std::string& name)> copy;
  std::function<void(const std::string& database)> drop;
  std::function<std::string(const std::string& database)> connectionTo;
  Recorder record;
  std::function<std::unique_ptr<Floor>(const std::string& database, const std::string& logPath)>
      openFloor;
  int repetitions;
  double most;  // times the floor
};

// One service object, or one floor, on a copy of a database.
struct Side {
  Side(const Engine& anEngine, const std::string& original, const std::string& name);
  ~Side();
  Side(const Side&) = delete;
  Side& operator=(const Side&) = delete;
  const Engine& engine;
  std::string database;
  std::string log;
};

std::unique_ptr<cLotrix> MakeService(const Side& side);

// Where the files of a benchmark are; removed at its end.
std::string TemporaryFile(const std::string& name);

void RegisterOperations(const Engine& engine, const std::string& original);

// A new order costs the same whatever the number of providers, of whom the databases
// have 1,000 and 1,000,000.
void RegisterManyProviders(const Engine& engine, const std::string& few, const std::string& many);

// Puts the first of a pair, at most so many times the second, among the ratios.
void AddBound(const std::string& numerator, const std::string& denominator, double most);

// Measures the pairs that have a bound, and prints the ratios.
void RunBenchmarks();

// Of the repetitions the one counts that a quarter of them is quicker than: much that
// the machine does besides only adds, while the very quickest may have been lucky.
inline constexpr const char* kQuarter = "quarter";
double Quarter(const std::vector<double>& measured);

}  // namespace lotrix::bench

#endif

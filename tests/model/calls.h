// Calls of operations drawn at random, and the rows that they find: apart from
// whatever runs them, so that several engines can be given the same sequence.
#ifndef LOTRIX_TESTS_MODEL_CALLS_H
#define LOTRIX_TESTS_MODEL_CALLS_H

#include <cstdint>
#include <map>
#include <random>
#include <string>

#include "lotrix/members.h"
#include "tests/model/model.h"

namespace lotrix::model {

struct Call {
  std::string operation;
  NamedArguments arguments;  // those that are omitted are not among them
};

// The call with all its arguments, readable: bytes beyond ASCII and control
// characters as \xNN, long texts by their length.
[[nodiscard]] std::string Describe(const Call& call);
[[nodiscard]] std::string Quoted(const std::string& text);

// The same seed gives the same calls on every machine.
class CallGenerator {
 public:
  explicit CallGenerator(std::uint64_t seed) : random_(seed) {}
  [[nodiscard]] Call Next();

 private:
  std::uint64_t Below(std::uint64_t bound) { return random_() % bound; }
  bool Percent(std::uint64_t percent) { return Below(100) < percent; }

  std::mt19937_64 random_;
};

// How often Next gives each operation, of the sum of all.
[[nodiscard]] const std::map<std::string, int>& OperationWeights();

// The rows that the calls of one database start from, with duplicates and Nulls
// among them. Databases differ in what is broken about them.
[[nodiscard]] Tables StartingTables(int database);

}  // namespace lotrix::model

#endif

// Every operation against a model of the rules: a long sequence of random calls,
// whose verdicts, tables and rows left behind have to be the model's.
//
// LOTRIX_MODEL_SEED and LOTRIX_MODEL_STEPS choose another sequence or length.
#include "tests/model/model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "lotrix/lotrix.h"
#include "tests/model/calls.h"
#include "tests/model/component.h"
#include "tests/support/engine.h"

namespace lotrix::model {
namespace {

constexpr std::uint64_t kDefaultSeed = 20261120;
constexpr std::uint64_t kDefaultSteps = 4000;
constexpr std::uint64_t kStepsOfOneDatabase = 250;
constexpr std::uint64_t kStepsBetweenComparisons = 10;

std::string RowText(const Row& row) {
  std::string text;
  for (const std::string& cell : row) text += (text.empty() ? "" : " | ") + Quoted(cell);
  return text;
}

// Rows that only one side has; empty when both have the same.
std::string Difference(std::vector<Row> expected, std::vector<Row> actual) {
  std::sort(expected.begin(), expected.end());
  std::sort(actual.begin(), actual.end());
  std::vector<Row> missing;
  std::vector<Row> surplus;
  std::set_difference(expected.begin(), expected.end(), actual.begin(), actual.end(),
                      std::back_inserter(missing));
  std::set_difference(actual.begin(), actual.end(), expected.begin(), expected.end(),
                      std::back_inserter(surplus));
  std::string text;
  for (const Row& row : missing) text += "  model only:     " + RowText(row) + "\n";
  for (const Row& row : surplus) text += "  component only: " + RowText(row) + "\n";
  return text;
}

std::string TableDifferences(Component& component, const Tables& tables) {
  std::string text;
  for (const TableContents& table : Contents(tables)) {
    const std::string difference = Difference(table.rows, component.Stored(table));
    if (!difference.empty()) {
      text += table.name + " (" + ColumnList(table) + ")\n" + difference;
    }
  }
  return text;
}

// --- The component's verdict --------------------------------------------------

std::string RefusalText(std::int32_t number, const std::string& message) {
  return "refused with " + std::to_string(number) + " " + Quoted(message);
}

// What differs between the two verdicts; empty when nothing does.
std::string VerdictDifference(const Verdict& expected, const Outcome& actual) {
  if (expected.accepted != actual.accepted || expected.number != actual.number) {
    return "  model:     " +
           (expected.accepted
                ? "accepted"
                : RefusalText(expected.number, expected.message.value_or("(any text)"))) +
           "\n  component: " +
           (actual.accepted ? "accepted" : RefusalText(actual.number, actual.message)) + "\n";
  }
  if (expected.message && *expected.message != actual.message) {
    return "  model's message:     " + Quoted(*expected.message) +
           "\n  component's message: " + Quoted(actual.message) + "\n";
  }
  if (!expected.source.empty() && expected.source != actual.source) {
    return "  source: " + Quoted(actual.source) + "\n";
  }
  const std::vector<std::string> shown =
      expected.shown ? std::vector<std::string>{*expected.shown} : std::vector<std::string>{};
  if (shown != actual.shown) {
    return "  model shows:     " + RowText(shown) +
           "\n  component shows: " + RowText(actual.shown) + "\n";
  }
  if (expected.table.has_value() != actual.hasTable) return "  only one of them answers a table\n";
  if (!expected.table) return "";
  if (expected.table->headers != actual.headers) {
    return "  headers: " + RowText(actual.headers) + "\n";
  }
  std::size_t next = 0;
  for (const std::vector<Row>& group : expected.table->groups) {
    const std::size_t end = std::min(next + group.size(), actual.rows.size());
    const std::string difference =
        Difference(group, {actual.rows.begin() + static_cast<std::ptrdiff_t>(next),
                           actual.rows.begin() + static_cast<std::ptrdiff_t>(end)});
    if (!difference.empty()) {
      return "  rows " + std::to_string(next + 1) + " to " + std::to_string(end) + "\n" +
             difference;
    }
    next = end;
  }
  if (next != actual.rows.size()) {
    return "  component only: " + RowText(actual.rows[next]) + "\n";
  }
  return "";
}

// --- The run --------------------------------------------------------------------

struct Tally {
  int accepted = 0;
  std::map<std::int32_t, int> refused;
};

// How much of an operation a run of the default length has to reach.
struct Reach {
  int accepted;
  std::size_t numbers;
};

Reach RequiredOf(const std::string& operation) {
  if (operation == "vaccineReferenceTableRead") return {10, 0};
  if (operation == "CheckVaccActive") return {30, 1};
  if (operation == "physicianDeleteByPin") return {20, 3};
  if (operation == "inventoryOnHandRead") return {30, 4};
  return {50, 6};
}

TEST(Model, AndComponentAgreeOnARandomSequenceOfCalls) {
  const std::uint64_t seed = FromEnvironment("LOTRIX_MODEL_SEED", kDefaultSeed);
  const std::uint64_t steps = FromEnvironment("LOTRIX_MODEL_STEPS", kDefaultSteps);
  ASSERT_GT(steps, 0U) << "LOTRIX_MODEL_STEPS is no number of steps";
  CallGenerator generator(seed);
  std::map<std::string, Tally> tallies;
  std::unique_ptr<Component> component;
  Tables tables;
  int databases = 0;
  bool differs = false;
  std::string callsSinceComparison;
  for (std::uint64_t step = 0; step < steps; ++step) {
    const Call call = generator.Next();
    // After a difference the rest of that database says nothing.
    const bool fresh = step % kStepsOfOneDatabase == 0;
    if (fresh) {
      tables = StartingTables(databases++);
      component = std::make_unique<Component>(test::TestEngine(), tables);
      differs = false;
      callsSinceComparison.clear();
    }
    if (differs) continue;
    const Verdict expected = Execute(tables, call.operation, call.arguments);
    const Outcome actual = component->Run(call);
    std::string difference = VerdictDifference(expected, actual);
    const bool compares =
        (step + 1) % kStepsBetweenComparisons == 0 || step + 1 == steps || !difference.empty();
    // What the rows left behind differ in may be the work of a call before this one.
    callsSinceComparison += std::to_string(step) + ": " + Describe(call) + "\n";
    if (compares) difference += TableDifferences(*component, tables);
    if (!difference.empty()) {
      ADD_FAILURE() << "LOTRIX_MODEL_SEED=" << seed << " LOTRIX_MODEL_STEPS=" << step + 1
                    << ": step " << step << ", database " << databases - 1
                    << "; the calls since the last comparison:\n"
                    << callsSinceComparison << difference;
      differs = true;
    }
    if (compares) callsSinceComparison.clear();
    Tally& tally = tallies[call.operation];
    if (expected.accepted) {
      ++tally.accepted;
    } else {
      ++tally.refused[expected.number];
    }
  }
  for (const auto& [operation, weight] : OperationWeights()) {
    const Tally& tally = tallies[operation];
    RecordProperty(operation + ".accepted", tally.accepted);
    std::string numbers;
    for (const auto& [number, times] : tally.refused) {
      numbers += std::to_string(number) + " x " + std::to_string(times) + "; ";
    }
    RecordProperty(operation + ".refused", numbers);
    // A shorter run cannot reach everything; an own seed still has to.
    if (steps < kDefaultSteps) continue;
    const Reach required = RequiredOf(operation);
    EXPECT_GE(tally.accepted, required.accepted) << operation;
    EXPECT_GE(tally.refused.size(), required.numbers) << operation;
  }
}

}  // namespace
}  // namespace lotrix::model

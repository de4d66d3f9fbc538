// What the tests of operations stand on: a service object whose statements are
// watched, an engine that can be made to count wrong, and refusals looked at whole.
#ifndef LOTRIX_TESTS_SUPPORT_OPERATION_FIXTURE_H
#define LOTRIX_TESTS_SUPPORT_OPERATION_FIXTURE_H

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "tests/support/fixture.h"

namespace lotrix::test {

class OperationTest : public DatabaseTest {
 protected:
  // From now on the statements on the service object's connection are kept and
  // `answer_` may answer them; the trace starts on a clean page.
  void WatchOperations();

  // In place of the engine's answer: the records, of one column, to that query
  // alone, or to every one.
  void AnswerTo(const std::string& query, std::vector<Value> records);
  void AnswerEveryQuery(std::vector<Value> records);

  // A provider whose every column is filled.
  void AddFilledProvider(const std::string& pin, const std::string& sector,
                         const std::string& active);

  // All rows of the tables, each table's after its name and their count.
  [[nodiscard]] Rows Contents(std::initializer_list<std::string> tables);

  // Of a service object of its own; the day changes with the call's first statement.
  void RunAcrossMidnight(const std::function<void(cLotrix& own)>& call);

  // The last statement that the call makes; empty when it makes none.
  std::string LastStatementOf(const std::function<void()>& call);

  // Refused with that number, and `lines` between the operation's first line and its
  // last. The call's statements are there for a look.
  Error ExpectRefusal(const std::string& operation, const std::function<void()>& call,
                      std::int32_t number,
                      const std::function<Lines(const std::string& description)>& lines);

  // What the engine is made to count wrong by a test.
  Answer answer_;
};

}  // namespace lotrix::test

#endif

// The component with a database of its own, filled with the model's rows, as the
// model's calls see it.
#ifndef LOTRIX_TESTS_MODEL_COMPONENT_H
#define LOTRIX_TESTS_MODEL_COMPONENT_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "lotrix/lotrix.h"
#include "tests/model/calls.h"
#include "tests/model/model.h"
#include "tests/support/engine.h"

namespace lotrix::model {

struct Outcome {
  bool accepted = true;
  std::int32_t number = 0;
  std::string source;
  std::string message;
  bool hasTable = false;
  Row headers;
  std::vector<Row> rows;
  std::vector<std::string> shown;
};

class Component {
 public:
  Component(test::Engine engine, const Tables& tables);

  Outcome Run(const Call& call);

  // The rows of the table, numbers written alike whatever the engine.
  [[nodiscard]] std::vector<Row> Stored(const TableContents& table);
  // The trace log's lines since the last call of this, without time and process.
  [[nodiscard]] std::vector<std::string> Trace();

 private:
  test::TemporaryFolder folder_;
  std::unique_ptr<test::TestDatabase> database_;
  std::vector<std::string> shown_;
  std::size_t linesSeen_ = 0;
  cLotrix lotrix_;
};

std::string ColumnList(const TableContents& table);

// A number of that name in the environment.
std::uint64_t FromEnvironment(const char* name, std::uint64_t otherwise);

}  // namespace lotrix::model

#endif

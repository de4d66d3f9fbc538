// What the tests of routines and operations stand on: a fresh database, a service
// object with a fixed clock, and its trace.
#ifndef LOTRIX_TESTS_SUPPORT_FIXTURE_H
#define LOTRIX_TESTS_SUPPORT_FIXTURE_H

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "lotrix/lotrix.h"
#include "src/database/service.h"
#include "tests/support/engine.h"

namespace lotrix::test {

using Rows = std::vector<Row>;
// Of the trace, or of statements: one text each.
using Lines = std::vector<std::string>;

// The catalogue code's number as clients see it.
[[nodiscard]] constexpr std::int32_t Coded(std::int32_t code) { return kObjectErrorBase + code; }
[[nodiscard]] constexpr std::int32_t Numbered(EngineError number) {
  return static_cast<std::int32_t>(number);
}

// The Error that `call` throws; a test failure, and number 0, when it throws none.
[[nodiscard]] Error Refusal(const std::function<void()>& call);

void ExpectError(const Error& error, std::int32_t number, const std::string& description,
                 const std::string& source = "LOTRIX DLL");

// A result table's cells by GetValue, row by row; a Null cell is "<null>".
[[nodiscard]] Rows Cells(const cResultSet& table);
[[nodiscard]] Row HeaderNames(const cResultSet& table);

// A trace log's lines without time and process: "information Begin: x()".
[[nodiscard]] Lines TraceLines(const std::string& path);

class DatabaseTest : public ::testing::Test {
 protected:
  DatabaseTest();

  // 20 November 2026, 13:45:12.123456 local time.
  [[nodiscard]] static std::chrono::system_clock::time_point Now();

  [[nodiscard]] Host MakeHost();

  // A service object that has been given the connection string; its first lines
  // are forgotten.
  cLotrix& lotrix();

  // What operations hand down to routines, on a log and a connection of its own.
  Service& service();
  TraceLog& log() { return service().log; }
  // The open connection; forgets the trace, so that a routine called with it starts
  // on a clean page.
  Connection& connection();

  [[nodiscard]] TestDatabase& database() { return *database_; }
  void Execute(const std::string& sql) { database_->Execute(sql); }
  [[nodiscard]] Rows Query(const std::string& sql) { return database_->Query(sql); }

  // The lines since the last call of this or ForgetTrace.
  [[nodiscard]] Lines Trace();
  void ForgetTrace() { static_cast<void>(Trace()); }

  [[nodiscard]] const std::string& logPath() const { return logPath_; }
  // From now on the exact text of every statement that runs on this connection is
  // kept, and `answer`, if given, may answer a query with rows of its own (one
  // column each) in place of the engine's: the way to make an engine count wrong.
  using Answer = std::function<std::optional<std::vector<Value>>(const std::string& text)>;
  void Watch(Connection& watched, Answer answer = {});
  // The texts since the last call of this.
  [[nodiscard]] Lines Statements();

  // The texts that CheckVaccActive has shown.
  [[nodiscard]] const std::vector<std::string>& shown() const { return shown_; }

 private:
  TemporaryFolder folder_;
  std::string logPath_;
  std::unique_ptr<TestDatabase> database_;
  std::vector<std::string> shown_;
  Lines statements_;
  std::unique_ptr<cLotrix> lotrix_;
  std::unique_ptr<Service> service_;
  std::size_t linesSeen_ = 0;
};

}  // namespace lotrix::test

#endif

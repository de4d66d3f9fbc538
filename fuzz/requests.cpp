// Lines of a batch: read, called on a database, answered.
#include <sstream>
#include <string>

#include "cli/client.h"
#include "cli/json.h"
#include "fuzz/database.h"
#include "fuzz/require.h"
#include "src/platform/text.h"

namespace lotrix::fuzz {

namespace {

// It would open whatever file the input names.
bool OpensOther(const std::string& operation) {
  return EqualWithoutCase(operation, "openConnection");
}

void RequireTable(const cli::Json& result) {
  const std::size_t columns = result.at("headers").size();
  for (const cli::Json& row : result.at("rows")) {
    Require(row.size() == columns, "a row has a cell for each header");
    for (const cli::Json& cell : row) {
      Require(cell.is_string() || cell.is_null(), "a cell is a text or null");
    }
  }
}

void RequireAnswer(const cli::Json& id, const cli::Answer& answer) {
  std::ostringstream out;
  cli::WriteAnswer(out, id, answer);
  const std::string line = out.str();
  Require(line.find('\n') == line.size() - 1, "an answer is one line");
  const cli::Json written = cli::Json::parse(line, nullptr, false);
  Require(written.is_object(), "an answer is a JSON object");
  Require(written.at("id") == id, "an answer has the id of its request");
  Require(written.at("ok") == !answer.error.has_value(), "an answer says whether all is well");
  if (answer.error) {
    Require(written.at("error").at("number") == answer.error->number(), "the error's number");
    Require(written.at("error").at("source") == answer.error->source(), "the error's source");
  } else if (answer.table) {
    RequireTable(written.at("result"));
  }
}

void Check(const std::string& line) {
  static Database database(AddSmallSample);
  static cli::Client client(
      {.connectionString = database.ConnectionString(), .logPath = "/dev/null"});
  cli::Request request = cli::ReadRequest(line);
  cli::Answer answer;
  if (request.malformed) {
    Require(request.malformed->number() == Numbered(RuntimeError::kInvalidArgument),
            "a malformed request is an invalid argument");
    Require(request.malformed->source() == "Lotrix", "a malformed request's source");
    answer.error = request.malformed;
  } else if (!OpensOther(request.operation)) {
    answer = client.Call(request.operation, request.arguments);
  }
  RequireAnswer(request.id, answer);
  if (!database.Changed()) return;
  database.RequireShape();
  Require(!request.malformed, "a malformed request changes nothing");
  database.Restore();
}

}  // namespace

}  // namespace lotrix::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  lotrix::fuzz::Check(std::string(data, data + size));
  return 0;
}

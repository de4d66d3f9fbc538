// Requests and answers as JSON.
#ifndef LOTRIX_CLI_JSON_H
#define LOTRIX_CLI_JSON_H

#include <iosfwd>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "cli/client.h"

namespace lotrix::cli {

using Json = nlohmann::ordered_json;

struct Request {
  Json id;  // null when it has none
  // What is wrong with the request itself; nothing else is set then but the id.
  std::optional<Error> malformed;
  std::string operation;
  Arguments arguments;
};

// One line of a batch; never throws an Error.
[[nodiscard]] Request ReadRequest(const std::string& line);

// One line, with its end. Rows are written as they are taken from the table, so
// that a large one is not held twice.
void WriteAnswer(std::ostream& out, const Json& id, const Answer& answer);

// Text that another program's row made invalid UTF-8 is written with replacement
// characters.
[[nodiscard]] std::string ToLine(const Json& json);

}  // namespace lotrix::cli

#endif

#include "src/database/table_writer.h"

#include "src/errors/raise_error.h"

namespace lotrix {

std::string QuotedNames(const std::vector<std::string>& names) {
  std::string quoted;
  for (const std::string& name : names) {
    quoted += quoted.empty() ? "\"" : ", \"";
    for (const char c : name) quoted.append(c == '"' ? 2 : 1, c);
    quoted += '"';
  }
  return quoted;
}

void RaiseCannotHold(std::string_view column, std::string_view what) {
  RaiseEngineError(EngineError::kValueCannotBeConverted,
                   "The column " + std::string(column) + " holds " + std::string(what) + " here.");
}

}  // namespace lotrix

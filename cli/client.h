// A service object as the program uses it, and the answers it gives.
#ifndef LOTRIX_CLI_CLIENT_H
#define LOTRIX_CLI_CLIENT_H

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "cli/commands.h"
#include "lotrix/lotrix.h"

namespace lotrix::cli {

// Arguments of a call by name or in order.
using Arguments = std::variant<NamedArguments, std::vector<Argument>>;

struct Answer {
  std::optional<Error> error;
  std::optional<cResultSet> table;
  std::optional<std::string> message;  // the text of CheckVaccActive
};

class Client {
 public:
  // Gives the connection string to the service object; opens nothing.
  explicit Client(const Common& common);

  // Never throws an Error: a refusal is an answer.
  Answer Call(const std::string& operation, const Arguments& arguments);

  cLotrix& lotrix() { return lotrix_; }

 private:
  std::optional<std::string> message_;
  cLotrix lotrix_;
};

// "number (code) source: description"; the code of the catalogue in decimal, that
// of an engine in hexadecimal.
[[nodiscard]] std::string ErrorLine(const Error& error);

// kDatabaseUnavailable for an error of reaching the database, else kRefused.
[[nodiscard]] ExitCode ExitCodeOf(const Error& error);

}  // namespace lotrix::cli

#endif

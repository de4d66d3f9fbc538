#include <iostream>

#include "cli/client.h"
#include "cli/json.h"
#include "cli/table.h"

namespace lotrix::cli {

namespace {

// A connection string that is no text is refused like an argument that is none.
Answer CallOnce(const Common& common, const std::string& operation,
                const NamedArguments& arguments) {
  try {
    Client client(common);
    return client.Call(operation, arguments);
  } catch (const Error& error) {
    return {.error = error, .table = {}, .message = {}};
  }
}

}  // namespace

int Call(const Common& common, const std::string& operation,
         const std::vector<std::string>& arguments, bool json) {
  NamedArguments named;
  for (const std::string& argument : arguments) {
    const std::size_t equals = argument.find('=');
    if (equals == std::string::npos) {
      std::cerr << "lotrix call: \"" << argument << "\" is not NAME=VALUE\n";
      return kUsage;
    }
    named.emplace_back(argument.substr(0, equals), argument.substr(equals + 1));
  }
  const Answer answer = CallOnce(common, operation, named);
  if (json) {
    WriteAnswer(std::cout, nullptr, answer);
  } else if (answer.error) {
    std::cerr << ErrorLine(*answer.error) << '\n';
  } else if (answer.table) {
    WriteTable(std::cout, *answer.table);
  } else if (answer.message) {
    std::cout << *answer.message << '\n';
  }
  return answer.error ? ExitCodeOf(*answer.error) : kAllWell;
}

}  // namespace lotrix::cli

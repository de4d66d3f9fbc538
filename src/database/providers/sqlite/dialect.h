// From the dialect of the component's statements to SQLite's.
#ifndef LOTRIX_SRC_DATABASE_PROVIDERS_SQLITE_DIALECT_H
#define LOTRIX_SRC_DATABASE_PROVIDERS_SQLITE_DIALECT_H

#include <string>
#include <string_view>
#include <vector>

#include "src/database/statement.h"

namespace lotrix::sqlite {

// A parameter of the prepared statement: its content as it stands in the
// template, a mark for each spliced value in it.
struct Parameter {
  Place place;
  std::string content;
};

struct Translation {
  std::string sql;
  std::vector<Parameter> parameters;  // in the order of the question marks
};

// Rewrites token by token and understands no more of the statement than it has
// to. Throws 80040E14 for what it cannot read and 80040E07 for a date between
// braces that is none; what it can read but SQLite cannot is left to SQLite.
[[nodiscard]] Translation Translate(std::string_view templateText);

}  // namespace lotrix::sqlite

#endif

// From the dialect of the component's statements to PostgreSQL's.
#ifndef LOTRIX_SRC_DATABASE_PROVIDERS_POSTGRESQL_DIALECT_H
#define LOTRIX_SRC_DATABASE_PROVIDERS_POSTGRESQL_DIALECT_H

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "src/database/providers/translator.h"

namespace lotrix::postgresql {

// The columns of a table, and whether each holds texts.
using Columns = std::map<std::string, bool>;
using Tables = std::map<std::string, Columns>;

struct Translation : lotrix::Translation {
  std::vector<std::string> tables;  // those that the statement names
  bool isQuery = false;
  // Whether columns stand where it matters if they hold texts, and whether one of
  // them is in none of the tables given.
  bool asksForColumns = false;
  bool missesColumn = false;
};

// A text that is compared, grouped or sorted is cast to bpchar, the type whose
// comparisons do not count trailing blanks; which columns hold texts has to be
// known for that. `locksRows` makes a query keep others from its rows until the
// transaction ends. Throws 80040E14 for what it cannot read and 80040E07 for a date
// between braces that is none, whatever tables are given; what it can read but
// PostgreSQL cannot is left to PostgreSQL.
[[nodiscard]] Translation Translate(std::string_view templateText, const Tables& tables,
                                    bool locksRows = false);

}  // namespace lotrix::postgresql

#endif

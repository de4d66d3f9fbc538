// From the dialect of the component's statements to PostgreSQL's.
#ifndef LOTRIX_SRC_DATABASE_PROVIDERS_POSTGRESQL_DIALECT_H
#define LOTRIX_SRC_DATABASE_PROVIDERS_POSTGRESQL_DIALECT_H

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "src/database/providers/translator.h"

namespace lotrix::postgresql {

enum class Kind { kText, kWhole, kOther };

struct TableColumn {
  std::string name;  // lower case
  Kind kind;
};
// The columns of each table, in their order.
using Tables = std::map<std::string, std::vector<TableColumn>>;

struct Translation : lotrix::Translation {
  std::vector<std::string> tables;  // those that the statement names
  bool isQuery = false;
  // Whether columns stand where it matters what they hold, and whether one of them is
  // in none of the tables given.
  bool asksForColumns = false;
  bool missesColumn = false;
  // What stands where only a column can, and is none of the tables given; empty when
  // there is no such name. The engine would take it for a row, or for a function.
  std::string noColumn;
};

// A text that is compared, grouped or sorted is cast to bpchar, the type whose
// comparisons do not count trailing blanks; what columns hold has to be known for
// that. `locksRows` makes a query keep others from its rows until the
// transaction ends. Throws 80040E14 for what it cannot read and 80040E07 for a date
// between braces that is none, whatever tables are given; what it can read but
// PostgreSQL cannot is left to PostgreSQL.
[[nodiscard]] Translation Translate(std::string_view templateText, const Tables& tables,
                                    bool locksRows = false);

}  // namespace lotrix::postgresql

#endif

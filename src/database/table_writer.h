// How a whole table is filled with the rows of another database: beside the
// statements, whose texts cannot hold an apostrophe.
#ifndef LOTRIX_SRC_DATABASE_TABLE_WRITER_H
#define LOTRIX_SRC_DATABASE_TABLE_WRITER_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "src/database/connection_string.h"
#include "src/database/session.h"

namespace lotrix {

struct TableColumns {
  std::string table;
  std::vector<std::string> columns;
};

// One transaction on a connection of its own. What is not committed when it is
// destroyed has never been.
class TableWriter {
 public:
  virtual ~TableWriter() = default;
  // One value for each column. Throws 80040E07 for a value that the engine cannot
  // hold as it is; an engine may say of any row only at the end that it refuses it.
  virtual void Add(const std::vector<ValueView>& row) = 0;
  // Throws 8004D016 when the server was lost before it had answered.
  virtual void Commit() = 0;
};

// Throws 3706 for an unknown provider, and the engine's errors.
[[nodiscard]] std::unique_ptr<TableWriter> OpenTableWriter(const ConnectionSettings& settings,
                                                           const TableColumns& table);

// A text that two connection strings share if they lead to one database. Throws as
// opening a connection does.
[[nodiscard]] std::string DatabaseIdentity(const ConnectionSettings& settings);

// "INSERT INTO" and its like want names as the engines quote them: "a", "b".
[[nodiscard]] std::string QuotedNames(const std::vector<std::string>& names);

// Throws 80040E07 with the column's name.
[[noreturn]] void RaiseCannotHold(std::string_view column, std::string_view what);

}  // namespace lotrix

#endif

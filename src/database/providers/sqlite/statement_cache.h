// Prepared statements, kept by the template they were made from.
#ifndef LOTRIX_SRC_DATABASE_PROVIDERS_SQLITE_STATEMENT_CACHE_H
#define LOTRIX_SRC_DATABASE_PROVIDERS_SQLITE_STATEMENT_CACHE_H

#include <sqlite3.h>

#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

#include "lotrix/recordset.h"
#include "src/database/providers/sqlite/dialect.h"

namespace lotrix::sqlite {

struct FinalizeStatement {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

// What is bound to a parameter: a text as `text` holds it, or another value.
struct BoundValue {
  std::variant<std::monostate, Null, std::int64_t, double> other;  // monostate for a text
  std::string text;
};

struct PreparedStatement {
  struct Column {
    std::string name;  // lower case
    DataType type;     // kEmpty when only each value tells it
  };

  Translation translation;
  std::unique_ptr<sqlite3_stmt, FinalizeStatement> handle;  // null until first used
  std::vector<Column> columns;
  // SQLite reads the texts where they are until the statement is reset; kept
  // afterwards for their room.
  std::vector<BoundValue> bound;
  int preparations = 0;  // how often SQLite had made it anew when columns was read
  bool inUse = false;
};

// Holds at most a fixed number of statements and lets the longest unused one go
// first. Not for more than one thread.
class StatementCache {
 public:
  // The statement of this template, marked as in use; its translation is there,
  // its handle perhaps not yet. A statement whose kept one is in use already
  // comes fresh and is not kept. Throws what Translate throws.
  std::shared_ptr<PreparedStatement> Take(std::string_view templateText);

 private:
  struct Entry {
    std::string templateText;
    std::shared_ptr<PreparedStatement> statement;
  };
  std::list<Entry> entries_;  // latest used first
  std::unordered_map<std::string_view, std::list<Entry>::iterator> byTemplate_;
};

}  // namespace lotrix::sqlite

#endif

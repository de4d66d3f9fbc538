// The floor of an operation: the statements it runs, recorded once and run again
// with prepared SQLite calls, and the lines it logs, written in one piece.
#ifndef LOTRIX_BENCH_RECORDING_H
#define LOTRIX_BENCH_RECORDING_H

#include <sqlite3.h>

#include <functional>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "lotrix/lotrix.h"

namespace lotrix::bench {

using BoundValue = std::variant<Null, std::int64_t, double, std::string>;

struct RecordedStatement {
  std::string sql;
  std::vector<BoundValue> values;
};

// What one call did.
struct Recording {
  std::vector<RecordedStatement> statements;
  std::vector<std::string> lines;
};

// Runs the call on a service object whose connection is watched from now on.
Recording Record(cLotrix& service, const std::string& logPath, const std::function<void()>& call);

// Runs recordings on a database of its own.
class Floor {
 public:
  // Opened as the component opens its database.
  Floor(const std::string& databasePath, const std::string& logPath);
  ~Floor();
  Floor(const Floor&) = delete;
  Floor& operator=(const Floor&) = delete;

  // Prepares the statements it has not seen yet; not part of what is measured.
  void Prepare(const Recording& recording);
  // Every row is stepped to; the cells of the last query are copied into texts
  // when the call returns a table.
  void Run(const Recording& recording, bool copyCells);

 private:
  sqlite3* database_ = nullptr;
  int log_ = -1;
  std::map<std::string, sqlite3_stmt*> prepared_;
  std::string lines_;
};

}  // namespace lotrix::bench

#endif

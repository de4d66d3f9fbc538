// The floor of an operation: the statements it runs, recorded once and run again
// with the engine's own prepared calls, and the lines it logs, written in one piece.
#ifndef LOTRIX_BENCH_RECORDING_H
#define LOTRIX_BENCH_RECORDING_H

#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "lotrix/lotrix.h"

namespace lotrix::bench {

using BoundValue = std::variant<Null, std::int64_t, double, std::string>;

struct RecordedStatement {
  std::string sql;
  std::vector<BoundValue> values;
  std::vector<unsigned> types;  // of the values, for an engine that is told them
  bool goesWithNext = false;    // in one piece
};

// What one call did.
struct Recording {
  std::vector<RecordedStatement> statements;
  std::vector<std::string> lines;
};

using Recorder = std::function<std::vector<RecordedStatement>(Connection& connection,
                                                              const std::function<void()>& call)>;

// Records the call on a service object whose connection is open.
Recording Record(const Recorder& recorder, cLotrix& service, const std::string& logPath,
                 const std::function<void()>& call);

// Runs recordings on a database of its own.
class Floor {
 public:
  virtual ~Floor() = default;
  // Prepares the statements it has not seen yet; not part of what is measured.
  virtual void Prepare(const Recording& recording) = 0;
  // Every row is fetched; the cells of the last query are copied into texts when
  // the call returns a table.
  virtual void Run(const Recording& recording, bool copyCells) = 0;
};

// The log of a floor.
class Log {
 public:
  explicit Log(const std::string& path);
  ~Log();
  Log(const Log&) = delete;
  Log& operator=(const Log&) = delete;
  void Write(const std::vector<std::string>& lines);

 private:
  int file_;
  std::string lines_;
};

[[noreturn]] void Fail(const std::string& what);

}  // namespace lotrix::bench

#endif

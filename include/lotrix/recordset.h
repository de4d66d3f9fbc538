// The rows that a statement returns.
#ifndef LOTRIX_RECORDSET_H
#define LOTRIX_RECORDSET_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "lotrix/text.h"
#include "lotrix/value.h"

namespace lotrix {

class Connection;
class Cursor;
class Recordset;
class Session;
class Statement;
struct RecordsetView;

// The data types of fields, by their ADO numbers.
enum class DataType : std::int32_t {
  kEmpty = 0,
  kInteger = 3,
  kDouble = 5,
  kBoolean = 11,
  kBigInt = 20,
  kDBDate = 133,
  kVarWChar = 202,
};

enum class ObjectState : std::int32_t { kClosed = 0, kOpen = 1 };
enum class CursorType : std::int32_t {
  kUnspecified = -1,
  kForwardOnly = 0,
  kKeyset = 1,
  kDynamic = 2,
  kStatic = 3
};
enum class LockType : std::int32_t {
  kUnspecified = -1,
  kReadOnly = 1,
  kPessimistic = 2,
  kOptimistic = 3,
  kBatchOptimistic = 4
};
enum class CommandType : std::int32_t { kUnspecified = -1, kText = 1 };

// One column of the record that its recordset stands on. A view: valid while
// the recordset is open; its value is the current record's at the time of the
// call. Reading a value at the end of data throws 3021.
class Field {
 public:
  [[nodiscard]] const std::string& Name() const;
  [[nodiscard]] DataType Type() const;
  [[nodiscard]] lotrix::Value Value() const;

 private:
  friend class Fields;
  Field(const Recordset& recordset, int index) : recordset_(&recordset), index_(index) {}
  const Recordset* recordset_;
  int index_;
};

class Fields {
 public:
  [[nodiscard]] std::int32_t Count() const;
  // Counted from 0, or by name without regard to case; throws 9 and 5 for a
  // field that is not there.
  [[nodiscard]] Field Item(std::int32_t index) const;
  [[nodiscard]] Field Item(std::string_view name) const;

 private:
  friend class Recordset;
  explicit Fields(const Recordset& recordset) : recordset_(&recordset) {}
  const Recordset* recordset_;
};

// Used by the thread that uses its connection. Rows are streamed from the engine,
// so a recordset that is neither read to its end nor closed keeps its view of the
// database. On SQLite, once others have written, writes on its connection are busy
// (80040E31) until it is closed; on PostgreSQL, another statement on its connection
// has the rest of its rows taken into memory first. Asking for the record count
// fetches the rest of them into memory, and no query is run twice. Closing the
// connection closes its recordsets. Every member but Open, Close and State throws
// 3704 while the recordset is closed.
class Recordset {
 public:
  Recordset();
  ~Recordset();
  Recordset(const Recordset&) = delete;
  Recordset& operator=(const Recordset&) = delete;

  // Runs the text on the connection and stands on the first record. A statement
  // that returns no rows is run and leaves the recordset closed. The engine's
  // cursors are forward and read-only whatever is asked for. Throws 3704 when
  // the connection is closed, 3705 when this recordset is open already, and the
  // engine's errors; the recordset is then closed.
  void Open(const Text& source, Connection& connection,
            CursorType cursor = CursorType::kUnspecified, LockType lock = LockType::kUnspecified,
            CommandType options = CommandType::kUnspecified);
  // The same for a statement that knows where its values were spliced in.
  void Open(const Statement& source, Connection& connection, CursorType cursor, LockType lock,
            CommandType options);

  // Throws 3704 when it is closed already.
  void Close();
  [[nodiscard]] ObjectState State() const noexcept;

  // All the records of the query, those already passed included. Throws 6 beyond
  // the 32-bit range. An engine's error closes the recordset.
  [[nodiscard]] std::int32_t RecordCount();
  [[nodiscard]] bool EndOfFile() const;
  // Throws 3021 at the end of data. An engine's error closes the recordset.
  void MoveNext();
  [[nodiscard]] lotrix::Fields Fields() const;

 private:
  friend class Connection;
  friend class Field;
  friend class lotrix::Fields;
  friend struct RecordsetView;
  void Execute(const Statement& statement, Connection& connection);
  [[nodiscard]] Session& RequireReady(Connection& connection, const Statement& statement) const;
  void Take(std::unique_ptr<Cursor> cursor, Connection& connection);
  std::int64_t CountRecords();
  void FetchAhead();
  void Drop() noexcept;
  // The same, and its connection's other ones too when its server has left it.
  void DropAll() noexcept;
  void RequireOpen() const;
  void RequireRecord() const;

  Connection* connection_ = nullptr;  // set while open
  std::unique_ptr<Cursor> cursor_;
  std::int32_t passed_ = 0;
  // The records fetched ahead when their count was asked for, one after another.
  std::vector<lotrix::Value> ahead_;
  std::size_t nextAhead_ = 0;
  bool fetched_ = false;
};

}  // namespace lotrix

#endif

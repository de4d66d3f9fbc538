// What every provider gives: a session with one database, and cursors on it.
#ifndef LOTRIX_SRC_DATABASE_SESSION_H
#define LOTRIX_SRC_DATABASE_SESSION_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "lotrix/connection.h"
#include "lotrix/recordset.h"
#include "src/database/connection_string.h"
#include "src/database/statement.h"

namespace lotrix {

// A value of the current record without a copy of its text; the text is valid
// until the cursor moves.
using ValueView = std::variant<Null, bool, std::int64_t, double, Date, std::string_view>;
// Of a value that lives as long; one that no column holds is Null.
[[nodiscard]] ValueView ToView(const Value& value);

// The rows of one statement in hand, standing on the first of them or behind the
// last. Destroying it gives the statement back.
class Cursor {
 public:
  virtual ~Cursor() = default;
  [[nodiscard]] virtual int ColumnCount() const = 0;
  // The engine's column name in lower case.
  [[nodiscard]] virtual const std::string& ColumnName(int column) const = 0;
  // As the column is declared; kEmpty for a column that is not one of a table.
  [[nodiscard]] virtual DataType DeclaredType(int column) const = 0;
  [[nodiscard]] virtual ValueView ColumnValue(int column) const = 0;
  // How many rows there are in all, where the cursor can tell that at less cost than
  // that of every value.
  virtual std::optional<std::int64_t> RecordCount() { return std::nullopt; }
  [[nodiscard]] virtual bool AtEnd() const = 0;
  // To the next row. At the end the engine's resources are free already.
  virtual void Next() = 0;
};

class Session {
 public:
  virtual ~Session() = default;
  // Runs the statement, whose shape has been checked; nothing comes back when it
  // returns no rows.
  virtual std::unique_ptr<Cursor> Run(const Statement& statement) = 0;
  // The same for a recordset; an engine with one kind of cursor need not look at
  // what is asked for.
  virtual std::unique_ptr<Cursor> OpenRecordset(const Statement& statement, CursorType /*cursor*/,
                                                LockType /*lock*/, CommandType /*options*/) {
    return Run(statement);
  }
  // False once what stands behind the session is closed or lost.
  [[nodiscard]] virtual bool IsOpen() const { return true; }
  // Whether a key may be read and stored in one transaction of the engine. Not where
  // the tables are another program's, which may have none to give.
  [[nodiscard]] virtual bool HasKeyTransactions() const { return true; }
  virtual void Begin() = 0;
  // A transaction for reading only, in which all queries see the database as it was at
  // one moment, and which keeps nobody from writing where the engine can do that.
  virtual void BeginSnapshot() { Begin(); }
  virtual void Commit() = 0;
  virtual void Rollback() = 0;
  [[nodiscard]] virtual bool InTransaction() const = 0;
  virtual void CreateSchema() = 0;
  // It is about to be closed: the rows of cursors that are still there need not be
  // read any more.
  virtual void GiveUpCursors() noexcept {}
  // What has to be closed by its name and does not go with the session.
  virtual void Close() {}
  // Throws 80040E09 where the engine's tables are another program's.
  virtual void CreateUniqueIndexes();
};

// What a connection is opened with.
struct Opening {
  const std::string& connectionString;  // as it was given
  const std::string& userId;            // given beside it, as is the password
  const std::string& password;
  const ConnectionSettings& settings;  // all of these together
  ConnectMode mode;
  // A connection object of another program, from the last opening or none yet.
  std::shared_ptr<void>& object;
};

// Opens a session with the provider that the settings name; throws 3706 when
// there is none.
std::unique_ptr<Session> OpenSession(const Opening& opening);

}  // namespace lotrix

#endif

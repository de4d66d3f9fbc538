// The connection to a database.
#ifndef LOTRIX_CONNECTION_H
#define LOTRIX_CONNECTION_H

#include <memory>
#include <string>
#include <vector>

#include "lotrix/recordset.h"
#include "lotrix/text.h"

namespace lotrix {

class Session;
class Statement;

enum class ConnectMode : std::int32_t { kUnknown = 0, kRead = 1, kWrite = 2, kReadWrite = 3 };

// ADO-shaped. Used by one thread at a time; two connections share nothing but
// the database. Which engine runs is told by the connection string alone:
// "Provider=SQLite;Data Source=FILE" or "Provider=PostgreSQL;Host=H;Database=D". A
// connection that its server has left is closed by the call that notices, and can be
// opened again.
class Connection {
 public:
  Connection();
  // Closes it.
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  [[nodiscard]] const std::string& ConnectionString() const noexcept;
  // Throws 3705 while the connection is open.
  void ConnectionString(const Text& connectionString);
  [[nodiscard]] ConnectMode Mode() const noexcept;
  void Mode(ConnectMode mode);

  // An argument that is not empty goes before the property or keyword it stands
  // for. Throws 3705 when open already, 3706 for no or an unknown provider, and
  // the engine's errors; the connection is then closed.
  void Open(const Text& connectionString = {}, const Text& userId = {}, const Text& password = {},
            int options = -1);
  // Rolls back an open transaction and closes every recordset; throws 3704 when
  // it is closed already.
  void Close();
  [[nodiscard]] ObjectState State() const noexcept;

  // The recordset is closed when the statement returns no rows. Throws 3704 when
  // closed, and the engine's errors; nothing is changed then, unless the error is
  // 8004D016: the server was lost before it had answered a write.
  std::unique_ptr<Recordset> Execute(const Text& commandText);
  std::unique_ptr<Recordset> Execute(const Statement& statement);

  // One transaction at a time: a second BeginTrans, and the others without one,
  // throw 80004005.
  void BeginTrans();
  void CommitTrans();
  void RollbackTrans();
  [[nodiscard]] bool InTransaction() const;

  // Makes the tables and indexes that are not there yet, in one transaction; throws
  // 80004005 inside one of the client's.
  void CreateSchema();

 private:
  friend class Recordset;
  friend struct ConnectionAccess;
  [[nodiscard]] Session& OpenSession() const;
  void RequireOpen() const;
  void RequireClosed() const;
  // Drops the session when `call` fails because its server has left it.
  template <class Call>
  void UnlessLost(const Call& call) {
    try {
      call();
    } catch (...) {
      DropIfLost();
      throw;
    }
  }
  void DropIfLost() noexcept;
  void DropSession() noexcept;

  std::string connectionString_;
  ConnectMode mode_ = ConnectMode::kUnknown;
  std::unique_ptr<Session> session_;
  // Another program's connection object, where one does the work; kept from one
  // opening to the next.
  std::shared_ptr<void> object_;
  std::vector<Recordset*> recordsets_;  // the open ones
};

}  // namespace lotrix

#endif

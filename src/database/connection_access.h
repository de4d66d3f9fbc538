// The way to a connection's session, for layers that stand between the two.
#ifndef LOTRIX_SRC_DATABASE_CONNECTION_ACCESS_H
#define LOTRIX_SRC_DATABASE_CONNECTION_ACCESS_H

#include <functional>
#include <memory>

#include "lotrix/connection.h"
#include "src/database/session.h"

namespace lotrix {

struct ConnectionAccess {
  // Puts what `wrap` makes of the open session in its place, until the connection
  // is closed. Throws 3704 when it is closed already.
  static void WrapSession(
      Connection& connection,
      const std::function<std::unique_ptr<Session>(std::unique_ptr<Session>)>& wrap);

  // The connection object of another program that the open connection works
  // through; null for the engines that are built in.
  static std::shared_ptr<void> ForeignObject(const Connection& connection);

  // Of an open connection; throws 3704 otherwise.
  static bool HasKeyTransactions(const Connection& connection);
};

}  // namespace lotrix

#endif

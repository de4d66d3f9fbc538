// From a connection string to a server that is ready for statements.
#ifndef LOTRIX_SRC_DATABASE_PROVIDERS_POSTGRESQL_OPENING_H
#define LOTRIX_SRC_DATABASE_PROVIDERS_POSTGRESQL_OPENING_H

#include <libpq-fe.h>

#include <memory>

#include "lotrix/connection.h"
#include "src/database/connection_string.h"

namespace lotrix::postgresql {

struct FinishConnection {
  void operator()(PGconn* connection) const { PQfinish(connection); }
};
using Link = std::unique_ptr<PGconn, FinishConnection>;

struct ClearResult {
  void operator()(PGresult* result) const { PQclear(result); }
};
using Result = std::unique_ptr<PGresult, ClearResult>;

// A connection on which no setting of the server, the role or the environment
// changes what statements mean or how values are written. Throws 80004005 for a
// keyword or value that it cannot take, 80040E4D when the login is refused and
// 8004D01C when the server is not reachable; no error shows a value.
[[nodiscard]] Link Connect(const ConnectionSettings& settings, ConnectMode mode);

}  // namespace lotrix::postgresql

#endif

// A session with a PostgreSQL server.
#ifndef LOTRIX_SRC_DATABASE_PROVIDERS_POSTGRESQL_SESSION_H
#define LOTRIX_SRC_DATABASE_PROVIDERS_POSTGRESQL_SESSION_H

#include <memory>
#include <string>

#include "src/database/session.h"

namespace lotrix::postgresql {

// Keywords: Host, Port, Database, User ID, Password, every keyword of libpq under
// its own name, and URI (postgresql://…), whose parts the others go before. Throws
// 80004005 for any other, 80040E4D when the login is refused and 8004D01C when the
// server is not reachable.
std::unique_ptr<Session> Open(const ConnectionSettings& settings, ConnectMode mode);

// "PostgreSQL" and the version of its client library.
std::string Engine();

}  // namespace lotrix::postgresql

#endif

// PostgreSQL's failures as the component's errors.
#ifndef LOTRIX_SRC_DATABASE_PROVIDERS_POSTGRESQL_ERRORS_H
#define LOTRIX_SRC_DATABASE_PROVIDERS_POSTGRESQL_ERRORS_H

#include <libpq-fe.h>

#include <string>
#include <string_view>

#include "lotrix/connection.h"

namespace lotrix::postgresql {

// The five characters of the result's SQLSTATE; empty when the server gave none.
[[nodiscard]] std::string_view SqlState(const PGresult* result);

// The SQLSTATE read as a number to base 36, 0 for none.
[[nodiscard]] int EngineCode(std::string_view sqlState);

// Throws the Error that stands for a result that is a failure, with the server's
// own message as description.
[[noreturn]] void RaisePostgresqlError(const PGresult* result);

// Throws the Error of a server that is gone: 8004D016 when a statement was on its
// way that may have had its effect, else 8004D01C. `message` is the server's or
// the library's last one.
[[noreturn]] void RaiseLost(bool inDoubt, std::string_view message, std::string_view sqlState);

// Throws the Error of a server that could not be reached, or did not let the client
// in. A value of the connection string is never shown.
[[noreturn]] void RaiseNotOpened(std::string_view sqlState, std::string_view message);

}  // namespace lotrix::postgresql

#endif

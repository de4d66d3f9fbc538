// Every provider of the system's own, through its ActiveX Data Objects. Windows
// only.
#ifndef LOTRIX_SRC_DATABASE_PROVIDERS_ADO_SESSION_H
#define LOTRIX_SRC_DATABASE_PROVIDERS_ADO_SESSION_H

#include <memory>

#include "src/database/session.h"

namespace lotrix::ado {

// An ADODB.Connection, created by its ProgID when `opening` has none from before,
// gets the connection string as it was given. The texts of statements reach it
// untouched. The calling thread has initialised COM. Throws 3706 where ADO is not
// installed, and ADO's own errors.
std::unique_ptr<Session> Open(const Opening& opening);

}  // namespace lotrix::ado

#endif

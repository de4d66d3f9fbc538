// A session with an embedded SQLite database.
#ifndef LOTRIX_SRC_DATABASE_PROVIDERS_SQLITE_SESSION_H
#define LOTRIX_SRC_DATABASE_PROVIDERS_SQLITE_SESSION_H

#include <memory>
#include <string>

#include "src/database/session.h"

namespace lotrix::sqlite {

// Keywords: Data Source (the file, made if its folder exists), Synchronous (off,
// normal, full or extra; full), Busy Timeout (milliseconds, 5000) and Cache Size
// (KiB, 65536). Throws 80004005 for any other, and for a file that cannot be
// opened.
std::unique_ptr<Session> Open(const ConnectionSettings& settings, ConnectMode mode);

// "SQLite" and the version of its library.
std::string Engine();

}  // namespace lotrix::sqlite

#endif

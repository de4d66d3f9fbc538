// SQLite's failures as the component's errors.
#ifndef LOTRIX_SRC_DATABASE_PROVIDERS_SQLITE_ERRORS_H
#define LOTRIX_SRC_DATABASE_PROVIDERS_SQLITE_ERRORS_H

#include <sqlite3.h>

namespace lotrix::sqlite {

// Throws the Error that stands for the result code of a call that failed on
// `database`, with SQLite's own message as description.
[[noreturn]] void RaiseSqliteError(sqlite3* database, int resultCode);

}  // namespace lotrix::sqlite

#endif

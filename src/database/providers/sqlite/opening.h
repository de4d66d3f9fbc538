// From a connection string to a SQLite database that is ready for statements.
#ifndef LOTRIX_SRC_DATABASE_PROVIDERS_SQLITE_OPENING_H
#define LOTRIX_SRC_DATABASE_PROVIDERS_SQLITE_OPENING_H

#include <sqlite3.h>

#include <memory>
#include <string>

#include "lotrix/connection.h"
#include "src/database/connection_string.h"

namespace lotrix::sqlite {

struct CloseDatabase {
  void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
};
using Database = std::unique_ptr<sqlite3, CloseDatabase>;

struct FinalizeStatement {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using NativeStatement = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

// Throws the Error that stands for a result code other than SQLITE_OK.
void Check(sqlite3* database, int resultCode);

void ExecuteNative(sqlite3* database, const std::string& sql);

// Throws 80004005 for a keyword or value that it cannot take, and for a file that
// cannot be opened.
[[nodiscard]] Database Connect(const ConnectionSettings& settings, ConnectMode mode);

// The file that the settings name; throws as Connect does.
[[nodiscard]] std::string FileOf(const ConnectionSettings& settings);

}  // namespace lotrix::sqlite

#endif

#include "src/database/providers/sqlite/errors.h"

#include <string_view>

#include "src/errors/raise_error.h"

namespace lotrix::sqlite {

namespace {

EngineError Number(int resultCode, std::string_view message) {
  switch (resultCode & 0xFF) {
    case SQLITE_ERROR:
      // SQLite has one code for whatever is wrong with a statement; the message
      // is all that tells a missing table from the rest.
      if (message.starts_with("no such table")) return EngineError::kNoSuchTable;
      if (message == "integer overflow") return EngineError::kValueOutOfRange;
      return EngineError::kStatementRefused;
    case SQLITE_MISMATCH:
      return EngineError::kValueCannotBeConverted;
    case SQLITE_CONSTRAINT:
      return EngineError::kConstraintViolated;
    case SQLITE_TOOBIG:
    case SQLITE_RANGE:
      return EngineError::kValueOutOfRange;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return EngineError::kBusy;
    case SQLITE_PERM:
    case SQLITE_READONLY:
    case SQLITE_AUTH:
      return EngineError::kNotPermitted;
    default:
      return EngineError::kFailed;
  }
}

}  // namespace

void RaiseSqliteError(sqlite3* database, int resultCode) {
  // The handle's message belongs to its latest failure, which is this one only
  // if the codes agree.
  const bool ofHandle =
      database != nullptr && (sqlite3_errcode(database) & 0xFF) == (resultCode & 0xFF);
  const std::string_view message = ofHandle ? sqlite3_errmsg(database) : sqlite3_errstr(resultCode);
  const int extended = ofHandle ? sqlite3_extended_errcode(database) : resultCode;
  RaiseEngineError(Number(resultCode, message), message, extended);
}

}  // namespace lotrix::sqlite

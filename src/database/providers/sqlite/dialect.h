// From the dialect of the component's statements to SQLite's.
#ifndef LOTRIX_SRC_DATABASE_PROVIDERS_SQLITE_DIALECT_H
#define LOTRIX_SRC_DATABASE_PROVIDERS_SQLITE_DIALECT_H

#include <string_view>

#include "src/database/providers/translator.h"

namespace lotrix::sqlite {

using Parameter = StatementParameter;
using lotrix::Translation;

// Throws 80040E14 for what it cannot read and 80040E07 for a date between braces
// that is none; what it can read but SQLite cannot is left to SQLite.
[[nodiscard]] Translation Translate(std::string_view templateText);

}  // namespace lotrix::sqlite

#endif

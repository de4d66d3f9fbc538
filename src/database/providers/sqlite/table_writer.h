// Filling a table of a SQLite database.
#ifndef LOTRIX_SRC_DATABASE_PROVIDERS_SQLITE_TABLE_WRITER_H
#define LOTRIX_SRC_DATABASE_PROVIDERS_SQLITE_TABLE_WRITER_H

#include <memory>
#include <string>

#include "src/database/table_writer.h"

namespace lotrix::sqlite {

[[nodiscard]] std::unique_ptr<TableWriter> OpenTableWriter(const ConnectionSettings& settings,
                                                           const TableColumns& table);

// The file, wherever it is looked at from.
[[nodiscard]] std::string Identity(const ConnectionSettings& settings);

}  // namespace lotrix::sqlite

#endif

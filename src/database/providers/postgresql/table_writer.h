// Filling a table of a PostgreSQL database.
#ifndef LOTRIX_SRC_DATABASE_PROVIDERS_POSTGRESQL_TABLE_WRITER_H
#define LOTRIX_SRC_DATABASE_PROVIDERS_POSTGRESQL_TABLE_WRITER_H

#include <memory>
#include <string>

#include "src/database/table_writer.h"

namespace lotrix::postgresql {

[[nodiscard]] std::unique_ptr<TableWriter> OpenTableWriter(const ConnectionSettings& settings,
                                                           const TableColumns& table);

// The server's run and the database on it, by whatever name it was reached.
[[nodiscard]] std::string Identity(const ConnectionSettings& settings);

}  // namespace lotrix::postgresql

#endif

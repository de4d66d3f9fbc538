// A result table for people.
#ifndef LOTRIX_CLI_TABLE_H
#define LOTRIX_CLI_TABLE_H

#include <iosfwd>

#include "lotrix/result_set.h"

namespace lotrix::cli {

// Columns as wide as their widest cell, a ruler under the headers, one line a
// row; a Null cell is empty.
void WriteTable(std::ostream& out, const cResultSet& table);

}  // namespace lotrix::cli

#endif

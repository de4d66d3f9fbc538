// Count queries, which most validations are made of.
#ifndef LOTRIX_SRC_VALIDATION_COUNT_H
#define LOTRIX_SRC_VALIDATION_COUNT_H

#include <cstdint>

#include "lotrix/connection.h"
#include "lotrix/constants.h"
#include "src/database/statement.h"

namespace lotrix {

// How many records a routine accepts from its count query before it reads the
// count.
enum class Records { kAtLeastOne, kExactlyOne };

// The count that the query yields; raises `error` for another number of records
// than expected. The recordset is closed when it returns.
[[nodiscard]] std::int32_t ReadCount(const Statement& query, Connection& connection,
                                     Records expected, const Message& error);

// The count alone, whatever the number of records.
[[nodiscard]] std::int32_t ReadCount(const Statement& query, Connection& connection);

// Whether the record exists: one is true, none false; raises `duplicate` for more
// and `error` for a negative count.
[[nodiscard]] bool OneExists(std::int32_t count, const Message& duplicate, const Message& error);

}  // namespace lotrix

#endif

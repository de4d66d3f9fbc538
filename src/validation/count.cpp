#include "src/validation/count.h"

#include "src/errors/raise_error.h"
#include "src/platform/values.h"
#include "src/utility/keys_and_lookups.h"

namespace lotrix {

std::int32_t ReadCount(const Statement& query, Connection& connection, Records expected,
                       const Message& error) {
  Recordset counted;
  OpenQuery(counted, query, connection);
  const std::int32_t records = counted.RecordCount();
  const bool accepted = expected == Records::kExactlyOne ? records == 1 : records >= 1;
  if (!accepted) RaiseError(error);
  return ToLong(counted.Fields().Item(0).Value());
}

std::int32_t ReadCount(const Statement& query, Connection& connection) {
  Recordset counted;
  OpenQuery(counted, query, connection);
  return ToLong(counted.Fields().Item(0).Value());
}

bool OneExists(std::int32_t count, const Message& duplicate, const Message& error) {
  if (count >= 2) RaiseError(duplicate);
  if (count < 0) RaiseError(error);
  return count == 1;
}

}  // namespace lotrix

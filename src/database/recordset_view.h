// A recordset's current record without copies, for the floors above.
#ifndef LOTRIX_SRC_DATABASE_RECORDSET_VIEW_H
#define LOTRIX_SRC_DATABASE_RECORDSET_VIEW_H

#include <cstdint>

#include "lotrix/recordset.h"
#include "src/database/session.h"

namespace lotrix {

struct RecordsetView {
  // The type as declared, or else that of the current value; throws 3704 when
  // the recordset is closed.
  static DataType Type(const Recordset& recordset, std::int32_t column);
  // Valid until the recordset moves; throws 3021 at the end of data.
  static ValueView Value(const Recordset& recordset, std::int32_t column);
  // The same for callers that know the recordset to stand on a record.
  static ValueView CurrentValue(const Recordset& recordset, std::int32_t column);
};

}  // namespace lotrix

#endif

// From a recordset to the table that clients see.
#ifndef LOTRIX_SRC_RESULTSET_RECORDSET_CONVERSION_H
#define LOTRIX_SRC_RESULTSET_RECORDSET_CONVERSION_H

#include "lotrix/recordset.h"
#include "lotrix/result_set.h"

namespace lotrix {

// All records from the current one on; the recordset stays open at its end.
// Dates become mm/dd/yyyy, a Null stays Null, a text of blanks becomes one blank,
// everything else its text without the blanks around it. Throws what the
// recordset throws, and 6 beyond the 32-bit range of rows.
[[nodiscard]] cResultSet RecordsetToResultSet(Recordset& recordset);

// Closes the recordset if it is open.
void CloseRecordset(Recordset& recordset);

}  // namespace lotrix

#endif

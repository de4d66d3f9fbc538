// The result table as an automation object.
#ifndef LOTRIX_COM_RESULT_SET_H
#define LOTRIX_COM_RESULT_SET_H

#include "lotrix/result_set.h"
#include "lotrix_h.h"
#include "src/platform/automation.h"

namespace lotrix::com {

[[nodiscard]] automation::Held<_cResultSet> NewResultSetObject(cResultSet table = {});

}  // namespace lotrix::com

#endif

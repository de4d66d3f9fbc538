// The service object as an automation object.
#ifndef LOTRIX_COM_SERVICE_H
#define LOTRIX_COM_SERVICE_H

#include "lotrix_h.h"
#include "src/platform/automation.h"

namespace lotrix::com {

[[nodiscard]] automation::Held<_cLotrix> NewServiceObject();

}  // namespace lotrix::com

#endif

// Connections as automation objects: ADO's own where ADO does the work, and for the
// engines inside the server objects of the same shape.
#ifndef LOTRIX_COM_CONNECTION_H
#define LOTRIX_COM_CONNECTION_H

#include <ole2.h>

#include <memory>

#include "lotrix/connection.h"
#include "src/platform/automation.h"

namespace lotrix::com {

// `handedOut` is the object handed out last, or null: it serves again for the same
// connection.
[[nodiscard]] automation::Held<IDispatch> ConnectionObjectOf(
    const std::shared_ptr<Connection>& connection, automation::Held<IDispatch>& handedOut);

}  // namespace lotrix::com

#endif

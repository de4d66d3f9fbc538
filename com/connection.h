// Connections as automation objects: ADO's own where ADO does the work, and for the
// engines inside the server objects of the same shape.
#ifndef LOTRIX_COM_CONNECTION_H
#define LOTRIX_COM_CONNECTION_H

#include <ole2.h>

#include <memory>

#include "lotrix/connection.h"
#include "src/platform/automation.h"

namespace lotrix::com {

// What a service object has handed out.
class ConnectionObjects {
 public:
  // The same object for the same connection.
  [[nodiscard]] automation::Held<IDispatch> ObjectOf(const std::shared_ptr<Connection>& connection);

 private:
  automation::Held<IDispatch> own_;
};

}  // namespace lotrix::com

#endif

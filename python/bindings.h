// The classes that the module is made of.
#ifndef LOTRIX_PYTHON_BINDINGS_H
#define LOTRIX_PYTHON_BINDINGS_H

#include <pybind11/pybind11.h>

#include <functional>
#include <memory>

#include "lotrix/connection.h"
#include "python/turn.h"

namespace lotrix::python {

namespace py = pybind11;

struct ConnectionObject {
  std::shared_ptr<Gate> gate;
  std::shared_ptr<Connection> connection;
};

// What Python iterates with: a null object after the last.
struct Iterator {
  std::function<py::object()> next;
};

void DefineTables(py::module_& module);
void DefineDatabase(py::module_& module);
void DefineComponent(py::module_& module);

}  // namespace lotrix::python

#endif

// How members take their arguments in Python: by the rules and with the errors of
// every other call by name.
#ifndef LOTRIX_PYTHON_ARGUMENTS_H
#define LOTRIX_PYTHON_ARGUMENTS_H

#include <pybind11/pybind11.h>

#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "lotrix/members.h"

namespace lotrix::python {

namespace py = pybind11;

using Parameters = std::vector<Parameter>;

constexpr Parameter Required(std::string_view name, ParameterType type) {
  return {name, type, false, std::nullopt};
}
constexpr Parameter Optional(std::string_view name, ParameterType type,
                             std::optional<std::string_view> byDefault = std::nullopt) {
  return {name, type, true, byDefault};
}

// One object for each parameter, a null one where it is omitted.
using Arguments = std::vector<py::object>;

// Names count without regard to case. None is an omitted argument, but for a Variant
// that is required, to which it is a value. Throws, in this order, 450 for too many
// arguments, 448 for an unknown name, 5 for an argument given twice, and 449 for a
// required one omitted. No error shows a value: it may be a password.
[[nodiscard]] Arguments InOrder(std::span<const Parameter> parameters, const py::tuple& inOrder,
                                const py::dict& byName);

// "name(self, aPIN, aVaccine='')", the line that inspect.signature reads, and what
// stands below it.
[[nodiscard]] std::string Docstring(const std::string& name, bool isMethod,
                                    std::span<const Parameter> parameters,
                                    const std::string& about);

// The object that a method is called on, which stands before its arguments. Throws
// Python's TypeError when it is none of that class.
template <class Object>
std::shared_ptr<Object> Self(const py::args& arguments) {
  if (arguments.empty() || !py::isinstance<Object>(arguments[0])) {
    throw py::type_error("a method is called on an object of its class");
  }
  return py::cast<std::shared_ptr<Object>>(arguments[0]);
}

// Body: py::object(std::shared_ptr<Object>, Arguments). Every argument is taken as it
// comes, for the binding library would show the values of a call that does not fit.
template <class Object, class Body>
void DefineMethod(py::class_<Object, std::shared_ptr<Object>>& type, const std::string& name,
                  Parameters parameters, const std::string& about, Body body) {
  const std::string doc = Docstring(name, true, parameters, about);
  type.def(
      name.c_str(),
      [parameters = std::move(parameters), body](const py::args& arguments,
                                                 const py::kwargs& byName) -> py::object {
        const std::shared_ptr<Object> self = Self<Object>(arguments);
        return body(self,
                    InOrder(parameters, arguments[py::slice(1, arguments.size(), 1)], byName));
      },
      doc.c_str());
}

// Make: std::shared_ptr<Object>(Arguments).
template <class Object, class Make>
void DefineConstructor(py::class_<Object, std::shared_ptr<Object>>& type, Parameters parameters,
                       Make make) {
  const std::string doc = Docstring("__init__", true, parameters, "");
  type.def(py::init([parameters = std::move(parameters), make](const py::args& inOrder,
                                                               const py::kwargs& byName) {
             return make(InOrder(parameters, inOrder, byName));
           }),
           doc.c_str());
}

}  // namespace lotrix::python

#endif

// The native part of the Python package.
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <exception>

#include "lotrix/constants.h"
#include "lotrix/error.h"
#include "lotrix/version.h"
#include "python/bindings.h"
#include "python/values.h"

namespace lotrix::python {

namespace {

const char* ClassOf(const Error& error) {
  switch (static_cast<RuntimeError>(error.number())) {
    case RuntimeError::kUnknownArgumentName:
    case RuntimeError::kArgumentNotOptional:
    case RuntimeError::kWrongNumberOfArguments:
      return "ArgumentError";
    default:
      return "Error";
  }
}

void Raise(const Error& error) {
  const py::object type = py::module_::import("lotrix._errors").attr(ClassOf(error));
  const py::object raised =
      type(error.number(), ToStr(error.description()), ToStr(error.source()), error.engineCode());
  PyErr_SetObject(type.ptr(), raised.ptr());
}

void Translate(std::exception_ptr thrown) {
  try {
    std::rethrow_exception(std::move(thrown));
  } catch (const Error& error) {
    Raise(error);
  }
}

}  // namespace

}  // namespace lotrix::python

PYBIND11_MODULE(_native, module) {
  using namespace lotrix::python;  // NOLINT(google-build-using-namespace): one function
  // Signatures are written for inspect, and once.
  py::options options;
  options.disable_function_signatures();
  // What the classes say they are: members of the package.
  module.attr("__module__") = "lotrix";
  module.attr("__version__") = std::string(lotrix::Version());
  py::register_exception_translator(&Translate);
  module.def("Engines", &lotrix::Engines,
             "Engines()\n--\n\nEach engine that is built in, and its version.");
  DefineTables(module);
  DefineDatabase(module);
  DefineComponent(module);
}

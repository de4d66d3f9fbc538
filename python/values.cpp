#include "python/values.h"

#include <cmath>
#include <memory>
#include <string>
#include <variant>

#include "lotrix/collection.h"
#include "src/errors/raise_error.h"
#include "src/platform/values.h"

namespace lotrix::python {

namespace {

py::object DateTimeClass(const char* name) { return py::module_::import("datetime").attr(name); }

// A datetime is a date to Python, but its time would be lost.
bool IsDate(py::handle object) {
  return py::isinstance(object, DateTimeClass("date")) &&
         !py::isinstance(object, DateTimeClass("datetime"));
}

std::string TextOf(py::handle str) {
  Py_ssize_t size = 0;
  const char* const utf8 = PyUnicode_AsUTF8AndSize(str.ptr(), &size);
  if (utf8 == nullptr) {
    PyErr_Clear();
    RaiseRuntimeError(RuntimeError::kInvalidArgument);
  }
  return {utf8, static_cast<std::size_t>(size)};
}

std::int64_t WholeNumberOf(py::handle object) {
  const auto number = py::reinterpret_steal<py::object>(PyNumber_Index(object.ptr()));
  if (!number) {
    PyErr_Clear();
    RaiseRuntimeError(RuntimeError::kTypeMismatch);
  }
  int overflow = 0;
  const std::int64_t whole = PyLong_AsLongLongAndOverflow(number.ptr(), &overflow);
  if (overflow != 0) RaiseRuntimeError(RuntimeError::kOverflow);
  return whole;
}

double NumberOf(py::handle object) {
  const double number = PyFloat_AsDouble(object.ptr());
  if (std::isnan(number)) RaiseRuntimeError(RuntimeError::kTypeMismatch);
  if (std::isinf(number)) RaiseRuntimeError(RuntimeError::kOverflow);
  return number;
}

Date DateOf(py::handle object) {
  constexpr int kFirstYear = 100;
  const int year = object.attr("year").cast<int>();
  if (year < kFirstYear) RaiseRuntimeError(RuntimeError::kOverflow);
  return {static_cast<std::int16_t>(year), object.attr("month").cast<std::uint8_t>(),
          object.attr("day").cast<std::uint8_t>()};
}

}  // namespace

Value FromPython(py::handle object) {
  PyObject* const given = object.ptr();
  if (object.is_none()) return Null{};
  if (PyUnicode_Check(given)) return TextOf(object);
  if (PyBool_Check(given)) return given == Py_True;
  if (PyFloat_Check(given)) return NumberOf(object);
  if (PyIndex_Check(given)) return WholeNumberOf(object);
  if (IsDate(object)) return DateOf(object);
  if (py::isinstance<Collection>(object)) return py::cast<std::shared_ptr<Collection>>(object);
  RaiseRuntimeError(RuntimeError::kTypeMismatch);
}

Text TextFrom(py::handle argument, const char* byDefault) {
  return argument ? Text(ToText(FromPython(argument))) : Text(byDefault);
}

std::int32_t LongFrom(py::handle argument, std::int32_t byDefault) {
  return argument ? ToLong(FromPython(argument)) : byDefault;
}

py::str ToStr(std::string_view text) {
  auto decoded = py::reinterpret_steal<py::str>(
      PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "replace"));
  if (!decoded) throw py::error_already_set();
  return decoded;
}

py::object ToPython(const Value& value) {
  struct {
    py::object operator()(Empty) const { return py::none(); }
    py::object operator()(Null) const { return py::none(); }
    py::object operator()(bool logical) const { return py::bool_(logical); }
    py::object operator()(std::int64_t whole) const { return py::int_(whole); }
    py::object operator()(double number) const { return py::float_(number); }
    py::object operator()(Date date) const {
      return DateTimeClass("date")(date.year, date.month, date.day);
    }
    py::object operator()(const std::string& text) const { return ToStr(text); }
    py::object operator()(const std::shared_ptr<Collection>& collection) const {
      return py::cast(collection);
    }
  } const toPython;
  return std::visit(toPython, value);
}

}  // namespace lotrix::python

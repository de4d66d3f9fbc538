// Values between Python and the component.
#ifndef LOTRIX_PYTHON_VALUES_H
#define LOTRIX_PYTHON_VALUES_H

#include <pybind11/pybind11.h>

#include <cstdint>
#include <string_view>

#include "lotrix/text.h"
#include "lotrix/value.h"

namespace lotrix::python {

namespace py = pybind11;

// From None (Null), bool, int and whatever stands for one, float, str, date and
// Collection. Throws 13 for anything else, a datetime and a float that is no number
// among it; 5 for a str that is not valid Unicode; 6 for an int beyond 64 bits, an
// infinity and a year before 100.
[[nodiscard]] Value FromPython(py::handle object);

// An argument as the type that a member takes, converted as automation does; the
// default stands for a null object.
[[nodiscard]] Text TextFrom(py::handle argument, const char* byDefault = "");
[[nodiscard]] std::int32_t LongFrom(py::handle argument, std::int32_t byDefault = 0);

// Null and Empty are None.
[[nodiscard]] py::object ToPython(const Value& value);
// Bytes that are not valid UTF-8 become U+FFFD: an engine may hold anything.
[[nodiscard]] py::str ToStr(std::string_view text);

}  // namespace lotrix::python

#endif

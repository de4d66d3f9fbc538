#include "python/arguments.h"

#include <algorithm>
#include <cstddef>

#include "python/values.h"
#include "src/errors/raise_error.h"
#include "src/platform/text.h"

namespace lotrix::python {

namespace {

// The number of parameters when there is none of that name.
std::size_t IndexOf(std::span<const Parameter> parameters, py::handle name) {
  const std::string wanted = ToStr(TextFrom(name).str());
  const auto found = std::find_if(
      parameters.begin(), parameters.end(),
      [&](const Parameter& parameter) { return EqualWithoutCase(parameter.name, wanted); });
  return static_cast<std::size_t>(found - parameters.begin());
}

bool TakesNone(const Parameter& parameter) {
  return parameter.type == ParameterType::kVariant && !parameter.optional;
}

std::string DefaultText(const Parameter& parameter) {
  if (parameter.type == ParameterType::kVariant) return "None";
  const std::string text(parameter.defaultText.value_or(""));
  return parameter.type == ParameterType::kString ? "'" + text + "'" : text;
}

}  // namespace

Arguments InOrder(std::span<const Parameter> parameters, const py::tuple& inOrder,
                  const py::dict& byName) {
  if (inOrder.size() > parameters.size()) RaiseRuntimeError(RuntimeError::kWrongNumberOfArguments);
  Arguments arguments(parameters.size());
  for (std::size_t i = 0; i < inOrder.size(); ++i) arguments[i] = inOrder[i];
  for (const auto& [name, argument] : byName) {
    const std::size_t index = IndexOf(parameters, name);
    if (index == parameters.size()) RaiseRuntimeError(RuntimeError::kUnknownArgumentName);
    if (arguments[index]) RaiseRuntimeError(RuntimeError::kInvalidArgument);
    arguments[index] = py::reinterpret_borrow<py::object>(argument);
  }
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    if (arguments[i] && arguments[i].is_none() && !TakesNone(parameters[i])) arguments[i] = {};
    if (!arguments[i] && !parameters[i].optional) {
      RaiseRuntimeError(RuntimeError::kArgumentNotOptional);
    }
  }
  return arguments;
}

std::string Docstring(const std::string& name, bool isMethod, std::span<const Parameter> parameters,
                      const std::string& about) {
  std::string list = isMethod ? "self" : "";
  for (const Parameter& parameter : parameters) {
    if (!list.empty()) list += ", ";
    list += parameter.name;
    if (parameter.optional) list += "=" + DefaultText(parameter);
  }
  // What the interpreter tells a signature by; not shown to readers.
  constexpr const char* kEndOfSignature = ")\n--\n\n";
  return name + "(" + list + kEndOfSignature + about;
}

}  // namespace lotrix::python

#include <utility>

#include "lotrix/text.h"
#include "lotrix/value.h"
#include "src/errors/raise_error.h"
#include "src/platform/text.h"

namespace lotrix {

Text::Text(const char* utf8) : Text(std::string(utf8 == nullptr ? "" : utf8)) {}

Text::Text(std::string_view utf8) : Text(std::string(utf8)) {}

Text::Text(std::string utf8) : utf8_(std::move(utf8)) {
  if (!IsValidUtf8(utf8_)) RaiseRuntimeError(RuntimeError::kInvalidArgument);
}

Value Variant::Checked(Value value) {
  const auto* const text = std::get_if<std::string>(&value);
  if (text != nullptr && !IsValidUtf8(*text)) RaiseRuntimeError(RuntimeError::kInvalidArgument);
  return value;
}

}  // namespace lotrix

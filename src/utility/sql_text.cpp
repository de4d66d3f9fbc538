#include "src/utility/sql_text.h"

#include <array>
#include <limits>

#include "src/errors/raise_error.h"
#include "src/platform/text.h"

namespace lotrix {

namespace {

void RequireIntegerLength(std::string_view value) {
  // A text never has more UTF-16 units than bytes.
  constexpr std::size_t kMost = std::numeric_limits<std::int16_t>::max();
  if (value.size() > kMost && Utf16Length(value) > kMost) {
    RaiseRuntimeError(RuntimeError::kOverflow);
  }
}

std::string Without(std::string_view value, std::string_view characters) {
  std::array<bool, 256> removed{};
  for (const char c : characters) removed[static_cast<unsigned char>(c)] = true;
  std::string kept;
  kept.reserve(value.size());
  for (const char c : value) {
    if (!removed[static_cast<unsigned char>(c)]) kept += c;
  }
  return kept;
}

}  // namespace

bool IsBlank(std::string_view value) {
  const std::string_view trimmed = TrimBlanks(value);
  RequireIntegerLength(trimmed);
  return trimmed.empty();
}

bool IsAlphaNumeric(std::string_view value) {
  const std::size_t length = Utf16Length(TrimBlanks(value));
  // A character outside ASCII ends the walk, so bytes are characters here.
  for (std::size_t i = 0; i < length; ++i) {
    const char c = value[i];
    const bool taken = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    if (!taken) return false;
  }
  return length > 0;
}

void BeginCondition(Statement& filter) {
  if (filter.IsBlank()) {
    filter = Statement() << " WHERE ";
  } else {
    filter << " AND ";
  }
}

Statement AddWhereCondition(const std::string& aValue, Statement& aWhere, SqlText aColumn) {
  if (IsBlank(aValue)) return aWhere;
  BeginCondition(aWhere);
  Statement filter = aWhere;
  filter << "ltrim(rtrim(" << aColumn << ")) = '" << aValue << "'";
  return filter;
}

std::string RemoveSpaces(std::string_view value) { return Without(value, " "); }
std::string RemoveSlashes(std::string_view value) { return Without(value, "/"); }
std::string RemoveDashes(std::string_view value) { return Without(value, "-"); }
std::string RemoveParentheses(std::string_view value) { return Without(value, "()"); }

std::string StripPhoneNumber(std::string_view value) {
  return RemoveParentheses(RemoveDashes(RemoveSlashes(RemoveSpaces(value))));
}

std::string RemoveSpecialCharacters(std::string_view value) {
  RequireIntegerLength(value);
  return Without(value, "!@#$%^&*()+|\\/{}[]:<>?\"'");
}

}  // namespace lotrix

#include "src/database/providers/values.h"

#include <charconv>
#include <system_error>

#include "src/errors/raise_error.h"
#include "src/platform/dates.h"
#include "src/platform/text.h"

namespace lotrix {

namespace {

void TakeDate(std::string_view text, ParameterValue& value) {
  const auto date = DateLiteralValue(text);
  if (std::holds_alternative<Empty>(date)) {
    RaiseEngineError(EngineError::kValueCannotBeConverted, "A date literal holds no date.");
  }
  if (const Date* const day = std::get_if<Date>(&date)) {
    value.text = IsoDateText(*day);
  } else {
    value.other = Null{};
  }
}

}  // namespace

void TakeValues(const std::vector<StatementParameter>& parameters, const Statement& source,
                std::vector<ParameterValue>& values) {
  values.resize(parameters.size());
  auto splice = source.splices().begin();
  auto target = values.begin();
  for (const StatementParameter& parameter : parameters) {
    target->other = std::monostate();
    std::string& content = target->text;
    content.clear();
    for (const char c : parameter.content) {
      if (c == Statement::kMark) {
        content += (splice++)->value;
      } else {
        content += c;
      }
    }
    if (parameter.place == Place::kDate) TakeDate(content, *target);
    if (parameter.place == Place::kNumber) {
      std::visit([&](auto number) { target->other = number; }, ReadNumber(content));
    }
    ++target;
  }
}

std::variant<std::int64_t, double> ReadNumber(std::string_view text) {
  text = TrimBlanks(text);
  if (text.starts_with('+')) text.remove_prefix(1);
  const char* const end = text.data() + text.size();
  std::int64_t whole = 0;
  if (const auto read = std::from_chars(text.data(), end, whole);
      read.ec == std::errc() && read.ptr == end) {
    return whole;
  }
  double number = 0;
  if (std::from_chars(text.data(), end, number).ec != std::errc()) {
    RaiseEngineError(EngineError::kValueOutOfRange, "A number is out of range.");
  }
  return number;
}

Date ReadStoredDate(std::string_view text) {
  const auto date = IsoTextToDate(text);
  if (!date) {
    RaiseEngineError(EngineError::kValueCannotBeConverted,
                     "A date column holds something that is no date.");
  }
  return *date;
}

}  // namespace lotrix

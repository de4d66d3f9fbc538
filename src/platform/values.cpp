#include "src/platform/values.h"

#include <chrono>
#include <cmath>
#include <limits>
#include <memory>
#include <variant>

#include "src/errors/raise_error.h"
#include "src/platform/dates.h"
#include "src/platform/numbers.h"
#include "src/platform/text.h"

namespace lotrix {
namespace {

void RefuseUnconvertible(const Value& value) {
  if (std::holds_alternative<Null>(value)) RaiseRuntimeError(RuntimeError::kInvalidUseOfNull);
  if (std::holds_alternative<std::shared_ptr<Collection>>(value)) {
    RaiseRuntimeError(RuntimeError::kTypeMismatch);
  }
}

constexpr std::chrono::sys_days CalendarDay(Date date) {
  return std::chrono::year(date.year) / std::chrono::month(date.month) / std::chrono::day(date.day);
}

constexpr std::int32_t DayNumber(Date date) {
  return static_cast<std::int32_t>((CalendarDay(date) - CalendarDay(kZeroDate)).count());
}

Date DateOfDayNumber(double number) {
  constexpr double kFirst = DayNumber({100, 1, 1});
  constexpr double kLast = DayNumber({9999, 12, 31});
  // The fraction is a time of day, on either side of zero. NaN fails both.
  const double day = std::trunc(number);
  if (!(day >= kFirst && day <= kLast)) RaiseRuntimeError(RuntimeError::kOverflow);
  const std::chrono::year_month_day date(CalendarDay(kZeroDate) +
                                         std::chrono::days(static_cast<int>(day)));
  return {static_cast<std::int16_t>(static_cast<int>(date.year())),
          static_cast<std::uint8_t>(static_cast<unsigned>(date.month())),
          static_cast<std::uint8_t>(static_cast<unsigned>(date.day()))};
}

}  // namespace

std::string ToText(const Value& value) {
  RefuseUnconvertible(value);
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  if (const auto* number = std::get_if<std::int64_t>(&value)) return NumberText(*number);
  if (const auto* number = std::get_if<double>(&value)) return NumberText(*number);
  if (const auto* logical = std::get_if<bool>(&value)) return *logical ? "True" : "False";
  if (const auto* date = std::get_if<Date>(&value)) return DateText(*date);
  return {};
}

std::int32_t ToLong(const Value& value) {
  RefuseUnconvertible(value);
  if (const auto* text = std::get_if<std::string>(&value)) return TextToLong(*text);
  if (const auto* number = std::get_if<std::int64_t>(&value)) {
    if (*number < std::numeric_limits<std::int32_t>::min() ||
        *number > std::numeric_limits<std::int32_t>::max()) {
      RaiseRuntimeError(RuntimeError::kOverflow);
    }
    return static_cast<std::int32_t>(*number);
  }
  if (const auto* number = std::get_if<double>(&value)) return DoubleToLong(*number);
  if (const auto* logical = std::get_if<bool>(&value)) return *logical ? -1 : 0;
  if (const auto* date = std::get_if<Date>(&value)) return DayNumber(*date);
  return 0;
}

double ToDouble(const Value& value) {
  RefuseUnconvertible(value);
  if (const auto* text = std::get_if<std::string>(&value)) return TextToDouble(*text);
  if (const auto* number = std::get_if<std::int64_t>(&value)) return static_cast<double>(*number);
  if (const auto* number = std::get_if<double>(&value)) return *number;
  if (const auto* logical = std::get_if<bool>(&value)) return *logical ? -1 : 0;
  if (const auto* date = std::get_if<Date>(&value)) return DayNumber(*date);
  return 0;
}

bool ToLogical(const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) {
    const std::string_view read = UpToNul(*text);
    if (EqualWithoutCase(read, "True")) return true;
    if (EqualWithoutCase(read, "False")) return false;
  }
  return ToDouble(value) != 0;
}

Date ToDate(const Value& value) {
  if (const auto* date = std::get_if<Date>(&value)) return *date;
  if (const auto* text = std::get_if<std::string>(&value)) {
    const auto date = TextToDate(*text);
    if (!date) RaiseRuntimeError(RuntimeError::kTypeMismatch);
    return *date;
  }
  return DateOfDayNumber(ToDouble(value));
}

}  // namespace lotrix

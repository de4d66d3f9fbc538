// Texts as numbers, dates and upper case.
#include <cmath>
#include <limits>
#include <string>
#include <string_view>

#include "fuzz/require.h"
#include "lotrix/text.h"
#include "src/platform/dates.h"
#include "src/platform/numbers.h"
#include "src/platform/text.h"
#include "src/platform/values.h"

namespace lotrix::fuzz {

namespace {

constexpr std::int32_t kOverflow = Numbered(RuntimeError::kOverflow);
constexpr std::int32_t kMismatch = Numbered(RuntimeError::kTypeMismatch);

void CheckNumberText(double number) {
  const std::string text = NumberText(number);
  // Rounding to fifteen digits may lift the largest ones out of the range.
  if (std::abs(number) > 1e308) return;
  Require(IsNumeric(text), "a number as text is a number");
  const double back = TextToDouble(text);
  Require(std::abs(back - number) <= std::abs(number) * 1e-14, "fifteen digits are kept");
  if (std::abs(number) > 1e-300) Require(NumberText(back) == text, "fifteen digits are all there");
}

void CheckWhole(std::string_view text, std::int32_t number, double exact) {
  const bool isBitPattern = text.find('&') != std::string_view::npos;
  if (number == 0) {
    const std::int32_t whole = TextToLong(text);
    Require(std::abs(exact - whole) <= 0.5, "the nearest whole number");
    Require(TextToLong(NumberText(std::int64_t{whole})) == whole, "a whole number comes back");
  } else {
    Require(exact >= 2147483647.5 || exact <= -2147483648.5, "an overflow is out of the range");
  }
  if (isBitPattern) return;
  std::int16_t small = 0;
  const bool fits = NumberOf([&] { small = TextToInteger(text); }) == 0;
  const bool shouldFit = number == 0 && TextToLong(text) >= -32768 && TextToLong(text) <= 32767;
  Require(fits == shouldFit, "what fits into 16 bits");
  if (fits) Require(small == TextToLong(text), "16 bits hold the same number");
}

void CheckNumbers(std::string_view text) {
  double exact = 0;
  const std::int32_t asDouble = NumberOf([&] { exact = TextToDouble(text); });
  const std::int32_t asLong = NumberOf([&] { static_cast<void>(TextToLong(text)); });
  const std::int32_t asInteger = NumberOf([&] { static_cast<void>(TextToInteger(text)); });
  const std::int32_t asLogical =
      NumberOf([&] { static_cast<void>(ToLogical(Value(std::string(text)))); });
  for (const std::int32_t number : {asDouble, asLong, asInteger, asLogical}) {
    Require(IsOneOf(number, {0, kOverflow, kMismatch}), "no number, or too large a one");
  }
  Require(IsNumeric(text) == (asDouble == 0), "the numeric test is the conversion to double");
  Require((asDouble == kMismatch) == (asLong == kMismatch), "no number is none for any type");
  Require((asDouble == kMismatch) == (asInteger == kMismatch), "no number is none for 16 bits");
  if (asDouble == kOverflow) Require(asLong == kOverflow, "too large for a double is for a long");
  if (asDouble != 0) return;
  Require(std::isfinite(exact), "a number is finite");
  CheckNumberText(exact);
  CheckWhole(text, asLong, exact);
}

void CheckDate(Date date) {
  Require(date.year >= 100 && date.year <= 9999, "a year has a range");
  Require(IsoTextToDate(IsoDateText(date)) == date, "an ISO date comes back");
  Require(TextToDate(ResultDateText(date)) == date, "a date of a table comes back");
  const auto literal = DateLiteralValue(DateText(date));
  Require(std::holds_alternative<Date>(literal) && std::get<Date>(literal) == date,
          "a date of a statement comes back");
}

void CheckDates(std::string_view text) {
  const auto date = TextToDate(text);
  const auto literal = DateLiteralValue(text);
  if (date) {
    CheckDate(*date);
    Require(std::holds_alternative<Date>(literal) && std::get<Date>(literal) == *date,
            "a date is one between braces too");
    Require(!IsNumeric(text), "a date is no number");
  } else if (const auto* const other = std::get_if<Date>(&literal)) {
    Require(*other == kZeroDate, "between braces only a time is a date besides");
  }
  if (const auto iso = IsoTextToDate(text)) {
    Require(IsoDateText(*iso) == text, "an ISO date has one form");
  }
}

void CheckText(const std::string& text) {
  const std::int32_t number = NumberOf([&] { static_cast<void>(Text(text)); });
  Require(number == (IsValidUtf8(text) ? 0 : Numbered(RuntimeError::kInvalidArgument)),
          "a text is valid UTF-8");
  if (number != 0) return;
  const std::u16string units = ToUtf16(text);
  Require(Utf16Length(text) == units.size(), "a text's length is that of its UTF-16");
  const std::string upper = UpperCase(text);
  Require(IsValidUtf8(upper), "upper case is valid UTF-8");
  Require(Utf16Length(upper) == units.size(), "upper case is as long");
  Require(UpperCase(upper) == upper, "upper case stays");
  Require(EqualWithoutCase(text, upper), "upper case differs by case alone");
  Require(TextToDate(upper) == TextToDate(text), "a date's case does not count");
  const std::string_view trimmed = TrimBlanks(text);
  Require(!trimmed.starts_with(' ') && !trimmed.ends_with(' '), "no blanks at the ends");
  Require(FormatPhone(units).size() == (units.empty() ? 0 : 14), "a phone number has its length");
}

void Check(const std::string& text) {
  CheckNumbers(text);
  CheckDates(text);
  CheckText(text);
  const std::string_view read = UpToNul(text);
  if (read.size() == text.size()) return;
  Require(IsNumeric(read) == IsNumeric(text), "a number is read up to U+0000");
  Require(TextToDate(read) == TextToDate(text), "a date is read up to U+0000");
}

}  // namespace

}  // namespace lotrix::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  lotrix::fuzz::Check(std::string(data, data + size));
  return 0;
}

#include "src/platform/dates.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>

#include "src/platform/numbers.h"
#include "src/platform/text.h"

namespace lotrix {
namespace {

constexpr std::array<std::string_view, 12> kMonths = {
    "January", "February", "March",     "April",   "May",      "June",
    "July",    "August",   "September", "October", "November", "December"};

// Whether there was any.
bool SkipBlanks(std::string_view& text) {
  const std::size_t before = text.size();
  while (const std::size_t length = WhiteSpaceLength(text)) text.remove_prefix(length);
  return text.size() < before;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

struct Number {
  int value;
  std::size_t digits;
};

// The digits in front, one to `most` of them and no more.
std::optional<Number> TakeNumber(std::string_view& text, std::size_t most) {
  Number number{0, 0};
  while (!text.empty() && IsDigit(text.front())) {
    if (++number.digits > most) return std::nullopt;
    number.value = number.value * 10 + (text.front() - '0');
    text.remove_prefix(1);
  }
  if (number.digits == 0) return std::nullopt;
  return number;
}

// 1 to 12, by the whole name or its first three letters.
std::optional<int> TakeMonthName(std::string_view& text) {
  const auto end = std::find_if_not(text.begin(), text.end(), IsLetter);
  const std::string_view word = text.substr(0, static_cast<std::size_t>(end - text.begin()));
  text.remove_prefix(word.size());
  for (std::size_t i = 0; i < kMonths.size(); ++i) {
    if (EqualWithoutCase(word, kMonths[i]) || EqualWithoutCase(word, kMonths[i].substr(0, 3))) {
      return static_cast<int>(i) + 1;
    }
  }
  return std::nullopt;
}

// What stands between two items of a date: its comma, dash or slash, a blank when
// there are only blanks, U+0000 when there is nothing.
char TakeGap(std::string_view& text) {
  constexpr std::string_view kPunctuation = ",-/";
  char gap = SkipBlanks(text) ? ' ' : '\0';
  if (!text.empty() && kPunctuation.find(text.front()) != std::string_view::npos) {
    gap = text.front();
    text.remove_prefix(1);
    SkipBlanks(text);
  }
  return gap;
}

std::optional<Date> DayThatExists(int year, int month, int day) {
  const std::chrono::year_month_day date(std::chrono::year(year),
                                         std::chrono::month(static_cast<unsigned>(month)),
                                         std::chrono::day(static_cast<unsigned>(day)));
  if (year < 100 || year > 9999 || !date.ok()) return std::nullopt;
  return Date{static_cast<std::int16_t>(year), static_cast<std::uint8_t>(month),
              static_cast<std::uint8_t>(day)};
}

std::optional<Date> DayOfShortYear(Number year, int month, Number day) {
  constexpr int kFirstOfLastCentury = 30;
  int whole = year.value;
  if (whole < kFirstOfLastCentury) {
    whole += 2000;
  } else if (whole < 100) {
    whole += 1900;
  }
  return DayThatExists(whole, month, day.value);
}

constexpr std::size_t kDayDigits = 2;
constexpr std::size_t kYearDigits = 4;

// month day year, the month by name.
std::optional<Date> TakeMonthNameDate(std::string_view& text) {
  const auto month = TakeMonthName(text);
  if (!month || TakeGap(text) == '\0') return std::nullopt;
  const auto day = TakeNumber(text, kDayDigits);
  if (!day || TakeGap(text) == '\0') return std::nullopt;
  const auto year = TakeNumber(text, kYearDigits);
  if (!year) return std::nullopt;
  return DayOfShortYear(*year, *month, *day);
}

std::optional<Date> TakeDate(std::string_view& text) {
  if (!text.empty() && IsLetter(text.front())) return TakeMonthNameDate(text);
  const auto first = TakeNumber(text, kYearDigits);
  if (!first) return std::nullopt;
  const bool yearFirst = first->digits > kDayDigits;
  const std::size_t lastDigits = yearFirst ? kDayDigits : kYearDigits;

  const char gap = TakeGap(text);
  if (gap != '\0' && !text.empty() && IsLetter(text.front())) {
    const auto month = TakeMonthName(text);
    if (!month || TakeGap(text) == '\0') return std::nullopt;
    const auto last = TakeNumber(text, lastDigits);
    if (!last) return std::nullopt;
    return yearFirst ? DayOfShortYear(*first, *month, *last)
                     : DayOfShortYear(*last, *month, *first);
  }

  const auto separates = [](char c) { return c == '/' || c == '-'; };
  if (!separates(gap)) return std::nullopt;
  const auto second = TakeNumber(text, kDayDigits);
  if (!second || !separates(TakeGap(text))) return std::nullopt;
  const auto last = TakeNumber(text, lastDigits);
  if (!last) return std::nullopt;
  return yearFirst ? DayOfShortYear(*first, second->value, *last)
                   : DayOfShortYear(*last, first->value, *second);
}

bool TakeWord(std::string_view& text, std::string_view word) {
  if (!EqualWithoutCase(text.substr(0, word.size()), word)) return false;
  text.remove_prefix(word.size());
  return true;
}

// A time of day and nothing behind it but blanks.
bool IsTime(std::string_view text) {
  const auto hour = TakeNumber(text, 2);
  if (!hour) return false;
  bool minutes = false;
  for (int parts = 0; parts < 2 && !text.empty() && text.front() == ':'; ++parts) {
    text.remove_prefix(1);
    const auto sixtieths = TakeNumber(text, 2);
    if (!sixtieths || sixtieths->value > 59) return false;
    minutes = true;
  }
  SkipBlanks(text);
  const bool halfDay = TakeWord(text, "AM") || TakeWord(text, "PM");
  SkipBlanks(text);
  if (!text.empty()) return false;
  return halfDay ? hour->value >= 1 && hour->value <= 12 : minutes && hour->value <= 23;
}

void PutTwoDigits(char* at, int number) {
  at[0] = static_cast<char>('0' + number / 10);
  at[1] = static_cast<char>('0' + number % 10);
}

// Negative when these are no two digits.
int TwoDigits(const char* at) {
  if (!IsDigit(at[0]) || !IsDigit(at[1])) return -1;
  return (at[0] - '0') * 10 + (at[1] - '0');
}

}  // namespace

std::optional<Date> TextToDate(std::string_view text) {
  text = UpToNul(text);
  SkipBlanks(text);
  const auto date = TakeDate(text);
  if (!date) return std::nullopt;
  const bool blanks = SkipBlanks(text);
  if (text.empty() || (blanks && IsTime(text))) return date;
  return std::nullopt;
}

std::variant<Empty, Null, Date> DateLiteralValue(std::string_view text) {
  text = UpToNul(text);
  SkipBlanks(text);
  if (text.empty()) return Null{};
  if (const auto date = TextToDate(text)) return *date;
  if (IsTime(text)) return kZeroDate;
  return Empty{};
}

std::string DateText(Date date) {
  if (date == kZeroDate) return "12:00:00 AM";
  return NumberText(std::int64_t{date.month}) + '/' + NumberText(std::int64_t{date.day}) + '/' +
         NumberText(std::int64_t{date.year});
}

std::string ResultDateText(Date date) {
  std::string text = "mm/dd/yyyy";
  PutTwoDigits(&text[0], date.month);
  PutTwoDigits(&text[3], date.day);
  PutTwoDigits(&text[6], date.year / 100);
  PutTwoDigits(&text[8], date.year % 100);
  return text;
}

std::string IsoDateText(Date date) {
  std::string text = "yyyy-mm-dd";
  PutTwoDigits(&text[0], date.year / 100);
  PutTwoDigits(&text[2], date.year % 100);
  PutTwoDigits(&text[5], date.month);
  PutTwoDigits(&text[8], date.day);
  return text;
}

std::optional<Date> IsoTextToDate(std::string_view text) {
  constexpr std::string_view kPattern = "yyyy-mm-dd";
  if (text.size() != kPattern.size() || text[4] != '-' || text[7] != '-') return std::nullopt;
  const int century = TwoDigits(&text[0]);
  const int yearOfCentury = TwoDigits(&text[2]);
  const int month = TwoDigits(&text[5]);
  const int day = TwoDigits(&text[8]);
  if (century < 0 || yearOfCentury < 0 || month < 0 || day < 0) return std::nullopt;
  return DayThatExists(century * 100 + yearOfCentury, month, day);
}

}  // namespace lotrix

#include "tests/model/model.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <map>
#include <regex>
#include <string_view>
#include <tuple>
#include <utility>

namespace lotrix::model {

namespace {

// --- Refusals -----------------------------------------------------------------

struct Refused {
  std::int32_t number;
  std::optional<std::string> message;
};

constexpr std::int32_t Signed(std::uint32_t number) { return static_cast<std::int32_t>(number); }
constexpr std::int32_t kSyntax = Signed(0x80040E14U);
constexpr std::int32_t kNotConvertible = Signed(0x80040E07U);
constexpr std::int32_t kInvalidArgument = 5;
constexpr std::int32_t kOverflow = 6;
constexpr std::int32_t kTypeMismatch = 13;
constexpr std::int32_t kInvalidNull = 94;
constexpr std::int32_t kArgumentNotOptional = 449;

// A rule's own code and text.
[[noreturn]] void Refuse(std::uint32_t code, std::string message) {
  throw Refused{Signed(0x80040000U + code), std::move(message)};
}
// An engine's or the run time's number, whose text is nobody's rule.
[[noreturn]] void RefuseNumber(std::int32_t number) { throw Refused{number, std::nullopt}; }

// --- Texts --------------------------------------------------------------------

std::optional<std::u32string> CodePoints(std::string_view text) {
  std::u32string points;
  for (std::size_t i = 0; i < text.size();) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char lead = byte(i);
    std::size_t length = 1;
    char32_t point = lead;
    if (lead >= 0xF0 && lead < 0xF5) {
      length = 4;
      point = lead & 0x07U;
    } else if (lead >= 0xE0 && lead < 0xF0) {
      length = 3;
      point = lead & 0x0FU;
    } else if (lead >= 0xC2 && lead < 0xE0) {
      length = 2;
      point = lead & 0x1FU;
    } else if (lead >= 0x80) {
      return std::nullopt;
    }
    if (i + length > text.size()) return std::nullopt;
    for (std::size_t k = 1; k < length; ++k) {
      if ((byte(i + k) & 0xC0U) != 0x80U) return std::nullopt;
      point = (point << 6U) | (byte(i + k) & 0x3FU);
    }
    points.push_back(point);
    i += length;
  }
  return points;
}

// Of a text that has been found valid.
std::u32string Points(std::string_view text) { return *CodePoints(text); }

std::string Utf8(std::u32string_view points) {
  std::string text;
  for (const char32_t point : points) {
    if (point < 0x80) {
      text.push_back(static_cast<char>(point));
    } else if (point < 0x800) {
      text.push_back(static_cast<char>(0xC0U | (point >> 6U)));
      text.push_back(static_cast<char>(0x80U | (point & 0x3FU)));
    } else if (point < 0x10000) {
      text.push_back(static_cast<char>(0xE0U | (point >> 12U)));
      text.push_back(static_cast<char>(0x80U | ((point >> 6U) & 0x3FU)));
      text.push_back(static_cast<char>(0x80U | (point & 0x3FU)));
    } else {
      text.push_back(static_cast<char>(0xF0U | (point >> 18U)));
      text.push_back(static_cast<char>(0x80U | ((point >> 12U) & 0x3FU)));
      text.push_back(static_cast<char>(0x80U | ((point >> 6U) & 0x3FU)));
      text.push_back(static_cast<char>(0x80U | (point & 0x3FU)));
    }
  }
  return text;
}

// The scripts that the calls draw from: Latin-1, Greek, Cyrillic.
char32_t UpperPoint(char32_t point) {
  if (point >= U'a' && point <= U'z') return point - 32;
  if (point == 0xFF) return 0x178;
  if (point >= 0xE0 && point <= 0xFE && point != 0xF7) return point - 32;
  if (point == 0x3C2) return 0x3A3;
  if (point >= 0x3B1 && point <= 0x3C9) return point - 32;
  if (point >= 0x430 && point <= 0x44F) return point - 32;
  if (point >= 0x450 && point <= 0x45F) return point - 80;
  return point;
}

std::string Upper(const std::string& text) {
  std::u32string points = Points(text);
  std::transform(points.begin(), points.end(), points.begin(), UpperPoint);
  return Utf8(points);
}

std::string AsciiUpper(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
  }
  return text;
}

// In UTF-16 units.
std::size_t Length(const std::string& text) {
  std::size_t length = 0;
  for (const char32_t point : Points(text)) length += point > 0xFFFF ? 2 : 1;
  return length;
}

std::string TrimRight(std::string text) {
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}
std::string Trim(std::string text) {
  text = TrimRight(std::move(text));
  text.erase(0, text.find_first_not_of(' '));
  return text;
}

constexpr std::size_t kLongestCounted = 32767;

bool IsBlank(const std::string& text) {
  const std::size_t length = Length(Trim(text));
  if (length > kLongestCounted) RefuseNumber(kOverflow);
  return length == 0;
}

bool IsAlphaNumeric(const std::string& text) {
  const std::size_t length = Length(Trim(text));
  std::size_t position = 0;
  for (const char32_t point : Points(text)) {
    if (position >= length) break;
    const bool good = (point >= U'0' && point <= U'9') || (point >= U'A' && point <= U'Z') ||
                      (point >= U'a' && point <= U'z');
    if (!good) return false;
    ++position;
  }
  return length > 0;
}

std::string Without(std::string text, std::string_view characters) {
  text.erase(std::remove_if(text.begin(), text.end(),
                            [&](char c) { return characters.find(c) != std::string_view::npos; }),
             text.end());
  return text;
}
std::string WithoutDashes(std::string text) { return Without(std::move(text), "-"); }

std::string RemoveSpecialCharacters(const std::string& text) {
  if (Length(text) > kLongestCounted) RefuseNumber(kOverflow);
  return Without(text, "!@#$%^&*()+|\\/{}[]:<>?\"'");
}

bool IsPhone(const std::string& text) {
  if (Length(text) != 14) return false;
  std::u32string kept = Points(Without(Trim(text), " /-()"));
  if (kept.empty()) return false;
  if (kept.size() > 10) kept.erase(0, kept.size() - 10);
  kept.resize(10, U' ');
  const std::u32string formatted =
      U"(" + kept.substr(0, 3) + U") " + kept.substr(3, 3) + U"-" + kept.substr(6);
  return text == Utf8(formatted);
}

// --- Numbers ------------------------------------------------------------------

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

struct ReadNumber {
  bool isBits = false;
  std::uint64_t bits = 0;  // of &H and &O
  bool negative = false;
  std::string digits{};  // the value is 0.digits times 10 to the exponent
  long exponent = 0;
};

std::optional<ReadNumber> ReadBits(std::string_view text) {
  const std::string body = AsciiUpper(Trim(std::string(text)));
  if (body.size() < 3 || body[0] != '&' || (body[1] != 'H' && body[1] != 'O')) return std::nullopt;
  const std::uint64_t base = body[1] == 'H' ? 16 : 8;
  ReadNumber number{.isBits = true};
  for (const char c : body.substr(2)) {
    const std::size_t digit = std::string_view("0123456789ABCDEF").find(c);
    if (digit >= base) return std::nullopt;
    number.bits = number.bits * base + digit;
    if (number.bits > 0xFFFFFFFFU) return std::nullopt;
  }
  return number;
}

std::optional<ReadNumber> Read(std::string_view text) {
  text = text.substr(0, text.find('\0'));
  if (auto bits = ReadBits(text)) return bits;
  ReadNumber number;
  bool sign = false;
  bool dollar = false;
  bool open = false;
  bool close = false;
  std::size_t at = 0;
  const auto around = [&](char parenthesis, bool& seen) {
    for (; at < text.size(); ++at) {
      const char c = text[at];
      if (c == ' ' || c == '\t') continue;
      bool* once = nullptr;
      if (c == '+' || c == '-') once = &sign;
      if (c == '$') once = &dollar;
      if (c == parenthesis) once = &seen;
      if (once == nullptr) return true;
      if (*once) return false;
      *once = true;
      if (c == '-' || c == '(') number.negative = true;
    }
    return true;
  };
  if (!around('(', open)) return std::nullopt;
  bool started = false;
  bool pointed = false;
  bool counted = false;
  for (; at < text.size(); ++at) {
    const char c = text[at];
    if (IsDigit(c)) {
      counted = true;
      number.digits.push_back(c);
      if (!pointed) ++number.exponent;
    } else if (c == '.' && !pointed) {
      pointed = true;
    } else if (c != ',' || !started) {
      break;
    }
    started = true;
  }
  if (!counted) return std::nullopt;
  if (at < text.size() && std::string_view("eEdD").find(text[at]) != std::string_view::npos) {
    ++at;
    bool down = false;
    if (at < text.size() && (text[at] == '+' || text[at] == '-')) down = text[at++] == '-';
    if (at == text.size() || !IsDigit(text[at])) return std::nullopt;
    long exponent = 0;
    for (; at < text.size() && IsDigit(text[at]); ++at) {
      exponent = std::min(exponent * 10 + (text[at] - '0'), 100000L);
    }
    number.exponent += down ? -exponent : exponent;
  }
  if (!around(')', close) || at != text.size() || open != close) return std::nullopt;
  return number;
}

std::optional<double> ToDouble(const std::string& text) {
  const auto number = Read(text);
  if (!number) return std::nullopt;
  if (number->isBits) return static_cast<std::int32_t>(number->bits);
  const std::string plain = "0." + number->digits + "e" + std::to_string(number->exponent);
  const double value = std::strtod(plain.c_str(), nullptr);
  if (std::isinf(value)) return std::nullopt;
  return number->negative ? -value : value;
}

bool IsNumeric(const std::string& text) { return ToDouble(text).has_value(); }

std::int64_t InRange(std::int64_t value, int bits) {
  const std::int64_t limit = std::int64_t{1} << (bits - 1);
  if (value < -limit || value >= limit) RefuseNumber(kOverflow);
  return value;
}

std::int64_t ToWhole(const std::string& text, int bits = 32) {
  const auto number = Read(text);
  if (!number) RefuseNumber(kTypeMismatch);
  if (number->isBits) {
    if (bits == 32) return static_cast<std::int32_t>(number->bits);
    if (number->bits > 0xFFFFU) RefuseNumber(kOverflow);
    return static_cast<std::int16_t>(number->bits);
  }
  std::string digits = number->digits;
  long exponent = number->exponent;
  const std::size_t zeros = std::min(digits.find_first_not_of('0'), digits.size());
  digits.erase(0, zeros);
  exponent -= static_cast<long>(zeros);
  if (digits.empty() || exponent < 0) return 0;
  if (exponent > 15) RefuseNumber(kOverflow);
  const auto whole = static_cast<std::size_t>(exponent);
  if (digits.size() < whole) digits.append(whole - digits.size(), '0');
  std::int64_t value = 0;
  for (const char c : digits.substr(0, whole)) value = value * 10 + (c - '0');
  std::string fraction = digits.substr(whole);
  fraction.erase(fraction.find_last_not_of('0') + 1);
  const bool up = fraction > "5" || (fraction == "5" && value % 2 == 1);
  value += up ? 1 : 0;
  return InRange(number->negative ? -value : value, bits);
}

std::int64_t HalfToEven(double value) {
  const double rounded = std::nearbyint(value);
  if (!(std::abs(rounded) < 1e15)) RefuseNumber(kOverflow);
  return static_cast<std::int64_t>(rounded);
}

std::int64_t Sum(std::int64_t a, std::int64_t b) { return InRange(a + b, 32); }

// --- Days ---------------------------------------------------------------------

// Of a few digits; none are 0.
int SmallNumber(const std::string& digits) {
  int number = 0;
  for (const char c : digits) number = number * 10 + (c - '0');
  return number;
}

bool Matches(const std::string& text, const std::regex& pattern, std::smatch& parts) {
  // No day is longer, and the expressions are not made for long texts.
  return text.size() <= 64 && std::regex_match(text, parts, pattern);
}

bool IsTime(const std::string& text) {
  static const std::regex clock(R"(\s*(\d{1,2})(?::(\d{1,2}))?(?::(\d{1,2}))?(\s+[AaPp][Mm])?\s*)");
  std::smatch parts;
  if (!Matches(text, clock, parts)) return false;
  const bool half = parts[4].matched;
  if (!parts[2].matched && !half) return false;
  const int hour = SmallNumber(parts[1].str());
  const bool hourIsGood = half ? hour >= 1 && hour <= 12 : hour <= 23;
  return hourIsGood && SmallNumber(parts[2].str()) < 60 && SmallNumber(parts[3].str()) < 60;
}

int MonthNamed(const std::string& name) {
  static constexpr std::array<std::string_view, 12> kNames = {
      "JANUARY", "FEBRUARY", "MARCH",     "APRIL",   "MAY",      "JUNE",
      "JULY",    "AUGUST",   "SEPTEMBER", "OCTOBER", "NOVEMBER", "DECEMBER"};
  const std::string wanted = AsciiUpper(name);
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    if (wanted == kNames[i] || wanted == kNames[i].substr(0, 3)) return static_cast<int>(i) + 1;
  }
  return 0;
}

Day DayOf(int year, int month, int day) {
  if (year < 30) year += 2000;
  if (year < 100) year += 1900;
  if (year > 9999 || month < 1 || month > 12 || day < 1) return std::nullopt;
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  static constexpr std::array<int, 12> kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (day > kDays[static_cast<std::size_t>(month - 1)] + (month == 2 && leap ? 1 : 0)) {
    return std::nullopt;
  }
  return Date{static_cast<std::int16_t>(year), static_cast<std::uint8_t>(month),
              static_cast<std::uint8_t>(day)};
}

// What the date test accepts, and its value.
Day ReadDay(const std::string& given) {
  const std::string text = given.substr(0, given.find('\0'));
  static const std::regex numbers(
      R"(\s*(\d{1,4})\s*([/-])\s*(\d{1,2})\s*\2\s*(\d{1,4})(\s+\S.*)?)");
  static const std::regex monthFirst(
      R"(\s*([A-Za-z]+)(?:\s*[,/-]\s*|\s+)(\d{1,2})(?:\s*[,/-]\s*|\s+)(\d{1,4})(\s+\S.*)?)");
  static const std::regex dayFirst(
      R"(\s*(\d{1,2})(?:\s*[,/-]\s*|\s+)([A-Za-z]+)(?:\s*[,/-]\s*|\s+)(\d{1,4})(\s+\S.*)?)");
  static const std::regex yearFirst(
      R"(\s*(\d{3,4})(?:\s*[,/-]\s*|\s+)([A-Za-z]+)(?:\s*[,/-]\s*|\s+)(\d{1,2})(\s+\S.*)?)");
  std::string body = text;
  while (!body.empty() && (body.back() == ' ' || body.back() == '\t')) body.pop_back();
  std::smatch parts;
  const auto number = [&](std::size_t part) { return SmallNumber(parts[part].str()); };
  Day day;
  std::size_t time = 4;
  if (Matches(body, numbers, parts)) {
    time = 5;
    if (parts[1].length() > 2) {
      if (parts[4].length() <= 2) day = DayOf(number(1), number(3), number(4));
    } else {
      day = DayOf(number(4), number(1), number(3));
    }
  } else if (Matches(body, monthFirst, parts)) {
    day = DayOf(number(3), MonthNamed(parts[1]), number(2));
  } else if (Matches(body, dayFirst, parts)) {
    day = DayOf(number(3), MonthNamed(parts[2]), number(1));
  } else if (Matches(body, yearFirst, parts)) {
    day = DayOf(number(1), MonthNamed(parts[2]), number(3));
  }
  if (day && parts[time].matched && !IsTime(parts[time].str())) return std::nullopt;
  return day;
}

bool IsDay(const std::string& text) { return ReadDay(text).has_value(); }

// What stands between the braces of a date literal; nothing is Null.
Day Literal(const std::string& text) {
  if (text.find_first_not_of(" \t") == std::string::npos) return std::nullopt;
  if (const Day day = ReadDay(text)) return day;
  if (IsTime(text)) return kZeroDate;
  RefuseNumber(kNotConvertible);
}

std::string DayText(const Date& day) {
  return std::to_string(day.month) + "/" + std::to_string(day.day) + "/" + std::to_string(day.year);
}

std::string Digits(int number, int width) {
  std::string digits = std::to_string(number);
  return std::string(static_cast<std::size_t>(width) -
                         std::min<std::size_t>(static_cast<std::size_t>(width), digits.size()),
                     '0') +
         digits;
}

// --- What a database does ------------------------------------------------------

// A statement is looked at before it runs: first that no value leaves its place,
// then that every date is one.
void Send(std::initializer_list<std::string> quoted, std::initializer_list<std::string> dates = {},
          std::initializer_list<std::string> bare = {}) {
  static const std::regex number(R"( *[+-]?[0-9]+(\.[0-9]+)?([eE][+-]?[0-9]+)? *)");
  constexpr std::string_view kBreaksOut("'\0", 2);
  constexpr std::string_view kBreaksDate("{}\0", 3);
  for (const std::string& value : quoted) {
    if (value.find_first_of(kBreaksOut) != std::string::npos) RefuseNumber(kSyntax);
  }
  for (const std::string& value : dates) {
    if (value.find_first_of(kBreaksDate) != std::string::npos) RefuseNumber(kSyntax);
  }
  for (const std::string& value : bare) {
    std::smatch parts;
    if (!Matches(value, number, parts)) RefuseNumber(kSyntax);
  }
  for (const std::string& value : dates) static_cast<void>(Literal(value));
}

// Trailing blanks do not count in a comparison; a Null equals nothing.
bool Same(const TextCell& cell, const std::string& value) {
  return cell && TrimRight(*cell) == TrimRight(value);
}
bool SameTrimmed(const TextCell& cell, const std::string& value) {
  return cell && Trim(*cell) == TrimRight(value);
}
bool SameLot(const TextCell& cell, const std::string& lotWithoutDashes) {
  return cell && SameTrimmed(WithoutDashes(*cell), lotWithoutDashes);
}
bool SameDay(const Day& cell, const Day& value) { return cell && value && *cell == *value; }
bool Between(const Number& cell, double low, double high) {
  return cell && *cell >= low && *cell <= high;
}

template <class Rows, class Condition>
std::int64_t Count(const Rows& rows, Condition condition) {
  return std::count_if(rows.begin(), rows.end(), condition);
}

// --- Validations ----------------------------------------------------------------

bool IsProvider(const Provider& row, const std::string& pin) {
  return Between(row.sector, 10, 29) && SameTrimmed(row.pin, pin);
}

void ValidateActiveStatus(const Tables& tables, const std::string& pin) {
  Send({pin});
  const auto is = [&](const Provider& row) { return IsProvider(row, pin); };
  if (Count(tables.provider, is) != 1)
    Refuse(20005, "Error while verifying provider PIN in LOTRIX");
  const auto row = std::find_if(tables.provider.begin(), tables.provider.end(), is);
  if (Upper(row->active.value_or("N")) != "Y") {
    Refuse(20083,
           "The provider enter is currently inactivate in LOTRIX. Cannot proceed with the current "
           "operation");
  }
}

void ValidatePinForm(const std::string& pin, std::uint32_t notAlphanumeric) {
  if (Length(pin) > 6) {
    Refuse(20078, "The number of characters in the pin entered exceeds the maximum allowed");
  }
  if (!IsAlphaNumeric(pin)) {
    Refuse(notAlphanumeric,
           "The provider pin number entered is not alphanumeric. Only alphanumeric pins are "
           "allowed.");
  }
}

bool ValidateProviderPin(const Tables& tables, const std::string& given, bool checkActive) {
  const std::string pin = Upper(given);
  ValidatePinForm(pin, 20079);
  Send({pin});
  const auto found =
      Count(tables.provider, [&](const Provider& row) { return IsProvider(row, pin); });
  if (found > 1) Refuse(20003, "Provider PIN entered has a duplicate");
  if (found == 1 && checkActive) ValidateActiveStatus(tables, pin);
  return found == 1;
}

void ValidateDepotPin(const Tables& tables, const std::string& given) {
  const std::string pin = Upper(given);
  ValidatePinForm(pin, 20080);
  Send({pin});
  const auto found = Count(tables.provider, [&](const Provider& row) {
    return SameTrimmed(row.active, "Y") && Between(row.sector, 30, 31) && SameTrimmed(row.pin, pin);
  });
  if (found < 1) Refuse(20014, "Error while verifying depot PIN in LOTRIX");
  if (found > 1) Refuse(20015, "Provider PIN entered has a duplicate");
}

bool MayOrderVaricella(const Tables& tables, const std::string& given) {
  const std::string pin = Upper(given);
  ValidatePinForm(pin, 20079);
  Send({pin});
  const auto found = Count(tables.provider, [&](const Provider& row) {
    return SameTrimmed(row.pin, pin) && SameTrimmed(row.codes, "V");
  });
  if (found > 1) Refuse(20003, "Provider PIN entered has a duplicate");
  return found == 1;
}

void ValidateNewPin(const std::string& pin) {
  if (pin == "999999" || pin == "999998") {
    Refuse(20072, "The given pin number is reserved and cannot be assigned to a new provider.");
  }
  if (pin == "0") Refuse(20084, "Pin number cannot be zero for a new provider record");
}

void ValidateAddress(const std::string& line1, const std::string& city, const std::string& state) {
  if (IsBlank(line1)) Refuse(20006, "The first field of the shipping address cannot be null");
  if (IsBlank(city)) Refuse(20007, "The city field in the shipping address cannot be null");
  if (IsBlank(state)) Refuse(20008, "The state field in the shipping address cannot be null");
}

void ValidateSubdivision(const Tables& tables, const std::string& subdivision) {
  Send({subdivision});
  const auto found =
      Count(tables.subdiv, [&](const TextCell& cell) { return SameTrimmed(cell, subdivision); });
  if (found > 1) Refuse(20066, "Duplicate subdivisions found");
  if (found < 1) Refuse(20067, "The subdivision entered does not exist in the database");
}

bool IsVaccineActive(const Tables& tables, const std::string& vaccine) {
  Send({vaccine});
  return Count(tables.pvaccref, [&](const ContractRow& row) {
           return SameTrimmed(row.vaccine, vaccine) && row.locactiv == Logical(false);
         }) >= 1;
}

template <class Rows>
void ValidateVaccine(const Tables& tables, const Rows& reference, const std::string& vaccine,
                     bool checkActive) {
  Send({vaccine});
  if (Count(reference, [&](const auto& row) { return SameTrimmed(row.vaccine, vaccine); }) == 0) {
    Refuse(20051, "Vaccine not available to private provider in LOTRIX");
  }
  if (checkActive && !IsVaccineActive(tables, vaccine)) {
    Refuse(20086, "The vaccine being used in the current operation is inactive in LOTRIX");
  }
}

bool CountsForSeries(const ContractRow& row) { return row.locactiv == Logical(false); }
bool CountsForSeries(const VaccineRow& row) { return Same(row.locactiv, "Y"); }

template <class Rows>
void ValidateDoseInSeries(const Rows& reference, const std::string& dose,
                          const std::string& vaccine) {
  const std::int64_t number = ToWhole(dose);
  if (number < 1) {
    Refuse(20087,
           "The dose in series number given is less than the minimum allowed for all vaccines");
  }
  Send({vaccine});
  std::int64_t most = 0;
  bool any = false;
  for (const auto& row : reference) {
    if (!SameTrimmed(row.vaccine, vaccine) || !CountsForSeries(row) || !row.maxno) continue;
    most = any ? std::max(most, *row.maxno) : *row.maxno;
    any = true;
  }
  if (number > most) {
    Refuse(20088,
           "The dose in series number given is greater than the maximum allowed for the vaccine");
  }
}

void ValidateLot(const Tables& tables, const std::string& vaccine, const std::string& given) {
  const std::string lot = WithoutDashes(given);
  Send({vaccine, lot});
  if (Count(tables.stock, [&](const Stock& row) {
        return SameTrimmed(row.vaccine, vaccine) && SameLot(row.lot, lot);
      }) < 1) {
    Refuse(20034, "Error verifying lot number");
  }
}

void ValidateExcessAllowance(const std::string& text) {
  const std::int64_t number = ToWhole(text);
  if (number < 1 || number > 5) Refuse(20068, "The excess allowance is out of range");
}

void ValidateFunding(const Tables& tables, const std::string& code, const std::string& statePo) {
  Send({code});
  const auto found =
      Count(tables.funding, [&](const TextCell& cell) { return SameTrimmed(cell, code); });
  if (found > 1) Refuse(20049, "Duplicate funding codes found in LOTRIX");
  if (found == 0) Refuse(20048, "Funding code entered has not been defined in LOTRIX");
  const auto number = ToDouble(code);
  if (!number) RefuseNumber(kTypeMismatch);
  const bool federal = *number == 1 || *number == 2;
  if (federal && !IsBlank(statePo)) {
    Refuse(20093, "The state PO is not needed for federal funded order");
  }
  if (!federal && IsBlank(statePo)) {
    Refuse(20046, "A state PO number is required for state funding code");
  }
}

bool ValidateSector(const Tables& tables, std::int64_t sector) {
  const auto found = Count(tables.sectoref, [&](const Number& cell) {
    return Between(cell, 10, 29) && *cell == static_cast<double>(sector);
  });
  if (found > 1) Refuse(20031, "A NULL sector is entered");
  return found == 1;
}

bool HasEnrollment(const Tables& tables, const std::string& pin) {
  Send({pin});
  const auto found =
      Count(tables.enroll, [&](const Enrollment& row) { return SameTrimmed(row.pin, pin); });
  if (found > 1) {
    Refuse(20090, "There are duplicate enrollment data records for the current provider");
  }
  return found == 1;
}

// --- Keys and lookups -------------------------------------------------------------

std::int64_t NextId(Tables& tables, const std::string& name) {
  const auto is = [&](const Key& row) {
    return row.ctablename && SameTrimmed(AsciiUpper(*row.ctablename), AsciiUpper(name));
  };
  const auto found = Count(tables.nextid, is);
  if (found == 0) Refuse(20096, name + " does not exist in the NextID table.");
  if (found > 1)
    Refuse(20096, "More than one instance of " + name + " exists in the NextID table.");
  const auto row = std::find_if(tables.nextid.begin(), tables.nextid.end(), is);
  if (!row->inextid) RefuseNumber(kInvalidNull);
  row->inextid = Sum(*row->inextid, 1);
  return *row->inextid;
}

std::string KeyPrefix(std::int64_t kind) {
  static const std::map<std::int64_t, std::string> prefixes = {
      {1, "Di"}, {2, "Re"}, {3, "Sp"}, {4, "Ex"},  {5, "Lo"},
      {6, "Im"}, {7, "Fa"}, {8, "Tr"}, {11, "Ac"}, {12, "Us"}};
  const auto prefix = prefixes.find(kind);
  return prefix == prefixes.end() ? "" : prefix->second;
}

std::string CountyName(const Tables& tables, const std::string& zipText) {
  const std::string zip = Utf8(Points(zipText).substr(0, 5));
  Send({zip});
  std::vector<TextCell> names;
  for (const ZipCode& row : tables.zipcodes) {
    if (!Same(row.zip, zip)) continue;
    TextCell name = row.cntyname;
    if (name) name = TrimRight(*name);
    if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
  }
  if (names.size() != 1) return "";
  if (!names[0]) RefuseNumber(kInvalidNull);
  return Trim(*names[0]);
}

struct Contract {
  std::string maker, ndcno, contractid, descrip;
  std::int64_t pkgsize;
  double cost;
};

Contract ReadContract(const ContractRow& row) {
  const bool hasNull = !row.vaccine || !row.maker || !row.begin || !row.end || !row.minbulk ||
                       !row.unitsize || !row.pkgsize || !row.ndcno || !row.cost ||
                       !row.contractid || !row.sel_maker || !row.dos_wind || !row.excfunds ||
                       !row.descrip;
  if (hasNull) RefuseNumber(kInvalidNull);
  return {.maker = Trim(*row.maker),
          .ndcno = Trim(*row.ndcno),
          .contractid = Trim(*row.contractid),
          .descrip = Trim(*row.descrip),
          .pkgsize = *row.pkgsize,
          // It goes into a statement with fifteen digits.
          .cost = std::strtod(NumberText(*row.cost).c_str(), nullptr)};
}

[[noreturn]] void RefuseContract() {
  Refuse(20052, "Error while verifying order against vaccine contract table");
}

Contract FindContract(const Tables& tables, const std::string& dateText, const std::string& vaccine,
                      const std::string& maker) {
  Send({vaccine, maker}, {dateText});
  const Day day = Literal(dateText);
  const auto row = std::find_if(
      tables.pvaccref.begin(), tables.pvaccref.end(), [&](const ContractRow& candidate) {
        return SameTrimmed(candidate.vaccine, vaccine) && day && candidate.begin &&
               *candidate.begin <= *day && candidate.end && *day <= *candidate.end &&
               Same(candidate.maker, maker) && candidate.locactiv == Logical(false);
      });
  if (row == tables.pvaccref.end()) RefuseContract();
  return ReadContract(*row);
}

// --- Arguments ----------------------------------------------------------------

enum class Kind { kText, kLong, kLogical, kAny };
struct Parameter {
  std::string name;
  Kind kind = Kind::kText;
  std::optional<std::string> omitted{};  // nothing: the argument is required
};

Parameter Text(std::string name) { return {.name = std::move(name)}; }
Parameter OptionalText(std::string name, std::string omitted = "") {
  return {.name = std::move(name), .omitted = std::move(omitted)};
}
Parameter Long(std::string name) { return {.name = std::move(name), .kind = Kind::kLong}; }
Parameter OptionalLong(std::string name) {
  return {.name = std::move(name), .kind = Kind::kLong, .omitted = "0"};
}
Parameter Any(std::string name) {
  return {.name = std::move(name), .kind = Kind::kAny, .omitted = ""};
}

std::string TextOf(const Value& value) {
  if (const auto* const text = std::get_if<std::string>(&value)) {
    if (!CodePoints(*text)) RefuseNumber(kInvalidArgument);
    return *text;
  }
  if (const auto* const whole = std::get_if<std::int64_t>(&value)) return std::to_string(*whole);
  if (const auto* const logical = std::get_if<bool>(&value)) return *logical ? "True" : "False";
  if (const auto* const number = std::get_if<double>(&value)) return NumberText(*number);
  if (const auto* const day = std::get_if<Date>(&value)) return DayText(*day);
  RefuseNumber(kTypeMismatch);
}

std::int64_t WholeOf(const Value& value) {
  if (const auto* const whole = std::get_if<std::int64_t>(&value)) return InRange(*whole, 32);
  if (const auto* const logical = std::get_if<bool>(&value)) return *logical ? -1 : 0;
  if (const auto* const number = std::get_if<double>(&value)) {
    return InRange(HalfToEven(*number), 32);
  }
  return ToWhole(TextOf(value));
}

bool LogicalOf(const Value& value) {
  if (const auto* const logical = std::get_if<bool>(&value)) return *logical;
  if (const auto* const whole = std::get_if<std::int64_t>(&value)) return *whole != 0;
  if (const auto* const number = std::get_if<double>(&value)) return *number != 0;
  const std::string text = TextOf(value);
  if (AsciiUpper(text) == "TRUE") return true;
  if (AsciiUpper(text) == "FALSE") return false;
  const auto number = ToDouble(text);
  if (!number) RefuseNumber(kTypeMismatch);
  return *number != 0;
}

// One argument after its conversion to the parameter's type.
struct Given {
  std::string text;
  std::int64_t whole = 0;
  bool logical = false;
  std::optional<Value> any;  // nothing where it is missing
};

std::vector<Given> Convert(const std::vector<Parameter>& parameters,
                           const NamedArguments& arguments) {
  std::vector<Argument> values;
  for (const Parameter& parameter : parameters) {
    const auto argument = std::find_if(arguments.begin(), arguments.end(), [&](const auto& named) {
      return named.first == parameter.name;
    });
    values.push_back(argument == arguments.end() ? std::nullopt : argument->second);
    if (!values.back() && !parameter.omitted) RefuseNumber(kArgumentNotOptional);
  }
  std::vector<Given> given;
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    Given one;
    if (!values[i]) {
      one.text = *parameters[i].omitted;
    } else if (parameters[i].kind == Kind::kText) {
      one.text = TextOf(*values[i]);
    } else if (parameters[i].kind == Kind::kLong) {
      one.whole = WholeOf(*values[i]);
    } else if (parameters[i].kind == Kind::kLogical) {
      one.logical = LogicalOf(*values[i]);
    } else {
      static_cast<void>(TextOf(*values[i]));
      one.any = values[i];
    }
    given.push_back(std::move(one));
  }
  return given;
}

using Arguments = std::vector<Given>;
using OptionalUpper = std::optional<std::string>;

OptionalUpper UpperIfPresent(const Given& given) {
  if (!given.any) return std::nullopt;
  return Upper(TextOf(*given.any));
}

// --- Reads --------------------------------------------------------------------

std::string Cell(const TextCell& cell) {
  if (!cell) return "<null>";
  const std::string trimmed = Trim(*cell);
  return trimmed.empty() ? " " : trimmed;
}
std::string Cell(const Whole& cell) { return cell ? std::to_string(*cell) : "<null>"; }
std::string Cell(const Day& cell) {
  if (!cell) return "<null>";
  return Digits(cell->month, 2) + "/" + Digits(cell->day, 2) + "/" + Digits(cell->year, 4);
}

void StockRead(const Tables& tables, const std::string& pin, const std::string& vaccine,
               const std::string& lotGiven, const std::string& begin, const std::string& end,
               Verdict& verdict) {
  if (!IsBlank(pin)) static_cast<void>(ValidateProviderPin(tables, pin, true));
  if (!IsBlank(vaccine)) ValidateVaccine(tables, tables.pvaccref, vaccine, true);
  const bool hasBegin = !IsBlank(begin);
  const bool hasEnd = !IsBlank(end);
  if (hasBegin && !IsDay(begin)) {
    Refuse(20062, "The Shipment Begin Date that was entered is not a valid date");
  }
  const std::string range =
      "The end of the date range must be later than the beginning of the range, and both must be "
      "valid dates";
  if (hasEnd) {
    if (!hasBegin) Refuse(20069, range);
    if (!IsDay(end)) Refuse(20063, "The Shipment End Date that was entered is not a valid date");
    if (*ReadDay(end) < *ReadDay(begin)) Refuse(20069, range);
  }
  const bool hasLot = !IsBlank(lotGiven);
  const std::string lot = WithoutDashes(lotGiven);
  Send({IsBlank(vaccine) ? "" : vaccine, IsBlank(pin) ? "" : pin, hasLot ? lot : ""},
       {hasBegin ? begin : "", hasEnd ? end : ""});

  std::vector<const Stock*> found;
  for (const Stock& row : tables.stock) {
    const bool dayFits =
        !hasBegin ||
        (row.datein && (hasEnd ? *ReadDay(begin) <= *row.datein && *row.datein <= *ReadDay(end)
                               : *row.datein == *ReadDay(begin)));
    if ((IsBlank(vaccine) || SameTrimmed(row.vaccine, vaccine)) &&
        (IsBlank(pin) || SameTrimmed(row.pin, pin)) && (!hasLot || SameLot(row.lot, lot)) &&
        dayFits && row.tracking && !Same(row.tracking, "") && row.lot && !Same(row.lot, "")) {
      found.push_back(&row);
    }
  }
  std::stable_sort(found.begin(), found.end(),
                   [](const Stock* a, const Stock* b) { return a->datein > b->datein; });
  ResultTable table{.headers = {"pin", "datein", "doses", "lot", "vaccine", "maker", "expiry"}};
  for (std::size_t i = 0; i < found.size(); ++i) {
    const Stock& row = *found[i];
    if (i == 0 || found[i - 1]->datein != row.datein) table.groups.emplace_back();
    table.groups.back().push_back({Cell(row.pin), Cell(row.datein), Cell(row.doses), Cell(row.lot),
                                   Cell(row.vaccine), Cell(row.maker), Cell(row.expiry)});
  }
  verdict.table = std::move(table);
}

void RunStockTableRead(Tables& tables, const Arguments& a, Verdict& verdict) {
  StockRead(tables, a[0].text, a[1].text, a[2].text, a[3].text, a[4].text, verdict);
}

void RunManufacturerOrderRead(Tables& tables, const Arguments& a, Verdict& verdict) {
  if (IsBlank(a[0].text)) Refuse(2000, "A null provider PIN was entered");
  if (IsBlank(a[1].text)) Refuse(20021, "A Null Shipment Date is entered");
  StockRead(tables, Upper(a[0].text), Upper(a[2].text), Upper(a[3].text), Upper(a[1].text),
            Upper(a[4].text), verdict);
}

void RunVaccineReferenceRead(Tables& tables, const Arguments& /*a*/, Verdict& verdict) {
  std::vector<TextCell> names;
  ResultTable table{.headers = {"vaccine"}, .groups = {{}}};
  for (const ContractRow& row : tables.pvaccref) {
    TextCell name = row.vaccine;
    if (name) name = TrimRight(*name);
    if (std::find(names.begin(), names.end(), name) != names.end()) continue;
    names.push_back(name);
    table.groups[0].push_back({Cell(name)});
  }
  verdict.table = std::move(table);
}

void RunInventoryOnHandRead(Tables& tables, const Arguments& a, Verdict& verdict) {
  if (IsBlank(a[0].text)) throw Refused{20022, "A NULL depot pin is entered"};
  const std::string pin = Upper(a[0].text);
  const std::string vaccine = Upper(a[1].text);
  ValidateDepotPin(tables, pin);
  const bool hasVaccine = !IsBlank(vaccine);
  if (hasVaccine) ValidateVaccine(tables, tables.pvaccref, vaccine, true);
  Send({hasVaccine ? vaccine : "", pin});

  std::vector<const Lot*> found;
  for (const Lot& lot : tables.lots) {
    const bool usable = lot.expiry && *lot.expiry >= kToday && lot.size.value_or(0) > 0 &&
                        lot.remain.value_or(-1) >= 0 && lot.maker && lot.vaccine;
    if (!usable || !SameTrimmed(lot.pin, pin)) continue;
    if (hasVaccine && !SameTrimmed(lot.vaccine, vaccine)) continue;
    for (const ContractRow& row : tables.pvaccref) {
      if (row.vaccine && Trim(*row.vaccine) == Trim(*lot.vaccine) &&
          row.locactiv == Logical(true)) {
        found.push_back(&lot);
      }
    }
  }
  const auto key = [](const Lot* lot) {
    return std::tuple(TrimRight(*lot->vaccine), TrimRight(lot->lot.value_or("")), *lot->expiry);
  };
  std::stable_sort(found.begin(), found.end(),
                   [&](const Lot* one, const Lot* other) { return key(one) < key(other); });
  ResultTable table{.headers = {"vaccine", "lot", "expiry", "maker", "remain", "size"}};
  for (std::size_t i = 0; i < found.size(); ++i) {
    const Lot& lot = *found[i];
    if (i == 0 || key(found[i - 1]) != key(&lot)) table.groups.emplace_back();
    table.groups.back().push_back({Cell(lot.vaccine), Cell(lot.lot), Cell(lot.expiry),
                                   Cell(lot.maker), Cell(lot.remain), Cell(lot.size)});
  }
  verdict.table = std::move(table);
}

void RunCheckVaccActive(Tables& tables, const Arguments& a, Verdict& verdict) {
  verdict.shown = IsVaccineActive(tables, a[0].text) ? "Vaccine is Active" : "Vaccine is inactive";
}

// --- Ordering -----------------------------------------------------------------

[[noreturn]] void RefuseUnknownProvider() { Refuse(20004, "Provider entered not found in LOTRIX"); }

void RunManufacturerOrder(Tables& tables, const Arguments& a, Verdict& /*verdict*/) {
  const std::int64_t doses = a[3].whole;
  if (doses < 1) Refuse(20025, "The number of doses for an order must be greater than zero");
  if (IsBlank(a[4].text)) Refuse(20091, "A Null funding source is entered");
  const std::string date = Upper(a[0].text);
  const std::string pin = Upper(a[1].text);
  const std::string vaccine = Upper(a[2].text);
  const std::string funding = Upper(a[4].text);
  std::string allowance = Upper(a[5].text);
  std::string statePo = Upper(a[6].text);
  const std::string& maker = a[7].text;
  if (IsBlank(allowance)) allowance = "1";
  if (IsBlank(statePo)) statePo = "";
  if (!ValidateProviderPin(tables, pin, true)) RefuseUnknownProvider();
  if (IsBlank(date)) Refuse(20076, "Null value for manufacturer order date");
  if (!IsDay(date)) Refuse(20075, "Order date for the manufacturer order is not a valid date");
  const bool varicella = vaccine == "VAR";
  if (varicella && !MayOrderVaricella(tables, pin)) {
    Refuse(20092, "The provider is not eligible for ordering VAR");
  }
  ValidateVaccine(tables, tables.pvaccref, vaccine, true);
  ValidateFunding(tables, funding, statePo);
  ValidateExcessAllowance(allowance);

  Send({pin, vaccine, funding}, {date});
  const Day day = Literal(date);
  const auto is = [&](const Order& row) {
    return SameDay(row.orddate, day) && SameTrimmed(row.pin, pin) &&
           SameTrimmed(row.vaccine, vaccine) && SameTrimmed(row.fcode1, funding);
  };
  const auto refuseSeveral = [] {
    Refuse(20055, "More than one record for the same manufacturer order was found");
  };
  const auto sent = Count(
      tables.neworder, [&](const Order& row) { return is(row) && row.seekid && *row.seekid != 0; });
  if (sent == 1) {
    Refuse(20071,
           "A manufacturer order with the same parameters has already been sent to the Vorsk. "
           "Cannot update current order.");
  }
  if (sent > 1) refuseSeveral();
  const auto open =
      Count(tables.neworder, [&](const Order& row) { return is(row) && row.seekid == Whole(0); });
  if (open > 1) refuseSeveral();
  auto& table = vaccine == "FLU" || vaccine == "FLU-PF" ? tables.influenza : tables.neworder;

  if (open == 1) {
    if (Count(tables.neworder, is) != 1) {
      Refuse(20042, "Error determining current doses for inventory adjustment update");
    }
    const auto current = std::find_if(tables.neworder.begin(), tables.neworder.end(), is);
    static_cast<void>(Sum(current->orddose.value_or(0), doses));
    const Contract contract = FindContract(tables, date, vaccine, maker);
    for (Order& row : table) {
      if (!is(row)) continue;
      row.orddose = doses;
      row.fdose1 = doses;
      row.chgdate = kToday;
      row.userid = "LTX_DLL";
      row.size = contract.pkgsize;
      row.cost = contract.cost;
    }
    return;
  }
  const Contract contract = FindContract(tables, date, vaccine, maker);
  Send({pin, vaccine, funding, contract.maker, contract.contractid, contract.ndcno,
        varicella ? "" : contract.descrip},
       {date});
  Order row;
  row.ordpin = varicella ? "MERCKC" : "";
  row.rectype = varicella ? "2" : "5";
  row.pin = pin;
  row.orddate = day;
  row.vaccine = vaccine;
  row.orddose = doses;
  row.fcode1 = funding;
  row.fdose1 = doses;
  row.size = contract.pkgsize;
  row.cost = contract.cost;
  row.maker = contract.maker;
  row.contract = contract.contractid;
  row.ndcno = contract.ndcno;
  row.chgdate = day;
  row.userid = "LTX_DLL";
  row.descrip = varicella ? "" : contract.descrip;
  table.push_back(std::move(row));
}

void RunDepotOrder(Tables& tables, const Arguments& a, Verdict& /*verdict*/) {
  const std::string date = Upper(a[0].text);
  const std::string depot = Upper(a[1].text);
  const std::string pin = Upper(a[2].text);
  const std::string vaccine = Upper(a[3].text);
  const std::int64_t doses = a[4].whole;
  const std::string lotGiven = Upper(a[5].text);
  const std::string allowance = IsBlank(a[6].text) ? "1" : a[6].text;
  if (IsBlank(date)) Refuse(20021, "A Null Shipment Date is entered");
  if (IsBlank(depot)) Refuse(20022, "A NULL depot pin is entered");
  if (IsBlank(pin)) Refuse(2000, "2000");
  if (IsBlank(vaccine)) Refuse(20023, "A NULL vaccine name is entered");
  if (IsBlank(lotGiven)) Refuse(20024, "A NULL lot number is entered");
  if (doses < 1) Refuse(20025, "The number of doses for an order must be greater than zero");
  ValidateExcessAllowance(allowance);

  Send({vaccine});
  const std::int64_t package = vaccine == "MCV4" ? 5 : 10;
  const auto contractRow =
      std::find_if(tables.pvaccref.begin(), tables.pvaccref.end(), [&](const ContractRow& row) {
        return SameTrimmed(row.vaccine, vaccine) && row.pkgsize == Whole(package);
      });
  if (contractRow == tables.pvaccref.end()) RefuseContract();
  const Contract contract = ReadContract(*contractRow);

  const std::string lot = WithoutDashes(lotGiven);
  Send({depot, pin, vaccine, lot}, {date});
  const Day day = Literal(date);
  const auto is = [&](const Distribution& row) {
    return SameTrimmed(row.frompin, depot) && SameTrimmed(row.pin, pin) &&
           SameTrimmed(row.vaccine, vaccine) && SameLot(row.lot, lot) &&
           SameDay(row.dateout, day) && row.action == Number(1);
  };
  const auto found = Count(tables.distrib, is);
  if (found > 1) {
    Refuse(20018, "Error while verifying duplicate depot provider order in LOTRIX");
  }
  if (found == 1) {
    const auto row = std::find_if(tables.distrib.begin(), tables.distrib.end(), is);
    const std::int64_t sum = Sum(row->doses.value_or(0), doses);
    row->doses = sum;
    row->units = 0;
    row->fdose1 = sum;
    row->chgdate = kToday;
    row->userid = "LTX_DLL";
    return;
  }
  ValidateDepotPin(tables, depot);
  if (!ValidateProviderPin(tables, pin, true)) RefuseUnknownProvider();
  ValidateVaccine(tables, tables.pvaccref, vaccine, true);
  static_cast<void>(NextId(tables, "distrib"));
  static_cast<void>(NextId(tables, "seekdist"));
  Send({pin, vaccine, contract.maker, contract.contractid, contract.ndcno, contract.descrip},
       {date});
  Order row;
  row.rectype = "5";
  row.pin = Trim(pin);
  row.orddate = day;
  row.orddose = doses;
  row.size = contract.pkgsize;
  row.vaccine = vaccine;
  row.maker = contract.maker;
  row.cost = contract.cost;
  row.contract = contract.contractid;
  row.fcode1 = "1";
  row.fdose1 = doses;
  row.chgdate = day;
  row.userid = "LTX_DLL";
  row.ndcno = contract.ndcno;
  row.descrip = contract.descrip;
  tables.neworder.push_back(std::move(row));
}

// --- Inventory and doses ---------------------------------------------------------

std::int64_t ActionOf(const Tables& tables, const std::string& type) {
  const auto refuseNumberOf = [](std::int64_t found) {
    if (found > 1) Refuse(20037, "Duplicate adjustment type found");
    if (found < 1) Refuse(20036, "Error verifying adjustment type");
  };
  Send({type});
  refuseNumberOf(
      Count(tables.actref, [&](const Action& row) { return SameTrimmed(row.status, type); }));
  const auto is = [&](const Action& row) { return Same(row.status, type); };
  refuseNumberOf(Count(tables.actref, is));
  const auto row = std::find_if(tables.actref.begin(), tables.actref.end(), is);
  return InRange(HalfToEven(row->action.value_or(0)), 32);
}

void RunAdjustment(Tables& tables, const Arguments& a, Verdict& /*verdict*/) {
  if (a[7].whole == 0) {
    Refuse(20082,
           "The number of doses in an inventory adjustment record must be greater than zero");
  }
  const std::string depot = Upper(a[0].text);
  const std::string entry = Upper(a[1].text);
  const std::string transaction = Upper(a[2].text);
  const std::string& type = a[3].text;
  const std::string pin = Upper(a[4].text);
  const std::string vaccine = Upper(a[5].text);
  const std::string lotGiven = Upper(a[6].text);
  const std::int64_t doses = InRange(std::abs(a[7].whole), 32);
  if (IsBlank(entry)) Refuse(20044, "Null entry date was entered for inventory adjustment update");
  if (IsBlank(transaction)) {
    Refuse(20043, "Null transaction date was entered for inventory adjustment update");
  }
  if (!IsDay(entry)) Refuse(20074, "Entry date for the adjustment is not a valid date");
  if (!IsDay(transaction)) Refuse(20074, "Transaction date for the adjustment is not a valid date");
  if (!ValidateProviderPin(tables, pin, false)) RefuseUnknownProvider();
  ValidateDepotPin(tables, depot);
  ValidateLot(tables, vaccine, lotGiven);
  const std::int64_t action = ActionOf(tables, type);
  if (action == 1 || action == 9) {
    Refuse(20040, "The adjustment entered cannot be inserted into LOTRIX with this application");
  }
  if (action < 2 || action == 10 || action > 12) Refuse(20041, "Unknown adjustment for update");
  const std::string source = action == 8 ? "NONE" : depot;

  const std::string lot = WithoutDashes(lotGiven);
  Send({pin, vaccine, lot, source}, {transaction});
  const Day day = Literal(transaction);
  const auto is = [&](const Distribution& row) {
    return row.action == Number(static_cast<double>(action)) && SameTrimmed(row.pin, pin) &&
           SameTrimmed(row.vaccine, vaccine) && SameLot(row.lot, lot) &&
           SameDay(row.dateout, day) && SameTrimmed(row.frompin, source);
  };
  const auto found = Count(tables.distrib, is);
  if (found > 1) Refuse(20038, "More than one record for the same adjustment was found");
  if (found == 1) {
    const auto row = std::find_if(tables.distrib.begin(), tables.distrib.end(), is);
    row->doses = Sum(row->doses.value_or(0), doses);
    row->chgdate = kToday;
    row->userid = "LTX_DLL";
    return;
  }
  Send({source, pin, vaccine, lotGiven}, {entry, transaction});
  Distribution row;
  row.input = Literal(entry);
  row.dateout = day;
  row.frompin = source;
  row.pin = pin;
  row.vaccine = vaccine;
  row.lot = lotGiven;
  row.doses = doses;
  row.action = static_cast<double>(action);
  row.distid = 0;
  row.notes = "Entered from Quorvin front-end.";
  row.chgdate = kToday;
  row.status = KeyPrefix(action);
  row.shipped = 0;
  row.userid = "LTX_DLL";
  tables.distrib.push_back(std::move(row));
}

void RunCountedStock(Tables& tables, const Arguments& a, Verdict& /*verdict*/) {
  const std::string& pin = a[0].text;
  const std::string vaccine = Upper(a[1].text);
  const std::string& inventory = a[2].text;
  const std::string& date = a[3].text;
  static_cast<void>(ValidateProviderPin(tables, pin, false));
  if (IsBlank(vaccine)) Refuse(20134, "Null Vaccine field for Provider Inventory Add/Update");
  if (IsBlank(inventory)) Refuse(20135, "Null Inventory field for Provider Inventory Add/Update");
  if (IsBlank(date)) Refuse(20138, "Null Inventory Date field for Provider Inventory Add/Update");
  if (!IsNumeric(inventory)) {
    Refuse(20136, "Non numeric Inventory field for Provider Inventory Add/Update");
  }
  const std::int64_t doses = ToWhole(inventory);
  ValidateVaccine(tables, tables.pvaccref, vaccine, true);
  if (!IsDay(date)) {
    Refuse(20139, "Invalid Inventory Date field for Provider Inventory Add/Update");
  }
  const std::int64_t key = NextId(tables, "provhas");
  Send({pin, vaccine});
  CountedStock row;
  row.pin = pin;
  row.vaccine = vaccine;
  row.doses = doses;
  row.chgdate = kToday;
  row.idate = ReadDay(date);
  row.provhasid = key;
  row.userid = "LTX_DLL";
  tables.provhas.push_back(std::move(row));
}

void RunDosesAdministered(Tables& tables, const Arguments& a, Verdict& /*verdict*/) {
  const std::string date = Upper(a[0].text);
  const std::string pin = Upper(a[1].text);
  const std::string vaccine = Upper(a[2].text);
  const std::string dose = Upper(a[3].text);
  const std::string& sector = a[4].text;
  if (IsBlank(date)) Refuse(20028, "A NULL report date is entered");
  if (IsBlank(vaccine)) Refuse(20023, "A NULL vaccine name is entered");
  if (IsBlank(pin)) Refuse(2000, "2000");
  if (sector != "1" && sector != "2") {
    Refuse(20085, "The given sector is not a valid doses administered sector");
  }
  std::int64_t sum = 0;
  for (std::size_t group = 0; group < 13; ++group) sum = Sum(sum, a[5 + group].whole);
  const std::int64_t total = a[18].whole;
  if (sum != total) Refuse(20029, "The sum of the distribution does not match the Total");
  const std::int64_t categories = Sum(Sum(a[19].whole, a[20].whole), a[21].whole);
  if (!ValidateProviderPin(tables, pin, false)) RefuseUnknownProvider();
  if (vaccine == "MMR-V") {
    ValidateVaccine(tables, tables.vaccref, vaccine, false);
    ValidateDoseInSeries(tables.vaccref, dose, vaccine);
  } else {
    ValidateVaccine(tables, tables.pvaccref, vaccine, false);
    ValidateDoseInSeries(tables.pvaccref, dose, vaccine);
  }
  const std::int64_t key = NextId(tables, "Dosesadm");

  Send({pin, vaccine}, {date}, {dose, sector});
  const Day day = Literal(date);
  const double doseNumber = std::strtod(dose.c_str(), nullptr);
  const double sectorNumber = sector == "1" ? 1 : 2;
  const auto isReport = [&](const DosesReport& row) {
    return SameTrimmed(row.vaccine, vaccine) && row.dose == Number(doseNumber) &&
           row.sector == Number(sectorNumber) && SameDay(row.adate, day);
  };
  const auto found = Count(tables.dosesadm, [&](const DosesReport& row) {
    return isReport(row) && SameTrimmed(row.pin, pin);
  });
  if (found > 1) Refuse(20032, "Error while verifying duplicate doses admin");
  const auto fill = [&](DosesReport& row) {
    for (std::size_t group = 0; group < 13; ++group) row.groups[group] = a[5 + group].whole;
    row.rowtot = total;
    row.categories = {a[19].whole, a[20].whole, a[21].whole, 0, 0, 0, 0, 0};
    row.categoryTotal = categories;
    row.chgdate = kToday;
    row.userid = "LTX_DLL";
  };
  if (found == 1) {
    for (DosesReport& row : tables.dosesadm) {
      if (isReport(row) && Same(row.pin, pin)) fill(row);
    }
    return;
  }
  DosesReport row;
  row.adate = day;
  row.pin = pin;
  row.sector = sectorNumber;
  row.vaccine = vaccine;
  row.position = 0;
  row.dose = doseNumber;
  fill(row);
  row.dosesadmid = key;
  tables.dosesadm.push_back(std::move(row));
}

// --- Provider records -----------------------------------------------------------

void AddDefaultEnrollment(Tables& tables, const std::string& pin) {
  if (HasEnrollment(tables, pin)) return;
  Enrollment row;
  row.pin = pin + " ";
  row.chgdate = kToday;
  row.userid = "LTX_DLL";
  tables.enroll.push_back(std::move(row));
}

void SetIfPresent(TextCell& cell, const OptionalUpper& value) {
  if (value) cell = *value;
}

void RunProfile(Tables& tables, const Arguments& a, Verdict& /*verdict*/) {
  std::array<std::string, 19> text;
  for (std::size_t i = 0; i < text.size(); ++i) {
    // Name, contacts, phones and faxes keep their special characters.
    const bool asItIs = i < 3 || i == 9 || i == 10 || i == 11 || i == 17 || i == 18;
    text[i] = Upper(asItIs ? a[i].text : RemoveSpecialCharacters(a[i].text));
  }
  const auto& [pin, name, contact, address1, address2, city, state, zip, instructionsGiven, phone,
               fax, mailContact, mailAddress1, mailAddress2, mailCity, mailState, mailZip,
               mailPhone, mailFax] = text;
  const auto& classification = a[20].any;
  const OptionalUpper certification = UpperIfPresent(a[21]);
  const OptionalUpper extension = UpperIfPresent(a[22]);
  const OptionalUpper firstName = UpperIfPresent(a[23]);
  const OptionalUpper initial = UpperIfPresent(a[24]);
  const OptionalUpper title = UpperIfPresent(a[25]);
  const OptionalUpper parent = UpperIfPresent(a[26]);
  const OptionalUpper additional = UpperIfPresent(a[27]);
  const std::string active = UpperIfPresent(a[28]).value_or("Y");
  if (active != "Y" && active != "N") Refuse(20095, "The active code entered is not Y nor N");
  const OptionalUpper subdivision = UpperIfPresent(a[29]);
  const OptionalUpper category1 = UpperIfPresent(a[30]);
  const OptionalUpper category2 = UpperIfPresent(a[31]);
  const OptionalUpper category3 = UpperIfPresent(a[32]);

  const bool exists = ValidateProviderPin(tables, pin, true);
  if (IsBlank(name)) Refuse(20001, "Null provider name was entered");
  if (IsBlank(contact)) Refuse(20002, "Null shipping contact was entered");
  ValidateAddress(address1, city, state);
  const std::string instructions = IsBlank(instructionsGiven) ? "NONE" : instructionsGiven;
  if (!IsPhone(phone)) Refuse(20142, "Invalid shipping phone number format");
  if (!IsBlank(fax) && !IsPhone(fax)) Refuse(20143, "Invalid shipping fax number format");
  if (!IsBlank(mailPhone) && !IsPhone(mailPhone)) {
    Refuse(20140, "Invalid mailing phone number format");
  }
  if (!IsBlank(mailFax) && !IsPhone(mailFax)) Refuse(20141, "Invalid mailing fax number format");
  const std::string codes = a[19].logical ? "V" : "";
  const std::string county = CountyName(tables, zip);
  const std::int64_t newId = NextId(tables, "Provider");

  std::optional<std::int64_t> sector;
  if (!exists && !classification) {
    Refuse(20061, "Classification code is needed when creating new provider records in LOTRIX");
  }
  if (classification) {
    sector = WholeOf(*classification);
    if (!ValidateSector(tables, *sector)) {
      Refuse(20060, "Invalid classification code for a provider");
    }
  }
  if (!exists) {
    ValidateNewPin(pin);
  } else {
    if (certification && !IsDay(*certification)) {
      Refuse(20073, "VFC certification date is not a valid date");
    }
    if (subdivision) ValidateSubdivision(tables, *subdivision);
  }
  Send({pin,
        name,
        contact,
        address1,
        address2,
        city,
        state,
        zip,
        instructions,
        phone,
        fax,
        mailContact,
        mailAddress1,
        mailAddress2,
        mailCity,
        mailState,
        mailZip,
        mailPhone,
        mailFax,
        county,
        extension.value_or(""),
        firstName.value_or(""),
        initial.value_or(""),
        title.value_or(""),
        parent.value_or(""),
        additional.value_or(""),
        subdivision.value_or(""),
        category1.value_or(""),
        category2.value_or(""),
        category3.value_or("")},
       {certification.value_or("")});
  // A structured binding cannot be captured, so the row is filled from the array.
  const auto fill = [&](Provider& row) {
    row.lastname = text[1];
    row.contact = text[2];
    row.address = text[3];
    row.addres2 = text[4];
    row.city = text[5];
    row.state = text[6];
    row.zipcode = text[7];
    row.note = instructions;
    row.phone = text[9];
    row.fax = text[10];
    row.ml_contact = text[11];
    row.ml_address = text[12];
    row.ml_addres2 = text[13];
    row.ml_city = text[14];
    row.ml_state = text[15];
    row.ml_zipcode = text[16];
    row.phone2 = text[17];
    row.fax2 = text[18];
    row.codes = codes;
    if (sector) row.sector = static_cast<double>(*sector);
    if (certification) row.datevfc = Literal(*certification);
    SetIfPresent(row.extension, extension);
    SetIfPresent(row.firstname, firstName);
    SetIfPresent(row.initial, initial);
    SetIfPresent(row.title, title);
    SetIfPresent(row.linkpin, parent);
    SetIfPresent(row.alphaid, additional);
    row.active = active;
    SetIfPresent(row.subdiv, subdivision);
    SetIfPresent(row.cat1, category1);
    SetIfPresent(row.cat2, category2);
    SetIfPresent(row.cat3, category3);
    row.chgdate = kToday;
    row.userid = "LTX_DLL";
  };
  if (exists) {
    for (Provider& row : tables.provider) {
      if (!SameTrimmed(row.pin, pin)) continue;
      fill(row);
      if (!county.empty()) row.county = county;
    }
    return;
  }
  Provider row;
  row.pin = pin;
  row.createdate = kZeroDate;
  row.county = county;
  row.provid = newId;
  fill(row);
  tables.provider.push_back(std::move(row));
  AddDefaultEnrollment(tables, pin);
}

void RunShipping(Tables& tables, const Arguments& a, Verdict& /*verdict*/) {
  std::array<std::string, 11> text;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool asItIs = i < 3 || i > 8;
    text[i] = Upper(asItIs ? a[i].text : RemoveSpecialCharacters(a[i].text));
  }
  const OptionalUpper extension = UpperIfPresent(a[11]);
  const OptionalUpper firstName = UpperIfPresent(a[12]);
  const OptionalUpper initial = UpperIfPresent(a[13]);
  const OptionalUpper title = UpperIfPresent(a[14]);
  const std::string& pin = text[0];
  if (!ValidateProviderPin(tables, pin, true)) {
    Refuse(20033, "Provider PIN not found for shipping data update");
  }
  if (IsBlank(text[1])) Refuse(20001, "Null provider name was entered");
  if (IsBlank(text[2])) Refuse(20002, "Null shipping contact was entered");
  ValidateAddress(text[3], text[5], text[6]);
  if (IsBlank(text[8])) text[8] = "NONE";
  if (!IsPhone(text[9])) Refuse(20057, "Invalid phone number format");
  if (!IsBlank(text[10]) && !IsPhone(text[10])) Refuse(20056, "Invalid fax number format");
  const std::string county = CountyName(tables, text[7]);
  for (const std::string& value : text) Send({value});
  Send({county, extension.value_or(""), firstName.value_or(""), initial.value_or(""),
        title.value_or("")});
  for (Provider& row : tables.provider) {
    if (!SameTrimmed(row.pin, pin)) continue;
    SetIfPresent(row.extension, extension);
    SetIfPresent(row.firstname, firstName);
    SetIfPresent(row.initial, initial);
    SetIfPresent(row.title, title);
    if (!county.empty()) row.county = county;
    row.lastname = text[1];
    row.contact = text[2];
    row.address = text[3];
    row.addres2 = text[4];
    row.city = text[5];
    row.state = text[6];
    row.zipcode = text[7];
    row.note = text[8];
    row.phone = text[9];
    row.fax = text[10];
    row.chgdate = kToday;
    row.userid = "LTX_DLL";
  }
}

void RunEnrollment(Tables& tables, const Arguments& a, Verdict& /*verdict*/) {
  std::array<std::string, 11> text;
  for (std::size_t i = 0; i < text.size(); ++i) text[i] = Upper(a[i].text);
  static constexpr std::array<const char*, 11> kNulls = {"PIN",
                                                         "Source",
                                                         "Age Group",
                                                         "AllKids Total",
                                                         "Medicaid Total",
                                                         "Uninsured Total",
                                                         "American Indian Total",
                                                         "FQHC_RHC Total",
                                                         "VFC Total",
                                                         "G317 Total",
                                                         "State Total"};
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (IsBlank(text[i])) {
      Refuse(static_cast<std::uint32_t>(20098 + i),
             std::string("Null ") + kNulls[i] + " for Enroll table Add/Update");
    }
  }
  const auto refuseLength = [](const std::string& label) {
    Refuse(20133, "Incorrect field length for Enroll table Add/Update: " + label);
  };
  static constexpr std::array<const char*, 8> kLabels = {
      "All Kids Total", "Medicaid Total", "Uninsured Total", "American Indian Total",
      "FQHC/RHC Total", "VFC Total",      "G317 Total",      "State Total"};
  if (Length(Trim(text[1])) > 10) refuseLength("Source");
  for (std::size_t i = 0; i < kLabels.size(); ++i) {
    if (Length(Trim(text[3 + i])) > 7) refuseLength(kLabels[i]);
  }
  const auto refuseGroup = [] {
    Refuse(20109, "Non-numeric or invalid age group for Enroll table Add/Update");
  };
  if (!IsNumeric(text[2])) refuseGroup();
  const std::int64_t group = ToWhole(text[2], 16);
  if (group < 1 || group > 4) refuseGroup();
  const std::string source = Trim(text[1]);
  static const std::regex letter("[A-GZ]");
  if (!std::regex_match(source, letter)) {
    Refuse(20118, "Source value not A-G or Z for Enroll table Add/Update");
  }
  static constexpr std::array<const char*, 8> kNumbers = {
      "All Kids Total", "Medicaid Total", "Uninsured Total", "American Indian Total",
      "FQHC_RHC Total", "VFC Total",      "G317 Total",      "State Total"};
  std::array<std::int64_t, 8> counts{};
  for (std::size_t i = 0; i < counts.size(); ++i) {
    if (!IsNumeric(text[3 + i])) {
      Refuse(static_cast<std::uint32_t>(20110 + i),
             std::string("Non-numeric ") + kNumbers[i] + " for Enroll table Add/Update");
    }
    counts[i] = ToWhole(text[3 + i]);
  }
  const std::string& pin = text[0];
  const auto fill = [&](Enrollment& row) {
    row.ensource = source;
    row.chgdate = kToday;
    row.userid = "LTX_DLL";
    for (std::size_t i = 0; i < counts.size(); ++i) {
      row.groups[static_cast<std::size_t>(group - 1)][i] = counts[i];
    }
  };
  if (HasEnrollment(tables, pin)) {
    for (Enrollment& row : tables.enroll) {
      if (SameTrimmed(row.pin, pin)) fill(row);
    }
    return;
  }
  Enrollment row;
  row.pin = pin;
  fill(row);
  tables.enroll.push_back(std::move(row));
}

void RunAdditionalInfo(Tables& tables, const Arguments& a, Verdict& /*verdict*/) {
  const std::string pin = Upper(a[0].text);
  const std::string type = Upper(a[1].text);
  const std::string classification = Upper(a[2].text);
  const std::string& certification = a[3].text;
  const std::string cohort = Upper(a[4].text);
  const std::string employee = Upper(a[5].text);
  const std::string flagGiven = Upper(a[6].text);
  if (IsBlank(pin)) Refuse(2000, "A null provider PIN was entered");
  if (IsBlank(type)) Refuse(20119, "Null Provider Type for Provider table Update");
  if (IsBlank(classification)) {
    Refuse(20061, "Classification code is needed when creating new provider records in LOTRIX");
  }
  if (IsBlank(certification)) {
    Refuse(20120, "Null VFC Certification Date for Provider table Add/Update");
  }
  if (IsBlank(cohort)) Refuse(20121, "Null Cohort for Provider table Update");
  if (IsBlank(employee)) Refuse(20122, "Null Employee ID Number for Provider table Update");
  if (IsBlank(flagGiven)) Refuse(20123, "Null Quorvin Value for Provider table Update");
  const auto checkLength = [](const std::string& text, std::size_t most, const std::string& label) {
    if (Length(Trim(text)) > most) {
      Refuse(20132, "Incorrect field length for Provider table Update: " + label);
    }
  };
  checkLength(type, 10, "Provider Type");
  checkLength(classification, 2, "Classification");
  checkLength(cohort, 10, "Cohort");
  checkLength(employee, 15, "Employee ID Number");
  const Day day = ReadDay(certification);
  if (!day) Refuse(20073, "VFC certification date is not a valid date");
  if (!IsNumeric(classification)) {
    Refuse(20125, "Non-numeric Classification for Provider table Update");
  }
  const std::int64_t sector = ToWhole(classification, 16);
  const std::string flag = Trim(flagGiven);
  if (flag != "YES" && flag != "NO") {
    Refuse(20124, "Quorvin Value not YES/NO for Provider table Update");
  }
  if (!ValidateProviderPin(tables, pin, true)) RefuseUnknownProvider();
  Send({type, cohort, employee, flag, pin});
  for (Provider& row : tables.provider) {
    if (!SameTrimmed(row.pin, pin)) continue;
    row.cat2 = type;
    row.chgdate = kToday;
    row.sector = static_cast<double>(sector);
    row.datevfc = day;
    row.cat4 = cohort;
    row.alphaid = employee;
    row.cat1 = flag;
  }
}

void RunPhysician(Tables& tables, const Arguments& a, Verdict& /*verdict*/) {
  const std::string pin = Upper(a[0].text);
  const std::string lastName = Upper(a[1].text);
  const std::string firstName = Upper(a[2].text);
  const std::string initial = Upper(a[3].text);
  const std::string title = Upper(a[4].text);
  const std::string siteId = Upper(a[5].text);
  const std::string& medicaid = a[6].text;
  const std::string licence = Upper(a[7].text);
  if (IsBlank(pin)) Refuse(2000, "A null provider PIN was entered");
  if (IsBlank(lastName)) Refuse(20126, "Null Last Name for Physicn table Add/Update");
  if (IsBlank(firstName)) Refuse(20127, "Null First Name for Physicn table Add/Update");
  for (const std::string* const text : {&siteId, &medicaid, &licence, &initial, &title}) {
    static_cast<void>(IsBlank(*text));
  }
  const auto checkLength = [](const std::string& text, std::size_t most, const std::string& label) {
    if (Length(Trim(text)) > most) {
      Refuse(20131, "Incorrect field length for Physicn table Add/Update: " + label);
    }
  };
  checkLength(lastName, 20, "Last Name");
  checkLength(firstName, 15, "First Name");
  checkLength(initial, 1, "Middle Initial");
  checkLength(title, 9, "Title");
  checkLength(siteId, 12, "Site Med ID");
  checkLength(medicaid, 12, "Medicaid Number");
  checkLength(licence, 12, "License Number");

  Send({pin, lastName, firstName});
  const auto found = Count(tables.physicn, [&](const Physician& row) {
    return Same(row.pin, pin) && Same(row.lastname, lastName) && Same(row.firstname, firstName);
  });
  if (found > 1) {
    Refuse(20097, "There are duplicate physicn data records for the current provider");
  }
  Send({initial, title, siteId, medicaid, licence});
  const auto fill = [&](Physician& row) {
    row.firstname = firstName;
    if (!IsBlank(initial)) row.initial = initial;
    if (!IsBlank(title)) row.title = title;
    if (!IsBlank(siteId)) row.other1 = siteId;
    if (!IsBlank(medicaid)) row.medicaidno = medicaid;
    if (!IsBlank(licence)) row.medlicense = licence;
    row.chgdate = kToday;
  };
  if (found == 1) {
    for (Physician& row : tables.physicn) {
      if (Same(row.pin, pin) && Same(row.lastname, lastName)) fill(row);
    }
    return;
  }
  Physician row;
  row.pin = pin;
  row.lastname = lastName;
  fill(row);
  tables.physicn.push_back(std::move(row));
}

void RunPhysicianDelete(Tables& tables, const Arguments& a, Verdict& /*verdict*/) {
  const std::string& pin = a[0].text;
  static_cast<void>(ValidateProviderPin(tables, pin, true));
  Send({pin});
  auto& rows = tables.physicn;
  rows.erase(std::remove_if(rows.begin(), rows.end(),
                            [&](const Physician& row) { return Same(row.pin, pin); }),
             rows.end());
}

// --- The operations ---------------------------------------------------------------

struct Operation {
  std::vector<Parameter> parameters;
  void (*run)(Tables&, const Arguments&, Verdict&);
};

std::vector<Parameter> ProfileParameters() {
  std::vector<Parameter> parameters;
  for (const char* const name :
       {"aPIN", "aFacilityLastName", "aShippingContact", "aShippingAddress1", "aShippingAddress2",
        "aShippingCity", "aShippingState", "aShippingZipCode", "aShippingInstructions",
        "aShippingPhoneNumber", "aShippingFaxNumber", "aMailContact", "aMailAddress1",
        "aMailAddress2", "aMailCity", "aMailState", "aMailZipCode", "aMailPhoneNumber",
        "aMailFaxNumber"}) {
    parameters.push_back(Text(name));
  }
  parameters.push_back({.name = "aVaricellaEligibilityStatus", .kind = Kind::kLogical});
  for (const char* const name :
       {"aClassificationCode", "aVFCCertificationDate", "aPhoneExtension", "aFirstName",
        "aMiddleInitial", "aTitle", "aParentProviderID", "anAdditionalID", "anActiveStatus",
        "aSubdivision", "aCategory1", "aCategory2", "aCategory3"}) {
    parameters.push_back(Any(name));
  }
  return parameters;
}

std::vector<Parameter> DosesParameters() {
  std::vector<Parameter> parameters = {Text("aReportingDate"), Text("aPIN"), Text("aVaccine"),
                                       Text("aDoseInSeries"), OptionalText("aSector", "1")};
  for (const char* const name :
       {"aDoseCountLessThanOne", "aDoseCountForOneYear", "aDoseCountForTwoYears",
        "aDoseCountForThreetoFourYears", "aDoseCountForFiveYears", "aDoseCountForSixtoNineYears",
        "aDoseCountForTentoFourteenYears", "aDoseCountForFifteentoNineteenYears",
        "aDoseCountForTwentytoTwentyFourYears", "aDoseCountForTwentyFivetoFourtyFourYears",
        "aDoseCountForFourtyFivetoSixtyFourYears", "aDoseCountForGreaterThanSixtyFiveYears",
        "anUnknown", "aTotalDoses", "aUserDefinedCategory1", "aUserDefinedCategory2",
        "aUserDefinedCategory3"}) {
    parameters.push_back(OptionalLong(name));
  }
  return parameters;
}

const std::map<std::string, Operation>& Operations() {
  static const std::map<std::string, Operation> operations = {
      {"manufacturerProviderOrderRead",
       {{Text("aPIN"), Text("aShipmentBeginDate"), OptionalText("aVaccine"),
         OptionalText("aLotNumber"), OptionalText("aShipmentEndDate")},
        RunManufacturerOrderRead}},
      {"stockTableRead",
       {{OptionalText("aPIN"), OptionalText("aVaccine"), OptionalText("aLotNumber"),
         OptionalText("aShipmentBeginDate"), OptionalText("aShipmentEndDate")},
        RunStockTableRead}},
      {"vaccineReferenceTableRead", {{}, RunVaccineReferenceRead}},
      {"inventoryOnHandRead",
       {{Text("aDepotPIN"), OptionalText("aVaccine")}, RunInventoryOnHandRead}},
      {"manufacturerProviderOrderCreateUpdate",
       {{Text("anOrderDate"), Text("aPIN"), Text("aVaccine"), Long("aDoseCount"),
         Text("aFundingSource"), OptionalText("anExcessAllowance", "1"), OptionalText("aStatePO"),
         OptionalText("aMfg")},
        RunManufacturerOrder}},
      {"providerProfileUpdate", {ProfileParameters(), RunProfile}},
      {"providerInventoryAdjustmentUpdate",
       {{Text("aDepotPIN"), Text("anEntryDate"), Text("aTransactionDate"), Text("aTransactionType"),
         Text("aPIN"), Text("aVaccine"), Text("aLotNumber"), Long("aDoseCount")},
        RunAdjustment}},
      {"providerShippingDataUpdate",
       {{Text("aPIN"), Text("aFacilityLastName"), Text("aShippingContact"),
         Text("aShippingAddress1"), Text("aShippingAddress2"), Text("aShippingCity"),
         Text("aShippingState"), Text("aShippingZipCode"), Text("aShippingInstructions"),
         Text("aPhoneNumber"), Text("aFaxNumber"), Any("aPhoneExtension"), Any("aFirstName"),
         Any("aMiddleInitial"), Any("aTitle")},
        RunShipping}},
      {"DosesAdministeredUpdate", {DosesParameters(), RunDosesAdministered}},
      {"DepotProviderOrderUpdate",
       {{Text("aShipmentDate"), Text("aDepotID"), Text("aPIN"), Text("aVaccine"),
         Long("aDoseCount"), Text("aLotNumber"), OptionalText("anExcessAllow", "1"),
         OptionalText("anOrderDate")},
        RunDepotOrder}},
      {"providerEnrollmentAddUpdate",
       {{Text("aPIN"), Text("aSource"), Text("aAgeGroup"), Text("aAll"), Text("aMedicaid"),
         Text("aUninsured"), Text("aAmIndian"), Text("aFQHC_RHC"), Text("aVFC"), Text("aG317"),
         Text("aState")},
        RunEnrollment}},
      {"providerAdditionalInfoUpdate",
       {{Text("aPIN"), Text("aProviderType"), Text("aClassification"), Text("aCurrentVFCCert"),
         Text("aCohort"), Text("aEmpIdNum"), Text("aQuorvin")},
        RunAdditionalInfo}},
      {"physicianAddUpdate",
       {{Text("aPIN"), Text("aLastName"), Text("aFirstName"), Text("aMiddleInitial"),
         Text("aTitle"), Text("aSiteMedID"), Text("aMedicaidNum"), Text("aLicenseNum")},
        RunPhysician}},
      {"provinvAdd",
       {{Text("aPIN"), Text("aVacc"), Text("aInv"), Text("aIdate")}, RunCountedStock}},
      {"physicianDeleteByPin", {{Text("aPIN")}, RunPhysicianDelete}},
      {"CheckVaccActive", {{Text("aVaccine")}, RunCheckVaccActive}},
  };
  return operations;
}

// --- The tables as texts -----------------------------------------------------------

template <class F>
void VisitColumns(const Provider& row, F f) {
  f("pin", row.pin);
  f("contact", row.contact);
  f("lastname", row.lastname);
  f("address", row.address);
  f("addres2", row.addres2);
  f("city", row.city);
  f("state", row.state);
  f("zipcode", row.zipcode);
  f("ml_contact", row.ml_contact);
  f("ml_address", row.ml_address);
  f("ml_addres2", row.ml_addres2);
  f("ml_city", row.ml_city);
  f("ml_state", row.ml_state);
  f("ml_zipcode", row.ml_zipcode);
  f("note", row.note);
  f("phone", row.phone);
  f("fax", row.fax);
  f("codes", row.codes);
  f("phone2", row.phone2);
  f("fax2", row.fax2);
  f("createdate", row.createdate);
  f("county", row.county);
  f("provid", row.provid);
  f("sector", row.sector);
  f("datevfc", row.datevfc);
  f("extension", row.extension);
  f("firstname", row.firstname);
  f("initial", row.initial);
  f("title", row.title);
  f("linkpin", row.linkpin);
  f("alphaid", row.alphaid);
  f("active", row.active);
  f("subdiv", row.subdiv);
  f("cat1", row.cat1);
  f("cat2", row.cat2);
  f("cat3", row.cat3);
  f("cat4", row.cat4);
  f("chgdate", row.chgdate);
  f("userid", row.userid);
}

template <class F>
void VisitColumns(const Enrollment& row, F f) {
  f("pin", row.pin);
  f("ensource", row.ensource);
  f("chgdate", row.chgdate);
  f("userid", row.userid);
  static constexpr std::array<const char*, 9> kNames = {"allkids",  "medicaid",  "uninsured",
                                                        "amindian", "fqhc_rhc",  "vfckids",
                                                        "g317kids", "statekids", "other"};
  for (std::size_t group = 0; group < row.groups.size(); ++group) {
    for (std::size_t i = 0; i < kNames.size(); ++i) {
      f(kNames[i] + std::to_string(group + 1), row.groups[group][i]);
    }
  }
}

template <class F>
void VisitColumns(const Physician& row, F f) {
  f("pin", row.pin);
  f("lastname", row.lastname);
  f("firstname", row.firstname);
  f("initial", row.initial);
  f("title", row.title);
  f("other1", row.other1);
  f("medicaidno", row.medicaidno);
  f("medlicense", row.medlicense);
  f("chgdate", row.chgdate);
}

template <class F>
void VisitColumns(const Order& row, F f) {
  f("ordpin", row.ordpin);
  f("rectype", row.rectype);
  f("pin", row.pin);
  f("orddate", row.orddate);
  f("vaccine", row.vaccine);
  f("orddose", row.orddose);
  f("fcode1", row.fcode1);
  f("fdose1", row.fdose1);
  f("size", row.size);
  f("cost", row.cost);
  f("maker", row.maker);
  f("contract", row.contract);
  f("ndcno", row.ndcno);
  f("chgdate", row.chgdate);
  f("userid", row.userid);
  f("descrip", row.descrip);
  f("seekid", row.seekid);
}

template <class F>
void VisitColumns(const Distribution& row, F f) {
  f("input", row.input);
  f("dateout", row.dateout);
  f("frompin", row.frompin);
  f("pin", row.pin);
  f("vaccine", row.vaccine);
  f("lot", row.lot);
  f("doses", row.doses);
  f("units", row.units);
  f("fdose1", row.fdose1);
  f("action", row.action);
  f("distid", row.distid);
  f("notes", row.notes);
  f("chgdate", row.chgdate);
  f("status", row.status);
  f("shipped", row.shipped);
  f("userid", row.userid);
}

template <class F>
void VisitColumns(const CountedStock& row, F f) {
  f("pin", row.pin);
  f("vaccine", row.vaccine);
  f("doses", row.doses);
  f("chgdate", row.chgdate);
  f("idate", row.idate);
  f("provhasid", row.provhasid);
  f("userid", row.userid);
}

template <class F>
void VisitColumns(const DosesReport& row, F f) {
  f("adate", row.adate);
  f("pin", row.pin);
  f("sector", row.sector);
  f("vaccine", row.vaccine);
  f("position", row.position);
  f("dose", row.dose);
  for (std::size_t i = 0; i < row.groups.size(); ++i) {
    f("g" + std::to_string(i + 1), row.groups[i]);
  }
  f("rowtot", row.rowtot);
  for (std::size_t i = 0; i < row.categories.size(); ++i) {
    f("dauzr" + std::to_string(i + 1), row.categories[i]);
  }
  f("dauzrtot", row.categoryTotal);
  f("chgdate", row.chgdate);
  f("userid", row.userid);
  f("dosesadmid", row.dosesadmid);
}

template <class F>
void VisitColumns(const Stock& row, F f) {
  f("pin", row.pin);
  f("datein", row.datein);
  f("doses", row.doses);
  f("lot", row.lot);
  f("vaccine", row.vaccine);
  f("maker", row.maker);
  f("expiry", row.expiry);
  f("tracking", row.tracking);
}

template <class F>
void VisitColumns(const Lot& row, F f) {
  f("vaccine", row.vaccine);
  f("lot", row.lot);
  f("expiry", row.expiry);
  f("maker", row.maker);
  f("remain", row.remain);
  f("size", row.size);
  f("pin", row.pin);
}

template <class F>
void VisitColumns(const ContractRow& row, F f) {
  f("vaccine", row.vaccine);
  f("maker", row.maker);
  f("begin", row.begin);
  f("end", row.end);
  f("minbulk", row.minbulk);
  f("unitsize", row.unitsize);
  f("pkgsize", row.pkgsize);
  f("ndcno", row.ndcno);
  f("cost", row.cost);
  f("contractid", row.contractid);
  f("sel_maker", row.sel_maker);
  f("dos_wind", row.dos_wind);
  f("excfunds", row.excfunds);
  f("descrip", row.descrip);
  f("locactiv", row.locactiv);
  f("maxno", row.maxno);
}

template <class F>
void VisitColumns(const VaccineRow& row, F f) {
  f("vaccine", row.vaccine);
  f("maxno", row.maxno);
  f("locactiv", row.locactiv);
}

template <class F>
void VisitColumns(const Action& row, F f) {
  f("status", row.status);
  f("action", row.action);
}

template <class F>
void VisitColumns(const ZipCode& row, F f) {
  f("zip", row.zip);
  f("cntyname", row.cntyname);
}

template <class F>
void VisitColumns(const Key& row, F f) {
  f("ctablename", row.ctablename);
  f("inextid", row.inextid);
}

constexpr const char* kNullCell = "<null>";
std::string Stored(const TextCell& cell) { return cell.value_or(kNullCell); }
std::string Stored(const Whole& cell) {
  return cell ? NumberText(static_cast<double>(*cell)) : kNullCell;
}
std::string Stored(const Number& cell) { return cell ? NumberText(*cell) : kNullCell; }
std::string Stored(const Logical& cell) {
  if (!cell) return kNullCell;
  return *cell ? "1" : "0";
}
std::string Stored(const Day& cell) {
  if (!cell) return kNullCell;
  return Digits(cell->year, 4) + "-" + Digits(cell->month, 2) + "-" + Digits(cell->day, 2);
}

ColumnKind KindOf(const TextCell& /*cell*/) { return ColumnKind::kText; }
ColumnKind KindOf(const Whole& /*cell*/) { return ColumnKind::kNumber; }
ColumnKind KindOf(const Number& /*cell*/) { return ColumnKind::kNumber; }
ColumnKind KindOf(const Logical& /*cell*/) { return ColumnKind::kLogical; }
ColumnKind KindOf(const Day& /*cell*/) { return ColumnKind::kDate; }

template <class T>
TableContents ContentsOf(std::string name, const std::vector<T>& rows) {
  TableContents contents{.name = std::move(name)};
  VisitColumns(T(), [&](std::string column, const auto& cell) {
    contents.columns.push_back({std::move(column), KindOf(cell)});
  });
  for (const T& row : rows) {
    Row texts;
    VisitColumns(row, [&](const std::string&, const auto& cell) { texts.push_back(Stored(cell)); });
    contents.rows.push_back(std::move(texts));
  }
  return contents;
}

template <class C>
TableContents ContentsOfOne(std::string name, std::string column, const std::vector<C>& cells) {
  TableContents contents{.name = std::move(name), .columns = {{std::move(column), KindOf(C())}}};
  for (const C& cell : cells) contents.rows.push_back({Stored(cell)});
  return contents;
}

}  // namespace

std::string NumberText(double number) {
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%.15g", number == 0 ? 0.0 : number);
  return text.data();
}

Verdict Execute(Tables& tables, const std::string& operation, const NamedArguments& arguments) {
  const Operation& described = Operations().at(operation);
  Verdict verdict;
  const auto refuse = [&](const Refused& refused, const char* source) {
    verdict = {
        .accepted = false, .number = refused.number, .source = source, .message = refused.message};
  };
  Arguments converted;
  try {
    converted = Convert(described.parameters, arguments);
  } catch (const Refused& refused) {
    refuse(refused, "");
    return verdict;
  }
  try {
    described.run(tables, converted, verdict);
  } catch (const Refused& refused) {
    refuse(refused, "LOTRIX DLL");
  }
  return verdict;
}

std::vector<TableContents> Contents(const Tables& tables) {
  return {ContentsOf("provider", tables.provider),
          ContentsOf("enroll", tables.enroll),
          ContentsOf("physicn", tables.physicn),
          ContentsOf("neworder", tables.neworder),
          ContentsOf("influenza", tables.influenza),
          ContentsOf("distrib", tables.distrib),
          ContentsOf("provhas", tables.provhas),
          ContentsOf("dosesadm", tables.dosesadm),
          ContentsOf("stock", tables.stock),
          ContentsOf("lots", tables.lots),
          ContentsOf("pvaccref", tables.pvaccref),
          ContentsOf("vaccref", tables.vaccref),
          ContentsOfOne("funding", "fundcode", tables.funding),
          ContentsOf("actref", tables.actref),
          ContentsOfOne("sectoref", "sector", tables.sectoref),
          ContentsOfOne("subdiv", "subdiv", tables.subdiv),
          ContentsOf("zipcodes", tables.zipcodes),
          ContentsOf("nextid", tables.nextid)};
}

}  // namespace lotrix::model

#include "src/platform/numbers.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <system_error>

#include "src/errors/raise_error.h"
#include "src/platform/text.h"

namespace lotrix {
namespace {

void SkipBlanks(std::string_view& text) {
  while (const std::size_t length = WhiteSpaceLength(text)) text.remove_prefix(length);
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// A decimal text's exact value, +-0.DIGITS * 10^magnitude.
struct Decimal {
  bool negative = false;
  // From the first digit that is not zero on, with commas and point still in it;
  // empty: zero.
  std::string_view digits;
  std::int64_t magnitude = 0;
};

// What may stand on either side of the digits.
struct Affixes {
  bool sign = false;
  bool minus = false;
  bool parenthesis = false;
  bool currency = false;
};

Affixes TakeAffixes(std::string_view& text, char parenthesis) {
  Affixes found;
  for (;;) {
    SkipBlanks(text);
    if (text.empty()) return found;
    const char c = text.front();
    if ((c == '+' || c == '-') && !found.sign) {
      found.sign = true;
      found.minus = c == '-';
    } else if (c == parenthesis && !found.parenthesis) {
      found.parenthesis = true;
    } else if (c == '$' && !found.currency) {
      found.currency = true;
    } else {
      return found;
    }
    text.remove_prefix(1);
  }
}

// Digits, commas and point into `number`; false when there is no digit.
bool TakeMantissa(std::string_view& text, Decimal& number) {
  bool anyDigit = false;
  bool point = false;
  std::size_t first = std::string_view::npos;
  std::size_t i = 0;
  for (; i < text.size(); ++i) {
    const char c = text[i];
    if (IsDigit(c)) {
      anyDigit = true;
      if (first == std::string_view::npos && c != '0') first = i;
      if (first != std::string_view::npos && !point) ++number.magnitude;
      if (first == std::string_view::npos && point) --number.magnitude;
    } else if (c == '.' && !point) {
      point = true;
    } else if (c != ',' || (!anyDigit && !point)) {
      break;
    }
  }
  if (first != std::string_view::npos) number.digits = text.substr(first, i - first);
  text.remove_prefix(i);
  return anyDigit;
}

// An exponent, if there is one, into `number`; false when its digits are missing.
bool TakeExponent(std::string_view& text, Decimal& number) {
  constexpr std::string_view kLetters = "eEdD";
  // More than any text has digits, little enough to add those to.
  constexpr std::int64_t kLimit = 100'000'000'000'000'000;
  if (text.empty() || kLetters.find(text.front()) == std::string_view::npos) return true;
  text.remove_prefix(1);
  const bool negative = !text.empty() && text.front() == '-';
  if (negative || (!text.empty() && text.front() == '+')) text.remove_prefix(1);
  if (text.empty() || !IsDigit(text.front())) return false;
  std::int64_t exponent = 0;
  for (; !text.empty() && IsDigit(text.front()); text.remove_prefix(1)) {
    exponent = std::min(kLimit, exponent * 10 + (text.front() - '0'));
  }
  number.magnitude += negative ? -exponent : exponent;
  return true;
}

std::optional<Decimal> ReadDecimal(std::string_view text) {
  Decimal number;
  const Affixes before = TakeAffixes(text, '(');
  if (!TakeMantissa(text, number) || !TakeExponent(text, number)) return std::nullopt;
  const Affixes after = TakeAffixes(text, ')');
  if (!text.empty() || (before.sign && after.sign) || before.parenthesis != after.parenthesis) {
    return std::nullopt;
  }
  number.negative = before.minus || after.minus || before.parenthesis;
  return number;
}

int DigitValue(char c) {
  if (IsDigit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return 16;
}

// The bits of an &H or &O text; of more than 32 only that they are more.
std::optional<std::uint64_t> ReadBitPattern(std::string_view text) {
  constexpr std::uint64_t kTooMany = std::uint64_t{1} << 32U;
  SkipBlanks(text);
  if (text.size() < 3 || text[0] != '&') return std::nullopt;
  const bool hexadecimal = text[1] == 'H' || text[1] == 'h';
  if (!hexadecimal && text[1] != 'O' && text[1] != 'o') return std::nullopt;
  const unsigned bitsPerDigit = hexadecimal ? 4 : 3;
  const int base = hexadecimal ? 16 : 8;
  text.remove_prefix(2);
  if (DigitValue(text.front()) >= base) return std::nullopt;
  std::uint64_t bits = 0;
  for (; !text.empty() && DigitValue(text.front()) < base; text.remove_prefix(1)) {
    bits = std::min(kTooMany,
                    bits << bitsPerDigit | static_cast<std::uint64_t>(DigitValue(text.front())));
  }
  SkipBlanks(text);
  if (!text.empty()) return std::nullopt;
  return bits;
}

std::optional<std::int64_t> RoundedWhole(const Decimal& number) {
  // No whole number of 32 bits has more digits.
  constexpr std::int64_t kMostDigits = 10;
  if (number.digits.empty() || number.magnitude < 0) return 0;
  if (number.magnitude > kMostDigits) return std::nullopt;
  std::int64_t whole = 0;
  std::int64_t taken = 0;
  int tenths = 0;
  bool more = false;
  for (const char c : number.digits) {
    if (!IsDigit(c)) continue;
    const int digit = c - '0';
    if (taken < number.magnitude) {
      whole = whole * 10 + digit;
    } else if (taken == number.magnitude) {
      tenths = digit;
    } else if (digit != 0) {
      more = true;
      break;
    }
    ++taken;
  }
  for (; taken < number.magnitude; ++taken) whole *= 10;
  if (tenths > 5 || (tenths == 5 && (more || whole % 2 != 0))) ++whole;
  return number.negative ? -whole : whole;
}

// Nothing when it is beyond the largest double.
std::optional<double> NearestDouble(const Decimal& number) {
  // Beyond these the answer is known; the exponent stays in what the parser takes.
  constexpr std::int64_t kOverflow = 400;
  constexpr std::int64_t kUnderflow = -400;
  // No two neighbouring doubles, nor the middle between them, need more digits to
  // be told apart; of what follows it counts only whether it is anything.
  constexpr std::size_t kDigits = 800;
  if (number.digits.empty() || number.magnitude < kUnderflow) return 0.0;
  if (number.magnitude > kOverflow) return std::nullopt;
  std::array<char, kDigits + 16> buffer{'0', '.'};
  std::size_t size = 2;
  for (const char c : number.digits) {
    if (!IsDigit(c)) continue;
    if (size < kDigits) {
      buffer[size++] = c;
    } else if (c != '0') {
      buffer[size++] = '1';
      break;
    }
  }
  buffer[size++] = 'e';
  char* end = buffer.data() + buffer.size();
  end = std::to_chars(buffer.data() + size, end, number.magnitude).ptr;
  double value = 0;
  const auto result = std::from_chars(buffer.data(), end, value);
  if (result.ec == std::errc::result_out_of_range) {
    return number.magnitude > 0 ? std::nullopt : std::optional(0.0);
  }
  return number.negative ? -value : value;
}

enum class Reading { kNumber, kNoNumber, kOverflow };

Reading ReadDouble(std::string_view text, double& value) {
  text = UpToNul(text);
  if (const auto decimal = ReadDecimal(text)) {
    const auto rounded = NearestDouble(*decimal);
    if (!rounded) return Reading::kOverflow;
    value = *rounded;
    return Reading::kNumber;
  }
  const auto bits = ReadBitPattern(text);
  if (!bits) return Reading::kNoNumber;
  if (*bits > std::numeric_limits<std::uint32_t>::max()) return Reading::kOverflow;
  value = static_cast<std::int32_t>(static_cast<std::uint32_t>(*bits));
  return Reading::kNumber;
}

// Almost every number that comes in is one to nine digits and nothing else.
bool IsPlainShortNumber(std::string_view text) {
  return !text.empty() && text.size() <= 9 &&
         std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

template <typename Whole, typename Bits>
Whole TextToWhole(std::string_view text) {
  if (IsPlainShortNumber(text)) {
    std::int32_t whole = 0;
    for (const char c : text) whole = whole * 10 + (c - '0');
    if (whole > std::numeric_limits<Whole>::max()) RaiseRuntimeError(RuntimeError::kOverflow);
    return static_cast<Whole>(whole);
  }
  text = UpToNul(text);
  if (const auto decimal = ReadDecimal(text)) {
    const auto rounded = RoundedWhole(*decimal);
    if (!rounded || *rounded < std::numeric_limits<Whole>::min() ||
        *rounded > std::numeric_limits<Whole>::max()) {
      RaiseRuntimeError(RuntimeError::kOverflow);
    }
    return static_cast<Whole>(*rounded);
  }
  const auto bits = ReadBitPattern(text);
  if (!bits) RaiseRuntimeError(RuntimeError::kTypeMismatch);
  if (*bits > std::numeric_limits<Bits>::max()) RaiseRuntimeError(RuntimeError::kOverflow);
  return std::bit_cast<Whole>(static_cast<Bits>(*bits));
}

}  // namespace

bool IsNumeric(std::string_view text) {
  if (IsPlainShortNumber(text)) return true;
  double value = 0;
  return ReadDouble(text, value) == Reading::kNumber;
}

double TextToDouble(std::string_view text) {
  double value = 0;
  const Reading reading = ReadDouble(text, value);
  if (reading == Reading::kNoNumber) RaiseRuntimeError(RuntimeError::kTypeMismatch);
  if (reading == Reading::kOverflow) RaiseRuntimeError(RuntimeError::kOverflow);
  return value;
}

std::int32_t TextToLong(std::string_view text) {
  return TextToWhole<std::int32_t, std::uint32_t>(text);
}

std::int16_t TextToInteger(std::string_view text) {
  return TextToWhole<std::int16_t, std::uint16_t>(text);
}

std::int32_t SumOf(std::int32_t a, std::int32_t b) {
  std::int32_t sum = 0;
  if (__builtin_add_overflow(a, b, &sum)) RaiseRuntimeError(RuntimeError::kOverflow);
  return sum;
}

std::int32_t DoubleToLong(double number) {
  // A tie goes to the even neighbour: inwards at the low end, outwards at the high
  // one. NaN fails both comparisons.
  if (!(number >= -2147483648.5 && number < 2147483647.5)) {
    RaiseRuntimeError(RuntimeError::kOverflow);
  }
  const double towardsZero = std::trunc(number);
  const double rest = std::abs(number - towardsZero);
  auto whole = static_cast<std::int64_t>(towardsZero);
  if (rest > 0.5 || (rest == 0.5 && whole % 2 != 0)) whole += number < 0 ? -1 : 1;
  return static_cast<std::int32_t>(whole);
}

std::string NumberText(std::int64_t number) {
  std::array<char, 24> buffer{};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
  return {buffer.data(), result.ptr};
}

std::string NumberText(double number) {
  if (std::isnan(number)) return "NaN";
  if (std::isinf(number)) return number < 0 ? "-Infinity" : "Infinity";
  if (number == 0) return "0";
  constexpr int kSignificantDigits = 15;
  // d.dddddddddddddde+XX
  std::array<char, 32> buffer{};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(number),
                                    std::chars_format::scientific, kSignificantDigits - 1);
  const std::string_view written(buffer.data(),
                                 static_cast<std::size_t>(result.ptr - buffer.data()));
  const std::size_t e = written.find('e');
  std::string digits(written.substr(0, 1));
  digits += written.substr(2, e - 2);
  digits.erase(digits.find_last_not_of('0') + 1);
  int exponent = 0;
  std::from_chars(written.data() + e + 2, result.ptr, exponent);
  if (written[e + 1] == '-') exponent = -exponent;

  std::string text = number < 0 ? "-" : "";
  const int decimals = static_cast<int>(digits.size()) - 1 - exponent;
  if (exponent >= kSignificantDigits || (exponent < 0 && decimals > kSignificantDigits)) {
    text += digits[0];
    if (digits.size() > 1) text.append(".").append(digits, 1);
    text += 'E';
    text += written.substr(e + 1);
  } else if (exponent < 0) {
    text.append("0.").append(static_cast<std::size_t>(-exponent - 1), '0').append(digits);
  } else {
    const auto whole = static_cast<std::size_t>(exponent) + 1;
    if (digits.size() < whole) digits.resize(whole, '0');
    text.append(digits, 0, whole);
    if (digits.size() > whole) text.append(".").append(digits, whole);
  }
  return text;
}

}  // namespace lotrix

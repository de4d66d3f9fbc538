// The conversions against plain models that share no code with them.
#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "lotrix/error.h"
#include "src/platform/dates.h"
#include "src/platform/numbers.h"
#include "src/platform/text.h"
#include "src/platform/values.h"

namespace lotrix {
namespace {

constexpr int kOverflow = 6;

std::string FromAlphabet(const std::string& alphabet, int least, int most) {
  std::string text;
  const int size = *rc::gen::inRange(least, most + 1);
  for (int i = 0; i < size; ++i) text += *rc::gen::elementOf(alphabet);
  return text;
}

struct Result {
  int error;
  double value;
};

bool operator==(const Result& a, const Result& b) {
  return a.error == b.error && a.value == b.value;
}

std::ostream& operator<<(std::ostream& out, const Result& result) {
  return out << "error " << result.error << ", value " << result.value;
}

template <typename Function>
Result ResultOf(Function function) {
  try {
    return {0, static_cast<double>(function())};
  } catch (const Error& error) {
    return {error.number(), 0};
  }
}

// ---- whole numbers --------------------------------------------------------

struct DecimalText {
  bool negative = false;
  std::string whole;     // digits
  std::string fraction;  // digits
  int exponent = 0;

  [[nodiscard]] std::string Text() const {
    return (negative ? "-" : "") + whole + "." + fraction + "e" + std::to_string(exponent);
  }
};

DecimalText ArbitraryDecimal() {
  DecimalText number;
  number.negative = *rc::gen::arbitrary<bool>();
  number.whole = FromAlphabet("0123456789", 1, 12);
  // Ties are what rounding is about.
  number.fraction = *rc::gen::element<std::string>("", "5", "50", "49", "51", "500000000000001");
  number.fraction += FromAlphabet("0005", 0, 3);
  number.exponent = *rc::gen::inRange(-14, 15);
  return number;
}

// By writing the number out without exponent and rounding it as one does on paper.
Result WholeModel(const DecimalText& number, std::int64_t least, std::int64_t most) {
  std::string left = number.whole;
  std::string right = number.fraction;
  for (int i = 0; i < number.exponent; ++i) {
    if (right.empty()) right = "0";
    left += right.front();
    right.erase(0, 1);
  }
  for (int i = 0; i > number.exponent; --i) {
    if (left.empty()) left = "0";
    right.insert(right.begin(), left.back());
    left.pop_back();
  }
  left = "0" + left;
  right += "0";
  const std::string half = "5" + std::string(right.size() - 1, '0');
  const bool odd = (left.back() - '0') % 2 == 1;
  if (right > half || (right == half && odd)) {
    auto digit = left.rbegin();
    for (; *digit == '9'; ++digit) *digit = '0';
    ++*digit;
  }
  left.erase(0, std::min(left.find_first_not_of('0'), left.size() - 1));
  if (left.size() > 17) return {kOverflow, 0};
  const std::int64_t value = (number.negative ? -1 : 1) * std::stoll(left);
  if (value < least || value > most) return {kOverflow, 0};
  return {0, static_cast<double>(value)};
}

RC_GTEST_PROP(NumberProperties, WholeNumbersAreTheExactDecimalRoundedHalfToEven, ()) {
  const DecimalText number = ArbitraryDecimal();
  const std::string text = number.Text();
  RC_LOG() << text;
  RC_ASSERT(ResultOf([&] { return TextToLong(text); }) ==
            WholeModel(number, std::numeric_limits<std::int32_t>::min(),
                       std::numeric_limits<std::int32_t>::max()));
  RC_ASSERT(ResultOf([&] { return TextToInteger(text); }) ==
            WholeModel(number, std::numeric_limits<std::int16_t>::min(),
                       std::numeric_limits<std::int16_t>::max()));
}

RC_GTEST_PROP(NumberProperties, WholeNumbersNearTheLimits, ()) {
  DecimalText number;
  number.negative = *rc::gen::arbitrary<bool>();
  number.whole = std::to_string(*rc::gen::elementOf(std::vector<std::int64_t>{32767, 2147483647}) +
                                *rc::gen::inRange(-2, 3));
  number.fraction = *rc::gen::element<std::string>("0", "4", "5", "50", "500001", "499999", "6");
  const std::string text = number.Text();
  RC_LOG() << text;
  RC_ASSERT(ResultOf([&] { return TextToLong(text); }) ==
            WholeModel(number, std::numeric_limits<std::int32_t>::min(),
                       std::numeric_limits<std::int32_t>::max()));
  RC_ASSERT(ResultOf([&] { return TextToInteger(text); }) ==
            WholeModel(number, std::numeric_limits<std::int16_t>::min(),
                       std::numeric_limits<std::int16_t>::max()));
}

RC_GTEST_PROP(NumberProperties, CommasChangeNothing, ()) {
  const DecimalText number = ArbitraryDecimal();
  std::string text = number.whole + "." + number.fraction;
  for (int i = 0; i < 3; ++i) {
    text.insert(*rc::gen::inRange<std::size_t>(1, text.size() + 1), ",");
  }
  const std::string plain = number.whole + "." + number.fraction;
  RC_LOG() << text;
  RC_ASSERT(TextToDouble(text) == TextToDouble(plain));
  RC_ASSERT(ResultOf([&] { return TextToLong(text); }) ==
            ResultOf([&] { return TextToLong(plain); }));
}

RC_GTEST_PROP(NumberProperties, DoublesAndDirectRoundingAgree, (std::int32_t whole)) {
  const double number = whole + *rc::gen::element(0.0, 0.25, 0.5, 0.75, -0.5);
  char text[64];
  std::snprintf(text, sizeof text, "%.2f", number);
  RC_LOG() << text;
  RC_ASSERT(ResultOf([&] { return DoubleToLong(number); }) ==
            ResultOf([&] { return TextToLong(text); }));
}

RC_GTEST_PROP(NumberProperties, WholeNumbersSurviveTheirText, (std::int32_t number)) {
  RC_ASSERT(TextToLong(NumberText(std::int64_t{number})) == number);
  RC_ASSERT(TextToLong(NumberText(static_cast<double>(number))) == number);
}

RC_GTEST_PROP(NumberProperties, BitPatternsAreTwosComplement, (std::uint32_t bits)) {
  char text[32];
  std::snprintf(text, sizeof text, *rc::gen::arbitrary<bool>() ? "&H%x" : "&o%o", bits);
  RC_LOG() << text;
  const double value = bits < 0x80000000U ? bits : bits - 4294967296.0;
  RC_ASSERT(TextToLong(text) == value);
  RC_ASSERT(TextToDouble(text) == value);
  const double small = bits < 0x8000U ? bits : bits - 65536.0;
  RC_ASSERT(ResultOf([&] { return TextToInteger(text); }) ==
            (bits < 0x10000U ? Result{0, small} : Result{kOverflow, 0}));
}

// ---- doubles --------------------------------------------------------------

// The C library reads plain numbers correctly rounded too, in the locale "C" that
// every program starts in.
Result DoubleModel(const std::string& plain) {
  const double value = std::strtod(plain.c_str(), nullptr);
  if (std::isinf(value)) return {kOverflow, 0};
  return {0, value};
}

RC_GTEST_PROP(NumberProperties, DoublesAreCorrectlyRounded, ()) {
  std::string text = *rc::gen::arbitrary<bool>() ? "-" : "";
  text += FromAlphabet("0123456789", 1, 40) + "." + FromAlphabet("0123456789", 0, 40);
  text += "e" + std::to_string(*rc::gen::inRange(-400, 400));
  RC_LOG() << text;
  RC_ASSERT(ResultOf([&] { return TextToDouble(text); }) == DoubleModel(text));
  RC_ASSERT(IsNumeric(text) == (DoubleModel(text).error == 0));
}

RC_GTEST_PROP(NumberProperties, TheMiddleOfTwoDoublesGoesToTheEvenOne, ()) {
  const auto mantissa = *rc::gen::inRange<std::uint64_t>(1ULL << 52U, 1ULL << 53U);
  const int exponent = *rc::gen::inRange(-1070, 950);
  const double low = std::ldexp(static_cast<double>(mantissa), exponent);
  const double high = std::nextafter(low, std::numeric_limits<double>::infinity());
  RC_PRE(low > 0 && std::isnormal(low));
  // Exact: the C library writes out every digit of the sum's halves.
  char text[1600];
  const long double middle = (static_cast<long double>(low) + high) / 2;
  const int size = std::snprintf(text, sizeof text, "%.1200Lf", middle);
  RC_ASSERT(size > 0 && static_cast<std::size_t>(size) < sizeof text);
  const double even = mantissa % 2 == 0 ? low : high;
  RC_ASSERT(TextToDouble(text) == even);
  RC_ASSERT(TextToDouble(std::string(text) + "1") == high);
}

// ---- the numeric test -----------------------------------------------------

std::ptrdiff_t Count(const std::string& text, char c) {
  return std::count(text.begin(), text.end(), c);
}

// By counting: order is free among what stands on either side of the digits.
bool NumericModel(const std::string& before, const std::string& body, const std::string& exponent,
                  const std::string& after) {
  const bool digits = body.find_first_of("057") != std::string::npos;
  const bool complete = exponent.empty() || exponent.find_first_of("25") != std::string::npos;
  return Count(before + after, '+') + Count(before + after, '-') <= 1 && Count(before, '(') <= 1 &&
         Count(before, '(') == Count(after, ')') && Count(before, '$') <= 1 &&
         Count(after, '$') <= 1 && digits && body.front() != ',' && Count(body, '.') <= 1 &&
         complete;
}

RC_GTEST_PROP(NumberProperties, TheNumericTestIsTheGrammar, ()) {
  const std::string before = FromAlphabet(" +-($", 0, 3);
  const std::string body = FromAlphabet("057.,", 1, 4);
  const std::string exponent = *rc::gen::element<std::string>("", "", "e", "e5", "D-2", "E+", "x");
  const std::string after = FromAlphabet(" +-)$", 0, 3);
  const std::string text = before + body + exponent + after;
  const bool numeric = NumericModel(before, body, exponent, after);
  RC_LOG() << '[' << text << ']';
  RC_CLASSIFY(numeric);
  RC_ASSERT(IsNumeric(text) == numeric);
}

RC_GTEST_PROP(NumberProperties, AnyTextIsReadOrRefused, ()) {
  const std::string text = FromAlphabet("0159 .,+-()$eEdD&hHoOfF%\t\xC2\xA0", 0, 12);
  const Result asDouble = ResultOf([&] { return TextToDouble(text); });
  const Result asLong = ResultOf([&] { return TextToLong(text); });
  RC_LOG() << '[' << text << ']';
  RC_ASSERT(IsNumeric(text) == (asDouble.error == 0));
  RC_ASSERT((asDouble.error == 13) == (asLong.error == 13));
}

// ---- a number as text -----------------------------------------------------

std::string NumberTextModel(double number) {
  char written[64];
  std::snprintf(written, sizeof written, "%.14e", std::fabs(number));
  std::string digits = std::string(1, written[0]) + std::string(written + 2, 14);
  const int exponent = std::atoi(written + 17);
  while (digits.size() > 1 && digits.back() == '0') digits.pop_back();
  const std::string sign = number < 0 ? "-" : "";
  const int decimals = static_cast<int>(digits.size()) - 1 - exponent;
  if (exponent >= 15 || (exponent < 0 && decimals > 15)) {
    std::string text = sign + digits.substr(0, 1);
    if (digits.size() > 1) text += "." + digits.substr(1);
    return text + "E" + std::string(written + 17);
  }
  std::string padded = std::string(30, '0') + digits + std::string(30, '0');
  const auto point = static_cast<std::size_t>(31 + exponent);
  std::string whole = padded.substr(0, point);
  whole.erase(0, std::min(whole.find_first_not_of('0'), whole.size() - 1));
  std::string fraction = padded.substr(point);
  fraction.erase(fraction.find_last_not_of('0') + 1);
  return sign + whole + (fraction.empty() ? "" : "." + fraction);
}

RC_GTEST_PROP(NumberProperties, NumberTextIsFifteenSignificantDigits, ()) {
  const double mantissa = static_cast<double>(*rc::gen::arbitrary<std::int64_t>());
  const double number = mantissa * std::pow(10.0, *rc::gen::inRange(-45, 10));
  RC_PRE(number != 0);
  RC_LOG() << NumberTextModel(number);
  RC_ASSERT(NumberText(number) == NumberTextModel(number));
}

RC_GTEST_PROP(NumberProperties, FifteenDigitsSurviveTheirText, ()) {
  const auto digits = *rc::gen::inRange<std::int64_t>(-999'999'999'999'999, 1'000'000'000'000'000);
  const int exponent = *rc::gen::inRange(-300, 290);
  const double number = TextToDouble(std::to_string(digits) + "e" + std::to_string(exponent));
  RC_LOG() << digits << "e" << exponent;
  RC_ASSERT(TextToDouble(NumberText(number)) == number);
}

// ---- dates ----------------------------------------------------------------

int DaysOfMonth(int year, int month) {
  const bool leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
  const int days[] = {31, leap ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return days[month - 1];
}

TEST(DateProperties, EveryDaySurvivesItsTexts) {
  // Counted day by day from the first; 30 December 1899 is number zero.
  std::int32_t number = -657434;
  for (int year = 100; year <= 9999; ++year) {
    for (int month = 1; month <= 12; ++month) {
      for (int day = 1; day <= DaysOfMonth(year, month); ++day, ++number) {
        const Date date{static_cast<std::int16_t>(year), static_cast<std::uint8_t>(month),
                        static_cast<std::uint8_t>(day)};
        if (number == 0) {
          ASSERT_EQ(date, kZeroDate);
          ASSERT_EQ(DateLiteralValue(DateText(date)), (std::variant<Empty, Null, Date>(date)));
        } else {
          ASSERT_EQ(TextToDate(DateText(date)), date);
        }
        ASSERT_EQ(TextToDate(ResultDateText(date)), date);
        ASSERT_EQ(IsoTextToDate(IsoDateText(date)), date);
        ASSERT_EQ(ToLong(date), number);
        ASSERT_EQ(ToDate(std::int64_t{number}), date);
      }
    }
  }
  EXPECT_EQ(number, 2958466);
}

std::optional<Date> DateModel(const std::string (&items)[3], const std::string (&gaps)[2]) {
  for (const std::string& gap : gaps) {
    if (gap != "/" && gap != "-" && gap != " / ") return std::nullopt;
  }
  const bool yearFirst = items[0].size() > 2;
  const std::string& year = items[yearFirst ? 0 : 2];
  const std::string& month = items[yearFirst ? 1 : 0];
  const std::string& day = items[yearFirst ? 2 : 1];
  if (year.size() > 4 || month.size() > 2 || day.size() > 2) return std::nullopt;
  int y = std::stoi(year);
  const int m = std::stoi(month);
  const int d = std::stoi(day);
  if (y < 30) y += 2000;
  if (y < 100) y += 1900;
  if (m < 1 || m > 12 || d < 1 || d > DaysOfMonth(y, m)) return std::nullopt;
  return Date{static_cast<std::int16_t>(y), static_cast<std::uint8_t>(m),
              static_cast<std::uint8_t>(d)};
}

RC_GTEST_PROP(DateProperties, NumericDatesAreTheGrammar, ()) {
  const auto item = [] {
    const int number = *rc::gen::weightedOneOf<int>({{3, rc::gen::inRange(1, 13)},
                                                     {2, rc::gen::inRange(0, 35)},
                                                     {1, rc::gen::inRange(90, 10100)}});
    return *rc::gen::element<std::string>("", "", "", "", "0", "00") + std::to_string(number);
  };
  const auto gap = [] {
    return *rc::gen::weightedElement<std::string>(
        {{6, "/"}, {6, "-"}, {3, " / "}, {1, " "}, {1, "//"}, {1, ""}});
  };
  const std::string items[] = {item(), item(), item()};
  const std::string gaps[] = {gap(), gap()};
  const std::string text = items[0] + gaps[0] + items[1] + gaps[1] + items[2];
  RC_LOG() << '[' << text << ']';
  RC_CLASSIFY(DateModel(items, gaps).has_value());
  RC_ASSERT(TextToDate(text) == DateModel(items, gaps));
}

RC_GTEST_PROP(DateProperties, TimesAreTheGrammar, ()) {
  const int hour = *rc::gen::inRange(0, 27);
  const std::string minutes =
      *rc::gen::element<std::string>("", ":0", ":59", ":60", ":30:15", ":5:60");
  const std::string half = *rc::gen::element<std::string>("", "", "AM", " pm", "  Pm", " x");
  const std::string time = std::to_string(hour) + minutes + half;
  bool valid = half.empty() ? !minutes.empty() && hour <= 23 : hour >= 1 && hour <= 12;
  if (half == " x" || minutes.find("60") != std::string::npos) valid = false;
  RC_LOG() << time;
  RC_CLASSIFY(valid);
  RC_ASSERT(TextToDate("1/5/2004 " + time).has_value() == valid);
  RC_ASSERT(std::holds_alternative<Date>(DateLiteralValue(time)) == valid);
}

// ---- texts ----------------------------------------------------------------

std::u32string ArbitraryCodePoints() {
  std::u32string codePoints;
  const int size = *rc::gen::inRange(0, 40);
  for (int i = 0; i < size; ++i) {
    const char32_t limit =
        *rc::gen::element<char32_t>(0x80, 0x80, 0x250, 0x2E00, 0x10000, 0x110000);
    const char32_t c = *rc::gen::inRange<char32_t>(0, limit);
    codePoints += c >= 0xD800 && c <= 0xDFFF ? U' ' : c;
  }
  return codePoints;
}

std::string Encode(const std::u32string& codePoints) {
  std::string text;
  for (const char32_t c : codePoints) {
    const int more = c < 0x80 ? 0 : c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    const unsigned leads[] = {0x00, 0xC0, 0xE0, 0xF0};
    text += static_cast<char>(leads[more] + (c >> static_cast<unsigned>(6 * more)));
    for (int i = more - 1; i >= 0; --i) {
      text += static_cast<char>(0x80U + (c >> static_cast<unsigned>(6 * i)) % 64U);
    }
  }
  return text;
}

RC_GTEST_PROP(TextProperties, LengthAndUtf16AreCountedInUnits, ()) {
  const std::u32string codePoints = ArbitraryCodePoints();
  const std::string text = Encode(codePoints);
  std::u16string units;
  for (const char32_t c : codePoints) {
    if (c < 0x10000) {
      units += static_cast<char16_t>(c);
    } else {
      units += static_cast<char16_t>(0xD7C0 + c / 0x400);
      units += static_cast<char16_t>(0xDC00 + c % 0x400);
    }
  }
  RC_ASSERT(IsValidUtf8(text));
  RC_ASSERT(Utf16Length(text) == units.size());
  RC_ASSERT(ToUtf16(text) == units);
}

RC_GTEST_PROP(TextProperties, UpperCasingKeepsTheLengthAndWorksCharacterByCharacter, ()) {
  const std::u32string codePoints = ArbitraryCodePoints();
  const std::string text = Encode(codePoints);
  const std::string upper = UpperCase(text);
  RC_ASSERT(IsValidUtf8(upper));
  RC_ASSERT(Utf16Length(upper) == Utf16Length(text));
  RC_ASSERT(UpperCase(upper) == upper);
  RC_ASSERT(EqualWithoutCase(text, upper));
  std::string one;
  for (const char32_t c : codePoints) one += UpperCase(Encode({c}));
  RC_ASSERT(upper == one);
}

RC_GTEST_PROP(TextProperties, EqualWithoutCaseIsEqualUpperCased, ()) {
  const auto text = [] {
    std::string value;
    const int size = *rc::gen::inRange(0, 4);
    for (int i = 0; i < size; ++i) {
      value += *rc::gen::element<std::string>("a", "A", "b", "é", "É", "ß", "ı", "I");
    }
    return value;
  };
  const std::string a = text();
  const std::string b = text();
  RC_LOG() << a << " " << b;
  RC_ASSERT(EqualWithoutCase(a, b) == (UpperCase(a) == UpperCase(b)));
}

RC_GTEST_PROP(TextProperties, TrimmingTakesTheBlanksAtTheEndsOnly, ()) {
  const std::string core = *rc::gen::element<std::string>("", "x", "a b", "\ta\t", "\xC2\xA0");
  const std::string text = std::string(*rc::gen::inRange<std::size_t>(0, 5), ' ') + core +
                           std::string(*rc::gen::inRange<std::size_t>(0, 5), ' ');
  RC_ASSERT(std::string(TrimBlanks(text)) == core);
}

// The well-formed byte sequences, one row of the Unicode table each.
bool Utf8Model(const std::string& bytes) {
  struct Row {
    unsigned firstLow, firstHigh, secondLow, secondHigh;
    std::size_t length;
  };
  const Row rows[] = {
      {0x00, 0x7F, 0, 0, 1},       {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
      {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3},
      {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4}};
  const auto byte = [&bytes](std::size_t i) -> unsigned {
    return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0;
  };
  std::size_t i = 0;
  while (i < bytes.size()) {
    const Row* match = nullptr;
    for (const Row& row : rows) {
      if (byte(i) < row.firstLow || byte(i) > row.firstHigh) continue;
      if (row.length > 1 && (byte(i + 1) < row.secondLow || byte(i + 1) > row.secondHigh)) continue;
      match = &row;
    }
    if (match == nullptr) return false;
    for (std::size_t j = 2; j < match->length; ++j) {
      if (byte(i + j) < 0x80 || byte(i + j) > 0xBF) return false;
    }
    i += match->length;
  }
  return true;
}

RC_GTEST_PROP(TextProperties, OnlyWellFormedBytesAreUtf8, ()) {
  std::string text = Encode(ArbitraryCodePoints());
  if (!text.empty() && *rc::gen::arbitrary<bool>()) {
    const auto at = *rc::gen::inRange<std::size_t>(0, text.size());
    text[at] = static_cast<char>(*rc::gen::inRange(0, 256));
  }
  if (*rc::gen::inRange(0, 4) == 0)
    text.resize(text.size() - std::min<std::size_t>(text.size(), 1));
  RC_CLASSIFY(Utf8Model(text));
  RC_ASSERT(IsValidUtf8(text) == Utf8Model(text));
  // What is no UTF-8 is never read beyond its end either.
  RC_ASSERT(ToUtf16(text).size() <= text.size());
  RC_ASSERT(IsValidUtf8(UpperCase(text)) == Utf8Model(text));
}

RC_GTEST_PROP(TextProperties, ShortByteStringsAreUtf8OrNot, ()) {
  std::string text;
  const int size = *rc::gen::inRange(1, 6);
  for (int i = 0; i < size; ++i) {
    text += *rc::gen::elementOf(std::string(
        "a\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0\xE1\xED\xEF\xF0\xF4\xF5\xFF"));
  }
  RC_ASSERT(IsValidUtf8(text) == Utf8Model(text));
}

RC_GTEST_PROP(TextProperties, ThePhoneFormatHasTenPlaces, ()) {
  const std::string digits = FromAlphabet("0123456789", 1, 14);
  const std::u16string formatted = FormatPhone(std::u16string(digits.begin(), digits.end()));
  const std::string pattern = "(@@@) @@@-@@@@";
  std::string kept = digits.substr(digits.size() > 10 ? digits.size() - 10 : 0);
  kept.resize(10, ' ');
  std::string expected;
  std::size_t next = 0;
  for (const char c : pattern) expected += c == '@' ? kept[next++] : c;
  RC_ASSERT(formatted == std::u16string(expected.begin(), expected.end()));
}

}  // namespace
}  // namespace lotrix

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "lotrix/error.h"
#include "src/platform/numbers.h"

namespace lotrix {
namespace {

using namespace std::string_view_literals;

constexpr int kOverflow = 6;
constexpr int kTypeMismatch = 13;

template <typename Function>
int ErrorNumber(Function function) {
  try {
    static_cast<void>(function());
  } catch (const Error& error) {
    return error.number();
  }
  return 0;
}

int DoubleError(std::string_view text) {
  return ErrorNumber([&] { return TextToDouble(text); });
}
int LongError(std::string_view text) {
  return ErrorNumber([&] { return TextToLong(text); });
}
int IntegerError(std::string_view text) {
  return ErrorNumber([&] { return TextToInteger(text); });
}

void ExpectNumber(std::string_view text, double value) {
  SCOPED_TRACE(text);
  EXPECT_TRUE(IsNumeric(text));
  ASSERT_EQ(DoubleError(text), 0);
  EXPECT_EQ(TextToDouble(text), value);
}

void ExpectNoNumber(std::string_view text) {
  SCOPED_TRACE(text);
  EXPECT_FALSE(IsNumeric(text));
  EXPECT_EQ(DoubleError(text), kTypeMismatch);
  EXPECT_EQ(LongError(text), kTypeMismatch);
  EXPECT_EQ(IntegerError(text), kTypeMismatch);
}

TEST(Numbers, PlainOnes) {
  ExpectNumber("0", 0);
  ExpectNumber("12", 12);
  ExpectNumber("007", 7);
  ExpectNumber("12.5", 12.5);
  ExpectNumber(".5", 0.5);
  ExpectNumber("5.", 5);
  ExpectNumber("0.1", 0.1);
}

TEST(Numbers, AreNot) {
  for (const char* text :
       {"",      " ",    ".",     "-",    "+",   "$",    "(",     "()",  "1 234",    "1e 5",
        "1e+ 5", "1 e5", "5%",    "0x1F", ",5",  "True", "False", "abc", "1a",       "a1",
        "1.2.3", "..5",  "1..",   "e5",   ".e5", "1e",   "1e+",   "1e-", "1e5.",     "1e5.5",
        "1e1,0", "1ee5", "1e5e5", ",",    ".,",  "-,5",  "NaN",   "inf", "Infinity", "1_000",
        "1'000", "#5",   "1f",    "0b1",  "5L",  "5!",   "€5",    "£5",  "- . 5 5",  "1/2"}) {
    ExpectNoNumber(text);
  }
}

TEST(Numbers, OnlyAsciiDigitsAreDigits) {
  for (const char* text : {"\u0661\u0662", "1\u0662", "\uFF11\uFF12", "\u0967", "½", "²", "−5"}) {
    ExpectNoNumber(text);
  }
}

TEST(Numbers, BlanksAreUnicodeWhiteSpaceAndOutside) {
  ExpectNumber(" 5", 5);
  ExpectNumber("5 ", 5);
  ExpectNumber("\t\n\v\f\r 5 \t", 5);
  ExpectNumber(
      "\u00A0"
      "5\u00A0",
      5);
  ExpectNumber("\u3000\u20285\u1680\u205F\u202F\u0085", 5);
  ExpectNoNumber(
      "\u200B"
      "5");
  ExpectNoNumber(
      "\uFEFF"
      "5");
  ExpectNoNumber(
      "1\u00A0"
      "234");
  ExpectNoNumber(". 5");
}

TEST(Numbers, SignsCurrencyAndParenthesesInAnyOrder) {
  ExpectNumber("-5", -5);
  ExpectNumber("+5", 5);
  ExpectNumber("5-", -5);
  ExpectNumber("5+", 5);
  ExpectNumber("5 -", -5);
  ExpectNumber("- 5", -5);
  ExpectNumber("$5", 5);
  ExpectNumber("5$", 5);
  ExpectNumber("5 $", 5);
  ExpectNumber("-$5", -5);
  ExpectNumber("$-5", -5);
  ExpectNumber(" $ - 5 ", -5);
  ExpectNumber("5$-", -5);
  ExpectNumber("5-$", -5);
  ExpectNumber("$5-", -5);
  ExpectNumber("-5$", -5);
  ExpectNumber("(5)", -5);
  ExpectNumber("(-5)", -5);
  ExpectNumber("-(5)", -5);
  ExpectNumber("(5-)", -5);
  ExpectNumber("(5)-", -5);
  ExpectNumber("(+5)", -5);
  ExpectNumber("+(5)", -5);
  ExpectNumber("($5)", -5);
  ExpectNumber("$(5)", -5);
  ExpectNumber("(5$)", -5);
  ExpectNumber("(5)$", -5);
  ExpectNumber(" ( $ - 5 ) ", -5);
  ExpectNumber("-($1,234.50)", -1234.5);
  ExpectNumber("-1e2", -100);
  ExpectNumber("1e2-", -100);
}

TEST(Numbers, EachAtMostOnceAndParenthesesPair) {
  for (const char* text :
       {"--5",   "+-5",   "-+5",   "5--", "5-+", "-5-",  "+5-",  "-5+", "+5+", "- - 5", "$$5",
        "5$$",   "$ $5",  "((5))", "(5",  "5)",  "(5))", "((5)", ")5(", ")5",  "5(",    "(-5-)",
        "-(5)-", "-(-5)", "(5)(",  "- ",  "(-)", "($)",  "5-5",  "5$5", "(5)5"}) {
    ExpectNoNumber(text);
  }
}

TEST(Numbers, CommasAnywhereAfterTheFirstDigitOrThePoint) {
  ExpectNumber("1,234", 1234);
  ExpectNumber("1,2,3,4", 1234);
  ExpectNumber("1,,2", 12);
  ExpectNumber("12,", 12);
  ExpectNumber("1,.5", 1.5);
  ExpectNumber("1.5,0", 1.5);
  ExpectNumber(".,5", 0.5);
  ExpectNumber("5.,", 5);
  ExpectNumber("0,000,1", 1);
  ExpectNumber("1,234e2", 123400);
  ExpectNumber("1,234,e2", 123400);
  EXPECT_EQ(TextToLong("2,147,483,647"), 2147483647);
  EXPECT_EQ(TextToLong("2,,1,4748,3647.,4"), 2147483647);
  EXPECT_EQ(LongError("2,147,483,647.,5"), kOverflow);
}

TEST(Numbers, Exponents) {
  ExpectNumber("1e5", 1e5);
  ExpectNumber("1E5", 1e5);
  ExpectNumber("1d5", 1e5);
  ExpectNumber("1D5", 1e5);
  ExpectNumber("1e+5", 1e5);
  ExpectNumber("1e-5", 1e-5);
  ExpectNumber("1d-5", 1e-5);
  ExpectNumber(".5e1", 5);
  ExpectNumber("5.e1", 50);
  ExpectNumber("1e0005", 1e5);
  ExpectNumber("1e0", 1);
}

TEST(Numbers, AreReadUpToTheFirstU0000) {
  ExpectNumber("12\0x"sv, 12);
  ExpectNumber("12 \0 34"sv, 12);
  ExpectNoNumber(
      "\0"
      "12"sv);
  ExpectNoNumber(
      "1e\0"
      "5"sv);
  ExpectNoNumber("(1\0)"sv);
  EXPECT_EQ(TextToLong("12\0"
                       "3"sv),
            12);
  EXPECT_EQ(TextToLong("&HFF\0F"sv), 255);
}

TEST(Numbers, BitPatterns) {
  ExpectNumber("&H1F", 31);
  ExpectNumber("&h1f", 31);
  ExpectNumber("&O17", 15);
  ExpectNumber("&o17", 15);
  ExpectNumber("  &H1F \u00A0", 31);
  ExpectNumber("&HFFFF", 65535);
  ExpectNumber("&HFFFFFFFF", -1);
  ExpectNumber("&H80000000", -2147483648.0);
  ExpectNumber("&H7FFFFFFF", 2147483647);
  ExpectNumber("&O37777777777", -1);
  ExpectNumber("&H0000000000001F", 31);
  EXPECT_EQ(TextToLong("&H1F"), 31);
  EXPECT_EQ(TextToLong("&O17"), 15);
  EXPECT_EQ(TextToLong("&HFFFFFFFF"), -1);
  EXPECT_EQ(TextToLong("&HFFFF"), 65535);
  EXPECT_EQ(TextToLong("&H80000000"), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(TextToLong("&H7FFFFFFF"), std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(TextToLong("&O37777777777"), -1);
  EXPECT_EQ(TextToInteger("&H1f"), 31);
  EXPECT_EQ(TextToInteger("&HFFFF"), -1);
  EXPECT_EQ(TextToInteger("&H8000"), -32768);
  EXPECT_EQ(TextToInteger("&H7FFF"), 32767);
  EXPECT_EQ(TextToInteger("&O177777"), -1);
}

TEST(Numbers, BitPatternsWithMoreBitsThanTheType) {
  EXPECT_EQ(IntegerError("&H10000"), kOverflow);
  EXPECT_EQ(IntegerError("&HFFFFFFFF"), kOverflow);
  EXPECT_EQ(IntegerError("&O200000"), kOverflow);
  for (const char* text : {"&H100000000", "&HFFFFFFFFFF", "&O40000000000", "&H10000000000000000",
                           "&H100000000000000000000000"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(LongError(text), kOverflow);
    EXPECT_EQ(IntegerError(text), kOverflow);
    EXPECT_EQ(DoubleError(text), kOverflow);
    EXPECT_FALSE(IsNumeric(text));
  }
}

TEST(Numbers, BitPatternsHaveNothingElseAround) {
  for (const char* text :
       {"&H",    "&O",    "&",     "&H ",   "&HG",   "&O8",   "&O18",   "&H1G",
        "& H1F", "&H 1F", "&H1 F", "-&H1F", "&H-1",  "&H1F-", "(&H1F)", "$&H1F",
        "&H1,0", "&H1.0", "&17",   "&B1",   "&H1F&", "H1F",   "&&H1",   "&HFFFFFFFFFFx"}) {
    ExpectNoNumber(text);
  }
}

TEST(TextToLong, RoundsHalfToEven) {
  const std::vector<std::pair<const char*, std::int32_t>> cases = {
      {"0.5", 0},    {"1.5", 2},    {"2.5", 2},    {"3.5", 4},  {"-0.5", 0},
      {"-1.5", -2},  {"-2.5", -2},  {"(3.5)", -4}, {"0.49", 0}, {"0.51", 1},
      {"0.050", 0},  {"0.5000", 0}, {"1.50", 2},   {"2.51", 3}, {"-0.51", -1},
      {"99.5", 100}, {"9.5", 10},   {"10.5", 10},  {"0.9", 1},  {"999999999.5", 1000000000}};
  for (const auto& [text, value] : cases) {
    SCOPED_TRACE(text);
    EXPECT_EQ(TextToLong(text), value);
    EXPECT_EQ(IntegerError(text), value > 32767 ? kOverflow : 0);
    if (value <= 32767) {
      EXPECT_EQ(TextToInteger(text), value);
    }
  }
}

TEST(TextToLong, UsesTheExactDecimalValue) {
  EXPECT_EQ(TextToLong("2.500000000000000000000000000000000000000000001"), 3);
  EXPECT_EQ(TextToLong("2.499999999999999999999999999999999999999999999"), 2);
  EXPECT_EQ(TextToLong("-2.500000000000000000000000000000000000000000001"), -3);
  EXPECT_EQ(TextToLong("2147483647.49999999999999999999"), 2147483647);
  EXPECT_EQ(TextToLong("0.5e1"), 5);
  EXPECT_EQ(TextToLong("4999999999999999999999e-21"), 5);
  EXPECT_EQ(TextToLong("4499999999999999999999e-21"), 4);
  EXPECT_EQ(TextToLong("45e-1"), 4);
  EXPECT_EQ(TextToLong("5e-1"), 0);
  EXPECT_EQ(TextToLong("5e-2"), 0);
  EXPECT_EQ(TextToLong("51e-2"), 1);
  EXPECT_EQ(TextToLong("0.00025e4"), 2);
  EXPECT_EQ(TextToLong("0.00025001e4"), 3);
  EXPECT_EQ(TextToLong("1e9"), 1000000000);
  EXPECT_EQ(TextToLong("2.1e9"), 2100000000);
  EXPECT_EQ(TextToLong("0e99"), 0);
  EXPECT_EQ(TextToLong("1e-400"), 0);
}

TEST(TextToLong, HasTheRangeOf32Bits) {
  EXPECT_EQ(TextToLong("2147483647"), 2147483647);
  EXPECT_EQ(TextToLong("2147483647.4"), 2147483647);
  EXPECT_EQ(LongError("2147483647.5"), kOverflow);
  EXPECT_EQ(LongError("2147483648"), kOverflow);
  EXPECT_EQ(TextToLong("-2147483648"), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(TextToLong("-2147483648.5"), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(LongError("-2147483648.500001"), kOverflow);
  EXPECT_EQ(LongError("-2147483649"), kOverflow);
  EXPECT_EQ(LongError("9999999999"), kOverflow);
  EXPECT_EQ(LongError("10000000000"), kOverflow);
  EXPECT_EQ(LongError("99999999999999999999999999"), kOverflow);
  EXPECT_EQ(LongError("1e10"), kOverflow);
  EXPECT_EQ(LongError("1e400"), kOverflow);
}

TEST(TextToInteger, HasTheRangeOf16Bits) {
  EXPECT_EQ(TextToInteger("32767"), 32767);
  EXPECT_EQ(TextToInteger("32767.4"), 32767);
  EXPECT_EQ(IntegerError("32767.5"), kOverflow);
  EXPECT_EQ(IntegerError("32768"), kOverflow);
  EXPECT_EQ(TextToInteger("-32768"), -32768);
  EXPECT_EQ(TextToInteger("-32768.5"), -32768);
  EXPECT_EQ(IntegerError("-32768.51"), kOverflow);
  EXPECT_EQ(IntegerError("-32769"), kOverflow);
  EXPECT_EQ(IntegerError("99999"), kOverflow);
  EXPECT_EQ(IntegerError("2147483648"), kOverflow);
  EXPECT_EQ(IntegerError("1e400"), kOverflow);
}

TEST(Numbers, NotNumericComesBeforeTheRange) {
  for (const char* text : {"99999999999999x", "1e400x", "(99999999999", "99999999999999%"}) {
    ExpectNoNumber(text);
  }
}

TEST(Numbers, HugeExponents) {
  for (const char* text :
       {"1e99999999999", "1e9223372036854775807", "1e9223372036854775808",
        "1e99999999999999999999999999999999999", "-1e18446744073709551616", ".1e4294967297"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(DoubleError(text), kOverflow);
    EXPECT_EQ(LongError(text), kOverflow);
    EXPECT_EQ(IntegerError(text), kOverflow);
    EXPECT_FALSE(IsNumeric(text));
  }
  for (const char* text :
       {"1e-99999999999", "1e-9223372036854775808", "1e-99999999999999999999999999999999999",
        "0e99999999999999999999", "-1e-18446744073709551616", "0.000e99999999999"}) {
    ExpectNumber(text, 0);
    EXPECT_EQ(TextToLong(text), 0);
    EXPECT_EQ(TextToInteger(text), 0);
  }
}

TEST(Numbers, AMegabyteOfDigits) {
  const auto start = std::chrono::steady_clock::now();
  const std::string nines(1'000'000, '9');
  const std::string zeros(1'000'000, '0');
  EXPECT_EQ(DoubleError(nines), kOverflow);
  EXPECT_EQ(LongError(nines), kOverflow);
  ExpectNumber(zeros, 0);
  ExpectNumber(zeros + "7", 7);
  ExpectNumber("0." + zeros + "7", 0);
  ExpectNumber("0." + zeros + "7e1000001", 7);
  ExpectNumber("7" + zeros + "e-1000000", 7);
  ExpectNumber("1." + zeros + "1", 1);
  ExpectNumber("1e" + zeros + "5", 1e5);
  EXPECT_EQ(TextToLong("0." + zeros + "25e1000002"), 25);
  EXPECT_EQ(TextToLong("25" + zeros + "e-1000001"), 2);
  EXPECT_EQ(TextToLong("25" + zeros + "1e-1000002"), 3);
  EXPECT_EQ(TextToLong("2.5" + zeros), 2);
  EXPECT_EQ(TextToLong("2.5" + zeros + "1"), 3);
  EXPECT_EQ(LongError("&H" + nines), kOverflow);
  EXPECT_EQ(LongError("1e" + nines), kOverflow);
  ExpectNumber(std::string(1'000'000, ' ') + "5" + std::string(1'000'000, ' '), 5);
  ExpectNumber("5" + std::string(1'000'000, ','), 5);
  // Work that grew with the square would take hours.
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST(TextToDouble, IsCorrectlyRounded) {
  ExpectNumber("0.3", 0.3);
  ExpectNumber("123456789.123456789", 123456789.123456789);
  ExpectNumber("9007199254740993", 9007199254740992.0);
  ExpectNumber("9007199254740993.0000000000000000000000000000000001", 9007199254740994.0);
  // A tie whose last digit stands a thousand places behind.
  ExpectNumber("9007199254740993." + std::string(1000, '0') + "1", 9007199254740994.0);
  ExpectNumber("9007199254740993." + std::string(1000, '0'), 9007199254740992.0);
  ExpectNumber("2.2250738585072014e-308", std::numeric_limits<double>::min());
  ExpectNumber("2.2250738585072011e-308", 2.2250738585072011e-308);
}

TEST(TextToDouble, Limits) {
  ExpectNumber("1.7976931348623157e308", std::numeric_limits<double>::max());
  ExpectNumber("-1.7976931348623157e308", -std::numeric_limits<double>::max());
  ExpectNumber("1.7976931348623158e308", std::numeric_limits<double>::max());
  for (const char* text : {"1.7976931348623159e308", "-1.7976931348623159e308", "1e309", "1e400",
                           "179769313486231590000000000000000e277"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(DoubleError(text), kOverflow);
    EXPECT_FALSE(IsNumeric(text));
  }
  ExpectNumber("4.9406564584124654e-324", std::numeric_limits<double>::denorm_min());
  ExpectNumber("2.4703282292062328e-324", std::numeric_limits<double>::denorm_min());
  ExpectNumber("2.4703282292062327e-324", 0);
  ExpectNumber("1e-324", 0);
  ExpectNumber("-1e-400", 0);
  EXPECT_FALSE(std::signbit(TextToDouble("-1e-400")));
  EXPECT_FALSE(std::signbit(TextToDouble("-1e-350")));
}

TEST(DoubleToLong, RoundsHalfToEven) {
  EXPECT_EQ(DoubleToLong(0.5), 0);
  EXPECT_EQ(DoubleToLong(1.5), 2);
  EXPECT_EQ(DoubleToLong(2.5), 2);
  EXPECT_EQ(DoubleToLong(-0.5), 0);
  EXPECT_EQ(DoubleToLong(-1.5), -2);
  EXPECT_EQ(DoubleToLong(-2.5), -2);
  EXPECT_EQ(DoubleToLong(2.4), 2);
  EXPECT_EQ(DoubleToLong(2.6), 3);
  EXPECT_EQ(DoubleToLong(-2.6), -3);
  EXPECT_EQ(DoubleToLong(0.49999999999999994), 0);
  EXPECT_EQ(DoubleToLong(-0.0), 0);
}

TEST(DoubleToLong, HasTheRangeOf32Bits) {
  const auto error = [](double number) {
    return ErrorNumber([number] { return DoubleToLong(number); });
  };
  EXPECT_EQ(DoubleToLong(2147483647.0), 2147483647);
  EXPECT_EQ(DoubleToLong(2147483647.4), 2147483647);
  EXPECT_EQ(error(2147483647.5), kOverflow);
  EXPECT_EQ(error(2147483648.0), kOverflow);
  EXPECT_EQ(DoubleToLong(-2147483648.0), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(DoubleToLong(-2147483648.5), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(error(-2147483648.6), kOverflow);
  EXPECT_EQ(error(1e300), kOverflow);
  EXPECT_EQ(error(std::numeric_limits<double>::infinity()), kOverflow);
  EXPECT_EQ(error(-std::numeric_limits<double>::infinity()), kOverflow);
  EXPECT_EQ(error(std::numeric_limits<double>::quiet_NaN()), kOverflow);
}

TEST(NumberText, WholeNumbersPlainly) {
  EXPECT_EQ(NumberText(std::int64_t{0}), "0");
  EXPECT_EQ(NumberText(std::int64_t{-12}), "-12");
  EXPECT_EQ(NumberText(std::numeric_limits<std::int64_t>::max()), "9223372036854775807");
  EXPECT_EQ(NumberText(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
}

TEST(NumberText, PlainForm) {
  const std::vector<std::pair<double, const char*>> cases = {
      {0.1, "0.1"},
      {12.5, "12.5"},
      {0.00001, "0.00001"},
      {123456789012345.0, "123456789012345"},
      {-0.0, "0"},
      {0.0, "0"},
      {1.0, "1"},
      {-1.5, "-1.5"},
      {100.0, "100"},
      {1e14, "100000000000000"},
      {999999999999999.0, "999999999999999"},
      {1.0 / 3, "0.333333333333333"},
      {2.0 / 3, "0.666666666666667"},
      {100.0 / 3, "33.3333333333333"},
      {0.1 + 0.2, "0.3"},
      {1e-15, "0.000000000000001"},
      {0.012345678901234, "0.012345678901234"},
      {0.012, "0.012"},
      {-0.00001, "-0.00001"},
      {12345678.9, "12345678.9"},
      {1.00000000000001, "1.00000000000001"},
      {1.000000000000001, "1"},
      {0.9999999999999999, "1"},
      {99999999999999.95, "100000000000000"}};
  for (const auto& [number, text] : cases) EXPECT_EQ(NumberText(number), text);
}

TEST(NumberText, ExponentForm) {
  const std::vector<std::pair<double, const char*>> cases = {
      {1e15, "1E+15"},
      {-1e15, "-1E+15"},
      {1234567890123456.0, "1.23456789012346E+15"},
      {999999999999999.9, "1E+15"},
      {1.5e-16, "1.5E-16"},
      {1e-16, "1E-16"},
      {1.0 / 12, "8.33333333333333E-02"},
      {-1.0 / 12, "-8.33333333333333E-02"},
      {1.5e-15, "1.5E-15"},
      {1e100, "1E+100"},
      {1e-300, "1E-300"},
      {std::numeric_limits<double>::max(), "1.79769313486232E+308"},
      {std::numeric_limits<double>::denorm_min(), "4.94065645841247E-324"}};
  for (const auto& [number, text] : cases) EXPECT_EQ(NumberText(number), text);
}

TEST(NumberText, WhatIsNoNumber) {
  EXPECT_EQ(NumberText(std::numeric_limits<double>::infinity()), "Infinity");
  EXPECT_EQ(NumberText(-std::numeric_limits<double>::infinity()), "-Infinity");
  EXPECT_EQ(NumberText(std::numeric_limits<double>::quiet_NaN()), "NaN");
}

}  // namespace
}  // namespace lotrix

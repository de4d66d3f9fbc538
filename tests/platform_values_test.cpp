#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <string>

#include "lotrix/error.h"
#include "src/platform/values.h"

namespace lotrix {
namespace {

using namespace std::string_literals;

constexpr int kOverflow = 6;
constexpr int kTypeMismatch = 13;
constexpr int kInvalidUseOfNull = 94;

template <typename Function>
int ErrorNumber(Function function, const Value& value) {
  try {
    static_cast<void>(function(value));
  } catch (const Error& error) {
    return error.number();
  }
  return 0;
}

Value Whole(std::int64_t number) { return number; }

template <typename Function>
void ExpectRefusesNullAndCollections(Function function) {
  EXPECT_EQ(ErrorNumber(function, Null{}), kInvalidUseOfNull);
  EXPECT_EQ(ErrorNumber(function, std::shared_ptr<Collection>()), kTypeMismatch);
}

TEST(Values, NullAndCollectionsDoNotConvert) {
  ExpectRefusesNullAndCollections(ToText);
  ExpectRefusesNullAndCollections(ToLong);
  ExpectRefusesNullAndCollections(ToDouble);
  ExpectRefusesNullAndCollections(ToLogical);
  ExpectRefusesNullAndCollections(ToDate);
}

TEST(Values, EmptyIsNothingOfEachType) {
  EXPECT_EQ(ToText(Empty{}), "");
  EXPECT_EQ(ToLong(Empty{}), 0);
  EXPECT_EQ(ToDouble(Empty{}), 0.0);
  EXPECT_FALSE(ToLogical(Empty{}));
  EXPECT_EQ(ToDate(Empty{}), kZeroDate);
}

TEST(ToText, OfEachType) {
  EXPECT_EQ(ToText("é a "s), "é a ");
  EXPECT_EQ(ToText("a\0b"s), "a\0b"s);
  EXPECT_EQ(ToText(Whole(-12)), "-12");
  EXPECT_EQ(ToText(Whole(9007199254740993)), "9007199254740993");
  EXPECT_EQ(ToText(12.5), "12.5");
  EXPECT_EQ(ToText(1e15), "1E+15");
  EXPECT_EQ(ToText(true), "True");
  EXPECT_EQ(ToText(false), "False");
  EXPECT_EQ(ToText(Date{2004, 3, 7}), "3/7/2004");
  EXPECT_EQ(ToText(kZeroDate), "12:00:00 AM");
}

TEST(ToLong, OfEachType) {
  EXPECT_EQ(ToLong("2.5"s), 2);
  EXPECT_EQ(ToLong(" (1,234) "s), -1234);
  EXPECT_EQ(ToLong("&HFFFFFFFF"s), -1);
  EXPECT_EQ(ToLong(Whole(7)), 7);
  EXPECT_EQ(ToLong(2.5), 2);
  EXPECT_EQ(ToLong(-3.5), -4);
  EXPECT_EQ(ToLong(true), -1);
  EXPECT_EQ(ToLong(false), 0);
  EXPECT_EQ(ToLong(kZeroDate), 0);
  EXPECT_EQ(ToLong(Date{1900, 1, 1}), 2);
  EXPECT_EQ(ToLong(Date{1899, 12, 29}), -1);
  EXPECT_EQ(ToLong(Date{2004, 1, 5}), 37991);
  EXPECT_EQ(ToLong(Date{100, 1, 1}), -657434);
  EXPECT_EQ(ToLong(Date{9999, 12, 31}), 2958465);
}

TEST(ToLong, Refuses) {
  EXPECT_EQ(ErrorNumber(ToLong, "abc"s), kTypeMismatch);
  EXPECT_EQ(ErrorNumber(ToLong, ""s), kTypeMismatch);
  EXPECT_EQ(ErrorNumber(ToLong, "True"s), kTypeMismatch);
  EXPECT_EQ(ErrorNumber(ToLong, "1/5/2004"s), kTypeMismatch);
  EXPECT_EQ(ErrorNumber(ToLong, "2147483648"s), kOverflow);
  EXPECT_EQ(ErrorNumber(ToLong, 2147483647.5), kOverflow);
  EXPECT_EQ(ErrorNumber(ToLong, Whole(2147483648)), kOverflow);
  EXPECT_EQ(ErrorNumber(ToLong, Whole(-2147483649)), kOverflow);
  EXPECT_EQ(ToLong(Whole(2147483647)), 2147483647);
  EXPECT_EQ(ToLong(Whole(-2147483648)), std::numeric_limits<std::int32_t>::min());
}

TEST(ToDouble, OfEachType) {
  EXPECT_EQ(ToDouble("12.5"s), 12.5);
  EXPECT_EQ(ToDouble("&HFFFFFFFF"s), -1.0);
  EXPECT_EQ(ToDouble(Whole(7)), 7.0);
  EXPECT_EQ(ToDouble(-0.25), -0.25);
  EXPECT_EQ(ToDouble(true), -1.0);
  EXPECT_EQ(ToDouble(false), 0.0);
  EXPECT_EQ(ToDouble(Date{1900, 1, 1}), 2.0);
  EXPECT_EQ(ErrorNumber(ToDouble, "x"s), kTypeMismatch);
  EXPECT_EQ(ErrorNumber(ToDouble, "1e400"s), kOverflow);
}

TEST(ToLogical, OfEachType) {
  for (const char* text : {"True", "true", "TRUE", "tRuE", "1", "-1", "0.1", "&H1", "(2)"}) {
    EXPECT_TRUE(ToLogical(std::string(text))) << text;
  }
  for (const char* text : {"False", "false", "FALSE", "0", "0.0", "-0", "$0", "1e-400"}) {
    EXPECT_FALSE(ToLogical(std::string(text))) << text;
  }
  for (const char* text : {"", "yes", "no", "T", ".T.", "Y", "truex", "1/5/2004"}) {
    EXPECT_EQ(ErrorNumber(ToLogical, std::string(text)), kTypeMismatch) << text;
  }
  EXPECT_EQ(ErrorNumber(ToLogical, "1e400"s), kOverflow);
  EXPECT_TRUE(ToLogical("True\0x"s));
  EXPECT_TRUE(ToLogical(Whole(-7)));
  EXPECT_FALSE(ToLogical(Whole(0)));
  EXPECT_TRUE(ToLogical(0.001));
  EXPECT_FALSE(ToLogical(-0.0));
  EXPECT_TRUE(ToLogical(true));
  EXPECT_FALSE(ToLogical(false));
  EXPECT_TRUE(ToLogical(Date{2004, 1, 5}));
  EXPECT_FALSE(ToLogical(kZeroDate));
}

TEST(ToDate, OfEachType) {
  EXPECT_EQ(ToDate(Date{2004, 1, 5}), (Date{2004, 1, 5}));
  EXPECT_EQ(ToDate("January 5, 2004 10:30"s), (Date{2004, 1, 5}));
  EXPECT_EQ(ToDate(Whole(0)), kZeroDate);
  EXPECT_EQ(ToDate(Whole(37991)), (Date{2004, 1, 5}));
  EXPECT_EQ(ToDate(Whole(-1)), (Date{1899, 12, 29}));
  EXPECT_EQ(ToDate(37991.75), (Date{2004, 1, 5}));
  // On both sides of zero the fraction is the time of that day.
  EXPECT_EQ(ToDate(-1.25), (Date{1899, 12, 29}));
  EXPECT_EQ(ToDate(-0.5), kZeroDate);
  EXPECT_EQ(ToDate(true), (Date{1899, 12, 29}));
  EXPECT_EQ(ToDate(false), kZeroDate);
  EXPECT_EQ(ToDate(Whole(-657434)), (Date{100, 1, 1}));
  EXPECT_EQ(ToDate(Whole(2958465)), (Date{9999, 12, 31}));
}

TEST(ToDate, Refuses) {
  for (const char* text : {"", " ", "2/30/2004", "13/5/2001", "10:30", "37991", "x"}) {
    EXPECT_EQ(ErrorNumber(ToDate, std::string(text)), kTypeMismatch) << text;
  }
  EXPECT_EQ(ErrorNumber(ToDate, Whole(2958466)), kOverflow);
  EXPECT_EQ(ErrorNumber(ToDate, Whole(-657435)), kOverflow);
  EXPECT_EQ(ErrorNumber(ToDate, 1e300), kOverflow);
  EXPECT_EQ(ErrorNumber(ToDate, std::numeric_limits<double>::quiet_NaN()), kOverflow);
}

}  // namespace
}  // namespace lotrix

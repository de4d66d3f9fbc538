#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "src/platform/dates.h"

namespace lotrix {
namespace {

using namespace std::string_view_literals;

Date Day(int year, int month, int day) {
  return {static_cast<std::int16_t>(year), static_cast<std::uint8_t>(month),
          static_cast<std::uint8_t>(day)};
}

// All three uses read the same texts.
void ExpectDate(std::string_view text, Date date) {
  SCOPED_TRACE(text);
  EXPECT_EQ(TextToDate(text), date);
  EXPECT_EQ(DateLiteralValue(text), (std::variant<Empty, Null, Date>(date)));
}

void ExpectNoDate(std::string_view text) {
  SCOPED_TRACE(text);
  EXPECT_EQ(TextToDate(text), std::nullopt);
  EXPECT_TRUE(std::holds_alternative<Empty>(DateLiteralValue(text)));
}

const Date kFifth = Day(2004, 1, 5);

TEST(TextToDate, MonthDayYear) {
  ExpectDate("1/5/2004", kFifth);
  ExpectDate("01/05/2004", kFifth);
  ExpectDate("1-5-2004", kFifth);
  ExpectDate("1/5-2004", kFifth);
  ExpectDate("1-5/2004", kFifth);
  ExpectDate("1 / 5 / 2004", kFifth);
  ExpectDate("1 -5- 2004", kFifth);
  ExpectDate("  1/5/2004  ", kFifth);
  ExpectDate(
      "\u00A0"
      "1\u00A0/\u3000"
      "5/2004\t",
      kFifth);
  ExpectDate("12/31/1999", Day(1999, 12, 31));
  ExpectDate("1/5/4", kFifth);
  ExpectDate("1/5/04", kFifth);
  ExpectDate("1/5/004", kFifth);
  ExpectDate("1/5/0004", kFifth);
}

TEST(TextToDate, YearMonthDayWhenTheFirstHasThreeOrFourDigits) {
  ExpectDate("2004/1/5", kFifth);
  ExpectDate("2004-1-5", kFifth);
  ExpectDate("2004-01-05", kFifth);
  ExpectDate("2004 - 01 / 05", kFifth);
  ExpectDate("0004-01-05", kFifth);
  ExpectDate("099/1/5", Day(1999, 1, 5));
  ExpectDate("100/1/5", Day(100, 1, 5));
  ExpectDate("999-12-31", Day(999, 12, 31));
}

TEST(TextToDate, NoOtherNumbers) {
  for (const char* text :
       {"20040105",    "01052004",   "1/5",        "1-5",       "2004",       "2004/1",
        "1",           "5",          "1/5/",       "/1/5/2004", "1//5/2004",  "1/5//2004",
        "1/5/20041",   "001/5/2004", "1/005/2004", "10000/1/5", "2004/1/005", "2004/001/5",
        "2004/1/2004", "1.5.2004",   "1,5,2004",   "1 5 2004",  "1/5 2004",   "1 5/2004",
        "1:5:2004",    "1/5/2004/",  "1/5/2004/6", "-1/5/2004", "1/-5/2004",  "1/5/-2004",
        "+1/5/2004",   "1/5/2004x",  "x1/5/2004",  "1/5/2004,", "1/5/2004 x", "1\\5\\2004",
        "1/5/2004-",   "2004/1/5/",  "45000",      "1e3/5/2004"}) {
    ExpectNoDate(text);
  }
}

TEST(TextToDate, OnlyAsciiDigits) {
  ExpectNoDate("\u0661/5/2004");
  ExpectNoDate("1/5/\u0662\u0660\u0660\u0664");
  ExpectNoDate("\uFF11/5/2004");
  ExpectNoDate("Jan \u0665, 2004");
}

TEST(TextToDate, MonthNames) {
  ExpectDate("January 5, 2004", kFifth);
  ExpectDate("Jan 5 2004", kFifth);
  ExpectDate("5 Jan 2004", kFifth);
  ExpectDate("5-Jan-2004", kFifth);
  ExpectDate("JANUARY 5 2004", kFifth);
  ExpectDate("january 5 2004", kFifth);
  ExpectDate("jAn 5 2004", kFifth);
  ExpectDate("Jan-5-2004", kFifth);
  ExpectDate("Jan/5/2004", kFifth);
  ExpectDate("Jan,5,2004", kFifth);
  ExpectDate("5/January/2004", kFifth);
  ExpectDate("5,Jan,2004", kFifth);
  ExpectDate("5 January, 2004", kFifth);
  ExpectDate("Jan - 5 , 2004", kFifth);
  ExpectDate("Jan \u00A0 5\t2004", kFifth);
  ExpectDate("  Jan 5 2004 ", kFifth);
  ExpectDate("2004 Jan 5", kFifth);
  ExpectDate("2004-Jan-05", kFifth);
  ExpectDate("2004, January / 5", kFifth);
  ExpectDate("Jan 5 4", kFifth);
  ExpectDate("5 Jan 04", kFifth);
  ExpectDate("Jan 5 99", Day(1999, 1, 5));
  ExpectDate("099 Jan 5", Day(1999, 1, 5));
  ExpectDate("100 Jan 5", Day(100, 1, 5));
  ExpectDate("04 Jan 05", Day(2005, 1, 4));
}

TEST(TextToDate, EveryMonthByNameAndByThreeLetters) {
  const std::string names[] = {"January",   "February", "March",    "April",
                               "May",       "June",     "July",     "August",
                               "September", "October",  "November", "December"};
  int month = 0;
  for (const std::string& name : names) {
    ++month;
    ExpectDate(name + " 5, 2004", Day(2004, month, 5));
    ExpectDate(name.substr(0, 3) + " 5, 2004", Day(2004, month, 5));
    ExpectDate("5-" + name + "-2004", Day(2004, month, 5));
    ExpectDate("2004 " + name.substr(0, 3) + " 5", Day(2004, month, 5));
    if (name.size() > 4) ExpectNoDate(name.substr(0, 4) + " 5, 2004");
    ExpectNoDate(name.substr(0, 2) + " 5, 2004");
    ExpectNoDate(name + "x 5, 2004");
  }
}

TEST(TextToDate, NoOtherMonthNameDates) {
  for (const char* text : {"Jan",
                           "January",
                           "Jan 5",
                           "Jan 2004",
                           "5 Jan",
                           "2004 Jan",
                           "Jan 5,",
                           "Jan5 2004",
                           "Jan 5,, 2004",
                           "Jan -- 5 2004",
                           "Jan ,- 5 2004",
                           "Jan. 5 2004",
                           "5Jan2004",
                           "5 Jan2004",
                           "5Jan 2004",
                           "Jan 005 2004",
                           "Jan 5 20045",
                           "Jan 5th, 2004",
                           "January 1st 2004",
                           "Monday, January 5, 2004",
                           "Mon Jan 5 2004",
                           "Jan 5 2004 Monday",
                           "Sept 5 2004",
                           "Janvier 5 2004",
                           "Jänner 5 2004",
                           "2004 5 Jan",
                           "Jan 2004 5",
                           "5 2004 Jan",
                           "Jan Feb 5",
                           "5 Jan Feb",
                           ", Jan 5 2004",
                           "Jan 5 2004,",
                           "2004 Jan 005",
                           "2004 Jan 2004",
                           "Foo 5 2004",
                           "2004 Jan 5 5",
                           "Jan+5+2004",
                           "1 of Jan 2004"}) {
    ExpectNoDate(text);
  }
}

TEST(TextToDate, TheCenturyOfShortYears) {
  ExpectDate("1/5/0", Day(2000, 1, 5));
  ExpectDate("1/5/00", Day(2000, 1, 5));
  ExpectDate("1/5/29", Day(2029, 1, 5));
  ExpectDate("1/5/30", Day(1930, 1, 5));
  ExpectDate("1/5/99", Day(1999, 1, 5));
  ExpectDate("1/5/100", Day(100, 1, 5));
  ExpectDate("1/5/999", Day(999, 1, 5));
  ExpectDate("1/5/1000", Day(1000, 1, 5));
  ExpectDate("12/31/9999", Day(9999, 12, 31));
  ExpectDate("029/1/5", Day(2029, 1, 5));
  ExpectDate("0030/1/5", Day(1930, 1, 5));
}

TEST(TextToDate, TheDayMustExist) {
  for (const char* text :
       {"2/30/2004",  "2/29/2003",   "13/45/2001",  "13/5/2001",   "0/5/2004",   "1/0/2004",
        "1/32/2004",  "4/31/2004",   "6/31/2004",   "9/31/2004",   "11/31/2004", "2/29/1900",
        "2/29/2100",  "2/29/100",    "2004/13/5",   "2004/2/30",   "2004/5/13x", "2001/31/1",
        "31/12/2001", "Feb 30 2004", "29 Feb 2003", "2003 Feb 29", "Jan 0 2004", "Jan 32 2004",
        "0/0/0",      "2001-29-02"}) {
    ExpectNoDate(text);
  }
  ExpectDate("2/29/2004", Day(2004, 2, 29));
  ExpectDate("2/29/2000", Day(2000, 2, 29));
  ExpectDate("2/29/00", Day(2000, 2, 29));
  ExpectDate("2/29/400", Day(400, 2, 29));
  ExpectDate("Feb 29 2000", Day(2000, 2, 29));
  ExpectDate("2/28/1900", Day(1900, 2, 28));
  ExpectDate("1/31/2004", Day(2004, 1, 31));
  ExpectDate("4/30/2004", Day(2004, 4, 30));
}

TEST(TextToDate, AValidTimeIsDropped) {
  for (const char* time : {"10:30", "10:30:15", "10:30 PM", "10 PM", "10PM", "10pm", "10 Am",
                           "0:00", "00:00:00", "23:59:59", "9:5", "9:5:7", "12:00 AM", "12 PM",
                           "1 AM", "1:30:15 am", "01:30", "10:30   PM", "10:30\u00A0PM"}) {
    ExpectDate("1/5/2004 " + std::string(time), kFifth);
    ExpectDate("1/5/2004   " + std::string(time) + " ", kFifth);
    ExpectDate("2004-01-05\u00A0" + std::string(time), kFifth);
    ExpectDate("January 5, 2004 " + std::string(time), kFifth);
    ExpectDate("5-Jan-2004 " + std::string(time), kFifth);
  }
}

TEST(TextToDate, AnInvalidTimeIsNoDate) {
  for (const char* time :
       {"24:00",    "10:60",       "10:30:60",  "0 AM",       "0:30 PM",     "13 PM",
        "13:30 PM", "00 AM",       "10",        "10:",        ":30",         "10:30:",
        "10::30",   "10:30:15:20", "010:30",    "10:030",     "10:30:015",   "25:00",
        "10:30 XM", "10:30 P",     "10:30 P M", "10:30 P.M.", "10:30 PMX",   "10:30 PM x",
        "PM",       "PM 10:30",    "10 : 30",   "10: 30",     "10:30.5",     "10:30:15.5",
        "-1:30",    "10:-3",       "noon",      "10:30Z",     "10:30+01:00", "\u0661\u0660:30",
        "AM 10",    "10 AM PM"}) {
    ExpectNoDate("1/5/2004 " + std::string(time));
    ExpectNoDate(std::string(time));
  }
  ExpectNoDate("1/5/2004T10:30");
  ExpectNoDate("1/5/2004,10:30");
  ExpectNoDate("1/5/2004-10:30");
  ExpectNoDate("Jan 5 10:30");
  ExpectNoDate("Jan 5 10 PM");
  ExpectNoDate("10:30 1/5/2004");
}

TEST(TextToDate, WordsAreNone) {
  for (const char* text :
       {"abc", "today", "Monday", "True", "12/A/2004", "''", "O'Neil", "{1/5/2004}"}) {
    ExpectNoDate(text);
  }
}

TEST(TextToDate, IsReadUpToTheFirstU0000) {
  ExpectDate("1/5/2004\0 x"sv, kFifth);
  ExpectDate("1/5/2004 \0"sv, kFifth);
  ExpectDate(
      "1/5/20\0"
      "04"sv,
      Day(2020, 1, 5));
  ExpectNoDate(
      "1/5/\0"
      "2004"sv);
  EXPECT_EQ(TextToDate("\0"
                       "1/5/2004"sv),
            std::nullopt);
}

TEST(DateLiteralValue, NothingOrBlanksIsNullThereOnly) {
  for (const std::string_view text : {""sv, " "sv, "   "sv, "\t\n"sv, "\u00A0\u3000"sv, "\0"sv}) {
    EXPECT_TRUE(std::holds_alternative<Null>(DateLiteralValue(text)));
    EXPECT_EQ(TextToDate(text), std::nullopt);
  }
}

TEST(DateLiteralValue, ATimeAloneIsTheZeroDateThereOnly) {
  for (const char* text : {"12:00:00 AM", "10:30", " 10 PM ", "23:59:59", "0:00", "10pm"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(DateLiteralValue(text), (std::variant<Empty, Null, Date>(Day(1899, 12, 30))));
    EXPECT_EQ(TextToDate(text), std::nullopt);
  }
}

TEST(DateText, MonthDayYearWithoutLeadingZeros) {
  EXPECT_EQ(DateText(Day(2004, 3, 7)), "3/7/2004");
  EXPECT_EQ(DateText(Day(2026, 11, 20)), "11/20/2026");
  EXPECT_EQ(DateText(Day(100, 1, 1)), "1/1/100");
  EXPECT_EQ(DateText(Day(9999, 12, 31)), "12/31/9999");
  EXPECT_EQ(DateText(Day(1899, 12, 29)), "12/29/1899");
  EXPECT_EQ(DateText(Day(1899, 12, 31)), "12/31/1899");
}

TEST(DateText, TheZeroDateIsATime) { EXPECT_EQ(DateText(kZeroDate), "12:00:00 AM"); }

TEST(ResultDateText, HasLeadingZeros) {
  EXPECT_EQ(ResultDateText(Day(2004, 3, 7)), "03/07/2004");
  EXPECT_EQ(ResultDateText(Day(2026, 11, 20)), "11/20/2026");
  EXPECT_EQ(ResultDateText(Day(987, 1, 1)), "01/01/0987");
  EXPECT_EQ(ResultDateText(kZeroDate), "12/30/1899");
}

TEST(IsoDateText, IsYearMonthDay) {
  EXPECT_EQ(IsoDateText(Day(2004, 3, 7)), "2004-03-07");
  EXPECT_EQ(IsoDateText(Day(100, 12, 31)), "0100-12-31");
  EXPECT_EQ(IsoDateText(kZeroDate), "1899-12-30");
}

TEST(IsoTextToDate, IsStrict) {
  EXPECT_EQ(IsoTextToDate("2004-03-07"), Day(2004, 3, 7));
  EXPECT_EQ(IsoTextToDate("0100-12-31"), Day(100, 12, 31));
  EXPECT_EQ(IsoTextToDate("9999-12-31"), Day(9999, 12, 31));
  EXPECT_EQ(IsoTextToDate("2004-02-29"), Day(2004, 2, 29));
  for (const std::string_view text :
       {""sv,           "2004-3-7"sv,       "2004-03-7"sv,    "2004-3-007"sv,       "04-03-07"sv,
        "2004/03/07"sv, " 2004-03-07"sv,    "2004-03-07 "sv,  "2004-03-07T00:00"sv, "2004-02-30"sv,
        "2003-02-29"sv, "2004-13-01"sv,     "2004-00-01"sv,   "2004-01-00"sv,       "0099-01-01"sv,
        "20040-1-01"sv, "2004-1--01"sv,     "2004-01-1 "sv,   "+204-01-01"sv,       "-004-01-01"sv,
        "2004-01-0a"sv, "2004-01-\u0661"sv, "2004-03-07\0"sv, "abcdefghij"sv,       "2004-01/01"sv,
        "2004/01-01"sv, "200-01-011"sv}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(IsoTextToDate(text), std::nullopt);
  }
}

}  // namespace
}  // namespace lotrix

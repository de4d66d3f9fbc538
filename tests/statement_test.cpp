#include "src/database/statement.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "lotrix/error.h"
#include "lotrix/text.h"
#include "tests/support/fixture.h"

namespace lotrix::test {
namespace {

using namespace std::string_literals;

constexpr auto kRefused = static_cast<std::int32_t>(0x80040E14U);

std::string AsText(double number) {
  Statement statement;
  statement << number;
  return statement.text();
}

Statement InText(const std::string& value) {
  Statement statement;
  statement << "SELECT pin FROM stock WHERE lot = '" << value << "' AND pin = 'x'";
  return statement;
}

Statement InDate(const std::string& value) {
  Statement statement;
  statement << "SELECT pin FROM stock WHERE datein = {" << value << "} AND pin = 'x'";
  return statement;
}

Statement AsNumber(const std::string& value) {
  Statement statement;
  statement << "SELECT pin FROM stock WHERE doses = " << value << " AND pin = 'x'";
  return statement;
}

bool Refuses(const Statement& statement) {
  try {
    RequireShape(statement);
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), kRefused);
    EXPECT_EQ(error.source(), "Lotrix");
    EXPECT_EQ(error.engineCode(), 0);
    return true;
  }
  return false;
}

// --- Texts and templates ---------------------------------------------------

TEST(Statement, ANewStatementIsEmpty) {
  const Statement statement;
  EXPECT_EQ(statement.text(), "");
  EXPECT_EQ(statement.templateText(), "");
  EXPECT_TRUE(statement.splices().empty());
  EXPECT_TRUE(statement.IsBlank());
  EXPECT_FALSE(statement.isWhole());
}

TEST(Statement, BlanksAreBlank) {
  Statement blanks;
  blanks << " "
         << "  ";
  EXPECT_TRUE(blanks.IsBlank());
  blanks << "x";
  EXPECT_FALSE(blanks.IsBlank());
}

TEST(Statement, TheTextIsTheConcatenation) {
  const std::string pin = " p1 ";
  const std::string date = "1/5/2004";
  const Text vaccine = "DTAP";
  const std::int32_t doses = -5;
  const double cost = 12.5;
  Statement statement;
  statement << "UPDATE neworder SET orddose = " << doses << ", cost = " << cost << " WHERE pin = '"
            << pin << "' AND orddate = {" << date << "} AND vaccine='" << vaccine << "'";
  EXPECT_EQ(statement.text(),
            "UPDATE neworder SET orddose = -5, cost = 12.5 WHERE pin = ' p1 ' AND orddate = "
            "{1/5/2004} AND vaccine='DTAP'");
}

TEST(Statement, TheTemplateHasAMarkForEverySplice) {
  const std::string pin = "p1";
  const std::string date = "1/5/2004";
  const std::int32_t doses = 5;
  const std::string dose = "3";
  Statement statement;
  statement << "UPDATE t SET a = " << doses << ", b = {" << date << "}, c = " << dose
            << " WHERE d = '" << pin << "' AND e = 'fixed'";
  EXPECT_EQ(statement.templateText(),
            "UPDATE t SET a = \0, b = {\0}, c = \0 WHERE d = '\0' AND e = 'fixed'"s);
  ASSERT_EQ(statement.splices().size(), 4U);
  EXPECT_EQ(statement.splices()[0].place, Place::kNumber);
  EXPECT_EQ(statement.splices()[0].value, "5");
  EXPECT_EQ(statement.splices()[1].place, Place::kDate);
  EXPECT_EQ(statement.splices()[1].value, "1/5/2004");
  EXPECT_EQ(statement.splices()[2].place, Place::kNumber);
  EXPECT_EQ(statement.splices()[2].value, "3");
  EXPECT_EQ(statement.splices()[3].place, Place::kText);
  EXPECT_EQ(statement.splices()[3].value, "p1");
}

TEST(Statement, TwoValuesOfOneTemplateShareIt) {
  EXPECT_EQ(InText("a").templateText(), InText("something else").templateText());
  EXPECT_NE(InText("a").text(), InText("something else").text());
}

TEST(Statement, TheQuotationGoesOnOverSeveralPieces) {
  const std::string a = "a";
  const std::string b = "b";
  Statement statement;
  statement << "x = '" << a << " and " << b << "' AND y = " << b;
  EXPECT_EQ(statement.text(), "x = 'a and b' AND y = b");
  ASSERT_EQ(statement.splices().size(), 3U);
  EXPECT_EQ(statement.splices()[0].place, Place::kText);
  EXPECT_EQ(statement.splices()[1].place, Place::kText);
  EXPECT_EQ(statement.splices()[2].place, Place::kNumber);
}

TEST(Statement, AClosedPairLeavesTheQuotationAsItWas) {
  const std::string lot = "AB1";
  Statement statement;
  statement << "strtran(lot,ltrim(rtrim('-')),'') = '" << lot << "' AND a = {" << lot << "}";
  ASSERT_EQ(statement.splices().size(), 2U);
  EXPECT_EQ(statement.splices()[0].place, Place::kText);
  EXPECT_EQ(statement.splices()[1].place, Place::kDate);
}

TEST(Statement, APartBringsItsTextAndItsSplices) {
  const std::string pin = "P1";
  const std::string lot = "L1";
  Statement filter;
  filter << " WHERE pin = '" << pin << "'";
  Statement statement;
  statement << "SELECT lot FROM stock" << filter << " AND lot = '" << lot << "'";
  EXPECT_EQ(statement.text(), "SELECT lot FROM stock WHERE pin = 'P1' AND lot = 'L1'");
  EXPECT_EQ(statement.templateText(), "SELECT lot FROM stock WHERE pin = '\0' AND lot = '\0'"s);
  ASSERT_EQ(statement.splices().size(), 2U);
  EXPECT_EQ(statement.splices()[0].value, "P1");
  EXPECT_EQ(statement.splices()[1].value, "L1");
  EXPECT_EQ(filter.text(), " WHERE pin = 'P1'");
}

TEST(Statement, NumbersAreWrittenPlainly) {
  const std::int32_t least = -2147483647 - 1;
  Statement statement;
  statement << std::int32_t{0} << "," << std::int32_t{2147483647} << "," << least;
  EXPECT_EQ(statement.text(), "0,2147483647,-2147483648");
  EXPECT_EQ(AsText(12), "12");
  EXPECT_EQ(AsText(12.5), "12.5");
  EXPECT_EQ(AsText(-0.5), "-0.5");
  EXPECT_EQ(AsText(0.1 + 0.2), "0.3");
  EXPECT_EQ(AsText(-0.0), "0");
  EXPECT_EQ(AsText(0.00001), "0.00001");
  EXPECT_EQ(AsText(123456789012345.0), "123456789012345");
  EXPECT_EQ(AsText(1e15), "1E+15");
  EXPECT_EQ(AsText(1.0 / 12), "8.33333333333333E-02");
}

TEST(Statement, ANumberInExponentFormHasTheShapeOfANumber) {
  Statement statement;
  statement << "UPDATE t SET a = " << 1e300 << ", b = " << 1.0 / 12 << ", c = " << -1e-300;
  EXPECT_FALSE(Refuses(statement));
}

TEST(Statement, AWholeTextHasNoSplices) {
  const Statement statement = Statement::Whole("SELECT 'it''s' FROM t");
  EXPECT_TRUE(statement.isWhole());
  EXPECT_EQ(statement.text(), "SELECT 'it''s' FROM t");
  EXPECT_TRUE(statement.splices().empty());
  EXPECT_FALSE(InText("x").isWhole());
}

// --- Shape -----------------------------------------------------------------

TEST(RequireShape, AnApostropheCannotStandBetweenApostrophes) {
  for (const std::string& value : {"'"s, "O'Neil"s, "x'"s, "'x"s, "''"s, "\\'"s, "x' OR '1'='1"s}) {
    EXPECT_TRUE(Refuses(InText(value))) << value;
  }
}

TEST(RequireShape, EverythingElseMayStandBetweenApostrophes) {
  for (const std::string& value :
       {""s, " "s, "\""s, "{"s, "}"s, "\\"s, ";"s, "--"s, "/*"s, "?"s, "%"s, "\n\r\t"s, "\x01"s,
        "é😀"s, "ʼ’‘"s, std::string(100000, 'x')}) {
    EXPECT_FALSE(Refuses(InText(value))) << value;
  }
}

TEST(RequireShape, ABraceCannotStandBetweenBraces) {
  for (const std::string& value :
       {"{"s, "}"s, "1/5/2004}"s, "{1/5/2004"s, "1/5/2004} OR {1/1/1"s}) {
    EXPECT_TRUE(Refuses(InDate(value))) << value;
  }
}

TEST(RequireShape, EverythingElseMayStandBetweenBraces) {
  for (const std::string& value :
       {""s, "1/5/2004"s, "13/45/2001"s, "soon"s, "'"s, "\""s, "; DELETE"s, "é😀"s}) {
    EXPECT_FALSE(Refuses(InDate(value))) << value;
  }
}

TEST(RequireShape, ANulCanStandNowhere) {
  for (const std::string& value : {"\0"s, "a\0"s, "\0a"s, "1\0"s}) {
    EXPECT_TRUE(Refuses(InText(value)));
    EXPECT_TRUE(Refuses(InDate(value)));
    EXPECT_TRUE(Refuses(AsNumber(value)));
  }
  EXPECT_TRUE(Refuses(Statement::Whole("SELECT pin FROM stock\0"s)));
  EXPECT_TRUE(Refuses(Statement::Whole("SELECT pin FROM stock WHERE lot = '\0'"s)));
  EXPECT_TRUE(Refuses(Statement::Whole("SELECT pin FROM stock WHERE doses = \0"s)));
}

TEST(RequireShape, NumbersMayStandBare) {
  for (const std::string& value :
       {"0"s, "12"s, "-12"s, "+12"s, " 12 "s, "  -12"s, "1.5"s, "-1.25"s, "1e5"s, "1E5"s, "1E+15"s,
        "8.33333333333333E-02"s, "007"s, "99999999999999999999999999"s}) {
    EXPECT_FALSE(Refuses(AsNumber(value))) << value;
  }
}

TEST(RequireShape, NothingElseMayStandBare) {
  for (const std::string& value :
       {""s,          " "s,        "-"s,     "x"s,     "1x"s,       "1 2"s,  "1,000"s, "$1"s,
        "(1)"s,       "--1"s,      "1-"s,    "1+1"s,   "1 OR 1=1"s, "1;2"s,  "'1'"s,   "1'"s,
        "{1}"s,       "0x1F"s,     "&H1F"s,  "1.2.3"s, "1e"s,       "1e+"s,  "e5"s,    "."s,
        "1--"s,       "1/*x*/"s,   "1\n"s,   "\t1"s,   "１"s,       "NULL"s, ".T."s,   "pin"s,
        "1\xC2\xA0"s, "1) OR (1"s, "1e5.5"s, "inf"s,   "nan"s,      "1 = 1"s}) {
    EXPECT_TRUE(Refuses(AsNumber(value))) << value;
  }
}

TEST(RequireShape, EverySpliceIsLookedAt) {
  for (std::size_t bad = 0; bad < 4; ++bad) {
    std::vector<std::string> values{"a", "1/5/2004", "3", "b"};
    const std::vector<std::string> wrong{"'", "}", "x", "'"};
    const auto build = [&values] {
      Statement statement;
      statement << "UPDATE t SET a = '" << values[0] << "', b = {" << values[1]
                << "}, c = " << values[2] << " WHERE d = '" << values[3] << "'";
      return statement;
    };
    EXPECT_FALSE(Refuses(build()));
    values[bad] = wrong[bad];
    EXPECT_TRUE(Refuses(build())) << bad;
  }
}

TEST(RequireShape, ASpliceOfAPartIsLookedAtToo) {
  Statement statement;
  statement << "SELECT a FROM t" << InText("O'Neil");
  EXPECT_TRUE(Refuses(statement));
}

}  // namespace
}  // namespace lotrix::test

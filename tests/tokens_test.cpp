#include "src/database/tokens.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "lotrix/error.h"
#include "tests/support/fixture.h"

namespace lotrix {

bool operator==(const Token& a, const Token& b) {
  return a.kind == b.kind && a.content == b.content;
}

std::ostream& operator<<(std::ostream& out, const Token& token) {
  return out << static_cast<int>(token.kind) << ":" << token.content;
}

namespace test {
namespace {

using namespace std::string_literals;
using Tokens = std::vector<Token>;

constexpr auto kRefused = static_cast<std::int32_t>(0x80040E14U);

Token Keyword(const std::string& content) { return {TokenKind::kKeyword, content}; }
Token Name(const std::string& content) { return {TokenKind::kName, content}; }
Token InQuotes(const std::string& content) { return {TokenKind::kText, content}; }
Token InBraces(const std::string& content) { return {TokenKind::kDate, content}; }
Token Number(const std::string& content) { return {TokenKind::kNumber, content}; }
Token Logical(const std::string& content) { return {TokenKind::kLogical, content}; }
Token Operator(const std::string& content) { return {TokenKind::kOperator, content}; }

// The tokens behind "SELECT a FROM t WHERE ".
Tokens Condition(const std::string& condition) {
  const std::string start = "SELECT a FROM t WHERE ";
  Tokens tokens = ReadTokens(start + condition);
  const Tokens expected{Keyword("SELECT"), Name("a"), Keyword("FROM"), Name("t"), Keyword("WHERE")};
  EXPECT_GE(tokens.size(), expected.size());
  if (tokens.size() < expected.size()) return {};
  const auto rest = tokens.begin() + 5;
  EXPECT_EQ(Tokens(tokens.begin(), rest), expected);
  return {rest, tokens.end()};
}

void ExpectRefused(const std::string& text) {
  const Error error = Refusal([&] { static_cast<void>(ReadTokens(text)); });
  EXPECT_EQ(error.number(), kRefused) << text;
  EXPECT_EQ(error.source(), "Lotrix");
}

TEST(Tokens, KeywordsAreInUpperAndNamesInLowerCase) {
  const Tokens expected{Keyword("SELECT"), Name("pin"),      Operator(","),    Name("doses"),
                        Keyword("FROM"),   Name("stock"),    Keyword("WHERE"), Name("lot"),
                        Operator("="),     InQuotes("Ab 1 ")};
  EXPECT_EQ(ReadTokens("SELECT pin, doses FROM stock WHERE lot = 'Ab 1 '"), expected);
  EXPECT_EQ(ReadTokens("select PIN, Doses from Stock Where LOT = 'Ab 1 '"), expected);
}

TEST(Tokens, BlanksOnlySeparate) {
  EXPECT_EQ(ReadTokens("  SELECT   pin  FROM stock   "), ReadTokens("SELECT pin FROM stock"));
  EXPECT_EQ(ReadTokens("SELECT count( * )FROM stock"), ReadTokens("SELECT count(*) FROM stock"));
}

TEST(Tokens, AStatementMayBeAnyOfFour) {
  EXPECT_EQ(ReadTokens("SELECT a FROM t")[0], Keyword("SELECT"));
  EXPECT_EQ(ReadTokens("insert into t (a) values (1)")[0], Keyword("INSERT"));
  EXPECT_EQ(ReadTokens("Update t Set a = 1")[0], Keyword("UPDATE"));
  EXPECT_EQ(ReadTokens("Delete From t")[0], Keyword("DELETE"));
}

TEST(Tokens, AnyOtherStatementIsRefused) {
  for (const std::string& text :
       {""s, " "s, "PRAGMA synchronous"s, "DROP TABLE stock"s, "CREATE TABLE t (a)"s,
        "ALTER TABLE stock ADD x"s, "ATTACH 'x' AS y"s, "VACUUM"s, "BEGIN"s, "COMMIT"s, "ROLLBACK"s,
        "EXPLAIN SELECT a FROM t"s, "WITH x AS (SELECT 1) SELECT a FROM x"s,
        "REPLACE INTO t (a) VALUES (1)"s, "stock"s, "'SELECT'"s, "(SELECT a FROM t)"s,
        "SELECTa"s}) {
    ExpectRefused(text);
  }
}

TEST(Tokens, FunctionsAndReservedWordsOfTheEngineAreNames) {
  EXPECT_EQ(ReadTokens("SELECT MAX( maxno) FROM vaccref"),
            (Tokens{Keyword("SELECT"), Name("max"), Operator("("), Name("maxno"), Operator(")"),
                    Keyword("FROM"), Name("vaccref")}));
  EXPECT_EQ(
      Condition("{\0} BETWEEN begin AND END"s),
      (Tokens{InBraces("\0"s), Keyword("BETWEEN"), Name("begin"), Keyword("AND"), Name("end")}));
}

TEST(Tokens, ColumnsMayHaveATableInFront) {
  EXPECT_EQ(Condition("l.Vaccine == V.vaccine").size(), 7U);
  EXPECT_EQ(Condition("l.Vaccine > 0"),
            (Tokens{Name("l"), Operator("."), Name("vaccine"), Operator(">"), Number("0")}));
}

TEST(Tokens, MarksStayInTheirPlaces) {
  EXPECT_EQ(
      Condition("a = '\0' AND b = {\0} AND c = \0"s),
      (Tokens{Name("a"), Operator("="), InQuotes("\0"s), Keyword("AND"), Name("b"), Operator("="),
              InBraces("\0"s), Keyword("AND"), Name("c"), Operator("="), Number("\0"s)}));
  EXPECT_EQ(Condition("a = 'x\0y\0'"s).back(), InQuotes("x\0y\0"s));
}

TEST(Tokens, LogicalsStandBetweenPoints) {
  EXPECT_EQ(Condition("v.locactiv = .T. AND locactiv=.F."),
            (Tokens{Name("v"), Operator("."), Name("locactiv"), Operator("="), Logical("T"),
                    Keyword("AND"), Name("locactiv"), Operator("="), Logical("F")}));
}

TEST(Tokens, NumbersHaveDigitsAFractionAndAnExponent) {
  EXPECT_EQ(Condition("a = 12").back(), Number("12"));
  EXPECT_EQ(Condition("a = 12.5").back(), Number("12.5"));
  EXPECT_EQ(Condition("a = 1E+15").back(), Number("1E+15"));
  EXPECT_EQ(Condition("a = 8.33333333333333E-02").back(), Number("8.33333333333333E-02"));
}

TEST(Tokens, ComparisonsAreKnown) {
  for (const std::string text : {"=", "==", "<>", "!=", "<", ">", "<=", ">="}) {
    const Tokens tokens = Condition("a " + text + " 1");
    ASSERT_EQ(tokens.size(), 3U) << text;
    EXPECT_TRUE(IsComparison(tokens[1])) << text;
  }
  EXPECT_TRUE(IsOperator(Condition("a = 1")[1], "="));
  EXPECT_TRUE(IsOperator(Condition("a == 1")[1], "="));
  EXPECT_TRUE(IsOperator(Condition("a <> 1")[1], "<>"));
  EXPECT_TRUE(IsOperator(Condition("a != 1")[1], "<>"));
  EXPECT_TRUE(IsOperator(Condition("a <= 1")[1], "<="));
}

TEST(Tokens, OtherOperatorsAreNoComparisons) {
  for (const std::string text : {"+", "-", "*", "/"}) {
    const Tokens tokens = Condition("a " + text + " 1");
    ASSERT_EQ(tokens.size(), 3U) << text;
    EXPECT_FALSE(IsComparison(tokens[1])) << text;
    EXPECT_TRUE(IsOperator(tokens[1], text)) << text;
  }
  EXPECT_FALSE(IsComparison(InQuotes("=")));
  EXPECT_FALSE(IsOperator(InQuotes("="), "="));
  EXPECT_FALSE(IsOperator(Operator("="), "<>"));
}

TEST(Tokens, KeywordsAreNoTexts) {
  EXPECT_TRUE(IsKeyword(Keyword("AND"), "AND"));
  EXPECT_FALSE(IsKeyword(Keyword("AND"), "OR"));
  EXPECT_FALSE(IsKeyword(InQuotes("AND"), "AND"));
  EXPECT_FALSE(IsKeyword(Name("and"), "AND"));
}

TEST(Tokens, ATextMayBeFollowedByAKeywordAtOnce) {
  EXPECT_EQ(ReadTokens("UPDATE provider SET userid = 'LTX_DLL'WHERE pin = 'x'"),
            ReadTokens("UPDATE provider SET userid = 'LTX_DLL' WHERE pin = 'x'"));
}

TEST(Tokens, TextsAndDatesHoldAnythingElse) {
  EXPECT_EQ(Condition("a = ';--/*\"?{}[]é😀'").back(), InQuotes(";--/*\"?{}[]é😀"));
  EXPECT_EQ(Condition("a = {it's ;--}").back(), InBraces("it's ;--"));
  EXPECT_EQ(Condition("a = ''").back(), InQuotes(""));
  EXPECT_EQ(Condition("a = {}").back(), InBraces(""));
}

TEST(Tokens, WhatTheDialectDoesNotHaveIsRefused) {
  const std::string start = "SELECT a FROM t WHERE ";
  for (const std::string& rest : {"a = 1; DELETE FROM t"s,
                                  "a = 1;"s,
                                  "\"a\" = 1"s,
                                  "[a] = 1"s,
                                  "`a` = 1"s,
                                  "a = ?"s,
                                  "a = ?1"s,
                                  "a = :x"s,
                                  "a = @x"s,
                                  "a = $x"s,
                                  "a # 1"s,
                                  "a = 1 & 2"s,
                                  "a = 1 | 2"s,
                                  "a || b = 'x'"s,
                                  "a = \\"s,
                                  "a = ~1"s,
                                  "a = 1 % 2"s,
                                  "a = 'open"s,
                                  "a = {open"s,
                                  "a = }"s,
                                  "a = \x01"s,
                                  "a = \x7f"s,
                                  "a = \xC2\xA0 1"s,
                                  "a ! b"s}) {
    ExpectRefused(start + rest);
  }
}

TEST(Tokens, AnUnreadableEndIsRefusedHoweverLong) {
  ExpectRefused("SELECT a FROM t WHERE a = '" + std::string(100000, 'x'));
  ExpectRefused("SELECT a FROM t WHERE a = {" + std::string(100000, 'x'));
  ExpectRefused("SELECT " + std::string(100000, '(') + ";");
}

}  // namespace
}  // namespace test
}  // namespace lotrix

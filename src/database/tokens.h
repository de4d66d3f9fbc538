// The dialect's words: what a statement's template text is made of.
#ifndef LOTRIX_SRC_DATABASE_TOKENS_H
#define LOTRIX_SRC_DATABASE_TOKENS_H

#include <string>
#include <string_view>
#include <vector>

namespace lotrix {

enum class TokenKind {
  kKeyword,   // in upper case
  kName,      // a table, column, alias or function; in lower case
  kText,      // what stands between the apostrophes
  kDate,      // what stands between the braces
  kNumber,    // digits, or the mark of a spliced number
  kLogical,   // "T" or "F"
  kOperator,  // = <> < > <= >= + - * / ( ) , .
};

struct Token {
  TokenKind kind;
  // Marks of spliced values stay in the content of texts, dates and numbers.
  std::string content;
};

// Reads a statement's template text, which begins with SELECT, INSERT, UPDATE or
// DELETE. There are no quoted names, no parameters and one statement in a text:
// whatever else stands there is refused with 80040E14. There are no comments
// either: what looks like one is read as operators.
[[nodiscard]] std::vector<Token> ReadTokens(std::string_view templateText);

[[nodiscard]] bool IsComparison(const Token& token);
[[nodiscard]] bool IsOperator(const Token& token, std::string_view operatorText);
[[nodiscard]] bool IsKeyword(const Token& token, std::string_view keyword);

}  // namespace lotrix

#endif

#include "src/database/tokens.h"

#include <algorithm>
#include <array>

#include "src/database/statement.h"
#include "src/errors/raise_error.h"

namespace lotrix {

namespace {

// LIKE is missing, since engines differ in whether it minds case; "begin" and
// "end" are missing on purpose: the dialect has no use for them as
// keywords, and the contract table has columns of these names.
constexpr std::array<std::string_view, 32> kKeywords = {
    "ALL",      "AND",    "AS",    "ASC",    "BETWEEN", "BY",     "DELETE", "DESC",
    "DISTINCT", "FROM",   "GROUP", "HAVING", "IN",      "INNER",  "INSERT", "INTO",
    "IS",       "JOIN",   "LEFT",  "NOT",    "NULL",    "ON",     "OR",     "ORDER",
    "OUTER",    "SELECT", "SET",   "UNION",  "UPDATE",  "VALUES", "WHERE"};

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

[[noreturn]] void Refuse(std::string_view why) {
  RaiseEngineError(EngineError::kStatementRefused, why);
}

class Reader {
 public:
  explicit Reader(std::string_view text) : rest_(text) {}

  std::vector<Token> Read() {
    std::vector<Token> tokens;
    for (SkipBlanks(); !rest_.empty(); SkipBlanks()) tokens.push_back(Next());
    return tokens;
  }

 private:
  void SkipBlanks() {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t\r\n"), rest_.size()));
  }

  std::string_view Take(std::size_t count) {
    const std::string_view taken = rest_.substr(0, count);
    rest_.remove_prefix(taken.size());
    return taken;
  }

  Token Next() {
    const char c = rest_.front();
    if (c == '\'') return Enclosed(TokenKind::kText, '\'', "A text has no closing apostrophe.");
    if (c == '{') return Enclosed(TokenKind::kDate, '}', "A date has no closing brace.");
    if (c == Statement::kMark) return {TokenKind::kNumber, std::string(Take(1))};
    if (IsLetter(c)) return Word();
    if (IsLogical()) {
      const char letter = Upper(rest_[1]);
      Take(3);
      return {TokenKind::kLogical, std::string(1, letter)};
    }
    if (IsDigit(c) || (c == '.' && rest_.size() > 1 && IsDigit(rest_[1]))) return Number();
    return Operator();
  }

  Token Enclosed(TokenKind kind, char close, std::string_view unclosed) {
    Take(1);
    const std::size_t end = rest_.find(close);
    if (end == std::string_view::npos) Refuse(unclosed);
    Token token{kind, std::string(Take(end))};
    Take(1);
    // Two texts side by side are an apostrophe that was doubled, which this
    // dialect does not know.
    if (kind == TokenKind::kText && rest_.starts_with('\'')) {
      Refuse("A text holds an apostrophe.");
    }
    return token;
  }

  Token Word() {
    const auto end = std::find_if(rest_.begin(), rest_.end(),
                                  [](char c) { return !IsLetter(c) && !IsDigit(c); });
    std::string word(Take(static_cast<std::size_t>(end - rest_.begin())));
    std::string upper = word;
    std::transform(upper.begin(), upper.end(), upper.begin(), Upper);
    if (std::find(kKeywords.begin(), kKeywords.end(), upper) != kKeywords.end()) {
      return {TokenKind::kKeyword, std::move(upper)};
    }
    std::transform(word.begin(), word.end(), word.begin(), Lower);
    return {TokenKind::kName, std::move(word)};
  }

  [[nodiscard]] bool IsLogical() const {
    return rest_.size() > 2 && rest_[0] == '.' && rest_[2] == '.' &&
           (Upper(rest_[1]) == 'T' || Upper(rest_[1]) == 'F');
  }

  Token Number() {
    std::size_t end = 0;
    const auto digits = [&] {
      const std::size_t start = end;
      while (end < rest_.size() && IsDigit(rest_[end])) ++end;
      return end - start;
    };
    digits();
    if (end < rest_.size() && rest_[end] == '.') {
      ++end;
      digits();
    }
    if (end < rest_.size() && Upper(rest_[end]) == 'E') {
      ++end;
      if (end < rest_.size() && (rest_[end] == '+' || rest_[end] == '-')) ++end;
      if (digits() == 0) Refuse("A number has no exponent behind its E.");
    }
    if (end < rest_.size() && (IsLetter(rest_[end]) || rest_[end] == '.')) {
      Refuse("A number is followed by a letter or a point.");
    }
    return {TokenKind::kNumber, std::string(Take(end))};
  }

  Token Operator() {
    for (const std::string_view two : {"==", "<>", "!=", "<=", ">="}) {
      if (!rest_.starts_with(two)) continue;
      Take(2);
      return {TokenKind::kOperator, two == "==" ? "=" : two == "!=" ? "<>" : std::string(two)};
    }
    if (std::string_view("=<>+-*/(),.").find(rest_.front()) == std::string_view::npos) {
      Refuse("The statement holds a character that the dialect does not know.");
    }
    return {TokenKind::kOperator, std::string(Take(1))};
  }

  std::string_view rest_;
};

}  // namespace

std::vector<Token> ReadTokens(std::string_view templateText) {
  std::vector<Token> tokens = Reader(templateText).Read();
  const bool known =
      !tokens.empty() && (IsKeyword(tokens[0], "SELECT") || IsKeyword(tokens[0], "INSERT") ||
                          IsKeyword(tokens[0], "UPDATE") || IsKeyword(tokens[0], "DELETE"));
  if (!known) Refuse("A statement begins with SELECT, INSERT, UPDATE or DELETE.");
  return tokens;
}

bool IsComparison(const Token& token) {
  if (token.kind != TokenKind::kOperator) return false;
  const char first = token.content.front();
  return first == '=' || first == '<' || first == '>';
}

bool IsOperator(const Token& token, std::string_view operatorText) {
  return token.kind == TokenKind::kOperator && token.content == operatorText;
}

bool IsKeyword(const Token& token, std::string_view keyword) {
  return token.kind == TokenKind::kKeyword && token.content == keyword;
}

}  // namespace lotrix

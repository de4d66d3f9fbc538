// The walk over a statement's words that the dialects of all engines share.
#ifndef LOTRIX_SRC_DATABASE_PROVIDERS_TRANSLATOR_H
#define LOTRIX_SRC_DATABASE_PROVIDERS_TRANSLATOR_H

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "src/database/providers/values.h"
#include "src/database/tokens.h"

namespace lotrix {

struct Translation {
  std::string sql;
  std::vector<StatementParameter> parameters;  // in the order of their marks
};

// How an engine writes what has no form of its own in common SQL.
struct EngineWords {
  std::string_view truth;
  std::string_view falsehood;
  bool numbersParameters;  // $1, $2, …, else question marks
};

// Rewrites token by token and understands no more of the statement than it has
// to. An engine's own dialect is derived from it and adds to what is written.
class Translator {
 public:
  virtual ~Translator() = default;

 protected:
  // What follows a name and a parenthesis.
  struct Function {
    std::string_view name;
    std::string_view opening;  // what is written for name and parenthesis
    std::string_view closing;
    bool givesText;
  };
  struct Parenthesis {
    std::string_view closing;
    bool givesText;
    bool isCompared;
    bool isPlain;  // no function's
  };

  Translator(std::vector<Token> tokens, const EngineWords& words)
      : tokens_(std::move(tokens)), words_(words) {}

  // Throws 80040E14 for what it cannot read and 80040E07 for a date between
  // braces that is none.
  void Walk(Translation& translation);
  // Writes the current token, of a function's name its parenthesis too.
  virtual void WriteToken();
  void Write(std::string_view text);

  static const Function& FunctionNamed(std::string_view name);

  [[nodiscard]] const Token& Here() const { return tokens_[at_]; }
  [[nodiscard]] bool OpensFunction(std::size_t index) const;
  // What an operand is compared with is looked for outside the parentheses around
  // it.
  [[nodiscard]] bool BeforeIsComparison() const;
  [[nodiscard]] bool BehindIsComparison(std::size_t last) const;
  [[nodiscard]] bool BehindIsRange(std::size_t last) const;

  std::vector<Token> tokens_;
  std::size_t at_ = 0;
  std::vector<Parenthesis> parentheses_;
  bool afterOpening_ = false;
  Translation* translation_ = nullptr;

 private:
  void WriteKeyword();
  void OpenFunction();
  void WriteText();
  void WriteDate();
  void WriteOperator();
  void CloseParenthesis();
  void WriteParameter(Place place);
  [[nodiscard]] bool IsAssignment(const Token& token) const;
  [[nodiscard]] const Token* BehindParentheses(std::size_t last) const;

  EngineWords words_;
  bool inSetList_ = false;
};

}  // namespace lotrix

#endif

#include "src/database/providers/sqlite/dialect.h"

#include <algorithm>
#include <array>
#include <utility>

#include "src/database/tokens.h"
#include "src/errors/raise_error.h"
#include "src/platform/dates.h"

namespace lotrix::sqlite {

namespace {

struct Function {
  std::string_view name;
  std::string_view opening;  // what is written for name and parenthesis
  std::string_view closing;
  bool givesText;
};

// trim() is written as the two functions it consists of, since the indexes stand
// on these.
constexpr std::array<Function, 11> kFunctions = {{
    {"ltrim", "ltrim(", ")", true},
    {"rtrim", "rtrim(", ")", true},
    {"trim", "ltrim(rtrim(", "))", true},
    {"upper", "upper(", ")", true},
    {"lower", "lower(", ")", true},
    {"strtran", "replace(", ")", true},
    {"count", "count(", ")", false},
    {"max", "max(", ")", false},
    {"min", "min(", ")", false},
    {"sum", "sum(", ")", false},
    {"avg", "avg(", ")", false},
}};

const Function& FunctionNamed(std::string_view name) {
  const auto* const function = std::find_if(kFunctions.begin(), kFunctions.end(),
                                            [&](const Function& f) { return f.name == name; });
  if (function == kFunctions.end()) {
    RaiseEngineError(EngineError::kStatementRefused,
                     "The statement calls a function that the dialect does not know.");
  }
  return *function;
}

// Columns compare without their trailing blanks because they are declared so;
// texts and function results have to be told.
constexpr std::string_view kPadded = " COLLATE RTRIM";

class Translator {
 public:
  explicit Translator(std::vector<Token> tokens) : tokens_(std::move(tokens)) {}

  Translation Translate() && {
    for (at_ = 0; at_ < tokens_.size(); ++at_) WriteToken();
    return std::move(translation_);
  }

 private:
  struct Parenthesis {
    std::string_view closing;
    bool givesText;
    bool isCompared;
    bool isPlain;  // no function's
  };

  [[nodiscard]] const Token& Here() const { return tokens_[at_]; }
  [[nodiscard]] const Token* Before() const { return at_ == 0 ? nullptr : &tokens_[at_ - 1]; }
  [[nodiscard]] const Token* Behind() const {
    return at_ + 1 < tokens_.size() ? &tokens_[at_ + 1] : nullptr;
  }

  void WriteToken() {
    const Token& token = Here();
    switch (token.kind) {
      case TokenKind::kKeyword:
        WriteKeyword();
        break;
      case TokenKind::kName:
        if (Behind() != nullptr && IsOperator(*Behind(), "(") && !NamesTable()) {
          OpenFunction();
        } else {
          Write('"' + token.content + '"');
        }
        break;
      case TokenKind::kText:
        WriteText();
        break;
      case TokenKind::kDate:
        WriteDate();
        break;
      case TokenKind::kNumber:
        if (token.content.front() == Statement::kMark) {
          WriteParameter(Place::kNumber);
        } else {
          Write(token.content);
        }
        break;
      case TokenKind::kLogical:
        Write(token.content == "T" ? "1" : "0");
        break;
      case TokenKind::kOperator:
        WriteOperator();
        break;
    }
  }

  void WriteKeyword() {
    // Within the list of SET an equals sign is no comparison.
    if (Here().content == "SET") inSetList_ = true;
    if (Here().content == "WHERE") inSetList_ = false;
    Write(Here().content);
  }

  // The parenthesis behind the table of an INSERT opens its column list.
  [[nodiscard]] bool NamesTable() const {
    return Before() != nullptr && IsKeyword(*Before(), "INTO");
  }

  void OpenFunction() {
    const Function& function = FunctionNamed(Here().content);
    const bool compared = BeforeIsComparison();
    Write(function.opening);
    parentheses_.push_back({function.closing, function.givesText, compared, false});
    ++at_;
    afterOpening_ = true;
  }

  void WriteText() {
    const bool compared = BeforeIsComparison() || BehindIsComparison();
    if (Here().content.find(Statement::kMark) == std::string::npos) {
      Write('\'' + Here().content + '\'');
    } else {
      WriteParameter(Place::kText);
    }
    if (compared) translation_.sql += kPadded;
  }

  void WriteDate() {
    const std::string& content = Here().content;
    if (content.find(Statement::kMark) != std::string::npos) {
      WriteParameter(Place::kDate);
      return;
    }
    const auto date = DateLiteralValue(content);
    if (std::holds_alternative<Empty>(date)) {
      RaiseEngineError(EngineError::kValueCannotBeConverted, "A date literal holds no date.");
    }
    const Date* const day = std::get_if<Date>(&date);
    Write(day == nullptr ? "NULL" : '\'' + IsoDateText(*day) + '\'');
  }

  void WriteOperator() {
    const std::string& content = Here().content;
    if (content == "(") {
      Write("(");
      afterOpening_ = true;
      parentheses_.push_back({")", false, false, true});
    } else if (content == ")") {
      CloseParenthesis();
    } else if (content == "," || content == ".") {
      translation_.sql += content;
      afterOpening_ = content == ".";
    } else {
      Write(content);
    }
  }

  void CloseParenthesis() {
    if (parentheses_.empty()) {
      RaiseEngineError(EngineError::kStatementRefused, "A parenthesis is closed but never opened.");
    }
    const Parenthesis parenthesis = parentheses_.back();
    parentheses_.pop_back();
    translation_.sql += parenthesis.closing;
    afterOpening_ = false;
    if (parenthesis.givesText && (parenthesis.isCompared || BehindIsRange())) {
      translation_.sql += kPadded;
    }
  }

  void WriteParameter(Place place) {
    translation_.parameters.push_back({place, Here().content});
    Write("?");
  }

  void Write(std::string_view text) {
    if (!translation_.sql.empty() && !afterOpening_) translation_.sql += ' ';
    translation_.sql += text;
    afterOpening_ = false;
  }

  [[nodiscard]] bool IsAssignment(const Token& token) const {
    return inSetList_ && parentheses_.empty() && IsOperator(token, "=");
  }

  // What an operand is compared with is looked for outside the parentheses around
  // it.
  [[nodiscard]] bool BeforeIsComparison() const {
    std::size_t i = at_;
    while (i > 0 && IsOperator(tokens_[i - 1], "(") &&
           (i == 1 || tokens_[i - 2].kind != TokenKind::kName)) {
      --i;
    }
    return i > 0 && IsComparison(tokens_[i - 1]) && !IsAssignment(tokens_[i - 1]);
  }
  [[nodiscard]] const Token* BehindParentheses() const {
    std::size_t i = at_ + 1;
    std::size_t open = parentheses_.size();
    while (i < tokens_.size() && IsOperator(tokens_[i], ")") && open > 0 &&
           parentheses_[open - 1].isPlain) {
      ++i;
      --open;
    }
    return i < tokens_.size() ? &tokens_[i] : nullptr;
  }
  [[nodiscard]] bool BehindIsComparison() const {
    const Token* const behind = BehindParentheses();
    return behind != nullptr && (IsComparison(*behind) || BehindIsRange());
  }
  [[nodiscard]] bool BehindIsRange() const {
    const Token* const behind = BehindParentheses();
    return behind != nullptr &&
           (IsKeyword(*behind, "IN") || IsKeyword(*behind, "BETWEEN") || IsKeyword(*behind, "NOT"));
  }

  std::vector<Token> tokens_;
  std::size_t at_ = 0;
  std::vector<Parenthesis> parentheses_;
  bool inSetList_ = false;
  bool afterOpening_ = false;
  Translation translation_;
};

}  // namespace

Translation Translate(std::string_view templateText) {
  return Translator(ReadTokens(templateText)).Translate();
}

}  // namespace lotrix::sqlite

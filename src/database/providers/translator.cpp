#include "src/database/providers/translator.h"

#include <algorithm>
#include <array>

#include "src/errors/raise_error.h"
#include "src/platform/dates.h"

namespace lotrix {

void Translator::Walk(Translation& translation) {
  translation_ = &translation;
  for (at_ = 0; at_ < tokens_.size(); ++at_) WriteToken();
}

void Translator::WriteToken() {
  const Token& token = Here();
  switch (token.kind) {
    case TokenKind::kKeyword:
      WriteKeyword();
      break;
    case TokenKind::kName:
      if (OpensFunction(at_)) {
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
      Write(token.content == "T" ? words_.truth : words_.falsehood);
      break;
    case TokenKind::kOperator:
      WriteOperator();
      break;
  }
}

const Translator::Function& Translator::FunctionNamed(std::string_view name) {
  // trim() is written as the two functions it consists of, since the indexes
  // stand on these.
  static constexpr std::array<Function, 11> kFunctions = {{
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
  const auto* const function = std::find_if(kFunctions.begin(), kFunctions.end(),
                                            [&](const Function& f) { return f.name == name; });
  if (function == kFunctions.end()) {
    RaiseEngineError(EngineError::kStatementRefused,
                     "The statement calls a function that the dialect does not know.");
  }
  return *function;
}

// The parenthesis behind the table of an INSERT opens its column list.
bool Translator::OpensFunction(std::size_t index) const {
  return tokens_[index].kind == TokenKind::kName && index + 1 < tokens_.size() &&
         IsOperator(tokens_[index + 1], "(") &&
         (index == 0 || !IsKeyword(tokens_[index - 1], "INTO"));
}

void Translator::WriteKeyword() {
  // Some engines make a table of the rows of a SELECT … INTO.
  if (Here().content == "INTO" && !(at_ == 1 && IsKeyword(tokens_.front(), "INSERT"))) {
    RaiseEngineError(EngineError::kStatementRefused, "INTO stands behind INSERT alone.");
  }
  // Within the list of SET an equals sign is no comparison.
  if (Here().content == "SET") inSetList_ = true;
  if (Here().content == "WHERE") inSetList_ = false;
  Write(Here().content);
}

void Translator::OpenFunction() {
  const Function& function = FunctionNamed(Here().content);
  const bool compared = BeforeIsComparison();
  Write(function.opening);
  parentheses_.push_back({function.closing, function.givesText, compared, false});
  ++at_;
  afterOpening_ = true;
}

void Translator::WriteText() {
  if (Here().content.find(Statement::kMark) == std::string::npos) {
    Write('\'' + Here().content + '\'');
  } else {
    WriteParameter(Place::kText);
  }
}

void Translator::WriteDate() {
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

void Translator::WriteOperator() {
  const std::string& content = Here().content;
  if (content == "(") {
    Write("(");
    afterOpening_ = true;
    parentheses_.push_back({")", false, false, true});
  } else if (content == ")") {
    CloseParenthesis();
  } else if (content == "," || content == ".") {
    translation_->sql += content;
    afterOpening_ = content == ".";
  } else {
    Write(content);
  }
}

void Translator::CloseParenthesis() {
  if (parentheses_.empty()) {
    RaiseEngineError(EngineError::kStatementRefused, "A parenthesis is closed but never opened.");
  }
  translation_->sql += parentheses_.back().closing;
  parentheses_.pop_back();
  afterOpening_ = false;
}

void Translator::WriteParameter(Place place) {
  translation_->parameters.push_back({place, Here().content});
  Write(words_.numbersParameters ? '$' + std::to_string(translation_->parameters.size()) : "?");
}

void Translator::Write(std::string_view text) {
  if (!translation_->sql.empty() && !afterOpening_) translation_->sql += ' ';
  translation_->sql += text;
  afterOpening_ = false;
}

bool Translator::IsAssignment(const Token& token) const {
  return inSetList_ && parentheses_.empty() && IsOperator(token, "=");
}

bool Translator::BeforeIsComparison() const {
  std::size_t i = at_;
  while (i > 0 && IsOperator(tokens_[i - 1], "(") &&
         (i == 1 || tokens_[i - 2].kind != TokenKind::kName)) {
    --i;
  }
  return i > 0 && IsComparison(tokens_[i - 1]) && !IsAssignment(tokens_[i - 1]);
}

const Token* Translator::BehindParentheses(std::size_t last) const {
  std::size_t i = last + 1;
  std::size_t open = parentheses_.size();
  while (i < tokens_.size() && IsOperator(tokens_[i], ")") && open > 0 &&
         parentheses_[open - 1].isPlain) {
    ++i;
    --open;
  }
  return i < tokens_.size() ? &tokens_[i] : nullptr;
}

bool Translator::BehindIsComparison(std::size_t last) const {
  const Token* const behind = BehindParentheses(last);
  return behind != nullptr && (IsComparison(*behind) || BehindIsRange(last));
}

bool Translator::BehindIsRange(std::size_t last) const {
  const Token* const behind = BehindParentheses(last);
  return behind != nullptr &&
         (IsKeyword(*behind, "IN") || IsKeyword(*behind, "BETWEEN") || IsKeyword(*behind, "NOT"));
}

}  // namespace lotrix

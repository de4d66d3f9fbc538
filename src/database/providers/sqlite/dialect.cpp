#include "src/database/providers/sqlite/dialect.h"

namespace lotrix::sqlite {

namespace {

constexpr EngineWords kWords = {.truth = "1", .falsehood = "0", .numbersParameters = false};

// Columns compare without their trailing blanks because they are declared so;
// texts and function results have to be told.
constexpr std::string_view kPadded = " COLLATE RTRIM";

class SqliteTranslator final : public Translator {
 public:
  explicit SqliteTranslator(std::string_view templateText)
      : Translator(ReadTokens(templateText), kWords) {}

  Translation Translate() && {
    Translation translation;
    Walk(translation);
    return translation;
  }

 private:
  void WriteToken() override {
    if (Here().kind == TokenKind::kText) {
      const bool compared = BeforeIsComparison() || BehindIsComparison(at_);
      Translator::WriteToken();
      if (compared) translation_->sql += kPadded;
    } else if (IsOperator(Here(), ")") && !parentheses_.empty() && parentheses_.back().givesText) {
      const bool compared = parentheses_.back().isCompared;
      Translator::WriteToken();
      if (compared || BehindIsRange(at_)) translation_->sql += kPadded;
    } else {
      Translator::WriteToken();
    }
  }
};

}  // namespace

Translation Translate(std::string_view templateText) {
  return SqliteTranslator(templateText).Translate();
}

}  // namespace lotrix::sqlite

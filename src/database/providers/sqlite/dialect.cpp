#include "src/database/providers/sqlite/dialect.h"

#include <algorithm>

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
      const bool isItem = std::all_of(parentheses_.begin(), parentheses_.end(),
                                      [](const Parenthesis& p) { return p.isPlain; });
      if (compared || BehindIsRange(at_) || (tellsApart_ && isItem)) translation_->sql += kPadded;
    } else {
      if (Here().kind == TokenKind::kKeyword) EnterClause(Here().content);
      Translator::WriteToken();
    }
  }

  // Distinct, grouped and sorted items are compared with each other.
  void EnterClause(std::string_view keyword) {
    if (keyword == "DISTINCT" || keyword == "GROUP" || keyword == "ORDER") tellsApart_ = true;
    if (keyword == "FROM" || keyword == "HAVING" || keyword == "SELECT") tellsApart_ = false;
  }

  bool tellsApart_ = false;
};

}  // namespace

Translation Translate(std::string_view templateText) {
  return SqliteTranslator(templateText).Translate();
}

}  // namespace lotrix::sqlite

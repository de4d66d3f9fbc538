#include "src/database/statement.h"

#include <algorithm>

#include "src/errors/raise_error.h"
#include "src/platform/numbers.h"

namespace lotrix {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Blanks, an optional sign, digits, an optional fraction and exponent, blanks.
bool IsBareNumber(std::string_view text) {
  std::size_t at = 0;
  const auto skip = [&](auto taken) {
    const std::size_t start = at;
    while (at < text.size() && taken(text[at])) ++at;
    return at - start;
  };
  const auto blank = [](char c) { return c == ' '; };
  const auto take = [&](std::string_view set) {
    if (at == text.size() || set.find(text[at]) == std::string_view::npos) return false;
    ++at;
    return true;
  };
  skip(blank);
  take("+-");
  if (skip(IsDigit) == 0) return false;
  if (take(".")) skip(IsDigit);
  if (take("eE")) {
    take("+-");
    if (skip(IsDigit) == 0) return false;
  }
  skip(blank);
  return at == text.size();
}

[[noreturn]] void Refuse(std::string_view why) {
  RaiseEngineError(EngineError::kStatementRefused, why);
}

}  // namespace

Statement Statement::Whole(std::string_view text) {
  Statement statement;
  statement.template_ = text;
  statement.whole_ = true;
  return statement;
}

Statement& Statement::operator<<(SqlText piece) {
  template_ += piece.text();
  if (piece.changesQuotation()) inQuotation_ = !inQuotation_;
  inBrace_ = piece.opensBrace();
  return *this;
}

Statement& Statement::operator<<(const Statement& part) {
  template_ += part.template_;
  splices_.insert(splices_.end(), part.splices_.begin(), part.splices_.end());
  if (part.inQuotation_) inQuotation_ = !inQuotation_;
  inBrace_ = part.inBrace_;
  return *this;
}

Statement& Statement::operator<<(std::int32_t number) {
  template_ += kMark;
  splices_.push_back({Place::kNumber, NumberText(std::int64_t{number})});
  return *this;
}

Statement& Statement::operator<<(double number) {
  template_ += kMark;
  splices_.push_back({Place::kNumber, NumberText(number)});
  return *this;
}

Statement& Statement::Append(std::string_view value) {
  const Place place = inQuotation_ ? Place::kText : inBrace_ ? Place::kDate : Place::kNumber;
  template_ += kMark;
  splices_.push_back({place, std::string(value)});
  return *this;
}

bool Statement::IsBlank() const {
  return std::all_of(template_.begin(), template_.end(), [](char c) { return c == ' '; });
}

std::string Statement::text() const {
  std::size_t size = template_.size();
  for (const Splice& splice : splices_) size += splice.value.size();
  std::string text;
  text.reserve(size);
  std::string_view rest = template_;
  for (const Splice& splice : splices_) {
    const std::size_t mark = rest.find(kMark);
    text.append(rest.substr(0, mark)).append(splice.value);
    rest.remove_prefix(mark + 1);
  }
  return text.append(rest);
}

void RequireShape(const Statement& statement) {
  if (statement.isWhole() && statement.templateText().find('\0') != std::string::npos) {
    Refuse("The statement holds a U+0000.");
  }
  for (const Statement::Splice& splice : statement.splices()) {
    if (splice.value.find('\0') != std::string::npos) Refuse("A value holds a U+0000.");
    switch (splice.place) {
      case Place::kText:
        if (splice.value.find('\'') != std::string::npos) {
          Refuse("A text value holds an apostrophe.");
        }
        break;
      case Place::kDate:
        if (splice.value.find_first_of("{}") != std::string::npos) {
          Refuse("A date value holds a brace.");
        }
        break;
      case Place::kNumber:
        if (!IsBareNumber(splice.value)) Refuse("A value is no number where a number stands.");
        break;
    }
  }
}

}  // namespace lotrix

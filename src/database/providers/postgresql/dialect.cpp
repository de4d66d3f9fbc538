#include "src/database/providers/postgresql/dialect.h"

#include <algorithm>
#include <set>
#include <utility>

#include "src/errors/raise_error.h"

namespace lotrix::postgresql {

namespace {

constexpr EngineWords kWords = {.truth = "TRUE", .falsehood = "FALSE", .numbersParameters = true};

// What is written behind an operand that is compared.
constexpr std::string_view kCompared = " AS bpchar)";
constexpr std::string_view kComparedByBytes = " AS bpchar) COLLATE \"C\"";

// A table of the statement, by the name that its columns are qualified with.
struct Source {
  std::string table;
  std::string alias;
  std::size_t select;  // where the SELECT is that reads it
};

enum class Clause { kOther, kList, kFrom, kSet, kCondition, kGroup, kOrder };

// What is being read between two parentheses, or outside all of them.
struct Level {
  Clause clause = Clause::kOther;
  bool inFunction = false;
  bool listIsCompared = false;  // of a SELECT
  bool isUnion = false;
  bool descending = false;  // of an item of ORDER BY
  std::size_t select = 0;   // where it is
};

[[noreturn]] void Refuse(std::string_view why) {
  RaiseEngineError(EngineError::kStatementRefused, why);
}

bool IsName(const Token& token) { return token.kind == TokenKind::kName; }

bool EndsOperand(const Token& token) {
  return IsName(token) || IsOperator(token, ")") || token.kind == TokenKind::kText ||
         token.kind == TokenKind::kDate || token.kind == TokenKind::kNumber ||
         token.kind == TokenKind::kLogical;
}

std::vector<Source> SourcesOf(const std::vector<Token>& tokens) {
  std::vector<Source> sources;
  struct Open {
    bool inFrom = false;
    std::size_t select = 0;
  };
  std::vector<Open> levels{{}};  // one for each open parenthesis
  bool expected = false;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    const Token& token = tokens[i];
    if (IsName(token) && expected) {
      expected = false;
      std::size_t behind = i + 1;
      if (behind < tokens.size() && IsKeyword(tokens[behind], "AS")) ++behind;
      const bool renamed = behind < tokens.size() && IsName(tokens[behind]);
      sources.push_back(
          {token.content, tokens[renamed ? behind : i].content, levels.back().select});
    } else if (token.kind == TokenKind::kKeyword) {
      const bool from = token.content == "FROM" || token.content == "JOIN";
      expected = from || token.content == "UPDATE" || token.content == "INTO";
      const bool continues = token.content == "AS" || token.content == "ON" ||
                             token.content == "INNER" || token.content == "LEFT" ||
                             token.content == "OUTER" || token.content == "AND";
      if (!continues) levels.back().inFrom = from;
      if (token.content == "SELECT") levels.back().select = i;
    } else if (IsOperator(token, "(")) {
      expected = false;
      levels.emplace_back();
    } else if (IsOperator(token, ")")) {
      if (levels.size() > 1) levels.pop_back();
    } else if (IsOperator(token, ",")) {
      expected = levels.back().inFrom;
    }
  }
  return sources;
}

// For each opening parenthesis where it is closed: at the last token when it is not,
// which the engine will say.
std::vector<std::size_t> ClosingsOf(const std::vector<Token>& tokens) {
  std::vector<std::size_t> closings(tokens.size(), tokens.size() - 1);
  std::vector<std::size_t> open;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (IsOperator(tokens[i], "(")) open.push_back(i);
    if (!IsOperator(tokens[i], ")") || open.empty()) continue;
    closings[open.back()] = i;
    open.pop_back();
  }
  return closings;
}

class PostgresqlTranslator final : public Translator {
 public:
  PostgresqlTranslator(std::string_view templateText, const Tables& tables)
      : Translator(ReadTokens(templateText), kWords),
        tables_(tables),
        sources_(SourcesOf(tokens_)),
        closingOf_(ClosingsOf(tokens_)),
        written_(tokens_.size()) {}

  Translation Translate(bool locksRows) && {
    Translation translation;
    result_ = &translation;
    for (const Source& source : sources_) allTables_.insert(source.table);
    translation.tables.assign(allTables_.begin(), allTables_.end());
    translation.isQuery = IsKeyword(tokens_.front(), "SELECT");
    Walk(translation);
    if (levels_.back().clause == Clause::kOrder) {
      EndSortItem();
    } else if (translation.isQuery && distinctItems_ > 0) {
      SortDistinctItems();
    }
    if (locksRows) Write("FOR UPDATE");
    return translation;
  }

 private:
  void WriteToken() override {
    const std::size_t first = at_;
    const bool closes = IsOperator(Here(), ")");
    if (Here().kind == TokenKind::kKeyword) EnterClause();
    if (level().clause == Clause::kOrder && (closes || IsOperator(Here(), ","))) EndSortItem();
    WrapOperand();
    if (!WroteStar()) Translator::WriteToken();
    if (IsOperator(tokens_[first], "/")) WrapDivisor();
    if (closes && levels_.size() > 1) levels_.pop_back();
    if (IsOperator(Here(), "(")) {
      Level inner;
      inner.clause = level().clause == Clause::kOrder ? Clause::kGroup : level().clause;
      inner.inFunction = level().inFunction || first != at_;
      inner.listIsCompared = level().listIsCompared;
      levels_.push_back(inner);
    }
    translation_->sql += written_[at_];
  }

  [[nodiscard]] Level& level() { return levels_.back(); }

  void EnterClause() {
    const std::string& word = Here().content;
    if (word == "SELECT") {
      RequireItems();
      // The rows of a subquery are compared with what stands before it.
      level().listIsCompared = level().clause == Clause::kCondition || ComparesItsRows();
      level().clause = Clause::kList;
      level().select = at_;
    } else if (word == "FROM" || word == "JOIN" || word == "INNER" || word == "LEFT") {
      level().clause = Clause::kFrom;
    } else if (word == "SET") {
      level().clause = Clause::kSet;
    } else if (word == "WHERE" || word == "ON" || word == "HAVING") {
      level().clause = Clause::kCondition;
    } else if (word == "GROUP") {
      level().clause = Clause::kGroup;
    } else if (word == "ORDER") {
      level().clause = Clause::kOrder;
    } else if (word == "UNION") {
      level().isUnion = true;
    } else if (word == "INTO" || word == "VALUES") {
      level().clause = Clause::kOther;
    } else if (word == "DESC") {
      level().descending = true;
    }
  }

  // The engine has rows without columns, which nobody can mean.
  void RequireItems() const {
    if (at_ + 1 == tokens_.size()) Refuse("A SELECT names no columns.");
    const Token& next = tokens_[at_ + 1];
    for (const std::string_view word : {"FROM", "WHERE", "GROUP", "HAVING", "ORDER", "UNION"}) {
      if (IsKeyword(next, word)) Refuse("A SELECT names no columns.");
    }
    if (IsOperator(next, ")")) Refuse("A SELECT names no columns.");
  }

  // Whether the SELECT that begins here tells its rows apart.
  [[nodiscard]] bool ComparesItsRows() {
    const bool distinct = at_ + 1 < tokens_.size() && IsKeyword(tokens_[at_ + 1], "DISTINCT");
    if (distinct && levels_.size() == 1) distinctItems_ = CountItems(at_ + 2);
    if (distinct || level().isUnion) return true;
    for (std::size_t i = at_ + 1; i < tokens_.size() && !IsOperator(tokens_[i], ")"); ++i) {
      if (IsOperator(tokens_[i], "(")) i = closingOf_[i];
      if (IsKeyword(tokens_[i], "UNION")) level().isUnion = true;
      if (IsKeyword(tokens_[i], "GROUP") || IsKeyword(tokens_[i], "UNION")) return true;
    }
    return false;
  }

  // How many items a SELECT list has that begins there; none when that cannot be
  // told from its words.
  [[nodiscard]] int CountItems(std::size_t first) const {
    int items = 1;
    for (std::size_t i = first; i < tokens_.size() && !IsKeyword(tokens_[i], "FROM"); ++i) {
      if (IsOperator(tokens_[i], "(")) i = closingOf_[i];
      if (IsOperator(tokens_[i], "*")) return 0;
      if (IsOperator(tokens_[i], ",")) ++items;
    }
    return items;
  }

  // Distinct rows come sorted, not in the order of the engine's hashes.
  void SortDistinctItems() {
    if (level().isUnion) return;
    for (int item = 1; item <= distinctItems_; ++item) {
      Write((item == 1 ? "ORDER BY " : ", ") + std::to_string(item) + " NULLS FIRST");
    }
  }

  // A missing value is smaller than all others.
  void EndSortItem() {
    Write(level().descending ? "NULLS LAST" : "NULLS FIRST");
    level().descending = false;
  }

  void WrapOperand() {
    if (OpensFunction(at_)) {
      WrapFunction();
    } else if (IsName(Here())) {
      RequireQualifier();
      if (BeginsColumn())
        WrapIfCompared(LastOfOperand(at_), [&] { return IsColumn(at_, Kind::kText); });
    } else if (Here().kind == TokenKind::kText && ComparesLiterals()) {
      Wrap("CAST(", at_, kComparedByBytes);
    }
  }

  // What the engine says of such a name would pass for a missing table.
  void RequireQualifier() const {
    if (at_ + 1 == tokens_.size() || !IsOperator(tokens_[at_ + 1], ".")) return;
    if (std::none_of(sources_.begin(), sources_.end(),
                     [&](const Source& s) { return s.alias == Here().content; })) {
      Refuse("A column is qualified with a name that is none of a table of the statement.");
    }
  }

  void WrapFunction() {
    const std::string& name = Here().content;
    const std::size_t last = LastOfOperand(at_);
    const std::size_t argument = at_ + 2;
    if (name == "avg") Wrap("CAST(", last, " AS double precision)");
    // The engine's own sum of whole numbers would divide with a fraction.
    const bool ofColumn = argument < tokens_.size() && LastOfOperand(argument) + 1 == last;
    if (name == "sum" && ofColumn && IsColumn(argument, Kind::kWhole)) {
      Wrap("CAST(", last, " AS bigint)");
    }
    if ((name == "upper" || name == "lower") && argument < tokens_.size() &&
        tokens_[argument].kind == TokenKind::kText) {
      written_[argument] = " COLLATE \"C\"";
    }
    WrapIfCompared(last, [&] { return GivesText(at_); });
  }

  template <class IsText>
  void WrapIfCompared(std::size_t last, const IsText& isText) {
    if (!IsCompared(last) || !isText()) return;
    Wrap("CAST(", last, HoldsColumn(last) ? kCompared : kComparedByBytes);
  }

  // Texts sort by their bytes, as the columns do by their own declaration.
  [[nodiscard]] bool HoldsColumn(std::size_t last) const {
    for (std::size_t i = at_; i <= last; ++i) {
      if (IsName(tokens_[i]) && !OpensFunction(i)) return true;
    }
    return false;
  }

  // The engine's division by zero is an error, and not Null.
  void WrapDivisor() {
    std::size_t first = at_ + 1;
    while (first < tokens_.size() &&
           (IsOperator(tokens_[first], "-") || IsOperator(tokens_[first], "+"))) {
      ++first;
    }
    if (first < tokens_.size()) Wrap("NULLIF(", LastOfOperand(first), ", 0)");
  }

  void Wrap(std::string_view opening, std::size_t last, std::string_view closing) {
    Write(opening);
    afterOpening_ = true;
    // What was opened before this one is closed behind it.
    written_[last].insert(0, closing);
  }

  [[nodiscard]] std::size_t LastOfOperand(std::size_t first) const {
    const auto isAt = [&](std::size_t index, std::string_view text) {
      return index < tokens_.size() && IsOperator(tokens_[index], text);
    };
    if (isAt(first, "(")) return closingOf_[first];
    if (IsName(tokens_[first]) && isAt(first + 1, "(")) return closingOf_[first + 1];
    if (IsName(tokens_[first]) && isAt(first + 1, ".") && first + 2 < tokens_.size()) {
      return first + 2;
    }
    return first;
  }

  // Whether the name here is a column's, or qualifies one, and not an alias behind
  // its operand or a target of SET.
  [[nodiscard]] bool BeginsColumn() {
    const Token* const before = at_ == 0 ? nullptr : &tokens_[at_ - 1];
    if (before == nullptr || IsOperator(*before, ".") || IsKeyword(*before, "AS") ||
        EndsOperand(*before)) {
      return false;
    }
    if (level().clause != Clause::kSet || level().inFunction) return true;
    return !IsKeyword(*before, "SET") && !IsOperator(*before, ",");
  }

  // Whether it matters for the operand that begins here how texts compare.
  [[nodiscard]] bool IsCompared(std::size_t last) {
    if (level().inFunction) return IsKeyword(tokens_[at_ - 1], "DISTINCT");
    switch (level().clause) {
      case Clause::kCondition:
      case Clause::kGroup:
        return true;
      case Clause::kOrder:
        // A union is sorted by the names of its columns alone.
        return !level().isUnion;
      case Clause::kList:
        if (level().listIsCompared) return true;
        break;
      case Clause::kFrom:
        return false;
      case Clause::kOther:
      case Clause::kSet:
        break;
    }
    return BeforeIsComparison() || BehindIsComparison(last);
  }

  // A comparison without any column has nothing to tell its texts' type.
  [[nodiscard]] bool ComparesLiterals() const {
    if (BehindIsRange(at_)) return true;
    return at_ + 2 < tokens_.size() && IsComparison(tokens_[at_ + 1]) &&
           tokens_[at_ + 2].kind == TokenKind::kText;
  }

  [[nodiscard]] bool GivesText(std::size_t index) {
    // The largest and the smallest are of their argument's type.
    while (OpensFunction(index) && index + 2 < tokens_.size() &&
           (tokens_[index].content == "max" || tokens_[index].content == "min")) {
      index += 2;
    }
    if (tokens_[index].kind == TokenKind::kText) return true;
    return OpensFunction(index) ? FunctionNamed(tokens_[index].content).givesText
                                : IsColumn(index, Kind::kText);
  }

  // All columns of distinct rows have to be named, to have the texts among them
  // cast. Writes them for an asterisk that stands here, with its qualifier if it has
  // one.
  [[nodiscard]] bool WroteStar() {
    if (level().clause != Clause::kList || !level().listIsCompared || level().inFunction) {
      return false;
    }
    const std::size_t star = LastOfOperand(at_);
    const Token& before = tokens_[at_ - 1];
    if (!IsOperator(tokens_[star], "*") || EndsOperand(before)) return false;
    result_->asksForColumns = true;
    const std::string_view qualifier = star == at_ ? "" : Here().content;
    std::string_view separator;
    for (const Source& source : sources_) {
      const auto table = tables_.find(source.table);
      if (table == tables_.end() || source.select != level().select ||
          (star != at_ && source.alias != qualifier)) {
        continue;
      }
      for (const TableColumn& column : table->second) {
        const std::string name = '"' + source.alias + "\".\"" + column.name + '"';
        translation_->sql += separator;
        Write(column.kind == Kind::kText ? "CAST(" + name + " AS bpchar)" : name);
        separator = ",";
      }
    }
    if (separator.empty()) return false;
    at_ = star;
    return true;
  }

  // Whether that is a column of this kind. An unqualified name is looked for in all
  // tables of the statement.
  [[nodiscard]] bool IsColumn(std::size_t index, Kind kind) {
    if (!IsName(tokens_[index])) return false;
    result_->asksForColumns = true;
    const std::size_t last = LastOfOperand(index);
    std::set<std::string> qualified;
    if (last != index) {
      for (const Source& source : sources_) {
        if (source.alias == tokens_[index].content) qualified.insert(source.table);
      }
    }
    const std::set<std::string>& candidates = last == index ? allTables_ : qualified;
    bool found = false;
    bool isOfKind = true;
    for (const std::string& name : candidates) {
      const auto table = tables_.find(name);
      if (table == tables_.end()) continue;
      for (const TableColumn& column : table->second) {
        if (column.name != tokens_[last].content) continue;
        found = true;
        isOfKind = isOfKind && column.kind == kind;
      }
    }
    if (!found) result_->missesColumn = true;
    return found && isOfKind;
  }

  const Tables& tables_;
  std::vector<Source> sources_;
  std::set<std::string> allTables_;
  std::vector<Level> levels_{Level{}};
  std::vector<std::size_t> closingOf_;
  std::vector<std::string> written_;  // behind each token
  int distinctItems_ = 0;             // of the outermost SELECT, if it is DISTINCT
  Translation* result_ = nullptr;
};

}  // namespace

Translation Translate(std::string_view templateText, const Tables& tables, bool locksRows) {
  return PostgresqlTranslator(templateText, tables).Translate(locksRows);
}

}  // namespace lotrix::postgresql

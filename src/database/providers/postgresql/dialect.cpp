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

// A table of the statement, by the name that its columns are qualified with, or a query
// in a table's place.
struct Source {
  std::string table;  // empty for a query
  std::string alias;
  std::size_t select;                     // where the SELECT is that reads it
  std::size_t opening = 0;                // where the query's parenthesis is
  std::vector<TableColumn> columns = {};  // of a query, or of a table that is known
  bool isKnown = false;
  bool isRepeated = false;  // the same table stands before
};

enum class Clause { kOther, kList, kFrom, kSet, kCondition, kGroup, kHaving, kOrder };

// What is being read between two parentheses, or outside all of them.
struct Level {
  Clause clause = Clause::kOther;
  bool inFunction = false;
  bool inAggregate = false;
  bool inCondition = false;     // a subquery of one
  bool listIsCompared = false;  // of a SELECT
  bool isGrouped = false;
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

// The name behind an item of FROM that ends there; empty without one.
std::string AliasBehind(const std::vector<Token>& tokens, std::size_t last) {
  std::size_t behind = last + 1;
  if (behind < tokens.size() && IsKeyword(tokens[behind], "AS")) ++behind;
  return behind < tokens.size() && IsName(tokens[behind]) ? tokens[behind].content : std::string();
}

std::vector<Source> SourcesOf(const std::vector<Token>& tokens,
                              const std::vector<std::size_t>& closingOf) {
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
      std::string alias = AliasBehind(tokens, i);
      if (alias.empty()) alias = token.content;
      sources.push_back({token.content, std::move(alias), levels.back().select});
    } else if (token.kind == TokenKind::kKeyword) {
      const bool from = token.content == "FROM" || token.content == "JOIN";
      expected = from || token.content == "UPDATE" || token.content == "INTO";
      const bool continues = token.content == "AS" || token.content == "ON" ||
                             token.content == "INNER" || token.content == "LEFT" ||
                             token.content == "OUTER" || token.content == "AND";
      if (!continues) levels.back().inFrom = from;
      if (token.content == "SELECT") levels.back().select = i;
    } else if (IsOperator(token, "(")) {
      const bool joins = expected && i + 1 < tokens.size() && IsName(tokens[i + 1]);
      if (expected && !joins) {
        sources.push_back({{}, AliasBehind(tokens, closingOf[i]), levels.back().select, i});
      }
      expected = joins;
      levels.push_back({joins, levels.back().select});
    } else if (IsOperator(token, ")")) {
      if (levels.size() > 1) levels.pop_back();
    } else if (IsOperator(token, ",")) {
      expected = levels.back().inFrom;
    }
  }
  return sources;
}

class PostgresqlTranslator final : public Translator {
 public:
  PostgresqlTranslator(std::string_view templateText, const Tables& tables)
      : Translator(ReadTokens(templateText), kWords),
        tables_(tables),
        closingOf_(ClosingsOf(tokens_)),
        sources_(SourcesOf(tokens_, closingOf_)),
        written_(tokens_.size()) {}

  Translation Translate(bool locksRows) && {
    Translation translation;
    result_ = &translation;
    FindColumns();
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
      OpenLevel(first == at_ ? std::string_view() : tokens_[first].content);
    }
    translation_->sql += written_[at_];
  }

  [[nodiscard]] Level& level() { return levels_.back(); }

  void OpenLevel(std::string_view function) {
    Level inner = level();
    // The items of ORDER BY end outside of all parentheses.
    if (inner.clause == Clause::kOrder) inner.clause = Clause::kGroup;
    inner.inFunction = inner.inFunction || !function.empty();
    inner.inAggregate = inner.inAggregate || function == "count" || function == "sum" ||
                        function == "avg" || function == "max" || function == "min";
    inner.inCondition =
        inner.inCondition || inner.clause == Clause::kCondition || inner.clause == Clause::kHaving;
    inner.isUnion = false;
    levels_.push_back(inner);
  }

  void EnterClause() {
    const std::string& word = Here().content;
    if (word == "SELECT") {
      RequireItems();
      EnterSelect();
    } else if (word == "FROM" || word == "JOIN" || word == "INNER" || word == "LEFT") {
      level().clause = Clause::kFrom;
    } else if (word == "SET") {
      level().clause = Clause::kSet;
    } else if (word == "WHERE" || word == "ON") {
      level().clause = Clause::kCondition;
    } else if (word == "HAVING") {
      level().clause = Clause::kHaving;
    } else if (word == "GROUP") {
      level().clause = Clause::kGroup;
    } else if (word == "ORDER") {
      level().clause = Clause::kOrder;
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

  void EnterSelect() {
    Level& entered = level();
    const bool distinct = at_ + 1 < tokens_.size() && IsKeyword(tokens_[at_ + 1], "DISTINCT");
    if (distinct && levels_.size() == 1) distinctItems_ = CountItems(at_ + 2);
    // The rows of a subquery are compared with what stands before it, those of a
    // union's later parts as those of its first.
    entered.listIsCompared =
        distinct || entered.inCondition || (entered.isUnion && entered.listIsCompared);
    entered.isGrouped = false;
    for (std::size_t i = at_ + 1; i < tokens_.size() && !IsOperator(tokens_[i], ")"); ++i) {
      if (IsOperator(tokens_[i], "(")) i = closingOf_[i];
      const bool isUnion = IsKeyword(tokens_[i], "UNION");
      if (IsKeyword(tokens_[i], "GROUP") && !entered.isUnion) entered.isGrouped = true;
      if (isUnion) entered.isUnion = true;
      const bool tellsApart =
          isUnion && (i + 1 == tokens_.size() || !IsKeyword(tokens_[i + 1], "ALL"));
      if (tellsApart || entered.isGrouped) entered.listIsCompared = true;
    }
    entered.clause = Clause::kList;
    entered.select = at_;
    entered.inFunction = false;
    entered.inAggregate = false;
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
      if (BeginsColumn()) WrapColumn();
    } else if (Here().kind == TokenKind::kText && ComparesLiterals()) {
      Wrap("CAST(", at_, kComparedByBytes);
    }
  }

  // Whether what stands from there to before `end` is made of whole numbers alone.
  [[nodiscard]] bool IsWhole(std::size_t first, std::size_t end) {
    constexpr std::string_view kNotWhole = ".eE";
    for (std::size_t i = first; i < end; ++i) {
      const Token& token = tokens_[i];
      if (IsName(token)) {
        if (OpensFunction(i) || !IsColumn(i, Kind::kWhole)) return false;
        i = LastOfOperand(i);
      } else if (token.kind == TokenKind::kNumber) {
        const bool isWhole = token.content.front() != Statement::kMark &&
                             token.content.find_first_of(kNotWhole) == std::string::npos;
        if (!isWhole) return false;
      } else if (token.kind != TokenKind::kOperator) {
        return false;
      }
    }
    return first < end;
  }

  // What the engine says of such a name would pass for a missing table.
  void RequireQualifier() const {
    if (at_ + 1 == tokens_.size() || !IsOperator(tokens_[at_ + 1], ".")) return;
    if (std::none_of(sources_.begin(), sources_.end(),
                     [&](const Source& s) { return s.alias == Here().content; })) {
      Refuse("A column is qualified with a name that is none of a table of the statement.");
    }
  }

  void WrapColumn() {
    const std::size_t last = LastOfOperand(at_);
    RequireColumn(last);
    const bool grouped = level().isGrouped && !level().inAggregate && ReadsRows();
    if ((grouped || IsCompared(last)) && IsColumn(at_, Kind::kText)) WrapCompared(last);
  }

  // Whether what stands here is made of rows, and not what chooses them.
  [[nodiscard]] bool ReadsRows() {
    return level().clause == Clause::kList || level().clause == Clause::kGroup ||
           level().clause == Clause::kHaving || level().clause == Clause::kOrder;
  }

  // The engine takes the name of a table for its whole row, a function's name behind a
  // table's for its call, and has columns of its own in every table.
  void RequireColumn(std::size_t last) {
    if (!ReadsRows() && level().clause != Clause::kCondition && level().clause != Clause::kSet) {
      return;
    }
    const std::string& name = tokens_[last].content;
    if (!IsName(tokens_[last])) return;
    if (last == at_) {
      const bool isTable = std::any_of(sources_.begin(), sources_.end(),
                                       [&](const Source& s) { return s.alias == name; });
      const bool isOfEngine = name == "ctid" || name == "xmin" || name == "xmax" ||
                              name == "cmin" || name == "cmax" || name == "tableoid";
      if (!isTable && !isOfEngine) return;
    }
    const Found found = LookUp(at_);
    if (found.inAllKnown && !found.found) result_->noColumn = name;
  }

  void WrapFunction() {
    const std::string& name = Here().content;
    const std::size_t last = LastOfOperand(at_);
    const std::size_t argument = at_ + 2;
    if (name == "avg") Wrap("CAST(", last, " AS double precision)");
    // The engine's own sum of whole numbers would divide with a fraction.
    if (name == "sum" && IsWhole(argument, last)) Wrap("CAST(", last, " AS bigint)");
    if ((name == "upper" || name == "lower") && argument < tokens_.size() &&
        tokens_[argument].kind == TokenKind::kText) {
      written_[argument] = " COLLATE \"C\"";
    }
    if (IsCompared(last) && GivesText(at_)) WrapCompared(last);
  }

  void WrapCompared(std::size_t last) {
    const bool isStored = !result_->isQuery && level().clause == Clause::kList &&
                          !level().inCondition && level().listIsCompared;
    // What would be stored is the text without its trailing blanks.
    if (isStored) Refuse("Rows that are told apart cannot be stored at once.");
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
      case Clause::kHaving:
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
  [[nodiscard]] bool ComparesLiterals() {
    if (BehindIsRange(at_)) return true;
    std::size_t behind = at_ + 1;
    while (behind < tokens_.size() && IsOperator(tokens_[behind], ")")) ++behind;
    if (behind == tokens_.size() || !IsComparison(tokens_[behind])) return false;
    do {
      ++behind;
    } while (behind < tokens_.size() && IsOperator(tokens_[behind], "("));
    return behind < tokens_.size() && tokens_[behind].kind == TokenKind::kText &&
           !level().inFunction && BehindIsComparison(at_);
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
    std::vector<std::string> items;
    for (const Source& source : sources_) {
      if (source.select != level().select || (star != at_ && source.alias != qualifier)) continue;
      if (!source.isKnown) return false;
      for (const TableColumn& column : source.columns) {
        const std::string name = '"' + source.alias + "\".\"" + column.name + '"';
        items.push_back(column.kind == Kind::kText ? "CAST(" + name + " AS bpchar)" : name);
      }
    }
    if (items.empty()) return false;
    for (const std::string& item : items) {
      if (&item != &items.front()) translation_->sql += ',';
      Write(item);
    }
    at_ = star;
    return true;
  }

  // Finds what is known of every source's columns; of nested queries the inner ones
  // first, which stand behind.
  void FindColumns() {
    std::set<std::string> seen;
    for (Source& source : sources_) {
      if (source.table.empty()) continue;
      source.isRepeated = !seen.insert(source.table).second;
      const auto table = tables_.find(source.table);
      if (table == tables_.end()) continue;
      source.isKnown = true;
      source.columns = table->second;
    }
    result_->tables.assign(seen.begin(), seen.end());
    for (auto source = sources_.rbegin(); source != sources_.rend(); ++source) {
      if (source->table.empty()) FindItems(*source);
    }
  }

  // The columns of a query in a table's place are the items of its SELECT.
  void FindItems(Source& source) {
    std::size_t first = source.opening + 1;
    const std::size_t end = closingOf_[source.opening];
    const std::size_t select = first;
    if (first >= end || !IsKeyword(tokens_[first], "SELECT")) return;
    ++first;
    if (IsKeyword(tokens_[first], "DISTINCT") || IsKeyword(tokens_[first], "ALL")) ++first;
    source.isKnown = true;
    for (std::size_t i = first; i < end && source.isKnown; ++i) {
      if (IsOperator(tokens_[i], "(")) i = closingOf_[i];
      const bool isLast = i + 1 >= end || IsKeyword(tokens_[i + 1], "FROM");
      if (!isLast && !IsOperator(tokens_[i + 1], ",")) continue;
      AddItem(source, select, first, i);
      if (isLast) return;
      first = i + 2;
      ++i;
    }
  }

  void AddItem(Source& source, std::size_t select, std::size_t first, std::size_t last) {
    if (IsOperator(tokens_[last], "*") && (first == last || LastOfOperand(first) == last)) {
      for (const Source& inner : sources_) {
        if (inner.select != select) continue;
        if (first != last && inner.alias != tokens_[first].content) continue;
        source.isKnown = source.isKnown && inner.isKnown;
        source.columns.insert(source.columns.end(), inner.columns.begin(), inner.columns.end());
      }
      return;
    }
    if (!IsName(tokens_[last])) return;  // without a name it cannot be spoken of
    const std::size_t operand = LastOfOperand(first);
    // Behind a single operand there is nothing but its alias.
    const bool isSingle = operand == last || operand + 1 == last ||
                          (operand + 2 == last && IsKeyword(tokens_[operand + 1], "AS"));
    const Kind kind = !isSingle                       ? Kind::kOther
                      : GivesText(first)              ? Kind::kText
                      : IsColumn(first, Kind::kWhole) ? Kind::kWhole
                                                      : Kind::kOther;
    source.columns.push_back({tokens_[last].content, kind});
  }

  [[nodiscard]] bool IsColumn(std::size_t index, Kind kind) {
    if (!IsName(tokens_[index])) return false;
    const Found found = LookUp(index);
    return found.found && found.kind == kind;
  }

  struct Found {
    bool inAllKnown = true;  // whether all tables that may have it are known
    bool found = false;
    Kind kind = Kind::kOther;  // when all tables that have it agree
  };

  // The column whose name, or qualifier, stands there. An unqualified one is looked
  // for in all tables of the statement.
  [[nodiscard]] Found LookUp(std::size_t index) {
    result_->asksForColumns = true;
    const std::size_t last = LastOfOperand(index);
    Found result;
    for (const Source& source : sources_) {
      if (last == index ? source.isRepeated : source.alias != tokens_[index].content) continue;
      if (!source.isKnown) result.inAllKnown = false;
      for (const TableColumn& column : source.columns) {
        if (column.name != tokens_[last].content) continue;
        result.kind = !result.found || result.kind == column.kind ? column.kind : Kind::kOther;
        result.found = true;
      }
    }
    if (!result.found) result_->missesColumn = true;
    return result;
  }

  const Tables& tables_;
  std::vector<std::size_t> closingOf_;
  std::vector<Source> sources_;
  std::vector<Level> levels_{Level{}};
  std::vector<std::string> written_;  // behind each token
  int distinctItems_ = 0;             // of the outermost SELECT, if it is DISTINCT
  Translation* result_ = nullptr;
};

}  // namespace

Translation Translate(std::string_view templateText, const Tables& tables, bool locksRows) {
  return PostgresqlTranslator(templateText, tables).Translate(locksRows);
}

}  // namespace lotrix::postgresql

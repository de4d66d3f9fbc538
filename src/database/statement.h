// A statement that knows its splices.
//
// Statements are concatenated, and the exact text is what the trace shows and
// what a provider that takes whole texts receives. Beside the text a statement
// remembers where values were spliced in, so that another provider can prepare
// it once with parameters, and so that no value can leave its place.
#ifndef LOTRIX_SRC_DATABASE_STATEMENT_H
#define LOTRIX_SRC_DATABASE_STATEMENT_H

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "lotrix/text.h"

namespace lotrix {

// Where a value stands: between apostrophes, between braces, or bare.
enum class Place : std::uint8_t { kText, kDate, kNumber };

// A piece of SQL that is part of the program, never of its input: only constants
// can become one.
class SqlText {
 public:
  // NOLINTNEXTLINE(google-explicit-constructor): statements read as their text
  consteval SqlText(const char* text) : text_(text), apostrophes_(0), opensBrace_(false) {
    for (const char c : text_) {
      if (c == '\'') ++apostrophes_;
      if (c == '{') opensBrace_ = true;
      if (c == '}') opensBrace_ = false;
    }
  }
  [[nodiscard]] constexpr std::string_view text() const { return text_; }
  [[nodiscard]] constexpr bool changesQuotation() const { return apostrophes_ % 2 != 0; }
  [[nodiscard]] constexpr bool opensBrace() const { return opensBrace_; }

 private:
  std::string_view text_;
  int apostrophes_;
  bool opensBrace_;
};

template <class T>
concept SplicedText = std::same_as<T, std::string> || std::same_as<T, Text>;

class Statement {
 public:
  // Stands for a spliced value in the template text; no other U+0000 is in it.
  static constexpr char kMark = '\0';

  Statement() {
    // Room for most statements, so that building one does not move it about.
    template_.reserve(400);
    splices_.reserve(8);
  }
  // A text of the client's own, without splices.
  static Statement Whole(std::string_view text);
  [[nodiscard]] bool isWhole() const { return whole_; }

  // The rows of this query are written next in its transaction, so that others
  // must not write them before. Changes nothing about its text.
  Statement& LockRows() {
    locksRows_ = true;
    return *this;
  }
  [[nodiscard]] bool locksRows() const { return locksRows_; }

  // The rows of this query may be a whole table, of which an engine had better not
  // hold a copy; those of the program's other queries are few. Changes nothing about its
  // text.
  Statement& GiveTable() {
    givesTable_ = true;
    return *this;
  }
  [[nodiscard]] bool givesTable() const { return givesTable_ || whole_; }

  Statement& operator<<(SqlText piece);
  Statement& operator<<(const Statement& part);
  // A value, as text; the pieces around it tell its place.
  template <SplicedText T>
  Statement& operator<<(const T& value) {
    return Append(std::string_view(value));
  }
  Statement& operator<<(std::int32_t number);
  Statement& operator<<(double number);

  // Whether it is empty or holds nothing but blanks.
  [[nodiscard]] bool IsBlank() const;
  // The exact text.
  [[nodiscard]] std::string text() const;

  struct Splice {
    Place place;
    std::string value;
  };
  // The text with a mark for each splice, in the order of splices().
  [[nodiscard]] const std::string& templateText() const { return template_; }
  [[nodiscard]] const std::vector<Splice>& splices() const { return splices_; }

 private:
  Statement& Append(std::string_view value);

  std::string template_;
  std::vector<Splice> splices_;
  bool inQuotation_ = false;
  bool inBrace_ = false;
  bool whole_ = false;
  bool locksRows_ = false;
  bool givesTable_ = false;
};

// Throws 80040E14 when a spliced value would leave its place: an apostrophe
// between apostrophes, a brace between braces, anywhere a U+0000, and, where a
// bare number stands, anything but blanks, a sign, digits, a fraction and an
// exponent. Every road to an engine passes here first.
void RequireShape(const Statement& statement);

}  // namespace lotrix

#endif

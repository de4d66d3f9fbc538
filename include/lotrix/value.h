// The values that cells, fields and arguments hold.
#ifndef LOTRIX_VALUE_H
#define LOTRIX_VALUE_H

#include <compare>
#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace lotrix {

class Collection;

// Nothing was ever stored.
struct Empty {
  bool operator==(const Empty&) const = default;
};
// The database's missing value.
struct Null {
  bool operator==(const Null&) const = default;
};

// A day of the proleptic Gregorian calendar, years 100 to 9999.
struct Date {
  std::int16_t year;
  std::uint8_t month;
  std::uint8_t day;
  // NOLINTNEXTLINE(modernize-use-nullptr): the check misreads a defaulted comparison
  auto operator<=>(const Date&) const = default;
};
// The day that a date value of zero stands for.
inline constexpr Date kZeroDate{1899, 12, 30};

using Value = std::variant<Empty, Null, bool, std::int64_t, double, Date, std::string,
                           std::shared_ptr<Collection>>;

// An optional argument of any type: missing, or a value. Told apart by being
// there, not by what it holds: an empty text is not missing. A text that is not
// valid UTF-8 throws 5, as a Text does.
class Variant {
 public:
  Variant() = default;
  template <std::convertible_to<Value> T>
  // NOLINTNEXTLINE(google-explicit-constructor): arguments are values
  Variant(T value) : value_(Checked(Value(std::move(value)))) {}

  [[nodiscard]] bool IsMissing() const { return !value_; }
  // Of one that is not missing.
  [[nodiscard]] const Value& value() const { return *value_; }

 private:
  static Value Checked(Value value);
  std::optional<Value> value_;
};

}  // namespace lotrix

#endif

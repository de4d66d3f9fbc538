// The values that cells, fields and arguments hold.
#ifndef LOTRIX_VALUE_H
#define LOTRIX_VALUE_H

#include <compare>
#include <cstdint>
#include <memory>
#include <string>
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
  auto operator<=>(const Date&) const = default;
};
// The day that a date value of zero stands for.
inline constexpr Date kZeroDate{1899, 12, 30};

using Value = std::variant<Empty, Null, bool, std::int64_t, double, Date, std::string,
                           std::shared_ptr<Collection>>;

}  // namespace lotrix

#endif

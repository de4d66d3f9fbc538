// Text to date and back. Date texts are read month/day/year, never by a locale.
#ifndef LOTRIX_SRC_PLATFORM_DATES_H
#define LOTRIX_SRC_PLATFORM_DATES_H

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "lotrix/value.h"

namespace lotrix {

// The date test and the date value in one: nothing when the text is no date. A
// valid time of day behind the date is dropped.
[[nodiscard]] std::optional<Date> TextToDate(std::string_view text);

// What stands between the braces of a date literal: a date; Null for nothing or
// blanks; the zero date for a time alone; Empty when it is none of these.
[[nodiscard]] std::variant<Empty, Null, Date> DateLiteralValue(std::string_view text);

// m/d/yyyy without leading zeros, as statements carry it; the zero date is
// "12:00:00 AM".
[[nodiscard]] std::string DateText(Date date);
// mm/dd/yyyy, as result tables show it.
[[nodiscard]] std::string ResultDateText(Date date);

// yyyy-mm-dd, as engines take it, and back; reading is strict.
[[nodiscard]] std::string IsoDateText(Date date);
[[nodiscard]] std::optional<Date> IsoTextToDate(std::string_view text);

}  // namespace lotrix

#endif

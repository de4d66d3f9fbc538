// Conversions of values as automation does them.
#ifndef LOTRIX_SRC_PLATFORM_VALUES_H
#define LOTRIX_SRC_PLATFORM_VALUES_H

#include <cstdint>
#include <string>

#include "lotrix/value.h"

namespace lotrix {

// All throw 94 for Null and 13 for a collection or a text that does not convert.
// Empty is "", 0 and False.

// Numbers by NumberText, logicals True and False, dates by DateText.
[[nodiscard]] std::string ToText(const Value& value);
// Texts by TextToLong, fractions half to even, a logical is -1 or 0; a date is
// its day number, the zero date being 0. Throws 6 out of the 32-bit range.
[[nodiscard]] std::int32_t ToLong(const Value& value);
// Texts by TextToDouble.
[[nodiscard]] double ToDouble(const Value& value);
// True and False without regard to case, or a number: false when it is 0.
[[nodiscard]] bool ToLogical(const Value& value);
// Texts by TextToDate; numbers are day numbers counted from the zero date.
[[nodiscard]] Date ToDate(const Value& value);

}  // namespace lotrix

#endif

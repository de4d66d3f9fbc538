// Argument tests, filter building and text cleaning.
#ifndef LOTRIX_SRC_UTILITY_SQL_TEXT_H
#define LOTRIX_SRC_UTILITY_SQL_TEXT_H

#include <string>
#include <string_view>

#include "src/database/statement.h"

namespace lotrix {

// Whether nothing is left without the blanks at both ends. The length is a
// 16-bit number: throws 6 when more than 32767 characters are left.
[[nodiscard]] bool IsBlank(std::string_view value);

// ASCII letters and digits only, looked at from the first character on for as
// many as the trimmed value has: a leading blank fails, trailing ones do not
// count. False for a blank value.
[[nodiscard]] bool IsAlphaNumeric(std::string_view value);

// A filter begins with " WHERE ", its further conditions with " AND ".
void BeginCondition(Statement& filter);

// The filter with one condition more on the trimmed column, unless the value is
// blank. `aWhere` itself gets the " WHERE " or " AND " alone, as its callers,
// which assign the result back to it, expect.
[[nodiscard]] Statement AddWhereCondition(const std::string& aValue, Statement& aWhere,
                                          SqlText aColumn);

[[nodiscard]] std::string RemoveSpaces(std::string_view value);
[[nodiscard]] std::string RemoveSlashes(std::string_view value);
[[nodiscard]] std::string RemoveDashes(std::string_view value);
[[nodiscard]] std::string RemoveParentheses(std::string_view value);
// Without blanks, slashes, dashes and parentheses.
[[nodiscard]] std::string StripPhoneNumber(std::string_view value);

// Without the characters !@#$%^&*()+|\/{}[]:<>?"' — throws 6 for more than 32767
// characters.
[[nodiscard]] std::string RemoveSpecialCharacters(std::string_view value);

}  // namespace lotrix

#endif

// Connection strings: KEYWORD=VALUE pairs separated by semicolons.
#ifndef LOTRIX_SRC_DATABASE_CONNECTION_STRING_H
#define LOTRIX_SRC_DATABASE_CONNECTION_STRING_H

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lotrix {

// Keyword, in lower case with single blanks inside, and value; of a keyword given
// twice the last one stays.
struct ConnectionSettings {
  std::string provider;  // lower case; empty when none is named
  std::vector<std::pair<std::string, std::string>> values;
};

// Values may stand between apostrophes or quotation marks, which are doubled
// inside. Throws 80004005 for a text of another shape, or 3706 when it names no
// provider until there; no error ever shows a value.
[[nodiscard]] ConnectionSettings ParseConnectionString(std::string_view text);

}  // namespace lotrix

#endif

// Values on their way to an engine and back, the same for every provider.
#ifndef LOTRIX_SRC_DATABASE_PROVIDERS_VALUES_H
#define LOTRIX_SRC_DATABASE_PROVIDERS_VALUES_H

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "lotrix/value.h"
#include "src/database/statement.h"

namespace lotrix {

// A parameter of a prepared statement: its content as it stands in the template,
// a mark for each spliced value in it.
struct StatementParameter {
  Place place;
  std::string content;
};

// What is given to a parameter: a text as `text` holds it (a date as yyyy-mm-dd),
// or another value.
struct ParameterValue {
  std::variant<std::monostate, Null, std::int64_t, double> other;  // monostate for a text
  std::string text;
};

// Puts the spliced values into the parameters' contents, and these into `values`,
// whose room is used again. Throws 80040E07 for a date that is none and 80040E57
// for a number beyond the largest double.
void TakeValues(const std::vector<StatementParameter>& parameters, const Statement& source,
                std::vector<ParameterValue>& values);

// A bare number whose shape has been checked: whole if it is written so and fits.
// Throws 80040E57 beyond the largest double.
[[nodiscard]] std::variant<std::int64_t, double> ReadNumber(std::string_view text);

// What a date column holds, yyyy-mm-dd; throws 80040E07 when it is something else.
[[nodiscard]] Date ReadStoredDate(std::string_view text);

}  // namespace lotrix

#endif

// Text to number and back, by the classic automation conversions for US English
// (VarR8FromStr, VarI4FromStr, VarBstrFromR8), on every system alike.
#ifndef LOTRIX_SRC_PLATFORM_NUMBERS_H
#define LOTRIX_SRC_PLATFORM_NUMBERS_H

#include <cstdint>
#include <string>
#include <string_view>

namespace lotrix {

// The numeric test: true when TextToDouble would succeed.
[[nodiscard]] bool IsNumeric(std::string_view text);

// Correctly rounded; throws 13 (no number) or 6 (beyond the largest double).
[[nodiscard]] double TextToDouble(std::string_view text);

// The exact decimal value rounded half to even; throws 13 (no number) or 6 (out
// of the 32-bit or 16-bit range). &H and &O texts are bit patterns of that many
// bits.
[[nodiscard]] std::int32_t TextToLong(std::string_view text);
[[nodiscard]] std::int16_t TextToInteger(std::string_view text);

// Rounded half to even; throws 6 out of the 32-bit range (NaN included).
[[nodiscard]] std::int32_t DoubleToLong(double number);

// Throws 6 when the sum leaves the 32-bit range.
[[nodiscard]] std::int32_t SumOf(std::int32_t a, std::int32_t b);

// Whole numbers plainly; a double to 15 significant digits, in exponent form from
// 1E+15 on and where a value below 1 would need more than 15 decimals.
[[nodiscard]] std::string NumberText(std::int64_t number);
[[nodiscard]] std::string NumberText(double number);

}  // namespace lotrix

#endif

// Texts: UTF-8 in memory, counted in UTF-16 units, blanks are U+0020.
#ifndef LOTRIX_SRC_PLATFORM_TEXT_H
#define LOTRIX_SRC_PLATFORM_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace lotrix {

[[nodiscard]] bool IsValidUtf8(std::string_view text);

// The number of UTF-16 units of a valid UTF-8 text: é counts 1, an emoji 2.
[[nodiscard]] std::size_t Utf16Length(std::string_view utf8);
[[nodiscard]] std::u16string ToUtf16(std::string_view utf8);

// Without the blanks (U+0020 only) at both ends.
[[nodiscard]] std::string_view TrimBlanks(std::string_view text);

// One code point to one by Unicode's simple mapping, in no locale's way: ß, ı,
// µ, ſ and everything beyond U+FFFF stay as they are, so the UTF-16 length never
// changes.
[[nodiscard]] std::string UpperCase(std::string_view utf8);

// With A to Z as small letters, all else as it is.
[[nodiscard]] std::string LowerAscii(std::string_view text);

// Whether two texts are the same when their case does not count.
[[nodiscard]] bool EqualWithoutCase(std::string_view a, std::string_view b);

// The part before the first U+0000, which is all that a conversion reads.
[[nodiscard]] std::string_view UpToNul(std::string_view text);

// White space as Unicode defines it, as the number and date conversions take it:
// the length in bytes of the white space character that `utf8` begins with, or 0.
[[nodiscard]] std::size_t WhiteSpaceLength(std::string_view utf8);

// The text format "!(@@@) @@@-@@@@": ten characters filled in from the left,
// missing ones as blanks; of more than ten the surplus leading ones are dropped;
// an empty text stays empty.
[[nodiscard]] std::u16string FormatPhone(std::u16string_view characters);

}  // namespace lotrix

#endif

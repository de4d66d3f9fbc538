// UTF-8 and the UTF-16 of the system's own functions.
#ifndef LOTRIX_SRC_PLATFORM_WIDE_TEXT_H
#define LOTRIX_SRC_PLATFORM_WIDE_TEXT_H

#include <string>
#include <string_view>

namespace lotrix {

// Replacement characters (U+FFFD) for bytes that are not valid UTF-8.
[[nodiscard]] std::wstring ToWide(std::string_view utf8);

// A surrogate without its other half, which UTF-8 has no form for, becomes three
// bytes that are not valid UTF-8: whoever takes a text as an argument refuses it.
[[nodiscard]] std::string ToUtf8(std::wstring_view wide);

}  // namespace lotrix

#endif

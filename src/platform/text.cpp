#include "src/platform/text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>

namespace lotrix {
namespace {

struct UpperCaseRange {
  char16_t first;
  char16_t last;
  std::int32_t delta;
  std::uint8_t step;
};

constexpr UpperCaseRange kUpperCaseRanges[] = {
#include "src/platform/uppercase_table.inc"
};

bool IsAscii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

char AsciiUpperCase(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

// The number of bytes before the first one that is not ASCII.
std::size_t AsciiPrefixLength(std::string_view text) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080U;
  std::size_t i = 0;
  for (; text.size() - i >= sizeof(std::uint64_t); i += sizeof(std::uint64_t)) {
    std::uint64_t eight = 0;
    std::memcpy(&eight, text.data() + i, sizeof eight);
    if ((eight & kHighBits) != 0) break;
  }
  while (i < text.size() && IsAscii(text[i])) ++i;
  return i;
}

struct CodePoint {
  char32_t value;
  std::size_t length;  // in bytes; 0: not UTF-8
};

// The code point that `text`, which is not empty, begins with.
CodePoint FirstCodePoint(std::string_view text) {
  constexpr CodePoint kNone{0, 0};
  const auto lead = static_cast<unsigned char>(text[0]);
  if (lead < 0x80) return {lead, 1};
  std::size_t length = 0;
  char32_t value = 0;
  char32_t least = 0;
  if (lead < 0xC2) return kNone;
  if (lead < 0xE0) {
    length = 2;
    value = lead & 0x1FU;
    least = 0x80;
  } else if (lead < 0xF0) {
    length = 3;
    value = lead & 0x0FU;
    least = 0x800;
  } else if (lead < 0xF5) {
    length = 4;
    value = lead & 0x07U;
    least = 0x10000;
  } else {
    return kNone;
  }
  if (text.size() < length) return kNone;
  for (std::size_t i = 1; i < length; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if ((byte & 0xC0U) != 0x80) return kNone;
    value = value << 6U | (byte & 0x3FU);
  }
  const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
  if (value < least || value > 0x10FFFF || surrogate) return kNone;
  return {value, length};
}

char32_t UpperCaseOf(char32_t codePoint) {
  if (codePoint > 0xFFFF) return codePoint;
  const auto* range =
      std::lower_bound(std::begin(kUpperCaseRanges), std::end(kUpperCaseRanges), codePoint,
                       [](const UpperCaseRange& r, char32_t c) { return r.last < c; });
  if (range == std::end(kUpperCaseRanges) || codePoint < range->first ||
      (codePoint - range->first) % range->step != 0) {
    return codePoint;
  }
  return static_cast<char32_t>(static_cast<std::int32_t>(codePoint) + range->delta);
}

// A code point of at most 16 bits, which is all that upper-casing changes.
void AppendUtf8(std::string& text, char32_t codePoint) {
  if (codePoint < 0x80) {
    text += static_cast<char>(codePoint);
  } else if (codePoint < 0x800) {
    text += static_cast<char>(0xC0U | codePoint >> 6U);
    text += static_cast<char>(0x80U | (codePoint & 0x3FU));
  } else {
    text += static_cast<char>(0xE0U | codePoint >> 12U);
    text += static_cast<char>(0x80U | (codePoint >> 6U & 0x3FU));
    text += static_cast<char>(0x80U | (codePoint & 0x3FU));
  }
}

}  // namespace

bool IsValidUtf8(std::string_view text) {
  for (;;) {
    text.remove_prefix(AsciiPrefixLength(text));
    if (text.empty()) return true;
    do {
      const std::size_t length = FirstCodePoint(text).length;
      if (length == 0) return false;
      text.remove_prefix(length);
    } while (!text.empty() && !IsAscii(text[0]));
  }
}

std::size_t Utf16Length(std::string_view utf8) {
  std::size_t length = AsciiPrefixLength(utf8);
  for (const char c : utf8.substr(length)) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xC0U) != 0x80) ++length;
    if (byte >= 0xF0) ++length;  // a pair of surrogates
  }
  return length;
}

std::u16string ToUtf16(std::string_view utf8) {
  const std::size_t ascii = AsciiPrefixLength(utf8);
  std::u16string result(utf8.begin(), utf8.begin() + static_cast<std::ptrdiff_t>(ascii));
  utf8.remove_prefix(ascii);
  if (utf8.empty()) return result;
  result.reserve(ascii + utf8.size());
  while (!utf8.empty()) {
    const CodePoint c = FirstCodePoint(utf8);
    if (c.length == 0) {
      result += u'\uFFFD';
    } else if (c.value > 0xFFFF) {
      result += static_cast<char16_t>(0xD800U + ((c.value - 0x10000U) >> 10U));
      result += static_cast<char16_t>(0xDC00U + (c.value & 0x3FFU));
    } else {
      result += static_cast<char16_t>(c.value);
    }
    utf8.remove_prefix(std::max<std::size_t>(c.length, 1));
  }
  return result;
}

std::string_view TrimBlanks(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

std::string UpperCase(std::string_view utf8) {
  const std::size_t ascii = AsciiPrefixLength(utf8);
  std::string result(utf8.substr(0, ascii));
  for (char& c : result) c = AsciiUpperCase(c);
  utf8.remove_prefix(ascii);
  if (utf8.empty()) return result;
  result.reserve(ascii + utf8.size());
  while (!utf8.empty()) {
    if (IsAscii(utf8[0])) {
      result += AsciiUpperCase(utf8[0]);
      utf8.remove_prefix(1);
      continue;
    }
    const CodePoint c = FirstCodePoint(utf8);
    const std::size_t length = std::max<std::size_t>(c.length, 1);
    const char32_t upper = UpperCaseOf(c.value);
    if (upper == c.value) {
      result += utf8.substr(0, length);
    } else {
      AppendUtf8(result, upper);
    }
    utf8.remove_prefix(length);
  }
  return result;
}

std::string LowerAscii(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

bool EqualWithoutCase(std::string_view a, std::string_view b) {
  std::size_t i = 0;
  for (; i < a.size() && i < b.size() && IsAscii(a[i]) && IsAscii(b[i]); ++i) {
    if (AsciiUpperCase(a[i]) != AsciiUpperCase(b[i])) return false;
  }
  a.remove_prefix(i);
  b.remove_prefix(i);
  if (a.empty() || b.empty()) return a.empty() && b.empty();
  return UpperCase(a) == UpperCase(b);
}

std::string_view UpToNul(std::string_view text) { return text.substr(0, text.find('\0')); }

std::size_t WhiteSpaceLength(std::string_view utf8) {
  if (utf8.empty()) return 0;
  const CodePoint c = FirstCodePoint(utf8);
  switch (c.value) {
    case 0x0020:
    case 0x0085:
    case 0x00A0:
    case 0x1680:
    case 0x2028:
    case 0x2029:
    case 0x202F:
    case 0x205F:
    case 0x3000:
      return c.length;
    default: {
      const bool control = c.value >= 0x0009 && c.value <= 0x000D;
      const bool space = c.value >= 0x2000 && c.value <= 0x200A;
      return control || space ? c.length : 0;
    }
  }
}

std::u16string FormatPhone(std::u16string_view characters) {
  constexpr std::size_t kPlaces = 10;
  if (characters.empty()) return {};
  if (characters.size() > kPlaces) characters.remove_prefix(characters.size() - kPlaces);
  std::u16string filled(characters);
  filled.resize(kPlaces, u' ');
  return u"(" + filled.substr(0, 3) + u") " + filled.substr(3, 3) + u"-" + filled.substr(6);
}

}  // namespace lotrix

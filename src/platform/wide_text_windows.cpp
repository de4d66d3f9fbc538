#include <windows.h>

#include <climits>
#include <new>

#include "src/platform/wide_text.h"

namespace lotrix {

std::wstring ToWide(std::string_view utf8) {
  if (utf8.size() > INT_MAX) throw std::bad_alloc();
  const int bytes = static_cast<int>(utf8.size());
  std::wstring wide(
      static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, nullptr, 0)),
      L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

std::string ToUtf8(std::wstring_view wide) {
  std::string utf8;
  utf8.reserve(wide.size());
  for (std::size_t i = 0; i < wide.size(); ++i) {
    char32_t point = wide[i];
    const bool isHigh = point >= 0xD800 && point < 0xDC00;
    if (isHigh && i + 1 < wide.size() && wide[i + 1] >= 0xDC00 && wide[i + 1] < 0xE000) {
      point = 0x10000 + ((point - 0xD800) << 10) + (wide[++i] - 0xDC00U);
    }
    const auto add = [&](char32_t byte) { utf8 += static_cast<char>(byte); };
    if (point < 0x80) {
      add(point);
    } else if (point < 0x800) {
      add(0xC0 | point >> 6);
      add(0x80 | (point & 0x3F));
    } else if (point < 0x10000) {
      add(0xE0 | point >> 12);
      add(0x80 | (point >> 6 & 0x3F));
      add(0x80 | (point & 0x3F));
    } else {
      add(0xF0 | point >> 18);
      add(0x80 | (point >> 12 & 0x3F));
      add(0x80 | (point >> 6 & 0x3F));
      add(0x80 | (point & 0x3F));
    }
  }
  return utf8;
}

}  // namespace lotrix

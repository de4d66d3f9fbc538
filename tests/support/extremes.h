// Arguments at the edges of what they can be.
#ifndef LOTRIX_TESTS_SUPPORT_EXTREMES_H
#define LOTRIX_TESTS_SUPPORT_EXTREMES_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

namespace lotrix::test {

inline constexpr std::int32_t kLargest = std::numeric_limits<std::int32_t>::max();
inline constexpr std::int32_t kSmallest = std::numeric_limits<std::int32_t>::min();
inline constexpr std::size_t kMebibyte = std::size_t{1} << 20U;

// Of characters that take more than a byte each.
[[nodiscard]] inline std::string Repeated(const std::string& text, int times) {
  std::string all;
  for (int count = 0; count < times; ++count) all += text;
  return all;
}

}  // namespace lotrix::test

#endif

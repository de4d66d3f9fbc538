#include "src/platform/clock.h"

#include <chrono>
#include <ctime>

namespace lotrix {

Date Today(const Clock& clock) {
  const std::time_t now = std::chrono::system_clock::to_time_t(clock());
  std::tm local{};
  ::localtime_r(&now, &local);
  return {static_cast<std::int16_t>(local.tm_year + 1900),
          static_cast<std::uint8_t>(local.tm_mon + 1), static_cast<std::uint8_t>(local.tm_mday)};
}

}  // namespace lotrix

#include "src/platform/clock.h"

#include <chrono>
#include <ctime>

#include "src/platform/system.h"

namespace lotrix {

Date Today(const Clock& clock) {
  const std::tm local = LocalTime(std::chrono::system_clock::to_time_t(clock()));
  return {static_cast<std::int16_t>(local.tm_year + 1900),
          static_cast<std::uint8_t>(local.tm_mon + 1), static_cast<std::uint8_t>(local.tm_mday)};
}

}  // namespace lotrix

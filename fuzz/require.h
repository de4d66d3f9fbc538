// What every fuzz target checks by.
#ifndef LOTRIX_FUZZ_REQUIRE_H
#define LOTRIX_FUZZ_REQUIRE_H

#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "lotrix/constants.h"
#include "lotrix/error.h"

namespace lotrix::fuzz {

// Ends the program, which is how a target tells of a finding.
void Require(bool holds, std::string_view what);

// The number of the Error that `work` throws, 0 when it throws none. Anything
// else that comes out of it ends the program.
template <class Work>
std::int32_t NumberOf(Work&& work) {
  try {
    work();
  } catch (const Error& error) {
    Require(error.number() != 0, "an Error has a number");
    return error.number();
  }
  return 0;
}

[[nodiscard]] constexpr std::int32_t Numbered(RuntimeError number) {
  return static_cast<std::int32_t>(number);
}
[[nodiscard]] constexpr std::int32_t Numbered(EngineError number) {
  return static_cast<std::int32_t>(number);
}

[[nodiscard]] bool IsOneOf(std::int32_t number, std::initializer_list<std::int32_t> numbers);

}  // namespace lotrix::fuzz

#endif

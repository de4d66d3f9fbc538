#include "fuzz/require.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>

namespace lotrix::fuzz {

void Require(bool holds, std::string_view what) {
  if (holds) return;
  std::cerr << "not so: " << what << std::endl;
  std::abort();
}

bool IsOneOf(std::int32_t number, std::initializer_list<std::int32_t> numbers) {
  return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
}

}  // namespace lotrix::fuzz

// What has to hold, counted.
#ifndef LOTRIX_SOAK_CHECKS_H
#define LOTRIX_SOAK_CHECKS_H

#include <iostream>
#include <string>

namespace lotrix::soak {

struct Checks {
  int made = 0;
  int failed = 0;
};

// Says on standard error what does not hold.
inline void Expect(Checks& checks, bool holds, const std::string& what) {
  ++checks.made;
  if (holds) return;
  ++checks.failed;
  std::cerr << "FAILED: " << what << '\n';
}

}  // namespace lotrix::soak

#endif

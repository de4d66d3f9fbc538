// The programs of the longer suite, which soak/run puts together.
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "soak/keys.h"

namespace lotrix::soak {
namespace {

constexpr int kUsage = 2;

int Verdict(const Checks& checks) {
  std::cout << "  " << checks.made << " checks, " << checks.failed << " failed" << std::endl;
  return checks.failed == 0 ? 0 : 1;
}

int Run(const std::vector<std::string>& words) {
  Checks checks;
  if (words.size() == 5 && words[0] == "keys") {
    CheckKeys(words[1], words[2], words[3], std::stoi(words[4]), checks);
    return Verdict(checks);
  }
  std::cerr << "lotrix_soak keys ENGINE CONNECTION FOLDER ROUNDS\n";
  return kUsage;
}

}  // namespace
}  // namespace lotrix::soak

int main(int argc, char** argv) {
  try {
    return lotrix::soak::Run({argv + 1, argv + argc});
  } catch (const std::exception& failure) {
    std::cerr << "lotrix_soak: " << failure.what() << '\n';
    return 1;
  }
}

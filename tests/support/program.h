// The lotrix command, run as a program of its own.
#ifndef LOTRIX_TESTS_SUPPORT_PROGRAM_H
#define LOTRIX_TESTS_SUPPORT_PROGRAM_H

#include <string>
#include <vector>

namespace lotrix::test {

struct Outcome {
  int exitCode;  // -1 when a signal ended it
  std::string out;
  std::string err;
};

enum class StandardError { kFile, kTerminal };

// In the folder, where it also logs; ended after 100 seconds.
[[nodiscard]] Outcome RunProgram(const std::string& folder,
                                 const std::vector<std::string>& arguments,
                                 StandardError standardError = StandardError::kFile);

}  // namespace lotrix::test

#endif

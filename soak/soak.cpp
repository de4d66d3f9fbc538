// The programs of the longer suite, which soak/run puts together.
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "soak/journal.h"
#include "soak/keys.h"
#include "soak/writer.h"

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
  if (words.size() == 5 && words[0] == "write") {
    WriteRows(words[1], words[2], words[3], std::stoi(words[4]));
    return 0;
  }
  if (words.size() == 2 && words[0] == "answer") {
    AnswerLines(words[1], std::cin, std::cout);
    return 0;
  }
  if (words.size() > 4 && words[0] == "check") {
    // The last of them were written while the server was lost.
    const auto last = words.end() - std::stoi(words[3]);
    CheckJournals(words[1], std::stoll(words[2]), {words.begin() + 4, last}, {last, words.end()},
                  checks);
    return Verdict(checks);
  }
  std::cerr << "lotrix_soak keys ENGINE CONNECTION FOLDER ROUNDS\n"
               "lotrix_soak write CONNECTION JOURNAL STOPFILE FIRSTSERIAL\n"
               "lotrix_soak answer CONNECTION\n"
               "lotrix_soak check ROWS LOSTAT LASTJOURNALS JOURNAL...\n";
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

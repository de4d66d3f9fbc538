// A bar on a terminal; nothing where nobody watches.
#ifndef LOTRIX_CLI_PROGRESS_H
#define LOTRIX_CLI_PROGRESS_H

#include <chrono>
#include <cstdint>
#include <string>

namespace lotrix::cli {

// On standard error. The line is wiped when it is destroyed.
class Progress {
 public:
  Progress();
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // A piece of work of so many steps.
  void Start(const std::string& what, std::uint64_t steps);
  void Step() {
    // The clock is not asked for each of a million rows.
    constexpr std::uint64_t kStepsBetweenLooks = 1024;
    if (++done_ % kStepsBetweenLooks == 0 && isTerminal_) ShowIfDue();
  }
  void Wipe();

 private:
  void ShowIfDue();
  void Show();

  bool isTerminal_;
  bool shown_ = false;
  std::string what_;
  std::uint64_t steps_ = 0;
  std::uint64_t done_ = 0;
  std::chrono::steady_clock::time_point last_;
};

}  // namespace lotrix::cli

#endif

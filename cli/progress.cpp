#include "cli/progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>

namespace lotrix::cli {

Progress::Progress() : isTerminal_(isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() { Wipe(); }

void Progress::Start(const std::string& what, std::uint64_t steps) {
  what_ = what;
  steps_ = steps;
  done_ = 0;
  if (isTerminal_) Show();
}

void Progress::ShowIfDue() {
  constexpr auto kPause = std::chrono::milliseconds(100);
  if (std::chrono::steady_clock::now() - last_ >= kPause) Show();
}

void Progress::Show() {
  constexpr std::size_t kWidth = 30;
  constexpr std::uint64_t kPercent = 100;
  // More rows than were counted may have come where no snapshot holds them off.
  const std::uint64_t done = std::min(done_, steps_);
  const std::uint64_t share = steps_ == 0 ? kPercent : done * kPercent / steps_;
  const std::size_t filled = share * kWidth / kPercent;
  std::cerr << fmt::format("\r{:<18} [{}{}] {:>3}%", what_, std::string(filled, '#'),
                           std::string(kWidth - filled, '.'), share)
            << std::flush;
  last_ = std::chrono::steady_clock::now();
  shown_ = true;
}

void Progress::Wipe() {
  constexpr std::size_t kWidth = 60;
  if (shown_) std::cerr << '\r' << std::string(kWidth, ' ') << '\r' << std::flush;
  shown_ = false;
}

}  // namespace lotrix::cli

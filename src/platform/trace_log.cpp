#include "src/platform/trace_log.h"

#include <array>
#include <ctime>
#include <utility>

namespace lotrix {

namespace {

// Enough for any one operation; more is handed over in the middle of a call, at
// the end of a line.
constexpr std::size_t kMostGathered = 256UL * 1024;

constexpr std::size_t kFractionDigits = 6;

}  // namespace

std::string DefaultLogPath() {
  std::string path = EnvironmentText("LOTRIX_LOG");
  return path.empty() ? SystemLogPath() : path;
}

TraceLog::TraceLog(const std::string& path, Clock clock) : clock_(std::move(clock)), file_(path) {}

TraceLog::~TraceLog() { Flush(); }

void TraceLog::Information(std::initializer_list<std::string_view> pieces) {
  Write(" information ", pieces);
}

void TraceLog::Problem(std::initializer_list<std::string_view> pieces) { Write(" error ", pieces); }

void TraceLog::Write(std::string_view event, std::initializer_list<std::string_view> pieces) {
  if (!file_.IsOpen()) return;
  if (depth_ == 0) ReadProcess();
  UpdateTimeAndProcess();
  lines_ += timeAndProcess_;
  lines_ += event;
  const std::size_t start = lines_.size();
  for (const std::string_view piece : pieces) lines_ += piece;
  if (lines_.find('\n', start) != std::string::npos ||
      lines_.find('\r', start) != std::string::npos) {
    EscapeLineBreaks(start);
  }
  lines_ += '\n';
  if (depth_ == 0 || lines_.size() > kMostGathered) Flush();
}

void TraceLog::ReadProcess() {
  const std::int64_t process = ProcessId();
  if (process == process_) return;
  process_ = process;
  timeAndProcess_.clear();
}

void TraceLog::EscapeLineBreaks(std::size_t start) {
  const std::string text = lines_.substr(start);
  lines_.resize(start);
  for (const char c : text) {
    if (c == '\n') {
      lines_ += "\\n";
    } else if (c == '\r') {
      lines_ += "\\r";
    } else {
      lines_ += c;
    }
  }
}

void TraceLog::UpdateTimeAndProcess() {
  const auto now = clock_();
  const auto wholeSeconds = std::chrono::floor<std::chrono::seconds>(now);
  const std::int64_t second = wholeSeconds.time_since_epoch().count();
  std::int64_t microsecond =
      std::chrono::duration_cast<std::chrono::microseconds>(now - wholeSeconds).count();
  if (second != second_ || timeAndProcess_.empty()) {
    const std::tm local = LocalTime(static_cast<std::time_t>(second));
    std::array<char, 32> text{};
    timeAndProcess_.assign(text.data(),
                           std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S.", &local));
    fraction_ = timeAndProcess_.size();
    timeAndProcess_.append(kFractionDigits, '0').append(1, ' ').append(std::to_string(process_));
    second_ = second;
  }
  for (std::size_t digit = kFractionDigits; digit-- > 0;) {
    timeAndProcess_[fraction_ + digit] = static_cast<char>('0' + microsecond % 10);
    microsecond /= 10;
  }
}

void TraceLog::Flush() noexcept {
  if (torn_ && !lines_.empty()) lines_.insert(0, 1, '\n');
  const std::size_t written = file_.Append(lines_);
  // A disk that was full in the middle of a line: the next line starts its own.
  if (written > 0) torn_ = written < lines_.size() && lines_[written - 1] != '\n';
  lines_.clear();
  // One megabyte argument must not keep a megabyte for the object's life.
  if (lines_.capacity() > 2 * kMostGathered) lines_.shrink_to_fit();
}

}  // namespace lotrix

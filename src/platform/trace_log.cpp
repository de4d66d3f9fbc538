#include "src/platform/trace_log.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <system_error>
#include <utility>

namespace lotrix {

namespace {

// Enough for any one operation; more is handed over in the middle of a call, at
// the end of a line.
constexpr std::size_t kMostGathered = 256UL * 1024;

std::string EnvironmentText(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

}  // namespace

std::string DefaultLogPath() {
  if (std::string path = EnvironmentText("LOTRIX_LOG"); !path.empty()) return path;
  std::filesystem::path state = EnvironmentText("XDG_STATE_HOME");
  // A relative XDG_STATE_HOME is to be ignored, by the base directory standard.
  if (!state.is_absolute()) {
    const std::string home = EnvironmentText("HOME");
    if (home.empty()) return {};
    state = std::filesystem::path(home) / ".local" / "state";
  }
  const std::filesystem::path folder = state / "lotrix";
  std::error_code ignored;
  if (std::filesystem::create_directory(folder, ignored)) {
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all, ignored);
  }
  return (folder / "Lotrix.log").string();
}

TraceLog::TraceLog(const std::string& path, Clock clock) : clock_(std::move(clock)) {
  // A path with a U+0000 would name another file than the one meant.
  if (path.empty() || path.find('\0') != std::string::npos) return;
  // Readable by the owner alone: logged statements hold people's data.
  // Not waiting for a reader, should the path be a pipe.
  file_ =
      ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0600);
}

TraceLog::~TraceLog() {
  Flush();
  if (file_ >= 0) ::close(file_);
}

void TraceLog::Information(std::initializer_list<std::string_view> pieces) {
  Write(" information ", pieces);
}

void TraceLog::Problem(std::initializer_list<std::string_view> pieces) { Write(" error ", pieces); }

void TraceLog::Write(std::string_view event, std::initializer_list<std::string_view> pieces) {
  if (file_ < 0) return;
  if (depth_ == 0) ReadProcess();
  AppendTimeAndProcess();
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

void TraceLog::ReadProcess() { processText_ = std::to_string(::getpid()); }

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

void TraceLog::AppendTimeAndProcess() {
  const auto now = clock_();
  const auto wholeSeconds = std::chrono::floor<std::chrono::seconds>(now);
  const std::int64_t second = wholeSeconds.time_since_epoch().count();
  std::int64_t microsecond =
      std::chrono::duration_cast<std::chrono::microseconds>(now - wholeSeconds).count();
  if (second != second_ || secondText_.empty()) {
    const auto time = static_cast<std::time_t>(second);
    std::tm local{};
    ::localtime_r(&time, &local);
    std::array<char, 32> text{};
    secondText_.assign(text.data(),
                       std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S.", &local));
    second_ = second;
  }
  std::array<char, 6> fraction{};
  for (auto digit = fraction.rbegin(); digit != fraction.rend(); ++digit) {
    *digit = static_cast<char>('0' + microsecond % 10);
    microsecond /= 10;
  }
  lines_ += secondText_;
  lines_.append(fraction.data(), fraction.size());
  lines_ += ' ';
  lines_ += processText_;
}

void TraceLog::Flush() noexcept {
  if (torn_ && !lines_.empty()) lines_.insert(0, 1, '\n');
  std::string_view rest = lines_;
  while (!rest.empty()) {
    const ssize_t written = ::write(file_, rest.data(), rest.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) break;
    rest.remove_prefix(static_cast<std::size_t>(written));
  }
  // A disk that was full in the middle of a line: the next line starts its own.
  if (!lines_.empty() && rest.size() < lines_.size()) {
    torn_ = !rest.empty() && lines_[lines_.size() - rest.size() - 1] != '\n';
  }
  lines_.clear();
  // One megabyte argument must not keep a megabyte for the object's life.
  if (lines_.capacity() > 2 * kMostGathered) lines_.shrink_to_fit();
}

}  // namespace lotrix

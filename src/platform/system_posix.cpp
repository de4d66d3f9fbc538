#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "src/platform/system.h"

namespace lotrix {

std::string EnvironmentText(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

std::tm LocalTime(std::time_t time) {
  std::tm local{};
  ::localtime_r(&time, &local);
  return local;
}

std::int64_t ProcessId() { return ::getpid(); }

std::string SystemLogPath() {
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

void Notify(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
  std::fputc('\n', stderr);
}

AppendedFile::AppendedFile(const std::string& path) {
  // A path with a U+0000 would name another file than the one meant.
  if (path.empty() || path.find('\0') != std::string::npos) return;
  // Readable by the owner alone: logged statements hold people's data.
  // Not waiting for a reader, should the path be a pipe.
  file_ =
      ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0600);
}

AppendedFile::~AppendedFile() {
  if (IsOpen()) ::close(static_cast<int>(file_));
}

std::size_t AppendedFile::Append(std::string_view bytes) noexcept {
  std::size_t written = 0;
  while (written < bytes.size()) {
    const ssize_t result =
        ::write(static_cast<int>(file_), bytes.data() + written, bytes.size() - written);
    if (result < 0 && errno == EINTR) continue;
    if (result <= 0) break;
    written += static_cast<std::size_t>(result);
  }
  return written;
}

}  // namespace lotrix

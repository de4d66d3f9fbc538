// What differs between operating systems, one source file for each of them.
#ifndef LOTRIX_SRC_PLATFORM_SYSTEM_H
#define LOTRIX_SRC_PLATFORM_SYSTEM_H

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>

namespace lotrix {

// Empty for a variable that is not set. UTF-8.
[[nodiscard]] std::string EnvironmentText(const char* name);

[[nodiscard]] std::tm LocalTime(std::time_t time);
[[nodiscard]] std::int64_t ProcessId();

// The path of the log when neither the program nor LOTRIX_LOG names one; empty
// where there is no place for it.
[[nodiscard]] std::string SystemLogPath();

// Shows the text to whoever sits at the machine, and returns when it was seen
// where the system has the means for that.
void Notify(std::string_view text);

// A file that only grows. Other processes may append to it at the same time.
class AppendedFile {
 public:
  // Nothing is thrown for a file that cannot be opened. The path is UTF-8.
  explicit AppendedFile(const std::string& path);
  ~AppendedFile();
  AppendedFile(const AppendedFile&) = delete;
  AppendedFile& operator=(const AppendedFile&) = delete;

  [[nodiscard]] bool IsOpen() const noexcept { return file_ != kNoFile; }
  // How many bytes went in.
  std::size_t Append(std::string_view bytes) noexcept;

 private:
  static constexpr std::intptr_t kNoFile = -1;
  std::intptr_t file_ = kNoFile;
};

}  // namespace lotrix

#endif

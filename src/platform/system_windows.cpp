#include <windows.h>

#include <algorithm>
#include <cstdio>

#include "src/platform/system.h"
#include "src/platform/wide_text.h"

namespace lotrix {

std::string EnvironmentText(const char* name) {
  const std::wstring wideName = ToWide(name);
  std::wstring value;
  // Asked again should another thread make the value longer in between.
  for (DWORD room = 256;;) {
    value.resize(room);
    const DWORD length = GetEnvironmentVariableW(wideName.c_str(), value.data(), room);
    if (length < room) {
      value.resize(length);
      return ToUtf8(value);
    }
    room = length;
  }
}

std::tm LocalTime(std::time_t time) {
  std::tm local{};
  localtime_s(&local, &time);
  return local;
}

std::int64_t ProcessId() { return static_cast<std::int64_t>(GetCurrentProcessId()); }

std::string SystemLogPath() { return "C:\\tmp\\Lotrix.log"; }

void Notify(std::string_view text) {
  // A service or a nightly import has nobody to press the button.
  if (EnvironmentText("LOTRIX_NOTIFY") == "stderr") {
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fputc('\n', stderr);
    std::fflush(stderr);
    return;
  }
  MessageBoxW(nullptr, ToWide(text).c_str(), L"Lotrix", MB_OK | MB_TASKMODAL);
}

AppendedFile::AppendedFile(const std::string& path) {
  if (path.empty() || path.find('\0') != std::string::npos) return;
  // With the right to append and none to write elsewhere, the system itself puts
  // every block at the end.
  HANDLE const file = CreateFileW(ToWide(path).c_str(), FILE_APPEND_DATA | SYNCHRONIZE,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  file_ = reinterpret_cast<std::intptr_t>(file);
}

AppendedFile::~AppendedFile() {
  if (IsOpen()) CloseHandle(reinterpret_cast<HANDLE>(file_));
}

std::size_t AppendedFile::Append(std::string_view bytes) noexcept {
  std::size_t written = 0;
  while (written < bytes.size()) {
    constexpr std::size_t kMost = 1UL << 30;
    const auto size = static_cast<DWORD>(std::min(bytes.size() - written, kMost));
    DWORD now = 0;
    if (!WriteFile(reinterpret_cast<HANDLE>(file_), bytes.data() + written, size, &now, nullptr) ||
        now == 0) {
      break;
    }
    written += now;
  }
  return written;
}

}  // namespace lotrix

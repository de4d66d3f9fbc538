// What a service object takes from the program it lives in.
#ifndef LOTRIX_HOST_H
#define LOTRIX_HOST_H

#include <chrono>
#include <functional>
#include <string>
#include <string_view>

namespace lotrix {

// Each default is the real thing; a test or a service gives its own.
struct Host {
  // The clock behind "today" and the trace log's time stamps. Empty: the system
  // clock.
  std::function<std::chrono::system_clock::time_point()> clock;
  // Shows the text of CheckVaccActive. Empty: one line on standard error.
  std::function<void(std::string_view text)> notify;
  // The trace log's file, UTF-8. Empty: $LOTRIX_LOG, else
  // $XDG_STATE_HOME/lotrix/Lotrix.log (C:\tmp\Lotrix.log on Windows).
  std::string logPath;
};

}  // namespace lotrix

#endif

// The trace log: one line an event, appended to a file that several processes
// and several objects of one process may share.
#ifndef LOTRIX_SRC_PLATFORM_TRACE_LOG_H
#define LOTRIX_SRC_PLATFORM_TRACE_LOG_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>

#include "src/platform/system.h"

namespace lotrix {

using Clock = std::function<std::chrono::system_clock::time_point()>;

// The path of the log when the program gives none: $LOTRIX_LOG, else
// C:\tmp\Lotrix.log on Windows and elsewhere the user's state folder, of which the
// last element is made (mode 0700).
[[nodiscard]] std::string DefaultLogPath();

// Used by one thread at a time. Nothing here throws for a log that cannot be
// opened or written: a trace is no reason to refuse an order.
class TraceLog {
 public:
  TraceLog(const std::string& path, Clock clock);
  ~TraceLog();
  TraceLog(const TraceLog&) = delete;
  TraceLog& operator=(const TraceLog&) = delete;

  // The pieces of a line are written one after the other; line breaks inside
  // them become \n and \r.
  void Information(std::initializer_list<std::string_view> pieces);
  void Problem(std::initializer_list<std::string_view> pieces);

  // While a Call is alive lines are gathered; the outermost one to end hands
  // them to the operating system in a single append, so that no other process
  // can tear a line and an operation pays for one write.
  class Call {
   public:
    explicit Call(TraceLog& log) : log_(log) {
      if (log_.depth_++ == 0) log_.ReadProcess();
    }
    ~Call() {
      if (--log_.depth_ == 0) log_.Flush();
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

   private:
    TraceLog& log_;
  };

 private:
  void Write(std::string_view event, std::initializer_list<std::string_view> pieces);
  void ReadProcess();
  void UpdateTimeAndProcess();
  void EscapeLineBreaks(std::size_t start);
  void Flush() noexcept;

  Clock clock_;
  AppendedFile file_;
  int depth_ = 0;
  bool torn_ = false;  // the file ends in the middle of a line
  std::string lines_;
  // What the last line began with, of which most lines change the fraction alone.
  std::string timeAndProcess_;
  std::size_t fraction_ = 0;  // where it is in that text
  std::int64_t second_ = -1;
  // Read anew for each call, since a child process may go on with the object.
  std::int64_t process_ = -1;
};

}  // namespace lotrix

#endif

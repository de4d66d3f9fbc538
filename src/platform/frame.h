// The frame that every operation, every validation routine and the connection
// members share: a first line, the work, a last line, and one way to fail.
#ifndef LOTRIX_SRC_PLATFORM_FRAME_H
#define LOTRIX_SRC_PLATFORM_FRAME_H

#include <string_view>
#include <type_traits>

#include "src/platform/trace_log.h"

namespace lotrix {

inline constexpr std::string_view kBegin = "Begin: ";
inline constexpr std::string_view kEnd = "End: ";

// The lines of a frame are begin + name + "()", end + name + "()" and "Problem:
// In " + name + "() "; an empty begin or end means that the line is not written
// or that the work writes its own.
struct FrameTexts {
  std::string_view name;
  std::string_view begin = kBegin;
  std::string_view end = kEnd;
};

// Logs "Problem: In " + name + "() " + description of the exception in hand and
// throws it again as an Error with the same number and description and the
// source "LOTRIX DLL". Only to be called from a handler.
[[noreturn]] void LogAndThrowAgain(TraceLog& log, std::string_view name);

// Whatever `work` opened is closed by its own destructors before the problem
// line is written.
template <class Work>
auto InFrame(TraceLog& log, const FrameTexts& texts, Work&& work) {
  const TraceLog::Call call(log);
  try {
    if (!texts.begin.empty()) log.Information({texts.begin, texts.name, "()"});
    if constexpr (std::is_void_v<std::invoke_result_t<Work>>) {
      work();
      if (!texts.end.empty()) log.Information({texts.end, texts.name, "()"});
    } else {
      auto result = work();
      if (!texts.end.empty()) log.Information({texts.end, texts.name, "()"});
      return result;
    }
  } catch (...) {
    LogAndThrowAgain(log, texts.name);
  }
}

}  // namespace lotrix

#endif

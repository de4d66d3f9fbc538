#include "src/platform/frame.h"

#include <new>
#include <stdexcept>
#include <string>

#include "lotrix/constants.h"
#include "lotrix/error.h"

namespace lotrix {

namespace {

Error CurrentError() {
  try {
    throw;
  } catch (const Error& error) {
    return error;
  } catch (const std::bad_alloc&) {
    return {static_cast<std::int32_t>(RuntimeError::kOutOfMemory),
            std::string(RuntimeErrorText(RuntimeError::kOutOfMemory))};
  } catch (const std::exception& error) {
    return {static_cast<std::int32_t>(EngineError::kFailed), error.what()};
  }
}

}  // namespace

void LogAndThrowAgain(TraceLog& log, std::string_view name) {
  const Error error = CurrentError();
  log.Problem({"Problem: In ", name, "() ", error.description()});
  throw Error(error.number(), error.description(), std::string(kErrorSource), error.engineCode());
}

}  // namespace lotrix

#include "src/platform/frame.h"

#include <string>

#include "lotrix/constants.h"
#include "src/errors/raise_error.h"

namespace lotrix {

void LogAndThrowAgain(TraceLog& log, std::string_view name) {
  const Error error = ErrorInHand();
  log.Problem({"Problem: In ", name, "() ", error.description()});
  throw Error(error.number(), error.description(), std::string(kErrorSource), error.engineCode());
}

}  // namespace lotrix

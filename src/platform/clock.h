// The host's clock as the component uses it.
#ifndef LOTRIX_SRC_PLATFORM_CLOCK_H
#define LOTRIX_SRC_PLATFORM_CLOCK_H

#include "lotrix/value.h"
#include "src/platform/trace_log.h"

namespace lotrix {

// The local calendar day of the clock's present.
[[nodiscard]] Date Today(const Clock& clock);

}  // namespace lotrix

#endif

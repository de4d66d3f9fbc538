// The enrollment row of a new provider.
#ifndef LOTRIX_SRC_OPERATIONS_DEFAULT_ENROLLMENT_H
#define LOTRIX_SRC_OPERATIONS_DEFAULT_ENROLLMENT_H

#include <string>

#include "lotrix/connection.h"
#include "lotrix/value.h"
#include "src/platform/trace_log.h"

namespace lotrix {

// Adds an enrollment row with every count zero, unless the provider has one. Logs
// no line of its own. Throws what ValidateEnrollmentRecord throws, and the
// engine's errors.
void AddDefaultEnrollment(TraceLog& log, const std::string& pin, Date changeDate,
                          const std::string& userId, Connection& connection);

}  // namespace lotrix

#endif

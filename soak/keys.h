// Many clients that take keys at the same moment.
#ifndef LOTRIX_SOAK_KEYS_H
#define LOTRIX_SOAK_KEYS_H

#include <string>

#include "soak/checks.h"

namespace lotrix::soak {

// On a fresh database: one client alone, then sixteen processes, then sixteen
// threads with an object each take keys in so many rounds, by operations and
// directly. Logs go into the folder. Prints its figures behind the engine's name.
void CheckKeys(const std::string& engine, const std::string& connectionString,
               const std::string& folder, int rounds, Checks& checks);

}  // namespace lotrix::soak

#endif

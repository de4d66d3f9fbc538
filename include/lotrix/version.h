// What is built into this library.
#ifndef LOTRIX_VERSION_H
#define LOTRIX_VERSION_H

#include <string>
#include <string_view>
#include <vector>

namespace lotrix {

// "0.1.0".
[[nodiscard]] std::string_view Version();
// Each engine's name, as a connection string's provider, and its version.
[[nodiscard]] std::vector<std::string> Engines();

}  // namespace lotrix

#endif

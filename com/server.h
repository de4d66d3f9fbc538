// The server as a whole: what keeps it loaded, and its type library.
#ifndef LOTRIX_COM_SERVER_H
#define LOTRIX_COM_SERVER_H

#include <ole2.h>

#include "src/platform/automation.h"

namespace lotrix::com {

// While one of these is alive the server stays loaded. Every object has one.
class KeepsServerLoaded {
 public:
  KeepsServerLoaded() noexcept;
  ~KeepsServerLoaded();
  KeepsServerLoaded(const KeepsServerLoaded&) = delete;
  KeepsServerLoaded& operator=(const KeepsServerLoaded&) = delete;
};

// From the type library inside the server's own file; throws what loading it throws.
[[nodiscard]] automation::Held<ITypeInfo> TypeInfoOf(const GUID& identifier);

}  // namespace lotrix::com

#endif

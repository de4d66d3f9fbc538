// For Each over whatever has positions.
#ifndef LOTRIX_COM_ENUMERATOR_H
#define LOTRIX_COM_ENUMERATOR_H

#include <ole2.h>

#include <cstdint>
#include <functional>

#include "src/platform/automation.h"

namespace lotrix::com {

// Puts the item at a position, counted from 1, into an empty VARIANT; false behind
// the last one.
using ItemAtPosition = std::function<bool(std::int32_t position, VARIANT& item)>;

// An IEnumVARIANT.
[[nodiscard]] automation::Held<IUnknown> NewEnumerator(ItemAtPosition itemAt);

}  // namespace lotrix::com

#endif

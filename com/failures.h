// How a failure leaves the server: as an HRESULT with error information, or in an
// invocation's exception information. No C++ exception does.
#ifndef LOTRIX_COM_FAILURES_H
#define LOTRIX_COM_FAILURES_H

#include <ole2.h>

#include "lotrix/error.h"

namespace lotrix::com {

// Leaves the error information of the exception in hand with the calling thread.
// Only to be called from a handler.
[[nodiscard]] HRESULT ReportFailure(const GUID& interfaceId) noexcept;

// DISP_E_EXCEPTION with the exception in hand in `info`, which may be null. Only to
// be called from a handler.
[[nodiscard]] HRESULT FillFailure(EXCEPINFO* info) noexcept;

// The body of a vtable method.
template <class Work>
[[nodiscard]] HRESULT Answer(const GUID& interfaceId, Work&& work) noexcept {
  try {
    work();
    return S_OK;
  } catch (...) {
    return ReportFailure(interfaceId);
  }
}

// What a pointer argument points to; throws E_POINTER's error for none.
template <class T>
[[nodiscard]] T& PointedTo(T* target) {
  if (target == nullptr) throw Error(E_POINTER, "Invalid pointer");
  return *target;
}

// What an [out] pointer points to, empty: that is what the caller finds after a
// failure.
template <class T>
[[nodiscard]] T& FreshOut(T* target) {
  PointedTo(target) = T{};
  return *target;
}

}  // namespace lotrix::com

#endif

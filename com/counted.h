// The counting of references that every object of the server has in common.
#ifndef LOTRIX_COM_COUNTED_H
#define LOTRIX_COM_COUNTED_H

#include <ole2.h>

#include <atomic>

#include "com/server.h"

namespace lotrix::com {

// Made with one reference, which is its maker's; gone with the last.
template <class... Interfaces>
class Counted : public Interfaces... {
 public:
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 protected:
  Counted() = default;
  virtual ~Counted() = default;

 private:
  std::atomic<ULONG> references_ = 1;
  KeepsServerLoaded keepsServerLoaded_;
};

}  // namespace lotrix::com

#endif

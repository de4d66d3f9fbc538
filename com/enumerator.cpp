#include "com/enumerator.h"

#include <utility>

#include "com/counted.h"
#include "com/failures.h"

namespace lotrix::com {

namespace {

class Enumerator final : public Counted<IEnumVARIANT> {
 public:
  Enumerator(ItemAtPosition itemAt, std::int32_t next) : itemAt_(std::move(itemAt)), next_(next) {}

  STDMETHODIMP QueryInterface(REFIID identifier, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (identifier != IID_IUnknown && identifier != IID_IEnumVARIANT) return E_NOINTERFACE;
    *object = static_cast<IEnumVARIANT*>(this);
    AddRef();
    return S_OK;
  }

  STDMETHODIMP Next(ULONG wanted, VARIANT* items, ULONG* fetched) override {
    if (items == nullptr) return E_POINTER;
    if (fetched != nullptr) *fetched = 0;
    ULONG got = 0;
    const HRESULT result = Answer(IID_IEnumVARIANT, [&] {
      for (; got < wanted; ++got) {
        VariantInit(&items[got]);
        if (!itemAt_(next_, items[got])) break;
        ++next_;
      }
    });
    if (FAILED(result)) {
      while (got > 0) VariantClear(&items[--got]);
      return result;
    }
    if (fetched != nullptr) *fetched = got;
    return got == wanted ? S_OK : S_FALSE;
  }
  STDMETHODIMP Skip(ULONG items) override {
    HRESULT result = S_OK;
    for (; items > 0 && result == S_OK; --items) {
      VARIANT passed;
      result = Next(1, &passed, nullptr);
      if (result == S_OK) VariantClear(&passed);
    }
    return result;
  }
  STDMETHODIMP Reset() override {
    next_ = 1;
    return S_OK;
  }
  STDMETHODIMP Clone(IEnumVARIANT** clone) override {
    return Answer(IID_IEnumVARIANT, [&] {
      IEnumVARIANT*& answer = FreshOut(clone);
      answer = new Enumerator(itemAt_, next_);
    });
  }

 private:
  ItemAtPosition itemAt_;
  std::int32_t next_;
};

}  // namespace

automation::Held<IUnknown> NewEnumerator(ItemAtPosition itemAt) {
  return automation::Held<IUnknown>(new Enumerator(std::move(itemAt), 1));
}

}  // namespace lotrix::com

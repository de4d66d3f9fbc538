#include "com/failures.h"

#include <utility>

#include "lotrix/constants.h"
#include "src/errors/raise_error.h"
#include "src/platform/automation.h"

namespace lotrix::com {

HRESULT ReportFailure(const GUID& interfaceId) noexcept {
  try {
    const Error error = ErrorInHand();
    const HRESULT number = automation::ToHresult(error.number());
    ICreateErrorInfo* created = nullptr;
    if (FAILED(CreateErrorInfo(&created))) return number;
    const automation::Held<ICreateErrorInfo> texts(created);
    const automation::OwnedVariant source = automation::FromText(error.source());
    const automation::OwnedVariant description = automation::FromText(error.description());
    texts->SetGUID(interfaceId);
    texts->SetSource(source->bstrVal);
    texts->SetDescription(description->bstrVal);
    void* information = nullptr;
    if (SUCCEEDED(texts->QueryInterface(IID_IErrorInfo, &information))) {
      const automation::Held<IErrorInfo> held(static_cast<IErrorInfo*>(information));
      SetErrorInfo(0, held.get());
    }
    return number;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

HRESULT FillFailure(EXCEPINFO* info) noexcept {
  try {
    const Error error = ErrorInHand();
    if (info != nullptr) {
      automation::OwnedVariant source = automation::FromText(error.source());
      automation::OwnedVariant description = automation::FromText(error.description());
      *info = {};
      info->scode = automation::ToHresult(error.number());
      info->bstrSource = std::exchange(source->bstrVal, nullptr);
      info->bstrDescription = std::exchange(description->bstrVal, nullptr);
    }
    return DISP_E_EXCEPTION;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace lotrix::com

// What every object of the server has in common: counting, IDispatch over a table
// of members, and error information.
//
// Apartment-threaded: an object is called by the thread that made it; COM carries
// the calls of others over. Invocations do not go through the type library, so
// that a late-bound call, here as everywhere, converts its arguments by the
// component's own rules and not by those of the machine's language.
#ifndef LOTRIX_COM_AUTOMATION_OBJECT_H
#define LOTRIX_COM_AUTOMATION_OBJECT_H

#include <ole2.h>

#include <span>
#include <utility>
#include <vector>

#include "com/counted.h"
#include "com/failures.h"
#include "com/server.h"
#include "lotrix/members.h"
#include "src/platform/automation.h"

namespace lotrix::com {

// One entry for each parameter, null for an omitted one; of a property that is let
// or set, the value.
using Given = std::span<const VARIANT* const>;

// A member's arguments by position or name, in the order of its parameters. Throws
// 450 for too many or too few, 448 for an unknown name, 449 for a required one that
// is left out.
[[nodiscard]] std::vector<const VARIANT*> InOrder(const MemberDescription& member,
                                                  const DISPPARAMS& parameters);

// Ids of a member's name and its parameters' names; DISP_E_UNKNOWNNAME when one is
// unknown. A parameter's id is its position.
[[nodiscard]] HRESULT FindIds(std::span<const MemberDescription> members, std::span<LPOLESTR> names,
                              DISPID* ids);

// The member of that id that can be used in one of the ways of `flags`, or null.
[[nodiscard]] const MemberDescription* FindMember(std::span<const MemberDescription> members,
                                                  DISPID id, WORD flags);

// Arguments that stand behind a property without parameters are meant for the
// default member of the object that it gives, as in Headers("2").
[[nodiscard]] bool IsForDefaultMember(const MemberDescription& member,
                                      const DISPPARAMS& parameters);
[[nodiscard]] HRESULT InvokeDefaultMember(const VARIANT& object, WORD flags, DISPPARAMS& parameters,
                                          VARIANT* result, EXCEPINFO* exception);

// The conversions of arguments; an object counts as the value of its default member
// and a Null is no text and no number (13).
[[nodiscard]] Value ValueIn(const VARIANT& variant, ParameterType type);
[[nodiscard]] std::int32_t LongIn(const VARIANT& variant);
[[nodiscard]] std::string TextIn(const VARIANT& variant);
// The object that is there, perhaps null; throws 13 for anything else.
[[nodiscard]] automation::Held<IDispatch> ObjectArgument(const VARIANT& variant);

template <class Interface>
class AutomationObject : public Counted<Interface, ISupportErrorInfo> {
 public:
  STDMETHODIMP QueryInterface(REFIID identifier, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (identifier == IID_IUnknown || identifier == IID_IDispatch || identifier == Identifier()) {
      *object = static_cast<Interface*>(this);
    } else if (identifier == IID_ISupportErrorInfo) {
      *object = static_cast<ISupportErrorInfo*>(this);
    } else {
      *object = OtherInterface(identifier);
    }
    if (*object == nullptr) return E_NOINTERFACE;
    this->AddRef();
    return S_OK;
  }

  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = HasTypeInfo() ? 1 : 0;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT index, LCID /*locale*/, ITypeInfo** information) override {
    if (information == nullptr) return E_POINTER;
    *information = nullptr;
    if (!HasTypeInfo() || index != 0) return DISP_E_BADINDEX;
    return Answered([&] { *information = TypeInfoOf(Identifier()).release(); });
  }
  STDMETHODIMP GetIDsOfNames(REFIID /*reserved*/, LPOLESTR* names, UINT count, LCID /*locale*/,
                             DISPID* ids) override {
    if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
    try {
      return FindIds(Table(), {names, count}, ids);
    } catch (...) {
      return E_OUTOFMEMORY;
    }
  }
  STDMETHODIMP Invoke(DISPID id, REFIID reserved, LCID /*locale*/, WORD flags,
                      DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                      UINT* /*argument*/) override {
    if (reserved != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    if (parameters == nullptr) return E_INVALIDARG;
    const automation::Held<IUnknown> self = Self();
    try {
      const MemberDescription* const member = FindMember(Table(), id, flags);
      if (member == nullptr) return DISP_E_MEMBERNOTFOUND;
      automation::OwnedVariant answer;
      if (IsForDefaultMember(*member, *parameters)) {
        Run(*member, {}, *answer);
        return InvokeDefaultMember(*answer, flags, *parameters, result, exception);
      }
      Run(*member, InOrder(*member, *parameters), *answer);
      if (result != nullptr) answer.MoveTo(*result);
      return S_OK;
    } catch (...) {
      return FillFailure(exception);
    }
  }

  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID identifier) override {
    return identifier == Identifier() ? S_OK : S_FALSE;
  }

 protected:
  // Of the dual interface; IDispatch for an object that is only ever late-bound.
  [[nodiscard]] virtual const GUID& Identifier() const = 0;
  [[nodiscard]] virtual std::span<const MemberDescription> Table() const = 0;
  virtual void Run(const MemberDescription& member, Given given, VARIANT& result) = 0;
  [[nodiscard]] virtual void* OtherInterface(const GUID& /*identifier*/) { return nullptr; }

  // The body of a vtable method. The object outlives it, whatever it makes its
  // caller let go.
  template <class Work>
  [[nodiscard]] HRESULT Answered(Work&& work) noexcept {
    const automation::Held<IUnknown> self = Self();
    return Answer(Identifier(), std::forward<Work>(work));
  }

 private:
  [[nodiscard]] automation::Held<IUnknown> Self() {
    return automation::Hold(static_cast<IUnknown*>(static_cast<Interface*>(this)));
  }
  [[nodiscard]] bool HasTypeInfo() const { return Identifier() != IID_IDispatch; }
};

}  // namespace lotrix::com

#endif

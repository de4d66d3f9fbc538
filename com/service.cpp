#include "com/service.h"

#include <utility>
#include <variant>
#include <vector>

#include "com/automation_object.h"
#include "com/connection.h"
#include "com/result_set.h"
#include "lotrix/component.h"
#include "lotrix/members.h"
#include "src/errors/raise_error.h"

namespace lotrix::com {

namespace {

using automation::Held;

std::span<const MemberDescription> ServiceMembers() {
  static const std::vector<MemberDescription> kMembers(Members().begin(), Members().end());
  return kMembers;
}

const Member& MemberWithId(std::uint32_t dispatchId) {
  for (const Member& member : Members()) {
    if (member.dispatchId == dispatchId) return member;
  }
  RaiseRuntimeError(RuntimeError::kUnknownMember);
}

// Arguments of the vtable's methods.
Argument Given(const OLECHAR* text) { return automation::FromBstr(text); }
Argument Given(LONG number) { return std::int64_t{number}; }
Argument Given(VARIANT_BOOL logical) { return logical != VARIANT_FALSE; }
Argument Given(const VARIANT& variant) {
  if (automation::IsMissing(variant)) return std::nullopt;
  return automation::ToValue(variant);
}

class ServiceObject final : public AutomationObject<_cLotrix> {
 public:
#include "service_members.inc"

 private:
  [[nodiscard]] const GUID& Identifier() const override { return IID__cLotrix; }
  [[nodiscard]] std::span<const MemberDescription> Table() const override {
    return ServiceMembers();
  }

  void Run(const MemberDescription& description, com::Given given, VARIANT& result) override {
    const Member& member = MemberWithId(description.dispatchId);
    std::vector<Argument> arguments;
    arguments.reserve(given.size());
    for (std::size_t i = 0; i < given.size(); ++i) {
      arguments.push_back(given[i] == nullptr ? Argument()
                                              : ValueIn(*given[i], member.parameters[i].type));
    }
    const Held<IDispatch> object = ObjectFrom(lotrix::Call(lotrix_, member, arguments));
    if (object != nullptr) automation::FromObject(object.get()).MoveTo(result);
  }

  // Making the arguments can fail as the call itself can.
  template <class MakeArguments, class Interface>
  HRESULT CallMember(std::uint32_t dispatchId, const MakeArguments& makeArguments,
                     Interface** result) {
    return Answered([&] {
      Interface*& answer = FreshOut(result);
      Held<IDispatch> object =
          ObjectFrom(lotrix::Call(lotrix_, MemberWithId(dispatchId), makeArguments()));
      // What a member gives is of the interface that its signature names.
      answer = static_cast<Interface*>(object.release());
    });
  }
  template <class MakeArguments>
  HRESULT CallMember(std::uint32_t dispatchId, const MakeArguments& makeArguments, std::nullptr_t) {
    return Answered([&] {
      static_cast<void>(lotrix::Call(lotrix_, MemberWithId(dispatchId), makeArguments()));
    });
  }

  Held<IDispatch> ObjectFrom(CallResult answer) {
    if (auto* const table = std::get_if<cResultSet>(&answer)) {
      return Held<IDispatch>(NewResultSetObject(std::move(*table)).release());
    }
    if (const auto* const connection = std::get_if<std::shared_ptr<Connection>>(&answer)) {
      return ConnectionObjectOf(*connection, connectionObject_);
    }
    return nullptr;
  }

  cLotrix lotrix_;
  Held<IDispatch> connectionObject_;  // the one handed out last
};

}  // namespace

Held<_cLotrix> NewServiceObject() { return Held<_cLotrix>(new ServiceObject()); }

}  // namespace lotrix::com

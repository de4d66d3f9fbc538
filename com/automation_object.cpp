#include "com/automation_object.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "src/errors/raise_error.h"
#include "src/platform/text.h"
#include "src/platform/values.h"
#include "src/platform/wide_text.h"

namespace lotrix::com {

namespace {

WORD WaysToUse(MemberKind kind) {
  switch (kind) {
    case MemberKind::kMethod:
      return DISPATCH_METHOD;
    case MemberKind::kPropertyGet:
      // To a late-bound client a property and a function look alike.
      return DISPATCH_PROPERTYGET | DISPATCH_METHOD;
    case MemberKind::kPropertyLet:
      return DISPATCH_PROPERTYPUT;
    case MemberKind::kPropertySet:
      // Some script hosts know one kind of assignment only.
      return DISPATCH_PROPERTYPUTREF | DISPATCH_PROPERTYPUT;
  }
  return 0;
}

bool GivesObject(const MemberDescription& member) {
  constexpr auto kPlain =
      std::to_array<std::string_view>({"", "Long", "String", "Boolean", "Variant", "Unknown"});
  return std::find(kPlain.begin(), kPlain.end(), member.result) == kPlain.end();
}

// What no compiler makes, but any program can send.
void RequireSound(const DISPPARAMS& parameters) {
  const bool sound = parameters.cNamedArgs <= parameters.cArgs &&
                     (parameters.cArgs == 0 || parameters.rgvarg != nullptr) &&
                     (parameters.cNamedArgs == 0 || parameters.rgdispidNamedArgs != nullptr);
  if (!sound) RaiseRuntimeError(RuntimeError::kInvalidArgument);
}

// The number of parameters for a name that stands for none of them.
std::size_t PositionOf(const MemberDescription& member, DISPID name) {
  const bool assigns =
      member.kind == MemberKind::kPropertyLet || member.kind == MemberKind::kPropertySet;
  // The value of an assignment stands behind the property's parameters.
  if (name == DISPID_PROPERTYPUT && assigns) return member.parameters.size() - 1;
  return name < 0 ? member.parameters.size() : static_cast<std::size_t>(name);
}

std::size_t RequiredCount(const MemberDescription& member) {
  std::size_t required = 0;
  for (const Parameter& parameter : member.parameters) required += parameter.optional ? 0 : 1;
  return required;
}

}  // namespace

std::vector<const VARIANT*> InOrder(const MemberDescription& member, const DISPPARAMS& parameters) {
  RequireSound(parameters);
  std::vector<const VARIANT*> given(member.parameters.size(), nullptr);
  if (parameters.cArgs > given.size()) {
    RaiseRuntimeError(RuntimeError::kWrongNumberOfArguments);
  }
  for (UINT i = 0; i < parameters.cNamedArgs; ++i) {
    const std::size_t position = PositionOf(member, parameters.rgdispidNamedArgs[i]);
    if (position >= given.size()) RaiseRuntimeError(RuntimeError::kUnknownArgumentName);
    if (given[position] != nullptr) RaiseRuntimeError(RuntimeError::kInvalidArgument);
    given[position] = &parameters.rgvarg[i];
  }
  const UINT inOrder = parameters.cArgs - parameters.cNamedArgs;
  for (UINT i = 0; i < inOrder; ++i) {
    if (given[i] != nullptr) RaiseRuntimeError(RuntimeError::kInvalidArgument);
    given[i] = &parameters.rgvarg[parameters.cArgs - 1 - i];
  }
  if (parameters.cArgs < RequiredCount(member)) {
    RaiseRuntimeError(RuntimeError::kWrongNumberOfArguments);
  }
  for (std::size_t i = 0; i < given.size(); ++i) {
    if (given[i] != nullptr && automation::IsMissing(*given[i])) given[i] = nullptr;
    if (given[i] == nullptr && !member.parameters[i].optional) {
      RaiseRuntimeError(RuntimeError::kArgumentNotOptional);
    }
  }
  return given;
}

HRESULT FindIds(std::span<const MemberDescription> members, std::span<LPOLESTR> names,
                DISPID* ids) {
  for (std::size_t i = 0; i < names.size(); ++i) ids[i] = DISPID_UNKNOWN;
  if (std::find(names.begin(), names.end(), nullptr) != names.end()) return E_INVALIDARG;
  const std::string memberName = ToUtf8(names[0]);
  const MemberDescription* found = nullptr;
  for (const MemberDescription& member : members) {
    if (found == nullptr && EqualWithoutCase(member.name, memberName)) found = &member;
  }
  if (found == nullptr) return DISP_E_UNKNOWNNAME;
  ids[0] = static_cast<DISPID>(found->dispatchId);
  HRESULT result = S_OK;
  for (std::size_t i = 1; i < names.size(); ++i) {
    const std::string name = ToUtf8(names[i]);
    for (std::size_t p = 0; p < found->parameters.size(); ++p) {
      if (EqualWithoutCase(found->parameters[p].name, name)) ids[i] = static_cast<DISPID>(p);
    }
    if (ids[i] == DISPID_UNKNOWN) result = DISP_E_UNKNOWNNAME;
  }
  return result;
}

const MemberDescription* FindMember(std::span<const MemberDescription> members, DISPID id,
                                    WORD flags) {
  for (const MemberDescription& member : members) {
    if (member.dispatchId == static_cast<std::uint32_t>(id) &&
        (WaysToUse(member.kind) & flags) != 0) {
      return &member;
    }
  }
  return nullptr;
}

bool IsForDefaultMember(const MemberDescription& member, const DISPPARAMS& parameters) {
  return member.kind == MemberKind::kPropertyGet && member.parameters.empty() &&
         parameters.cArgs > 0 && GivesObject(member);
}

HRESULT InvokeDefaultMember(const VARIANT& object, WORD flags, DISPPARAMS& parameters,
                            VARIANT* result, EXCEPINFO* exception) {
  const automation::Held<IDispatch> held = automation::ObjectIn(object);
  if (held == nullptr) RaiseRuntimeError(RuntimeError::kObjectNotSet);
  return held->Invoke(DISPID_VALUE, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, result,
                      exception, nullptr);
}

Value ValueIn(const VARIANT& variant, ParameterType type) {
  Value value = automation::ToValue(variant);
  if (type != ParameterType::kVariant && std::holds_alternative<Null>(value)) {
    RaiseRuntimeError(RuntimeError::kTypeMismatch);
  }
  return value;
}

std::int32_t LongIn(const VARIANT& variant) {
  return ToLong(ValueIn(variant, ParameterType::kLong));
}

std::string TextIn(const VARIANT& variant) {
  return ToText(ValueIn(variant, ParameterType::kString));
}

automation::Held<IDispatch> ObjectArgument(const VARIANT& variant) {
  if (!automation::HoldsObject(variant)) RaiseRuntimeError(RuntimeError::kTypeMismatch);
  return automation::ObjectIn(variant);
}

}  // namespace lotrix::com

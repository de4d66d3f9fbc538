#include "lotrix/members.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <tuple>
#include <type_traits>

#include "src/errors/raise_error.h"
#include "src/platform/text.h"
#include "src/platform/values.h"

namespace lotrix {

namespace {

// The type of an argument in the member's signature, and its conversion.
template <class Argument>
struct Conversion;

template <>
struct Conversion<Text> {
  static constexpr ParameterType kType = ParameterType::kString;
  static Text From(const Value& value) { return ToText(value); }
};

template <>
struct Conversion<std::int32_t> {
  static constexpr ParameterType kType = ParameterType::kLong;
  static std::int32_t From(const Value& value) { return ToLong(value); }
};

// What is written about a parameter; its type is that of the signature.
struct ParameterText {
  std::string_view name;
  bool optional = false;
  std::optional<std::string_view> defaultText = std::nullopt;
};

constexpr ParameterText Required(std::string_view name) { return {name}; }
constexpr ParameterText Optional(std::string_view name) { return {name, true}; }
constexpr ParameterText Defaulted(std::string_view name, std::string_view defaultText) {
  return {name, true, defaultText};
}

// Taken apart once, so that a member is written down by its name alone.
template <auto kMethod>
struct Signature;

template <class Result, class... Taken, Result (cLotrix::*kMethod)(Taken...)>
struct Signature<kMethod> {
  static CallResult Invoke(cLotrix& service, std::span<const Argument> arguments) {
    return Invoke(service, arguments, std::index_sequence_for<Taken...>());
  }

  template <std::size_t... kIndex>
  static CallResult Invoke(cLotrix& service, [[maybe_unused]] std::span<const Argument> arguments,
                           std::index_sequence<kIndex...>) {
    // Braces keep the conversions in their order.
    const std::tuple<std::remove_cvref_t<Taken>...> converted{
        Conversion<std::remove_cvref_t<Taken>>::From(*arguments[kIndex])...};
    if constexpr (std::is_void_v<Result>) {
      (service.*kMethod)(std::get<kIndex>(converted)...);
      return Empty{};
    } else {
      return (service.*kMethod)(std::get<kIndex>(converted)...);
    }
  }

  static std::vector<Parameter> Parameters(const std::vector<ParameterText>& texts) {
    constexpr std::array<ParameterType, sizeof...(Taken)> kTypes = {
        Conversion<std::remove_cvref_t<Taken>>::kType...};
    std::vector<Parameter> parameters;
    for (std::size_t i = 0; i < kTypes.size(); ++i) {
      const ParameterText& text = texts.at(i);
      parameters.push_back({text.name, kTypes[i], text.optional, text.defaultText});
    }
    return parameters;
  }
};

template <auto kMethod>
Member Published(std::string_view name, std::uint32_t dispatchId,
                 const std::vector<ParameterText>& parameters, std::string_view result = {},
                 MemberKind kind = MemberKind::kMethod) {
  return {name,   dispatchId,
          kind,   Signature<kMethod>::Parameters(parameters),
          result, &Signature<kMethod>::Invoke};
}

std::vector<Member> MakeMembers() {
  return {
      Published<&cLotrix::Connection>("Connection", 0x68030000, {}, "ADODB.Connection",
                                      MemberKind::kPropertyGet),
      Published<&cLotrix::openConnection>("openConnection", 0x60030002,
                                          {Required("aConnectionString")}),
      Published<&cLotrix::closeConnection>("closeConnection", 0x60030003, {}),
      Published<&cLotrix::manufacturerProviderOrderRead>(
          "manufacturerProviderOrderRead", 0x60030008,
          {Required("aPIN"), Required("aShipmentBeginDate"), Optional("aVaccine"),
           Optional("aLotNumber"), Optional("aShipmentEndDate")},
          "cResultSet"),
      Published<&cLotrix::stockTableRead>(
          "stockTableRead", 0x60030009,
          {Optional("aPIN"), Optional("aVaccine"), Optional("aLotNumber"),
           Optional("aShipmentBeginDate"), Optional("aShipmentEndDate")},
          "cResultSet"),
      Published<&cLotrix::vaccineReferenceTableRead>("vaccineReferenceTableRead", 0x6003000A, {},
                                                     "cResultSet"),
      Published<&cLotrix::inventoryOnHandRead>("inventoryOnHandRead", 0x6003000B,
                                               {Required("aDepotPIN"), Optional("aVaccine")},
                                               "cResultSet"),
      Published<&cLotrix::manufacturerProviderOrderCreateUpdate>(
          "manufacturerProviderOrderCreateUpdate", 0x6003000C,
          {Required("anOrderDate"), Required("aPIN"), Required("aVaccine"), Required("aDoseCount"),
           Required("aFundingSource"), Defaulted("anExcessAllowance", "1"), Optional("aStatePO"),
           Optional("aMfg")}),
      Published<&cLotrix::CheckVaccActive>("CheckVaccActive", 0x60030018, {Required("aVaccine")}),
  };
}

}  // namespace

std::string_view ParameterTypeName(ParameterType type) {
  switch (type) {
    case ParameterType::kString:
      return "String";
    case ParameterType::kLong:
      return "Long";
    case ParameterType::kBoolean:
      return "Boolean";
    case ParameterType::kVariant:
      return "Variant";
  }
  return {};
}

std::span<const Member> Members() {
  static const std::vector<Member> kMembers = MakeMembers();
  return kMembers;
}

const Member& MemberNamed(std::string_view name) {
  for (const Member& member : Members()) {
    if (EqualWithoutCase(member.name, name)) return member;
  }
  RaiseRuntimeError(RuntimeError::kUnknownMember);
}

CallResult Call(cLotrix& service, const Member& member, const NamedArguments& arguments) {
  std::vector<Argument> inOrder(member.parameters.size());
  std::vector<bool> given(member.parameters.size());
  for (const auto& [name, argument] : arguments) {
    const auto parameter =
        std::find_if(member.parameters.begin(), member.parameters.end(),
                     [&](const Parameter& p) { return EqualWithoutCase(p.name, name); });
    if (parameter == member.parameters.end()) {
      RaiseRuntimeError(RuntimeError::kUnknownArgumentName);
    }
    const auto index = static_cast<std::size_t>(parameter - member.parameters.begin());
    if (given[index]) RaiseRuntimeError(RuntimeError::kInvalidArgument);
    given[index] = true;
    inOrder[index] = argument;
  }
  return Call(service, member, inOrder);
}

CallResult Call(cLotrix& service, const Member& member, std::span<const Argument> arguments) {
  if (arguments.size() > member.parameters.size()) {
    RaiseRuntimeError(RuntimeError::kWrongNumberOfArguments);
  }
  std::vector<Argument> complete(arguments.begin(), arguments.end());
  complete.resize(member.parameters.size());
  for (std::size_t i = 0; i < complete.size(); ++i) {
    if (complete[i]) continue;
    const Parameter& parameter = member.parameters[i];
    if (!parameter.optional) RaiseRuntimeError(RuntimeError::kArgumentNotOptional);
    complete[i] = std::string(parameter.defaultText.value_or(""));
  }
  return member.invoke(service, complete);
}

}  // namespace lotrix

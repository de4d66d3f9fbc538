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

// Whatever it is converted to, a text has to be valid UTF-8.
const Value& Given(const Argument& argument) {
  const auto* const text = std::get_if<std::string>(&*argument);
  if (text != nullptr && !IsValidUtf8(*text)) RaiseRuntimeError(RuntimeError::kInvalidArgument);
  return *argument;
}

// The type of an argument in the member's signature, and its conversion from an
// argument that is given. Only a Variant can be asked whether it was.
template <class Taken>
struct Conversion;

template <>
struct Conversion<Text> {
  static constexpr ParameterType kType = ParameterType::kString;
  static Text From(const Argument& argument) { return ToText(Given(argument)); }
};

template <>
struct Conversion<std::int32_t> {
  static constexpr ParameterType kType = ParameterType::kLong;
  static std::int32_t From(const Argument& argument) { return ToLong(Given(argument)); }
};

template <>
struct Conversion<bool> {
  static constexpr ParameterType kType = ParameterType::kBoolean;
  static bool From(const Argument& argument) { return ToLogical(Given(argument)); }
};

template <>
struct Conversion<Variant> {
  static constexpr ParameterType kType = ParameterType::kVariant;
  static Variant From(const Argument& argument) {
    if (!argument) return {};
    // Whatever the member makes of it, it must be a value and no object.
    if (std::holds_alternative<std::shared_ptr<Collection>>(*argument)) {
      RaiseRuntimeError(RuntimeError::kTypeMismatch);
    }
    return Given(argument);
  }
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
        Conversion<std::remove_cvref_t<Taken>>::From(arguments[kIndex])...};
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
      parameters.push_back({.name = text.name,
                            .type = kTypes[i],
                            .optional = text.optional,
                            .defaultText = text.defaultText});
    }
    return parameters;
  }
};

template <auto kMethod>
Member Published(std::string_view name, std::uint32_t dispatchId,
                 const std::vector<ParameterText>& parameters, std::string_view result = {},
                 MemberKind kind = MemberKind::kMethod) {
  return {{name, dispatchId, kind, Signature<kMethod>::Parameters(parameters), result},
          &Signature<kMethod>::Invoke};
}

// The number of parameters when there is none of that name.
std::size_t IndexOf(const Member& member, std::string_view parameterName) {
  const auto found =
      std::find_if(member.parameters.begin(), member.parameters.end(),
                   [&](const Parameter& p) { return EqualWithoutCase(p.name, parameterName); });
  return static_cast<std::size_t>(found - member.parameters.begin());
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
      Published<&cLotrix::providerProfileUpdate>("providerProfileUpdate", 0x6003000D,
                                                 {Required("aPIN"),
                                                  Required("aFacilityLastName"),
                                                  Required("aShippingContact"),
                                                  Required("aShippingAddress1"),
                                                  Required("aShippingAddress2"),
                                                  Required("aShippingCity"),
                                                  Required("aShippingState"),
                                                  Required("aShippingZipCode"),
                                                  Required("aShippingInstructions"),
                                                  Required("aShippingPhoneNumber"),
                                                  Required("aShippingFaxNumber"),
                                                  Required("aMailContact"),
                                                  Required("aMailAddress1"),
                                                  Required("aMailAddress2"),
                                                  Required("aMailCity"),
                                                  Required("aMailState"),
                                                  Required("aMailZipCode"),
                                                  Required("aMailPhoneNumber"),
                                                  Required("aMailFaxNumber"),
                                                  Required("aVaricellaEligibilityStatus"),
                                                  Optional("aClassificationCode"),
                                                  Optional("aVFCCertificationDate"),
                                                  Optional("aPhoneExtension"),
                                                  Optional("aFirstName"),
                                                  Optional("aMiddleInitial"),
                                                  Optional("aTitle"),
                                                  Optional("aParentProviderID"),
                                                  Optional("anAdditionalID"),
                                                  Optional("anActiveStatus"),
                                                  Optional("aSubdivision"),
                                                  Optional("aCategory1"),
                                                  Optional("aCategory2"),
                                                  Optional("aCategory3")}),
      Published<&cLotrix::providerInventoryAdjustmentUpdate>(
          "providerInventoryAdjustmentUpdate", 0x6003000E,
          {Required("aDepotPIN"), Required("anEntryDate"), Required("aTransactionDate"),
           Required("aTransactionType"), Required("aPIN"), Required("aVaccine"),
           Required("aLotNumber"), Required("aDoseCount")}),
      Published<&cLotrix::providerShippingDataUpdate>(
          "providerShippingDataUpdate", 0x6003000F,
          {Required("aPIN"), Required("aFacilityLastName"), Required("aShippingContact"),
           Required("aShippingAddress1"), Required("aShippingAddress2"), Required("aShippingCity"),
           Required("aShippingState"), Required("aShippingZipCode"),
           Required("aShippingInstructions"), Required("aPhoneNumber"), Required("aFaxNumber"),
           Optional("aPhoneExtension"), Optional("aFirstName"), Optional("aMiddleInitial"),
           Optional("aTitle")}),
      Published<&cLotrix::DosesAdministeredUpdate>(
          "DosesAdministeredUpdate", 0x60030011,
          {Required("aReportingDate"),
           Required("aPIN"),
           Required("aVaccine"),
           Required("aDoseInSeries"),
           Defaulted("aSector", "1"),
           Defaulted("aDoseCountLessThanOne", "0"),
           Defaulted("aDoseCountForOneYear", "0"),
           Defaulted("aDoseCountForTwoYears", "0"),
           Defaulted("aDoseCountForThreetoFourYears", "0"),
           Defaulted("aDoseCountForFiveYears", "0"),
           Defaulted("aDoseCountForSixtoNineYears", "0"),
           Defaulted("aDoseCountForTentoFourteenYears", "0"),
           Defaulted("aDoseCountForFifteentoNineteenYears", "0"),
           Defaulted("aDoseCountForTwentytoTwentyFourYears", "0"),
           Defaulted("aDoseCountForTwentyFivetoFourtyFourYears", "0"),
           Defaulted("aDoseCountForFourtyFivetoSixtyFourYears", "0"),
           Defaulted("aDoseCountForGreaterThanSixtyFiveYears", "0"),
           Defaulted("anUnknown", "0"),
           Defaulted("aTotalDoses", "0"),
           Defaulted("aUserDefinedCategory1", "0"),
           Defaulted("aUserDefinedCategory2", "0"),
           Defaulted("aUserDefinedCategory3", "0")}),
      Published<&cLotrix::DepotProviderOrderUpdate>(
          "DepotProviderOrderUpdate", 0x60030012,
          {Required("aShipmentDate"), Required("aDepotID"), Required("aPIN"), Required("aVaccine"),
           Required("aDoseCount"), Required("aLotNumber"), Defaulted("anExcessAllow", "1"),
           Optional("anOrderDate")}),
      Published<&cLotrix::providerEnrollmentAddUpdate>(
          "providerEnrollmentAddUpdate", 0x60030013,
          {Required("aPIN"), Required("aSource"), Required("aAgeGroup"), Required("aAll"),
           Required("aMedicaid"), Required("aUninsured"), Required("aAmIndian"),
           Required("aFQHC_RHC"), Required("aVFC"), Required("aG317"), Required("aState")}),
      Published<&cLotrix::providerAdditionalInfoUpdate>(
          "providerAdditionalInfoUpdate", 0x60030014,
          {Required("aPIN"), Required("aProviderType"), Required("aClassification"),
           Required("aCurrentVFCCert"), Required("aCohort"), Required("aEmpIdNum"),
           Required("aQuorvin")}),
      Published<&cLotrix::physicianAddUpdate>(
          "physicianAddUpdate", 0x60030015,
          {Required("aPIN"), Required("aLastName"), Required("aFirstName"),
           Required("aMiddleInitial"), Required("aTitle"), Required("aSiteMedID"),
           Required("aMedicaidNum"), Required("aLicenseNum")}),
      Published<&cLotrix::provinvAdd>(
          "provinvAdd", 0x60030016,
          {Required("aPIN"), Required("aVacc"), Required("aInv"), Required("aIdate")}),
      Published<&cLotrix::physicianDeleteByPin>("physicianDeleteByPin", 0x60030017,
                                                {Required("aPIN")}),
      Published<&cLotrix::CheckVaccActive>("CheckVaccActive", 0x60030018, {Required("aVaccine")}),
  };
}

std::vector<MemberDescription> MakeResultSetMembers() {
  using enum MemberKind;
  using enum ParameterType;
  const auto byValue = [](ParameterType type) -> std::vector<Parameter> {
    return {{.name = "value", .type = type, .optional = false, .defaultText = {}}};
  };
  const auto byReference = [](std::string_view name, ParameterType type,
                              bool optional = false) -> Parameter {
    return {
        .name = name, .type = type, .optional = optional, .defaultText = {}, .byReference = true};
  };
  return {
      {"Cols", 0x68030003, kPropertyGet, {}, "Long"},
      {"Cols", 0x68030003, kPropertyLet, byValue(kLong), {}},
      {"Rows", 0x68030002, kPropertyGet, {}, "Long"},
      {"Rows", 0x68030002, kPropertyLet, byValue(kLong), {}},
      {"Data", 0x68030001, kPropertyGet, {}, "Collection"},
      {"Data", 0x68030001, kPropertySet, byValue(kCollection), {}},
      {"Headers", 0x68030000, kPropertyGet, {}, "Collection"},
      {"Headers", 0x68030000, kPropertySet, byValue(kCollection), {}},
      {"CLEAR", 0x60030006, kMethod, {}, {}},
      {"SetValue",
       0x60030007,
       kMethod,
       {byReference("aRow", kLong), byReference("aCol", kLong), byReference("aValue", kString)},
       {}},
      {"GetValue",
       0x60030008,
       kMethod,
       {byReference("aRow", kLong), byReference("aCol", kLong)},
       "String"},
      {"AddRow", 0x60030009, kMethod, {byReference("aCollection", kVariant, true)}, {}},
      {"DeleteRow", 0x6003000A, kMethod, {byReference("aRow", kLong)}, {}},
  };
}

constexpr std::array<RecordField, 14> kContractFields = {{
    {"vaccine", "String"},
    {"maker", "String"},
    {"begin", "Date"},
    {"end", "Date"},
    {"minbulk", "Long"},
    {"unitsize", "Long"},
    {"pkgsize", "Long"},
    {"ndcno", "String"},
    {"cost", "Double"},
    {"contractid", "String"},
    {"sel_maker", "String"},
    {"dos_wind", "String"},
    {"excfunds", "String"},
    {"descrip", "String"},
}};

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
    case ParameterType::kCollection:
      return "Collection";
  }
  return {};
}

std::span<const Member> Members() {
  static const std::vector<Member> kMembers = MakeMembers();
  return kMembers;
}

std::span<const MemberDescription> ResultSetMembers() {
  static const std::vector<MemberDescription> kMembers = MakeResultSetMembers();
  return kMembers;
}

std::span<const RecordField> ContractFields() { return kContractFields; }

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
    const std::size_t index = IndexOf(member, name);
    if (index == member.parameters.size()) RaiseRuntimeError(RuntimeError::kUnknownArgumentName);
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
    if (parameter.type == ParameterType::kVariant) continue;
    complete[i] = std::string(parameter.defaultText.value_or(""));
  }
  return member.invoke(service, complete);
}

}  // namespace lotrix

// The published members, as data, and calls by name.
//
// Every late-bound way in is made from this one table: the lotrix command, JSON
// requests, and the bindings for other languages.
#ifndef LOTRIX_MEMBERS_H
#define LOTRIX_MEMBERS_H

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "lotrix/component.h"
#include "lotrix/result_set.h"
#include "lotrix/value.h"

namespace lotrix {

enum class MemberKind { kMethod, kPropertyGet, kPropertyLet, kPropertySet };
enum class ParameterType { kString, kLong, kBoolean, kVariant, kCollection };
[[nodiscard]] std::string_view ParameterTypeName(ParameterType type);

struct Parameter {
  std::string_view name;
  ParameterType type;
  bool optional;
  // What an omitted argument passes, as text. Nothing where it passes the empty
  // text or, for a Variant, that it is missing.
  std::optional<std::string_view> defaultText;
  bool byReference = false;
};

// The answer of a call: nothing, a table, or the connection.
using CallResult = std::variant<Empty, cResultSet, std::shared_ptr<Connection>>;

// An argument by value, or nothing where it is omitted.
using Argument = std::optional<Value>;

struct MemberDescription {
  std::string_view name;
  std::uint32_t dispatchId;
  MemberKind kind;
  std::vector<Parameter> parameters;
  std::string_view result;  // empty for none
};

struct Member : MemberDescription {
  // Calls the member with one argument for each parameter, all conversions done
  // from left to right before the member runs.
  CallResult (*invoke)(cLotrix& service, std::span<const Argument> arguments);
};

// The members of the service class, in interface order.
[[nodiscard]] std::span<const Member> Members();

// The members of the result table, in interface order; a property that can be
// read and written stands there twice.
[[nodiscard]] std::span<const MemberDescription> ResultSetMembers();

// The fields of the published record Contract, a row of the contract table.
struct RecordField {
  std::string_view name;
  std::string_view type;  // String, Date, Long or Double
};
[[nodiscard]] std::span<const RecordField> ContractFields();

// Without regard to case; throws 438 for a member that is not published.
[[nodiscard]] const Member& MemberNamed(std::string_view name);

using NamedArguments = std::vector<std::pair<std::string, Argument>>;

// Calls a member with arguments by name, without regard to case, or in order. An
// argument without a value is omitted. Throws, in this order, 448 for an unknown
// name, 5 for a name given twice, 450 for too many arguments, 449 for a required
// one omitted, and what the conversions to the parameters' types throw; nothing
// of these is logged. Else throws what the member throws.
CallResult Call(cLotrix& service, const Member& member, const NamedArguments& arguments);
CallResult Call(cLotrix& service, const Member& member, std::span<const Argument> arguments);

}  // namespace lotrix

#endif

// Writes the interface description and the service class's vtable methods from
// the published member table.
//
//   write_idl Lotrix.idl service_members.inc

#include <fmt/format.h>

#include <cstdio>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>

#include "com/idl/identifiers.h"
#include "lotrix/members.h"

namespace lotrix::com {

namespace {

std::string_view BaseType(ParameterType type) {
  switch (type) {
    case ParameterType::kString:
      return "BSTR";
    case ParameterType::kLong:
      return "long";
    case ParameterType::kBoolean:
      return "VARIANT_BOOL";
    case ParameterType::kVariant:
      return "VARIANT";
    case ParameterType::kCollection:
      // Any object with the members of a Collection is taken.
      return "IDispatch *";
  }
  return {};
}

std::string_view ResultType(std::string_view result) {
  if (result == "String") return "BSTR";
  if (result == "Long") return "long";
  if (result == "Collection") return "_Collection *";
  if (result == "cResultSet") return "_cResultSet *";
  // A connection, whichever program it comes from.
  return "IDispatch *";
}

std::string_view FieldType(std::string_view type) {
  if (type == "String") return "BSTR";
  if (type == "Long") return "long";
  if (type == "Double") return "double";
  return "DATE";
}

std::string_view KindAttribute(MemberKind kind) {
  switch (kind) {
    case MemberKind::kPropertyGet:
      return ", propget";
    case MemberKind::kPropertyLet:
      return ", propput";
    case MemberKind::kPropertySet:
      return ", propputref";
    case MemberKind::kMethod:
      break;
  }
  return {};
}

std::string ParameterLine(const Parameter& parameter) {
  std::string attributes = parameter.byReference ? "in, out" : "in";
  if (parameter.optional) attributes += ", optional";
  if (parameter.defaultText) {
    const std::string_view quote = parameter.type == ParameterType::kString ? "\"" : "";
    attributes += fmt::format(", defaultvalue({}{}{})", quote, *parameter.defaultText, quote);
  }
  return fmt::format("[{}] {} {}{}", attributes, BaseType(parameter.type),
                     parameter.byReference ? "*" : "", parameter.name);
}

std::string MethodLine(const MemberDescription& member) {
  std::string parameters;
  for (const Parameter& parameter : member.parameters) {
    parameters += (parameters.empty() ? "" : ", ") + ParameterLine(parameter);
  }
  if (!member.result.empty()) {
    parameters += fmt::format("{}[out, retval] {} *result", parameters.empty() ? "" : ", ",
                              ResultType(member.result));
  }
  if (parameters.empty()) parameters = "void";
  return fmt::format("    [id({:#x}){}] HRESULT {}({});\n", member.dispatchId,
                     KindAttribute(member.kind), member.name, parameters);
}

std::string Interface(std::string_view name, std::string_view id, const std::string& methods) {
  return fmt::format(
      "  [object, uuid({}), dual, oleautomation, nonextensible]\n"
      "  interface {} : IDispatch {{\n{}  }};\n\n",
      id, name, methods);
}

std::string Class(std::string_view name, std::string_view id, bool creatable) {
  return fmt::format(
      "  [uuid({}){}]\n"
      "  coclass {} {{\n    [default] interface _{};\n  }};\n\n",
      id, creatable ? "" : ", noncreatable", name, name);
}

std::string ContractRecord() {
  std::string fields;
  for (const RecordField& field : ContractFields()) {
    fields += fmt::format("    {} {};\n", FieldType(field.type), field.name);
  }
  return fmt::format("  typedef [uuid({})] struct Contract {{\n{}  }} Contract;\n\n", kContractId,
                     fields);
}

constexpr std::string_view kCollectionMethods =
    "    [id(0), propget] HRESULT Item([in] VARIANT *index, [out, retval] VARIANT *result);\n"
    "    [id(1)] HRESULT Add([in] VARIANT *item, [in, optional] VARIANT *key);\n"
    "    [id(2), propget] HRESULT Count([out, retval] long *result);\n"
    "    [id(3)] HRESULT Remove([in] VARIANT *index);\n"
    "    [id(-4), propget, restricted, hidden] HRESULT _NewEnum([out, retval] IUnknown "
    "**result);\n";

template <class Members>
std::string Methods(const Members& members) {
  std::string methods;
  for (const auto& member : members) methods += MethodLine(member);
  return methods;
}

std::string Idl() {
  std::string text =
      "// Written from the published member table; not to be edited.\n"
      "import \"automation.idl\";\n\n";
  text += fmt::format(
      "[uuid({}), version(1.0), helpstring(\"Lotrix\")]\nlibrary Lotrix {{\n"
      "  importlib(\"stdole2.tlb\");\n\n"
      "  interface _Collection;\n  interface _cResultSet;\n\n",
      kLibraryId);
  text += ContractRecord();
  text += Interface("_Collection", kCollectionInterfaceId, std::string(kCollectionMethods));
  text += Interface("_cResultSet", kResultSetInterfaceId, Methods(ResultSetMembers()));
  text += Interface("_cLotrix", kServiceInterfaceId, Methods(Members()));
  text += Class("Collection", kCollectionClassId, false);
  text += Class("cResultSet", kResultSetClassId, true);
  text += Class("cLotrix", kServiceClassId, true);
  return text + "};\n";
}

// Early-bound calls go the way of the late-bound ones: through the member table.
std::string VtableMethod(const Member& member) {
  std::string parameters;
  std::string arguments;
  for (const Parameter& parameter : member.parameters) {
    const std::string_view separator = parameters.empty() ? "" : ", ";
    parameters += fmt::format("{}{} {}", separator, BaseType(parameter.type), parameter.name);
    arguments += fmt::format("{}Given({})", separator, parameter.name);
  }
  const bool answers = !member.result.empty();
  if (answers) {
    parameters +=
        fmt::format("{}{} *result", parameters.empty() ? "" : ", ", ResultType(member.result));
  }
  return fmt::format(
      "STDMETHODIMP {}{}({}) override {{\n  return CallMember({:#x}, {{{}}}, {});\n}}\n",
      member.kind == MemberKind::kPropertyGet ? "get_" : "", member.name, parameters,
      member.dispatchId, arguments, answers ? "result" : "nullptr");
}

void Write(const char* path, const std::string& text) {
  std::ofstream file(path, std::ios::binary);
  file << text;
  file.close();
  if (!file) throw std::runtime_error(fmt::format("cannot write {}", path));
}

void WriteAll(const char* idlFile, const char* methodsFile) {
  Write(idlFile, Idl());
  std::string methods;
  for (const Member& member : Members()) methods += VtableMethod(member);
  Write(methodsFile, methods);
}

}  // namespace

int Run(int argc, char** argv) {
  if (argc != 3) {
    fmt::print(stderr, "usage: write_idl IDL-FILE METHODS-FILE\n");
    return 2;
  }
  try {
    WriteAll(argv[1], argv[2]);
    return 0;
  } catch (const std::exception& error) {
    fmt::print(stderr, "write_idl: {}\n", error.what());
    return 1;
  }
}

}  // namespace lotrix::com

int main(int argc, char** argv) { return lotrix::com::Run(argc, argv); }

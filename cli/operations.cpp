#include <fmt/format.h>

#include <algorithm>
#include <iostream>

#include "cli/client.h"
#include "cli/json.h"

namespace lotrix::cli {

namespace {

std::string_view KindName(MemberKind kind) {
  return kind == MemberKind::kPropertyGet ? "get" : "method";
}

Json DefaultOf(const Parameter& parameter) {
  if (!parameter.defaultText) return nullptr;
  if (parameter.type == ParameterType::kLong) return Json::parse(*parameter.defaultText);
  return *parameter.defaultText;
}

Json ToJson(const Member& member) {
  Json parameters = Json::array();
  for (const Parameter& parameter : member.parameters) {
    parameters.push_back({{"name", parameter.name},
                          {"type", ParameterTypeName(parameter.type)},
                          {"optional", parameter.optional},
                          {"default", DefaultOf(parameter)}});
  }
  return {{"name", member.name},
          {"dispid", member.dispatchId},
          {"kind", KindName(member.kind)},
          {"parameters", parameters},
          {"result", member.result.empty() ? Json(nullptr) : Json(member.result)}};
}

// "60030009 method stockTableRead([aPIN String], …) -> cResultSet"
std::string ToText(const Member& member) {
  std::string parameters;
  for (const Parameter& parameter : member.parameters) {
    std::string text = fmt::format("{} {}", parameter.name, ParameterTypeName(parameter.type));
    if (parameter.defaultText) text += " = " + DefaultOf(parameter).dump();
    if (parameter.optional) text = fmt::format("[{}]", text);
    parameters += (parameters.empty() ? "" : ", ") + text;
  }
  return fmt::format("{:08X} {:<6} {}({}){}{}", member.dispatchId, KindName(member.kind),
                     member.name, parameters, member.result.empty() ? "" : " -> ", member.result);
}

}  // namespace

int Operations(const std::string& name, bool json) {
  std::vector<const Member*> chosen;
  try {
    if (!name.empty()) chosen.push_back(&MemberNamed(name));
  } catch (const Error& error) {
    std::cerr << ErrorLine(error) << '\n';
    return kRefused;
  }
  if (name.empty()) {
    for (const Member& member : Members()) chosen.push_back(&member);
  }
  if (json) {
    Json array = Json::array();
    for (const Member* const member : chosen) array.push_back(ToJson(*member));
    std::cout << array.dump(2) << '\n';
  } else {
    for (const Member* const member : chosen) std::cout << ToText(*member) << '\n';
  }
  return kAllWell;
}

}  // namespace lotrix::cli

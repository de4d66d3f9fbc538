#include "cli/json.h"

#include <limits>
#include <ostream>

#include "src/platform/text.h"

namespace lotrix::cli {

namespace {

// Deeper than any request; the library writes an id back by recursion.
constexpr int kDeepest = 200;

Error Malformed(const std::string& why) {
  return {static_cast<std::int32_t>(RuntimeError::kInvalidArgument), why};
}

// Nothing when the text is no JSON, or is nested too deeply.
std::optional<Json> Parse(const std::string& text) {
  const auto notTooDeep = [](int depth, Json::parse_event_t /*event*/, Json& /*parsed*/) {
    if (depth > kDeepest) throw Malformed("nested too deeply");
    return true;
  };
  try {
    return Json::parse(text, notTooDeep);
  } catch (const Json::exception&) {
    return std::nullopt;
  } catch (const Error&) {
    return std::nullopt;
  }
}

bool IsHex(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// The value of the escape \uXXXX at that place, or -1.
int EscapedUnit(std::string_view text, std::size_t at) {
  if (at + 6 > text.size() || text[at] != '\\' || text[at + 1] != 'u') return -1;
  for (std::size_t i = at + 2; i < at + 6; ++i) {
    if (!IsHex(text[i])) return -1;
  }
  return std::stoi(std::string(text.substr(at + 2, 4)), nullptr, 16);
}

// The line with a question mark for whatever is no valid Unicode in it, so that a
// request whose only fault that is still gets its id back.
std::string WithQuestionMarks(const std::string& line) {
  std::string mended;
  for (std::size_t at = 0; at < line.size();) {
    const auto byte = static_cast<unsigned char>(line[at]);
    if (byte >= 0x80) {
      const std::size_t length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
      const std::string character = line.substr(at, length);
      const bool valid = character.size() == length && IsValidUtf8(character);
      mended += valid ? character : "?";
      at += valid ? length : 1;
    } else if (line[at] == '\\') {
      const int unit = EscapedUnit(line, at);
      const int next = unit < 0 ? -1 : EscapedUnit(line, at + 6);
      const bool high = unit >= 0xD800 && unit <= 0xDBFF;
      if (high && next >= 0xDC00 && next <= 0xDFFF) {
        mended += line.substr(at, 12);
        at += 12;
      } else if (unit >= 0xD800 && unit <= 0xDFFF) {
        mended += '?';
        at += 6;
      } else {
        mended += line.substr(at, 2);
        at += 2;
      }
    } else {
      mended += line[at++];
    }
  }
  return mended;
}

Argument ToArgument(const Json& json) {
  switch (json.type()) {
    case Json::value_t::null:
      return std::nullopt;
    case Json::value_t::boolean:
      return Value(json.get<bool>());
    case Json::value_t::number_integer:
      return Value(json.get<std::int64_t>());
    case Json::value_t::number_unsigned:
      if (json.get<std::uint64_t>() > std::numeric_limits<std::int64_t>::max()) {
        return Value(json.get<double>());
      }
      return Value(json.get<std::int64_t>());
    case Json::value_t::number_float:
      return Value(json.get<double>());
    case Json::value_t::string:
      return Value(json.get<std::string>());
    default:
      // An array or object is an object to automation, which no parameter takes.
      return Value(std::make_shared<Collection>());
  }
}

std::optional<Arguments> ReadArguments(const Json& request) {
  const auto found = request.find("args");
  if (found == request.end() || found->is_null()) return NamedArguments();
  if (found->is_array()) {
    std::vector<Argument> inOrder;
    for (const Json& argument : *found) inOrder.push_back(ToArgument(argument));
    return inOrder;
  }
  if (!found->is_object()) return std::nullopt;
  NamedArguments byName;
  for (const auto& [name, argument] : found->items()) {
    byName.emplace_back(name, ToArgument(argument));
  }
  return byName;
}

Json IdOf(const Json& request) {
  if (!request.is_object()) return nullptr;
  const auto found = request.find("id");
  return found == request.end() ? Json(nullptr) : *found;
}

void WriteRows(std::ostream& out, const cResultSet& table) {
  Json headers = Json::array();
  for (const Value& header : *table.Headers()) headers.push_back(std::get<std::string>(header));
  out << R"({"headers":)" << ToLine(headers) << R"(,"rows":[)";
  bool first = true;
  for (const Value& row : *table.Data()) {
    Json cells = Json::array();
    for (const Value& cell : *std::get<std::shared_ptr<Collection>>(row)) {
      const auto* const text = std::get_if<std::string>(&cell);
      cells.push_back(text == nullptr ? Json(nullptr) : Json(*text));
    }
    out << (first ? "" : ",") << ToLine(cells);
    first = false;
  }
  out << "]}";
}

}  // namespace

Request ReadRequest(const std::string& line) {
  Request request;
  const std::optional<Json> json = Parse(line);
  if (!json) {
    const std::optional<Json> mended = Parse(WithQuestionMarks(line));
    request.id = mended ? IdOf(*mended) : Json(nullptr);
    request.malformed = Malformed("The request is not valid JSON.");
    return request;
  }
  request.id = IdOf(*json);
  if (!json->is_object() || !json->contains("op") || !json->at("op").is_string()) {
    request.malformed = Malformed("The request is not a JSON object with an op.");
    return request;
  }
  std::optional<Arguments> arguments = ReadArguments(*json);
  if (!arguments) {
    request.malformed = Malformed("The args of a request are an object or an array.");
    return request;
  }
  request.operation = json->at("op").get<std::string>();
  request.arguments = std::move(*arguments);
  return request;
}

std::string ToLine(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

void WriteAnswer(std::ostream& out, const Json& id, const Answer& answer) {
  out << R"({"id":)" << ToLine(id);
  if (answer.error) {
    const Json error = {{"number", answer.error->number()},
                        {"source", answer.error->source()},
                        {"description", answer.error->description()}};
    out << R"(,"ok":false,"error":)" << ToLine(error);
  } else {
    out << R"(,"ok":true)";
    if (answer.table) {
      out << R"(,"result":)";
      WriteRows(out, *answer.table);
    }
    if (answer.message) out << R"(,"message":)" << ToLine(*answer.message);
  }
  out << "}\n";
}

}  // namespace lotrix::cli

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

// No member takes as many arguments, and an object's names are looked through one
// by one.
constexpr int kMostNames = 1000;

// Nothing when the text is no JSON, is nested too deeply or has too many names.
std::optional<Json> Parse(const std::string& text) {
  int names = 0;
  const auto withinBounds = [&](int depth, Json::parse_event_t event, Json& /*parsed*/) {
    if (event == Json::parse_event_t::key) ++names;
    if (depth > kDeepest || names > kMostNames) throw Malformed("beyond the bounds");
    return true;
  };
  try {
    return Json::parse(text, withinBounds);
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

// Takes the id off a request that cannot be read as a whole, as far as it can be
// read: a plain value under that name in the outermost object.
class IdReader : public Json::json_sax_t {
 public:
  [[nodiscard]] const Json& id() const { return id_; }

  bool null() override { return Take(nullptr); }
  bool boolean(bool value) override { return Take(value); }
  bool number_integer(number_integer_t value) override { return Take(value); }
  bool number_unsigned(number_unsigned_t value) override { return Take(value); }
  bool number_float(number_float_t value, const string_t& /*text*/) override { return Take(value); }
  bool string(string_t& value) override { return Take(value); }
  bool binary(binary_t& /*value*/) override { return true; }
  bool start_object(std::size_t /*size*/) override { return Open(); }
  bool end_object() override { return Close(); }
  bool start_array(std::size_t /*size*/) override { return Open(); }
  bool end_array() override { return Close(); }
  bool key(string_t& name) override {
    isId_ = depth_ == 1 && name == "id";
    return true;
  }
  bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                   const Json::exception& error) override {
    // A number that is too large is all that may be wrong with a JSON object.
    constexpr int kNumberOutOfRange = 406;
    if (error.id != kNumberOutOfRange) id_ = nullptr;
    return false;
  }

 private:
  bool Take(const Json& value) {
    if (isId_) id_ = value;
    isId_ = false;
    return true;
  }
  bool Open() {
    isId_ = false;
    ++depth_;
    return true;
  }
  bool Close() {
    --depth_;
    return true;
  }

  int depth_ = 0;
  bool isId_ = false;
  Json id_ = nullptr;
};

Json IdOfUnreadable(const std::string& line) {
  IdReader reader;
  Json::sax_parse(WithQuestionMarks(line), &reader);
  return reader.id();
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
    request.id = IdOfUnreadable(line);
    request.malformed = Malformed("The request cannot be read as JSON.");
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

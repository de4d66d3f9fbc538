#include "src/database/connection_string.h"

#include <algorithm>

#include "src/errors/raise_error.h"
#include "src/platform/text.h"

namespace lotrix {

namespace {

[[noreturn]] void Malformed(std::string_view why) { RaiseEngineError(EngineError::kFailed, why); }

// Keywords are compared without case, and a run of blanks inside one counts as
// one blank.
std::string NormalKeyword(std::string_view keyword) {
  std::string normal;
  for (const char c : TrimBlanks(keyword)) {
    if (c == ' ' && normal.ends_with(' ')) continue;
    normal += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return normal;
}

// Takes a value off the front of `rest`, up to the next semicolon outside quotes.
std::string TakeValue(std::string_view& rest) {
  rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
  if (rest.empty() || (rest.front() != '\'' && rest.front() != '"')) {
    const std::string_view value = rest.substr(0, rest.find(';'));
    rest.remove_prefix(value.size());
    return std::string(TrimBlanks(value));
  }
  const char quote = rest.front();
  rest.remove_prefix(1);
  std::string value;
  for (;;) {
    const std::size_t end = rest.find(quote);
    if (end == std::string_view::npos) Malformed("Connection string: a quoted value has no end.");
    value += rest.substr(0, end);
    rest.remove_prefix(end + 1);
    if (rest.empty() || rest.front() != quote) break;
    value += quote;
    rest.remove_prefix(1);
  }
  rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
  if (!rest.empty() && rest.front() != ';') {
    Malformed("Connection string: a quoted value is followed by something else.");
  }
  return value;
}

}  // namespace

ConnectionSettings ParseConnectionString(std::string_view text) {
  ConnectionSettings settings;
  while (!text.empty()) {
    const std::size_t keywordEnd = text.find_first_of("=;");
    const std::string_view keyword = text.substr(0, keywordEnd);
    if (keywordEnd == std::string_view::npos || text[keywordEnd] == ';') {
      if (!TrimBlanks(keyword).empty()) {
        // A string that names no provider at all is refused for that.
        if (settings.provider.empty()) RaiseRuntimeError(RuntimeError::kUnknownProvider);
        Malformed("Connection string: a keyword has no value.");
      }
      text.remove_prefix(std::min(keyword.size() + 1, text.size()));
      continue;
    }
    text.remove_prefix(keywordEnd + 1);
    std::string name = NormalKeyword(keyword);
    std::string value = TakeValue(text);
    if (!text.empty()) text.remove_prefix(1);  // the semicolon
    if (name.empty()) Malformed("Connection string: a value has no keyword.");
    if (name == "provider") {
      settings.provider = NormalKeyword(value);
      continue;
    }
    std::erase_if(settings.values, [&](const auto& pair) { return pair.first == name; });
    settings.values.emplace_back(std::move(name), std::move(value));
  }
  return settings;
}

}  // namespace lotrix

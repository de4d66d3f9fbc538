// Connection strings.
#include "src/database/connection_string.h"

#include <unistd.h>

#include <set>
#include <string>
#include <string_view>

#include "fuzz/require.h"
#include "lotrix/connection.h"
#include "tests/support/engine.h"

namespace lotrix::fuzz {

namespace {

std::string Quoted(std::string_view value) {
  std::string quoted = "\"";
  for (const char c : value) {
    quoted += c;
    if (c == '"') quoted += c;
  }
  return quoted + '"';
}

// The same settings, written as plainly as can be.
std::string Written(const ConnectionSettings& settings) {
  std::string text = "provider=" + Quoted(settings.provider);
  for (const auto& [keyword, value] : settings.values) {
    text += ';' + keyword + '=' + Quoted(value);
  }
  return text;
}

void RequireNormal(const ConnectionSettings& settings) {
  std::set<std::string> keywords;
  for (const auto& [keyword, value] : settings.values) {
    Require(keywords.insert(keyword).second, "a keyword stays once");
    Require(!keyword.empty() && keyword != "provider", "a keyword is one");
    Require(keyword.find("  ") == std::string::npos, "a keyword has single blanks inside");
    for (const char c : keyword) Require(c < 'A' || c > 'Z', "a keyword is in lower case");
  }
  const ConnectionSettings again = ParseConnectionString(Written(settings));
  Require(again.provider == settings.provider && again.values == settings.values,
          "settings that are written down read the same");
}

bool StaysInFolder(const ConnectionSettings& settings) {
  for (const auto& [keyword, value] : settings.values) {
    if (keyword == "data source" && value.find('/') != std::string::npos) return false;
  }
  return settings.provider == "sqlite";
}

void Open(const std::string& text) {
  static const test::TemporaryFolder kFolder;
  static const int kChanged = chdir(kFolder.path().c_str());
  Require(kChanged == 0, "the folder is there");
  const std::int32_t number = NumberOf([&] {
    Connection connection;
    connection.Open(text);
    Require(connection.State() == ObjectState::kOpen, "what was opened is open");
  });
  Require(IsOneOf(number, {0, Numbered(RuntimeError::kInvalidArgument),
                           Numbered(EngineError::kFailed), Numbered(EngineError::kNotPermitted)}),
          "a connection string is refused as one");
}

void Check(const std::string& text) {
  ConnectionSettings settings;
  const std::int32_t number = NumberOf([&] { settings = ParseConnectionString(text); });
  Require(IsOneOf(number,
                  {0, Numbered(EngineError::kFailed), Numbered(RuntimeError::kUnknownProvider)}),
          "a connection string is refused by its numbers");
  if (number != 0) return;
  RequireNormal(settings);
  if (StaysInFolder(settings)) Open(text);
}

}  // namespace

}  // namespace lotrix::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  lotrix::fuzz::Check(std::string(data, data + size));
  return 0;
}

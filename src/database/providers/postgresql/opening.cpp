#include "src/database/providers/postgresql/opening.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "src/database/providers/postgresql/errors.h"
#include "src/errors/raise_error.h"

namespace lotrix::postgresql {

namespace {

using Parameters = std::vector<std::pair<std::string, std::string>>;

struct FreeOptions {
  void operator()(PQconninfoOption* options) const { PQconninfoFree(options); }
};
using Options = std::unique_ptr<PQconninfoOption, FreeOptions>;

[[noreturn]] void Refuse(std::string_view why) {
  RaiseEngineError(EngineError::kFailed, "Connection string: " + std::string(why));
}

bool IsKeyword(std::string_view keyword) {
  const Options known(PQconndefaults());
  for (const PQconninfoOption* option = known.get(); option->keyword != nullptr; ++option) {
    if (keyword == option->keyword) return true;
  }
  return false;
}

void AddUri(const std::string& uri, Parameters& parameters) {
  if (!uri.starts_with("postgresql://") && !uri.starts_with("postgres://")) {
    Refuse("the value of URI is not one it can take.");
  }
  char* message = nullptr;
  const Options read(PQconninfoParse(uri.c_str(), &message));
  PQfreemem(message);
  if (read == nullptr) Refuse("the value of URI is not one it can take.");
  for (const PQconninfoOption* option = read.get(); option->keyword != nullptr; ++option) {
    if (option->val != nullptr) parameters.emplace_back(option->keyword, option->val);
  }
}

template <class Number>
bool IsNumber(std::string_view text) {
  Number number = 0;
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, number);
  return read.ec == std::errc() && read.ptr == end;
}

// The library finds these wrong only when it connects, and then says so in words
// alone.
void RequireNumbers(std::string_view keyword, std::string_view value) {
  for (const std::string_view whole :
       {"connect_timeout", "keepalives", "keepalives_idle", "keepalives_interval",
        "keepalives_count", "tcp_user_timeout"}) {
    if (keyword == whole && !value.empty() && !IsNumber<std::int32_t>(value)) {
      Refuse("the value of " + std::string(keyword) + " is not one it can take.");
    }
  }
  if (keyword != "port") return;
  // One for all hosts, or one for each; none stands for the usual one.
  while (!value.empty()) {
    const std::string_view port = value.substr(0, value.find(','));
    if (!port.empty() && !IsNumber<std::uint16_t>(port)) {
      Refuse("the value of Port is not one it can take.");
    }
    value.remove_prefix(std::min(port.size() + 1, value.size()));
  }
}

// Of a keyword given twice the last one counts, for the library too.
Parameters ReadParameters(const ConnectionSettings& settings) {
  Parameters parameters;
  for (const auto& [keyword, value] : settings.values) {
    if (keyword == "uri") AddUri(value, parameters);
  }
  for (const auto& [keyword, value] : settings.values) {
    if (value.find('\0') != std::string::npos) Refuse("a value holds a U+0000.");
    if (keyword == "uri") continue;
    const std::string name = keyword == "database"  ? "dbname"
                             : keyword == "user id" ? "user"
                                                    : keyword;
    // Not named: it may be what is left of a value that needed quotes.
    if (!IsKeyword(name)) Refuse("a keyword is unknown.");
    parameters.emplace_back(name, value);
  }
  for (const auto& [keyword, value] : parameters) RequireNumbers(keyword, value);
  parameters.emplace_back("client_encoding", "UTF8");
  parameters.emplace_back("fallback_application_name", "lotrix");
  return parameters;
}

struct Pointers {
  std::vector<const char*> keywords;
  std::vector<const char*> values;
};

Pointers PointersTo(const Parameters& parameters) {
  Pointers pointers;
  for (const auto& [keyword, value] : parameters) {
    pointers.keywords.push_back(keyword.c_str());
    pointers.values.push_back(value.c_str());
  }
  pointers.keywords.push_back(nullptr);
  pointers.values.push_back(nullptr);
  return pointers;
}

// Whether the library did not even try, since it cannot take a value.
bool IsNoAttempt(Parameters parameters) {
  constexpr const char* kSeconds = "2";
  parameters.emplace_back("connect_timeout", kSeconds);
  const Pointers pointers = PointersTo(parameters);
  return PQpingParams(pointers.keywords.data(), pointers.values.data(), 0) == PQPING_NO_ATTEMPT;
}

bool ShowsValue(std::string_view message, const Parameters& parameters) {
  return std::any_of(parameters.begin(), parameters.end(), [&](const auto& parameter) {
    return !parameter.second.empty() && message.find(parameter.second) != std::string_view::npos;
  });
}

struct Answer {
  std::string_view sqlState;
  std::string_view message;
};

// A verbose message is "…: SEVERITY:  SQLSTATE: text", then lines of details.
Answer ReadVerbose(std::string_view message) {
  constexpr std::size_t kStateLength = 5;
  constexpr std::string_view kBefore = ":  ";
  constexpr std::string_view kBehind = ": ";
  for (std::size_t at = message.rfind(kBefore); at != std::string_view::npos && at > 0;
       at = message.rfind(kBefore, at - 1)) {
    const std::string_view rest = message.substr(at + kBefore.size());
    const std::string_view state = rest.substr(0, kStateLength);
    const bool isState =
        state.size() == kStateLength && rest.substr(kStateLength).starts_with(kBehind) &&
        state.find_first_not_of("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ") == std::string_view::npos;
    if (!isState) continue;
    const std::string_view text = rest.substr(kStateLength + kBehind.size());
    return {state, text.substr(0, text.find('\n'))};
  }
  return {};
}

[[noreturn]] void RaiseNotConnected(PGconn* connection, const Parameters& parameters) {
  const Answer answer = ReadVerbose(PQerrorMessage(connection));
  if (!answer.sqlState.empty()) {
    RaiseNotOpened(answer.sqlState,
                   ShowsValue(answer.message, parameters) ? std::string_view() : answer.message);
  }
  constexpr std::string_view kInvalidPassword = "28P01";
  if (PQconnectionNeedsPassword(connection) != 0) RaiseNotOpened(kInvalidPassword, {});
  if (IsNoAttempt(parameters)) Refuse("a value is not one it can take.");
  RaiseNotOpened({}, {});
}

// Opens the connection; what the server says against it is told with its SQLSTATE
// only when messages are verbose, so it is asked once more.
Link Open(const Parameters& parameters) {
  const Pointers pointers = PointersTo(parameters);
  Link link(PQconnectdbParams(pointers.keywords.data(), pointers.values.data(), 0));
  if (link == nullptr) RaiseRuntimeError(RuntimeError::kOutOfMemory);
  PQsetNoticeProcessor(
      link.get(), [](void*, const char*) {}, nullptr);
  if (PQstatus(link.get()) == CONNECTION_OK) return link;
  PQsetErrorVerbosity(link.get(), PQERRORS_VERBOSE);
  const bool answered =
      std::string_view(PQerrorMessage(link.get())).find(":  ") != std::string_view::npos;
  if (answered) PQreset(link.get());
  if (PQstatus(link.get()) != CONNECTION_OK) RaiseNotConnected(link.get(), parameters);
  return link;
}

}  // namespace

Link Connect(const ConnectionSettings& settings, ConnectMode mode) {
  Link link = Open(ReadParameters(settings));
  std::string wanted =
      "SET standard_conforming_strings = on; SET DateStyle = 'ISO, MDY'; SET TimeZone = 'UTC'; "
      "SET extra_float_digits = 3; SET bytea_output = 'hex'; "
      "SET default_transaction_isolation = 'read committed'";
  if (mode == ConnectMode::kRead) wanted += "; SET default_transaction_read_only = on";
  const Result result(PQexec(link.get(), wanted.c_str()));
  if (PQresultStatus(result.get()) != PGRES_COMMAND_OK) {
    if (PQstatus(link.get()) == CONNECTION_BAD) RaiseLost(false, {}, SqlState(result.get()));
    RaisePostgresqlError(result.get());
  }
  // Queries here are over before their compilation would pay; and a comparison with
  // NULL is none with IS NULL. A server that does not know the one or the other does
  // not do it.
  for (const char* const setting : {"SET jit = off", "SET transform_null_equals = off"}) {
    const Result ignored(PQexec(link.get(), setting));
  }
  return link;
}

}  // namespace lotrix::postgresql

#include "src/database/providers/postgresql/errors.h"

#include <algorithm>
#include <array>
#include <utility>

#include "src/errors/raise_error.h"

namespace lotrix::postgresql {

namespace {

struct Mapping {
  std::string_view begin;  // of the SQLSTATE
  EngineError number;
};

// The first that fits counts.
constexpr std::array<Mapping, 22> kMappings = {{
    {"08007", EngineError::kInDoubt},
    {"08", EngineError::kNotReachable},
    {"0A", EngineError::kStatementRefused},
    {"21", EngineError::kStatementRefused},
    {"22001", EngineError::kValueOutOfRange},
    {"22003", EngineError::kValueOutOfRange},
    {"22", EngineError::kValueCannotBeConverted},
    {"23", EngineError::kConstraintViolated},
    {"25006", EngineError::kNotPermitted},
    {"28", EngineError::kLoginRefused},
    {"40003", EngineError::kInDoubt},
    {"40", EngineError::kBusy},
    {"42501", EngineError::kNotPermitted},
    {"42P01", EngineError::kNoSuchTable},
    {"42", EngineError::kStatementRefused},
    {"53300", EngineError::kBusy},
    // A value too long for an index, unlike the other limits, which are those of a
    // statement.
    {"54000", EngineError::kValueOutOfRange},
    {"54", EngineError::kStatementRefused},
    {"55006", EngineError::kBusy},
    {"55P03", EngineError::kBusy},
    {"57014", EngineError::kBusy},
    {"57P", EngineError::kNotReachable},
}};

EngineError Number(std::string_view sqlState) {
  const auto* const mapping =
      std::find_if(kMappings.begin(), kMappings.end(),
                   [&](const Mapping& m) { return sqlState.starts_with(m.begin); });
  return mapping == kMappings.end() ? EngineError::kFailed : mapping->number;
}

std::string_view FirstLine(std::string_view message) {
  return message.substr(0, message.find('\n'));
}

}  // namespace

std::string_view SqlState(const PGresult* result) {
  const char* const state = PQresultErrorField(result, PG_DIAG_SQLSTATE);
  return state == nullptr ? std::string_view() : state;
}

int EngineCode(std::string_view sqlState) {
  constexpr int kBase = 36;
  int code = 0;
  for (const char c : sqlState) {
    code = code * kBase + (c >= '0' && c <= '9' ? c - '0' : c - 'A' + 10);
  }
  return code;
}

void RaisePostgresqlError(const PGresult* result) {
  const std::string_view state = SqlState(result);
  const char* const message = PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY);
  RaiseEngineError(Number(state),
                   message != nullptr ? message : FirstLine(PQresultErrorMessage(result)),
                   EngineCode(state));
}

void RaiseLost(bool inDoubt, std::string_view message, std::string_view sqlState) {
  RaiseEngineError(inDoubt ? EngineError::kInDoubt : EngineError::kNotReachable,
                   message.empty() ? "The connection to the server is lost." : FirstLine(message),
                   EngineCode(sqlState));
}

void RaiseNotOpened(std::string_view sqlState, std::string_view message) {
  const EngineError number = sqlState.empty() ? EngineError::kNotReachable : Number(sqlState);
  if (message.empty()) {
    message = number == EngineError::kNotReachable   ? "The server cannot be reached."
              : number == EngineError::kLoginRefused ? "The server refused the login."
                                                     : "The server refused the connection.";
  }
  RaiseEngineError(number, message, EngineCode(sqlState));
}

}  // namespace lotrix::postgresql

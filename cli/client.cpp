#include "cli/client.h"

#include <fmt/format.h>

namespace lotrix::cli {

namespace {

// The gaps between the catalogue's codes and the engines' numbers overlap, so the
// engines' are named.
bool IsEngineError(std::int32_t number) {
  switch (static_cast<EngineError>(static_cast<std::uint32_t>(number))) {
    case EngineError::kFailed:
    case EngineError::kValueCannotBeConverted:
    case EngineError::kNotPermitted:
    case EngineError::kStatementRefused:
    case EngineError::kConstraintViolated:
    case EngineError::kBusy:
    case EngineError::kNoSuchTable:
    case EngineError::kLoginRefused:
    case EngineError::kValueOutOfRange:
    case EngineError::kInDoubt:
    case EngineError::kNotReachable:
      return true;
  }
  return false;
}

}  // namespace

Client::Client(const Common& common)
    : lotrix_(Host{.clock = {},
                   .notify = [this](std::string_view text) { message_ = std::string(text); },
                   .logPath = common.logPath}) {
  lotrix_.openConnection(common.connectionString);
}

Answer Client::Call(const std::string& operation, const Arguments& arguments) {
  Answer answer;
  message_.reset();
  try {
    const Member& member = MemberNamed(operation);
    CallResult result = std::visit(
        [&](const auto& given) { return lotrix::Call(lotrix_, member, given); }, arguments);
    if (auto* const table = std::get_if<cResultSet>(&result)) answer.table = std::move(*table);
    answer.message = message_;
  } catch (const Error& error) {
    answer.error = error;
  }
  return answer;
}

std::string ErrorLine(const Error& error) {
  const std::int32_t number = error.number();
  std::string code = std::to_string(number);
  if (IsEngineError(number)) {
    code = fmt::format("{:08X}", static_cast<std::uint32_t>(number));
  } else if (number < 0) {
    code = std::to_string(number - kObjectErrorBase);
  }
  return fmt::format("{} ({}) {}: {}", number, code, error.source(), error.description());
}

ExitCode ExitCodeOf(const Error& error) {
  if (error.number() == static_cast<std::int32_t>(RuntimeError::kUnknownProvider)) {
    return kDatabaseUnavailable;
  }
  switch (static_cast<EngineError>(static_cast<std::uint32_t>(error.number()))) {
    case EngineError::kFailed:
    case EngineError::kLoginRefused:
    case EngineError::kNotReachable:
      return kDatabaseUnavailable;
    default:
      return kRefused;
  }
}

}  // namespace lotrix::cli

#include "src/errors/raise_error.h"

#include <exception>
#include <limits>
#include <new>
#include <string>

namespace lotrix {

void RaiseError(std::int32_t code, std::string_view message) {
  const std::int64_t number = std::int64_t{kObjectErrorBase} + code;
  if (number < std::numeric_limits<std::int32_t>::min()) RaiseRuntimeError(RuntimeError::kOverflow);
  throw Error(static_cast<std::int32_t>(number), std::string(message));
}

void RaiseError(const Message& message) { RaiseError(message.code, message.text); }

void RaiseRuntimeError(RuntimeError number) {
  throw Error(static_cast<std::int32_t>(number), std::string(RuntimeErrorText(number)));
}

void RaiseEngineError(EngineError number, std::string_view description, int engineCode) {
  throw Error(static_cast<std::int32_t>(number), std::string(description), {}, engineCode);
}

std::string_view RuntimeErrorText(RuntimeError number) {
  switch (number) {
    case RuntimeError::kInvalidArgument:
      return "Invalid procedure call or argument";
    case RuntimeError::kOverflow:
      return "Overflow";
    case RuntimeError::kOutOfMemory:
      return "Out of memory";
    case RuntimeError::kSubscriptOutOfRange:
      return "Subscript out of range";
    case RuntimeError::kTypeMismatch:
      return "Type mismatch";
    case RuntimeError::kObjectNotSet:
      return "Object variable not set";
    case RuntimeError::kInvalidUseOfNull:
      return "Invalid use of Null";
    case RuntimeError::kUnknownMember:
      return "Object doesn't support this property or method";
    case RuntimeError::kUnknownArgumentName:
      return "Named argument not found";
    case RuntimeError::kArgumentNotOptional:
      return "Argument not optional";
    case RuntimeError::kWrongNumberOfArguments:
      return "Wrong number of arguments or invalid property assignment";
    case RuntimeError::kKeyAlreadyInCollection:
      return "This key is already associated with an element of this collection";
    case RuntimeError::kObjectIsClosed:
      return "Operation is not allowed when the object is closed.";
    case RuntimeError::kObjectIsOpen:
      return "Operation is not allowed when the object is open.";
    case RuntimeError::kNoCurrentRecord:
      return "The operation requires a current record.";
    case RuntimeError::kUnknownProvider:
      return "Provider cannot be found. It may not be properly installed.";
  }
  return "Application-defined or object-defined error";
}

Error ErrorInHand() {
  try {
    throw;
  } catch (const Error& error) {
    return error;
  } catch (const std::bad_alloc&) {
    return {static_cast<std::int32_t>(RuntimeError::kOutOfMemory),
            std::string(RuntimeErrorText(RuntimeError::kOutOfMemory))};
  } catch (const std::exception& other) {
    return {static_cast<std::int32_t>(EngineError::kFailed), other.what()};
  }
}

}  // namespace lotrix

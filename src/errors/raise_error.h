// How the component fails: catalogue errors, run-time errors, engine errors.
#ifndef LOTRIX_SRC_ERRORS_RAISE_ERROR_H
#define LOTRIX_SRC_ERRORS_RAISE_ERROR_H

#include <cstdint>
#include <string_view>

#include "lotrix/constants.h"
#include "lotrix/error.h"

namespace lotrix {

// Throws the Error of a broken rule: number = code + hexadecimal 80040000,
// source = the application title. A code below -262144 would leave the 32-bit
// range and throws the overflow error (6) instead.
[[noreturn]] void RaiseError(std::int32_t code, std::string_view message);
[[noreturn]] void RaiseError(const Message& message);

// Throws a run-time error with its standard text.
[[noreturn]] void RaiseRuntimeError(RuntimeError number);

// Throws an error of a database engine, or of the data layer in its place.
[[noreturn]] void RaiseEngineError(EngineError number, std::string_view description,
                                   int engineCode = 0);

// What is being handled, as the Error that callers know: 7 when memory is short,
// 80004005 for what is no Error. Only to be called from a handler.
[[nodiscard]] Error ErrorInHand();

}  // namespace lotrix

#endif

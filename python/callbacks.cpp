#include "python/callbacks.h"

#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>

#include "python/values.h"

namespace lotrix::python {

namespace {

[[noreturn]] void Raise(PyObject* type, const std::string& text) {
  PyErr_SetString(type, text.c_str());
  throw py::error_already_set();
}

py::object RequireCallable(py::object callback, const char* name) {
  if (!callback || callback.is_none()) return {};
  if (PyCallable_Check(callback.ptr()) == 0) {
    Raise(PyExc_TypeError, std::string(name) + " cannot be called");
  }
  return callback;
}

std::chrono::system_clock::time_point TimeOf(const py::object& answer) {
  if (!py::isinstance(answer, py::module_::import("datetime").attr("datetime"))) {
    Raise(PyExc_TypeError, "clock() has to return a datetime.datetime");
  }
  const double seconds = answer.attr("timestamp")().cast<double>();
  // The system clock counts nanoseconds in 64 bits: the years 1678 to 2261.
  constexpr double kFurthest = 9.2e9;
  if (std::abs(seconds) > kFurthest) {
    Raise(PyExc_ValueError, "clock() is beyond what the system can count");
  }
  constexpr double kMicroseconds = 1e6;
  return std::chrono::system_clock::time_point(
      std::chrono::microseconds(std::llround(seconds * kMicroseconds)));
}

}  // namespace

Callbacks::Callbacks(py::object notify, py::object clock)
    : notify_(RequireCallable(std::move(notify), "notify")),
      clock_(RequireCallable(std::move(clock), "clock")) {}

Host Callbacks::MakeHost(std::string logPath) {
  Host host{.clock = {}, .notify = {}, .logPath = std::move(logPath)};
  if (clock_) host.clock = [this] { return Now(); };
  if (notify_) host.notify = [this](std::string_view text) { Notify(text); };
  return host;
}

template <class Work>
auto Callbacks::Keeping(Work&& work) {
  const py::gil_scoped_acquire interpreter;
  try {
    return work();
  } catch (...) {
    if (!failure_) failure_ = std::current_exception();
  }
  // The component is not to hold an exception that only the interpreter may touch.
  throw std::runtime_error("a callback has failed");
}

void Callbacks::Notify(std::string_view text) {
  Keeping([&] {
    if (notify_) notify_(ToStr(text));
  });
}

std::chrono::system_clock::time_point Callbacks::Now() {
  return Keeping([&] { return clock_ ? TimeOf(clock_()) : std::chrono::system_clock::now(); });
}

void Callbacks::ThrowFailure() {
  if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
}

void Callbacks::ReportFailure() noexcept {
  try {
    ThrowFailure();
  } catch (py::error_already_set& error) {
    error.discard_as_unraisable("lotrix callback");
  } catch (const std::exception& error) {
    PyErr_SetString(PyExc_RuntimeError, error.what());
    PyErr_WriteUnraisable(nullptr);
  }
}

int Callbacks::Visit(visitproc visit, void* argument) const {
  // The names that the interpreter's macro wants.
  void* const arg = argument;
  Py_VISIT(notify_.ptr());
  Py_VISIT(clock_.ptr());
  return 0;
}

void Callbacks::Clear() {
  notify_ = {};
  clock_ = {};
}

}  // namespace lotrix::python

// The program's own clock and message box, written in Python.
#ifndef LOTRIX_PYTHON_CALLBACKS_H
#define LOTRIX_PYTHON_CALLBACKS_H

#include <pybind11/pybind11.h>

#include <chrono>
#include <exception>
#include <string_view>

#include "lotrix/host.h"

namespace lotrix::python {

namespace py = pybind11;

// What a callback raises ends the call that it is made from, and the call raises it
// in place of what the component makes of it.
class Callbacks {
 public:
  // Either may be none. Throws Python's TypeError for one that cannot be called.
  Callbacks(py::object notify, py::object clock);

  // Valid for as long as this object stays where it is.
  [[nodiscard]] Host MakeHost(std::string logPath);

  // Throws what the last call left here, if anything.
  void ThrowFailure();
  // The same for a caller that cannot be told: through sys.unraisablehook.
  void ReportFailure() noexcept;

  // For the interpreter's garbage collector: a callback often knows its object.
  int Visit(visitproc visit, void* argument) const;
  void Clear();

 private:
  void Notify(std::string_view text);
  std::chrono::system_clock::time_point Now();
  template <class Work>
  auto Keeping(Work&& work);

  py::object notify_;
  py::object clock_;
  std::exception_ptr failure_;
};

}  // namespace lotrix::python

#endif

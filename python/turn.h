// Who may use an object that its database works for without the interpreter's lock.
#ifndef LOTRIX_PYTHON_TURN_H
#define LOTRIX_PYTHON_TURN_H

#include <pybind11/pybind11.h>

#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include "lotrix/recordset.h"

namespace lotrix::python {

// Shared by a service object, its connection and the recordsets on it, which are one
// thing to the engine. All of it is used under the interpreter's lock.
class Gate {
 public:
  // A recordset whose last reference went, which a garbage collection may do in any
  // thread and in the middle of a call.
  void Drop(std::unique_ptr<Recordset> recordset) {
    if (taken_) dropped_.push_back(std::move(recordset));
  }

 private:
  friend class Turn;
  bool taken_ = false;
  std::vector<std::unique_ptr<Recordset>> dropped_;
};

// Refuses whoever comes while another turn is on: a lock would wait for ever when a
// callback of a call uses the object that is calling it. Throws std::runtime_error.
class Turn {
 public:
  explicit Turn(Gate& gate) : gate_(gate) {
    if (gate_.taken_) {
      throw std::runtime_error(
          "the object is in use: a call on it, or on its connection, has not returned yet");
    }
    gate_.taken_ = true;
  }
  ~Turn() {
    gate_.dropped_.clear();
    gate_.taken_ = false;
  }
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;

 private:
  Gate& gate_;
};

// For work on a database: other Python threads run meanwhile.
template <class Work>
auto WhileOthersRun(Gate& gate, Work&& work) {
  const Turn turn(gate);
  const pybind11::gil_scoped_release others;
  return work();
}

}  // namespace lotrix::python

#endif

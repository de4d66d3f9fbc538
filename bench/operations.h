// What is measured, and the rows it is measured on.
#ifndef LOTRIX_BENCH_OPERATIONS_H
#define LOTRIX_BENCH_OPERATIONS_H

#include <functional>
#include <string>
#include <vector>

#include "lotrix/lotrix.h"

namespace lotrix::bench {

// As many calls as all runs of an operation make together.
inline constexpr int kCalls = 1500;

// An operation, called with the arguments that belong to a number.
struct Operation {
  const char* name;
  bool givesTable;
  // How many different calls there are; kCalls where a call made twice does
  // another thing the second time.
  int variants;
  std::function<void(cLotrix&, int variant)> call;
};

std::vector<Operation> Operations();

// The PIN of one of a million providers.
std::string PinOf(int provider);
// One of the 6,720 days that orders are made on.
std::string DateOf(int variant);

// The sample data, and beside it so many providers with PINs of their own.
void AddRows(Connection& connection, int providers);

void Order(cLotrix& service, const std::string& date, const std::string& pin, int doses);

}  // namespace lotrix::bench

#endif

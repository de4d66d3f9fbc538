#include <iostream>

#include "cli/client.h"

namespace lotrix::cli {

namespace {

void AddUniqueIndexes(Connection& connection) {
  try {
    connection.CreateUniqueIndexes();
  } catch (const Error& error) {
    if (error.number() == static_cast<std::int32_t>(EngineError::kConstraintViolated)) {
      std::cerr << "lotrix init: rows of one key are there twice already; none of the unique "
                   "indexes was made\n";
    }
    throw;
  }
}

}  // namespace

int Init(const Common& common, bool sample, bool strict) {
  try {
    Connection connection;
    connection.Mode(ConnectMode::kReadWrite);
    connection.Open(common.connectionString);
    connection.CreateSchema();
    if (strict) AddUniqueIndexes(connection);
    if (sample && !AddSampleData(connection)) {
      std::cerr << "lotrix init: the database holds rows already; no sample data was added\n";
    }
    return kAllWell;
  } catch (const Error& error) {
    std::cerr << ErrorLine(error) << '\n';
    return ExitCodeOf(error);
  }
}

}  // namespace lotrix::cli

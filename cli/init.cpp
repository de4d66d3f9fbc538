#include <iostream>

#include "cli/client.h"

namespace lotrix::cli {

int Init(const Common& common, bool sample) {
  try {
    Connection connection;
    connection.Mode(ConnectMode::kReadWrite);
    connection.Open(common.connectionString);
    connection.CreateSchema();
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

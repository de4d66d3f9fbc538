// The commands of the lotrix program. Each returns the program's exit code.
#ifndef LOTRIX_CLI_COMMANDS_H
#define LOTRIX_CLI_COMMANDS_H

#include <string>
#include <vector>

namespace lotrix::cli {

enum ExitCode : int {
  kAllWell = 0,
  kRefused = 1,
  kUsage = 2,
  kDatabaseUnavailable = 4,
  kInternal = 70,
};

// What stands in front of the command.
struct Common {
  std::string connectionString;
  std::string logPath;  // empty for the default
};

int Init(const Common& common, bool sample, bool strict);
// All members, or the named one.
int Operations(const std::string& name, bool json);
int Call(const Common& common, const std::string& operation,
         const std::vector<std::string>& arguments, bool json);
// From the file, or from standard input when none is named.
int Batch(const Common& common, const std::string& file);
// All tables from one database to another, named by their connection strings.
int Copy(const std::string& from, const std::string& to);
// On a database and a log of its own.
int Demo();

}  // namespace lotrix::cli

#endif

// The lotrix program: its words, and what each of them runs.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "cli/client.h"
#include "cli/commands.h"
#include "src/platform/text.h"

namespace {

using lotrix::cli::Common;

constexpr const char* kDescription = R"(Examples:
  lotrix init --sample
  lotrix operations
  lotrix call stockTableRead aVaccine=DTAP
  lotrix --connection "Provider=SQLite;Data Source=clinic.db" batch requests.jsonl
  echo '{"id": 1, "op": "vaccineReferenceTableRead"}' | lotrix batch
  lotrix copy --from "Provider=SQLite;Data Source=lotrix.db" \
      --to "Provider=PostgreSQL;Host=H;Database=D"
  lotrix demo

One checked door into the database of a public vaccine-management system.
)";

std::string VersionText() {
  std::string text = "lotrix " + std::string(lotrix::Version()) + " (engines:";
  for (const std::string& engine : lotrix::Engines()) text += " " + engine;
  return text + ")";
}

bool MayHoldPassword(const std::string& argument) {
  const std::string text = lotrix::LowerAscii(argument);
  return text.find("password") != std::string::npos || text.find("://") != std::string::npos;
}

// A message about wrong usage repeats what it does not understand.
std::string WithoutPasswords(std::string message, const std::vector<std::string>& arguments) {
  constexpr std::string_view kInstead = "(not shown)";
  for (const std::string& argument : arguments) {
    if (!MayHoldPassword(argument)) continue;
    for (std::size_t at = message.find(argument); at != std::string::npos;
         at = message.find(argument, at + kInstead.size())) {
      message.replace(at, argument.size(), kInstead);
    }
  }
  return message;
}

int Run(int argc, char** argv) {
  CLI::App app(kDescription, "lotrix");
  app.failure_message([given = std::vector<std::string>(argv + std::min(argc, 1), argv + argc)](
                          const CLI::App* parsed, const CLI::Error& error) {
    return WithoutPasswords(CLI::FailureMessage::simple(parsed, error), given);
  });
  app.set_version_flag("--version", VersionText(), "Show the version and the engines built in");
  app.set_help_flag("--help", "Show this help");
  app.require_subcommand(1);

  Common common{.connectionString = "Provider=SQLite;Data Source=lotrix.db", .logPath = {}};
  if (const char* const given = std::getenv("LOTRIX_CONNECTION"); given != nullptr && *given) {
    common.connectionString = given;
  }
  app.add_option("--connection", common.connectionString,
                 "Connection string; LOTRIX_CONNECTION stands in for it")
      ->type_name("CS");
  app.add_option("--log", common.logPath, "The trace log's file")->type_name("PATH");

  int exitCode = 0;
  bool sample = false;
  bool strict = false;
  bool json = false;
  std::string name;
  std::string file;
  std::string from;
  std::string to;
  std::vector<std::string> arguments;

  CLI::App* const init = app.add_subcommand("init", "Make the tables and indexes");
  init->add_flag("--sample", sample, "Add the sample data to an empty database");
  init->add_flag("--strict", strict, "Add unique indexes on the keys that operations check");
  init->callback([&] { exitCode = lotrix::cli::Init(common, sample, strict); });

  CLI::App* const operations = app.add_subcommand("operations", "Show the published members");
  operations->add_option("name", name, "Only this member");
  operations->add_flag("--json", json, "As JSON");
  operations->callback([&] { exitCode = lotrix::cli::Operations(name, json); });

  CLI::App* const call = app.add_subcommand("call", "Call one operation");
  call->add_option("operation", name, "The operation")->required();
  call->add_option("arguments", arguments, "Its arguments by name")->type_name("NAME=VALUE");
  call->add_flag("--json", json, "Answer as batch does");
  call->callback([&] { exitCode = lotrix::cli::Call(common, name, arguments, json); });

  CLI::App* const batch = app.add_subcommand("batch", "Answer requests, a JSON object a line");
  batch->add_option("file", file, "The requests; standard input when not given")->type_name("FILE");
  batch->callback([&] { exitCode = lotrix::cli::Batch(common, file); });

  CLI::App* const copy = app.add_subcommand("copy", "Copy all tables into an empty database");
  copy->add_option("--from", from, "Connection string of the database to read")
      ->type_name("CS")
      ->required();
  copy->add_option("--to", to, "Connection string of the database to fill")
      ->type_name("CS")
      ->required();
  copy->callback([&] { exitCode = lotrix::cli::Copy(from, to); });

  CLI::App* const demo = app.add_subcommand("demo", "A working day on a fresh database");
  demo->callback([&] { exitCode = lotrix::cli::Demo(); });

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    const int handled = app.exit(error);
    return handled == 0 ? lotrix::cli::kAllWell : lotrix::cli::kUsage;
  }
  std::cout.flush();
  if (!std::cout) {
    std::cerr << "lotrix: standard output could not be written\n";
    return lotrix::cli::kInternal;
  }
  return exitCode;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const lotrix::Error& error) {
    std::cerr << lotrix::cli::ErrorLine(error) << '\n';
    return lotrix::cli::ExitCodeOf(error);
  } catch (const std::exception& error) {
    std::cerr << "lotrix: " << error.what() << '\n';
    return lotrix::cli::kInternal;
  }
}

// All tables of one database into another that is empty.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <stdexcept>

#include "cli/client.h"
#include "cli/progress.h"
#include "src/database/connection_access.h"
#include "src/database/fingerprint.h"
#include "src/database/recordset_view.h"
#include "src/database/table_writer.h"

namespace lotrix::cli {

namespace {

constexpr auto kTables =
    std::to_array<const char*>({"provider", "enroll", "physicn", "neworder", "influenza", "distrib",
                                "provhas", "dosesadm", "stock", "lots", "pvaccref", "vaccref",
                                "funding", "actref", "sectoref", "subdiv", "zipcodes", "nextid"});

// What the command itself refuses.
class Refusal : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// One of the two databases.
struct Side {
  const char* name;  // for messages
  ConnectionSettings settings;
  Connection connection;
};

struct Copied {
  std::string table;
  std::uint64_t rows;
};

bool Is(const Error& error, EngineError number) {
  return error.number() == static_cast<std::int32_t>(number);
}

void Open(Side& side, const std::string& connectionString, ConnectMode mode) {
  side.settings = ParseConnectionString(connectionString);
  side.connection.Mode(mode);
  side.connection.Open(connectionString);
}

std::vector<std::string> Names(const Recordset& rows) {
  std::vector<std::string> names;
  for (std::int32_t i = 0; i < rows.Fields().Count(); ++i) {
    names.push_back(rows.Fields().Item(i).Name());
  }
  return names;
}

std::vector<std::string> ColumnsOf(Side& side, const std::string& table) {
  try {
    return Names(*side.connection.Execute("SELECT * FROM " + table + " WHERE 1 = 2"));
  } catch (const Error& error) {
    if (!Is(error, EngineError::kNoSuchTable)) throw;
    throw Refusal(fmt::format("the {} has no table {}", side.name, table));
  }
}

std::uint64_t CountRows(Side& side, const std::string& table) {
  const auto count = side.connection.Execute("SELECT count(*) FROM " + table);
  return static_cast<std::uint64_t>(std::get<std::int64_t>(count->Fields().Item(0).Value()));
}

// The rows of the table, each with its values in the order of the columns.
template <class Work>
void ForEachRow(Side& side, const TableColumns& table, const Work& work) {
  const auto rows = side.connection.Execute("SELECT * FROM " + table.table);
  const std::vector<std::string> names = Names(*rows);
  std::vector<std::int32_t> places;
  for (const std::string& column : table.columns) {
    places.push_back(
        static_cast<std::int32_t>(std::find(names.begin(), names.end(), column) - names.begin()));
  }
  std::vector<ValueView> row(places.size());
  for (; !rows->EndOfFile(); rows->MoveNext()) {
    for (std::size_t i = 0; i < places.size(); ++i) {
      row[i] = RecordsetView::CurrentValue(*rows, places[i]);
    }
    work(row);
  }
}

// All tables as they are made in a new database.
std::vector<TableColumns> TablesOfOurs() {
  Side fresh{.name = "schema", .settings = {}, .connection = {}};
  fresh.connection.Open("Provider=SQLite;Data Source=:memory:");
  fresh.connection.CreateSchema();
  std::vector<TableColumns> tables;
  tables.reserve(kTables.size());
  for (const char* const table : kTables) tables.push_back({table, ColumnsOf(fresh, table)});
  return tables;
}

bool Contains(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// A column more would be lost on the way.
void RequireColumns(Side& side, const TableColumns& table) {
  const std::vector<std::string> columns = ColumnsOf(side, table.table);
  for (const std::string& column : table.columns) {
    if (Contains(columns, column)) continue;
    throw Refusal(
        fmt::format("the {}'s table {} has no column {}", side.name, table.table, column));
  }
  for (const std::string& column : columns) {
    if (Contains(table.columns, column)) continue;
    throw Refusal(
        fmt::format("the {}'s table {} has an unknown column {}", side.name, table.table, column));
  }
}

// Returns whether the table is there.
bool RequireEmpty(Side& target, const TableColumns& table) {
  try {
    if (CountRows(target, table.table) > 0) {
      throw Refusal(fmt::format("the target is not empty: its table {} holds rows", table.table));
    }
    RequireColumns(target, table);
    return true;
  } catch (const Error& error) {
    if (!Is(error, EngineError::kNoSuchTable)) throw;
    return false;
  }
}

void RequireTwoDatabases(const Side& source, const Side& target) {
  if (source.settings.provider == target.settings.provider &&
      DatabaseIdentity(source.settings) == DatabaseIdentity(target.settings)) {
    throw Refusal("source and target are the same database");
  }
}

// Changes nothing unless the target can be filled.
void Prepare(Side& target, const std::vector<TableColumns>& tables) {
  bool allThere = true;
  for (const TableColumns& table : tables) {
    if (!RequireEmpty(target, table)) allThere = false;
  }
  if (!allThere) target.connection.CreateSchema();
}

std::uint64_t CopyRows(Side& source, const Side& target, const TableColumns& table,
                       Progress& progress) {
  progress.Start(table.table, CountRows(source, table.table));
  const std::unique_ptr<TableWriter> writer = OpenTableWriter(target.settings, table);
  std::uint64_t count = 0;
  ForEachRow(source, table, [&](const std::vector<ValueView>& row) {
    writer->Add(row);
    ++count;
    progress.Step();
  });
  writer->Commit();
  return count;
}

Fingerprint FingerprintOf(Side& side, const TableColumns& table, std::uint64_t rows,
                          Progress& progress) {
  progress.Start(fmt::format("checking {}", table.table), rows);
  Fingerprint fingerprint;
  ForEachRow(side, table, [&](const std::vector<ValueView>& row) {
    fingerprint.Add(row);
    progress.Step();
  });
  return fingerprint;
}

void RequireSameRows(Side& source, Side& target, const TableColumns& table, std::uint64_t rows,
                     Progress& progress) {
  const Fingerprint from = FingerprintOf(source, table, rows, progress);
  const Fingerprint to = FingerprintOf(target, table, rows, progress);
  if (from.rows() != to.rows()) {
    throw Refusal(fmt::format("the table {} has {} rows in the source and {} in the target",
                              table.table, from.rows(), to.rows()));
  }
  if (!(from == to)) {
    throw Refusal(fmt::format("the checksums of the table {} differ", table.table));
  }
}

void WriteSummary(const std::vector<Copied>& copied) {
  std::uint64_t sum = 0;
  std::cout << fmt::format("{:<10}  {:>12}\n{:-<10}  {:->12}\n", "table", "rows", "", "");
  for (const auto& [table, rows] : copied) {
    std::cout << fmt::format("{:<10}  {:>12}\n", table, rows);
    sum += rows;
  }
  std::cout << fmt::format("{:-<10}  {:->12}\n{:<10}  {:>12}\n", "", "", "all", sum);
}

// What a run that failed has left.
void WriteKept(const std::vector<Copied>& copied) {
  std::string kept;
  for (const auto& [table, rows] : copied) {
    if (rows > 0) kept += fmt::format("{}{} ({} rows)", kept.empty() ? "" : ", ", table, rows);
  }
  if (kept.empty()) return;
  std::cerr << "lotrix copy: the target keeps " << kept << "; empty it before the next run\n";
}

// `where` tells at any time what the command is about.
void Run(const std::string& from, const std::string& to, std::string& where,
         std::vector<Copied>& copied) {
  Side source{.name = "source", .settings = {}, .connection = {}};
  Side target{.name = "target", .settings = {}, .connection = {}};
  where = "source";
  Open(source, from, ConnectMode::kRead);
  ConnectionAccess::BeginSnapshot(source.connection);
  const std::vector<TableColumns> tables = TablesOfOurs();
  for (const TableColumns& table : tables) RequireColumns(source, table);
  where = "target";
  target.settings = ParseConnectionString(to);
  RequireTwoDatabases(source, target);
  Open(target, to, ConnectMode::kReadWrite);
  Prepare(target, tables);
  Progress progress;
  for (const TableColumns& table : tables) {
    where = "table " + table.table;
    const std::uint64_t rows = CopyRows(source, target, table, progress);
    copied.push_back({table.table, rows});
    RequireSameRows(source, target, table, rows, progress);
  }
}

}  // namespace

int Copy(const std::string& from, const std::string& to) {
  std::string where;
  std::vector<Copied> copied;
  try {
    Run(from, to, where, copied);
    WriteSummary(copied);
    return kAllWell;
  } catch (const Refusal& refusal) {
    std::cerr << "lotrix copy: " << refusal.what() << '\n';
    WriteKept(copied);
    return kRefused;
  } catch (const Error& error) {
    std::cerr << "lotrix copy: " << where << ": " << ErrorLine(error) << '\n';
    if (Is(error, EngineError::kInDoubt)) {
      std::cerr << "lotrix copy: whether the target keeps the rows of that table is not known\n";
    }
    WriteKept(copied);
    return ExitCodeOf(error);
  }
}

}  // namespace lotrix::cli

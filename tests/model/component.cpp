#include "tests/model/component.h"

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <string_view>

#include "tests/support/fixture.h"

namespace lotrix::model {

namespace {

std::chrono::system_clock::time_point ModelNow() {
  std::tm local{};
  local.tm_year = kToday.year - 1900;
  local.tm_mon = kToday.month - 1;
  local.tm_mday = kToday.day;
  local.tm_hour = 13;
  local.tm_isdst = -1;
  return std::chrono::system_clock::from_time_t(std::mktime(&local));
}

std::string Literal(const std::string& cell, ColumnKind kind) {
  if (cell == "<null>") return "NULL";
  if (kind == ColumnKind::kNumber) return cell;
  if (kind == ColumnKind::kLogical) return cell == "1" ? "(1 = 1)" : "(1 = 0)";
  std::string literal = "'";
  for (const char c : cell) {
    if (c == '\'') literal.push_back('\'');
    literal.push_back(c);
  }
  return literal + "'";
}

void Fill(test::TestDatabase& database, const Tables& tables) {
  std::string statements = "BEGIN;";
  for (const TableContents& table : Contents(tables)) {
    for (const Row& row : table.rows) {
      std::string values;
      for (std::size_t i = 0; i < row.size(); ++i) {
        values += (i == 0 ? "" : ", ") + Literal(row[i], table.columns[i].kind);
      }
      statements += "INSERT INTO " + table.name + " (" + ColumnList(table) + ") VALUES (" + values;
      statements += ");";
    }
  }
  database.Execute(statements + "COMMIT");
}

}  // namespace

std::string ColumnList(const TableContents& table) {
  std::string list;
  for (const Column& column : table.columns) {
    list += (list.empty() ? "\"" : ", \"") + column.name + "\"";
  }
  return list;
}

std::uint64_t FromEnvironment(const char* name, std::uint64_t otherwise) {
  const char* const text = std::getenv(name);
  return text == nullptr ? otherwise : std::strtoull(text, nullptr, 10);
}

Component::Component(test::Engine engine, const Tables& tables)
    : database_(test::MakeTestDatabase(engine)),
      lotrix_({.clock = ModelNow,
               .notify = [this](std::string_view text) { shown_.emplace_back(text); },
               .logPath = folder_.path() + "/Lotrix.log"}) {
  Fill(*database_, tables);
  lotrix_.openConnection(database_->ConnectionString());
}

Outcome Component::Run(const Call& call) {
  shown_.clear();
  Outcome outcome;
  try {
    const CallResult result = lotrix::Call(lotrix_, MemberNamed(call.operation), call.arguments);
    if (const auto* const table = std::get_if<cResultSet>(&result)) {
      outcome.hasTable = true;
      outcome.headers = test::HeaderNames(*table);
      outcome.rows = test::Cells(*table);
    }
  } catch (const Error& error) {
    outcome.accepted = false;
    outcome.number = error.number();
    outcome.source = error.source();
    outcome.message = error.description();
  }
  outcome.shown = shown_;
  return outcome;
}

std::vector<Row> Component::Stored(const TableContents& table) {
  std::vector<Row> rows = database_->Query("SELECT " + ColumnList(table) + " FROM " + table.name);
  for (Row& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (table.columns[i].kind != ColumnKind::kNumber || row[i] == "<null>") continue;
      // Engines write the same number in several ways.
      row[i] = NumberText(std::strtod(row[i].c_str(), nullptr));
    }
  }
  return rows;
}

std::vector<std::string> Component::Trace() {
  const std::vector<std::string> lines = test::TraceLines(folder_.path() + "/Lotrix.log");
  std::vector<std::string> fresh(lines.begin() + static_cast<std::ptrdiff_t>(linesSeen_),
                                 lines.end());
  linesSeen_ = lines.size();
  return fresh;
}

}  // namespace lotrix::model

// PostgreSQL beside SQLite: the same calls and statements, and the same answers,
// rows and trace lines.
//
// LOTRIX_MODEL_SEED and LOTRIX_MODEL_STEPS choose another sequence of calls or
// another length.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "lotrix/connection.h"
#include "lotrix/recordset.h"
#include "tests/model/calls.h"
#include "tests/model/component.h"
#include "tests/model/model.h"
#include "tests/support/engine.h"
#include "tests/support/fixture.h"

namespace lotrix::test {
namespace {

// --- Calls ---------------------------------------------------------------------

constexpr std::uint64_t kDefaultSeed = 20261121;
constexpr std::uint64_t kDefaultSteps = 1500;
constexpr std::uint64_t kStepsOfOneDatabase = 250;
constexpr std::uint64_t kStepsBetweenComparisons = 25;

bool IsOfAnEngine(std::int32_t number) {
  for (const EngineError error :
       {EngineError::kStatementRefused, EngineError::kNoSuchTable,
        EngineError::kValueCannotBeConverted, EngineError::kConstraintViolated,
        EngineError::kValueOutOfRange, EngineError::kFailed}) {
    if (number == Numbered(error)) return true;
  }
  return false;
}

std::vector<Row> Sorted(std::vector<Row> rows) {
  std::sort(rows.begin(), rows.end());
  return rows;
}

// An engine's own message is no part of what has to be the same.
std::vector<std::string> WithoutMessage(std::vector<std::string> lines,
                                        const model::Outcome& outcome) {
  if (!IsOfAnEngine(outcome.number)) return lines;
  for (std::string& line : lines) {
    if (line.starts_with("error Problem: ") && line.ends_with(outcome.message)) {
      line.erase(line.size() - outcome.message.size());
    }
  }
  return lines;
}

void ExpectSame(const model::Outcome& left, const model::Outcome& right) {
  EXPECT_EQ(left.accepted, right.accepted) << left.message << "\n" << right.message;
  EXPECT_EQ(left.number, right.number) << left.message << "\n" << right.message;
  EXPECT_EQ(left.source, right.source);
  if (!IsOfAnEngine(left.number)) {
    EXPECT_EQ(left.message, right.message);
  }
  EXPECT_EQ(left.hasTable, right.hasTable);
  EXPECT_EQ(left.headers, right.headers);
  EXPECT_EQ(Sorted(left.rows), Sorted(right.rows));
  EXPECT_EQ(left.shown, right.shown);
}

TEST(PostgresqlDifferential, CallsGiveTheSameAnswersRowsAndTraceLines) {
  const std::uint64_t seed = model::FromEnvironment("LOTRIX_MODEL_SEED", kDefaultSeed);
  const std::uint64_t steps = model::FromEnvironment("LOTRIX_MODEL_STEPS", kDefaultSteps);
  ASSERT_GT(steps, 0U) << "LOTRIX_MODEL_STEPS is no number of steps";
  model::CallGenerator generator(seed);
  std::unique_ptr<model::Component> sqlite;
  std::unique_ptr<model::Component> postgresql;
  int databases = 0;
  int accepted = 0;
  for (std::uint64_t step = 0; step < steps && !::testing::Test::HasFailure(); ++step) {
    if (step % kStepsOfOneDatabase == 0) {
      const model::Tables tables = model::StartingTables(databases++);
      sqlite = std::make_unique<model::Component>(Engine::kSqlite, tables);
      postgresql = std::make_unique<model::Component>(Engine::kPostgresql, tables);
    }
    const model::Call call = generator.Next();
    SCOPED_TRACE("LOTRIX_MODEL_SEED=" + std::to_string(seed) +
                 " LOTRIX_MODEL_STEPS=" + std::to_string(step + 1) + "\n" + Describe(call));
    const model::Outcome left = sqlite->Run(call);
    const model::Outcome right = postgresql->Run(call);
    ExpectSame(left, right);
    if (left.accepted) ++accepted;
    EXPECT_EQ(WithoutMessage(sqlite->Trace(), left), WithoutMessage(postgresql->Trace(), right));
    if ((step + 1) % kStepsBetweenComparisons != 0 && step + 1 != steps) continue;
    for (const model::TableContents& table : model::Contents(model::StartingTables(0))) {
      EXPECT_EQ(Sorted(sqlite->Stored(table)), Sorted(postgresql->Stored(table))) << table.name;
    }
  }
  if (steps >= kDefaultSteps) {
    EXPECT_GT(accepted, static_cast<int>(steps / 4));
  }
}

// --- Statements ----------------------------------------------------------------

struct TypedText {
  std::string operator()(const std::string& text) const { return "text '" + text + "'"; }
  std::string operator()(std::int64_t number) const { return "whole " + std::to_string(number); }
  std::string operator()(double number) const { return "double " + std::to_string(number); }
  std::string operator()(bool logical) const { return logical ? "true" : "false"; }
  std::string operator()(const Date& date) const {
    return "date " + std::to_string(date.year) + "-" + std::to_string(date.month) + "-" +
           std::to_string(date.day);
  }
  std::string operator()(const Null& /*null*/) const { return "null"; }
  std::string operator()(const auto& /*other*/) const { return "something else"; }
};

// Of what is no column, each engine has a name of its own.
std::string ColumnName(const std::string& name) {
  static const std::set<std::string> kFunctions = {"count", "max",   "min",     "sum",      "upper",
                                                   "ltrim", "btrim", "replace", "?column?", "date"};
  const bool isName = std::all_of(name.begin(), name.end(),
                                  [](unsigned char c) { return std::isalnum(c) != 0 || c == '_'; });
  const bool isColumn = isName && !kFunctions.contains(name) && name != "null" &&
                        std::isdigit(static_cast<unsigned char>(name[0])) == 0;
  return isColumn ? name : "an expression";
}

// All that a client sees of the statement: the refusal's number, or the fields'
// names and types and the records.
std::vector<Row> Seen(Connection& connection, const std::string& text) {
  std::vector<Row> seen;
  try {
    const std::unique_ptr<Recordset> rows = connection.Execute(text);
    if (rows->State() == ObjectState::kClosed) return {{"no rows"}};
    Row& header = seen.emplace_back();
    for (std::int32_t i = 0; i < rows->Fields().Count(); ++i) {
      header.push_back(ColumnName(rows->Fields().Item(i).Name()) + " " +
                       std::to_string(static_cast<int>(rows->Fields().Item(i).Type())));
    }
    for (; !rows->EndOfFile(); rows->MoveNext()) {
      Row& record = seen.emplace_back();
      for (std::int32_t i = 0; i < rows->Fields().Count(); ++i) {
        record.push_back(std::visit(TypedText{}, rows->Fields().Item(i).Value()));
      }
    }
  } catch (const Error& error) {
    return {{"refused " + std::to_string(error.number())}};
  }
  return seen;
}

class PostgresqlDifferentialStatements : public ::testing::Test {
 protected:
  PostgresqlDifferentialStatements()
      : sqlite_(MakeTestDatabase(Engine::kSqlite)),
        postgresql_(MakeTestDatabase(Engine::kPostgresql)) {
    left_.Open(sqlite_->ConnectionString());
    right_.Open(postgresql_->ConnectionString());
    const std::string rows =
        "INSERT INTO stock (pin, lot, vaccine, doses, datein, tracking, expiry) VALUES "
        "('A1', 'L-1', 'DTAP', 5, '2004-01-05', 'T1', '2027-01-01'),"
        "('A1  ', 'L1', 'DTAP ', -5, '2004-02-29', '', NULL),"
        "('a1', 'l1', NULL, 0, NULL, NULL, '0450-03-07'),"
        "(' A1', 'L--2', 'HIB', 12, '9999-12-31', '   ', '1899-12-30'),"
        "('É', 'ß', 'é ', NULL, '0100-01-01', 'ÿ', '2004-01-05'),"
        "('', ' ', 'ab', 9223372036854775807, '2004-01-05', 'x', '2004-01-04');"
        "INSERT INTO pvaccref (vaccine, maker, \"begin\", \"end\", pkgsize, cost, locactiv, maxno) "
        "VALUES ('DTAP', 'M', '2004-01-01', '2004-12-31', 10, 12.5, (1 = 0), 3),"
        "('HIB', 'N ', '2004-01-01', NULL, 5, 0.1, (1 = 1), NULL), ('X', NULL, NULL, NULL, NULL, "
        "1e300, NULL, 0), ('Y', '', NULL, NULL, 0, -3, (1 = 1), 7);"
        "INSERT INTO dosesadm (pin, sector, dose, g1) VALUES ('A1', 10, 1, 2), ('A1', 10.5, 2.5, "
        "3), ('A2', 30, NULL, NULL), ('A3', -1, 100000000000000000, 0);"
        "INSERT INTO nextid (ctablename, inextid) VALUES (' Distrib ', 41)";
    sqlite_->Execute(rows);
    postgresql_->Execute(rows);
  }

  void ExpectSame(const std::string& text) {
    EXPECT_EQ(Seen(left_, text), Seen(right_, text)) << text;
  }
  void ExpectSameRows(const std::string& table) {
    EXPECT_EQ(Sorted(sqlite_->Query("SELECT * FROM " + table)),
              Sorted(postgresql_->Query("SELECT * FROM " + table)));
  }

  Connection& left() { return left_; }
  Connection& right() { return right_; }

 private:
  std::unique_ptr<TestDatabase> sqlite_;
  std::unique_ptr<TestDatabase> postgresql_;
  Connection left_;
  Connection right_;
};

TEST_F(PostgresqlDifferentialStatements, QueriesAreAnsweredAlike) {
  for (const std::string text :
       {"SELECT * FROM stock ORDER BY lot",
        "SELECT * FROM pvaccref ORDER BY vaccine",
        "SELECT * FROM dosesadm ORDER BY sector",
        "SELECT pin, doses FROM stock ORDER BY doses, lot",
        "SELECT lot FROM stock ORDER BY doses DESC, lot DESC",
        "SELECT lot FROM stock ORDER BY pin, lot",
        "SELECT lot FROM stock ORDER BY lot",
        "SELECT lot, datein FROM stock ORDER BY datein, lot",
        "SELECT lot, datein FROM stock ORDER BY datein DESC, lot",
        "SELECT vaccine FROM pvaccref ORDER BY locactiv, vaccine",
        "SELECT vaccine FROM pvaccref ORDER BY cost",
        "SELECT count(*) FROM stock",
        "SELECT count(vaccine) FROM stock",
        "SELECT count(*), max(doses), min(doses) FROM stock",
        "SELECT max(lot), min(lot) FROM stock",
        "SELECT max(datein), min(datein) FROM stock",
        "SELECT max(expiry) FROM stock WHERE pin = 'nobody'",
        "SELECT max(cost), min(cost), sum(cost) FROM pvaccref WHERE vaccine != 'X'",
        "SELECT sum(doses) FROM stock WHERE doses < 100",
        "SELECT sum(doses) FROM stock WHERE pin = 'nobody'",
        "SELECT sum(g1), count(g1) FROM dosesadm",
        "SELECT max(sector), max(dose) FROM dosesadm",
        "SELECT sum(sector) FROM dosesadm",
        "SELECT MAX( maxno) FROM pvaccref",
        "SELECT pin, count(*) FROM stock WHERE doses < 100 GROUP BY pin ORDER BY pin",
        "SELECT vaccine, sum(doses) FROM stock WHERE doses < 100 GROUP BY vaccine ORDER BY vaccine",
        "SELECT count(DISTINCT pin) FROM stock",
        "SELECT count(DISTINCT vaccine) FROM stock",
        "SELECT lot, upper(lot) FROM stock ORDER BY lot",
        "SELECT upper(vaccine) FROM stock WHERE pin = 'É'",
        "SELECT lot, strtran(lot,'-','') FROM stock ORDER BY lot",
        "SELECT ltrim(rtrim(pin)), trim(vaccine) FROM stock ORDER BY lot",
        "SELECT lot FROM stock WHERE pin = 'A1' ORDER BY lot",
        "SELECT lot FROM stock WHERE pin == 'A1    ' ORDER BY lot",
        "SELECT lot FROM stock WHERE pin <> 'A1' ORDER BY lot",
        "SELECT lot FROM stock WHERE pin < 'A1 ' ORDER BY lot",
        "SELECT lot FROM stock WHERE pin >= 'A1 ' ORDER BY lot",
        "SELECT lot FROM stock WHERE pin = '' ORDER BY lot",
        "SELECT lot FROM stock WHERE lot = '' ORDER BY lot",
        "SELECT lot FROM stock WHERE vaccine = 'ab' ORDER BY lot",
        "SELECT lot FROM stock WHERE vaccine IN ('DTAP', 'HIB ') ORDER BY lot",
        "SELECT lot FROM stock WHERE vaccine NOT IN ('DTAP', 'HIB ') ORDER BY lot",
        "SELECT lot FROM stock WHERE pin BETWEEN 'A' AND 'Z' ORDER BY lot",
        "SELECT lot FROM stock WHERE pin BETWEEN 'A1  ' AND 'A1' ORDER BY lot",
        "SELECT lot FROM stock WHERE upper(pin) = 'A1' ORDER BY lot",
        "SELECT lot FROM stock WHERE upper(pin) = 'É' ORDER BY lot",
        "SELECT lot FROM stock WHERE ltrim(rtrim(pin)) = 'A1 ' ORDER BY lot",
        "SELECT lot FROM stock WHERE ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = 'L1' "
        "ORDER BY lot",
        "SELECT lot FROM stock WHERE vaccine IS NULL",
        "SELECT lot FROM stock WHERE doses IS NULL",
        "SELECT lot FROM stock WHERE vaccine = NULL",
        "SELECT lot FROM stock WHERE tracking = '  '",
        "SELECT lot FROM stock WHERE tracking != ' ' ORDER BY lot",
        "SELECT lot FROM stock WHERE doses = 5",
        "SELECT lot FROM stock WHERE doses = 5.0",
        "SELECT lot FROM stock WHERE doses = 5.5",
        "SELECT lot FROM stock WHERE doses < 5.5 "
        "ORDER BY lot",
        "SELECT lot FROM stock WHERE doses = '5'",
        "SELECT lot FROM stock WHERE doses <> 5 ORDER "
        "BY lot",
        "SELECT lot FROM stock WHERE doses BETWEEN -5 AND 5 ORDER BY lot",
        "SELECT pin FROM dosesadm WHERE g1 + 1 = 3",
        "SELECT lot FROM stock WHERE doses * 2 > 20 "
        "AND doses < 100",
        "SELECT lot FROM stock WHERE - doses = 5",
        "SELECT doses / 2 FROM stock WHERE doses = 5",
        "SELECT doses / 2.0 FROM stock WHERE doses = 5",
        "SELECT 7 / 2, 7 / -2 FROM nextid",
        "SELECT doses / 0 FROM stock WHERE doses = 5",
        "SELECT 1, 2.5, 'x ', -3 FROM nextid",
        "SELECT cost * 2, cost + 1 FROM pvaccref WHERE vaccine = 'DTAP'",
        "SELECT sector, dose FROM dosesadm WHERE dose = 2.5",
        "SELECT sector FROM dosesadm WHERE dose > 2 ORDER BY sector",
        "SELECT sector FROM dosesadm WHERE sector BETWEEN 10 AND 29 ORDER BY sector",
        "SELECT sector FROM dosesadm WHERE sector = '10'",
        "SELECT vaccine FROM pvaccref WHERE cost = 0.1",
        "SELECT vaccine FROM pvaccref WHERE cost < 0 ",
        "SELECT cost FROM pvaccref WHERE cost = "
        "12.50",
        "SELECT vaccine, locactiv FROM pvaccref WHERE locactiv = .T. ORDER BY vaccine",
        "SELECT vaccine FROM pvaccref WHERE locactiv = .F.",
        "SELECT vaccine FROM pvaccref WHERE locactiv != .F. ORDER BY vaccine",
        "SELECT vaccine FROM pvaccref WHERE locactiv IS NULL",
        "SELECT vaccine FROM pvaccref WHERE ({6/1/2004} BETWEEN begin AND end)",
        "SELECT lot FROM stock WHERE datein = {1/5/2004} ORDER BY lot",
        "SELECT lot FROM stock WHERE datein < {1/5/2004}",
        "SELECT lot FROM stock WHERE datein > expiry ORDER BY lot",
        "SELECT lot FROM stock WHERE datein = expiry ORDER BY lot",
        "SELECT lot FROM stock WHERE expiry = {12:00:00 AM}",
        "SELECT lot FROM stock WHERE datein "
        "= {}",
        "SELECT lot FROM stock WHERE datein IN ({1/5/2004}, {12/31/9999}) ORDER BY lot",
        "SELECT lot FROM stock WHERE datein = {soon}",
        "SELECT {1/5/2004}, {} FROM nextid",
        "SELECT lot FROM stock WHERE 'a' = 'a ' ORDER BY lot",
        "SELECT lot FROM stock WHERE 'a' < 'B'",
        "SELECT lot FROM stock WHERE 1 = 1 ORDER BY lot",
        "SELECT lot FROM stock WHERE 1 = 2",
        "SELECT lot FROM stock WHERE NOT doses = 5 ORDER BY "
        "lot",
        "SELECT lot FROM stock WHERE pin = 'A1' OR doses = 12 ORDER BY lot",
        "SELECT lot FROM stock WHERE (pin = 'A1' AND (doses = 5)) ORDER BY lot",
        "SELECT s.lot, v.maker FROM stock s, pvaccref v WHERE s.vaccine = v.vaccine ORDER BY s.lot",
        "SELECT s.lot, v.cost FROM stock s, pvaccref v WHERE trim(s.vaccine) == trim(v.vaccine) "
        "AND v.locactiv = .F. ORDER BY s.lot, v.cost",
        "SELECT inextid FROM Nextid WHERE ltrim(rtrim(upper(ctablename))) = 'DISTRIB' ",
        "SELECT pin AS p, doses AS Number FROM stock ORDER BY lot",
        "SELECT nosuch FROM stock",
        "SELECT pin FROM nosuch",
        "SELECT pin FROM",
        "SELECT",
        "SELECT pin FROM stock WHERE",
        "SELECT pin, FROM stock",
        "SELECT FROM stock",
        "SELECT pin FROM stock, pvaccref WHERE vaccine = 'X'",
        "SELECT pin FROM stock WHERE count(*) "
        "= 1",
        "SELECT pin FROM stock GROUP BY"}) {
    ExpectSame(text);
  }
}

TEST_F(PostgresqlDifferentialStatements, DistinctRowsAreTheSame) {
  for (const std::string text :
       {"SELECT DISTINCT pin FROM stock", "Select Distinct vaccine From stock",
        "SELECT DISTINCT datein FROM stock", "SELECT DISTINCT doses, datein FROM stock",
        "SELECT DISTINCT locactiv FROM pvaccref"}) {
    // Which of the texts that are equal stands for them is left open, so is the order.
    const auto rows = [&](Connection& connection) {
      std::vector<Row> seen = Seen(connection, text);
      for (Row& row : seen) {
        for (std::string& cell : row) {
          const std::size_t last = cell.find_last_not_of(" '");
          cell.erase(last + 1);
        }
      }
      return Sorted(std::move(seen));
    };
    EXPECT_EQ(rows(left()), rows(right())) << text;
  }
}

TEST_F(PostgresqlDifferentialStatements, WritesLeaveTheSameRows) {
  for (const std::string text :
       {"INSERT INTO stock (pin, lot) VALUES (' x ', 'trail   ')",
        "INSERT INTO stock (pin, doses, datein) VALUES ('n', 3, {1/5/2004})",
        "INSERT INTO stock (lot, datein, doses) VALUES ('d', {}, -7)",
        "INSERT INTO stock (lot, doses) VALUES ('w', 5.0)",
        "INSERT INTO stock (lot, doses) VALUES ('t', '12')",
        "INSERT INTO stock (lot, doses) VALUES (' 007', ' 12 ')",
        "INSERT INTO stock (lot, pin) VALUES (5, 'number')",
        "INSERT INTO stock (lot, doses) VALUES ('e', 1E3)",
        "INSERT INTO stock (lot, datein) VALUES ('z', {12:00:00 AM})",
        "INSERT INTO dosesadm (pin, sector, dose) VALUES ('A9', 1.50, 2)",
        "INSERT INTO dosesadm (pin, sector, dose) VALUES ('A9', 12345678.125, -0.5)",
        "INSERT INTO pvaccref (vaccine, cost, locactiv) VALUES ('C', 3, .T.)",
        "INSERT INTO pvaccref (vaccine, cost, locactiv) VALUES ('C', 8.33333333333333E-02, .F.)",
        "UPDATE stock SET pin = 'A1  ', doses = doses + 1 WHERE pin = 'A1' AND doses < 100",
        "UPDATE stock SET doses = -doses WHERE lot = 'L1'",
        "UPDATE stock SET doses = 7 / 2 WHERE lot = 'L1'",
        "UPDATE stock SET vaccine = upper(vaccine) WHERE doses < 100",
        "UPDATE stock SET tracking = strtran(lot,'-','+'), datein = expiry WHERE doses < 100",
        "UPDATE stock SET tracking = 'LTX_DLL'WHERE ltrim(rtrim(pin)) ='A1'",
        "UPDATE pvaccref SET locactiv = .T., begin = {2/2/2005} WHERE end IS NULL",
        "UPDATE pvaccref SET cost = cost * 2 WHERE vaccine = 'DTAP'",
        "UPDATE stock SET nosuch = 1",
        "UPDATE stock SET pin = 'x' WHERE nosuch = 1",
        "INSERT INTO stock (lot, pin) VALUES ('only one')",
        "INSERT INTO nosuch (lot) VALUES ('x')",
        "DELETE FROM nosuch",
        "INSERT INTO stock (lot, datein) VALUES ('bad', {13/45/2001})",
        "DELETE FROM stock WHERE pin = 'a1 '",
        "Delete From stock Where lot == 'trail'",
        "DELETE FROM dosesadm WHERE dose IS NULL",
        "UPDATE nextid SET inextid  = 42 WHERE "
        "ltrim(rtrim(upper(ctablename))) = 'DISTRIB' ",
        "DELETE FROM funding"}) {
    ExpectSame(text);
    for (const std::string table : {"stock", "pvaccref", "dosesadm", "nextid"}) {
      SCOPED_TRACE(text);
      ExpectSameRows(table);
    }
  }
}

}  // namespace
}  // namespace lotrix::test

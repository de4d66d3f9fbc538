#include "tests/support/engine_postgresql.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "lotrix/connection.h"

namespace lotrix::test {

namespace {

constexpr Oid kLogicalType = 16;
constexpr Oid kDoubleType = 701;
constexpr Oid kNumericType = 1700;

using Result = std::unique_ptr<PGresult, void (*)(PGresult*)>;

// As SQLite writes the same double.
std::string DoubleText(const std::string& text) {
  std::array<char, 40> buffer{};
  const int size =
      std::snprintf(buffer.data(), buffer.size(), "%.15g", std::strtod(text.c_str(), nullptr));
  std::string written(buffer.data(), static_cast<std::size_t>(size));
  const std::size_t mantissa = written.find_first_not_of("-0123456789");
  if (mantissa == std::string::npos || written[mantissa] == 'e') {
    written.insert(std::min(mantissa, written.size()), ".0");
  }
  return written;
}

std::string NumericText(std::string text) {
  if (text.find('.') == std::string::npos) return text;
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text;
}

std::string Cell(const PGresult* result, int row, int column) {
  if (PQgetisnull(result, row, column) != 0) return "<null>";
  std::string text(PQgetvalue(result, row, column),
                   static_cast<std::size_t>(PQgetlength(result, row, column)));
  switch (PQftype(result, column)) {
    case kLogicalType:
      return text == "t" ? "1" : "0";
    case kDoubleType:
      return DoubleText(text);
    case kNumericType:
      return NumericText(std::move(text));
    default:
      return text;
  }
}

RawPostgresql& Admin() {
  static RawPostgresql admin("postgres", "admin");
  return admin;
}

std::string ConnectionStringOf(const std::string& database) {
  return "Provider=PostgreSQL;Host=" + PostgresqlServer() + ";Database=" + database +
         ";User ID=clerk";
}

// Names are of one process, so that several may share a server.
std::string FreshName() {
  static int databases = 0;
  return "test_" + std::to_string(getpid()) + "_" + std::to_string(++databases);
}

// A database that holds the product's schema and no rows.
const std::string& Template() {
  static const std::string name = [] {
    const std::string fresh = FreshName();
    Admin().Execute("CREATE DATABASE " + fresh + " OWNER clerk");
    Connection connection;
    connection.Open(ConnectionStringOf(fresh));
    connection.CreateSchema();
    return fresh;
  }();
  return name;
}

// Databases that their tests are done with. To make one takes long where files are
// slow, so they are used again, as long as there is nothing but rows to be undone.
std::vector<std::string>& Spare() {
  static std::vector<std::string> names;
  return names;
}

void EndSessions(const std::string& database) {
  Admin().Execute(
      "SELECT pg_terminate_backend(pid, 10000) FROM pg_stat_activity WHERE datname = '" + database +
      "'");
}

// What is made of the tables, in short: other than right after their making once
// anything but rows has changed.
Row Make(RawPostgresql& database) {
  return database.Query(
      "SELECT (SELECT md5(string_agg(concat(oid, relname, relowner, relacl), ',' ORDER BY oid)) "
      "FROM pg_class WHERE oid >= 16384 AND relkind <> 't'),"
      "(SELECT md5(string_agg(concat(attrelid, attname, atttypid, attnotnull, atthasdef), ',' "
      "ORDER BY attrelid, attnum)) FROM pg_attribute WHERE attrelid >= 16384),"
      "(SELECT count(*) FROM pg_proc WHERE oid >= 16384),"
      "(SELECT count(*) FROM pg_trigger), (SELECT count(*) FROM pg_constraint),"
      "(SELECT count(*) FROM pg_namespace), (SELECT count(*) FROM pg_db_role_setting),"
      "(SELECT count(*) FROM pg_stats WHERE schemaname = 'public')")[0];
}

// The tables as they were made; false when more than rows would have to be undone.
bool MakeFresh(RawPostgresql& database) {
  static const Row made = [] {
    RawPostgresql original(Template(), "clerk");
    return Make(original);
  }();
  if (Make(database) != made) return false;
  // A table without its rows is not yet as new: those that come would stand elsewhere.
  std::string used;
  for (const Row& table :
       database.Query("SELECT oid::regclass FROM pg_class WHERE oid >= 16384 AND relkind = 'r' AND "
                      "pg_relation_size(oid) > 0")) {
    used += (used.empty() ? "" : ", ") + table[0];
  }
  if (!used.empty()) database.Execute("TRUNCATE " + used);
  return true;
}

}  // namespace

std::string PostgresqlServer() {
  const char* const server = std::getenv("LOTRIX_TEST_SERVER");
  if (server == nullptr) throw std::runtime_error("LOTRIX_TEST_SERVER names no server");
  return server;
}

RawPostgresql::RawPostgresql(const std::string& database, const std::string& user)
    : connection_(nullptr, PQfinish) {
  const std::string server = PostgresqlServer();
  // A test that waits for what never ends shall fail.
  const std::array keywords{
      "host", "dbname", "user", "client_encoding", "options", static_cast<const char*>(nullptr)};
  const std::array values{server.c_str(),
                          database.c_str(),
                          user.c_str(),
                          "UTF8",
                          "-c datestyle=ISO -c statement_timeout=60s -c lock_timeout=20s "
                          "-c client_min_messages=error",
                          static_cast<const char*>(nullptr)};
  connection_.reset(PQconnectdbParams(keywords.data(), values.data(), 0));
  if (PQstatus(connection_.get()) != CONNECTION_OK) {
    throw std::runtime_error(PQerrorMessage(connection_.get()));
  }
}

void RawPostgresql::Execute(const std::string& sql) { static_cast<void>(Query(sql)); }

std::vector<Row> RawPostgresql::Query(const std::string& sql) {
  const Result result(PQexec(connection_.get(), sql.c_str()), PQclear);
  const ExecStatusType status = PQresultStatus(result.get());
  if (status != PGRES_TUPLES_OK && status != PGRES_COMMAND_OK) {
    throw std::runtime_error(sql.substr(0, 1000) + "\n" + PQerrorMessage(connection_.get()));
  }
  std::vector<Row> rows;
  for (int row = 0; row < PQntuples(result.get()); ++row) {
    Row& cells = rows.emplace_back();
    for (int column = 0; column < PQnfields(result.get()); ++column) {
      cells.push_back(Cell(result.get(), row, column));
    }
  }
  return rows;
}

PostgresqlDatabase::PostgresqlDatabase() {
  // The first one of a process is made by the way.
  const std::string& made = Template();
  while (!Spare().empty()) {
    name_ = Spare().back();
    Spare().pop_back();
    EndSessions(name_);
    if (MakeFresh(Clerk())) return;
    clerk_.reset();
    Admin().Execute("DROP DATABASE " + name_ + " WITH (FORCE)");
  }
  name_ = FreshName();
  Admin().Execute("CREATE DATABASE " + name_ + " OWNER clerk TEMPLATE " + made +
                  " STRATEGY file_copy");
}

PostgresqlDatabase::~PostgresqlDatabase() { Spare().push_back(name_); }

std::string PostgresqlDatabase::ConnectionString() const { return ConnectionStringOf(name_); }

void PostgresqlDatabase::Execute(const std::string& sql) { Clerk().Execute(sql); }

std::vector<Row> PostgresqlDatabase::Query(const std::string& sql) { return Clerk().Query(sql); }

void PostgresqlDatabase::Forbid(const std::string& verb, const std::string& table) {
  Execute("CREATE FUNCTION closed_" + table +
          "() RETURNS trigger LANGUAGE plpgsql AS "
          "'BEGIN RAISE check_violation USING MESSAGE = ''closed''; END';"
          "CREATE TRIGGER closed BEFORE " +
          verb + " ON " + table + " EXECUTE FUNCTION closed_" + table + "()");
}

void PostgresqlDatabase::Allow(const std::string& table) {
  Execute("DROP FUNCTION closed_" + table + " CASCADE");
}

std::vector<std::string> PostgresqlDatabase::TableNames() {
  std::vector<std::string> names;
  for (const Row& row :
       Query("SELECT relname::text COLLATE \"C\" FROM pg_class WHERE relkind IN ('r', 'v', 'm', "
             "'p', 'f') AND relnamespace = 'public'::regnamespace ORDER BY 1")) {
    names.push_back(row[0]);
  }
  return names;
}

std::vector<Row> PostgresqlDatabase::Definitions() {
  std::vector<Row> rows = Query(
      "SELECT c.relname::text COLLATE \"C\", c.relkind::text, coalesce(pg_get_indexdef(c.oid), ''),"
      " (SELECT string_agg(concat_ws(' ', a.attname, format_type(a.atttypid, a.atttypmod),"
      " a.attnotnull, l.collname, pg_get_expr(d.adbin, d.adrelid)), ', ' ORDER BY a.attnum)"
      " FROM pg_attribute a LEFT JOIN pg_collation l ON l.oid = a.attcollation"
      " LEFT JOIN pg_attrdef d ON d.adrelid = a.attrelid AND d.adnum = a.attnum"
      " WHERE a.attrelid = c.oid AND a.attnum > 0 AND NOT a.attisdropped)"
      " FROM pg_class c WHERE c.relnamespace = 'public'::regnamespace ORDER BY 1");
  for (const std::string others :
       {"SELECT conname::text COLLATE \"C\", 'constraint', pg_get_constraintdef(oid) FROM "
        "pg_constraint WHERE connamespace = 'public'::regnamespace ORDER BY 1",
        "SELECT proname::text COLLATE \"C\", 'function', pg_get_functiondef(oid) FROM pg_proc "
        "WHERE pronamespace = 'public'::regnamespace ORDER BY 1",
        "SELECT tgname::text COLLATE \"C\", 'trigger', pg_get_triggerdef(oid) FROM pg_trigger "
        "WHERE NOT tgisinternal ORDER BY 1",
        "SELECT nspname::text COLLATE \"C\", 'schema', nspowner::regrole::text FROM pg_namespace "
        "WHERE nspname !~ '^pg_(toast_)?temp' ORDER BY 1"}) {
    const std::vector<Row> more = Query(others);
    rows.insert(rows.end(), more.begin(), more.end());
  }
  return rows;
}

RawPostgresql& PostgresqlDatabase::Clerk() {
  if (clerk_ == nullptr) clerk_ = std::make_unique<RawPostgresql>(name_, "clerk");
  return *clerk_;
}

}  // namespace lotrix::test

// A test's database on the server that LOTRIX_TEST_SERVER names; with-postgresql
// starts one.
#ifndef LOTRIX_TESTS_SUPPORT_ENGINE_POSTGRESQL_H
#define LOTRIX_TESTS_SUPPORT_ENGINE_POSTGRESQL_H

#include <libpq-fe.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/engine.h"

namespace lotrix::test {

// A connection that is none of the product's.
class RawPostgresql {
 public:
  RawPostgresql(const std::string& database, const std::string& user);

  void Execute(const std::string& sql);
  // As TestDatabase says.
  [[nodiscard]] std::vector<Row> Query(const std::string& sql);

 private:
  std::unique_ptr<PGconn, void (*)(PGconn*)> connection_;
};

// The folder of the server's socket.
[[nodiscard]] std::string PostgresqlServer();

class PostgresqlDatabase final : public TestDatabase {
 public:
  PostgresqlDatabase();
  ~PostgresqlDatabase() override;
  PostgresqlDatabase(const PostgresqlDatabase&) = delete;
  PostgresqlDatabase& operator=(const PostgresqlDatabase&) = delete;

  [[nodiscard]] std::string ConnectionString() const override;
  void Execute(const std::string& sql) override;
  [[nodiscard]] std::vector<Row> Query(const std::string& sql) override;
  [[nodiscard]] std::size_t LongestIndexedText() const override { return 2600; }
  void Forbid(const std::string& verb, const std::string& table) override;
  void Allow(const std::string& table) override;
  [[nodiscard]] std::vector<std::string> TableNames() override;
  [[nodiscard]] std::vector<Row> Definitions() override;

  [[nodiscard]] const std::string& name() const { return name_; }

 private:
  RawPostgresql& Clerk();

  std::string name_;
  std::unique_ptr<RawPostgresql> clerk_;
};

}  // namespace lotrix::test

#endif

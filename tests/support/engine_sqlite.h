// A test's database on SQLite: a file of its own.
#ifndef LOTRIX_TESTS_SUPPORT_ENGINE_SQLITE_H
#define LOTRIX_TESTS_SUPPORT_ENGINE_SQLITE_H

#include <cstddef>
#include <string>
#include <vector>

#include "tests/support/engine.h"

struct sqlite3;

namespace lotrix::test {

class SqliteDatabase final : public TestDatabase {
 public:
  SqliteDatabase();
  ~SqliteDatabase() override;
  SqliteDatabase(const SqliteDatabase&) = delete;
  SqliteDatabase& operator=(const SqliteDatabase&) = delete;

  [[nodiscard]] std::string ConnectionString() const override;
  void Execute(const std::string& sql) override;
  [[nodiscard]] std::vector<Row> Query(const std::string& sql) override;
  [[nodiscard]] std::size_t LongestIndexedText() const override { return std::size_t{1} << 20U; }
  void Forbid(const std::string& verb, const std::string& table) override;
  void Allow(const std::string& table) override;
  [[nodiscard]] std::vector<std::string> TableNames() override;
  [[nodiscard]] std::vector<Row> Definitions() override;

 private:
  [[noreturn]] void Fail() const;

  TemporaryFolder folder_;
  std::string file_;
  sqlite3* database_ = nullptr;
};

}  // namespace lotrix::test

#endif

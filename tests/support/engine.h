// The engines that the suite runs on. The suite is run once for each: the
// variable LOTRIX_TEST_ENGINE names the one, SQLite when it is not set.
#ifndef LOTRIX_TESTS_SUPPORT_ENGINE_H
#define LOTRIX_TESTS_SUPPORT_ENGINE_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace lotrix::test {

using Row = std::vector<std::string>;

// One fresh database, made with the product's own schema, looked at and filled
// by the engine's own means and not by the code under test.
class TestDatabase {
 public:
  virtual ~TestDatabase() = default;
  [[nodiscard]] virtual std::string ConnectionString() const = 0;
  // Statements in the engine's SQL, several with semicolons between.
  virtual void Execute(const std::string& sql) = 0;
  // A query's rows as texts; a Null is "<null>", a logical 0 or 1, a date
  // yyyy-mm-dd, a double with a point or an exponent.
  [[nodiscard]] virtual std::vector<Row> Query(const std::string& sql) = 0;
  // Of an indexed text, the bytes that the engine takes in any case.
  [[nodiscard]] virtual std::size_t LongestIndexedText() const = 0;
  // From now on the engine refuses to run the verb, INSERT or UPDATE, on the
  // table: a constraint is violated.
  virtual void Forbid(const std::string& verb, const std::string& table) = 0;
  // Takes that back.
  virtual void Allow(const std::string& table) = 0;
  // The names of the tables, in order, and all that was made in the database, in
  // words of the engine's own: equal when nobody made, changed or dropped any.
  [[nodiscard]] virtual std::vector<std::string> TableNames() = 0;
  [[nodiscard]] virtual std::vector<Row> Definitions() = 0;
};

enum class Engine { kSqlite, kPostgresql };
[[nodiscard]] Engine TestEngine();

std::unique_ptr<TestDatabase> MakeTestDatabase();
std::unique_ptr<TestDatabase> MakeTestDatabase(Engine engine);

// A folder that goes with the object.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace lotrix::test

#endif

#include "tests/support/engine.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string_view>

#include "tests/support/engine_postgresql.h"
#include "tests/support/engine_sqlite.h"

namespace lotrix::test {

Engine TestEngine() {
  const char* const variable = std::getenv("LOTRIX_TEST_ENGINE");
  const std::string_view name = variable == nullptr ? "sqlite" : variable;
  if (name == "sqlite") return Engine::kSqlite;
  if (name == "postgresql") return Engine::kPostgresql;
  throw std::runtime_error("LOTRIX_TEST_ENGINE names no engine: " + std::string(name));
}

std::unique_ptr<TestDatabase> MakeTestDatabase() { return MakeTestDatabase(TestEngine()); }

std::unique_ptr<TestDatabase> MakeTestDatabase(Engine engine) {
  if (engine == Engine::kSqlite) return std::make_unique<SqliteDatabase>();
  return std::make_unique<PostgresqlDatabase>();
}

TemporaryFolder::TemporaryFolder() {
  path_ = (std::filesystem::temp_directory_path() / "lotrix-test-XXXXXX").string();
  if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no temporary folder: " + path_);
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace lotrix::test

// A database for input to do its worst to, looked at by the engine's own means.
#ifndef LOTRIX_FUZZ_DATABASE_H
#define LOTRIX_FUZZ_DATABASE_H

#include <sqlite3.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "lotrix/connection.h"
#include "tests/support/engine.h"

namespace lotrix::fuzz {

// The sample data of a depot and two providers, so that it is quickly restored.
void AddSmallSample(Connection& connection);

class Database {
 public:
  // With the product's tables, and in them what `fill` puts there.
  explicit Database(const std::function<void(Connection&)>& fill);

  [[nodiscard]] std::string ConnectionString() const;

  // Whether anything was committed since the object was made or last restored.
  [[nodiscard]] bool Changed();

  // Ends the program when the tables and indexes are not those it began with.
  void RequireShape();

  // The number of rows of every table, as it was at first and as it is now.
  using RowCounts = std::map<std::string, std::int64_t>;
  [[nodiscard]] const RowCounts& FirstRows() const { return firstRows_; }
  [[nodiscard]] RowCounts Rows();

  // The tables that hold other rows than at first.
  [[nodiscard]] std::vector<std::string> ChangedTables();

  // Puts everything back.
  void Restore();

 private:
  struct Close {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
  };
  using Handle = std::unique_ptr<sqlite3, Close>;
  using Table = std::vector<test::Row>;

  static Handle Open(const std::string& file);
  static void Copy(sqlite3* from, sqlite3* to);
  [[nodiscard]] Table Query(const std::string& sql);
  [[nodiscard]] std::string DataVersion() { return Query("PRAGMA data_version").at(0).at(0); }

  test::TemporaryFolder folder_;
  Handle watcher_;
  Handle first_;  // as the database was at first
  Table shape_;
  RowCounts firstRows_;
  std::string dataVersion_;
};

}  // namespace lotrix::fuzz

#endif

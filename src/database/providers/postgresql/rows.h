// What a PostgreSQL server answers with: columns, rows and values.
#ifndef LOTRIX_SRC_DATABASE_PROVIDERS_POSTGRESQL_ROWS_H
#define LOTRIX_SRC_DATABASE_PROVIDERS_POSTGRESQL_ROWS_H

#include <libpq-fe.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "lotrix/recordset.h"
#include "src/database/session.h"

namespace lotrix::postgresql {

// The engine's own numbers of its types.
inline constexpr Oid kBool = 16;
inline constexpr Oid kInt8 = 20;
inline constexpr Oid kInt2 = 21;
inline constexpr Oid kInt4 = 23;
inline constexpr Oid kText = 25;
inline constexpr Oid kFloat4 = 700;
inline constexpr Oid kFloat8 = 701;
inline constexpr Oid kBpchar = 1042;
inline constexpr Oid kVarchar = 1043;
inline constexpr Oid kDate = 1082;
inline constexpr Oid kNumeric = 1700;

struct Column {
  std::string name;  // lower case
  Oid type;
  bool ofTable;       // else of an expression
  DataType declared;  // kEmpty when only each value tells it
};

[[nodiscard]] std::vector<Column> ReadColumns(const PGresult* result);

// A value in the server's text form. An expression's logical is 0 or 1 and its
// date a text yyyy-mm-dd. Throws 80040E07 for a date beyond the years 100 to 9999
// in a date column, and 80040E57 for a number beyond the largest double.
[[nodiscard]] ValueView ReadValue(const Column& column, std::string_view text);

// Rows that have been taken off the server, one cell after another.
class StoredRows {
 public:
  // The only row of `row`.
  void Add(const PGresult* row);
  [[nodiscard]] std::size_t cells() const { return cells_.size(); }
  [[nodiscard]] bool IsNull(std::size_t cell) const { return cells_[cell].isNull; }
  [[nodiscard]] std::string_view Text(std::size_t cell) const;

 private:
  struct Cell {
    std::size_t end;
    bool isNull;
  };
  std::string bytes_;
  std::vector<Cell> cells_;
};

}  // namespace lotrix::postgresql

#endif

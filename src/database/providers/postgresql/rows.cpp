#include "src/database/providers/postgresql/rows.h"

#include <charconv>
#include <system_error>

#include "src/database/providers/values.h"
#include "src/errors/raise_error.h"
#include "src/platform/text.h"

namespace lotrix::postgresql {

namespace {

DataType DeclaredAs(Oid type) {
  switch (type) {
    case kText:
    case kVarchar:
    case kBpchar:
      return DataType::kVarWChar;
    case kDate:
      return DataType::kDBDate;
    case kBool:
      return DataType::kBoolean;
    case kInt2:
    case kInt4:
    case kInt8:
      return DataType::kInteger;
    case kFloat4:
    case kFloat8:
      return DataType::kDouble;
    default:
      return DataType::kEmpty;
  }
}

std::int64_t ReadWhole(std::string_view text) {
  std::int64_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

double ReadDouble(std::string_view text) {
  double number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  if (read.ec != std::errc::result_out_of_range) return number;
  // One too small is 0; the server writes it with a nought before the point.
  if (text.starts_with("0.") || text.starts_with("-0.")) return 0;
  RaiseEngineError(EngineError::kValueOutOfRange, "A number is out of range.");
}

// A column of any numbers holds 5.0 as the whole number 5; of an expression the
// point tells that it is none.
ValueView ReadNumeric(std::string_view text, bool ofTable) {
  const std::size_t point = text.find('.');
  const bool hasFraction =
      point != std::string_view::npos &&
      (!ofTable || text.find_first_not_of('0', point + 1) != std::string_view::npos);
  if (!hasFraction) {
    const std::string_view whole = text.substr(0, point);
    const char* const end = whole.data() + whole.size();
    std::int64_t number = 0;
    const auto read = std::from_chars(whole.data(), end, number);
    if (read.ec == std::errc() && read.ptr == end) return number;
  }
  return ReadDouble(text);
}

}  // namespace

std::vector<Column> ReadColumns(const PGresult* result) {
  std::vector<Column> columns;
  for (int column = 0; column < PQnfields(result); ++column) {
    const Oid type = PQftype(result, column);
    const bool ofTable = PQftable(result, column) != InvalidOid;
    columns.push_back({LowerAscii(PQfname(result, column)), type, ofTable,
                       ofTable ? DeclaredAs(type) : DataType::kEmpty});
  }
  return columns;
}

ValueView ReadValue(const Column& column, std::string_view text) {
  switch (column.type) {
    case kInt2:
    case kInt4:
    case kInt8:
      return ReadWhole(text);
    case kNumeric:
      return ReadNumeric(text, column.ofTable);
    case kFloat4:
    case kFloat8:
      return ReadDouble(text);
    case kBool:
      if (column.ofTable) return text == "t";
      return std::int64_t{text == "t" ? 1 : 0};
    case kDate:
      if (column.ofTable) return ReadStoredDate(text);
      return text;
    default:
      return text;
  }
}

void StoredRows::Add(const PGresult* row) {
  for (int column = 0; column < PQnfields(row); ++column) {
    const bool isNull = PQgetisnull(row, 0, column) != 0;
    if (!isNull) {
      bytes_.append(PQgetvalue(row, 0, column),
                    static_cast<std::size_t>(PQgetlength(row, 0, column)));
    }
    cells_.push_back({bytes_.size(), isNull});
  }
}

std::string_view StoredRows::Text(std::size_t cell) const {
  const std::size_t begin = cell == 0 ? 0 : cells_[cell - 1].end;
  return std::string_view(bytes_).substr(begin, cells_[cell].end - begin);
}

}  // namespace lotrix::postgresql

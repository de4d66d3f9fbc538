// The table that every read returns.
#ifndef LOTRIX_RESULT_SET_H
#define LOTRIX_RESULT_SET_H

#include <cstdint>
#include <memory>
#include <string>

#include "lotrix/collection.h"
#include "lotrix/text.h"

namespace lotrix {

// Rows and columns are counted from 1. Data is a collection of rows, each a
// collection of cells (a text, or Null); rows, cells and headers are stored under
// the keys that are their numbers in decimal. The two counts are plain
// properties: they are kept in step with the cells only where a member says so.
// Copies share the collections. Not for more than one thread at a time.
//
// Members that need Data throw 91 while it is nothing. No member has a handler of
// its own: what fails inside comes out as it is, and the table stays as far as
// the member got.
class cResultSet {
 public:
  cResultSet() = default;

  [[nodiscard]] std::int32_t Cols() const { return cols_; }
  void Cols(std::int32_t value) { cols_ = value; }
  [[nodiscard]] std::int32_t Rows() const { return rows_; }
  void Rows(std::int32_t value) { rows_ = value; }
  // Handed out and taken by reference.
  [[nodiscard]] const std::shared_ptr<Collection>& Data() const { return data_; }
  void Data(std::shared_ptr<Collection> value) { data_ = std::move(value); }
  [[nodiscard]] const std::shared_ptr<Collection>& Headers() const { return headers_; }
  void Headers(std::shared_ptr<Collection> value) { headers_ = std::move(value); }

  // Back to the state of a new table.
  void CLEAR();

  // Throws 50000 "Invalid Row Specified" (plus 80040000 hexadecimal) for a row
  // beyond the last, 5 for a row or cell whose key is not there. A column beyond
  // the row's cells is added under its key. The row moves to the last position.
  void SetValue(std::int32_t aRow, std::int32_t aCol, const Text& aValue);

  // A Null cell is the empty text. Throws 50000, 50001 "Invalid Col Specified",
  // or 5 for a key that is not there.
  [[nodiscard]] std::string GetValue(std::int32_t aRow, std::int32_t aCol) const;

  // Counts Rows up and appends a row of Cols empty texts, or the given one as it
  // is.
  void AddRow();
  void AddRow(std::shared_ptr<Collection> aCollection);

  // Removes the row at that position and numbers the rest anew. Rows is counted
  // down even when there is no such row.
  void DeleteRow(std::int32_t aRow);

 private:
  // Held by whoever uses it: another program's list may be taken away by what its own
  // members do.
  [[nodiscard]] std::shared_ptr<Collection> RequireData() const;
  void CountRow();

  std::int32_t cols_ = 0;
  std::int32_t rows_ = 0;
  std::shared_ptr<Collection> data_;
  std::shared_ptr<Collection> headers_;
};

}  // namespace lotrix

#endif

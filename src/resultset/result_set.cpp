#include "lotrix/result_set.h"

#include <limits>
#include <utility>

#include "src/errors/raise_error.h"
#include "src/platform/numbers.h"
#include "src/platform/values.h"

namespace lotrix {

namespace {

std::string Key(std::int32_t number) { return NumberText(std::int64_t{number}); }

std::shared_ptr<Collection> RequireRow(const Value& item) {
  const auto* const row = std::get_if<std::shared_ptr<Collection>>(&item);
  if (row == nullptr) RaiseRuntimeError(RuntimeError::kTypeMismatch);
  if (*row == nullptr) RaiseRuntimeError(RuntimeError::kObjectNotSet);
  return *row;
}

}  // namespace

void cResultSet::CLEAR() {
  Cols(0);
  Rows(0);
  Data(nullptr);
  Headers(nullptr);
}

void cResultSet::SetValue(std::int32_t aRow, std::int32_t aCol, const Text& aValue) {
  const std::shared_ptr<Collection> data = RequireData();
  if (aRow > data->Count()) RaiseError(kInvalidRow);
  const std::shared_ptr<Collection> row = RequireRow(data->Item(Key(aRow)));
  if (aCol <= row->Count()) row->Remove(Key(aCol));
  row->Add(aValue.str(), Key(aCol));
  data->Remove(Key(aRow));
  data->Add(row, Key(aRow));
}

std::string cResultSet::GetValue(std::int32_t aRow, std::int32_t aCol) const {
  const std::shared_ptr<Collection> data = RequireData();
  if (aRow > data->Count()) RaiseError(kInvalidRow);
  const std::shared_ptr<Collection> row = RequireRow(data->Item(Key(aRow)));
  if (aCol > row->Count()) RaiseError(kInvalidCol);
  const Value cell = row->Item(Key(aCol));
  return std::holds_alternative<Null>(cell) ? std::string() : ToText(cell);
}

void cResultSet::AddRow(std::shared_ptr<Collection> aCollection) {
  CountRow();
  const std::shared_ptr<Collection> data = RequireData();
  data->Add(std::move(aCollection), NumberText(std::int64_t{data->Count()} + 1));
}

void cResultSet::AddRow() {
  CountRow();
  const std::shared_ptr<Collection> data = RequireData();
  const std::int64_t row = std::int64_t{data->Count()} + 1;
  data->Add(std::make_shared<Collection>(), NumberText(row));
  for (std::int32_t column = 1; column <= Cols(); ++column) {
    SetValue(static_cast<std::int32_t>(row), column, "");
  }
}

void cResultSet::DeleteRow(std::int32_t aRow) {
  if (Rows() == std::numeric_limits<std::int32_t>::min()) {
    RaiseRuntimeError(RuntimeError::kOverflow);
  }
  Rows(Rows() - 1);
  const std::shared_ptr<Collection> data = RequireData();
  auto kept = std::make_shared<Collection>();
  std::int32_t position = 0;
  for (const Value& row : *data) {
    if (++position != aRow) kept->AddNumbered(row);
  }
  Data(std::move(kept));
}

std::shared_ptr<Collection> cResultSet::RequireData() const {
  if (data_ == nullptr) RaiseRuntimeError(RuntimeError::kObjectNotSet);
  return data_;
}

void cResultSet::CountRow() {
  if (Rows() == std::numeric_limits<std::int32_t>::max()) {
    RaiseRuntimeError(RuntimeError::kOverflow);
  }
  Rows(Rows() + 1);
}

}  // namespace lotrix

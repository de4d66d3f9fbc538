#include "src/resultset/recordset_conversion.h"

#include <memory>
#include <string_view>
#include <utility>

#include "src/database/recordset_view.h"
#include "src/platform/dates.h"
#include "src/platform/numbers.h"
#include "src/platform/text.h"

namespace lotrix {

namespace {

void AddCell(Collection& row, const ValueView& field) {
  struct {
    Collection& row;
    void operator()(Null) const { row.AddNumbered(Null{}); }
    void operator()(bool logical) const { row.AddNumberedText(logical ? "True" : "False"); }
    void operator()(std::int64_t number) const { row.AddNumberedText(NumberText(number)); }
    void operator()(double number) const { row.AddNumberedText(NumberText(number)); }
    void operator()(Date date) const { row.AddNumberedText(ResultDateText(date)); }
    void operator()(std::string_view text) const {
      const std::string_view trimmed = TrimBlanks(text);
      row.AddNumberedText(trimmed.empty() ? std::string_view(" ") : trimmed);
    }
  } const addCell{row};
  std::visit(addCell, field);
}

}  // namespace

cResultSet RecordsetToResultSet(Recordset& recordset) {
  const Fields fields = recordset.Fields();
  const std::int32_t columns = fields.Count();
  auto headers = std::make_shared<Collection>();
  for (std::int32_t column = 0; column < columns; ++column) {
    headers->AddNumbered(fields.Item(column).Name());
  }
  auto data = std::make_shared<Collection>();
  for (; !recordset.EndOfFile(); recordset.MoveNext()) {
    auto row = std::make_shared<Collection>();
    row->Reserve(static_cast<std::size_t>(columns));
    for (std::int32_t column = 0; column < columns; ++column) {
      AddCell(*row, RecordsetView::CurrentValue(recordset, column));
    }
    data->AddNumbered(std::move(row));
  }
  cResultSet result;
  result.Rows(data->Count());
  result.Cols(columns);
  result.Data(std::move(data));
  result.Headers(std::move(headers));
  return result;
}

void CloseRecordset(Recordset& recordset) {
  if (recordset.State() == ObjectState::kOpen) recordset.Close();
}

}  // namespace lotrix

#include "lotrix/recordset.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "lotrix/connection.h"
#include "src/database/recordset_view.h"
#include "src/database/session.h"
#include "src/errors/raise_error.h"
#include "src/platform/text.h"

namespace lotrix {

namespace {

Value ToValue(const ValueView& view) {
  return std::visit(
      [](const auto& held) -> Value {
        if constexpr (std::is_same_v<std::decay_t<decltype(held)>, std::string_view>) {
          return std::string(held);
        } else {
          return held;
        }
      },
      view);
}

DataType TypeOf(const ValueView& view) {
  if (const auto* const whole = std::get_if<std::int64_t>(&view)) {
    const bool isLong = *whole >= std::numeric_limits<std::int32_t>::min() &&
                        *whole <= std::numeric_limits<std::int32_t>::max();
    return isLong ? DataType::kInteger : DataType::kBigInt;
  }
  if (std::holds_alternative<double>(view)) return DataType::kDouble;
  if (std::holds_alternative<bool>(view)) return DataType::kBoolean;
  if (std::holds_alternative<Date>(view)) return DataType::kDBDate;
  return DataType::kVarWChar;
}

}  // namespace

ValueView ToView(const Value& value) {
  return std::visit(
      [](const auto& held) -> ValueView {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, std::string>) {
          return std::string_view(held);
        } else if constexpr (std::is_constructible_v<ValueView, Held>) {
          return held;
        } else {
          return Null{};
        }
      },
      value);
}

const std::string& Field::Name() const {
  recordset_->RequireOpen();
  return recordset_->cursor_->ColumnName(index_);
}

DataType Field::Type() const { return RecordsetView::Type(*recordset_, index_); }

Value Field::Value() const { return ToValue(RecordsetView::Value(*recordset_, index_)); }

std::int32_t Fields::Count() const {
  recordset_->RequireOpen();
  return recordset_->cursor_->ColumnCount();
}

Field Fields::Item(std::int32_t index) const {
  if (index < 0 || index >= Count()) RaiseRuntimeError(RuntimeError::kSubscriptOutOfRange);
  return {*recordset_, index};
}

Field Fields::Item(std::string_view name) const {
  const std::int32_t count = Count();
  for (std::int32_t index = 0; index < count; ++index) {
    if (EqualWithoutCase(recordset_->cursor_->ColumnName(index), name)) return {*recordset_, index};
  }
  RaiseRuntimeError(RuntimeError::kInvalidArgument);
}

Recordset::Recordset() = default;
Recordset::~Recordset() { Drop(); }

void Recordset::Open(const Text& source, Connection& connection, CursorType cursor, LockType lock,
                     CommandType options) {
  Open(Statement::Whole(source), connection, cursor, lock, options);
}

void Recordset::Open(const Statement& source, Connection& connection, CursorType cursor,
                     LockType lock, CommandType options) {
  Session& session = RequireReady(connection, source);
  std::unique_ptr<Cursor> opened;
  connection.UnlessLost([&] { opened = session.OpenRecordset(source, cursor, lock, options); });
  Take(std::move(opened), connection);
}

void Recordset::Execute(const Statement& statement, Connection& connection) {
  Session& session = RequireReady(connection, statement);
  std::unique_ptr<Cursor> cursor;
  connection.UnlessLost([&] { cursor = session.Run(statement); });
  Take(std::move(cursor), connection);
}

Session& Recordset::RequireReady(Connection& connection, const Statement& statement) const {
  if (connection_ != nullptr) RaiseRuntimeError(RuntimeError::kObjectIsOpen);
  Session& session = connection.OpenSession();
  RequireShape(statement);
  return session;
}

void Recordset::Take(std::unique_ptr<Cursor> cursor, Connection& connection) {
  if (cursor == nullptr) return;
  connection.recordsets_.push_back(this);
  connection_ = &connection;
  cursor_ = std::move(cursor);
}

void Recordset::Close() {
  RequireOpen();
  Drop();
}

ObjectState Recordset::State() const noexcept {
  return connection_ == nullptr ? ObjectState::kClosed : ObjectState::kOpen;
}

std::int32_t Recordset::RecordCount() {
  RequireOpen();
  const std::int64_t count = CountRecords();
  if (count > std::numeric_limits<std::int32_t>::max()) {
    RaiseRuntimeError(RuntimeError::kOverflow);
  }
  return static_cast<std::int32_t>(count);
}

std::int64_t Recordset::CountRecords() {
  try {
    if (const auto known = cursor_->RecordCount()) return *known;
    if (!fetched_) FetchAhead();
  } catch (...) {
    // Half of the records are no answer.
    DropAll();
    throw;
  }
  const auto columns = static_cast<std::size_t>(cursor_->ColumnCount());
  return passed_ + static_cast<std::int64_t>((ahead_.size() - nextAhead_) / columns);
}

void Recordset::FetchAhead() {
  const int columns = cursor_->ColumnCount();
  for (; !cursor_->AtEnd(); cursor_->Next()) {
    for (int column = 0; column < columns; ++column) {
      ahead_.push_back(ToValue(cursor_->ColumnValue(column)));
    }
  }
  fetched_ = true;
}

bool Recordset::EndOfFile() const {
  RequireOpen();
  return fetched_ ? nextAhead_ == ahead_.size() : cursor_->AtEnd();
}

void Recordset::MoveNext() {
  RequireRecord();
  if (passed_ == std::numeric_limits<std::int32_t>::max()) {
    RaiseRuntimeError(RuntimeError::kOverflow);
  }
  if (fetched_) {
    nextAhead_ += static_cast<std::size_t>(cursor_->ColumnCount());
  } else {
    try {
      cursor_->Next();
    } catch (...) {
      // Stepping on would run the query once more.
      DropAll();
      throw;
    }
  }
  ++passed_;
}

Fields Recordset::Fields() const {
  RequireOpen();
  return lotrix::Fields(*this);
}

void Recordset::Drop() noexcept {
  if (connection_ != nullptr) std::erase(connection_->recordsets_, this);
  connection_ = nullptr;
  cursor_.reset();
  passed_ = 0;
  ahead_ = {};
  nextAhead_ = 0;
  fetched_ = false;
}

void Recordset::DropAll() noexcept {
  Connection* const connection = connection_;
  Drop();
  connection->DropIfLost();
}

void Recordset::RequireOpen() const {
  if (connection_ == nullptr) RaiseRuntimeError(RuntimeError::kObjectIsClosed);
}

void Recordset::RequireRecord() const {
  if (EndOfFile()) RaiseRuntimeError(RuntimeError::kNoCurrentRecord);
}

DataType RecordsetView::Type(const Recordset& recordset, std::int32_t column) {
  recordset.RequireOpen();
  const DataType declared = recordset.cursor_->DeclaredType(column);
  if (declared != DataType::kEmpty) return declared;
  return recordset.EndOfFile() ? DataType::kVarWChar : TypeOf(Value(recordset, column));
}

ValueView RecordsetView::Value(const Recordset& recordset, std::int32_t column) {
  recordset.RequireRecord();
  return CurrentValue(recordset, column);
}

ValueView RecordsetView::CurrentValue(const Recordset& recordset, std::int32_t column) {
  if (!recordset.fetched_) return recordset.cursor_->ColumnValue(column);
  return ToView(recordset.ahead_[recordset.nextAhead_ + static_cast<std::size_t>(column)]);
}

}  // namespace lotrix

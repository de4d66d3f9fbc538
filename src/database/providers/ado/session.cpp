#include "src/database/providers/ado/session.h"

#include <optional>
#include <utility>
#include <vector>

#include "src/errors/raise_error.h"
#include "src/platform/automation.h"
#include "src/platform/text.h"
#include "src/platform/values.h"

namespace lotrix::ado {

namespace {

using automation::Arguments;
using automation::Call;
using automation::FromLong;
using automation::FromObject;
using automation::FromText;
using automation::Get;
using automation::Held;
using automation::MissingArgument;
using automation::ObjectIn;
using automation::OwnedVariant;
using automation::Put;

Held<IDispatch> Create(const wchar_t* programId) {
  CLSID classId;
  void* created = nullptr;
  HRESULT result = CLSIDFromProgID(programId, &classId);
  if (SUCCEEDED(result)) {
    result = CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &created);
  }
  if (result == CO_E_CLASSSTRING || result == REGDB_E_CLASSNOTREG) {
    RaiseRuntimeError(RuntimeError::kUnknownProvider);
  }
  if (FAILED(result)) automation::RaiseHresult(result);
  return Held<IDispatch>(static_cast<IDispatch*>(created));
}

std::int32_t LongOf(const OwnedVariant& variant) {
  return lotrix::ToLong(automation::ToValue(*variant));
}

bool IsOpenObject(IDispatch* object) {
  return LongOf(Get(object, L"State")) == static_cast<std::int32_t>(ObjectState::kOpen);
}

// Numbers that a double cannot hold exactly, and dates with a time of day, are
// taken as the texts that automation makes of them.
Value FieldValue(const OwnedVariant& variant, DataType type) {
  const VARTYPE stored = variant->vt;
  const bool asText =
      stored == VT_CY || stored == VT_DECIMAL || (stored == VT_DATE && type != DataType::kDBDate);
  if (!asText) return automation::ToValue(*variant);
  return automation::ToEnglishText(*variant);
}

class AdoCursor final : public Cursor {
 public:
  explicit AdoCursor(Held<IDispatch> recordset) : recordset_(std::move(recordset)) {
    const Held<IDispatch> fields = ObjectIn(*Get(recordset_.get(), L"Fields"));
    const std::int32_t count = LongOf(Get(fields.get(), L"Count"));
    for (std::int32_t i = 0; i < count; ++i) {
      Column column;
      column.field = ObjectIn(*Get(fields.get(), L"Item", Arguments(FromLong(i))));
      column.name =
          LowerAscii(lotrix::ToText(automation::ToValue(*Get(column.field.get(), L"Name"))));
      column.type = static_cast<DataType>(LongOf(Get(column.field.get(), L"Type")));
      columns_.push_back(std::move(column));
    }
    ReadRow();
  }
  ~AdoCursor() override {
    try {
      if (IsOpenObject(recordset_.get())) Call(recordset_.get(), L"Close");
    } catch (...) {
      // It goes with its last reference, whatever it says now.
    }
  }

  [[nodiscard]] int ColumnCount() const override { return static_cast<int>(columns_.size()); }
  [[nodiscard]] const std::string& ColumnName(int column) const override { return At(column).name; }
  [[nodiscard]] DataType DeclaredType(int column) const override { return At(column).type; }
  [[nodiscard]] ValueView ColumnValue(int column) const override {
    return ToView(StoredValue(At(column)));
  }
  [[nodiscard]] bool AtEnd() const override { return atEnd_; }
  void Next() override {
    Call(recordset_.get(), L"MoveNext");
    ReadRow();
  }
  std::optional<std::int64_t> RecordCount() override {
    return LongOf(Get(recordset_.get(), L"RecordCount"));
  }

 private:
  struct Column {
    Held<IDispatch> field;
    std::string name;
    DataType type = DataType::kEmpty;
    // Of the current row, once it was asked for: a field that cannot be read hinders
    // nobody who does not want it.
    mutable std::optional<Value> value;
  };

  static const Value& StoredValue(const Column& column) {
    if (!column.value) column.value = FieldValue(Get(column.field.get(), L"Value"), column.type);
    return *column.value;
  }

  [[nodiscard]] const Column& At(int column) const {
    return columns_[static_cast<std::size_t>(column)];
  }

  void ReadRow() {
    atEnd_ = lotrix::ToLogical(automation::ToValue(*Get(recordset_.get(), L"EOF")));
    for (Column& column : columns_) column.value.reset();
  }

  Held<IDispatch> recordset_;
  std::vector<Column> columns_;
  bool atEnd_ = true;
};

std::unique_ptr<Cursor> CursorOn(Held<IDispatch> recordset) {
  // A statement that returns no rows leaves its recordset closed.
  if (recordset == nullptr || !IsOpenObject(recordset.get())) return nullptr;
  return std::make_unique<AdoCursor>(std::move(recordset));
}

class AdoSession final : public Session {
 public:
  explicit AdoSession(std::shared_ptr<void> connection) : connection_(std::move(connection)) {}

  // The object goes with its last reference, which may be the client's.
  void Close() override { Call(object(), L"Close"); }

  std::unique_ptr<Cursor> Run(const Statement& statement) override {
    constexpr std::int32_t kUnspecifiedOptions = -1;
    const OwnedVariant recordset = Call(
        object(), L"Execute",
        Arguments(FromText(statement.text()), MissingArgument(), FromLong(kUnspecifiedOptions)));
    return CursorOn(ObjectIn(*recordset));
  }

  std::unique_ptr<Cursor> OpenRecordset(const Statement& statement, CursorType cursor,
                                        LockType lock, CommandType options) override {
    Held<IDispatch> recordset = Create(L"ADODB.Recordset");
    Call(recordset.get(), L"Open",
         Arguments(FromText(statement.text()), FromObject(object()),
                   FromLong(static_cast<std::int32_t>(cursor)),
                   FromLong(static_cast<std::int32_t>(lock)),
                   FromLong(static_cast<std::int32_t>(options))));
    return CursorOn(std::move(recordset));
  }

  [[nodiscard]] bool IsOpen() const override {
    try {
      return IsOpenObject(object());
    } catch (...) {
      return false;
    }
  }

  [[nodiscard]] bool HasKeyTransactions() const override { return false; }
  void Begin() override {
    Call(object(), L"BeginTrans");
    inTransaction_ = true;
  }
  void Commit() override {
    Call(object(), L"CommitTrans");
    inTransaction_ = false;
  }
  void Rollback() override {
    inTransaction_ = false;
    Call(object(), L"RollbackTrans");
  }
  [[nodiscard]] bool InTransaction() const override { return inTransaction_; }

  // Another program's database has the tables that it has.
  void CreateSchema() override {
    RaiseEngineError(EngineError::kNotPermitted,
                     "The tables of this provider's database are not made here.");
  }

 private:
  [[nodiscard]] IDispatch* object() const { return static_cast<IDispatch*>(connection_.get()); }

  std::shared_ptr<void> connection_;
  bool inTransaction_ = false;
};

}  // namespace

std::unique_ptr<Session> Open(const Opening& opening) {
  if (opening.object == nullptr) {
    opening.object = std::shared_ptr<void>(Create(L"ADODB.Connection").release(), [](void* object) {
      static_cast<IDispatch*>(object)->Release();
    });
  }
  auto* const connection = static_cast<IDispatch*>(opening.object.get());
  Put(connection, L"ConnectionString", FromText(opening.connectionString));
  Put(connection, L"Mode", FromLong(static_cast<std::int32_t>(opening.mode)));
  constexpr std::int32_t kUnspecifiedOptions = -1;
  Call(connection, L"Open",
       Arguments(FromText(""), FromText(opening.userId), FromText(opening.password),
                 FromLong(kUnspecifiedOptions)));
  return std::make_unique<AdoSession>(opening.object);
}

}  // namespace lotrix::ado

#include "com/result_set.h"

#include <utility>

#include "com/automation_object.h"
#include "com/collection.h"
#include "src/errors/raise_error.h"

namespace lotrix::com {

namespace {

using automation::FromBstr;
using automation::FromLong;
using automation::FromObject;
using automation::FromText;
using automation::Held;

// The dispatch identifiers of the result table.
enum ResultSetId : std::uint32_t {
  kHeaders = 0x68030000,
  kData = 0x68030001,
  kRows = 0x68030002,
  kCols = 0x68030003,
  kClear = 0x60030006,
  kSetValue = 0x60030007,
  kGetValue = 0x60030008,
  kAddRow = 0x60030009,
  kDeleteRow = 0x6003000A,
};

_Collection* AsCollection(Held<IDispatch> object) {
  if (object == nullptr) return nullptr;
  void* collection = nullptr;
  // A client's own object has no vtable of this library's; late-bound it is reached
  // all the same.
  const HRESULT result = object->QueryInterface(IID__Collection, &collection);
  if (FAILED(result)) RaiseRuntimeError(RuntimeError::kTypeMismatch);
  return static_cast<_Collection*>(collection);
}

class ResultSetObject final : public AutomationObject<_cResultSet> {
 public:
  explicit ResultSetObject(cResultSet table) : table_(std::move(table)) {}

  STDMETHODIMP get_Cols(LONG* result) override {
    return Answered([&] { FreshOut(result) = table_.Cols(); });
  }
  STDMETHODIMP put_Cols(LONG value) override {
    return Answered([&] { table_.Cols(value); });
  }
  STDMETHODIMP get_Rows(LONG* result) override {
    return Answered([&] { FreshOut(result) = table_.Rows(); });
  }
  STDMETHODIMP put_Rows(LONG value) override {
    return Answered([&] { table_.Rows(value); });
  }
  STDMETHODIMP get_Data(_Collection** result) override {
    return Answered([&] {
      _Collection*& answer = FreshOut(result);
      answer = AsCollection(ObjectOf(table_.Data()));
    });
  }
  STDMETHODIMP putref_Data(IDispatch* value) override {
    return Answered([&] { table_.Data(CollectionOf(value)); });
  }
  STDMETHODIMP get_Headers(_Collection** result) override {
    return Answered([&] {
      _Collection*& answer = FreshOut(result);
      answer = AsCollection(ObjectOf(table_.Headers()));
    });
  }
  STDMETHODIMP putref_Headers(IDispatch* value) override {
    return Answered([&] { table_.Headers(CollectionOf(value)); });
  }
  STDMETHODIMP CLEAR() override {
    return Answered([&] { table_.CLEAR(); });
  }
  STDMETHODIMP SetValue(LONG* aRow, LONG* aCol, BSTR* aValue) override {
    return Answered(
        [&] { table_.SetValue(PointedTo(aRow), PointedTo(aCol), FromBstr(PointedTo(aValue))); });
  }
  STDMETHODIMP GetValue(LONG* aRow, LONG* aCol, BSTR* result) override {
    return Answered([&] {
      BSTR& answer = FreshOut(result);
      answer = automation::ToBstr(table_.GetValue(PointedTo(aRow), PointedTo(aCol)));
    });
  }
  STDMETHODIMP AddRow(VARIANT* aCollection) override {
    return Answered([&] { AddRowGiven(aCollection); });
  }
  STDMETHODIMP DeleteRow(LONG* aRow) override {
    return Answered([&] { table_.DeleteRow(PointedTo(aRow)); });
  }

 private:
  [[nodiscard]] const GUID& Identifier() const override { return IID__cResultSet; }
  [[nodiscard]] std::span<const MemberDescription> Table() const override {
    return ResultSetMembers();
  }

  void Run(const MemberDescription& member, Given given, VARIANT& result) override {
    const bool reads = member.kind == MemberKind::kPropertyGet;
    switch (static_cast<ResultSetId>(member.dispatchId)) {
      case kCols:
        if (!reads) return table_.Cols(LongIn(*given[0]));
        return FromLong(table_.Cols()).MoveTo(result);
      case kRows:
        if (!reads) return table_.Rows(LongIn(*given[0]));
        return FromLong(table_.Rows()).MoveTo(result);
      case kData:
        if (!reads) return table_.Data(CollectionOf(ObjectArgument(*given[0]).get()));
        return FromObject(ObjectOf(table_.Data()).get()).MoveTo(result);
      case kHeaders:
        if (!reads) return table_.Headers(CollectionOf(ObjectArgument(*given[0]).get()));
        return FromObject(ObjectOf(table_.Headers()).get()).MoveTo(result);
      case kClear:
        return table_.CLEAR();
      case kSetValue: {
        const std::int32_t row = LongIn(*given[0]);
        const std::int32_t column = LongIn(*given[1]);
        return table_.SetValue(row, column, TextIn(*given[2]));
      }
      case kGetValue: {
        const std::int32_t row = LongIn(*given[0]);
        return FromText(table_.GetValue(row, LongIn(*given[1]))).MoveTo(result);
      }
      case kAddRow:
        return AddRowGiven(given[0]);
      case kDeleteRow:
        return table_.DeleteRow(LongIn(*given[0]));
    }
  }

  void AddRowGiven(const VARIANT* row) {
    if (row == nullptr || automation::IsMissing(*row)) return table_.AddRow();
    table_.AddRow(CollectionOf(ObjectArgument(*row).get()));
  }

  cResultSet table_;
};

}  // namespace

Held<_cResultSet> NewResultSetObject(cResultSet table) {
  return Held<_cResultSet>(new ResultSetObject(std::move(table)));
}

}  // namespace lotrix::com

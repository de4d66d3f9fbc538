// A client built from the generated header, which calls through the vtable.
//   early_bound CONNECTION-STRING TODAY
#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "automation_client.h"
#include "lotrix_h.h"

namespace {

using lotrix_client::Bstr;
using lotrix_client::Check;
using lotrix_client::CheckResult;
using lotrix_client::Com;
using lotrix_client::Missing;
using lotrix_client::Need;
using lotrix_client::Variant;

constexpr HRESULT Rule(long code) { return static_cast<HRESULT>(0x80040000L + code); }
// How numbers below 65536 travel.
constexpr HRESULT Plain(long number) { return static_cast<HRESULT>(0x800A0000L + number); }

void CheckFailure(const std::string& name, HRESULT result, HRESULT expected,
                  const std::string& source, const std::string& description) {
  Com<IErrorInfo> information;
  Bstr gotSource;
  Bstr gotDescription;
  if (GetErrorInfo(0, information.Receive()) == S_OK) {
    information->GetSource(gotSource.Receive());
    information->GetDescription(gotDescription.Receive());
  }
  Check(name, lotrix_client::Hex(result) + " | " + gotSource.utf8() + " | " + gotDescription.utf8(),
        lotrix_client::Hex(expected) + " | " + source + " | " + description);
}

// Where the description is not a fixed text.
void CheckFailure(const std::string& name, HRESULT result, HRESULT expected,
                  const std::string& source) {
  Com<IErrorInfo> information;
  Bstr gotSource;
  Bstr description;
  if (GetErrorInfo(0, information.Receive()) == S_OK) {
    information->GetSource(gotSource.Receive());
    information->GetDescription(description.Receive());
  }
  const std::string described = description.view().empty() ? "not described" : "described";
  Check(name, lotrix_client::Hex(result) + " | " + gotSource.utf8() + " | " + described,
        lotrix_client::Hex(expected) + " | " + source + " | described");
}

template <class Interface>
void Create(Com<Interface>& object, const CLSID& classId, const IID& interfaceId) {
  Need(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, interfaceId, object.ReceiveAny()),
       "an object");
}

std::string Cell(_cResultSet* table, LONG row, LONG column) {
  Bstr text;
  const HRESULT result = table->GetValue(&row, &column, text.Receive());
  return FAILED(result) ? "failed " + lotrix_client::Hex(result) : text.utf8();
}

std::string ItemText(_Collection* collection, Variant index) {
  Variant item;
  const HRESULT result = collection->get_Item(index.get(), item.Receive());
  return FAILED(result) ? "failed " + lotrix_client::Hex(result) : item.Shown();
}

LONG CountOf(_Collection* collection) {
  LONG count = -1;
  Need(collection->get_Count(&count), "a count");
  return count;
}

// The one cell of a query of one, asked on the service's own connection.
std::string Stored(_cLotrix* service, const std::wstring& query) {
  Com<IDispatch> connection;
  Need(service->get_Connection(connection.Receive()), "the connection");
  const auto call = [](IDispatch* object, const wchar_t* name, WORD flags, Variant* argument) {
    auto* names = const_cast<wchar_t*>(name);
    DISPID id = DISPID_UNKNOWN;
    Need(object->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id), "a name");
    DISPPARAMS parameters = {argument != nullptr ? argument->get() : nullptr, nullptr,
                             argument != nullptr ? 1U : 0U, 0};
    Variant result;
    Need(object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, result.Receive(),
                        nullptr, nullptr),
         "a call");
    return result;
  };
  Variant text{query};
  Variant first(std::int32_t{0});
  Variant records = call(connection.get(), L"Execute", DISPATCH_METHOD, &text);
  Variant atEnd = call(records->pdispVal, L"EOF", DISPATCH_PROPERTYGET, nullptr);
  if (atEnd->boolVal != VARIANT_FALSE) return "no record";
  Variant fields = call(records->pdispVal, L"Fields", DISPATCH_PROPERTYGET, nullptr);
  Variant field = call(fields->pdispVal, L"Item", DISPATCH_METHOD | DISPATCH_PROPERTYGET, &first);
  return call(field->pdispVal, L"Value", DISPATCH_PROPERTYGET, nullptr).Shown();
}

// A client's list of one row. What happens when it is counted, once, and when it goes
// is for its maker to say.
class OwnList final : public IDispatch {
 public:
  explicit OwnList(IDispatch* row = nullptr) : row_(row) {}

  std::function<void()> whenCounted;
  std::function<void()> whenGone;

  [[nodiscard]] ULONG references() const { return references_; }

  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    *object = id == IID_IUnknown || id == IID_IDispatch ? this : nullptr;
    if (*object == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return DISP_E_BADINDEX; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
    static constexpr std::array<const wchar_t*, 4> kNames = {L"Add", L"Remove", L"Count", L"Item"};
    ids[0] = DISPID_UNKNOWN;
    for (std::size_t i = 0; i < kNames.size(); ++i) {
      if (_wcsicmp(names[0], kNames[i]) == 0) ids[0] = static_cast<DISPID>(i);
    }
    return ids[0] == DISPID_UNKNOWN ? DISP_E_UNKNOWNNAME : S_OK;
  }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                      UINT*) override {
    if (id == 3 && row_ != nullptr) {
      result->vt = VT_DISPATCH;
      result->pdispVal = row_;
      row_->AddRef();
    }
    if (id == 2) {
      if (whenCounted) std::exchange(whenCounted, nullptr)();
      result->vt = VT_I4;
      result->lVal = 1;
    }
    return S_OK;
  }

 private:
  ~OwnList() {
    if (whenGone) whenGone();
  }

  IDispatch* row_;
  ULONG references_ = 1;
};

std::vector<std::string>& UsedAgain() {
  static std::vector<std::string> blocks;
  return blocks;
}

// Memory that was given back is soon used for something else.
void UseFreedMemory() {
  for (std::size_t size = 16; size <= 1024; size += 8) {
    for (int i = 0; i < 20; ++i) UsedAgain().emplace_back(size, '\xA5');
  }
}

bool IsUntouched(const std::string& block) {
  return block.find_first_not_of('\xA5') == std::string::npos;
}

void Identity(_cLotrix* service) {
  Com<IUnknown> first;
  Com<IUnknown> second;
  Com<IDispatch> dispatch;
  Com<ISupportErrorInfo> support;
  CheckResult("IDispatch", service->QueryInterface(IID_IDispatch, dispatch.ReceiveAny()));
  CheckResult("ISupportErrorInfo",
              service->QueryInterface(IID_ISupportErrorInfo, support.ReceiveAny()));
  service->QueryInterface(IID_IUnknown, first.ReceiveAny());
  support->QueryInterface(IID_IUnknown, second.ReceiveAny());
  Check("one identity", first.get() == second.get(), true);
  CheckResult("error information for its interface",
              support->InterfaceSupportsErrorInfo(IID__cLotrix));
  Com<_cResultSet> other;
  CheckResult("not a table", service->QueryInterface(IID__cResultSet, other.ReceiveAny()),
              E_NOINTERFACE);
  Check("nothing handed out", other.get() == nullptr, true);
  CheckResult("nowhere to", service->QueryInterface(IID_IDispatch, nullptr), E_POINTER);
}

void Orders(_cLotrix* service, const std::wstring& today) {
  const std::wstring where =
      L" FROM neworder WHERE pin = 'P00001' AND vaccine = 'DTAP' "
      L"AND orddate = {" +
      today + L"}";
  CheckResult("order", service->manufacturerProviderOrderCreateUpdate(
                           Bstr(today), Bstr(L"p00001"), Bstr(L"dtap"), 20, Bstr(L"1"), Bstr(L"1"),
                           nullptr, Bstr(L"MKRA")));
  Check("order: doses", Stored(service, L"SELECT orddose" + where), "20");
  CheckResult("order again, an empty text for each left out",
              service->manufacturerProviderOrderCreateUpdate(Bstr(today), Bstr(L"P00001"),
                                                             Bstr(L"DTAP"), 30, Bstr(L"1"), nullptr,
                                                             nullptr, Bstr(L"MKRA")));
  Check("order again: doses", Stored(service, L"SELECT orddose" + where), "30");
  Check("order again: rows", Stored(service, L"SELECT count(*)" + where), "1");
  CheckResult("doses given", service->DosesAdministeredUpdate(
                                 Bstr(today), Bstr(L"P00001"), Bstr(L"DTAP"), Bstr(L"1"),
                                 Bstr(L"1"), 1, 2, 3, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 10, 0, 0, 0));
  const std::wstring doses = L" FROM dosesadm WHERE userid = 'LTX_DLL'";
  Check("doses given: each in its place",
        Stored(service, L"SELECT g1" + doses) + Stored(service, L"SELECT g2" + doses) +
            Stored(service, L"SELECT g3" + doses) + Stored(service, L"SELECT g4" + doses) +
            Stored(service, L"SELECT rowtot" + doses),
        "123410");
}

void Profile(_cLotrix* service) {
  VARIANT missing;
  VariantInit(&missing);
  missing.vt = VT_ERROR;
  missing.scode = DISP_E_PARAMNOTFOUND;
  Variant sector(std::int32_t{10});
  Variant name(L"Zo\u00eb");
  const Bstr none;
  CheckResult("profile",
              service->providerProfileUpdate(
                  Bstr(L"EB0001"), Bstr(L"Clinic \u042f"), Bstr(L"Contact"), Bstr(L"1 Road"), none,
                  Bstr(L"Amberbrook"), Bstr(L"ZZ"), Bstr(L"69401"), none, Bstr(L"(217) 555-0100"),
                  none, none, none, none, none, none, none, none, none, VARIANT_TRUE, *sector.get(),
                  missing, missing, *name.get(), missing, missing, missing, missing, missing,
                  missing, missing, missing, missing));
  const std::wstring where = L" FROM provider WHERE pin = 'EB0001'";
  Check("profile: name", Stored(service, L"SELECT lastname" + where), "CLINIC \u042f");
  Check("profile: first name", Stored(service, L"SELECT firstname" + where), "ZO\u00cb");
  Check("profile: active when left out", Stored(service, L"SELECT active" + where), "Y");
}

void Reads(_cLotrix* service) {
  Com<_cResultSet> table;
  CheckResult("stock", service->stockTableRead(nullptr, Bstr(L"DTAP"), nullptr, nullptr, nullptr,
                                               table.Receive()));
  LONG rows = 0;
  LONG columns = 0;
  CheckResult("rows", table->get_Rows(&rows));
  CheckResult("columns", table->get_Cols(&columns));
  Check("some rows", rows > 3, true);
  Check("seven columns", columns, 7L);
  Com<_Collection> data;
  Com<_Collection> headers;
  CheckResult("data", table->get_Data(data.Receive()));
  CheckResult("headers", table->get_Headers(headers.Receive()));
  Check("headers: count", CountOf(headers.get()), 7L);
  Check("headers: by key", ItemText(headers.get(), Variant(L"7")), "expiry");
  Check("headers: by position", ItemText(headers.get(), Variant(std::int32_t{1})), "pin");
  LONG same = 0;
  for (LONG row = 1; row <= rows; ++row) {
    Variant index(static_cast<std::int32_t>(row));
    Variant cells;
    Need(data->get_Item(index.get(), cells.Receive()), "a row");
    Com<_Collection> collection;
    Need(cells->pdispVal->QueryInterface(IID__Collection, collection.ReceiveAny()), "a row");
    for (LONG column = 1; column <= columns; ++column) {
      const std::string cell = ItemText(collection.get(), Variant(std::to_wstring(column)));
      const std::string value = Cell(table.get(), row, column);
      if (value == (cell == "Null" ? "" : cell)) ++same;
    }
  }
  Check("every cell, both ways", same, rows * columns);
  Com<IUnknown> enumerator;
  CheckResult("enumerator", headers->get__NewEnum(enumerator.Receive()));
  Com<IEnumVARIANT> each;
  CheckResult("For Each", enumerator->QueryInterface(IID_IEnumVARIANT, each.ReceiveAny()));
  Variant item;
  ULONG fetched = 0;
  CheckResult("second", each->Skip(1) == S_OK ? each->Next(1, item.Receive(), &fetched) : S_FALSE);
  Check("second header", item.Shown(), "datein");
  CheckResult("skip to the end", each->Skip(5));
  CheckResult("at the end", each->Next(1, item.Receive(), &fetched), S_FALSE);
  CheckResult("skip beyond the end", each->Skip(1), S_FALSE);
  CheckResult("from the start", each->Reset());
  each->Next(1, item.Receive(), nullptr);
  Check("first header", item.Shown(), "pin");
}

void Tables(_cLotrix* service) {
  Com<_cResultSet> table;
  Create(table, CLSID_cResultSet, IID__cResultSet);
  Com<_Collection> data;
  CheckResult("no data yet", table->get_Data(data.Receive()));
  Check("no data object", data.get() == nullptr, true);
  LONG one = 1;
  LONG two = 2;
  Bstr text;
  CheckFailure("no data to read", table->GetValue(&one, &one, text.Receive()), Plain(91), "Lotrix");
  Com<_cResultSet> read;
  Need(service->inventoryOnHandRead(Bstr(L"D00001"), Bstr(L"DTAP"), read.Receive()), "a read");
  Need(read->get_Data(data.Receive()), "its data");
  CheckResult("data set", table->putref_Data(data.get()));
  CheckResult("columns set", table->put_Cols(3));
  CheckResult("rows set", table->put_Rows(-5));
  const LONG before = CountOf(data.get());
  Variant missing = Missing();
  CheckResult("add an empty row", table->AddRow(missing.get()));
  LONG rows = 0;
  table->get_Rows(&rows);
  Check("rows count up from anything", rows, -4L);
  LONG last = before + 1;
  Check("an empty cell", Cell(table.get(), last, 3), "");
  CheckResult("no such cell", table->GetValue(&last, &last, text.Receive()), Rule(50001));
  BSTR nothing = nullptr;
  CheckResult("set", table->SetValue(&last, &two, &nothing));
  Check("a null text is the empty text", Cell(table.get(), last, 2), "");
  Bstr value(L"set \u00e9");
  BSTR raw = value;
  CheckResult("set again", table->SetValue(&last, &two, &raw));
  Check("set: read", Cell(read.get(), last, 2), "set \u00e9");
  Check("set: rows and columns stay", last * 10 + two, (before + 1) * 10 + 2);
  CheckResult("delete", table->DeleteRow(&one));
  Check("the other table keeps its own list", CountOf(data.get()), before + 1);
  CheckResult("data let go", table->putref_Data(nullptr));
  CheckResult("clear", table->CLEAR());
  table->get_Rows(&rows);
  Check("cleared", rows, 0L);
}

void Failures(_cLotrix* service, const std::wstring& today) {
  const std::string source = "LOTRIX DLL";
  CheckFailure(
      "a rule",
      service->manufacturerProviderOrderCreateUpdate(Bstr(today), Bstr(L"P00001"), Bstr(L"DTAP"), 0,
                                                     Bstr(L"1"), nullptr, nullptr, nullptr),
      Rule(20025), source, "The number of doses for an order must be greater than zero");
  Com<_cResultSet> table;
  CheckFailure("a plain number", service->inventoryOnHandRead(nullptr, nullptr, table.Receive()),
               Plain(20022), source, "A NULL depot pin is entered");
  Check("no result", table.get() == nullptr, true);
  CheckFailure(
      "an apostrophe",
      service->stockTableRead(nullptr, nullptr, Bstr(L"O'NEIL"), nullptr, nullptr, table.Receive()),
      static_cast<HRESULT>(0x80040E14L), source);
  CheckFailure(
      "text that is no Unicode",
      service->stockTableRead(nullptr, nullptr, Bstr(L"\xD800"), nullptr, nullptr, table.Receive()),
      Plain(5), "Lotrix");
  CheckFailure("no number",
               service->DosesAdministeredUpdate(Bstr(today), Bstr(L"P00001"), Bstr(L"DTAP"),
                                                Bstr(L"one"), Bstr(L"1"), 0, 0, 0, 0, 0, 0, 0, 0, 0,
                                                0, 0, 0, 0, 0, 0, 0, 0),
               Plain(13), source);
  CheckResult("nowhere to put a result", service->vaccineReferenceTableRead(nullptr), E_POINTER);
  CheckResult("nowhere to put the connection", service->get_Connection(nullptr), E_POINTER);
  Need(service->vaccineReferenceTableRead(table.Receive()), "a read after failures");
  LONG none = 0;
  LONG beyond = 9999;
  LONG one = 1;
  Bstr text;
  CheckFailure("a row too far", table->GetValue(&beyond, &one, text.Receive()), Rule(50000),
               "Lotrix", "Invalid Row Specified");
  CheckFailure("a column too far", table->GetValue(&one, &beyond, text.Receive()), Rule(50001),
               "Lotrix", "Invalid Col Specified");
  CheckFailure("row 0", table->GetValue(&none, &one, text.Receive()), Plain(5), "Lotrix");
  CheckResult("no row given", table->GetValue(nullptr, &one, text.Receive()), E_POINTER);
  Com<_Collection> headers;
  Need(table->get_Headers(headers.Receive()), "headers");
  Variant item(L"vaccine again");
  Variant key(L"1");
  CheckFailure("a key taken", headers->Add(item.get(), key.get()), Plain(457), "Lotrix");
  Variant position(std::int32_t{2});
  CheckFailure("a position outside", headers->Remove(position.get()), Plain(9), "Lotrix");
  Variant half(L"a\xD800 b");
  Variant noKey = Missing();
  CheckFailure("an item that is no Unicode", headers->Add(half.get(), noKey.get()), Plain(5),
               "Lotrix");
  Check("it is not added", CountOf(headers.get()), 1L);
  Com<_cLotrix> lost;
  Create(lost, CLSID_cLotrix, IID__cLotrix);
  CheckFailure("no provider", lost->vaccineReferenceTableRead(table.Receive()), Plain(3706), source,
               "Provider cannot be found. It may not be properly installed.");
}

// A value that no conversion takes, behind texts that do not matter.
void Unusable(_cLotrix* service) {
  Variant array;
  array->vt = VT_ARRAY | VT_I4;
  array->parray = SafeArrayCreateVector(VT_I4, 0, 3);
  const Bstr text(L"X");
  Variant missing = Missing();
  CheckFailure("an array for an optional text",
               service->providerShippingDataUpdate(text, text, text, text, text, text, text, text,
                                                   text, text, text, *array.get(), *missing.get(),
                                                   *missing.get(), *missing.get()),
               Plain(13), "Lotrix");
}

// Where either is right, an answer or a failure.
void CheckAnswered(const std::string& name, HRESULT result, const Bstr& text,
                   const std::string& answer) {
  Check(name, text.utf8(), FAILED(result) ? "" : answer);
}

// Lists that take away what they are called for, while they are called.
void FickleLists(_cLotrix* service) {
  Com<_cResultSet> read;
  Com<_Collection> rows;
  Variant row;
  Variant first(std::int32_t{1});
  Need(service->inventoryOnHandRead(Bstr(L"D00001"), Bstr(L"DTAP"), read.Receive()), "a read");
  Need(read->get_Data(rows.Receive()), "its data");
  Need(rows->get_Item(first.get(), row.Receive()), "a row");
  auto* const list = new OwnList(row->pdispVal);
  LONG one = 1;
  Bstr text;
  {
    Com<_cResultSet> table;
    Create(table, CLSID_cResultSet, IID__cResultSet);
    const auto letGo = [&] {
      table->putref_Data(nullptr);
      UseFreedMemory();
    };
    Need(table->putref_Data(list), "a list");
    list->whenCounted = letGo;
    CheckAnswered("read from a list let go", table->GetValue(&one, &one, text.Receive()), text,
                  "DTAP");
    Check("the list is let go", list->references(), 1UL);
    Need(table->putref_Data(list), "a list again");
    list->whenCounted = letGo;
    Bstr value(L"changed");
    BSTR raw = value;
    const bool set = SUCCEEDED(table->SetValue(&one, &one, &raw));
    Check("set in a list let go", Cell(read.get(), 1, 1), set ? "changed" : "DTAP");
    Check("the list is let go again", list->references(), 1UL);
  }
  _cResultSet* table = nullptr;
  Need(CoCreateInstance(CLSID_cResultSet, nullptr, CLSCTX_INPROC_SERVER, IID__cResultSet,
                        reinterpret_cast<void**>(&table)),
       "a table");
  Need(table->putref_Data(list), "a list");
  list->whenCounted = [&] {
    std::exchange(table, nullptr)->Release();
    UseFreedMemory();
  };
  CheckAnswered("read from a table let go", table->GetValue(&one, &one, text.Receive()), text,
                Cell(read.get(), 1, 1));
  Check("the table is let go", table == nullptr, true);
  Check("and its list", list->references(), 1UL);
  list->Release();
}

// An item that, when it goes, fills the collection that it stood in.
void Reentrant(_cLotrix* service) {
  for (const wchar_t* key : {L"7", L"leaver"}) {
    Com<_cResultSet> table;
    Com<_Collection> headers;
    Need(service->inventoryOnHandRead(Bstr(L"D00001"), Bstr(L"DTAP"), table.Receive()), "a read");
    Need(table->get_Headers(headers.Receive()), "headers");
    Variant none = Missing();
    Variant name{std::wstring_view(key)};
    auto* const leaver = new OwnList();
    leaver->whenGone = [&] {
      for (int i = 1; i <= 100; ++i) {
        Variant item(L"late " + std::to_wstring(i));
        headers->Add(item.get(), none.get());
      }
      UseFreedMemory();
    };
    {
      Variant item(leaver);
      Need(headers->Add(item.get(), name.get()), "an item");
    }
    leaver->Release();
    CheckResult("an item that fills as it goes", headers->Remove(name.get()));
    Check("nothing is written where the list stood",
          std::all_of(UsedAgain().begin(), UsedAgain().end(), IsUntouched), true);
    Check("filled", CountOf(headers.get()), 106L);
    Check("what stood in front", ItemText(headers.get(), Variant(std::int32_t{6})), "size");
    Check("the first that came", ItemText(headers.get(), Variant(std::int32_t{7})), "late 1");
    Check("the last that came", ItemText(headers.get(), Variant(std::int32_t{106})), "late 100");
  }
}

// What a caller's variable holds before a call.
template <class Pointer>
Pointer Leftover() {
  return reinterpret_cast<Pointer>(std::uintptr_t{0x5A5A5A58});
}

void AfterFailures(_cLotrix* service) {
  LONG one = 1;
  LONG beyond = 9999;
  Com<_cResultSet> table;
  Com<_Collection> headers;
  Need(service->vaccineReferenceTableRead(table.Receive()), "a read");
  Need(table->get_Headers(headers.Receive()), "headers");
  auto text = Leftover<BSTR>();
  CheckResult("a row too far", table->GetValue(&beyond, &one, &text), Rule(50000));
  Check("no text", text == nullptr, true);
  text = Leftover<BSTR>();
  CheckResult("no row", table->GetValue(nullptr, &one, &text), E_POINTER);
  Check("no text either", text == nullptr, true);
  Variant key(L"no such");
  VARIANT item;
  item.vt = VT_I4;
  item.lVal = 7;
  CheckResult("a missing key", headers->get_Item(key.get(), &item), Plain(5));
  Check("no item", item.vt, VT_EMPTY);
  auto* const list = new OwnList();
  Need(table->putref_Data(list), "a list");
  list->Release();
  auto* data = Leftover<_Collection*>();
  CheckFailure("a list as a collection of ours", table->get_Data(&data), Plain(13), "Lotrix");
  Check("no collection", data == nullptr, true);
  auto* result = Leftover<_cResultSet*>();
  CheckResult("a refused read", service->inventoryOnHandRead(nullptr, nullptr, &result),
              Plain(20022));
  Check("no table", result == nullptr, true);
  Com<_cLotrix> lost;
  Create(lost, CLSID_cLotrix, IID__cLotrix);
  auto* connection = Leftover<IDispatch*>();
  CheckResult("no provider", lost->get_Connection(&connection), Plain(3706));
  Check("no connection", connection == nullptr, true);
}

void Nowhere(_cLotrix* service) {
  LONG one = 1;
  Com<_cResultSet> table;
  Com<_Collection> headers;
  Com<IUnknown> unknown;
  Com<IEnumVARIANT> each;
  Need(service->vaccineReferenceTableRead(table.Receive()), "a read");
  Need(table->get_Headers(headers.Receive()), "headers");
  Need(headers->get__NewEnum(unknown.Receive()), "an enumerator");
  Need(unknown->QueryInterface(IID_IEnumVARIANT, each.ReceiveAny()), "an enumerator");
  Variant first(std::int32_t{1});
  CheckResult("nowhere to put the rows", table->get_Rows(nullptr), E_POINTER);
  CheckResult("nor the columns", table->get_Cols(nullptr), E_POINTER);
  CheckResult("nor the data", table->get_Data(nullptr), E_POINTER);
  CheckResult("nor the headers", table->get_Headers(nullptr), E_POINTER);
  CheckResult("nor a cell", table->GetValue(&one, &one, nullptr), E_POINTER);
  CheckResult("nor an item", headers->get_Item(first.get(), nullptr), E_POINTER);
  CheckResult("nor the count", headers->get_Count(nullptr), E_POINTER);
  CheckResult("nor an enumerator", headers->get__NewEnum(nullptr), E_POINTER);
  CheckResult("nor its copy", each->Clone(nullptr), E_POINTER);
}

// Only when every object of the server was let go.
void NothingLeft() {
  const HMODULE server = GetModuleHandleW(L"Lotrix.dll");
  if (server == nullptr) return Need(E_FAIL, "the server");
  using CanUnload = HRESULT(WINAPI*)();
  const auto canUnload = reinterpret_cast<CanUnload>(
      reinterpret_cast<void*>(GetProcAddress(server, "DllCanUnloadNow")));
  CheckResult("nothing left alive", canUnload());
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
  if (count != 3) return 2;
  const std::wstring today = arguments[2];
  Need(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), "COM");
  {
    Com<_cLotrix> service;
    Create(service, CLSID_cLotrix, IID__cLotrix);
    CheckResult("connection string", service->openConnection(Bstr(arguments[1])));
    Identity(service.get());
    Orders(service.get(), today);
    Profile(service.get());
    Reads(service.get());
    Tables(service.get());
    Failures(service.get(), today);
    Unusable(service.get());
    FickleLists(service.get());
    Reentrant(service.get());
    AfterFailures(service.get());
    Nowhere(service.get());
    CheckResult("message", service->CheckVaccActive(Bstr(L"DTAP")));
    CheckResult("close", service->closeConnection());
  }
  NothingLeft();
  CoUninitialize();
  return lotrix_client::Finish(120);
}

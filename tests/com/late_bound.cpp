// What script engines do with IDispatch beneath the words of a script, what none of
// them can say, and the entry points of the server.
//   late_bound CONNECTION-STRING TODAY
#include <array>
#include <initializer_list>
#include <string>
#include <vector>

#include "automation_client.h"
#include "lotrix_h.h"

namespace {

using lotrix_client::Bstr;
using lotrix_client::Check;
using lotrix_client::CheckResult;
using lotrix_client::Com;
using lotrix_client::Hex;
using lotrix_client::Missing;
using lotrix_client::Need;
using lotrix_client::Variant;

constexpr HRESULT Rule(long code) { return static_cast<HRESULT>(0x80040000L + code); }
constexpr HRESULT Plain(long number) { return static_cast<HRESULT>(0x800A0000L + number); }

constexpr DISPID kRows = 0x68030002;
constexpr DISPID kHeaders = 0x68030000;
constexpr DISPID kData = 0x68030001;
constexpr DISPID kSetValue = 0x60030007;
constexpr DISPID kGetValue = 0x60030008;
constexpr DISPID kAddRow = 0x60030009;
constexpr DISPID kStockTableRead = 0x60030009;
constexpr DISPID kVaccineReferenceTableRead = 0x6003000A;
constexpr DISPID kInventoryOnHandRead = 0x6003000B;
constexpr DISPID kManufacturerOrder = 0x6003000C;
constexpr DISPID kDosesAdministered = 0x60030011;
constexpr DISPID kCheckVaccActive = 0x60030018;

struct Answer {
  HRESULT result = S_OK;
  Variant value = {};
  // Of the exception information: number, source and description.
  std::string failure = {};
};

// Arguments in the order in which a caller writes them: those in their places, then
// those with the names of `named`.
Answer Invoke(IDispatch* object, DISPID id, WORD flags, std::vector<Variant>& arguments,
              std::vector<DISPID> named = {}) {
  std::vector<VARIANT> backwards;
  const std::size_t inPlace = arguments.size() - named.size();
  for (std::size_t i = inPlace; i < arguments.size(); ++i) backwards.push_back(*arguments[i].get());
  for (std::size_t i = inPlace; i > 0; --i) backwards.push_back(*arguments[i - 1].get());
  DISPPARAMS parameters = {backwards.data(), named.data(), static_cast<UINT>(backwards.size()),
                           static_cast<UINT>(named.size())};
  Answer answer;
  EXCEPINFO exception = {};
  UINT argument = 0;
  answer.result = object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters,
                                 answer.value.Receive(), &exception, &argument);
  if (answer.result == DISP_E_EXCEPTION) {
    answer.failure =
        Hex(exception.scode) + " | " +
        lotrix_client::ToUtf8({exception.bstrSource, SysStringLen(exception.bstrSource)}) + " | " +
        lotrix_client::ToUtf8({exception.bstrDescription, SysStringLen(exception.bstrDescription)});
    if (exception.wCode != 0) answer.failure += " | a code besides";
  }
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  SysFreeString(exception.bstrHelpFile);
  return answer;
}

template <class... Values>
std::vector<Variant> Arguments(Values&&... values) {
  std::vector<Variant> arguments;
  (arguments.push_back(Variant(std::forward<Values>(values))), ...);
  return arguments;
}

constexpr WORD kCall = DISPATCH_METHOD | DISPATCH_PROPERTYGET;

template <class... Values>
Answer Call(IDispatch* object, DISPID id, Values&&... values) {
  std::vector<Variant> arguments = Arguments(std::forward<Values>(values)...);
  return Invoke(object, id, kCall, arguments);
}

// The number and source of a failed call, whose description is not a fixed text.
void CheckFailed(const std::string& name, const Answer& answer, HRESULT number,
                 const std::string& source) {
  const std::string expected = Hex(number) + " | " + source + " | ";
  const bool described = answer.failure.size() > expected.size();
  CheckResult(name, answer.result, DISP_E_EXCEPTION);
  Check(name + ": described", described, true);
  Check(name + ": number and source", answer.failure.substr(0, expected.size()), expected);
}

void CheckText(const std::string& name, const Answer& answer, const std::string& text) {
  Check(name,
        FAILED(answer.result) ? Hex(answer.result) + " " + answer.failure : answer.value.Shown(),
        text);
}

DISPID IdOf(IDispatch* object, const wchar_t* name) {
  auto* names = const_cast<wchar_t*>(name);
  DISPID id = 0;
  const HRESULT result = object->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id);
  return FAILED(result) ? result : id;
}

void Names(IDispatch* service, IDispatch* table) {
  CheckResult("CheckVaccActive", IdOf(service, L"CheckVaccActive"), kCheckVaccActive);
  CheckResult("names without regard to case", IdOf(service, L"checkVACCactive"), kCheckVaccActive);
  CheckResult("Headers", IdOf(table, L"Headers"), kHeaders);
  CheckResult("unknown name", IdOf(service, L"noSuchMember"), DISP_E_UNKNOWNNAME);
  CheckResult("a table's member", IdOf(service, L"Rows"), DISP_E_UNKNOWNNAME);
  std::array<wchar_t*, 3> names = {const_cast<wchar_t*>(L"inventoryOnHandRead"),
                                   const_cast<wchar_t*>(L"AVACCINE"),
                                   const_cast<wchar_t*>(L"aNothing")};
  std::array<DISPID, 3> ids = {};
  CheckResult("an unknown argument's name",
              service->GetIDsOfNames(IID_NULL, names.data(), 3, LOCALE_USER_DEFAULT, ids.data()),
              DISP_E_UNKNOWNNAME);
  CheckResult("the member's identifier all the same", ids[0], kInventoryOnHandRead);
  Check("the known argument's too", ids[1], DISPID{1});
  Check("the unknown one's", ids[2], DISPID{DISPID_UNKNOWN});
}

void NamedArguments(IDispatch* service, const std::wstring& today) {
  std::vector<Variant> given = Arguments(L"DTAP", L"D00001");
  Answer answer = Invoke(service, kInventoryOnHandRead, kCall, given, {1, 0});
  CheckResult("all by name", answer.result);
  CheckText("the right table", Call(answer.value->pdispVal, kGetValue, 1, 1), "DTAP");
  given = Arguments(L"D00001", L"DTAP");
  CheckResult("one in its place, one by name",
              Invoke(service, kInventoryOnHandRead, kCall, given, {1}).result);
  given = Arguments(L"D00001", L"x");
  CheckFailed("an unknown one", Invoke(service, kInventoryOnHandRead, kCall, given, {7}),
              Plain(448), "Lotrix");
  given = Arguments(L"DTAP");
  CheckFailed("the required one left out", Invoke(service, kInventoryOnHandRead, kCall, given, {1}),
              Plain(449), "Lotrix");
  // A date, a PIN, a vaccine, doses, a source and then the manufacturer by name: the
  // optional ones between are left out.
  given = Arguments(std::wstring_view(today), L"P00001", L"DTAP", 7, L"1", L"MKRA");
  CheckResult("optional ones between left out",
              Invoke(service, kManufacturerOrder, DISPATCH_METHOD, given, {7}).result);
  given = Arguments(std::wstring_view(today), L"P00001", L"DTAP", L"2", 3, 3);
  CheckResult("a count and the total by name",
              Invoke(service, kDosesAdministered, DISPATCH_METHOD, given, {6, 18}).result);
  given = Arguments(L"13/45/2004");
  const Answer refused = Invoke(service, kStockTableRead, kCall, given, {3});
  Check("a rule's failure", refused.failure,
        Hex(Rule(20062)) +
            " | LOTRIX DLL | The Shipment Begin Date that was entered is not a valid date");
}

void Counts(IDispatch* service) {
  CheckFailed("none given", Call(service, kInventoryOnHandRead), Plain(450), "Lotrix");
  CheckFailed("too many", Call(service, kVaccineReferenceTableRead, L"x"), Plain(450), "Lotrix");
  std::vector<Variant> given;
  given.push_back(Missing());
  given.push_back(Variant(L"DTAP"));
  CheckFailed("left out in front", Invoke(service, kInventoryOnHandRead, kCall, given), Plain(449),
              "Lotrix");
  CheckResult("unknown identifier", Call(service, 0x60030004).result, DISP_E_MEMBERNOTFOUND);
  CheckResult(
      "an operation is not let",
      [&] {
        std::vector<Variant> value = Arguments(L"x");
        return Invoke(service, kCheckVaccActive, DISPATCH_PROPERTYPUT, value, {DISPID_PROPERTYPUT});
      }()
          .result,
      DISP_E_MEMBERNOTFOUND);
  CheckResult("no arguments at all",
              service->Invoke(kCheckVaccActive, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD,
                              nullptr, nullptr, nullptr, nullptr),
              E_INVALIDARG);
}

template <class Stored>
Variant Referring(VARTYPE type, Stored* stored) {
  Variant reference;
  reference->vt = static_cast<VARTYPE>(VT_BYREF | type);
  reference->byref = stored;
  return reference;
}

// One cell read with its row in a variable of some type.
void CheckRow(const std::string& name, IDispatch* table, Variant row, const std::string& text) {
  std::vector<Variant> given;
  given.push_back(std::move(row));
  given.push_back(Variant(std::int32_t{1}));
  CheckText(name, Invoke(table, kGetValue, DISPATCH_METHOD, given), text);
}

// A table of five rows "r1" to "r5".
void FillTable(IDispatch* service, Com<IDispatch>& table) {
  Need(CoCreateInstance(CLSID_cResultSet, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                        table.ReceiveAny()),
       "a table");
  Answer other = Call(service, kVaccineReferenceTableRead);
  Answer data = Call(other.value->pdispVal, kData);
  std::vector<Variant> value;
  value.push_back(Variant(data.value->pdispVal));
  Need(Invoke(table.get(), kData, DISPATCH_PROPERTYPUTREF, value, {DISPID_PROPERTYPUT}).result,
       "data");
  for (std::int32_t row = 1; row <= 5; ++row) {
    Need(Call(table.get(), kSetValue, row, 1, L"r" + std::to_wstring(row)).result, "a cell");
  }
}

void ByReference(IDispatch* table) {
  std::int16_t shortRow = 2;
  CheckRow("short", table, Referring(VT_I2, &shortRow), "r2");
  std::int32_t longRow = 3;
  CheckRow("long", table, Referring(VT_I4, &longRow), "r3");
  std::int64_t hugeRow = 4;
  CheckRow("64 bits", table, Referring(VT_I8, &hugeRow), "r4");
  std::uint8_t byteRow = 5;
  CheckRow("byte", table, Referring(VT_UI1, &byteRow), "r5");
  std::uint32_t unsignedRow = 1;
  CheckRow("unsigned", table, Referring(VT_UI4, &unsignedRow), "r1");
  float floatRow = 2.5F;
  CheckRow("float, half to even", table, Referring(VT_R4, &floatRow), "r2");
  double doubleRow = 3.5;
  CheckRow("double, half to even", table, Referring(VT_R8, &doubleRow), "r4");
  CY currencyRow;
  currencyRow.int64 = 50000;
  CheckRow("currency", table, Referring(VT_CY, &currencyRow), "r5");
  DATE dateRow = 2.0;
  CheckRow("date", table, Referring(VT_DATE, &dateRow), "r2");
  DECIMAL decimalRow = {};
  Need(VarDecFromI4(3, &decimalRow), "a decimal");
  CheckRow("decimal", table, Referring(VT_DECIMAL, &decimalRow), "r3");
  Bstr textRow(L" 4 ");
  BSTR text = textRow;
  CheckRow("text", table, Referring(VT_BSTR, &text), "r4");
  Variant inner(L"5");
  CheckRow("variant with a text", table, Referring(VT_VARIANT, inner.get()), "r5");
  CheckRow("text by value", table, Variant(L"1"), "r1");
  Variant empty;
  std::vector<Variant> given;
  given.push_back(Referring(VT_VARIANT, empty.get()));
  given.push_back(Variant(std::int32_t{1}));
  CheckFailed("an empty one is row 0", Invoke(table, kGetValue, DISPATCH_METHOD, given), Plain(5),
              "Lotrix");
  Variant null;
  null->vt = VT_NULL;
  given.clear();
  given.push_back(Referring(VT_VARIANT, null.get()));
  given.push_back(Variant(std::int32_t{1}));
  CheckFailed("Null", Invoke(table, kGetValue, DISPATCH_METHOD, given), Plain(13), "Lotrix");
  given = Arguments(L"one", 1);
  CheckFailed("a word", Invoke(table, kGetValue, DISPATCH_METHOD, given), Plain(13), "Lotrix");
  given = Arguments(3e9, 1);
  CheckFailed("too large", Invoke(table, kGetValue, DISPATCH_METHOD, given), Plain(6), "Lotrix");
  VARIANT_BOOL yes = VARIANT_TRUE;
  given.clear();
  given.push_back(Variant(std::int32_t{1}));
  given.push_back(Variant(std::int32_t{1}));
  given.push_back(Referring(VT_BOOL, &yes));
  CheckResult("a logical to set", Invoke(table, kSetValue, DISPATCH_METHOD, given).result);
  CheckText("as text", Call(table, kGetValue, 1, 1), "True");
  double number = 12.5;
  given.pop_back();
  given.push_back(Referring(VT_R8, &number));
  CheckResult("a double to set", Invoke(table, kSetValue, DISPATCH_METHOD, given).result);
  CheckText("as English text", Call(table, kGetValue, 1, 1), "12.5");
}

void Properties(IDispatch* table) {
  std::vector<Variant> value = Arguments(L"17");
  CheckResult("let from a text",
              Invoke(table, kRows, DISPATCH_PROPERTYPUT, value, {DISPID_PROPERTYPUT}).result);
  CheckText("get", Call(table, kRows), "17");
  value = Arguments(L"many");
  CheckFailed("let from a word",
              Invoke(table, kRows, DISPATCH_PROPERTYPUT, value, {DISPID_PROPERTYPUT}), Plain(13),
              "Lotrix");
  value = Arguments(5);
  CheckFailed("a number as data",
              Invoke(table, kData, DISPATCH_PROPERTYPUTREF, value, {DISPID_PROPERTYPUT}), Plain(13),
              "Lotrix");
  std::vector<Variant> none;
  none.push_back(Missing());
  CheckResult("a row added, explicitly of nothing",
              Invoke(table, kAddRow, DISPATCH_METHOD, none).result);
  CheckText("rows", Call(table, kRows), "18");
  CheckResult("a row added of nothing", Call(table, kAddRow).result);
  CheckText("rows again", Call(table, kRows), "19");
}

// Whatever the failure is.
void CheckRefused(const std::string& name, IDispatch* object, DISPID id, DISPPARAMS parameters) {
  Variant value;
  const HRESULT result = object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kCall, &parameters,
                                        value.Receive(), nullptr, nullptr);
  Check(name, FAILED(result), true);
}

// What no compiler makes, but any program can send.
void Unsound(IDispatch* service, IDispatch* table) {
  Variant depot(L"D00001");
  Variant vaccine(L"DTAP");
  std::array<VARIANT, 2> backwards = {*vaccine.get(), *depot.get()};
  std::array<DISPID, 2> named = {1, 0};
  const DISPPARAMS both = {backwards.data(), named.data(), 2, 2};
  DISPPARAMS parameters = both;
  parameters.cArgs = 1;
  CheckRefused("more names than arguments", service, kInventoryOnHandRead, parameters);
  parameters.cArgs = 0;
  parameters.rgvarg = nullptr;
  CheckRefused("names of no arguments", service, kInventoryOnHandRead, parameters);
  parameters = {nullptr, nullptr, 2, 0};
  CheckRefused("arguments that are nowhere", service, kInventoryOnHandRead, parameters);
  parameters.cArgs = 1;
  CheckRefused("arguments that are nowhere, of a property", table, kHeaders, parameters);
  parameters = both;
  parameters.rgdispidNamedArgs = nullptr;
  CheckRefused("names that are nowhere", service, kInventoryOnHandRead, parameters);
  std::array<wchar_t*, 2> names = {nullptr, nullptr};
  std::array<DISPID, 2> ids = {};
  const auto idsOf = [&](UINT count) {
    return service->GetIDsOfNames(IID_NULL, names.data(), count, LOCALE_USER_DEFAULT, ids.data());
  };
  Check("no member's name", FAILED(idsOf(1)), true);
  names[0] = const_cast<wchar_t*>(L"inventoryOnHandRead");
  Check("no argument's name", FAILED(idsOf(2)), true);
  // The value of an assignment has this name, an argument never.
  std::vector<Variant> given = Arguments(1, 1);
  CheckFailed("an argument named as a value",
              Invoke(table, kGetValue, DISPATCH_METHOD, given, {DISPID_PROPERTYPUT}), Plain(448),
              "Lotrix");
}

void ReferringToNothing(IDispatch* table) {
  for (const VARTYPE type : {VT_I4, VT_BSTR, VT_VARIANT, VT_DISPATCH, VT_DECIMAL}) {
    std::vector<Variant> given;
    given.push_back(Referring<void>(type, nullptr));
    given.push_back(Variant(std::int32_t{1}));
    CheckFailed("a reference to nothing, type " + std::to_string(type),
                Invoke(table, kGetValue, DISPATCH_METHOD, given), Plain(13), "Lotrix");
  }
  std::vector<Variant> row;
  row.push_back(Referring<void>(VT_DISPATCH, nullptr));
  CheckFailed("a row that is nowhere", Invoke(table, kAddRow, DISPATCH_METHOD, row), Plain(13),
              "Lotrix");
}

Variant Unknown(IUnknown* object) {
  Variant value;
  value->vt = VT_UNKNOWN;
  value->punkVal = object;
  object->AddRef();
  return value;
}

void UnknownObjects(IDispatch* table) {
  Com<IDispatch> other;
  Need(CoCreateInstance(CLSID_cResultSet, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                        other.ReceiveAny()),
       "a table");
  Answer data = Call(table, kData);
  std::vector<Variant> value;
  value.push_back(Unknown(data.value->pdispVal));
  CheckResult(
      "data of no known interface",
      Invoke(other.get(), kData, DISPATCH_PROPERTYPUTREF, value, {DISPID_PROPERTYPUT}).result);
  const auto holdsData = [&] {
    Answer held = Call(other.get(), kData);
    return held.value->vt == VT_DISPATCH && held.value->pdispVal == data.value->pdispVal;
  };
  Check("the same data", holdsData(), true);
  Com<IClassFactory> factory;
  Need(CoGetClassObject(CLSID_cResultSet, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                        factory.ReceiveAny()),
       "an object that is not for scripts");
  value.clear();
  value.push_back(Unknown(factory.get()));
  CheckFailed("an object that is not for scripts",
              Invoke(other.get(), kData, DISPATCH_PROPERTYPUTREF, value, {DISPID_PROPERTYPUT}),
              Plain(13), "Lotrix");
  Check("the data stays", holdsData(), true);
}

void Collections(IDispatch* service) {
  Answer table = Call(service, kInventoryOnHandRead, L"D00001");
  Answer headers = Call(table.value->pdispVal, kHeaders);
  IDispatch* const collection = headers.value->pdispVal;
  CheckText("default member by key", Call(collection, DISPID_VALUE, L"2"), "lot");
  CheckText("by way of the property", Call(table.value->pdispVal, kHeaders, L"3"), "expiry");
  CheckText("count", Call(collection, IdOf(collection, L"count")), "6");
  Answer each = Call(collection, DISPID_NEWENUM);
  CheckResult("For Each", each.result);
  Com<IEnumVARIANT> enumerator;
  IUnknown* const unknown = each.value->vt == VT_UNKNOWN ? each.value->punkVal : nullptr;
  Check("an enumerator", unknown != nullptr, true);
  if (unknown == nullptr) return;
  Need(unknown->QueryInterface(IID_IEnumVARIANT, enumerator.ReceiveAny()), "an enumerator");
  std::array<VARIANT, 9> items = {};
  ULONG fetched = 0;
  CheckResult("all at once, and there are fewer", enumerator->Next(9, items.data(), &fetched),
              S_FALSE);
  Check("six", fetched, 6UL);
  Check("in order", lotrix_client::ToUtf8(items[5].bstrVal), "size");
  for (VARIANT& item : items) VariantClear(&item);
  Com<IEnumVARIANT> copy;
  CheckResult("a copy", enumerator->Clone(copy.Receive()));
  CheckResult("stands at the end too", copy->Skip(1), S_FALSE);
}

using GetClassObject = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);
using CanUnload = HRESULT(WINAPI*)();

template <class Function>
Function Entry(HMODULE server, const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(server, name)));
}

void Factories(HMODULE server) {
  const auto getClass = Entry<GetClassObject>(server, "DllGetClassObject");
  const auto canUnload = Entry<CanUnload>(server, "DllCanUnloadNow");
  Check("registration by the server itself",
        GetProcAddress(server, "DllRegisterServer") != nullptr &&
            GetProcAddress(server, "DllUnregisterServer") != nullptr,
        true);
  CheckResult("nothing left alive", canUnload());
  Com<IClassFactory> factory;
  CheckResult("service class", getClass(CLSID_cLotrix, IID_IClassFactory, factory.ReceiveAny()));
  Com<IUnknown> object;
  CheckResult("no aggregates",
              factory->CreateInstance(factory.get(), IID_IUnknown, object.ReceiveAny()),
              CLASS_E_NOAGGREGATION);
  CheckResult("not as something else",
              factory->CreateInstance(nullptr, IID_IClassFactory, object.ReceiveAny()),
              E_NOINTERFACE);
  CheckResult("an object", factory->CreateInstance(nullptr, IID_IUnknown, object.ReceiveAny()));
  factory.Drop();
  CheckResult("in use by the object", canUnload(), S_FALSE);
  object.Drop();
  CheckResult("no longer", canUnload());
  CheckResult("table class", getClass(CLSID_cResultSet, IID_IClassFactory, factory.ReceiveAny()));
  CheckResult("lock", factory->LockServer(TRUE));
  factory.Drop();
  CheckResult("in use by the lock", canUnload(), S_FALSE);
  getClass(CLSID_cResultSet, IID_IClassFactory, factory.ReceiveAny());
  CheckResult("unlock", factory->LockServer(FALSE));
  factory.Drop();
  CheckResult("free again", canUnload());
  CheckResult("collections are not created",
              getClass(CLSID_Collection, IID_IClassFactory, factory.ReceiveAny()),
              CLASS_E_CLASSNOTAVAILABLE);
}

void ProgIds() {
  CLSID found = {};
  CheckResult("service", CLSIDFromProgID(L"lotrix.CLOTRIX", &found));
  Check("its class", IsEqualGUID(found, CLSID_cLotrix) != FALSE, true);
  CheckResult("table", CLSIDFromProgID(L"LOTRIX.cResultSet", &found));
  Check("its class too", IsEqualGUID(found, CLSID_cResultSet) != FALSE, true);
  CheckResult("no collection", CLSIDFromProgID(L"Lotrix.Collection", &found), CO_E_CLASSSTRING);
  Com<IUnknown> object;
  CheckResult("nor by its identifier",
              CoCreateInstance(CLSID_Collection, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                               object.ReceiveAny()),
              REGDB_E_CLASSNOTREG);
}

// A client that begins and ends COM for each of its calls, here one that fails.
bool CallAndLeave() {
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return false;
  bool failed = false;
  {
    Com<IDispatch> service;
    failed = SUCCEEDED(CoCreateInstance(CLSID_cLotrix, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                        service.ReceiveAny())) &&
             Call(service.get(), kVaccineReferenceTableRead).result == DISP_E_EXCEPTION;
  }
  CoUninitialize();
  return failed;
}

// Oftener than a process has thread-local slots.
void ComingAndGoing() {
  constexpr int kTimes = 1200;
  int times = 0;
  while (times < kTimes && CallAndLeave()) ++times;
  Check("coming and going", times, kTimes);
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
  if (count != 3) return 2;
  Need(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), "COM");
  HMODULE server = nullptr;
  {
    Com<IDispatch> service;
    Need(CoCreateInstance(CLSID_cLotrix, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                          service.ReceiveAny()),
         "a service");
    server = GetModuleHandleW(L"Lotrix.dll");
    Check("the server is in this process", server != nullptr, true);
    CheckResult("connection string", Call(service.get(), 0x60030002, arguments[1]).result);
    Com<IDispatch> table;
    FillTable(service.get(), table);
    Names(service.get(), table.get());
    NamedArguments(service.get(), arguments[2]);
    Counts(service.get());
    ByReference(table.get());
    Properties(table.get());
    Unsound(service.get(), table.get());
    ReferringToNothing(table.get());
    UnknownObjects(table.get());
    Collections(service.get());
    ProgIds();
  }
  if (server != nullptr) Factories(server);
  CoUninitialize();
  ComingAndGoing();
  return lotrix_client::Finish(141);
}

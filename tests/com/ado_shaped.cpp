// Automation classes of ADO's shape, as far as a client of its connections and
// recordsets goes, registered under its ProgIDs. They keep a journal of what is done
// with them and answer statements from a file, by their exact text:
//   statement TAB text, then either
//   fail TAB hexadecimal number TAB source TAB description, or
//   field TAB name TAB type for each field, and row TAB value TAB ... for each row,
//   "\N" for a Null.
// A statement without fields gives a recordset that is closed. The files are named by
// ADO_SHAPED_JOURNAL and ADO_SHAPED_ANSWERS.
#include <array>
#include <atomic>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <sstream>
#include <vector>

#include "automation_client.h"

namespace {

using lotrix_client::ToUtf8;
using lotrix_client::ToWide;

constexpr CLSID kConnectionClass = {
    0x3d1f0a52, 0x77c4, 0x4c0e, {0x9d, 0x3b, 0x51, 0x8e, 0x20, 0xa4, 0x6f, 0x01}};
constexpr CLSID kRecordsetClass = {
    0x3d1f0a52, 0x77c4, 0x4c0e, {0x9d, 0x3b, 0x51, 0x8e, 0x20, 0xa4, 0x6f, 0x02}};

HMODULE module = nullptr;
std::atomic<long> objectsAlive = 0;

struct Failure {
  HRESULT number;
  std::string source;
  std::string description;
};

constexpr HRESULT kIsClosed = static_cast<HRESULT>(0x800A0E78L);
constexpr HRESULT kIsOpen = static_cast<HRESULT>(0x800A0E79L);
constexpr HRESULT kNoProvider = static_cast<HRESULT>(0x800A0E7AL);
constexpr HRESULT kNoConnection = static_cast<HRESULT>(0x800A0E7DL);
constexpr HRESULT kNoSuchItem = static_cast<HRESULT>(0x800A0CC1L);
constexpr HRESULT kNoRecord = static_cast<HRESULT>(0x800A0BCDL);
constexpr HRESULT kNoAnswer = static_cast<HRESULT>(0x80040E14L);

struct Field {
  std::string name;
  std::int32_t type;
};

using Row = std::vector<std::optional<std::string>>;

struct Answer {
  std::optional<Failure> failure;
  std::vector<Field> fields;
  std::vector<Row> rows;
};

using Answers = std::map<std::string, Answer>;

std::wstring FromEnvironment(const wchar_t* name) {
  std::array<wchar_t, 1024> value = {};
  const DWORD length =
      GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size()));
  return {value.data(), length < value.size() ? length : 0};
}

void Journal(const std::string& line) {
  const HANDLE file = CreateFileW(FromEnvironment(L"ADO_SHAPED_JOURNAL").c_str(), FILE_APPEND_DATA,
                                  FILE_SHARE_READ, nullptr, OPEN_ALWAYS, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return;
  const std::string text = line + "\n";
  DWORD written = 0;
  WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
  CloseHandle(file);
}

std::vector<std::string> Columns(const std::string& line) {
  std::vector<std::string> columns;
  std::istringstream text(line);
  for (std::string column; std::getline(text, column, '\t');) columns.push_back(column);
  return columns;
}

Answers ReadAnswers() {
  Answers answers;
  Answer* current = nullptr;
  std::ifstream file(ToUtf8(FromEnvironment(L"ADO_SHAPED_ANSWERS")));
  for (std::string line; std::getline(file, line);) {
    const std::vector<std::string> columns = Columns(line);
    if (columns.empty()) continue;
    if (columns[0] == "statement") {
      current = &answers[columns.at(1)];
    } else if (current == nullptr) {
      continue;
    } else if (columns[0] == "fail") {
      const auto number = static_cast<HRESULT>(std::stoul(columns.at(1), nullptr, 16));
      current->failure = Failure{number, columns.at(2), columns.at(3)};
    } else if (columns[0] == "field") {
      current->fields.push_back({columns.at(1), std::stoi(columns.at(2))});
    } else if (columns[0] == "row") {
      Row row;
      for (std::size_t i = 0; i < current->fields.size(); ++i) {
        // An empty last column leaves no trace in the line.
        const std::string value = i + 1 < columns.size() ? columns[i + 1] : "";
        row.push_back(value == "\\N" ? std::nullopt : std::optional(value));
      }
      current->rows.push_back(row);
    }
  }
  return answers;
}

// What a provider would call the types.
VARTYPE VariantType(std::int32_t adoType) {
  switch (adoType) {
    case 2:
      return VT_I2;
    case 3:
      return VT_I4;
    case 5:
      return VT_R8;
    case 6:
      return VT_CY;
    case 7:
    case 133:
    case 135:
      return VT_DATE;
    case 11:
      return VT_BOOL;
    case 20:
      return VT_I8;
    case 131:
      return VT_DECIMAL;
    default:
      return VT_BSTR;
  }
}

void SetText(VARIANT* result, std::string_view text) {
  const std::wstring wide = ToWide(text);
  result->vt = VT_BSTR;
  result->bstrVal = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
}

void SetLong(VARIANT* result, std::int32_t number) {
  result->vt = VT_I4;
  result->lVal = number;
}

void SetLogical(VARIANT* result, bool value) {
  result->vt = VT_BOOL;
  result->boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
}

void SetObject(VARIANT* result, IDispatch* object) {
  result->vt = VT_DISPATCH;
  result->pdispVal = object;
}

const VARIANT& Referred(const VARIANT& argument) {
  return argument.vt == (VT_BYREF | VT_VARIANT) ? *argument.pvarVal : argument;
}

// Of a copy that owns nothing, since the source may not be constant.
HRESULT Convert(const VARIANT& argument, VARTYPE type, lotrix_client::Variant& converted) {
  VARIANT source = Referred(argument);
  return VariantChangeTypeEx(converted.get(), &source, 0x409, 0, type);
}

std::string TextOf(const VARIANT& argument) {
  lotrix_client::Variant text;
  if (FAILED(Convert(argument, VT_BSTR, text))) return "?";
  return ToUtf8({text->bstrVal, SysStringLen(text->bstrVal)});
}

std::int32_t LongOf(const VARIANT& argument) {
  lotrix_client::Variant number;
  return FAILED(Convert(argument, VT_I4, number)) ? -1 : number->lVal;
}

// In the order in which the caller wrote them.
using Arguments = std::vector<const VARIANT*>;

struct Entry {
  DISPID id;
  const wchar_t* name;
  WORD ways;
};

constexpr WORD kGet = DISPATCH_PROPERTYGET;
constexpr WORD kLet = DISPATCH_PROPERTYPUT;

// Objects are late-bound only, and strict about how a member is used.
class Object : public IDispatch {
 public:
  Object() { ++objectsAlive; }
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    *object = nullptr;
    if (id != IID_IUnknown && id != IID_IDispatch) return E_NOINTERFACE;
    *object = static_cast<IDispatch*>(this);
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
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
    for (const Entry& entry : Entries()) {
      if (_wcsicmp(entry.name, names[0]) == 0) ids[0] = entry.id;
    }
    return ids[0] == DISPID_UNKNOWN || count > 1 ? DISP_E_UNKNOWNNAME : S_OK;
  }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                      EXCEPINFO* exception, UINT*) override {
    const Entry* found = nullptr;
    for (const Entry& entry : Entries()) {
      if (entry.id == id && (entry.ways & flags) != 0) found = &entry;
    }
    if (found == nullptr) return DISP_E_MEMBERNOTFOUND;
    Arguments arguments;
    for (UINT i = parameters->cArgs; i > 0; --i) arguments.push_back(&parameters->rgvarg[i - 1]);
    lotrix_client::Variant answer;
    try {
      Run(id, (flags & kLet) != 0, arguments, answer.get());
    } catch (const Failure& failure) {
      if (exception != nullptr) {
        *exception = {};
        exception->scode = failure.number;
        exception->bstrSource = SysAllocString(ToWide(failure.source).c_str());
        exception->bstrDescription = SysAllocString(ToWide(failure.description).c_str());
      }
      return DISP_E_EXCEPTION;
    } catch (HRESULT refused) {
      return refused;
    }
    if (result != nullptr) VariantCopy(result, answer.get());
    return S_OK;
  }

 protected:
  virtual ~Object() { --objectsAlive; }
  [[nodiscard]] virtual std::span<const Entry> Entries() const = 0;
  virtual void Run(DISPID id, bool let, const Arguments& arguments, VARIANT* result) = 0;

 private:
  std::atomic<ULONG> references_ = 1;
};

class Connection;
Connection* AsConnection(const VARIANT& argument);

// The statement's answer; a failure of the provider is raised.
const Answer& AnswerTo(const Answers& answers, const std::string& statement) {
  const auto found = answers.find(statement);
  if (found == answers.end()) throw Failure{kNoAnswer, "Answers", "No answer to: " + statement};
  if (found->second.failure) throw *found->second.failure;
  return found->second;
}

void FieldValue(const Field& field, const std::optional<std::string>& value, VARIANT* result) {
  if (!value) {
    result->vt = VT_NULL;
    return;
  }
  lotrix_client::Variant text(ToWide(*value));
  const HRESULT converted =
      VariantChangeTypeEx(result, text.get(), 0x409, 0, VariantType(field.type));
  if (FAILED(converted)) throw Failure{converted, "Answers", "No such value: " + *value};
}

// Where a recordset stands, shared with its fields.
struct Cursor {
  const Answer* answer = nullptr;  // none when it is closed
  std::size_t position = 0;

  [[nodiscard]] const Answer& Open() const {
    if (answer == nullptr) {
      throw Failure{kIsClosed, "ADODB.Recordset",
                    "Operation is not allowed when the object is closed."};
    }
    return *answer;
  }
  [[nodiscard]] const Row& Current() const {
    if (position < Open().rows.size()) return answer->rows[position];
    throw Failure{kNoRecord, "ADODB.Field",
                  "Either BOF or EOF is True, or the current record has been deleted. "
                  "Requested operation requires a current record."};
  }
};

class FieldObject final : public Object {
 public:
  FieldObject(std::shared_ptr<Cursor> cursor, std::size_t index)
      : cursor_(std::move(cursor)), index_(index) {}

 protected:
  [[nodiscard]] std::span<const Entry> Entries() const override {
    static constexpr std::array<Entry, 3> kEntries = {
        {{DISPID_VALUE, L"Value", kGet}, {1, L"Name", kGet}, {2, L"Type", kGet}}};
    return kEntries;
  }
  void Run(DISPID id, bool, const Arguments& arguments, VARIANT* result) override {
    if (!arguments.empty()) throw DISP_E_BADPARAMCOUNT;
    const Field& field = cursor_->Open().fields.at(index_);
    if (id == 1) return SetText(result, field.name);
    if (id == 2) return SetLong(result, field.type);
    FieldValue(field, cursor_->Current().at(index_), result);
  }

 private:
  std::shared_ptr<Cursor> cursor_;
  std::size_t index_;
};

class FieldsObject final : public Object {
 public:
  explicit FieldsObject(std::shared_ptr<Cursor> cursor) : cursor_(std::move(cursor)) {}

 protected:
  [[nodiscard]] std::span<const Entry> Entries() const override {
    static constexpr std::array<Entry, 2> kEntries = {
        {{DISPID_VALUE, L"Item", kGet}, {1, L"Count", kGet}}};
    return kEntries;
  }
  void Run(DISPID id, bool, const Arguments& arguments, VARIANT* result) override {
    const std::vector<Field>& fields = cursor_->Open().fields;
    if (id == 1) return SetLong(result, static_cast<std::int32_t>(fields.size()));
    if (arguments.size() != 1) throw DISP_E_BADPARAMCOUNT;
    const VARIANT& index = Referred(*arguments[0]);
    for (std::size_t i = 0; i < fields.size(); ++i) {
      const bool meant = index.vt == VT_BSTR
                             ? _stricmp(fields[i].name.c_str(), TextOf(index).c_str()) == 0
                             : LongOf(index) == static_cast<std::int32_t>(i);
      if (meant) return SetObject(result, new FieldObject(cursor_, i));
    }
    throw Failure{kNoSuchItem, "ADODB.Fields",
                  "Item cannot be found in the collection corresponding to the requested name or "
                  "ordinal."};
  }

 private:
  std::shared_ptr<Cursor> cursor_;
};

class Connection final : public Object {
 public:
  Connection() : number_(++made_), answers_(ReadAnswers()) { Journal(Name() + " created"); }

  [[nodiscard]] std::string Name() const { return "connection " + std::to_string(number_); }
  [[nodiscard]] const Answers& answers() const { return answers_; }
  [[nodiscard]] bool IsOpen() const { return open_; }

 protected:
  ~Connection() override { Journal(Name() + " released"); }
  [[nodiscard]] std::span<const Entry> Entries() const override {
    static constexpr std::array<Entry, 6> kEntries = {{{0, L"ConnectionString", kGet | kLet},
                                                       {1, L"Mode", kGet | kLet},
                                                       {2, L"State", kGet},
                                                       {3, L"Open", DISPATCH_METHOD},
                                                       {4, L"Close", DISPATCH_METHOD},
                                                       {5, L"Execute", DISPATCH_METHOD}}};
    return kEntries;
  }
  void Run(DISPID id, bool let, const Arguments& arguments, VARIANT* result) override;

 private:
  void Open(const Arguments& arguments);
  void Close();
  void Execute(const Arguments& arguments, VARIANT* result);

  static inline int made_ = 0;
  int number_;
  Answers answers_;
  std::string connectionString_;
  std::int32_t mode_ = 0;
  bool open_ = false;
};

// What the journal shows of an argument.
std::string Shown(const VARIANT& given) {
  const VARIANT& argument = Referred(given);
  if (argument.vt == VT_ERROR && argument.scode == DISP_E_PARAMNOTFOUND) return "missing";
  if (argument.vt == VT_BSTR) return "\"" + TextOf(argument) + "\"";
  if (argument.vt == VT_DISPATCH) {
    const Connection* const connection = AsConnection(argument);
    return connection != nullptr ? connection->Name() : "an object";
  }
  return TextOf(argument);
}

std::string Shown(const Arguments& arguments) {
  std::string text;
  for (const VARIANT* argument : arguments) {
    if (!text.empty()) text += ", ";
    text += Shown(*argument);
  }
  return "(" + text + ")";
}

Connection* AsConnection(const VARIANT& argument) {
  return argument.vt == VT_DISPATCH ? dynamic_cast<Connection*>(argument.pdispVal) : nullptr;
}

class RecordsetObject final : public Object {
 public:
  RecordsetObject() : number_(++made_) { Journal(Name() + " created"); }

  // What a connection's Execute answers.
  void Stand(const Answer& answer) {
    if (!answer.fields.empty()) cursor_->answer = &answer;
  }

 protected:
  ~RecordsetObject() override {
    Journal(Name() + (cursor_->answer != nullptr ? " released while open" : " released"));
    if (connection_ != nullptr) connection_->Release();
  }
  [[nodiscard]] std::span<const Entry> Entries() const override {
    static constexpr std::array<Entry, 7> kEntries = {{{DISPID_VALUE, L"Fields", kGet},
                                                       {1, L"State", kGet},
                                                       {2, L"RecordCount", kGet},
                                                       {3, L"EOF", kGet},
                                                       {4, L"Open", DISPATCH_METHOD},
                                                       {5, L"Close", DISPATCH_METHOD},
                                                       {6, L"MoveNext", DISPATCH_METHOD}}};
    return kEntries;
  }
  void Run(DISPID id, bool, const Arguments& arguments, VARIANT* result) override {
    switch (id) {
      case DISPID_VALUE:
        return GiveFields(arguments, result);
      case 1:
        return SetLong(result, cursor_->answer != nullptr ? 1 : 0);
      case 2:
        return SetLong(result, static_cast<std::int32_t>(cursor_->Open().rows.size()));
      case 3:
        return SetLogical(result, cursor_->position >= cursor_->Open().rows.size());
      case 4:
        return Open(arguments);
      case 5:
        return Close();
      default:
        static_cast<void>(cursor_->Current());
        ++cursor_->position;
    }
  }

 private:
  [[nodiscard]] std::string Name() const { return "recordset " + std::to_string(number_); }

  void GiveFields(const Arguments& arguments, VARIANT* result) {
    auto* const fields = new FieldsObject(cursor_);
    if (arguments.empty()) return SetObject(result, fields);
    // Fields is the default member, and Item that of what it gives.
    VARIANT index = *arguments[0];
    DISPPARAMS parameters = {&index, nullptr, 1, 0};
    const HRESULT invoked =
        fields->Invoke(DISPID_VALUE, IID_NULL, 0x409, kGet, &parameters, result, nullptr, nullptr);
    fields->Release();
    if (FAILED(invoked)) throw invoked;
  }
  void Open(const Arguments& arguments) {
    Journal(Name() + " Open" + Shown(arguments));
    if (cursor_->answer != nullptr) {
      throw Failure{kIsOpen, "ADODB.Recordset",
                    "Operation is not allowed when the object is open."};
    }
    if (arguments.size() != 5) throw DISP_E_BADPARAMCOUNT;
    Connection* const connection = AsConnection(Referred(*arguments[1]));
    if (connection == nullptr || !connection->IsOpen()) {
      throw Failure{kNoConnection, "ADODB.Recordset",
                    "The connection cannot be used to perform this operation. It is either closed "
                    "or invalid in this context."};
    }
    const Answer& answer = AnswerTo(connection->answers(), TextOf(*arguments[0]));
    if (connection_ == nullptr) {
      connection_ = connection;
      connection_->AddRef();
    }
    *cursor_ = {};
    Stand(answer);
  }
  void Close() {
    Journal(Name() + " Close()");
    static_cast<void>(cursor_->Open());
    *cursor_ = {};
  }

  static inline int made_ = 0;
  int number_;
  Connection* connection_ = nullptr;
  std::shared_ptr<Cursor> cursor_ = std::make_shared<Cursor>();
};

void Connection::Run(DISPID id, bool let, const Arguments& arguments, VARIANT* result) {
  if (let) {
    Journal(Name() + (id == 0 ? " ConnectionString = " : " Mode = ") + Shown(*arguments.at(0)));
    if (id == 0) connectionString_ = TextOf(*arguments[0]);
    if (id == 1) mode_ = LongOf(*arguments[0]);
    return;
  }
  switch (id) {
    case 0:
      return SetText(result, connectionString_);
    case 1:
      return SetLong(result, mode_);
    case 2:
      return SetLong(result, open_ ? 1 : 0);
    case 3:
      return Open(arguments);
    case 4:
      return Close();
    default:
      return Execute(arguments, result);
  }
}

void Connection::Open(const Arguments& arguments) {
  Journal(Name() + " Open" + Shown(arguments));
  if (open_) {
    throw Failure{kIsOpen, "ADODB.Connection", "Operation is not allowed when the object is open."};
  }
  if (connectionString_.find("Provider=Shaped") == std::string::npos) {
    throw Failure{kNoProvider, "ADODB.Connection",
                  "Provider cannot be found. It may not be properly installed."};
  }
  open_ = true;
}

void Connection::Close() {
  Journal(Name() + " Close()");
  if (!open_) {
    throw Failure{kIsClosed, "ADODB.Connection",
                  "Operation is not allowed when the object is closed."};
  }
  open_ = false;
}

void Connection::Execute(const Arguments& arguments, VARIANT* result) {
  Journal(Name() + " Execute" + Shown(arguments));
  if (!open_) {
    throw Failure{kIsClosed, "ADODB.Connection",
                  "Operation is not allowed when the object is closed."};
  }
  const Answer& answer = AnswerTo(answers_, TextOf(*arguments.at(0)));
  auto* const records = new RecordsetObject();
  records->Stand(answer);
  SetObject(result, records);
}

class Factory final : public IClassFactory {
 public:
  explicit Factory(bool connections) : connections_(connections) {}
  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    *object = id == IID_IUnknown || id == IID_IClassFactory ? this : nullptr;
    return *object != nullptr ? S_OK : E_NOINTERFACE;
  }
  // There is one of each class as long as the library is loaded.
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID id, void** object) override {
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    Object* const made = connections_ ? static_cast<Object*>(new Connection())
                                      : static_cast<Object*>(new RecordsetObject());
    const HRESULT result = made->QueryInterface(id, object);
    made->Release();
    return result;
  }
  STDMETHODIMP LockServer(BOOL) override { return S_OK; }

 private:
  bool connections_;
};

bool SetKey(const std::wstring& path, const std::wstring& name, const std::wstring& value) {
  const auto size = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
  return RegSetKeyValueW(HKEY_CLASSES_ROOT, path.c_str(), name.empty() ? nullptr : name.c_str(),
                         REG_SZ, value.c_str(), size) == ERROR_SUCCESS;
}

bool RegisterClassOf(const CLSID& id, const std::wstring& progId) {
  std::array<wchar_t, MAX_PATH> path = {};
  std::array<wchar_t, 40> text = {};
  if (GetModuleFileNameW(module, path.data(), MAX_PATH) == 0) return false;
  if (StringFromGUID2(id, text.data(), static_cast<int>(text.size())) == 0) return false;
  const std::wstring classKey = std::wstring(L"CLSID\\") + text.data();
  return SetKey(progId + L"\\CLSID", L"", text.data()) && SetKey(classKey, L"", progId) &&
         SetKey(classKey + L"\\InprocServer32", L"", path.data()) &&
         SetKey(classKey + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
}

}  // namespace

STDAPI DllGetClassObject(REFCLSID id, REFIID interfaceId, void** object) {
  static Factory connections(true);
  static Factory recordsets(false);
  *object = nullptr;
  if (id == kConnectionClass) return connections.QueryInterface(interfaceId, object);
  if (id == kRecordsetClass) return recordsets.QueryInterface(interfaceId, object);
  return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() { return objectsAlive == 0 ? S_OK : S_FALSE; }

// Into a private registry only: the ProgIDs are another's.
STDAPI DllRegisterServer() {
  const bool registered = RegisterClassOf(kConnectionClass, L"ADODB.Connection") &&
                          RegisterClassOf(kRecordsetClass, L"ADODB.Recordset");
  return registered ? S_OK : E_FAIL;
}

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*) {
  if (reason == DLL_PROCESS_ATTACH) module = instance;
  return TRUE;
}

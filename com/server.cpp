// The entry points of Lotrix.dll: class objects, registration, unloading.

#include "com/server.h"

#include <olectl.h>

#include <array>
#include <atomic>
#include <string>

#include "com/counted.h"
#include "com/failures.h"
#include "com/result_set.h"
#include "com/service.h"
#include "lotrix_h.h"

namespace lotrix::com {

namespace {

using automation::Held;

std::atomic<long> livingObjects = 0;
HMODULE ownModule = nullptr;

void Require(HRESULT result) {
  if (FAILED(result)) automation::RaiseHresult(result);
}

std::wstring OwnPath() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length =
        GetModuleFileNameW(ownModule, path.data(), static_cast<DWORD>(path.size()));
    if (length == 0) Require(HRESULT_FROM_WIN32(GetLastError()));
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    path.resize(path.size() * 2);
  }
}

// The type library inside the server's own file.
Held<ITypeLib> OwnTypeLibrary() {
  ITypeLib* library = nullptr;
  Require(LoadTypeLibEx(OwnPath().c_str(), REGKIND_NONE, &library));
  return Held<ITypeLib>(library);
}

// A class that clients may create.
struct PublishedClass {
  const CLSID* identifier;
  const wchar_t* programId;
  Held<IDispatch> (*create)();
};

const std::array<PublishedClass, 2> kClasses = {{
    {&CLSID_cLotrix, L"Lotrix.cLotrix",
     [] { return Held<IDispatch>(NewServiceObject().release()); }},
    {&CLSID_cResultSet, L"Lotrix.cResultSet",
     [] { return Held<IDispatch>(NewResultSetObject().release()); }},
}};

class ClassFactory final : public Counted<IClassFactory> {
 public:
  explicit ClassFactory(const PublishedClass& published) : published_(published) {}

  STDMETHODIMP QueryInterface(REFIID identifier, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (identifier != IID_IUnknown && identifier != IID_IClassFactory) return E_NOINTERFACE;
    *object = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
  }

  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID identifier, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    HRESULT found = E_NOINTERFACE;
    const HRESULT created = Answer(IID_IClassFactory, [&] {
      found = published_.create()->QueryInterface(identifier, object);
    });
    return FAILED(created) ? created : found;
  }
  STDMETHODIMP LockServer(BOOL lock) override {
    livingObjects += lock != FALSE ? 1 : -1;
    return S_OK;
  }

 private:
  const PublishedClass& published_;
};

// Registration.

std::wstring GuidText(const GUID& identifier) {
  std::array<wchar_t, 40> text{};
  StringFromGUID2(identifier, text.data(), static_cast<int>(text.size()));
  return text.data();
}

void SetClassesValue(const std::wstring& key, const wchar_t* name, const std::wstring& value) {
  const auto bytes = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
  const LSTATUS status =
      RegSetKeyValueW(HKEY_CLASSES_ROOT, key.c_str(), name, REG_SZ, value.c_str(), bytes);
  if (status != ERROR_SUCCESS) Require(HRESULT_FROM_WIN32(static_cast<DWORD>(status)));
}

void DeleteClassesKey(const std::wstring& key) {
  const LSTATUS status = RegDeleteTreeW(HKEY_CLASSES_ROOT, key.c_str());
  if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) {
    Require(HRESULT_FROM_WIN32(static_cast<DWORD>(status)));
  }
}

void RegisterClass(const PublishedClass& published, const std::wstring& path) {
  const std::wstring programId = published.programId;
  const std::wstring classId = GuidText(*published.identifier);
  const std::wstring key = L"CLSID\\" + classId;
  SetClassesValue(key, nullptr, programId);
  SetClassesValue(key + L"\\InprocServer32", nullptr, path);
  SetClassesValue(key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
  SetClassesValue(key + L"\\ProgID", nullptr, programId);
  SetClassesValue(key + L"\\Programmable", nullptr, L"");
  SetClassesValue(key + L"\\TypeLib", nullptr, GuidText(LIBID_Lotrix));
  SetClassesValue(key + L"\\Version", nullptr, L"1.0");
  SetClassesValue(programId, nullptr, programId);
  SetClassesValue(programId + L"\\CLSID", nullptr, classId);
}

// ProgIDs are the same for programs of both kinds, class identifiers are not.
bool IsRegisteredForOtherPrograms(const std::wstring& classKey) {
#ifdef _WIN64
  constexpr REGSAM kOtherView = KEY_WOW64_32KEY;
#else
  constexpr REGSAM kOtherView = KEY_WOW64_64KEY;
#endif
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_CLASSES_ROOT, classKey.c_str(), 0, KEY_READ | kOtherView, &key) !=
      ERROR_SUCCESS) {
    return false;
  }
  RegCloseKey(key);
  return true;
}

void UnregisterClass(const PublishedClass& published) {
  const std::wstring classKey = L"CLSID\\" + GuidText(*published.identifier);
  DeleteClassesKey(classKey);
  if (!IsRegisteredForOtherPrograms(classKey)) DeleteClassesKey(published.programId);
}

void UnregisterLibrary() {
#ifdef _WIN64
  constexpr SYSKIND kSystem = SYS_WIN64;
#else
  constexpr SYSKIND kSystem = SYS_WIN32;
#endif
  const HRESULT result = UnRegisterTypeLib(LIBID_Lotrix, 1, 0, LOCALE_NEUTRAL, kSystem);
  // Unregistering twice is no failure.
  if (result != TYPE_E_REGISTRYACCESS && result != TYPE_E_LIBNOTREGISTERED) Require(result);
}

template <class Work>
bool Succeeds(Work&& work) noexcept {
  try {
    work();
    return true;
  } catch (...) {
    return false;
  }
}

void RegisterAll() {
  std::wstring path = OwnPath();
  Require(RegisterTypeLib(OwnTypeLibrary().get(), path.data(), nullptr));
  for (const PublishedClass& published : kClasses) RegisterClass(published, path);
}

// Every part is tried, whatever becomes of the others.
bool UnregisterAll() noexcept {
  bool all = true;
  for (const PublishedClass& published : kClasses) {
    all = Succeeds([&] { UnregisterClass(published); }) && all;
  }
  return Succeeds(UnregisterLibrary) && all;
}

// The static runtime gives back no thread-local slot when it is unloaded, and a
// process has a thousand of them: once used, the library stays.
void StayLoaded() {
  HMODULE pinned = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                     reinterpret_cast<LPCWSTR>(&StayLoaded), &pinned);
}

}  // namespace

KeepsServerLoaded::KeepsServerLoaded() noexcept { ++livingObjects; }
KeepsServerLoaded::~KeepsServerLoaded() { --livingObjects; }

Held<ITypeInfo> TypeInfoOf(const GUID& identifier) {
  ITypeInfo* information = nullptr;
  Require(OwnTypeLibrary()->GetTypeInfoOfGuid(identifier, &information));
  return Held<ITypeInfo>(information);
}

}  // namespace lotrix::com

using namespace lotrix::com;

extern "C" {

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void* /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) ownModule = module;
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID classId, REFIID identifier, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  StayLoaded();
  for (const PublishedClass& published : kClasses) {
    if (classId != *published.identifier) continue;
    try {
      const Held<IClassFactory> factory(new ClassFactory(published));
      return factory->QueryInterface(identifier, object);
    } catch (...) {
      return E_OUTOFMEMORY;
    }
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() { return livingObjects == 0 ? S_OK : S_FALSE; }

STDAPI DllRegisterServer() {
  if (Succeeds(RegisterAll)) return S_OK;
  UnregisterAll();
  return SELFREG_E_CLASS;
}

STDAPI DllUnregisterServer() { return UnregisterAll() ? S_OK : SELFREG_E_CLASS; }

}  // extern "C"

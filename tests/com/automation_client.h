// What the clients in this folder have in common: checks, strings and counted
// references. They use nothing of the library's own.
#ifndef LOTRIX_TESTS_COM_AUTOMATION_CLIENT_H
#define LOTRIX_TESTS_COM_AUTOMATION_CLIENT_H

#include <ole2.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace lotrix_client {

[[nodiscard]] inline std::string ToUtf8(std::wstring_view text) {
  if (text.empty()) return {};
  const int length = static_cast<int>(text.size());
  const int size =
      WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), length, utf8.data(), size, nullptr, nullptr);
  return utf8;
}

[[nodiscard]] inline std::wstring ToWide(std::string_view utf8) {
  if (utf8.empty()) return {};
  const int size = static_cast<int>(utf8.size());
  const int length = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, nullptr, 0);
  std::wstring text(static_cast<std::size_t>(length), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, text.data(), length);
  return text;
}

[[nodiscard]] inline std::string Hex(HRESULT result) {
  char text[9];
  std::snprintf(text, sizeof text, "%08lX", static_cast<unsigned long>(result));
  return text;
}

class Bstr {
 public:
  Bstr() = default;
  // Holds everything between the quotes, U+0000 too.
  explicit Bstr(std::wstring_view text)
      : text_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}
  ~Bstr() { SysFreeString(text_); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;

  operator BSTR() const { return text_; }
  [[nodiscard]] BSTR* Receive() {
    SysFreeString(std::exchange(text_, nullptr));
    return &text_;
  }
  [[nodiscard]] std::wstring_view view() const { return {text_, SysStringLen(text_)}; }
  [[nodiscard]] std::string utf8() const { return ToUtf8(view()); }

 private:
  BSTR text_ = nullptr;
};

class Variant {
 public:
  Variant() { VariantInit(&value_); }
  explicit Variant(std::wstring_view text) : Variant() {
    value_.vt = VT_BSTR;
    value_.bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  }
  explicit Variant(std::int32_t number) : Variant() {
    value_.vt = VT_I4;
    value_.lVal = number;
  }
  explicit Variant(double number) : Variant() {
    value_.vt = VT_R8;
    value_.dblVal = number;
  }
  explicit Variant(IDispatch* object) : Variant() {
    value_.vt = VT_DISPATCH;
    value_.pdispVal = object;
    if (object != nullptr) object->AddRef();
  }
  Variant(Variant&& other) noexcept : value_(other.value_) { VariantInit(&other.value_); }
  ~Variant() { VariantClear(&value_); }
  Variant& operator=(Variant&&) = delete;
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;

  VARIANT* operator->() { return &value_; }
  [[nodiscard]] VARIANT* get() { return &value_; }
  [[nodiscard]] VARIANT* Receive() {
    VariantClear(&value_);
    return &value_;
  }
  // What it holds, as a check shows it.
  [[nodiscard]] std::string Shown() const {
    switch (value_.vt) {
      case VT_EMPTY:
        return "Empty";
      case VT_NULL:
        return "Null";
      case VT_BSTR:
        return ToUtf8({value_.bstrVal, SysStringLen(value_.bstrVal)});
      case VT_I4:
        return std::to_string(value_.lVal);
      case VT_BOOL:
        return value_.boolVal == VARIANT_TRUE ? "True" : "False";
      default:
        return "a variant of type " + std::to_string(value_.vt);
    }
  }

 private:
  VARIANT value_;
};

[[nodiscard]] inline Variant Missing() {
  Variant missing;
  missing->vt = VT_ERROR;
  missing->scode = DISP_E_PARAMNOTFOUND;
  return missing;
}

template <class Interface>
class Com {
 public:
  Com() = default;
  ~Com() { Drop(); }
  Com(const Com&) = delete;
  Com& operator=(const Com&) = delete;

  Interface* operator->() const { return object_; }
  [[nodiscard]] Interface* get() const { return object_; }
  [[nodiscard]] Interface** Receive() {
    Drop();
    return &object_;
  }
  [[nodiscard]] void** ReceiveAny() { return reinterpret_cast<void**>(Receive()); }
  void Drop() {
    if (object_ != nullptr) std::exchange(object_, nullptr)->Release();
  }

 private:
  Interface* object_ = nullptr;
};

inline int checksMade = 0;

inline void Check(std::string_view name, std::string_view got, std::string_view expected) {
  ++checksMade;
  if (got == expected) {
    std::printf("ok %.*s\n", static_cast<int>(name.size()), name.data());
  } else {
    std::printf("FAIL %.*s: got %.*s, expected %.*s\n", static_cast<int>(name.size()), name.data(),
                static_cast<int>(got.size()), got.data(), static_cast<int>(expected.size()),
                expected.data());
  }
}

template <class Number>
requires std::is_arithmetic_v<Number>
void Check(std::string_view name, Number got, std::type_identity_t<Number> expected) {
  Check(name, std::to_string(got), std::to_string(expected));
}

inline void CheckResult(std::string_view name, HRESULT got, HRESULT expected = S_OK) {
  Check(name, Hex(got), Hex(expected));
}

// Checks nothing: what a client could not go on without.
inline void Need(HRESULT result, std::string_view what) {
  if (SUCCEEDED(result)) return;
  std::printf("FAIL %.*s: %s\n", static_cast<int>(what.size()), what.data(), Hex(result).c_str());
  std::fflush(stdout);
  std::exit(1);
}

// The last line, which shows that a client came to its end.
inline int Finish(int expectedChecks) {
  if (checksMade != expectedChecks) {
    std::printf("FAIL number of checks: got %d, expected %d\n", checksMade, expectedChecks);
  }
  std::printf("finished %d\n", checksMade);
  return 0;
}

}  // namespace lotrix_client

#endif

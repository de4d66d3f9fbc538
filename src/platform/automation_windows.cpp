#include <dispex.h>

#include <charconv>
#include <new>

#include "src/errors/raise_error.h"
#include "src/platform/automation.h"
#include "src/platform/dates.h"
#include "src/platform/values.h"
#include "src/platform/wide_text.h"

namespace lotrix::automation {

namespace {

constexpr HRESULT kScriptErrors = static_cast<HRESULT>(0x800A0000);

// The English rules, whatever the machine's own are.
constexpr LCID kEnglish = MAKELCID(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), SORT_DEFAULT);

Value FromUnsigned(ULONGLONG number) {
  if (number <= static_cast<ULONGLONG>(INT64_MAX)) return static_cast<std::int64_t>(number);
  return static_cast<double>(number);
}

// The number that people read and write, not the nearest double to the float: 0.1
// stays 0.1.
double FromFloat(float number) {
  char text[64];
  const auto written = std::to_chars(text, text + sizeof(text), number);
  double widened = number;
  std::from_chars(text, written.ptr, widened);
  return widened;
}

OwnedVariant ByAutomation(const VARIANT& variant, VARTYPE type) {
  OwnedVariant converted;
  const HRESULT result = VariantChangeTypeEx(&*converted, const_cast<VARIANT*>(&variant), kEnglish,
                                             VARIANT_NOUSEROVERRIDE, type);
  if (FAILED(result)) RaiseHresult(result);
  return converted;
}

Value DefaultValueOf(const Held<IDispatch>& object) {
  if (object == nullptr) RaiseRuntimeError(RuntimeError::kObjectNotSet);
  DISPPARAMS none{};
  OwnedVariant value;
  const HRESULT result =
      object->Invoke(DISPID_VALUE, IID_NULL, LOCALE_USER_DEFAULT,
                     DISPATCH_METHOD | DISPATCH_PROPERTYGET, &none, &*value, nullptr, nullptr);
  // An object whose value is an object would send us round in circles.
  if (FAILED(result) || HoldsObject(*value)) RaiseRuntimeError(RuntimeError::kTypeMismatch);
  return ToValue(*value);
}

std::string SystemText(HRESULT result) {
  wchar_t* text = nullptr;
  const DWORD length = FormatMessageW(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
      nullptr, static_cast<DWORD>(result), 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
  std::string utf8 = ToUtf8({text, length});
  LocalFree(text);
  while (!utf8.empty() && (utf8.back() == '\r' || utf8.back() == '\n' || utf8.back() == ' ')) {
    utf8.pop_back();
  }
  return utf8.empty() ? "Automation error" : utf8;
}

struct ExceptionTexts {
  EXCEPINFO info{};
  ~ExceptionTexts() {
    SysFreeString(info.bstrSource);
    SysFreeString(info.bstrDescription);
    SysFreeString(info.bstrHelpFile);
  }
};

[[noreturn]] void RaiseInvoked(HRESULT result, EXCEPINFO& info) {
  switch (result) {
    case DISP_E_MEMBERNOTFOUND:
    case DISP_E_UNKNOWNNAME:
      RaiseRuntimeError(RuntimeError::kUnknownMember);
    case DISP_E_TYPEMISMATCH:
      RaiseRuntimeError(RuntimeError::kTypeMismatch);
    case DISP_E_BADPARAMCOUNT:
      RaiseRuntimeError(RuntimeError::kWrongNumberOfArguments);
    case DISP_E_PARAMNOTOPTIONAL:
      RaiseRuntimeError(RuntimeError::kArgumentNotOptional);
    case DISP_E_EXCEPTION:
      break;
    default:
      RaiseHresult(result);
  }
  if (info.pfnDeferredFillIn != nullptr) info.pfnDeferredFillIn(&info);
  // Old programs give a 16-bit code in place of an HRESULT.
  const HRESULT number = info.wCode != 0 ? kScriptErrors + info.wCode : info.scode;
  std::string description = FromBstr(info.bstrDescription);
  if (description.empty()) description = SystemText(number);
  throw Error(FromHresult(number), std::move(description), FromBstr(info.bstrSource));
}

// Objects of script classes may answer through this interface alone. Null for
// others.
Held<IDispatchEx> Extended(IDispatch* object) {
  void* extended = nullptr;
  if (FAILED(object->QueryInterface(__uuidof(IDispatchEx), &extended))) return nullptr;
  return Held<IDispatchEx>(static_cast<IDispatchEx*>(extended));
}

DISPID IdOf(IDispatch* object, const wchar_t* member) {
  if (object == nullptr) RaiseRuntimeError(RuntimeError::kObjectNotSet);
  DISPID id = DISPID_UNKNOWN;
  auto* name = const_cast<wchar_t*>(member);
  HRESULT found = object->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id);
  if (found == E_NOTIMPL) {
    if (const Held<IDispatchEx> extended = Extended(object)) {
      const OwnedVariant text = FromText(ToUtf8(member));
      found = extended->GetDispID(text->bstrVal, fdexNameCaseInsensitive, &id);
    }
  }
  if (FAILED(found)) RaiseRuntimeError(RuntimeError::kUnknownMember);
  return id;
}

// What came of an invocation.
struct Invoked {
  HRESULT result = S_OK;
  OwnedVariant answer;
  ExceptionTexts texts;
};

void InvokeById(IDispatch* object, DISPID id, WORD kind, const std::vector<OwnedVariant>& arguments,
                Invoked& invoked) {
  std::vector<VARIANT> backwards;
  backwards.reserve(arguments.size());
  for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument) {
    backwards.push_back(**argument);
  }
  DISPID named = DISPID_PROPERTYPUT;
  const bool puts = kind == DISPATCH_PROPERTYPUT;
  DISPPARAMS parameters = {backwards.data(), puts ? &named : nullptr,
                           static_cast<UINT>(backwards.size()), puts ? 1U : 0U};
  VARIANT* const answer = puts ? nullptr : &*invoked.answer;
  EXCEPINFO* const info = &invoked.texts.info;
  invoked.result =
      object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters, answer, info, nullptr);
  if (invoked.result != E_NOTIMPL) return;
  if (const Held<IDispatchEx> extended = Extended(object)) {
    invoked.result =
        extended->InvokeEx(id, LOCALE_USER_DEFAULT, kind, &parameters, answer, info, nullptr);
  }
}

OwnedVariant AnswerOf(Invoked& invoked) {
  if (FAILED(invoked.result)) RaiseInvoked(invoked.result, invoked.texts.info);
  return std::move(invoked.answer);
}

}  // namespace

std::string FromBstr(const OLECHAR* text) {
  if (text == nullptr) return {};
  return ToUtf8({text, SysStringLen(const_cast<OLECHAR*>(text))});
}

BSTR ToBstr(std::string_view utf8) {
  const std::wstring wide = ToWide(utf8);
  BSTR const text = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
  if (text == nullptr) throw std::bad_alloc();
  return text;
}

// Its own is not looked for behind a reference to nothing.
void RequireReference(const VARIANT& variant) {
  if ((V_VT(&variant) & VT_BYREF) != 0 && V_BYREF(&variant) == nullptr) {
    RaiseRuntimeError(RuntimeError::kTypeMismatch);
  }
}

const VARIANT& Referred(const VARIANT& variant) {
  return V_VT(&variant) == (VT_BYREF | VT_VARIANT) && V_VARIANTREF(&variant) != nullptr
             ? *V_VARIANTREF(&variant)
             : variant;
}

bool IsMissing(const VARIANT& variant) {
  const VARIANT& referred = Referred(variant);
  return V_VT(&referred) == VT_ERROR && V_ERROR(&referred) == DISP_E_PARAMNOTFOUND;
}

bool HoldsObject(const VARIANT& variant) {
  const VARTYPE type = V_VT(&Referred(variant)) & ~VT_BYREF;
  return type == VT_DISPATCH || type == VT_UNKNOWN;
}

Held<IDispatch> ObjectIn(const VARIANT& variant) {
  const VARIANT& referred = Referred(variant);
  if (!HoldsObject(referred)) return nullptr;
  RequireReference(referred);
  const bool byReference = (V_VT(&referred) & VT_BYREF) != 0;
  IUnknown* const object = byReference ? *V_UNKNOWNREF(&referred) : V_UNKNOWN(&referred);
  if (object == nullptr) return nullptr;
  void* dispatch = nullptr;
  if (FAILED(object->QueryInterface(IID_IDispatch, &dispatch))) {
    RaiseRuntimeError(RuntimeError::kTypeMismatch);
  }
  return Held<IDispatch>(static_cast<IDispatch*>(dispatch));
}

Value ToValue(const VARIANT& variant) {
  RequireReference(variant);
  RequireReference(Referred(variant));
  if (HoldsObject(variant)) return DefaultValueOf(ObjectIn(variant));
  OwnedVariant plain;
  if (FAILED(VariantCopyInd(&*plain, const_cast<VARIANT*>(&variant))))
    RaiseRuntimeError(RuntimeError::kTypeMismatch);
  switch (V_VT(&*plain)) {
    case VT_EMPTY:
      return Empty{};
    case VT_NULL:
      return Null{};
    case VT_BOOL:
      return plain->boolVal != VARIANT_FALSE;
    case VT_I1:
      return std::int64_t{static_cast<signed char>(plain->cVal)};
    case VT_UI1:
      return std::int64_t{plain->bVal};
    case VT_I2:
      return std::int64_t{plain->iVal};
    case VT_UI2:
      return std::int64_t{plain->uiVal};
    case VT_I4:
    case VT_INT:
      return std::int64_t{plain->lVal};
    case VT_UI4:
    case VT_UINT:
      return std::int64_t{plain->ulVal};
    case VT_I8:
      return std::int64_t{plain->llVal};
    case VT_UI8:
      return FromUnsigned(plain->ullVal);
    case VT_R4:
      return FromFloat(plain->fltVal);
    case VT_R8:
      return plain->dblVal;
    case VT_CY:
    case VT_DECIMAL:
      return ByAutomation(*plain, VT_R8)->dblVal;
    case VT_DATE:
      return lotrix::ToDate(plain->date);
    case VT_BSTR:
      return FromBstr(plain->bstrVal);
    default:
      RaiseRuntimeError(RuntimeError::kTypeMismatch);
  }
}

namespace {

// Formed here, since not every system leaves out the user's own formats when it is
// asked to.
std::string DateTimeText(DATE moment) {
  SYSTEMTIME time{};
  if (!VariantTimeToSystemTime(moment, &time)) RaiseRuntimeError(RuntimeError::kOverflow);
  const Date day{static_cast<std::int16_t>(time.wYear), static_cast<std::uint8_t>(time.wMonth),
                 static_cast<std::uint8_t>(time.wDay)};
  const bool hasTime = time.wHour != 0 || time.wMinute != 0 || time.wSecond != 0;
  if (!hasTime) return DateText(day);
  const auto twoDigits = [](WORD number) {
    return (number < 10 ? "0" : "") + std::to_string(number);
  };
  const std::string clock = std::to_string(time.wHour % 12 == 0 ? 12 : time.wHour % 12) + ":" +
                            twoDigits(time.wMinute) + ":" + twoDigits(time.wSecond) +
                            (time.wHour < 12 ? " AM" : " PM");
  return day == kZeroDate ? clock : DateText(day) + " " + clock;
}

}  // namespace

std::string ToEnglishText(const VARIANT& variant) {
  if (V_VT(&variant) == VT_DATE) return DateTimeText(V_DATE(&variant));
  return FromBstr(ByAutomation(variant, VT_BSTR)->bstrVal);
}

OwnedVariant FromValue(const Value& value) {
  OwnedVariant variant;
  if (const auto* text = std::get_if<std::string>(&value)) return FromText(*text);
  if (const auto* whole = std::get_if<std::int64_t>(&value)) {
    if (*whole == static_cast<std::int32_t>(*whole)) {
      return FromLong(static_cast<std::int32_t>(*whole));
    }
    variant->vt = VT_R8;
    variant->dblVal = static_cast<double>(*whole);
  } else if (const auto* number = std::get_if<double>(&value)) {
    variant->vt = VT_R8;
    variant->dblVal = *number;
  } else if (const auto* logical = std::get_if<bool>(&value)) {
    variant->vt = VT_BOOL;
    variant->boolVal = *logical ? VARIANT_TRUE : VARIANT_FALSE;
  } else if (std::holds_alternative<Date>(value)) {
    variant->vt = VT_DATE;
    variant->date = lotrix::ToDouble(value);
  } else if (std::holds_alternative<Null>(value)) {
    variant->vt = VT_NULL;
  }
  return variant;
}

OwnedVariant FromText(std::string_view utf8) {
  OwnedVariant variant;
  variant->bstrVal = ToBstr(utf8);
  variant->vt = VT_BSTR;
  return variant;
}

OwnedVariant FromLong(std::int32_t number) {
  OwnedVariant variant;
  variant->vt = VT_I4;
  variant->lVal = number;
  return variant;
}

OwnedVariant FromObject(IDispatch* object) {
  OwnedVariant variant;
  variant->vt = VT_DISPATCH;
  variant->pdispVal = Hold(object).release();
  return variant;
}

OwnedVariant MissingArgument() {
  OwnedVariant variant;
  variant->vt = VT_ERROR;
  variant->scode = DISP_E_PARAMNOTFOUND;
  return variant;
}

HRESULT ToHresult(std::int32_t number) {
  if (number > 0 && number < 65536) return kScriptErrors + number;
  return number < 0 ? number : E_FAIL;
}

std::int32_t FromHresult(HRESULT result) {
  const auto bits = static_cast<std::uint32_t>(result);
  return (bits & 0xFFFF0000U) == 0x800A0000U ? static_cast<std::int32_t>(bits & 0xFFFFU) : result;
}

void RaiseHresult(HRESULT result) {
  switch (result) {
    case DISP_E_TYPEMISMATCH:
      RaiseRuntimeError(RuntimeError::kTypeMismatch);
    case DISP_E_OVERFLOW:
      RaiseRuntimeError(RuntimeError::kOverflow);
    case E_OUTOFMEMORY:
      throw std::bad_alloc();
    default:
      throw Error(FromHresult(result), SystemText(result));
  }
}

OwnedVariant Call(IDispatch* object, const wchar_t* member, std::vector<OwnedVariant> arguments) {
  Invoked invoked;
  InvokeById(object, IdOf(object, member), DISPATCH_METHOD, arguments, invoked);
  return AnswerOf(invoked);
}

OwnedVariant Get(IDispatch* object, const wchar_t* member, std::vector<OwnedVariant> arguments) {
  const DISPID id = IdOf(object, member);
  Invoked invoked;
  // A plain property cannot be called, and is all that stands without arguments.
  if (arguments.empty()) InvokeById(object, id, DISPATCH_PROPERTYGET, arguments, invoked);
  if (!arguments.empty() || invoked.result == DISP_E_MEMBERNOTFOUND) {
    // Many objects tell a property from a function by nothing but the caller's word.
    InvokeById(object, id, DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments, invoked);
  }
  return AnswerOf(invoked);
}

void Put(IDispatch* object, const wchar_t* member, OwnedVariant value) {
  Invoked invoked;
  InvokeById(object, IdOf(object, member), DISPATCH_PROPERTYPUT, Arguments(std::move(value)),
             invoked);
  AnswerOf(invoked);
}

}  // namespace lotrix::automation

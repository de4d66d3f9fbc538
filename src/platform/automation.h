// OLE Automation: its values as ours and back, and calls of its objects by name.
// Windows only.
#ifndef LOTRIX_SRC_PLATFORM_AUTOMATION_H
#define LOTRIX_SRC_PLATFORM_AUTOMATION_H

#include <ole2.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "lotrix/error.h"
#include "lotrix/value.h"

namespace lotrix::automation {

struct ReleaseObject {
  template <class Object>
  void operator()(Object* object) const {
    object->Release();
  }
};
template <class Interface>
using Held = std::unique_ptr<Interface, ReleaseObject>;

// A counted reference of its own to an object that somebody else holds.
template <class Interface>
[[nodiscard]] Held<Interface> Hold(Interface* object) {
  if (object != nullptr) object->AddRef();
  return Held<Interface>(object);
}

// A VARIANT that is cleared at its end.
class OwnedVariant {
 public:
  OwnedVariant() { VariantInit(&variant_); }
  ~OwnedVariant() { VariantClear(&variant_); }
  OwnedVariant(OwnedVariant&& other) noexcept : variant_(other.variant_) {
    VariantInit(&other.variant_);
  }
  OwnedVariant& operator=(OwnedVariant&&) = delete;
  OwnedVariant(const OwnedVariant&) = delete;
  OwnedVariant& operator=(const OwnedVariant&) = delete;

  [[nodiscard]] VARIANT& operator*() { return variant_; }
  [[nodiscard]] const VARIANT& operator*() const { return variant_; }
  VARIANT* operator->() { return &variant_; }
  const VARIANT* operator->() const { return &variant_; }
  // Hands the content over to `target`, which holds nothing.
  void MoveTo(VARIANT& target) {
    target = variant_;
    VariantInit(&variant_);
  }

 private:
  VARIANT variant_;
};

// Null stands for the empty text.
[[nodiscard]] std::string FromBstr(const OLECHAR* text);
// Throws std::bad_alloc.
[[nodiscard]] BSTR ToBstr(std::string_view utf8);

// What a by-reference variant refers to.
[[nodiscard]] const VARIANT& Referred(const VARIANT& variant);
[[nodiscard]] bool IsMissing(const VARIANT& variant);
[[nodiscard]] bool HoldsObject(const VARIANT& variant);
// The object that it holds, perhaps null; null where it holds none. Throws 13 for an
// object that is not an automation object.
[[nodiscard]] Held<IDispatch> ObjectIn(const VARIANT& variant);

// Of an object, the value of its default member. A date's time of day is dropped,
// numbers of all kinds become whole numbers or doubles. Throws 13 for an array, an
// object without a value and whatever else is no value.
[[nodiscard]] Value ToValue(const VARIANT& variant);
// As automation writes it by the rules of US English.
[[nodiscard]] std::string ToEnglishText(const VARIANT& variant);
// Anything but a collection. Whole numbers that a Long cannot hold become doubles,
// since scripts know no wider ones.
[[nodiscard]] OwnedVariant FromValue(const Value& value);

[[nodiscard]] OwnedVariant FromText(std::string_view utf8);
[[nodiscard]] OwnedVariant FromLong(std::int32_t number);
[[nodiscard]] OwnedVariant FromObject(IDispatch* object);
[[nodiscard]] OwnedVariant MissingArgument();

// Numbers below 65536 travel as 800A0000 + number, which is how scripts see the
// plain number; the others are HRESULTs already.
[[nodiscard]] HRESULT ToHresult(std::int32_t number);
[[nodiscard]] std::int32_t FromHresult(HRESULT result);

// Throws an Error with the number, and the text that the system has for it.
[[noreturn]] void RaiseHresult(HRESULT result);

// Calls of another program's object. All throw an Error with the number, source
// and description that the object gives, 438 for a member it does not have, and
// 91 without an object.
OwnedVariant Call(IDispatch* object, const wchar_t* member,
                  std::vector<OwnedVariant> arguments = {});
[[nodiscard]] OwnedVariant Get(IDispatch* object, const wchar_t* member,
                               std::vector<OwnedVariant> arguments = {});
void Put(IDispatch* object, const wchar_t* member, OwnedVariant value);

// Arguments in their order; a vector cannot be made of braces without copies.
template <class... Variants>
[[nodiscard]] std::vector<OwnedVariant> Arguments(Variants... variants) {
  std::vector<OwnedVariant> arguments;
  arguments.reserve(sizeof...(variants));
  (arguments.push_back(std::move(variants)), ...);
  return arguments;
}

}  // namespace lotrix::automation

#endif

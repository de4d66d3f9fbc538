#include "com/collection.h"

#include <mutex>
#include <unordered_map>

#include "com/automation_object.h"
#include "com/enumerator.h"
#include "src/errors/raise_error.h"
#include "src/platform/text.h"

namespace lotrix::com {

namespace {

using automation::FromLong;
using automation::FromText;
using automation::Held;
using automation::OwnedVariant;

constexpr std::uint32_t kItem = DISPID_VALUE;
constexpr std::uint32_t kAdd = 1;
constexpr std::uint32_t kCount = 2;
constexpr std::uint32_t kRemove = 3;
constexpr auto kNewEnum = static_cast<std::uint32_t>(DISPID_NEWENUM);

std::span<const MemberDescription> CollectionMembers() {
  using enum MemberKind;
  constexpr Parameter kIndex = {"index", ParameterType::kVariant, false, {}, true};
  constexpr Parameter kNewItem = {"item", ParameterType::kVariant, false, {}, true};
  constexpr Parameter kKey = {"key", ParameterType::kVariant, true, {}, true};
  static const std::vector<MemberDescription> kMembers = {
      {"Item", kItem, kPropertyGet, {kIndex}, "Variant"},
      {"Add", kAdd, kMethod, {kNewItem, kKey}, {}},
      {"Count", kCount, kPropertyGet, {}, "Long"},
      {"Remove", kRemove, kMethod, {kIndex}, {}},
      {"_NewEnum", kNewEnum, kPropertyGet, {}, "Unknown"},
  };
  return kMembers;
}

// A text is a key, whatever it looks like; anything else is a position.
Value ItemAt(const Collection& collection, const VARIANT& index) {
  const Value position = ValueIn(index, ParameterType::kLong);
  if (const auto* key = std::get_if<std::string>(&position)) return collection.Item(*key);
  return collection.Item(LongIn(index));
}

void RemoveAt(Collection& collection, const VARIANT& index) {
  const Value position = ValueIn(index, ParameterType::kLong);
  if (const auto* key = std::get_if<std::string>(&position)) return collection.Remove(*key);
  collection.Remove(LongIn(index));
}

void AddItem(Collection& collection, const VARIANT& item, const VARIANT* key) {
  if (key == nullptr || automation::IsMissing(*key)) {
    collection.Add(ValueOf(item));
  } else {
    collection.Add(ValueOf(item), TextIn(*key));
  }
}

// By position, so that items added during a For Each are met and removed ones are
// not.
Held<IUnknown> EnumeratorOf(std::shared_ptr<Collection> collection) {
  return NewEnumerator([collection = std::move(collection)](std::int32_t position, VARIANT& item) {
    if (position > collection->Count()) return false;
    VariantOf(collection->Item(position)).MoveTo(item);
    return true;
  });
}

// Asked of an object to learn whether it is one of these: an interface that nobody
// else answers to.
// {0d5a3c1e-8b56-4c1b-a9f2-2f6c7d0e6b41}
constexpr GUID kOwnCollection = {
    0x0d5a3c1e, 0x8b56, 0x4c1b, {0xa9, 0xf2, 0x2f, 0x6c, 0x7d, 0x0e, 0x6b, 0x41}};

class CollectionObject;

// The objects that stand for collections now. One table for the process, since a
// client may compare two references for being the same object.
struct LivingObjects {
  std::mutex mutex;
  std::unordered_map<const Collection*, CollectionObject*> objects;
};
LivingObjects& Living() {
  static LivingObjects living;
  return living;
}

class CollectionObject final : public AutomationObject<_Collection> {
 public:
  explicit CollectionObject(std::shared_ptr<Collection> collection)
      : collection_(std::move(collection)) {}

  STDMETHODIMP_(ULONG) Release() override {
    // What the collection holds may be a client's, and call back when it goes.
    const std::shared_ptr<Collection> goesBehindTheLock = collection_;
    // Leaving the table and dying are one step, or another thread could be handed
    // an object on its way out.
    const std::lock_guard lock(Living().mutex);
    return AutomationObject::Release();
  }

  STDMETHODIMP get_Item(VARIANT* index, VARIANT* result) override {
    return Answered([&] {
      VARIANT& answer = FreshOut(result);
      VariantOf(ItemAt(*collection_, PointedTo(index))).MoveTo(answer);
    });
  }
  STDMETHODIMP Add(VARIANT* item, VARIANT* key) override {
    return Answered([&] { AddItem(*collection_, PointedTo(item), key); });
  }
  STDMETHODIMP get_Count(LONG* result) override {
    return Answered([&] { FreshOut(result) = collection_->Count(); });
  }
  STDMETHODIMP Remove(VARIANT* index) override {
    return Answered([&] { RemoveAt(*collection_, PointedTo(index)); });
  }
  STDMETHODIMP get__NewEnum(IUnknown** result) override {
    return Answered([&] {
      IUnknown*& answer = FreshOut(result);
      answer = EnumeratorOf(collection_).release();
    });
  }

  [[nodiscard]] const std::shared_ptr<Collection>& collection() const { return collection_; }

 private:
  ~CollectionObject() override { Living().objects.erase(collection_.get()); }

  [[nodiscard]] const GUID& Identifier() const override { return IID__Collection; }
  [[nodiscard]] std::span<const MemberDescription> Table() const override {
    return CollectionMembers();
  }
  [[nodiscard]] void* OtherInterface(const GUID& identifier) override {
    return identifier == kOwnCollection ? this : nullptr;
  }

  void Run(const MemberDescription& member, Given given, VARIANT& result) override {
    switch (member.dispatchId) {
      case kItem:
        VariantOf(ItemAt(*collection_, *given[0])).MoveTo(result);
        break;
      case kAdd:
        AddItem(*collection_, *given[0], given[1]);
        break;
      case kCount:
        FromLong(collection_->Count()).MoveTo(result);
        break;
      case kRemove:
        RemoveAt(*collection_, *given[0]);
        break;
      case kNewEnum:
        result.punkVal = EnumeratorOf(collection_).release();
        result.vt = VT_UNKNOWN;
        break;
    }
  }

  std::shared_ptr<Collection> collection_;
};

class AutomationList final : public ForeignList {
 public:
  explicit AutomationList(IDispatch* object) : object_(automation::Hold(object)) {}

  void Add(Value item) override {
    automation::Call(object_.get(), L"Add", automation::Arguments(VariantOf(item)));
  }
  void Add(Value item, std::string_view key) override {
    automation::Call(object_.get(), L"Add", automation::Arguments(VariantOf(item), FromText(key)));
  }
  Value Item(std::int32_t position) override { return ItemUnder(FromLong(position)); }
  Value Item(std::string_view key) override { return ItemUnder(FromText(key)); }
  void Remove(std::int32_t position) override {
    automation::Call(object_.get(), L"Remove", automation::Arguments(FromLong(position)));
  }
  void Remove(std::string_view key) override {
    automation::Call(object_.get(), L"Remove", automation::Arguments(FromText(key)));
  }
  std::int32_t Count() override {
    OwnedVariant count = automation::Get(object_.get(), L"Count");
    // A script's function read as a property is an object; it wants to be called.
    if (automation::HoldsObject(*count)) {
      return LongIn(*automation::Call(object_.get(), L"Count"));
    }
    return LongIn(*count);
  }

  [[nodiscard]] IDispatch* object() const { return object_.get(); }

 private:
  Value ItemUnder(OwnedVariant index) {
    return ValueOf(
        *automation::Get(object_.get(), L"Item", automation::Arguments(std::move(index))));
  }

  Held<IDispatch> object_;
};

}  // namespace

Held<IDispatch> ObjectOf(const std::shared_ptr<Collection>& collection) {
  if (collection == nullptr) return nullptr;
  // Every foreign list on this side of the boundary is one of these.
  if (auto* const list = static_cast<AutomationList*>(collection->Foreign())) {
    return automation::Hold(list->object());
  }
  const std::lock_guard lock(Living().mutex);
  CollectionObject*& object = Living().objects[collection.get()];
  if (object != nullptr) return automation::Hold<IDispatch>(object);
  object = new CollectionObject(collection);
  return Held<IDispatch>(object);
}

std::shared_ptr<Collection> CollectionOf(IDispatch* object) {
  if (object == nullptr) return nullptr;
  void* own = nullptr;
  if (SUCCEEDED(object->QueryInterface(kOwnCollection, &own))) {
    const Held<CollectionObject> held(static_cast<CollectionObject*>(own));
    return held->collection();
  }
  return std::make_shared<Collection>(std::make_unique<AutomationList>(object));
}

OwnedVariant VariantOf(const Value& value) {
  const auto* const collection = std::get_if<std::shared_ptr<Collection>>(&value);
  if (collection == nullptr) return automation::FromValue(value);
  const Held<IDispatch> object = ObjectOf(*collection);
  return automation::FromObject(object.get());
}

Value ValueOf(const VARIANT& variant) {
  if (!automation::HoldsObject(variant)) {
    Value value = automation::ToValue(variant);
    const auto* const text = std::get_if<std::string>(&value);
    if (text != nullptr && !IsValidUtf8(*text)) RaiseRuntimeError(RuntimeError::kInvalidArgument);
    return value;
  }
  return CollectionOf(automation::ObjectIn(variant).get());
}

}  // namespace lotrix::com

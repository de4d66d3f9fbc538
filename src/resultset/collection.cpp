#include "lotrix/collection.h"

#include <charconv>
#include <cstring>
#include <limits>
#include <new>
#include <optional>
#include <string>
#include <type_traits>
#include <unordered_map>
#include <utility>

#include "src/errors/raise_error.h"
#include "src/platform/numbers.h"
#include "src/platform/text.h"

namespace lotrix {

namespace {

constexpr std::size_t kNowhere = std::numeric_limits<std::size_t>::max();

// A number exactly as it is written in decimal: no sign, no leading zero.
std::optional<std::size_t> PlainNumber(std::string_view key) {
  std::size_t number = 0;
  const auto read = std::from_chars(key.data(), key.data() + key.size(), number);
  const bool plain =
      read.ec == std::errc() && read.ptr == key.data() + key.size() && key.front() != '0';
  return plain ? std::optional(number) : std::nullopt;
}

}  // namespace

struct Collection::Keys {
  // By slot; nothing for an item without a key and for a removed one.
  std::vector<std::optional<std::string>> folded;
  std::vector<bool> removed;
  std::size_t gaps = 0;
  std::unordered_map<std::string, std::size_t> slots;
  // Here for its room: a row of a table has no keys.
  std::unique_ptr<ForeignList> foreign;
};

template <class T>
void Collection::PackedValue::Put(const T& value) {
  static_assert(std::is_trivially_copyable_v<T> && sizeof(T) <= sizeof(bytes_));
  std::memcpy(bytes_, &value, sizeof value);
}

template <class T>
T Collection::PackedValue::Get() const {
  T value;
  std::memcpy(&value, bytes_, sizeof value);
  return value;
}

namespace {

struct LongText {
  char* data;
  std::size_t size;
};

}  // namespace

Collection::PackedValue::PackedValue(std::string_view text) { PutText(text); }

Collection::PackedValue::PackedValue(Value value) {
  struct {
    PackedValue& packed;
    void operator()(Empty) const { packed.kind_ = kEmpty; }
    void operator()(Null) const { packed.kind_ = kNull; }
    void operator()(bool logical) const {
      packed.Put(logical);
      packed.kind_ = kLogical;
    }
    void operator()(std::int64_t whole) const {
      packed.Put(whole);
      packed.kind_ = kWhole;
    }
    void operator()(double number) const {
      packed.Put(number);
      packed.kind_ = kDouble;
    }
    void operator()(Date date) const {
      packed.Put(date);
      packed.kind_ = kDate;
    }
    void operator()(const std::string& text) const { packed.PutText(text); }
    void operator()(std::shared_ptr<Collection>& collection) const {
      new (packed.bytes_) std::shared_ptr<Collection>(std::move(collection));
      packed.kind_ = kCollection;
    }
  } const pack{*this};
  std::visit(pack, value);
}

Collection::PackedValue::PackedValue(PackedValue&& other) noexcept : kind_(other.kind_) {
  // Even a shared pointer may be moved by its bytes when the source is forgotten.
  std::memcpy(bytes_, other.bytes_, sizeof bytes_);
  other.kind_ = kEmpty;
}

Collection::PackedValue& Collection::PackedValue::operator=(PackedValue&& other) noexcept {
  if (this == &other) return *this;
  // Goes last: what it lets go may be a client's, and call back.
  const PackedValue old(std::move(*this));
  kind_ = std::exchange(other.kind_, std::uint8_t{kEmpty});
  std::memcpy(bytes_, other.bytes_, sizeof bytes_);
  return *this;
}

Value Collection::PackedValue::Unpack() const {
  switch (kind_) {
    case kEmpty:
      return Empty{};
    case kNull:
      return Null{};
    case kLogical:
      return Get<bool>();
    case kWhole:
      return Get<std::int64_t>();
    case kDouble:
      return Get<double>();
    case kDate:
      return Get<Date>();
    case kLongText: {
      const auto text = Get<LongText>();
      return std::string(text.data, text.size);
    }
    case kCollection:
      return *std::launder(reinterpret_cast<const std::shared_ptr<Collection>*>(bytes_));
    default:
      return std::string(reinterpret_cast<const char*>(bytes_), kind_);
  }
}

void Collection::PackedValue::PutText(std::string_view text) {
  if (text.size() <= kMostInPlace) {
    text.copy(reinterpret_cast<char*>(bytes_), text.size());
    kind_ = static_cast<std::uint8_t>(text.size());
    return;
  }
  const LongText longText{new char[text.size()], text.size()};
  text.copy(longText.data, text.size());
  Put(longText);
  kind_ = kLongText;
}

void Collection::PackedValue::Release() noexcept {
  if (kind_ == kLongText) {
    delete[] Get<LongText>().data;
  } else {
    std::destroy_at(std::launder(reinterpret_cast<std::shared_ptr<Collection>*>(bytes_)));
  }
}

Collection::Collection() = default;
Collection::Collection(std::unique_ptr<ForeignList> list) : keys_(std::make_unique<Keys>()) {
  keys_->foreign = std::move(list);
}
Collection::~Collection() = default;

ForeignList* Collection::Foreign() const {
  return keys_ == nullptr ? nullptr : keys_->foreign.get();
}

void Collection::Add(Value item) {
  if (ForeignList* const list = Foreign()) return list->Add(std::move(item));
  StoreKeys();
  slots_.emplace_back(std::move(item));
  keys_->folded.emplace_back();
  keys_->removed.push_back(false);
}

void Collection::Add(Value item, const Text& key) {
  const std::string_view text = key;
  if (ForeignList* const list = Foreign()) return list->Add(std::move(item), text);
  if (keys_ == nullptr) {
    if (PlainNumber(text) == slots_.size() + 1) {
      slots_.emplace_back(std::move(item));
      return;
    }
  }
  if (SlotOf(text) != kNowhere) RaiseRuntimeError(RuntimeError::kKeyAlreadyInCollection);
  StoreKeys();
  slots_.emplace_back(std::move(item));
  std::string folded = UpperCase(text);
  keys_->slots.emplace(folded, slots_.size() - 1);
  keys_->folded.emplace_back(std::move(folded));
  keys_->removed.push_back(false);
}

void Collection::AddNumbered(Value item) {
  if (keys_ == nullptr) {
    slots_.emplace_back(std::move(item));
  } else {
    Add(std::move(item), NumberText(std::int64_t{Count()} + 1));
  }
}

void Collection::AddNumberedText(std::string_view item) {
  if (keys_ == nullptr) {
    slots_.emplace_back(item);
  } else {
    AddNumbered(std::string(item));
  }
}

Value Collection::Item(std::int32_t position) const {
  if (ForeignList* const list = Foreign()) return list->Item(position);
  return slots_[SlotAt(position)].Unpack();
}

Value Collection::Item(std::string_view key) const {
  if (ForeignList* const list = Foreign()) return list->Item(key);
  const std::size_t slot = SlotOf(key);
  if (slot == kNowhere) RaiseRuntimeError(RuntimeError::kInvalidArgument);
  return slots_[slot].Unpack();
}

void Collection::Remove(std::int32_t position) {
  if (ForeignList* const list = Foreign()) return list->Remove(position);
  RemoveSlot(SlotAt(position));
}

void Collection::Remove(std::string_view key) {
  if (ForeignList* const list = Foreign()) return list->Remove(key);
  const std::size_t slot = SlotOf(key);
  if (slot == kNowhere) RaiseRuntimeError(RuntimeError::kInvalidArgument);
  RemoveSlot(slot);
}

std::int32_t Collection::Count() const {
  if (ForeignList* const list = Foreign()) return list->Count();
  if (Size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
    RaiseRuntimeError(RuntimeError::kOverflow);
  }
  return static_cast<std::int32_t>(Size());
}

void Collection::Reserve(std::size_t items) { slots_.reserve(items); }

Collection::Iterator Collection::begin() const {
  // Else reading by position, which closes gaps, would move what is walked over.
  Compact();
  return {*this, 0};
}
Collection::Iterator Collection::end() const {
  // Another program's list has its positions for slots.
  return {*this, Foreign() == nullptr ? slots_.size() : static_cast<std::size_t>(Count())};
}

Value Collection::InSlot(std::size_t slot) const {
  if (ForeignList* const list = Foreign()) return list->Item(static_cast<std::int32_t>(slot) + 1);
  return slots_[slot].Unpack();
}

std::size_t Collection::SlotAt(std::int32_t position) const {
  if (position < 1 || static_cast<std::size_t>(position) > Size()) {
    RaiseRuntimeError(RuntimeError::kSubscriptOutOfRange);
  }
  Compact();
  return static_cast<std::size_t>(position) - 1;
}

std::size_t Collection::SlotOf(std::string_view key) const {
  if (keys_ == nullptr) {
    const auto number = PlainNumber(key);
    return number && *number <= slots_.size() ? *number - 1 : kNowhere;
  }
  const auto found = keys_->slots.find(UpperCase(key));
  return found == keys_->slots.end() ? kNowhere : found->second;
}

void Collection::RemoveSlot(std::size_t slot) {
  if (keys_ == nullptr && slot + 1 == slots_.size()) {
    const PackedValue last(std::move(slots_.back()));
    slots_.pop_back();
    return;
  }
  StoreKeys();
  // The list is in order again before the item goes, which may call back.
  const PackedValue removed(std::move(slots_[slot]));
  if (keys_->folded[slot]) {
    keys_->slots.erase(*keys_->folded[slot]);
    keys_->folded[slot].reset();
  }
  keys_->removed[slot] = true;
  ++keys_->gaps;
  if (keys_->gaps > slots_.size() / 2) Compact();
}

void Collection::StoreKeys() {
  if (keys_ != nullptr) return;
  auto keys = std::make_unique<Keys>();
  keys->folded.reserve(slots_.size() + 1);
  keys->slots.reserve(slots_.size() + 1);
  for (std::size_t slot = 0; slot < slots_.size(); ++slot) {
    std::string key = NumberText(static_cast<std::int64_t>(slot) + 1);
    keys->slots.emplace(key, slot);
    keys->folded.emplace_back(std::move(key));
  }
  keys->removed.resize(slots_.size());
  keys_ = std::move(keys);
}

void Collection::Compact() const {
  if (keys_ == nullptr || keys_->gaps == 0) return;
  std::size_t to = 0;
  for (std::size_t from = 0; from < slots_.size(); ++from) {
    if (keys_->removed[from]) continue;
    if (to != from) {
      slots_[to] = std::move(slots_[from]);
      keys_->folded[to] = std::move(keys_->folded[from]);
      if (keys_->folded[to]) keys_->slots[*keys_->folded[to]] = to;
    }
    ++to;
  }
  slots_.resize(to);
  keys_->folded.resize(to);
  keys_->removed.assign(to, false);
  keys_->gaps = 0;
}

std::size_t Collection::Size() const {
  return slots_.size() - (keys_ == nullptr ? 0 : keys_->gaps);
}

bool Collection::IsRemoved(std::size_t slot) const {
  return keys_ != nullptr && keys_->foreign == nullptr && keys_->removed[slot];
}

}  // namespace lotrix

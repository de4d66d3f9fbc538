// The keyed, ordered list that result tables are made of.
#ifndef LOTRIX_COLLECTION_H
#define LOTRIX_COLLECTION_H

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string_view>
#include <vector>

#include "lotrix/text.h"
#include "lotrix/value.h"

namespace lotrix {

// A list that another program keeps, with the members of a Collection, whose
// errors are its own.
class ForeignList {
 public:
  virtual ~ForeignList() = default;
  virtual void Add(Value item) = 0;
  virtual void Add(Value item, std::string_view key) = 0;
  [[nodiscard]] virtual Value Item(std::int32_t position) = 0;
  [[nodiscard]] virtual Value Item(std::string_view key) = 0;
  virtual void Remove(std::int32_t position) = 0;
  virtual void Remove(std::string_view key) = 0;
  [[nodiscard]] virtual std::int32_t Count() = 0;
};

// Items stand at positions counted from 1 and may have a text key; keys are
// compared without regard to case and are apart from positions: the key "2" is
// found wherever its item stands. Not for more than one thread at a time. A
// member that throws one of the errors named here has changed nothing.
//
// While every item has its own position as its key, which is how tables are
// filled, no key is stored.
class Collection {
 public:
  class Iterator;

  Collection();
  // Stands for the other program's list: every member is passed on to it.
  explicit Collection(std::unique_ptr<ForeignList> list);
  ~Collection();
  Collection(const Collection&) = delete;
  Collection& operator=(const Collection&) = delete;

  // Behind the last item. With a key that is there already: throws 457.
  void Add(Value item);
  void Add(Value item, const Text& key);
  // Under the key that is the new count written in decimal; throws as Add does.
  void AddNumbered(Value item);
  void AddNumberedText(std::string_view item);

  // A copy of the value; an item that is a collection is handed out by reference.
  // By position: throws 9 outside 1 to Count. By key: throws 5 for one that is not
  // there.
  [[nodiscard]] Value Item(std::int32_t position) const;
  [[nodiscard]] Value Item(std::string_view key) const;
  void Remove(std::int32_t position);
  void Remove(std::string_view key);

  // Throws 6 beyond the 32-bit range.
  [[nodiscard]] std::int32_t Count() const;

  // The list that this one stands for, or null.
  [[nodiscard]] ForeignList* Foreign() const;

  // Before the first items are added, for how many there is to be room.
  void Reserve(std::size_t items);

  [[nodiscard]] Iterator begin() const;
  [[nodiscard]] Iterator end() const;

 private:
  struct Keys;

  // A value in 24 bytes, texts of up to 23 bytes included: a table of a million
  // rows is as large as its cells.
  class PackedValue {
   public:
    PackedValue() noexcept : bytes_{}, kind_(kEmpty) {}
    explicit PackedValue(Value value);
    explicit PackedValue(std::string_view text);
    PackedValue(PackedValue&& other) noexcept;
    PackedValue& operator=(PackedValue&& other) noexcept;
    PackedValue(const PackedValue&) = delete;
    PackedValue& operator=(const PackedValue&) = delete;
    ~PackedValue() {
      if (kind_ >= kLongText) Release();
    }
    [[nodiscard]] Value Unpack() const;

   private:
    // Up to 23, the length of a text in place.
    enum Kind : std::uint8_t {
      kMostInPlace = 23,
      kEmpty,
      kNull,
      kLogical,
      kWhole,
      kDouble,
      kDate,
      kLongText,
      kCollection,
    };
    template <class T>
    void Put(const T& value);
    template <class T>
    [[nodiscard]] T Get() const;
    void PutText(std::string_view text);
    void Release() noexcept;

    alignas(8) std::byte bytes_[kMostInPlace];
    std::uint8_t kind_;
  };

  [[nodiscard]] std::size_t SlotAt(std::int32_t position) const;
  [[nodiscard]] Value InSlot(std::size_t slot) const;
  // The slot of a key, or npos.
  [[nodiscard]] std::size_t SlotOf(std::string_view key) const;
  void RemoveSlot(std::size_t slot);
  void StoreKeys();
  void Compact() const;
  [[nodiscard]] std::size_t Size() const;
  [[nodiscard]] bool IsRemoved(std::size_t slot) const;

  // Removing from the middle leaves a gap, which is closed when positions are
  // asked for or half of the slots are gaps.
  mutable std::vector<PackedValue> slots_;
  mutable std::unique_ptr<Keys> keys_;  // absent while item n has the key "n"
};

// In the order of the items; adding or removing one ends its validity.
class Collection::Iterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = Value;
  using difference_type = std::ptrdiff_t;
  using pointer = void;
  using reference = Value;

  Iterator() = default;
  Value operator*() const { return collection_->InSlot(slot_); }
  Iterator& operator++() {
    ++slot_;
    SkipGaps();
    return *this;
  }
  Iterator operator++(int) {
    Iterator before = *this;
    ++*this;
    return before;
  }
  bool operator==(const Iterator&) const = default;

 private:
  friend class Collection;
  Iterator(const Collection& collection, std::size_t slot) : collection_(&collection), slot_(slot) {
    SkipGaps();
  }
  void SkipGaps() {
    while (slot_ < collection_->slots_.size() && collection_->IsRemoved(slot_)) ++slot_;
  }

  const Collection* collection_ = nullptr;
  std::size_t slot_ = 0;
};

}  // namespace lotrix

#endif

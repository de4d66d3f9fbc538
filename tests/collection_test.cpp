#include "lotrix/collection.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lotrix/error.h"
#include "tests/support/fixture.h"

namespace lotrix::test {
namespace {

using namespace std::string_literals;
using Texts = std::vector<std::string>;

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();

Value V(const std::string& text) { return text; }

void ExpectNumber(std::int32_t number, const std::function<void()>& call) {
  const Error error = Refusal(call);
  EXPECT_EQ(error.number(), number) << error.description();
  EXPECT_EQ(error.source(), "Lotrix");
}

// The items in order; all of them texts.
Texts Items(const Collection& collection) {
  Texts items;
  for (const Value& item : collection) items.push_back(std::get<std::string>(item));
  return items;
}

void ExpectPositions(const Collection& collection, const Texts& expected) {
  ASSERT_EQ(collection.Count(), static_cast<std::int32_t>(expected.size()));
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(collection.Item(static_cast<std::int32_t>(i) + 1), V(expected[i])) << i;
  }
  EXPECT_EQ(Items(collection), expected);
}

TEST(Collection, ANewOneIsEmpty) {
  const Collection collection;
  EXPECT_EQ(collection.Count(), 0);
  EXPECT_TRUE(collection.begin() == collection.end());
}

TEST(Collection, ItemsStandInTheOrderTheyWereAdded) {
  Collection collection;
  collection.Add(V("c"));
  collection.Add(V("a"), "key");
  collection.Add(V("b"));
  ExpectPositions(collection, {"c", "a", "b"});
  EXPECT_EQ(collection.Item("key"), V("a"));
}

TEST(Collection, PositionsAndKeysAreApart) {
  Collection collection;
  collection.Add(V("first"), "2");
  collection.Add(V("second"), "1");
  EXPECT_EQ(collection.Item(1), V("first"));
  EXPECT_EQ(collection.Item("1"), V("second"));
  EXPECT_EQ(collection.Item(2), V("second"));
  EXPECT_EQ(collection.Item("2"), V("first"));
}

TEST(Collection, AnItemWithoutAKeyIsFoundByNone) {
  Collection collection;
  collection.Add(V("a"));
  collection.Add(V("b"), "2");
  collection.Add(V("c"), "x");
  ExpectNumber(5, [&] { static_cast<void>(collection.Item("1")); });
  EXPECT_EQ(collection.Item("2"), V("b"));
  ExpectNumber(5, [&] { static_cast<void>(collection.Item("3")); });
  ExpectNumber(5, [&] { collection.Remove("1"); });
  collection.Add(V("d"), "1");
  EXPECT_EQ(collection.Item("1"), V("d"));
}

TEST(Collection, NumberedItemsHaveTheirPositionsAsKeys) {
  Collection collection;
  for (int i = 1; i <= 12; ++i) collection.AddNumbered(V(std::to_string(i * i)));
  collection.AddNumberedText("thirteen");
  EXPECT_EQ(collection.Count(), 13);
  for (int i = 1; i <= 12; ++i) {
    EXPECT_EQ(collection.Item(i), V(std::to_string(i * i)));
    EXPECT_EQ(collection.Item(std::to_string(i)), V(std::to_string(i * i)));
  }
  EXPECT_EQ(collection.Item("13"), V("thirteen"));
}

TEST(Collection, OnlyTheDecimalNumberIsTheKeyOfANumberedItem) {
  Collection collection;
  collection.AddNumbered(V("a"));
  collection.AddNumbered(V("b"));
  for (const std::string& key :
       {""s, "0"s, "3"s, "-1"s, "01"s, "+1"s, " 1"s, "1 "s, "1.0"s, "1e0"s, "１"s, "1\0"s, "x"s,
        "4294967297"s, "18446744073709551617"s, "99999999999999999999999999"s}) {
    ExpectNumber(5, [&] { static_cast<void>(collection.Item(key)); });
    ExpectNumber(5, [&] { collection.Remove(key); });
  }
  collection.Add(V("c"), "01");
  EXPECT_EQ(collection.Item("01"), V("c"));
  EXPECT_EQ(collection.Item("1"), V("a"));
  EXPECT_EQ(collection.Item("2"), V("b"));
  ExpectNumber(5, [&] { static_cast<void>(collection.Item("3")); });
}

TEST(Collection, APositionOutsideIsNine) {
  Collection collection;
  for (const std::int32_t position : {0, 1, -1, kMost, kLeast}) {
    ExpectNumber(9, [&] { static_cast<void>(collection.Item(position)); });
    ExpectNumber(9, [&] { collection.Remove(position); });
  }
  collection.Add(V("a"));
  collection.Add(V("b"), "0");
  for (const std::int32_t position : {0, 3, -1, kMost, kLeast}) {
    ExpectNumber(9, [&] { static_cast<void>(collection.Item(position)); });
    ExpectNumber(9, [&] { collection.Remove(position); });
  }
  ExpectPositions(collection, {"a", "b"});
}

TEST(Collection, AnUnknownKeyIsFive) {
  Collection collection;
  ExpectNumber(5, [&] { static_cast<void>(collection.Item("a")); });
  ExpectNumber(5, [&] { collection.Remove("a"); });
  collection.Add(V("x"), "a");
  ExpectNumber(5, [&] { static_cast<void>(collection.Item("b")); });
  ExpectNumber(5, [&] { static_cast<void>(collection.Item("a ")); });
  ExpectNumber(5, [&] { static_cast<void>(collection.Item("x")); });
  ExpectNumber(5, [&] { collection.Remove("b"); });
  ExpectPositions(collection, {"x"});
}

TEST(Collection, AKeyThatIsThereIs457AndNothingIsAdded) {
  Collection collection;
  collection.Add(V("x"), "a");
  ExpectNumber(457, [&] { collection.Add(V("y"), "a"); });
  ExpectNumber(457, [&] { collection.Add(V("y"), "A"); });
  ExpectPositions(collection, {"x"});
  EXPECT_EQ(collection.Item("a"), V("x"));
}

TEST(Collection, ANumberThatIsThereIs457) {
  Collection collection;
  collection.AddNumbered(V("a"));
  collection.AddNumbered(V("b"));
  ExpectNumber(457, [&] { collection.Add(V("x"), "2"); });
  collection.Remove(1);
  ExpectNumber(457, [&] { collection.AddNumbered(V("x")); });
  ExpectNumber(457, [&] { collection.AddNumberedText("x"); });
  ExpectPositions(collection, {"b"});
  EXPECT_EQ(collection.Item("2"), V("b"));
  ExpectNumber(5, [&] { static_cast<void>(collection.Item("1")); });
}

TEST(Collection, KeysAreComparedWithoutCaseInEveryAlphabet) {
  const std::vector<std::pair<std::string, std::string>> pairs{
      {"abc", "ABC"}, {"é", "É"}, {"straße", "STRAßE"}, {"я", "Я"}, {"ÿ", "Ÿ"}, {"ω1", "Ω1"}};
  for (const auto& pair : pairs) {
    const std::string lower = pair.first;
    const std::string upper = pair.second;
    Collection collection;
    collection.Add(V("x"), lower);
    EXPECT_EQ(collection.Item(upper), V("x")) << upper;
    ExpectNumber(457, [&] { collection.Add(V("y"), upper); });
    collection.Remove(upper);
    EXPECT_EQ(collection.Count(), 0);
    collection.Add(V("y"), upper);
    EXPECT_EQ(collection.Item(lower), V("y")) << lower;
  }
}

TEST(Collection, KeysOfDifferentLettersAreDifferent) {
  Collection collection;
  const Texts keys{"e", "é", "ß", "ss", "i", "ı", "k", "😀", "a", "a ", " a", "\t", "µ"};
  for (const std::string& key : keys) collection.Add(V("of " + key), key);
  for (const std::string& key : keys) EXPECT_EQ(collection.Item(key), V("of " + key));
}

TEST(Collection, AKeyThatIsNoUnicodeIsFiveAndNothingIsAdded) {
  Collection collection;
  ExpectNumber(5, [&] { collection.Add(V("x"), std::string("\xff")); });
  EXPECT_EQ(collection.Count(), 0);
  ExpectNumber(5, [&] { static_cast<void>(collection.Item(std::string("\xff"))); });
}

TEST(Collection, RemovingByPositionMovesTheOthersAndKeepsTheirKeys) {
  Collection collection;
  for (const std::string key : {"a", "b", "c", "d"}) collection.Add(V("of " + key), key);
  collection.Remove(2);
  ExpectPositions(collection, {"of a", "of c", "of d"});
  EXPECT_EQ(collection.Item("c"), V("of c"));
  EXPECT_EQ(collection.Item("d"), V("of d"));
  ExpectNumber(5, [&] { static_cast<void>(collection.Item("b")); });
  collection.Remove(3);
  collection.Remove(1);
  ExpectPositions(collection, {"of c"});
  collection.Remove(1);
  EXPECT_EQ(collection.Count(), 0);
}

TEST(Collection, RemovingByKeyMovesTheOthers) {
  Collection collection;
  for (int i = 1; i <= 5; ++i) collection.AddNumbered(V("of " + std::to_string(i)));
  collection.Remove("2");
  collection.Remove("4");
  ExpectPositions(collection, {"of 1", "of 3", "of 5"});
  EXPECT_EQ(collection.Item("5"), V("of 5"));
  EXPECT_EQ(collection.Item(2), V("of 3"));
  ExpectNumber(5, [&] { static_cast<void>(collection.Item("2")); });
}

TEST(Collection, ARemovedKeyMayBeAddedAgainAtTheEnd) {
  Collection collection;
  for (int i = 1; i <= 3; ++i) collection.AddNumbered(V("of " + std::to_string(i)));
  collection.Remove("2");
  collection.Add(V("new"), "2");
  ExpectPositions(collection, {"of 1", "of 3", "new"});
  EXPECT_EQ(collection.Item("2"), V("new"));
  EXPECT_EQ(collection.Item("3"), V("of 3"));
}

TEST(Collection, TheLastNumberedItemMayBeRemovedAndAddedAgain) {
  Collection collection;
  for (int i = 1; i <= 3; ++i) collection.AddNumbered(V(std::to_string(i)));
  collection.Remove(3);
  collection.AddNumbered(V("new"));
  ExpectPositions(collection, {"1", "2", "new"});
  EXPECT_EQ(collection.Item("3"), V("new"));
  collection.Remove("3");
  ExpectNumber(5, [&] { static_cast<void>(collection.Item("3")); });
}

TEST(Collection, ManyRemovalsInTheMiddleKeepOrderAndKeys) {
  constexpr int kItems = 40000;
  Collection collection;
  for (int i = 1; i <= kItems; ++i) collection.AddNumbered(V(std::to_string(i)));
  for (int i = 2; i <= kItems; i += 2) collection.Remove(std::to_string(i));
  ASSERT_EQ(collection.Count(), kItems / 2);
  int expected = 1;
  for (const Value& item : collection) {
    EXPECT_EQ(item, V(std::to_string(expected)));
    expected += 2;
  }
  EXPECT_EQ(expected, kItems + 1);
  for (int i = 1; i <= kItems / 2; i += 997) {
    EXPECT_EQ(collection.Item(i), V(std::to_string(2 * i - 1)));
    EXPECT_EQ(collection.Item(std::to_string(2 * i - 1)), V(std::to_string(2 * i - 1)));
  }
  ExpectNumber(5, [&] { static_cast<void>(collection.Item("20000")); });
  for (int i = 0; i < 1000; ++i) collection.Remove(1);
  for (int i = 0; i < 1000; ++i) collection.Remove(collection.Count() / 2);
  EXPECT_EQ(collection.Count(), kItems / 2 - 2000);
  EXPECT_EQ(collection.Item(1), V("2001"));
  EXPECT_EQ(collection.Item(collection.Count()), V(std::to_string(kItems - 1)));
  EXPECT_EQ(collection.Item("2001"), V("2001"));
}

TEST(Collection, ReAddingEachItemInTurnEndsInTheOldOrder) {
  constexpr int kItems = 20000;
  Collection collection;
  for (int i = 1; i <= kItems; ++i) collection.AddNumbered(V(std::to_string(i)));
  for (int i = 1; i <= kItems; ++i) {
    const std::string key = std::to_string(i);
    collection.Remove(key);
    collection.Add(V("new " + key), key);
  }
  ASSERT_EQ(collection.Count(), kItems);
  EXPECT_EQ(collection.Item(1), V("new 1"));
  EXPECT_EQ(collection.Item(kItems), V("new " + std::to_string(kItems)));
  EXPECT_EQ(collection.Item("777"), V("new 777"));
}

TEST(Collection, WalkingSkipsWhatWasRemovedAtBothEndsToo) {
  Collection collection;
  for (const std::string text : {"a", "b", "c", "d", "e"}) collection.Add(V(text), text);
  collection.Remove("a");
  collection.Remove("c");
  collection.Remove("e");
  EXPECT_EQ(Items(collection), (Texts{"b", "d"}));
  collection.Remove("b");
  collection.Remove("d");
  EXPECT_EQ(Items(collection), Texts{});
  collection.Add(V("f"), "a");
  EXPECT_EQ(Items(collection), Texts{"f"});
}

TEST(Collection, WalkingTwiceGivesTheSame) {
  Collection collection;
  for (const std::string text : {"a", "b", "c"}) collection.Add(V(text));
  EXPECT_EQ(Items(collection), Items(collection));
  Collection::Iterator iterator = collection.begin();
  EXPECT_EQ(*iterator++, V("a"));
  EXPECT_EQ(*iterator, V("b"));
  EXPECT_EQ(*++iterator, V("c"));
  EXPECT_TRUE(++iterator == collection.end());
}

TEST(Collection, EveryKindOfValueIsKeptAsItIs) {
  std::vector<Value> values{Empty{},
                            Null{},
                            true,
                            false,
                            std::int64_t{0},
                            std::numeric_limits<std::int64_t>::min(),
                            std::numeric_limits<std::int64_t>::max(),
                            12.5,
                            -0.0,
                            std::numeric_limits<double>::max(),
                            Date{2004, 3, 7},
                            kZeroDate,
                            Date{100, 1, 1},
                            Date{9999, 12, 31},
                            std::make_shared<Collection>()};
  for (std::size_t size = 0; size <= 70; ++size) {
    values.emplace_back(std::string(size, 'x'));
    values.emplace_back(std::string(size, '\0') + "é");
  }
  values.emplace_back(std::string(100000, 'y'));
  Collection numbered;
  Collection keyed;
  for (const Value& value : values) {
    numbered.AddNumbered(value);
    keyed.Add(value, "key " + std::to_string(keyed.Count()));
  }
  numbered.Remove("1");
  keyed.Remove(1);
  values.erase(values.begin());
  std::size_t next = 0;
  for (const Value& value : numbered) EXPECT_TRUE(value == values[next++]) << next;
  EXPECT_EQ(next, values.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    EXPECT_TRUE(keyed.Item(static_cast<std::int32_t>(i) + 1) == values[i]) << i;
    EXPECT_TRUE(keyed.Item("KEY " + std::to_string(i + 1)) == values[i]) << i;
  }
}

TEST(Collection, TextsAddedWithTheirNumberAreTexts) {
  Collection collection;
  for (std::size_t size = 0; size <= 70; ++size) {
    collection.AddNumberedText(std::string(size, 'x'));
  }
  for (std::size_t size = 0; size <= 70; ++size) {
    EXPECT_EQ(collection.Item(std::to_string(size + 1)), V(std::string(size, 'x')));
  }
}

TEST(Collection, ACollectionInACollectionIsTheSameObject) {
  Collection outer;
  const auto inner = std::make_shared<Collection>();
  outer.AddNumbered(inner);
  inner->Add(V("later"));
  const auto found = std::get<std::shared_ptr<Collection>>(outer.Item("1"));
  EXPECT_EQ(found, inner);
  found->Add(V("more"));
  EXPECT_EQ(inner->Count(), 2);
  const std::weak_ptr<Collection> watched = inner;
  outer.Remove(1);
  EXPECT_EQ(inner->Count(), 2);
  EXPECT_EQ(watched.use_count(), 2);
}

TEST(Collection, RoomForMoreChangesNothing) {
  Collection collection;
  collection.Reserve(1000);
  EXPECT_EQ(collection.Count(), 0);
  collection.Add(V("a"));
  ExpectPositions(collection, {"a"});
}

// --- Against a plain list --------------------------------------------------

struct Item {
  std::optional<std::string> key;  // as it is compared
  std::string value;
};

class Model {
 public:
  // The key with its case taken away; the pool below has no other letters.
  static std::string Folded(const std::string& key) {
    static const std::map<std::string, std::string> kFolded{
        {"a", "A"}, {"b", "B"}, {"é", "É"}, {"ab", "AB"}, {"aB", "AB"}};
    const auto found = kFolded.find(key);
    return found == kFolded.end() ? key : found->second;
  }

  int Add(const std::string& value, const std::optional<std::string>& key) {
    if (key && Find(*key) != items_.size()) return 457;
    items_.push_back({key ? std::optional(Folded(*key)) : std::nullopt, value});
    return 0;
  }
  int RemovePosition(std::int32_t position) {
    if (!Inside(position)) return 9;
    items_.erase(items_.begin() + position - 1);
    return 0;
  }
  int RemoveKey(const std::string& key) {
    const std::size_t at = Find(key);
    if (at == items_.size()) return 5;
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(at));
    return 0;
  }
  [[nodiscard]] std::size_t Find(const std::string& key) const {
    const auto at = std::find_if(items_.begin(), items_.end(),
                                 [&](const Item& item) { return item.key == Folded(key); });
    return static_cast<std::size_t>(at - items_.begin());
  }
  [[nodiscard]] bool Inside(std::int32_t position) const {
    return position >= 1 && position <= static_cast<std::int32_t>(items_.size());
  }
  [[nodiscard]] const std::vector<Item>& items() const { return items_; }

 private:
  std::vector<Item> items_;
};

// From low to high - 1, each as likely however early in the run.
int Pick(int low, int high) {
  return *rc::gen::resize(rc::kNominalSize, rc::gen::inRange(low, high));
}

int NumberOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const Error& error) {
    return error.number();
  }
  return 0;
}

RC_GTEST_PROP(CollectionProperty, IsAListOfPairs, ()) {
  static const Texts kKeys{"1", "2", "3", "4", "5", "6", "10", "01", "0",
                           "a", "A", "b", "B", "é", "É", "ab", "AB", "aB"};
  Collection collection;
  Model model;
  const bool mostlyNumbered = *rc::gen::arbitrary<bool>();
  const int operations = Pick(0, 60);
  for (int i = 0; i < operations; ++i) {
    const std::string value =
        std::string(static_cast<std::size_t>(i % 30), 'v') + std::to_string(i);
    const int operation =
        mostlyNumbered ? *rc::gen::elementOf(std::vector<int>{2, 2, 2, 2, 3, 4}) : Pick(0, 5);
    const auto count = static_cast<std::int32_t>(model.items().size());
    int expected = 0;
    int actual = 0;
    switch (operation) {
      case 0:
        expected = model.Add(value, {});
        actual = NumberOf([&] { collection.Add(V(value)); });
        break;
      case 1: {
        const std::string key = *rc::gen::elementOf(kKeys);
        expected = model.Add(value, key);
        actual = NumberOf([&] { collection.Add(V(value), key); });
        break;
      }
      case 2:
        expected = model.Add(value, std::to_string(count + 1));
        actual = NumberOf([&] { collection.AddNumbered(V(value)); });
        break;
      case 3: {
        const std::int32_t position = Pick(-1, count + 2);
        expected = model.RemovePosition(position);
        actual = NumberOf([&] { collection.Remove(position); });
        break;
      }
      default: {
        const std::string key = *rc::gen::elementOf(kKeys);
        expected = model.RemoveKey(key);
        actual = NumberOf([&] { collection.Remove(key); });
      }
    }
    RC_ASSERT(actual == expected);
    // Looking changes nothing, and not looking neither.
    if (*rc::gen::arbitrary<bool>()) continue;
    RC_ASSERT(collection.Count() == static_cast<std::int32_t>(model.items().size()));
    for (const std::string& key : kKeys) {
      const std::size_t at = model.Find(key);
      if (at == model.items().size()) {
        RC_ASSERT(NumberOf([&] { static_cast<void>(collection.Item(key)); }) == 5);
      } else {
        RC_ASSERT(collection.Item(key) == V(model.items()[at].value));
      }
    }
  }
  Texts values;
  for (const Item& item : model.items()) values.push_back(item.value);
  RC_ASSERT(Items(collection) == values);
  RC_ASSERT(collection.Count() == static_cast<std::int32_t>(values.size()));
  for (std::size_t i = 0; i < values.size(); ++i) {
    RC_ASSERT(collection.Item(static_cast<std::int32_t>(i) + 1) == V(values[i]));
  }
  RC_ASSERT(NumberOf([&] { static_cast<void>(collection.Item(0)); }) == 9);
  RC_ASSERT(NumberOf([&] {
              static_cast<void>(collection.Item(static_cast<std::int32_t>(values.size()) + 1));
            }) == 9);
}

// Another program's list: keys and positions as it likes, here in a plain vector
// whose calls are written down.
class WrittenDownList final : public ForeignList {
 public:
  explicit WrittenDownList(Texts& calls) : calls_(calls) {}
  void Add(Value item) override {
    calls_.push_back("add " + std::get<std::string>(item));
    items_.emplace_back("", std::move(item));
  }
  void Add(Value item, std::string_view key) override {
    if (const auto* const text = std::get_if<std::string>(&item)) {
      calls_.push_back("add " + *text + " under " + std::string(key));
    }
    items_.emplace_back(key, std::move(item));
  }
  Value Item(std::int32_t position) override {
    return items_.at(static_cast<std::size_t>(position) - 1).second;
  }
  Value Item(std::string_view key) override { return Find(key)->second; }
  void Remove(std::int32_t position) override { items_.erase(items_.begin() + position - 1); }
  void Remove(std::string_view key) override { items_.erase(Find(key)); }
  std::int32_t Count() override { return static_cast<std::int32_t>(items_.size()); }

 private:
  using Items = std::vector<std::pair<std::string, Value>>;
  Items::iterator Find(std::string_view key) {
    const auto found = std::find_if(items_.begin(), items_.end(),
                                    [&](const auto& item) { return item.first == key; });
    if (found == items_.end()) throw Error(-1, "the list's own");
    return found;
  }
  Texts& calls_;
  Items items_;
};

TEST(CollectionOfAnotherProgram, EveryMemberIsPassedOn) {
  Texts calls;
  Collection collection(std::make_unique<WrittenDownList>(calls));
  collection.Add(V("a"));
  collection.Add(V("b"), "key");
  collection.AddNumbered(V("c"));
  collection.AddNumberedText("d");
  EXPECT_EQ(calls, (Texts{"add a", "add b under key", "add c under 3", "add d under 4"}));
  ExpectPositions(collection, {"a", "b", "c", "d"});
  EXPECT_EQ(collection.Item("key"), V("b"));
  collection.Remove("3");
  collection.Remove(1);
  ExpectPositions(collection, {"b", "d"});
}

TEST(CollectionOfAnotherProgram, ItsErrorsAreItsOwn) {
  Texts calls;
  const Collection collection(std::make_unique<WrittenDownList>(calls));
  EXPECT_EQ(Refusal([&] { static_cast<void>(collection.Item("none")); }).description(),
            "the list's own");
}

TEST(CollectionOfAnotherProgram, IsKnownAsSuch) {
  Texts calls;
  auto list = std::make_unique<WrittenDownList>(calls);
  const ForeignList* const given = list.get();
  const Collection collection(std::move(list));
  EXPECT_EQ(collection.Foreign(), given);
  Collection own;
  own.Add(V("a"), "with a key");
  EXPECT_EQ(own.Foreign(), nullptr);
}

TEST(CollectionOfAnotherProgram, ServesAResultTable) {
  Texts calls;
  cResultSet table;
  auto data = std::make_shared<Collection>(std::make_unique<WrittenDownList>(calls));
  auto row = std::make_shared<Collection>(std::make_unique<WrittenDownList>(calls));
  row->Add(V("x"), "1");
  data->Add(row, "1");
  table.Data(data);
  table.SetValue(1, 1, "y");
  EXPECT_EQ(table.GetValue(1, 1), "y");
  table.DeleteRow(1);
  EXPECT_EQ(data->Count(), 1);  // the table has a list of its own from now on
  EXPECT_EQ(table.Data()->Count(), 0);
}

}  // namespace
}  // namespace lotrix::test

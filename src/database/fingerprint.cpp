#include "src/database/fingerprint.h"

#include <charconv>
#include <cmath>
#include <string_view>

#include "src/platform/dates.h"

namespace lotrix {

namespace {

template <class Number>
void AppendNumber(std::string& text, Number number) {
  constexpr std::size_t kLongest = 32;
  std::array<char, kLongest> digits{};
  const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), number);
  text.append(digits.data(), written.ptr);
}

bool IsWhole(double number) {
  constexpr double kBeyondWhole = 9223372036854775808.0;  // 2 to the 63rd
  const bool isNegativeZero = number == 0 && std::signbit(number);
  return number >= -kBeyondWhole && number < kBeyondWhole && number == std::trunc(number) &&
         !isNegativeZero;
}

// Each kind begins with a letter of its own, and no value can look like the end of one
// and the beginning of the next.
void Append(std::string& text, Null /*value*/) { text += 'n'; }
void Append(std::string& text, bool value) { text += value ? "l1" : "l0"; }
void Append(std::string& text, std::int64_t value) {
  text += 'w';
  AppendNumber(text, value);
}
void Append(std::string& text, double value) {
  if (IsWhole(value)) {
    Append(text, static_cast<std::int64_t>(value));
  } else if (std::isnan(value)) {
    text += "d?";
  } else {
    text += 'd';
    AppendNumber(text, value);
  }
}
void Append(std::string& text, Date value) { text.append("t").append(IsoDateText(value)); }
void Append(std::string& text, std::string_view value) {
  text += 's';
  AppendNumber(text, value.size());
  text.append(":").append(value);
}

// Of FNV-1a, whose bits are then mixed, so that sums of it do not cancel out.
std::uint64_t Hash(std::string_view text, std::uint64_t basis) {
  constexpr std::uint64_t kPrime = 0x100000001B3;
  std::uint64_t hash = basis;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * kPrime;
  hash = (hash ^ (hash >> 30U)) * 0xBF58476D1CE4E5B9U;
  hash = (hash ^ (hash >> 27U)) * 0x94D049BB133111EBU;
  return hash ^ (hash >> 31U);
}

}  // namespace

void Fingerprint::Add(const std::vector<ValueView>& row) {
  constexpr std::array<std::uint64_t, 2> kBases = {0xCBF29CE484222325U, 0x9E3779B97F4A7C15U};
  text_.clear();
  for (const ValueView& value : row) {
    std::visit([&](const auto& held) { Append(text_, held); }, value);
  }
  for (std::size_t i = 0; i < sums_.size(); ++i) sums_[i] += Hash(text_, kBases[i]);
  ++rows_;
}

}  // namespace lotrix

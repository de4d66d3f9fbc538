#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>

#include "lotrix/error.h"
#include "lotrix/text.h"
#include "src/platform/text.h"

namespace lotrix {
namespace {

using namespace std::string_view_literals;

constexpr char32_t kLastCodePoint = 0x10FFFF;

bool IsSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }

std::string Utf8(char32_t c) {
  std::string text;
  const auto add = [&text](char32_t byte) { text += static_cast<char>(byte); };
  if (c < 0x80) {
    add(c);
  } else if (c < 0x800) {
    add(0xC0 + c / 64);
    add(0x80 + c % 64);
  } else if (c < 0x10000) {
    add(0xE0 + c / 4096);
    add(0x80 + c / 64 % 64);
    add(0x80 + c % 64);
  } else {
    add(0xF0 + c / 262144);
    add(0x80 + c / 4096 % 64);
    add(0x80 + c / 64 % 64);
    add(0x80 + c % 64);
  }
  return text;
}

// Every code point that a line of `path` gives a simple uppercase mapping.
std::map<char32_t, char32_t> SimpleUpperCase(const char* path) {
  std::map<char32_t, char32_t> mappings;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    std::istringstream fields(line);
    std::string code;
    std::getline(fields, code, ';');
    std::string upper;
    for (int field = 1; field <= 12; ++field) std::getline(fields, upper, ';');
    if (upper.empty()) continue;
    mappings[static_cast<char32_t>(std::stoul(code, nullptr, 16))] =
        static_cast<char32_t>(std::stoul(upper, nullptr, 16));
  }
  return mappings;
}

std::set<char32_t> WhiteSpaceProperty(const char* path) {
  std::set<char32_t> members;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    if (line.find("; White_Space") == std::string::npos) continue;
    std::size_t used = 0;
    const auto first = static_cast<char32_t>(std::stoul(line, &used, 16));
    const bool range = line.compare(used, 2, "..") == 0;
    const auto last =
        range ? static_cast<char32_t>(std::stoul(line.substr(used + 2), nullptr, 16)) : first;
    for (char32_t c = first; c <= last; ++c) members.insert(c);
  }
  return members;
}

template <typename Function>
int ErrorNumber(Function function) {
  try {
    function();
  } catch (const Error& error) {
    return error.number();
  }
  return 0;
}

TEST(UpperCase, MapsOneCodePointToOne) {
  EXPECT_EQ(UpperCase(""), "");
  EXPECT_EQ(UpperCase("abc XYZ 019 az{`"), "ABC XYZ 019 AZ{`");
  EXPECT_EQ(UpperCase("é"), "É");
  EXPECT_EQ(UpperCase("ÿ"), "Ÿ");
  EXPECT_EQ(UpperCase("ς"), "Σ");
  EXPECT_EQ(UpperCase("σ"), "Σ");
  EXPECT_EQ(UpperCase("я"), "Я");
  EXPECT_EQ(UpperCase("É Ÿ Σ Я"), "É Ÿ Σ Я");
  EXPECT_EQ(UpperCase("peña-lópez & çelik"), "PEÑA-LÓPEZ & ÇELIK");
  EXPECT_EQ(UpperCase("i"), "I");
}

TEST(UpperCase, ChangesTheNumberOfBytesWhereTheMappingDoes) {
  EXPECT_EQ(UpperCase("xⱥy"), "XȺY");
  EXPECT_EQ(UpperCase("xɐy"), "XⱯY");
}

TEST(UpperCase, LeavesWhatHasNoPlainCounterpart) {
  for (const char* text :
       {"ß", "ı", "µ", "ſ", "ﬀ", "ﬁ", "ﬂ", "ﬃ", "ﬄ", "ﬅ", "ﬆ", "ﬓ", "𐐨", "𞤢", "😀", "漢"}) {
    EXPECT_EQ(UpperCase(text), text);
  }
  EXPECT_EQ(UpperCase("straße"), "STRAßE");
}

TEST(UpperCase, KeepsEverythingAroundU0000) { EXPECT_EQ(UpperCase("a\0b\0é"sv), "A\0B\0É"sv); }

TEST(UpperCase, IsTheSimpleMappingOfTheWholeOfUnicode) {
  const auto mappings = SimpleUpperCase("/usr/share/unicode/UnicodeData.txt");
  ASSERT_GT(mappings.size(), 1000U) << "the package unicode-data is missing";
  const std::set<char32_t> unchanged = {0x00B5, 0x0131, 0x017F};
  for (char32_t c = 0; c <= kLastCodePoint; ++c) {
    if (IsSurrogate(c)) continue;
    const auto mapping = mappings.find(c);
    const bool changes = mapping != mappings.end() && c <= 0xFFFF && unchanged.count(c) == 0;
    const std::string expected = Utf8(changes ? mapping->second : c);
    ASSERT_EQ(UpperCase(Utf8(c)), expected) << "U+" << std::hex << static_cast<std::uint32_t>(c);
    ASSERT_EQ(Utf16Length(expected), c > 0xFFFF ? 2U : 1U);
  }
}

TEST(EqualWithoutCase, ComparesUpperCased) {
  EXPECT_TRUE(EqualWithoutCase("", ""));
  EXPECT_TRUE(EqualWithoutCase("Pin", "pIN"));
  EXPECT_TRUE(EqualWithoutCase("Éa", "éA"));
  EXPECT_TRUE(EqualWithoutCase("xⱥz", "XȺZ"));
  EXPECT_TRUE(EqualWithoutCase("ς", "σ"));
  EXPECT_TRUE(EqualWithoutCase("a\0B"sv, "A\0b"sv));
  EXPECT_FALSE(EqualWithoutCase("Pin", "Pins"));
  EXPECT_FALSE(EqualWithoutCase("Pins", "Pin"));
  EXPECT_FALSE(EqualWithoutCase("Pié", "Pi"));
  EXPECT_FALSE(EqualWithoutCase("Pi", "Pié"));
  EXPECT_FALSE(EqualWithoutCase("pin", "pan"));
  EXPECT_FALSE(EqualWithoutCase("é", "e"));
  EXPECT_FALSE(EqualWithoutCase("ı", "I"));
  EXPECT_FALSE(EqualWithoutCase("ſ", "s"));
  EXPECT_FALSE(EqualWithoutCase("ß", "ss"));
  EXPECT_FALSE(EqualWithoutCase("a\0b"sv, "a\0c"sv));
  EXPECT_FALSE(EqualWithoutCase("@", "`"));
  EXPECT_FALSE(EqualWithoutCase("[", "{"));
}

TEST(TrimBlanks, TakesU0020Only) {
  EXPECT_EQ(TrimBlanks(""), "");
  EXPECT_EQ(TrimBlanks("   "), "");
  EXPECT_EQ(TrimBlanks("  a b  "), "a b");
  EXPECT_EQ(TrimBlanks("a"), "a");
  EXPECT_EQ(TrimBlanks("\ta\n"), "\ta\n");
  EXPECT_EQ(TrimBlanks(" \u00A0a\u3000 "), "\u00A0a\u3000");
  EXPECT_EQ(TrimBlanks(" \0 "sv), "\0"sv);
}

TEST(Utf16Length, CountsUnits) {
  EXPECT_EQ(Utf16Length(""), 0U);
  EXPECT_EQ(Utf16Length("abc"), 3U);
  EXPECT_EQ(Utf16Length("é"), 1U);
  EXPECT_EQ(Utf16Length("漢"), 1U);
  EXPECT_EQ(Utf16Length("😀"), 2U);
  EXPECT_EQ(Utf16Length("e\u0301"), 2U);
  EXPECT_EQ(Utf16Length("12345678é😀12345678"), 19U);
  EXPECT_EQ(Utf16Length("a\0b"sv), 3U);
  EXPECT_EQ(Utf16Length(std::string(40000, 'x')), 40000U);
}

TEST(ToUtf16, Converts) {
  EXPECT_EQ(ToUtf16(""), u"");
  EXPECT_EQ(ToUtf16("abcdefgh9"), u"abcdefgh9");
  EXPECT_EQ(ToUtf16("abcdefgh9 é 漢 😀 z"), u"abcdefgh9 é 漢 😀 z");
  EXPECT_EQ(ToUtf16("\U00010000\U0010FFFF\uFFFF"), u"\U00010000\U0010FFFF\uFFFF");
  EXPECT_EQ(ToUtf16("a\0b"sv), u"a\0b"sv);
}

TEST(IsValidUtf8, TakesEveryCodePointButSurrogates) {
  for (char32_t c = 0; c <= kLastCodePoint; ++c) {
    ASSERT_EQ(IsValidUtf8(Utf8(c)), !IsSurrogate(c))
        << "U+" << std::hex << static_cast<std::uint32_t>(c);
  }
  EXPECT_TRUE(IsValidUtf8(""));
  EXPECT_TRUE(IsValidUtf8("a\0b"sv));
  EXPECT_TRUE(IsValidUtf8("a text of some length, with é, 漢 and 😀 in it"));
}

TEST(IsValidUtf8, RefusesWhatIsNone) {
  for (const std::string_view bytes : {"\x80"sv,
                                       "\xBF"sv,
                                       "\xC0\x80"sv,
                                       "\xC1\xBF"sv,
                                       "\xC3"sv,
                                       "\xC3("sv,
                                       "\xC3\xA9\xA9"sv,
                                       "\xE0\x80\x80"sv,
                                       "\xE0\x9F\xBF"sv,
                                       "\xE2\x82"sv,
                                       "\xE2(\xA1"sv,
                                       "\xED\xA0\x80"sv,
                                       "\xED\xBF\xBF"sv,
                                       "\xF0\x80\x80\x80"sv,
                                       "\xF0\x8F\xBF\xBF"sv,
                                       "\xF0\x9F\x98"sv,
                                       "\xF4\x90\x80\x80"sv,
                                       "\xF5\x80\x80\x80"sv,
                                       "\xF8\x88\x80\x80\x80"sv,
                                       "\xFE"sv,
                                       "\xFF"sv,
                                       "M\xFCller"sv}) {
    EXPECT_FALSE(IsValidUtf8(bytes));
    EXPECT_FALSE(IsValidUtf8("eight or more before " + std::string(bytes)));
    EXPECT_FALSE(IsValidUtf8("é" + std::string(bytes) + "and some behind it"));
  }
}

TEST(UpToNul, EndsAtTheFirst) {
  EXPECT_EQ(UpToNul("abc"), "abc");
  EXPECT_EQ(UpToNul("ab\0c\0d"sv), "ab");
  EXPECT_EQ(UpToNul("\0c"sv), "");
  EXPECT_EQ(UpToNul(""), "");
}

TEST(WhiteSpaceLength, IsTheUnicodeProperty) {
  const std::set<char32_t> members = WhiteSpaceProperty("/usr/share/unicode/PropList.txt");
  ASSERT_EQ(members.size(), 25U) << "the package unicode-data is missing";
  for (char32_t c = 0; c <= kLastCodePoint; ++c) {
    if (IsSurrogate(c)) continue;
    const std::string text = Utf8(c);
    ASSERT_EQ(WhiteSpaceLength(text + "x"), members.count(c) != 0 ? text.size() : 0U)
        << "U+" << std::hex << static_cast<std::uint32_t>(c);
  }
  EXPECT_EQ(WhiteSpaceLength(""), 0U);
}

TEST(FormatPhone, FillsTenPlacesFromTheLeft) {
  EXPECT_EQ(FormatPhone(u"5551234567"), u"(555) 123-4567");
  EXPECT_EQ(FormatPhone(u"5551234"), u"(555) 123-4   ");
  EXPECT_EQ(FormatPhone(u"1"), u"(1  )    -    ");
  EXPECT_EQ(FormatPhone(u"15551234567"), u"(555) 123-4567");
  EXPECT_EQ(FormatPhone(u"0015551234567"), u"(555) 123-4567");
  EXPECT_EQ(FormatPhone(u""), u"");
  EXPECT_EQ(FormatPhone(u" "), u"(   )    -    ");
  EXPECT_EQ(FormatPhone(u"éàü漢"), u"(éàü) 漢  -    ");
}

TEST(Text, HoldsValidUtf8) {
  EXPECT_EQ(Text().str(), "");
  EXPECT_EQ(Text("é").str(), "é");
  EXPECT_EQ(Text(std::string("😀")).str(), "😀");
  EXPECT_EQ(Text("a\0b"sv).str(), "a\0b"sv);
  EXPECT_EQ(Text(static_cast<const char*>(nullptr)).str(), "");
  const std::string_view view = Text("kept").str().size() == 4 ? "kept" : "";
  EXPECT_EQ(view, "kept");
}

TEST(Text, RefusesOtherBytes) {
  const auto number = [](const auto& bytes) {
    return ErrorNumber([&] { const Text text(bytes); });
  };
  EXPECT_EQ(number("M\xFCller"), 5);
  EXPECT_EQ(number(std::string("M\xFCller")), 5);
  EXPECT_EQ(number("M\xFCller"sv), 5);
  EXPECT_EQ(number("\xED\xA0\x80"), 5);
  EXPECT_EQ(number("valid\0\xFF"sv), 5);
  EXPECT_EQ(number("Müller"), 0);
}

}  // namespace
}  // namespace lotrix

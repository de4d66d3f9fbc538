#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "src/utility/sql_text.h"
#include "tests/support/fixture.h"

namespace lotrix {
namespace {

using test::Refusal;

using namespace std::string_view_literals;

std::string Times(std::size_t times, std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < times; ++i) result += text;
  return result;
}

template <class Call>
void ExpectOverflow(Call call) {
  const Error error = Refusal([&] { static_cast<void>(call()); });
  EXPECT_EQ(error.number(), 6);
  EXPECT_EQ(error.source(), "Lotrix");
}

// --- IsBlank ---------------------------------------------------------------

TEST(IsBlank, NothingAndBlanksOnlyAreBlank) {
  EXPECT_TRUE(IsBlank(""));
  EXPECT_TRUE(IsBlank(" "));
  EXPECT_TRUE(IsBlank("   "));
}

TEST(IsBlank, AnythingBetweenBlanksIsNot) {
  EXPECT_FALSE(IsBlank(" x "));
  EXPECT_FALSE(IsBlank("x"));
  EXPECT_FALSE(IsBlank("0"));
  EXPECT_FALSE(IsBlank("é"));
}

TEST(IsBlank, OnlyTheBlankItselfIsTrimmed) {
  EXPECT_FALSE(IsBlank("\t"));
  EXPECT_FALSE(IsBlank("\n"));
  EXPECT_FALSE(IsBlank("\u00A0"));
  EXPECT_FALSE(IsBlank("\0"sv));
}

TEST(IsBlank, TheLengthIsA16BitNumber) {
  EXPECT_FALSE(IsBlank(Times(32767, "x")));
  ExpectOverflow([] { return IsBlank(Times(32768, "x")); });
}

TEST(IsBlank, TheLengthIsThatOfTheTrimmedValue) {
  EXPECT_TRUE(IsBlank(Times(40000, " ")));
  EXPECT_FALSE(IsBlank(Times(20000, " ") + "x" + Times(20000, " ")));
  EXPECT_FALSE(IsBlank(" " + Times(32767, "x") + " "));
}

TEST(IsBlank, TheLengthCountsUtf16Units) {
  EXPECT_FALSE(IsBlank(Times(32767, "é")));
  ExpectOverflow([] { return IsBlank(Times(32768, "é")); });
  EXPECT_FALSE(IsBlank(Times(16383, "😀") + "x"));
  ExpectOverflow([] { return IsBlank(Times(16384, "😀")); });
}

// --- IsAlphaNumeric --------------------------------------------------------

TEST(IsAlphaNumeric, AsciiLettersAndDigits) {
  EXPECT_TRUE(IsAlphaNumeric("A1B2"));
  EXPECT_TRUE(IsAlphaNumeric("azAZ09"));
  EXPECT_TRUE(IsAlphaNumeric("7"));
}

TEST(IsAlphaNumeric, NothingAndBlanksOnlyAreNot) {
  EXPECT_FALSE(IsAlphaNumeric(""));
  EXPECT_FALSE(IsAlphaNumeric(" "));
  EXPECT_FALSE(IsAlphaNumeric("   "));
}

TEST(IsAlphaNumeric, OtherCharactersFail) {
  EXPECT_FALSE(IsAlphaNumeric("A-1"));
  EXPECT_FALSE(IsAlphaNumeric("A 1"));
  EXPECT_FALSE(IsAlphaNumeric("A'1"));
  EXPECT_FALSE(IsAlphaNumeric("A1\t"));
  EXPECT_FALSE(IsAlphaNumeric("A\0"sv));
}

TEST(IsAlphaNumeric, NeighboursOfTheThreeRangesFail) {
  for (const char* const neighbour : {"/", ":", "@", "[", "`", "{"}) {
    SCOPED_TRACE(neighbour);
    EXPECT_FALSE(IsAlphaNumeric(neighbour));
    EXPECT_FALSE(IsAlphaNumeric(std::string("A") + neighbour));
  }
}

TEST(IsAlphaNumeric, LettersAndDigitsOutsideAsciiFail) {
  EXPECT_FALSE(IsAlphaNumeric("É"));
  EXPECT_FALSE(IsAlphaNumeric("A\u0661"));
  EXPECT_FALSE(IsAlphaNumeric("\uFF21"));
  EXPECT_FALSE(IsAlphaNumeric("A😀"));
}

TEST(IsAlphaNumeric, LeadingBlanksFail) {
  EXPECT_FALSE(IsAlphaNumeric("  AB"));
  EXPECT_FALSE(IsAlphaNumeric(" A"));
  EXPECT_FALSE(IsAlphaNumeric(" A "));
}

TEST(IsAlphaNumeric, TrailingBlanksDoNotCount) {
  EXPECT_TRUE(IsAlphaNumeric("AB  "));
  EXPECT_TRUE(IsAlphaNumeric("A "));
}

// --- AddWhereCondition -----------------------------------------------------

TEST(AddWhereCondition, AnEmptyFilterBegins) {
  Statement where;
  EXPECT_EQ(AddWhereCondition("X1", where, "Pin").text(), " WHERE ltrim(rtrim(Pin)) = 'X1'");
  EXPECT_EQ(where.text(), " WHERE ");
}

TEST(AddWhereCondition, AFilterThatHoldsSomethingGoesOn) {
  Statement where;
  where << " WHERE a";
  EXPECT_EQ(AddWhereCondition("X1", where, "Pin").text(), " WHERE a AND ltrim(rtrim(Pin)) = 'X1'");
  EXPECT_EQ(where.text(), " WHERE a AND ");
}

TEST(AddWhereCondition, AFilterOfBlanksIsReplaced) {
  Statement where;
  where << "   ";
  EXPECT_EQ(AddWhereCondition("X1", where, "Pin").text(), " WHERE ltrim(rtrim(Pin)) = 'X1'");
  EXPECT_EQ(where.text(), " WHERE ");
}

TEST(AddWhereCondition, ABlankValueLeavesTheFilterAlone) {
  for (const char* const blank : {"", "   "}) {
    Statement empty;
    EXPECT_EQ(AddWhereCondition(blank, empty, "Pin").text(), "");
    EXPECT_EQ(empty.text(), "");

    Statement blanks;
    blanks << "  ";
    EXPECT_EQ(AddWhereCondition(blank, blanks, "Pin").text(), "  ");
    EXPECT_EQ(blanks.text(), "  ");

    Statement where;
    where << " WHERE a";
    EXPECT_EQ(AddWhereCondition(blank, where, "Pin").text(), " WHERE a");
    EXPECT_EQ(where.text(), " WHERE a");
  }
}

TEST(AddWhereCondition, ConditionsFollowEachOther) {
  Statement where;
  where = AddWhereCondition("MMR", where, "l.Vaccine");
  where = AddWhereCondition("", where, "l.Lot");
  where = AddWhereCondition("P1", where, "l.Pin");
  EXPECT_EQ(where.text(), " WHERE ltrim(rtrim(l.Vaccine)) = 'MMR' AND ltrim(rtrim(l.Pin)) = 'P1'");
}

TEST(AddWhereCondition, TheValueIsNeitherTrimmedNorEscaped) {
  Statement trimmed;
  EXPECT_EQ(AddWhereCondition(" x1 ", trimmed, "Pin").text(), " WHERE ltrim(rtrim(Pin)) = ' x1 '");
  Statement escaped;
  EXPECT_EQ(AddWhereCondition("O'Neil", escaped, "Pin").text(),
            " WHERE ltrim(rtrim(Pin)) = 'O'Neil'");
}

TEST(AddWhereCondition, AnOverlongValueOverflowsAndLeavesTheFilterAlone) {
  Statement where;
  where << " WHERE a";
  ExpectOverflow([&] { return AddWhereCondition(Times(32768, "x"), where, "Pin"); });
  EXPECT_EQ(where.text(), " WHERE a");
}

// --- The removal family ----------------------------------------------------

TEST(RemoveSpaces, EveryBlankAndNothingElse) {
  EXPECT_EQ(RemoveSpaces("  a  b c "), "abc");
  EXPECT_EQ(RemoveSpaces("a\tb\u00A0c"), "a\tb\u00A0c");
  EXPECT_EQ(RemoveSpaces("/-()é"), "/-()é");
  EXPECT_EQ(RemoveSpaces("   "), "");
  EXPECT_EQ(RemoveSpaces(""), "");
}

TEST(RemoveSlashes, EverySlashAndNothingElse) {
  EXPECT_EQ(RemoveSlashes("//a/b//"), "ab");
  EXPECT_EQ(RemoveSlashes("a\\b -()é"), "a\\b -()é");
  EXPECT_EQ(RemoveSlashes("/"), "");
  EXPECT_EQ(RemoveSlashes(""), "");
}

TEST(RemoveDashes, EveryDashAndNothingElse) {
  EXPECT_EQ(RemoveDashes("--A-B--"), "AB");
  EXPECT_EQ(RemoveDashes("a\u2013b\u2212c_ /()"), "a\u2013b\u2212c_ /()");
  EXPECT_EQ(RemoveDashes("---"), "");
  EXPECT_EQ(RemoveDashes(""), "");
}

TEST(RemoveParentheses, EveryParenthesisAndNothingElse) {
  EXPECT_EQ(RemoveParentheses(")(x)("), "x");
  EXPECT_EQ(RemoveParentheses("((a)b)"), "ab");
  EXPECT_EQ(RemoveParentheses("[a]{b} /-"), "[a]{b} /-");
  EXPECT_EQ(RemoveParentheses("()"), "");
  EXPECT_EQ(RemoveParentheses(""), "");
}

TEST(StripPhoneNumber, BlanksSlashesDashesAndParenthesesGo) {
  EXPECT_EQ(StripPhoneNumber("(555) 123-4567"), "5551234567");
  EXPECT_EQ(StripPhoneNumber("555/123 - 4567"), "5551234567");
  EXPECT_EQ(StripPhoneNumber(" -/()"), "");
  EXPECT_EQ(StripPhoneNumber(""), "");
}

TEST(StripPhoneNumber, EverythingElseStays) {
  EXPECT_EQ(StripPhoneNumber("+1.555 x9\\\té"), "+1.555x9\\\té");
}

TEST(StripPhoneNumber, TheFamilyKnowsNoLimitOfLength) {
  EXPECT_EQ(StripPhoneNumber(Times(40000, "5-")), Times(40000, "5"));
}

// --- RemoveSpecialCharacters -----------------------------------------------

TEST(RemoveSpecialCharacters, EveryCharacterOfTheSetGoes) {
  for (const char character : R"(!@#$%^&*()+|\/{}[]:<>?"')"sv) {
    SCOPED_TRACE(character);
    const std::string one(1, character);
    EXPECT_EQ(RemoveSpecialCharacters(one), "");
    EXPECT_EQ(RemoveSpecialCharacters(one + "a" + one + one + "b" + one), "ab");
  }
}

TEST(RemoveSpecialCharacters, EverythingElseStaysInOrder) {
  EXPECT_EQ(RemoveSpecialCharacters(" -,._=;~"), " -,._=;~");
  EXPECT_EQ(RemoveSpecialCharacters("`\t\n"), "`\t\n");
  EXPECT_EQ(RemoveSpecialCharacters("azAZ09"), "azAZ09");
  EXPECT_EQ(RemoveSpecialCharacters("é’“😀"), "é’“😀");
  EXPECT_EQ(RemoveSpecialCharacters("a\0b"sv), "a\0b"sv);
  EXPECT_EQ(RemoveSpecialCharacters(""), "");
}

TEST(RemoveSpecialCharacters, BlanksAroundARemovedCharacterStay) {
  EXPECT_EQ(RemoveSpecialCharacters("O'Neil & Sons, Inc."), "ONeil  Sons, Inc.");
  EXPECT_EQ(RemoveSpecialCharacters("  (a)  "), "  a  ");
}

TEST(RemoveSpecialCharacters, TheLengthIsA16BitNumber) {
  EXPECT_EQ(RemoveSpecialCharacters(Times(32767, "x")), Times(32767, "x"));
  ExpectOverflow([] { return RemoveSpecialCharacters(Times(32768, "x")); });
  ExpectOverflow([] { return RemoveSpecialCharacters(Times(32768, " ")); });
  ExpectOverflow([] { return RemoveSpecialCharacters(Times(32768, "'")); });
}

TEST(RemoveSpecialCharacters, TheLengthCountsUtf16Units) {
  EXPECT_EQ(RemoveSpecialCharacters(Times(32767, "é")), Times(32767, "é"));
  ExpectOverflow([] { return RemoveSpecialCharacters(Times(32768, "é")); });
  ExpectOverflow([] { return RemoveSpecialCharacters(Times(16384, "😀")); });
}

}  // namespace
}  // namespace lotrix

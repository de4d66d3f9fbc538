#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "src/validation/validation.h"
#include "tests/support/fixture.h"

namespace lotrix {
namespace {

using test::Coded;
using test::ExpectError;
using test::Refusal;

class ValueRules : public test::DatabaseTest {
 protected:
  [[nodiscard]] bool IsActiveValue(const std::string& value) {
    ForgetTrace();
    return ValidateActiveValue(log(), value);
  }
  [[nodiscard]] bool IsPhone(const std::string& number) {
    ForgetTrace();
    return ValidatePhoneFaxFormat(log(), number);
  }

  void ExpectLines(const std::vector<std::string>& lines) { EXPECT_EQ(Trace(), lines); }

  void ExpectNoCertDate(const std::string& date) {
    SCOPED_TRACE(date);
    ForgetTrace();
    ExpectError(Refusal([&] { ValidateVFCCertDate(log(), date); }), Coded(20073),
                "VFC certification date is not a valid date");
    ExpectLines({"information Begin: ValidateVFCCertDate()",
                 "error Problem: In ValidateVFCCertDate() VFC certification date is not a valid "
                 "date"});
  }
  void ExpectCertDate(const std::string& date) {
    SCOPED_TRACE(date);
    ForgetTrace();
    EXPECT_NO_THROW(ValidateVFCCertDate(log(), date));
    ExpectLines(
        {"information Begin: ValidateVFCCertDate()", "information End: ValidateVFCCertDate()"});
  }

  void ExpectAllowance(const std::string& text) {
    SCOPED_TRACE(text);
    ForgetTrace();
    EXPECT_NO_THROW(ValidateExcessAllowance(log(), text));
    ExpectLines({"information Begin: ValidateExcessAllowance()"});
  }
  void ExpectOutOfRange(const std::string& text) {
    SCOPED_TRACE(text);
    ForgetTrace();
    ExpectError(Refusal([&] { ValidateExcessAllowance(log(), text); }), Coded(20068),
                "The excess allowance is out of range");
    ExpectLines({"information Begin: ValidateExcessAllowance()",
                 "error Problem: In ValidateExcessAllowance() The excess allowance is out of "
                 "range"});
  }
  void ExpectNoAllowance(const std::string& text, std::int32_t number) {
    SCOPED_TRACE(text);
    ForgetTrace();
    const Error error = Refusal([&] { ValidateExcessAllowance(log(), text); });
    ExpectError(error, number, error.description());
    ExpectLines({"information Begin: ValidateExcessAllowance()",
                 "error Problem: In ValidateExcessAllowance() " + error.description()});
  }
};

// --- ValidateActiveValue ---------------------------------------------------

TEST_F(ValueRules, ActiveValueIsYesOrNoInEitherCase) {
  for (const char* const value : {"Y", "y", "N", "n"}) {
    SCOPED_TRACE(value);
    EXPECT_TRUE(IsActiveValue(value));
    ExpectLines(
        {"information Begin: ValidateActiveValue()", "information End: ValidateActiveValue()"});
  }
}

TEST_F(ValueRules, ActiveValueRejectsAnEmptyText) {
  EXPECT_FALSE(IsActiveValue(""));
  ExpectLines(
      {"information Begin: ValidateActiveValue()", "information End: ValidateActiveValue()"});
}

TEST_F(ValueRules, ActiveValueIsNotTrimmed) {
  for (const char* const value : {"Y ", " Y", "N ", " n", " "}) {
    SCOPED_TRACE(value);
    EXPECT_FALSE(IsActiveValue(value));
  }
}

TEST_F(ValueRules, ActiveValueRejectsEverythingElse) {
  for (const char* const value : {"YES", "NO", "YN", "A", "1", "Ý", "ñ", "'"}) {
    SCOPED_TRACE(value);
    EXPECT_FALSE(IsActiveValue(value));
    ExpectLines(
        {"information Begin: ValidateActiveValue()", "information End: ValidateActiveValue()"});
  }
}

// --- ValidatePhoneFaxFormat ------------------------------------------------

TEST_F(ValueRules, PhoneIsAcceptedInItsOneForm) {
  EXPECT_TRUE(IsPhone("(217) 555-0100"));
  ExpectLines(
      {"information Begin: ValidatePhoneFaxFormat()", "information End: ValidatePhoneFaxFormat()"});
}

TEST_F(ValueRules, PhoneOfAnotherLengthIsRejectedWithTheEndLine) {
  for (const char* const number : {"217-555-0100", "2175550100", "", "(217) 555-010",
                                   "(217) 555-01000", "(217) 555-0100 ", " (217) 555-0100"}) {
    SCOPED_TRACE(number);
    EXPECT_FALSE(IsPhone(number));
    ExpectLines({"information Begin: ValidatePhoneFaxFormat()",
                 "information End: ValidatePhoneFaxFormat()"});
  }
}

TEST_F(ValueRules, PhoneOfFourteenCharactersInAnotherFormIsRejected) {
  for (const char* const number :
       {"(217)555-01000", "(217) 555 0100", "217) 555-01000", "(217)-555-0100", "(217) 5550-100",
        "217 / 555-0100", "21755501001234", "(217  555-0100", " 217) 555-0100", "[217] 555-0100",
        "(2 7) 555-0100", "(21-) 555-0100", "(217) 5/5-0100", "(217) 555-(100",
        "(217)\u00A0555-0100", "--------------"}) {
    SCOPED_TRACE(number);
    EXPECT_FALSE(IsPhone(number));
    ExpectLines({"information Begin: ValidatePhoneFaxFormat()",
                 "information End: ValidatePhoneFaxFormat()"});
  }
}

TEST_F(ValueRules, PhoneTakesAnyCharactersInTheirPlaces) {
  EXPECT_TRUE(IsPhone("(abc) DeF-gh.1"));
  EXPECT_TRUE(IsPhone("('@#) !&x-\\*+="));
}

TEST_F(ValueRules, PhoneLengthCountsUtf16Units) {
  EXPECT_TRUE(IsPhone("(éèê) ëàâ-ùûôî"));
  EXPECT_TRUE(IsPhone("(😀7) 555-0100"));
  // Fourteen bytes only.
  EXPECT_FALSE(IsPhone("(é17) 55-0100"));
  EXPECT_FALSE(IsPhone("(😀17) 555-0100"));
}

// The characters fill in from the left, and missing ones are blanks.
TEST_F(ValueRules, PhoneMayLackItsLastCharacters) {
  EXPECT_TRUE(IsPhone("(217) 555-010 "));
  EXPECT_TRUE(IsPhone("(555) 123-4   "));
  EXPECT_TRUE(IsPhone("(5  )    -    "));
}

TEST_F(ValueRules, PhoneOfBlanksOnlyIsRejected) {
  EXPECT_FALSE(IsPhone("(   )    -    "));
  EXPECT_FALSE(IsPhone("              "));
}

// --- ValidateVFCCertDate ---------------------------------------------------

TEST_F(ValueRules, CertDateTakesDates) {
  for (const char* const date :
       {"1/5/2004", "01/05/2004", "1-5-2004", "2004-1-5", "January 5, 2004", "5 Jan 2004",
        "2/29/2004", "1/5/2004 10:30 PM", " 1/5/2004 ", "12/31/9999", "1/1/100"}) {
    ExpectCertDate(date);
  }
}

TEST_F(ValueRules, CertDateRefusesEverythingElse) {
  for (const char* const date :
       {"", " ", "soon", "13/5/2001", "2/30/2004", "2/29/2003", "1/5", "2004", "10:30",
        "12:00:00 AM", "1/5/2004 25:00", "1'5/2004", "{1/5/2004}", "Monday, January 5, 2004"}) {
    ExpectNoCertDate(date);
  }
}

// --- ValidateExcessAllowance -----------------------------------------------

TEST_F(ValueRules, AllowanceIsOneToFiveAndWritesNoEndLine) {
  for (const char* const text : {"1", "2", "3", "4", "5"}) ExpectAllowance(text);
}

TEST_F(ValueRules, AllowanceOutsideIsRefused) {
  for (const char* const text : {"0", "6", "-1", "-2147483648", "2147483647", "15"}) {
    ExpectOutOfRange(text);
  }
}

TEST_F(ValueRules, AllowanceIsConvertedLikeAnyNumber) {
  for (const char* const text : {" 3 ", "$2", "1.0", "&H5", "5.4", "4.5", "0.51", "+1", "5e0"}) {
    ExpectAllowance(text);
  }
  for (const char* const text : {"0.5", "5.5", "(1)", "-3", "&H6", "5,0"}) ExpectOutOfRange(text);
}

TEST_F(ValueRules, AllowanceThatIsNoNumberIsATypeMismatch) {
  for (const char* const text : {"", " ", "one", "1 2", "5%", "True", "'"}) {
    ExpectNoAllowance(text, 13);
  }
}

TEST_F(ValueRules, AllowanceBeyondThe32BitRangeOverflows) {
  for (const char* const text : {"2147483648", "-2147483649", "1e10"}) ExpectNoAllowance(text, 6);
}

}  // namespace
}  // namespace lotrix

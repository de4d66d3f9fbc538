#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "src/validation/validation.h"
#include "tests/support/expected_statements.h"
#include "tests/support/fixture.h"

namespace lotrix::test {
namespace {

using Texts = std::vector<std::string>;
using Records = std::vector<Value>;

constexpr char kSubdivisionError[] = "Error while verifying provider subdivision";
constexpr char kAddressBlank[] = "The first field of the shipping address cannot be null";
constexpr char kCityBlank[] = "The city field in the shipping address cannot be null";
constexpr char kStateBlank[] = "The state field in the shipping address cannot be null";
constexpr char kTooLong[] =
    "The number of characters in the pin entered exceeds the maximum allowed";
constexpr char kNotAlphanumeric[] =
    "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed.";
constexpr char kDepotError[] = "Error while verifying depot PIN in LOTRIX";
constexpr char kProviderError[] = "Error while verifying provider PIN in LOTRIX";
constexpr char kDuplicate[] = "Provider PIN entered has a duplicate";
constexpr char kInactive[] =
    "The provider enter is currently inactivate in LOTRIX. Cannot proceed with the current "
    "operation";

Value Count(std::int64_t count) { return count; }

class ProviderRoutines : public DatabaseTest {
 protected:
  // pin, sector, active as SQL.
  void AddProvider(const std::string& values) {
    Execute("INSERT INTO provider (pin, sector, active) VALUES (" + values + ")");
  }
  void AddSubdivision(const std::string& value) {
    Execute("INSERT INTO subdiv (subdiv) VALUES (" + value + ")");
  }

  std::vector<std::vector<Row>> Tables() {
    return {Query("SELECT * FROM provider ORDER BY pin, sector, active"),
            Query("SELECT * FROM subdiv ORDER BY subdiv")};
  }

  void ExpectRefused(const std::function<void()>& call, std::int32_t code,
                     const std::string& description) {
    const auto before = Tables();
    ExpectError(Refusal(call), Coded(code), description);
    EXPECT_EQ(Tables(), before);
  }

  // The open connection, on which every query is answered with `records`.
  Connection& Answering(const Records& records) {
    Connection& open = connection();
    Watch(open, [&records](const std::string&) -> std::optional<Records> { return records; });
    return open;
  }

  // The open connection; statements are kept.
  Connection& Watched() {
    Connection& open = connection();
    Watch(open);
    return open;
  }
};

// --- ValidateSubdivision ---------------------------------------------------

TEST_F(ProviderRoutines, SubdivisionThatIsThereOncePasses) {
  AddSubdivision("'North'");
  AddSubdivision("'South'");
  Connection& open = Watched();
  EXPECT_NO_THROW(ValidateSubdivision(log(), "North", open));
  EXPECT_EQ(Statements(),
            Texts{"SELECT count(*) FROM subdiv WHERE ltrim(rtrim(subdiv)) = 'North'"});
  EXPECT_EQ(Trace(), (Texts{"information Begin: ValidateSubdivision()",
                            "information End: ValidateSubdivision()"}));
}

TEST_F(ProviderRoutines, SubdivisionThatIsNotThereIsRefused) {
  AddSubdivision("'North'");
  AddSubdivision("NULL");
  Connection& open = Watched();
  ExpectRefused([&] { ValidateSubdivision(log(), "South", open); }, 20067,
                "The subdivision entered does not exist in the database");
  EXPECT_EQ(Statements(),
            Texts{"SELECT count(*) FROM subdiv WHERE ltrim(rtrim(subdiv)) = 'South'"});
  EXPECT_EQ(Trace(), (Texts{"information Begin: ValidateSubdivision()",
                            "error Problem: In ValidateSubdivision() The subdivision entered does "
                            "not exist in the database"}));
}

TEST_F(ProviderRoutines, SubdivisionThatIsThereTwiceIsRefused) {
  AddSubdivision("'North'");
  AddSubdivision("'  North '");
  ExpectRefused([&] { ValidateSubdivision(log(), "North", connection()); }, 20066,
                "Duplicate subdivisions found");
}

TEST_F(ProviderRoutines, SubdivisionIsComparedAsGivenWithTheTrimmedColumn) {
  AddSubdivision("'  North '");
  Connection& open = Watched();
  EXPECT_NO_THROW(ValidateSubdivision(log(), "North", open));
  EXPECT_NO_THROW(ValidateSubdivision(log(), "North  ", open));
  for (const std::string other : {" North", "north", "NORTH", "Nort", ""}) {
    SCOPED_TRACE(other);
    ExpectRefused([&] { ValidateSubdivision(log(), other, open); }, 20067,
                  "The subdivision entered does not exist in the database");
  }
  EXPECT_EQ(Statements(),
            (Texts{"SELECT count(*) FROM subdiv WHERE ltrim(rtrim(subdiv)) = 'North'",
                   "SELECT count(*) FROM subdiv WHERE ltrim(rtrim(subdiv)) = 'North  '",
                   "SELECT count(*) FROM subdiv WHERE ltrim(rtrim(subdiv)) = ' North'",
                   "SELECT count(*) FROM subdiv WHERE ltrim(rtrim(subdiv)) = 'north'",
                   "SELECT count(*) FROM subdiv WHERE ltrim(rtrim(subdiv)) = 'NORTH'",
                   "SELECT count(*) FROM subdiv WHERE ltrim(rtrim(subdiv)) = 'Nort'",
                   "SELECT count(*) FROM subdiv WHERE ltrim(rtrim(subdiv)) = ''"}));
}

TEST_F(ProviderRoutines, BlankSubdivisionIsComparedLikeAnyOther) {
  AddSubdivision("'   '");
  EXPECT_NO_THROW(ValidateSubdivision(log(), "", connection()));
  EXPECT_NO_THROW(ValidateSubdivision(log(), "  ", connection()));
}

TEST_F(ProviderRoutines, SubdivisionMayHoldWhatIsPlainTextBetweenQuotes) {
  AddSubdivision("'{A}\"B\\--;é'");
  EXPECT_NO_THROW(ValidateSubdivision(log(), "{A}\"B\\--;é", connection()));
}

TEST_F(ProviderRoutines, SubdivisionCounts) {
  Records records;
  Connection& open = Answering(records);
  const auto validate = [&] { ValidateSubdivision(log(), "North", open); };
  records = {Count(1)};
  EXPECT_NO_THROW(validate());
  records = {Count(0)};
  ExpectRefused(validate, 20067, "The subdivision entered does not exist in the database");
  records = {Count(2)};
  ExpectRefused(validate, 20066, "Duplicate subdivisions found");
  records = {Count(3)};
  ExpectRefused(validate, 20066, "Duplicate subdivisions found");
  records = {Count(-1)};
  ExpectRefused(validate, 20065, kSubdivisionError);
}

TEST_F(ProviderRoutines, SubdivisionNeedsOneRecordWithTheCount) {
  Records records;
  Connection& open = Answering(records);
  const auto validate = [&] { ValidateSubdivision(log(), "North", open); };
  ExpectRefused(validate, 20065, kSubdivisionError);
  records = {Count(1), Count(1)};
  ExpectRefused(validate, 20065, kSubdivisionError);
}

// --- ValidateShippingAddress -----------------------------------------------

TEST_F(ProviderRoutines, ShippingAddressPassesWithoutAQuery) {
  Connection& open = Watched();
  EXPECT_NO_THROW(
      ValidateShippingAddress(log(), "1 Main St", "Suite 2", "Lansing", "48901", "MI", open));
  EXPECT_EQ(Statements(), Texts{});
  EXPECT_EQ(Trace(), (Texts{"information Begin: ValidateShippingAddress()",
                            "information End: ValidateShippingAddress()"}));
}

TEST_F(ProviderRoutines, ShippingAddressNeedsNoSecondLineAndNoZipCode) {
  EXPECT_NO_THROW(
      ValidateShippingAddress(log(), "1 Main St", "", "Lansing", "48901", "MI", connection()));
  EXPECT_NO_THROW(
      ValidateShippingAddress(log(), "1 Main St", "Suite 2", "Lansing", "", "MI", connection()));
  EXPECT_NO_THROW(
      ValidateShippingAddress(log(), "1 Main St", "  ", "Lansing", "  ", "MI", connection()));
}

TEST_F(ProviderRoutines, ShippingAddressCityAndZipCodeAreNotLookedUp) {
  Execute("INSERT INTO zipcodes (zip, cntyname) VALUES ('48901', 'Ingham')");
  EXPECT_NO_THROW(
      ValidateShippingAddress(log(), "1 Main St", "", "Nowhere", "no zip", "??", connection()));
}

TEST_F(ProviderRoutines, ShippingAddressNeedsAFirstLine) {
  Connection& open = Watched();
  for (const std::string blank : {"", " ", "     "}) {
    ExpectRefused(
        [&] { ValidateShippingAddress(log(), blank, "2", "Lansing", "48901", "MI", open); }, 20006,
        kAddressBlank);
  }
  EXPECT_EQ(Statements(), Texts{});
}

TEST_F(ProviderRoutines, ShippingAddressNeedsACity) {
  for (const std::string blank : {"", " ", "     "}) {
    ExpectRefused(
        [&] { ValidateShippingAddress(log(), "1 Main", "2", blank, "48901", "MI", connection()); },
        20007, kCityBlank);
  }
}

TEST_F(ProviderRoutines, ShippingAddressNeedsAState) {
  for (const std::string blank : {"", " ", "     "}) {
    ExpectRefused(
        [&] {
          ValidateShippingAddress(log(), "1 Main", "2", "Lansing", "48901", blank, connection());
        },
        20008, kStateBlank);
  }
}

TEST_F(ProviderRoutines, ShippingAddressIsCheckedLineCityState) {
  const auto validate = [&](const std::string& line, const std::string& city,
                            const std::string& state) {
    return [=, this] { ValidateShippingAddress(log(), line, "", city, "", state, connection()); };
  };
  ExpectRefused(validate("", "", ""), 20006, kAddressBlank);
  ExpectRefused(validate("", "", "MI"), 20006, kAddressBlank);
  ExpectRefused(validate("", "Lansing", ""), 20006, kAddressBlank);
  ExpectRefused(validate("1 Main", "", ""), 20007, kCityBlank);
}

TEST_F(ProviderRoutines, ShippingAddressRefusalIsLogged) {
  Connection& open = connection();
  ExpectRefused([&] { ValidateShippingAddress(log(), "1 Main", "", "", "", "MI", open); }, 20007,
                kCityBlank);
  EXPECT_EQ(Trace(), (Texts{"information Begin: ValidateShippingAddress()",
                            "error Problem: In ValidateShippingAddress() The city field in the "
                            "shipping address cannot be null"}));
}

TEST_F(ProviderRoutines, OnlyBlanksAreBlankInAShippingAddress) {
  EXPECT_NO_THROW(ValidateShippingAddress(log(), "\t", "", "\n", "", "\xC2\xA0", connection()));
}

TEST_F(ProviderRoutines, ShippingAddressPartBeyondTheLengthOfTheBlankTestOverflows) {
  EXPECT_NO_THROW(ValidateShippingAddress(log(), std::string(32767, 'x'), "", "Lansing", "", "MI",
                                          connection()));
  const Error error = Refusal([&] {
    ValidateShippingAddress(log(), std::string(32768, 'x'), "", "Lansing", "", "MI", connection());
  });
  EXPECT_EQ(error.number(), 6);
  EXPECT_EQ(error.source(), "LOTRIX DLL");
}

// --- ValidateDepotPIN ------------------------------------------------------

TEST_F(ProviderRoutines, ActiveDepotPasses) {
  AddProvider("'D1', 30, 'Y'");
  Connection& open = Watched();
  EXPECT_NO_THROW(ValidateDepotPIN(log(), "D1", open));
  EXPECT_EQ(Statements(), Texts{DepotCount("D1")});
  EXPECT_EQ(Trace(), (Texts{"information Begin: ValidateDepotPIN()",
                            "information End: ValidateDepotPIN()"}));
}

TEST_F(ProviderRoutines, DepotSectorsAre30And31) {
  AddProvider("'D29', 29, 'Y'");
  AddProvider("'D30', 30, 'Y'");
  AddProvider("'D31', 31, 'Y'");
  AddProvider("'D32', 32, 'Y'");
  AddProvider("'D35', 35, 'Y'");
  AddProvider("'DNULL', NULL, 'Y'");
  EXPECT_NO_THROW(ValidateDepotPIN(log(), "D30", connection()));
  EXPECT_NO_THROW(ValidateDepotPIN(log(), "D31", connection()));
  for (const std::string pin : {"D29", "D32", "D35", "DNULL"}) {
    SCOPED_TRACE(pin);
    ExpectRefused([&] { ValidateDepotPIN(log(), pin, connection()); }, 20014, kDepotError);
  }
}

TEST_F(ProviderRoutines, DepotThatIsNotActiveIsAsGoodAsUnknown) {
  AddProvider("'DN', 30, 'N'");
  AddProvider("'DLOW', 30, 'y'");
  AddProvider("'DNULL', 30, NULL");
  AddProvider("'DBLANK', 30, ''");
  AddProvider("'DTRIM', 30, ' Y '");
  for (const std::string pin : {"DN", "DLOW", "DNULL", "DBLANK"}) {
    SCOPED_TRACE(pin);
    ExpectRefused([&] { ValidateDepotPIN(log(), pin, connection()); }, 20014, kDepotError);
  }
  EXPECT_NO_THROW(ValidateDepotPIN(log(), "DTRIM", connection()));
}

TEST_F(ProviderRoutines, UnknownDepotIsRefused) {
  Connection& open = Watched();
  ExpectRefused([&] { ValidateDepotPIN(log(), "D1", open); }, 20014, kDepotError);
  EXPECT_EQ(Statements(), Texts{DepotCount("D1")});
  EXPECT_EQ(Trace(), (Texts{"information Begin: ValidateDepotPIN()",
                            "error Problem: In ValidateDepotPIN() Error while verifying depot PIN "
                            "in LOTRIX"}));
}

TEST_F(ProviderRoutines, DepotPinThatTwoActiveDepotsHoldIsRefused) {
  AddProvider("'D1', 30, 'Y'");
  AddProvider("' D1 ', 31, 'Y'");
  ExpectRefused([&] { ValidateDepotPIN(log(), "D1", connection()); }, 20015, kDuplicate);
}

TEST_F(ProviderRoutines, DepotPinIsNoDuplicateOfAnInactiveDepotOrAProvider) {
  AddProvider("'D1', 30, 'Y'");
  AddProvider("'D1', 31, 'N'");
  AddProvider("'D1', 10, 'Y'");
  EXPECT_NO_THROW(ValidateDepotPIN(log(), "D1", connection()));
}

TEST_F(ProviderRoutines, DepotPinIsUpperCased) {
  AddProvider("'DEP1', 30, 'Y'");
  Connection& open = Watched();
  EXPECT_NO_THROW(ValidateDepotPIN(log(), "dEp1", open));
  EXPECT_EQ(Statements(), Texts{DepotCount("DEP1")});
}

TEST_F(ProviderRoutines, StoredDepotPinIsTrimmedButNotUpperCased) {
  AddProvider("'  DEP1 ', 30, 'Y'");
  AddProvider("'dep2', 30, 'Y'");
  EXPECT_NO_THROW(ValidateDepotPIN(log(), "DEP1", connection()));
  ExpectRefused([&] { ValidateDepotPIN(log(), "dep2", connection()); }, 20014, kDepotError);
}

TEST_F(ProviderRoutines, DepotPinOfSixCharactersIsTheLongest) {
  AddProvider("'ABC123', 30, 'Y'");
  AddProvider("'ABC1234', 30, 'Y'");
  Connection& open = Watched();
  EXPECT_NO_THROW(ValidateDepotPIN(log(), "ABC123", open));
  EXPECT_EQ(Statements(), Texts{DepotCount("ABC123")});
  ExpectRefused([&] { ValidateDepotPIN(log(), "ABC1234", open); }, 20078, kTooLong);
  EXPECT_EQ(Statements(), Texts{});
}

TEST_F(ProviderRoutines, DepotPinLengthComesBeforeItsCharacters) {
  for (const std::string pin : {"ABC-123", "ABC123 ", "       ", "ééééééé", "😀😀😀😀"}) {
    SCOPED_TRACE(pin);
    ExpectRefused([&] { ValidateDepotPIN(log(), pin, connection()); }, 20078, kTooLong);
  }
}

TEST_F(ProviderRoutines, DepotPinThatIsNotAlphanumericIsRefusedWithoutAQuery) {
  Connection& open = Watched();
  for (const std::string pin : {"D-1", "D 1", " D1", "D.1", "D'1", "éééééé", "😀😀😀", "D1\t"}) {
    SCOPED_TRACE(pin);
    ForgetTrace();
    ExpectRefused([&] { ValidateDepotPIN(log(), pin, open); }, 20080, kNotAlphanumeric);
    EXPECT_EQ(Trace(), (Texts{"information Begin: ValidateDepotPIN()",
                              "error Problem: In ValidateDepotPIN() The provider pin number "
                              "entered is not alphanumeric. Only alphanumeric pins are allowed."}));
  }
  EXPECT_EQ(Statements(), Texts{});
}

TEST_F(ProviderRoutines, BlankDepotPinIsRefusedAsNotAlphanumeric) {
  for (const std::string pin : {"", " ", "      "}) {
    SCOPED_TRACE(pin);
    ExpectRefused([&] { ValidateDepotPIN(log(), pin, connection()); }, 20080, kNotAlphanumeric);
  }
}

TEST_F(ProviderRoutines, DepotPinWithTrailingBlanksIsAskedForAsGiven) {
  AddProvider("'D1', 30, 'Y'");
  Connection& open = Watched();
  EXPECT_NO_THROW(ValidateDepotPIN(log(), "d1    ", open));
  EXPECT_EQ(Statements(), Texts{DepotCount("D1    ")});
}

TEST_F(ProviderRoutines, DepotCounts) {
  Records records;
  Connection& open = Answering(records);
  const auto validate = [&] { ValidateDepotPIN(log(), "D1", open); };
  records = {Count(1)};
  EXPECT_NO_THROW(validate());
  records = {Count(0)};
  ExpectRefused(validate, 20014, kDepotError);
  records = {Count(-1)};
  ExpectRefused(validate, 20014, kDepotError);
  records = {Count(2)};
  ExpectRefused(validate, 20015, kDuplicate);
  records = {Count(3)};
  ExpectRefused(validate, 20015, kDuplicate);
}

TEST_F(ProviderRoutines, DepotNeedsOneRecordWithTheCount) {
  Records records;
  Connection& open = Answering(records);
  const auto validate = [&] { ValidateDepotPIN(log(), "D1", open); };
  ExpectRefused(validate, 20014, kDepotError);
  records = {Count(1), Count(1)};
  ExpectRefused(validate, 20014, kDepotError);
  records = {Count(2), Count(2)};
  ExpectRefused(validate, 20014, kDepotError);
}

// --- ValidateNewProviderPIN ------------------------------------------------

TEST_F(ProviderRoutines, NewProviderPinPassesWithItsTwoLines) {
  EXPECT_NO_THROW(ValidateNewProviderPIN(log(), "999997"));
  EXPECT_EQ(Trace(), (Texts{"information Begin: ValidateNewProviderPIN()",
                            "information End: ValidateNewProviderPIN()"}));
}

TEST_F(ProviderRoutines, ReservedPinsAreRefusedForANewProvider) {
  for (const std::string pin : {"999999", "999998"}) {
    SCOPED_TRACE(pin);
    ForgetTrace();
    ExpectRefused([&] { ValidateNewProviderPIN(log(), pin); }, 20072,
                  "The given pin number is reserved and cannot be assigned to a new provider.");
    EXPECT_EQ(Trace(), (Texts{"information Begin: ValidateNewProviderPIN()",
                              "error Problem: In ValidateNewProviderPIN() The given pin number is "
                              "reserved and cannot be assigned to a new provider."}));
  }
}

TEST_F(ProviderRoutines, ZeroIsRefusedForANewProvider) {
  ExpectRefused([&] { ValidateNewProviderPIN(log(), "0"); }, 20084,
                "Pin number cannot be zero for a new provider record");
  EXPECT_EQ(Trace(), (Texts{"information Begin: ValidateNewProviderPIN()",
                            "error Problem: In ValidateNewProviderPIN() Pin number cannot be zero "
                            "for a new provider record"}));
}

TEST_F(ProviderRoutines, NewProviderPinIsComparedExactly) {
  for (const std::string pin : {"00", "000000", " 0", "0 ", " 999999", "999999 ", "999998 ",
                                "99999", "9999999", "", "A-1", "0.0"}) {
    SCOPED_TRACE(pin);
    EXPECT_NO_THROW(ValidateNewProviderPIN(log(), pin));
  }
}

// --- ValidateProviderPIN ---------------------------------------------------

TEST_F(ProviderRoutines, ProviderThatIsThereOnceIsTrue) {
  AddProvider("'P1', 10, 'Y'");
  Connection& open = Watched();
  EXPECT_TRUE(ValidateProviderPIN(log(), "P1", false, open));
  EXPECT_EQ(Statements(), Texts{ProviderCount("P1")});
  EXPECT_EQ(Trace(), (Texts{"information Begin: ValidateProviderPIN()",
                            "information End: ValidateProviderPIN()"}));
}

TEST_F(ProviderRoutines, UnknownProviderIsFalse) {
  for (const bool checkActive : {false, true}) {
    Connection& open = connection();
    EXPECT_FALSE(ValidateProviderPIN(log(), "P1", checkActive, open));
    EXPECT_EQ(Trace(), (Texts{"information Begin: ValidateProviderPIN()",
                              "information End: ValidateProviderPIN()"}));
  }
}

TEST_F(ProviderRoutines, UnknownProviderIsNotAskedWhetherItIsActive) {
  Connection& open = Watched();
  EXPECT_FALSE(ValidateProviderPIN(log(), "P1", true, open));
  EXPECT_EQ(Statements(), Texts{ProviderCount("P1")});
}

TEST_F(ProviderRoutines, ProviderSectorsAre10To29) {
  AddProvider("'P9', 9, 'Y'");
  AddProvider("'P10', 10, 'Y'");
  AddProvider("'P20', 20, 'Y'");
  AddProvider("'P29', 29, 'Y'");
  AddProvider("'P295', 29.5, 'Y'");
  AddProvider("'P30', 30, 'Y'");
  AddProvider("'P35', 35, 'Y'");
  AddProvider("'PNULL', NULL, 'Y'");
  for (const std::string pin : {"P10", "P20", "P29"}) {
    SCOPED_TRACE(pin);
    EXPECT_TRUE(ValidateProviderPIN(log(), pin, true, connection()));
  }
  for (const std::string pin : {"P9", "P295", "P30", "P35", "PNULL"}) {
    SCOPED_TRACE(pin);
    EXPECT_FALSE(ValidateProviderPIN(log(), pin, true, connection()));
  }
}

TEST_F(ProviderRoutines, PinOfADepotIsFreeForAProvider) {
  AddProvider("'P1', 10, 'Y'");
  AddProvider("'P1', 30, 'Y'");
  AddProvider("'P1', 35, 'Y'");
  EXPECT_TRUE(ValidateProviderPIN(log(), "P1", true, connection()));
}

TEST_F(ProviderRoutines, ProviderPinThatTwoProvidersHoldIsRefused) {
  AddProvider("'P1', 10, 'Y'");
  AddProvider("' P1 ', 29, 'N'");
  Connection& open = Watched();
  ExpectRefused([&] { static_cast<void>(ValidateProviderPIN(log(), "P1", true, open)); }, 20003,
                kDuplicate);
  EXPECT_EQ(Statements(), Texts{ProviderCount("P1")});
  EXPECT_EQ(Trace(), (Texts{"information Begin: ValidateProviderPIN()",
                            "error Problem: In ValidateProviderPIN() Provider PIN entered has a "
                            "duplicate"}));
}

TEST_F(ProviderRoutines, ProviderPinIsUpperCased) {
  AddProvider("'PIN1', 10, 'Y'");
  Connection& open = Watched();
  EXPECT_TRUE(ValidateProviderPIN(log(), "pIn1", true, open));
  EXPECT_EQ(Statements(), (Texts{ProviderCount("PIN1"), ProviderActive("PIN1")}));
}

TEST_F(ProviderRoutines, StoredProviderPinIsTrimmedButNotUpperCased) {
  AddProvider("'  PIN1 ', 10, 'Y'");
  AddProvider("'pin2', 10, 'Y'");
  EXPECT_TRUE(ValidateProviderPIN(log(), "PIN1", true, connection()));
  EXPECT_FALSE(ValidateProviderPIN(log(), "pin2", true, connection()));
  EXPECT_FALSE(ValidateProviderPIN(log(), "PIN2", true, connection()));
}

TEST_F(ProviderRoutines, ProviderPinOfSixCharactersIsTheLongest) {
  AddProvider("'ABC123', 10, 'Y'");
  AddProvider("'ABC1234', 10, 'Y'");
  Connection& open = Watched();
  EXPECT_TRUE(ValidateProviderPIN(log(), "ABC123", false, open));
  EXPECT_EQ(Statements(), Texts{ProviderCount("ABC123")});
  ForgetTrace();
  ExpectRefused([&] { static_cast<void>(ValidateProviderPIN(log(), "ABC1234", false, open)); },
                20078, kTooLong);
  EXPECT_EQ(Statements(), Texts{});
  EXPECT_EQ(Trace(), (Texts{"information Begin: ValidateProviderPIN()",
                            "error Problem: In ValidateProviderPIN() The number of characters in "
                            "the pin entered exceeds the maximum allowed"}));
}

TEST_F(ProviderRoutines, ProviderPinLengthComesBeforeItsCharacters) {
  for (const std::string pin : {"ABC-123", "ABC123 ", "       ", "ééééééé", "😀😀😀😀"}) {
    SCOPED_TRACE(pin);
    ExpectRefused([&] { static_cast<void>(ValidateProviderPIN(log(), pin, false, connection())); },
                  20078, kTooLong);
  }
}

TEST_F(ProviderRoutines, ProviderPinThatIsNotAlphanumericIsRefusedWithoutAQuery) {
  Connection& open = Watched();
  for (const std::string pin : {"P-1", "P 1", " P1", "P.1", "P'1", "éééééé", "😀😀😀", "P1\t"}) {
    SCOPED_TRACE(pin);
    ForgetTrace();
    ExpectRefused([&] { static_cast<void>(ValidateProviderPIN(log(), pin, true, open)); }, 20079,
                  kNotAlphanumeric);
    EXPECT_EQ(Trace(), (Texts{"information Begin: ValidateProviderPIN()",
                              "error Problem: In ValidateProviderPIN() The provider pin number "
                              "entered is not alphanumeric. Only alphanumeric pins are allowed."}));
  }
  EXPECT_EQ(Statements(), Texts{});
}

TEST_F(ProviderRoutines, BlankProviderPinIsRefusedAsNotAlphanumeric) {
  for (const std::string pin : {"", " ", "      "}) {
    SCOPED_TRACE(pin);
    ExpectRefused([&] { static_cast<void>(ValidateProviderPIN(log(), pin, false, connection())); },
                  20079, kNotAlphanumeric);
  }
}

TEST_F(ProviderRoutines, ProviderPinWithTrailingBlanksIsAskedForAsGiven) {
  AddProvider("'P1', 10, 'Y'");
  Connection& open = Watched();
  EXPECT_TRUE(ValidateProviderPIN(log(), "p1    ", true, open));
  EXPECT_EQ(Statements(), (Texts{ProviderCount("P1    "), ProviderActive("P1    ")}));
}

TEST_F(ProviderRoutines, ProviderCounts) {
  Records records;
  Connection& open = Answering(records);
  const auto validate = [&] { static_cast<void>(ValidateProviderPIN(log(), "P1", false, open)); };
  records = {Count(0)};
  EXPECT_FALSE(ValidateProviderPIN(log(), "P1", false, open));
  records = {Count(1)};
  EXPECT_TRUE(ValidateProviderPIN(log(), "P1", false, open));
  records = {Count(2)};
  ExpectRefused(validate, 20003, kDuplicate);
  records = {Count(3)};
  ExpectRefused(validate, 20003, kDuplicate);
  records = {Count(-1)};
  ExpectRefused(validate, 20005, kProviderError);
}

TEST_F(ProviderRoutines, ProviderNeedsOneRecordWithTheCount) {
  Records records;
  Connection& open = Answering(records);
  const auto validate = [&] { static_cast<void>(ValidateProviderPIN(log(), "P1", false, open)); };
  ExpectRefused(validate, 20005, kProviderError);
  records = {Count(0), Count(0)};
  ExpectRefused(validate, 20005, kProviderError);
  records = {Count(1), Count(1)};
  ExpectRefused(validate, 20005, kProviderError);
  records = {Count(2), Count(2)};
  ExpectRefused(validate, 20005, kProviderError);
}

TEST_F(ProviderRoutines, ActiveProviderIsTrueWhenThatIsAskedFor) {
  AddProvider("'P1', 10, 'Y'");
  Connection& open = Watched();
  EXPECT_TRUE(ValidateProviderPIN(log(), "P1", true, open));
  EXPECT_EQ(Statements(), (Texts{ProviderCount("P1"), ProviderActive("P1")}));
  EXPECT_EQ(Trace(), (Texts{"information Begin: ValidateProviderPIN()",
                            "information Begin: ValidateProviderActiveStatus()",
                            "information End: ValidateProviderActiveStatus()",
                            "information End: ValidateProviderPIN()"}));
}

TEST_F(ProviderRoutines, InactiveProviderIsRefusedWhenThatIsAskedFor) {
  AddProvider("'P1', 10, 'N'");
  Connection& open = connection();
  ExpectRefused([&] { static_cast<void>(ValidateProviderPIN(log(), "P1", true, open)); }, 20083,
                kInactive);
  EXPECT_EQ(Trace(), (Texts{"information Begin: ValidateProviderPIN()",
                            "information Begin: ValidateProviderActiveStatus()",
                            "error Problem: In ValidateProviderActiveStatus() The provider enter "
                            "is currently inactivate in LOTRIX. Cannot proceed with the current "
                            "operation",
                            "error Problem: In ValidateProviderPIN() The provider enter is "
                            "currently inactivate in LOTRIX. Cannot proceed with the current "
                            "operation"}));
}

TEST_F(ProviderRoutines, InactiveProviderIsTrueWhenThatIsNotAskedFor) {
  AddProvider("'P1', 10, 'N'");
  Connection& open = Watched();
  EXPECT_TRUE(ValidateProviderPIN(log(), "P1", false, open));
  EXPECT_EQ(Statements(), Texts{ProviderCount("P1")});
}

TEST_F(ProviderRoutines, ProviderThatGoesBeforeItsStatusIsReadIsRefused) {
  Connection& open = connection();
  Watch(open, [](const std::string& text) -> std::optional<Records> {
    if (text == ProviderCount("P1")) return Records{Count(1)};
    return std::nullopt;
  });
  ExpectRefused([&] { static_cast<void>(ValidateProviderPIN(log(), "P1", true, open)); }, 20005,
                kProviderError);
  EXPECT_EQ(Trace(), (Texts{"information Begin: ValidateProviderPIN()",
                            "information Begin: ValidateProviderActiveStatus()",
                            "error Problem: In ValidateProviderActiveStatus() Error while "
                            "verifying provider PIN in LOTRIX",
                            "error Problem: In ValidateProviderPIN() Error while verifying "
                            "provider PIN in LOTRIX"}));
}

// --- ValidateProviderActiveStatus ------------------------------------------

TEST_F(ProviderRoutines, ActiveProviderPassesItsStatusCheck) {
  AddProvider("'P1', 10, 'Y'");
  Connection& open = Watched();
  EXPECT_NO_THROW(ValidateProviderActiveStatus(log(), "P1", open));
  EXPECT_EQ(Statements(), Texts{ProviderActive("P1")});
  EXPECT_EQ(Trace(), (Texts{"information Begin: ValidateProviderActiveStatus()",
                            "information End: ValidateProviderActiveStatus()"}));
}

TEST_F(ProviderRoutines, StatusCountsInUpperCase) {
  AddProvider("'P1', 10, 'y'");
  EXPECT_NO_THROW(ValidateProviderActiveStatus(log(), "P1", connection()));
}

TEST_F(ProviderRoutines, StatusOtherThanYIsInactive) {
  AddProvider("'PN', 10, 'N'");
  AddProvider("'PLOW', 10, 'n'");
  AddProvider("'PNULL', 10, NULL");
  AddProvider("'PEMPTY', 10, ''");
  AddProvider("'PYES', 10, 'YES'");
  AddProvider("'PLEAD', 10, ' Y'");
  for (const std::string pin : {"PN", "PLOW", "PNULL", "PEMPTY", "PYES", "PLEAD"}) {
    SCOPED_TRACE(pin);
    ExpectRefused([&] { ValidateProviderActiveStatus(log(), pin, connection()); }, 20083,
                  kInactive);
  }
}

TEST_F(ProviderRoutines, InactiveStatusIsLogged) {
  AddProvider("'P1', 10, NULL");
  Connection& open = connection();
  ExpectRefused([&] { ValidateProviderActiveStatus(log(), "P1", open); }, 20083, kInactive);
  EXPECT_EQ(Trace(), (Texts{"information Begin: ValidateProviderActiveStatus()",
                            "error Problem: In ValidateProviderActiveStatus() The provider enter "
                            "is currently inactivate in LOTRIX. Cannot proceed with the current "
                            "operation"}));
}

TEST_F(ProviderRoutines, StatusOfAnUnknownProviderIsRefused) {
  Connection& open = Watched();
  ExpectRefused([&] { ValidateProviderActiveStatus(log(), "P1", open); }, 20005, kProviderError);
  EXPECT_EQ(Statements(), Texts{ProviderActive("P1")});
}

TEST_F(ProviderRoutines, StatusOfTwoProvidersIsRefused) {
  AddProvider("'P1', 10, 'Y'");
  AddProvider("' P1 ', 29, 'Y'");
  ExpectRefused([&] { ValidateProviderActiveStatus(log(), "P1", connection()); }, 20005,
                kProviderError);
}

TEST_F(ProviderRoutines, StatusIsThatOfSectors10To29) {
  AddProvider("'P9', 9, 'Y'");
  AddProvider("'P10', 10, 'Y'");
  AddProvider("'P29', 29, 'Y'");
  AddProvider("'P30', 30, 'Y'");
  AddProvider("'P10', 30, 'N'");
  EXPECT_NO_THROW(ValidateProviderActiveStatus(log(), "P10", connection()));
  EXPECT_NO_THROW(ValidateProviderActiveStatus(log(), "P29", connection()));
  for (const std::string pin : {"P9", "P30"}) {
    SCOPED_TRACE(pin);
    ExpectRefused([&] { ValidateProviderActiveStatus(log(), pin, connection()); }, 20005,
                  kProviderError);
  }
}

TEST_F(ProviderRoutines, StatusPinIsUpperCasedAndNeitherTrimmedNorTested) {
  AddProvider("'É-1', 10, 'Y'");
  AddProvider("'LONGPIN1', 10, 'Y'");
  Connection& open = Watched();
  EXPECT_NO_THROW(ValidateProviderActiveStatus(log(), "é-1", open));
  EXPECT_NO_THROW(ValidateProviderActiveStatus(log(), "longpin1 ", open));
  ExpectRefused([&] { ValidateProviderActiveStatus(log(), " longpin1", open); }, 20005,
                kProviderError);
  ExpectRefused([&] { ValidateProviderActiveStatus(log(), "", open); }, 20005, kProviderError);
  EXPECT_EQ(Statements(), (Texts{ProviderActive("É-1"), ProviderActive("LONGPIN1 "),
                                 ProviderActive(" LONGPIN1"), ProviderActive("")}));
}

}  // namespace
}  // namespace lotrix::test

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "src/validation/validation.h"
#include "tests/support/extremes.h"
#include "tests/support/fixture.h"

namespace lotrix {
namespace {

using test::Coded;
using test::ExpectError;
using test::kMebibyte;
using test::Lines;
using test::Numbered;
using test::Refusal;

// --- ValidateVaccineLot ----------------------------------------------------

const char* const kLotError = "Error verifying lot number";

std::string LotCount(const std::string& vaccine, const std::string& lotWithoutDashes) {
  return "SELECT count(*) FROM stock WHERE ltrim(rtrim(vaccine)) = '" + vaccine +
         "' AND ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = '" + lotWithoutDashes + "'";
}

class VaccineLotRules : public test::DatabaseTest {
 protected:
  void SetUp() override {
    Watch(connection(), [this](const std::string&) { return answer_; });
  }

  void InsertStock(const std::string& vaccine, const std::string& lot) {
    Execute("INSERT INTO stock (pin, vaccine, lot) VALUES ('D1', '" + vaccine + "', '" + lot +
            "')");
  }
  void Answer(std::vector<Value> records) { answer_ = std::move(records); }

  void Check(const std::string& vaccine, const std::string& lot) {
    ValidateVaccineLot(log(), vaccine, lot, connection());
  }
  void ExpectPass(const std::string& vaccine, const std::string& lot,
                  const std::string& lotWithoutDashes) {
    SCOPED_TRACE(vaccine.substr(0, 80) + "/" + lot.substr(0, 80));
    Forget();
    EXPECT_NO_THROW(Check(vaccine, lot));
    EXPECT_EQ(Trace(), (Lines{"information Begin: ValidateVaccineLot()",
                              "information End: ValidateVaccineLot()"}));
    EXPECT_EQ(Statements(), (Lines{LotCount(vaccine, lotWithoutDashes)}));
  }
  void ExpectRefusal(const std::string& vaccine, const std::string& lot,
                     const std::string& lotWithoutDashes) {
    SCOPED_TRACE(vaccine.substr(0, 80) + "/" + lot.substr(0, 80));
    Forget();
    ExpectError(Refusal([&] { Check(vaccine, lot); }), Coded(20034), kLotError);
    EXPECT_EQ(Trace(),
              (Lines{"information Begin: ValidateVaccineLot()",
                     "error Problem: In ValidateVaccineLot() Error verifying lot number"}));
    EXPECT_EQ(Statements(), (Lines{LotCount(vaccine, lotWithoutDashes)}));
    EXPECT_EQ(connection().State(), ObjectState::kOpen);
  }
  // Where the text is the engine's own.
  void ExpectNumber(std::int32_t number, const std::function<void()>& call) {
    Forget();
    const Error error = Refusal(call);
    EXPECT_EQ(error.number(), number);
    EXPECT_EQ(error.source(), "LOTRIX DLL");
    EXPECT_NE(error.description(), "");
    EXPECT_EQ(Trace(), (Lines{"information Begin: ValidateVaccineLot()",
                              "error Problem: In ValidateVaccineLot() " + error.description()}));
  }

 private:
  void Forget() {
    ForgetTrace();
    static_cast<void>(Statements());
  }
  std::optional<std::vector<Value>> answer_;
};

TEST_F(VaccineLotRules, OneStockRowPasses) {
  InsertStock("HEPA", "AB123");
  InsertStock("HEPA", "AB124");
  ExpectPass("HEPA", "AB123", "AB123");
}

TEST_F(VaccineLotRules, TheQueryLetterForLetter) {
  InsertStock("HEPA", "AB123");
  Check("HEPA", "A-B-1-2-3-");
  EXPECT_EQ(Statements(),
            (Lines{"SELECT count(*) FROM stock WHERE ltrim(rtrim(vaccine)) = 'HEPA' AND "
                   "ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = 'AB123'"}));
}

TEST_F(VaccineLotRules, NoStockRowIsRefused) {
  ExpectRefusal("HEPA", "AB-123", "AB123");
  InsertStock("HEPB", "AB123");
  InsertStock("HEPA", "AB1234");
  InsertStock("HEPA", "AB12");
  ExpectRefusal("HEPA", "AB-123", "AB123");
}

TEST_F(VaccineLotRules, SeveralStockRowsPass) {
  for (const char* const lot : {"AB123", "AB-123", "AB123"}) InsertStock("HEPA", lot);
  ExpectPass("HEPA", "AB123", "AB123");
}

TEST_F(VaccineLotRules, DashesOfTheLotDoNotCount) {
  InsertStock("HEPA", "1234-5");
  for (const char* const lot : {"12-34-5", "12345", "1234-5", "-12345-", "--1--2345"}) {
    ExpectPass("HEPA", lot, "12345");
  }
}

TEST_F(VaccineLotRules, DashesOfTheStoredLotDoNotCount) {
  for (const char* const stored : {"12345", "1234-5", "-1-2-3-4-5-", "--12345"}) {
    SCOPED_TRACE(stored);
    Execute("DELETE FROM stock");
    InsertStock("HEPA", stored);
    ExpectPass("HEPA", "12-34-5", "12345");
  }
}

TEST_F(VaccineLotRules, ALotOfDashesIsAnEmptyOne) {
  ExpectRefusal("HEPA", "---", "");
  InsertStock("HEPA", "--");
  ExpectPass("HEPA", "---", "");
  ExpectPass("HEPA", "", "");
}

TEST_F(VaccineLotRules, OnlyTheDashOfAsciiIsRemoved) {
  for (const char* const lot : {"AB\u2013123", "AB\u2010123", "AB\u2212123", "AB_123", "AB 123"}) {
    InsertStock("HEPA", "AB123");
    ExpectRefusal("HEPA", lot, lot);
    InsertStock("HEPA", lot);
    ExpectPass("HEPA", lot, lot);
    Execute("DELETE FROM stock");
  }
}

TEST_F(VaccineLotRules, StoredTextsCountTrimmed) {
  InsertStock("  HEPA  ", "  AB-123  ");
  ExpectPass("HEPA", "AB123", "AB123");
  Execute("DELETE FROM stock");
  InsertStock("HEPA", "- AB123 -");
  ExpectPass("HEPA", "AB123", "AB123");
}

TEST_F(VaccineLotRules, ValuesAreSplicedAsGivenAndTrailingBlanksDoNotCount) {
  InsertStock("HEPA", "AB123");
  ExpectPass("HEPA ", "AB-123  ", "AB123  ");
  ExpectRefusal(" HEPA", "AB123", "AB123");
  ExpectRefusal("HEPA", " AB123", " AB123");
  ExpectRefusal("hepa", "AB123", "AB123");
  ExpectRefusal("HEPA", "ab123", "ab123");
}

TEST_F(VaccineLotRules, ADashOfTheVaccineCounts) {
  InsertStock("FLU-PF", "AB123");
  ExpectPass("FLU-PF", "AB123", "AB123");
  ExpectRefusal("FLUPF", "AB123", "AB123");
}

TEST_F(VaccineLotRules, ALotOrVaccineThatIsMissingInTheStockDoesNotCount) {
  Execute("INSERT INTO stock (vaccine, lot) VALUES ('HEPA', NULL), (NULL, 'AB123')");
  ExpectRefusal("HEPA", "AB123", "AB123");
  ExpectRefusal("HEPA", "", "");
  ExpectRefusal("", "AB123", "AB123");
}

TEST_F(VaccineLotRules, LettersBeyondAsciiAreComparedAsTheyStand) {
  InsertStock("GRIPPE ÉŸЯ", "ÑÜ-7");
  ExpectPass("GRIPPE ÉŸЯ", "ÑÜ7", "ÑÜ7");
  ExpectRefusal("GRIPPE éŸЯ", "ÑÜ7", "ÑÜ7");
}

TEST_F(VaccineLotRules, OnTheEnginesAnswer) {
  Answer({std::int64_t{1}});
  ExpectPass("HEPA", "AB123", "AB123");
  Answer({std::int64_t{2}});
  ExpectPass("HEPA", "AB123", "AB123");
  Answer({std::int64_t{2147483647}});
  ExpectPass("HEPA", "AB123", "AB123");
  Answer({std::int64_t{0}});
  ExpectRefusal("HEPA", "AB123", "AB123");
  Answer({std::int64_t{-1}});
  ExpectRefusal("HEPA", "AB123", "AB123");
}

TEST_F(VaccineLotRules, NoRecordIsRefusedSeveralAreNot) {
  Answer({});
  ExpectRefusal("HEPA", "AB123", "AB123");
  Answer({std::int64_t{1}, std::int64_t{0}});
  ExpectPass("HEPA", "AB123", "AB123");
  Answer({std::int64_t{0}, std::int64_t{1}});
  ExpectRefusal("HEPA", "AB123", "AB123");
}

TEST_F(VaccineLotRules, AnApostropheIsRefused) {
  InsertStock("HEPA", "AB123");
  for (const char* const vaccine : {"HEP'A", "HEPA'", "'", "HEPA''", "HEPA' OR '1'='1"}) {
    SCOPED_TRACE(vaccine);
    ExpectNumber(Numbered(EngineError::kStatementRefused), [&] { Check(vaccine, "AB123"); });
  }
  for (const char* const lot : {"AB'123", "AB123'", "'", "AB''123", "X' OR '1'='1", "X'-'"}) {
    SCOPED_TRACE(lot);
    ExpectNumber(Numbered(EngineError::kStatementRefused), [&] { Check("HEPA", lot); });
  }
}

TEST_F(VaccineLotRules, AZeroCharacterIsRefused) {
  InsertStock("HEPA", "AB123");
  ExpectNumber(Numbered(EngineError::kStatementRefused),
               [&] { Check(std::string("HEPA\0", 5), "AB123"); });
  ExpectNumber(Numbered(EngineError::kStatementRefused),
               [&] { Check("HEPA", std::string("AB123\0", 6)); });
  ExpectNumber(Numbered(EngineError::kStatementRefused),
               [&] { Check("HEPA", std::string("AB\0-123", 7)); });
}

TEST_F(VaccineLotRules, VeryLongTextsAreCompared) {
  const std::size_t length = database().LongestIndexedText() / 2;
  const std::string vaccine(length, 'V');
  std::string dashes;
  for (std::size_t count = 0; count < length; ++count) dashes += "-L";
  const std::string lot(length, 'L');
  ExpectRefusal(vaccine, dashes, lot);
  InsertStock(vaccine, dashes);
  ExpectPass(vaccine, lot, lot);
  ExpectPass(vaccine, dashes, lot);
}

TEST_F(VaccineLotRules, AnEngineErrorKeepsItsNumber) {
  Execute("DROP TABLE stock");
  ExpectNumber(Numbered(EngineError::kNoSuchTable), [&] { Check("HEPA", "AB123"); });
}

TEST_F(VaccineLotRules, AClosedConnectionIsAnErrorLikeAnyOther) {
  Connection& closed = connection();
  closed.Close();
  ExpectNumber(3704, [&] { ValidateVaccineLot(log(), "HEPA", "AB123", closed); });
}

TEST_F(VaccineLotRules, TheCallersValuesStay) {
  InsertStock("HEPA", "AB123");
  const std::string vaccine = "HEPA";
  const std::string lot = "A-B-123";
  Check(vaccine, lot);
  EXPECT_EQ(vaccine, "HEPA");
  EXPECT_EQ(lot, "A-B-123");
}

// --- ValidateProviderInventoryAdjustDates ----------------------------------

class AdjustDatesRules : public test::DatabaseTest {
 protected:
  void ExpectPass(const std::string& entry, const std::string& transaction) {
    SCOPED_TRACE(entry + "|" + transaction);
    ForgetTrace();
    EXPECT_NO_THROW(ValidateProviderInventoryAdjustDates(log(), entry, transaction));
    EXPECT_EQ(Trace(), (Lines{"information Begin: ValidateProviderInventoryAdjustDates()",
                              "information End: ValidateProviderInventoryAdjustDates()"}));
  }
  void ExpectRefusal(const std::string& entry, const std::string& transaction,
                     const std::string& message) {
    SCOPED_TRACE(entry.substr(0, 80) + "|" + transaction.substr(0, 80));
    ForgetTrace();
    ExpectError(Refusal([&] { ValidateProviderInventoryAdjustDates(log(), entry, transaction); }),
                Coded(20074), message);
    EXPECT_EQ(Trace(),
              (Lines{"information Begin: ValidateProviderInventoryAdjustDates()",
                     "error Problem: In ValidateProviderInventoryAdjustDates() " + message}));
  }
  void ExpectNoEntryDate(const std::string& entry, const std::string& transaction = "1/5/2004") {
    ExpectRefusal(entry, transaction, "Entry date for the adjustment is not a valid date");
  }
  void ExpectNoTransactionDate(const std::string& transaction) {
    ExpectRefusal("1/5/2004", transaction,
                  "Transaction date for the adjustment is not a valid date");
  }
};

const char* const kDates[] = {
    "1/5/2004",     "01/05/2004",      "1-5-04",           "2004-1-5",          "2004/01/05",
    " 1 / 5 / 04 ", "January 5, 2004", "jan 5 2004",       "5 Jan 2004",        "5-Jan-2004",
    "2004 Jan 5",   "JAN 5, 2004",     "1/5/2004 10:30",   "1/5/2004 10:30 PM", "1/5/2004 10 pm",
    "2/29/2004",    "2/29/2000",       "1/1/100",          "12/31/9999",        "1/1/29",
    "1/1/30",       "1/5/2004 0:00",   "1/5/2004 23:59:59"};

const char* const kNoDates[] = {"",
                                "   ",
                                "soon",
                                "13/45/2001",
                                "13/5/2001",
                                "2/30/2001",
                                "2/29/2003",
                                "2/29/1900",
                                "4/31/2004",
                                "0/5/2004",
                                "1/0/2004",
                                "1/5/10000",
                                "1/5",
                                "1/2004",
                                "Jan 2004",
                                "January 5",
                                "38000",
                                "10:30",
                                "12:00:00 AM",
                                "Monday",
                                "5th Jan 2004",
                                "1.5.2004",
                                "1/5/2004 25:00",
                                "1/5/2004 13 PM",
                                "1/5/2004 10:60",
                                "1/5/2004'",
                                "1/5/2004}",
                                "{1/5/2004}",
                                "1/5/2004x",
                                "ｊan 5 2004",
                                "１/5/2004"};

TEST_F(AdjustDatesRules, ValidDatesPass) {
  for (const char* const date : kDates) {
    ExpectPass(date, "1/5/2004");
    ExpectPass("1/5/2004", date);
  }
}

TEST_F(AdjustDatesRules, AnEntryDateThatIsNoneIsRefused) {
  for (const char* const date : kNoDates) ExpectNoEntryDate(date);
}

TEST_F(AdjustDatesRules, ATransactionDateThatIsNoneIsRefused) {
  for (const char* const date : kNoDates) ExpectNoTransactionDate(date);
}

TEST_F(AdjustDatesRules, TheEntryDateIsLookedAtFirst) {
  for (const char* const date : kNoDates) ExpectNoEntryDate("13/45/2001", date);
}

TEST_F(AdjustDatesRules, TheDatesAreComparedNeitherWithEachOtherNorWithToday) {
  ExpectPass("1/5/2004", "1/6/2004");
  ExpectPass("1/6/2004", "1/5/2004");
  ExpectPass("11/21/2026", "11/22/2026");
  ExpectPass("12/31/9999", "1/1/100");
  ExpectPass("1/1/100", "12/31/9999");
}

TEST_F(AdjustDatesRules, ADateIsReadUpToItsZeroCharacter) {
  using std::string_literals::operator""s;
  ExpectPass("1/5/2004\0x"s, "1/6/2004\0'"s);
  ExpectNoEntryDate("\0001/5/2004"s);
  ExpectNoTransactionDate("soon\0001/5/2004"s);
}

TEST_F(AdjustDatesRules, AVeryLongTextIsNoDate) {
  ExpectNoEntryDate(std::string(kMebibyte, '1'));
  ExpectNoTransactionDate(std::string(kMebibyte, 'J'));
}

// --- ValidateVaccAdminSector -----------------------------------------------

class AdminSectorRules : public test::DatabaseTest {
 protected:
  void ExpectRefusal(const std::string& sector) {
    SCOPED_TRACE(sector.substr(0, 80));
    ForgetTrace();
    ExpectError(Refusal([&] { ValidateVaccAdminSector(log(), sector); }), Coded(20085),
                "The given sector is not a valid doses administered sector");
    EXPECT_EQ(Trace(), (Lines{"information Begin: ValidateVaccAdminSector()",
                              "error Problem: In ValidateVaccAdminSector() The given sector is "
                              "not a valid doses administered sector"}));
  }
};

TEST_F(AdminSectorRules, OneAndTwoPass) {
  for (const char* const sector : {"1", "2"}) {
    SCOPED_TRACE(sector);
    ForgetTrace();
    EXPECT_NO_THROW(ValidateVaccAdminSector(log(), sector));
    EXPECT_EQ(Trace(), (Lines{"information Begin: ValidateVaccAdminSector()",
                              "information End: ValidateVaccAdminSector()"}));
  }
}

TEST_F(AdminSectorRules, EveryOtherTextIsRefused) {
  for (const char* const sector :
       {"",    " ",   "0",  "3",  "10", "12",  "21",  "01",  "02", " 1", "1 ",
        " 2 ", "1.0", "+1", "-1", "1'", "&H1", "one", "\t1", "１", "²",  "1 OR 1=1"}) {
    ExpectRefusal(sector);
  }
}

TEST_F(AdminSectorRules, AZeroCharacterIsACharacterToo) {
  ExpectRefusal(std::string("1\0", 2));
  ExpectRefusal(std::string("\0", 1));
  ExpectRefusal(std::string("\0002", 2));
}

TEST_F(AdminSectorRules, AVeryLongTextIsRefused) { ExpectRefusal(std::string(kMebibyte, '1')); }

}  // namespace
}  // namespace lotrix

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <functional>
#include <initializer_list>
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
using test::kLargest;
using test::kSmallest;
using test::Lines;
using test::Numbered;
using test::Refusal;
using test::Row;

class InventoryRules : public test::DatabaseTest {
 protected:
  void SetUp() override {
    Watch(connection(), [this](const std::string&) { return answer_; });
  }

  // From now on the engine answers every query with these records.
  void Answer(std::vector<Value> records) { answer_ = std::move(records); }
  void Answer(std::initializer_list<std::int64_t> counts) {
    answer_ = std::vector<Value>(counts.begin(), counts.end());
  }

  // Lines and statements since the last look, both of them.
  void Forget() {
    ForgetTrace();
    static_cast<void>(Statements());
  }

  void ExpectPassedLines(const std::string& routine) {
    EXPECT_EQ(Trace(), (Lines{"information Begin: " + routine + "()",
                              "information End: " + routine + "()"}));
  }
  void ExpectRefusal(const std::string& routine, const std::function<void()>& call,
                     std::int32_t code, const std::string& message) {
    Forget();
    ExpectError(Refusal(call), Coded(code), message);
    EXPECT_EQ(Trace(), (Lines{"information Begin: " + routine + "()",
                              "error Problem: In " + routine + "() " + message}));
    EXPECT_EQ(connection().State(), ObjectState::kOpen);
  }
  // Where the text is the engine's or the run time's own.
  void ExpectNumber(const std::string& routine, const std::function<void()>& call,
                    std::int32_t number) {
    Forget();
    const Error error = Refusal(call);
    EXPECT_EQ(error.number(), number);
    EXPECT_EQ(error.source(), "LOTRIX DLL");
    EXPECT_NE(error.description(), "");
    EXPECT_EQ(Trace(), (Lines{"information Begin: " + routine + "()",
                              "error Problem: In " + routine + "() " + error.description()}));
  }
  // The count is read as a 32-bit number, which holds no Null.
  void ExpectCountConversion(const std::string& routine, const std::function<void()>& call) {
    Answer({2147483648});
    ExpectNumber(routine, call, 6);
    Answer(std::vector<Value>{Null{}});
    ExpectNumber(routine, call, 94);
  }

 private:
  std::optional<std::vector<Value>> answer_;
};

// --- ValidateActionCode ----------------------------------------------------

class ActionCodeRules : public InventoryRules {
 protected:
  void InsertAction(const std::string& status) {
    Execute("INSERT INTO actref (status, action) VALUES ('" + status + "', 3)");
  }
  void Check(const std::string& type = "Spoiled") { ValidateActionCode(log(), type, connection()); }
  void ExpectPass(const std::string& type = "Spoiled") {
    SCOPED_TRACE(type);
    Forget();
    EXPECT_NO_THROW(Check(type));
    ExpectPassedLines("ValidateActionCode");
    ExpectQuery(type);
  }
  void ExpectActionRefusal(std::int32_t code, const std::string& message,
                           const std::string& type = "Spoiled") {
    SCOPED_TRACE(type);
    ExpectRefusal(
        "ValidateActionCode", [&] { Check(type); }, code, message);
    ExpectQuery(type);
  }

 private:
  void ExpectQuery(const std::string& type) {
    EXPECT_EQ(Statements(),
              (Lines{"SELECT count(*) FROM actref WHERE ltrim(rtrim(status)) = '" + type + "' "}));
  }
};

const char* const kActionError = "Error verifying adjustment type";
const char* const kActionTwice = "Duplicate adjustment type found";

TEST_F(ActionCodeRules, OneRowPasses) {
  InsertAction("Spoiled");
  InsertAction("Expired");
  ExpectPass();
}

TEST_F(ActionCodeRules, NoRowIsRefused) {
  InsertAction("Expired");
  ExpectActionRefusal(20036, kActionError);
}

TEST_F(ActionCodeRules, TwoRowsAreRefused) {
  InsertAction("Spoiled");
  InsertAction(" Spoiled ");
  ExpectActionRefusal(20037, kActionTwice);
  InsertAction("Spoiled");
  ExpectActionRefusal(20037, kActionTwice);
}

TEST_F(ActionCodeRules, OnTheEnginesAnswer) {
  Answer({1});
  ExpectPass();
  Answer({0});
  ExpectActionRefusal(20036, kActionError);
  Answer({-1});
  ExpectActionRefusal(20036, kActionError);
  Answer({2});
  ExpectActionRefusal(20037, kActionTwice);
  Answer({2147483647});
  ExpectActionRefusal(20037, kActionTwice);
}

TEST_F(ActionCodeRules, NoRecordIsRefusedSeveralAreNot) {
  Answer(std::vector<Value>{});
  ExpectActionRefusal(20036, kActionError);
  Answer({1, 5});
  ExpectPass();
  Answer({2, 1});
  ExpectActionRefusal(20037, kActionTwice);
}

TEST_F(ActionCodeRules, StoredTextsCountTrimmedCaseAndLeadingBlanksOfTheValueCount) {
  InsertAction("  Spoiled ");
  ExpectPass("Spoiled");
  ExpectPass("Spoiled  ");
  ExpectActionRefusal(20036, kActionError, " Spoiled");
  ExpectActionRefusal(20036, kActionError, "SPOILED");
  ExpectActionRefusal(20036, kActionError, "");
}

TEST_F(ActionCodeRules, AnApostropheIsRefused) {
  InsertAction("Spoiled");
  ExpectNumber(
      "ValidateActionCode", [&] { Check("x' OR 'a'='a"); },
      Numbered(EngineError::kStatementRefused));
}

TEST_F(ActionCodeRules, TheCountIsA32BitNumberAndNotNull) {
  ExpectCountConversion("ValidateActionCode", [&] { Check(); });
}

// --- ValidateDuplicateProviderInventoryAdjustment --------------------------

struct Adjustment {
  std::string date = "11/20/2026";
  std::int32_t action = 3;
  std::string source = "S1";
  std::string pin = "P1";
  std::string vaccine = "MMR";
  std::string lot = "AB-12";
};

class AdjustmentRules : public InventoryRules {
 protected:
  void InsertAdjustment(const std::string& action = "3", const std::string& source = "S1",
                        const std::string& pin = "P1", const std::string& vaccine = "MMR",
                        const std::string& lot = "AB12", const std::string& date = "2026-11-20") {
    Execute("INSERT INTO distrib (action, frompin, pin, vaccine, lot, dateout) VALUES (" + action +
            ", '" + source + "', '" + pin + "', '" + vaccine + "', '" + lot + "', '" + date + "')");
  }
  bool IsDuplicate(const Adjustment& key = {}) {
    return ValidateDuplicateProviderInventoryAdjustment(
        log(), key.date, key.action, key.source, key.pin, key.vaccine, key.lot, connection());
  }
  void ExpectAdjustmentRefusal(std::int32_t code, const std::string& message);
};

const char* const kAdjustmentQuery =
    "SELECT count(*) FROM distrib WHERE action = 3 AND ltrim(rtrim(pin)) = 'P1' AND "
    "ltrim(rtrim(vaccine)) = 'MMR' AND ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = 'AB12' "
    "AND dateout = {11/20/2026} AND ltrim(rtrim(frompin)) = 'S1'";
const char* const kAdjustmentError = "Error while looking for duplicate adjustment records";
const char* const kAdjustmentTwice = "More than one record for the same adjustment was found";

void AdjustmentRules::ExpectAdjustmentRefusal(std::int32_t code, const std::string& message) {
  ExpectRefusal(
      "ValidateDuplicateProviderInventoryAdjustment", [&] { IsDuplicate(); }, code, message);
  EXPECT_EQ(Statements(), (Lines{kAdjustmentQuery}));
}

TEST_F(AdjustmentRules, OneRowIsADuplicate) {
  InsertAdjustment();
  Forget();
  EXPECT_TRUE(IsDuplicate());
  ExpectPassedLines("ValidateDuplicateProviderInventoryAdjustment");
  EXPECT_EQ(Statements(), (Lines{kAdjustmentQuery}));
}

TEST_F(AdjustmentRules, NoRowIsNoDuplicate) {
  Forget();
  EXPECT_FALSE(IsDuplicate());
  ExpectPassedLines("ValidateDuplicateProviderInventoryAdjustment");
  EXPECT_EQ(Statements(), (Lines{kAdjustmentQuery}));
}

TEST_F(AdjustmentRules, TwoRowsAreRefused) {
  InsertAdjustment();
  InsertAdjustment();
  ExpectAdjustmentRefusal(20038, kAdjustmentTwice);
  EXPECT_EQ(Query("SELECT count(*) FROM distrib"), (std::vector<Row>{{"2"}}));
}

TEST_F(AdjustmentRules, OnTheEnginesAnswer) {
  Answer({0});
  EXPECT_FALSE(IsDuplicate());
  Answer({1});
  EXPECT_TRUE(IsDuplicate());
  Answer({2});
  ExpectAdjustmentRefusal(20038, kAdjustmentTwice);
  Answer({2147483647});
  ExpectAdjustmentRefusal(20038, kAdjustmentTwice);
  Answer({-1});
  ExpectAdjustmentRefusal(20039, kAdjustmentError);
}

TEST_F(AdjustmentRules, NoRecordIsRefusedSeveralAreNot) {
  Answer(std::vector<Value>{});
  ExpectAdjustmentRefusal(20039, kAdjustmentError);
  Answer({1, 2});
  EXPECT_TRUE(IsDuplicate());
  Answer({0, 2});
  EXPECT_FALSE(IsDuplicate());
}

TEST_F(AdjustmentRules, LotsCountWithoutTheirDashes) {
  InsertAdjustment("3", "S1", "P1", "MMR", " -AB-12 ");
  EXPECT_TRUE(IsDuplicate({.lot = "AB12"}));
  EXPECT_TRUE(IsDuplicate({.lot = "AB-12"}));
  EXPECT_TRUE(IsDuplicate({.lot = "--A-B-1-2--"}));
  EXPECT_FALSE(IsDuplicate({.lot = "AB_12"}));
}

TEST_F(AdjustmentRules, EveryPartOfTheKeyCounts) {
  InsertAdjustment("4");
  InsertAdjustment("NULL");
  InsertAdjustment("3", "S2");
  InsertAdjustment("3", "S1", "P2");
  InsertAdjustment("3", "S1", "P1", "DTP");
  InsertAdjustment("3", "S1", "P1", "MMR", "AB13");
  InsertAdjustment("3", "S1", "P1", "MMR", "AB12", "2026-11-19");
  EXPECT_FALSE(IsDuplicate());
}

TEST_F(AdjustmentRules, StoredTextsCountTrimmed) {
  InsertAdjustment("3", " S1 ", " P1 ", " MMR ", " AB12 ");
  EXPECT_TRUE(IsDuplicate());
}

TEST_F(AdjustmentRules, CaseAndLeadingBlanksOfTheValuesCountTrailingOnesDoNot) {
  InsertAdjustment();
  EXPECT_FALSE(IsDuplicate({.source = "s1"}));
  EXPECT_FALSE(IsDuplicate({.vaccine = "mmr"}));
  EXPECT_FALSE(IsDuplicate({.lot = "ab12"}));
  EXPECT_FALSE(IsDuplicate({.source = " S1"}));
  EXPECT_FALSE(IsDuplicate({.pin = " P1"}));
  EXPECT_TRUE(IsDuplicate({.source = "S1 ", .pin = "P1 ", .vaccine = "MMR ", .lot = "AB12 "}));
}

TEST_F(AdjustmentRules, ValuesAreSplicedAsGiven) {
  Forget();
  EXPECT_FALSE(IsDuplicate({.date = "Nov 20, 2026",
                            .action = -12,
                            .source = " S1 ",
                            .pin = " P1 ",
                            .vaccine = " M-R ",
                            .lot = " A-B "}));
  EXPECT_EQ(
      Statements(),
      (Lines{"SELECT count(*) FROM distrib WHERE action = -12 AND ltrim(rtrim(pin)) = ' P1 ' AND "
             "ltrim(rtrim(vaccine)) = ' M-R ' AND "
             "ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = ' AB ' AND dateout = {Nov 20, "
             "2026} AND ltrim(rtrim(frompin)) = ' S1 '"}));
}

TEST_F(AdjustmentRules, AValueThatWouldLeaveItsPlaceIsRefused) {
  for (const Adjustment& key :
       {Adjustment{.date = "11/20/2026}"}, Adjustment{.source = "S'1"}, Adjustment{.pin = "P'1"},
        Adjustment{.vaccine = "M'R"}, Adjustment{.lot = "A'1"},
        Adjustment{.date = "soon", .source = "S'1"}}) {
    ExpectNumber(
        "ValidateDuplicateProviderInventoryAdjustment", [&] { IsDuplicate(key); },
        Numbered(EngineError::kStatementRefused));
  }
}

TEST_F(AdjustmentRules, ADateThatIsNoneCannotBeConverted) {
  for (const char* const date : {"soon", "13/45/2026", "1'1/2026"}) {
    ExpectNumber(
        "ValidateDuplicateProviderInventoryAdjustment", [&] { IsDuplicate({.date = date}); },
        Numbered(EngineError::kValueCannotBeConverted));
  }
}

TEST_F(AdjustmentRules, TheCountIsA32BitNumberAndNotNull) {
  ExpectCountConversion("ValidateDuplicateProviderInventoryAdjustment", [&] { IsDuplicate(); });
}

// --- ValidateSector --------------------------------------------------------

class SectorRules : public InventoryRules {
 protected:
  void InsertSector(const std::string& sector) {
    Execute("INSERT INTO sectoref (sector) VALUES (" + sector + ")");
  }
  bool IsSector(std::int32_t sector = 12) { return ValidateSector(log(), sector, connection()); }
  void ExpectSectorRefusal(const std::string& message) {
    ExpectRefusal(
        "ValidateSector", [&] { IsSector(); }, 20031, message);
    EXPECT_EQ(Statements(), (Lines{"SELECT count(*) FROM sectoref WHERE sector = 12 AND sector "
                                   "BETWEEN 10 AND 29"}));
  }
};

const char* const kSectorError = "Error while verifying sector";
const char* const kSectorTwice = "A NULL sector is entered";

TEST_F(SectorRules, OneRowIsASector) {
  InsertSector("12");
  InsertSector("13");
  Forget();
  EXPECT_TRUE(IsSector());
  ExpectPassedLines("ValidateSector");
  EXPECT_EQ(Statements(), (Lines{"SELECT count(*) FROM sectoref WHERE sector = 12 AND sector "
                                 "BETWEEN 10 AND 29"}));
}

TEST_F(SectorRules, NoRowIsNone) {
  InsertSector("13");
  Forget();
  EXPECT_FALSE(IsSector());
  ExpectPassedLines("ValidateSector");
  EXPECT_EQ(Statements(), (Lines{"SELECT count(*) FROM sectoref WHERE sector = 12 AND sector "
                                 "BETWEEN 10 AND 29"}));
}

TEST_F(SectorRules, TwoRowsAreRefusedAsANullSector) {
  InsertSector("12");
  InsertSector("12");
  ExpectSectorRefusal(kSectorTwice);
  EXPECT_EQ(Query("SELECT count(*) FROM sectoref"), (std::vector<Row>{{"2"}}));
}

TEST_F(SectorRules, OnlyTenToTwentyNinePass) {
  for (const char* const sector : {"9", "10", "29", "30", "31", "-12", "0"}) InsertSector(sector);
  EXPECT_TRUE(IsSector(10));
  EXPECT_TRUE(IsSector(29));
  for (const std::int32_t sector : {9, 30, 31, -12, 0}) {
    SCOPED_TRACE(sector);
    EXPECT_FALSE(IsSector(sector));
  }
}

TEST_F(SectorRules, TwoRowsOutsideTheRangeAreNoSectorEither) {
  InsertSector("30");
  InsertSector("30");
  EXPECT_FALSE(IsSector(30));
}

TEST_F(SectorRules, ARowWithoutASectorDoesNotCount) {
  InsertSector("NULL");
  EXPECT_FALSE(IsSector(12));
  EXPECT_FALSE(IsSector(0));
}

TEST_F(SectorRules, TheNumberIsSplicedInDecimal) {
  Forget();
  EXPECT_FALSE(IsSector(kSmallest));
  EXPECT_FALSE(IsSector(kLargest));
  EXPECT_EQ(Statements(), (Lines{"SELECT count(*) FROM sectoref WHERE sector = -2147483648 AND "
                                 "sector BETWEEN 10 AND 29",
                                 "SELECT count(*) FROM sectoref WHERE sector = 2147483647 AND "
                                 "sector BETWEEN 10 AND 29"}));
}

TEST_F(SectorRules, OnTheEnginesAnswer) {
  Answer({0});
  EXPECT_FALSE(IsSector());
  Answer({1});
  EXPECT_TRUE(IsSector());
  Answer({2});
  ExpectSectorRefusal(kSectorTwice);
  Answer({2147483647});
  ExpectSectorRefusal(kSectorTwice);
  Answer({-1});
  ExpectSectorRefusal(kSectorError);
}

TEST_F(SectorRules, NeedsExactlyOneRecord) {
  Answer(std::vector<Value>{});
  ExpectSectorRefusal(kSectorError);
  Answer({1, 1});
  ExpectSectorRefusal(kSectorError);
  Answer({2, 2});
  ExpectSectorRefusal(kSectorError);
}

TEST_F(SectorRules, TheCountIsA32BitNumberAndNotNull) {
  ExpectCountConversion("ValidateSector", [&] { IsSector(); });
}

TEST_F(SectorRules, AnEngineErrorKeepsItsNumber) {
  Execute("DROP TABLE sectoref");
  ExpectNumber(
      "ValidateSector", [&] { IsSector(); }, Numbered(EngineError::kNoSuchTable));
}

TEST_F(SectorRules, AClosedConnectionIsAnErrorLikeAnyOther) {
  Connection& closed = connection();
  closed.Close();
  ExpectNumber(
      "ValidateSector", [&] { static_cast<void>(ValidateSector(log(), 12, closed)); }, 3704);
}

// --- ValidateDuplicateDosesAdmin -------------------------------------------

struct Report {
  std::string pin = "P1";
  std::string vaccine = "MMR";
  std::string dose = "2";
  std::string sector = "12";
  std::string date = "11/20/2026";
};

const char* const kReportQuery =
    "SELECT count(*) FROM DosesAdm WHERE ltrim(rtrim(pin)) = 'P1' AND ltrim(rtrim(vaccine))='MMR' "
    "AND dose = 2 AND sector = 12 AND adate ={11/20/2026} ";

class DosesAdminRules : public InventoryRules {
 protected:
  void InsertReport(const std::string& pin = "P1", const std::string& vaccine = "MMR",
                    const std::string& dose = "2", const std::string& sector = "12",
                    const std::string& date = "2026-11-20") {
    Execute("INSERT INTO dosesadm (pin, vaccine, dose, sector, adate) VALUES ('" + pin + "', '" +
            vaccine + "', " + dose + ", " + sector + ", '" + date + "')");
  }
  bool IsDuplicate(const Report& report = {}) {
    return ValidateDuplicateDosesAdmin(log(), report.pin, report.vaccine, report.dose,
                                       report.sector, report.date, connection());
  }
  void ExpectReportRefusal() {
    ExpectRefusal(
        "ValidateDuplicateDosesAdmin", [&] { IsDuplicate(); }, 20032,
        "Error while verifying duplicate doses admin");
    EXPECT_EQ(Statements(), (Lines{kReportQuery}));
  }
};

TEST_F(DosesAdminRules, OneRowIsADuplicate) {
  InsertReport();
  Forget();
  EXPECT_TRUE(IsDuplicate());
  ExpectPassedLines("ValidateDuplicateDosesAdmin");
  EXPECT_EQ(Statements(), (Lines{kReportQuery}));
}

TEST_F(DosesAdminRules, NoRowIsNoDuplicate) {
  Forget();
  EXPECT_FALSE(IsDuplicate());
  ExpectPassedLines("ValidateDuplicateDosesAdmin");
  EXPECT_EQ(Statements(), (Lines{kReportQuery}));
}

TEST_F(DosesAdminRules, TwoRowsAreRefused) {
  InsertReport();
  InsertReport();
  ExpectReportRefusal();
  EXPECT_EQ(Query("SELECT count(*) FROM dosesadm"), (std::vector<Row>{{"2"}}));
}

TEST_F(DosesAdminRules, OnTheEnginesAnswer) {
  Answer({0});
  EXPECT_FALSE(IsDuplicate());
  Answer({1});
  EXPECT_TRUE(IsDuplicate());
  for (const std::int64_t count : {2, 3, 2147483647, -1}) {
    SCOPED_TRACE(count);
    Answer({count});
    ExpectReportRefusal();
  }
}

TEST_F(DosesAdminRules, NoRecordIsRefusedSeveralAreNot) {
  Answer(std::vector<Value>{});
  ExpectReportRefusal();
  Answer({1, 2});
  EXPECT_TRUE(IsDuplicate());
  Answer({0, 2});
  EXPECT_FALSE(IsDuplicate());
}

TEST_F(DosesAdminRules, EveryPartOfTheKeyCounts) {
  InsertReport("P2");
  InsertReport("P1", "DTP");
  InsertReport("P1", "MMR", "3");
  InsertReport("P1", "MMR", "NULL");
  InsertReport("P1", "MMR", "2", "13");
  InsertReport("P1", "MMR", "2", "12", "2026-11-19");
  EXPECT_FALSE(IsDuplicate());
}

TEST_F(DosesAdminRules, StoredTextsCountTrimmed) {
  InsertReport("  P1 ", " MMR  ");
  EXPECT_TRUE(IsDuplicate());
}

TEST_F(DosesAdminRules, CaseAndLeadingBlanksOfTheValuesCountTrailingOnesDoNot) {
  InsertReport();
  EXPECT_FALSE(IsDuplicate({.pin = "p1"}));
  EXPECT_FALSE(IsDuplicate({.vaccine = "mmr"}));
  EXPECT_FALSE(IsDuplicate({.pin = " P1"}));
  EXPECT_TRUE(IsDuplicate({.pin = "P1 ", .vaccine = "MMR "}));
}

TEST_F(DosesAdminRules, NumbersAreSplicedAsGiven) {
  InsertReport();
  Forget();
  EXPECT_TRUE(IsDuplicate({.dose = " 2.0 ", .sector = "1.2e1"}));
  EXPECT_EQ(Statements(), (Lines{"SELECT count(*) FROM DosesAdm WHERE ltrim(rtrim(pin)) = 'P1' AND "
                                 "ltrim(rtrim(vaccine))='MMR' AND dose =  2.0  AND sector = 1.2e1 "
                                 "AND adate ={11/20/2026} "}));
}

TEST_F(DosesAdminRules, AValueThatWouldLeaveItsPlaceIsRefused) {
  InsertReport();
  for (const Report& report :
       {Report{.pin = "P'1"}, Report{.vaccine = "M'R"}, Report{.dose = "2 OR 1=1"},
        Report{.dose = ""}, Report{.dose = "two"}, Report{.dose = "&H2"}, Report{.dose = "(2)"},
        Report{.sector = "12 --"}, Report{.sector = ""}, Report{.sector = "sector"},
        Report{.date = "11/20/2026}"}, Report{.sector = "x", .date = "soon"}}) {
    SCOPED_TRACE(report.pin + "/" + report.vaccine + "/" + report.dose + "/" + report.sector + "/" +
                 report.date);
    ExpectNumber(
        "ValidateDuplicateDosesAdmin", [&] { IsDuplicate(report); },
        Numbered(EngineError::kStatementRefused));
  }
}

TEST_F(DosesAdminRules, ADateThatIsNoneCannotBeConverted) {
  for (const char* const date : {"soon", "13/45/2026", "1'1/2026"}) {
    ExpectNumber(
        "ValidateDuplicateDosesAdmin", [&] { IsDuplicate({.date = date}); },
        Numbered(EngineError::kValueCannotBeConverted));
  }
}

TEST_F(DosesAdminRules, TheCountIsA32BitNumberAndNotNull) {
  ExpectCountConversion("ValidateDuplicateDosesAdmin", [&] { IsDuplicate(); });
}

// --- ValidateTotalDoses ----------------------------------------------------

class TotalDosesRules : public InventoryRules {
 protected:
  using Groups = std::array<std::int32_t, 13>;

  void ExpectSum(const Groups& groups, std::int32_t total) {
    Forget();
    EXPECT_NO_THROW(ValidateTotalDoses(log(), groups, total));
    ExpectPassedLines("ValidateTotalDoses");
    EXPECT_EQ(Statements(), Lines{});
  }
  void ExpectMismatch(const Groups& groups, std::int32_t total) {
    ExpectRefusal(
        "ValidateTotalDoses", [&] { ValidateTotalDoses(log(), groups, total); }, 20029,
        "The sum of the distribution does not match the Total");
    EXPECT_EQ(Statements(), Lines{});
  }
  void ExpectOverflow(const Groups& groups, std::int32_t total) {
    ExpectNumber(
        "ValidateTotalDoses", [&] { ValidateTotalDoses(log(), groups, total); }, 6);
  }
};

TEST_F(TotalDosesRules, ThirteenZerosAreZero) { ExpectSum({}, 0); }

TEST_F(TotalDosesRules, AllThirteenCountsAreAdded) {
  ExpectSum({1, 2, 4, 8, 16, 32, 64, 128, 256, 512, 1024, 2048, 4096}, 8191);
  for (std::size_t group = 0; group < 13; ++group) {
    SCOPED_TRACE(group);
    Groups groups{};
    groups.at(group) = 7;
    ExpectSum(groups, 7);
    ExpectMismatch(groups, 0);
  }
}

TEST_F(TotalDosesRules, AnotherTotalIsRefused) {
  ExpectMismatch({1, 1}, 3);
  ExpectMismatch({1, 1}, 1);
  ExpectMismatch({}, 1);
  ExpectMismatch({}, -1);
  ExpectMismatch({1, 2, 4, 8, 16, 32, 64, 128, 256, 512, 1024, 2048, 4096}, 8190);
}

TEST_F(TotalDosesRules, NegativeCountsAreAddedToo) {
  ExpectSum({5, -2, -4}, -1);
  ExpectSum({kLargest, kSmallest}, -1);
}

TEST_F(TotalDosesRules, TheWholeRangeIsUsed) {
  ExpectSum({kLargest}, kLargest);
  ExpectSum({kLargest - 1, 1}, kLargest);
  ExpectSum({kSmallest}, kSmallest);
  ExpectSum({kSmallest + 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, -1}, kSmallest);
}

TEST_F(TotalDosesRules, AnOverflowAtAnyAdditionIsOne) {
  ExpectOverflow({kLargest, 1}, 0);
  ExpectOverflow({kLargest, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, kSmallest);
  ExpectOverflow({kSmallest, -1}, 0);
  // Though the sum of all would fit.
  ExpectOverflow({kLargest, 1, -1}, kLargest);
  ExpectOverflow({-1, kSmallest, 1}, kSmallest);
}

TEST_F(TotalDosesRules, TheOrderOfTheCountsDecides) {
  ExpectSum({kLargest, -1, 1}, kLargest);
  ExpectSum({kSmallest, 1, -1}, kSmallest);
}

// --- ValidateProvideraVaricellaEligibility ---------------------------------

class VaricellaRules : public InventoryRules {
 protected:
  // `codes` with its apostrophes, or NULL.
  void InsertProvider(const std::string& pin, const std::string& codes) {
    Execute("INSERT INTO provider (pin, codes) VALUES ('" + pin + "', " + codes + ")");
  }
  bool IsEligible(const std::string& pin) {
    return ValidateProvideraVaricellaEligibility(log(), pin, connection());
  }
  static Lines QueryFor(const std::string& pin) {
    return {"SELECT count(*) FROM provider WHERE ltrim(rtrim(pin)) = '" + pin +
            "' and trim(codes)='V'"};
  }
  void ExpectAnswer(const std::string& pin, bool eligible) {
    SCOPED_TRACE(pin);
    ForgetTrace();
    EXPECT_EQ(IsEligible(pin), eligible);
    ExpectPassedLines("ValidateProvideraVaricellaEligibility");
  }
  void ExpectVaricellaRefusal(std::int32_t code, const std::string& message,
                              const std::string& pin = "P1") {
    SCOPED_TRACE(pin);
    ExpectRefusal(
        "ValidateProvideraVaricellaEligibility", [&] { IsEligible(pin); }, code, message);
  }
};

const char* const kPinTooLong =
    "The number of characters in the pin entered exceeds the maximum allowed";
const char* const kPinNotAlphanumeric =
    "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed.";
const char* const kPinError = "Error while verifying provider PIN in LOTRIX";
const char* const kPinTwice = "Provider PIN entered has a duplicate";

TEST_F(VaricellaRules, AProviderWithTheCodeIsEligible) {
  InsertProvider("P1", "'V'");
  Forget();
  ExpectAnswer("P1", true);
  EXPECT_EQ(Statements(), QueryFor("P1"));
}

TEST_F(VaricellaRules, AProviderThatIsNotThereIsNot) {
  Forget();
  ExpectAnswer("P1", false);
  EXPECT_EQ(Statements(), QueryFor("P1"));
}

TEST_F(VaricellaRules, OnlyTheCodeVCounts) {
  InsertProvider("A", "''");
  InsertProvider("B", "NULL");
  InsertProvider("C", "'v'");
  InsertProvider("D", "'VX'");
  InsertProvider("E", "'X V'");
  for (const char* const pin : {"A", "B", "C", "D", "E"}) ExpectAnswer(pin, false);
  InsertProvider("F", "' V '");
  ExpectAnswer("F", true);
}

TEST_F(VaricellaRules, TwoProvidersAreRefused) {
  InsertProvider("P1", "'V'");
  InsertProvider(" P1 ", "'V'");
  ExpectVaricellaRefusal(20003, kPinTwice);
  EXPECT_EQ(Statements(), QueryFor("P1"));
  EXPECT_EQ(Query("SELECT count(*) FROM provider"), (std::vector<Row>{{"2"}}));
}

TEST_F(VaricellaRules, ASecondProviderWithoutTheCodeDoesNotCount) {
  InsertProvider("P1", "'V'");
  InsertProvider("P1", "'X'");
  ExpectAnswer("P1", true);
}

TEST_F(VaricellaRules, ThePinCountsInUpperCase) {
  InsertProvider("AB12", "'V'");
  Forget();
  ExpectAnswer("ab12", true);
  EXPECT_EQ(Statements(), QueryFor("AB12"));
  InsertProvider("cd34", "'V'");
  ExpectAnswer("cd34", false);
}

TEST_F(VaricellaRules, ThePinIsSplicedWithItsTrailingBlanks) {
  InsertProvider(" P1", "'V'");
  Forget();
  ExpectAnswer("p1    ", true);
  EXPECT_EQ(Statements(), QueryFor("P1    "));
}

TEST_F(VaricellaRules, MoreThanSixCharactersAreRefusedWithoutAQuery) {
  for (const char* const pin :
       {"ABCDEFG", "1234567", "P1     ", "       ", "A-B-C-D", "ééééééé", "😀😀😀😀"}) {
    ExpectVaricellaRefusal(20078, kPinTooLong, pin);
    EXPECT_EQ(Statements(), Lines{});
  }
  ExpectAnswer("ABCDEF", false);
}

TEST_F(VaricellaRules, OtherThanLettersAndDigitsAreRefusedWithoutAQuery) {
  for (const char* const pin : {"A-1", "A 1", " P1", "P'1", "éééééé", "😀😀😀", "P1\t"}) {
    ExpectVaricellaRefusal(20079, kPinNotAlphanumeric, pin);
    EXPECT_EQ(Statements(), Lines{});
  }
}

TEST_F(VaricellaRules, ABlankPinIsRefusedAsNotAlphanumeric) {
  for (const char* const pin : {"", " ", "      "}) {
    ExpectVaricellaRefusal(20079, kPinNotAlphanumeric, pin);
    EXPECT_EQ(Statements(), Lines{});
  }
}

TEST_F(VaricellaRules, OnTheEnginesAnswer) {
  Answer({0});
  ExpectAnswer("P1", false);
  Answer({1});
  ExpectAnswer("P1", true);
  Answer({2});
  ExpectVaricellaRefusal(20003, kPinTwice);
  Answer({2147483647});
  ExpectVaricellaRefusal(20003, kPinTwice);
  Answer({-1});
  ExpectVaricellaRefusal(20005, kPinError);
}

TEST_F(VaricellaRules, NeedsExactlyOneRecord) {
  Answer(std::vector<Value>{});
  ExpectVaricellaRefusal(20005, kPinError);
  EXPECT_EQ(Statements(), QueryFor("P1"));
  Answer({1, 1});
  ExpectVaricellaRefusal(20005, kPinError);
  Answer({0, 0});
  ExpectVaricellaRefusal(20005, kPinError);
}

TEST_F(VaricellaRules, TheCountIsA32BitNumberAndNotNull) {
  ExpectCountConversion("ValidateProvideraVaricellaEligibility", [&] { IsEligible("P1"); });
}

}  // namespace
}  // namespace lotrix

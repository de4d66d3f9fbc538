#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/expected_statements.h"
#include "tests/support/expected_trace.h"
#include "tests/support/extremes.h"
#include "tests/support/operation_fixture.h"

namespace lotrix::test {
namespace {

// A call's arguments; as they stand, a report that is accepted.
struct Report {
  std::string date = "1/5/2004";
  std::string pin = "P1";
  std::string vaccine = "HEPA";
  std::string dose = "2";
  std::string sector = "1";
  std::array<std::int32_t, 13> groups = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13};
  std::int32_t total = 91;
  std::array<std::int32_t, 3> categories = {100, 200, 300};
};

// Wrong in every argument: the order of the checks is the order in which its
// faults are found when they are mended one by one.
Report AllWrong() {
  return {.date = " ",
          .pin = " ",
          .vaccine = " ",
          .dose = "many",
          .sector = "3",
          .total = 90,
          .categories = {kLargest, 1, 0}};
}

// The lines of the trace, piece by piece as a call comes by them.

const std::string kOperation = "DosesAdministeredUpdate";

Lines Begun() { return {BeginOf(kOperation)}; }
Lines Ended() { return {EndOf(kOperation)}; }

Lines SectorPassed() { return Passed("ValidateVaccAdminSector"); }
Lines TotalPassed() { return Joined({SectorPassed(), Passed("ValidateTotalDoses")}); }
Lines ProviderPassed() { return Joined({TotalPassed(), Asked("ValidateProviderPIN")}); }
// The routine has no Begin line but two End lines.
Lines VaccinePassed() {
  return Joined({ProviderPassed(),
                 ConnectionRead(),
                 {EndOf("ValidateAgainstpVaccRefTable"), EndOf("ValidateAgainstpVaccRefTable")}});
}
Lines GeneralVaccinePassed() {
  return Joined({ProviderPassed(),
                 ConnectionRead(),
                 {EndOf("ValidateAgainstVaccRefTable"), EndOf("ValidateAgainstVaccRefTable")}});
}
Lines DosePassed() { return Joined({VaccinePassed(), Asked("ValidateDoseSeriesNumberPvaccref")}); }
Lines GeneralDosePassed() {
  return Joined({GeneralVaccinePassed(), Asked("ValidateDoseSeriesNumber")});
}
Lines ChecksPassed() {
  return Joined({DosePassed(), KeyTaken(), Asked("ValidateDuplicateDosesAdmin")});
}
Lines GeneralChecksPassed() {
  return Joined({GeneralDosePassed(), KeyTaken(), Asked("ValidateDuplicateDosesAdmin")});
}

Lines SectorRefused(const std::string& description) {
  return Refused("ValidateVaccAdminSector", description);
}
Lines TotalRefused(const std::string& description) {
  return Joined({SectorPassed(), Refused("ValidateTotalDoses", description)});
}
Lines ProviderRefused(const std::string& description) {
  return Joined({TotalPassed(), RefusedBy("ValidateProviderPIN", description)});
}
Lines VaccineRefused(const std::string& description) {
  return Joined({ProviderPassed(), VaccineReferenceRefused(description)});
}
Lines GeneralVaccineRefused(const std::string& description) {
  return Joined({ProviderPassed(),
                 ConnectionRead(),
                 {EndOf("ValidateAgainstVaccRefTable"),
                  ProblemOf("ValidateAgainstVaccRefTable", description)}});
}
Lines DoseRefused(const std::string& description) {
  return Joined({VaccinePassed(), RefusedBy("ValidateDoseSeriesNumberPvaccref", description)});
}
Lines GeneralDoseRefused(const std::string& description) {
  return Joined({GeneralVaccinePassed(), RefusedBy("ValidateDoseSeriesNumber", description)});
}
Lines DuplicateRefused(const std::string& description) {
  return Joined({DosePassed(), KeyTaken(), RefusedBy("ValidateDuplicateDosesAdmin", description)});
}

// The statements as a call builds them.

std::string GeneralVaccineCount(const std::string& vaccine) {
  return "SELECT count(*) FROM vaccref WHERE ltrim(rtrim(vaccine)) == '" + vaccine + "'";
}
std::string LargestDose(const std::string& vaccine) {
  return "SELECT MAX( maxno) FROM pvaccref WHERE ltrim(rtrim(vaccine)) == '" + vaccine +
         "' AND locactiv=.F.";
}
std::string GeneralLargestDose(const std::string& vaccine) {
  return "SELECT MAX( maxno) FROM vaccref WHERE ltrim(rtrim(vaccine)) == '" + vaccine +
         "' AND locactiv== 'Y'";
}
std::string DuplicateCount(const Report& report) {
  return "SELECT count(*) FROM DosesAdm WHERE ltrim(rtrim(pin)) = '" + report.pin +
         "' AND ltrim(rtrim(vaccine))='" + report.vaccine + "' AND dose = " + report.dose +
         " AND sector = " + report.sector + " AND adate ={" + report.date + "} ";
}
Lines QueriesUpToTheVaccine(const Report& report) {
  return {ProviderCount(report.pin), VaccineCount(report.vaccine)};
}
Lines QueriesUpToTheDose(const Report& report) {
  return Joined({QueriesUpToTheVaccine(report), {LargestDose(report.vaccine)}});
}
Lines CheckQueries(const Report& report, const std::string& key = "42") {
  return Joined({QueriesUpToTheDose(report),
                 {KeyQuery("DOSESADM"), KeyUpdate("DOSESADM", key), DuplicateCount(report)}});
}
// With the default report's counts.
std::string Insert(const Report& report, const std::string& key = "42") {
  return "INSERT INTO DosesAdm (adate, pin, sector, vaccine, position, dose, g1, g2, g3, g4, g5, "
         "g6, g7, g8, g9, g10, g11, g12, g13, rowtot, dauzr1, dauzr2, dauzr3, dauzr4, dauzr5, "
         "dauzr6, dauzr7, dauzr8, dauzrtot, chgdate, userid, dosesadmid) VALUES ( {" +
         report.date + "}, '" + report.pin + "', " + report.sector + ", '" + report.vaccine +
         "', 0, " + report.dose +
         ", 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 91, 100, 200, 300, 0, 0, 0, 0, 0, 600, "
         "{11/20/2026}, 'LTX_DLL', " +
         key + ")";
}
std::string Update(const Report& report) {
  return "UPDATE DosesAdm  SET g1=1,  g2=2,  g3=3,  g4=4,  g5=5,  g6=6,  g7=7,  g8=8,  g9=9,  "
         "g10=10,  g11=11,  g12=12,  g13=13,  RowTot=91,  dauzr1=100,  dauzr2=200,  dauzr3=300,  "
         "dauzr4=0,  dauzr5=0,  dauzr6=0,  dauzr7=0,  dauzr8=0,  dauzrTot=600,  chgdate = "
         "{11/20/2026},  userid = 'LTX_DLL'  WHERE  Pin = '" +
         report.pin + "'  AND    ltrim(rtrim(vaccine))='" + report.vaccine +
         "'  AND    Dose = " + report.dose + "  AND    sector = " + report.sector +
         "  AND    aDate = {" + report.date + "} ";
}

class Doses : public OperationTest {
 protected:
  void SetUp() override {
    Execute("INSERT INTO provider (pin, sector, active) VALUES ('P1', 15, 'Y'), ('P2', 15, 'Y')");
    AddVaccine("HEPA", "3");
    Execute("INSERT INTO vaccref (vaccine, maxno, locactiv) VALUES ('MMR-V', 4, 'Y')");
    Execute("INSERT INTO nextid (ctablename, inextid) VALUES ('DosesAdm', 41), ('OTHER', 7)");
    WatchOperations();
  }

  void AddVaccine(const std::string& vaccine, const std::string& maxno,
                  const std::string& locactiv = "(1 = 0)") {
    Execute("INSERT INTO pvaccref (vaccine, maxno, locactiv) VALUES ('" + vaccine + "', " + maxno +
            ", " + locactiv + ")");
  }
  // A report of the default key as another program may have left it.
  void AddReport(const std::string& pin = "P1", const std::string& vaccine = "HEPA",
                 const std::string& dose = "2", const std::string& sector = "1",
                 const std::string& date = "'2004-01-05'") {
    Execute(
        "INSERT INTO dosesadm (adate, pin, sector, vaccine, position, dose, g1, g2, g3, g4, g5, "
        "g6, g7, g8, g9, g10, g11, g12, g13, rowtot, dauzr1, dauzr2, dauzr3, dauzr4, dauzr5, "
        "dauzr6, dauzr7, dauzr8, dauzrtot, chgdate, userid, dosesadmid) VALUES (" +
        date + ", '" + pin + "', " + sector + ", '" + vaccine + "', 9, " + dose +
        ", 51, 52, 53, 54, 55, 56, 57, 58, 59, 60, 61, 62, 63, 64, 65, 66, 67, 68, 69, 70, 71, "
        "72, 73, '2003-03-03', 'SOMEONE', 8)");
  }

  void Run(const Report& report) {
    const auto& g = report.groups;
    const auto& category = report.categories;
    lotrix().DosesAdministeredUpdate(report.date, report.pin, report.vaccine, report.dose,
                                     report.sector, g[0], g[1], g[2], g[3], g[4], g[5], g[6], g[7],
                                     g[8], g[9], g[10], g[11], g[12], report.total, category[0],
                                     category[1], category[2]);
  }

  [[nodiscard]] Rows Reports() {
    return Query(
        "SELECT adate, pin, sector, vaccine, position, dose, g1, g2, g3, g4, g5, g6, g7, g8, g9, "
        "g10, g11, g12, g13, rowtot, dauzr1, dauzr2, dauzr3, dauzr4, dauzr5, dauzr6, dauzr7, "
        "dauzr8, dauzrtot, chgdate, userid, dosesadmid FROM dosesadm ORDER BY dosesadmid");
  }
  [[nodiscard]] Rows Keys() {
    return Query("SELECT ctablename, inextid FROM nextid ORDER BY ctablename, inextid");
  }
  [[nodiscard]] Rows Everything() {
    return Contents({"dosesadm", "provider", "pvaccref", "vaccref"});
  }

  // Refused with that number, the whole trace as `lines` tells it, nothing written
  // and no key taken.
  Error ExpectRefused(const Report& report, std::int32_t number,
                      const std::function<Lines(const std::string& description)>& lines) {
    const Rows keys = Keys();
    Error error = ExpectFailed(report, number, lines);
    EXPECT_EQ(Keys(), keys);
    return error;
  }
  // The same when the key was taken before.
  Error ExpectRefusedWithAKey(const Report& report, std::int32_t number,
                              const std::function<Lines(const std::string& description)>& lines) {
    Execute("UPDATE nextid SET inextid = 41 WHERE ctablename = 'DosesAdm'");
    Error error = ExpectFailed(report, number, lines);
    EXPECT_EQ(Keys(), (Rows{{"DosesAdm", "42"}, {"OTHER", "7"}}));
    return error;
  }
  // A catalogue refusal; `lines` stand between the operation's first and last.
  void ExpectRefused(const Report& report, std::int32_t code, const std::string& message,
                     const Lines& lines, const Lines& statements) {
    const Error error =
        ExpectRefused(report, Coded(code), [&](const std::string&) { return lines; });
    EXPECT_EQ(error.description(), message);
    EXPECT_EQ(Statements(), statements);
  }

 private:
  Error ExpectFailed(const Report& report, std::int32_t number,
                     const std::function<Lines(const std::string& description)>& lines) {
    const Rows before = Everything();
    Error error = ExpectRefusal(
        kOperation, [&] { Run(report); }, number, lines);
    EXPECT_EQ(Everything(), before);
    return error;
  }
};

// --- A report that is not there yet ----------------------------------------

TEST_F(Doses, ANewReportIsInserted) {
  Run({});
  EXPECT_EQ(Reports(),
            (Rows{{"2004-01-05", "P1", "1",  "HEPA", "0",   "2",          "1",       "2",
                   "3",          "4",  "5",  "6",    "7",   "8",          "9",       "10",
                   "11",         "12", "13", "91",   "100", "200",        "300",     "0",
                   "0",          "0",  "0",  "0",    "600", "2026-11-20", "LTX_DLL", "42"}}));
  EXPECT_EQ(Keys(), (Rows{{"DosesAdm", "42"}, {"OTHER", "7"}}));
}

// Once without helpers: what the texts say, letter for letter.
TEST_F(Doses, TheStatementsOfANewReportLetterForLetter) {
  Run({});
  EXPECT_EQ(
      Statements(),
      (Lines{
          "SELECT count(*) FROM provider WHERE Sector BETWEEN 10 AND 29 AND ltrim(rtrim(pin)) = "
          "'P1'",
          "SELECT count(*) FROM pvaccref WHERE ltrim(rtrim(vaccine)) == 'HEPA'",
          "SELECT MAX( maxno) FROM pvaccref WHERE ltrim(rtrim(vaccine)) == 'HEPA' AND "
          "locactiv=.F.",
          "SELECT inextid FROM Nextid WHERE ltrim(rtrim(upper(ctablename))) = 'DOSESADM' ",
          "UPDATE nextid SET inextid  = 42 WHERE ltrim(rtrim(upper(ctablename))) = 'DOSESADM' ",
          "SELECT count(*) FROM DosesAdm WHERE ltrim(rtrim(pin)) = 'P1' AND "
          "ltrim(rtrim(vaccine))='HEPA' AND dose = 2 AND sector = 1 AND adate ={1/5/2004} ",
          "INSERT INTO DosesAdm (adate, pin, sector, vaccine, position, dose, g1, g2, g3, g4, g5, "
          "g6, g7, g8, g9, g10, g11, g12, g13, rowtot, dauzr1, dauzr2, dauzr3, dauzr4, dauzr5, "
          "dauzr6, dauzr7, dauzr8, dauzrtot, chgdate, userid, dosesadmid) VALUES ( {1/5/2004}, "
          "'P1', 1, 'HEPA', 0, 2, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 91, 100, 200, 300, "
          "0, 0, 0, 0, 0, 600, {11/20/2026}, 'LTX_DLL', 42)"}));
}

// Its statement is not among the lines.
TEST_F(Doses, TheTraceOfANewReport) {
  Run({});
  EXPECT_EQ(Trace(), (Lines{"information Begin: DosesAdministeredUpdate()",
                            "information Begin: ValidateVaccAdminSector()",
                            "information End: ValidateVaccAdminSector()",
                            "information Begin: ValidateTotalDoses()",
                            "information End: ValidateTotalDoses()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: ValidateProviderPIN()",
                            "information End: ValidateProviderPIN()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information End: ValidateAgainstpVaccRefTable()",
                            "information End: ValidateAgainstpVaccRefTable()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: ValidateDoseSeriesNumberPvaccref()",
                            "information End: ValidateDoseSeriesNumberPvaccref()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: ValidateDuplicateDosesAdmin()",
                            "information End: ValidateDuplicateDosesAdmin()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information End: DosesAdministeredUpdate()"}));
}

TEST_F(Doses, OmittedCountsAreZeroAndTheOmittedSectorIs1) {
  lotrix().DosesAdministeredUpdate("1/5/2004", "P1", "HEPA", "2");
  EXPECT_EQ(Reports(), (Rows{{"2004-01-05", "P1", "1",          "HEPA",    "0", "2", "0", "0", "0",
                              "0",          "0",  "0",          "0",       "0", "0", "0", "0", "0",
                              "0",          "0",  "0",          "0",       "0", "0", "0", "0", "0",
                              "0",          "0",  "2026-11-20", "LTX_DLL", "42"}}));
  EXPECT_EQ(Trace(), Joined({Begun(), ChecksPassed(), ConnectionRead(), Ended()}));
}

TEST_F(Doses, TheSecondSectorIsAccepted) {
  Report report;
  report.sector = "2";
  Run(report);
  EXPECT_EQ(Statements(), Joined({CheckQueries(report), {Insert(report)}}));
  EXPECT_EQ(Query("SELECT sector FROM dosesadm"), (Rows{{"2"}}));
}

TEST_F(Doses, TheArgumentsCountInUpperCase) {
  const Report report{
      .date = "jan 5, 2004 10:30 pm", .pin = "p1", .vaccine = "hepa", .dose = "2e0"};
  const Report upper{.date = "JAN 5, 2004 10:30 PM", .pin = "P1", .vaccine = "HEPA", .dose = "2E0"};
  Run(report);
  EXPECT_EQ(Statements(), Joined({CheckQueries(upper), {Insert(upper)}}));
  EXPECT_EQ(Query("SELECT adate, pin, vaccine FROM dosesadm WHERE dose = 2"),
            (Rows{{"2004-01-05", "P1", "HEPA"}}));
}

TEST_F(Doses, LettersBeyondAsciiAreUpperCasedOneByOne) {
  AddVaccine("GRIPPE ÉŸЯ STRAßE", "3");
  Report report;
  report.vaccine = "grippe éÿя straße";
  Run(report);
  EXPECT_EQ(Query("SELECT vaccine FROM dosesadm"), (Rows{{"GRIPPE ÉŸЯ STRAßE"}}));
}

TEST_F(Doses, NoValueIsTrimmed) {
  const Report report{.date = " 1/5/2004 ", .pin = "P1  ", .vaccine = "HEPA ", .dose = " 2 "};
  Run(report);
  EXPECT_EQ(Statements(), Joined({CheckQueries(report), {Insert(report)}}));
  EXPECT_EQ(Query("SELECT adate, pin, vaccine FROM dosesadm WHERE dose = 2"),
            (Rows{{"2004-01-05", "P1  ", "HEPA "}}));
}

TEST_F(Doses, TheDoseIsSplicedAsGiven) {
  const std::vector<std::pair<std::string, std::string>> doses = {
      {"1", "1"},     {"3", "3"},     {"+2", "2"},    {"02", "2"},
      {"2.4", "2.4"}, {"0.6", "0.6"}, {"3.5", "3.5"}, {"3.4", "3.4"}};
  for (const auto& [dose, stored] : doses) {
    SCOPED_TRACE(dose);
    Execute("UPDATE nextid SET inextid = 41 WHERE ctablename = 'DosesAdm'");
    Execute("UPDATE pvaccref SET maxno = 4");
    Report report;
    report.dose = dose;
    static_cast<void>(Statements());
    Run(report);
    EXPECT_EQ(Statements(), Joined({CheckQueries(report), {Insert(report)}}));
    EXPECT_EQ(Query("SELECT count(*) FROM dosesadm WHERE dose = " + stored), (Rows{{"1"}}));
    Execute("DELETE FROM dosesadm");
  }
}

TEST_F(Doses, TheDateIsSplicedAsGivenAndStoredAsADay) {
  const std::vector<std::pair<std::string, std::string>> dates = {
      {"01/05/2004", "2004-01-05"},
      {"1-5-04", "2004-01-05"},
      {"2004-1-5", "2004-01-05"},
      {"5-JAN-2004", "2004-01-05"},
      {"1/5/2004 10:30 PM", "2004-01-05"},
      {"12/31/9999", "9999-12-31"},
      {"1/1/100", "0100-01-01"},
      {"12:00:00 AM", "1899-12-30"},
      {"10:30", "1899-12-30"},
      {"\t", "<null>"}};
  for (const auto& [date, day] : dates) {
    SCOPED_TRACE(date);
    Execute("UPDATE nextid SET inextid = 41 WHERE ctablename = 'DosesAdm'");
    Report report;
    report.date = date;
    static_cast<void>(Statements());
    Run(report);
    EXPECT_EQ(Statements(), Joined({CheckQueries(report), {Insert(report)}}));
    EXPECT_EQ(Query("SELECT adate FROM dosesadm"), (Rows{{day}}));
    Execute("DELETE FROM dosesadm");
  }
}

TEST_F(Doses, NegativeCountsAreCountsToo) {
  Report report;
  report.groups = {-5, 5};
  report.total = 0;
  report.categories = {-1, -2, -3};
  Run(report);
  EXPECT_EQ(Query("SELECT g1, g2, g3, rowtot, dauzr1, dauzr2, dauzr3, dauzrtot FROM dosesadm"),
            (Rows{{"-5", "5", "0", "0", "-1", "-2", "-3", "-6"}}));
}

TEST_F(Doses, TheCountsAtTheEndsOfTheRange) {
  Report report;
  report.groups = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, kLargest};
  report.total = kLargest;
  report.categories = {0, kLargest, 0};
  Run(report);
  report.date = "1/6/2004";
  report.groups = {kSmallest};
  report.total = kSmallest;
  report.categories = {kSmallest, 0, 0};
  Run(report);
  report.date = "1/7/2004";
  report.categories = {2000000000, -2000000000, 2000000000};
  Run(report);
  EXPECT_EQ(Query("SELECT g1, g13, rowtot, dauzr1, dauzr2, dauzr3, dauzrtot FROM dosesadm ORDER BY "
                  "adate"),
            (Rows{{"0", "2147483647", "2147483647", "0", "2147483647", "0", "2147483647"},
                  {"-2147483648", "0", "-2147483648", "-2147483648", "0", "0", "-2147483648"},
                  {"-2147483648", "0", "-2147483648", "2000000000", "-2000000000", "2000000000",
                   "2000000000"}}));
}

TEST_F(Doses, TheCategoriesAreComparedWithNothing) {
  Report report;
  report.groups = {};
  report.total = 0;
  Run(report);
  EXPECT_EQ(Query("SELECT rowtot, dauzrtot FROM dosesadm"), (Rows{{"0", "600"}}));
}

TEST_F(Doses, AnInactiveProviderIsAccepted) {
  Execute("UPDATE provider SET active = 'N'");
  Run({});
  EXPECT_EQ(Query("SELECT pin FROM dosesadm"), (Rows{{"P1"}}));
}

TEST_F(Doses, TextThatOnlyLooksLikeSqlStaysAValue) {
  const std::string odd = "A\"B;--%_\\{}]/*";
  AddVaccine(odd, "3");
  Report report;
  report.vaccine = odd;
  Run(report);
  Run(report);
  EXPECT_EQ(Query("SELECT vaccine, rowtot FROM dosesadm"), (Rows{{odd, "91"}}));
}

TEST_F(Doses, TheLargestKeyCanBeStored) {
  Execute("UPDATE nextid SET inextid = 2147483646 WHERE ctablename = 'DosesAdm'");
  Run({});
  EXPECT_EQ(Query("SELECT dosesadmid FROM dosesadm"), (Rows{{"2147483647"}}));
}

// --- The measles combination -------------------------------------------------

TEST_F(Doses, TheCombinationIsCheckedAgainstTheGeneralReference) {
  Report report;
  report.vaccine = "mmr-v";
  report.dose = "4";
  Run(report);
  Report upper = report;
  upper.vaccine = "MMR-V";
  EXPECT_EQ(Statements(),
            (Lines{"SELECT count(*) FROM provider WHERE Sector BETWEEN 10 AND 29 AND "
                   "ltrim(rtrim(pin)) = 'P1'",
                   "SELECT count(*) FROM vaccref WHERE ltrim(rtrim(vaccine)) == 'MMR-V'",
                   "SELECT MAX( maxno) FROM vaccref WHERE ltrim(rtrim(vaccine)) == 'MMR-V' AND "
                   "locactiv== 'Y'",
                   KeyQuery("DOSESADM"), KeyUpdate("DOSESADM", "42"), DuplicateCount(upper),
                   Insert(upper)}));
  EXPECT_EQ(Trace(), Joined({Begun(), GeneralChecksPassed(), ConnectionRead(), Ended()}));
  EXPECT_EQ(Query("SELECT vaccine, dose FROM dosesadm"), (Rows{{"MMR-V", "4"}}));
}

TEST_F(Doses, ARepeatedReportOfTheCombinationIsUpdated) {
  Report report;
  report.vaccine = "MMR-V";
  AddReport("P1", "MMR-V");
  Run(report);
  EXPECT_EQ(Statements(),
            (Lines{ProviderCount("P1"), GeneralVaccineCount("MMR-V"), GeneralLargestDose("MMR-V"),
                   KeyQuery("DOSESADM"), KeyUpdate("DOSESADM", "42"), DuplicateCount(report),
                   Update(report)}));
  EXPECT_EQ(Query("SELECT vaccine, rowtot, dosesadmid FROM dosesadm"),
            (Rows{{"MMR-V", "91", "8"}}));
}

TEST_F(Doses, OnlyTheVeryNameIsTheCombination) {
  for (const char* const vaccine : {"MMR-V ", "MMRV", "MMR", "MMR–V"}) {
    SCOPED_TRACE(vaccine);
    const std::string message = "Vaccine not available to private provider in LOTRIX";
    Report report;
    report.vaccine = vaccine;
    ExpectRefused(report, 20051, message, VaccineRefused(message), QueriesUpToTheVaccine(report));
  }
}

TEST_F(Doses, TheCombinationInTheOtherReferenceDoesNotCount) {
  const std::string message = "Vaccine not available to private provider in LOTRIX";
  Execute("DELETE FROM vaccref");
  AddVaccine("MMR-V", "3");
  Report report;
  report.vaccine = "MMR-V";
  ExpectRefused(report, 20051, message, GeneralVaccineRefused(message),
                {ProviderCount("P1"), GeneralVaccineCount("MMR-V")});
}

TEST_F(Doses, AnotherVaccineInTheGeneralReferenceDoesNotCount) {
  const std::string message = "Vaccine not available to private provider in LOTRIX";
  Execute("INSERT INTO vaccref (vaccine, maxno, locactiv) VALUES ('MMR', 3, 'Y')");
  Report report;
  report.vaccine = "MMR";
  ExpectRefused(report, 20051, message, VaccineRefused(message), QueriesUpToTheVaccine(report));
}

TEST_F(Doses, TheDoseOfTheCombinationIsLimitedByItsActiveRows) {
  const std::string message =
      "The dose in series number given is greater than the maximum allowed for the vaccine";
  Execute(
      "INSERT INTO vaccref (vaccine, maxno, locactiv) VALUES ('MMR-V', 9, 'N'), ('MMR-V', 9, "
      "'y'), ('MMR-V', 2, 'Y'), ('MMR-V', NULL, 'Y'), ('MMR', 9, 'Y')");
  Report report;
  report.vaccine = "MMR-V";
  report.dose = "4";
  Run(report);
  report.dose = "5";
  ExpectRefused(report, 20088, message, GeneralDoseRefused(message),
                {ProviderCount("P1"), GeneralVaccineCount("MMR-V"), GeneralLargestDose("MMR-V")});
  Execute("UPDATE vaccref SET locactiv = 'N'");
  report.dose = "1";
  ExpectRefused(report, 20088, message, GeneralDoseRefused(message),
                {ProviderCount("P1"), GeneralVaccineCount("MMR-V"), GeneralLargestDose("MMR-V")});
}

TEST_F(Doses, ADoseOfTheCombinationBelow1IsRefusedWithoutAQuery) {
  const std::string message =
      "The dose in series number given is less than the minimum allowed for all vaccines";
  for (const char* const dose : {"0", "-1", "0.5"}) {
    SCOPED_TRACE(dose);
    Report report;
    report.vaccine = "MMR-V";
    report.dose = dose;
    ExpectRefused(report, 20087, message, GeneralDoseRefused(message),
                  {ProviderCount("P1"), GeneralVaccineCount("MMR-V")});
  }
}

TEST_F(Doses, ADoseOfTheCombinationThatIsNoNumberDoesNotMatchItsType) {
  Report report;
  report.vaccine = "MMR-V";
  report.dose = "two";
  ExpectRefused(report, 13, GeneralDoseRefused);
  report.dose = "2147483648";
  ExpectRefused(report, 6, GeneralDoseRefused);
}

// --- A report that is there --------------------------------------------------

TEST_F(Doses, ASecondReportOverwritesEveryCountAndTakesAKeyItDoesNotStore) {
  Run({});
  Report second;
  second.groups = {};
  second.total = 0;
  second.categories = {};
  Run(second);
  EXPECT_EQ(Reports(), (Rows{{"2004-01-05", "P1", "1",          "HEPA",    "0", "2", "0", "0", "0",
                              "0",          "0",  "0",          "0",       "0", "0", "0", "0", "0",
                              "0",          "0",  "0",          "0",       "0", "0", "0", "0", "0",
                              "0",          "0",  "2026-11-20", "LTX_DLL", "42"}}));
  EXPECT_EQ(Keys(), (Rows{{"DosesAdm", "43"}, {"OTHER", "7"}}));
}

TEST_F(Doses, AnUpdateTouchesTheCountsAndTheStampsOnly) {
  AddReport();
  Run({});
  EXPECT_EQ(Reports(),
            (Rows{{"2004-01-05", "P1", "1",  "HEPA", "9",   "2",          "1",       "2",
                   "3",          "4",  "5",  "6",    "7",   "8",          "9",       "10",
                   "11",         "12", "13", "91",   "100", "200",        "300",     "0",
                   "0",          "0",  "0",  "0",    "600", "2026-11-20", "LTX_DLL", "8"}}));
  EXPECT_EQ(Keys(), (Rows{{"DosesAdm", "42"}, {"OTHER", "7"}}));
}

TEST_F(Doses, TheStatementsOfAnUpdateLetterForLetter) {
  AddReport();
  Run({});
  EXPECT_EQ(
      Statements(),
      Joined({CheckQueries({}),
              {"UPDATE DosesAdm  SET g1=1,  g2=2,  g3=3,  g4=4,  g5=5,  g6=6,  g7=7,  g8=8,  "
               "g9=9,  g10=10,  g11=11,  g12=12,  g13=13,  RowTot=91,  dauzr1=100,  dauzr2=200,  "
               "dauzr3=300,  dauzr4=0,  dauzr5=0,  dauzr6=0,  dauzr7=0,  dauzr8=0,  "
               "dauzrTot=600,  chgdate = {11/20/2026},  userid = 'LTX_DLL'  WHERE  Pin = 'P1'  "
               "AND    ltrim(rtrim(vaccine))='HEPA'  AND    Dose = 2  AND    sector = 1  AND    "
               "aDate = {1/5/2004} "}}));
}

TEST_F(Doses, TheTraceOfAnUpdate) {
  AddReport();
  Run({});
  EXPECT_EQ(Trace(), Joined({Begun(), ChecksPassed(), ConnectionRead(), Ended()}));
}

TEST_F(Doses, ValuesOfAnUpdateAreSplicedAsGiven) {
  AddReport();
  const Report report{.date = "JAN 5, 2004", .pin = "P1 ", .vaccine = "HEPA ", .dose = " 2.0 "};
  Run(report);
  EXPECT_EQ(Statements(), Joined({CheckQueries(report), {Update(report)}}));
  EXPECT_EQ(Query("SELECT pin, vaccine, rowtot FROM dosesadm"), (Rows{{"P1", "HEPA", "91"}}));
}

TEST_F(Doses, AReportIsFoundByItsTrimmedVaccineAndAPinThatBlanksFollow) {
  AddReport("P1   ", " HEPA  ");
  Run({});
  EXPECT_EQ(Query("SELECT pin, vaccine, rowtot, userid FROM dosesadm"),
            (Rows{{"P1   ", " HEPA  ", "91", "LTX_DLL"}}));
}

// The test for a duplicate trims the stored pin, the update does not.
TEST_F(Doses, AReportWhosePinABlankPrecedesStaysAsItIs) {
  AddReport(" P1");
  const Rows before = Everything();
  Run({});
  EXPECT_EQ(Everything(), before);
  EXPECT_EQ(Statements(), Joined({CheckQueries({}), {Update({})}}));
  EXPECT_EQ(Trace(), Joined({Begun(), ChecksPassed(), ConnectionRead(), Ended()}));
  EXPECT_EQ(Keys(), (Rows{{"DosesAdm", "42"}, {"OTHER", "7"}}));
}

TEST_F(Doses, EveryPartOfTheKeyCounts) {
  AddVaccine("HEPB", "3");
  Run({});
  Run({});
  Run({.date = "1/6/2004"});
  Run({.pin = "P2"});
  Run({.vaccine = "HEPB"});
  Run({.dose = "3"});
  Run({.sector = "2"});
  EXPECT_EQ(Query("SELECT adate, pin, vaccine, dose, sector, dosesadmid FROM dosesadm ORDER BY "
                  "dosesadmid"),
            (Rows{{"2004-01-05", "P1", "HEPA", "2", "1", "42"},
                  {"2004-01-06", "P1", "HEPA", "2", "1", "44"},
                  {"2004-01-05", "P2", "HEPA", "2", "1", "45"},
                  {"2004-01-05", "P1", "HEPB", "2", "1", "46"},
                  {"2004-01-05", "P1", "HEPA", "3", "1", "47"},
                  {"2004-01-05", "P1", "HEPA", "2", "2", "48"}}));
}

TEST_F(Doses, OtherReportsStayAsTheyAre) {
  AddReport();
  AddReport("P2");
  AddReport("P1", "HEPB");
  AddReport("P1", "HEPA", "3");
  AddReport("P1", "HEPA", "2", "2");
  AddReport("P1", "HEPA", "2", "1", "'2004-01-06'");
  AddReport("P1", "HEPA", "2", "1", "NULL");
  Run({});
  EXPECT_EQ(Query("SELECT userid, count(*) FROM dosesadm GROUP BY userid ORDER BY userid"),
            (Rows{{"LTX_DLL", "1"}, {"SOMEONE", "6"}}));
  EXPECT_EQ(Query("SELECT pin, vaccine, dose, sector, adate FROM dosesadm WHERE userid = "
                  "'LTX_DLL'"),
            (Rows{{"P1", "HEPA", "2", "1", "2004-01-05"}}));
}

// --- The checks, each with every later one failing too ---------------------

TEST_F(Doses, FirstThatTheDateIsNotBlank) {
  for (const char* const date : {"", " ", "     "}) {
    SCOPED_TRACE(date);
    Report report = AllWrong();
    report.date = date;
    ExpectRefused(report, 20028, "A NULL report date is entered", {}, {});
  }
}

Report WrongFromTheVaccineOn() {
  Report report = AllWrong();
  report.date = "soon";
  return report;
}

TEST_F(Doses, ThenThatTheVaccineIsNotBlank) {
  for (const char* const vaccine : {"", " ", "     "}) {
    SCOPED_TRACE(vaccine);
    Report report = WrongFromTheVaccineOn();
    report.vaccine = vaccine;
    ExpectRefused(report, 20023, "A NULL vaccine name is entered", {}, {});
  }
}

Report WrongFromThePinOn() {
  Report report = WrongFromTheVaccineOn();
  report.vaccine = "NONE";
  return report;
}

TEST_F(Doses, ThenThatThePinIsNotBlank) {
  for (const char* const pin : {"", " ", "          "}) {
    SCOPED_TRACE(pin);
    Report report = WrongFromThePinOn();
    report.pin = pin;
    ExpectRefused(report, 2000, "2000", {}, {});
  }
}

Report WrongFromTheSectorOn() {
  Report report = WrongFromThePinOn();
  report.pin = "TOOLONG";
  return report;
}

TEST_F(Doses, ThenTheSector) {
  const std::string message = "The given sector is not a valid doses administered sector";
  for (const char* const sector :
       {"", " ", "0", "3", "10", "15", "01", " 1", "1 ", "1.0", "+1", "one", "1'", "1 OR 1=1"}) {
    SCOPED_TRACE(sector);
    Report report = WrongFromTheSectorOn();
    report.sector = sector;
    ExpectRefused(report, 20085, message, SectorRefused(message), {});
  }
}

Report WrongFromTheTotalOn() {
  Report report = WrongFromTheSectorOn();
  report.sector = "2";
  return report;
}

TEST_F(Doses, ThenTheTotal) {
  const std::string message = "The sum of the distribution does not match the Total";
  for (const std::int32_t total : {90, 92, 0, -91, kLargest, kSmallest}) {
    SCOPED_TRACE(total);
    Report report = WrongFromTheTotalOn();
    report.total = total;
    ExpectRefused(report, 20029, message, TotalRefused(message), {});
  }
}

TEST_F(Doses, EachOfTheThirteenGroupsIsPartOfTheTotal) {
  const std::string message = "The sum of the distribution does not match the Total";
  for (std::size_t group = 0; group < 13; ++group) {
    SCOPED_TRACE(group);
    Report report = WrongFromTheTotalOn();
    report.total = 91;
    ++report.groups[group];
    ExpectRefused(report, 20029, message, TotalRefused(message), {});
  }
}

TEST_F(Doses, ASumOfGroupsBeyond32BitsOverflowsEvenWhenItComesBack) {
  Report report = WrongFromTheTotalOn();
  report.groups = {kLargest, 1};
  ExpectRefused(report, 6, TotalRefused);
  report.groups = {kSmallest, -1};
  ExpectRefused(report, 6, TotalRefused);
  report.groups = {kLargest, 1, -1};
  report.total = kLargest;
  ExpectRefused(report, 6, TotalRefused);
  report.groups = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, kLargest, 1};
  ExpectRefused(report, 6, TotalRefused);
}

Report WrongFromTheCategoriesOn() {
  Report report = WrongFromTheTotalOn();
  report.total = 91;
  return report;
}

TEST_F(Doses, ThenThatTheCategoriesAddUp) {
  const std::vector<std::array<std::int32_t, 3>> sums = {{2000000000, 2000000000, 0},
                                                         {0, 2000000000, 2000000000},
                                                         {2000000000, 0, 2000000000},
                                                         {2000000000, 2000000000, -2000000000},
                                                         {kSmallest, -1, 0},
                                                         {kLargest, 0, 1},
                                                         {kSmallest, kSmallest, kLargest}};
  for (const auto& categories : sums) {
    SCOPED_TRACE(categories[0]);
    Report report = WrongFromTheCategoriesOn();
    report.categories = categories;
    ExpectRefused(report, 6, [](const std::string&) { return TotalPassed(); });
    EXPECT_EQ(Statements(), Lines{});
  }
}

Report WrongFromTheProviderOn() {
  Report report = WrongFromTheCategoriesOn();
  report.categories = {};
  return report;
}

TEST_F(Doses, ThenTheLengthOfThePin) {
  const std::string message =
      "The number of characters in the pin entered exceeds the maximum allowed";
  for (const char* const pin : {"1234567", "P-12345", "P1     "}) {
    SCOPED_TRACE(pin);
    Report report = WrongFromTheProviderOn();
    report.pin = pin;
    ExpectRefused(report, 20078, message, ProviderRefused(message), {});
  }
}

TEST_F(Doses, ThenTheCharactersOfThePin) {
  const std::string message =
      "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed.";
  for (const char* const pin : {"P-1", " P1", "P'1", "é", "P 1"}) {
    SCOPED_TRACE(pin);
    Report report = WrongFromTheProviderOn();
    report.pin = pin;
    ExpectRefused(report, 20079, message, ProviderRefused(message), {});
  }
}

TEST_F(Doses, ThenThatNotTwoProvidersHaveThePin) {
  const std::string message = "Provider PIN entered has a duplicate";
  Execute("INSERT INTO provider (pin, sector) VALUES (' P2', 20)");
  Report report = WrongFromTheProviderOn();
  report.pin = "P2";
  ExpectRefused(report, 20003, message, ProviderRefused(message), {ProviderCount("P2")});
}

TEST_F(Doses, AProviderCountThatIsNoneIsRefused) {
  const std::string message = "Error while verifying provider PIN in LOTRIX";
  Report report = WrongFromTheProviderOn();
  report.pin = "P1";
  const std::vector<std::vector<Value>> answers = {
      {}, {std::int64_t{1}, std::int64_t{1}}, {std::int64_t{-1}}};
  for (const std::vector<Value>& records : answers) {
    SCOPED_TRACE(records.size());
    AnswerTo(ProviderCount("P1"), records);
    ExpectRefused(report, 20005, message, ProviderRefused(message), {ProviderCount("P1")});
  }
}

TEST_F(Doses, ThenThatTheProviderIsThere) {
  Execute("INSERT INTO provider (pin, sector, active) VALUES ('S9', 9, 'Y'), ('S30', 30, 'Y')");
  for (const char* const pin : {"NOBODY", "S9", "S30"}) {
    SCOPED_TRACE(pin);
    Report report = WrongFromTheProviderOn();
    report.pin = pin;
    ExpectRefused(report, 20004, "Provider entered not found in LOTRIX", ProviderPassed(),
                  {ProviderCount(pin)});
  }
}

Report WrongFromTheReferenceOn() {
  Report report = WrongFromTheProviderOn();
  report.pin = "P1";
  return report;
}

TEST_F(Doses, ThenThatTheVaccineIsInTheReference) {
  const std::string message = "Vaccine not available to private provider in LOTRIX";
  for (const char* const vaccine : {"NONE", "HEP", "HEPAA", " HEPA"}) {
    SCOPED_TRACE(vaccine);
    Report report = WrongFromTheReferenceOn();
    report.vaccine = vaccine;
    ExpectRefused(report, 20051, message, VaccineRefused(message), QueriesUpToTheVaccine(report));
  }
}

TEST_F(Doses, ThenThatTheCombinationIsInItsReference) {
  const std::string message = "Vaccine not available to private provider in LOTRIX";
  Execute("DELETE FROM vaccref");
  Report report = WrongFromTheReferenceOn();
  report.vaccine = "MMR-V";
  ExpectRefused(report, 20051, message, GeneralVaccineRefused(message),
                {ProviderCount("P1"), GeneralVaccineCount("MMR-V")});
}

TEST_F(Doses, ANegativeVaccineCountIsRefused) {
  const std::string message = "Error while verifying vaccine reference table in LOTRIX";
  Report report = WrongFromTheReferenceOn();
  report.vaccine = "HEPA";
  AnswerTo(VaccineCount("HEPA"), {std::int64_t{-1}});
  ExpectRefused(report, 20016, message, VaccineRefused(message), QueriesUpToTheVaccine(report));
  report.vaccine = "MMR-V";
  AnswerTo(GeneralVaccineCount("MMR-V"), {std::int64_t{-1}});
  ExpectRefused(report, 20016, message, GeneralVaccineRefused(message),
                {ProviderCount("P1"), GeneralVaccineCount("MMR-V")});
}

Report WrongFromTheDoseOn() {
  Report report = WrongFromTheReferenceOn();
  report.vaccine = "HEPA";
  return report;
}

TEST_F(Doses, ThenThatTheDoseIsANumber) {
  Execute("DELETE FROM nextid");
  for (const char* const dose : {"", " ", "two", "2nd", "2'", "2 2", "-", "2 OR 1=1", "1/2"}) {
    SCOPED_TRACE(dose);
    Report report = WrongFromTheDoseOn();
    report.dose = dose;
    ExpectRefused(report, 13, DoseRefused);
    EXPECT_EQ(Statements(), QueriesUpToTheVaccine(report));
  }
}

TEST_F(Doses, ADoseBeyond32BitsOverflows) {
  Execute("DELETE FROM nextid");
  for (const char* const dose : {"2147483648", "-2147483649", "1e10", "2147483647.5"}) {
    SCOPED_TRACE(dose);
    Report report = WrongFromTheDoseOn();
    report.dose = dose;
    ExpectRefused(report, 6, DoseRefused);
    EXPECT_EQ(Statements(), QueriesUpToTheVaccine(report));
  }
}

TEST_F(Doses, ThenThatTheDoseIsAtLeast1) {
  const std::string message =
      "The dose in series number given is less than the minimum allowed for all vaccines";
  Execute("DELETE FROM nextid");
  for (const char* const dose : {"0", "-1", "0.5", "-2147483648", "(2)", "2-"}) {
    SCOPED_TRACE(dose);
    Report report = WrongFromTheDoseOn();
    report.dose = dose;
    ExpectRefused(report, 20087, message, DoseRefused(message), QueriesUpToTheVaccine(report));
  }
}

TEST_F(Doses, ThenThatTheDoseIsNotBeyondTheLargest) {
  const std::string message =
      "The dose in series number given is greater than the maximum allowed for the vaccine";
  Execute("DELETE FROM nextid");
  for (const char* const dose : {"4", "3.6", "3.5", "2147483647", "&H4"}) {
    SCOPED_TRACE(dose);
    Report report = WrongFromTheDoseOn();
    report.dose = dose;
    ExpectRefused(report, 20088, message, DoseRefused(message), QueriesUpToTheDose(report));
  }
}

TEST_F(Doses, TheLargestDoseIsThatOfTheRowsWithLocactivFalse) {
  const std::string message =
      "The dose in series number given is greater than the maximum allowed for the vaccine";
  AddVaccine("HEPA", "9", "(1 = 1)");
  AddVaccine("HEPA", "9", "NULL");
  AddVaccine("HEPA", "NULL");
  AddVaccine("HEPA", "2");
  AddVaccine("HEPB", "9");
  Report report;
  report.dose = "4";
  ExpectRefused(report, 20088, message, DoseRefused(message), QueriesUpToTheDose(report));
  report.dose = "3";
  Run(report);
  EXPECT_EQ(Query("SELECT dose FROM dosesadm"), (Rows{{"3"}}));
}

// It is not asked whether the vaccine is active; no dose of it is allowed.
TEST_F(Doses, AnInactiveVaccineHasNoDoses) {
  const std::string message =
      "The dose in series number given is greater than the maximum allowed for the vaccine";
  AddVaccine("OLD", "9", "(1 = 1)");
  Report report;
  report.vaccine = "OLD";
  report.dose = "1";
  ExpectRefused(report, 20088, message, DoseRefused(message), QueriesUpToTheDose(report));
}

TEST_F(Doses, ThenThatThereIsAKey) {
  AddReport();
  AddReport();
  Execute("DELETE FROM nextid WHERE ctablename = 'DosesAdm'");
  ExpectRefused({}, 20096, "Dosesadm does not exist in the NextID table.",
                Joined({DosePassed(), ConnectionRead()}),
                Joined({QueriesUpToTheDose({}), {KeyQuery("DOSESADM")}}));
}

TEST_F(Doses, ThenThatThereAreNotTwoKeys) {
  AddReport();
  AddReport();
  Execute("INSERT INTO nextid (ctablename, inextid) VALUES (' DOSESADM ', 90)");
  ExpectRefused({}, 20096, "More than one instance of Dosesadm exists in the NextID table.",
                Joined({DosePassed(), ConnectionRead()}),
                Joined({QueriesUpToTheDose({}), {KeyQuery("DOSESADM")}}));
}

TEST_F(Doses, AKeyBehindTheLargestOverflows) {
  AddReport();
  AddReport();
  Execute("UPDATE nextid SET inextid = 2147483647 WHERE ctablename = 'DosesAdm'");
  ExpectRefused({}, 6, [](const std::string&) { return Joined({DosePassed(), ConnectionRead()}); });
}

TEST_F(Doses, ThenThatTheReportIsNotThereTwice) {
  const std::string message = "Error while verifying duplicate doses admin";
  AddReport();
  AddReport(" P1 ", " HEPA ");
  const Error error = ExpectRefusedWithAKey({}, Coded(20032), DuplicateRefused);
  EXPECT_EQ(error.description(), message);
  EXPECT_EQ(Statements(), CheckQueries({}));
}

TEST_F(Doses, ADuplicateCountThatIsNoneIsRefused) {
  const std::string message = "Error while verifying duplicate doses admin";
  for (const std::vector<Value>& records :
       {std::vector<Value>{}, std::vector<Value>{std::int64_t{-1}},
        std::vector<Value>{std::int64_t{3}}}) {
    SCOPED_TRACE(records.size());
    AnswerTo(DuplicateCount({}), records);
    const Error error = ExpectRefusedWithAKey({}, Coded(20032), DuplicateRefused);
    EXPECT_EQ(error.description(), message);
    EXPECT_EQ(Statements(), CheckQueries({}));
  }
}

TEST_F(Doses, AKeyStaysTakenWhenTheStatementFails) {
  Execute("DROP TABLE dosesadm");
  for (const std::int64_t count : {0, 1}) {
    SCOPED_TRACE(count);
    Execute("UPDATE nextid SET inextid = 41 WHERE ctablename = 'DosesAdm'");
    AnswerTo(DuplicateCount({}), {count});
    ForgetTrace();
    const Error error = Refusal([&] { Run({}); });
    EXPECT_EQ(error.number(), Numbered(EngineError::kNoSuchTable));
    EXPECT_EQ(error.source(), "LOTRIX DLL");
    EXPECT_EQ(Trace(), Joined({Begun(),
                               ChecksPassed(),
                               ConnectionRead(),
                               {ProblemOf(kOperation, error.description())}}));
    EXPECT_EQ(Keys(), (Rows{{"DosesAdm", "42"}, {"OTHER", "7"}}));
  }
}

TEST_F(Doses, ARefusedCallLeavesTheObjectUsable) {
  Report wrong;
  wrong.dose = "4";
  ExpectError(
      Refusal([&] { Run(wrong); }), Coded(20088),
      "The dose in series number given is greater than the maximum allowed for the vaccine");
  Run({});
  EXPECT_EQ(Query("SELECT rowtot, dosesadmid FROM dosesadm"), (Rows{{"91", "42"}}));
}

// --- Values that would leave their place -----------------------------------

TEST_F(Doses, AnApostropheInTheVaccineIsRefusedAsSyntax) {
  for (const char* const vaccine : {"HEP'A", "HEPA'", "'", "HEPA' OR '1'='1",
                                    "HEPA'; DELETE FROM dosesadm; --", "HEPA''", "MMR-V'"}) {
    SCOPED_TRACE(vaccine);
    Report report;
    report.vaccine = vaccine;
    ExpectRefused(report, Numbered(EngineError::kStatementRefused), VaccineRefused);
  }
}

TEST_F(Doses, ADateThatIsNoneCannotBeConverted) {
  for (const char* const date : {"soon", "13/45/2004", "13/5/2004", "2/30/2004", "1/5", "38000",
                                 "1/5/2004'", "1'5/2004", "1/5/2004 25:00"}) {
    SCOPED_TRACE(date);
    Report report;
    report.date = date;
    ExpectRefusedWithAKey(report, Numbered(EngineError::kValueCannotBeConverted), DuplicateRefused);
  }
}

TEST_F(Doses, ABraceInTheDateIsRefusedAsSyntax) {
  for (const char* const date : {"1/5/2004}", "{1/5/2004", "1/5/2004} OR 1 = 1 --", "}"}) {
    SCOPED_TRACE(date);
    Report report;
    report.date = date;
    ExpectRefusedWithAKey(report, Numbered(EngineError::kStatementRefused), DuplicateRefused);
  }
}

// Numbers to the dose check, but none where a bare number stands.
TEST_F(Doses, ADoseThatIsNoBareNumberIsRefusedAsSyntax) {
  for (const char* const dose : {"&H2", "&O2", "$2", "2$", "2,", "\t2"}) {
    SCOPED_TRACE(dose);
    Report report;
    report.dose = dose;
    ExpectRefusedWithAKey(report, Numbered(EngineError::kStatementRefused), DuplicateRefused);
  }
}

TEST_F(Doses, AZeroCharacterInThePinIsNotAlphanumeric) {
  const std::string message =
      "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed.";
  Report report = WrongFromTheProviderOn();
  report.pin = std::string("P1\0", 3);
  ExpectRefused(report, 20079, message, ProviderRefused(message), {});
}

TEST_F(Doses, AZeroCharacterInTheSectorIsACharacterToo) {
  const std::string message = "The given sector is not a valid doses administered sector";
  Report report = WrongFromTheSectorOn();
  report.sector = std::string("1\0", 2);
  ExpectRefused(report, 20085, message, SectorRefused(message), {});
}

TEST_F(Doses, AZeroCharacterInTheVaccineIsRefusedAsSyntax) {
  Report report;
  report.vaccine = std::string("HEPA\0", 5);
  ExpectRefused(report, Numbered(EngineError::kStatementRefused), VaccineRefused);
  report.vaccine = std::string("MMR-V\0", 6);
  ExpectRefused(report, Numbered(EngineError::kStatementRefused), VaccineRefused);
}

// The dose check reads up to the zero character; what stands behind it must not
// reach the engine.
TEST_F(Doses, AZeroCharacterInTheDoseOrTheDateIsRefusedAsSyntax) {
  using std::string_literals::operator""s;
  for (const std::string& dose : {"2\0"s, "2\0 OR 1=1"s, "2\0'"s}) {
    Report report;
    report.dose = dose;
    ExpectRefusedWithAKey(report, Numbered(EngineError::kStatementRefused), DuplicateRefused);
  }
  for (const std::string& date : {"1/5/2004\0"s, "1/5/2004\0} OR 1 = 1 --"s, "\0"s}) {
    Report report;
    report.date = date;
    ExpectRefusedWithAKey(report, Numbered(EngineError::kStatementRefused), DuplicateRefused);
  }
}

// --- Very long arguments ----------------------------------------------------

TEST_F(Doses, AVeryLongTextOverflowsWhereItIsTestedForBlank) {
  const auto nothing = [](const std::string&) { return Lines{}; };
  Report report = AllWrong();
  report.date = std::string(kMebibyte, '1');
  ExpectRefused(report, 6, nothing);
  report = WrongFromTheVaccineOn();
  report.vaccine = std::string(kMebibyte, 'v');
  ExpectRefused(report, 6, nothing);
  report = WrongFromThePinOn();
  report.pin = std::string(kMebibyte, 'p');
  ExpectRefused(report, 6, nothing);
}

TEST_F(Doses, AsManyCharactersAs16BitsCountAreNoOverflow) {
  std::string vaccine;
  for (int letter = 0; letter < 32767; ++letter) vaccine += "É";
  AddVaccine(vaccine, "3");
  Report report;
  report.vaccine = vaccine;
  Run(report);
  EXPECT_TRUE(Query("SELECT vaccine FROM dosesadm") == (Rows{{vaccine}}));
  report.vaccine = vaccine + "É";
  ExpectRefused(report, 6, [](const std::string&) { return Lines{}; });
}

TEST_F(Doses, AVeryLongSectorIsRefused) {
  const std::string message = "The given sector is not a valid doses administered sector";
  Report report = WrongFromTheSectorOn();
  report.sector = std::string(kMebibyte, '1');
  ExpectRefused(report, 20085, message, SectorRefused(message), {});
}

TEST_F(Doses, AVeryLongDoseIsANumberLikeAnyOther) {
  Report report = WrongFromTheDoseOn();
  report.dose = std::string(kMebibyte, 'x');
  ExpectRefused(report, 13, DoseRefused);
  report.dose = std::string(kMebibyte, '1');
  ExpectRefused(report, 6, DoseRefused);
  report = {};
  report.dose = std::string(kMebibyte, '0') + "2";
  Run(report);
  EXPECT_EQ(Query("SELECT dose, rowtot FROM dosesadm"), (Rows{{"2", "91"}}));
}

}  // namespace
}  // namespace lotrix::test

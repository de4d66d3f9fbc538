#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "src/validation/validation.h"
#include "tests/support/fixture.h"

namespace lotrix::test {
namespace {

using Texts = std::vector<std::string>;
using Records = std::vector<Value>;

constexpr char kTooSmall[] =
    "The dose in series number given is less than the minimum allowed for all vaccines";
constexpr char kTooLarge[] =
    "The dose in series number given is greater than the maximum allowed for the vaccine";
constexpr char kNotAvailable[] = "Vaccine not available to private provider in LOTRIX";
constexpr char kReferenceError[] = "Error while verifying vaccine reference table in LOTRIX";
constexpr char kVaccineInactiveText[] =
    "The vaccine being used in the current operation is inactive in LOTRIX";

Value Count(std::int64_t count) { return count; }
constexpr std::int64_t kBeyondLong = std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1;

std::string StatusQuery(const std::string& vaccine) {
  return "SELECT count(*) FROM pvaccref WHERE ltrim(rtrim(vaccine)) == '" + vaccine +
         "' AND locactiv = .F.";
}

// The two routines that check a dose, and the query of each.
struct DoseRoutine {
  std::string name;
  void (*validate)(TraceLog& log, const std::string& dose, const std::string& vaccine,
                   Connection& connection);
  std::string head;
  std::string tail;

  [[nodiscard]] std::string Query(const std::string& vaccine) const {
    return head + vaccine + tail;
  }
};

const std::vector<DoseRoutine> kDoseRoutines = {
    {"ValidateDoseSeriesNumber", ValidateDoseSeriesNumber,
     "SELECT MAX( maxno) FROM vaccref WHERE ltrim(rtrim(vaccine)) == '", "' AND locactiv== 'Y'"},
    {"ValidateDoseSeriesNumberPvaccref", ValidateDoseSeriesNumberPvaccref,
     "SELECT MAX( maxno) FROM pvaccref WHERE ltrim(rtrim(vaccine)) == '", "' AND locactiv=.F."},
};

// The two that check a vaccine against a reference table.
struct TableRoutine {
  std::string name;
  void (*validate)(TraceLog& log, const std::string& vaccine, Connection& connection,
                   bool checkActive);
  std::string head;

  [[nodiscard]] std::string Query(const std::string& vaccine) const { return head + vaccine + "'"; }
};

const std::vector<TableRoutine> kTableRoutines = {
    {"ValidateAgainstVaccRefTable", ValidateAgainstVaccRefTable,
     "SELECT count(*) FROM vaccref WHERE ltrim(rtrim(vaccine)) == '"},
    {"ValidateAgainstpVaccRefTable", ValidateAgainstpVaccRefTable,
     "SELECT count(*) FROM pvaccref WHERE ltrim(rtrim(vaccine)) == '"},
};

class VaccineRoutines : public DatabaseTest {
 protected:
  // vaccine, maxno, locactiv as SQL; a row of vaccref is active with 'Y', one of
  // pvaccref with FALSE.
  void AddPublic(const std::string& values) {
    Execute("INSERT INTO vaccref (vaccine, maxno, locactiv) VALUES (" + values + ")");
  }
  void AddPrivate(const std::string& values) {
    Execute("INSERT INTO pvaccref (vaccine, maxno, locactiv) VALUES (" + values + ")");
  }
  // A row of either table.
  void AddActive(const std::string& vaccineAndMaxno) {
    AddPublic(vaccineAndMaxno + ", 'Y'");
    AddPrivate(vaccineAndMaxno + ", FALSE");
  }
  void AddInactive(const std::string& vaccineAndMaxno) {
    AddPublic(vaccineAndMaxno + ", 'N'");
    AddPrivate(vaccineAndMaxno + ", TRUE");
  }

  std::vector<std::vector<Row>> Tables() {
    return {Query("SELECT * FROM vaccref ORDER BY vaccine, maxno, locactiv"),
            Query("SELECT * FROM pvaccref ORDER BY vaccine, maxno, locactiv")};
  }

  void ExpectRefused(const std::function<void()>& call, std::int32_t code,
                     const std::string& description) {
    const auto before = Tables();
    ExpectError(Refusal(call), Coded(code), description);
    EXPECT_EQ(Tables(), before);
  }

  // An error of the run time, with its own number and no catalogue code.
  void ExpectRunTimeError(const std::function<void()>& call, std::int32_t number) {
    const Error error = Refusal(call);
    EXPECT_EQ(error.number(), number);
    EXPECT_EQ(error.source(), "LOTRIX DLL");
    EXPECT_FALSE(error.description().empty());
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

// --- ValidateVaccineActiveStatus -------------------------------------------

TEST_F(VaccineRoutines, VaccineWithARowThatIsNotLocallyActiveIsActive) {
  AddPrivate("'MMR', 2, FALSE");
  Connection& open = Watched();
  EXPECT_TRUE(ValidateVaccineActiveStatus(log(), "MMR", open));
  EXPECT_EQ(Statements(), Texts{StatusQuery("MMR")});
  EXPECT_EQ(Trace(), (Texts{"information Begin: ValidateVaccineActiveStatus()",
                            "information End: ValidateVaccineActiveStatus()"}));
}

TEST_F(VaccineRoutines, VaccineWithLocallyActiveRowsOnlyIsInactive) {
  AddPrivate("'MMR', 2, TRUE");
  AddPrivate("'MMR', 2, TRUE");
  Connection& open = connection();
  EXPECT_FALSE(ValidateVaccineActiveStatus(log(), "MMR", open));
  EXPECT_EQ(Trace(), (Texts{"information Begin: ValidateVaccineActiveStatus()",
                            "information End: ValidateVaccineActiveStatus()"}));
}

TEST_F(VaccineRoutines, OneRowThatIsNotLocallyActiveIsEnough) {
  AddPrivate("'MMR', 2, TRUE");
  AddPrivate("'MMR', 2, FALSE");
  AddPrivate("'VAR', 2, FALSE");
  AddPrivate("'VAR', 2, FALSE");
  EXPECT_TRUE(ValidateVaccineActiveStatus(log(), "MMR", connection()));
  EXPECT_TRUE(ValidateVaccineActiveStatus(log(), "VAR", connection()));
}

TEST_F(VaccineRoutines, UnknownVaccineIsInactive) {
  EXPECT_FALSE(ValidateVaccineActiveStatus(log(), "MMR", connection()));
}

TEST_F(VaccineRoutines, RowWithoutALocalStatusMakesNoVaccineActive) {
  AddPrivate("'MMR', 2, NULL");
  EXPECT_FALSE(ValidateVaccineActiveStatus(log(), "MMR", connection()));
}

TEST_F(VaccineRoutines, ActiveStatusIsNotThatOfThePublicTable) {
  AddPublic("'MMR', 2, 'Y'");
  EXPECT_FALSE(ValidateVaccineActiveStatus(log(), "MMR", connection()));
}

TEST_F(VaccineRoutines, ActiveStatusComparesTheVaccineAsGivenWithTheTrimmedColumn) {
  AddPrivate("'  MMR ', 2, FALSE");
  Connection& open = Watched();
  EXPECT_TRUE(ValidateVaccineActiveStatus(log(), "MMR", open));
  EXPECT_TRUE(ValidateVaccineActiveStatus(log(), "MMR ", open));
  EXPECT_FALSE(ValidateVaccineActiveStatus(log(), " MMR", open));
  EXPECT_FALSE(ValidateVaccineActiveStatus(log(), "mmr", open));
  EXPECT_FALSE(ValidateVaccineActiveStatus(log(), "MM", open));
  EXPECT_FALSE(ValidateVaccineActiveStatus(log(), "MMRV", open));
  EXPECT_FALSE(ValidateVaccineActiveStatus(log(), "", open));
  EXPECT_EQ(Statements(),
            (Texts{StatusQuery("MMR"), StatusQuery("MMR "), StatusQuery(" MMR"), StatusQuery("mmr"),
                   StatusQuery("MM"), StatusQuery("MMRV"), StatusQuery("")}));
}

TEST_F(VaccineRoutines, ActiveStatusCounts) {
  Records records;
  Connection& open = Answering(records);
  records = {Count(1)};
  EXPECT_TRUE(ValidateVaccineActiveStatus(log(), "MMR", open));
  records = {Count(2147483647)};
  EXPECT_TRUE(ValidateVaccineActiveStatus(log(), "MMR", open));
  records = {Count(0)};
  EXPECT_FALSE(ValidateVaccineActiveStatus(log(), "MMR", open));
  records = {Count(-1)};
  EXPECT_FALSE(ValidateVaccineActiveStatus(log(), "MMR", open));
}

TEST_F(VaccineRoutines, ActiveStatusReadsTheFirstRecordWhateverTheirNumber) {
  Records records;
  Connection& open = Answering(records);
  records = {Count(1), Count(0)};
  EXPECT_TRUE(ValidateVaccineActiveStatus(log(), "MMR", open));
  records = {Count(0), Count(1)};
  EXPECT_FALSE(ValidateVaccineActiveStatus(log(), "MMR", open));
}

TEST_F(VaccineRoutines, ActiveStatusCountIsA32BitNumber) {
  Records records;
  Connection& open = Answering(records);
  const auto validate = [&] { static_cast<void>(ValidateVaccineActiveStatus(log(), "MMR", open)); };
  records = {Count(kBeyondLong)};
  ExpectRunTimeError(validate, 6);
  records = {Null{}};
  ExpectRunTimeError(validate, 94);
}

TEST_F(VaccineRoutines, ActiveStatusPassesAnEngineErrorOn) {
  Connection& open = connection();
  Execute("DROP TABLE pvaccref");
  const Error error =
      Refusal([&] { static_cast<void>(ValidateVaccineActiveStatus(log(), "MMR", open)); });
  EXPECT_EQ(error.number(), Numbered(EngineError::kNoSuchTable));
  EXPECT_EQ(error.source(), "LOTRIX DLL");
  EXPECT_EQ(Trace(),
            (Texts{"information Begin: ValidateVaccineActiveStatus()",
                   "error Problem: In ValidateVaccineActiveStatus() " + error.description()}));
}

// --- ValidateDoseSeriesNumber, ValidateDoseSeriesNumberPvaccref ------------

TEST_F(VaccineRoutines, DoseUpToTheLargestOfTheVaccinePasses) {
  AddActive("'MMR', 3");
  Connection& open = Watched();
  for (const DoseRoutine& routine : kDoseRoutines) {
    SCOPED_TRACE(routine.name);
    for (const std::string dose : {"1", "2", "3"}) {
      SCOPED_TRACE(dose);
      ForgetTrace();
      EXPECT_NO_THROW(routine.validate(log(), dose, "MMR", open));
      EXPECT_EQ(Statements(), Texts{routine.Query("MMR")});
      EXPECT_EQ(Trace(), (Texts{"information Begin: " + routine.name + "()",
                                "information End: " + routine.name + "()"}));
    }
  }
}

TEST_F(VaccineRoutines, DoseBeyondTheLargestOfTheVaccineIsRefused) {
  AddActive("'MMR', 3");
  Connection& open = Watched();
  for (const DoseRoutine& routine : kDoseRoutines) {
    SCOPED_TRACE(routine.name);
    ForgetTrace();
    ExpectRefused([&] { routine.validate(log(), "4", "MMR", open); }, 20088, kTooLarge);
    EXPECT_EQ(Statements(), Texts{routine.Query("MMR")});
    EXPECT_EQ(Trace(), (Texts{"information Begin: " + routine.name + "()",
                              "error Problem: In " + routine.name +
                                  "() The dose in series number given is greater than the maximum "
                                  "allowed for the vaccine"}));
  }
}

TEST_F(VaccineRoutines, LargestNumberThatIsADoseIsRefusedAsTooLarge) {
  AddActive("'MMR', 3");
  Connection& open = connection();
  for (const DoseRoutine& routine : kDoseRoutines) {
    SCOPED_TRACE(routine.name);
    ExpectRefused([&] { routine.validate(log(), "2147483647", "MMR", open); }, 20088, kTooLarge);
  }
}

TEST_F(VaccineRoutines, DoseBelowOneIsRefusedWithoutAQuery) {
  AddActive("'MMR', 3");
  Connection& open = Watched();
  for (const DoseRoutine& routine : kDoseRoutines) {
    SCOPED_TRACE(routine.name);
    for (const std::string dose : {"0", "-1", "-2147483648", "0.5", "(3)", "-0"}) {
      SCOPED_TRACE(dose);
      ForgetTrace();
      ExpectRefused([&] { routine.validate(log(), dose, "MMR", open); }, 20087, kTooSmall);
      EXPECT_EQ(Trace(), (Texts{"information Begin: " + routine.name + "()",
                                "error Problem: In " + routine.name +
                                    "() The dose in series number given is less than the minimum "
                                    "allowed for all vaccines"}));
    }
  }
  EXPECT_EQ(Statements(), Texts{});
}

TEST_F(VaccineRoutines, DoseThatIsNoNumberIsATypeMismatch) {
  AddActive("'MMR', 3");
  Connection& open = Watched();
  for (const DoseRoutine& routine : kDoseRoutines) {
    SCOPED_TRACE(routine.name);
    for (const std::string dose : {"", " ", "abc", "1 2", "1x", "True"}) {
      SCOPED_TRACE(dose);
      ForgetTrace();
      const Error error = Refusal([&] { routine.validate(log(), dose, "MMR", open); });
      EXPECT_EQ(error.number(), 13);
      EXPECT_EQ(error.source(), "LOTRIX DLL");
      EXPECT_EQ(Trace(),
                (Texts{"information Begin: " + routine.name + "()",
                       "error Problem: In " + routine.name + "() " + error.description()}));
    }
  }
  EXPECT_EQ(Statements(), Texts{});
}

TEST_F(VaccineRoutines, DoseBeyondA32BitNumberOverflows) {
  AddActive("'MMR', 3");
  Connection& open = Watched();
  for (const DoseRoutine& routine : kDoseRoutines) {
    SCOPED_TRACE(routine.name);
    for (const std::string dose : {"2147483648", "-2147483649", "1e10"}) {
      SCOPED_TRACE(dose);
      ExpectRunTimeError([&] { routine.validate(log(), dose, "MMR", open); }, 6);
    }
  }
  EXPECT_EQ(Statements(), Texts{});
}

TEST_F(VaccineRoutines, DoseIsConvertedLikeAnyNumber) {
  AddActive("'MMR', 3");
  Connection& open = connection();
  for (const DoseRoutine& routine : kDoseRoutines) {
    SCOPED_TRACE(routine.name);
    for (const std::string dose : {" 3 ", "+3", "3.4", "2.5", "&H3", "3e0", "$3", "03"}) {
      SCOPED_TRACE(dose);
      EXPECT_NO_THROW(routine.validate(log(), dose, "MMR", open));
    }
    for (const std::string dose : {" 4 ", "3.5", "&H4", "4e0", "0,4"}) {
      SCOPED_TRACE(dose);
      ExpectRefused([&] { routine.validate(log(), dose, "MMR", open); }, 20088, kTooLarge);
    }
  }
}

TEST_F(VaccineRoutines, UnknownVaccineFailsEveryDose) {
  AddActive("'MMR', 3");
  Connection& open = connection();
  for (const DoseRoutine& routine : kDoseRoutines) {
    SCOPED_TRACE(routine.name);
    ExpectRefused([&] { routine.validate(log(), "1", "VAR", open); }, 20088, kTooLarge);
    ExpectRefused([&] { routine.validate(log(), "0", "VAR", open); }, 20087, kTooSmall);
  }
}

TEST_F(VaccineRoutines, InactiveVaccineFailsEveryDose) {
  AddInactive("'MMR', 3");
  Connection& open = connection();
  for (const DoseRoutine& routine : kDoseRoutines) {
    SCOPED_TRACE(routine.name);
    ExpectRefused([&] { routine.validate(log(), "1", "MMR", open); }, 20088, kTooLarge);
  }
}

TEST_F(VaccineRoutines, LargestDoseIsThatOfTheActiveRows) {
  AddActive("'MMR', 2");
  AddActive("'MMR', 3");
  AddActive("'MMR', 1");
  AddInactive("'MMR', 9");
  AddActive("'VAR', 8");
  Connection& open = connection();
  for (const DoseRoutine& routine : kDoseRoutines) {
    SCOPED_TRACE(routine.name);
    EXPECT_NO_THROW(routine.validate(log(), "3", "MMR", open));
    ExpectRefused([&] { routine.validate(log(), "4", "MMR", open); }, 20088, kTooLarge);
  }
}

TEST_F(VaccineRoutines, RowWithoutALargestDoseAllowsNone) {
  AddActive("'MMR', NULL");
  Connection& open = connection();
  for (const DoseRoutine& routine : kDoseRoutines) {
    SCOPED_TRACE(routine.name);
    ExpectRefused([&] { routine.validate(log(), "1", "MMR", open); }, 20088, kTooLarge);
  }
}

TEST_F(VaccineRoutines, EachDoseRoutineReadsItsOwnTable) {
  AddPublic("'MMR', 2, 'Y'");
  AddPrivate("'MMR', 5, FALSE");
  Connection& open = connection();
  EXPECT_NO_THROW(ValidateDoseSeriesNumber(log(), "2", "MMR", open));
  ExpectRefused([&] { ValidateDoseSeriesNumber(log(), "5", "MMR", open); }, 20088, kTooLarge);
  EXPECT_NO_THROW(ValidateDoseSeriesNumberPvaccref(log(), "5", "MMR", open));
  ExpectRefused([&] { ValidateDoseSeriesNumberPvaccref(log(), "6", "MMR", open); }, 20088,
                kTooLarge);
}

TEST_F(VaccineRoutines, PublicRowIsActiveWithACapitalYOnly) {
  AddPublic("'LOW', 3, 'y'");
  AddPublic("'NONE', 3, NULL");
  AddPublic("'EMPTY', 3, ''");
  AddPublic("'YES', 3, 'YES'");
  AddPublic("'PADDED', 3, 'Y '");
  Connection& open = connection();
  for (const std::string vaccine : {"LOW", "NONE", "EMPTY", "YES"}) {
    SCOPED_TRACE(vaccine);
    ExpectRefused([&] { ValidateDoseSeriesNumber(log(), "1", vaccine, open); }, 20088, kTooLarge);
  }
  EXPECT_NO_THROW(ValidateDoseSeriesNumber(log(), "3", "PADDED", open));
}

TEST_F(VaccineRoutines, PrivateRowWithoutALocalStatusAllowsNoDose) {
  AddPrivate("'MMR', 3, NULL");
  ExpectRefused([&] { ValidateDoseSeriesNumberPvaccref(log(), "1", "MMR", connection()); }, 20088,
                kTooLarge);
}

TEST_F(VaccineRoutines, DoseRoutinesCompareTheVaccineAsGivenWithTheTrimmedColumn) {
  AddActive("'  MMR ', 3");
  Connection& open = Watched();
  for (const DoseRoutine& routine : kDoseRoutines) {
    SCOPED_TRACE(routine.name);
    EXPECT_NO_THROW(routine.validate(log(), "3", "MMR", open));
    EXPECT_NO_THROW(routine.validate(log(), "3", "MMR  ", open));
    EXPECT_EQ(Statements(), (Texts{routine.Query("MMR"), routine.Query("MMR  ")}));
    for (const std::string other : {" MMR", "mmr", "MM", "MMRV", ""}) {
      SCOPED_TRACE(other);
      ExpectRefused([&] { routine.validate(log(), "3", other, open); }, 20088, kTooLarge);
      EXPECT_EQ(Statements(), Texts{routine.Query(other)});
    }
  }
}

TEST_F(VaccineRoutines, LargestDoseAsTheEngineGivesIt) {
  Records records;
  Connection& open = Answering(records);
  for (const DoseRoutine& routine : kDoseRoutines) {
    SCOPED_TRACE(routine.name);
    const auto validate = [&] { routine.validate(log(), "1", "MMR", open); };
    records = {Count(1)};
    EXPECT_NO_THROW(validate());
    records = {Null{}};
    ExpectRefused(validate, 20088, kTooLarge);
    records = {Count(0)};
    ExpectRefused(validate, 20088, kTooLarge);
    records = {Count(-5)};
    ExpectRefused(validate, 20088, kTooLarge);
    records = {Count(2147483647)};
    EXPECT_NO_THROW(validate());
    records = {Count(kBeyondLong)};
    ExpectRunTimeError(validate, 6);
  }
}

TEST_F(VaccineRoutines, DoseRoutinesRefuseAVaccineThatWouldLeaveItsQuotes) {
  AddActive("'MMR', 3");
  Connection& open = connection();
  for (const DoseRoutine& routine : kDoseRoutines) {
    SCOPED_TRACE(routine.name);
    ExpectRunTimeError([&] { routine.validate(log(), "1", "MMR' OR '1'='1", open); },
                       Numbered(EngineError::kStatementRefused));
  }
}

// --- ValidateAgainstVaccRefTable, ValidateAgainstpVaccRefTable -------------

TEST_F(VaccineRoutines, VaccineOfTheTablePassesWithTwoEndLinesAndNoBeginLine) {
  AddActive("'MMR', 3");
  Connection& open = Watched();
  for (const TableRoutine& routine : kTableRoutines) {
    SCOPED_TRACE(routine.name);
    ForgetTrace();
    EXPECT_NO_THROW(routine.validate(log(), "MMR", open, false));
    EXPECT_EQ(Statements(), Texts{routine.Query("MMR")});
    EXPECT_EQ(Trace(), (Texts{"information End: " + routine.name + "()",
                              "information End: " + routine.name + "()"}));
  }
}

TEST_F(VaccineRoutines, VaccineThatIsNotInTheTableIsRefused) {
  AddActive("'MMR', 3");
  Connection& open = Watched();
  for (const TableRoutine& routine : kTableRoutines) {
    SCOPED_TRACE(routine.name);
    for (const bool checkActive : {false, true}) {
      ForgetTrace();
      ExpectRefused([&] { routine.validate(log(), "VAR", open, checkActive); }, 20051,
                    kNotAvailable);
      EXPECT_EQ(Statements(), Texts{routine.Query("VAR")});
      EXPECT_EQ(Trace(), (Texts{"information End: " + routine.name + "()",
                                "error Problem: In " + routine.name +
                                    "() Vaccine not available to private provider in LOTRIX"}));
    }
  }
}

TEST_F(VaccineRoutines, EachTableRoutineReadsItsOwnTable) {
  AddPublic("'PUB', 3, 'Y'");
  AddPrivate("'PRIV', 3, FALSE");
  Connection& open = connection();
  EXPECT_NO_THROW(ValidateAgainstVaccRefTable(log(), "PUB", open, false));
  EXPECT_NO_THROW(ValidateAgainstpVaccRefTable(log(), "PRIV", open, false));
  ExpectRefused([&] { ValidateAgainstVaccRefTable(log(), "PRIV", open, true); }, 20051,
                kNotAvailable);
  ExpectRefused([&] { ValidateAgainstpVaccRefTable(log(), "PUB", open, true); }, 20051,
                kNotAvailable);
}

TEST_F(VaccineRoutines, VaccineThatIsInTheTableTwicePasses) {
  AddActive("'MMR', 3");
  AddActive("'MMR ', 2");
  Connection& open = connection();
  for (const TableRoutine& routine : kTableRoutines) {
    SCOPED_TRACE(routine.name);
    EXPECT_NO_THROW(routine.validate(log(), "MMR", open, false));
    EXPECT_NO_THROW(routine.validate(log(), "MMR", open, true));
  }
}

TEST_F(VaccineRoutines, ActiveVaccinePassesWhenThatIsAskedFor) {
  AddActive("'MMR', 3");
  Connection& open = Watched();
  for (const TableRoutine& routine : kTableRoutines) {
    SCOPED_TRACE(routine.name);
    ForgetTrace();
    EXPECT_NO_THROW(routine.validate(log(), "MMR", open, true));
    EXPECT_EQ(Statements(), (Texts{routine.Query("MMR"), StatusQuery("MMR")}));
    EXPECT_EQ(Trace(), (Texts{"information End: " + routine.name + "()",
                              "information Begin: ValidateVaccineActiveStatus()",
                              "information End: ValidateVaccineActiveStatus()",
                              "information End: " + routine.name + "()"}));
  }
}

TEST_F(VaccineRoutines, InactiveVaccineIsRefusedWhenThatIsAskedFor) {
  AddInactive("'MMR', 3");
  Connection& open = Watched();
  for (const TableRoutine& routine : kTableRoutines) {
    SCOPED_TRACE(routine.name);
    ForgetTrace();
    ExpectRefused([&] { routine.validate(log(), "MMR", open, true); }, 20086, kVaccineInactiveText);
    EXPECT_EQ(Statements(), (Texts{routine.Query("MMR"), StatusQuery("MMR")}));
    EXPECT_EQ(Trace(), (Texts{"information End: " + routine.name + "()",
                              "information Begin: ValidateVaccineActiveStatus()",
                              "information End: ValidateVaccineActiveStatus()",
                              "error Problem: In " + routine.name +
                                  "() The vaccine being used in the current operation is inactive "
                                  "in LOTRIX"}));
  }
}

TEST_F(VaccineRoutines, InactiveVaccinePassesWhenThatIsNotAskedFor) {
  AddInactive("'MMR', 3");
  Connection& open = connection();
  for (const TableRoutine& routine : kTableRoutines) {
    SCOPED_TRACE(routine.name);
    EXPECT_NO_THROW(routine.validate(log(), "MMR", open, false));
  }
}

TEST_F(VaccineRoutines, ActiveIsAskedOfThePrivateTableForAPublicVaccineToo) {
  AddPublic("'OFF', 3, 'N'");
  AddPrivate("'OFF', 3, FALSE");
  AddPublic("'ON', 3, 'Y'");
  AddPublic("'LOCAL', 3, 'Y'");
  AddPrivate("'LOCAL', 3, TRUE");
  Connection& open = connection();
  EXPECT_NO_THROW(ValidateAgainstVaccRefTable(log(), "OFF", open, true));
  ExpectRefused([&] { ValidateAgainstVaccRefTable(log(), "ON", open, true); }, 20086,
                kVaccineInactiveText);
  ExpectRefused([&] { ValidateAgainstVaccRefTable(log(), "LOCAL", open, true); }, 20086,
                kVaccineInactiveText);
}

TEST_F(VaccineRoutines, TableRoutinesCompareTheVaccineAsGivenWithTheTrimmedColumn) {
  AddActive("'  MMR ', 3");
  Connection& open = Watched();
  for (const TableRoutine& routine : kTableRoutines) {
    SCOPED_TRACE(routine.name);
    EXPECT_NO_THROW(routine.validate(log(), "MMR", open, true));
    EXPECT_NO_THROW(routine.validate(log(), "MMR  ", open, true));
    EXPECT_EQ(Statements(), (Texts{routine.Query("MMR"), StatusQuery("MMR"), routine.Query("MMR  "),
                                   StatusQuery("MMR  ")}));
    for (const std::string other : {" MMR", "mmr", "MM", "MMRV", ""}) {
      SCOPED_TRACE(other);
      ExpectRefused([&] { routine.validate(log(), other, open, false); }, 20051, kNotAvailable);
      EXPECT_EQ(Statements(), Texts{routine.Query(other)});
    }
  }
}

TEST_F(VaccineRoutines, TableRoutineCounts) {
  Records records;
  Connection& open = Answering(records);
  for (const TableRoutine& routine : kTableRoutines) {
    SCOPED_TRACE(routine.name);
    const auto validate = [&] { routine.validate(log(), "MMR", open, false); };
    records = {Count(1)};
    EXPECT_NO_THROW(validate());
    records = {Count(2)};
    EXPECT_NO_THROW(validate());
    records = {Count(0)};
    ExpectRefused(validate, 20051, kNotAvailable);
    records = {Count(-1)};
    ForgetTrace();
    ExpectRefused(validate, 20016, kReferenceError);
    EXPECT_EQ(Trace(), (Texts{"information End: " + routine.name + "()",
                              "error Problem: In " + routine.name +
                                  "() Error while verifying vaccine reference table in LOTRIX"}));
  }
}

TEST_F(VaccineRoutines, TableRoutinesReadTheFirstRecordWhateverTheirNumber) {
  Records records;
  Connection& open = Answering(records);
  for (const TableRoutine& routine : kTableRoutines) {
    SCOPED_TRACE(routine.name);
    const auto validate = [&] { routine.validate(log(), "MMR", open, false); };
    records = {Count(1), Count(0)};
    EXPECT_NO_THROW(validate());
    records = {Count(0), Count(1)};
    ExpectRefused(validate, 20051, kNotAvailable);
    records = {Count(-1), Count(1)};
    ExpectRefused(validate, 20016, kReferenceError);
  }
}

TEST_F(VaccineRoutines, TableRoutinesLogAnErrorOfTheStatusTwice) {
  AddPublic("'MMR', 3, 'Y'");
  Execute("DROP TABLE pvaccref");
  Connection& open = connection();
  const Error error = Refusal([&] { ValidateAgainstVaccRefTable(log(), "MMR", open, true); });
  EXPECT_EQ(error.number(), Numbered(EngineError::kNoSuchTable));
  EXPECT_EQ(error.source(), "LOTRIX DLL");
  EXPECT_EQ(Trace(),
            (Texts{"information End: ValidateAgainstVaccRefTable()",
                   "information Begin: ValidateVaccineActiveStatus()",
                   "error Problem: In ValidateVaccineActiveStatus() " + error.description(),
                   "error Problem: In ValidateAgainstVaccRefTable() " + error.description()}));
}

TEST_F(VaccineRoutines, TableRoutinesRefuseAVaccineThatWouldLeaveItsQuotes) {
  AddActive("'MMR', 3");
  Connection& open = connection();
  for (const TableRoutine& routine : kTableRoutines) {
    SCOPED_TRACE(routine.name);
    ExpectRunTimeError([&] { routine.validate(log(), "x' OR '1'='1", open, false); },
                       Numbered(EngineError::kStatementRefused));
  }
}

}  // namespace
}  // namespace lotrix::test

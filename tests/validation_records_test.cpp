#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "src/validation/validation.h"
#include "tests/support/expected_statements.h"
#include "tests/support/extremes.h"
#include "tests/support/fixture.h"

namespace lotrix::test {
namespace {

using Records = std::vector<Value>;

constexpr char kEnrollmentError[] = "Error while reading enrollment data for current provider";
constexpr char kEnrollmentTwice[] =
    "There are duplicate enrollment data records for the current provider";
constexpr char kPhysicianError[] = "Error while reading physicn data for current physician";
constexpr char kPhysicianTwice[] =
    "There are duplicate physicn data records for the current provider";

std::string PhysicianQuery(const std::string& pin, const std::string& lastName,
                           const std::string& firstName) {
  return "SELECT count(*) FROM physicn WHERE pin = '" + pin + "' AND lastname = '" + lastName +
         "' AND firstname = '" + firstName + "' ";
}

class RecordRoutines : public DatabaseTest {
 protected:
  void AddEnrollment(const std::string& pin) {
    Execute("INSERT INTO enroll (pin, ensource, allkids1) VALUES (" + pin + ", 'A', 7)");
  }
  // pin, lastname, firstname as SQL.
  void AddPhysician(const std::string& values) {
    Execute("INSERT INTO physicn (pin, lastname, firstname) VALUES (" + values + ")");
  }

  std::vector<std::vector<Row>> Tables() {
    return {Query("SELECT * FROM enroll"), Query("SELECT * FROM physicn")};
  }

  // The open connection; statements are kept.
  Connection& Watched() {
    Connection& open = connection();
    Watch(open);
    return open;
  }
  // The open connection, on which every query is answered with `records`.
  Connection& Answering(const Records& records) {
    Connection& open = connection();
    Watch(open, [&records](const std::string&) -> std::optional<Records> { return records; });
    return open;
  }

  // Refused by that routine, which says so in the trace; the tables stay.
  void ExpectRefused(const std::function<void()>& call, const std::string& routine,
                     std::int32_t number, const std::string& description) {
    const auto before = Tables();
    ForgetTrace();
    ExpectError(Refusal(call), number, description);
    EXPECT_EQ(Trace(), (Lines{"information Begin: " + routine + "()",
                              "error Problem: In " + routine + "() " + description}));
    EXPECT_EQ(Tables(), before);
  }
  // The same with a description that is the engine's own.
  void ExpectEngineRefuses(const std::function<void()>& call, const std::string& routine,
                           EngineError number) {
    const auto before = Tables();
    ForgetTrace();
    const Error error = Refusal(call);
    EXPECT_EQ(error.number(), Numbered(number));
    EXPECT_EQ(error.source(), "LOTRIX DLL");
    EXPECT_FALSE(error.description().empty());
    EXPECT_EQ(Trace(), (Lines{"information Begin: " + routine + "()",
                              "error Problem: In " + routine + "() " + error.description()}));
    EXPECT_EQ(Tables(), before);
  }
};

// --- ValidateEnrollmentRecord ----------------------------------------------

TEST_F(RecordRoutines, WithoutAnEnrollmentRowTheAnswerIsFalse) {
  AddEnrollment("'P2'");
  AddEnrollment("NULL");
  Connection& open = Watched();
  EXPECT_FALSE(ValidateEnrollmentRecord(log(), "P1", open));
  EXPECT_EQ(Statements(), Lines{"SELECT count(*) FROM enroll WHERE ltrim(rtrim(pin)) = 'P1'"});
  EXPECT_EQ(Trace(), (Lines{"information Begin: ValidateEnrollmentRecord()",
                            "information End: ValidateEnrollmentRecord()"}));
}

TEST_F(RecordRoutines, WithOneEnrollmentRowTheAnswerIsTrue) {
  AddEnrollment("'P1'");
  AddEnrollment("'P2'");
  const auto before = Tables();
  Connection& open = Watched();
  EXPECT_TRUE(ValidateEnrollmentRecord(log(), "P1", open));
  EXPECT_EQ(Statements(), Lines{EnrollmentCount("P1")});
  EXPECT_EQ(Trace(), (Lines{"information Begin: ValidateEnrollmentRecord()",
                            "information End: ValidateEnrollmentRecord()"}));
  EXPECT_EQ(Tables(), before);
}

TEST_F(RecordRoutines, MoreThanOneEnrollmentRowIsRefused) {
  AddEnrollment("'P1'");
  AddEnrollment("'  P1 '");
  Connection& open = Watched();
  ExpectRefused([&] { static_cast<void>(ValidateEnrollmentRecord(log(), "P1", open)); },
                "ValidateEnrollmentRecord", Coded(20090), kEnrollmentTwice);
  EXPECT_EQ(Statements(), Lines{EnrollmentCount("P1")});
  AddEnrollment("'P1'");
  ExpectRefused([&] { static_cast<void>(ValidateEnrollmentRecord(log(), "P1", open)); },
                "ValidateEnrollmentRecord", Coded(20090), kEnrollmentTwice);
}

TEST_F(RecordRoutines, AStoredEnrollmentPinIsTrimmedAndTheGivenOneIsNot) {
  AddEnrollment("'  P1  '");
  Connection& open = Watched();
  EXPECT_TRUE(ValidateEnrollmentRecord(log(), "P1", open));
  EXPECT_TRUE(ValidateEnrollmentRecord(log(), "P1  ", open));
  EXPECT_FALSE(ValidateEnrollmentRecord(log(), " P1", open));
  EXPECT_FALSE(ValidateEnrollmentRecord(log(), "p1", open));
  EXPECT_FALSE(ValidateEnrollmentRecord(log(), "", open));
  EXPECT_EQ(Statements(),
            (Lines{EnrollmentCount("P1"), EnrollmentCount("P1  "), EnrollmentCount(" P1"),
                   EnrollmentCount("p1"), EnrollmentCount("")}));
}

TEST_F(RecordRoutines, AnEnrollmentCountOfNoneOrSeveralRecordsIsRefused) {
  for (const Records& records : {Records{}, Records{std::int64_t{1}, std::int64_t{1}},
                                 Records{std::int64_t{0}, std::int64_t{0}, std::int64_t{0}}}) {
    SCOPED_TRACE(records.size());
    Connection& open = Answering(records);
    ExpectRefused([&] { static_cast<void>(ValidateEnrollmentRecord(log(), "P1", open)); },
                  "ValidateEnrollmentRecord", Coded(20089), kEnrollmentError);
  }
}

TEST_F(RecordRoutines, AnEnrollmentCountBelowZeroIsRefused) {
  for (const std::int64_t count : {std::int64_t{-1}, std::int64_t{-2147483648}}) {
    SCOPED_TRACE(count);
    const Records records{count};
    Connection& open = Answering(records);
    ExpectRefused([&] { static_cast<void>(ValidateEnrollmentRecord(log(), "P1", open)); },
                  "ValidateEnrollmentRecord", Coded(20089), kEnrollmentError);
  }
}

TEST_F(RecordRoutines, AnEnrollmentPinThatWouldLeaveItsPlaceIsRefusedAsSyntax) {
  AddEnrollment("'P1'");
  Connection& open = Watched();
  for (const std::string& pin : {std::string("'"), std::string("P1'"), std::string("P''1"),
                                 std::string("P1' OR '1'='1"), std::string("P1\0", 3)}) {
    SCOPED_TRACE(pin);
    ExpectEngineRefuses([&] { static_cast<void>(ValidateEnrollmentRecord(log(), pin, open)); },
                        "ValidateEnrollmentRecord", EngineError::kStatementRefused);
  }
  EXPECT_TRUE(ValidateEnrollmentRecord(log(), "P1", open));
}

TEST_F(RecordRoutines, WithoutTheEnrollmentTableTheEnginesErrorPasses) {
  Execute("DROP TABLE enroll");
  Connection& open = Watched();
  ForgetTrace();
  const Error error =
      Refusal([&] { static_cast<void>(ValidateEnrollmentRecord(log(), "P1", open)); });
  EXPECT_EQ(error.number(), Numbered(EngineError::kNoSuchTable));
  EXPECT_EQ(error.source(), "LOTRIX DLL");
  EXPECT_EQ(Trace(),
            (Lines{"information Begin: ValidateEnrollmentRecord()",
                   "error Problem: In ValidateEnrollmentRecord() " + error.description()}));
}

TEST_F(RecordRoutines, AVeryLongEnrollmentPinIsLookedFor) {
  const std::string pin(kMebibyte, 'P');
  AddEnrollment("'P'");
  Connection& open = Watched();
  EXPECT_FALSE(ValidateEnrollmentRecord(log(), pin, open));
  EXPECT_EQ(Statements(), Lines{EnrollmentCount(pin)});
}

TEST_F(RecordRoutines, TheEnrollmentPinOfTheCallerStays) {
  const std::string pin = " p1 ";
  EXPECT_FALSE(ValidateEnrollmentRecord(log(), pin, connection()));
  EXPECT_EQ(pin, " p1 ");
}

// --- ValidatePhysicnRecord -------------------------------------------------

TEST_F(RecordRoutines, WithoutThePhysicianTheAnswerIsFalse) {
  AddPhysician("'P2', 'SMITH', 'ANN'");
  AddPhysician("'P1', 'SMITHE', 'ANN'");
  AddPhysician("'P1', 'SMITH', 'ANNE'");
  AddPhysician("NULL, NULL, NULL");
  Connection& open = Watched();
  EXPECT_FALSE(ValidatePhysicnRecord(log(), "P1", "SMITH", "ANN", open));
  EXPECT_EQ(Statements(), Lines{"SELECT count(*) FROM physicn WHERE pin = 'P1' AND lastname = "
                                "'SMITH' AND firstname = 'ANN' "});
  EXPECT_EQ(Trace(), (Lines{"information Begin: ValidatePhysicnRecord()",
                            "information End: ValidatePhysicnRecord()"}));
}

TEST_F(RecordRoutines, WithOnePhysicianTheAnswerIsTrue) {
  AddPhysician("'P1', 'SMITH', 'ANN'");
  AddPhysician("'P2', 'SMITH', 'ANN'");
  AddPhysician("'P1', 'SMITH', 'BOB'");
  AddPhysician("'P1', 'JONES', 'ANN'");
  const auto before = Tables();
  Connection& open = Watched();
  EXPECT_TRUE(ValidatePhysicnRecord(log(), "P1", "SMITH", "ANN", open));
  EXPECT_EQ(Statements(), Lines{PhysicianQuery("P1", "SMITH", "ANN")});
  EXPECT_EQ(Trace(), (Lines{"information Begin: ValidatePhysicnRecord()",
                            "information End: ValidatePhysicnRecord()"}));
  EXPECT_EQ(Tables(), before);
}

TEST_F(RecordRoutines, MoreThanOnePhysicianIsRefused) {
  AddPhysician("'P1', 'SMITH', 'ANN'");
  AddPhysician("'P1', 'SMITH ', 'ANN  '");
  Connection& open = Watched();
  ExpectRefused(
      [&] { static_cast<void>(ValidatePhysicnRecord(log(), "P1", "SMITH", "ANN", open)); },
      "ValidatePhysicnRecord", Coded(20097), kPhysicianTwice);
  EXPECT_EQ(Statements(), Lines{PhysicianQuery("P1", "SMITH", "ANN")});
  AddPhysician("'P1', 'SMITH', 'ANN'");
  ExpectRefused(
      [&] { static_cast<void>(ValidatePhysicnRecord(log(), "P1", "SMITH", "ANN", open)); },
      "ValidatePhysicnRecord", Coded(20097), kPhysicianTwice);
}

// Trailing blanks count in no comparison; leading ones do, as nothing is trimmed.
TEST_F(RecordRoutines, APhysiciansColumnsAreComparedUntrimmed) {
  AddPhysician("' P1', 'SMITH', 'ANN'");
  AddPhysician("'P2', ' SMITH', 'ANN'");
  AddPhysician("'P3', 'SMITH', ' ANN'");
  Connection& open = Watched();
  EXPECT_FALSE(ValidatePhysicnRecord(log(), "P1", "SMITH", "ANN", open));
  EXPECT_FALSE(ValidatePhysicnRecord(log(), "P2", "SMITH", "ANN", open));
  EXPECT_FALSE(ValidatePhysicnRecord(log(), "P3", "SMITH", "ANN", open));
  EXPECT_TRUE(ValidatePhysicnRecord(log(), " P1", "SMITH", "ANN", open));
  EXPECT_TRUE(ValidatePhysicnRecord(log(), "P2", " SMITH", "ANN", open));
  EXPECT_TRUE(ValidatePhysicnRecord(log(), "P3", "SMITH", " ANN", open));
  EXPECT_TRUE(ValidatePhysicnRecord(log(), " P1 ", "SMITH  ", "ANN ", open));
}

TEST_F(RecordRoutines, APhysiciansValuesAreSplicedAsPassed) {
  AddPhysician("'P1', 'SMITH', 'ANN'");
  Connection& open = Watched();
  EXPECT_FALSE(ValidatePhysicnRecord(log(), "p1", "SMITH", "ANN", open));
  EXPECT_FALSE(ValidatePhysicnRecord(log(), "P1", " Smith ", "ANN", open));
  EXPECT_FALSE(ValidatePhysicnRecord(log(), "P1", "SMITH", "", open));
  EXPECT_EQ(Statements(),
            (Lines{PhysicianQuery("p1", "SMITH", "ANN"), PhysicianQuery("P1", " Smith ", "ANN"),
                   PhysicianQuery("P1", "SMITH", "")}));
}

TEST_F(RecordRoutines, APhysicianCountOfNoneOrSeveralRecordsIsRefused) {
  for (const Records& records : {Records{}, Records{std::int64_t{1}, std::int64_t{1}},
                                 Records{std::int64_t{0}, std::int64_t{0}, std::int64_t{0}}}) {
    SCOPED_TRACE(records.size());
    Connection& open = Answering(records);
    ExpectRefused(
        [&] { static_cast<void>(ValidatePhysicnRecord(log(), "P1", "SMITH", "ANN", open)); },
        "ValidatePhysicnRecord", Coded(20096), kPhysicianError);
  }
}

TEST_F(RecordRoutines, APhysicianCountBelowZeroIsRefused) {
  for (const std::int64_t count : {std::int64_t{-1}, std::int64_t{-2147483648}}) {
    SCOPED_TRACE(count);
    const Records records{count};
    Connection& open = Answering(records);
    ExpectRefused(
        [&] { static_cast<void>(ValidatePhysicnRecord(log(), "P1", "SMITH", "ANN", open)); },
        "ValidatePhysicnRecord", Coded(20096), kPhysicianError);
  }
}

TEST_F(RecordRoutines, APhysiciansValueThatWouldLeaveItsPlaceIsRefusedAsSyntax) {
  AddPhysician("'P1', 'SMITH', 'ANN'");
  Connection& open = Watched();
  for (const std::string& value :
       {std::string("'"), std::string("O'Neil"), std::string("X' OR '1'='1"), std::string("''"),
        std::string("A\0", 2)}) {
    SCOPED_TRACE(value);
    const std::vector<std::function<void()>> calls = {
        [&] { static_cast<void>(ValidatePhysicnRecord(log(), value, "SMITH", "ANN", open)); },
        [&] { static_cast<void>(ValidatePhysicnRecord(log(), "P1", value, "ANN", open)); },
        [&] { static_cast<void>(ValidatePhysicnRecord(log(), "P1", "SMITH", value, open)); }};
    for (const std::function<void()>& call : calls) {
      ExpectEngineRefuses(call, "ValidatePhysicnRecord", EngineError::kStatementRefused);
    }
  }
  EXPECT_TRUE(ValidatePhysicnRecord(log(), "P1", "SMITH", "ANN", open));
}

TEST_F(RecordRoutines, WithoutThePhysicianTableTheEnginesErrorPasses) {
  Execute("DROP TABLE physicn");
  Connection& open = Watched();
  ForgetTrace();
  const Error error =
      Refusal([&] { static_cast<void>(ValidatePhysicnRecord(log(), "P1", "SMITH", "ANN", open)); });
  EXPECT_EQ(error.number(), Numbered(EngineError::kNoSuchTable));
  EXPECT_EQ(error.source(), "LOTRIX DLL");
  EXPECT_EQ(Trace(), (Lines{"information Begin: ValidatePhysicnRecord()",
                            "error Problem: In ValidatePhysicnRecord() " + error.description()}));
}

TEST_F(RecordRoutines, VeryLongNamesAreLookedFor) {
  const std::string name(kMebibyte, 'N');
  AddPhysician("'P1', 'N', 'N'");
  Connection& open = Watched();
  EXPECT_FALSE(ValidatePhysicnRecord(log(), "P1", name, name, open));
  EXPECT_EQ(Statements(), Lines{PhysicianQuery("P1", name, name)});
}

}  // namespace
}  // namespace lotrix::test

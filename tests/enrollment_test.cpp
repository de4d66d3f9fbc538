#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "src/operations/default_enrollment.h"
#include "tests/support/expected_statements.h"
#include "tests/support/expected_trace.h"
#include "tests/support/extremes.h"
#include "tests/support/operation_fixture.h"

namespace lotrix::test {
namespace {

using std::string_literals::operator""s;

// A call's arguments in their order.
using Arguments = std::array<std::string, 11>;
constexpr std::size_t kPin = 0;
constexpr std::size_t kSource = 1;
constexpr std::size_t kGroup = 2;
constexpr std::size_t kFirstCount = 3;
constexpr std::size_t kCounts = 8;

Arguments Accepted(const std::string& group = "1") {
  return {"P1", "A", group, "11", "12", "13", "14", "15", "16", "17", "18"};
}

// The lines of the trace, piece by piece as a call comes by them.

const std::string kOperation = "providerEnrollmentAddUpdate";

Lines Begun() { return {BeginOf(kOperation)}; }
Lines Ended() { return {EndOf(kOperation)}; }
Lines LookedFor() { return Asked("ValidateEnrollmentRecord"); }
Lines LookRefused(const std::string& description) {
  return RefusedBy("ValidateEnrollmentRecord", description);
}

// The statements as a call builds them.

std::string InsertStatement(const std::string& g, const std::string& counts,
                            const std::string& pin = "P1") {
  return "INSERT INTO enroll (pin, ensource, chgdate, allkids" + g + ", medicaid" + g +
         ", uninsured" + g + ", amindian" + g + ", fqhc_rhc" + g + ", vfckids" + g + ", g317kids" +
         g + ", statekids" + g + ", userid) VALUES ( '" + pin + "', 'A', {11/20/2026}, " + counts +
         ", 'LTX_DLL')";
}
std::string DefaultInsert(const std::string& pin, const std::string& date,
                          const std::string& userId) {
  return "INSERT INTO enroll (pin, chgdate, userid,allkids1, medicaid1, uninsured1, amindian1, "
         "fqhc_rhc1, vfckids1, g317kids1, statekids1,allkids2, medicaid2, uninsured2, amindian2, "
         "fqhc_rhc2, vfckids2, g317kids2, statekids2,allkids3, medicaid3, uninsured3, amindian3, "
         "fqhc_rhc3, vfckids3, g317kids3, statekids3,allkids4, medicaid4, uninsured4, amindian4, "
         "fqhc_rhc4, vfckids4, g317kids4, statekids4,other1, other2, other3, other4)VALUES ('" +
         pin + " ',{" + date + " },'" + userId +
         "',0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0)";
}

std::string CountColumns(const std::string& g) {
  return "allkids" + g + ", medicaid" + g + ", uninsured" + g + ", amindian" + g + ", fqhc_rhc" +
         g + ", vfckids" + g + ", g317kids" + g + ", statekids" + g;
}

void Call(cLotrix& lotrix, const Arguments& given) {
  lotrix.providerEnrollmentAddUpdate(given[0], given[1], given[2], given[3], given[4], given[5],
                                     given[6], given[7], given[8], given[9], given[10]);
}

class Enrollment : public OperationTest {
 protected:
  void SetUp() override {
    Execute("INSERT INTO enroll (pin, ensource) VALUES ('TWIN', 'B'), (' TWIN ', 'C')");
    WatchOperations();
  }

  // A row whose every count is filled: 91 in the first group, 92 in the second.
  void AddEnrollment(const std::string& pin) {
    std::string columns = "pin, ensource, chgdate, userid";
    std::string values = "'" + pin + "', 'Q', '1999-01-02', 'OU'";
    for (const char* const g : {"1", "2", "3", "4"}) {
      columns += ", " + CountColumns(g) + ", other" + g;
      for (int count = 0; count < 9; ++count) values += std::string(", 9") + g;
    }
    Execute("INSERT INTO enroll (" + columns + ") VALUES (" + values + ")");
  }

  void Run(const Arguments& arguments) { Call(lotrix(), arguments); }
  std::string StatementOf(const Arguments& arguments) {
    return LastStatementOf([&] { Run(arguments); });
  }
  [[nodiscard]] Row Counts(const std::string& group, const std::string& pin = "P1") {
    const Rows rows =
        Query("SELECT " + CountColumns(group) + " FROM enroll WHERE pin = '" + pin + "'");
    return rows.size() == 1 ? rows[0] : Row{std::to_string(rows.size()) + " rows"};
  }
  void Clear() { Execute("DELETE FROM enroll WHERE pin <> 'TWIN' AND pin <> ' TWIN '"); }

  // Refused with that number, the whole trace as `lines` tells it, and nothing
  // written.
  Error ExpectRefused(const Arguments& arguments, std::int32_t number,
                      const std::function<Lines(const std::string& description)>& lines) {
    const Rows before = Query("SELECT * FROM enroll");
    Error error = ExpectRefusal(
        kOperation, [&] { Run(arguments); }, number, lines);
    EXPECT_EQ(Query("SELECT * FROM enroll"), before);
    return error;
  }
  // Refused before anything is asked of the engine.
  void ExpectRefusedUnasked(const Arguments& arguments, std::int32_t number,
                            const std::string& message = {}) {
    const Error error =
        ExpectRefused(arguments, number, [](const std::string&) { return Lines{}; });
    if (!message.empty()) {
      EXPECT_EQ(error.description(), message);
    }
    EXPECT_EQ(Statements(), Lines{});
  }
};

const char* const kGroups[] = {"1", "2", "3", "4"};

// --- Rows that are not there yet ---------------------------------------------

TEST_F(Enrollment, ARowIsAddedWithTheCountsOfItsGroup) {
  for (const std::string group : kGroups) {
    SCOPED_TRACE(group);
    Run(Accepted(group));
    for (const std::string other : kGroups) {
      EXPECT_EQ(Counts(other), other == group
                                   ? (Row{"11", "12", "13", "14", "15", "16", "17", "18"})
                                   : Row(8, "0"));
    }
    EXPECT_EQ(Query("SELECT ensource, chgdate, userid, other1, other2, other3, other4 FROM enroll "
                    "WHERE pin = 'P1'"),
              (Rows{{"A", "2026-11-20", "LTX_DLL", "0", "0", "0", "0"}}));
    Clear();
  }
}

TEST_F(Enrollment, TheStatementsOfANewRow) {
  Run(Accepted());
  EXPECT_EQ(Statements(),
            (Lines{"SELECT count(*) FROM enroll WHERE ltrim(rtrim(pin)) = 'P1'",
                   "INSERT INTO enroll (pin, ensource, chgdate, allkids1, medicaid1, uninsured1, "
                   "amindian1, fqhc_rhc1, vfckids1, g317kids1, statekids1, userid) VALUES ( 'P1', "
                   "'A', {11/20/2026}, 11, 12, 13, 14, 15, 16, 17, 18, 'LTX_DLL')"}));
  Clear();
  EXPECT_EQ(StatementOf(Accepted("2")),
            "INSERT INTO enroll (pin, ensource, chgdate, allkids2, medicaid2, uninsured2, "
            "amindian2, fqhc_rhc2, vfckids2, g317kids2, statekids2, userid) VALUES ( 'P1', "
            "'A', {11/20/2026}, 11, 12, 13, 14, 15, 16, 17, 18, 'LTX_DLL')");
  Clear();
  EXPECT_EQ(StatementOf(Accepted("3")),
            "INSERT INTO enroll (pin, ensource, chgdate, allkids3, medicaid3, uninsured3, "
            "amindian3, fqhc_rhc3, vfckids3, g317kids3, statekids3, userid) VALUES ( 'P1', "
            "'A', {11/20/2026}, 11, 12, 13, 14, 15, 16, 17, 18, 'LTX_DLL')");
  Clear();
  EXPECT_EQ(StatementOf(Accepted("4")),
            "INSERT INTO enroll (pin, ensource, chgdate, allkids4, medicaid4, uninsured4, "
            "amindian4, fqhc_rhc4, vfckids4, g317kids4, statekids4, userid) VALUES ( 'P1', "
            "'A', {11/20/2026}, 11, 12, 13, 14, 15, 16, 17, 18, 'LTX_DLL')");
}

TEST_F(Enrollment, TheTraceOfANewRow) {
  Run(Accepted());
  EXPECT_EQ(Trace(),
            (Lines{"information Begin: providerEnrollmentAddUpdate()",
                   "information Begin: Get Connection()", "information End: GetConnection()",
                   "information Begin: ValidateEnrollmentRecord()",
                   "information End: ValidateEnrollmentRecord()",
                   "information INSERT INTO enroll (pin, ensource, chgdate, allkids1, medicaid1, "
                   "uninsured1, amindian1, fqhc_rhc1, vfckids1, g317kids1, statekids1, userid) "
                   "VALUES ( 'P1', 'A', {11/20/2026}, 11, 12, 13, 14, 15, 16, 17, 18, 'LTX_DLL')",
                   "information Begin: Get Connection()", "information End: GetConnection()",
                   "information End: providerEnrollmentAddUpdate()"}));
}

// --- Rows that are there ------------------------------------------------------

TEST_F(Enrollment, OnlyTheGroupsEightCountsAreUpdated) {
  for (const std::string group : kGroups) {
    SCOPED_TRACE(group);
    AddEnrollment("P1");
    AddEnrollment("P2");
    const Rows other = Query("SELECT * FROM enroll WHERE pin = 'P2'");
    Run(Accepted(group));
    for (const std::string g : kGroups) {
      EXPECT_EQ(Counts(g), g == group ? (Row{"11", "12", "13", "14", "15", "16", "17", "18"})
                                      : Row(8, "9" + g));
    }
    EXPECT_EQ(Query("SELECT ensource, chgdate, userid, other1, other2, other3, other4 FROM enroll "
                    "WHERE pin = 'P1'"),
              (Rows{{"A", "2026-11-20", "LTX_DLL", "91", "92", "93", "94"}}));
    EXPECT_EQ(Query("SELECT * FROM enroll WHERE pin = 'P2'"), other);
    Clear();
  }
}

TEST_F(Enrollment, TheStatementsOfAnUpdate) {
  AddEnrollment("P1");
  Run(Accepted());
  EXPECT_EQ(Statements(),
            (Lines{"SELECT count(*) FROM enroll WHERE ltrim(rtrim(pin)) = 'P1'",
                   "UPDATE enroll SET ensource= 'A', chgdate = {11/20/2026}, allkids1 = 11, "
                   "medicaid1 = 12, uninsured1 = 13, amindian1 = 14, fqhc_rhc1 = 15, "
                   "vfckids1 = 16, g317kids1 = 17, statekids1 = 18,  userid = 'LTX_DLL' "
                   "WHERE  ltrim(rtrim(Pin)) = 'P1' "}));
  EXPECT_EQ(StatementOf(Accepted("2")),
            "UPDATE enroll SET ensource= 'A', chgdate = {11/20/2026}, allkids2 = 11, "
            "medicaid2 = 12, uninsured2 = 13, amindian2 = 14, fqhc_rhc2 = 15, "
            "vfckids2 = 16, g317kids2 = 17, statekids2 = 18,  userid = 'LTX_DLL' "
            "WHERE  ltrim(rtrim(Pin)) = 'P1' ");
  EXPECT_EQ(StatementOf(Accepted("3")),
            "UPDATE enroll SET ensource= 'A', chgdate = {11/20/2026}, allkids3 = 11, "
            "medicaid3 = 12, uninsured3 = 13, amindian3 = 14, fqhc_rhc3 = 15, "
            "vfckids3 = 16, g317kids3 = 17, statekids3 = 18,  userid = 'LTX_DLL' "
            "WHERE  ltrim(rtrim(Pin)) = 'P1' ");
  EXPECT_EQ(StatementOf(Accepted("4")),
            "UPDATE enroll SET ensource= 'A', chgdate = {11/20/2026}, allkids4 = 11, "
            "medicaid4 = 12, uninsured4 = 13, amindian4 = 14, fqhc_rhc4 = 15, "
            "vfckids4 = 16, g317kids4 = 17, statekids4 = 18,  userid = 'LTX_DLL' "
            "WHERE  ltrim(rtrim(Pin)) = 'P1' ");
}

TEST_F(Enrollment, TheTraceOfAnUpdate) {
  AddEnrollment("P1");
  Run(Accepted("3"));
  EXPECT_EQ(Trace(),
            (Lines{"information Begin: providerEnrollmentAddUpdate()",
                   "information Begin: Get Connection()", "information End: GetConnection()",
                   "information Begin: ValidateEnrollmentRecord()",
                   "information End: ValidateEnrollmentRecord()",
                   "information UPDATE enroll SET ensource= 'A', chgdate = {11/20/2026}, "
                   "allkids3 = 11, medicaid3 = 12, uninsured3 = 13, amindian3 = 14, "
                   "fqhc_rhc3 = 15, vfckids3 = 16, g317kids3 = 17, statekids3 = 18,  "
                   "userid = 'LTX_DLL' WHERE  ltrim(rtrim(Pin)) = 'P1' ",
                   "information Begin: Get Connection()", "information End: GetConnection()",
                   "information End: providerEnrollmentAddUpdate()"}));
}

TEST_F(Enrollment, AFurtherGroupLeavesTheFirstGroupsCounts) {
  Run(Accepted("1"));
  Arguments second = Accepted("4");
  second[kSource] = "G";
  for (std::size_t count = 0; count < kCounts; ++count) {
    second[kFirstCount + count] = std::to_string(21 + count);
  }
  Run(second);
  EXPECT_EQ(Counts("1"), (Row{"11", "12", "13", "14", "15", "16", "17", "18"}));
  EXPECT_EQ(Counts("2"), Row(8, "0"));
  EXPECT_EQ(Counts("3"), Row(8, "0"));
  EXPECT_EQ(Counts("4"), (Row{"21", "22", "23", "24", "25", "26", "27", "28"}));
  EXPECT_EQ(Query("SELECT ensource FROM enroll WHERE pin = 'P1'"), (Rows{{"G"}}));
}

TEST_F(Enrollment, AStoredPinIsTrimmedAndTheGivenOneIsNot) {
  AddEnrollment("  P1 ");
  Arguments arguments = Accepted();
  arguments[kPin] = "p1 ";
  EXPECT_EQ(StatementOf(arguments).compare(0, 7, "UPDATE "), 0);
  EXPECT_EQ(Counts("1", "  P1 "), (Row{"11", "12", "13", "14", "15", "16", "17", "18"}));
  arguments[kPin] = " p1";
  EXPECT_EQ(StatementOf(arguments), InsertStatement("1", "11, 12, 13, 14, 15, 16, 17, 18", " P1"));
  EXPECT_EQ(Counts("1", " P1"), (Row{"11", "12", "13", "14", "15", "16", "17", "18"}));
}

TEST_F(Enrollment, ThePinIsUpperCasedAndAskedNothingElse) {
  for (const std::string& pin : {"no-such provider é"s, "1234567890"s}) {
    SCOPED_TRACE(pin);
    Arguments arguments = Accepted();
    arguments[kPin] = pin;
    Run(arguments);
  }
  EXPECT_EQ(Query("SELECT pin FROM enroll WHERE ensource = 'A' ORDER BY pin"),
            (Rows{{"1234567890"}, {"NO-SUCH PROVIDER É"}}));
}

// --- The source ---------------------------------------------------------------

TEST_F(Enrollment, TheSourceIsOneOfEightLettersSplicedTrimmed) {
  const std::pair<std::string, std::string> cases[] = {
      {"A", "A"}, {"B", "B"},    {"C", "C"},  {"D", "D"},
      {"E", "E"}, {"F", "F"},    {"G", "G"},  {"Z", "Z"},
      {"z", "Z"}, {" a  ", "A"}, {"g ", "G"}, {"           b           ", "B"}};
  for (const auto& [given, stored] : cases) {
    SCOPED_TRACE(given);
    Arguments arguments = Accepted();
    arguments[kSource] = given;
    EXPECT_NE(StatementOf(arguments).find("'" + stored + "', "), std::string::npos);
    EXPECT_EQ(Query("SELECT ensource FROM enroll WHERE pin = 'P1'"), (Rows{{stored}}));
  }
}

TEST_F(Enrollment, AnyOtherSourceIsRefused) {
  for (const std::string& source :
       {"H"s, "Y"s, "AB"s, "A B"s, "0"s, "é"s, "@"s, "A'"s, "A\0"s, "\0"s, "1234567890"s,
        "   1234567890   "s, Repeated("é", 10), Repeated("😀", 5),
        "\u00a0"s
        "A"s}) {
    SCOPED_TRACE(source);
    Arguments arguments = Accepted();
    arguments[kSource] = source;
    ExpectRefusedUnasked(arguments, Coded(20118),
                         "Source value not A-G or Z for Enroll table Add/Update");
  }
}

TEST_F(Enrollment, ASourceOfMoreThanTenCharactersIsTooLong) {
  for (const std::string& source :
       {"12345678901"s, "  12345678901  "s, Repeated("é", 11), Repeated("😀", 5) + "1",
        "AAAAAAAAAA\0"s, Repeated("é", 32767)}) {
    Arguments arguments = Accepted();
    arguments[kSource] = source;
    ExpectRefusedUnasked(arguments, Coded(20133),
                         "Incorrect field length for Enroll table Add/Update: Source");
  }
}

// --- The age group --------------------------------------------------------------

TEST_F(Enrollment, AnAgeGroupIsAnyNumberThatBecomesOneToFour) {
  const std::pair<std::string, std::string> cases[] = {
      {"1", "1"},   {" 3 ", "3"}, {"4.5", "4"},   {"0.6", "1"},    {"1.5", "2"},    {"2.5", "2"},
      {"+4", "4"},  {"$2", "2"},  {"&H3", "3"},   {"4e0", "4"},    {"0.01e2", "1"}, {"004", "4"},
      {"&o4", "4"}, {"1.", "1"},  {"3\0x"s, "3"}, {"4.4999", "4"}, {"0.50001", "1"}};
  for (const auto& [given, group] : cases) {
    SCOPED_TRACE(given);
    EXPECT_EQ(StatementOf(Accepted(given)),
              InsertStatement(group, "11, 12, 13, 14, 15, 16, 17, 18"));
    EXPECT_EQ(Counts(group), (Row{"11", "12", "13", "14", "15", "16", "17", "18"}));
    Clear();
  }
}

TEST_F(Enrollment, AnyOtherAgeGroupIsRefused) {
  for (const std::string& group : {"0"s,
                                   "5"s,
                                   "X"s,
                                   "-1"s,
                                   "0.5"s,
                                   "4.51"s,
                                   "4.6"s,
                                   "-4"s,
                                   "(1)"s,
                                   "1 2"s,
                                   "1%"s,
                                   "one"s,
                                   "1'"s,
                                   "32767"s,
                                   "-32768"s,
                                   "32767.4"s,
                                   "&HFFFF"s,
                                   "1e400"s,
                                   "$"s,
                                   "\0"s
                                   "1"s,
                                   "1-"s,
                                   "1,"s
                                   "x"s,
                                   "&H100000000"s}) {
    SCOPED_TRACE(group);
    ExpectRefusedUnasked(Accepted(group), Coded(20109),
                         "Non-numeric or invalid age group for Enroll table Add/Update");
  }
}

TEST_F(Enrollment, AnAgeGroupBeyond16BitsOverflows) {
  for (const char* const group :
       {"32768", "-32769", "99999", "32767.5", "-32768.6", "&H10000", "1E10", "1E300"}) {
    SCOPED_TRACE(group);
    ExpectRefusedUnasked(Accepted(group), 6);
  }
}

// --- The counts -----------------------------------------------------------------

TEST_F(Enrollment, ACountIsSplicedAsAWholeNumber) {
  const std::pair<std::string, std::string> cases[] = {{"0", "0"},
                                                       {"9999999", "9999999"},
                                                       {"1.5", "2"},
                                                       {"2.5", "2"},
                                                       {"0.5", "0"},
                                                       {"-5", "-5"},
                                                       {"(5)", "-5"},
                                                       {"5-", "-5"},
                                                       {"1,000", "1000"},
                                                       {"$7", "7"},
                                                       {"1e6", "1000000"},
                                                       {"&H1f", "31"},
                                                       {"&HFFFF", "65535"},
                                                       {"  1234567  ", "1234567"},
                                                       {".5e1", "5"},
                                                       {"5\0x"s, "5"},
                                                       {"2.147E9", "2147000000"},
                                                       {"-2.14E9", "-2140000000"},
                                                       {"0000007", "7"},
                                                       {"12345.6", "12346"},
                                                       {"-0", "0"},
                                                       {"\u00a0"
                                                        "8",
                                                        "8"}};
  for (std::size_t count = 0; count < kCounts; ++count) {
    for (const auto& [given, number] : cases) {
      SCOPED_TRACE(std::to_string(count) + "|" + given);
      Arguments arguments = Accepted("2");
      arguments[kFirstCount + count] = given;
      std::string counts;
      Row stored;
      for (std::size_t other = 0; other < kCounts; ++other) {
        stored.push_back(other == count ? number : std::to_string(11 + other));
        counts += (other == 0 ? "" : ", ") + stored.back();
      }
      EXPECT_EQ(StatementOf(arguments), InsertStatement("2", counts));
      EXPECT_EQ(Counts("2"), stored);
      Clear();
    }
  }
}

const std::string kLengthLabels[] = {
    "All Kids Total", "Medicaid Total", "Uninsured Total", "American Indian Total",
    "FQHC/RHC Total", "VFC Total",      "G317 Total",      "State Total"};
const std::string kNonNumeric[] = {"Non-numeric All Kids Total for Enroll table Add/Update",
                                   "Non-numeric Medicaid Total for Enroll table Add/Update",
                                   "Non-numeric Uninsured Total for Enroll table Add/Update",
                                   "Non-numeric American Indian Total for Enroll table Add/Update",
                                   "Non-numeric FQHC_RHC Total for Enroll table Add/Update",
                                   "Non-numeric VFC Total for Enroll table Add/Update",
                                   "Non-numeric G317 Total for Enroll table Add/Update",
                                   "Non-numeric State Total for Enroll table Add/Update"};

TEST_F(Enrollment, ACountOfMoreThanSevenCharactersIsTooLong) {
  for (std::size_t count = 0; count < kCounts; ++count) {
    for (const std::string& text :
         {"12345678"s, "00000001"s, "  12345678 "s, "1234567."s, Repeated("é", 8), Repeated("😀", 4),
          "1234567\0"s, "1       2"s, std::string(32767, '1')}) {
      Arguments arguments = Accepted();
      arguments[kFirstCount + count] = text;
      ExpectRefusedUnasked(
          arguments, Coded(20133),
          "Incorrect field length for Enroll table Add/Update: " + kLengthLabels[count]);
    }
  }
}

TEST_F(Enrollment, ACountThatIsNoNumberIsRefused) {
  for (std::size_t count = 0; count < kCounts; ++count) {
    for (const std::string& text :
         {"X"s, "1 2"s, "5%"s, "1'"s, "."s, "-"s, "$"s, "1e"s, "TRUE"s, "0x1F"s, "1}"s, "1;2"s,
          "\0"s
          "1"s,
          "1E400"s, Repeated("é", 7), Repeated("😀", 3) + "1", "\u00a0"s, "\t"s}) {
      SCOPED_TRACE(text);
      Arguments arguments = Accepted();
      arguments[kFirstCount + count] = text;
      ExpectRefusedUnasked(arguments, Coded(20110 + static_cast<std::int32_t>(count)),
                           kNonNumeric[count]);
    }
  }
}

TEST_F(Enrollment, ACountBeyond32BitsOverflows) {
  for (std::size_t count = 0; count < kCounts; ++count) {
    for (const char* const text : {"1E10", "2.148E9", "-2.15E9", "3E9", "1E300"}) {
      SCOPED_TRACE(text);
      Arguments arguments = Accepted();
      arguments[kFirstCount + count] = text;
      ExpectRefusedUnasked(arguments, 6);
    }
  }
}

// Each count is tested and converted before the next is looked at.
TEST_F(Enrollment, AnOverflowOfAnEarlierCountComesBeforeALaterOneThatIsNoNumber) {
  for (std::size_t count = 0; count + 1 < kCounts; ++count) {
    Arguments arguments = Accepted();
    arguments[kFirstCount + count] = "1E10";
    arguments[kFirstCount + count + 1] = "X";
    ExpectRefusedUnasked(arguments, 6);
    arguments[kFirstCount + count] = "X";
    arguments[kFirstCount + count + 1] = "1E10";
    ExpectRefusedUnasked(arguments, Coded(20110 + static_cast<std::int32_t>(count)),
                         kNonNumeric[count]);
  }
}

// --- The checks, in their order -------------------------------------------------

constexpr std::size_t kBlankChecks = 0;    // eleven
constexpr std::size_t kLengthChecks = 11;  // the source, eight counts
constexpr std::size_t kGroupCheck = 20;
constexpr std::size_t kSourceCheck = 21;
constexpr std::size_t kNumberChecks = 22;  // eight counts
constexpr std::size_t kRecordCheck = 30;

// Wrong from that check on: the order of the checks is the order in which the
// faults are found when they are mended one by one.
Arguments WrongFrom(std::size_t first) {
  Arguments wrong;
  wrong[kPin] = first > kRecordCheck ? "P1" : "TWIN";
  wrong[kSource] = first > kSourceCheck ? "A" : first > kLengthChecks ? "H" : "ELEVEN LONG";
  wrong[kGroup] = first > kGroupCheck ? "1" : "5";
  for (std::size_t count = 0; count < kCounts; ++count) {
    std::string& text = wrong[kFirstCount + count];
    text = first > kNumberChecks + count       ? "1"
           : first > kLengthChecks + 1 + count ? "X"
                                               : "12345678";
  }
  for (std::size_t argument = first; argument < wrong.size(); ++argument) wrong[argument] = "  ";
  return wrong;
}

const std::string kNulls[] = {"Null PIN for Enroll table Add/Update",
                              "Null Source for Enroll table Add/Update",
                              "Null Age Group for Enroll table Add/Update",
                              "Null AllKids Total for Enroll table Add/Update",
                              "Null Medicaid Total for Enroll table Add/Update",
                              "Null Uninsured Total for Enroll table Add/Update",
                              "Null American Indian Total for Enroll table Add/Update",
                              "Null FQHC_RHC Total for Enroll table Add/Update",
                              "Null VFC Total for Enroll table Add/Update",
                              "Null G317 Total for Enroll table Add/Update",
                              "Null State Total for Enroll table Add/Update"};

TEST_F(Enrollment, FirstTheBlankArgumentsInTheirOrder) {
  for (std::size_t argument = 0; argument < 11; ++argument) {
    for (const char* const blank : {"", "  "}) {
      SCOPED_TRACE(argument);
      Arguments wrong = WrongFrom(kBlankChecks + argument);
      wrong[argument] = blank;
      ExpectRefusedUnasked(wrong, Coded(20098 + static_cast<std::int32_t>(argument)),
                           kNulls[argument]);
    }
  }
}

TEST_F(Enrollment, ABlankArgumentAloneIsRefused) {
  for (std::size_t argument = 0; argument < 11; ++argument) {
    Arguments arguments = Accepted();
    arguments[argument] = " ";
    ExpectRefusedUnasked(arguments, Coded(20098 + static_cast<std::int32_t>(argument)),
                         kNulls[argument]);
  }
}

TEST_F(Enrollment, ThenTheLengthsInTheirOrder) {
  ExpectRefusedUnasked(WrongFrom(kLengthChecks), Coded(20133),
                       "Incorrect field length for Enroll table Add/Update: Source");
  for (std::size_t count = 0; count < kCounts; ++count) {
    SCOPED_TRACE(count);
    ExpectRefusedUnasked(
        WrongFrom(kLengthChecks + 1 + count), Coded(20133),
        "Incorrect field length for Enroll table Add/Update: " + kLengthLabels[count]);
  }
}

TEST_F(Enrollment, ThenTheAgeGroup) {
  ExpectRefusedUnasked(WrongFrom(kGroupCheck), Coded(20109),
                       "Non-numeric or invalid age group for Enroll table Add/Update");
  Arguments wrong = WrongFrom(kGroupCheck);
  wrong[kGroup] = "99999";
  ExpectRefusedUnasked(wrong, 6);
}

TEST_F(Enrollment, ThenTheSource) {
  ExpectRefusedUnasked(WrongFrom(kSourceCheck), Coded(20118),
                       "Source value not A-G or Z for Enroll table Add/Update");
}

TEST_F(Enrollment, ThenTheNumbersInTheirOrder) {
  for (std::size_t count = 0; count < kCounts; ++count) {
    SCOPED_TRACE(count);
    Arguments wrong = WrongFrom(kNumberChecks + count);
    ExpectRefusedUnasked(wrong, Coded(20110 + static_cast<std::int32_t>(count)),
                         kNonNumeric[count]);
    wrong[kFirstCount + count] = "1E10";
    ExpectRefusedUnasked(wrong, 6);
  }
}

TEST_F(Enrollment, ThenThatTheProviderHasNotTwoRows) {
  const std::string message =
      "There are duplicate enrollment data records for the current provider";
  const Error error = ExpectRefused(WrongFrom(kRecordCheck), Coded(20090),
                                    [&](const std::string&) { return LookRefused(message); });
  EXPECT_EQ(error.description(), message);
  EXPECT_EQ(Statements(), Lines{EnrollmentCount("TWIN")});
}

TEST_F(Enrollment, ACountOfRowsThatIsNoneIsRefused) {
  const std::string message = "Error while reading enrollment data for current provider";
  const std::vector<std::vector<Value>> answers = {
      {}, {std::int64_t{0}, std::int64_t{0}}, {std::int64_t{-1}}};
  for (const std::vector<Value>& rows : answers) {
    AnswerEveryQuery(rows);
    const Error error = ExpectRefused(Accepted(), Coded(20089),
                                      [&](const std::string&) { return LookRefused(message); });
    EXPECT_EQ(error.description(), message);
    EXPECT_EQ(Statements(), Lines{EnrollmentCount("P1")});
  }
}

// The day may change while a call runs.
TEST_F(Enrollment, TodayIsTakenAtTheStart) {
  RunAcrossMidnight([](cLotrix& own) { Call(own, Accepted()); });
  EXPECT_EQ(Query("SELECT chgdate FROM enroll WHERE pin = 'P1'"), (Rows{{"2026-11-20"}}));
}

// --- Values that would leave their place, and very long ones --------------------

TEST_F(Enrollment, APinThatWouldLeaveItsPlaceIsRefusedAsSyntax) {
  AddEnrollment("P1");
  for (const std::string& pin :
       {"O'NEIL"s, "'"s, "P1' OR '1'='1"s, "P1'; DELETE FROM enroll; --"s, "P1\0"s, "\0"s}) {
    SCOPED_TRACE(pin);
    Arguments arguments = Accepted();
    arguments[kPin] = pin;
    ExpectRefused(arguments, Numbered(EngineError::kStatementRefused), LookRefused);
  }
  Run(Accepted());
  EXPECT_EQ(Counts("1"), (Row{"11", "12", "13", "14", "15", "16", "17", "18"}));
}

TEST_F(Enrollment, AnErrorOfTheEngineIsAProblemOfTheOperation) {
  const std::string statement = InsertStatement("1", "11, 12, 13, 14, 15, 16, 17, 18");
  database().Forbid("INSERT", "enroll");
  const Error error = Refusal([&] { Run(Accepted()); });
  EXPECT_EQ(error.source(), "LOTRIX DLL");
  EXPECT_EQ(Trace(), Joined({Begun(),
                             LookedFor(),
                             Logged(statement),
                             ConnectionRead(),
                             {ProblemOf(kOperation, error.description())}}));
  EXPECT_EQ(Query("SELECT count(*) FROM enroll"), (Rows{{"2"}}));
  database().Allow("enroll");
  ForgetTrace();
  Run(Accepted());
  EXPECT_EQ(Trace(), Joined({Begun(), LookedFor(), Logged(statement), ConnectionRead(), Ended()}));
}

TEST_F(Enrollment, WithoutItsTableTheEnginesErrorPasses) {
  Execute("DROP TABLE enroll");
  const Error error = Refusal([&] { Run(Accepted()); });
  EXPECT_EQ(error.number(), Numbered(EngineError::kNoSuchTable));
  EXPECT_EQ(Trace(), Joined({Begun(),
                             LookRefused(error.description()),
                             {ProblemOf(kOperation, error.description())}}));
}

TEST_F(Enrollment, AVeryLongArgumentOverflowsWhereItIsTestedForBlank) {
  for (std::size_t argument = 0; argument < 11; ++argument) {
    SCOPED_TRACE(argument);
    for (const std::string& text : {std::string(kMebibyte, '1'), Repeated("é", 32768)}) {
      Arguments wrong = WrongFrom(kBlankChecks + argument);
      wrong[argument] = text;
      ExpectRefusedUnasked(wrong, 6);
    }
  }
}

TEST_F(Enrollment, APinOfAsManyCharactersAs16BitsCountIsStored) {
  const std::string pin = Repeated("É", 32767);
  Arguments arguments = Accepted();
  arguments[kPin] = pin;
  Run(arguments);
  Run(arguments);
  EXPECT_EQ(Query("SELECT pin FROM enroll WHERE ensource = 'A'"), (Rows{{pin}}));
}

TEST_F(Enrollment, VeryManyBlanksAroundACountAreNone) {
  Arguments arguments = Accepted();
  arguments[kFirstCount] = std::string(kMebibyte, ' ') + "7";
  Run(arguments);
  EXPECT_EQ(Counts("1"), (Row{"7", "12", "13", "14", "15", "16", "17", "18"}));
}

// --- The row of a new provider ----------------------------------------------------

class DefaultEnrollment : public DatabaseTest {
 protected:
  Connection& Watched() {
    Connection& open = connection();
    Watch(open);
    return open;
  }
};

TEST_F(DefaultEnrollment, ARowOfThirtySixZerosIsAdded) {
  AddDefaultEnrollment(log(), "P1", {2026, 11, 20}, "LTX_DLL", connection());
  EXPECT_EQ(Query("SELECT pin, ensource, chgdate, userid FROM enroll"),
            (Rows{{"P1 ", "<null>", "2026-11-20", "LTX_DLL"}}));
  for (const std::string group : kGroups) {
    EXPECT_EQ(Query("SELECT " + CountColumns(group) + ", other" + group + " FROM enroll"),
              Rows{Row(9, "0")});
  }
}

TEST_F(DefaultEnrollment, ItsStatements) {
  AddDefaultEnrollment(log(), "P1", {2004, 1, 5}, "SOMEONE", Watched());
  EXPECT_EQ(
      Statements(),
      (Lines{"SELECT count(*) FROM enroll WHERE ltrim(rtrim(pin)) = 'P1'",
             "INSERT INTO enroll (pin, chgdate, userid,allkids1, medicaid1, uninsured1, "
             "amindian1, fqhc_rhc1, vfckids1, g317kids1, statekids1,allkids2, medicaid2, "
             "uninsured2, amindian2, fqhc_rhc2, vfckids2, g317kids2, statekids2,allkids3, "
             "medicaid3, uninsured3, amindian3, fqhc_rhc3, vfckids3, g317kids3, "
             "statekids3,allkids4, medicaid4, uninsured4, amindian4, fqhc_rhc4, vfckids4, "
             "g317kids4, statekids4,other1, other2, other3, other4)VALUES ('P1 ',{1/5/2004 "
             "},'SOMEONE',0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,"
             "0)"}));
  EXPECT_EQ(Query("SELECT chgdate, userid FROM enroll"), (Rows{{"2004-01-05", "SOMEONE"}}));
}

TEST_F(DefaultEnrollment, OnlyTheCheckWritesLines) {
  AddDefaultEnrollment(log(), "P1", {2026, 11, 20}, "LTX_DLL", connection());
  EXPECT_EQ(Trace(), (Lines{"information Begin: ValidateEnrollmentRecord()",
                            "information End: ValidateEnrollmentRecord()"}));
  AddDefaultEnrollment(log(), "P1", {2026, 11, 20}, "LTX_DLL", connection());
  EXPECT_EQ(Trace(), (Lines{"information Begin: ValidateEnrollmentRecord()",
                            "information End: ValidateEnrollmentRecord()"}));
}

TEST_F(DefaultEnrollment, ARowThatIsThereStays) {
  Execute(
      "INSERT INTO enroll (pin, ensource, chgdate, userid, allkids2) VALUES "
      "(' P1 ', 'B', '1999-01-02', 'OU', 7)");
  const Rows before = Query("SELECT * FROM enroll");
  AddDefaultEnrollment(log(), "P1", {2026, 11, 20}, "LTX_DLL", Watched());
  EXPECT_EQ(Statements(), Lines{EnrollmentCount("P1")});
  EXPECT_EQ(Query("SELECT * FROM enroll"), before);
}

TEST_F(DefaultEnrollment, ItsOwnRowIsFoundAgain) {
  Connection& open = Watched();
  AddDefaultEnrollment(log(), "P1", {2026, 11, 20}, "LTX_DLL", open);
  AddDefaultEnrollment(log(), "P1", {2026, 11, 21}, "LTX_DLL", open);
  EXPECT_EQ(Statements(),
            (Lines{EnrollmentCount("P1"), DefaultInsert("P1", "11/20/2026", "LTX_DLL"),
                   EnrollmentCount("P1")}));
  EXPECT_EQ(Query("SELECT chgdate FROM enroll"), (Rows{{"2026-11-20"}}));
}

TEST_F(DefaultEnrollment, ThePinIsNotUpperCased) {
  Connection& open = Watched();
  AddDefaultEnrollment(log(), "p1é", {2026, 11, 20}, "LTX_DLL", open);
  EXPECT_EQ(Statements(),
            (Lines{EnrollmentCount("p1é"), DefaultInsert("p1é", "11/20/2026", "LTX_DLL")}));
  EXPECT_EQ(Query("SELECT pin FROM enroll"), (Rows{{"p1é "}}));
}

TEST_F(DefaultEnrollment, TwoRowsAreRefused) {
  Execute("INSERT INTO enroll (pin) VALUES ('P1'), ('P1')");
  const std::string message =
      "There are duplicate enrollment data records for the current provider";
  Connection& open = Watched();
  ExpectError(Refusal([&] {
                AddDefaultEnrollment(log(), "P1", {2026, 11, 20}, "LTX_DLL", open);
              }),
              Coded(20090), message);
  EXPECT_EQ(Trace(), (Lines{"information Begin: ValidateEnrollmentRecord()",
                            "error Problem: In ValidateEnrollmentRecord() " + message}));
  EXPECT_EQ(Statements(), Lines{EnrollmentCount("P1")});
  EXPECT_EQ(Query("SELECT count(*) FROM enroll"), (Rows{{"2"}}));
}

TEST_F(DefaultEnrollment, ValuesThatWouldLeaveTheirPlaceAreRefusedAsSyntax) {
  Connection& open = connection();
  for (const std::string& text : {"O'NEIL"s, "'"s, "P1\0"s}) {
    SCOPED_TRACE(text);
    ForgetTrace();
    const Error pin = Refusal([&] {
      AddDefaultEnrollment(log(), text, {2026, 11, 20}, "LTX_DLL", open);
    });
    EXPECT_EQ(pin.number(), Numbered(EngineError::kStatementRefused));
    EXPECT_EQ(Trace(),
              (Lines{"information Begin: ValidateEnrollmentRecord()",
                     "error Problem: In ValidateEnrollmentRecord() " + pin.description()}));
    const Error user = Refusal([&] {
      AddDefaultEnrollment(log(), "P1", {2026, 11, 20}, text, open);
    });
    EXPECT_EQ(user.number(), Numbered(EngineError::kStatementRefused));
    EXPECT_EQ(Trace(), (Lines{"information Begin: ValidateEnrollmentRecord()",
                              "information End: ValidateEnrollmentRecord()"}));
    EXPECT_EQ(Query("SELECT count(*) FROM enroll"), (Rows{{"0"}}));
  }
}

}  // namespace
}  // namespace lotrix::test

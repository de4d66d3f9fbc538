// Every operation with every argument in turn wrong in every way that can be
// thought of, all the others being right.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "lotrix/members.h"
#include "tests/support/fixture.h"

namespace lotrix::test {
namespace {

using namespace std::string_literals;

using Arguments = std::vector<Argument>;

// --- The operations, each with arguments that are right ---------------------------

struct OperationCase {
  std::string name;
  std::string member;
  Arguments arguments;                   // one for each parameter
  std::vector<std::string> writes = {};  // the tables that it may write to
  // What it finds in the first of them besides the world, as SQL.
  std::string rows = {};
};

void PrintTo(const OperationCase& operation, std::ostream* out) { *out << operation.name; }

Argument Text(const std::string& text) { return Value(text); }
Argument Number(std::int64_t number) { return Value(number); }

Arguments Texts(const std::vector<std::string>& texts) { return {texts.begin(), texts.end()}; }

Arguments ProfileArguments(const std::string& pin) {
  Arguments arguments =
      Texts({pin, "CLINIC", "CONTACT", "1 MAIN", "SUITE 2", "SPRINGFIELD", "IL", "62701", "NOTE",
             "(217) 555-0101", "(217) 555-0102", "MAILER", "2 MAIN", "SUITE 3", "DECATUR", "IL",
             "62702", "(217) 555-0103", "(217) 555-0104"});
  arguments.emplace_back(Value(true));
  arguments.push_back(Number(15));
  for (const char* const text :
       {"1/5/2004", "12", "ANN", "B", "MD", "LINK", "ALPHA", "Y", "NORTH", "C1", "C2", "C3"}) {
    arguments.push_back(Text(text));
  }
  return arguments;
}

Arguments DosesArguments() {
  Arguments arguments = Texts({"1/5/2004", "P1", "HEPA", "2", "1"});
  for (std::int64_t group = 1; group <= 13; ++group) arguments.push_back(Number(group));
  arguments.insert(arguments.end(), {Number(91), Number(1), Number(2), Number(3)});
  return arguments;
}

std::vector<OperationCase> OperationCases() {
  const Arguments order = {Text("1/5/2004"), Text("P1"), Text("HEPA"), Number(20),
                           Text("3"),        Text("1"),  Text("PO"),   Text("MERCK")};
  const Arguments adjustment = {Text("D01"), Text("1/5/2004"), Text("1/6/2004"), Text("RE"),
                                Text("P1"),  Text("HEPA"),     Text("A1"),       Number(5)};
  const Arguments depotOrder = {Text("1/5/2004"), Text("D01"), Text("P1"), Text("HEPA"),
                                Number(20),       Text("A1"),  Text("1"),  Text("1/4/2004")};
  const Arguments enrollment =
      Texts({"P1", "A", "2", "10", "11", "12", "13", "14", "15", "16", "17"});
  const Arguments physician = Texts({"P1", "DOE", "ANN", "B", "MD", "S1", "M1", "L1"});
  const std::string findsPhysician =
      "INSERT INTO physicn (pin, lastname, firstname) VALUES ('P1', 'DOE', 'ANN')";
  return {
      {"openConnection", "openConnection", Texts({"Provider=SQLite;Data Source=other.db"})},
      {"manufacturerProviderOrderRead", "manufacturerProviderOrderRead",
       Texts({"P1", "1/1/2004", "HEPA", "A1", "12/31/2004"})},
      {"stockTableRead", "stockTableRead", Texts({"P1", "HEPA", "A1", "1/1/2004", "12/31/2004"})},
      {"inventoryOnHandRead", "inventoryOnHandRead", Texts({"D01", "HEPA"})},
      {"CheckVaccActive", "CheckVaccActive", Texts({"HEPA"})},
      {"ManufacturerOrderInsert", "manufacturerProviderOrderCreateUpdate", order, {"neworder"}},
      {"ManufacturerOrderUpdate",
       "manufacturerProviderOrderCreateUpdate",
       order,
       {"neworder"},
       "INSERT INTO neworder (pin, orddate, vaccine, fcode1, orddose) VALUES "
       "('P1', '2004-01-05', 'HEPA', '3', 7)"},
      {"ProfileInsert", "providerProfileUpdate", ProfileArguments("NEW"), {"provider"}},
      {"ProfileUpdate", "providerProfileUpdate", ProfileArguments("P1"), {"provider"}},
      {"AdjustmentInsert", "providerInventoryAdjustmentUpdate", adjustment, {"distrib"}},
      {"AdjustmentUpdate",
       "providerInventoryAdjustmentUpdate",
       adjustment,
       {"distrib"},
       "INSERT INTO distrib (frompin, pin, vaccine, lot, dateout, action, doses) VALUES "
       "('D01', 'P1', 'HEPA', 'A1', '2004-01-06', 2, 7)"},
      {"ShippingData",
       "providerShippingDataUpdate",
       Texts({"P1", "CLINIC", "CONTACT", "1 MAIN", "SUITE 2", "SPRINGFIELD", "IL", "62701", "NOTE",
              "(217) 555-0101", "(217) 555-0102", "12", "ANN", "B", "MD"}),
       {"provider"}},
      {"DosesInsert", "DosesAdministeredUpdate", DosesArguments(), {"dosesadm"}},
      {"DosesUpdate",
       "DosesAdministeredUpdate",
       DosesArguments(),
       {"dosesadm"},
       "INSERT INTO dosesadm (pin, vaccine, dose, sector, adate) VALUES "
       "('P1', 'HEPA', 2, 1, '2004-01-05')"},
      {"DepotOrderInsert", "DepotProviderOrderUpdate", depotOrder, {"neworder"}},
      {"DepotOrderUpdate",
       "DepotProviderOrderUpdate",
       depotOrder,
       {"distrib", "neworder"},
       "INSERT INTO distrib (frompin, pin, vaccine, lot, dateout, action, doses) VALUES "
       "('D01', 'P1', 'HEPA', 'A1', '2004-01-05', 1, 7)"},
      {"EnrollmentInsert", "providerEnrollmentAddUpdate", enrollment, {"enroll"}},
      {"EnrollmentUpdate",
       "providerEnrollmentAddUpdate",
       enrollment,
       {"enroll"},
       "INSERT INTO enroll (pin) VALUES ('P1')"},
      {"AdditionalInfo",
       "providerAdditionalInfoUpdate",
       Texts({"P1", "TYPE", "15", "1/5/2004", "COHORT", "EMP", "YES"}),
       {"provider"}},
      {"PhysicianInsert", "physicianAddUpdate", physician, {"physicn"}},
      {"PhysicianUpdate", "physicianAddUpdate", physician, {"physicn"}, findsPhysician},
      {"InventoryAdd", "provinvAdd", Texts({"P1", "HEPA", "12", "1/5/2004"}), {"provhas"}},
      {"PhysicianDelete",
       "physicianDeleteByPin",
       Texts({"P1"}),
       {"physicn"},
       findsPhysician + ";" + findsPhysician},
  };
}

// --- What goes wrong --------------------------------------------------------------

const std::size_t kOverLong = 50000;

std::vector<std::pair<std::string, std::string>> BadTexts() {
  return {
      {"blank", ""},
      {"one blank", " "},
      {"blanks", std::string(kOverLong, ' ')},
      {"over-long letters", std::string(kOverLong, 'A')},
      {"over-long digits", std::string(kOverLong, '1')},
      {"a mebibyte", std::string(std::size_t{1} << 20U, 'x')},
      {"accents", "Éva Ñandú ßÿ"},
      {"emoji", "💉👩‍⚕️🏥"},
      {"combining marks", "e\u0301u\u0308o\u0308"},
      {"right to left", "\u202Eשלום مرحبا\u202C"},
      {"U+0000 inside", "A\0B"s},
      {"U+0000 behind a number", "1\0' OR 1=1"s},
      {"U+0000 alone", "\0"s},
      {"apostrophe", "O'Neil"},
      {"apostrophe behind a number", "1'"},
      {"apostrophe behind a date", "1/5/2004'"},
      {"doubled apostrophe", "O''Neil"},
      {"typographic apostrophe", "O\u2019Neil"},
      {"opening brace", "{1/5/2004"},
      {"closing brace", "1/5/2004}"},
      {"braces", "}{"},
      {"always true", "' OR '1'='1"},
      {"drop", "x'; DROP TABLE subdiv; --"},
      {"delete", "P1'; DELETE FROM provider WHERE '1'='1"},
      {"update", "1; UPDATE provider SET active = 'N'; --"},
      {"number that is always true", "1 OR 1=1"},
      {"number with a comment", "1 --"},
      {"number with a subquery", "(SELECT max(inextid) FROM nextid)"},
      {"date that is always true", "1/5/2004} OR {1/5/2004} = {1/5/2004"},
      {"date with a deletion", "1/5/2004}; DELETE FROM neworder; --"},
      {"union", "x' UNION SELECT pin, lastname, 1, 1, 1, 1, 1 FROM provider --"},
      {"backslash", "\\'; DELETE FROM physicn; --"},
      {"double quote", "\" OR \"\"=\""},
      {"wildcards", "%_*?"},
      {"parameters", ":1 ?1 @p $1 {0} %s"},
      {"line breaks", "A\r\nB\tC"},
  };
}

bool IsOfBlanks(const std::string& text) {
  return text.find_first_not_of(' ') == std::string::npos;
}

const std::vector<std::string>& NotUtf8() {
  static const std::vector<std::string> texts = {"\xFF",               // no byte of UTF-8
                                                 "1/5/2004\xC3",       // an unfinished character
                                                 "\xA9P1",             // one that never began
                                                 "\xC0\x80",           // a longer form than needed
                                                 "\xED\xA0\x80",       // half of a surrogate pair
                                                 "\xF4\x90\x80\x80"};  // beyond the last code point
  return texts;
}

// --- The world and what may change in it ---------------------------------------------

using Tables = std::map<std::string, std::vector<Row>>;

struct Change {
  std::vector<Row> removed;
  std::vector<Row> added;
};

std::map<std::string, Change> Changes(const Tables& before, const Tables& after) {
  std::map<std::string, Change> changes;
  for (const auto& [table, rows] : before) {
    const std::vector<Row>& now = after.at(table);
    if (rows == now) continue;
    Change& change = changes[table];
    std::set_difference(rows.begin(), rows.end(), now.begin(), now.end(),
                        std::back_inserter(change.removed));
    std::set_difference(now.begin(), now.end(), rows.begin(), rows.end(),
                        std::back_inserter(change.added));
  }
  return changes;
}

// What came of a call.
struct Outcome {
  std::optional<Error> error;
  CallResult result;
  Tables after;
};

// The numbers that a call may be refused with: a rule's, one of a conversion, or one
// of a statement or value that the database does not take.
bool IsClear(const Error& error) {
  const std::int32_t code = error.number() - kObjectErrorBase;
  const bool ofARule = code == 2000 || (code >= 20001 && code <= 20143);
  const std::set<std::int32_t> others = {20022,
                                         6,
                                         13,
                                         Numbered(EngineError::kStatementRefused),
                                         Numbered(EngineError::kValueCannotBeConverted),
                                         Numbered(EngineError::kValueOutOfRange)};
  return (ofARule || others.contains(error.number())) && !error.description().empty();
}

std::vector<Row> CellsOf(const CallResult& result) {
  const auto* const table = std::get_if<cResultSet>(&result);
  return table == nullptr ? std::vector<Row>{} : Cells(*table);
}

class BadInput : public DatabaseTest, public ::testing::WithParamInterface<OperationCase> {
 protected:
  void SetUp() override {
    std::vector<std::string> tables;
    for (const auto& [table, unused] : World()) tables.push_back(table);
    Fill(tables);
    world_ = ReadTables();
    static_cast<void>(lotrix().Connection());
  }

  [[nodiscard]] const OperationCase& operation() const { return GetParam(); }
  [[nodiscard]] const Member& member() const { return MemberNamed(operation().member); }
  [[nodiscard]] const Tables& world() const { return world_; }

  // The tables. Beside each row that the calls work on stands one of somebody else's.
  static const std::vector<std::pair<std::string, std::string>>& World() {
    static const std::vector<std::pair<std::string, std::string>> rows = {
        {"provider",
         "(pin, lastname, extension, firstname, sector, active, codes) VALUES ('P1', "
         "'OLD NAME', '1', 'OLD', 15, 'Y', ''), ('D01', '', '', '', 30, 'Y', ''), "
         "('CANARY', 'X', 'X', 'X', 15, 'Y', '')"},
        {"enroll", "(pin, ensource, allkids1) VALUES ('CANARY', 'A', 1)"},
        {"physicn", "(pin, lastname, firstname, initial) VALUES ('CANARY', 'DOE', 'ANN', 'X')"},
        {"neworder",
         "(pin, orddate, vaccine, fcode1, orddose) VALUES ('CANARY', '2004-01-05', "
         "'HEPA', '3', 1)"},
        {"influenza",
         "(pin, orddate, vaccine, fcode1, orddose) VALUES ('CANARY', '2004-01-05', "
         "'FLU', '3', 1)"},
        {"distrib",
         "(frompin, pin, vaccine, lot, dateout, action, doses) VALUES ('D01', "
         "'CANARY', 'HEPA', 'A1', '2004-01-05', 1, 1), ('D01', 'CANARY', 'HEPA', 'A1', "
         "'2004-01-06', 2, 1)"},
        {"provhas", "(pin, vaccine, doses) VALUES ('CANARY', 'HEPA', 1)"},
        {"dosesadm",
         "(pin, vaccine, dose, sector, adate, g1) VALUES ('CANARY', 'HEPA', 2, 1, "
         "'2004-01-05', 1)"},
        {"stock",
         "(pin, datein, doses, lot, vaccine, tracking) VALUES ('P1', '2004-01-05', 1, "
         "'A1', 'HEPA', 'T'), ('CANARY', '2004-01-05', 2, 'A1', 'HEPA', 'T'), ('P1', "
         "'2004-01-05', 3, 'A2', 'HEPA', 'T')"},
        {"lots",
         "(vaccine, lot, expiry, maker, remain, size, pin) VALUES ('HEPA', 'A1', "
         "'2027-01-01', 'MERCK', 1, 1, 'D01'), ('HEPA', 'A1', '2027-01-01', 'MERCK', "
         "2, 2, 'CANARY')"},
        {"pvaccref",
         "(vaccine, maker, \"begin\", \"end\", minbulk, unitsize, pkgsize, ndcno, "
         "cost, contractid, sel_maker, dos_wind, excfunds, descrip, locactiv, maxno) "
         "VALUES ('HEPA', 'MERCK', '2004-01-01', '2004-12-31', 1, 1, 10, 'N', 12.5, "
         "'C', 'S', 'W', 'E', 'D', (1 = 0), 3), ('HEPA', 'OTHER', '2004-01-01', "
         "'2004-12-31', 1, 1, 1, 'N', 12.5, 'C', 'S', 'W', 'E', 'D', (1 = 1), 3)"},
        {"vaccref", "(vaccine, maxno, locactiv) VALUES ('HEPA', 3, 'Y')"},
        {"funding", "(fundcode) VALUES ('1'), ('3')"},
        {"actref", "(status, action) VALUES ('RE', 2)"},
        {"sectoref", "(sector) VALUES (15)"},
        {"subdiv", "(subdiv) VALUES ('NORTH')"},
        {"zipcodes", "(zip, cntyname) VALUES ('62701', 'SANGAMON')"},
        {"nextid",
         "(ctablename, inextid) VALUES ('DISTRIB', 10), ('SEEKDIST', 20), ('PROVHAS', "
         "30), ('DOSESADM', 40), ('PROVIDER', 50), ('CANARY', 60)"},
    };
    return rows;
  }

  // Those tables as they were made.
  void Fill(const std::vector<std::string>& tables) {
    std::string sql = "BEGIN;";
    for (const auto& [table, rows] : World()) {
      if (std::count(tables.begin(), tables.end(), table) == 0) continue;
      sql.append("DELETE FROM ").append(table).append(";");
      sql.append("INSERT INTO ").append(table).append(" ").append(rows).append(";");
      if (!operation().rows.empty() && operation().writes[0] == table) {
        sql.append(operation().rows).append(";");
      }
    }
    Execute(sql + "COMMIT");
  }

  // Every table, its rows in one fixed order.
  Tables ReadTables() {
    Tables tables;
    Execute("BEGIN");
    for (const auto& [table, unused] : World()) {
      tables[table] = Query("SELECT * FROM " + table);
      std::sort(tables[table].begin(), tables[table].end());
    }
    Execute("COMMIT");
    return tables;
  }

  // The operation in a world as it was made, with one argument in place of its like.
  Outcome CallWith(std::size_t position, const Argument& argument) {
    Arguments arguments = operation().arguments;
    arguments[position] = argument;
    return CallWith(arguments);
  }
  Outcome CallWith(const Arguments& arguments) {
    if (!changed_.empty()) Fill(changed_);
    Outcome outcome;
    try {
      outcome.result = Call(lotrix(), member(), std::span<const Argument>(arguments));
    } catch (const Error& error) {
      outcome.error = error;
    } catch (const std::exception& other) {
      ADD_FAILURE() << "another exception: " << other.what();
    }
    outcome.after = ReadTables();
    changed_.clear();
    for (const auto& [table, rows] : outcome.after) {
      if (rows != world_.at(table)) changed_.push_back(table);
    }
    return outcome;
  }

  // Keys may have been taken, each from its own row and one at a time.
  void ExpectOnlyKeysTaken(const Change& keys) {
    ASSERT_EQ(keys.removed.size(), keys.added.size());
    for (std::size_t index = 0; index < keys.removed.size(); ++index) {
      const Row& before = keys.removed[index];
      const Row& after = keys.added[index];
      EXPECT_EQ(after[0], before[0]);
      EXPECT_NE(after[0], "CANARY");
      EXPECT_EQ(std::stoll(after[1]), std::stoll(before[1]) + 1) << after[0];
    }
  }

  void ExpectNoMoreThanItsOwnRows(const Outcome& outcome) {
    std::map<std::string, Change> changes = Changes(world_, outcome.after);
    ExpectOnlyKeysTaken(changes["nextid"]);
    changes.erase("nextid");
    if (outcome.error) {
      EXPECT_TRUE(changes.empty()) << "changed " << changes.begin()->first;
      return;
    }
    // A new provider gets its enrollment as well.
    if (operation().member == "providerProfileUpdate" && changes["provider"].removed.empty()) {
      EXPECT_TRUE(changes["enroll"].removed.empty());
      EXPECT_EQ(changes["enroll"].added.size(), 1U);
      changes.erase("enroll");
    }
    EXPECT_LE(changes.size(), 1U);
    for (const auto& [table, change] : changes) {
      EXPECT_TRUE(std::count(operation().writes.begin(), operation().writes.end(), table)) << table;
      if (operation().member == "physicianDeleteByPin") {
        EXPECT_TRUE(change.added.empty());
      } else {
        EXPECT_LE(change.removed.size(), 1U);
        EXPECT_EQ(change.added.size(), 1U);
      }
      for (const Row& row : change.removed) {
        EXPECT_FALSE(std::count(row.begin(), row.end(), "CANARY")) << table;
      }
      // Neither can stand between the quotes of a statement.
      for (const Row& row : change.added) {
        for (const std::string& cell : row) {
          EXPECT_EQ(cell.find_first_of("'\0"s), std::string::npos) << table << ": " << cell;
        }
      }
    }
  }

  // Who refuses a text: the operation, or the conversion in front of it. A number
  // is read up to its first U+0000.
  [[nodiscard]] static std::string SourceOf(const std::string& text, ParameterType type) {
    const bool converted = type == ParameterType::kLong || type == ParameterType::kBoolean;
    return converted && !text.starts_with("1\0"s) ? "Lotrix" : "LOTRIX DLL";
  }

  void ExpectStillWorks() {
    SCOPED_TRACE("with right arguments");
    const Outcome outcome = CallWith(operation().arguments);
    EXPECT_FALSE(outcome.error) << outcome.error->description();
    ExpectNoMoreThanItsOwnRows(outcome);
    EXPECT_FALSE(lotrix().Connection()->InTransaction());
  }

  [[nodiscard]] std::uintmax_t LogSize() const { return std::filesystem::file_size(logPath()); }

 private:
  Tables world_;
  std::vector<std::string> changed_;  // the tables that the last call has changed
};

// What all the others stand on: with right arguments each operation does its work.
TEST_P(BadInput, RightArgumentsAreTaken) {
  ASSERT_EQ(operation().arguments.size(), member().parameters.size());
  const Outcome outcome = CallWith(operation().arguments);
  ASSERT_FALSE(outcome.error) << outcome.error->description();
  ExpectNoMoreThanItsOwnRows(outcome);
  const std::map<std::string, Change> changes = Changes(world(), outcome.after);
  if (operation().writes.empty()) {
    EXPECT_TRUE(changes.empty());
  } else {
    EXPECT_TRUE(changes.contains(operation().writes[0]));
  }
  if (std::holds_alternative<cResultSet>(outcome.result)) {
    EXPECT_EQ(CellsOf(outcome.result).size(), 1U);
  }
}

TEST_P(BadInput, EveryBadTextIsRefusedOrTakenAndNothingElseChanges) {
  const std::vector<Row> rightRows = CellsOf(CallWith(operation().arguments).result);
  for (std::size_t position = 0; position < member().parameters.size(); ++position) {
    const Parameter& parameter = member().parameters[position];
    for (const auto& [name, text] : BadTexts()) {
      SCOPED_TRACE(std::string(parameter.name) + ": " + name);
      const Outcome outcome = CallWith(position, Text(text));
      ExpectNoMoreThanItsOwnRows(outcome);
      if (outcome.error) {
        EXPECT_TRUE(IsClear(*outcome.error))
            << outcome.error->number() << " " << outcome.error->description();
        EXPECT_EQ(outcome.error->source(), SourceOf(text, parameter.type));
        continue;
      }
      // A filter that finds nothing shows nobody else's rows.
      if (IsOfBlanks(text)) continue;
      for (const Row& row : CellsOf(outcome.result)) {
        EXPECT_TRUE(std::count(rightRows.begin(), rightRows.end(), row)) << row[0];
      }
    }
  }
  ExpectStillWorks();
}

TEST_P(BadInput, TextThatIsNotUtf8IsRefusedBeforeAnythingRuns) {
  Watch(*lotrix().Connection());
  for (std::size_t position = 0; position < member().parameters.size(); ++position) {
    for (std::size_t index = 0; index < NotUtf8().size(); ++index) {
      SCOPED_TRACE(std::string(member().parameters[position].name) + ", text " +
                   std::to_string(index));
      const std::uintmax_t logged = LogSize();
      const Outcome outcome = CallWith(position, Text(NotUtf8()[index]));
      ASSERT_TRUE(outcome.error.has_value());
      EXPECT_EQ(outcome.error->number(), 5);
      EXPECT_EQ(outcome.error->source(), "Lotrix");
      EXPECT_FALSE(outcome.error->description().empty());
      EXPECT_EQ(LogSize(), logged);
      EXPECT_EQ(outcome.after, world());
      EXPECT_EQ(Statements(), std::vector<std::string>{});
      EXPECT_EQ(shown(), std::vector<std::string>{});
    }
  }
  ExpectStillWorks();
}

// --- Wrong types ------------------------------------------------------------------

class WrongType : public BadInput {
 protected:
  void SetUp() override {
    BadInput::SetUp();
    Watch(*lotrix().Connection());
  }

  // The value does in that place all that the other does.
  void ExpectTakenAs(std::size_t position, const Value& value, const Value& like) {
    static_cast<void>(Statements());
    const Outcome expected = CallWith(position, like);
    const std::vector<std::string> expectedStatements = Statements();
    const std::vector<std::string> expectedShown = shown();
    const Outcome outcome = CallWith(position, value);
    EXPECT_EQ(Statements(), expectedStatements);
    EXPECT_EQ(outcome.after, expected.after);
    EXPECT_EQ(CellsOf(outcome.result), CellsOf(expected.result));
    ASSERT_EQ(outcome.error.has_value(), expected.error.has_value());
    if (expected.error) {
      ExpectError(*outcome.error, expected.error->number(), expected.error->description(),
                  expected.error->source());
    }
    // Shown once more, or not at all both times.
    EXPECT_EQ(shown().size() - expectedShown.size(),
              operation().member == "CheckVaccActive" ? 1U : 0U);
    if (!shown().empty()) {
      EXPECT_EQ(shown().back(), expectedShown.back());
    }
    ExpectNoMoreThanItsOwnRows(outcome);
  }

  // Refused by the conversions: nothing is logged, nothing runs.
  void ExpectNotConverted(std::size_t position, const Value& value, std::int32_t number) {
    static_cast<void>(Statements());
    const std::uintmax_t logged = LogSize();
    const Outcome outcome = CallWith(position, value);
    ASSERT_TRUE(outcome.error.has_value());
    EXPECT_EQ(outcome.error->number(), number);
    EXPECT_EQ(outcome.error->source(), "Lotrix");
    EXPECT_FALSE(outcome.error->description().empty());
    EXPECT_EQ(LogSize(), logged);
    EXPECT_EQ(outcome.after, world());
    EXPECT_EQ(Statements(), std::vector<std::string>{});
  }

  template <class Check>
  void ForEachParameter(ParameterType type, const Check& check) {
    for (std::size_t position = 0; position < member().parameters.size(); ++position) {
      if (member().parameters[position].type != type) continue;
      SCOPED_TRACE(std::string(member().parameters[position].name));
      check(position);
    }
  }
};

// Numbers and logicals with the text that each becomes.
const std::vector<std::pair<Value, std::string>>& TextForms() {
  static const std::vector<std::pair<Value, std::string>> forms = {
      {std::int64_t{0}, "0"},   {std::int64_t{42}, "42"},
      {std::int64_t{-7}, "-7"}, {std::int64_t{3000000000}, "3000000000"},
      {12.5, "12.5"},           {1e15, "1E+15"},
      {true, "True"},           {false, "False"}};
  return forms;
}

TEST_P(WrongType, NumbersAndLogicalsBecomeTheirTexts) {
  ForEachParameter(ParameterType::kString, [&](std::size_t position) {
    for (const auto& [value, text] : TextForms()) {
      SCOPED_TRACE(text);
      ExpectTakenAs(position, value, Value(text));
    }
  });
  ForEachParameter(ParameterType::kVariant, [&](std::size_t position) {
    // The one that becomes a number.
    const bool isNumber = member().parameters[position].name == "aClassificationCode";
    for (const auto& [value, text] : TextForms()) {
      SCOPED_TRACE(text);
      const auto* const logical = std::get_if<bool>(&value);
      ExpectTakenAs(
          position, value,
          isNumber && logical != nullptr ? Value(std::int64_t{*logical ? -1 : 0}) : Value(text));
    }
  });
}

TEST_P(WrongType, TextsFractionsAndLogicalsBecomeWholeNumbers) {
  ForEachParameter(ParameterType::kLong, [&](std::size_t position) {
    const std::vector<std::pair<Value, std::int64_t>> forms = {
        {"2"s, 2},         {" 1,000 "s, 1000},
        {"&H1F"s, 31},     {"(5)"s, -5},
        {"2.5"s, 2},       {"3.5"s, 4},
        {"7\0x"s, 7},      {2.5, 2},
        {3.5, 4},          {-0.5, 0},
        {true, -1},        {false, 0},
        {1e9, 1000000000}, {"2147483647.4"s, 2147483647}};
    for (const auto& [value, number] : forms) {
      SCOPED_TRACE(number);
      ExpectTakenAs(position, value, Value(number));
    }
    for (const char* const text : {"", " ", "many", "1 2", "True", "0x1F", "5%", "1/5/2004"}) {
      SCOPED_TRACE(text);
      ExpectNotConverted(position, Value(text), 13);
    }
    for (const Value& value : {Value(std::int64_t{2147483648}), Value(std::int64_t{-2147483649}),
                               Value(2147483647.5), Value(1e300), Value("2147483648"),
                               Value("&H1FFFFFFFF"), Value(std::string(kOverLong, '9'))}) {
      ExpectNotConverted(position, value, 6);
    }
  });
}

TEST_P(WrongType, TextsAndNumbersBecomeLogicals) {
  ForEachParameter(ParameterType::kBoolean, [&](std::size_t position) {
    for (const Value& value : {Value("True"), Value("tRUE"), Value(std::int64_t{1}),
                               Value(std::int64_t{-1}), Value(std::int64_t{42}), Value(0.5)}) {
      ExpectTakenAs(position, value, Value(true));
    }
    for (const Value& value :
         {Value("False"), Value("FALSE"), Value(std::int64_t{0}), Value(0.0), Value(-0.0)}) {
      ExpectTakenAs(position, value, Value(false));
    }
    for (const char* const text : {"", " ", "yes", "Y", "T", ".T.", "Truely"}) {
      SCOPED_TRACE(text);
      ExpectNotConverted(position, Value(text), 13);
    }
  });
}

TEST_P(WrongType, CollectionsAreOfTheWrongTypeEverywhere) {
  auto filled = std::make_shared<Collection>();
  filled->Add(Value("P1"));
  for (std::size_t position = 0; position < member().parameters.size(); ++position) {
    SCOPED_TRACE(std::string(member().parameters[position].name));
    for (const Value& value : {Value(std::make_shared<Collection>()), Value(filled),
                               Value(std::shared_ptr<Collection>())}) {
      if (member().parameters[position].type != ParameterType::kVariant) {
        ExpectNotConverted(position, value, 13);
        continue;
      }
      // A Variant takes anything; the operation does not.
      const Outcome outcome = CallWith(position, value);
      ASSERT_TRUE(outcome.error.has_value());
      EXPECT_EQ(outcome.error->number(), 13);
      ExpectNoMoreThanItsOwnRows(outcome);
    }
  }
  ExpectStillWorks();
}

std::string NameOf(const ::testing::TestParamInfo<OperationCase>& operation) {
  return operation.param.name;
}

INSTANTIATE_TEST_SUITE_P(Operations, BadInput, ::testing::ValuesIn(OperationCases()), NameOf);
INSTANTIATE_TEST_SUITE_P(Operations, WrongType, ::testing::ValuesIn(OperationCases()), NameOf);

class BadConnectionString : public DatabaseTest {};

// None of them names a provider.
TEST_F(BadConnectionString, IsTakenAndRefusedWhenItIsOpened) {
  cLotrix& object = lotrix();
  for (const auto& [name, text] : BadTexts()) {
    SCOPED_TRACE(name);
    object.openConnection(text);
    const Error error = Refusal([&] { static_cast<void>(object.stockTableRead()); });
    // One that is no list of keywords and values may fail before its provider is looked for.
    EXPECT_TRUE(error.number() == 3706 || error.number() == Numbered(EngineError::kFailed))
        << error.number();
    EXPECT_FALSE(error.description().empty());
    EXPECT_EQ(error.source(), "LOTRIX DLL");
  }
  object.openConnection(database().ConnectionString());
  EXPECT_EQ(object.stockTableRead().Rows(), 0);
}

TEST(BadInputCoverage, EveryMemberWithParametersIsThere) {
  std::set<std::string> published;
  for (const Member& member : Members()) {
    if (!member.parameters.empty()) published.emplace(member.name);
  }
  std::set<std::string> called;
  for (const OperationCase& operation : OperationCases()) called.insert(operation.member);
  EXPECT_EQ(called, published);
}

}  // namespace
}  // namespace lotrix::test

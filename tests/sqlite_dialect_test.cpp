// What SQLite's dialect translates the component's statements to, and which indexes
// serve them then.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "lotrix/connection.h"
#include "src/database/providers/sqlite/dialect.h"
#include "src/database/statement.h"
#include "tests/support/engine.h"
#include "tests/support/engine_sqlite.h"
#include "tests/support/fixture.h"

namespace lotrix::test {
namespace {

using namespace std::string_literals;
using Texts = std::vector<std::string>;

constexpr auto kRefused = static_cast<std::int32_t>(0x80040E14U);
constexpr auto kNoDate = static_cast<std::int32_t>(0x80040E07U);

// --- Translations ----------------------------------------------------------

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

int TranslationError(const std::string& text) {
  try {
    static_cast<void>(sqlite::Translate(text));
  } catch (const Error& error) {
    return error.number();
  }
  return 0;
}

TEST(SqliteTranslation, SplicedValuesBecomeParameters) {
  const sqlite::Translation translation = sqlite::Translate(
      "UPDATE stock SET doses = \0, datein = {\0} WHERE pin = '\0' AND lot = 'x\0y'"s);
  ASSERT_EQ(translation.parameters.size(), 4U);
  EXPECT_EQ(translation.parameters[0].place, Place::kNumber);
  EXPECT_EQ(translation.parameters[0].content, "\0"s);
  EXPECT_EQ(translation.parameters[1].place, Place::kDate);
  EXPECT_EQ(translation.parameters[1].content, "\0"s);
  EXPECT_EQ(translation.parameters[2].place, Place::kText);
  EXPECT_EQ(translation.parameters[2].content, "\0"s);
  EXPECT_EQ(translation.parameters[3].place, Place::kText);
  EXPECT_EQ(translation.parameters[3].content, "x\0y"s);
  EXPECT_FALSE(Contains(translation.sql, "\0"s));
}

TEST(SqliteTranslation, LiteralsInsideAFunctionStayInTheTemplate) {
  const sqlite::Translation translation = sqlite::Translate(
      "SELECT pin FROM stock WHERE ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = '\0'"s);
  EXPECT_EQ(translation.parameters.size(), 1U);
  EXPECT_TRUE(Contains(translation.sql, "'-'")) << translation.sql;
  EXPECT_TRUE(Contains(translation.sql, "replace(")) << translation.sql;
}

TEST(SqliteTranslation, OneTemplateHasOneTranslation) {
  const auto translate = [](const std::string& pin) {
    Statement statement;
    statement << "SELECT lot FROM stock WHERE pin = '" << pin << "'";
    return sqlite::Translate(statement.templateText()).sql;
  };
  EXPECT_EQ(translate("A1"), translate("it is something else"));
}

TEST(SqliteTranslation, ADateThatStandsInTheTextIsLookedAtWhenItIsTranslated) {
  EXPECT_EQ(TranslationError("SELECT pin FROM stock WHERE datein = {1/5/2004}"), 0);
  EXPECT_EQ(TranslationError("SELECT pin FROM stock WHERE datein = {13/45/2001}"), kNoDate);
  EXPECT_EQ(TranslationError("SELECT pin FROM stock WHERE datein = {soon}"), kNoDate);
  EXPECT_EQ(TranslationError("SELECT pin FROM stock WHERE datein = {soon} ;"), kRefused);
}

// --- Indexes ---------------------------------------------------------------

class SqliteIndexTest : public ::testing::Test {
 protected:
  SqliteIndexTest() {
    const std::string file = folder_.path() + "/test.db";
    Connection connection;
    connection.Open("Provider=SQLite;Data Source=" + file);
    connection.CreateSchema();
    if (sqlite3_open(file.c_str(), &database_) != SQLITE_OK) throw std::runtime_error(file);
  }
  ~SqliteIndexTest() override { sqlite3_close(database_); }

  Texts Plan(const std::string& templateText) {
    const std::string sql = "EXPLAIN QUERY PLAN " + sqlite::Translate(templateText).sql;
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(database_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
      throw std::runtime_error(sqlite3_errmsg(database_));
    }
    Texts lines;
    while (sqlite3_step(statement) == SQLITE_ROW) {
      lines.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(statement, 3)));
    }
    sqlite3_finalize(statement);
    return lines;
  }

 private:
  TemporaryFolder folder_;
  sqlite3* database_ = nullptr;
};

TEST_F(SqliteIndexTest, EveryFilterOfAnOperationIsServedByAnIndex) {
  const std::string lot = "ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),'')))";
  const std::string doses =
      "ltrim(rtrim(pin)) = '\0' AND ltrim(rtrim(vaccine))='\0' AND dose = \0 AND sector = \0 AND "
      "adate ={\0} "s;
  const std::string order =
      "WHERE ltrim(rtrim(pin)) = '\0' AND ltrim(rtrim(vaccine)) = '\0' AND orddate = {\0} AND "
      "ltrim(rtrim(fcode1)) = '\0'"s;
  for (
      const std::string& text :
      {"SELECT inextid FROM Nextid WHERE ltrim(rtrim(upper(ctablename))) = '\0' "s,
       "UPDATE nextid SET inextid  = \0 WHERE ltrim(rtrim(upper(ctablename))) = '\0' "s,
       "SELECT DISTINCT cntyname FROM zipcodes WHERE zip = '\0' "s,
       "SELECT * FROM pvaccref WHERE ltrim(rtrim(vaccine)) == '\0' AND ({\0} BETWEEN begin "
       "AND end)  and maker == '\0'  AND locactiv = .F."s,
       "SELECT * FROM pvaccref WHERE ltrim(rtrim(vaccine)) = '\0' AND pkgsize=10"s,
       "SELECT count(*) FROM subdiv WHERE ltrim(rtrim(subdiv)) = '\0'"s,
       "SELECT count(*) FROM provider WHERE ltrim(rtrim(active)) = 'Y' AND sector BETWEEN 30 "
       "AND 31 AND ltrim(rtrim(pin)) = '\0'"s,
       "SELECT count(*) FROM provider WHERE Sector BETWEEN 10 AND 29 AND ltrim(rtrim(pin)) = '\0'"s,
       "UPDATE provider SET cat2 = '\0' WHERE ltrim(rtrim(pin)) = '\0'"s,
       "SELECT count(*) FROM pvaccref WHERE ltrim(rtrim(vaccine)) == '\0' AND locactiv = .F."s,
       "SELECT MAX( maxno) FROM vaccref WHERE ltrim(rtrim(vaccine)) == '\0' AND locactiv== 'Y'"s,
       "SELECT count(*) FROM enroll WHERE ltrim(rtrim(pin)) = '\0'"s,
       "SELECT count(*) FROM physicn WHERE pin = '\0' AND lastname = '\0' AND firstname = '\0' "s,
       "Delete From physicn Where pin == '\0'"s,
       "SELECT count(*) FROM funding WHERE ltrim(rtrim(fundcode)) = '\0'"s,
       "SELECT count(*) FROM actref WHERE ltrim(rtrim(status)) = '\0' "s,
       "SELECT count(*) FROM sectoref WHERE sector = \0 AND sector BETWEEN 10 AND 29"s,
       "SELECT orddose FROM neworder "s + order,
       "UPDATE influenza SET orddose = 1 "s + order,
       "SELECT count(*) FROM DosesAdm WHERE "s + doses,
       "SELECT doses FROM distrib WHERE action = \0 AND ltrim(rtrim(pin)) = '\0' AND "
       "ltrim(rtrim(vaccine)) = '\0' AND "s +
           lot + " = '\0' AND dateout = {\0} "s,
       "SELECT count(*) FROM stock WHERE ltrim(rtrim(vaccine)) = '\0' AND "s + lot + " = '\0'"s,
       "SELECT Pin FROM Stock WHERE ltrim(rtrim(Vaccine)) = '\0' AND  tracking != ' '  order "
       "by datein desc "s,
       "SELECT Pin FROM Stock WHERE ltrim(rtrim(Pin)) = '\0' AND  tracking != ' '  order by "
       "datein desc "s,
       "SELECT Pin FROM Stock WHERE  Datein BETWEEN {\0}  AND {\0}  AND  tracking != ' '  "
       "order by datein desc "s,
       "SELECT Pin FROM Stock WHERE  "s + lot + " = '\0'  AND  tracking != ' ' "s,
       "Select l.Vaccine, l.Lot From Lots l, pvaccref v WHERE ltrim(rtrim(l.Pin)) = '\0' AND "
       "l.Expiry >=  {\0}  AND trim(l.Maker) is not NULL AND trim(l.vaccine) == "
       "trim(v.vaccine) AND v.locactiv = .T. ORDER BY l.Vaccine, l.Lot, l.Expiry"s}) {
    const Texts plan = Plan(text);
    EXPECT_FALSE(plan.empty()) << text;
    for (const std::string& line : plan) {
      EXPECT_NE(line.substr(0, 4), "SCAN") << text << "\n" << line;
    }
  }
}

// --- Storage ---------------------------------------------------------------

TEST(SqliteStorage, DigitsAreStoredAsTheKindOfTheirColumn) {
  SqliteDatabase database;
  Connection connection;
  connection.Open(database.ConnectionString());
  connection.Execute("INSERT INTO enroll (pin, allkids1) VALUES ('007', '12')");
  EXPECT_EQ(database.Query("SELECT pin, typeof(pin), allkids1, typeof(allkids1) FROM enroll"),
            (std::vector<Row>{{"007", "text", "12", "integer"}}));
}

}  // namespace
}  // namespace lotrix::test

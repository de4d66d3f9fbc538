// The tables and indexes, and the sample data.
#include "lotrix/schema.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "src/database/connection_access.h"
#include "src/database/providers/sqlite/dialect.h"
#include "src/utility/keys_and_lookups.h"
#include "src/validation/validation.h"
#include "tests/support/engine_postgresql.h"
#include "tests/support/fixture.h"

namespace lotrix::test {

namespace {

enum class Kind {
  kText,
  kDate,
  kLogical,
  kDouble,
  kAnyNumber,
  kWhole,
  kCount,  // a whole number, 0 unless something else is stored
};

// Columns of one kind that stand side by side, with blanks between.
struct Columns {
  Kind kind;
  std::string_view names;
};
struct Table {
  std::string name;
  std::vector<Columns> columns;
};

const std::vector<Table>& Tables() {
  static const std::vector<Columns> order = {
      {Kind::kText, "ordpin rectype pin"},
      {Kind::kDate, "orddate"},
      {Kind::kText, "vaccine"},
      {Kind::kCount, "orddose"},
      {Kind::kText, "fcode1"},
      {Kind::kCount, "fdose1 size"},
      {Kind::kDouble, "cost"},
      {Kind::kText, "maker contract ndcno"},
      {Kind::kDate, "chgdate"},
      {Kind::kText, "userid descrip"},
      {Kind::kCount, "seekid"},
  };
  static const std::vector<Table> tables = {
      {"provider",
       {{Kind::kText,
         "pin contact lastname address addres2 city state zipcode ml_contact ml_address "
         "ml_addres2 ml_city ml_state ml_zipcode note phone fax codes phone2 fax2"},
        {Kind::kDate, "createdate"},
        {Kind::kText, "county"},
        {Kind::kWhole, "provid"},
        {Kind::kAnyNumber, "sector"},
        {Kind::kDate, "datevfc"},
        {Kind::kText,
         "extension firstname initial title linkpin alphaid active subdiv cat1 cat2 cat3 cat4"},
        {Kind::kDate, "chgdate"},
        {Kind::kText, "userid"}}},
      {"enroll",
       {{Kind::kText, "pin ensource"},
        {Kind::kDate, "chgdate"},
        {Kind::kText, "userid"},
        {Kind::kCount,
         "allkids1 medicaid1 uninsured1 amindian1 fqhc_rhc1 vfckids1 g317kids1 statekids1 other1 "
         "allkids2 medicaid2 uninsured2 amindian2 fqhc_rhc2 vfckids2 g317kids2 statekids2 other2 "
         "allkids3 medicaid3 uninsured3 amindian3 fqhc_rhc3 vfckids3 g317kids3 statekids3 other3 "
         "allkids4 medicaid4 uninsured4 amindian4 fqhc_rhc4 vfckids4 g317kids4 statekids4 "
         "other4"}}},
      {"physicn",
       {{Kind::kText, "pin lastname firstname initial title other1 medicaidno medlicense"},
        {Kind::kDate, "chgdate"}}},
      {"neworder", order},
      {"influenza", order},
      {"distrib",
       {{Kind::kDate, "input dateout"},
        {Kind::kText, "frompin pin vaccine lot"},
        {Kind::kCount, "doses units fdose1"},
        {Kind::kAnyNumber, "action"},
        {Kind::kWhole, "distid"},
        {Kind::kText, "notes"},
        {Kind::kDate, "chgdate"},
        {Kind::kText, "status"},
        {Kind::kCount, "shipped"},
        {Kind::kText, "userid"}}},
      {"provhas",
       {{Kind::kText, "pin vaccine"},
        {Kind::kCount, "doses"},
        {Kind::kDate, "chgdate idate"},
        {Kind::kWhole, "provhasid"},
        {Kind::kText, "userid"}}},
      {"dosesadm",
       {{Kind::kDate, "adate"},
        {Kind::kText, "pin"},
        {Kind::kAnyNumber, "sector"},
        {Kind::kText, "vaccine"},
        {Kind::kCount, "position"},
        {Kind::kAnyNumber, "dose"},
        {Kind::kCount,
         "g1 g2 g3 g4 g5 g6 g7 g8 g9 g10 g11 g12 g13 rowtot dauzr1 dauzr2 dauzr3 dauzr4 dauzr5 "
         "dauzr6 dauzr7 dauzr8 dauzrtot"},
        {Kind::kDate, "chgdate"},
        {Kind::kText, "userid"},
        {Kind::kWhole, "dosesadmid"}}},
      {"stock",
       {{Kind::kText, "pin"},
        {Kind::kDate, "datein"},
        {Kind::kCount, "doses"},
        {Kind::kText, "lot vaccine maker"},
        {Kind::kDate, "expiry"},
        {Kind::kText, "tracking"}}},
      {"lots",
       {{Kind::kText, "vaccine lot"},
        {Kind::kDate, "expiry"},
        {Kind::kText, "maker"},
        {Kind::kCount, "remain size"},
        {Kind::kText, "pin"}}},
      {"pvaccref",
       {{Kind::kText, "vaccine maker"},
        {Kind::kDate, "begin end"},
        {Kind::kWhole, "minbulk unitsize pkgsize"},
        {Kind::kText, "ndcno"},
        {Kind::kDouble, "cost"},
        {Kind::kText, "contractid sel_maker dos_wind excfunds descrip"},
        {Kind::kLogical, "locactiv"},
        {Kind::kWhole, "maxno"}}},
      {"vaccref", {{Kind::kText, "vaccine"}, {Kind::kWhole, "maxno"}, {Kind::kText, "locactiv"}}},
      {"funding", {{Kind::kText, "fundcode"}}},
      {"actref", {{Kind::kText, "status"}, {Kind::kAnyNumber, "action"}}},
      {"sectoref", {{Kind::kAnyNumber, "sector"}}},
      {"subdiv", {{Kind::kText, "subdiv"}}},
      {"zipcodes", {{Kind::kText, "zip cntyname"}}},
      {"nextid", {{Kind::kText, "ctablename"}, {Kind::kWhole, "inextid"}}},
  };
  return tables;
}

std::vector<std::pair<std::string, Kind>> ColumnsOf(const Table& table) {
  std::vector<std::pair<std::string, Kind>> columns;
  for (const Columns& some : table.columns) {
    std::string_view rest = some.names;
    while (!rest.empty()) {
      const std::size_t end = std::min(rest.find(' '), rest.size());
      columns.emplace_back(rest.substr(0, end), some.kind);
      rest.remove_prefix(std::min(end + 1, rest.size()));
    }
  }
  return columns;
}

std::map<std::string, std::vector<Row>> Contents(TestDatabase& database) {
  std::map<std::string, std::vector<Row>> contents;
  for (const Table& table : Tables()) {
    std::vector<Row>& rows = contents[table.name] = database.Query("SELECT * FROM " + table.name);
    std::sort(rows.begin(), rows.end());
  }
  return contents;
}

std::string Join(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) joined += (joined.empty() ? "" : ", ") + text;
  return joined;
}

class SchemaTest : public DatabaseTest {
 protected:
  [[nodiscard]] int Count(const std::string& from) {
    return std::stoi(Query("SELECT count(*) FROM " + from).at(0).at(0));
  }
  [[nodiscard]] std::vector<std::string> Column(const std::string& query) {
    std::vector<std::string> values;
    for (const Row& row : Query(query)) values.push_back(row.at(0));
    return values;
  }
  void ExpectAllTablesEmpty() {
    for (const Table& table : Tables()) EXPECT_EQ(Count(table.name), 0) << table.name;
  }
};

// What is said of one engine's own tables.
class SqliteSchemaTest : public SchemaTest {};
class PostgresqlSchemaTest : public SchemaTest {};

// --- tables ------------------------------------------------------------------

TEST_F(SchemaTest, MakingTheSchemaPutsInNoRows) { ExpectAllTablesEmpty(); }

TEST_F(SchemaTest, MakingTheSchemaAgainLeavesRowsAlone) {
  Execute("INSERT INTO provider(pin, lastname) VALUES('ABC123', 'FIRST')");
  Execute("INSERT INTO nextid(ctablename, inextid) VALUES('Provider', 41)");
  const auto before = Contents(database());
  connection().CreateSchema();
  connection().CreateSchema();
  EXPECT_EQ(Contents(database()), before);
}

TEST_F(SchemaTest, MakingTheSchemaAgainLeavesTablesAndIndexesAlone) {
  const std::vector<Row> before = database().Definitions();
  ASSERT_FALSE(before.empty());
  connection().CreateSchema();
  EXPECT_EQ(database().Definitions(), before);
}

TEST_F(SchemaTest, EveryTableIsThereAndNoOther) {
  std::vector<std::string> expected;
  for (const Table& table : Tables()) expected.push_back(table.name);
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(database().TableNames(), expected);
}

TEST_F(SqliteSchemaTest, ColumnsStandInOrderWithTheirKindsAndDefaults) {
  const std::map<Kind, std::string> declared = {
      {Kind::kText, "TEXT"},     {Kind::kDate, "DATE"},         {Kind::kLogical, "LOGICAL"},
      {Kind::kDouble, "DOUBLE"}, {Kind::kAnyNumber, "NUMERIC"}, {Kind::kWhole, "INTEGER"},
      {Kind::kCount, "INTEGER"},
  };
  for (const Table& table : Tables()) {
    std::vector<std::string> expected;
    for (const auto& [name, kind] : ColumnsOf(table)) {
      expected.push_back(name + " " + declared.at(kind) + (kind == Kind::kCount ? " 0" : ""));
    }
    std::vector<std::string> actual;
    for (const Row& row : Query("SELECT name, type, dflt_value FROM pragma_table_info('" +
                                table.name + "') ORDER BY cid")) {
      actual.push_back(row[0] + " " + row[1] + (row[2] == "<null>" ? "" : " " + row[2]));
    }
    EXPECT_EQ(actual, expected) << table.name;
  }
}

TEST_F(PostgresqlSchemaTest, ColumnsStandInOrderWithTheirTypesAndDefaults) {
  // Texts sort by their bytes, as in every engine.
  const std::map<Kind, std::string> declared = {
      {Kind::kText, "text C"},       {Kind::kDate, "date"},
      {Kind::kLogical, "boolean"},   {Kind::kDouble, "double precision"},
      {Kind::kAnyNumber, "numeric"}, {Kind::kWhole, "bigint"},
      {Kind::kCount, "bigint 0"},
  };
  for (const Table& table : Tables()) {
    std::vector<std::string> expected;
    for (const auto& [name, kind] : ColumnsOf(table)) {
      expected.push_back(name + " " + declared.at(kind));
    }
    EXPECT_EQ(Column("SELECT concat_ws(' ', column_name, data_type, character_maximum_length, "
                     "collation_name, column_default, nullif(is_nullable, 'YES')) FROM "
                     "information_schema.columns WHERE table_name = '" +
                     table.name + "' AND table_schema = 'public' ORDER BY ordinal_position"),
              expected)
        << table.name;
  }
}

TEST_F(SchemaTest, ARowThatNamesNothingHoldsZeroCountsAndNulls) {
  for (const Table& table : Tables()) {
    Execute("INSERT INTO " + table.name + " DEFAULT VALUES");
    Row expected;
    for (const auto& [name, kind] : ColumnsOf(table)) {
      expected.emplace_back(kind == Kind::kCount ? "0" : "<null>");
    }
    EXPECT_EQ(Query("SELECT * FROM " + table.name), std::vector<Row>{expected}) << table.name;
  }
}

TEST_F(SchemaTest, EveryColumnMayBeNullAndEveryRowMayBeThereTwice) {
  for (const Table& table : Tables()) {
    const std::size_t columns = ColumnsOf(table).size();
    const std::string nulls = Join(std::vector<std::string>(columns, "NULL"));
    Execute("INSERT INTO " + table.name + " VALUES(" + nulls + ")");
    Execute("INSERT INTO " + table.name + " VALUES(" + nulls + ")");
    EXPECT_EQ(Query("SELECT * FROM " + table.name), std::vector<Row>(2, Row(columns, "<null>")))
        << table.name;
  }
}

TEST_F(SchemaTest, EqualRowsWithValuesMayBeThereTwice) {
  const std::map<Kind, std::string> values = {
      {Kind::kText, "'A1'"},    {Kind::kDate, "'2026-11-20'"}, {Kind::kLogical, "NULL"},
      {Kind::kDouble, "-12.5"}, {Kind::kAnyNumber, "-7"},      {Kind::kWhole, "-7"},
      {Kind::kCount, "-7"},
  };
  for (const Table& table : Tables()) {
    std::vector<std::string> row;
    for (const auto& [name, kind] : ColumnsOf(table)) row.push_back(values.at(kind));
    Execute("INSERT INTO " + table.name + " VALUES(" + Join(row) + ")");
    Execute("INSERT INTO " + table.name + " VALUES(" + Join(row) + ")");
    EXPECT_EQ(Count(table.name), 2) << table.name;
  }
}

TEST_F(SqliteSchemaTest, NothingIsUniqueCheckedOrTiedToAnotherTable) {
  const std::vector<std::string> forbidden = {"UNIQUE",   "CHECK",   "REFERENCES", "PRIMARY",
                                              "NOT NULL", "FOREIGN", "GENERATED"};
  for (const Row& definition : database().Definitions()) {
    EXPECT_TRUE(definition[0] == "table" || definition[0] == "index") << definition[1];
    for (const std::string& word : forbidden) {
      EXPECT_EQ(definition[3].find(word), std::string::npos) << definition[3];
    }
  }
}

TEST_F(PostgresqlSchemaTest, NothingIsUniqueCheckedOrTiedToAnotherTable) {
  EXPECT_EQ(Column("SELECT conname FROM pg_constraint WHERE connamespace = 'public'::regnamespace"),
            std::vector<std::string>{});
  EXPECT_EQ(Column("SELECT indexrelid::regclass FROM pg_index WHERE indexrelid >= 16384 AND "
                   "indrelid::regclass::text NOT LIKE 'pg_%' AND (indisunique OR indpred IS NOT "
                   "NULL)"),
            std::vector<std::string>{});
  EXPECT_EQ(Column("SELECT tgname FROM pg_trigger"), std::vector<std::string>{});
  // Any client of the engine can write: nothing but the engine's own functions is used.
  EXPECT_EQ(Column("SELECT proname FROM pg_proc WHERE oid >= 16384"), std::vector<std::string>{});
  EXPECT_EQ(Column("SELECT typname FROM pg_type WHERE oid >= 16384 AND typrelid = 0 AND typelem IN "
                   "(SELECT oid FROM pg_type WHERE typrelid = 0)"),
            std::vector<std::string>{});
}

TEST_F(SchemaTest, EveryTextColumnComparesWithoutTrailingBlanks) {
  for (const Table& table : Tables()) {
    for (const auto& [name, kind] : ColumnsOf(table)) {
      if (kind != Kind::kText) continue;
      Execute("INSERT INTO " + table.name + "(\"" + name + "\") VALUES('AB  ')");
      const auto found = [&, column = name](const std::string& condition) {
        return std::get<std::int64_t>(
            connection()
                .Execute("SELECT count(*) FROM " + table.name + " WHERE " + column + condition)
                ->Fields()
                .Item(0)
                .Value());
      };
      EXPECT_EQ(found(" = 'AB'"), 1) << table.name << "." << name;
      EXPECT_EQ(found(" == 'AB    '"), 1) << table.name << "." << name;
      EXPECT_EQ(found(" <> 'AB    '"), 0) << table.name << "." << name;
      EXPECT_EQ(found(" = 'ab'"), 0) << table.name << "." << name;
      EXPECT_EQ(found(" = ' AB'"), 0) << table.name << "." << name;
      Execute("DELETE FROM " + table.name);
    }
  }
}

TEST_F(SchemaTest, TextsCompareWithoutTrailingBlanksAndAreKeptAsTheyAre) {
  // Longer than any column of old was, and beyond ASCII.
  const std::string longText = std::string(3000, 'x') + "\xC3\xA9";
  for (const Table& table : Tables()) {
    for (const auto& [name, kind] : ColumnsOf(table)) {
      if (kind != Kind::kText) continue;
      const std::string column = "\"" + name + "\"";
      const std::string insert = "INSERT INTO " + table.name + "(" + column + ") VALUES('";
      Execute(insert + "007  ')");
      Execute(insert + longText + "')");
      Execute(insert + "')");
      std::vector<std::string> stored = Column("SELECT " + column + " FROM " + table.name);
      std::sort(stored.begin(), stored.end());
      EXPECT_EQ(stored, (std::vector<std::string>{"", "007  ", longText}))
          << table.name << "." << name;
      Execute("DELETE FROM " + table.name);
    }
  }
}

TEST_F(SqliteSchemaTest, EveryTextColumnIsDeclaredToCompareWithoutTrailingBlanks) {
  for (const Table& table : Tables()) {
    for (const auto& [name, kind] : ColumnsOf(table)) {
      if (kind != Kind::kText) continue;
      const std::string column = "\"" + name + "\"";
      Execute("INSERT INTO " + table.name + "(" + column + ") VALUES('AB  ')");
      EXPECT_EQ(Count(table.name + " WHERE " + column + " = 'AB'"), 1) << table.name << "." << name;
      EXPECT_EQ(Count(table.name + " WHERE " + column + " = 'AB    '"), 1)
          << table.name << "." << name;
      EXPECT_EQ(Count(table.name + " WHERE " + column + " = 'ab'"), 0) << table.name << "." << name;
      EXPECT_EQ(Count(table.name + " WHERE " + column + " = ' AB'"), 0)
          << table.name << "." << name;
      Execute("DELETE FROM " + table.name);
    }
  }
}

TEST_F(SqliteSchemaTest, NumbersAndDatesAreStoredAsTheyAreGiven) {
  Execute(
      "INSERT INTO dosesadm(adate, sector, dose, g1) VALUES('2026-11-20', 1.5, 2.25, 2147483647)");
  EXPECT_EQ(Query("SELECT adate, sector, dose, g1, typeof(adate), typeof(g1) FROM dosesadm"),
            (std::vector<Row>{{"2026-11-20", "1.5", "2.25", "2147483647", "text", "integer"}}));
  Execute("INSERT INTO pvaccref(cost, locactiv) VALUES(12, 1)");
  EXPECT_EQ(Query("SELECT typeof(cost), typeof(locactiv) FROM pvaccref"),
            (std::vector<Row>{{"real", "integer"}}));
}

// --- sample data ---------------------------------------------------------------

class SampleTest : public SchemaTest {
 protected:
  void SetUp() override { ASSERT_TRUE(AddSampleData(connection())); }
  // The makers whose contract for the vaccine rules call active.
  [[nodiscard]] std::vector<std::string> ActiveMakers(const std::string& vaccine) {
    return Column("SELECT maker FROM pvaccref WHERE vaccine = '" + vaccine + "' AND NOT locactiv");
  }
  [[nodiscard]] std::vector<std::string> ActiveVaccines() {
    return Column("SELECT DISTINCT vaccine FROM pvaccref WHERE NOT locactiv");
  }
  [[nodiscard]] std::vector<std::string> DepotPins() {
    return Column("SELECT pin FROM provider WHERE sector BETWEEN 30 AND 31");
  }
  // Rows that have the same in all of these expressions.
  [[nodiscard]] std::vector<Row> Repeated(const std::string& table, const std::string& key) {
    return Query("SELECT " + key + " FROM " + table + " GROUP BY " + key + " HAVING count(*) > 1");
  }
};

TEST_F(SchemaTest, OneSeedGivesTheSameRowsInEveryDatabase) {
  const std::unique_ptr<TestDatabase> other = MakeTestDatabase();
  Connection otherConnection;
  otherConnection.Open(other->ConnectionString());
  EXPECT_TRUE(AddSampleData(connection(), 77));
  EXPECT_TRUE(AddSampleData(otherConnection, 77));
  EXPECT_EQ(Contents(database()), Contents(*other));
}

TEST_F(SchemaTest, AnotherSeedGivesOtherRows) {
  const std::unique_ptr<TestDatabase> other = MakeTestDatabase();
  Connection otherConnection;
  otherConnection.Open(other->ConnectionString());
  EXPECT_TRUE(AddSampleData(connection(), 77));
  EXPECT_TRUE(AddSampleData(otherConnection, 78));
  for (const std::string table : {"provider", "lots", "stock", "neworder", "distrib"}) {
    EXPECT_NE(Contents(database()).at(table), Contents(*other).at(table)) << table;
  }
}

TEST_F(SampleTest, ASecondCallAddsNothing) {
  const auto before = Contents(database());
  EXPECT_FALSE(AddSampleData(connection()));
  EXPECT_FALSE(AddSampleData(connection(), 5));
  EXPECT_EQ(Contents(database()), before);
  EXPECT_FALSE(connection().InTransaction());
}

TEST_F(SchemaTest, NothingIsAddedWhereThereIsAProvider) {
  Execute("INSERT INTO provider(pin) VALUES(NULL)");
  const auto before = Contents(database());
  EXPECT_FALSE(AddSampleData(connection()));
  EXPECT_EQ(Contents(database()), before);
}

TEST_F(SchemaTest, NothingIsAddedWhereThereIsAKeyRow) {
  Execute("INSERT INTO nextid(ctablename, inextid) VALUES('distrib', 1)");
  const auto before = Contents(database());
  EXPECT_FALSE(AddSampleData(connection()));
  EXPECT_EQ(Contents(database()), before);
}

TEST_F(SchemaTest, WhatFailsOnTheWayLeavesNothingBehind) {
  Execute("DROP TABLE dosesadm");
  Connection& open = connection();
  const Error error = Refusal([&] { AddSampleData(open); });
  EXPECT_EQ(error.number(), static_cast<std::int32_t>(0x80040E37));
  EXPECT_FALSE(open.InTransaction());
  open.CreateSchema();
  ExpectAllTablesEmpty();
  EXPECT_TRUE(AddSampleData(open));
  EXPECT_GT(Count("dosesadm"), 0);
}

TEST_F(SchemaTest, ATransactionOfTheClientsOwnIsRefusedAndStaysOpen) {
  Connection& open = connection();
  open.BeginTrans();
  const Error error = Refusal([&] { AddSampleData(open); });
  EXPECT_EQ(error.number(), static_cast<std::int32_t>(0x80004005));
  EXPECT_TRUE(open.InTransaction());
  open.CommitTrans();
  ExpectAllTablesEmpty();
}

TEST_F(SchemaTest, AClosedConnectionIsRefused) {
  Connection closed;
  EXPECT_EQ(Refusal([&] { AddSampleData(closed); }).number(), 3704);
}

TEST_F(SampleTest, IsAsLargeAsASmallState) {
  EXPECT_EQ(Count("provider WHERE sector BETWEEN 10 AND 29"), 297);
  EXPECT_EQ(DepotPins(), (std::vector<std::string>{"D00001", "D00002", "D00003"}));
  EXPECT_EQ(Count("enroll"), 297);
  EXPECT_EQ(Column("SELECT sector FROM sectoref ORDER BY sector").size(), 22U);
  EXPECT_EQ(Column("SELECT DISTINCT zip FROM zipcodes").size(), 150U);
  EXPECT_GE(Count("lots"), 200);
  EXPECT_GE(Count("stock"), 200);
  for (const Table& table : Tables()) EXPECT_GT(Count(table.name), 0) << table.name;
}

TEST_F(SampleTest, ProvidersAreOfEverySectorAndOfEveryStatus) {
  for (int sector = 10; sector <= 29; ++sector) {
    EXPECT_GT(Count("provider WHERE sector = " + std::to_string(sector)), 0) << sector;
  }
  EXPECT_GT(Count("provider WHERE active = 'Y' AND codes = 'V'"), 0);
  EXPECT_GT(Count("provider WHERE active = 'Y' AND codes = '' AND sector < 30"), 0);
  EXPECT_GT(Count("provider WHERE active = 'N'"), 0);
  EXPECT_GT(Count("provider WHERE active IS NULL"), 0);
  EXPECT_EQ(Count("provider WHERE rtrim(pin) = 'P00001' AND active = 'Y' AND codes = 'V'"), 1);
  EXPECT_EQ(Count("provider WHERE sector BETWEEN 30 AND 31 AND active = 'Y'"), 3);
}

TEST_F(SampleTest, PinsHaveSixLettersAndDigitsAndSomeTrailingBlanks) {
  const std::regex pin("[A-Z0-9]{6} *");
  std::size_t withBlanks = 0;
  for (const std::string& stored : Column("SELECT pin FROM provider")) {
    EXPECT_TRUE(std::regex_match(stored, pin)) << stored;
    if (stored.ends_with(' ')) ++withBlanks;
  }
  EXPECT_GT(withBlanks, 0U);
}

TEST_F(SampleTest, TelephonesAreNumbersForExamples) {
  const std::regex phone("\\(217\\) 555-01[0-9][0-9]");
  for (const Row& row : Query("SELECT phone, fax, phone2, fax2 FROM provider")) {
    for (const std::string& number : row) EXPECT_TRUE(std::regex_match(number, phone)) << number;
  }
}

TEST_F(SampleTest, ZipCodesOfTwoCountiesAreAmongThem) {
  const std::vector<std::string> ofTwo =
      Column("SELECT zip FROM zipcodes GROUP BY zip HAVING count(DISTINCT cntyname) = 2");
  EXPECT_GT(ofTwo.size(), 0U);
  EXPECT_LT(ofTwo.size(), 15U);
  EXPECT_EQ(GetCountyName(service(), ofTwo.at(0)), "");
  const std::vector<Row> ofOne = Query(
      "SELECT zip, max(cntyname) FROM zipcodes GROUP BY zip HAVING count(DISTINCT cntyname) = 1");
  for (const Row& row : ofOne) EXPECT_EQ(GetCountyName(service(), row[0]), row[1]);
}

TEST_F(SampleTest, ReferencesHoldEveryCodeOnce) {
  EXPECT_EQ(Column("SELECT fundcode FROM funding ORDER BY fundcode"),
            (std::vector<std::string>{"1", "2", "3", "4"}));
  EXPECT_EQ(Column("SELECT action FROM actref ORDER BY action"),
            (std::vector<std::string>{"1", "2", "3", "4", "5", "6", "7", "8", "9", "11", "12"}));
  std::vector<std::string> sectors;
  for (int sector = 10; sector <= 31; ++sector) sectors.push_back(std::to_string(sector));
  EXPECT_EQ(Column("SELECT sector FROM sectoref ORDER BY sector"), sectors);
  EXPECT_EQ(Repeated("actref", "rtrim(status)"), std::vector<Row>{});
  EXPECT_EQ(Repeated("subdiv", "rtrim(subdiv)"), std::vector<Row>{});
  EXPECT_EQ(Repeated("vaccref", "rtrim(vaccine)"), std::vector<Row>{});
  for (const std::string& subdivision : Column("SELECT DISTINCT subdiv FROM provider")) {
    EXPECT_EQ(Count("subdiv WHERE subdiv = '" + subdivision + "'"), 1) << subdivision;
  }
}

TEST_F(SampleTest, NoKeyThatRulesReportIsThereTwice) {
  EXPECT_EQ(Repeated("provider", "rtrim(pin)"), std::vector<Row>{});
  EXPECT_EQ(Repeated("enroll", "rtrim(pin)"), std::vector<Row>{});
  EXPECT_EQ(Repeated("physicn", "pin, lastname, firstname"), std::vector<Row>{});
  EXPECT_EQ(Repeated("neworder", "pin, orddate, vaccine, fcode1"), std::vector<Row>{});
  EXPECT_EQ(Repeated("influenza", "pin, orddate, vaccine, fcode1"), std::vector<Row>{});
  EXPECT_EQ(Repeated("distrib", "action, pin, vaccine, replace(lot, '-', ''), dateout, frompin"),
            std::vector<Row>{});
  EXPECT_EQ(Repeated("dosesadm", "pin, vaccine, dose, sector, adate"), std::vector<Row>{});
  EXPECT_EQ(Repeated("lots", "replace(lot, '-', '')"), std::vector<Row>{});
  EXPECT_EQ(Repeated("provhas", "provhasid"), std::vector<Row>{});
  EXPECT_EQ(Repeated("dosesadm", "dosesadmid"), std::vector<Row>{});
  EXPECT_EQ(Repeated("provider", "provid"), std::vector<Row>{});
}

TEST_F(SampleTest, ContractsAreFilledAndReachFarAhead) {
  const std::vector<std::pair<std::string, Kind>> columns =
      ColumnsOf(*std::find_if(Tables().begin(), Tables().end(),
                              [](const Table& table) { return table.name == "pvaccref"; }));
  for (const auto& [name, kind] : columns) {
    EXPECT_EQ(Count("pvaccref WHERE \"" + name + "\" IS NULL"), 0) << name;
  }
  EXPECT_EQ(Query("SELECT DISTINCT \"begin\", \"end\" FROM pvaccref WHERE NOT locactiv"),
            (std::vector<Row>{{"2004-01-01", "2030-12-31"}}));
  EXPECT_EQ(Count("pvaccref WHERE maxno NOT BETWEEN 1 AND 5"), 0);
  EXPECT_EQ(Count("pvaccref WHERE vaccine = 'MCV4' AND pkgsize <> 5"), 0);
  EXPECT_EQ(Count("pvaccref WHERE vaccine <> 'MCV4' AND pkgsize <> 10"), 0);
  EXPECT_GT(Count("pvaccref WHERE NOT locactiv"), Count("pvaccref WHERE locactiv"));
  EXPECT_EQ(Repeated("pvaccref", "vaccine, maker, locactiv"), std::vector<Row>{});
}

TEST_F(SampleTest, SomeVaccinesAreInactive) {
  const std::vector<std::string> inactive = Column(
      "SELECT DISTINCT vaccine FROM pvaccref WHERE vaccine NOT IN "
      "(SELECT vaccine FROM pvaccref WHERE NOT locactiv)");
  ASSERT_FALSE(inactive.empty());
  for (const std::string& vaccine : inactive) {
    EXPECT_FALSE(ValidateVaccineActiveStatus(log(), vaccine, connection())) << vaccine;
    ExpectError(Refusal([&] { static_cast<void>(lotrix().stockTableRead("", vaccine)); }),
                Coded(20086),
                "The vaccine being used in the current operation is inactive in LOTRIX");
  }
}

TEST_F(SampleTest, EveryVaccineIsInBothReferences) {
  EXPECT_EQ(Column("SELECT DISTINCT vaccine FROM pvaccref ORDER BY vaccine"),
            Column("SELECT vaccine FROM vaccref ORDER BY vaccine"));
  for (const std::string& vaccine : ActiveVaccines()) {
    EXPECT_NO_THROW(ValidateDoseSeriesNumber(log(), "1", vaccine, connection())) << vaccine;
    EXPECT_NO_THROW(ValidateDoseSeriesNumberPvaccref(log(), "1", vaccine, connection())) << vaccine;
  }
}

TEST_F(SampleTest, EveryKeyStandsAboveThoseThatAreUsed) {
  const std::vector<std::pair<std::string, std::string>> used = {
      {"distrib", "distid FROM distrib"},
      {"seekdist",
       "seekid FROM (SELECT seekid FROM neworder UNION SELECT seekid FROM influenza) s"},
      {"provhas", "provhasid FROM provhas"},
      {"Dosesadm", "dosesadmid FROM dosesadm"},
      {"Provider", "provid FROM provider"}};
  EXPECT_EQ(Count("nextid"), 5);
  for (const auto& [table, from] : used) {
    const std::size_t blank = from.find(' ');
    const int most = std::stoi(
        Query("SELECT max(" + from.substr(0, blank) + ")" + from.substr(blank)).at(0).at(0));
    EXPECT_GT(most, 0) << table;
    EXPECT_GT(GetNextID(service(), table), most) << table;
  }
}

TEST_F(SampleTest, OrdersThatArePassedOnAndOrdersThatAreNotAreAmongThem) {
  for (const std::string table : {"neworder", "influenza"}) {
    EXPECT_GT(Count(table + " WHERE seekid = 0"), 0) << table;
    EXPECT_GT(Count(table + " WHERE seekid <> 0"), 0) << table;
  }
  EXPECT_EQ(Count("neworder WHERE vaccine IN ('FLU', 'FLU-PF')"), 0);
  EXPECT_EQ(Count("influenza WHERE vaccine NOT IN ('FLU', 'FLU-PF')"), 0);
}

TEST_F(SampleTest, CountsAddUp) {
  EXPECT_EQ(Count("dosesadm WHERE g1 + g2 + g3 + g4 + g5 + g6 + g7 + g8 + g9 + g10 + g11 + g12 + "
                  "g13 <> rowtot"),
            0);
  const std::string wrong =
      "enroll WHERE medicaid# + uninsured# + amindian# + fqhc_rhc# <> vfckids# "
      "OR vfckids# + g317kids# + statekids# + other# <> allkids#";
  for (const char group : {'1', '2', '3', '4'}) {
    std::string ofGroup = wrong;
    std::replace(ofGroup.begin(), ofGroup.end(), '#', group);
    EXPECT_EQ(Count(ofGroup), 0) << group;
  }
}

TEST_F(SampleTest, EveryRowBelongsToAProviderThatIsThere) {
  for (const std::string table : {"enroll", "physicn", "neworder", "influenza", "distrib",
                                  "provhas", "dosesadm", "stock", "lots"}) {
    EXPECT_EQ(Count(table + " WHERE rtrim(pin) NOT IN (SELECT rtrim(pin) FROM provider)"), 0)
        << table;
  }
  EXPECT_EQ(Count("distrib WHERE frompin <> 'NONE' AND frompin NOT IN "
                  "(SELECT pin FROM provider WHERE sector BETWEEN 30 AND 31)"),
            0);
}

TEST_F(SampleTest, EveryActiveProviderCanOrder) {
  const std::string maker = ActiveMakers("DTAP").at(0);
  for (const Row& provider :
       Query("SELECT rtrim(pin), active FROM provider WHERE sector BETWEEN 10 AND 29")) {
    const auto order = [&] {
      lotrix().manufacturerProviderOrderCreateUpdate("11/20/2026", provider[0], "DTAP", 30, "1",
                                                     "1", "", maker);
    };
    if (provider[1] == "Y") {
      EXPECT_NO_THROW(order()) << provider[0];
    } else {
      ExpectError(Refusal(order), Coded(20083),
                  "The provider enter is currently inactivate in LOTRIX. Cannot proceed with the "
                  "current operation");
    }
  }
  EXPECT_EQ(Count("neworder WHERE orddate = '2026-11-20' AND orddose = 30"),
            Count("provider WHERE sector BETWEEN 10 AND 29 AND active = 'Y'"));
}

TEST_F(SampleTest, EveryActiveVaccineCanBeOrderedFromEachOfItsMakersWithEveryFunding) {
  const int before = Count("neworder") + Count("influenza");
  int orders = 0;
  for (const std::string& vaccine : ActiveVaccines()) {
    const std::vector<std::string> makers = ActiveMakers(vaccine);
    ASSERT_FALSE(makers.empty()) << vaccine;
    for (const std::string& maker : makers) {
      for (const std::string funding : {"1", "2", "3", "4"}) {
        // Each on a day of its own.
        ++orders;
        const std::string date =
            std::to_string(orders % 12 + 1) + "/" + std::to_string(orders / 12 % 28 + 1) + "/2030";
        EXPECT_NO_THROW(lotrix().manufacturerProviderOrderCreateUpdate(
            date, "P00001", vaccine, 10, funding, "1", funding < "3" ? "" : "PO1", maker))
            << vaccine << " " << maker << " " << funding;
      }
    }
  }
  EXPECT_EQ(Count("neworder") + Count("influenza"), before + orders);
}

TEST_F(SampleTest, EveryDepotHasLotsOnHandUntilTheEndOf2030) {
  Host host = MakeHost();
  for (const int years : {0, 1, 2, 3, 4}) {
    host.clock = [years] { return Now() + std::chrono::days(years * 365 + 40); };
    cLotrix later(host);
    later.openConnection(database().ConnectionString());
    for (const std::string& pin : DepotPins()) {
      EXPECT_GT(later.inventoryOnHandRead(pin).Rows(), 0) << pin << " " << years;
      EXPECT_GT(later.inventoryOnHandRead(pin, "MMR").Rows(), 0) << pin << " " << years;
    }
  }
}

TEST_F(SampleTest, ALotOnHandIsListedOnceAndNoExpiredOne) {
  const std::vector<Row> listed = Cells(lotrix().inventoryOnHandRead("D00001"));
  EXPECT_EQ(std::set<Row>(listed.begin(), listed.end()).size(), listed.size());
  EXPECT_GT(Count("lots WHERE pin = 'D00001' AND expiry < '2026-11-20'"), 0);
  EXPECT_LT(listed.size(), static_cast<std::size_t>(Count("lots WHERE pin = 'D00001'")));
}

TEST_F(SampleTest, ShipmentsAreListedWithTrackingNumberAndLotOnly) {
  const std::int32_t listed = lotrix().stockTableRead().Rows();
  EXPECT_EQ(listed, Count("stock WHERE rtrim(tracking) <> '' AND rtrim(lot) <> ''"));
  EXPECT_GT(listed, 0);
  EXPECT_LT(listed, Count("stock"));
  EXPECT_GT(lotrix().stockTableRead("P00001").Rows(), 0);
  EXPECT_GT(Count("stock WHERE lot LIKE '%-%'"), 0);
  EXPECT_GT(Count("stock WHERE lot NOT LIKE '%-%' AND rtrim(lot) <> ''"), 0);
}

TEST_F(SampleTest, EveryVaccineOfTheContractsIsInTheVaccineList) {
  EXPECT_EQ(static_cast<std::size_t>(lotrix().vaccineReferenceTableRead().Rows()),
            Column("SELECT DISTINCT vaccine FROM pvaccref").size());
}

// --- indexes -------------------------------------------------------------------

// Keeps the template of every statement that runs.
class KeepingSession final : public Session {
 public:
  KeepingSession(std::unique_ptr<Session> session, std::set<std::string>& templates)
      : session_(std::move(session)), templates_(templates) {}

  std::unique_ptr<Cursor> Run(const Statement& statement) override {
    templates_.insert(statement.templateText());
    return session_->Run(statement);
  }
  void Begin() override { session_->Begin(); }
  void Commit() override { session_->Commit(); }
  void Rollback() override { session_->Rollback(); }
  [[nodiscard]] bool InTransaction() const override { return session_->InTransaction(); }
  void CreateSchema() override { session_->CreateSchema(); }
  [[nodiscard]] bool IsOpen() const override { return session_->IsOpen(); }

 private:
  std::unique_ptr<Session> session_;
  std::set<std::string>& templates_;
};

const std::string kVaccineList = "Select Distinct Vaccine From pVaccref";
const std::string kUnfilteredStock =
    "SELECT Pin, Datein, Doses, Lot, Vaccine, Maker, Expiry FROM Stock WHERE  tracking != ' '  "
    "and lot != ' '  order by datein desc ";

// Runs every statement that operations filter with.
class IndexTest : public SchemaTest {
 protected:
  // On the sample data.
  void RunOperations() {
    RunReads();
    RunOrders();
    RunRoutines();
  }

  void RunReads() {
    for (const std::string pin : {"", "P00001"}) {
      for (const std::string vaccine : {"", "DTAP"}) {
        for (const std::string lot : {"", "A-12"}) {
          static_cast<void>(lotrix().stockTableRead(pin, vaccine, lot));
          static_cast<void>(lotrix().stockTableRead(pin, vaccine, lot, "1/5/2024"));
          static_cast<void>(lotrix().stockTableRead(pin, vaccine, lot, "1/5/2024", "2/5/2024"));
        }
      }
    }
    static_cast<void>(lotrix().manufacturerProviderOrderRead("P00001", "1/5/2024"));
    static_cast<void>(lotrix().vaccineReferenceTableRead());
    static_cast<void>(lotrix().inventoryOnHandRead("D00001"));
    static_cast<void>(lotrix().inventoryOnHandRead("D00001", "DTAP"));
    lotrix().CheckVaccActive("DTAP");
  }

  void RunOrders() {
    const auto order = [&](const std::string& vaccine) {
      const std::string maker =
          Column("SELECT maker FROM pvaccref WHERE vaccine = '" + vaccine + "' AND NOT locactiv")
              .at(0);
      lotrix().manufacturerProviderOrderCreateUpdate("11/20/2026", "P00001", vaccine, 10, "1", "1",
                                                     "", maker);
    };
    order("VAR");
    order("DTAP");
    order("DTAP");
    // An influenza order is looked for among the others.
    Execute(
        "INSERT INTO neworder(pin, orddate, vaccine, fcode1) "
        "VALUES('P00001', '2026-11-20', 'FLU', '1')");
    order("FLU");
    order("FLU-PF");
  }

  void RunRoutines() {
    Connection& open = connection();
    ValidateSubdivision(log(), "NORTH", open);
    ValidateDepotPIN(log(), "D00001", open);
    EXPECT_TRUE(ValidateProviderPIN(log(), "P00001", true, open));
    EXPECT_TRUE(ValidateProvideraVaricellaEligibility(log(), "P00001", open));
    EXPECT_TRUE(ValidateSector(log(), 10, open));
    EXPECT_TRUE(ValidateVaccineActiveStatus(log(), "DTAP", open));
    ValidateDoseSeriesNumber(log(), "1", "DTAP", open);
    ValidateDoseSeriesNumberPvaccref(log(), "1", "DTAP", open);
    ValidateAgainstVaccRefTable(log(), "DTAP", open, true);
    ValidateAgainstpVaccRefTable(log(), "DTAP", open, true);
    EXPECT_FALSE(
        ValidateDuplicateManufacturerOrder(log(), "1/5/1999", "P00001", "DTAP", "1", open));
    ValidateFundingCodeandPO(log(), "1", "", open);
    EXPECT_FALSE(ValidateDuplicateDepotProviderOrder(log(), "1/5/1999", "1/5/1999", "D00001",
                                                     "P00001", "DTAP", "A-1", open));
    ValidateActionCode(log(), Column("SELECT status FROM actref WHERE action = 2").at(0), open);
    EXPECT_FALSE(ValidateDuplicateProviderInventoryAdjustment(log(), "1/5/1999", 2, "D00001",
                                                              "P00001", "DTAP", "A-1", open));
    EXPECT_FALSE(ValidateDuplicateDosesAdmin(log(), "P00001", "DTAP", "1", "1", "1/5/1999", open));
    EXPECT_GT(GetNextID(service(), "distrib"), 0);
    EXPECT_NE(GetCountyName(service(), Column("SELECT max(zip) FROM zipcodes").at(0)), "");
  }

  // The other statements that operations filter with.
  static std::vector<Statement> OtherStatements() {
    const std::string v = "X";
    const std::string date = "1/5/2024";
    std::vector<Statement> statements;
    const auto add = [&](const Statement& statement) { statements.push_back(statement); };
    add(Statement() << "SELECT count(*) FROM stock WHERE ltrim(rtrim(vaccine)) = '" << v
                    << "' AND ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = '" << v << "'");
    add(Statement() << "SELECT count(*) FROM enroll WHERE ltrim(rtrim(pin)) = '" << v << "'");
    add(Statement() << "SELECT count(*) FROM physicn WHERE pin = '" << v << "' AND lastname = '"
                    << v << "' AND firstname = '" << v << "' ");
    add(Statement() << "SELECT * FROM pvaccref WHERE ltrim(rtrim(vaccine)) = '" << v
                    << "' AND pkgsize=5");
    add(Statement() << "SELECT * FROM pvaccref WHERE ltrim(rtrim(vaccine)) = '" << v
                    << "' AND pkgsize=10");
    add(Statement() << "SELECT doses FROM distrib WHERE  ltrim(rtrim(FromPin)) = '" << v
                    << "' AND    ltrim(rtrim(pin)) ='" << v << "' AND    ltrim(rtrim(vaccine))='"
                    << v << "' AND    ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),'')))='" << v
                    << "' AND    dateout={" << date << "} AND    action=1");
    add(Statement() << "UPDATE distrib SET doses = " << 1 << ", units = 0, fdose1 = " << 1
                    << ", chgdate = {" << date << "}, userid = '" << v
                    << "' WHERE  ltrim(rtrim(FromPin)) = '" << v << "' AND    ltrim(rtrim(pin)) = '"
                    << v << "' AND    ltrim(rtrim(vaccine))= '" << v
                    << "' AND    ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),'')))= '" << v
                    << "' AND    dateout= {" << date << "} AND    action= 1");
    add(Statement() << "SELECT action FROM actref WHERE status = '" << v << "'");
    add(Statement() << "SELECT doses FROM distrib WHERE action = " << 1
                    << " AND ltrim(rtrim(pin)) = '" << v << "' AND ltrim(rtrim(vaccine)) = '" << v
                    << "' AND ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = '" << v
                    << "' AND dateout = {" << date << "} AND ltrim(rtrim(frompin)) = '" << v
                    << "'");
    add(Statement() << "UPDATE distrib SET doses  = " << 1 << ", chgdate = {" << date
                    << "}, userid = '" << v << "' WHERE action = " << 1
                    << " AND ltrim(rtrim(pin)) = '" << v << "' AND ltrim(rtrim(vaccine)) = '" << v
                    << "' AND ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = '" << v
                    << "' AND dateout = {" << date << "} AND ltrim(rtrim(fromPIN)) = '" << v
                    << "'");
    add(Statement() << "UPDATE DosesAdm  SET g1=" << 1 << ",  RowTot=" << 1 << ",  chgdate = {"
                    << date << "},  userid = '" << v << "'  WHERE  Pin = '" << v
                    << "'  AND    ltrim(rtrim(vaccine))='" << v << "'  AND    Dose = " << 1
                    << "  AND    sector = " << 1 << "  AND    aDate = {" << date << "} ");
    add(Statement() << "UPDATE provider SET lastname = '" << v << "', chgdate = {" << date
                    << "},userid = '" << v << "'WHERE ltrim(rtrim(pin)) = '" << v << "'");
    add(Statement() << "UPDATE provider SET cat2 = '" << v << "', sector = " << 1 << ", datevfc = {"
                    << date << "} WHERE  ltrim(rtrim(Pin)) = '" << v << "' ");
    add(Statement() << "UPDATE enroll SET ensource= '" << v << "', allkids1 = " << 1
                    << ",  userid = '" << v << "' WHERE  ltrim(rtrim(Pin)) = '" << v << "' ");
    add(Statement() << "UPDATE physicn SET firstname = '" << v << "', chgdate = {" << date
                    << "} WHERE  pin = '" << v << "' AND lastname = '" << v << "' ");
    add(Statement() << "Delete From physicn Where pin == '" << v << "'");
    return statements;
  }
};

class SqliteIndexPlanTest : public IndexTest {
 protected:
  void Keep(Connection& kept) {
    ConnectionAccess::WrapSession(kept, [&](std::unique_ptr<Session> session) {
      return std::make_unique<KeepingSession>(std::move(session), templates_);
    });
  }

  [[nodiscard]] std::vector<std::string> Plan(const std::string& templateText) {
    std::vector<std::string> details;
    const std::string sql = sqlite::Translate(templateText).sql;
    for (const Row& row : Query("EXPLAIN QUERY PLAN " + sql)) details.push_back(row.at(3));
    return details;
  }

  void ExpectIndexed(const std::string& templateText) {
    const std::vector<std::string> plan = Plan(templateText);
    if (templateText.starts_with("INSERT")) {
      EXPECT_EQ(plan, std::vector<std::string>{}) << templateText;
      return;
    }
    if (templateText == kVaccineList) {
      EXPECT_EQ(plan,
                std::vector<std::string>{"SCAN pvaccref USING COVERING INDEX pvaccref_by_names"});
      return;
    }
    if (templateText == kUnfilteredStock) {
      EXPECT_EQ(plan, std::vector<std::string>{"SCAN stock USING INDEX stock_by_datein"});
      return;
    }
    const bool searches = std::any_of(plan.begin(), plan.end(), [](const std::string& step) {
      return step.starts_with("SEARCH");
    });
    EXPECT_TRUE(searches) << templateText;
    for (const std::string& step : plan) {
      EXPECT_FALSE(step.starts_with("SCAN")) << templateText << "\n" << step;
      // An index that the engine makes for one run reads the whole table first.
      EXPECT_EQ(step.find("AUTOMATIC"), std::string::npos) << templateText << "\n" << step;
      if (step.starts_with("SEARCH")) {
        EXPECT_NE(step.find(" INDEX "), std::string::npos) << templateText << "\n" << step;
      }
    }
  }

  // Every template, once.
  [[nodiscard]] std::set<std::string> Templates() {
    EXPECT_TRUE(AddSampleData(connection()));
    Keep(*lotrix().Connection());
    Keep(connection());
    RunOperations();
    std::set<std::string> templates = std::move(templates_);
    for (const Statement& other : OtherStatements()) templates.insert(other.templateText());
    return templates;
  }

 private:
  std::set<std::string> templates_;
};

TEST_F(SqliteIndexPlanTest, ServeEveryFilterWithoutStatistics) {
  const std::set<std::string> templates = Templates();
  EXPECT_TRUE(templates.contains(kVaccineList));
  EXPECT_TRUE(templates.contains(kUnfilteredStock));
  for (const std::string& templateText : templates) {
    ExpectIndexed(templateText);
  }
}

TEST_F(SqliteIndexPlanTest, ServeEveryFilterWithTheStatisticsOfTheSampleData) {
  const std::set<std::string> templates = Templates();
  Execute("ANALYZE");
  for (const std::string& templateText : templates) {
    ExpectIndexed(templateText);
  }
}

// What the engine says of the plans that it has run, each with its statement's text.
struct RunPlan {
  std::string text;
  nlohmann::json plan;
};

class PostgresqlIndexPlanTest : public IndexTest {
 protected:
  // Every session that opens from now on tells the server's log its plans. Where an
  // index can serve, it has to, however few rows there are.
  void Explain(const std::string& planMode) {
    const std::string name = Query("SELECT current_database()")[0][0];
    RawPostgresql admin("postgres", "admin");
    for (const std::string setting :
         {"session_preload_libraries = 'auto_explain'", "auto_explain.log_min_duration = 0",
          "auto_explain.log_format = 'json'", "enable_seqscan = off"}) {
      admin.Execute("ALTER DATABASE " + name + " SET " + setting);
    }
    admin.Execute("ALTER DATABASE " + name + " SET plan_cache_mode = " + planMode);
    connection().Close();
    logStart_ = std::filesystem::file_size(LogPath());
  }

  // Those of statements that read or write the tables, once for each text and plan.
  [[nodiscard]] std::vector<RunPlan> RunPlans() const {
    const std::string of = " " + database_ + " LOG:  duration: ";
    std::vector<RunPlan> plans;
    std::set<std::string> seen;
    std::ifstream log(LogPath());
    log.seekg(static_cast<std::streamoff>(logStart_));
    std::string line;
    std::getline(log, line);
    while (log) {
      const bool begins = line.find(of) != std::string::npos && line.ends_with(" plan:");
      std::string entry;
      while (std::getline(log, line) && line.starts_with('\t')) entry += line.substr(1) + "\n";
      if (!begins) continue;
      const nlohmann::json explained = nlohmann::json::parse(entry);
      RunPlan run{explained.at("Query Text"), explained.at("Plan")};
      if (ReadsTables(run.plan) && seen.insert(run.text + run.plan.dump()).second) {
        plans.push_back(std::move(run));
      }
    }
    return plans;
  }

  static void Walk(const nlohmann::json& plan,
                   const std::function<void(const nlohmann::json&)>& visit) {
    visit(plan);
    if (!plan.contains("Plans")) return;
    for (const nlohmann::json& child : plan.at("Plans")) Walk(child, visit);
  }
  static bool ReadsTables(const nlohmann::json& plan) {
    bool reads = false;
    Walk(plan, [&](const nlohmann::json& node) {
      for (const Table& table : Tables()) reads |= node.value("Relation Name", "") == table.name;
    });
    return reads;
  }
  // Whether every table is read by a condition of an index.
  static bool IsServed(const nlohmann::json& plan) {
    bool served = true;
    Walk(plan, [&](const nlohmann::json& node) {
      const std::string type = node.at("Node Type");
      if (type == "Seq Scan") served = false;
      if (type.find("Index") != std::string::npos) served &= node.contains("Index Cond");
    });
    return served;
  }

  void ExpectEveryFilterServed(const std::string& planMode) {
    EXPECT_TRUE(AddSampleData(connection()));
    database_ = Query("SELECT current_database()")[0][0];
    Explain(planMode);
    RunOperations();
    for (const Statement& other : OtherStatements()) connection().Execute(other);
    std::set<std::string> served;
    std::map<std::string, nlohmann::json> others;
    for (const RunPlan& run : RunPlans()) {
      if (run.text.starts_with("INSERT")) continue;
      if (IsServed(run.plan)) {
        served.insert(run.text);
      } else {
        others[run.text] = run.plan;
      }
    }
    EXPECT_GE(served.size(), 45U);
    // Without a filter are the list of vaccines and the unfiltered read of the stock.
    std::multiset<std::string> unfiltered;
    std::string texts;
    for (const auto& [text, plan] : others) {
      texts += text + "\n" + plan.dump(1) + "\n";
      Walk(plan, [&](const nlohmann::json& node) {
        if (node.contains("Relation Name")) unfiltered.insert(node.at("Relation Name"));
      });
    }
    EXPECT_EQ(unfiltered, (std::multiset<std::string>{"pvaccref", "stock"})) << texts;
  }

 private:
  [[nodiscard]] static std::string LogPath() { return PostgresqlServer() + "/server.log"; }

  std::string database_;
  std::uintmax_t logStart_ = 0;
};

TEST_F(PostgresqlIndexPlanTest, ServeEveryFilterWhateverTheValues) {
  ExpectEveryFilterServed("force_generic_plan");
}

TEST_F(PostgresqlIndexPlanTest, ServeEveryFilterForTheValuesGiven) {
  ExpectEveryFilterServed("force_custom_plan");
}

}  // namespace

}  // namespace lotrix::test

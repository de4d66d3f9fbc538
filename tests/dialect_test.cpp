// What the component's statements do, whichever engine runs them.
#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "lotrix/connection.h"
#include "lotrix/recordset.h"
#include "src/database/statement.h"
#include "tests/support/engine.h"
#include "tests/support/fixture.h"

namespace lotrix::test {
namespace {

using namespace std::string_literals;
using Texts = std::vector<std::string>;

constexpr auto kRefused = static_cast<std::int32_t>(0x80040E14U);
constexpr auto kOutOfRange = static_cast<std::int32_t>(0x80040E57U);
constexpr auto kNoDate = static_cast<std::int32_t>(0x80040E07U);

class DialectTest : public DatabaseTest {
 protected:
  Connection& db() { return service().ReadConnection(); }

  // The first column of every row, as the engine of the result table would show
  // it: texts as they are, numbers in decimal.
  Texts Column(const std::string& query) {
    Texts column;
    const std::unique_ptr<Recordset> rows = db().Execute(query);
    for (; !rows->EndOfFile(); rows->MoveNext()) {
      const Value value = rows->Fields().Item(0).Value();
      if (const auto* const text = std::get_if<std::string>(&value)) {
        column.push_back(*text);
      } else if (const auto* const whole = std::get_if<std::int64_t>(&value)) {
        column.push_back(std::to_string(*whole));
      } else {
        column.emplace_back("?");
      }
    }
    return column;
  }
  // The lots of the rows of stock that meet the condition.
  Texts Lots(const std::string& condition) {
    return Column("SELECT lot FROM stock WHERE " + condition + " ORDER BY lot");
  }

  void ExpectNumber(std::int32_t number, const std::string& text) {
    const Error error = Refusal([&] { db().Execute(text); });
    EXPECT_EQ(error.number(), number) << text << "\n" << error.description();
    EXPECT_EQ(error.source(), "Lotrix");
  }

  void FillStock() {
    Execute(
        "INSERT INTO stock (pin, lot, vaccine, doses, datein, tracking) VALUES "
        "('A1', 'L1', 'DTAP', 5, '2004-01-05', 'T1'),"
        "('A2', 'L2', 'HIB', -5, '2004-02-29', ''),"
        "('a1', 'L3', NULL, 0, NULL, NULL),"
        "('A3', 'L4', 'DTAP', 12, '2005-12-31', '   ')");
  }
};

// Logicals.

TEST_F(DialectTest, LogicalsAreComparedAndStored) {
  db().Execute("INSERT INTO pvaccref (vaccine, locactiv) VALUES ('T', .T.)");
  db().Execute("INSERT INTO pvaccref (vaccine, locactiv) VALUES ('F', .F.)");
  Execute("INSERT INTO pvaccref (vaccine, locactiv) VALUES ('N', NULL)");
  EXPECT_EQ(Query("SELECT vaccine, locactiv FROM pvaccref ORDER BY vaccine"),
            (std::vector<Row>{{"F", "0"}, {"N", "<null>"}, {"T", "1"}}));
  EXPECT_EQ(Column("SELECT vaccine FROM pvaccref WHERE locactiv = .T."), Texts{"T"});
  EXPECT_EQ(Column("SELECT vaccine FROM pvaccref WHERE locactiv=.F."), Texts{"F"});
  EXPECT_EQ(Column("SELECT vaccine FROM pvaccref v WHERE v.locactiv == .F."), Texts{"F"});
  db().Execute("UPDATE pvaccref SET locactiv = .T. WHERE vaccine = 'F'");
  EXPECT_EQ(Query("SELECT locactiv FROM pvaccref WHERE vaccine = 'F'"), (std::vector<Row>{{"1"}}));
}

// Comparisons.

TEST_F(DialectTest, AllComparisonsOfNumbers) {
  FillStock();
  EXPECT_EQ(Lots("doses = 5"), Texts{"L1"});
  EXPECT_EQ(Lots("doses == 5"), Texts{"L1"});
  EXPECT_EQ(Lots("doses <> 5"), (Texts{"L2", "L3", "L4"}));
  EXPECT_EQ(Lots("doses != 5"), (Texts{"L2", "L3", "L4"}));
  EXPECT_EQ(Lots("doses < 5"), (Texts{"L2", "L3"}));
  EXPECT_EQ(Lots("doses > 5"), Texts{"L4"});
  EXPECT_EQ(Lots("doses <= 5"), (Texts{"L1", "L2", "L3"}));
  EXPECT_EQ(Lots("doses >= 5"), (Texts{"L1", "L4"}));
  EXPECT_EQ(Lots("doses = -5"), Texts{"L2"});
  EXPECT_EQ(Lots("doses = 5.0"), Texts{"L1"});
  EXPECT_EQ(Lots("doses BETWEEN 0 AND 5"), (Texts{"L1", "L3"}));
  EXPECT_EQ(Lots("5 = doses"), Texts{"L1"});
}

TEST_F(DialectTest, ConditionsAreJoined) {
  FillStock();
  EXPECT_EQ(Lots("pin = 'A1' AND lot = 'L1'"), Texts{"L1"});
  EXPECT_EQ(Lots("pin = 'A1' and lot = 'L2'"), Texts{});
  EXPECT_EQ(Lots("pin = 'A1' OR lot = 'L2'"), (Texts{"L1", "L2"}));
  EXPECT_EQ(Lots("NOT pin = 'A1'"), (Texts{"L2", "L3", "L4"}));
  EXPECT_EQ(Lots("(pin = 'A1' OR pin = 'A2') AND (doses < 0)"), Texts{"L2"});
}

TEST_F(DialectTest, NullIsTestedForAndIsNoText) {
  FillStock();
  EXPECT_EQ(Lots("trim(vaccine) is not NULL"), (Texts{"L1", "L2", "L4"}));
  EXPECT_EQ(Lots("vaccine IS NULL"), Texts{"L3"});
  EXPECT_EQ(Lots("vaccine = ''"), Texts{});
  EXPECT_EQ(Lots("tracking != ' ' "), Texts{"L1"});
  EXPECT_EQ(Lots("tracking = ' ' "), (Texts{"L2", "L4"}));
}

TEST_F(DialectTest, NumbersWithAFractionAndAnExponentAreExact) {
  const std::vector<double> costs{12.5, 0.1, 1e15, 8.33333333333333E-02, -1e-300, 1e300};
  for (const double cost : costs) {
    Statement insert;
    insert << "INSERT INTO pvaccref (vaccine, cost) VALUES ('X', " << cost << ")";
    db().Execute(insert);
    Statement select;
    select << "SELECT cost FROM pvaccref WHERE cost = " << cost;
    const std::unique_ptr<Recordset> rows = db().Execute(select);
    ASSERT_EQ(rows->RecordCount(), 1) << cost;
    EXPECT_EQ(std::get<double>(rows->Fields().Item(0).Value()), cost);
  }
}

TEST_F(DialectTest, ASplicedNumberIsANumberWhateverTheColumn) {
  Execute("INSERT INTO dosesadm (pin, sector, dose) VALUES ('A1', 10, 1), ('A2', 11, 2.5)");
  const auto find = [this](const std::string& number) {
    Statement select;
    select << "SELECT pin FROM dosesadm WHERE dose = " << number;
    return db().Execute(select)->RecordCount();
  };
  EXPECT_EQ(find("1"), 1);
  EXPECT_EQ(find(" 1 "), 1);
  EXPECT_EQ(find("+1"), 1);
  EXPECT_EQ(find("1.0"), 1);
  EXPECT_EQ(find("01"), 1);
  EXPECT_EQ(find("2.5"), 1);
  EXPECT_EQ(find("25E-1"), 1);
  EXPECT_EQ(find("-1"), 0);
  EXPECT_EQ(find("99999999999999999999999"), 0);
}

TEST_F(DialectTest, TwoMinusSignsAreNoComment) {
  FillStock();
  try {
    db().Execute("UPDATE stock SET doses = 1 --1 WHERE lot = 'L1'");
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), kRefused);
  }
  EXPECT_EQ(Query("SELECT doses FROM stock WHERE lot <> 'L1' ORDER BY lot"),
            (std::vector<Row>{{"-5"}, {"0"}, {"12"}}));
  const std::int32_t negative = -1;
  Statement statement;
  statement << "UPDATE stock SET doses = 1 -" << negative << " WHERE lot = 'L4'";
  db().Execute(statement);
  EXPECT_EQ(Query("SELECT doses FROM stock WHERE lot <> 'L1' ORDER BY lot"),
            (std::vector<Row>{{"-5"}, {"0"}, {"2"}}));
}

// Functions.

TEST_F(DialectTest, TrimsTakeBlanksFromTheirEnds) {
  Execute("INSERT INTO stock (lot) VALUES ('  AB  ')");
  const auto found = [this](const std::string& condition) { return Lots(condition).size() == 1; };
  EXPECT_TRUE(found("ltrim(rtrim(lot)) = 'AB'"));
  EXPECT_TRUE(found("rtrim(ltrim(lot)) = 'AB'"));
  EXPECT_TRUE(found("trim(lot) = 'AB'"));
  EXPECT_TRUE(found("ltrim(lot) = 'AB'"));
  EXPECT_FALSE(found("rtrim(lot) = 'AB'"));
  EXPECT_TRUE(found("rtrim(lot) = '  AB'"));
  EXPECT_TRUE(found("LTrim( RTRIM ( lot ) ) == 'AB'"));
}

TEST_F(DialectTest, TrimsTakeBlanksOnly) {
  Execute("INSERT INTO stock (lot) VALUES ('\tAB\n')");
  EXPECT_EQ(Lots("trim(lot) = 'AB'"), Texts{});
  EXPECT_EQ(Lots("trim(lot) = '\tAB\n'").size(), 1U);
}

TEST_F(DialectTest, UpperIsForLookingUpNames) {
  Execute("INSERT INTO nextid (ctablename, inextid) VALUES ('  Distrib ', 41)");
  EXPECT_EQ(Column("SELECT inextid FROM Nextid WHERE ltrim(rtrim(upper(ctablename))) = 'DISTRIB' "),
            Texts{"41"});
  EXPECT_EQ(Column("SELECT inextid FROM Nextid WHERE ltrim(rtrim(upper(ctablename))) = 'Distrib' "),
            Texts{});
}

TEST_F(DialectTest, StrtranReplacesEveryOccurrence) {
  Execute("INSERT INTO stock (lot) VALUES ('--A-B--1'), ('AB1'), ('AB2'), (' A-B1 ')");
  EXPECT_EQ(Lots("ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = 'AB1'"),
            (Texts{" A-B1 ", "--A-B--1", "AB1"}));
  EXPECT_EQ(Lots("strtran(lot,'-','+') = '++A+B++1'"), Texts{"--A-B--1"});
}

TEST_F(DialectTest, CountsAndMaxima) {
  Execute("INSERT INTO vaccref (vaccine, maxno, locactiv) VALUES ('A', 3, 'Y'), ('A', 5, 'Y')");
  EXPECT_EQ(Column("SELECT count(*) FROM vaccref WHERE vaccine = 'A'"), Texts{"2"});
  EXPECT_EQ(Column("SELECT MAX( maxno) FROM vaccref WHERE ltrim(rtrim(vaccine)) == 'A' AND "
                   "locactiv== 'Y'"),
            Texts{"5"});
  EXPECT_EQ(Column("SELECT count(*) FROM vaccref WHERE vaccine = 'B'"), Texts{"0"});
}

TEST_F(DialectTest, OtherFunctionsAreRefused) {
  FillStock();
  for (const std::string function : {"nosuch(lot)",
                                     "load_extension('x')",
                                     "randomblob(5)",
                                     "sqlite_version()",
                                     "char(65)",
                                     "writefile('x','y')",
                                     "readfile('x')",
                                     "hex(lot)",
                                     "zeroblob(5)",
                                     "replace(lot,'L','M')",
                                     "changes()",
                                     "version()",
                                     "pg_sleep(100)",
                                     "pg_read_file('x')",
                                     "lo_import('x')",
                                     "set_config('a.b','x','f')",
                                     "current_setting('a.b')",
                                     "pg_terminate_backend(1)",
                                     "query_to_xml('x')",
                                     "nextval('x')"}) {
    ExpectNumber(kRefused, "SELECT " + function + " FROM stock");
    ExpectNumber(kRefused, "DELETE FROM stock WHERE " + function + " = lot");
  }
  EXPECT_EQ(Query("SELECT count(*) FROM stock"), (std::vector<Row>{{"4"}}));
}

// Names.

TEST_F(DialectTest, NamesAreReadWithoutCaseAndHeadersAreLowerCase) {
  FillStock();
  const std::unique_ptr<Recordset> rows =
      db().Execute("sElEcT PiN, s.DOSES FROM STOCK S WHERE S.Lot = 'L1'");
  ASSERT_EQ(rows->RecordCount(), 1);
  EXPECT_EQ(rows->Fields().Item(0).Name(), "pin");
  EXPECT_EQ(rows->Fields().Item(1).Name(), "doses");
}

TEST_F(DialectTest, ReservedWordsOfTheEngineMayBeColumns) {
  db().Execute("INSERT INTO pvaccref (vaccine, begin, end) VALUES ('A', {1/1/2004}, {12/31/2004})");
  EXPECT_EQ(Column("SELECT vaccine FROM pvaccref WHERE ({6/1/2004} BETWEEN begin AND end) "),
            Texts{"A"});
  EXPECT_EQ(Column("SELECT vaccine FROM pvaccref WHERE ({1/1/2005} BETWEEN begin AND end) "),
            Texts{});
  EXPECT_EQ(Column("SELECT p.vaccine FROM pvaccref p WHERE p.Begin = {1/1/2004} AND P.END = "
                   "{12/31/2004} ORDER BY p.end, begin DESC"),
            Texts{"A"});
  db().Execute("UPDATE pvaccref SET begin = {1/2/2004}, end={1/3/2004} WHERE begin < end");
  EXPECT_EQ(Query("SELECT \"begin\", \"end\" FROM pvaccref"),
            (std::vector<Row>{{"2004-01-02", "2004-01-03"}}));
  const std::unique_ptr<Recordset> rows = db().Execute("SELECT begin, end FROM pvaccref");
  EXPECT_EQ(rows->Fields().Item(0).Name(), "begin");
  EXPECT_EQ(rows->Fields().Item(1).Name(), "end");
}

TEST_F(DialectTest, OtherColumnsNamedLikeFunctionsOrTypesWork) {
  db().Execute(
      "INSERT INTO distrib (input, action, status, notes) VALUES ({1/5/2004}, 1, 'S', 'n')");
  db().Execute("INSERT INTO dosesadm (position, dose) VALUES (1, 2)");
  EXPECT_EQ(Column("SELECT status FROM distrib WHERE action = 1 AND input = {1/5/2004}"),
            Texts{"S"});
  EXPECT_EQ(Column("SELECT position FROM DosesAdm WHERE dose = 2"), Texts{"1"});
}

TEST_F(DialectTest, RowsComeInTheOrderAskedFor) {
  FillStock();
  EXPECT_EQ(Column("SELECT lot FROM stock order by datein desc "), (Texts{"L4", "L2", "L1", "L3"}));
  EXPECT_EQ(Column("SELECT lot FROM stock ORDER BY vaccine, lot"), (Texts{"L3", "L1", "L4", "L2"}));
}

TEST_F(DialectTest, TwoTablesAreJoined) {
  FillStock();
  Execute("INSERT INTO pvaccref (vaccine, locactiv) VALUES ('  DTAP ', (1 = 1)), ('HIB', (1 = 0))");
  EXPECT_EQ(Column("Select l.Lot From Stock l, pvaccref v WHERE trim(l.vaccine) == trim(v.vaccine) "
                   "AND v.locactiv = .T. ORDER BY l.Vaccine, l.Lot"),
            (Texts{"L1", "L4"}));
}

TEST_F(DialectTest, ATextMayBeFollowedByAKeywordAtOnce) {
  FillStock();
  db().Execute("UPDATE stock SET pin='A9', tracking = 'LTX_DLL'WHERE ltrim(rtrim(pin)) ='A2'");
  EXPECT_EQ(Query("SELECT lot, tracking FROM stock WHERE pin = 'A9'"),
            (std::vector<Row>{{"L2", "LTX_DLL"}}));
}

// Dates.

TEST_F(DialectTest, DatesAreReadMonthDayYearAndStoredAsIsoText) {
  const std::vector<std::pair<std::string, std::string>> dates{{"1/5/2004", "2004-01-05"},
                                                               {"01/05/2004", "2004-01-05"},
                                                               {"12/31/99", "1999-12-31"},
                                                               {"1/5/04", "2004-01-05"},
                                                               {"1-5-2004", "2004-01-05"},
                                                               {"2004-1-5", "2004-01-05"},
                                                               {" 1/5/2004 ", "2004-01-05"},
                                                               {"January 5, 2004", "2004-01-05"},
                                                               {"5-Jan-2004", "2004-01-05"},
                                                               {"2/29/2004", "2004-02-29"},
                                                               {"1/5/2004 10:30 PM", "2004-01-05"},
                                                               {"12:00:00 AM", "1899-12-30"},
                                                               {"10:30", "1899-12-30"},
                                                               {"", "<null>"},
                                                               {"   ", "<null>"},
                                                               {"12/31/9999", "9999-12-31"},
                                                               {"1/1/100", "0100-01-01"},
                                                               {"3/7/0450", "0450-03-07"}};
  for (const auto& [text, stored] : dates) {
    Execute("DELETE FROM stock");
    Statement insert;
    insert << "INSERT INTO stock (lot, datein) VALUES ('spliced', {" << text << "})";
    db().Execute(insert);
    db().Execute("INSERT INTO stock (lot, datein) VALUES ('whole', {" + text + "})");
    EXPECT_EQ(Query("SELECT datein FROM stock"), (std::vector<Row>{{stored}, {stored}})) << text;
    if (stored != "<null>") {
      Statement select;
      select << "SELECT lot FROM stock WHERE datein = {" << text << "}";
      EXPECT_EQ(db().Execute(select)->RecordCount(), 2) << text;
    }
  }
}

TEST_F(DialectTest, AnythingElseBetweenBracesCannotBeConverted) {
  FillStock();
  for (const std::string& text :
       {"2/30/2004"s, "2/29/2001"s, "13/5/2001"s, "13/45/2001"s, "soon"s, "1/5"s, "5"s, "1/5/"s,
        "Monday"s, "0/1/2004"s, "1/0/2004"s, "1/5/2004 25:00"s, "1/5/99999"s, "^2004/01/05"s, "'"s,
        "1/5/2004'"s, "2004-01-05T00:00:00"s, "１/5/2004"s}) {
    Statement update;
    update << "UPDATE stock SET datein = {" << text << "}";
    EXPECT_EQ(Refusal([&] { db().Execute(update); }).number(), kNoDate) << text;
    ExpectNumber(kNoDate, "UPDATE stock SET datein = {" + text + "}");
  }
  EXPECT_EQ(Query("SELECT datein FROM stock ORDER BY lot"),
            (std::vector<Row>{{"2004-01-05"}, {"2004-02-29"}, {"<null>"}, {"2005-12-31"}}));
}

TEST_F(DialectTest, DatesAreComparedAsDates) {
  FillStock();
  EXPECT_EQ(Lots("Datein = {1/5/2004} "), Texts{"L1"});
  EXPECT_EQ(Lots("Datein >= {2/29/2004}"), (Texts{"L2", "L4"}));
  EXPECT_EQ(Lots("Datein < {12/31/2005}"), (Texts{"L1", "L2"}));
  EXPECT_EQ(Lots("Datein BETWEEN {1/5/2004}  AND {2/29/2004} "), (Texts{"L1", "L2"}));
  EXPECT_EQ(Lots("Datein BETWEEN {1/6/2004}  AND {1/6/2004} "), Texts{});
  EXPECT_EQ(Lots("Datein != {1/5/2004}"), (Texts{"L2", "L4"}));
  EXPECT_EQ(Lots("datein = {}"), Texts{});
  EXPECT_EQ(Lots("datein = {12:00:00 AM}"), Texts{});
}

TEST_F(DialectTest, ADateOfAYearOfThreeDigitsComesBeforeLaterOnes) {
  db().Execute("INSERT INTO stock (lot, datein) VALUES ('old', {1/1/100})");
  db().Execute("INSERT INTO stock (lot, datein) VALUES ('new', {1/1/2004})");
  EXPECT_EQ(Lots("datein < {1/1/1000}"), Texts{"old"});
  EXPECT_EQ(Column("SELECT lot FROM stock ORDER BY datein"), (Texts{"old", "new"}));
}

// Texts.

TEST_F(DialectTest, TrailingBlanksDoNotCountForColumnsFunctionsAndValues) {
  Execute("INSERT INTO stock (pin, lot, vaccine) VALUES ('AB  ', '1', 'AB'), ('AB', '2', 'AB   ')");
  for (const std::string comparison : {"=", "=="}) {
    for (const std::string& condition : {"pin @ 'AB'"s,
                                         "pin @ 'AB '"s,
                                         "'AB   ' @ pin"s,
                                         "pin @ vaccine"s,
                                         "vaccine @ pin"s,
                                         "upper(pin) @ 'AB'"s,
                                         "upper(pin) @ 'AB '"s,
                                         "'AB  ' @ upper(pin)"s,
                                         "ltrim(pin) @ vaccine"s,
                                         "vaccine @ ltrim(pin)"s,
                                         "ltrim(pin) @ ltrim(vaccine)"s,
                                         "upper(pin) @ vaccine"s,
                                         "strtran(pin,'-','') @ 'AB'"s,
                                         "strtran(pin,'-','') @ 'AB    '"s,
                                         "ltrim(rtrim(pin)) @ 'AB  '"s,
                                         "'AB' @ 'AB '"s,
                                         "'AB  ' @ 'AB'"s,
                                         "'' @ '  '"s,
                                         "upper('ab ') @ 'AB'"s,
                                         "trim(pin) @ trim(vaccine)"s}) {
      std::string text = condition;
      text.replace(text.find('@'), 1, comparison);
      EXPECT_EQ(Lots(text), (Texts{"1", "2"})) << text;
    }
  }
  for (const std::string comparison : {"<>", "!=", "<", ">"}) {
    for (const std::string& condition :
         {"pin @ 'AB '"s, "'AB   ' @ pin"s, "pin @ vaccine"s, "upper(pin) @ 'AB '"s,
          "ltrim(pin) @ vaccine"s, "ltrim(pin) @ ltrim(vaccine)"s, "'AB' @ 'AB '"s}) {
      std::string text = condition;
      text.replace(text.find('@'), 1, comparison);
      EXPECT_EQ(Lots(text), Texts{}) << text;
    }
  }
  for (const std::string comparison : {"<=", ">="}) {
    EXPECT_EQ(Lots("pin " + comparison + " 'AB   '"), (Texts{"1", "2"}));
    EXPECT_EQ(Lots("upper(pin) " + comparison + " vaccine"), (Texts{"1", "2"}));
  }
  EXPECT_EQ(Lots("pin BETWEEN 'AB    ' AND 'AB'"), (Texts{"1", "2"}));
  EXPECT_EQ(Lots("upper(pin) BETWEEN 'AB    ' AND vaccine"), (Texts{"1", "2"}));
  EXPECT_EQ(Lots("'AB ' BETWEEN pin AND vaccine"), (Texts{"1", "2"}));
}

TEST_F(DialectTest, SplicedTextsCompareAsWrittenOnes) {
  Execute("INSERT INTO stock (pin, lot) VALUES ('AB  ', '1'), ('AB', '2'), (' AB', '3')");
  const auto find = [this](const std::string& pin) {
    Statement column;
    column << "SELECT lot FROM stock WHERE pin = '" << pin << "'";
    Statement function;
    function << "SELECT lot FROM stock WHERE ltrim(rtrim(pin)) == '" << pin << "'";
    return std::pair(db().Execute(column)->RecordCount(), db().Execute(function)->RecordCount());
  };
  EXPECT_EQ(find("AB"), std::pair(2, 3));
  EXPECT_EQ(find("AB    "), std::pair(2, 3));
  EXPECT_EQ(find(" AB "), std::pair(1, 0));
  EXPECT_EQ(find("A"), std::pair(0, 0));
  EXPECT_EQ(find("AB "), find("AB"));
  EXPECT_EQ(find("ab"), std::pair(0, 0));
}

TEST_F(DialectTest, LeadingBlanksAndOtherWhiteSpaceCount) {
  Execute("INSERT INTO stock (pin, lot) VALUES ('AB\t', '1'), (' AB', '2')");
  EXPECT_EQ(Lots("pin = 'AB'"), Texts{});
  EXPECT_EQ(Lots("pin = 'AB\t  '"), Texts{"1"});
  EXPECT_EQ(Lots("pin = ' AB  '"), Texts{"2"});
  EXPECT_EQ(Lots("upper(pin) = 'AB'"), Texts{});
}

TEST_F(DialectTest, CaseCounts) {
  Execute("INSERT INTO stock (pin, lot) VALUES ('Ab', '1'), ('é', '2')");
  EXPECT_EQ(Lots("pin = 'AB'"), Texts{});
  EXPECT_EQ(Lots("pin = 'Ab'"), Texts{"1"});
  EXPECT_EQ(Lots("trim(pin) = 'ab'"), Texts{});
  EXPECT_EQ(Lots("pin = 'É'"), Texts{});
  EXPECT_EQ(Lots("'a' = 'A'"), Texts{});
  EXPECT_EQ(Column("SELECT DISTINCT upper('a') FROM stock"), Texts{"A"});
}

TEST_F(DialectTest, ATextIsNoPrefixOfAnother) {
  Execute("INSERT INTO stock (pin, lot) VALUES ('ABC', '1'), ('AB', '2')");
  EXPECT_EQ(Lots("pin = 'AB'"), Texts{"2"});
  EXPECT_EQ(Lots("pin == 'A'"), Texts{});
  EXPECT_EQ(Lots("pin = ''"), Texts{});
}

TEST_F(DialectTest, DistinctTextsAreDistinctWithoutTheirTrailingBlanks) {
  Execute("INSERT INTO pvaccref (vaccine) VALUES ('A'), ('A  '), ('a'), (' A')");
  EXPECT_EQ(Column("Select Distinct Vaccine From pVaccref").size(), 3U);
}

TEST_F(DialectTest, FunctionResultsAreDistinctWithoutTheirTrailingBlanks) {
  Execute("INSERT INTO pvaccref (vaccine) VALUES ('A'), ('A  '), ('a'), (' A')");
  EXPECT_EQ(Column("SELECT DISTINCT upper(vaccine) FROM pvaccref").size(), 2U);
  EXPECT_EQ(Column("SELECT count(*) FROM pvaccref GROUP BY upper(vaccine)").size(), 2U);
  EXPECT_EQ(Column("SELECT count(*) FROM pvaccref GROUP BY vaccine").size(), 3U);
  EXPECT_EQ(Column("SELECT count(DISTINCT vaccine) FROM pvaccref"), Texts{"3"});
}

TEST_F(DialectTest, AStoredTextIsStoredAsGiven) {
  const std::string pin = "  Ab é  ";
  Statement insert;
  insert << "INSERT INTO stock (lot, pin, vaccine) VALUES ('1', '" << pin << "', '" << pin
         << "tail ')";
  db().Execute(insert);
  db().Execute("INSERT INTO stock (lot, pin, vaccine) VALUES ('2', '  ', '')");
  EXPECT_EQ(Query("SELECT pin, vaccine FROM stock ORDER BY lot"),
            (std::vector<Row>{{"  Ab é  ", "  Ab é  tail "}, {"  ", ""}}));
  const std::string blanks = " x   ";
  Statement update;
  update << "UPDATE stock SET pin = '" << blanks << "', vaccine = 'y  ' WHERE lot = '1'";
  db().Execute(update);
  EXPECT_EQ(Query("SELECT pin, vaccine FROM stock WHERE lot = '1'"),
            (std::vector<Row>{{" x   ", "y  "}}));
}

TEST_F(DialectTest, DigitsBetweenApostrophesAreStoredAsThatText) {
  const std::string lot = "007";
  Statement insert;
  insert << "INSERT INTO stock (lot, pin) VALUES ('" << lot << "', '1E5')";
  db().Execute(insert);
  EXPECT_EQ(Query("SELECT lot, pin FROM stock"), (std::vector<Row>{{"007", "1E5"}}));
  EXPECT_EQ(Lots("lot = '7'"), Texts{});
  EXPECT_EQ(Lots("lot = '007'"), Texts{"007"});
  EXPECT_EQ(Lots("ltrim(rtrim(lot)) = '007'"), Texts{"007"});
}

TEST_F(DialectTest, DigitsBetweenApostrophesAreANumberForANumberColumn) {
  Execute("INSERT INTO sectoref (sector) VALUES (10)");
  db().Execute("INSERT INTO enroll (pin, allkids1) VALUES ('A1', '12')");
  EXPECT_EQ(Query("SELECT allkids1 FROM enroll WHERE allkids1 = 12"), (std::vector<Row>{{"12"}}));
}

// What is refused.

TEST_F(DialectTest, WhatTheDialectDoesNotHaveIsRefusedAndChangesNothing) {
  FillStock();
  const std::vector<Row> before = Query("SELECT * FROM stock ORDER BY lot");
  const std::vector<Row> definitions = database().Definitions();
  for (const std::string& text : {"DELETE FROM stock -- WHERE lot = 'L1'"s,
                                  "DELETE FROM stock --"s,
                                  "DELETE FROM stock /* WHERE lot = 'L1' */"s,
                                  "DELETE /**/ FROM stock"s,
                                  "DELETE FROM stock;"s,
                                  "DELETE FROM stock; DELETE FROM stock"s,
                                  "SELECT pin FROM stock; DELETE FROM stock"s,
                                  "DELETE FROM stock WHERE \"lot\" = 'L1'"s,
                                  "DELETE FROM \"stock\""s,
                                  "DELETE FROM [stock]"s,
                                  "DELETE FROM `stock`"s,
                                  "DELETE FROM stock WHERE lot = ?"s,
                                  "DELETE FROM stock WHERE lot = ?1"s,
                                  "DELETE FROM stock WHERE lot = :lot"s,
                                  "DELETE FROM stock WHERE lot = @lot"s,
                                  "DELETE FROM stock WHERE lot = $lot"s,
                                  "DELETE FROM stock WHERE lot = x'4C31'"s,
                                  "DELETE FROM stock WHERE doses = 0x5"s,
                                  "DELETE FROM stock WHERE doses = 5x"s,
                                  "DELETE FROM stock WHERE lot = 'L1"s,
                                  "DELETE FROM stock WHERE lot = L1'"s,
                                  "DELETE FROM stock WHERE lot = 'O'Neil'"s,
                                  "DELETE FROM stock WHERE datein = {1/5/2004"s,
                                  "DELETE FROM stock WHERE doses = .X."s,
                                  "DELETE FROM stock WHERE doses = 5 & 7"s,
                                  "DELETE FROM stock WHERE (doses = 5"s,
                                  "DELETE FROM stock WHERE doses = 5)"s,
                                  "DELETE FROM stock WHERE doses ="s,
                                  "DELETE FROM"s,
                                  "DROP TABLE stock"s,
                                  "CREATE TABLE x (a)"s,
                                  "ALTER TABLE stock RENAME TO x"s,
                                  "CREATE TRIGGER t AFTER INSERT ON stock BEGIN DELETE FROM stock"s,
                                  "PRAGMA user_version = 5"s,
                                  "ATTACH 'x.db' AS x"s,
                                  "VACUUM INTO 'x.db'"s,
                                  "BEGIN"s,
                                  "COMMIT"s,
                                  "SAVEPOINT x"s,
                                  "WITH x AS (SELECT 1) DELETE FROM stock"s,
                                  "EXPLAIN DELETE FROM stock"s,
                                  "REPLACE INTO stock (lot) VALUES ('L9')"s,
                                  "TRUNCATE stock"s,
                                  "DO 'BEGIN DELETE FROM stock; END'"s,
                                  "COPY stock TO PROGRAM 'x'"s,
                                  "SET ROLE admin"s,
                                  "SELECT pin INTO x FROM stock"s,
                                  "DELETE FROM stock RETURNING pin"s,
                                  "DELETE FROM stock WHERE lot = E'L1'"s,
                                  "DELETE FROM stock WHERE lot = $$L1$$"s,
                                  "DELETE FROM stock WHERE lot::text = 'L1'"s,
                                  "DELETE FROM stock WHERE lot ~ 'L1'"s,
                                  "DELETE FROM stock WHERE doses = $1"s,
                                  "INSERT INTO stock (lot, pin) VALUES ('L9')"s,
                                  "INSERT INTO stock (nosuch) VALUES ('L9')"s,
                                  "UPDATE stock SET nosuch = 'x'"s}) {
    ExpectNumber(kRefused, text);
  }
  EXPECT_EQ(Query("SELECT * FROM stock ORDER BY lot"), before);
  EXPECT_EQ(database().Definitions(), definitions);
  EXPECT_FALSE(db().InTransaction());
}

TEST_F(DialectTest, DeepNestingIsRefusedOrRunButNeverCrashes) {
  FillStock();
  for (const int depth : {10, 1000, 100000}) {
    const auto size = static_cast<std::size_t>(depth);
    const std::string open(size, '(');
    const std::string close(size, ')');
    try {
      const Texts lots = Lots(open + "lot = 'L1'" + close);
      EXPECT_EQ(lots, Texts{"L1"});
    } catch (const Error& error) {
      EXPECT_EQ(error.number(), kRefused) << depth;
      EXPECT_GT(depth, 10);
    }
    ExpectNumber(kRefused, "SELECT lot FROM stock WHERE " + open + "lot = 'L1'");
  }
}

TEST_F(DialectTest, ALongTextIsStoredAndFoundWhole) {
  std::string text;
  for (int i = 0; i < 200000; ++i) text += "é{;}\"";
  Statement insert;
  insert << "INSERT INTO stock (tracking) VALUES ('" << text << "')";
  db().Execute(insert);
  Statement select;
  select << "SELECT tracking FROM stock WHERE ltrim(rtrim(tracking)) == '" << text << "'";
  const std::unique_ptr<Recordset> rows = db().Execute(select);
  ASSERT_FALSE(rows->EndOfFile());
  EXPECT_TRUE(std::get<std::string>(rows->Fields().Item(0).Value()) == text);
}

// --- Properties ------------------------------------------------------------

void AppendUtf8(std::string& text, std::uint32_t codePoint) {
  const auto byte = [](std::uint32_t value) { return static_cast<char>(value); };
  if (codePoint < 0x80) {
    text += byte(codePoint);
  } else if (codePoint < 0x800) {
    text += byte(0xC0 | (codePoint >> 6));
    text += byte(0x80 | (codePoint & 0x3F));
  } else if (codePoint < 0x10000) {
    text += byte(0xE0 | (codePoint >> 12));
    text += byte(0x80 | ((codePoint >> 6) & 0x3F));
    text += byte(0x80 | (codePoint & 0x3F));
  } else {
    text += byte(0xF0 | (codePoint >> 18));
    text += byte(0x80 | ((codePoint >> 12) & 0x3F));
    text += byte(0x80 | ((codePoint >> 6) & 0x3F));
    text += byte(0x80 | (codePoint & 0x3F));
  }
}

// From low to high - 1, each as likely however early in the run.
int Pick(int low, int high) {
  return *rc::gen::resize(rc::kNominalSize, rc::gen::inRange(low, high));
}

// A piece of a text that somebody might try: single characters of every plane,
// and what has a meaning in some SQL.
std::string Piece() {
  static const Texts kMeanings{"--",
                               "/*",
                               "*/",
                               ";",
                               "\"",
                               "`",
                               "[",
                               "]",
                               "{",
                               "}",
                               "?",
                               "?1",
                               ":a",
                               "@a",
                               "$a",
                               "\\",
                               "%",
                               "_",
                               " ",
                               "  ",
                               "\n",
                               "\r",
                               "\t",
                               "(",
                               ")",
                               ",",
                               "=",
                               " OR 1=1 ",
                               ".T.",
                               "NULL",
                               "DROP",
                               "0",
                               "1E5",
                               "-",
                               "\x01",
                               "\x7f",
                               "\xEF\xBB\xBF",
                               "\xE2\x80\x99",
                               "1/5/2004",
                               "\\u0027",
                               "%27",
                               "&#39;",
                               "SELECT",
                               " FROM funding",
                               "DELETE FROM funding"};
  if (Pick(0, 3) != 0) return *rc::gen::elementOf(kMeanings);
  std::string text;
  std::uint32_t codePoint = *rc::gen::oneOf(rc::gen::inRange<std::uint32_t>(1, 0x80),
                                            rc::gen::inRange<std::uint32_t>(0x80, 0x3000),
                                            rc::gen::inRange<std::uint32_t>(1, 0x110000));
  if (codePoint >= 0xD800 && codePoint < 0xE000) codePoint = 0xFFFD;
  if (codePoint == '\'') codePoint = 'x';
  AppendUtf8(text, codePoint);
  return text;
}

// Any text without apostrophe and U+0000.
std::string HarmlessText() {
  std::string text;
  const int pieces = Pick(0, 12);
  for (int i = 0; i < pieces; ++i) text += Piece();
  return text;
}

std::string WithoutTrailingBlanks(const std::string& text) {
  const std::size_t last = text.find_last_not_of(' ');
  return text.substr(0, last == std::string::npos ? 0 : last + 1);
}

class DialectProperty : public DialectTest {
 protected:
  DialectProperty() {
    Execute(
        "INSERT INTO funding (fundcode) VALUES ('one'), ('two');"
        "INSERT INTO stock (pin, lot) VALUES ('other', 'other')");
    definitions_ = database().Definitions();
  }
  void AssertCanaryLives() {
    RC_ASSERT(Query("SELECT fundcode FROM funding ORDER BY fundcode") ==
              (std::vector<Row>{{"one"}, {"two"}}));
    RC_ASSERT(database().Definitions() == definitions_);
    RC_ASSERT(!db().InTransaction());
  }
  void AssertOnlyOtherStock() {
    RC_ASSERT(Query("SELECT pin, lot FROM stock") == (std::vector<Row>{{"other", "other"}}));
  }

 private:
  std::vector<Row> definitions_;
};

RC_GTEST_FIXTURE_PROP(DialectProperty, ATextGoesInAndComesBackExactly, ()) {
  const std::string value = HarmlessText();
  Statement insert;
  insert << "INSERT INTO stock (pin, lot) VALUES ('new', '" << value << "')";
  db().Execute(insert);
  db().Execute("INSERT INTO stock (pin, lot) VALUES ('whole', '" + value + "')");
  RC_ASSERT(Query("SELECT lot FROM stock WHERE pin <> 'other'") ==
            (std::vector<Row>{{value}, {value}}));
  Statement select;
  select << "SELECT lot FROM stock WHERE pin = 'new' AND lot = '" << value << "'";
  const std::unique_ptr<Recordset> rows = db().Execute(select);
  RC_ASSERT(rows->RecordCount() == 1);
  RC_ASSERT(std::get<std::string>(rows->Fields().Item(0).Value()) == value);
  rows->Close();
  RC_ASSERT(Lots("pin = 'whole' AND lot == '" + value + "'") == Texts{value});
  Statement update;
  update << "UPDATE stock SET vaccine = '" << value << "' WHERE lot = '" << value
         << "' AND pin = 'new'";
  db().Execute(update);
  RC_ASSERT(Query("SELECT vaccine FROM stock WHERE pin = 'new'") == (std::vector<Row>{{value}}));
  RC_ASSERT(Query("SELECT count(*) FROM stock WHERE vaccine IS NULL") == (std::vector<Row>{{"2"}}));
  Statement remove;
  remove << "DELETE FROM stock WHERE lot = '" << value << "'";
  db().Execute(remove);
  AssertOnlyOtherStock();
  AssertCanaryLives();
}

RC_GTEST_FIXTURE_PROP(DialectProperty, ATextWithAnApostropheIsRefused, ()) {
  const std::string value = HarmlessText() + "'" + HarmlessText();
  Statement insert;
  insert << "INSERT INTO stock (pin, lot) VALUES ('new', '" << value << "')";
  RC_ASSERT(Refusal([&] { db().Execute(insert); }).number() == kRefused);
  Statement remove;
  remove << "DELETE FROM stock WHERE ltrim(rtrim(lot)) = '" << value << "'";
  RC_ASSERT(Refusal([&] { db().Execute(remove); }).number() == kRefused);
  Statement select;
  select << "SELECT lot FROM stock WHERE lot = '" << value << "'";
  RC_ASSERT(Refusal([&] { db().Execute(select); }).number() == kRefused);
  AssertOnlyOtherStock();
  AssertCanaryLives();
}

RC_GTEST_FIXTURE_PROP(DialectProperty, ATextInANumbersPlaceIsANumberOrRefused, ()) {
  static const std::regex kNumber(" *[-+]?[0-9]+(\\.[0-9]+)?([eE][-+]?[0-9]+)? *");
  std::string value;
  if (*rc::gen::arbitrary<bool>()) {
    const int size = Pick(1, 8);
    for (int i = 0; i < size; ++i) value += *rc::gen::elementOf("0123456789.eE+- "s);
  } else {
    value = HarmlessText();
  }
  Statement remove;
  remove << "DELETE FROM stock WHERE doses = 7 AND 1 = " << value;
  const bool isNumber = std::regex_match(value, kNumber);
  try {
    db().Execute(remove);
    // A number may also do without digits on one side of its point.
    RC_ASSERT(isNumber || value.find('.') != std::string::npos);
  } catch (const Error& error) {
    // A number may be beyond what a column holds.
    RC_ASSERT(error.number() == (isNumber ? kOutOfRange : kRefused));
  }
  AssertOnlyOtherStock();
  AssertCanaryLives();
}

RC_GTEST_FIXTURE_PROP(DialectProperty, ATextInADatesPlaceIsADateOrRefused, ()) {
  std::string value;
  if (*rc::gen::arbitrary<bool>()) {
    const int size = Pick(0, 10);
    for (int i = 0; i < size; ++i) value += *rc::gen::elementOf("0123456789/-: AP'"s);
  } else {
    value = HarmlessText();
  }
  const bool leaves = value.find_first_of("{}") != std::string::npos;
  Statement insert;
  insert << "INSERT INTO stock (pin, datein) VALUES ('new', {" << value << "})";
  try {
    db().Execute(insert);
    RC_ASSERT(!leaves);
    const std::vector<Row> stored = Query("SELECT datein FROM stock WHERE pin = 'new'");
    RC_ASSERT(stored.size() == 1U);
    static const std::regex kIso("[0-9]{4}-[0-9]{2}-[0-9]{2}");
    RC_ASSERT(stored[0][0] == "<null>" || std::regex_match(stored[0][0], kIso));
    Execute("DELETE FROM stock WHERE pin = 'new'");
  } catch (const Error& error) {
    RC_ASSERT(error.number() == (leaves ? kRefused : kNoDate));
  }
  AssertOnlyOtherStock();
  AssertCanaryLives();
}

RC_GTEST_FIXTURE_PROP(DialectProperty, ComparisonsAreThoseOfTheTextsWithoutTrailingBlanks, ()) {
  const auto text = [] {
    std::string drawn;
    const int size = Pick(0, 5);
    for (int i = 0; i < size; ++i) drawn += *rc::gen::elementOf("AaB   é"s);
    return drawn;
  };
  // Whole characters only.
  const auto whole = [&text] {
    std::string drawn = text();
    std::erase_if(drawn, [](char c) { return (static_cast<unsigned char>(c) & 0x80U) != 0; });
    return drawn + (*rc::gen::arbitrary<bool>() ? "é" : "") +
           std::string(static_cast<std::size_t>(Pick(0, 3)), ' ');
  };
  const std::string left = whole();
  const std::string right = whole();
  Execute("DELETE FROM stock");
  Execute("INSERT INTO stock (pin, lot, vaccine) VALUES ('" + left + "', 'x', '" + right + "')");
  const int order = WithoutTrailingBlanks(left).compare(WithoutTrailingBlanks(right));
  const std::vector<std::pair<std::string, bool>> comparisons{
      {"=", order == 0}, {"==", order == 0}, {"<>", order != 0}, {"!=", order != 0},
      {"<", order < 0},  {">", order > 0},   {"<=", order <= 0}, {">=", order >= 0}};
  // strtran of what is not there is the text itself, as a function's result.
  const std::vector<std::string> lefts{"pin", "'" + left + "'", "strtran(pin,'#','')"};
  const std::vector<std::string> rights{"vaccine", "'" + right + "'", "strtran(vaccine,'#','')"};
  for (const auto& [comparison, expected] : comparisons) {
    for (const std::string& a : lefts) {
      for (const std::string& b : rights) {
        const std::string condition = a + " " + comparison + " " + b;
        RC_LOG() << condition << "\n";
        RC_ASSERT(Lots(condition).size() == (expected ? 1U : 0U));
      }
    }
  }
  for (const std::string& a : lefts) {
    RC_ASSERT(Lots(a + " BETWEEN '" + right + "' AND '" + right + "'").size() ==
              (order == 0 ? 1U : 0U));
  }
  Execute("DELETE FROM stock");
  Execute("INSERT INTO stock (pin, lot) VALUES ('other', 'other')");
}

// Everything but a crash, a hang or a change of the database's make is allowed.
void RunWhatever(Connection& connection, const std::string& text) {
  try {
    const std::unique_ptr<Recordset> rows = connection.Execute(text);
    for (int i = 0; i < 3 && rows->State() == ObjectState::kOpen && !rows->EndOfFile(); ++i) {
      for (std::int32_t j = 0; j < rows->Fields().Count(); ++j) {
        static_cast<void>(rows->Fields().Item(j).Value());
      }
      rows->MoveNext();
    }
  } catch (const Error& error) {
    RC_ASSERT(error.number() != 0);
  }
}

RC_GTEST_FIXTURE_PROP(DialectProperty, RandomBytesRunOrAreRefused, ()) {
  const auto bytes = *rc::gen::container<std::string>(rc::gen::arbitrary<char>());
  RunWhatever(db(), bytes);
  RunWhatever(db(), "SELECT lot FROM stock WHERE " + bytes);
  RunWhatever(db(), HarmlessText() + bytes);
  AssertOnlyOtherStock();
  AssertCanaryLives();
}

RC_GTEST_FIXTURE_PROP(DialectProperty, RandomWordsRunOrAreRefused, ()) {
  static const Texts kWords{
      "SELECT",     "INSERT INTO", "UPDATE",  "DELETE FROM", "FROM",  "WHERE", "SET",   "VALUES",
      "AND",        "OR",          "NOT",     "BETWEEN",     "IN",    "IS",    "NULL",  "ORDER BY",
      "GROUP BY",   "DISTINCT",    "DESC",    "LIKE",        "stock", "pin",   "lot",   "doses",
      "datein",     "begin",       "end",     "count",       "max",   "ltrim", "rtrim", "upper",
      "strtran",    "(",           ")",       ",",           ".",     "*",     "=",     "==",
      "!=",         "<",           "+",       "-",           "/",     "'x'",   "''",    "{}",
      "{1/5/2004}", "{x}",         ".T.",     ".F.",         "1",     "2.5",   ";",     "--",
      "\"x\"",      "l",           "AS",      "UNION",       "JOIN",  "LIMIT", "CASE",  "WHEN",
      "HAVING",     "EXISTS",      "COLLATE", "RETURNING",   "INTO"};
  std::string text;
  const bool writes = Pick(0, 3) == 0;
  if (!writes) text = "SELECT ";
  const int words = Pick(1, 15);
  for (int i = 0; i < words; ++i) text += *rc::gen::elementOf(kWords) + " ";
  RunWhatever(db(), text);
  if (!writes) AssertOnlyOtherStock();
  AssertCanaryLives();
  Execute("DELETE FROM stock; INSERT INTO stock (pin, lot) VALUES ('other', 'other')");
}

}  // namespace
}  // namespace lotrix::test

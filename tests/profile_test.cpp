#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/expected_statements.h"
#include "tests/support/expected_trace.h"
#include "tests/support/extremes.h"
#include "tests/support/operation_fixture.h"

namespace lotrix::test {
namespace {

using std::string_literals::operator""s;

// A call's arguments; as they stand, a profile that is accepted for a provider
// that is there.
struct Profile {
  std::string pin = "P1";
  std::string facility = "CLINIC";
  std::string contact = "ANN";
  std::string address1 = "1 MAIN ST";
  std::string address2 = "SUITE 2";
  std::string city = "SPRINGFIELD";
  std::string state = "IL";
  std::string zip = "62701-1234";
  std::string instructions = "RING TWICE";
  std::string phone = "(217) 555-0100";
  std::string fax = "(217) 555-0101";
  std::string mailContact = "BOB";
  std::string mailAddress1 = "PO BOX 3";
  std::string mailAddress2 = "FLOOR 4";
  std::string mailCity = "CHICAGO";
  std::string mailState = "WI";
  std::string mailZip = "60601";
  std::string mailPhone = "(312) 555-0102";
  std::string mailFax = "(312) 555-0103";
  bool varicella = false;
  Variant classification = {};
  Variant certification = {};
  Variant extension = {};
  Variant firstName = {};
  Variant initial = {};
  Variant title = {};
  Variant parent = {};
  Variant additional = {};
  Variant active = {};
  Variant subdivision = {};
  Variant category1 = {};
  Variant category2 = {};
  Variant category3 = {};
};

Profile NewProfile() {
  Profile profile;
  profile.pin = "N1";
  profile.classification = "15";
  return profile;
}

Profile WithEveryOptional(Profile profile) {
  profile.classification = "15";
  profile.certification = "1/5/2004";
  profile.extension = "77";
  profile.firstName = "CAROL";
  profile.initial = "D";
  profile.title = "MD";
  profile.parent = "P9";
  profile.additional = "A-8";
  profile.active = "N";
  profile.subdivision = "NORTH";
  profile.category1 = "C1";
  profile.category2 = "C2";
  profile.category3 = "C3";
  return profile;
}

// The lines of the trace, piece by piece as a call comes by them.

const std::string kOperation = "providerProfileUpdate";

Lines Begun() { return {BeginOf(kOperation)}; }
Lines Ended() { return {EndOf(kOperation)}; }

Lines PinPassed(const std::string& pin) {
  if (pin != "P1") return Asked("ValidateProviderPIN");
  return ActiveProviderPassed();
}
Lines AddressPassed() { return Asked("ValidateShippingAddress"); }
Lines NumbersLookedAt(int count) {
  Lines lines;
  for (int number = 0; number < count; ++number) {
    lines = Joined({lines, Passed("ValidatePhoneFaxFormat")});
  }
  return lines;
}
Lines NumbersPassed() { return NumbersLookedAt(4); }
Lines CountyFound() { return ConnectionRead(); }
Lines SectorPassed() { return Asked("ValidateSector"); }
Lines NewPinPassed() { return Passed("ValidateNewProviderPIN"); }
Lines DatePassed() { return Passed("ValidateVFCCertDate"); }
Lines ActivePassed() { return Passed("ValidateActiveValue"); }
Lines SubdivisionPassed() { return Asked("ValidateSubdivision"); }
Lines EnrollmentAdded() { return Asked("ValidateEnrollmentRecord"); }
Lines CommonPassed(const std::string& pin) {
  return Joined({PinPassed(pin), AddressPassed(), NumbersPassed(), CountyFound(), KeyTaken()});
}

// The statements as a call builds them.

std::string SectorCount(const std::string& sector) {
  return "SELECT count(*) FROM sectoref WHERE sector = " + sector + " AND sector BETWEEN 10 AND 29";
}
std::string SubdivisionCount(const std::string& subdivision) {
  return "SELECT count(*) FROM subdiv WHERE ltrim(rtrim(subdiv)) = '" + subdivision + "'";
}
std::string EnrollmentInsert(const std::string& pin, const std::string& today) {
  return "INSERT INTO enroll (pin, chgdate, userid,allkids1, medicaid1, uninsured1, amindian1, "
         "fqhc_rhc1, vfckids1, g317kids1, statekids1,allkids2, medicaid2, uninsured2, amindian2, "
         "fqhc_rhc2, vfckids2, g317kids2, statekids2,allkids3, medicaid3, uninsured3, amindian3, "
         "fqhc_rhc3, vfckids3, g317kids3, statekids3,allkids4, medicaid4, uninsured4, amindian4, "
         "fqhc_rhc4, vfckids4, g317kids4, statekids4,other1, other2, other3, other4)VALUES ('" +
         pin + " ',{" + today +
         " },'LTX_DLL',0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0)";
}
Lines PinQueries(const std::string& pin) {
  if (pin != "P1") return {ProviderCount(pin)};
  return {ProviderCount(pin), ProviderActive(pin)};
}
Lines CommonQueries(const std::string& pin) {
  return Joined(
      {PinQueries(pin), {CountyQuery("62701"), KeyQuery("PROVIDER"), KeyUpdate("PROVIDER", "42")}});
}

// The statements of the profiles above, with those pieces for the optionals.
std::string InsertStatement(const std::string& columns, const std::string& values,
                            const std::string& county = "SANGAMON") {
  return "INSERT INTO provider(pin, contact, lastname, address, addres2, city, state, zipcode, "
         "ml_contact, ml_address, ml_addres2, ml_city, ml_state, ml_zipcode, note, phone, fax, "
         "codes, phone2, fax2, createdate, county, provid" +
         columns +
         ", chgdate, userid) VALUES('N1', 'ANN', 'CLINIC', '1 MAIN ST', 'SUITE 2', 'SPRINGFIELD', "
         "'IL', '62701-1234', 'BOB', 'PO BOX 3', 'FLOOR 4', 'CHICAGO', 'WI', '60601', "
         "'RING TWICE', '(217) 555-0100', '(217) 555-0101', '', '(312) 555-0102', "
         "'(312) 555-0103', {12:00:00 AM}, '" +
         county + "', 42 " + values + ", {11/20/2026}, 'LTX_DLL')";
}
std::string UpdateStatement(const std::string& optionals, const std::string& codes = "",
                            const std::string& county = "county = 'SANGAMON', ") {
  return "UPDATE provider SET " + optionals +
         "contact = 'ANN', lastname = 'CLINIC', address = '1 MAIN ST', addres2 = 'SUITE 2', "
         "city = 'SPRINGFIELD', state = 'IL', zipcode = '62701-1234', ml_contact = 'BOB', "
         "ml_address = 'PO BOX 3', ml_addres2 = 'FLOOR 4', ml_city = 'CHICAGO', ml_state = 'WI', "
         "ml_zipcode = '60601', note = 'RING TWICE', phone = '(217) 555-0100', "
         "fax = '(217) 555-0101', phone2 = '(312) 555-0102', fax2 = '(312) 555-0103', codes = '" +
         codes + "'," + county +
         "chgdate = {11/20/2026},userid = 'LTX_DLL'WHERE ltrim(rtrim(pin)) = 'P1'";
}

void Call(cLotrix& lotrix, const Profile& given) {
  lotrix.providerProfileUpdate(
      given.pin, given.facility, given.contact, given.address1, given.address2, given.city,
      given.state, given.zip, given.instructions, given.phone, given.fax, given.mailContact,
      given.mailAddress1, given.mailAddress2, given.mailCity, given.mailState, given.mailZip,
      given.mailPhone, given.mailFax, given.varicella, given.classification, given.certification,
      given.extension, given.firstName, given.initial, given.title, given.parent, given.additional,
      given.active, given.subdivision, given.category1, given.category2, given.category3);
}

class ProfileOperation : public OperationTest {
 protected:
  void SetUp() override {
    AddFilledProvider("P1", "15", "Y");
    Execute("INSERT INTO sectoref (sector) VALUES (10), (15), (29), (30)");
    Execute("INSERT INTO subdiv (subdiv) VALUES ('NORTH')");
    Execute(
        "INSERT INTO zipcodes (zip, cntyname) VALUES ('62701', 'SANGAMON'), ('62701', 'SANGAMON'), "
        "('60601', 'COOK'), ('11111', 'ONE'), ('11111', 'TWO'), ('00000', NULL)");
    Execute("INSERT INTO nextid (ctablename, inextid) VALUES ('Provider', 41), ('distrib', 7)");
    WatchOperations();
  }

  void Run(const Profile& profile) { Call(lotrix(), profile); }
  std::string StatementOf(const Profile& profile) {
    static_cast<void>(Statements());
    Run(profile);
    for (const std::string& text : Statements()) {
      if (text.compare(0, 15, "UPDATE provider") == 0 ||
          text.compare(0, 20, "INSERT INTO provider") == 0) {
        return text;
      }
    }
    return {};
  }

  [[nodiscard]] Rows ProviderRow(const std::string& pin) {
    return Query(
        "SELECT pin, contact, lastname, address, addres2, city, state, zipcode, ml_contact, "
        "ml_address, ml_addres2, ml_city, ml_state, ml_zipcode, note, phone, fax, codes, phone2, "
        "fax2, createdate, county, provid, sector, datevfc, extension, firstname, initial, title, "
        "linkpin, alphaid, active, subdiv, cat1, cat2, cat3, cat4, chgdate, userid FROM provider "
        "WHERE pin = '" +
        pin + "'");
  }
  [[nodiscard]] Rows Keys() {
    return Query("SELECT ctablename, inextid FROM nextid ORDER BY inextid");
  }
  [[nodiscard]] Rows Tables() {
    return Contents({"provider", "enroll", "subdiv", "sectoref", "zipcodes"});
  }

  // Refused with that number and the whole trace as `lines` tells it; nothing
  // written but, if it was taken, the key.
  Error ExpectRefused(const Profile& profile, std::int32_t number,
                      const std::function<Lines(const std::string& description)>& lines,
                      bool keyTaken = false) {
    const auto before = Tables();
    const Rows keys = Keys();
    Error error = ExpectRefusal(
        kOperation, [&] { Run(profile); }, number, lines);
    EXPECT_EQ(Tables(), before);
    EXPECT_EQ(Keys() != keys, keyTaken);
    if (keyTaken) {
      EXPECT_EQ(Keys(), (Rows{{"distrib", "7"}, {"Provider", "42"}}));
      Execute("UPDATE nextid SET inextid = 41 WHERE ctablename = 'Provider'");
    }
    return error;
  }
  // A catalogue refusal; `lines` stand between the operation's first and last.
  void ExpectRefused(const Profile& profile, std::int32_t code, const std::string& message,
                     const Lines& lines, const Lines& statements, bool keyTaken = false) {
    const Error error = ExpectRefused(
        profile, Coded(code), [&](const std::string&) { return lines; }, keyTaken);
    EXPECT_EQ(error.description(), message);
    EXPECT_EQ(Statements(), statements);
  }
};

const char* const kBothPins[] = {"N1", "P1"};

// --- A provider that is not there yet --------------------------------------

TEST_F(ProfileOperation, ANewProviderIsInserted) {
  Run(NewProfile());
  EXPECT_EQ(ProviderRow("N1"), (Rows{{"N1",
                                      "ANN",
                                      "CLINIC",
                                      "1 MAIN ST",
                                      "SUITE 2",
                                      "SPRINGFIELD",
                                      "IL",
                                      "62701-1234",
                                      "BOB",
                                      "PO BOX 3",
                                      "FLOOR 4",
                                      "CHICAGO",
                                      "WI",
                                      "60601",
                                      "RING TWICE",
                                      "(217) 555-0100",
                                      "(217) 555-0101",
                                      "",
                                      "(312) 555-0102",
                                      "(312) 555-0103",
                                      "1899-12-30",
                                      "SANGAMON",
                                      "42",
                                      "15",
                                      "<null>",
                                      "<null>",
                                      "<null>",
                                      "<null>",
                                      "<null>",
                                      "<null>",
                                      "<null>",
                                      "Y",
                                      "<null>",
                                      "<null>",
                                      "<null>",
                                      "<null>",
                                      "<null>",
                                      "2026-11-20",
                                      "LTX_DLL"}}));
  EXPECT_EQ(Keys(), (Rows{{"distrib", "7"}, {"Provider", "42"}}));
}

TEST_F(ProfileOperation, ANewProviderReceivesAnEnrollmentRowOfZeros) {
  Run(NewProfile());
  EXPECT_EQ(Query("SELECT pin, ensource, chgdate, userid FROM enroll"),
            (Rows{{"N1 ", "<null>", "2026-11-20", "LTX_DLL"}}));
  for (const char* const count : {"allkids", "medicaid", "uninsured", "amindian", "fqhc_rhc",
                                  "vfckids", "g317kids", "statekids", "other"}) {
    for (const char* const group : {"1", "2", "3", "4"}) {
      SCOPED_TRACE(std::string(count) + group);
      EXPECT_EQ(Query("SELECT " + std::string(count) + group + " FROM enroll"), (Rows{{"0"}}));
    }
  }
}

TEST_F(ProfileOperation, TheStatementsOfANewProvider) {
  Run(NewProfile());
  EXPECT_EQ(Statements(),
            (Lines{"SELECT count(*) FROM provider WHERE Sector BETWEEN 10 AND 29 AND "
                   "ltrim(rtrim(pin)) = 'N1'",
                   "SELECT DISTINCT cntyname FROM zipcodes WHERE zip = '62701' ",
                   "SELECT inextid FROM Nextid WHERE ltrim(rtrim(upper(ctablename))) = 'PROVIDER' ",
                   "UPDATE nextid SET inextid  = 42 WHERE ltrim(rtrim(upper(ctablename))) = "
                   "'PROVIDER' ",
                   "SELECT count(*) FROM sectoref WHERE sector = 15 AND sector BETWEEN 10 AND 29",
                   "INSERT INTO provider(pin, contact, lastname, address, addres2, city, state, "
                   "zipcode, ml_contact, ml_address, ml_addres2, ml_city, ml_state, ml_zipcode, "
                   "note, phone, fax, codes, phone2, fax2, createdate, county, provid, sector, "
                   "active, chgdate, userid) VALUES('N1', 'ANN', 'CLINIC', '1 MAIN ST', "
                   "'SUITE 2', 'SPRINGFIELD', 'IL', '62701-1234', 'BOB', 'PO BOX 3', 'FLOOR 4', "
                   "'CHICAGO', 'WI', '60601', 'RING TWICE', '(217) 555-0100', '(217) 555-0101', "
                   "'', '(312) 555-0102', '(312) 555-0103', {12:00:00 AM}, 'SANGAMON', 42 , 15 "
                   ",'Y', {11/20/2026}, 'LTX_DLL')",
                   EnrollmentCount("N1"), EnrollmentInsert("N1", "11/20/2026")}));
}

TEST_F(ProfileOperation, TheTraceOfANewProvider) {
  Run(NewProfile());
  EXPECT_EQ(Trace(), (Lines{"information Begin: providerProfileUpdate()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: ValidateProviderPIN()",
                            "information End: ValidateProviderPIN()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: ValidateShippingAddress()",
                            "information End: ValidateShippingAddress()",
                            "information Begin: ValidatePhoneFaxFormat()",
                            "information End: ValidatePhoneFaxFormat()",
                            "information Begin: ValidatePhoneFaxFormat()",
                            "information End: ValidatePhoneFaxFormat()",
                            "information Begin: ValidatePhoneFaxFormat()",
                            "information End: ValidatePhoneFaxFormat()",
                            "information Begin: ValidatePhoneFaxFormat()",
                            "information End: ValidatePhoneFaxFormat()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: ValidateSector()",
                            "information End: ValidateSector()",
                            "information Begin: ValidateNewProviderPIN()",
                            "information End: ValidateNewProviderPIN()",
                            "information " + InsertStatement(", sector, active", ", 15 ,'Y'"),
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: ValidateEnrollmentRecord()",
                            "information End: ValidateEnrollmentRecord()",
                            "information End: providerProfileUpdate()"}));
}

TEST_F(ProfileOperation, AnInsertWithEveryOptional) {
  EXPECT_EQ(StatementOf(WithEveryOptional(NewProfile())),
            InsertStatement(", sector, datevfc, extension, firstname, initial, title, linkpin, "
                            "alphaid, active, subdiv, cat1, cat2, cat3",
                            ", 15 , {1/5/2004} ,'77','CAROL','D','MD','P9','A-8','N','NORTH','C1',"
                            "'C2','C3'"));
  EXPECT_EQ(Query("SELECT sector, datevfc, extension, firstname, initial, title, linkpin, alphaid, "
                  "active, subdiv, cat1, cat2, cat3, cat4 FROM provider WHERE pin = 'N1'"),
            (Rows{{"15", "2004-01-05", "77", "CAROL", "D", "MD", "P9", "A-8", "N", "NORTH", "C1",
                   "C2", "C3", "<null>"}}));
}

struct Optional {
  const char* column;
  Variant Profile::*argument;
};
// Those that are spliced as texts, but for the active flag.
const Optional kTextOptionals[] = {
    {"extension", &Profile::extension}, {"firstname", &Profile::firstName},
    {"initial", &Profile::initial},     {"title", &Profile::title},
    {"linkpin", &Profile::parent},      {"alphaid", &Profile::additional},
    {"subdiv", &Profile::subdivision},  {"cat1", &Profile::category1},
    {"cat2", &Profile::category2},      {"cat3", &Profile::category3}};

bool StandsBehindTheActiveFlag(const std::string& column) {
  return column == "subdiv" || column.compare(0, 3, "cat") == 0;
}

TEST_F(ProfileOperation, AnInsertWithEachTextOptionalAlone) {
  for (const Optional& optional : kTextOptionals) {
    const std::string column = optional.column;
    SCOPED_TRACE(column);
    Profile profile = NewProfile();
    profile.*optional.argument = " north ";
    const bool behind = StandsBehindTheActiveFlag(column);
    EXPECT_EQ(StatementOf(profile),
              behind ? InsertStatement(", sector, active, " + column, ", 15 ,'Y',' NORTH '")
                     : InsertStatement(", sector, " + column + ", active", ", 15 ,' NORTH ','Y'"));
    EXPECT_EQ(Query("SELECT " + column + " FROM provider WHERE pin = 'N1'"), (Rows{{" NORTH "}}));
    Execute("DELETE FROM provider WHERE pin = 'N1'; UPDATE nextid SET inextid = 41");
  }
}

TEST_F(ProfileOperation, AnInsertWithTheCertificationDateAlone) {
  Profile profile = NewProfile();
  profile.certification = "january 5, 2004 10:30";
  EXPECT_EQ(StatementOf(profile),
            InsertStatement(", sector, datevfc, active", ", 15 , {JANUARY 5, 2004 10:30} ,'Y'"));
  EXPECT_EQ(Query("SELECT datevfc FROM provider WHERE pin = 'N1'"), (Rows{{"2004-01-05"}}));
}

TEST_F(ProfileOperation, OptionalsThatArePresentButEmptyAreInserted) {
  Profile profile = NewProfile();
  profile.certification = "";
  for (const Optional& optional : kTextOptionals) profile.*optional.argument = "";
  EXPECT_EQ(StatementOf(profile),
            InsertStatement(", sector, datevfc, extension, firstname, initial, title, linkpin, "
                            "alphaid, active, subdiv, cat1, cat2, cat3",
                            ", 15 , {} ,'','','','','','','Y','','','',''"));
  EXPECT_EQ(Query("SELECT datevfc, extension, firstname, initial, title, linkpin, alphaid, active, "
                  "subdiv, cat1, cat2, cat3 FROM provider WHERE pin = 'N1'"),
            (Rows{{"<null>", "", "", "", "", "", "", "Y", "", "", "", ""}}));
}

TEST_F(ProfileOperation, OptionalsMayBeNumbersLogicalsAndDates) {
  Profile profile = NewProfile();
  profile.classification = std::int64_t{15};
  profile.certification = Date{2004, 1, 5};
  profile.extension = std::int64_t{77};
  profile.parent = 12.5;
  profile.category1 = true;
  EXPECT_EQ(StatementOf(profile),
            InsertStatement(", sector, datevfc, extension, linkpin, active, cat1",
                            ", 15 , {1/5/2004} ,'77','12.5','Y','TRUE'"));
}

TEST_F(ProfileOperation, AClassificationIsInsertedAsAWholeNumber) {
  const std::pair<Variant, std::string> cases[] = {
      {" 15 ", "15"},  {"14.5", "14"}, {"15.5", "16"}, {14.5, "14"},    {15.5, "16"},
      {"1.5e1", "15"}, {"$15", "15"},  {"&HF", "15"},  {"15\0x"s, "15"}};
  Execute("INSERT INTO sectoref (sector) VALUES (14), (16)");
  for (const auto& [classification, number] : cases) {
    SCOPED_TRACE(number);
    Profile profile = NewProfile();
    profile.classification = classification;
    static_cast<void>(Statements());
    Run(profile);
    const Lines statements = Statements();
    ASSERT_EQ(statements.size(), 8U);
    EXPECT_EQ(statements[4], SectorCount(number));
    EXPECT_EQ(statements[5], InsertStatement(", sector, active", ", " + number + " ,'Y'"));
    EXPECT_EQ(Query("SELECT sector FROM provider WHERE pin = 'N1'"), (Rows{{number}}));
    Execute(
        "DELETE FROM provider WHERE pin = 'N1'; DELETE FROM enroll; "
        "UPDATE nextid SET inextid = 41");
  }
}

TEST_F(ProfileOperation, AnInsertAsksNothingAboutTheSubdivision) {
  Profile profile = NewProfile();
  profile.subdivision = "NOWHERE";
  Run(profile);
  EXPECT_EQ(Query("SELECT subdiv FROM provider WHERE pin = 'N1'"), (Rows{{"NOWHERE"}}));
}

TEST_F(ProfileOperation, ACertificationDateThatIsNoneCannotBeConvertedByAnInsert) {
  for (const char* const date : {"13/45/2001", "SOON", "1/5/2004'"}) {
    SCOPED_TRACE(date);
    Profile profile = NewProfile();
    profile.certification = date;
    ExpectRefused(
        profile, Numbered(EngineError::kValueCannotBeConverted),
        [&](const std::string&) {
          return Joined({CommonPassed("N1"), SectorPassed(), NewPinPassed(),
                         Logged(InsertStatement(", sector, datevfc, active",
                                                ", 15 , {" + std::string(date) + "} ,'Y'")),
                         ConnectionRead()});
        },
        true);
  }
}

TEST_F(ProfileOperation, AnEnrollmentRowThatIsThereStays) {
  Execute("INSERT INTO enroll (pin, ensource, allkids1) VALUES (' N1', 'B', 9)");
  Run(NewProfile());
  EXPECT_EQ(Query("SELECT pin, ensource, allkids1, userid FROM enroll"),
            (Rows{{" N1", "B", "9", "<null>"}}));
  EXPECT_EQ(Statements().back(), EnrollmentCount("N1"));
}

TEST_F(ProfileOperation, TheProviderStaysWhenItsEnrollmentFails) {
  Execute("INSERT INTO enroll (pin) VALUES ('N1'), ('N1')");
  ForgetTrace();
  const std::string message =
      "There are duplicate enrollment data records for the current provider";
  ExpectError(Refusal([&] { Run(NewProfile()); }), Coded(20090), message);
  EXPECT_EQ(Trace(), Joined({Begun(),
                             CommonPassed("N1"),
                             SectorPassed(),
                             NewPinPassed(),
                             Logged(InsertStatement(", sector, active", ", 15 ,'Y'")),
                             ConnectionRead(),
                             ConnectionRead(),
                             Refused("ValidateEnrollmentRecord", message),
                             {ProblemOf(kOperation, message)}}));
  EXPECT_EQ(Query("SELECT lastname, provid FROM provider WHERE pin = 'N1'"),
            (Rows{{"CLINIC", "42"}}));
  EXPECT_EQ(Query("SELECT count(*) FROM enroll"), (Rows{{"2"}}));
}

TEST_F(ProfileOperation, TheProviderStaysWhenItsEnrollmentCannotBeWritten) {
  database().Forbid("INSERT", "enroll");
  ForgetTrace();
  const Error error = Refusal([&] { Run(NewProfile()); });
  EXPECT_EQ(error.source(), "LOTRIX DLL");
  EXPECT_EQ(Trace(), Joined({Begun(),
                             CommonPassed("N1"),
                             SectorPassed(),
                             NewPinPassed(),
                             Logged(InsertStatement(", sector, active", ", 15 ,'Y'")),
                             ConnectionRead(),
                             EnrollmentAdded(),
                             {ProblemOf(kOperation, error.description())}}));
  EXPECT_EQ(Query("SELECT lastname FROM provider WHERE pin = 'N1'"), (Rows{{"CLINIC"}}));
  EXPECT_EQ(Query("SELECT count(*) FROM enroll"), (Rows{{"0"}}));
}

TEST_F(ProfileOperation, AnUnknownZipCodeInsertsAnEmptyCounty) {
  for (const char* const zip : {"99999", "11111"}) {
    SCOPED_TRACE(zip);
    Profile profile = NewProfile();
    profile.zip = zip;
    Run(profile);
    EXPECT_EQ(Query("SELECT county FROM provider WHERE pin = 'N1'"), (Rows{{""}}));
    Execute("DELETE FROM provider WHERE pin = 'N1'");
  }
}

TEST_F(ProfileOperation, AProviderWithAPinOfADepotIsNew) {
  AddFilledProvider("N1", "31", "Y");
  Run(NewProfile());
  EXPECT_EQ(Query("SELECT lastname, sector FROM provider WHERE pin = 'N1' ORDER BY sector"),
            (Rows{{"CLINIC", "15"}, {"OL", "31"}}));
}

TEST_F(ProfileOperation, ANewProviderIsFoundByTheNextCall) {
  Run(NewProfile());
  Profile profile = NewProfile();
  profile.facility = "CLINIC TWO";
  Run(profile);
  EXPECT_EQ(Query("SELECT lastname, provid, createdate FROM provider WHERE pin = 'N1'"),
            (Rows{{"CLINIC TWO", "42", "1899-12-30"}}));
  EXPECT_EQ(Query("SELECT count(*) FROM enroll"), (Rows{{"1"}}));
}

// --- A provider that is there -----------------------------------------------

TEST_F(ProfileOperation, AProviderIsUpdatedAndItsOtherColumnsStay) {
  Run({});
  EXPECT_EQ(ProviderRow("P1"), (Rows{{"P1",
                                      "ANN",
                                      "CLINIC",
                                      "1 MAIN ST",
                                      "SUITE 2",
                                      "SPRINGFIELD",
                                      "IL",
                                      "62701-1234",
                                      "BOB",
                                      "PO BOX 3",
                                      "FLOOR 4",
                                      "CHICAGO",
                                      "WI",
                                      "60601",
                                      "RING TWICE",
                                      "(217) 555-0100",
                                      "(217) 555-0101",
                                      "",
                                      "(312) 555-0102",
                                      "(312) 555-0103",
                                      "1999-01-02",
                                      "SANGAMON",
                                      "5",
                                      "15",
                                      "1999-03-04",
                                      "OE",
                                      "OFN",
                                      "OI",
                                      "OT",
                                      "OLP",
                                      "OAI",
                                      "Y",
                                      "OSD",
                                      "OC1",
                                      "OC2",
                                      "OC3",
                                      "OC4",
                                      "2026-11-20",
                                      "LTX_DLL"}}));
  EXPECT_EQ(Query("SELECT count(*) FROM enroll"), (Rows{{"0"}}));
}

TEST_F(ProfileOperation, AnUpdateConsumesAKeyAllTheSame) {
  Run({});
  EXPECT_EQ(Keys(), (Rows{{"distrib", "7"}, {"Provider", "42"}}));
  Run({});
  EXPECT_EQ(Keys(), (Rows{{"distrib", "7"}, {"Provider", "43"}}));
  EXPECT_EQ(Query("SELECT provid FROM provider"), (Rows{{"5"}}));
}

TEST_F(ProfileOperation, TheStatementsOfAnUpdate) {
  Run({});
  EXPECT_EQ(Statements(),
            (Lines{"SELECT count(*) FROM provider WHERE Sector BETWEEN 10 AND 29 AND "
                   "ltrim(rtrim(pin)) = 'P1'",
                   "SELECT active FROM provider WHERE Sector BETWEEN 10 AND 29 AND "
                   "ltrim(rtrim(pin)) = 'P1'",
                   "SELECT DISTINCT cntyname FROM zipcodes WHERE zip = '62701' ",
                   "SELECT inextid FROM Nextid WHERE ltrim(rtrim(upper(ctablename))) = 'PROVIDER' ",
                   "UPDATE nextid SET inextid  = 42 WHERE ltrim(rtrim(upper(ctablename))) = "
                   "'PROVIDER' ",
                   "UPDATE provider SET active = 'Y', contact = 'ANN', lastname = 'CLINIC', "
                   "address = '1 MAIN ST', addres2 = 'SUITE 2', city = 'SPRINGFIELD', "
                   "state = 'IL', zipcode = '62701-1234', ml_contact = 'BOB', "
                   "ml_address = 'PO BOX 3', ml_addres2 = 'FLOOR 4', ml_city = 'CHICAGO', "
                   "ml_state = 'WI', ml_zipcode = '60601', note = 'RING TWICE', "
                   "phone = '(217) 555-0100', fax = '(217) 555-0101', "
                   "phone2 = '(312) 555-0102', fax2 = '(312) 555-0103', codes = '',"
                   "county = 'SANGAMON', chgdate = {11/20/2026},userid = 'LTX_DLL'WHERE "
                   "ltrim(rtrim(pin)) = 'P1'"}));
}

TEST_F(ProfileOperation, TheTraceOfAnUpdate) {
  Run({});
  EXPECT_EQ(Trace(), (Lines{"information Begin: providerProfileUpdate()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: ValidateProviderPIN()",
                            "information Begin: ValidateProviderActiveStatus()",
                            "information End: ValidateProviderActiveStatus()",
                            "information End: ValidateProviderPIN()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: ValidateShippingAddress()",
                            "information End: ValidateShippingAddress()",
                            "information Begin: ValidatePhoneFaxFormat()",
                            "information End: ValidatePhoneFaxFormat()",
                            "information Begin: ValidatePhoneFaxFormat()",
                            "information End: ValidatePhoneFaxFormat()",
                            "information Begin: ValidatePhoneFaxFormat()",
                            "information End: ValidatePhoneFaxFormat()",
                            "information Begin: ValidatePhoneFaxFormat()",
                            "information End: ValidatePhoneFaxFormat()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information Begin: ValidateActiveValue()",
                            "information End: ValidateActiveValue()",
                            "information " + UpdateStatement("active = 'Y', "),
                            "information Begin: Get Connection()",
                            "information End: GetConnection()",
                            "information End: providerProfileUpdate()"}));
}

TEST_F(ProfileOperation, AnUpdateWithEveryOptional) {
  const std::string statement = UpdateStatement(
      "sector = 15, datevfc = {1/5/2004}, extension = '77', firstname = 'CAROL', initial = 'D', "
      "title = 'MD', linkpin = 'P9', alphaid = 'A-8', active = 'N', subdiv = 'NORTH', "
      "cat1 = 'C1', cat2 = 'C2', cat3 = 'C3', ");
  Run(WithEveryOptional({}));
  EXPECT_EQ(Statements(), Joined({CommonQueries("P1"),
                                  {SectorCount("15"), SubdivisionCount("NORTH"), statement}}));
  EXPECT_EQ(Trace(),
            Joined({Begun(), CommonPassed("P1"), SectorPassed(), DatePassed(), ActivePassed(),
                    SubdivisionPassed(), Logged(statement), ConnectionRead(), Ended()}));
  EXPECT_EQ(Query("SELECT sector, datevfc, extension, firstname, initial, title, linkpin, alphaid, "
                  "active, subdiv, cat1, cat2, cat3, cat4 FROM provider"),
            (Rows{{"15", "2004-01-05", "77", "CAROL", "D", "MD", "P9", "A-8", "N", "NORTH", "C1",
                   "C2", "C3", "OC4"}}));
}

TEST_F(ProfileOperation, AnUpdateWithEachTextOptionalAlone) {
  for (const Optional& optional : kTextOptionals) {
    const std::string column = optional.column;
    SCOPED_TRACE(column);
    Profile profile;
    profile.*optional.argument = "north ";
    const std::string piece = column + " = 'NORTH ', ";
    EXPECT_EQ(StatementOf(profile), StandsBehindTheActiveFlag(column)
                                        ? UpdateStatement("active = 'Y', " + piece)
                                        : UpdateStatement(piece + "active = 'Y', "));
    EXPECT_EQ(Query("SELECT " + column + " FROM provider"), (Rows{{"NORTH "}}));
  }
}

TEST_F(ProfileOperation, AnUpdateWithTheClassificationAlone) {
  for (const Variant& classification :
       {Variant("15"), Variant(" 1.5E1 "), Variant(std::int64_t{15}), Variant(15.25),
        Variant("14.5001")}) {
    Execute("UPDATE provider SET sector = 10");
    Profile profile;
    profile.classification = classification;
    EXPECT_EQ(StatementOf(profile), UpdateStatement("sector = 15, active = 'Y', "));
    EXPECT_EQ(Query("SELECT sector FROM provider"), (Rows{{"15"}}));
  }
}

TEST_F(ProfileOperation, AnUpdateWithTheCertificationDateAlone) {
  Profile profile;
  profile.certification = "jan 5 2004";
  EXPECT_EQ(StatementOf(profile), UpdateStatement("datevfc = {JAN 5 2004}, active = 'Y', "));
  EXPECT_EQ(Query("SELECT datevfc FROM provider"), (Rows{{"2004-01-05"}}));
}

TEST_F(ProfileOperation, OptionalsThatArePresentButEmptyClearTheirColumns) {
  Execute("INSERT INTO subdiv (subdiv) VALUES ('')");
  Profile profile;
  for (const Optional& optional : kTextOptionals) profile.*optional.argument = "";
  EXPECT_EQ(StatementOf(profile),
            UpdateStatement("extension = '', firstname = '', initial = '', title = '', "
                            "linkpin = '', alphaid = '', active = 'Y', subdiv = '', cat1 = '', "
                            "cat2 = '', cat3 = '', "));
  EXPECT_EQ(Query("SELECT extension, firstname, initial, title, linkpin, alphaid, active, subdiv, "
                  "cat1, cat2, cat3, datevfc FROM provider"),
            (Rows{{"", "", "", "", "", "", "Y", "", "", "", "", "1999-03-04"}}));
}

TEST_F(ProfileOperation, AnUnknownZipCodeLeavesTheCounty) {
  for (const char* const zip : {"99999", "11111"}) {
    SCOPED_TRACE(zip);
    Profile profile;
    profile.zip = zip;
    const std::string statement = StatementOf(profile);
    EXPECT_EQ(statement.find("county"), std::string::npos);
    EXPECT_NE(statement.find("codes = '',chgdate = {11/20/2026},userid = 'LTX_DLL'WHERE"),
              std::string::npos);
    EXPECT_EQ(Query("SELECT county, zipcode FROM provider"), (Rows{{"OCO", zip}}));
  }
  Execute("DELETE FROM zipcodes");
  EXPECT_EQ(StatementOf({}), UpdateStatement("active = 'Y', ", "", ""));
}

TEST_F(ProfileOperation, ACountyIsTrimmedAndKeepsItsCase) {
  Execute("DELETE FROM zipcodes; INSERT INTO zipcodes VALUES ('62701', '  Sangamon ')");
  EXPECT_EQ(StatementOf({}), UpdateStatement("active = 'Y', ", "", "county = 'Sangamon', "));
  Execute("UPDATE nextid SET inextid = 41");
  EXPECT_EQ(StatementOf(NewProfile()),
            InsertStatement(", sector, active", ", 15 ,'Y'", "Sangamon"));
}

TEST_F(ProfileOperation, ACountyWithAnApostropheBreaksTheStatement) {
  Execute("UPDATE zipcodes SET cntyname = 'O''Brien' WHERE zip = '62701'");
  ExpectRefused(
      {}, Numbered(EngineError::kStatementRefused),
      [&](const std::string&) {
        return Joined({CommonPassed("P1"), ActivePassed(),
                       Logged(UpdateStatement("active = 'Y', ", "", "county = 'O'Brien', ")),
                       ConnectionRead()});
      },
      true);
  ExpectRefused(
      NewProfile(), Numbered(EngineError::kStatementRefused),
      [&](const std::string&) {
        return Joined({CommonPassed("N1"), SectorPassed(), NewPinPassed(),
                       Logged(InsertStatement(", sector, active", ", 15 ,'Y'", "O'Brien")),
                       ConnectionRead()});
      },
      true);
}

TEST_F(ProfileOperation, EveryRowOfThePinIsUpdated) {
  AddFilledProvider(" P1 ", "31", "N");
  AddFilledProvider("P2", "15", "Y");
  Run({});
  EXPECT_EQ(
      Query("SELECT pin, lastname, sector, active FROM provider ORDER BY sector, pin"),
      (Rows{{"P1", "CLINIC", "15", "Y"}, {"P2", "OL", "15", "Y"}, {" P1 ", "CLINIC", "31", "Y"}}));
}

// --- Both branches ----------------------------------------------------------

TEST_F(ProfileOperation, TheTextsAreStoredInUpperCaseAndUntrimmed) {
  Profile profile;
  profile.pin = "p1";
  profile.facility = " clinic é straße ";
  profile.contact = "ann ÿ ";
  profile.address1 = " 1 main st ";
  profile.address2 = " suite ";
  profile.city = " peoria ";
  profile.state = " il ";
  profile.zip = "60601 x ";
  profile.instructions = " ring ";
  profile.phone = "(abc) def-ghij";
  profile.fax = "(fax) fax-faxx";
  profile.mailContact = " bob ";
  profile.mailAddress1 = " box ";
  profile.mailAddress2 = " floor ";
  profile.mailCity = " chicago ";
  profile.mailState = " wi ";
  profile.mailZip = " z1 ";
  profile.mailPhone = "(mai) lph-onex";
  profile.mailFax = "(mai) lfa-xxxx";
  profile.varicella = true;
  profile.active = "y";
  const std::string texts[] = {"ANN Ÿ ",
                               " CLINIC É STRAßE ",
                               " 1 MAIN ST ",
                               " SUITE ",
                               " PEORIA ",
                               " IL ",
                               "60601 X ",
                               " BOB ",
                               " BOX ",
                               " FLOOR ",
                               " CHICAGO ",
                               " WI ",
                               " Z1 ",
                               " RING ",
                               "(ABC) DEF-GHIJ",
                               "(FAX) FAX-FAXX",
                               "V",
                               "(MAI) LPH-ONEX",
                               "(MAI) LFA-XXXX",
                               "COOK",
                               "Y"};
  const Rows stored{Row(std::begin(texts), std::end(texts))};
  const std::string columns =
      "SELECT contact, lastname, address, addres2, city, state, zipcode, ml_contact, ml_address, "
      "ml_addres2, ml_city, ml_state, ml_zipcode, note, phone, fax, codes, phone2, fax2, county, "
      "active FROM provider WHERE pin = ";
  Run(profile);
  EXPECT_EQ(Query(columns + "'P1'"), stored);
  profile.pin = "n1";
  profile.classification = "15";
  Run(profile);
  EXPECT_EQ(Query(columns + "'N1'"), stored);
}

TEST_F(ProfileOperation, SpecialCharactersAreRemovedFromElevenFields) {
  const std::string special = "!@#$%^&*()+|\\/{}[]:<>?\"'";
  const std::string kept = " -,._=;~`";
  std::string Profile::*const fields[] = {
      &Profile::address1, &Profile::address2,     &Profile::city,         &Profile::state,
      &Profile::zip,      &Profile::instructions, &Profile::mailAddress1, &Profile::mailAddress2,
      &Profile::mailCity, &Profile::mailState,    &Profile::mailZip};
  for (const char* const pin : kBothPins) {
    SCOPED_TRACE(pin);
    Profile profile;
    profile.pin = pin;
    profile.classification = "15";
    for (std::string Profile::*const field : fields) {
      profile.*field = "a" + special + kept + special + "b";
    }
    Run(profile);
    const std::string clean = "A" + kept + "B";
    EXPECT_EQ(Query("SELECT address, addres2, city, state, zipcode, note, ml_address, ml_addres2, "
                    "ml_city, ml_state, ml_zipcode FROM provider WHERE pin = '" +
                    profile.pin + "'"),
              Rows{Row(11, clean)});
  }
}

TEST_F(ProfileOperation, SpecialCharactersStayInTheOtherFields) {
  const std::string special = "!@#$%^&*()+|\\/{}[]:<>?\"";
  for (const char* const pin : kBothPins) {
    SCOPED_TRACE(pin);
    Profile profile;
    profile.pin = pin;
    profile.classification = "15";
    profile.facility = special;
    profile.contact = special;
    profile.mailContact = special;
    for (const Optional& optional : kTextOptionals) profile.*optional.argument = special;
    Execute("DELETE FROM subdiv");
    Execute("INSERT INTO subdiv (subdiv) VALUES ('" + special + "')");
    Run(profile);
    EXPECT_EQ(Query("SELECT lastname, contact, ml_contact, extension, firstname, initial, title, "
                    "linkpin, alphaid, subdiv, cat1, cat2, cat3 FROM provider WHERE pin = '" +
                    profile.pin + "'"),
              Rows{Row(13, special)});
  }
}

TEST_F(ProfileOperation, TheCountyIsLookedUpByFiveCharactersOfTheCleanedZipCode) {
  Profile profile;
  profile.zip = "(60'6/0)1-77'";
  Run(profile);
  EXPECT_EQ(Statements()[2], CountyQuery("60601"));
  EXPECT_EQ(Query("SELECT zipcode, county FROM provider"), (Rows{{"60601-77", "COOK"}}));
  profile.zip = "abé";
  Run(profile);
  EXPECT_EQ(Statements()[2], CountyQuery("ABÉ"));
  profile.zip = "";
  Run(profile);
  EXPECT_EQ(Statements()[2], CountyQuery(""));
  EXPECT_EQ(Query("SELECT zipcode, county FROM provider"), (Rows{{"", "COOK"}}));
}

TEST_F(ProfileOperation, BlankInstructionsBecomeNone) {
  for (const char* const pin : kBothPins) {
    for (const char* const instructions : {"", "   ", "!?", " ' "}) {
      SCOPED_TRACE(std::string(pin) + "|" + instructions);
      Profile profile;
      profile.pin = pin;
      profile.classification = "15";
      profile.instructions = instructions;
      Run(profile);
      EXPECT_EQ(Query("SELECT note FROM provider WHERE pin = '" + profile.pin + "'"),
                (Rows{{"NONE"}}));
    }
  }
}

TEST_F(ProfileOperation, VaricellaEligibilityIsALetterOrNothing) {
  Profile profile;
  profile.varicella = true;
  EXPECT_EQ(StatementOf(profile), UpdateStatement("active = 'Y', ", "V"));
  EXPECT_EQ(Query("SELECT codes FROM provider"), (Rows{{"V"}}));
  profile.varicella = false;
  EXPECT_EQ(StatementOf(profile), UpdateStatement("active = 'Y', "));
  EXPECT_EQ(Query("SELECT codes FROM provider"), (Rows{{""}}));
}

TEST_F(ProfileOperation, BlankFaxAndMailNumbersAreAcceptedUnlooked) {
  for (const char* const pin : kBothPins) {
    for (const char* const blank : {"", "  "}) {
      SCOPED_TRACE(std::string(pin) + "|" + blank);
      Profile profile;
      profile.pin = pin;
      profile.classification = "15";
      profile.fax = blank;
      profile.mailPhone = blank;
      profile.mailFax = blank;
      ForgetTrace();
      Run(profile);
      const Lines trace = Trace();
      int looked = 0;
      for (const std::string& line : trace) looked += line == BeginOf("ValidatePhoneFaxFormat");
      EXPECT_EQ(looked, 1);
      EXPECT_EQ(
          Query("SELECT phone, fax, phone2, fax2 FROM provider WHERE pin = '" + profile.pin + "'"),
          (Rows{{"(217) 555-0100", blank, blank, blank}}));
    }
  }
}

TEST_F(ProfileOperation, BlankMailAndSecondAddressFieldsAreAccepted) {
  for (const char* const pin : kBothPins) {
    SCOPED_TRACE(pin);
    Profile profile;
    profile.pin = pin;
    profile.classification = "15";
    profile.address2 = "";
    profile.mailContact = "";
    profile.mailAddress1 = "";
    profile.mailAddress2 = "";
    profile.mailCity = "";
    profile.mailState = "";
    profile.mailZip = "";
    Run(profile);
    EXPECT_EQ(Query("SELECT addres2, ml_contact, ml_address, ml_addres2, ml_city, ml_state, "
                    "ml_zipcode FROM provider WHERE pin = '" +
                    profile.pin + "'"),
              Rows{Row(7, "")});
  }
}

TEST_F(ProfileOperation, AnOmittedActiveFlagIsWrittenAsY) {
  Execute("UPDATE provider SET active = 'y'");
  Run({});
  EXPECT_EQ(Query("SELECT active FROM provider"), (Rows{{"Y"}}));
}

TEST_F(ProfileOperation, AProviderCanBeDeactivatedButNeverReactivated) {
  Profile profile;
  profile.active = "n";
  EXPECT_EQ(StatementOf(profile), UpdateStatement("active = 'N', "));
  EXPECT_EQ(Query("SELECT active FROM provider"), (Rows{{"N"}}));
  const std::string message =
      "The provider enter is currently inactivate in LOTRIX. Cannot proceed with the current "
      "operation";
  Execute("UPDATE nextid SET inextid = 41 WHERE ctablename = 'Provider'");
  for (const Variant& active : {Variant("Y"), Variant("N"), Variant()}) {
    profile.active = active;
    ExpectRefused(profile, 20083, message, InactiveProviderRefused(message), PinQueries("P1"));
  }
}

// The day may change while a call runs.
TEST_F(ProfileOperation, TodayIsTakenAtTheStartAndAfreshForTheEnrollment) {
  RunAcrossMidnight([](cLotrix& own) { Call(own, NewProfile()); });
  EXPECT_EQ(Query("SELECT chgdate FROM provider WHERE pin = 'N1'"), (Rows{{"2026-11-20"}}));
  EXPECT_EQ(Query("SELECT chgdate FROM enroll"), (Rows{{"2026-11-21"}}));
  RunAcrossMidnight([](cLotrix& own) { Call(own, {}); });
  EXPECT_EQ(Query("SELECT chgdate FROM provider WHERE pin = 'P1'"), (Rows{{"2026-11-20"}}));
}

// --- The checks, in their order ---------------------------------------------

enum Check {
  kActive,
  kPinLength,
  kPinCharacters,
  kFacility,
  kContact,
  kAddress,
  kCity,
  kState,
  kPhone,
  kFax,
  kMailPhone,
  kMailFax,
  kCounty,
  kKey,
  kClassification,
  kNoNumber,
  kSector,
  kCertification,
  kSubdivision,
  kStatement
};

// Wrong from that check on: the order of the checks is the order in which the
// faults are found when they are mended one by one.
Profile WrongFrom(Check first, const std::string& pin) {
  Profile wrong;
  wrong.active = first > kActive ? "y" : "YES";
  wrong.pin = first > kPinCharacters ? pin : first > kPinLength ? "P-1" : "TOO-LONG";
  wrong.facility = first > kFacility ? "O'NEIL" : " ";
  wrong.contact = first > kContact ? "O'NEIL" : " ";
  wrong.address1 = first > kAddress ? "1 MAIN ST" : "!?";
  wrong.address2 = "";
  wrong.city = first > kCity ? "SPRINGFIELD" : "'";
  wrong.state = first > kState ? "IL" : "  ";
  wrong.instructions = "";
  wrong.phone = first > kPhone ? "(217) 555-0100" : "";
  wrong.fax = first > kFax ? "(217) 555-0101" : "217-555-0100";
  wrong.mailContact = "O'NEIL";
  wrong.mailPhone = first > kMailPhone ? "(312) 555-0102" : "2175550100";
  wrong.mailFax = first > kMailFax ? "(312) 555-0103" : "(217)555-01000";
  wrong.zip = first > kCounty ? "62701" : "00000";
  if (first > kClassification) {
    wrong.classification = first > kSector ? "15" : first > kNoNumber ? "30" : "AB";
  } else if (pin == "P1") {
    wrong.classification = "AB";
  }
  wrong.certification = first > kCertification ? "1/5/2004" : "13/45/2001";
  wrong.subdivision = first > kSubdivision ? "NORTH" : "NOWHERE";
  return wrong;
}

TEST_F(ProfileOperation, FirstTheActiveFlag) {
  Execute("DELETE FROM nextid");
  for (const Variant& active :
       {Variant("YES"), Variant("NO"), Variant(""), Variant(" "), Variant("Y "), Variant(" Y"),
        Variant("T"), Variant("Y\0"s), Variant(std::int64_t{1}), Variant(true)}) {
    Profile wrong = WrongFrom(kActive, "N1");
    wrong.active = active;
    ExpectRefused(wrong, 20095, "The active code entered is not Y nor N", {}, {});
  }
}

TEST_F(ProfileOperation, ThenTheLengthOfThePin) {
  Execute("DELETE FROM nextid");
  const std::string message =
      "The number of characters in the pin entered exceeds the maximum allowed";
  for (const std::string& pin :
       {"TOO-LONG"s, "1234567"s, "ÉÉÉÉÉÉÉ"s, "😀😀😀1"s, "      7"s, std::string(kMebibyte, 'P')}) {
    Profile wrong = WrongFrom(kPinLength, "N1");
    wrong.pin = pin;
    ExpectRefused(wrong, 20078, message, RefusedBy("ValidateProviderPIN", message), {});
  }
}

TEST_F(ProfileOperation, ThenTheCharactersOfThePin) {
  Execute("DELETE FROM nextid");
  const std::string message =
      "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed.";
  for (const std::string& pin :
       {"P-1"s, "P1'"s, ""s, "   "s, " P1"s, "ÉÉÉÉÉÉ"s, "😀😀😀"s, "P1\0"s, "P 1"s}) {
    Profile wrong = WrongFrom(kPinCharacters, "N1");
    wrong.pin = pin;
    ExpectRefused(wrong, 20079, message, RefusedBy("ValidateProviderPIN", message), {});
  }
}

TEST_F(ProfileOperation, APinOfSixCharactersIsAccepted) {
  Profile profile = NewProfile();
  profile.pin = "a2345z";
  Run(profile);
  EXPECT_EQ(Query("SELECT pin FROM provider WHERE sector = 15 AND pin <> 'P1'"),
            (Rows{{"A2345Z"}}));
}

TEST_F(ProfileOperation, APinThatTwoProvidersHaveIsRefused) {
  AddFilledProvider("TWIN", "10", "Y");
  AddFilledProvider("TWIN", "29", "Y");
  const std::string message = "Provider PIN entered has a duplicate";
  ExpectRefused(WrongFrom(kFacility, "TWIN"), 20003, message,
                RefusedBy("ValidateProviderPIN", message), {ProviderCount("TWIN")});
}

TEST_F(ProfileOperation, AnInactiveProviderIsRefusedBeforeAnyField) {
  AddFilledProvider("OFF", "15", "N");
  const std::string message =
      "The provider enter is currently inactivate in LOTRIX. Cannot proceed with the current "
      "operation";
  ExpectRefused(WrongFrom(kFacility, "OFF"), 20083, message, InactiveProviderRefused(message),
                {ProviderCount("OFF"), ProviderActive("OFF")});
}

TEST_F(ProfileOperation, APinCountThatIsNoneIsRefused) {
  const std::string message = "Error while verifying provider PIN in LOTRIX";
  const std::vector<std::vector<Value>> answers = {
      {}, {std::int64_t{0}, std::int64_t{0}}, {std::int64_t{-1}}};
  for (const std::vector<Value>& rows : answers) {
    SCOPED_TRACE(rows.size());
    AnswerEveryQuery(rows);
    ExpectRefused(WrongFrom(kFacility, "N1"), 20005, message,
                  RefusedBy("ValidateProviderPIN", message), {ProviderCount("N1")});
  }
}

TEST_F(ProfileOperation, ThenTheName) {
  for (const char* const pin : kBothPins) {
    for (const char* const name : {"", "   "}) {
      Profile wrong = WrongFrom(kFacility, pin);
      wrong.facility = name;
      ExpectRefused(wrong, 20001, "Null provider name was entered", PinPassed(pin),
                    PinQueries(pin));
    }
  }
}

TEST_F(ProfileOperation, ThenTheContact) {
  for (const char* const pin : kBothPins) {
    for (const char* const contact : {"", "   "}) {
      Profile wrong = WrongFrom(kContact, pin);
      wrong.contact = contact;
      ExpectRefused(wrong, 20002, "Null shipping contact was entered", PinPassed(pin),
                    PinQueries(pin));
    }
  }
}

TEST_F(ProfileOperation, ThenTheFirstAddressField) {
  const std::string message = "The first field of the shipping address cannot be null";
  for (const char* const pin : kBothPins) {
    for (const char* const address : {"", "  ", "!?", " ' "}) {
      Profile wrong = WrongFrom(kAddress, pin);
      wrong.address1 = address;
      wrong.address2 = "SUITE 2";
      ExpectRefused(
          wrong, 20006, message,
          Joined({PinPassed(pin), ConnectionRead(), Refused("ValidateShippingAddress", message)}),
          PinQueries(pin));
    }
  }
}

TEST_F(ProfileOperation, ThenTheCity) {
  const std::string message = "The city field in the shipping address cannot be null";
  for (const char* const pin : kBothPins) {
    for (const char* const city : {"", "  ", "'"}) {
      Profile wrong = WrongFrom(kCity, pin);
      wrong.city = city;
      ExpectRefused(
          wrong, 20007, message,
          Joined({PinPassed(pin), ConnectionRead(), Refused("ValidateShippingAddress", message)}),
          PinQueries(pin));
    }
  }
}

TEST_F(ProfileOperation, ThenTheState) {
  const std::string message = "The state field in the shipping address cannot be null";
  for (const char* const pin : kBothPins) {
    for (const char* const state : {"", "  ", "()"}) {
      Profile wrong = WrongFrom(kState, pin);
      wrong.state = state;
      wrong.zip = "";
      ExpectRefused(
          wrong, 20008, message,
          Joined({PinPassed(pin), ConnectionRead(), Refused("ValidateShippingAddress", message)}),
          PinQueries(pin));
    }
  }
}

const std::string kNoNumbers[] = {"217-555-0100",
                                  "2175550100",
                                  "(217)555-01000",
                                  "(217) 555-010",
                                  "(217) 555-01000",
                                  " (217) 555-0100",
                                  "(217) 555-0100 ",
                                  "(217) 555-0é100",
                                  "(217) 555 0100",
                                  "(2 7) 555-0100",
                                  std::string(kMebibyte / 64, '1')};

TEST_F(ProfileOperation, ThenTheShippingPhoneEvenWhenBlank) {
  for (const char* const pin : kBothPins) {
    Profile wrong = WrongFrom(kPhone, pin);
    for (const std::string& phone : {""s, "  "s, "              "s, std::string(kMebibyte, '1')}) {
      wrong.phone = phone;
      ExpectRefused(wrong, 20142, "Invalid shipping phone number format",
                    Joined({PinPassed(pin), AddressPassed(), NumbersLookedAt(1)}), PinQueries(pin));
    }
    for (const std::string& phone : kNoNumbers) {
      wrong.phone = phone;
      ExpectRefused(wrong, 20142, "Invalid shipping phone number format",
                    Joined({PinPassed(pin), AddressPassed(), NumbersLookedAt(1)}), PinQueries(pin));
    }
  }
}

TEST_F(ProfileOperation, ThenTheShippingFax) {
  for (const char* const pin : kBothPins) {
    for (const std::string& fax : kNoNumbers) {
      Profile wrong = WrongFrom(kFax, pin);
      wrong.fax = fax;
      ExpectRefused(wrong, 20143, "Invalid shipping fax number format",
                    Joined({PinPassed(pin), AddressPassed(), NumbersLookedAt(2)}), PinQueries(pin));
    }
  }
}

TEST_F(ProfileOperation, ThenTheMailingPhone) {
  for (const char* const pin : kBothPins) {
    for (const std::string& phone : kNoNumbers) {
      Profile wrong = WrongFrom(kMailPhone, pin);
      wrong.mailPhone = phone;
      ExpectRefused(wrong, 20140, "Invalid mailing phone number format",
                    Joined({PinPassed(pin), AddressPassed(), NumbersLookedAt(3)}), PinQueries(pin));
    }
  }
}

TEST_F(ProfileOperation, ThenTheMailingFax) {
  for (const char* const pin : kBothPins) {
    for (const std::string& fax : kNoNumbers) {
      Profile wrong = WrongFrom(kMailFax, pin);
      wrong.mailFax = fax;
      ExpectRefused(wrong, 20141, "Invalid mailing fax number format",
                    Joined({PinPassed(pin), AddressPassed(), NumbersLookedAt(4)}), PinQueries(pin));
    }
  }
}

TEST_F(ProfileOperation, ThenACountyWithoutAName) {
  Execute("DELETE FROM nextid");
  for (const char* const pin : kBothPins) {
    ExpectRefused(WrongFrom(kCounty, pin), 94, [&](const std::string&) {
      return Joined({PinPassed(pin), AddressPassed(), NumbersPassed(), CountyFound()});
    });
    EXPECT_EQ(Statements(), Joined({PinQueries(pin), {CountyQuery("00000")}}));
  }
}

TEST_F(ProfileOperation, ThenTheKeyTableWithoutItsRow) {
  Execute("DELETE FROM nextid WHERE ctablename = 'Provider'");
  for (const char* const pin : kBothPins) {
    ExpectRefused(
        WrongFrom(kKey, pin), 20096, "Provider does not exist in the NextID table.",
        Joined({PinPassed(pin), AddressPassed(), NumbersPassed(), CountyFound(), ConnectionRead()}),
        Joined({PinQueries(pin), {CountyQuery("62701"), KeyQuery("PROVIDER")}}));
  }
}

TEST_F(ProfileOperation, ThenTheKeyTableWithTwoRows) {
  Execute("INSERT INTO nextid (ctablename, inextid) VALUES (' PROVIDER ', 90)");
  for (const char* const pin : kBothPins) {
    ExpectRefused(
        WrongFrom(kKey, pin), 20096,
        "More than one instance of Provider exists in the NextID table.",
        Joined({PinPassed(pin), AddressPassed(), NumbersPassed(), CountyFound(), ConnectionRead()}),
        Joined({PinQueries(pin), {CountyQuery("62701"), KeyQuery("PROVIDER")}}));
  }
}

TEST_F(ProfileOperation, BehindTheLastKeyIsAnOverflow) {
  Execute("UPDATE nextid SET inextid = 2147483647 WHERE ctablename = 'Provider'");
  for (const char* const pin : kBothPins) {
    ExpectRefused(WrongFrom(kKey, pin), 6, [&](const std::string&) {
      return Joined(
          {PinPassed(pin), AddressPassed(), NumbersPassed(), CountyFound(), ConnectionRead()});
    });
  }
  Execute("UPDATE nextid SET inextid = 2147483646 WHERE ctablename = 'Provider'");
  Run(NewProfile());
  EXPECT_EQ(Query("SELECT provid FROM provider WHERE pin = 'N1'"), (Rows{{"2147483647"}}));
}

TEST_F(ProfileOperation, ThenThatANewProviderHasAClassification) {
  for (const char* const pin : {"N1", "0", "999999"}) {
    ExpectRefused(WrongFrom(kClassification, pin), 20061,
                  "Classification code is needed when creating new provider records in LOTRIX",
                  CommonPassed(pin), CommonQueries(pin), true);
  }
}

TEST_F(ProfileOperation, ThenThatTheClassificationIsANumberBeforeTheConnectionIsRead) {
  for (const char* const pin : {"P1", "N1", "0", "999999"}) {
    for (const Variant& classification :
         {Variant("AB"), Variant(""), Variant(" "), Variant("15'"), Variant("1 5"), Variant("15%"),
          Variant("\0"
                  "15"s)}) {
      Profile wrong = WrongFrom(kNoNumber, pin);
      wrong.classification = classification;
      ExpectRefused(
          wrong, 13, [&](const std::string&) { return CommonPassed(pin); }, true);
      EXPECT_EQ(Statements(), CommonQueries(pin));
    }
    for (const Variant& classification :
         {Variant("2147483648"), Variant("-2147483649"), Variant("2147483647.5"),
          Variant(2147483648.0), Variant(std::int64_t{2147483648}), Variant("1E10")}) {
      Profile wrong = WrongFrom(kNoNumber, pin);
      wrong.classification = classification;
      ExpectRefused(
          wrong, 6, [&](const std::string&) { return CommonPassed(pin); }, true);
      EXPECT_EQ(Statements(), CommonQueries(pin));
    }
  }
}

TEST_F(ProfileOperation, ThenThatTheClassificationIsAProviderSector) {
  const std::pair<Variant, std::string> cases[] = {{"30", "30"},
                                                   {"9", "9"},
                                                   {"16", "16"},
                                                   {"0", "0"},
                                                   {"-1", "-1"},
                                                   {"29.5", "30"},
                                                   {"2147483647.4", "2147483647"}};
  for (const char* const pin : {"P1", "N1", "0", "999999"}) {
    for (const auto& [classification, number] : cases) {
      SCOPED_TRACE(number);
      Profile wrong = WrongFrom(kSector, pin);
      wrong.classification = classification;
      ExpectRefused(wrong, 20060, "Invalid classification code for a provider",
                    Joined({CommonPassed(pin), SectorPassed()}),
                    Joined({CommonQueries(pin), {SectorCount(number)}}), true);
    }
  }
}

TEST_F(ProfileOperation, ASectorThatIsThereTwiceIsRefused) {
  const std::string message = "A NULL sector is entered";
  Execute("INSERT INTO sectoref (sector) VALUES (15)");
  for (const char* const pin : kBothPins) {
    Profile wrong = WrongFrom(kSector, pin);
    wrong.classification = "15";
    ExpectRefused(wrong, 20031, message,
                  Joined({CommonPassed(pin), ConnectionRead(), Refused("ValidateSector", message)}),
                  Joined({CommonQueries(pin), {SectorCount("15")}}), true);
  }
}

TEST_F(ProfileOperation, ASectorCountThatIsNoneIsRefused) {
  const std::string message = "Error while verifying sector";
  const std::vector<std::vector<Value>> answers = {
      {}, {std::int64_t{0}, std::int64_t{0}}, {std::int64_t{-1}}};
  for (const char* const pin : kBothPins) {
    for (const std::vector<Value>& rows : answers) {
      AnswerTo(SectorCount("15"), rows);
      Profile wrong = WrongFrom(kSector, pin);
      wrong.classification = "15";
      ExpectRefused(
          wrong, 20031, message,
          Joined({CommonPassed(pin), ConnectionRead(), Refused("ValidateSector", message)}),
          Joined({CommonQueries(pin), {SectorCount("15")}}), true);
    }
  }
}

TEST_F(ProfileOperation, TheLowestAndTheHighestSectorAreAccepted) {
  for (const char* const sector : {"10", "29"}) {
    Profile profile;
    profile.classification = sector;
    Run(profile);
    EXPECT_EQ(Query("SELECT sector FROM provider"), (Rows{{sector}}));
  }
}

TEST_F(ProfileOperation, ThenThatANewProvidersPinIsNotReserved) {
  const std::string reserved =
      "The given pin number is reserved and cannot be assigned to a new provider.";
  for (const char* const pin : {"999999", "999998"}) {
    ExpectRefused(
        WrongFrom(kCertification, pin), 20072, reserved,
        Joined({CommonPassed(pin), SectorPassed(), Refused("ValidateNewProviderPIN", reserved)}),
        Joined({CommonQueries(pin), {SectorCount("15")}}), true);
  }
  const std::string zero = "Pin number cannot be zero for a new provider record";
  ExpectRefused(
      WrongFrom(kCertification, "0"), 20084, zero,
      Joined({CommonPassed("0"), SectorPassed(), Refused("ValidateNewProviderPIN", zero)}),
      Joined({CommonQueries("0"), {SectorCount("15")}}), true);
}

TEST_F(ProfileOperation, PinsNextToTheReservedOnesAreAccepted) {
  for (const char* const pin : {"999997", "00", "000000", "99999"}) {
    SCOPED_TRACE(pin);
    Profile profile = NewProfile();
    profile.pin = pin;
    Run(profile);
    EXPECT_EQ(Query("SELECT lastname FROM provider WHERE pin = '" + profile.pin + "'"),
              (Rows{{"CLINIC"}}));
  }
}

TEST_F(ProfileOperation, AReservedPinThatIsThereIsUpdated) {
  AddFilledProvider("999999", "15", "Y");
  AddFilledProvider("0", "15", "Y");
  for (const char* const pin : {"999999", "0"}) {
    SCOPED_TRACE(pin);
    Profile profile;
    profile.pin = pin;
    Run(profile);
    EXPECT_EQ(Query("SELECT lastname FROM provider WHERE pin = '" + profile.pin + "'"),
              (Rows{{"CLINIC"}}));
  }
}

TEST_F(ProfileOperation, ThenTheCertificationDateOfAnUpdate) {
  const std::string message = "VFC certification date is not a valid date";
  for (const char* const date : {"13/45/2001", "2/30/2004", "2/29/2003", "", " ", "SOON",
                                 "1/5/2004'", "1/5/2004}", "1/5/2004 25:00"}) {
    SCOPED_TRACE(date);
    Profile wrong = WrongFrom(kCertification, "P1");
    wrong.certification = date;
    ExpectRefused(
        wrong, 20073, message,
        Joined({CommonPassed("P1"), SectorPassed(), Refused("ValidateVFCCertDate", message)}),
        Joined({CommonQueries("P1"), {SectorCount("15")}}), true);
  }
}

TEST_F(ProfileOperation, ThenTheSubdivisionOfAnUpdate) {
  const std::string message = "The subdivision entered does not exist in the database";
  for (const char* const subdivision : {"NOWHERE", "", " NORTH"}) {
    SCOPED_TRACE(subdivision);
    Profile wrong = WrongFrom(kSubdivision, "P1");
    wrong.subdivision = subdivision;
    ExpectRefused(wrong, 20067, message,
                  Joined({CommonPassed("P1"), SectorPassed(), DatePassed(), ActivePassed(),
                          ConnectionRead(), Refused("ValidateSubdivision", message)}),
                  Joined({CommonQueries("P1"), {SectorCount("15"), SubdivisionCount(subdivision)}}),
                  true);
  }
}

TEST_F(ProfileOperation, ASubdivisionThatIsThereTwiceIsRefused) {
  const std::string message = "Duplicate subdivisions found";
  Execute("INSERT INTO subdiv (subdiv) VALUES (' NORTH ')");
  Profile wrong = WrongFrom(kSubdivision, "P1");
  wrong.subdivision = "north";
  ExpectRefused(wrong, 20066, message,
                Joined({CommonPassed("P1"), SectorPassed(), DatePassed(), ActivePassed(),
                        ConnectionRead(), Refused("ValidateSubdivision", message)}),
                Joined({CommonQueries("P1"), {SectorCount("15"), SubdivisionCount("NORTH")}}),
                true);
}

TEST_F(ProfileOperation, ASubdivisionCountThatIsNoneIsRefused) {
  const std::string message = "Error while verifying provider subdivision";
  const std::vector<std::vector<Value>> answers = {
      {}, {std::int64_t{0}, std::int64_t{0}}, {std::int64_t{-1}}};
  for (const std::vector<Value>& rows : answers) {
    AnswerTo(SubdivisionCount("NORTH"), rows);
    Profile wrong = WrongFrom(kSubdivision, "P1");
    wrong.subdivision = "NORTH";
    ExpectRefused(wrong, 20065, message,
                  Joined({CommonPassed("P1"), SectorPassed(), DatePassed(), ActivePassed(),
                          ConnectionRead(), Refused("ValidateSubdivision", message)}),
                  Joined({CommonQueries("P1"), {SectorCount("15"), SubdivisionCount("NORTH")}}),
                  true);
  }
}

TEST_F(ProfileOperation, TheStatementComesLast) {
  ExpectRefused(
      WrongFrom(kStatement, "P1"), Numbered(EngineError::kStatementRefused),
      [&](const std::string&) {
        return Joined(
            {CommonPassed("P1"), SectorPassed(), DatePassed(), ActivePassed(), SubdivisionPassed(),
             Logged("UPDATE provider SET sector = 15, datevfc = {1/5/2004}, active = 'Y', "
                    "subdiv = 'NORTH', contact = 'O'NEIL', lastname = 'O'NEIL', "
                    "address = '1 MAIN ST', addres2 = '', city = 'SPRINGFIELD', state = 'IL', "
                    "zipcode = '62701', ml_contact = 'O'NEIL', ml_address = 'PO BOX 3', "
                    "ml_addres2 = 'FLOOR 4', ml_city = 'CHICAGO', ml_state = 'WI', "
                    "ml_zipcode = '60601', note = 'NONE', phone = '(217) 555-0100', "
                    "fax = '(217) 555-0101', phone2 = '(312) 555-0102', "
                    "fax2 = '(312) 555-0103', codes = '',county = 'SANGAMON', "
                    "chgdate = {11/20/2026},userid = 'LTX_DLL'WHERE ltrim(rtrim(pin)) = 'P1'"),
             ConnectionRead()});
      },
      true);
}

// --- Values that would leave their place ------------------------------------

// The last line before the connection is read for it is the statement.
Lines BrokenStatement(const Lines& trace, const std::string& pin) {
  const Lines before = pin == "P1" ? Joined({CommonPassed(pin), ActivePassed()})
                                   : Joined({CommonPassed(pin), SectorPassed(), NewPinPassed()});
  const std::size_t statement = before.size() + 1;
  return Joined({before, {statement < trace.size() ? trace[statement] : ""}, ConnectionRead()});
}

class BrokenProfile : public ProfileOperation {
 protected:
  // The engine's error through the handler, the statement logged, nothing written
  // but the key.
  void ExpectBroken(const Profile& profile) {
    const auto before = Tables();
    ForgetTrace();
    const Error error = Refusal([&] { Run(profile); });
    EXPECT_EQ(error.number(), Numbered(EngineError::kStatementRefused));
    EXPECT_EQ(error.source(), "LOTRIX DLL");
    const Lines trace = Trace();
    EXPECT_EQ(trace, Joined({Begun(),
                             BrokenStatement(trace, profile.pin),
                             {ProblemOf(kOperation, error.description())}}));
    const std::string start =
        profile.pin == "P1" ? "information UPDATE provider SET " : "information INSERT INTO ";
    EXPECT_EQ(trace[trace.size() - 4].compare(0, start.size(), start), 0);
    EXPECT_EQ(Tables(), before);
    EXPECT_EQ(Keys(), (Rows{{"distrib", "7"}, {"Provider", "42"}}));
    Execute("UPDATE nextid SET inextid = 41 WHERE ctablename = 'Provider'");
  }
};

const std::string kBreaking[] = {"O'NEIL", "'",  "''", "X', sector = '11", "X'; DELETE FROM x; --",
                                 "X\0"s,   "\0"s};

TEST_F(BrokenProfile, AnApostropheOrZeroCharacterInAFreeTextIsRefusedAsSyntax) {
  for (const char* const pin : kBothPins) {
    for (std::string Profile::*const field :
         {&Profile::facility, &Profile::contact, &Profile::mailContact}) {
      for (const std::string& text : kBreaking) {
        SCOPED_TRACE(pin + ("|" + text));
        Profile profile;
        profile.pin = pin;
        if (profile.pin != "P1") profile.classification = "15";
        profile.*field = text;
        ExpectBroken(profile);
      }
    }
  }
}

TEST_F(BrokenProfile, AnApostropheOrZeroCharacterInANumberIsRefusedAsSyntax) {
  for (const char* const pin : kBothPins) {
    for (std::string Profile::*const field :
         {&Profile::phone, &Profile::fax, &Profile::mailPhone, &Profile::mailFax}) {
      for (const std::string& text : {"(217) 555-010'"s, "(''') '''-''''"s, "(217) 555-010\0"s}) {
        SCOPED_TRACE(pin + ("|" + text));
        Profile profile;
        profile.pin = pin;
        if (profile.pin != "P1") profile.classification = "15";
        profile.*field = text;
        ExpectBroken(profile);
      }
    }
  }
}

TEST_F(BrokenProfile, AZeroCharacterInACleanedTextIsRefusedAsSyntax) {
  for (const char* const pin : kBothPins) {
    for (std::string Profile::*const field :
         {&Profile::address1, &Profile::address2, &Profile::city, &Profile::state,
          &Profile::instructions, &Profile::mailAddress1, &Profile::mailAddress2,
          &Profile::mailCity, &Profile::mailState, &Profile::mailZip, &Profile::zip}) {
      SCOPED_TRACE(pin);
      Profile profile;
      profile.pin = pin;
      if (profile.pin != "P1") profile.classification = "15";
      profile.*field = "62701 X\0Y"s;
      ExpectBroken(profile);
    }
  }
}

TEST_F(BrokenProfile, AnApostropheOrZeroCharacterInAnOptionalIsRefusedAsSyntax) {
  for (const char* const pin : kBothPins) {
    for (const Optional& optional : kTextOptionals) {
      if (std::string(optional.column) == "subdiv" && std::string(pin) == "P1") continue;
      for (const std::string& text : kBreaking) {
        SCOPED_TRACE(std::string(pin) + "|" + optional.column + "|" + text);
        Profile profile;
        profile.pin = pin;
        if (profile.pin != "P1") profile.classification = "15";
        profile.*optional.argument = text;
        ExpectBroken(profile);
      }
    }
  }
}

TEST_F(BrokenProfile, AnApostropheInASubdivisionIsRefusedWhereItIsLookedUp) {
  for (const std::string& text : kBreaking) {
    SCOPED_TRACE(text);
    Profile profile;
    profile.subdivision = text;
    ExpectRefused(
        profile, Numbered(EngineError::kStatementRefused),
        [&](const std::string& description) {
          return Joined({CommonPassed("P1"), ActivePassed(), ConnectionRead(),
                         Refused("ValidateSubdivision", description)});
        },
        true);
  }
}

TEST_F(BrokenProfile, AZeroCharacterInTheFrontOfTheZipCodeIsRefusedWhereItIsLookedUp) {
  for (const char* const pin : kBothPins) {
    Profile profile;
    profile.pin = pin;
    profile.zip = "6270\0"s;
    ExpectRefused(profile, Numbered(EngineError::kStatementRefused), [&](const std::string&) {
      return Joined({PinPassed(pin), AddressPassed(), NumbersPassed(), CountyFound()});
    });
  }
}

// A date that is none does not come to the engine; a brace would leave its place.
TEST_F(BrokenProfile, ABraceOrZeroCharacterInACertificationDateIsRefusedAsSyntax) {
  for (const std::string& date :
       {"1/5/2004}"s, "{1/5/2004"s, "1/5/2004}, active = 'N"s, "1/5/2004\0"s, "1/5/2004\0}"s}) {
    SCOPED_TRACE(date);
    Profile profile = NewProfile();
    profile.certification = date;
    ExpectBroken(profile);
  }
  for (const std::string& date : {"1/5/2004\0"s, "1/5/2004\0}, ACTIVE = 'N"s}) {
    SCOPED_TRACE(date);
    Profile profile;
    profile.certification = date;
    ExpectRefused(
        profile, Numbered(EngineError::kStatementRefused),
        [&](const std::string&) {
          return Joined({CommonPassed("P1"), DatePassed(), ActivePassed(),
                         Logged(UpdateStatement("datevfc = {" + date + "}, active = 'Y', ")),
                         ConnectionRead()});
        },
        true);
  }
}

TEST_F(BrokenProfile, ARefusedCallLeavesTheObjectUsable) {
  Profile profile;
  profile.contact = "O'NEIL";
  ExpectBroken(profile);
  Run({});
  EXPECT_EQ(Query("SELECT contact FROM provider"), (Rows{{"ANN"}}));
}

TEST_F(BrokenProfile, AStatementThatTheEngineRefusesIsAProblemOfTheOperation) {
  for (const char* const pin : kBothPins) {
    answer_ = [this](const std::string& text) -> std::optional<std::vector<Value>> {
      if (text == CountyQuery("62701")) Execute("ALTER TABLE provider RENAME TO hidden");
      return std::nullopt;
    };
    ForgetTrace();
    Profile profile;
    profile.pin = pin;
    if (profile.pin != "P1") profile.classification = "15";
    const Error error = Refusal([&] { Run(profile); });
    Execute("ALTER TABLE hidden RENAME TO provider");
    EXPECT_EQ(error.number(), Numbered(EngineError::kNoSuchTable));
    EXPECT_EQ(error.source(), "LOTRIX DLL");
    const Lines trace = Trace();
    EXPECT_EQ(trace, Joined({Begun(),
                             BrokenStatement(trace, profile.pin),
                             {ProblemOf(kOperation, error.description())}}));
  }
}

TEST_F(BrokenProfile, TextsThatAreNoUtf8AreRefusedBeforeAnythingRuns) {
  const auto before = Tables();
  Profile profile;
  profile.facility = "\xff";
  EXPECT_EQ(Refusal([&] { Run(profile); }).number(), 5);
  EXPECT_EQ(Refusal([] { static_cast<void>(Variant("\xc3")); }).number(), 5);
  EXPECT_EQ(Trace(), Lines{});
  EXPECT_EQ(Tables(), before);
  EXPECT_EQ(Keys(), (Rows{{"distrib", "7"}, {"Provider", "41"}}));
}

// --- Very long arguments ----------------------------------------------------

TEST_F(ProfileOperation, AVeryLongTextOverflowsWhereItIsCleaned) {
  for (std::string Profile::*const field :
       {&Profile::address1, &Profile::address2, &Profile::city, &Profile::state, &Profile::zip,
        &Profile::instructions, &Profile::mailAddress1, &Profile::mailAddress2, &Profile::mailCity,
        &Profile::mailState, &Profile::mailZip}) {
    for (const std::string& text :
         {std::string(kMebibyte, 'x'), std::string(32768, ' '), Repeated("😀", 16384)}) {
      Profile wrong = WrongFrom(kActive, "N1");
      wrong.*field = text;
      ExpectRefused(wrong, 6, [](const std::string&) { return Lines{}; });
      EXPECT_EQ(Statements(), Lines{});
    }
  }
}

TEST_F(ProfileOperation, AVeryLongTextOverflowsWhereItIsTestedForBlank) {
  for (const std::string& text : {std::string(kMebibyte, 'x'), Repeated("é", 32768)}) {
    Profile wrong = WrongFrom(kFacility, "N1");
    wrong.facility = text;
    ExpectRefused(wrong, 6, [](const std::string&) { return PinPassed("N1"); });
    wrong = WrongFrom(kContact, "P1");
    wrong.contact = text;
    ExpectRefused(wrong, 6, [](const std::string&) { return PinPassed("P1"); });
    wrong = WrongFrom(kFax, "N1");
    wrong.fax = text;
    ExpectRefused(wrong, 6, [](const std::string&) {
      return Joined({PinPassed("N1"), AddressPassed(), NumbersLookedAt(1)});
    });
    wrong = WrongFrom(kMailPhone, "N1");
    wrong.mailPhone = text;
    ExpectRefused(wrong, 6, [](const std::string&) {
      return Joined({PinPassed("N1"), AddressPassed(), NumbersLookedAt(2)});
    });
    wrong = WrongFrom(kMailFax, "N1");
    wrong.mailFax = text;
    ExpectRefused(wrong, 6, [](const std::string&) {
      return Joined({PinPassed("N1"), AddressPassed(), NumbersLookedAt(3)});
    });
  }
}

TEST_F(ProfileOperation, AsManyCharactersAs16BitsCountAreStored) {
  const std::string text = Repeated("É", 32767);
  for (const char* const pin : kBothPins) {
    Profile profile;
    profile.pin = pin;
    profile.classification = "15";
    profile.facility = text + "  ";
    profile.contact = text;
    profile.address1 = text;
    profile.instructions = text;
    profile.mailZip = text;
    Run(profile);
    EXPECT_EQ(Query("SELECT lastname, contact, address, note, ml_zipcode FROM provider WHERE "
                    "pin = '" +
                    profile.pin + "'"),
              (Rows{{text + "  ", text, text, text, text}}));
  }
}

TEST_F(ProfileOperation, AVeryLongMailContactAndVeryLongOptionalsAreStored) {
  const std::string text(kMebibyte, 'X');
  for (const char* const pin : kBothPins) {
    Profile profile;
    profile.pin = pin;
    profile.classification = "15";
    profile.mailContact = text;
    profile.firstName = text;
    profile.category3 = text;
    Run(profile);
    EXPECT_EQ(
        Query("SELECT ml_contact, firstname, cat3 FROM provider WHERE pin = '" + profile.pin + "'"),
        (Rows{{text, text, text}}));
  }
}

TEST_F(ProfileOperation, VeryLongChecksOfOptionals) {
  const std::string text(kMebibyte, '1');
  Profile profile;
  profile.active = text;
  ExpectRefused(profile, 20095, "The active code entered is not Y nor N", {}, {});
  profile = {};
  profile.certification = text;
  ExpectRefused(profile, 20073, "VFC certification date is not a valid date",
                Joined({CommonPassed("P1"), Refused("ValidateVFCCertDate",
                                                    "VFC certification date is not a valid date")}),
                CommonQueries("P1"), true);
  profile = {};
  profile.classification = std::string(300, '0') + "15";
  Run(profile);
  EXPECT_EQ(Query("SELECT sector FROM provider"), (Rows{{"15"}}));
}

}  // namespace
}  // namespace lotrix::test

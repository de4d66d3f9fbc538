// The unique indexes that a database may have: what they refuse, and what one client
// alone may go on doing.
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "lotrix/lotrix.h"
#include "tests/support/fixture.h"
#include "tests/support/program.h"

namespace lotrix::test {
namespace {

using Operation = std::function<void(cLotrix&)>;

constexpr EngineError kRefused = EngineError::kConstraintViolated;

void OrderFromManufacturer(cLotrix& lotrix, const std::string& vaccine = "HEPA") {
  lotrix.manufacturerProviderOrderCreateUpdate("1/5/2004", "P1", vaccine, 20, "1", "1", "", "SKB");
}

void Adjust(cLotrix& lotrix, const std::string& lot = "AB-12") {
  lotrix.providerInventoryAdjustmentUpdate("D1", "1/5/2004", "1/6/2004", "a2", "P1", "HEPA", lot,
                                           5);
}

void Report(cLotrix& lotrix, const std::string& dose = "2") {
  lotrix.DosesAdministeredUpdate("1/5/2004", "P1", "HEPA", dose, "1", 3, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                                 0, 0, 0, 3);
}

void Enroll(cLotrix& lotrix, const std::string& pin = "P1") {
  lotrix.providerEnrollmentAddUpdate(pin, "A", "1", "1", "2", "3", "4", "5", "6", "7", "8");
}

void Profile(cLotrix& lotrix, const std::string& pin = "NEW1",
             const Variant& classification = std::int64_t{10}) {
  lotrix.providerProfileUpdate(pin, "CLINIC", "ANN", "1 MAIN ST", "", "SPRINGFIELD", "IL", "62701",
                               "", "(217) 555-0100", "", "", "", "", "", "", "", "", "", false,
                               classification);
}

void Physician(cLotrix& lotrix, const std::string& first, const std::string& title) {
  lotrix.physicianAddUpdate("P1", "SMITH", first, "", title, "", "", "");
}

class StrictTest : public DatabaseTest {
 protected:
  StrictTest() {
    Execute(
        "INSERT INTO provider (pin, sector, active) VALUES ('P1', 10, 'Y'), ('D1', 30, 'Y');"
        "INSERT INTO funding (fundcode) VALUES ('1');"
        "INSERT INTO sectoref (sector) VALUES (10), (11);"
        "INSERT INTO actref (status, action) VALUES ('a2', 2);"
        "INSERT INTO nextid (ctablename, inextid) VALUES ('distrib', 1), ('seekdist', 1), "
        "('provhas', 1), ('Dosesadm', 1), ('Provider', 1);"
        "INSERT INTO stock (pin, lot, vaccine) VALUES ('P1', 'AB-12', 'HEPA'), "
        "('P1', 'CD-34', 'HEPA')");
    for (const std::string vaccine : {"HEPA", "FLU"}) {
      Execute(
          "INSERT INTO pvaccref (vaccine, maker, \"begin\", \"end\", minbulk, unitsize, pkgsize, "
          "ndcno, cost, contractid, sel_maker, dos_wind, excfunds, descrip, locactiv, maxno) "
          "VALUES "
          "('" +
          vaccine +
          "', 'SKB', '2004-01-01', '2004-12-31', 1, 1, 10, 'N', 12.5, 'C', 'S', 'W', 'E', 'D', "
          "(1 = 0), 5)");
    }
  }

  void MakeStrict() {
    Connection strict;
    strict.Open(database().ConnectionString());
    strict.CreateUniqueIndexes();
  }

  // The operation as a client runs it that has looked for a duplicate before the other
  // client's insert was there: the first count that begins so is 0.
  void RunAfterLookingTooEarly(const std::string& check, const Operation& operation) {
    Watch(*lotrix().Connection(),
          [this, check](const std::string& text) -> std::optional<std::vector<Value>> {
            if (looked_ || text.compare(0, check.size(), check) != 0) return std::nullopt;
            looked_ = true;
            return std::vector<Value>{std::int64_t{0}};
          });
    operation(lotrix());
  }

  // On a database as it is usually, both rows are stored; on a strict one the second
  // insert is refused and has changed nothing in the table.
  void ExpectSecondIsRefused(const std::string& table, const std::string& check,
                             const Operation& operation, const Operation& second) {
    MakeStrict();
    operation(lotrix());
    const Rows before = Query("SELECT * FROM " + table);
    const Error error = Refusal([&] { RunAfterLookingTooEarly(check, second); });
    EXPECT_TRUE(looked_);
    EXPECT_EQ(error.number(), Numbered(kRefused)) << error.description();
    EXPECT_EQ(error.source(), "LOTRIX DLL");
    EXPECT_EQ(Query("SELECT * FROM " + table), before);
    EXPECT_EQ(Query("SELECT count(*) FROM enroll WHERE rtrim(pin) = 'NEW1'")[0][0],
              table == "provider" ? "1" : "0");
    // The client's next call finds the row.
    EXPECT_NO_THROW(second(lotrix()));
    EXPECT_EQ(Query("SELECT * FROM " + table).size(), before.size());
  }

  void ExpectSecondIsStored(const std::string& table, const std::string& check,
                            const Operation& operation) {
    operation(lotrix());
    const std::size_t before = Query("SELECT * FROM " + table).size();
    RunAfterLookingTooEarly(check, operation);
    EXPECT_TRUE(looked_);
    EXPECT_EQ(Query("SELECT * FROM " + table).size(), before + 1);
  }

  // Two rows of one key are there when the indexes are to be made.
  void ExpectNoneIsMade(const std::string& index, const std::string& twoRows) {
    Execute(twoRows);
    const Error error = Refusal([this] { MakeStrict(); });
    EXPECT_EQ(error.number(), Numbered(kRefused));
    EXPECT_NE(error.description().find(index), std::string::npos) << error.description();
    // Nothing is unique, then.
    for (const std::string insert :
         {"INSERT INTO provider (pin, sector) VALUES ('P1', 10)",
          "INSERT INTO enroll (pin) VALUES ('X'), ('X')",
          "INSERT INTO neworder (ordpin, pin, orddate, vaccine, fcode1) VALUES "
          "('', 'X', '2004-01-05', 'V', '1'), ('', 'X', '2004-01-05', 'V', '1')",
          "INSERT INTO distrib (frompin, pin, dateout, vaccine, lot, action) VALUES "
          "('D', 'X', '2004-01-05', 'V', 'L', 2), ('D', 'X', '2004-01-05', 'V', 'L', 2)",
          "INSERT INTO dosesadm (pin, adate, vaccine, dose, sector) VALUES "
          "('X', '2004-01-05', 'V', 1, 1), ('X', '2004-01-05', 'V', 1, 1)"}) {
      EXPECT_NO_THROW(Execute(insert)) << insert;
    }
  }

 private:
  bool looked_ = false;
};

const std::string kOrderCheck = "SELECT count(*) FROM neworder WHERE orddate = {1/5/2004}";
const std::string kAdjustmentCheck = "SELECT count(*) FROM distrib WHERE action = 2 ";
const std::string kReportCheck = "SELECT count(*) FROM DosesAdm ";
const std::string kEnrollmentCheck = "SELECT count(*) FROM enroll ";
const std::string kProviderCheck = "SELECT count(*) FROM provider WHERE Sector BETWEEN 10 AND 29";

// --- Two clients at the same moment -----------------------------------------

TEST_F(StrictTest, TheSecondOfTwoManufacturerOrdersIsRefused) {
  // Of the two questions the first is about orders passed on; there are none.
  const std::string check = kOrderCheck +
                            " AND ltrim(rtrim(pin)) = 'P1' AND ltrim(rtrim(vaccine)) = 'HEPA' AND "
                            "ltrim(rtrim(fcode1)) = '1' AND seekid = 0";
  const Operation order = [](cLotrix& client) { OrderFromManufacturer(client); };
  ExpectSecondIsRefused("neworder", check, order, order);
}

TEST_F(StrictTest, TheSecondOfTwoAdjustmentsIsRefusedWhateverItsDashes) {
  ExpectSecondIsRefused(
      "distrib", kAdjustmentCheck, [](cLotrix& client) { Adjust(client, "AB-12"); },
      [](cLotrix& client) { Adjust(client, "ab12-"); });
}

TEST_F(StrictTest, TheSecondOfTwoReportsIsRefused) {
  ExpectSecondIsRefused(
      "dosesadm", kReportCheck, [](cLotrix& client) { Report(client, "2"); },
      [](cLotrix& client) { Report(client, "2.0"); });
}

TEST_F(StrictTest, TheSecondOfTwoEnrollmentsIsRefused) {
  ExpectSecondIsRefused(
      "enroll", kEnrollmentCheck, [](cLotrix& client) { Enroll(client, "p1"); },
      [](cLotrix& client) { Enroll(client, "P1  "); });
}

TEST_F(StrictTest, TheSecondOfTwoNewProvidersIsRefusedAndGetsNoEnrollment) {
  ExpectSecondIsRefused(
      "provider", kProviderCheck, [](cLotrix& client) { Profile(client, "new1"); },
      [](cLotrix& client) { Profile(client, "NEW1 "); });
}

TEST_F(StrictTest, WithoutTheIndexesTheSecondManufacturerOrderIsStored) {
  ExpectSecondIsStored("neworder",
                       kOrderCheck +
                           " AND ltrim(rtrim(pin)) = 'P1' AND ltrim(rtrim(vaccine)) = 'HEPA' AND "
                           "ltrim(rtrim(fcode1)) = '1' AND seekid = 0",
                       [](cLotrix& client) { OrderFromManufacturer(client); });
}

TEST_F(StrictTest, WithoutTheIndexesTheSecondAdjustmentIsStored) {
  ExpectSecondIsStored("distrib", kAdjustmentCheck, [](cLotrix& client) { Adjust(client); });
}

TEST_F(StrictTest, WithoutTheIndexesTheSecondReportIsStored) {
  ExpectSecondIsStored("dosesadm", kReportCheck, [](cLotrix& client) { Report(client); });
}

TEST_F(StrictTest, WithoutTheIndexesTheSecondEnrollmentIsStored) {
  ExpectSecondIsStored("enroll", kEnrollmentCheck, [](cLotrix& client) { Enroll(client); });
}

TEST_F(StrictTest, WithoutTheIndexesTheSecondNewProviderIsStored) {
  ExpectSecondIsStored("provider", kProviderCheck, [](cLotrix& client) { Profile(client); });
}

// --- What one client alone may do -------------------------------------------

TEST_F(StrictTest, ShipmentsOfOneDayAreOrdersOfTheirOwn) {
  MakeStrict();
  OrderFromManufacturer(lotrix());
  for (const std::string lot : {"AB-12", "AB-12", "CD-34"}) {
    lotrix().DepotProviderOrderUpdate("1/5/2004", "D1", "P1", "HEPA", 10, lot);
  }
  EXPECT_EQ(Query("SELECT count(*) FROM neworder WHERE pin = 'P1' AND orddate = '2004-01-05' AND "
                  "vaccine = 'HEPA' AND fcode1 = '1' AND seekid = 0"),
            (Rows{{"4"}}));
}

TEST_F(StrictTest, ARepeatedInfluenzaOrderIsAFurtherRow) {
  MakeStrict();
  OrderFromManufacturer(lotrix(), "FLU");
  OrderFromManufacturer(lotrix(), "FLU");
  EXPECT_EQ(Query("SELECT count(*) FROM influenza"), (Rows{{"2"}}));
}

TEST_F(StrictTest, AnOrderPassedOnMayStandBesideAnOpenOne) {
  MakeStrict();
  Execute(
      "INSERT INTO neworder (ordpin, pin, orddate, vaccine, fcode1, seekid) VALUES "
      "('', 'P1', '2004-01-05', 'HEPA', '1', 0), ('', 'P1', '2004-01-05', 'HEPA', '1', 7), "
      "('', 'P1', '2004-01-05', 'HEPA', '1', 7)");
  Execute("UPDATE neworder SET seekid = 8");
  EXPECT_EQ(Query("SELECT count(*) FROM neworder"), (Rows{{"3"}}));
}

TEST_F(StrictTest, RepeatedCountsOfStockAreRowsOfTheirOwn) {
  MakeStrict();
  lotrix().provinvAdd("P1", "HEPA", "12", "1/5/2004");
  lotrix().provinvAdd("P1", "HEPA", "12", "1/5/2004");
  EXPECT_EQ(Query("SELECT count(*) FROM provhas"), (Rows{{"2"}}));
}

// An update of the one names the other as well, since it goes by the last name.
TEST_F(StrictTest, PhysiciansOfOneNameMayBecomeAlike) {
  MakeStrict();
  Physician(lotrix(), "JOHN", "MD");
  Physician(lotrix(), "MARY", "DO");
  Physician(lotrix(), "JOHN", "RN");
  EXPECT_EQ(Query("SELECT lastname, firstname, title FROM physicn"),
            (Rows{{"SMITH", "JOHN", "RN"}, {"SMITH", "JOHN", "RN"}}));
}

// The check never finds what is stored with blanks in front.
TEST_F(StrictTest, PinsWithBlanksInFrontMayBeEnrolledAgain) {
  MakeStrict();
  Enroll(lotrix(), "P1");
  Enroll(lotrix(), "  P1");
  Enroll(lotrix(), "  P1");
  EXPECT_EQ(Query("SELECT pin FROM enroll ORDER BY pin DESC"), (Rows{{"P1"}, {"  P1"}, {"  P1"}}));
}

TEST_F(StrictTest, AProviderMayShareThePinOfADepot) {
  MakeStrict();
  Profile(lotrix(), "D1");
  Profile(lotrix(), "D1", {});
  EXPECT_EQ(Query("SELECT sector FROM provider WHERE pin = 'D1' ORDER BY sector"),
            (Rows{{"10"}, {"30"}}));
}

TEST_F(StrictTest, OthersMayStoreDistributionsTwice) {
  MakeStrict();
  Execute(
      "INSERT INTO distrib (frompin, pin, dateout, vaccine, lot, action) VALUES "
      "('D1', 'P1', '2004-01-05', 'HEPA', 'AB-12', 1), "
      "('D1', 'P1', '2004-01-05', 'HEPA', 'AB-12', 1)");
  EXPECT_EQ(Query("SELECT count(*) FROM distrib"), (Rows{{"2"}}));
}

TEST_F(StrictTest, RowsThatDifferInOnePartOfTheirKeyAreStored) {
  MakeStrict();
  Execute(
      "INSERT INTO neworder (ordpin, pin, orddate, vaccine, fcode1) VALUES "
      "('', 'P1', '2004-01-05', 'HEPA', '1'), ('', 'P2', '2004-01-05', 'HEPA', '1'), "
      "('', 'P1', '2004-01-06', 'HEPA', '1'), ('', 'P1', '2004-01-05', 'HEPB', '1'), "
      "('', 'P1', '2004-01-05', 'HEPA', '2'), ('', 'p1', '2004-01-05', 'HEPA', '1');"
      "INSERT INTO distrib (frompin, pin, dateout, vaccine, lot, action) VALUES "
      "('D', 'P', '2004-01-05', 'V', 'L', 2), ('E', 'P', '2004-01-05', 'V', 'L', 2), "
      "('D', 'Q', '2004-01-05', 'V', 'L', 2), ('D', 'P', '2004-01-06', 'V', 'L', 2), "
      "('D', 'P', '2004-01-05', 'W', 'L', 2), ('D', 'P', '2004-01-05', 'V', 'M', 2), "
      "('D', 'P', '2004-01-05', 'V', 'L', 3);"
      "INSERT INTO dosesadm (pin, adate, vaccine, dose, sector) VALUES "
      "('P', '2004-01-05', 'V', 1, 1), ('Q', '2004-01-05', 'V', 1, 1), "
      "('P', '2004-01-06', 'V', 1, 1), ('P', '2004-01-05', 'W', 1, 1), "
      "('P', '2004-01-05', 'V', 2, 1), ('P', '2004-01-05', 'V', 1, 2);"
      "INSERT INTO enroll (pin) VALUES ('P'), ('Q'), ('p'), (NULL), (NULL);"
      "INSERT INTO provider (pin, sector) VALUES ('P2', 10), ('p2', 10), ('P2', 9), ('P2', 32), "
      "('P2', NULL), (NULL, 10), (NULL, 10)");
  EXPECT_EQ(Query("SELECT (SELECT count(*) FROM neworder), (SELECT count(*) FROM distrib), "
                  "(SELECT count(*) FROM dosesadm), (SELECT count(*) FROM enroll), "
                  "(SELECT count(*) FROM provider)"),
            (Rows{{"6", "7", "6", "5", "9"}}));
}

TEST_F(StrictTest, AWorkingDayPasses) {
  Connection connection;
  connection.Open(database().ConnectionString());
  Execute(
      "DELETE FROM provider; DELETE FROM nextid; DELETE FROM funding; DELETE FROM sectoref; "
      "DELETE FROM actref; DELETE FROM stock; DELETE FROM pvaccref");
  ASSERT_TRUE(AddSampleData(connection));
  connection.CreateUniqueIndexes();
  cLotrix& day = lotrix();
  const std::string today = "11/20/2026";
  for (const std::int32_t doses : {20, 30}) {
    day.manufacturerProviderOrderCreateUpdate(today, "p00001", "DTAP", doses, "1", "1", "", "MKRA");
  }
  day.providerProfileUpdate("NEW001", "Lantern Street Clinic", "Orla Thistle", "1 Lantern St.", "",
                            "Amberbrook", "ZZ", "69401", "", "(217) 555-0100", "", "", "", "", "",
                            "", "", "", "", true, std::int64_t{10});
  day.providerShippingDataUpdate("NEW001", "Lantern Street Clinic", "Orla Thistle", "3 Lantern St.",
                                 "Back door", "Amberbrook", "ZZ", "69401", "Ring twice",
                                 "(217) 555-0101", "", {}, {}, {}, "Ms");
  day.providerAdditionalInfoUpdate("NEW001", "CLINIC", "11", "January 5, 2026", "C1", "E-100",
                                   "yes");
  for (const std::string group : {"1", "2", "1"}) {
    day.providerEnrollmentAddUpdate("NEW001", "A", group, "120", "40", "12", "0", "5", "57", "3",
                                    "60");
  }
  for (int i = 0; i < 2; ++i) {
    day.physicianAddUpdate("NEW001", "Thistle", "Orla", "B", "MD", "", "", "L-77");
    day.DepotProviderOrderUpdate(today, "D00001", "NEW001", "MMR", 10, "D1046-02");
    day.providerInventoryAdjustmentUpdate("D00001", today, today, "Lo", "P00001", "DTAP",
                                          day.stockTableRead({}, "DTAP").GetValue(1, 4), -2);
    day.provinvAdd("P00001", "DTAP", "48", today);
    day.DosesAdministeredUpdate(today, "P00001", "DTAP", "1", "1", 7, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                                0, 0, 10);
  }
  day.physicianDeleteByPin("NEW001");
  EXPECT_EQ(Query("SELECT orddose FROM neworder WHERE orddate = '2026-11-20' AND pin = 'P00001'"),
            (Rows{{"30"}}));
  EXPECT_EQ(Query("SELECT doses FROM distrib WHERE userid = 'LTX_DLL'"), (Rows{{"4"}}));
  EXPECT_EQ(Query("SELECT count(*) FROM neworder WHERE orddate = '2026-11-20' AND pin = 'NEW001'"),
            (Rows{{"2"}}));
}

// Calls at random over few enough values that keys meet all the time.
TEST_F(StrictTest, NoCallOfOneClientAloneIsEverRefusedByThem) {
  MakeStrict();
  Execute(
      "INSERT INTO actref (status, action) VALUES ('a8', 8), ('a5', 5);"
      "INSERT INTO provider (pin, sector, active) VALUES ('D2 ', 31, 'Y');"
      "INSERT INTO distrib (frompin, pin, dateout, vaccine, lot, action) VALUES "
      "('D1', 'P1', '2004-01-05', 'HEPA', 'AB-12', 1)");
  std::mt19937 random(20261120);
  const auto oneOf = [&](const std::vector<std::string>& texts) {
    return texts[random() % texts.size()];
  };
  const auto pin = [&] { return oneOf({"P1", "P1 ", "p1", " P1", "P2", "p2  ", "P3"}); };
  const auto vaccine = [&] { return oneOf({"HEPA", "hepa ", " HEPA", "FLU"}); };
  const auto date = [&] { return oneOf({"1/5/2004", "January 5, 2004", "1/6/2004"}); };
  const auto lot = [&] { return oneOf({"AB-12", "ab12", "-AB-12 ", " AB12", "CD34"}); };
  const auto depot = [&] { return oneOf({"D1", "d1 ", "D2"}); };
  cLotrix& client = lotrix();
  const std::vector<std::function<void()>> calls = {
      [&] {
        client.manufacturerProviderOrderCreateUpdate(date(), pin(), vaccine(), 5,
                                                     oneOf({"1", "1 "}), "1", "", "SKB");
      },
      [&] { client.DepotProviderOrderUpdate(date(), depot(), pin(), vaccine(), 5, lot()); },
      [&] {
        client.providerInventoryAdjustmentUpdate(depot(), date(), date(), oneOf({"a2", "a5", "a8"}),
                                                 pin(), vaccine(), lot(), 5);
      },
      [&] { client.provinvAdd(pin(), vaccine(), "5", date()); },
      [&] {
        client.DosesAdministeredUpdate(date(), pin(), vaccine(), oneOf({"1", "1.0", "2", " 2"}),
                                       oneOf({"1", "2"}));
      },
      [&] { Enroll(client, pin()); },
      [&] {
        Profile(client, pin(), oneOf({"10", "11"}));
      },
      [&] { Profile(client, pin(), {}); },
      [&] {
        client.providerAdditionalInfoUpdate(pin(), "T", oneOf({"10", "11"}), "1/5/2004", "C", "E",
                                            "YES");
      },
      [&] {
        client.physicianAddUpdate(pin(), "SMITH", oneOf({"JOHN", "MARY", "JOHN "}), "", "", "", "",
                                  "");
      },
      [&] { client.physicianDeleteByPin(pin()); }};
  int accepted = 0;
  for (int step = 0; step < 1500; ++step) {
    const std::size_t call = random() % calls.size();
    try {
      calls[call]();
      ++accepted;
    } catch (const Error& error) {
      ASSERT_NE(error.number(), Numbered(kRefused)) << call << ": " << error.description();
    }
  }
  EXPECT_GT(accepted, 300);
  for (const std::string table : {"provider", "enroll", "physicn", "neworder", "influenza",
                                  "distrib", "provhas", "dosesadm"}) {
    EXPECT_NE(Query("SELECT count(*) FROM " + table), (Rows{{"0"}})) << table;
  }
}

// The one exception: an update that makes a second provider of the PIN. From then on
// every call for it would be refused as a duplicate (20003).
TEST_F(StrictTest, AnUpdateThatMakesADepotASecondProviderOfItsPinIsRefused) {
  MakeStrict();
  Profile(lotrix(), "D1");
  const Error error = Refusal([this] { Profile(lotrix(), "D1", std::int64_t{11}); });
  EXPECT_EQ(error.number(), Numbered(kRefused));
  EXPECT_EQ(Query("SELECT sector FROM provider WHERE pin = 'D1' ORDER BY sector"),
            (Rows{{"10"}, {"30"}}));
}

// --- Making them ------------------------------------------------------------

TEST_F(StrictTest, MakingThemAgainIsHarmless) {
  MakeStrict();
  Enroll(lotrix());
  EXPECT_NO_THROW(MakeStrict());
  EXPECT_EQ(Query("SELECT count(*) FROM enroll"), (Rows{{"1"}}));
  EXPECT_ANY_THROW(Execute("INSERT INTO enroll (pin) VALUES ('P1 ')"));
}

TEST_F(StrictTest, TheSampleDataPasses) {
  Connection connection;
  connection.Open(database().ConnectionString());
  connection.CreateUniqueIndexes();
  Execute("DELETE FROM provider; DELETE FROM nextid");
  EXPECT_TRUE(AddSampleData(connection));
}

TEST_F(StrictTest, ProvidersOfOnePinKeepTheIndexesFromBeingMade) {
  ExpectNoneIsMade("provider_unique_pin", "INSERT INTO provider (pin, sector) VALUES ('P1 ', 29)");
}

TEST_F(StrictTest, EnrollmentsOfOnePinKeepTheIndexesFromBeingMade) {
  ExpectNoneIsMade("enroll_unique_pin", "INSERT INTO enroll (pin) VALUES ('P1'), ('P1 ')");
}

TEST_F(StrictTest, OpenOrdersOfOneKeyKeepTheIndexesFromBeingMade) {
  ExpectNoneIsMade("neworder_unique_open_order",
                   "INSERT INTO neworder (ordpin, pin, orddate, vaccine, fcode1) VALUES "
                   "('', 'P1', '2004-01-05', 'HEPA', '1'), "
                   "('MERCKC', ' P1 ', '2004-01-05', ' HEPA', '1 ')");
}

TEST_F(StrictTest, AdjustmentsOfOneKeyKeepTheIndexesFromBeingMade) {
  ExpectNoneIsMade("distrib_unique_adjustment",
                   "INSERT INTO distrib (frompin, pin, dateout, vaccine, lot, action) VALUES "
                   "('D1', 'P1', '2004-01-05', 'HEPA', 'A-B', 2), "
                   "('D1 ', 'P1', '2004-01-05', 'HEPA', '-AB', 2)");
}

TEST_F(StrictTest, ReportsOfOneKeyKeepTheIndexesFromBeingMade) {
  ExpectNoneIsMade("dosesadm_unique_report",
                   "INSERT INTO dosesadm (pin, adate, vaccine, dose, sector) VALUES "
                   "('P1', '2004-01-05', 'HEPA', 1, 1), ('P1', '2004-01-05', 'HEPA ', 1.0, 1)");
}

TEST_F(StrictTest, TheyAreNotMadeInsideATransaction) {
  Connection connection;
  connection.Open(database().ConnectionString());
  connection.BeginTrans();
  EXPECT_EQ(Refusal([&] { connection.CreateUniqueIndexes(); }).number(),
            Numbered(EngineError::kFailed));
  EXPECT_TRUE(connection.InTransaction());
  connection.RollbackTrans();
  Execute("INSERT INTO enroll (pin) VALUES ('P1'), ('P1')");
}

TEST_F(StrictTest, AClosedConnectionMakesNone) {
  Connection connection;
  EXPECT_EQ(Refusal([&] { connection.CreateUniqueIndexes(); }).number(), 3704);
}

// --- The command ------------------------------------------------------------

class CommandStrictTest : public ::testing::Test {
 protected:
  Outcome Run(const std::vector<std::string>& arguments) {
    return RunProgram(folder_.path(), arguments);
  }
  // Whether the default file takes the statement.
  bool Takes(const std::string& sql) {
    Connection connection;
    connection.Open("Provider=SQLite;Data Source=" + folder_.path() + "/lotrix.db");
    try {
      connection.Execute(sql);
      return true;
    } catch (const Error& error) {
      EXPECT_EQ(error.number(), Numbered(kRefused)) << error.description();
      return false;
    }
  }

 private:
  TemporaryFolder folder_;
};

TEST_F(CommandStrictTest, InitStrictMakesThem) {
  const Outcome outcome = Run({"init", "--strict"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out + outcome.err, "");
  EXPECT_TRUE(Takes("INSERT INTO enroll (pin) VALUES ('P1')"));
  EXPECT_FALSE(Takes("INSERT INTO enroll (pin) VALUES ('P1')"));
}

TEST_F(CommandStrictTest, InitWithoutItMakesNone) {
  ASSERT_EQ(Run({"init"}).exitCode, 0);
  EXPECT_TRUE(Takes("INSERT INTO enroll (pin) VALUES ('P1')"));
  EXPECT_TRUE(Takes("INSERT INTO enroll (pin) VALUES ('P1')"));
}

TEST_F(CommandStrictTest, InitLeavesThemWhereTheyAre) {
  ASSERT_EQ(Run({"init", "--strict"}).exitCode, 0);
  ASSERT_EQ(Run({"init", "--strict"}).exitCode, 0);
  ASSERT_EQ(Run({"init"}).exitCode, 0);
  EXPECT_TRUE(Takes("INSERT INTO enroll (pin) VALUES ('P1')"));
  EXPECT_FALSE(Takes("INSERT INTO enroll (pin) VALUES ('P1')"));
}

TEST_F(CommandStrictTest, TheyGoWithTheSampleData) {
  EXPECT_EQ(Run({"init", "--strict", "--sample"}).exitCode, 0);
  EXPECT_FALSE(Takes("INSERT INTO provider (pin, sector) VALUES ('P00001', 10)"));
}

TEST_F(CommandStrictTest, RowsOfOneKeyAreOneAndNamed) {
  ASSERT_EQ(Run({"init"}).exitCode, 0);
  EXPECT_TRUE(Takes("INSERT INTO enroll (pin) VALUES ('P1')"));
  EXPECT_TRUE(Takes("INSERT INTO enroll (pin) VALUES ('P1 ')"));
  const Outcome outcome = Run({"init", "--strict"});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_NE(outcome.err.find("80040E2F"), std::string::npos) << outcome.err;
  EXPECT_NE(outcome.err.find("enroll_unique_pin"), std::string::npos) << outcome.err;
  EXPECT_TRUE(Takes("INSERT INTO provider (pin, sector) VALUES ('P1', 10)"));
  EXPECT_TRUE(Takes("INSERT INTO provider (pin, sector) VALUES ('P1', 10)"));
}

}  // namespace
}  // namespace lotrix::test

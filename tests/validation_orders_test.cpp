#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "src/validation/validation.h"
#include "tests/support/fixture.h"

namespace lotrix {
namespace {

using test::Coded;
using test::ExpectError;
using test::Lines;
using test::Numbered;
using test::Refusal;
using test::Row;

class OrderRules : public test::DatabaseTest {
 protected:
  void SetUp() override {
    Watch(connection(), [this](const std::string& text) -> std::optional<std::vector<Value>> {
      if (text.find(answered_) == std::string::npos) return std::nullopt;
      return answer_;
    });
  }

  // From now on the engine answers queries that hold `part` with these records.
  void Answer(std::vector<Value> records, const std::string& part = "") {
    answer_ = std::move(records);
    answered_ = part;
  }
  void Answer(std::initializer_list<std::int64_t> counts, const std::string& part = "") {
    Answer(std::vector<Value>(counts.begin(), counts.end()), part);
  }

  // Lines and statements since the last look, both of them.
  void Forget() {
    ForgetTrace();
    static_cast<void>(Statements());
  }

  void ExpectRefusal(const std::string& routine, const std::function<void()>& call,
                     std::int32_t code, const std::string& message) {
    Forget();
    ExpectError(Refusal(call), Coded(code), message);
    EXPECT_EQ(Trace(), (Lines{"information Begin: " + routine + "()",
                              "error Problem: In " + routine + "() " + message}));
    EXPECT_EQ(connection().State(), ObjectState::kOpen);
  }

  // Where the text is the engine's or the run time's own.
  void ExpectNumber(const std::string& routine, const std::function<void()>& call,
                    std::int32_t number) {
    Forget();
    const Error error = Refusal(call);
    EXPECT_EQ(error.number(), number);
    EXPECT_EQ(error.source(), "LOTRIX DLL");
    EXPECT_NE(error.description(), "");
    const Lines lines = Trace();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.front(), "information Begin: " + routine + "()");
    EXPECT_EQ(lines.back(), "error Problem: In " + routine + "() " + error.description());
  }

 private:
  std::optional<std::vector<Value>> answer_;
  std::string answered_;
};

struct Order {
  std::string date = "11/20/2026";
  std::string pin = "P1";
  std::string vaccine = "MMR";
  std::string funding = "1";
};

// --- Manufacturer orders ---------------------------------------------------

const char* const kOpenQuery =
    "SELECT count(*) FROM neworder WHERE orddate = {11/20/2026} AND ltrim(rtrim(pin)) = 'P1' AND "
    "ltrim(rtrim(vaccine)) = 'MMR' AND ltrim(rtrim(fcode1)) = '1' AND seekid = 0";
const char* const kPassedOnQuery =
    "SELECT count(*) FROM neworder WHERE orddate = {11/20/2026} AND ltrim(rtrim(pin)) = 'P1' AND "
    "ltrim(rtrim(vaccine)) = 'MMR' AND ltrim(rtrim(fcode1)) = '1' AND seekid <> 0";

const char* const kSent =
    "A manufacturer order with the same parameters has already been sent to the Vorsk. Cannot "
    "update current order.";
const char* const kTwice = "More than one record for the same manufacturer order was found";
const char* const kStatusError = "Error while checking status of manufacturer order";
const char* const kDuplicateError = "Error while verifing order against duplicates";

class ManufacturerOrderRules : public OrderRules {
 protected:
  void InsertOrder(const std::string& seekid, const std::string& pin = "P1",
                   const std::string& vaccine = "MMR", const std::string& funding = "1",
                   const std::string& date = "2026-11-20") {
    Execute("INSERT INTO neworder (orddate, pin, vaccine, fcode1, seekid) VALUES ('" + date +
            "', '" + pin + "', '" + vaccine + "', '" + funding + "', " + seekid + ")");
  }
  bool IsDuplicate(const Order& order = {}) {
    return ValidateDuplicateManufacturerOrder(log(), order.date, order.pin, order.vaccine,
                                              order.funding, connection());
  }
  void CheckEvent(const Order& order = {}) {
    ValidateEventDateManufacturerProviderOrder(log(), order.date, order.pin, order.vaccine,
                                               order.funding, connection());
  }
  void ExpectEventRefusal(std::int32_t code, const std::string& message) {
    ExpectRefusal(
        "ValidateEventDateManufacturerProviderOrder", [&] { CheckEvent(); }, code, message);
  }
  // By the routine itself, after the one inside has passed.
  void ExpectDuplicateRefusal(std::int32_t code, const std::string& message) {
    Forget();
    ExpectError(Refusal([&] { IsDuplicate(); }), Coded(code), message);
    EXPECT_EQ(Trace(),
              (Lines{"information Begin: ValidateDuplicateManufacturerOrder()",
                     "information Begin: ValidateEventDateManufacturerProviderOrder()",
                     "information End: ValidateEventDateManufacturerProviderOrder()",
                     "error Problem: In ValidateDuplicateManufacturerOrder() " + message}));
    EXPECT_EQ(Statements(), (Lines{kPassedOnQuery, kOpenQuery}));
    EXPECT_EQ(connection().State(), ObjectState::kOpen);
  }
  // By the routine inside, before the open orders are counted.
  void ExpectRefusalInside(std::int32_t code, const std::string& message) {
    Forget();
    ExpectError(Refusal([&] { IsDuplicate(); }), Coded(code), message);
    EXPECT_EQ(Trace(),
              (Lines{"information Begin: ValidateDuplicateManufacturerOrder()",
                     "information Begin: ValidateEventDateManufacturerProviderOrder()",
                     "error Problem: In ValidateEventDateManufacturerProviderOrder() " + message,
                     "error Problem: In ValidateDuplicateManufacturerOrder() " + message}));
    EXPECT_EQ(Statements(), (Lines{kPassedOnQuery}));
  }
};

TEST_F(ManufacturerOrderRules, OneOpenOrderIsADuplicate) {
  InsertOrder("0");
  Forget();
  EXPECT_TRUE(IsDuplicate());
  EXPECT_EQ(Trace(), (Lines{"information Begin: ValidateDuplicateManufacturerOrder()",
                            "information Begin: ValidateEventDateManufacturerProviderOrder()",
                            "information End: ValidateEventDateManufacturerProviderOrder()",
                            "information End: ValidateDuplicateManufacturerOrder()"}));
  EXPECT_EQ(Statements(), (Lines{kPassedOnQuery, kOpenQuery}));
  EXPECT_EQ(Query("SELECT seekid FROM neworder"), (std::vector<Row>{{"0"}}));
}

TEST_F(ManufacturerOrderRules, NoOrderIsNoDuplicate) {
  Forget();
  EXPECT_FALSE(IsDuplicate());
  EXPECT_EQ(Trace(), (Lines{"information Begin: ValidateDuplicateManufacturerOrder()",
                            "information Begin: ValidateEventDateManufacturerProviderOrder()",
                            "information End: ValidateEventDateManufacturerProviderOrder()",
                            "information End: ValidateDuplicateManufacturerOrder()"}));
  EXPECT_EQ(Statements(), (Lines{kPassedOnQuery, kOpenQuery}));
}

TEST_F(ManufacturerOrderRules, TwoOpenOrdersAreRefused) {
  InsertOrder("0");
  InsertOrder("0");
  ExpectDuplicateRefusal(20055, kTwice);
  InsertOrder("0");
  ExpectDuplicateRefusal(20055, kTwice);
  EXPECT_EQ(Query("SELECT count(*) FROM neworder"), (std::vector<Row>{{"3"}}));
}

TEST_F(ManufacturerOrderRules, AnOrderPassedOnIsRefusedBeforeAnythingIsSaidOfAnOpenOne) {
  InsertOrder("0");
  InsertOrder("7");
  ExpectRefusalInside(20071, kSent);
}

TEST_F(ManufacturerOrderRules, AnOrderPassedOnIsRefusedBeforeTwoOpenOnes) {
  InsertOrder("0");
  InsertOrder("0");
  InsertOrder("7");
  ExpectRefusalInside(20071, kSent);
}

TEST_F(ManufacturerOrderRules, TwoOrdersPassedOnAreRefusedInside) {
  InsertOrder("7");
  InsertOrder("8");
  ExpectRefusalInside(20055, kTwice);
}

TEST_F(ManufacturerOrderRules, OneOpenCountOnTheEnginesAnswer) {
  const std::string open = "seekid = 0";
  Answer({1}, open);
  EXPECT_TRUE(IsDuplicate());
  Answer({0}, open);
  EXPECT_FALSE(IsDuplicate());
  Answer({2}, open);
  ExpectDuplicateRefusal(20055, kTwice);
  Answer({-1}, open);
  ExpectDuplicateRefusal(20054, kDuplicateError);
  Answer({-2147483648}, open);
  ExpectDuplicateRefusal(20054, kDuplicateError);
}

TEST_F(ManufacturerOrderRules, OpenOrdersNeedExactlyOneRecord) {
  const std::string open = "seekid = 0";
  Answer(std::vector<Value>{}, open);
  ExpectDuplicateRefusal(20054, kDuplicateError);
  Answer({1, 1}, open);
  ExpectDuplicateRefusal(20054, kDuplicateError);
  Answer({0, 0}, open);
  ExpectDuplicateRefusal(20054, kDuplicateError);
}

TEST_F(ManufacturerOrderRules, AWrongAnswerInsideIsRefusedInside) {
  const std::string passedOn = "seekid <> 0";
  Answer(std::vector<Value>{}, passedOn);
  ExpectRefusalInside(20070, kStatusError);
  Answer({0, 0}, passedOn);
  ExpectRefusalInside(20070, kStatusError);
  Answer({-1}, passedOn);
  ExpectRefusalInside(20070, kStatusError);
}

TEST_F(ManufacturerOrderRules, EventPassesWithoutAnOrderPassedOn) {
  InsertOrder("0");
  InsertOrder("0");
  Forget();
  EXPECT_NO_THROW(CheckEvent());
  EXPECT_EQ(Trace(), (Lines{"information Begin: ValidateEventDateManufacturerProviderOrder()",
                            "information End: ValidateEventDateManufacturerProviderOrder()"}));
  EXPECT_EQ(Statements(), (Lines{kPassedOnQuery}));
}

TEST_F(ManufacturerOrderRules, EventRefusesAnOrderPassedOn) {
  InsertOrder("0");
  InsertOrder("7");
  ExpectEventRefusal(20071, kSent);
  EXPECT_EQ(Statements(), (Lines{kPassedOnQuery}));
  EXPECT_EQ(Query("SELECT seekid FROM neworder ORDER BY seekid"), (std::vector<Row>{{"0"}, {"7"}}));
}

TEST_F(ManufacturerOrderRules, EventRefusesASeekidBelowZeroToo) {
  InsertOrder("-1");
  ExpectEventRefusal(20071, kSent);
}

TEST_F(ManufacturerOrderRules, EventRefusesTwoOrdersPassedOn) {
  InsertOrder("7");
  InsertOrder("8");
  ExpectEventRefusal(20055, kTwice);
}

TEST_F(ManufacturerOrderRules, EventOnTheEnginesAnswer) {
  Answer({0});
  EXPECT_NO_THROW(CheckEvent());
  Answer({1});
  ExpectEventRefusal(20071, kSent);
  Answer({2});
  ExpectEventRefusal(20055, kTwice);
  Answer({3});
  ExpectEventRefusal(20055, kTwice);
  Answer({-1});
  ExpectEventRefusal(20070, kStatusError);
}

TEST_F(ManufacturerOrderRules, EventNeedsExactlyOneRecord) {
  Answer(std::vector<Value>{});
  ExpectEventRefusal(20070, kStatusError);
  Answer({0, 0});
  ExpectEventRefusal(20070, kStatusError);
  Answer({1, 1});
  ExpectEventRefusal(20070, kStatusError);
}

TEST_F(ManufacturerOrderRules, AnOrderWithoutASeekidIsNeitherOpenNorPassedOn) {
  InsertOrder("NULL");
  EXPECT_FALSE(IsDuplicate());
}

TEST_F(ManufacturerOrderRules, EveryPartOfTheKeyCounts) {
  InsertOrder("0", "P2");
  InsertOrder("0", "P1", "DTP");
  InsertOrder("0", "P1", "MMR", "2");
  InsertOrder("0", "P1", "MMR", "1", "2026-11-19");
  InsertOrder("7", "P2");
  InsertOrder("7", "P1", "DTP");
  InsertOrder("7", "P1", "MMR", "2");
  InsertOrder("7", "P1", "MMR", "1", "2026-11-19");
  EXPECT_NO_THROW(CheckEvent());
  EXPECT_FALSE(IsDuplicate());
}

TEST_F(ManufacturerOrderRules, StoredTextsCountTrimmed) {
  InsertOrder("0", "  P1 ", " MMR  ", " 1 ");
  EXPECT_TRUE(IsDuplicate());
}

TEST_F(ManufacturerOrderRules, StoredTextsThatWerePassedOnCountTrimmed) {
  InsertOrder("7", "  P1 ", " MMR  ", " 1 ");
  ExpectEventRefusal(20071, kSent);
}

TEST_F(ManufacturerOrderRules, CaseAndLeadingBlanksOfTheValuesCountTrailingOnesDoNot) {
  InsertOrder("0");
  EXPECT_FALSE(IsDuplicate({.pin = "p1"}));
  EXPECT_FALSE(IsDuplicate({.vaccine = "mmr"}));
  EXPECT_FALSE(IsDuplicate({.pin = " P1"}));
  EXPECT_FALSE(IsDuplicate({.vaccine = " MMR"}));
  EXPECT_FALSE(IsDuplicate({.funding = " 1"}));
  EXPECT_TRUE(IsDuplicate({.pin = "P1 ", .vaccine = "MMR  ", .funding = "1 "}));
}

TEST_F(ManufacturerOrderRules, ValuesAreSplicedAsGiven) {
  InsertOrder("0");
  Forget();
  EXPECT_TRUE(IsDuplicate({.date = "Nov 20, 2026", .pin = "P1 ", .vaccine = "MMR "}));
  EXPECT_EQ(Statements(), (Lines{"SELECT count(*) FROM neworder WHERE orddate = {Nov 20, 2026} AND "
                                 "ltrim(rtrim(pin)) = 'P1 ' AND ltrim(rtrim(vaccine)) = 'MMR ' AND "
                                 "ltrim(rtrim(fcode1)) = '1' AND seekid <> 0",
                                 "SELECT count(*) FROM neworder WHERE orddate = {Nov 20, 2026} AND "
                                 "ltrim(rtrim(pin)) = 'P1 ' AND ltrim(rtrim(vaccine)) = 'MMR ' AND "
                                 "ltrim(rtrim(fcode1)) = '1' AND seekid = 0"}));
}

TEST_F(ManufacturerOrderRules, AValueThatWouldLeaveItsPlaceIsRefused) {
  for (const Order& order :
       {Order{.date = "11/20/2026} OR {"}, Order{.pin = "P'1"}, Order{.vaccine = "M'R"},
        Order{.funding = "1' OR '1'='1"}, Order{.date = "soon", .pin = "P'1"}}) {
    ExpectNumber(
        "ValidateEventDateManufacturerProviderOrder", [&] { CheckEvent(order); },
        Numbered(EngineError::kStatementRefused));
    ExpectNumber(
        "ValidateDuplicateManufacturerOrder", [&] { IsDuplicate(order); },
        Numbered(EngineError::kStatementRefused));
  }
}

TEST_F(ManufacturerOrderRules, ADateThatIsNoneCannotBeConverted) {
  for (const char* const date : {"soon", "13/45/2026", "1'1/2026"}) {
    ExpectNumber(
        "ValidateEventDateManufacturerProviderOrder", [&] { CheckEvent({.date = date}); },
        Numbered(EngineError::kValueCannotBeConverted));
  }
}

TEST_F(ManufacturerOrderRules, TheCountIsA32BitNumberAndNotNull) {
  for (const char* const query : {"seekid <> 0", "seekid = 0"}) {
    SCOPED_TRACE(query);
    Answer({2147483648}, query);
    ExpectNumber(
        "ValidateDuplicateManufacturerOrder", [&] { IsDuplicate(); }, 6);
    Answer(std::vector<Value>{Null{}}, query);
    ExpectNumber(
        "ValidateDuplicateManufacturerOrder", [&] { IsDuplicate(); }, 94);
  }
}

TEST_F(ManufacturerOrderRules, AnEngineErrorKeepsItsNumberOnBothLevels) {
  Execute("DROP TABLE neworder");
  Forget();
  const Error error = Refusal([&] { IsDuplicate(); });
  EXPECT_EQ(error.number(), Numbered(EngineError::kNoSuchTable));
  EXPECT_EQ(error.source(), "LOTRIX DLL");
  EXPECT_EQ(
      Trace(),
      (Lines{
          "information Begin: ValidateDuplicateManufacturerOrder()",
          "information Begin: ValidateEventDateManufacturerProviderOrder()",
          "error Problem: In ValidateEventDateManufacturerProviderOrder() " + error.description(),
          "error Problem: In ValidateDuplicateManufacturerOrder() " + error.description()}));
}

// --- ValidateFundingCodeandPO ----------------------------------------------

class FundingRules : public OrderRules {
 protected:
  void InsertFunding(const std::string& code) {
    Execute("INSERT INTO funding (fundcode) VALUES ('" + code + "')");
  }
  void Check(const std::string& code, const std::string& po) {
    ValidateFundingCodeandPO(log(), code, po, connection());
  }
  void ExpectPass(const std::string& code, const std::string& po) {
    SCOPED_TRACE(code + "/" + po);
    Forget();
    EXPECT_NO_THROW(Check(code, po));
    EXPECT_EQ(Trace(), (Lines{"information Begin: ValidateFundingCodeandPO()",
                              "information End: ValidateFundingCodeandPO()"}));
    EXPECT_EQ(Statements(), (Lines{"SELECT count(*) FROM funding WHERE ltrim(rtrim(fundcode)) = '" +
                                   code + "'"}));
  }
  void ExpectFundingRefusal(const std::string& code, const std::string& po, std::int32_t number,
                            const std::string& message) {
    SCOPED_TRACE(code + "/" + po);
    ExpectRefusal(
        "ValidateFundingCodeandPO", [&] { Check(code, po); }, number, message);
    EXPECT_EQ(Statements(), (Lines{"SELECT count(*) FROM funding WHERE ltrim(rtrim(fundcode)) = '" +
                                   code + "'"}));
  }
};

const char* const kFundingError = "Error while verifying funding code";
const char* const kFundingUnknown = "Funding code entered has not been defined in LOTRIX";
const char* const kFundingTwice = "Duplicate funding codes found in LOTRIX";
const char* const kNoPoNeeded = "The state PO is not needed for federal funded order";
const char* const kPoNeeded = "A state PO number is required for state funding code";

TEST_F(FundingRules, FederalCodesPassWithoutAPO) {
  InsertFunding("1");
  InsertFunding("2");
  ExpectPass("1", "");
  ExpectPass("2", "");
  ExpectPass("1", "   ");
}

TEST_F(FundingRules, FederalCodesRefuseAnyPO) {
  InsertFunding("1");
  InsertFunding("2");
  ExpectFundingRefusal("1", "PO-1", 20093, kNoPoNeeded);
  ExpectFundingRefusal("2", "0", 20093, kNoPoNeeded);
  ExpectFundingRefusal("2", " x ", 20093, kNoPoNeeded);
}

TEST_F(FundingRules, StateCodesNeedAPO) {
  for (const char* const code : {"3", "0", "-1", "12", "1.5"}) {
    InsertFunding(code);
    ExpectFundingRefusal(code, "", 20046, kPoNeeded);
    ExpectFundingRefusal(code, "  ", 20046, kPoNeeded);
    ExpectPass(code, "PO-1");
  }
}

TEST_F(FundingRules, TheCodeIsFederalByItsNumber) {
  for (const char* const code : {"01", "1.0", "2.00", "$1", "2e0", "&H1", "1 "}) {
    Answer({1});
    ExpectPass(code, "");
    ExpectFundingRefusal(code, "PO-1", 20093, kNoPoNeeded);
  }
  for (const char* const code : {"1.0000001", "0.9", "(1)", "12", "&H10"}) {
    Answer({1});
    ExpectPass(code, "PO-1");
    ExpectFundingRefusal(code, "", 20046, kPoNeeded);
  }
}

TEST_F(FundingRules, AnUnknownCodeIsRefusedWhateverItIs) {
  InsertFunding("1");
  ExpectFundingRefusal("3", "PO-1", 20048, kFundingUnknown);
  ExpectFundingRefusal("2", "", 20048, kFundingUnknown);
  // Before it is converted.
  ExpectFundingRefusal("ABC", "", 20048, kFundingUnknown);
  ExpectFundingRefusal("", "", 20048, kFundingUnknown);
}

TEST_F(FundingRules, ACodeThatIsThereTwiceIsRefused) {
  InsertFunding("1");
  InsertFunding(" 1 ");
  ExpectFundingRefusal("1", "PO-1", 20049, kFundingTwice);
  InsertFunding("ABC");
  InsertFunding("ABC");
  ExpectFundingRefusal("ABC", "", 20049, kFundingTwice);
}

TEST_F(FundingRules, OnTheEnginesAnswer) {
  Answer({0});
  ExpectFundingRefusal("1", "", 20048, kFundingUnknown);
  Answer({2});
  ExpectFundingRefusal("1", "", 20049, kFundingTwice);
  Answer({2147483647});
  ExpectFundingRefusal("1", "", 20049, kFundingTwice);
  Answer({-1});
  ExpectFundingRefusal("1", "", 20047, kFundingError);
  // Before the purchase order is looked at.
  ExpectFundingRefusal("1", "PO-1", 20047, kFundingError);
}

TEST_F(FundingRules, NoRecordIsRefusedSeveralAreNot) {
  Answer(std::vector<Value>{});
  ExpectFundingRefusal("1", "", 20047, kFundingError);
  Answer({1, 5});
  ExpectPass("1", "");
  Answer({0, 1});
  ExpectFundingRefusal("1", "", 20048, kFundingUnknown);
}

TEST_F(FundingRules, ACodeThatIsNoNumberIsATypeMismatch) {
  InsertFunding("ABC");
  ExpectNumber(
      "ValidateFundingCodeandPO", [&] { Check("ABC", ""); }, 13);
  ExpectNumber(
      "ValidateFundingCodeandPO", [&] { Check("ABC", "PO-1"); }, 13);
  InsertFunding("1E999");
  ExpectNumber(
      "ValidateFundingCodeandPO", [&] { Check("1E999", "PO-1"); }, 6);
}

TEST_F(FundingRules, AnOverlongPOOverflows) {
  InsertFunding("3");
  ExpectNumber(
      "ValidateFundingCodeandPO", [&] { Check("3", std::string(32768, 'x')); }, 6);
  ExpectPass("3", std::string(32767, 'x'));
}

TEST_F(FundingRules, StoredCodesCountTrimmedTheValueDoesNot) {
  InsertFunding("  3 ");
  ExpectPass("3", "PO-1");
  ExpectPass("3 ", "PO-1");
  ExpectFundingRefusal(" 3", "PO-1", 20048, kFundingUnknown);
}

TEST_F(FundingRules, AnApostropheInTheCodeIsRefusedOneInThePOIsNot) {
  InsertFunding("3");
  ExpectNumber(
      "ValidateFundingCodeandPO", [&] { Check("3' OR '1'='1", "PO-1"); },
      Numbered(EngineError::kStatementRefused));
  ExpectPass("3", "PO'1");
}

TEST_F(FundingRules, TheCountIsA32BitNumberAndNotNull) {
  Answer({2147483648});
  ExpectNumber(
      "ValidateFundingCodeandPO", [&] { Check("1", ""); }, 6);
  Answer(std::vector<Value>{Null{}});
  ExpectNumber(
      "ValidateFundingCodeandPO", [&] { Check("1", ""); }, 94);
}

// --- ValidateDuplicateDepotProviderOrder -----------------------------------

const char* const kDepotQuery =
    "SELECT count(*) FROM distrib WHERE  ltrim(rtrim(FromPin)) = 'D1' AND    ltrim(rtrim(pin)) "
    "='P1' AND    ltrim(rtrim(vaccine))='MMR' AND    "
    "ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),'')))='AB12' AND    dateout={11/20/2026} AND    "
    "action=1";

const char* const kDepotError = "Error while verifying duplicate depot provider order in LOTRIX";

struct DepotOrder {
  std::string orderDate = "11/1/2026";
  std::string shipmentDate = "11/20/2026";
  std::string depot = "D1";
  std::string pin = "P1";
  std::string vaccine = "MMR";
  std::string lot = "AB-12";
};

class DepotOrderRules : public OrderRules {
 protected:
  void InsertDistribution(const std::string& depot = "D1", const std::string& pin = "P1",
                          const std::string& vaccine = "MMR", const std::string& lot = "AB12",
                          const std::string& shipped = "2026-11-20",
                          const std::string& action = "1") {
    Execute("INSERT INTO distrib (frompin, pin, vaccine, lot, dateout, action) VALUES ('" + depot +
            "', '" + pin + "', '" + vaccine + "', '" + lot + "', '" + shipped + "', " + action +
            ")");
  }
  bool IsDuplicate(const DepotOrder& order = {}) {
    return ValidateDuplicateDepotProviderOrder(log(), order.orderDate, order.shipmentDate,
                                               order.depot, order.pin, order.vaccine, order.lot,
                                               connection());
  }
  void ExpectDepotRefusal() {
    ExpectRefusal(
        "ValidateDuplicateDepotProviderOrder", [&] { IsDuplicate(); }, 20018, kDepotError);
    EXPECT_EQ(Statements(), (Lines{kDepotQuery}));
  }
};

TEST_F(DepotOrderRules, OneDistributionIsADuplicate) {
  InsertDistribution();
  Forget();
  EXPECT_TRUE(IsDuplicate());
  EXPECT_EQ(Trace(), (Lines{"information Begin: ValidateDuplicateDepotProviderOrder()",
                            "information End: ValidateDuplicateDepotProviderOrder()"}));
  EXPECT_EQ(Statements(), (Lines{kDepotQuery}));
}

TEST_F(DepotOrderRules, NoDistributionIsNoDuplicate) {
  Forget();
  EXPECT_FALSE(IsDuplicate());
  EXPECT_EQ(Trace(), (Lines{"information Begin: ValidateDuplicateDepotProviderOrder()",
                            "information End: ValidateDuplicateDepotProviderOrder()"}));
  EXPECT_EQ(Statements(), (Lines{kDepotQuery}));
}

TEST_F(DepotOrderRules, TwoDistributionsAreRefused) {
  InsertDistribution();
  InsertDistribution();
  ExpectDepotRefusal();
  EXPECT_EQ(Query("SELECT count(*) FROM distrib"), (std::vector<Row>{{"2"}}));
}

TEST_F(DepotOrderRules, OnTheEnginesAnswer) {
  Answer({0});
  EXPECT_FALSE(IsDuplicate());
  Answer({1});
  EXPECT_TRUE(IsDuplicate());
  for (const std::int64_t count : {2, 3, 2147483647, -1}) {
    SCOPED_TRACE(count);
    Answer({count});
    ExpectDepotRefusal();
  }
}

TEST_F(DepotOrderRules, NoRecordIsRefusedSeveralAreNot) {
  Answer(std::vector<Value>{});
  ExpectDepotRefusal();
  Answer({1, 2});
  EXPECT_TRUE(IsDuplicate());
  Answer({0, 2});
  EXPECT_FALSE(IsDuplicate());
}

TEST_F(DepotOrderRules, LotsCountWithoutTheirDashes) {
  InsertDistribution("D1", "P1", "MMR", "AB-12");
  EXPECT_TRUE(IsDuplicate({.lot = "AB12"}));
  EXPECT_TRUE(IsDuplicate({.lot = "AB-12"}));
  EXPECT_TRUE(IsDuplicate({.lot = "-A-B--1-2-"}));
  EXPECT_FALSE(IsDuplicate({.lot = "AB_12"}));
}

TEST_F(DepotOrderRules, TheStoredLotCountsWithoutItsDashesToo) {
  InsertDistribution("D1", "P1", "MMR", " -A-B-12- ");
  EXPECT_TRUE(IsDuplicate({.lot = "AB12"}));
}

TEST_F(DepotOrderRules, EveryPartOfTheKeyCounts) {
  InsertDistribution("D2");
  InsertDistribution("D1", "P2");
  InsertDistribution("D1", "P1", "DTP");
  InsertDistribution("D1", "P1", "MMR", "AB13");
  InsertDistribution("D1", "P1", "MMR", "AB12", "2026-11-01");
  InsertDistribution("D1", "P1", "MMR", "AB12", "2026-11-20", "2");
  InsertDistribution("D1", "P1", "MMR", "AB12", "2026-11-20", "NULL");
  EXPECT_FALSE(IsDuplicate());
}

TEST_F(DepotOrderRules, TheOrderDateHasNoPartInIt) {
  InsertDistribution();
  Forget();
  EXPECT_TRUE(IsDuplicate({.orderDate = ""}));
  EXPECT_TRUE(IsDuplicate({.orderDate = "soon"}));
  EXPECT_TRUE(IsDuplicate({.orderDate = "}'"}));
  EXPECT_EQ(Statements(), (Lines{kDepotQuery, kDepotQuery, kDepotQuery}));
}

TEST_F(DepotOrderRules, StoredTextsCountTrimmed) {
  InsertDistribution(" D1 ", " P1 ", " MMR ", " AB-12 ");
  EXPECT_TRUE(IsDuplicate());
}

TEST_F(DepotOrderRules, CaseAndLeadingBlanksOfTheValuesCountTrailingOnesDoNot) {
  InsertDistribution();
  EXPECT_FALSE(IsDuplicate({.depot = "d1"}));
  EXPECT_FALSE(IsDuplicate({.pin = "p1"}));
  EXPECT_FALSE(IsDuplicate({.lot = "ab12"}));
  EXPECT_FALSE(IsDuplicate({.depot = " D1"}));
  EXPECT_FALSE(IsDuplicate({.lot = " AB12"}));
  EXPECT_TRUE(IsDuplicate({.depot = "D1 ", .pin = "P1 ", .vaccine = "MMR ", .lot = "AB12 "}));
}

TEST_F(DepotOrderRules, ValuesAreSplicedAsGiven) {
  Forget();
  EXPECT_FALSE(IsDuplicate({.shipmentDate = "Nov 20, 2026",
                            .depot = " D1 ",
                            .pin = " P1 ",
                            .vaccine = " M-R ",
                            .lot = " A-B "}));
  EXPECT_EQ(Statements(),
            (Lines{"SELECT count(*) FROM distrib WHERE  ltrim(rtrim(FromPin)) = ' D1 ' AND    "
                   "ltrim(rtrim(pin)) =' P1 ' AND    ltrim(rtrim(vaccine))=' M-R ' AND    "
                   "ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),'')))=' AB ' AND    "
                   "dateout={Nov 20, 2026} AND    action=1"}));
}

TEST_F(DepotOrderRules, AValueThatWouldLeaveItsPlaceIsRefused) {
  for (const DepotOrder& order :
       {DepotOrder{.shipmentDate = "11/20/2026}"}, DepotOrder{.depot = "D'1"},
        DepotOrder{.pin = "P'1"}, DepotOrder{.vaccine = "M'R"}, DepotOrder{.lot = "A'1"},
        DepotOrder{.shipmentDate = "soon", .lot = "A'1"}}) {
    ExpectNumber(
        "ValidateDuplicateDepotProviderOrder", [&] { IsDuplicate(order); },
        Numbered(EngineError::kStatementRefused));
  }
}

TEST_F(DepotOrderRules, AShipmentDateThatIsNoneCannotBeConverted) {
  for (const char* const date : {"soon", "13/45/2026", "1'1/2026"}) {
    ExpectNumber(
        "ValidateDuplicateDepotProviderOrder", [&] { IsDuplicate({.shipmentDate = date}); },
        Numbered(EngineError::kValueCannotBeConverted));
  }
}

TEST_F(DepotOrderRules, TheCountIsA32BitNumberAndNotNull) {
  Answer({2147483648});
  ExpectNumber(
      "ValidateDuplicateDepotProviderOrder", [&] { IsDuplicate(); }, 6);
  Answer(std::vector<Value>{Null{}});
  ExpectNumber(
      "ValidateDuplicateDepotProviderOrder", [&] { IsDuplicate(); }, 94);
}

}  // namespace
}  // namespace lotrix

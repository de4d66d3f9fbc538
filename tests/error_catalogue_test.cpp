#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lotrix/constants.h"
#include "lotrix/error.h"
#include "src/database/connection_access.h"
#include "src/errors/raise_error.h"
#include "src/validation/validation.h"
#include "tests/support/fixture.h"

namespace lotrix::test {
namespace {

using namespace std::string_literals;

// --- The catalogue ---------------------------------------------------------

struct CatalogueRow {
  Message constant;
  std::int32_t code;
  std::string text;
};

// In ascending order of the codes, as clients know them.
const std::vector<CatalogueRow> kCatalogue = {
    {kNullPinAsCode, 2000, "2000"},
    {kNullProviderPin, 2000, "A null provider PIN was entered"},
    {kNullProviderName, 20001, "Null provider name was entered"},
    {kNullShippingContact, 20002, "Null shipping contact was entered"},
    {kDuplicateProviderPin, 20003, "Provider PIN entered has a duplicate"},
    {kProviderNotFound, 20004, "Provider entered not found in LOTRIX"},
    {kErrorVerifyingProviderPin, 20005, "Error while verifying provider PIN in LOTRIX"},
    {kNullShippingAddress, 20006, "The first field of the shipping address cannot be null"},
    {kNullShippingCity, 20007, "The city field in the shipping address cannot be null"},
    {kNullShippingState, 20008, "The state field in the shipping address cannot be null"},
    {kErrorVerifyingDepotPin, 20014, "Error while verifying depot PIN in LOTRIX"},
    {kDuplicateDepotPin, 20015, "Provider PIN entered has a duplicate"},
    {kErrorVerifyingVaccineReference, 20016,
     "Error while verifying vaccine reference table in LOTRIX"},
    {kErrorVerifyingDepotProviderOrder, 20018,
     "Error while verifying duplicate depot provider order in LOTRIX"},
    {kNullShipmentDate, 20021, "A Null Shipment Date is entered"},
    {kNullDepotPin, 20022, "A NULL depot pin is entered"},
    {kNullVaccineName, 20023, "A NULL vaccine name is entered"},
    {kNullLotNumber, 20024, "A NULL lot number is entered"},
    {kOrderDosesNotPositive, 20025, "The number of doses for an order must be greater than zero"},
    {kNullReportDate, 20028, "A NULL report date is entered"},
    {kDosesDoNotMatchTotal, 20029, "The sum of the distribution does not match the Total"},
    {kNullSector, 20031, "A NULL sector is entered"},
    {kErrorVerifyingSector, 20031, "Error while verifying sector"},
    {kErrorVerifyingDosesAdmin, 20032, "Error while verifying duplicate doses admin"},
    {kShippingProviderNotFound, 20033, "Provider PIN not found for shipping data update"},
    {kErrorVerifyingLotNumber, 20034, "Error verifying lot number"},
    {kErrorVerifyingAdjustmentType, 20036, "Error verifying adjustment type"},
    {kDuplicateAdjustmentType, 20037, "Duplicate adjustment type found"},
    {kMoreThanOneAdjustment, 20038, "More than one record for the same adjustment was found"},
    {kErrorLookingForAdjustment, 20039, "Error while looking for duplicate adjustment records"},
    {kAdjustmentNotAllowed, 20040,
     "The adjustment entered cannot be inserted into LOTRIX with this application"},
    {kUnknownAdjustment, 20041, "Unknown adjustment for update"},
    {kErrorDeterminingCurrentDoses, 20042,
     "Error determining current doses for inventory adjustment update"},
    {kNullTransactionDate, 20043,
     "Null transaction date was entered for inventory adjustment update"},
    {kNullEntryDate, 20044, "Null entry date was entered for inventory adjustment update"},
    {kStatePoRequired, 20046, "A state PO number is required for state funding code"},
    {kErrorVerifyingFundingCode, 20047, "Error while verifying funding code"},
    {kFundingCodeNotDefined, 20048, "Funding code entered has not been defined in LOTRIX"},
    {kDuplicateFundingCodes, 20049, "Duplicate funding codes found in LOTRIX"},
    {kVaccineNotAvailable, 20051, "Vaccine not available to private provider in LOTRIX"},
    {kErrorVerifyingVaccineContract, 20052,
     "Error while verifying order against vaccine contract table"},
    {kErrorVerifyingManufacturerOrder, 20054, "Error while verifing order against duplicates"},
    {kMoreThanOneManufacturerOrder, 20055,
     "More than one record for the same manufacturer order was found"},
    {kInvalidFaxNumber, 20056, "Invalid fax number format"},
    {kInvalidPhoneNumber, 20057, "Invalid phone number format"},
    {kInvalidClassificationCode, 20060, "Invalid classification code for a provider"},
    {kClassificationCodeNeeded, 20061,
     "Classification code is needed when creating new provider records in LOTRIX"},
    {kInvalidShipmentBeginDate, 20062,
     "The Shipment Begin Date that was entered is not a valid date"},
    {kInvalidShipmentEndDate, 20063, "The Shipment End Date that was entered is not a valid date"},
    {kErrorVerifyingSubdivision, 20065, "Error while verifying provider subdivision"},
    {kDuplicateSubdivisions, 20066, "Duplicate subdivisions found"},
    {kSubdivisionNotFound, 20067, "The subdivision entered does not exist in the database"},
    {kExcessAllowanceOutOfRange, 20068, "The excess allowance is out of range"},
    {kInvalidShipmentDateRange, 20069,
     "The end of the date range must be later than the beginning of the range, and both must be "
     "valid dates"},
    {kErrorCheckingManufacturerOrderStatus, 20070,
     "Error while checking status of manufacturer order"},
    {kManufacturerOrderAlreadySent, 20071,
     "A manufacturer order with the same parameters has already been sent to the Vorsk. Cannot "
     "update current order."},
    {kReservedProviderPin, 20072,
     "The given pin number is reserved and cannot be assigned to a new provider."},
    {kInvalidVfcCertificationDate, 20073, "VFC certification date is not a valid date"},
    {kInvalidEntryDate, 20074, "Entry date for the adjustment is not a valid date"},
    {kInvalidTransactionDate, 20074, "Transaction date for the adjustment is not a valid date"},
    {kInvalidOrderDate, 20075, "Order date for the manufacturer order is not a valid date"},
    {kNullOrderDate, 20076, "Null value for manufacturer order date"},
    {kPinTooLong, 20078, "The number of characters in the pin entered exceeds the maximum allowed"},
    {kProviderPinNotAlphanumeric, 20079,
     "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed."},
    {kDepotPinNotAlphanumeric, 20080,
     "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed."},
    {kAdjustmentDosesZero, 20082,
     "The number of doses in an inventory adjustment record must be greater than zero"},
    {kProviderInactive, 20083,
     "The provider enter is currently inactivate in LOTRIX. Cannot proceed with the current "
     "operation"},
    {kZeroProviderPin, 20084, "Pin number cannot be zero for a new provider record"},
    {kInvalidDosesAdminSector, 20085, "The given sector is not a valid doses administered sector"},
    {kVaccineInactive, 20086,
     "The vaccine being used in the current operation is inactive in LOTRIX"},
    {kDoseInSeriesTooSmall, 20087,
     "The dose in series number given is less than the minimum allowed for all vaccines"},
    {kDoseInSeriesTooLarge, 20088,
     "The dose in series number given is greater than the maximum allowed for the vaccine"},
    {kErrorReadingEnrollment, 20089, "Error while reading enrollment data for current provider"},
    {kDuplicateEnrollment, 20090,
     "There are duplicate enrollment data records for the current provider"},
    {kNullFundingSource, 20091, "A Null funding source is entered"},
    {kProviderNotEligibleForVaricella, 20092, "The provider is not eligible for ordering VAR"},
    {kStatePoNotNeeded, 20093, "The state PO is not needed for federal funded order"},
    {kInvalidActiveCode, 20095, "The active code entered is not Y nor N"},
    {kErrorReadingPhysician, 20096, "Error while reading physicn data for current physician"},
    {kDuplicatePhysician, 20097,
     "There are duplicate physicn data records for the current provider"},
    {kNullEnrollmentPin, 20098, "Null PIN for Enroll table Add/Update"},
    {kNullEnrollmentSource, 20099, "Null Source for Enroll table Add/Update"},
    {kNullEnrollmentAgeGroup, 20100, "Null Age Group for Enroll table Add/Update"},
    {kNullEnrollmentAllKids, 20101, "Null AllKids Total for Enroll table Add/Update"},
    {kNullEnrollmentMedicaid, 20102, "Null Medicaid Total for Enroll table Add/Update"},
    {kNullEnrollmentUninsured, 20103, "Null Uninsured Total for Enroll table Add/Update"},
    {kNullEnrollmentAmericanIndian, 20104,
     "Null American Indian Total for Enroll table Add/Update"},
    {kNullEnrollmentFqhcRhc, 20105, "Null FQHC_RHC Total for Enroll table Add/Update"},
    {kNullEnrollmentVfc, 20106, "Null VFC Total for Enroll table Add/Update"},
    {kNullEnrollmentG317, 20107, "Null G317 Total for Enroll table Add/Update"},
    {kNullEnrollmentState, 20108, "Null State Total for Enroll table Add/Update"},
    {kInvalidEnrollmentAgeGroup, 20109,
     "Non-numeric or invalid age group for Enroll table Add/Update"},
    {kNonNumericEnrollmentAllKids, 20110, "Non-numeric All Kids Total for Enroll table Add/Update"},
    {kNonNumericEnrollmentMedicaid, 20111,
     "Non-numeric Medicaid Total for Enroll table Add/Update"},
    {kNonNumericEnrollmentUninsured, 20112,
     "Non-numeric Uninsured Total for Enroll table Add/Update"},
    {kNonNumericEnrollmentAmericanIndian, 20113,
     "Non-numeric American Indian Total for Enroll table Add/Update"},
    {kNonNumericEnrollmentFqhcRhc, 20114, "Non-numeric FQHC_RHC Total for Enroll table Add/Update"},
    {kNonNumericEnrollmentVfc, 20115, "Non-numeric VFC Total for Enroll table Add/Update"},
    {kNonNumericEnrollmentG317, 20116, "Non-numeric G317 Total for Enroll table Add/Update"},
    {kNonNumericEnrollmentState, 20117, "Non-numeric State Total for Enroll table Add/Update"},
    {kInvalidEnrollmentSource, 20118, "Source value not A-G or Z for Enroll table Add/Update"},
    {kNullProviderType, 20119, "Null Provider Type for Provider table Update"},
    {kNullVfcCertificationDate, 20120, "Null VFC Certification Date for Provider table Add/Update"},
    {kNullCohort, 20121, "Null Cohort for Provider table Update"},
    {kNullEmployeeId, 20122, "Null Employee ID Number for Provider table Update"},
    {kNullQuorvin, 20123, "Null Quorvin Value for Provider table Update"},
    {kInvalidQuorvin, 20124, "Quorvin Value not YES/NO for Provider table Update"},
    {kNonNumericClassification, 20125, "Non-numeric Classification for Provider table Update"},
    {kNullPhysicianLastName, 20126, "Null Last Name for Physicn table Add/Update"},
    {kNullPhysicianFirstName, 20127, "Null First Name for Physicn table Add/Update"},
    {kPhysicianFieldTooLong, 20131, "Incorrect field length for Physicn table Add/Update: "},
    {kProviderFieldTooLong, 20132, "Incorrect field length for Provider table Update: "},
    {kEnrollmentFieldTooLong, 20133, "Incorrect field length for Enroll table Add/Update: "},
    {kNullInventoryVaccine, 20134, "Null Vaccine field for Provider Inventory Add/Update"},
    {kNullInventory, 20135, "Null Inventory field for Provider Inventory Add/Update"},
    {kNonNumericInventory, 20136, "Non numeric Inventory field for Provider Inventory Add/Update"},
    {kNullInventoryDate, 20138, "Null Inventory Date field for Provider Inventory Add/Update"},
    {kInvalidInventoryDate, 20139,
     "Invalid Inventory Date field for Provider Inventory Add/Update"},
    {kInvalidMailingPhoneNumber, 20140, "Invalid mailing phone number format"},
    {kInvalidMailingFaxNumber, 20141, "Invalid mailing fax number format"},
    {kInvalidShippingPhoneNumber, 20142, "Invalid shipping phone number format"},
    {kInvalidShippingFaxNumber, 20143, "Invalid shipping fax number format"},
    {kInvalidRow, 50000, "Invalid Row Specified"},
    {kInvalidCol, 50001, "Invalid Col Specified"},
};

TEST(ErrorCatalogue, EveryConstantHasItsCodeAndItsMessageLetterForLetter) {
  for (const CatalogueRow& row : kCatalogue) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(row.constant.code, row.code);
    EXPECT_EQ(row.constant.text, row.text);
  }
}

TEST(ErrorCatalogue, KeyTableMessagesNameTheTable) {
  const std::string table = "DosesAdm";
  EXPECT_EQ(kNextIdCode, 20096);
  EXPECT_EQ(table + std::string(kNotInNextId), "DosesAdm does not exist in the NextID table.");
  EXPECT_EQ(std::string(kMoreThanOneInstanceOf) + table + std::string(kExistsInNextId),
            "More than one instance of DosesAdm exists in the NextID table.");
}

TEST(ErrorCatalogue, MessagesOfTheComponentThatNothingRaises) {
  EXPECT_EQ(kConnectionNotOpen, "The connection you tried to use is not open");
  EXPECT_EQ(kUnknownException, "Unknown exception raised by the LOTRIX dll");
}

TEST(ErrorCatalogue, SourcesUserAndBase) {
  EXPECT_EQ(kErrorSource, "LOTRIX DLL");
  EXPECT_EQ(kApplicationTitle, "Lotrix");
  EXPECT_EQ(kUserId, "LTX_DLL"s);
  EXPECT_EQ(kObjectErrorBase, -2147221504);
}

TEST(ErrorCatalogue, RunTimeErrorsHaveTheNumbersOfAutomation) {
  const std::vector<std::pair<RuntimeError, std::int32_t>> numbers = {
      {RuntimeError::kInvalidArgument, 5},
      {RuntimeError::kOverflow, 6},
      {RuntimeError::kSubscriptOutOfRange, 9},
      {RuntimeError::kTypeMismatch, 13},
      {RuntimeError::kObjectNotSet, 91},
      {RuntimeError::kInvalidUseOfNull, 94},
      {RuntimeError::kUnknownMember, 438},
      {RuntimeError::kUnknownArgumentName, 448},
      {RuntimeError::kArgumentNotOptional, 449},
      {RuntimeError::kWrongNumberOfArguments, 450},
      {RuntimeError::kKeyAlreadyInCollection, 457},
      {RuntimeError::kObjectIsClosed, 3704},
      {RuntimeError::kUnknownProvider, 3706},
  };
  for (const auto& [constant, number] : numbers) {
    EXPECT_EQ(static_cast<std::int32_t>(constant), number);
  }
  EXPECT_EQ(RuntimeErrorText(RuntimeError::kUnknownProvider),
            "Provider cannot be found. It may not be properly installed.");
}

TEST(ErrorCatalogue, EngineErrorsHaveTheirNumbers) {
  const std::vector<std::pair<EngineError, std::uint32_t>> numbers = {
      {EngineError::kStatementRefused, 0x80040E14},
      {EngineError::kNoSuchTable, 0x80040E37},
      {EngineError::kValueCannotBeConverted, 0x80040E07},
      {EngineError::kConstraintViolated, 0x80040E2F},
      {EngineError::kValueOutOfRange, 0x80040E57},
      {EngineError::kBusy, 0x80040E31},
      {EngineError::kNotPermitted, 0x80040E09},
      {EngineError::kLoginRefused, 0x80040E4D},
      {EngineError::kNotReachable, 0x8004D01C},
      {EngineError::kInDoubt, 0x8004D016},
      {EngineError::kFailed, 0x80004005},
  };
  for (const auto& [constant, number] : numbers) {
    EXPECT_EQ(static_cast<std::uint32_t>(constant), number);
  }
}

// --- RaiseError and Error --------------------------------------------------

TEST(RaiseError, EveryCatalogueRowIsRaisedWithItsNumberItsTextAndTheTitleAsSource) {
  for (const CatalogueRow& row : kCatalogue) {
    SCOPED_TRACE(row.text);
    const Error error = Refusal([&] { RaiseError(row.constant); });
    ExpectError(error, -2147221504 + row.code, row.text, "Lotrix");
    EXPECT_EQ(error.engineCode(), 0);
  }
}

TEST(RaiseError, NumberOfCode20065) {
  ExpectError(Refusal([] { RaiseError(20065, "Error while verifying provider subdivision"); }),
              -2147201439, "Error while verifying provider subdivision", "Lotrix");
}

TEST(RaiseError, MessageIsUnchanged) {
  ExpectError(Refusal([] { RaiseError(20001, ""); }), -2147201503, "", "Lotrix");
  ExpectError(Refusal([] { RaiseError(20001, "  é 'a'\nb  "); }), -2147201503, "  é 'a'\nb  ",
              "Lotrix");
}

TEST(RaiseError, LowestCodeThatFits) {
  ExpectError(Refusal([] { RaiseError(-262144, "lowest"); }), -2147483647 - 1, "lowest", "Lotrix");
}

TEST(RaiseError, CodeBelowTheLowestOverflows) {
  constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
  EXPECT_EQ(Refusal([] { RaiseError(-262145, "too low"); }).number(), 6);
  EXPECT_EQ(Refusal([] { RaiseError(kLowest, "too low"); }).number(), 6);
}

TEST(RaiseError, HighestCodeFits) {
  constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();
  ExpectError(Refusal([] { RaiseError(kHighest, "highest"); }), 262143, "highest", "Lotrix");
}

TEST(ErrorType, HoldsWhatItWasMadeOf) {
  const Error error(-2147201439, "description é", "source", 1555);
  ExpectError(error, -2147201439, "description é", "source");
  EXPECT_EQ(error.engineCode(), 1555);
}

TEST(ErrorType, SourceOutsideAnyHandlerIsTheApplicationTitle) {
  const Error error(13, "description");
  ExpectError(error, 13, "description", "Lotrix");
  EXPECT_EQ(error.engineCode(), 0);
}

TEST(ErrorType, CopyOutlivesTheOriginal) {
  auto original = std::make_unique<Error>(6, "description", "source", 5);
  const Error copy = *original;
  original.reset();
  ExpectError(copy, 6, "description", "source");
  EXPECT_EQ(copy.engineCode(), 5);
}

// --- What every validation routine does with its recordset -----------------

class CountedCursor final : public Cursor {
 public:
  CountedCursor(std::unique_ptr<Cursor> cursor, int& open)
      : cursor_(std::move(cursor)), open_(open) {
    ++open_;
  }
  ~CountedCursor() override { --open_; }
  [[nodiscard]] int ColumnCount() const override { return cursor_->ColumnCount(); }
  [[nodiscard]] const std::string& ColumnName(int column) const override {
    return cursor_->ColumnName(column);
  }
  [[nodiscard]] DataType DeclaredType(int column) const override {
    return cursor_->DeclaredType(column);
  }
  [[nodiscard]] ValueView ColumnValue(int column) const override {
    return cursor_->ColumnValue(column);
  }
  [[nodiscard]] bool AtEnd() const override { return cursor_->AtEnd(); }
  void Next() override { cursor_->Next(); }

 private:
  std::unique_ptr<Cursor> cursor_;
  int& open_;
};

struct CursorCount {
  int open = 0;
  // How many were open when each statement was about to run.
  std::vector<int> before;
};

class CountingSession final : public Session {
 public:
  CountingSession(std::unique_ptr<Session> session, CursorCount& count)
      : session_(std::move(session)), count_(count) {}
  std::unique_ptr<Cursor> Run(const Statement& statement) override {
    count_.before.push_back(count_.open);
    auto cursor = session_->Run(statement);
    if (cursor == nullptr) return nullptr;
    return std::make_unique<CountedCursor>(std::move(cursor), count_.open);
  }
  void Begin() override { session_->Begin(); }
  void Commit() override { session_->Commit(); }
  void Rollback() override { session_->Rollback(); }
  [[nodiscard]] bool InTransaction() const override { return session_->InTransaction(); }
  void CreateSchema() override { session_->CreateSchema(); }

 private:
  std::unique_ptr<Session> session_;
  CursorCount& count_;
};

class RoutineConventions : public DatabaseTest {
 protected:
  RoutineConventions()
      : counted_(logPath(), [this] {
          openAtLastLine_ = count_.open;
          return Now();
        }) {}

  Connection& CountedConnection() {
    Connection& counted = connection();
    ConnectionAccess::WrapSession(counted, [this](std::unique_ptr<Session> session) {
      return std::make_unique<CountingSession>(std::move(session), count_);
    });
    return counted;
  }

  // After a refusal with this code: every query's recordset was closed when the
  // last problem line was written, and the connection is open as before.
  void ExpectClosedAfter(std::int32_t code, Connection& counted,
                         const std::function<void()>& call) {
    SCOPED_TRACE(code);
    count_.before.clear();
    openAtLastLine_ = -1;
    EXPECT_EQ(Refusal(call).number(), Coded(code));
    EXPECT_FALSE(count_.before.empty());
    EXPECT_EQ(openAtLastLine_, 0);
    EXPECT_EQ(count_.open, 0);
    EXPECT_EQ(counted.State(), ObjectState::kOpen);
  }

  CursorCount count_;
  int openAtLastLine_ = -1;
  TraceLog counted_;
};

TEST_F(RoutineConventions, RefusingRoutineClosesItsRecordsetBeforeItsProblemLine) {
  Execute(
      "INSERT INTO provider (pin, sector, active) VALUES ('OFF', 10, 'N'), ('TWO', 10, 'Y'),"
      " ('TWO', 11, 'Y'), ('D2', 30, 'Y'), ('D2', 31, 'Y')");
  Execute("INSERT INTO vaccref (vaccine, maxno, locactiv) VALUES ('OLD', 2, 'N'), ('MMR', 2, 'Y')");
  Execute("INSERT INTO pvaccref (vaccine, maxno, locactiv) VALUES ('OLD', 2, TRUE)");
  Connection& counted = CountedConnection();

  ExpectClosedAfter(20067, counted, [&] { ValidateSubdivision(counted_, "None", counted); });
  ExpectClosedAfter(20014, counted, [&] { ValidateDepotPIN(counted_, "NONE", counted); });
  ExpectClosedAfter(20015, counted, [&] { ValidateDepotPIN(counted_, "D2", counted); });
  ExpectClosedAfter(20003, counted, [&] {
    static_cast<void>(ValidateProviderPIN(counted_, "TWO", false, counted));
  });
  ExpectClosedAfter(20083, counted, [&] {
    static_cast<void>(ValidateProviderPIN(counted_, "OFF", true, counted));
  });
  ExpectClosedAfter(20005, counted,
                    [&] { ValidateProviderActiveStatus(counted_, "TWO", counted); });
  ExpectClosedAfter(20083, counted,
                    [&] { ValidateProviderActiveStatus(counted_, "OFF", counted); });
  ExpectClosedAfter(20088, counted,
                    [&] { ValidateDoseSeriesNumber(counted_, "3", "MMR", counted); });
  ExpectClosedAfter(20088, counted,
                    [&] { ValidateDoseSeriesNumberPvaccref(counted_, "3", "OLD", counted); });
  ExpectClosedAfter(20051, counted,
                    [&] { ValidateAgainstVaccRefTable(counted_, "NONE", counted, false); });
  ExpectClosedAfter(20086, counted,
                    [&] { ValidateAgainstVaccRefTable(counted_, "OLD", counted, true); });
  ExpectClosedAfter(20051, counted,
                    [&] { ValidateAgainstpVaccRefTable(counted_, "NONE", counted, false); });
  ExpectClosedAfter(20086, counted,
                    [&] { ValidateAgainstpVaccRefTable(counted_, "OLD", counted, true); });
}

TEST_F(RoutineConventions, PassingRoutineLeavesNoRecordsetOpen) {
  Execute("INSERT INTO subdiv (subdiv) VALUES ('North')");
  Execute("INSERT INTO provider (pin, sector, active) VALUES ('P1', 10, 'Y'), ('D1', 30, 'Y')");
  Execute("INSERT INTO vaccref (vaccine, maxno, locactiv) VALUES ('MMR', 2, 'Y')");
  Execute("INSERT INTO pvaccref (vaccine, maxno, locactiv) VALUES ('MMR', 2, FALSE)");
  Connection& counted = CountedConnection();

  ValidateSubdivision(counted_, "North", counted);
  EXPECT_EQ(count_.open, 0);
  ValidateDepotPIN(counted_, "D1", counted);
  EXPECT_EQ(count_.open, 0);
  EXPECT_TRUE(ValidateProviderPIN(counted_, "P1", true, counted));
  EXPECT_EQ(count_.open, 0);
  EXPECT_TRUE(ValidateVaccineActiveStatus(counted_, "MMR", counted));
  EXPECT_EQ(count_.open, 0);
  ValidateDoseSeriesNumber(counted_, "2", "MMR", counted);
  EXPECT_EQ(count_.open, 0);
  ValidateDoseSeriesNumberPvaccref(counted_, "2", "MMR", counted);
  EXPECT_EQ(count_.open, 0);
  ValidateAgainstVaccRefTable(counted_, "MMR", counted, true);
  EXPECT_EQ(count_.open, 0);
  ValidateAgainstpVaccRefTable(counted_, "MMR", counted, true);
  EXPECT_EQ(count_.open, 0);
  EXPECT_EQ(count_.before.size(), 11U);
  EXPECT_EQ(counted.State(), ObjectState::kOpen);
}

TEST_F(RoutineConventions, ReferenceTableIsClosedBeforeTheActiveStatusIsAsked) {
  Execute("INSERT INTO vaccref (vaccine) VALUES ('MMR')");
  Execute("INSERT INTO pvaccref (vaccine, locactiv) VALUES ('MMR', FALSE)");
  Connection& counted = CountedConnection();
  ValidateAgainstVaccRefTable(counted_, "MMR", counted, true);
  EXPECT_EQ(count_.before, (std::vector<int>{0, 0}));
  count_.before.clear();
  ValidateAgainstpVaccRefTable(counted_, "MMR", counted, true);
  EXPECT_EQ(count_.before, (std::vector<int>{0, 0}));
}

// --- What an engine's and the run time's errors become ---------------------

TEST_F(RoutineConventions, EngineErrorKeepsItsNumberItsTextAndItsOwnCode) {
  Execute("DROP TABLE subdiv");
  Connection& open = connection();
  const Error error = Refusal([&] { ValidateSubdivision(log(), "North", open); });
  EXPECT_EQ(error.number(), Numbered(EngineError::kNoSuchTable));
  EXPECT_EQ(error.source(), "LOTRIX DLL");
  EXPECT_FALSE(error.description().empty());
  EXPECT_NE(error.engineCode(), 0);
  EXPECT_EQ(Trace(), (std::vector<std::string>{
                         "information Begin: ValidateSubdivision()",
                         "error Problem: In ValidateSubdivision() " + error.description()}));
}

TEST_F(RoutineConventions, EngineErrorPassesTwoHandlersUnchanged) {
  Connection& open = connection();
  // The provider is counted, and lost before its status is read.
  Watch(open, [this](const std::string& text) -> std::optional<std::vector<Value>> {
    if (text.starts_with("SELECT count(*)")) {
      Execute("DROP TABLE provider");
      return std::vector<Value>{std::int64_t{1}};
    }
    return std::nullopt;
  });
  const Error error =
      Refusal([&] { static_cast<void>(ValidateProviderPIN(log(), "P1", true, open)); });
  EXPECT_EQ(error.number(), Numbered(EngineError::kNoSuchTable));
  EXPECT_EQ(error.source(), "LOTRIX DLL");
  EXPECT_NE(error.engineCode(), 0);
  EXPECT_EQ(Trace(), (std::vector<std::string>{
                         "information Begin: ValidateProviderPIN()",
                         "information Begin: ValidateProviderActiveStatus()",
                         "error Problem: In ValidateProviderActiveStatus() " + error.description(),
                         "error Problem: In ValidateProviderPIN() " + error.description()}));
}

TEST_F(RoutineConventions, ClosedConnectionIsReportedByItsOwnNumber) {
  Connection& closed = connection();
  closed.Close();
  const Error error = Refusal([&] { ValidateDepotPIN(log(), "D1", closed); });
  EXPECT_EQ(error.number(), 3704);
  EXPECT_EQ(error.source(), "LOTRIX DLL");
  EXPECT_EQ(Trace(), (std::vector<std::string>{
                         "information Begin: ValidateDepotPIN()",
                         "error Problem: In ValidateDepotPIN() " + error.description()}));
}

TEST_F(RoutineConventions, ValueThatWouldLeaveItsPlaceIsRefusedAsASyntaxError) {
  Connection& open = connection();
  Execute("INSERT INTO subdiv (subdiv) VALUES ('North')");
  for (const std::string& value :
       {"'"s, "x' OR '1'='1"s, "North'; DELETE FROM subdiv; --"s, "North''"s, "No\0rth"s}) {
    SCOPED_TRACE(value);
    ForgetTrace();
    const Error error = Refusal([&] { ValidateSubdivision(log(), value, open); });
    EXPECT_EQ(error.number(), Numbered(EngineError::kStatementRefused));
    EXPECT_EQ(error.source(), "LOTRIX DLL");
    const std::vector<std::string> trace = Trace();
    ASSERT_EQ(trace.size(), 2U);
    EXPECT_EQ(trace[0], "information Begin: ValidateSubdivision()");
    EXPECT_TRUE(trace[1].starts_with("error Problem: In ValidateSubdivision() ")) << trace[1];
    EXPECT_EQ(Query("SELECT subdiv FROM subdiv"), (std::vector<Row>{{"North"}}));
  }
}

// --- A refusal inside an operation -----------------------------------------

TEST_F(RoutineConventions, RefusalInsideAnOperationIsLoggedByBoth) {
  cLotrix& object = lotrix();
  ExpectError(
      Refusal([&] { static_cast<void>(object.inventoryOnHandRead("D-1")); }), Coded(20080),
      "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed.");
  EXPECT_EQ(Trace(),
            (std::vector<std::string>{
                "information Begin: inventoryOnHandRead()",
                "information Begin: Get Connection()",
                "information End: GetConnection()",
                "information Begin: ValidateDepotPIN()",
                "error Problem: In ValidateDepotPIN() The provider pin number entered is not "
                "alphanumeric. Only alphanumeric pins are allowed.",
                "error Problem: In inventoryOnHandRead() The provider pin number entered is not "
                "alphanumeric. Only alphanumeric pins are allowed.",
            }));
}

TEST_F(RoutineConventions, SameTextHasAnotherCodeForAProviderPin) {
  cLotrix& object = lotrix();
  ExpectError(
      Refusal([&] { static_cast<void>(object.stockTableRead("D-1")); }), Coded(20079),
      "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed.");
}

TEST_F(RoutineConventions, RefusalIsLoggedOnceByEachRoutineAndOperationOnItsWay) {
  Execute("INSERT INTO provider (pin, sector, active) VALUES ('P1', 10, 'N')");
  cLotrix& object = lotrix();
  const std::string text =
      "The provider enter is currently inactivate in LOTRIX. Cannot proceed with the current "
      "operation";
  ExpectError(
      Refusal([&] { static_cast<void>(object.manufacturerProviderOrderRead("p1", "1/5/2004")); }),
      Coded(20083), text);
  EXPECT_EQ(Trace(), (std::vector<std::string>{
                         "information Begin: manufacturerProviderOrderRead()",
                         "information Begin: stockTableRead()",
                         "information Begin: Get Connection()",
                         "information End: GetConnection()",
                         "information Begin: ValidateProviderPIN()",
                         "information Begin: ValidateProviderActiveStatus()",
                         "error Problem: In ValidateProviderActiveStatus() " + text,
                         "error Problem: In ValidateProviderPIN() " + text,
                         "error Problem: In stockTableRead() " + text,
                         "error Problem: In manufacturerProviderOrderRead() " + text,
                     }));
}

TEST_F(RoutineConventions, OperationAfterARefusalFindsTheConnectionOpen) {
  cLotrix& object = lotrix();
  const auto before = object.Connection();
  static_cast<void>(Refusal([&] { static_cast<void>(object.inventoryOnHandRead("NONE")); }));
  EXPECT_EQ(before->State(), ObjectState::kOpen);
  EXPECT_EQ(object.Connection(), before);
}

}  // namespace
}  // namespace lotrix::test

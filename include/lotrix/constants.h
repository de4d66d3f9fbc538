// The component's named constants: its error catalogue and the numbers clients
// test for. Messages are kept letter for letter, irregularities included:
// several codes stand for more than one message, and two messages have two
// codes, depending on the routine that raises them.
#ifndef LOTRIX_CONSTANTS_H
#define LOTRIX_CONSTANTS_H

#include <cstdint>
#include <string_view>

namespace lotrix {

inline constexpr std::string_view kApplicationTitle = "Lotrix";
// The source of every error that has passed through a handler of the component.
inline constexpr std::string_view kErrorSource = "LOTRIX DLL";
// Written to every userid column.
inline constexpr char kUserId[] = "LTX_DLL";

// A refused rule is raised with this base plus its code.
inline constexpr std::int32_t kObjectErrorBase = static_cast<std::int32_t>(0x80040000U);

// Errors of the run time rather than of a rule, by the numbers automation gives
// them.
enum class RuntimeError : std::int32_t {
  kInvalidArgument = 5,
  kOverflow = 6,
  kOutOfMemory = 7,
  kSubscriptOutOfRange = 9,
  kTypeMismatch = 13,
  kObjectNotSet = 91,
  kInvalidUseOfNull = 94,
  kUnknownMember = 438,
  kUnknownArgumentName = 448,
  kArgumentNotOptional = 449,
  kWrongNumberOfArguments = 450,
  kKeyAlreadyInCollection = 457,
  kNoCurrentRecord = 3021,
  kObjectIsClosed = 3704,
  kObjectIsOpen = 3705,
  kUnknownProvider = 3706,
};
[[nodiscard]] std::string_view RuntimeErrorText(RuntimeError number);

// Errors of a database engine, by the OLE DB numbers that stand for them.
enum class EngineError : std::uint32_t {
  kFailed = 0x80004005,
  kValueCannotBeConverted = 0x80040E07,
  kNotPermitted = 0x80040E09,
  kStatementRefused = 0x80040E14,
  kConstraintViolated = 0x80040E2F,
  kBusy = 0x80040E31,
  kNoSuchTable = 0x80040E37,
  kLoginRefused = 0x80040E4D,
  kValueOutOfRange = 0x80040E57,
  kInDoubt = 0x8004D016,
  kNotReachable = 0x8004D01C,
};

struct Message {
  std::int32_t code;
  std::string_view text;
};

// Kept for clients that know them; nothing raises them.
inline constexpr std::string_view kConnectionNotOpen =
    "The connection you tried to use is not open";
inline constexpr std::string_view kUnknownException = "Unknown exception raised by the LOTRIX dll";

// The key table's two failures name the table, in front of or inside the text.
inline constexpr std::int32_t kNextIdCode = 20096;
inline constexpr std::string_view kNotInNextId = " does not exist in the NextID table.";
inline constexpr std::string_view kMoreThanOneInstanceOf = "More than one instance of ";
inline constexpr std::string_view kExistsInNextId = " exists in the NextID table.";

inline constexpr Message kNullPinAsCode{2000, "2000"};
inline constexpr Message kNullProviderPin{2000, "A null provider PIN was entered"};
inline constexpr Message kNullProviderName{20001, "Null provider name was entered"};
inline constexpr Message kNullShippingContact{20002, "Null shipping contact was entered"};
inline constexpr Message kDuplicateProviderPin{20003, "Provider PIN entered has a duplicate"};
inline constexpr Message kProviderNotFound{20004, "Provider entered not found in LOTRIX"};
inline constexpr Message kErrorVerifyingProviderPin{20005,
                                                    "Error while verifying provider PIN in LOTRIX"};
inline constexpr Message kNullShippingAddress{
    20006, "The first field of the shipping address cannot be null"};
inline constexpr Message kNullShippingCity{20007,
                                           "The city field in the shipping address cannot be null"};
inline constexpr Message kNullShippingState{
    20008, "The state field in the shipping address cannot be null"};
inline constexpr Message kErrorVerifyingDepotPin{20014,
                                                 "Error while verifying depot PIN in LOTRIX"};
inline constexpr Message kDuplicateDepotPin{20015, "Provider PIN entered has a duplicate"};
inline constexpr Message kErrorVerifyingVaccineReference{
    20016, "Error while verifying vaccine reference table in LOTRIX"};
inline constexpr Message kErrorVerifyingDepotProviderOrder{
    20018, "Error while verifying duplicate depot provider order in LOTRIX"};
inline constexpr Message kNullShipmentDate{20021, "A Null Shipment Date is entered"};
inline constexpr Message kNullDepotPin{20022, "A NULL depot pin is entered"};
inline constexpr Message kNullVaccineName{20023, "A NULL vaccine name is entered"};
inline constexpr Message kNullLotNumber{20024, "A NULL lot number is entered"};
inline constexpr Message kOrderDosesNotPositive{
    20025, "The number of doses for an order must be greater than zero"};
inline constexpr Message kNullReportDate{20028, "A NULL report date is entered"};
inline constexpr Message kDosesDoNotMatchTotal{
    20029, "The sum of the distribution does not match the Total"};
inline constexpr Message kNullSector{20031, "A NULL sector is entered"};
inline constexpr Message kErrorVerifyingSector{20031, "Error while verifying sector"};
inline constexpr Message kErrorVerifyingDosesAdmin{20032,
                                                   "Error while verifying duplicate doses admin"};
inline constexpr Message kShippingProviderNotFound{
    20033, "Provider PIN not found for shipping data update"};
inline constexpr Message kErrorVerifyingLotNumber{20034, "Error verifying lot number"};
inline constexpr Message kErrorVerifyingAdjustmentType{20036, "Error verifying adjustment type"};
inline constexpr Message kDuplicateAdjustmentType{20037, "Duplicate adjustment type found"};
inline constexpr Message kMoreThanOneAdjustment{
    20038, "More than one record for the same adjustment was found"};
inline constexpr Message kErrorLookingForAdjustment{
    20039, "Error while looking for duplicate adjustment records"};
inline constexpr Message kAdjustmentNotAllowed{
    20040, "The adjustment entered cannot be inserted into LOTRIX with this application"};
inline constexpr Message kUnknownAdjustment{20041, "Unknown adjustment for update"};
inline constexpr Message kErrorDeterminingCurrentDoses{
    20042, "Error determining current doses for inventory adjustment update"};
inline constexpr Message kNullTransactionDate{
    20043, "Null transaction date was entered for inventory adjustment update"};
inline constexpr Message kNullEntryDate{
    20044, "Null entry date was entered for inventory adjustment update"};
inline constexpr Message kStatePoRequired{20046,
                                          "A state PO number is required for state funding code"};
inline constexpr Message kErrorVerifyingFundingCode{20047, "Error while verifying funding code"};
inline constexpr Message kFundingCodeNotDefined{
    20048, "Funding code entered has not been defined in LOTRIX"};
inline constexpr Message kDuplicateFundingCodes{20049, "Duplicate funding codes found in LOTRIX"};
inline constexpr Message kVaccineNotAvailable{
    20051, "Vaccine not available to private provider in LOTRIX"};
inline constexpr Message kErrorVerifyingVaccineContract{
    20052, "Error while verifying order against vaccine contract table"};
inline constexpr Message kErrorVerifyingManufacturerOrder{
    20054, "Error while verifing order against duplicates"};
inline constexpr Message kMoreThanOneManufacturerOrder{
    20055, "More than one record for the same manufacturer order was found"};
inline constexpr Message kInvalidFaxNumber{20056, "Invalid fax number format"};
inline constexpr Message kInvalidPhoneNumber{20057, "Invalid phone number format"};
inline constexpr Message kInvalidClassificationCode{20060,
                                                    "Invalid classification code for a provider"};
inline constexpr Message kClassificationCodeNeeded{
    20061, "Classification code is needed when creating new provider records in LOTRIX"};
inline constexpr Message kInvalidShipmentBeginDate{
    20062, "The Shipment Begin Date that was entered is not a valid date"};
inline constexpr Message kInvalidShipmentEndDate{
    20063, "The Shipment End Date that was entered is not a valid date"};
inline constexpr Message kErrorVerifyingSubdivision{20065,
                                                    "Error while verifying provider subdivision"};
inline constexpr Message kDuplicateSubdivisions{20066, "Duplicate subdivisions found"};
inline constexpr Message kSubdivisionNotFound{
    20067, "The subdivision entered does not exist in the database"};
inline constexpr Message kExcessAllowanceOutOfRange{20068, "The excess allowance is out of range"};
inline constexpr Message kInvalidShipmentDateRange{
    20069,
    "The end of the date range must be later than the beginning of the range, and both must be "
    "valid dates"};
inline constexpr Message kErrorCheckingManufacturerOrderStatus{
    20070, "Error while checking status of manufacturer order"};
inline constexpr Message kManufacturerOrderAlreadySent{
    20071,
    "A manufacturer order with the same parameters has already been sent to the Vorsk. Cannot "
    "update current order."};
inline constexpr Message kReservedProviderPin{
    20072, "The given pin number is reserved and cannot be assigned to a new provider."};
inline constexpr Message kInvalidVfcCertificationDate{20073,
                                                      "VFC certification date is not a valid date"};
inline constexpr Message kInvalidEntryDate{20074,
                                           "Entry date for the adjustment is not a valid date"};
inline constexpr Message kInvalidTransactionDate{
    20074, "Transaction date for the adjustment is not a valid date"};
inline constexpr Message kInvalidOrderDate{
    20075, "Order date for the manufacturer order is not a valid date"};
inline constexpr Message kNullOrderDate{20076, "Null value for manufacturer order date"};
inline constexpr Message kPinTooLong{
    20078, "The number of characters in the pin entered exceeds the maximum allowed"};
inline constexpr Message kProviderPinNotAlphanumeric{
    20079,
    "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed."};
inline constexpr Message kDepotPinNotAlphanumeric{
    20080,
    "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed."};
inline constexpr Message kAdjustmentDosesZero{
    20082, "The number of doses in an inventory adjustment record must be greater than zero"};
inline constexpr Message kProviderInactive{20083,
                                           "The provider enter is currently inactivate in LOTRIX. "
                                           "Cannot proceed with the current operation"};
inline constexpr Message kZeroProviderPin{20084,
                                          "Pin number cannot be zero for a new provider record"};
inline constexpr Message kInvalidDosesAdminSector{
    20085, "The given sector is not a valid doses administered sector"};
inline constexpr Message kVaccineInactive{
    20086, "The vaccine being used in the current operation is inactive in LOTRIX"};
inline constexpr Message kDoseInSeriesTooSmall{
    20087, "The dose in series number given is less than the minimum allowed for all vaccines"};
inline constexpr Message kDoseInSeriesTooLarge{
    20088, "The dose in series number given is greater than the maximum allowed for the vaccine"};
inline constexpr Message kErrorReadingEnrollment{
    20089, "Error while reading enrollment data for current provider"};
inline constexpr Message kDuplicateEnrollment{
    20090, "There are duplicate enrollment data records for the current provider"};
inline constexpr Message kNullFundingSource{20091, "A Null funding source is entered"};
inline constexpr Message kProviderNotEligibleForVaricella{
    20092, "The provider is not eligible for ordering VAR"};
inline constexpr Message kStatePoNotNeeded{20093,
                                           "The state PO is not needed for federal funded order"};
inline constexpr Message kInvalidActiveCode{20095, "The active code entered is not Y nor N"};
inline constexpr Message kErrorReadingPhysician{
    20096, "Error while reading physicn data for current physician"};
inline constexpr Message kDuplicatePhysician{
    20097, "There are duplicate physicn data records for the current provider"};
inline constexpr Message kNullEnrollmentPin{20098, "Null PIN for Enroll table Add/Update"};
inline constexpr Message kNullEnrollmentSource{20099, "Null Source for Enroll table Add/Update"};
inline constexpr Message kNullEnrollmentAgeGroup{20100,
                                                 "Null Age Group for Enroll table Add/Update"};
inline constexpr Message kNullEnrollmentAllKids{20101,
                                                "Null AllKids Total for Enroll table Add/Update"};
inline constexpr Message kNullEnrollmentMedicaid{20102,
                                                 "Null Medicaid Total for Enroll table Add/Update"};
inline constexpr Message kNullEnrollmentUninsured{
    20103, "Null Uninsured Total for Enroll table Add/Update"};
inline constexpr Message kNullEnrollmentAmericanIndian{
    20104, "Null American Indian Total for Enroll table Add/Update"};
inline constexpr Message kNullEnrollmentFqhcRhc{20105,
                                                "Null FQHC_RHC Total for Enroll table Add/Update"};
inline constexpr Message kNullEnrollmentVfc{20106, "Null VFC Total for Enroll table Add/Update"};
inline constexpr Message kNullEnrollmentG317{20107, "Null G317 Total for Enroll table Add/Update"};
inline constexpr Message kNullEnrollmentState{20108,
                                              "Null State Total for Enroll table Add/Update"};
inline constexpr Message kInvalidEnrollmentAgeGroup{
    20109, "Non-numeric or invalid age group for Enroll table Add/Update"};
inline constexpr Message kNonNumericEnrollmentAllKids{
    20110, "Non-numeric All Kids Total for Enroll table Add/Update"};
inline constexpr Message kNonNumericEnrollmentMedicaid{
    20111, "Non-numeric Medicaid Total for Enroll table Add/Update"};
inline constexpr Message kNonNumericEnrollmentUninsured{
    20112, "Non-numeric Uninsured Total for Enroll table Add/Update"};
inline constexpr Message kNonNumericEnrollmentAmericanIndian{
    20113, "Non-numeric American Indian Total for Enroll table Add/Update"};
inline constexpr Message kNonNumericEnrollmentFqhcRhc{
    20114, "Non-numeric FQHC_RHC Total for Enroll table Add/Update"};
inline constexpr Message kNonNumericEnrollmentVfc{
    20115, "Non-numeric VFC Total for Enroll table Add/Update"};
inline constexpr Message kNonNumericEnrollmentG317{
    20116, "Non-numeric G317 Total for Enroll table Add/Update"};
inline constexpr Message kNonNumericEnrollmentState{
    20117, "Non-numeric State Total for Enroll table Add/Update"};
inline constexpr Message kInvalidEnrollmentSource{
    20118, "Source value not A-G or Z for Enroll table Add/Update"};
inline constexpr Message kNullProviderType{20119, "Null Provider Type for Provider table Update"};
inline constexpr Message kNullVfcCertificationDate{
    20120, "Null VFC Certification Date for Provider table Add/Update"};
inline constexpr Message kNullCohort{20121, "Null Cohort for Provider table Update"};
inline constexpr Message kNullEmployeeId{20122,
                                         "Null Employee ID Number for Provider table Update"};
inline constexpr Message kNullQuorvin{20123, "Null Quorvin Value for Provider table Update"};
inline constexpr Message kInvalidQuorvin{20124,
                                         "Quorvin Value not YES/NO for Provider table Update"};
inline constexpr Message kNonNumericClassification{
    20125, "Non-numeric Classification for Provider table Update"};
inline constexpr Message kNullPhysicianLastName{20126,
                                                "Null Last Name for Physicn table Add/Update"};
inline constexpr Message kNullPhysicianFirstName{20127,
                                                 "Null First Name for Physicn table Add/Update"};
inline constexpr Message kPhysicianFieldTooLong{
    20131, "Incorrect field length for Physicn table Add/Update: "};
inline constexpr Message kProviderFieldTooLong{
    20132, "Incorrect field length for Provider table Update: "};
inline constexpr Message kEnrollmentFieldTooLong{
    20133, "Incorrect field length for Enroll table Add/Update: "};
inline constexpr Message kNullInventoryVaccine{
    20134, "Null Vaccine field for Provider Inventory Add/Update"};
inline constexpr Message kNullInventory{20135,
                                        "Null Inventory field for Provider Inventory Add/Update"};
inline constexpr Message kNonNumericInventory{
    20136, "Non numeric Inventory field for Provider Inventory Add/Update"};
inline constexpr Message kNullInventoryDate{
    20138, "Null Inventory Date field for Provider Inventory Add/Update"};
inline constexpr Message kInvalidInventoryDate{
    20139, "Invalid Inventory Date field for Provider Inventory Add/Update"};
inline constexpr Message kInvalidMailingPhoneNumber{20140, "Invalid mailing phone number format"};
inline constexpr Message kInvalidMailingFaxNumber{20141, "Invalid mailing fax number format"};
inline constexpr Message kInvalidShippingPhoneNumber{20142, "Invalid shipping phone number format"};
inline constexpr Message kInvalidShippingFaxNumber{20143, "Invalid shipping fax number format"};
inline constexpr Message kInvalidRow{50000, "Invalid Row Specified"};
inline constexpr Message kInvalidCol{50001, "Invalid Col Specified"};

}  // namespace lotrix

#endif

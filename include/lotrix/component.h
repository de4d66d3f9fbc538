// The service object.
#ifndef LOTRIX_COMPONENT_H
#define LOTRIX_COMPONENT_H

#include <cstdint>
#include <memory>

#include "lotrix/connection.h"
#include "lotrix/host.h"
#include "lotrix/result_set.h"
#include "lotrix/text.h"
#include "lotrix/value.h"

namespace lotrix {

struct Service;

// One checked door to the vaccine-management database. An object is created and
// called by one thread; each has its own connection, and several share nothing
// but the database and the log file.
//
// Give it a connection string with openConnection; the first operation opens the
// connection, and so does the first one after closeConnection. An operation logs
// its Begin line, checks its arguments in a fixed order, runs its statements and
// logs its End line (provinvAdd, which the trace calls provinvAddUpdate, and the
// two operations on physicians log their statement in its place; CheckVaccActive
// logs nothing of its own). The first thing that fails ends it: the object logs a
// Problem line and throws an Error with the source "LOTRIX DLL".
//
// A write runs its one statement after its last check, so a call that a check
// refuses has changed nothing but a key that it took from the key table. A new
// provider gets its enrollment row by a second statement, and stays when that one
// fails.
//
// Omitted optional texts are the empty text where no default is shown. Dates are
// texts in the order month, day, year.
class cLotrix {
 public:
  explicit cLotrix(Host host = {});
  ~cLotrix();
  cLotrix(const cLotrix&) = delete;
  cLotrix& operator=(const cLotrix&) = delete;

  // The open connection: opened if it is not, with the string given last. Throws
  // what opening throws.
  std::shared_ptr<lotrix::Connection> Connection();
  // Opens nothing: the string is used when the connection is opened next.
  void openConnection(const Text& aConnectionString);
  void closeConnection();

  // Stock shipments to one provider, newest first: from one day, or from the
  // begin to the end date. All texts count in upper case. Throws 2000, 20021 and
  // what stockTableRead throws.
  cResultSet manufacturerProviderOrderRead(const Text& aPIN, const Text& aShipmentBeginDate,
                                           const Text& aVaccine = {}, const Text& aLotNumber = {},
                                           const Text& aShipmentEndDate = {});

  // Tracked stock shipments, newest first, in the columns pin, datein, doses, lot,
  // vaccine, maker, expiry; a blank argument filters nothing, lots count without
  // their dashes. Throws 20078, 20079, 20005, 20003, 20083 for the PIN, 20051,
  // 20086 for the vaccine, 20062, 20063, 20069 for the dates.
  cResultSet stockTableRead(const Text& aPIN = {}, const Text& aVaccine = {},
                            const Text& aLotNumber = {}, const Text& aShipmentBeginDate = {},
                            const Text& aShipmentEndDate = {});

  // Every vaccine of the contract table, once, in the column vaccine.
  cResultSet vaccineReferenceTableRead();

  // A depot's usable lots, in the columns vaccine, lot, expiry, maker, remain,
  // size. Throws the plain number 20022 for a blank PIN; 20078, 20080, 20014,
  // 20015 for the PIN, 20051, 20086 for the vaccine.
  cResultSet inventoryOnHandRead(const Text& aDepotPIN, const Text& aVaccine = {});

  // Records a provider's order of one vaccine, or overwrites the counts of the
  // order that has the same provider, vaccine, date and funding source. Throws
  // 20025, 20091, 20004, 20076, 20075, 20092, 20042, 20052, 6, 94, and what the
  // validations of PIN, vaccine, funding, excess allowance and duplicates throw.
  void manufacturerProviderOrderCreateUpdate(const Text& anOrderDate, const Text& aPIN,
                                             const Text& aVaccine, std::int32_t aDoseCount,
                                             const Text& aFundingSource,
                                             const Text& anExcessAllowance = "1",
                                             const Text& aStatePO = {}, const Text& aMfg = {});

  // Adds a provider, or rewrites the profile of the one that has this PIN; a new
  // one gets an enrollment row of zeros as well, unless it has one. Missing optionals are not
  // written, but for the active flag, which is then "Y". An update takes a provider number and
  // drops it. Throws 20095, the validations of PIN, address and status, 20001, 20002, 20142, 20143,
  // 20140, 20141, 20096, 20061, 20060, 20031, 20072, 20084, 20073, 20065 to 20067, 20089, 20090,
  // 13, 6, 94.
  void providerProfileUpdate(
      const Text& aPIN, const Text& aFacilityLastName, const Text& aShippingContact,
      const Text& aShippingAddress1, const Text& aShippingAddress2, const Text& aShippingCity,
      const Text& aShippingState, const Text& aShippingZipCode, const Text& aShippingInstructions,
      const Text& aShippingPhoneNumber, const Text& aShippingFaxNumber, const Text& aMailContact,
      const Text& aMailAddress1, const Text& aMailAddress2, const Text& aMailCity,
      const Text& aMailState, const Text& aMailZipCode, const Text& aMailPhoneNumber,
      const Text& aMailFaxNumber, bool aVaricellaEligibilityStatus,
      const Variant& aClassificationCode = {}, const Variant& aVFCCertificationDate = {},
      const Variant& aPhoneExtension = {}, const Variant& aFirstName = {},
      const Variant& aMiddleInitial = {}, const Variant& aTitle = {},
      const Variant& aParentProviderID = {}, const Variant& anAdditionalID = {},
      const Variant& anActiveStatus = {}, const Variant& aSubdivision = {},
      const Variant& aCategory1 = {}, const Variant& aCategory2 = {},
      const Variant& aCategory3 = {});

  // Records a movement of a provider's stock, or adds its doses to those of the
  // movement that has the same action, provider, vaccine, lot, date and source. The
  // count's sign does not matter. Throws 20082, 20044, 20043, 20074, 20004, 20034,
  // 20036, 20037, 20040, 20041, 20038, 20039, 20042, 6, and what the validations of
  // the two PINs throw.
  void providerInventoryAdjustmentUpdate(const Text& aDepotPIN, const Text& anEntryDate,
                                         const Text& aTransactionDate, const Text& aTransactionType,
                                         const Text& aPIN, const Text& aVaccine,
                                         const Text& aLotNumber, std::int32_t aDoseCount);

  // Rewrites the shipping side of an existing provider; missing optionals stay as
  // they are. Throws 20033, 20001, 20002, 20057, 20056, 6, 13, 94, and what the
  // validations of PIN, status and address throw.
  void providerShippingDataUpdate(const Text& aPIN, const Text& aFacilityLastName,
                                  const Text& aShippingContact, const Text& aShippingAddress1,
                                  const Text& aShippingAddress2, const Text& aShippingCity,
                                  const Text& aShippingState, const Text& aShippingZipCode,
                                  const Text& aShippingInstructions, const Text& aPhoneNumber,
                                  const Text& aFaxNumber, const Variant& aPhoneExtension = {},
                                  const Variant& aFirstName = {},
                                  const Variant& aMiddleInitial = {}, const Variant& aTitle = {});

  // Reports doses given in thirteen age groups, or overwrites the report that has
  // the same date, provider, vaccine, dose and sector; either takes a key. Throws
  // 20028, 20023, 2000, 20085, 20029, 6, 20004, 20051, 20087, 20088, 13, 20096,
  // 20032, and what the validation of the PIN throws.
  void DosesAdministeredUpdate(
      const Text& aReportingDate, const Text& aPIN, const Text& aVaccine, const Text& aDoseInSeries,
      const Text& aSector = "1", std::int32_t aDoseCountLessThanOne = 0,
      std::int32_t aDoseCountForOneYear = 0, std::int32_t aDoseCountForTwoYears = 0,
      std::int32_t aDoseCountForThreetoFourYears = 0, std::int32_t aDoseCountForFiveYears = 0,
      std::int32_t aDoseCountForSixtoNineYears = 0,
      std::int32_t aDoseCountForTentoFourteenYears = 0,
      std::int32_t aDoseCountForFifteentoNineteenYears = 0,
      std::int32_t aDoseCountForTwentytoTwentyFourYears = 0,
      std::int32_t aDoseCountForTwentyFivetoFourtyFourYears = 0,
      std::int32_t aDoseCountForFourtyFivetoSixtyFourYears = 0,
      std::int32_t aDoseCountForGreaterThanSixtyFiveYears = 0, std::int32_t anUnknown = 0,
      std::int32_t aTotalDoses = 0, std::int32_t aUserDefinedCategory1 = 0,
      std::int32_t aUserDefinedCategory2 = 0, std::int32_t aUserDefinedCategory3 = 0);

  // Records a shipment of one lot from a depot to a provider: added to the
  // distribution of the same key if there is one, else entered as a new order,
  // which takes two keys. Throws 20021, 20022, 2000, 20023, 20024, 20025, 13, 20068,
  // 20052, 94, 20018, 6, 20004, 20096, and what the validations of the two PINs and
  // the vaccine throw.
  void DepotProviderOrderUpdate(const Text& aShipmentDate, const Text& aDepotID, const Text& aPIN,
                                const Text& aVaccine, std::int32_t aDoseCount,
                                const Text& aLotNumber, const Text& anExcessAllow = "1",
                                const Text& anOrderDate = {});

  // Writes the eight counts of one age group (1 to 4) of a provider's enrollment,
  // adding its row when there is none. Throws 20098 to 20118, 20133, 20089, 20090,
  // 6.
  void providerEnrollmentAddUpdate(const Text& aPIN, const Text& aSource, const Text& aAgeGroup,
                                   const Text& aAll, const Text& aMedicaid, const Text& aUninsured,
                                   const Text& aAmIndian, const Text& aFQHC_RHC, const Text& aVFC,
                                   const Text& aG317, const Text& aState);

  // Sets six attributes of an existing provider. Throws 2000, 20119, 20061, 20120
  // to 20123, 20132, 20073, 20125, 20124, 20004, 6, and what the validations of the
  // PIN and its status throw.
  void providerAdditionalInfoUpdate(const Text& aPIN, const Text& aProviderType,
                                    const Text& aClassification, const Text& aCurrentVFCCert,
                                    const Text& aCohort, const Text& aEmpIdNum,
                                    const Text& aQuorvin);

  // Adds a physician of a provider, or updates the fields that are not blank of
  // the one with that name. Throws 2000, 20126, 20127, 20131, 20096, 20097.
  void physicianAddUpdate(const Text& aPIN, const Text& aLastName, const Text& aFirstName,
                          const Text& aMiddleInitial, const Text& aTitle, const Text& aSiteMedID,
                          const Text& aMedicaidNum, const Text& aLicenseNum);

  // Adds a provider's counted stock of one vaccine on a day. Throws 20134, 20135,
  // 20138, 20136, 6, 20051, 20086, 20139, 20096, and what the validation of the PIN
  // throws.
  void provinvAdd(const Text& aPIN, const Text& aVacc, const Text& aInv, const Text& aIdate);

  // Removes every physician of a provider, whose PIN is compared as it is given.
  // Throws what the validation of the PIN and its status throws.
  void physicianDeleteByPin(const Text& aPIN);

  // Notifies the host of "Vaccine is Active" or "Vaccine is inactive". Writes no
  // lines of its own and adds nothing to an error.
  void CheckVaccActive(const Text& aVaccine);

 private:
  std::unique_ptr<Service> service_;
};

}  // namespace lotrix

#endif

// The routines that guard every write.
//
// A routine returns when the value passes, with a Boolean where it has one to
// give, and throws one catalogue error when it does not: the first failing check
// wins. Every routine logs its Begin line, its End line on a normal return and a
// Problem line when it fails, by which time its recordset is closed. Its caller's
// values stay as they are. None of them writes to the database; none closes the
// connection.
#ifndef LOTRIX_SRC_VALIDATION_VALIDATION_H
#define LOTRIX_SRC_VALIDATION_VALIDATION_H

#include <array>
#include <cstdint>
#include <string>

#include "lotrix/connection.h"
#include "src/platform/trace_log.h"

namespace lotrix {

// --- providers.cpp ---------------------------------------------------------

// Throws 20065, 20066, 20067.
void ValidateSubdivision(TraceLog& log, const std::string& subdivision, Connection& connection);

// Neither the second line nor the zip code is looked at. Throws 20006, 20007,
// 20008.
void ValidateShippingAddress(TraceLog& log, const std::string& address1,
                             const std::string& address2, const std::string& city,
                             const std::string& zipCode, const std::string& state,
                             Connection& connection);

// One active depot (sector 30 or 31). Throws 20078, 20080, 20014, 20015.
void ValidateDepotPIN(TraceLog& log, const std::string& pin, Connection& connection);

// Throws 20072, 20084.
void ValidateNewProviderPIN(TraceLog& log, const std::string& pin);

// True for one provider (sectors 10 to 29), false for none. Throws 20078, 20079,
// 2000, 20005, 20003, and what ValidateProviderActiveStatus throws.
[[nodiscard]] bool ValidateProviderPIN(TraceLog& log, const std::string& pin, bool checkActive,
                                       Connection& connection);

// Throws 20005, 20083.
void ValidateProviderActiveStatus(TraceLog& log, const std::string& pin, Connection& connection);

// Whether the provider may order varicella vaccine. Throws 20078, 20079, 2000,
// 20005, 20003.
[[nodiscard]] bool ValidateProvideraVaricellaEligibility(TraceLog& log, const std::string& pin,
                                                         Connection& connection);

// Whether one row of the sector reference has this provider sector. Throws 20031.
[[nodiscard]] bool ValidateSector(TraceLog& log, std::int32_t sector, Connection& connection);

// Whether the provider has its one row of enroll. Throws 20089, 20090.
[[nodiscard]] bool ValidateEnrollmentRecord(TraceLog& log, const std::string& pin,
                                            Connection& connection);

// Whether one physician has that provider and name. Throws 20096, 20097.
[[nodiscard]] bool ValidatePhysicnRecord(TraceLog& log, const std::string& pin,
                                         const std::string& lastName, const std::string& firstName,
                                         Connection& connection);

// --- vaccines.cpp ----------------------------------------------------------

// Active is a vaccine with a row of pvaccref whose locactiv is false.
[[nodiscard]] bool ValidateVaccineActiveStatus(TraceLog& log, const std::string& vaccine,
                                               Connection& connection);

// Against vaccref. Throws 13 and 6 for a dose that is no number, 20087, 20088.
void ValidateDoseSeriesNumber(TraceLog& log, const std::string& dose, const std::string& vaccine,
                              Connection& connection);
// Against pvaccref.
void ValidateDoseSeriesNumberPvaccref(TraceLog& log, const std::string& dose,
                                      const std::string& vaccine, Connection& connection);

// These two write their End line twice and no Begin line. Throw 20051, 20016,
// 20086.
void ValidateAgainstVaccRefTable(TraceLog& log, const std::string& vaccine, Connection& connection,
                                 bool checkActive);
void ValidateAgainstpVaccRefTable(TraceLog& log, const std::string& vaccine, Connection& connection,
                                  bool checkActive);

// --- values.cpp ------------------------------------------------------------

// "Y" or "N", in either case.
[[nodiscard]] bool ValidateActiveValue(TraceLog& log, const std::string& activeCode);

// Exactly "(999) 999-9999", any characters for the nines.
[[nodiscard]] bool ValidatePhoneFaxFormat(TraceLog& log, const std::string& number);

// Throws 20073.
void ValidateVFCCertDate(TraceLog& log, const std::string& date);

// 1 to 5; writes no End line. Throws 13, 6, 20068.
void ValidateExcessAllowance(TraceLog& log, const std::string& excessAllowance);

// Throws 20029, and 6 when the sum leaves the 32-bit range on the way.
void ValidateTotalDoses(TraceLog& log, const std::array<std::int32_t, 13>& groups,
                        std::int32_t total);

// --- orders.cpp ------------------------------------------------------------

// Whether one open order with that key exists. Throws 20054, 20055, and what
// ValidateEventDateManufacturerProviderOrder throws, which it asks first.
[[nodiscard]] bool ValidateDuplicateManufacturerOrder(TraceLog& log, const std::string& orderDate,
                                                      const std::string& pin,
                                                      const std::string& vaccine,
                                                      const std::string& fundingCode,
                                                      Connection& connection);

// Refuses an order that has been passed on already. Throws 20070, 20071, 20055.
void ValidateEventDateManufacturerProviderOrder(TraceLog& log, const std::string& orderDate,
                                                const std::string& pin, const std::string& vaccine,
                                                const std::string& fundingCode,
                                                Connection& connection);

// Throws 20047, 20048, 20049, 13, 6, 20093, 20046.
void ValidateFundingCodeandPO(TraceLog& log, const std::string& fundingCode,
                              const std::string& statePO, Connection& connection);

// Whether one distribution of that key exists. The order date has no part in it.
// Throws 20018.
[[nodiscard]] bool ValidateDuplicateDepotProviderOrder(
    TraceLog& log, const std::string& orderDate, const std::string& shipmentDate,
    const std::string& depotPin, const std::string& pin, const std::string& vaccine,
    const std::string& lotNumber, Connection& connection);

// --- inventory.cpp ---------------------------------------------------------

// A stock row for the vaccine and the lot, whose dashes do not count. Throws
// 20034.
void ValidateVaccineLot(TraceLog& log, const std::string& vaccine, const std::string& lotNumber,
                        Connection& connection);

// No order between the two, and no bound, is asked for. Throws 20074.
void ValidateProviderInventoryAdjustDates(TraceLog& log, const std::string& entryDate,
                                          const std::string& transactionDate);

// Exactly "1" or "2". Throws 20085.
void ValidateVaccAdminSector(TraceLog& log, const std::string& sector);

// Throws 20036, 20037.
void ValidateActionCode(TraceLog& log, const std::string& adjustmentType, Connection& connection);

// Whether one adjustment of that key exists. Throws 20039, 20038.
[[nodiscard]] bool ValidateDuplicateProviderInventoryAdjustment(
    TraceLog& log, const std::string& transactionDate, std::int32_t actionCode,
    const std::string& sourcePin, const std::string& pin, const std::string& vaccine,
    const std::string& lotNumber, Connection& connection);

// Whether one report of that key exists. Throws 20032.
[[nodiscard]] bool ValidateDuplicateDosesAdmin(TraceLog& log, const std::string& pin,
                                               const std::string& vaccine, const std::string& dose,
                                               const std::string& sector, const std::string& date,
                                               Connection& connection);

}  // namespace lotrix

#endif

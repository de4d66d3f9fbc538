#include "src/errors/raise_error.h"
#include "src/platform/dates.h"
#include "src/platform/frame.h"
#include "src/utility/sql_text.h"
#include "src/validation/count.h"
#include "src/validation/validation.h"

namespace lotrix {

void ValidateVaccineLot(TraceLog& log, const std::string& vaccine, const std::string& lotNumber,
                        Connection& connection) {
  InFrame(log, {"ValidateVaccineLot"}, [&] {
    const std::int32_t count =
        ReadCount(Statement() << "SELECT count(*) FROM stock "
                              << "WHERE ltrim(rtrim(vaccine)) = '" << vaccine << "' "
                              << "AND ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = '"
                              << RemoveDashes(lotNumber) << "'",
                  connection, Records::kAtLeastOne, kErrorVerifyingLotNumber);
    if (count < 1) RaiseError(kErrorVerifyingLotNumber);
  });
}

void ValidateProviderInventoryAdjustDates(TraceLog& log, const std::string& entryDate,
                                          const std::string& transactionDate) {
  InFrame(log, {"ValidateProviderInventoryAdjustDates"}, [&] {
    if (!TextToDate(entryDate)) RaiseError(kInvalidEntryDate);
    if (!TextToDate(transactionDate)) RaiseError(kInvalidTransactionDate);
  });
}

void ValidateVaccAdminSector(TraceLog& log, const std::string& sector) {
  InFrame(log, {"ValidateVaccAdminSector"}, [&] {
    if (sector != "1" && sector != "2") RaiseError(kInvalidDosesAdminSector);
  });
}

void ValidateActionCode(TraceLog& log, const std::string& adjustmentType, Connection& connection) {
  InFrame(log, {"ValidateActionCode"}, [&] {
    const std::int32_t count =
        ReadCount(Statement() << "SELECT count(*) FROM actref "
                              << "WHERE ltrim(rtrim(status)) = '" << adjustmentType << "' ",
                  connection, Records::kAtLeastOne, kErrorVerifyingAdjustmentType);
    if (!OneExists(count, kDuplicateAdjustmentType, kErrorVerifyingAdjustmentType)) {
      RaiseError(kErrorVerifyingAdjustmentType);
    }
  });
}

bool ValidateDuplicateProviderInventoryAdjustment(
    TraceLog& log, const std::string& transactionDate, std::int32_t actionCode,
    const std::string& sourcePin, const std::string& pin, const std::string& vaccine,
    const std::string& lotNumber, Connection& connection) {
  return InFrame(log, {"ValidateDuplicateProviderInventoryAdjustment"}, [&] {
    const std::int32_t count =
        ReadCount(Statement() << "SELECT count(*) "
                              << "FROM distrib "
                              << "WHERE action = " << actionCode << " "
                              << "AND ltrim(rtrim(pin)) = '" << pin << "' "
                              << "AND ltrim(rtrim(vaccine)) = '" << vaccine << "' "
                              << "AND ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = '"
                              << RemoveDashes(lotNumber) << "' "
                              << "AND dateout = {" << transactionDate << "} "
                              << "AND ltrim(rtrim(frompin)) = '" << sourcePin << "'",
                  connection, Records::kAtLeastOne, kErrorLookingForAdjustment);
    return OneExists(count, kMoreThanOneAdjustment, kErrorLookingForAdjustment);
  });
}

bool ValidateDuplicateDosesAdmin(TraceLog& log, const std::string& pin, const std::string& vaccine,
                                 const std::string& dose, const std::string& sector,
                                 const std::string& date, Connection& connection) {
  return InFrame(log, {"ValidateDuplicateDosesAdmin"}, [&] {
    const std::int32_t count =
        ReadCount(Statement() << "SELECT count(*) "
                              << "FROM DosesAdm "
                              << "WHERE ltrim(rtrim(pin)) = '" << pin << "' "
                              << "AND ltrim(rtrim(vaccine))='" << vaccine << "' "
                              << "AND dose = " << dose << " "
                              << "AND sector = " << sector << " "
                              << "AND adate ={" << date << "} ",
                  connection, Records::kAtLeastOne, kErrorVerifyingDosesAdmin);
    return OneExists(count, kErrorVerifyingDosesAdmin, kErrorVerifyingDosesAdmin);
  });
}

}  // namespace lotrix

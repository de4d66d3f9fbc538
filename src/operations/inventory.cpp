// Inventory adjustments, counted stock, doses administered.
#include <cstdlib>
#include <limits>

#include "lotrix/component.h"
#include "src/database/service.h"
#include "src/errors/raise_error.h"
#include "src/platform/dates.h"
#include "src/platform/frame.h"
#include "src/platform/numbers.h"
#include "src/platform/text.h"
#include "src/utility/keys_and_lookups.h"
#include "src/utility/sql_text.h"
#include "src/validation/validation.h"

namespace lotrix {

namespace {

// The action code decides where the stock came from, and whether this door may
// write the movement at all.
std::string SourceOf(std::int32_t actionCode, const std::string& depotPin) {
  switch (actionCode) {
    case 2:
    case 3:
    case 4:
    case 5:
    case 6:
    case 7:
    case 11:
    case 12:
      return depotPin;
    case 8:
      return "NONE";
    case 1:
    case 9:
      RaiseError(kAdjustmentNotAllowed);
    default:
      RaiseError(kUnknownAdjustment);
  }
}

}  // namespace

void cLotrix::providerInventoryAdjustmentUpdate(const Text& aDepotPIN, const Text& anEntryDate,
                                                const Text& aTransactionDate,
                                                const Text& aTransactionType, const Text& aPIN,
                                                const Text& aVaccine, const Text& aLotNumber,
                                                std::int32_t aDoseCount) {
  Service& service = *service_;
  InFrame(service.log, {"providerInventoryAdjustmentUpdate"}, [&] {
    const std::string today = DateText(Today(service.clock));
    if (aDoseCount == 0) RaiseError(kAdjustmentDosesZero);

    const std::string depotPin = UpperCase(aDepotPIN);
    const std::string entryDate = UpperCase(anEntryDate);
    const std::string transactionDate = UpperCase(aTransactionDate);
    const std::string pin = UpperCase(aPIN);
    const std::string vaccine = UpperCase(aVaccine);
    const std::string lotNumber = UpperCase(aLotNumber);
    if (aDoseCount == std::numeric_limits<std::int32_t>::min()) {
      RaiseRuntimeError(RuntimeError::kOverflow);
    }
    const std::int32_t doseCount = std::abs(aDoseCount);

    if (IsBlank(entryDate)) RaiseError(kNullEntryDate);
    if (IsBlank(transactionDate)) RaiseError(kNullTransactionDate);
    ValidateProviderInventoryAdjustDates(service.log, entryDate, transactionDate);
    if (!ValidateProviderPIN(service.log, pin, false, service.ReadConnection())) {
      RaiseError(kProviderNotFound);
    }
    ValidateDepotPIN(service.log, depotPin, service.ReadConnection());
    ValidateVaccineLot(service.log, vaccine, lotNumber, service.ReadConnection());
    ValidateActionCode(service.log, aTransactionType, service.ReadConnection());
    const std::int32_t actionCode = ActionCodeOf(aTransactionType, service.ReadConnection());
    const std::string sourcePin = SourceOf(actionCode, depotPin);
    const bool exists = ValidateDuplicateProviderInventoryAdjustment(
        service.log, transactionDate, actionCode, sourcePin, pin, vaccine, lotNumber,
        service.ReadConnection());

    Statement statement;
    if (exists) {
      const std::int32_t doses =
          SumOf(CurrentDoses(actionCode, pin, vaccine, lotNumber, transactionDate, sourcePin,
                             service.ReadConnection()),
                doseCount);
      statement << "UPDATE distrib "
                << "SET doses  = " << doses << ", "
                << "chgdate = {" << today << "}, "
                << "userid = '" << kUserId << "' "
                << "WHERE action = " << actionCode << " "
                << "AND ltrim(rtrim(pin)) = '" << pin << "' "
                << "AND ltrim(rtrim(vaccine)) = '" << vaccine << "' "
                << "AND ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = '"
                << RemoveDashes(lotNumber) << "' "
                << "AND dateout = {" << transactionDate << "} "
                << "AND ltrim(rtrim(fromPIN)) = '" << sourcePin << "'";
    } else {
      const std::string status(GetKeyPrefix(actionCode, false));
      statement
          << "INSERT INTO distrib (input, dateout, frompin, pin, vaccine, lot, doses, action, "
          << "distid, notes, chgdate, status, shipped, userid) values"
          << " ( {" << entryDate << "}, "
          << " {" << transactionDate << "}, '" << sourcePin << "', '" << pin << "', '" << vaccine
          << "', '" << lotNumber << "', " << doseCount << ", " << actionCode
          << ", 0, 'Entered from Quorvin front-end.', "
          << " {" << today << "}, '" << status << "', 0, '" << kUserId << "')";
    }
    static_cast<void>(service.ReadConnection().Execute(statement));
  });
}

void cLotrix::provinvAdd(const Text& aPIN, const Text& aVacc, const Text& aInv,
                         const Text& aIdate) {
  Service& service = *service_;
  // The trace knows this member by another name, and not by an End line.
  InFrame(service.log, {.name = "provinvAddUpdate", .end = ""}, [&] {
    const std::string today = DateText(Today(service.clock));
    const std::string vaccine = UpperCase(aVacc);
    // Whether there is such a provider is not asked.
    static_cast<void>(ValidateProviderPIN(service.log, aPIN, false, service.ReadConnection()));
    if (IsBlank(vaccine)) RaiseError(kNullInventoryVaccine);
    if (IsBlank(aInv)) RaiseError(kNullInventory);
    if (IsBlank(aIdate)) RaiseError(kNullInventoryDate);
    if (!IsNumeric(aInv)) RaiseError(kNonNumericInventory);
    const std::int32_t doses = TextToLong(aInv);
    ValidateAgainstpVaccRefTable(service.log, vaccine, service.ReadConnection(), true);
    const auto inventoryDate = TextToDate(aIdate);
    if (!inventoryDate) RaiseError(kInvalidInventoryDate);
    const std::int32_t key = GetNextID(service, "provhas");

    const Statement statement =
        Statement()
        << "INSERT INTO provhas (pin, vaccine, doses, chgdate, idate, provhasid, userid) "
        << "VALUES ( '" << aPIN << "', '" << vaccine << "', " << doses << ", "
        << "{" << today << "}, {" << DateText(*inventoryDate) << "}, " << key << ", '" << kUserId
        << "') ";
    service.log.Information({statement.text()});
    RunStatement(statement, service.ReadConnection());
  });
}

void cLotrix::DosesAdministeredUpdate(
    const Text& aReportingDate, const Text& aPIN, const Text& aVaccine, const Text& aDoseInSeries,
    const Text& aSector, std::int32_t aDoseCountLessThanOne, std::int32_t aDoseCountForOneYear,
    std::int32_t aDoseCountForTwoYears, std::int32_t aDoseCountForThreetoFourYears,
    std::int32_t aDoseCountForFiveYears, std::int32_t aDoseCountForSixtoNineYears,
    std::int32_t aDoseCountForTentoFourteenYears, std::int32_t aDoseCountForFifteentoNineteenYears,
    std::int32_t aDoseCountForTwentytoTwentyFourYears,
    std::int32_t aDoseCountForTwentyFivetoFourtyFourYears,
    std::int32_t aDoseCountForFourtyFivetoSixtyFourYears,
    std::int32_t aDoseCountForGreaterThanSixtyFiveYears, std::int32_t anUnknown,
    std::int32_t aTotalDoses, std::int32_t aUserDefinedCategory1,
    std::int32_t aUserDefinedCategory2, std::int32_t aUserDefinedCategory3) {
  Service& service = *service_;
  InFrame(service.log, {"DosesAdministeredUpdate"}, [&] {
    const std::string reportingDate = UpperCase(aReportingDate);
    const std::string pin = UpperCase(aPIN);
    const std::string vaccine = UpperCase(aVaccine);
    const std::string doseInSeries = UpperCase(aDoseInSeries);

    if (IsBlank(reportingDate)) RaiseError(kNullReportDate);
    if (IsBlank(vaccine)) RaiseError(kNullVaccineName);
    if (IsBlank(pin)) RaiseError(kNullPinAsCode);
    ValidateVaccAdminSector(service.log, aSector);
    const std::array<std::int32_t, 13> g = {aDoseCountLessThanOne,
                                            aDoseCountForOneYear,
                                            aDoseCountForTwoYears,
                                            aDoseCountForThreetoFourYears,
                                            aDoseCountForFiveYears,
                                            aDoseCountForSixtoNineYears,
                                            aDoseCountForTentoFourteenYears,
                                            aDoseCountForFifteentoNineteenYears,
                                            aDoseCountForTwentytoTwentyFourYears,
                                            aDoseCountForTwentyFivetoFourtyFourYears,
                                            aDoseCountForFourtyFivetoSixtyFourYears,
                                            aDoseCountForGreaterThanSixtyFiveYears,
                                            anUnknown};
    ValidateTotalDoses(service.log, g, aTotalDoses);
    const std::int32_t categoryTotal =
        SumOf(SumOf(aUserDefinedCategory1, aUserDefinedCategory2), aUserDefinedCategory3);
    if (!ValidateProviderPIN(service.log, pin, false, service.ReadConnection())) {
      RaiseError(kProviderNotFound);
    }
    if (vaccine != "MMR-V") {
      ValidateAgainstpVaccRefTable(service.log, vaccine, service.ReadConnection(), false);
      ValidateDoseSeriesNumberPvaccref(service.log, doseInSeries, vaccine,
                                       service.ReadConnection());
    } else {
      ValidateAgainstVaccRefTable(service.log, vaccine, service.ReadConnection(), false);
      ValidateDoseSeriesNumber(service.log, doseInSeries, vaccine, service.ReadConnection());
    }
    // An update takes a key as well, and does not store it.
    const std::int32_t key = GetNextID(service, "Dosesadm");
    const bool exists = ValidateDuplicateDosesAdmin(
        service.log, pin, vaccine, doseInSeries, aSector, reportingDate, service.ReadConnection());

    const std::string today = DateText(Today(service.clock));
    Statement statement;
    if (exists) {
      statement << "UPDATE DosesAdm "
                << " SET g1=" << g[0] << ", "
                << " g2=" << g[1] << ", "
                << " g3=" << g[2] << ", "
                << " g4=" << g[3] << ", "
                << " g5=" << g[4] << ", "
                << " g6=" << g[5] << ", "
                << " g7=" << g[6] << ", "
                << " g8=" << g[7] << ", "
                << " g9=" << g[8] << ", "
                << " g10=" << g[9] << ", "
                << " g11=" << g[10] << ", "
                << " g12=" << g[11] << ", "
                << " g13=" << g[12] << ", "
                << " RowTot=" << aTotalDoses << ", "
                << " dauzr1=" << aUserDefinedCategory1 << ", "
                << " dauzr2=" << aUserDefinedCategory2 << ", "
                << " dauzr3=" << aUserDefinedCategory3 << ", "
                << " dauzr4=0,  dauzr5=0,  dauzr6=0,  dauzr7=0,  dauzr8=0, "
                << " dauzrTot=" << categoryTotal << ", "
                << " chgdate = {" << today << "}, "
                << " userid = '" << kUserId << "' "
                << " WHERE  Pin = '" << pin << "' "
                << " AND    ltrim(rtrim(vaccine))='" << vaccine << "' "
                << " AND    Dose = " << doseInSeries << " "
                << " AND    sector = " << aSector << " "
                << " AND    aDate = {" << reportingDate << "} ";
    } else {
      statement << "INSERT INTO DosesAdm (adate, pin, sector, vaccine, position, dose, "
                << "g1, g2, g3, g4, g5, g6, g7, g8, g9, g10, g11, g12, g13, rowtot, "
                << "dauzr1, dauzr2, dauzr3, dauzr4, dauzr5, dauzr6, dauzr7, dauzr8, dauzrtot, "
                << "chgdate, userid, dosesadmid) "
                << "VALUES ( "
                << "{" << reportingDate << "}, "
                << "'" << pin << "', " << aSector << ", "
                << "'" << vaccine << "', "
                << "0, " << doseInSeries << ", ";
      for (const std::int32_t count : g) statement << count << ", ";
      statement << aTotalDoses << ", " << aUserDefinedCategory1 << ", " << aUserDefinedCategory2
                << ", " << aUserDefinedCategory3 << ", "
                << "0, 0, 0, 0, 0, " << categoryTotal << ", "
                << "{" << today << "}, "
                << "'" << kUserId << "', " << key << ")";
    }
    RunStatement(statement, service.ReadConnection());
  });
}

}  // namespace lotrix

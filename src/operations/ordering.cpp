// Orders of vaccine.
#include "lotrix/component.h"
#include "src/database/service.h"
#include "src/errors/raise_error.h"
#include "src/platform/dates.h"
#include "src/platform/frame.h"
#include "src/platform/numbers.h"
#include "src/platform/text.h"
#include "src/resultset/recordset_conversion.h"
#include "src/utility/keys_and_lookups.h"
#include "src/utility/sql_text.h"
#include "src/validation/validation.h"

namespace lotrix {

void cLotrix::manufacturerProviderOrderCreateUpdate(const Text& anOrderDate, const Text& aPIN,
                                                    const Text& aVaccine, std::int32_t aDoseCount,
                                                    const Text& aFundingSource,
                                                    const Text& anExcessAllowance,
                                                    const Text& aStatePO, const Text& aMfg) {
  Service& service = *service_;
  InFrame(service.log, {"manufacturerProviderOrderCreateUpdate"}, [&] {
    if (aDoseCount < 1) RaiseError(kOrderDosesNotPositive);
    if (IsBlank(aFundingSource)) RaiseError(kNullFundingSource);

    const std::string orderDate = UpperCase(anOrderDate);
    const std::string pin = UpperCase(aPIN);
    const std::string vaccine = UpperCase(aVaccine);
    const std::string fundingSource = UpperCase(aFundingSource);
    const std::string excessAllowance =
        IsBlank(anExcessAllowance) ? "1" : UpperCase(anExcessAllowance);
    const std::string statePO = IsBlank(aStatePO) ? "" : UpperCase(aStatePO);

    if (!ValidateProviderPIN(service.log, pin, true, service.ReadConnection())) {
      RaiseError(kProviderNotFound);
    }
    if (IsBlank(orderDate)) RaiseError(kNullOrderDate);
    if (!TextToDate(orderDate)) RaiseError(kInvalidOrderDate);
    const bool isVaricella = vaccine == "VAR";
    if (isVaricella &&
        !ValidateProvideraVaricellaEligibility(service.log, pin, service.ReadConnection())) {
      RaiseError(kProviderNotEligibleForVaricella);
    }
    ValidateAgainstpVaccRefTable(service.log, vaccine, service.ReadConnection(), true);
    ValidateFundingCodeandPO(service.log, fundingSource, statePO, service.ReadConnection());
    ValidateExcessAllowance(service.log, excessAllowance);
    const bool exists = ValidateDuplicateManufacturerOrder(service.log, orderDate, pin, vaccine,
                                                           fundingSource, service.ReadConnection());

    const bool isInfluenza = vaccine == "FLU" || vaccine == "FLU-PF";
    Statement statement;
    if (exists) {
      // The new count replaces the old one. That the two together fit is checked
      // all the same.
      static_cast<void>(SumOf(
          CurrentOrderedDoses(orderDate, pin, vaccine, fundingSource, service.ReadConnection()),
          aDoseCount));
      const Contract contract =
          VerifyVaccineContract(service, orderDate, vaccine, aDoseCount, aMfg);
      if (isInfluenza) {
        statement << "UPDATE influenza ";
      } else {
        statement << "UPDATE neworder ";
      }
      statement << "SET orddose = " << aDoseCount << ", "
                << "fdose1 = " << aDoseCount << ", "
                << "chgdate = {" << DateText(Today(service.clock)) << "}, "
                << "userid = '" << kUserId << "', "
                << "size = " << contract.pkgsize << ", "
                << "cost = " << contract.cost << " "
                << "WHERE ltrim(rtrim(pin)) = '" << pin << "' "
                << "AND ltrim(rtrim(vaccine)) = '" << vaccine << "' "
                << "AND orddate = {" << orderDate << "} "
                << "AND ltrim(rtrim(fcode1)) = '" << fundingSource << "'";
    } else {
      const Contract contract =
          VerifyVaccineContract(service, orderDate, vaccine, aDoseCount, aMfg);
      if (isInfluenza) {
        statement << "INSERT INTO influenza( ";
      } else {
        statement << "INSERT INTO neworder( ";
      }
      statement << "ordpin, rectype, pin, orddate, vaccine, orddose, fcode1, fdose1, size, cost, "
                << "maker, contract, ndcno, chgdate, userid, descrip ) VALUES( ";
      if (isVaricella) {
        statement << "'MERCKC', '2', ";
      } else {
        statement << " '',  '5', ";
      }
      statement << "'" << pin << "', "
                << "{" << orderDate << "}, "
                << "'" << vaccine << "'," << aDoseCount << ", "
                << "'" << fundingSource << "', " << aDoseCount << ", " << contract.pkgsize << ", "
                << contract.cost << ", "
                << "'" << contract.maker << "', "
                << "'" << contract.contractid << "', "
                << "'" << contract.ndcno << "', "
                << "{" << orderDate << "}, "
                << "'" << kUserId << "', ";
      if (isVaricella) {
        statement << " '' ";
      } else {
        statement << "'" << contract.descrip << "'";
      }
      statement << ")";
    }
    static_cast<void>(service.ReadConnection().Execute(statement));
  });
}

void cLotrix::DepotProviderOrderUpdate(const Text& aShipmentDate, const Text& aDepotID,
                                       const Text& aPIN, const Text& aVaccine,
                                       std::int32_t aDoseCount, const Text& aLotNumber,
                                       const Text& anExcessAllow, const Text& anOrderDate) {
  Service& service = *service_;
  InFrame(service.log, {"DepotProviderOrderUpdate"}, [&] {
    const std::string shipmentDate = UpperCase(aShipmentDate);
    const std::string depotPin = UpperCase(aDepotID);
    const std::string pin = UpperCase(aPIN);
    const std::string lotNumber = UpperCase(aLotNumber);
    const std::string vaccine = UpperCase(aVaccine);
    const std::string excessAllow = IsBlank(anExcessAllow) ? "1" : anExcessAllow.str();

    if (IsBlank(shipmentDate)) RaiseError(kNullShipmentDate);
    if (IsBlank(depotPin)) RaiseError(kNullDepotPin);
    if (IsBlank(pin)) RaiseError(kNullPinAsCode);
    if (IsBlank(vaccine)) RaiseError(kNullVaccineName);
    if (IsBlank(lotNumber)) RaiseError(kNullLotNumber);
    if (aDoseCount < 1) RaiseError(kOrderDosesNotPositive);
    const std::string orderDate = IsBlank(anOrderDate) ? shipmentDate : anOrderDate.str();
    ValidateExcessAllowance(service.log, excessAllow);

    Statement contractQuery;
    contractQuery << "SELECT * FROM pvaccref "
                  << "WHERE ltrim(rtrim(vaccine)) = '" << vaccine << "' ";
    if (vaccine == "MCV4") {
      contractQuery << "AND pkgsize=5";
    } else {
      contractQuery << "AND pkgsize=10";
    }
    Recordset contracts;
    OpenQuery(contracts, contractQuery, service.ReadConnection());
    if (contracts.RecordCount() < 1) RaiseError(kErrorVerifyingVaccineContract);
    const Contract contract = ReadContract(contracts);
    CloseRecordset(contracts);

    const bool exists =
        ValidateDuplicateDepotProviderOrder(service.log, orderDate, shipmentDate, depotPin, pin,
                                            vaccine, lotNumber, service.ReadConnection());

    Statement statement;
    if (exists) {
      Recordset shipped;
      OpenQuery(shipped,
                Statement() << "SELECT doses FROM distrib "
                            << "WHERE  ltrim(rtrim(FromPin)) = '" << depotPin << "' "
                            << "AND    ltrim(rtrim(pin)) ='" << pin << "' "
                            << "AND    ltrim(rtrim(vaccine))='" << vaccine << "' "
                            << "AND    ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),'')))='"
                            << RemoveDashes(lotNumber) << "' "
                            << "AND    dateout={" << shipmentDate << "} "
                            << "AND    action=1",
                service.ReadConnection());
      if (shipped.RecordCount() != 1) RaiseError(kErrorVerifyingDepotProviderOrder);
      const std::int32_t doses = SumOf(FirstLongOrZero(shipped), aDoseCount);
      CloseRecordset(shipped);
      statement << "UPDATE distrib SET doses = " << doses << ", "
                << "units = 0, "
                << "fdose1 = " << doses << ", "
                << "chgdate = {" << DateText(Today(service.clock)) << "}, "
                << "userid = '" << kUserId << "' "
                << "WHERE  ltrim(rtrim(FromPin)) = '" << depotPin << "' "
                << "AND    ltrim(rtrim(pin)) = '" << pin << "' "
                << "AND    ltrim(rtrim(vaccine))= '" << vaccine << "' "
                << "AND    ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),'')))= '"
                << RemoveDashes(lotNumber) << "' "
                << "AND    dateout= {" << shipmentDate << "} "
                << "AND    action= 1";
    } else {
      ValidateDepotPIN(service.log, depotPin, service.ReadConnection());
      if (!ValidateProviderPIN(service.log, pin, true, service.ReadConnection())) {
        RaiseError(kProviderNotFound);
      }
      ValidateAgainstpVaccRefTable(service.log, vaccine, service.ReadConnection(), true);
      // The order stores none of these; both key counters go on all the same.
      static_cast<void>(GetNextID(service, "distrib"));
      static_cast<void>(GetNextID(service, "seekdist"));
      static_cast<void>(GetKeyPrefix(1, false));
      const std::string trimmedPin(TrimBlanks(pin));
      statement << "INSERT INTO neworder(rectype, pin, orddate, orddose, size, vaccine, "
                << "maker, cost, contract, fcode1, fdose1, chgdate, userid, "
                << "ndcno, descrip) VALUES"
                << "('5', "
                << "'" << trimmedPin << "', "
                << " {" << shipmentDate << "}, " << aDoseCount << ", " << contract.pkgsize << ", "
                << "'" << vaccine << "', "
                << "'" << contract.maker << "', " << contract.cost << ", "
                << "'" << contract.contractid << "', "
                << "'1', " << aDoseCount << ", "
                << " {" << shipmentDate << "}, "
                << "'" << kUserId << "', "
                << "'" << contract.ndcno << "', "
                << "'" << contract.descrip << "') ";
      service.log.Information({statement.text()});
    }
    RunStatement(statement, service.ReadConnection());
  });
}

}  // namespace lotrix

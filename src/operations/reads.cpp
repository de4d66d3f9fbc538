// Orders, stock, the vaccine list, inventory on hand and a vaccine's status.
#include "lotrix/component.h"
#include "lotrix/error.h"
#include "src/database/service.h"
#include "src/errors/raise_error.h"
#include "src/platform/dates.h"
#include "src/platform/frame.h"
#include "src/platform/text.h"
#include "src/resultset/recordset_conversion.h"
#include "src/utility/keys_and_lookups.h"
#include "src/utility/sql_text.h"
#include "src/validation/validation.h"

namespace lotrix {

namespace {

cResultSet ReadTable(const Statement& query, Connection& connection) {
  Recordset records;
  OpenQuery(records, query, connection);
  cResultSet table = RecordsetToResultSet(records);
  CloseRecordset(records);
  return table;
}

void RequireShipmentDates(const std::string& begin, const std::string& end) {
  const auto beginDate = TextToDate(begin);
  if (!IsBlank(begin) && !beginDate) RaiseError(kInvalidShipmentBeginDate);
  if (IsBlank(end)) return;
  if (IsBlank(begin)) RaiseError(kInvalidShipmentDateRange);
  const auto endDate = TextToDate(end);
  if (!endDate) RaiseError(kInvalidShipmentEndDate);
  if (*endDate < *beginDate) RaiseError(kInvalidShipmentDateRange);
}

}  // namespace

cResultSet cLotrix::manufacturerProviderOrderRead(const Text& aPIN, const Text& aShipmentBeginDate,
                                                  const Text& aVaccine, const Text& aLotNumber,
                                                  const Text& aShipmentEndDate) {
  return InFrame(service_->log, {"manufacturerProviderOrderRead"}, [&] {
    if (IsBlank(aPIN)) RaiseError(kNullProviderPin);
    if (IsBlank(aShipmentBeginDate)) RaiseError(kNullShipmentDate);
    return stockTableRead(UpperCase(aPIN), UpperCase(aVaccine), UpperCase(aLotNumber),
                          UpperCase(aShipmentBeginDate), UpperCase(aShipmentEndDate));
  });
}

cResultSet cLotrix::stockTableRead(const Text& aPIN, const Text& aVaccine, const Text& aLotNumber,
                                   const Text& aShipmentBeginDate, const Text& aShipmentEndDate) {
  Service& service = *service_;
  return InFrame(service.log, {"stockTableRead"}, [&] {
    // An unknown provider is no failure here: its table is empty.
    if (!IsBlank(aPIN)) {
      static_cast<void>(ValidateProviderPIN(service.log, aPIN, true, service.ReadConnection()));
    }
    if (!IsBlank(aVaccine)) {
      ValidateAgainstpVaccRefTable(service.log, aVaccine, service.ReadConnection(), true);
    }
    RequireShipmentDates(aShipmentBeginDate, aShipmentEndDate);

    Statement filter;
    filter = AddWhereCondition(aVaccine, filter, "Vaccine");
    filter = AddWhereCondition(aPIN, filter, "Pin");
    if (!IsBlank(aLotNumber)) {
      BeginCondition(filter);
      filter << " ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = '" << RemoveDashes(aLotNumber)
             << "' ";
    }
    if (!IsBlank(aShipmentBeginDate)) {
      BeginCondition(filter);
      if (IsBlank(aShipmentEndDate)) {
        filter << " Datein = {" << aShipmentBeginDate << "} ";
      } else {
        filter << " Datein BETWEEN {" << aShipmentBeginDate << "} "
               << " AND {" << aShipmentEndDate << "} ";
      }
    }
    BeginCondition(filter);
    filter << " tracking != ' ' "
           << " and lot != ' ' ";

    Statement query = Statement() << "SELECT Pin, Datein, Doses, Lot, Vaccine, Maker, Expiry"
                                  << " FROM Stock" << filter << " order by datein desc ";
    return ReadTable(query.GiveTable(), service.ReadConnection());
  });
}

cResultSet cLotrix::vaccineReferenceTableRead() {
  Service& service = *service_;
  return InFrame(service.log, {"vaccineReferenceTableRead"}, [&] {
    return ReadTable(Statement() << "Select Distinct Vaccine From pVaccref",
                     service.ReadConnection());
  });
}

cResultSet cLotrix::inventoryOnHandRead(const Text& aDepotPIN, const Text& aVaccine) {
  Service& service = *service_;
  return InFrame(service.log, {"inventoryOnHandRead"}, [&] {
    // The one rule that is raised with its code alone as the number.
    if (IsBlank(aDepotPIN)) throw Error(kNullDepotPin.code, std::string(kNullDepotPin.text));
    const std::string depotPin = UpperCase(aDepotPIN);
    const std::string vaccine = UpperCase(aVaccine);
    ValidateDepotPIN(service.log, depotPin, service.ReadConnection());
    if (!IsBlank(vaccine)) {
      ValidateAgainstpVaccRefTable(service.log, vaccine, service.ReadConnection(), true);
    }

    Statement filter;
    filter = AddWhereCondition(vaccine, filter, "l.Vaccine");
    filter = AddWhereCondition(depotPin, filter, "l.Pin");
    filter << " AND l.Expiry >= "
           << " {" << DateText(Today(service.clock)) << "} "
           << " AND l.Size > 0 "
           << " AND l.Remain >= 0 "
           << " AND trim(l.Maker) is not NULL"
           << " AND trim(l.vaccine) == trim(v.vaccine)"
           << " AND v.locactiv = .T."
           << " ORDER BY l.Vaccine, l.Lot, l.Expiry";

    Statement query = Statement() << "Select l.Vaccine, l.Lot, l.Expiry, l.Maker, l.Remain, l.Size"
                                  << " From Lots l, pvaccref v" << filter;
    service.log.Information({query.text()});
    return ReadTable(query.GiveTable(), service.ReadConnection());
  });
}

void cLotrix::CheckVaccActive(const Text& aVaccine) {
  const TraceLog::Call call(service_->log);
  lotrix::Connection& connection = service_->ReadConnection();
  const bool active = ValidateVaccineActiveStatus(service_->log, aVaccine, connection);
  service_->notify(active ? "Vaccine is Active" : "Vaccine is inactive");
}

}  // namespace lotrix

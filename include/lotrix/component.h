// The service object.
#ifndef LOTRIX_COMPONENT_H
#define LOTRIX_COMPONENT_H

#include <cstdint>
#include <memory>
#include <string_view>

#include "lotrix/connection.h"
#include "lotrix/host.h"
#include "lotrix/result_set.h"
#include "lotrix/text.h"

namespace lotrix {

struct Service;

// One checked door to the vaccine-management database. An object is created and
// called by one thread; each has its own connection, and several share nothing
// but the database and the log file.
//
// Give it a connection string with openConnection; the first operation opens the
// connection, and so does the first one after closeConnection. An operation logs
// its Begin line, checks its arguments in a fixed order, runs its statements and
// logs its End line. The first thing that fails ends it: the object logs a
// Problem line and throws an Error with the source "LOTRIX DLL". A write changes
// one row with one statement, after its last check, so a call that throws has
// changed no row (only a key it took from the key table stays taken).
//
// Omitted optional texts are the empty text. Dates are texts in the order month,
// day, year.
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
  // 20025, 20091, 20004, 20076, 20075, 20092, 20042, 20052, and what the
  // validations of PIN, vaccine, funding, excess allowance and duplicates throw.
  void manufacturerProviderOrderCreateUpdate(const Text& anOrderDate, const Text& aPIN,
                                             const Text& aVaccine, std::int32_t aDoseCount,
                                             const Text& aFundingSource,
                                             const Text& anExcessAllowance = "1",
                                             const Text& aStatePO = {}, const Text& aMfg = {});

  // Notifies the host of "Vaccine is Active" or "Vaccine is inactive". Writes no
  // lines of its own and adds nothing to an error.
  void CheckVaccActive(const Text& aVaccine);

 private:
  std::unique_ptr<Service> service_;
};

}  // namespace lotrix

#endif

#include "src/errors/raise_error.h"
#include "src/platform/frame.h"
#include "src/platform/numbers.h"
#include "src/utility/sql_text.h"
#include "src/validation/count.h"
#include "src/validation/validation.h"

namespace lotrix {

namespace {

// How many orders of that key there are in the one state or the other: an order
// whose seekid is set has been passed on.
Statement OrdersOfKey(const std::string& orderDate, const std::string& pin,
                      const std::string& vaccine, const std::string& fundingCode, SqlText seekid) {
  return Statement() << "SELECT count(*) "
                     << "FROM neworder "
                     << "WHERE orddate = {" << orderDate << "} "
                     << "AND ltrim(rtrim(pin)) = '" << pin << "' "
                     << "AND ltrim(rtrim(vaccine)) = '" << vaccine << "' "
                     << "AND ltrim(rtrim(fcode1)) = '" << fundingCode << "' " << seekid;
}

}  // namespace

bool ValidateDuplicateManufacturerOrder(TraceLog& log, const std::string& orderDate,
                                        const std::string& pin, const std::string& vaccine,
                                        const std::string& fundingCode, Connection& connection) {
  return InFrame(log, {"ValidateDuplicateManufacturerOrder"}, [&] {
    ValidateEventDateManufacturerProviderOrder(log, orderDate, pin, vaccine, fundingCode,
                                               connection);
    const std::int32_t count =
        ReadCount(OrdersOfKey(orderDate, pin, vaccine, fundingCode, "AND seekid = 0"), connection,
                  Records::kExactlyOne, kErrorVerifyingManufacturerOrder);
    return OneExists(count, kMoreThanOneManufacturerOrder, kErrorVerifyingManufacturerOrder);
  });
}

void ValidateEventDateManufacturerProviderOrder(TraceLog& log, const std::string& orderDate,
                                                const std::string& pin, const std::string& vaccine,
                                                const std::string& fundingCode,
                                                Connection& connection) {
  InFrame(log, {"ValidateEventDateManufacturerProviderOrder"}, [&] {
    const std::int32_t count =
        ReadCount(OrdersOfKey(orderDate, pin, vaccine, fundingCode, "AND seekid <> 0"), connection,
                  Records::kExactlyOne, kErrorCheckingManufacturerOrderStatus);
    if (OneExists(count, kMoreThanOneManufacturerOrder, kErrorCheckingManufacturerOrderStatus)) {
      RaiseError(kManufacturerOrderAlreadySent);
    }
  });
}

void ValidateFundingCodeandPO(TraceLog& log, const std::string& fundingCode,
                              const std::string& statePO, Connection& connection) {
  InFrame(log, {"ValidateFundingCodeandPO"}, [&] {
    const std::int32_t count =
        ReadCount(Statement() << "SELECT count(*) FROM funding WHERE ltrim(rtrim(fundcode)) = '"
                              << fundingCode << "'",
                  connection, Records::kAtLeastOne, kErrorVerifyingFundingCode);
    if (!OneExists(count, kDuplicateFundingCodes, kErrorVerifyingFundingCode)) {
      RaiseError(kFundingCodeNotDefined);
    }
    const double code = TextToDouble(fundingCode);
    const bool federal = code == 1 || code == 2;
    if (federal && !IsBlank(statePO)) RaiseError(kStatePoNotNeeded);
    if (!federal && IsBlank(statePO)) RaiseError(kStatePoRequired);
  });
}

bool ValidateDuplicateDepotProviderOrder(TraceLog& log, const std::string& /*orderDate*/,
                                         const std::string& shipmentDate,
                                         const std::string& depotPin, const std::string& pin,
                                         const std::string& vaccine, const std::string& lotNumber,
                                         Connection& connection) {
  return InFrame(log, {"ValidateDuplicateDepotProviderOrder"}, [&] {
    const std::int32_t count =
        ReadCount(Statement() << "SELECT count(*) FROM distrib "
                              << "WHERE  ltrim(rtrim(FromPin)) = '" << depotPin << "' "
                              << "AND    ltrim(rtrim(pin)) ='" << pin << "' "
                              << "AND    ltrim(rtrim(vaccine))='" << vaccine << "' "
                              << "AND    ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),'')))='"
                              << RemoveDashes(lotNumber) << "' "
                              << "AND    dateout={" << shipmentDate << "} "
                              << "AND    action=1",
                  connection, Records::kAtLeastOne, kErrorVerifyingDepotProviderOrder);
    return OneExists(count, kErrorVerifyingDepotProviderOrder, kErrorVerifyingDepotProviderOrder);
  });
}

}  // namespace lotrix

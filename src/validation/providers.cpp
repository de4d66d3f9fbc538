#include "src/errors/raise_error.h"
#include "src/platform/frame.h"
#include "src/platform/text.h"
#include "src/platform/values.h"
#include "src/utility/keys_and_lookups.h"
#include "src/utility/sql_text.h"
#include "src/validation/count.h"
#include "src/validation/validation.h"

namespace lotrix {

namespace {

constexpr std::size_t kLongestPin = 6;

// The sectors of providers and of depots, first and last.
constexpr char kFirstProviderSector[] = "10";
constexpr char kLastProviderSector[] = "29";
constexpr char kFirstDepotSector[] = "30";
constexpr char kLastDepotSector[] = "31";

// A blank PIN is refused as not alphanumeric already; the blank test stays
// behind that as the rule has it.
void RequireProviderPinForm(const std::string& pin) {
  if (Utf16Length(pin) > kLongestPin) RaiseError(kPinTooLong);
  if (!IsAlphaNumeric(pin)) RaiseError(kProviderPinNotAlphanumeric);
  if (IsBlank(pin)) RaiseError(kNullProviderPin);
}

}  // namespace

void ValidateSubdivision(TraceLog& log, const std::string& subdivision, Connection& connection) {
  InFrame(log, {"ValidateSubdivision"}, [&] {
    const std::int32_t count =
        ReadCount(Statement() << "SELECT count(*) FROM subdiv WHERE ltrim(rtrim(subdiv)) = '"
                              << subdivision << "'",
                  connection, Records::kExactlyOne, kErrorVerifyingSubdivision);
    if (!OneExists(count, kDuplicateSubdivisions, kErrorVerifyingSubdivision)) {
      RaiseError(kSubdivisionNotFound);
    }
  });
}

void ValidateShippingAddress(TraceLog& log, const std::string& address1,
                             const std::string& /*address2*/, const std::string& city,
                             const std::string& /*zipCode*/, const std::string& state,
                             Connection& /*connection*/) {
  InFrame(log, {"ValidateShippingAddress"}, [&] {
    if (IsBlank(address1)) RaiseError(kNullShippingAddress);
    if (IsBlank(city)) RaiseError(kNullShippingCity);
    if (IsBlank(state)) RaiseError(kNullShippingState);
  });
}

void ValidateDepotPIN(TraceLog& log, const std::string& pin, Connection& connection) {
  InFrame(log, {"ValidateDepotPIN"}, [&] {
    const std::string upperPin = UpperCase(pin);
    if (Utf16Length(upperPin) > kLongestPin) RaiseError(kPinTooLong);
    if (!IsAlphaNumeric(upperPin)) RaiseError(kDepotPinNotAlphanumeric);
    const std::int32_t count = ReadCount(
        Statement() << "SELECT count(*) "
                    << "FROM provider "
                    << "WHERE ltrim(rtrim(active)) = 'Y' "
                    << "AND sector "
                    << "BETWEEN " << kFirstDepotSector << " AND " << kLastDepotSector << " "
                    << "AND ltrim(rtrim(pin)) = '" << upperPin << "'",
        connection, Records::kExactlyOne, kErrorVerifyingDepotPin);
    if (!OneExists(count, kDuplicateDepotPin, kErrorVerifyingDepotPin)) {
      RaiseError(kErrorVerifyingDepotPin);
    }
  });
}

void ValidateNewProviderPIN(TraceLog& log, const std::string& pin) {
  InFrame(log, {"ValidateNewProviderPIN"}, [&] {
    if (pin == "999999" || pin == "999998") RaiseError(kReservedProviderPin);
    if (pin == "0") RaiseError(kZeroProviderPin);
  });
}

bool ValidateProviderPIN(TraceLog& log, const std::string& pin, bool checkActive,
                         Connection& connection) {
  return InFrame(log, {"ValidateProviderPIN"}, [&] {
    const std::string upperPin = UpperCase(pin);
    RequireProviderPinForm(upperPin);
    const std::int32_t count =
        ReadCount(Statement() << "SELECT count(*) FROM provider WHERE Sector BETWEEN "
                              << kFirstProviderSector << " AND " << kLastProviderSector
                              << " AND ltrim(rtrim(pin)) = '" << upperPin << "'",
                  connection, Records::kExactlyOne, kErrorVerifyingProviderPin);
    const bool exists = OneExists(count, kDuplicateProviderPin, kErrorVerifyingProviderPin);
    if (exists && checkActive) ValidateProviderActiveStatus(log, upperPin, connection);
    return exists;
  });
}

void ValidateProviderActiveStatus(TraceLog& log, const std::string& pin, Connection& connection) {
  InFrame(log, {"ValidateProviderActiveStatus"}, [&] {
    const std::string upperPin = UpperCase(pin);
    Recordset providers;
    OpenQuery(providers,
              Statement() << "SELECT active FROM provider WHERE Sector BETWEEN "
                          << kFirstProviderSector << " AND " << kLastProviderSector
                          << " AND ltrim(rtrim(pin)) = '" << upperPin << "'",
              connection);
    if (providers.RecordCount() != 1) RaiseError(kErrorVerifyingProviderPin);
    const Value active = providers.Fields().Item(0).Value();
    const std::string status = std::holds_alternative<Null>(active) ? "N" : ToText(active);
    if (UpperCase(status) != "Y") RaiseError(kProviderInactive);
  });
}

bool ValidateProvideraVaricellaEligibility(TraceLog& log, const std::string& pin,
                                           Connection& connection) {
  return InFrame(log, {"ValidateProvideraVaricellaEligibility"}, [&] {
    const std::string upperPin = UpperCase(pin);
    RequireProviderPinForm(upperPin);
    const std::int32_t count =
        ReadCount(Statement() << "SELECT count(*) FROM provider WHERE ltrim(rtrim(pin)) = '"
                              << upperPin << "'"
                              << " and trim(codes)='V'",
                  connection, Records::kExactlyOne, kErrorVerifyingProviderPin);
    return OneExists(count, kDuplicateProviderPin, kErrorVerifyingProviderPin);
  });
}

bool ValidateSector(TraceLog& log, std::int32_t sector, Connection& connection) {
  return InFrame(log, {"ValidateSector"}, [&] {
    const std::int32_t count =
        ReadCount(Statement() << "SELECT count(*) FROM sectoref "
                              << "WHERE sector = " << sector << " "
                              << "AND sector BETWEEN " << kFirstProviderSector << " AND "
                              << kLastProviderSector,
                  connection, Records::kExactlyOne, kErrorVerifyingSector);
    // The message for a sector that is there twice speaks of a missing one.
    return OneExists(count, kNullSector, kErrorVerifyingSector);
  });
}

bool ValidateEnrollmentRecord(TraceLog& log, const std::string& pin, Connection& connection) {
  return InFrame(log, {"ValidateEnrollmentRecord"}, [&] {
    const std::int32_t count = ReadCount(
        Statement() << "SELECT count(*) FROM enroll WHERE ltrim(rtrim(pin)) = '" << pin << "'",
        connection, Records::kExactlyOne, kErrorReadingEnrollment);
    return OneExists(count, kDuplicateEnrollment, kErrorReadingEnrollment);
  });
}

bool ValidatePhysicnRecord(TraceLog& log, const std::string& pin, const std::string& lastName,
                           const std::string& firstName, Connection& connection) {
  return InFrame(log, {"ValidatePhysicnRecord"}, [&] {
    // The stored columns are compared untrimmed here.
    const std::int32_t count = ReadCount(
        Statement() << "SELECT count(*) FROM physicn WHERE pin = '" << pin << "' AND "
                    << "lastname = '" << lastName << "' AND firstname = '" << firstName << "' ",
        connection, Records::kExactlyOne, kErrorReadingPhysician);
    return OneExists(count, kDuplicatePhysician, kErrorReadingPhysician);
  });
}

}  // namespace lotrix

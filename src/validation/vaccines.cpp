#include "src/errors/raise_error.h"
#include "src/platform/frame.h"
#include "src/platform/numbers.h"
#include "src/utility/keys_and_lookups.h"
#include "src/validation/count.h"
#include "src/validation/validation.h"

namespace lotrix {

namespace {

void RequireDoseInSeries(const std::string& dose, const Statement& largestDose,
                         Connection& connection) {
  if (TextToLong(dose) < 1) RaiseError(kDoseInSeriesTooSmall);
  Recordset largest;
  OpenQuery(largest, largestDose, connection);
  if (TextToLong(dose) > FirstLongOrZero(largest)) RaiseError(kDoseInSeriesTooLarge);
}

void RequireVaccine(TraceLog& log, const std::string& vaccine, const Statement& query,
                    Connection& connection, bool checkActive) {
  const std::int32_t count = ReadCount(query, connection);
  if (count == 0) RaiseError(kVaccineNotAvailable);
  if (count < 0) RaiseError(kErrorVerifyingVaccineReference);
  if (checkActive && !ValidateVaccineActiveStatus(log, vaccine, connection)) {
    RaiseError(kVaccineInactive);
  }
}

}  // namespace

bool ValidateVaccineActiveStatus(TraceLog& log, const std::string& vaccine,
                                 Connection& connection) {
  return InFrame(log, {"ValidateVaccineActiveStatus"}, [&] {
    return ReadCount(Statement() << "SELECT count(*) FROM pvaccref WHERE ltrim(rtrim(vaccine)) == '"
                                 << vaccine << "' AND locactiv = .F.",
                     connection) >= 1;
  });
}

void ValidateDoseSeriesNumber(TraceLog& log, const std::string& dose, const std::string& vaccine,
                              Connection& connection) {
  InFrame(log, {"ValidateDoseSeriesNumber"}, [&] {
    RequireDoseInSeries(dose,
                        Statement()
                            << "SELECT MAX( maxno) FROM vaccref WHERE ltrim(rtrim(vaccine)) == '"
                            << vaccine << "' AND locactiv== 'Y'",
                        connection);
  });
}

void ValidateDoseSeriesNumberPvaccref(TraceLog& log, const std::string& dose,
                                      const std::string& vaccine, Connection& connection) {
  InFrame(log, {"ValidateDoseSeriesNumberPvaccref"}, [&] {
    RequireDoseInSeries(dose,
                        Statement()
                            << "SELECT MAX( maxno) FROM pvaccref WHERE ltrim(rtrim(vaccine)) == '"
                            << vaccine << "' AND locactiv=.F.",
                        connection);
  });
}

void ValidateAgainstVaccRefTable(TraceLog& log, const std::string& vaccine, Connection& connection,
                                 bool checkActive) {
  InFrame(log, {.name = "ValidateAgainstVaccRefTable", .begin = kEnd}, [&] {
    RequireVaccine(log, vaccine,
                   Statement() << "SELECT count(*) FROM vaccref WHERE ltrim(rtrim(vaccine)) == '"
                               << vaccine << "'",
                   connection, checkActive);
  });
}

void ValidateAgainstpVaccRefTable(TraceLog& log, const std::string& vaccine, Connection& connection,
                                  bool checkActive) {
  InFrame(log, {.name = "ValidateAgainstpVaccRefTable", .begin = kEnd}, [&] {
    RequireVaccine(log, vaccine,
                   Statement() << "SELECT count(*) FROM pvaccref WHERE ltrim(rtrim(vaccine)) == '"
                               << vaccine << "'",
                   connection, checkActive);
  });
}

}  // namespace lotrix

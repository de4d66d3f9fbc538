// Keys from the key table, and what the writes look up.
//
// None of these routines logs a line of its own or has a handler: what fails
// goes to the operation that called.
#ifndef LOTRIX_SRC_UTILITY_KEYS_AND_LOOKUPS_H
#define LOTRIX_SRC_UTILITY_KEYS_AND_LOOKUPS_H

#include <cstdint>
#include <string>
#include <string_view>

#include "lotrix/value.h"
#include "src/database/service.h"
#include "src/database/statement.h"

namespace lotrix {

// A row of the contract table.
struct Contract {
  std::string vaccine;
  std::string maker;
  Date begin;
  Date end;
  std::int32_t minbulk;
  std::int32_t unitsize;
  std::int32_t pkgsize;
  std::string ndcno;
  double cost;
  std::string contractid;
  std::string sel_maker;
  std::string dos_wind;
  std::string excfunds;
  std::string descrip;
};

// The contract row that a recordset stands on; its columns in the order of the
// record's fields. Throws 94 for a Null in any of them.
[[nodiscard]] Contract ReadContract(const Recordset& recordset);

// The next key of that table, stored as the last one handed out. Throws 20096
// when the key table has no row for it or several, and 6 behind the last 32-bit
// number; nothing is stored then. Clients that ask at the same moment get
// different keys.
[[nodiscard]] std::int32_t GetNextID(Service& service, const std::string& tableName);

// The two letters that mark the kind of a distribution or adjustment, or nothing.
[[nodiscard]] std::string_view GetKeyPrefix(std::int32_t kind, bool flag = false);

// The county of the zip code's first five characters; empty when there is none or
// more than one. Throws 94 for a county without a name.
[[nodiscard]] std::string GetCountyName(Service& service, const std::string& zipCode);

// The first contract of that vaccine and maker whose range the date lies in. The
// dose count has no part in it. Throws 20052 when there is none.
[[nodiscard]] Contract VerifyVaccineContract(Service& service, const std::string& date,
                                             const std::string& vaccine, std::int32_t doseCount,
                                             const std::string& maker);

// The dose count that an order of neworder has now, 0 for Null. Throws 20042
// unless exactly one order matches.
[[nodiscard]] std::int32_t CurrentOrderedDoses(const std::string& orderDate, const std::string& pin,
                                               const std::string& vaccine,
                                               const std::string& fundingCode,
                                               Connection& connection);

// The numeric action code of an adjustment's status code, 0 for Null. Throws 20036
// for none and 20037 for several rows of the action reference.
[[nodiscard]] std::int32_t ActionCodeOf(const std::string& statusCode, Connection& connection);

// The doses that an adjustment has now, 0 for Null. Throws 20042 unless exactly one
// matches.
[[nodiscard]] std::int32_t CurrentDoses(std::int32_t actionCode, const std::string& pin,
                                        const std::string& vaccine, const std::string& lotNumber,
                                        const std::string& transactionDate,
                                        const std::string& sourcePin, Connection& connection);

// The number in the first column of the record that the recordset stands on, 0
// for Null. Throws 13 and 6 for what is no 32-bit number.
[[nodiscard]] std::int32_t FirstLongOrZero(const Recordset& recordset);

// How every query of the component is opened: keyset cursor, read-only, text.
void OpenQuery(Recordset& recordset, const Statement& query, Connection& connection);

// Runs a statement the same way; nothing is read back.
void RunStatement(const Statement& statement, Connection& connection);

}  // namespace lotrix

#endif

// What a new database is filled with.
#ifndef LOTRIX_SCHEMA_H
#define LOTRIX_SCHEMA_H

#include <cstdint>

namespace lotrix {

class Connection;

// Adds a small state's vaccine programme to tables that Connection::CreateSchema
// has made. Everything is invented from the seed, and one seed gives the same rows
// on every system and engine: three depots, D00001 to D00003, with their lots; some
// 300 providers, among them P00001, which is active and eligible for varicella
// vaccine, with their physicians, enrollment, orders, shipments, distributions,
// inventories and doses administered; contracts from 2004 to 2030; the other
// reference tables; and the key rows.
//
// All in one transaction of its own. Returns false and changes nothing when there
// are providers or key rows already. Throws 3704 when the connection is closed,
// 80004005 when a transaction is open already, and the engine's errors; nothing is
// added then.
bool AddSampleData(Connection& connection, std::uint32_t seed = 1);

}  // namespace lotrix

#endif

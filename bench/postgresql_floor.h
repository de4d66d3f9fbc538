// Recording and running again on PostgreSQL.
#ifndef LOTRIX_BENCH_POSTGRESQL_FLOOR_H
#define LOTRIX_BENCH_POSTGRESQL_FLOOR_H

#include "bench/recording.h"

namespace lotrix::bench {

// What the calling thread's connections send while the call runs.
std::vector<RecordedStatement> RecordPostgresql(Connection& connection,
                                                const std::function<void()>& call);

// Opened by libpq's own connection string. What the component sends in one piece
// goes in one piece here too.
std::unique_ptr<Floor> OpenPostgresqlFloor(const std::string& connectionString,
                                           const std::string& logPath);

}  // namespace lotrix::bench

#endif

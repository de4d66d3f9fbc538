// Recording and running again on SQLite.
#ifndef LOTRIX_BENCH_SQLITE_FLOOR_H
#define LOTRIX_BENCH_SQLITE_FLOOR_H

#include "bench/recording.h"

namespace lotrix::bench {

std::vector<RecordedStatement> RecordSqlite(Connection& connection,
                                            const std::function<void()>& call);

// Opened as the component opens its database.
std::unique_ptr<Floor> OpenSqliteFloor(const std::string& file, const std::string& logPath);

}  // namespace lotrix::bench

#endif

// What writers noted while a server was lost, against the rows that are there.
#ifndef LOTRIX_SOAK_JOURNAL_H
#define LOTRIX_SOAK_JOURNAL_H

#include <cstdint>
#include <string>
#include <vector>

#include "soak/checks.h"

namespace lotrix::soak {

// The rows' file has a line "SERIAL KEY" for each row that a writer may have written.
// `lostAt` is the moment of the last loss, in milliseconds as the journals have them;
// the last writers must have gone on within ten seconds of it. Prints its figures.
void CheckJournals(const std::string& rowsFile, std::int64_t lostAt,
                   const std::vector<std::string>& earlierJournals,
                   const std::vector<std::string>& lastJournals, Checks& checks);

}  // namespace lotrix::soak

#endif

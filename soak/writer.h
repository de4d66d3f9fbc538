// A client that writes one row after another, whatever becomes of its server.
#ifndef LOTRIX_SOAK_WRITER_H
#define LOTRIX_SOAK_WRITER_H

#include <istream>
#include <ostream>
#include <string>

namespace lotrix::soak {

// Writes rows numbered from `firstSerial` on until the stop file is there, two
// minutes at most. The journal gets two lines a row, each before the next step:
//   MILLISECONDS try SERIAL
//   MILLISECONDS done|doubt|unsent|other SERIAL open|closed [NUMBER SQLSTATE TEXT]
// A row is never tried twice.
void WriteRows(const std::string& connectionString, const std::string& journalFile,
               const std::string& stopFile, int firstSerial);

// Makes a call for each line, "write SERIAL" or "read", and answers with
// "done open|closed" or "NUMBER SQLSTATE open|closed TEXT", the last words being the
// connection's state behind the call.
void AnswerLines(const std::string& connectionString, std::istream& in, std::ostream& out);

}  // namespace lotrix::soak

#endif

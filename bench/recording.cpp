#include "bench/recording.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iostream>

namespace lotrix::bench {

void Fail(const std::string& what) {
  std::cerr << "bench: " << what << '\n';
  std::exit(70);
}

Recording Record(const Recorder& recorder, cLotrix& service, const std::string& logPath,
                 const std::function<void()>& call) {
  const std::shared_ptr<Connection> connection = service.Connection();
  std::ifstream log(logPath, std::ios::binary);
  log.seekg(0, std::ios::end);
  Recording recording;
  recording.statements = recorder(*connection, call);
  for (std::string line; std::getline(log, line);) recording.lines.push_back(line + '\n');
  return recording;
}

Log::Log(const std::string& path)
    : file_(open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600)) {
  if (file_ < 0) Fail("cannot open " + path);
}

Log::~Log() { close(file_); }

void Log::Write(const std::vector<std::string>& lines) {
  lines_.clear();
  for (const std::string& line : lines) lines_ += line;
  if (write(file_, lines_.data(), lines_.size()) < 0) Fail("cannot write the log");
}

}  // namespace lotrix::bench

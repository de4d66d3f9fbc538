#include <fstream>
#include <iostream>
#include <string>

#include "cli/client.h"
#include "cli/json.h"

namespace lotrix::cli {

namespace {

bool IsBlankLine(const std::string& line) {
  return line.find_first_not_of(" \t\r") == std::string::npos;
}

}  // namespace

int Batch(const Common& common, const std::string& file) {
  std::ifstream opened;
  if (!file.empty()) {
    opened.open(file, std::ios::binary);
    if (!opened) {
      std::cerr << "lotrix batch: cannot read " << file << '\n';
      return kUsage;
    }
  }
  std::istream& in = file.empty() ? std::cin : opened;

  Client client(common);
  bool allOk = true;
  for (std::string line; std::getline(in, line);) {
    if (IsBlankLine(line)) continue;
    Request request = ReadRequest(line);
    Answer answer;
    if (request.malformed) {
      answer.error = request.malformed;
    } else {
      answer = client.Call(request.operation, request.arguments);
    }
    allOk = allOk && !answer.error;
    WriteAnswer(std::cout, request.id, answer);
    // Whoever sends the next request may be waiting for this answer.
    std::cout.flush();
    if (!std::cout) {
      std::cerr << "lotrix batch: an answer could not be written; the run ends here\n";
      return kInternal;
    }
  }
  if (in.bad()) {
    std::cerr << "lotrix batch: reading the requests failed\n";
    return kUsage;
  }
  return allOk ? kAllWell : kRefused;
}

}  // namespace lotrix::cli

#include "soak/writer.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <sstream>
#include <string_view>
#include <system_error>
#include <thread>

#include "lotrix/lotrix.h"

namespace lotrix::soak {

namespace {

struct Outcome {
  bool done = true;
  std::int32_t number = 0;
  std::string sqlState;
  std::string description;
};

// The five characters that stand for the engine's code.
std::string SqlStateOf(int engineCode) {
  constexpr int kBase = 36;
  constexpr std::string_view kDigits = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  std::string state = "00000";
  for (auto digit = state.rbegin(); digit != state.rend(); ++digit, engineCode /= kBase) {
    *digit = kDigits[static_cast<std::size_t>(engineCode % kBase)];
  }
  return state;
}

std::string Hexadecimal(std::int32_t number) {
  std::array<char, 9> text{};
  std::snprintf(text.data(), text.size(), "%08X", static_cast<unsigned>(number));
  return text.data();
}

Outcome Try(const std::function<void()>& call) {
  try {
    call();
  } catch (const Error& error) {
    return {false, error.number(), SqlStateOf(error.engineCode()), error.description()};
  }
  return {};
}

struct Client {
  explicit Client(const std::string& connectionString)
      : component({.clock = {}, .notify = [](std::string_view) {}, .logPath = "/dev/null"}) {
    component.openConnection(connectionString);
    connection = component.Connection();
  }
  cLotrix component;
  std::shared_ptr<Connection> connection;
};

Outcome Write(Client& client, int serial) {
  return Try(
      [&] { client.component.provinvAdd("P00001", "DTAP", std::to_string(serial), "1/5/2026"); });
}

Outcome Read(Client& client) {
  return Try([&] { static_cast<void>(client.component.vaccineReferenceTableRead()); });
}

const char* StateOf(const Client& client) {
  return client.connection->State() == ObjectState::kOpen ? "open" : "closed";
}

std::string ErrorText(const Outcome& outcome) {
  return Hexadecimal(outcome.number) + ' ' + outcome.sqlState;
}

// The numbers as clients know them, not as the component's own header has them.
const char* VerdictOf(const Outcome& outcome) {
  if (outcome.done) return "done";
  const std::string number = Hexadecimal(outcome.number);
  return number == "8004D016" ? "doubt" : number == "8004D01C" ? "unsent" : "other";
}

std::string MillisecondsNow() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return std::to_string(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

class Journal {
 public:
  explicit Journal(const std::string& file)
      : file_(open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600)) {
    if (file_ < 0) throw std::system_error(errno, std::generic_category(), file);
  }
  ~Journal() { close(file_); }
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;

  void Note(const std::string& event) const {
    const std::string line = MillisecondsNow() + ' ' + event + '\n';
    if (write(file_, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
      throw std::system_error(errno, std::generic_category(), "journal");
    }
  }

 private:
  int file_;
};

}  // namespace

void WriteRows(const std::string& connectionString, const std::string& journalFile,
               const std::string& stopFile, int firstSerial) {
  constexpr auto kMost = std::chrono::minutes(2);
  constexpr auto kPause = std::chrono::milliseconds(20);
  const auto end = std::chrono::steady_clock::now() + kMost;
  Client client(connectionString);
  const Journal journal(journalFile);
  for (int serial = firstSerial; std::chrono::steady_clock::now() < end; ++serial) {
    if (std::filesystem::exists(stopFile)) return;
    journal.Note("try " + std::to_string(serial));
    const Outcome outcome = Write(client, serial);
    std::string event = VerdictOf(outcome);
    event += ' ' + std::to_string(serial) + ' ' + StateOf(client);
    if (!outcome.done) event += ' ' + ErrorText(outcome) + ' ' + outcome.description;
    journal.Note(event);
    if (!outcome.done) std::this_thread::sleep_for(kPause);
  }
}

void AnswerLines(const std::string& connectionString, std::istream& in, std::ostream& out) {
  Client client(connectionString);
  for (std::string line; std::getline(in, line);) {
    std::istringstream words(line);
    std::string call;
    int serial = 0;
    words >> call >> serial;
    const Outcome outcome = call == "write" ? Write(client, serial) : Read(client);
    out << (outcome.done ? "done" : ErrorText(outcome)) << ' ' << StateOf(client);
    if (!outcome.done) out << ' ' << outcome.description;
    out << std::endl;
  }
}

}  // namespace lotrix::soak

#include "soak/keys.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <latch>
#include <map>
#include <numeric>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

#include "lotrix/lotrix.h"
#include "src/database/service.h"
#include "src/platform/dates.h"
#include "src/platform/values.h"
#include "src/utility/keys_and_lookups.h"

namespace lotrix::soak {

namespace {

constexpr int kClients = 16;
constexpr std::array<const char*, 5> kCounters = {"provhas", "Dosesadm", "distrib", "seekdist",
                                                  "Provider"};

// "Today" is the same for all, so that their logs can be compared.
std::chrono::system_clock::time_point Noon() {
  return std::chrono::sys_days(std::chrono::year(2026) / 3 / 2) + std::chrono::hours(12);
}

Host MakeHost(const std::string& logPath) {
  return {.clock = Noon, .notify = [](std::string_view) {}, .logPath = logPath};
}

// What a client took, and what was said against it.
struct Takings {
  std::vector<std::int32_t> direct;
  std::vector<std::string> failures;
  std::int64_t longestCall = 0;  // milliseconds
};

struct Client {
  std::string connectionString;
  std::string logPath;
  int number;  // no other client has it
  int rounds;
};

void Attempt(Takings& takings, const char* what, const std::function<void()>& call) {
  const auto began = std::chrono::steady_clock::now();
  try {
    call();
  } catch (const Error& error) {
    takings.failures.push_back(std::string(what) + ": " + std::to_string(error.number()) + ' ' +
                               error.description());
  }
  const auto took = std::chrono::steady_clock::now() - began;
  takings.longestCall = std::max<std::int64_t>(
      takings.longestCall, std::chrono::duration_cast<std::chrono::milliseconds>(took).count());
}

// A day that no other client and no other round has.
std::string DayOf(const Client& client, int round) {
  const std::chrono::year_month_day day = std::chrono::sys_days(std::chrono::year(2008) / 1 / 1) +
                                          std::chrono::days(client.number * client.rounds + round);
  return DateText({.year = static_cast<std::int16_t>(static_cast<int>(day.year())),
                   .month = static_cast<std::uint8_t>(static_cast<unsigned>(day.month())),
                   .day = static_cast<std::uint8_t>(static_cast<unsigned>(day.day()))});
}

// One key of each counter in every round. Calls `start` when both connections are
// open.
Takings TakeKeys(const Client& client, const std::function<void()>& start) {
  Takings takings;
  cLotrix component(MakeHost(client.logPath));
  component.openConnection(client.connectionString);
  Service service(MakeHost(client.logPath + ".direct"));
  service.connection.ConnectionString(client.connectionString);
  Attempt(takings, "opening", [&] {
    static_cast<void>(component.Connection());
    static_cast<void>(service.ReadConnection());
  });
  start();
  for (int round = 0; round < client.rounds; ++round) {
    const std::string day = DayOf(client, round);
    Attempt(takings, "provinvAdd",
            [&] { component.provinvAdd("P00001", "DTAP", "48", "1/5/2026"); });
    Attempt(takings, "DosesAdministeredUpdate", [&] {
      component.DosesAdministeredUpdate(day, "P00001", "DTAP", "1", "1", 5, 0, 0, 0, 0, 0, 0, 0, 0,
                                        0, 0, 0, 0, 5);
    });
    Attempt(takings, "DepotProviderOrderUpdate", [&] {
      component.DepotProviderOrderUpdate(day, "D00001", "P00001", "DTAP", 10, "SOAK-1");
    });
    Attempt(takings, "GetNextID",
            [&] { takings.direct.push_back(GetNextID(service, "Provider")); });
  }
  return takings;
}

void WriteTakings(const Takings& takings, const std::string& file) {
  std::ofstream out(file);
  out << "longest " << takings.longestCall << '\n';
  for (const std::int32_t key : takings.direct) out << "key " << key << '\n';
  for (const std::string& failure : takings.failures) out << "failure " << failure << '\n';
}

Takings ReadTakings(const std::string& file) {
  Takings takings;
  std::ifstream in(file);
  std::string kind;
  while (in >> kind) {
    std::string rest;
    std::getline(in >> std::ws, rest);
    if (kind == "longest") {
      takings.longestCall = std::stoll(rest);
    } else if (kind == "key") {
      takings.direct.push_back(std::stoi(rest));
    } else {
      takings.failures.push_back(rest);
    }
  }
  return takings;
}

struct Pipe {
  Pipe() {
    if (pipe(ends.data()) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
  }
  void CloseReading() { Close(ends[0]); }
  void CloseWriting() { Close(ends[1]); }
  static void Close(int& end) {
    if (end >= 0) close(end);
    end = -1;
  }
  ~Pipe() {
    CloseReading();
    CloseWriting();
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  std::array<int, 2> ends{};
};

std::string TakingsFile(const Client& client) { return client.logPath + ".takings"; }

// A process each; they begin when all of them have opened their connections.
std::vector<Takings> RunProcesses(const std::vector<Client>& clients) {
  Pipe ready;
  Pipe gate;
  std::vector<pid_t> processes;
  for (const Client& client : clients) {
    const pid_t process = fork();
    if (process < 0) throw std::system_error(errno, std::generic_category(), "fork");
    if (process == 0) {
      ready.CloseReading();
      gate.CloseWriting();
      char byte = 0;
      const Takings takings = TakeKeys(client, [&] {
        ready.CloseWriting();
        while (read(gate.ends[0], &byte, 1) > 0) {
        }
      });
      WriteTakings(takings, TakingsFile(client));
      std::_Exit(0);
    }
    processes.push_back(process);
  }
  ready.CloseWriting();
  gate.CloseReading();
  char byte = 0;
  while (read(ready.ends[0], &byte, 1) > 0) {
  }
  gate.CloseWriting();

  std::vector<Takings> takings;
  for (std::size_t i = 0; i < processes.size(); ++i) {
    int status = 0;
    waitpid(processes[i], &status, 0);
    takings.push_back(ReadTakings(TakingsFile(clients[i])));
    if (status != 0)
      takings.back().failures.push_back("the process ended by " + std::to_string(status));
  }
  return takings;
}

std::vector<Takings> RunThreads(const std::vector<Client>& clients) {
  std::vector<Takings> takings(clients.size());
  std::latch ready(static_cast<std::ptrdiff_t>(clients.size()));
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < clients.size(); ++i) {
    threads.emplace_back(
        [&, i] { takings[i] = TakeKeys(clients[i], [&] { ready.arrive_and_wait(); }); });
  }
  for (std::thread& thread : threads) thread.join();
  return takings;
}

std::vector<std::int32_t> ReadNumbers(Connection& connection, const std::string& query) {
  std::vector<std::int32_t> numbers;
  const auto records = connection.Execute(query);
  for (; !records->EndOfFile(); records->MoveNext()) {
    numbers.push_back(ToLong(records->Fields().Item(0).Value()));
  }
  std::sort(numbers.begin(), numbers.end());
  return numbers;
}

std::map<std::string, std::int32_t> ReadCounters(const std::string& connectionString) {
  Connection connection;
  connection.Open(connectionString);
  std::map<std::string, std::int32_t> counters;
  for (const std::string counter : kCounters) {
    counters[counter] =
        ReadNumbers(connection, "SELECT inextid FROM nextid WHERE ctablename = '" + counter + "'")
            .at(0);
  }
  return counters;
}

// A log without times, processes, keys and the client's days, and the keys.
struct Trace {
  std::vector<std::string> lines;
  std::vector<std::int32_t> keys;
};

// Puts the number of the round in the place of the client's day.
void HideDays(const Client& client, std::string& line) {
  for (int round = 0; round < client.rounds; ++round) {
    const std::string day = '{' + DayOf(client, round) + '}';
    for (std::size_t at = line.find(day); at != std::string::npos; at = line.find(day)) {
      line.replace(at, day.size(), "{ROUND " + std::to_string(round) + '}');
    }
  }
}

Trace ReadTrace(const Client& client) {
  constexpr std::string_view kBehindKey = ", 'LTX_DLL') ";
  constexpr int kFieldsBefore = 3;  // day, time, process
  Trace trace;
  std::ifstream log(client.logPath);
  for (std::string line; std::getline(log, line);) {
    for (int field = 0; field < kFieldsBefore; ++field) line.erase(0, line.find(' ') + 1);
    const bool takesKey = line.find("INSERT INTO provhas ") != std::string::npos;
    if (takesKey && line.ends_with(kBehindKey)) {
      const std::size_t end = line.size() - kBehindKey.size();
      const std::size_t begin = line.rfind(' ', end - 1) + 1;
      trace.keys.push_back(std::stoi(line.substr(begin, end - begin)));
      line.replace(begin, end - begin, "KEY");
    }
    if (line.find("INSERT INTO ") != std::string::npos) HideDays(client, line);
    trace.lines.push_back(std::move(line));
  }
  return trace;
}

bool AreConsecutive(std::vector<std::int32_t> keys, std::int32_t first, std::size_t count) {
  std::vector<std::int32_t> wanted(count);
  std::iota(wanted.begin(), wanted.end(), first);
  std::sort(keys.begin(), keys.end());
  return keys == wanted;
}

std::vector<Client> MakeClients(const Client& first, int count) {
  std::vector<Client> clients;
  for (int i = 0; i < count; ++i) {
    clients.push_back(first);
    clients.back().number += i;
    clients.back().logPath += '-' + std::to_string(i);
  }
  return clients;
}

using Run = std::function<std::vector<Takings>(const std::vector<Client>&)>;

struct Setting {
  const std::string& engine;
  const std::string& connectionString;
  const Trace* alone;  // the log of one client by itself, once it is known
};

// Runs the clients and checks what they took. No connection is open when they begin,
// since a process that forks must not have one.
void CheckRun(const Setting& setting, const std::string& how, const std::vector<Client>& clients,
              const Run& run, Checks& checks) {
  const std::string where = setting.engine + ", " + how + ": ";
  const auto before = ReadCounters(setting.connectionString);
  const auto began = std::chrono::steady_clock::now();
  const std::vector<Takings> takings = run(clients);
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
  const auto after = ReadCounters(setting.connectionString);
  const auto taken = clients.size() * static_cast<std::size_t>(clients.front().rounds);

  std::vector<std::int32_t> direct;
  std::vector<std::int32_t> logged;
  std::int64_t longest = 0;
  for (std::size_t i = 0; i < clients.size(); ++i) {
    for (const std::string& failure : takings[i].failures) Expect(checks, false, where + failure);
    longest = std::max(longest, takings[i].longestCall);
    std::copy(takings[i].direct.begin(), takings[i].direct.end(), std::back_inserter(direct));
    const Trace trace = ReadTrace(clients[i]);
    std::copy(trace.keys.begin(), trace.keys.end(), std::back_inserter(logged));
    Expect(checks, !trace.lines.empty(), where + "a client has no log");
    if (setting.alone == nullptr) continue;
    Expect(checks, trace.lines == setting.alone->lines,
           where + "the log of " + clients[i].logPath + " is not that of a client alone");
  }
  for (const std::string counter : kCounters) {
    Expect(checks, after.at(counter) - before.at(counter) == static_cast<std::int32_t>(taken),
           where + counter + " went from " + std::to_string(before.at(counter)) + " to " +
               std::to_string(after.at(counter)) + " for " + std::to_string(taken) + " keys");
  }
  const auto expectKeys = [&](const std::vector<std::int32_t>& keys, const std::string& counter,
                              const std::string& what) {
    Expect(checks, AreConsecutive(keys, before.at(counter) + 1, taken),
           where + what + " are not the " + std::to_string(taken) + " keys behind " +
               std::to_string(before.at(counter)));
  };
  Connection connection;
  connection.Open(setting.connectionString);
  const auto stored = [&](const std::string& column, const std::string& table) {
    const std::int32_t last = before.at(table);
    return ReadNumbers(connection, "SELECT " + column + " FROM " + table + " WHERE " + column +
                                       " > " + std::to_string(last));
  };
  expectKeys(direct, "Provider", "the keys of Provider handed out");
  expectKeys(logged, "provhas", "the keys in the logs");
  expectKeys(stored("provhasid", "provhas"), "provhas", "the rows of provhas");
  expectKeys(stored("dosesadmid", "Dosesadm"), "Dosesadm", "the rows of dosesadm");

  const double keys = static_cast<double>(taken * kCounters.size());
  std::printf(
      "%-11s %-13s %6.0f keys of %zu counters in %5.1f s, %6.0f a second, longest call %lld ms\n",
      setting.engine.c_str(), how.c_str(), keys, kCounters.size(), seconds, keys / seconds,
      static_cast<long long>(longest));
  std::fflush(stdout);
}

}  // namespace

void CheckKeys(const std::string& engine, const std::string& connectionString,
               const std::string& folder, int rounds, Checks& checks) {
  const auto prepare = [&] {
    Connection connection;
    connection.Open(connectionString);
    connection.CreateSchema();
    Expect(checks, AddSampleData(connection), engine + ": the database is not a fresh one");
    static_cast<void>(connection.Execute(
        "INSERT INTO stock(pin, lot, vaccine, tracking) VALUES('D00001', 'SOAK1', 'DTAP', 'T')"));
  };
  prepare();

  const Client first{.connectionString = connectionString,
                     .logPath = folder + "/alone",
                     .number = 0,
                     .rounds = rounds};
  Client process = first;
  process.logPath = folder + "/process";
  process.number = 1;
  Client thread = first;
  thread.logPath = folder + "/thread";
  thread.number = 1 + kClients;

  const std::vector<Client> single = MakeClients(first, 1);
  CheckRun({engine, connectionString, nullptr}, "alone", single, RunThreads, checks);
  const Trace alone = ReadTrace(single.front());
  const Setting setting{engine, connectionString, &alone};
  CheckRun(setting, "16 processes", MakeClients(process, kClients), RunProcesses, checks);
  CheckRun(setting, "16 threads", MakeClients(thread, kClients), RunThreads, checks);
}

}  // namespace lotrix::soak

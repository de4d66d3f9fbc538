// Each operation beside its floor on PostgreSQL or, with the filter "clients", many
// clients at once. The server is the one whose socket is in the folder that
// LOTRIX_TEST_SERVER names; "admin" may do everything there, "clerk" owns the databases.
#include <benchmark/benchmark.h>
#include <libpq-fe.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <latch>
#include <thread>

#include "bench/pairs.h"
#include "bench/postgresql_floor.h"

namespace lotrix::bench {
namespace {

std::string Server() {
  const char* const folder = std::getenv("LOTRIX_TEST_SERVER");
  if (folder == nullptr) Fail("LOTRIX_TEST_SERVER names no server");
  return folder;
}

// As the server's superuser.
void Administer(const std::string& database, const std::string& sql) {
  PGconn* const connection =
      PQconnectdb(("host=" + Server() + " user=admin dbname=" + database).c_str());
  PGresult* const answer = PQexec(connection, sql.c_str());
  const ExecStatusType status = PQresultStatus(answer);
  if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) Fail(PQerrorMessage(connection));
  PQclear(answer);
  PQfinish(connection);
}

std::string ConnectionTo(const std::string& database) {
  return "Provider=PostgreSQL;Host=" + Server() + ";Database=" + database + ";User ID=clerk";
}

std::string MakeDatabase(const std::string& name, int providers) {
  Administer("postgres", "CREATE DATABASE " + name + " OWNER clerk");
  constexpr int kOneByOne = 1000;
  Connection connection;
  connection.Open(ConnectionTo(name));
  connection.CreateSchema();
  AddRows(connection, kOneByOne);
  connection.Close();
  Administer(name,
             "INSERT INTO provider(pin, lastname, city, state, sector, active) "
             "SELECT 'B' || upper(lpad(to_hex(i), 5, '0')), 'BENCH CLINIC', 'SPRINGFIELD', 'IL', "
             "10, 'Y' FROM generate_series(" +
                 std::to_string(kOneByOne) + ", " + std::to_string(providers - 1) + ") AS i");
  Administer(name, "VACUUM ANALYZE");
  return name;
}

std::string CopyDatabase(const std::string& original, const std::string& name) {
  Administer("postgres",
             "CREATE DATABASE \"" + name + "\" OWNER clerk TEMPLATE \"" + original + '"');
  return name;
}

void DropDatabase(const std::string& database) {
  Administer("postgres", "DROP DATABASE \"" + database + '"');
}

// With the plans that the component asks for.
std::unique_ptr<Floor> OpenFloor(const std::string& database, const std::string& logPath) {
  return OpenPostgresqlFloor(
      "host=" + Server() + " user=clerk dbname=" + database + " options='-c jit=off'", logPath);
}

// What a client does, by the number of the call.
using Client = std::function<void(int variant)>;

// So many calls a second when the calls are spread over that many clients. Each client
// is made by the thread that runs it, and warms up before the clock starts.
double Throughput(int clients, int calls, const std::function<Client(int client)>& make,
                  int warmUps) {
  const int share = calls / clients;
  std::latch ready(clients + 1);
  std::latch start(1);
  std::vector<std::thread> threads;
  for (int client = 0; client < clients; ++client) {
    threads.emplace_back([&, client] {
      const Client call = make(client);
      for (int i = 0; i < warmUps; ++i) call(calls + client * warmUps + i);
      ready.count_down();
      start.wait();
      for (int i = 0; i < share; ++i) call(client * share + i);
    });
  }
  ready.arrive_and_wait();
  const auto began = std::chrono::steady_clock::now();
  start.count_down();
  for (std::thread& thread : threads) thread.join();
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - began;
  return share * clients / took.count();
}

constexpr int kSharedCalls = 1280;
constexpr int kSharedWarmUps = 8;
constexpr std::array<int, 3> kClients = {1, 4, 16};
constexpr int kRepetitions = 5;

double ComponentThroughput(const Engine& engine, const Operation& operation,
                           const std::string& original, int clients) {
  const Side side(engine, original, "component");
  const auto make = [&](int) -> Client {
    const std::shared_ptr<cLotrix> service = MakeService(side);
    return [service, &operation](int variant) { operation.call(*service, variant); };
  };
  return Throughput(clients, kSharedCalls, make, kSharedWarmUps);
}

double FloorThroughput(const Engine& engine, const Operation& operation,
                       const std::vector<Recording>& recordings, const std::string& original,
                       int clients) {
  const Side side(engine, original, "floor");
  const auto make = [&](int client) -> Client {
    const std::shared_ptr<Floor> floor =
        engine.openFloor(side.database, side.log + std::to_string(client));
    for (const Recording& recording : recordings) floor->Prepare(recording);
    return [floor, &operation, &recordings](int variant) {
      floor->Run(recordings[static_cast<std::size_t>(variant)], operation.givesTable);
    };
  };
  return Throughput(clients, kSharedCalls, make, kSharedWarmUps);
}

std::vector<Recording> RecordAll(const Engine& engine, const Operation& operation,
                                 const std::string& original) {
  const Side side(engine, original, "recording");
  const auto service = MakeService(side);
  // A statement is written once its tables are known.
  for (int warmUp = 0; warmUp < kSharedWarmUps; ++warmUp) operation.call(*service, kCalls + warmUp);
  std::vector<Recording> recordings;
  for (int v = 0; v < kSharedCalls + kClients.back() * kSharedWarmUps; ++v) {
    recordings.push_back(
        Record(engine.record, *service, side.log, [&] { operation.call(*service, v); }));
  }
  return recordings;
}

// Of the repetitions the quickest counts on either side.
void MeasureClients(const Engine& engine, const Operation& operation, const std::string& original,
                    const char* commit) {
  const std::vector<Recording> recordings = RecordAll(engine, operation, original);
  for (const int clients : kClients) {
    double component = 0;
    double floor = 0;
    for (int repetition = 0; repetition < kRepetitions; ++repetition) {
      component = std::max(component, ComponentThroughput(engine, operation, original, clients));
      floor = std::max(floor, FloorThroughput(engine, operation, recordings, original, clients));
    }
    std::printf("%-32s %-6s %7d %12.0f %12.0f %7.2f %6.1f\n", operation.name, commit, clients,
                component, floor, floor / component, engine.most);
    std::fflush(stdout);
  }
}

void MeasureManyClients(const Engine& engine, const std::string& original) {
  std::printf("\n%-32s %-6s %7s %12s %12s %7s %6s\n", "calls a second", "commit", "clients",
              "component", "floor", "ratio", "bound");
  for (const char* const commit : {"off", "on"}) {
    Administer("postgres", std::string("ALTER ROLE clerk SET synchronous_commit = ") + commit);
    Administer("postgres", std::string("ALTER SYSTEM SET fsync = ") + commit);
    Administer("postgres", "SELECT pg_reload_conf()");
    for (const Operation& operation : Operations()) {
      const std::string_view name = operation.name;
      if (name == "manufacturer order: insert" || name == "doses administered: insert" ||
          (name == "manufacturerProviderOrderRead" && std::string_view(commit) == "off")) {
        MeasureClients(engine, operation, original, commit);
      }
    }
  }
}

}  // namespace
}  // namespace lotrix::bench

int main(int argc, char** argv) {
  using namespace lotrix::bench;  // NOLINT(google-build-using-namespace): a program of its own
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  const Engine postgresql = {.copy = CopyDatabase,
                             .drop = DropDatabase,
                             .connectionTo = ConnectionTo,
                             .record = RecordPostgresql,
                             .openFloor = OpenFloor,
                             .repetitions = 300,
                             .most = 1.2};
  const std::string few = MakeDatabase("few", 1000);
  if (benchmark::GetBenchmarkFilter() == "clients") {
    MeasureManyClients(postgresql, few);
    return 0;
  }
  RegisterOperations(postgresql, few);
  RegisterManyProviders(postgresql, few, MakeDatabase("million", 1'000'000));
  RunBenchmarks();
  return 0;
}

// Every published member, with any arguments, on a database.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/json.h"
#include "fuzz/database.h"
#include "fuzz/require.h"
#include "lotrix/collection.h"
#include "lotrix/component.h"
#include "lotrix/members.h"

namespace lotrix::fuzz {

namespace {

// What the sample data knows, and what rules look for: random bytes would not get
// beyond the first check.
constexpr auto kKeys = std::to_array<std::string_view>(
    {"P00001", "p00001 ", "P00002", "D00001", "NEW001", "DTAP", "VAR", "FLU", "FLU-PF", "MCV4",
     "MKRA", "MKRD", "K1000-12", "k100012", "W1166-11", "LINNETBROOK", "DESMIN"});
constexpr auto kDates = std::to_array<std::string_view>(
    {"7/4/2026", "1/1/2004", "12/31/2030", "2/30/2001", "Jan 5 2026", "10:30"});
constexpr auto kNumbers =
    std::to_array<std::string_view>({"0", "1", "-1", "2", "4", "10", "31", "99", "32767", "99999",
                                     "2147483647", "1e3", "0.5", "&HFFFF"});
constexpr auto kWords = std::to_array<std::string_view>(
    {"T", "True", "Y", "N", "A", "Z", "Di", "Lo", "Tr", "Us", "Re", "ZZ", "69401", "69401-12",
     "5551234567", "NORTH", "CLINIC", "MD"});
constexpr auto kOdd =
    std::to_array<std::string_view>({"", " ", "O'BRIEN", "}", "{", "\xC3\xA9", "\xF0\x9F\x98\x80",
                                     "\xFF", "--", "two\nlines", "1 OR 1=1"});
constexpr auto kWhole = std::to_array<std::int32_t>(
    {0, 1, -1, 2, 4, 10, 99, 32767, 32768, 100000000, 2147483647, -2147483647 - 1});

template <class Choices>
auto OneOf(const Choices& choices, FuzzedDataProvider& input) {
  return choices[input.ConsumeIntegralInRange<std::size_t>(0, choices.size() - 1)];
}

Value NextObject(FuzzedDataProvider& input) {
  if (input.ConsumeBool()) return std::make_shared<Collection>();
  return input.ConsumeBool() ? Value(Null{}) : Value(Empty{});
}

Date NextDate(FuzzedDataProvider& input) {
  return {input.ConsumeIntegralInRange<std::int16_t>(100, 9999),
          input.ConsumeIntegralInRange<std::uint8_t>(1, 12),
          input.ConsumeIntegralInRange<std::uint8_t>(1, 28)};
}

Argument NextArgument(FuzzedDataProvider& input) {
  switch (input.ConsumeIntegralInRange(0, 12)) {
    case 0:
      return std::nullopt;
    case 1:
      return std::string(OneOf(kKeys, input));
    case 2:
      return std::string(OneOf(kDates, input));
    case 3:
      return std::string(OneOf(kNumbers, input));
    case 4:
      return std::string(OneOf(kWords, input));
    case 5:
      return std::string(OneOf(kOdd, input));
    case 6:
      return input.ConsumeRandomLengthString();
    case 7:
      return std::int64_t{OneOf(kWhole, input)};
    case 8:
      return input.ConsumeIntegral<std::int64_t>();
    case 9:
      return input.ConsumeFloatingPoint<double>();
    case 10:
      return input.ConsumeBool();
    case 11:
      return NextDate(input);
    default:
      return NextObject(input);
  }
}

// The members but for the two that hand out or name a connection.
const Member& NextMember(FuzzedDataProvider& input) {
  const auto members = Members();
  for (;;) {
    const Member& member =
        members[input.ConsumeIntegralInRange<std::size_t>(0, members.size() - 1)];
    if (member.name != "Connection" && member.name != "openConnection") return member;
    if (input.remaining_bytes() == 0) return members.back();
  }
}

using Arguments = std::vector<Argument>;

// In the order of the member's parameters.
Arguments InOrder(const Member& member, const cli::Arguments& given) {
  if (const auto* const inOrder = std::get_if<Arguments>(&given)) {
    Arguments arguments = *inOrder;
    arguments.resize(member.parameters.size());
    return arguments;
  }
  Arguments arguments;
  for (const Parameter& parameter : member.parameters) {
    arguments.emplace_back();
    for (const auto& [name, argument] : std::get<NamedArguments>(given)) {
      if (name == parameter.name) arguments.back() = argument;
    }
  }
  return arguments;
}

// A call of each member that is accepted, from the requests that the target for
// requests begins with: what is wrong with one argument is found behind the checks
// of those before it.
std::map<std::string_view, Arguments> GoodCalls() {
  std::map<std::string_view, Arguments> calls;
  for (const auto& entry : std::filesystem::directory_iterator(LOTRIX_FUZZ_REQUESTS)) {
    std::ifstream file(entry.path(), std::ios::binary);
    std::string line;
    std::getline(file, line);
    const cli::Request request = cli::ReadRequest(line);
    if (request.malformed || request.operation != entry.path().filename()) continue;
    const Member& member = MemberNamed(request.operation);
    calls[member.name] = InOrder(member, request.arguments);
  }
  Require(calls.size() == Members().size(), "each member has its request");
  return calls;
}

CallResult CallNext(cLotrix& service, const Member& member, FuzzedDataProvider& input) {
  static const std::map<std::string_view, Arguments> kGoodCalls = GoodCalls();
  Arguments arguments = kGoodCalls.at(member.name);
  const int changes = input.ConsumeIntegralInRange(0, 4);
  for (int i = 0; i < changes && !arguments.empty(); ++i) {
    arguments[input.ConsumeIntegralInRange<std::size_t>(0, arguments.size() - 1)] =
        NextArgument(input);
  }
  if (input.ConsumeBool()) {
    if (input.ConsumeIntegralInRange(0, 15) == 0) arguments.push_back(NextArgument(input));
    return Call(service, member, arguments);
  }
  NamedArguments named;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    named.emplace_back(member.parameters[i].name, std::move(arguments[i]));
  }
  if (input.ConsumeIntegralInRange(0, 15) == 0) {
    named.emplace_back(input.ConsumeRandomLengthString(), NextArgument(input));
  }
  return Call(service, member, named);
}

void RequireTable(const cResultSet& table) {
  for (std::int32_t row = 1; row <= table.Rows(); ++row) {
    for (std::int32_t column = 1; column <= table.Cols(); ++column) {
      static_cast<void>(table.GetValue(row, column));
    }
  }
  Require(table.Headers()->Count() == table.Cols(), "a table has a header for each column");
  Require(table.Data()->Count() == table.Rows(), "a table has the rows that it counts");
}

std::int64_t Sum(const Database::RowCounts& rows) {
  std::int64_t sum = 0;
  for (const auto& [table, count] : rows) sum += count;
  return sum;
}

bool OnlyReads(const Member& member) {
  return !member.result.empty() || member.name == "CheckVaccActive" ||
         member.name == "closeConnection";
}

void RequireFewChanges(Database& database, const Member& member, bool refused) {
  Require(!OnlyReads(member), "what only reads changes nothing");
  database.RequireShape();
  const Database::RowCounts rows = database.Rows();
  const std::int64_t added = Sum(rows) - Sum(database.FirstRows());
  if (refused) {
    // A new provider stays when its enrollment row fails.
    const bool newProvider = member.name == "providerProfileUpdate" && added == 1;
    for (const std::string& table : database.ChangedTables()) {
      Require(table == "nextid" || (newProvider && table == "provider"),
              "a refused call takes a key at most");
    }
  } else if (member.name == "physicianDeleteByPin") {
    const bool noneElse = added == rows.at("physicn") - database.FirstRows().at("physicn");
    Require(added < 0 && noneElse, "physicians alone are removed");
  } else {
    Require(added == 0 || added == 1 || (added == 2 && member.name == "providerProfileUpdate"),
            "a write adds one row at most, and a new provider its enrollment");
  }
}

void Check(FuzzedDataProvider& input) {
  using namespace std::chrono_literals;
  static Database database(AddSmallSample);
  static cLotrix service(Host{
      .clock = [] { return std::chrono::system_clock::time_point(1'795'000'000s); },
      .notify =
          [](std::string_view text) {
            Require(text == "Vaccine is Active" || text == "Vaccine is inactive", "what is shown");
          },
      .logPath = "/dev/null"});
  service.openConnection(database.ConnectionString());

  const Member& member = NextMember(input);
  const std::int32_t number = NumberOf([&] {
    const CallResult result = CallNext(service, member, input);
    const auto* const table = std::get_if<cResultSet>(&result);
    Require((table != nullptr) == !member.result.empty(), "a read answers with a table");
    if (table != nullptr) RequireTable(*table);
  });
  if (!database.Changed()) return;
  RequireFewChanges(database, member, number != 0);
  database.Restore();
}

}  // namespace

}  // namespace lotrix::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  lotrix::fuzz::Check(input);
  return 0;
}

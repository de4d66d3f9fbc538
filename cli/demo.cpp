// A working day, as a new user would want to see it once.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "cli/client.h"
#include "cli/table.h"
#include "src/platform/clock.h"
#include "src/platform/dates.h"
#include "src/resultset/recordset_conversion.h"

namespace lotrix::cli {

namespace {

class DemoFolder {
 public:
  DemoFolder() : path_((std::filesystem::temp_directory_path() / "lotrix-demo-XXXXXX").string()) {
    if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no folder for the demo");
  }
  ~DemoFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  DemoFolder(const DemoFolder&) = delete;
  DemoFolder& operator=(const DemoFolder&) = delete;
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_;
};

void ShowCall(Client& client, const std::string& operation, const NamedArguments& arguments) {
  std::cout << "\n$ lotrix call " << operation;
  for (const auto& [name, argument] : arguments) {
    std::cout << ' ' << name << '=' << std::get<std::string>(*argument);
  }
  std::cout << '\n';
  const Answer answer = client.Call(operation, arguments);
  if (answer.error) {
    std::cout << "refused: " << ErrorLine(*answer.error) << '\n';
  } else if (answer.table) {
    WriteTable(std::cout, *answer.table);
  } else {
    std::cout << answer.message.value_or("accepted") << '\n';
  }
}

void ShowOrders(Client& client, const std::string& pin, const std::string& day) {
  const auto orders = client.lotrix().Connection()->Execute(
      "SELECT pin, orddate, vaccine, orddose, fcode1, size, cost, maker, chgdate, userid "
      "FROM neworder WHERE ltrim(rtrim(pin)) = '" +
      pin + "' AND orddate = {" + day + "}");
  std::cout << "\nThe order as the database holds it:\n";
  WriteTable(std::cout, RecordsetToResultSet(*orders));
}

// The lines that have come to the log since the last time, without their times.
void ShowTrace(const std::string& path, std::streamoff seen) {
  std::ifstream log(path, std::ios::binary);
  log.seekg(seen);
  std::cout << "\nThe trace of that call:\n";
  for (std::string line; std::getline(log, line);) std::cout << "  " << line << '\n';
}

std::streamoff SizeOf(const std::string& path) {
  return static_cast<std::streamoff>(std::filesystem::file_size(path));
}

std::string FirstText(Connection& connection, const std::string& query) {
  const auto found = connection.Execute(query);
  return std::get<std::string>(found->Fields().Item(0).Value());
}

}  // namespace

int Demo(const Common& /*common*/) {
  const DemoFolder folder;
  const std::string log = folder.path() + "/Lotrix.log";
  const Common fresh{
      .connectionString = "Provider=SQLite;Data Source=" + folder.path() + "/demo.db",
      .logPath = log};
  std::cout << "A fresh embedded database with the sample data of a small state's programme.\n";
  if (const int failed = Init(fresh, true); failed != kAllWell) return failed;

  Client client(fresh);
  const std::shared_ptr<Connection> connection = client.lotrix().Connection();
  const std::string pin = "P00001";
  const std::string today = DateText(Today(std::chrono::system_clock::now));
  const std::string maker =
      FirstText(*connection,
                "SELECT ltrim(rtrim(maker)) FROM pvaccref WHERE vaccine = 'DTAP' AND "
                "locactiv = .F. AND {" +
                    today + "} BETWEEN begin AND end");
  const auto order = [&](const std::string& doses) {
    ShowCall(client, "manufacturerProviderOrderCreateUpdate",
             {{"anOrderDate", today},
              {"aPIN", pin},
              {"aVaccine", "DTAP"},
              {"aDoseCount", doses},
              {"aFundingSource", "1"},
              {"aMfg", maker}});
  };

  ShowCall(client, "vaccineReferenceTableRead", {});
  std::cout << "\nA provider orders vaccine.\n";
  std::streamoff seen = SizeOf(log);
  order("20");
  ShowTrace(log, seen);
  ShowOrders(client, pin, today);

  std::cout << "\nThe same order again replaces the count.\n";
  order("30");
  ShowOrders(client, pin, today);

  std::cout << "\nAn order for no doses is refused, and so is one for a vaccine nobody knows.\n";
  order("0");
  seen = SizeOf(log);
  ShowCall(client, "manufacturerProviderOrderCreateUpdate",
           {{"anOrderDate", today},
            {"aPIN", pin},
            {"aVaccine", "NOSUCH"},
            {"aDoseCount", "10"},
            {"aFundingSource", "1"}});
  ShowTrace(log, seen);

  std::cout << "\nWhat has been shipped to that provider, and what a depot has in stock.\n";
  ShowCall(client, "stockTableRead", {{"aPIN", pin}});
  ShowCall(client, "inventoryOnHandRead", {{"aDepotPIN", "D00001"}, {"aVaccine", "DTAP"}});
  ShowCall(client, "CheckVaccActive", {{"aVaccine", "DTAP"}});

  std::cout << "\nOne read with the whole of its trace.\n";
  seen = SizeOf(log);
  ShowCall(client, "inventoryOnHandRead", {{"aDepotPIN", "D00001"}, {"aVaccine", "MMR"}});
  ShowTrace(log, seen);
  return kAllWell;
}

}  // namespace lotrix::cli

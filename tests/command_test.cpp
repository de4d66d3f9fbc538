// The lotrix command, run as its users run it: as a program of its own.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/engine.h"
#include "tests/support/fixture.h"

namespace lotrix::test {
namespace {

using namespace std::string_literals;
using Json = nlohmann::json;
using Texts = std::vector<std::string>;

constexpr std::int32_t Hex(std::uint32_t number) { return static_cast<std::int32_t>(number); }

std::string Content(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

Texts Lines(const std::string& text) {
  Texts lines;
  std::size_t start = 0;
  while (start < text.size()) {
    std::size_t end = text.find('\n', start);
    EXPECT_NE(end, std::string::npos) << "the last line has no end";
    if (end == std::string::npos) end = text.size();
    lines.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return lines;
}

struct Outcome {
  int exitCode = -1;  // -1 when a signal ended it
  std::string out;
  std::string err;
  pid_t process = 0;
};

// Another program with the same database file.
std::vector<Row> QueryFile(const std::string& file, const std::string& sql) {
  sqlite3* database = nullptr;
  if (sqlite3_open_v2(file.c_str(), &database, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) {
    sqlite3_close(database);
    throw std::runtime_error("no database: " + file);
  }
  sqlite3_busy_timeout(database, 5000);
  std::vector<Row> rows;
  char* message = nullptr;
  const auto keep = [](void* kept, int columns, char** cells, char** /*names*/) {
    Row row;
    for (int i = 0; i < columns; ++i) row.emplace_back(cells[i] == nullptr ? "<null>" : cells[i]);
    static_cast<std::vector<Row>*>(kept)->push_back(std::move(row));
    return 0;
  };
  const int result = sqlite3_exec(database, sql.c_str(), keep, &rows, &message);
  const std::string text = message == nullptr ? "" : message;
  sqlite3_free(message);
  sqlite3_close(database);
  if (result != SQLITE_OK) throw std::runtime_error(text);
  return rows;
}

class CommandTest : public ::testing::Test {
 protected:
  CommandTest() { std::signal(SIGPIPE, SIG_IGN); }

  [[nodiscard]] std::string Path(const std::string& name) const {
    return folder_.path() + "/" + name;
  }
  [[nodiscard]] std::string LogPath() const { return Path("trace.log"); }

  // The variables that the program sees besides the test's own; a variable
  // without a value is not set.
  using Variables = std::map<std::string, std::string>;

  // In the child: the folder, the variables, the program.
  [[noreturn]] void Become(const Texts& arguments, const Variables& variables) const {
    std::signal(SIGPIPE, SIG_DFL);
    alarm(100);
    if (chdir(folder_.path().c_str()) != 0) _exit(126);
    unsetenv("LOTRIX_CONNECTION");
    unsetenv("XDG_STATE_HOME");
    setenv("LOTRIX_LOG", LogPath().c_str(), 1);
    for (const auto& [name, value] : variables) {
      if (value.empty()) {
        unsetenv(name.c_str());
      } else {
        setenv(name.c_str(), value.c_str(), 1);
      }
    }
    std::string program = LOTRIX_COMMAND;
    Texts texts = arguments;
    std::vector<char*> pointers{program.data()};
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    execv(program.c_str(), pointers.data());
    _exit(127);
  }

  Outcome Run(const Texts& arguments, const std::string& input = {},
              const Variables& variables = {}) {
    std::ofstream(Path("stdin"), std::ios::binary) << input;
    const pid_t child = fork();
    if (child == 0) {
      const auto redirect = [](const std::string& path, int flags, int descriptor) {
        const int file = open(path.c_str(), flags, 0600);
        if (file < 0 || dup2(file, descriptor) < 0) _exit(126);
      };
      redirect(Path("stdin"), O_RDONLY, STDIN_FILENO);
      redirect(Path("stdout"), O_WRONLY | O_CREAT | O_TRUNC, STDOUT_FILENO);
      redirect(Path("stderr"), O_WRONLY | O_CREAT | O_TRUNC, STDERR_FILENO);
      Become(arguments, variables);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Content(Path("stdout")),
            Content(Path("stderr")), child};
  }

  std::vector<Row> Query(const std::string& sql) { return QueryFile(Path("lotrix.db"), sql); }

  // A database with one provider, one depot, some vaccines and some stock.
  void MakeDatabase() {
    ASSERT_EQ(Run({"init"}).exitCode, 0);
    Query(
        "INSERT INTO provider (pin, sector, active) VALUES ('P1', 10, 'Y'), ('D1', 30, 'Y');"
        "INSERT INTO funding (fundcode) VALUES ('1');"
        "INSERT INTO pvaccref (vaccine, maker, \"begin\", \"end\", minbulk, unitsize, pkgsize, "
        "ndcno, cost, contractid, sel_maker, dos_wind, excfunds, descrip, locactiv, maxno) VALUES "
        "('DTAP', 'SKB', '2004-01-01', '2004-12-31', 1, 1, 10, 'N', 12.5, 'C', 'S', 'W', 'E', "
        "'Dip', 0, 5);"
        "INSERT INTO pvaccref (vaccine, locactiv) VALUES ('OLD', 1);"
        "INSERT INTO stock (pin, datein, doses, lot, vaccine, maker, expiry, tracking) VALUES "
        "('P1', '2004-03-07', 12, 'AB-1', 'DTAP', NULL, '2005-12-31', 'T1'), "
        "('P1', '2004-03-06', 5, ' AB2 ', 'DTAP', '  ', NULL, 'T2')");
    std::filesystem::remove(LogPath());
  }

  // A batch's answers; the exit code is kept.
  std::vector<Json> Batch(const Texts& requests, const Variables& variables = {}) {
    std::string input;
    for (const std::string& request : requests) input += request + "\n";
    return Answers(Run({"batch"}, input, variables));
  }
  std::vector<Json> Answers(const Outcome& outcome) {
    exitCode_ = outcome.exitCode;
    std::vector<Json> answers;
    for (const std::string& line : Lines(outcome.out)) answers.push_back(Json::parse(line));
    return answers;
  }
  Json Answer(const std::string& request) {
    const std::vector<Json> answers = Batch({request});
    EXPECT_EQ(answers.size(), 1U) << request;
    return answers.empty() ? Json() : answers[0];
  }
  [[nodiscard]] int exitCode() const { return exitCode_; }

 private:
  TemporaryFolder folder_;
  int exitCode_ = -1;
};

void ExpectRefusal(const Json& answer, std::int32_t number, const Json& id = 1,
                   const std::string& source = "Lotrix") {
  ASSERT_TRUE(answer.is_object()) << answer;
  EXPECT_EQ(answer.size(), 3U) << answer;
  EXPECT_EQ(answer.value("id", Json("none")), id) << answer;
  EXPECT_EQ(answer.value("ok", Json()), false) << answer;
  const Json error = answer.value("error", Json::object());
  EXPECT_EQ(error.size(), 3U) << answer;
  EXPECT_EQ(error.value("number", Json()), number) << answer;
  EXPECT_EQ(error.value("source", Json()), source) << answer;
  EXPECT_TRUE(error.value("description", Json()).is_string()) << answer;
}

std::string Request(const std::string& operation, const Json& arguments = {}) {
  Json request{{"id", 1}, {"op", operation}};
  if (!arguments.is_null()) request["args"] = arguments;
  return request.dump();
}

const Json kActive{{"id", 1}, {"ok", true}, {"message", "Vaccine is Active"}};
const Json kInactive{{"id", 1}, {"ok", true}, {"message", "Vaccine is inactive"}};
const Json kDone{{"id", 1}, {"ok", true}};

// --- Usage -----------------------------------------------------------------

TEST_F(CommandTest, HelpShowsExamplesFirst) {
  const Outcome outcome = Run({"--help"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.err, "");
  const std::size_t example =
      std::min(outcome.out.find("lotrix init"), outcome.out.find("lotrix call"));
  ASSERT_NE(example, std::string::npos);
  ASSERT_NE(outcome.out.find("--version"), std::string::npos);
  EXPECT_LT(example, outcome.out.find("--version"));
  for (const std::string command : {"init", "operations", "call", "batch", "demo"}) {
    EXPECT_NE(outcome.out.find(command), std::string::npos) << command;
  }
}

TEST_F(CommandTest, VersionNamesTheEngines) {
  const Outcome outcome = Run({"--version"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_NE(outcome.out.find("0.1.0"), std::string::npos);
  EXPECT_NE(outcome.out.find("SQLite"), std::string::npos);
  EXPECT_NE(outcome.out.find("PostgreSQL"), std::string::npos);
}

TEST_F(CommandTest, WrongUsageIsTwoAndGivesNoData) {
  const std::vector<Texts> wrong{{},
                                 {"nosuch"},
                                 {"--nosuch"},
                                 {"init", "--nosuch"},
                                 {"init", "more"},
                                 {"call"},
                                 {"call", "CheckVaccActive", "DTAP"},
                                 {"call", "CheckVaccActive", "--nosuch"},
                                 {"--connection"},
                                 {"batch", "a", "b"}};
  for (const Texts& arguments : wrong) {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.exitCode, 2) << Json(arguments);
    EXPECT_EQ(outcome.out, "") << Json(arguments);
    EXPECT_NE(outcome.err, "") << Json(arguments);
  }
  EXPECT_FALSE(std::filesystem::exists(Path("lotrix.db")));
}

// --- init ------------------------------------------------------------------

TEST_F(CommandTest, InitMakesEmptyTablesInTheDefaultFile) {
  const Outcome outcome = Run({"init"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, "");
  const std::vector<Row> tables =
      Query("SELECT lower(name) FROM sqlite_master WHERE type = 'table' ORDER BY 1");
  EXPECT_EQ(tables, (std::vector<Row>{{"actref"},
                                      {"distrib"},
                                      {"dosesadm"},
                                      {"enroll"},
                                      {"funding"},
                                      {"influenza"},
                                      {"lots"},
                                      {"neworder"},
                                      {"nextid"},
                                      {"physicn"},
                                      {"provhas"},
                                      {"provider"},
                                      {"pvaccref"},
                                      {"sectoref"},
                                      {"stock"},
                                      {"subdiv"},
                                      {"vaccref"},
                                      {"zipcodes"}}));
  for (const Row& table : tables) {
    EXPECT_EQ(Query("SELECT count(*) FROM " + table[0]), (std::vector<Row>{{"0"}})) << table[0];
  }
}

TEST_F(CommandTest, InitAgainIsHarmless) {
  ASSERT_EQ(Run({"init"}).exitCode, 0);
  Query("INSERT INTO funding (fundcode) VALUES ('1')");
  EXPECT_EQ(Run({"init"}).exitCode, 0);
  EXPECT_EQ(Query("SELECT fundcode FROM funding"), (std::vector<Row>{{"1"}}));
}

TEST_F(CommandTest, InitAddsTheSampleDataWithItsKeyRows) {
  EXPECT_EQ(Run({"init", "--sample"}).exitCode, 0);
  EXPECT_EQ(Query("SELECT lower(ctablename) FROM nextid WHERE lower(ctablename) IN ('distrib', "
                  "'dosesadm', 'provhas', 'provider', 'seekdist') ORDER BY 1"),
            (std::vector<Row>{{"distrib"}, {"dosesadm"}, {"provhas"}, {"provider"}, {"seekdist"}}));
  for (const std::string table : {"provider", "pvaccref", "vaccref", "stock", "lots", "funding",
                                  "actref", "sectoref", "subdiv", "zipcodes"}) {
    EXPECT_NE(Query("SELECT count(*) FROM " + table), (std::vector<Row>{{"0"}})) << table;
  }
  const Outcome read = Run({"call", "inventoryOnHandRead", "aDepotPIN=D00001"});
  EXPECT_EQ(read.exitCode, 0) << read.err;
}

TEST_F(CommandTest, SampleDataIsAddedToExistingTablesOnceOnly) {
  ASSERT_EQ(Run({"init"}).exitCode, 0);
  ASSERT_EQ(Run({"init", "--sample"}).exitCode, 0);
  const std::vector<Row> providers = Query("SELECT count(*), count(DISTINCT pin) FROM provider");
  static_cast<void>(Run({"init", "--sample"}));
  EXPECT_EQ(Query("SELECT count(*), count(DISTINCT pin) FROM provider"), providers);
}

TEST_F(CommandTest, TheConnectionIsTheOptionElseTheVariableElseTheDefault) {
  const Variables variables{{"LOTRIX_CONNECTION", "Provider=SQLite;Data Source=variable.db"}};
  EXPECT_EQ(Run({"--connection", "Provider=SQLite;Data Source=option.db", "init"}, "", variables)
                .exitCode,
            0);
  EXPECT_TRUE(std::filesystem::exists(Path("option.db")));
  EXPECT_FALSE(std::filesystem::exists(Path("variable.db")));
  EXPECT_EQ(Run({"init"}, "", variables).exitCode, 0);
  EXPECT_TRUE(std::filesystem::exists(Path("variable.db")));
  EXPECT_FALSE(std::filesystem::exists(Path("lotrix.db")));
}

TEST_F(CommandTest, AnUnavailableDatabaseIsFour) {
  const Texts connection{"--connection", "Provider=SQLite;Data Source=no/such/folder/lotrix.db"};
  for (const Texts& command : {Texts{"init"}, Texts{"call", "vaccineReferenceTableRead"},
                               Texts{"call", "vaccineReferenceTableRead", "--json"}}) {
    Texts arguments = connection;
    arguments.insert(arguments.end(), command.begin(), command.end());
    EXPECT_EQ(Run(arguments).exitCode, 4) << Json(command);
  }
  EXPECT_FALSE(std::filesystem::exists(Path("no")));
}

// --- operations ------------------------------------------------------------

// A parameter's name, type, and default; "-" for a required one.
struct Expected {
  std::string name;
  std::uint32_t dispatchId;
  Texts parameters;
  std::string result;
};

const std::vector<Expected> kMembers{
    {"Connection", 0x68030000, {}, "Connection"},
    {"openConnection", 0x60030002, {"aConnectionString"}, ""},
    {"closeConnection", 0x60030003, {}, ""},
    {"manufacturerProviderOrderRead",
     0x60030008,
     {"aPIN", "aShipmentBeginDate", "aVaccine", "aLotNumber", "aShipmentEndDate"},
     "cResultSet"},
    {"stockTableRead",
     0x60030009,
     {"aPIN", "aVaccine", "aLotNumber", "aShipmentBeginDate", "aShipmentEndDate"},
     "cResultSet"},
    {"vaccineReferenceTableRead", 0x6003000A, {}, "cResultSet"},
    {"inventoryOnHandRead", 0x6003000B, {"aDepotPIN", "aVaccine"}, "cResultSet"},
    {"manufacturerProviderOrderCreateUpdate",
     0x6003000C,
     {"anOrderDate", "aPIN", "aVaccine", "aDoseCount", "aFundingSource", "anExcessAllowance",
      "aStatePO", "aMfg"},
     ""},
    {"providerProfileUpdate",
     0x6003000D,
     {"aPIN",
      "aFacilityLastName",
      "aShippingContact",
      "aShippingAddress1",
      "aShippingAddress2",
      "aShippingCity",
      "aShippingState",
      "aShippingZipCode",
      "aShippingInstructions",
      "aShippingPhoneNumber",
      "aShippingFaxNumber",
      "aMailContact",
      "aMailAddress1",
      "aMailAddress2",
      "aMailCity",
      "aMailState",
      "aMailZipCode",
      "aMailPhoneNumber",
      "aMailFaxNumber",
      "aVaricellaEligibilityStatus",
      "aClassificationCode",
      "aVFCCertificationDate",
      "aPhoneExtension",
      "aFirstName",
      "aMiddleInitial",
      "aTitle",
      "aParentProviderID",
      "anAdditionalID",
      "anActiveStatus",
      "aSubdivision",
      "aCategory1",
      "aCategory2",
      "aCategory3"},
     ""},
    {"providerInventoryAdjustmentUpdate",
     0x6003000E,
     {"aDepotPIN", "anEntryDate", "aTransactionDate", "aTransactionType", "aPIN", "aVaccine",
      "aLotNumber", "aDoseCount"},
     ""},
    {"providerShippingDataUpdate",
     0x6003000F,
     {"aPIN", "aFacilityLastName", "aShippingContact", "aShippingAddress1", "aShippingAddress2",
      "aShippingCity", "aShippingState", "aShippingZipCode", "aShippingInstructions",
      "aPhoneNumber", "aFaxNumber", "aPhoneExtension", "aFirstName", "aMiddleInitial", "aTitle"},
     ""},
    {"DosesAdministeredUpdate",
     0x60030011,
     {"aReportingDate",
      "aPIN",
      "aVaccine",
      "aDoseInSeries",
      "aSector",
      "aDoseCountLessThanOne",
      "aDoseCountForOneYear",
      "aDoseCountForTwoYears",
      "aDoseCountForThreetoFourYears",
      "aDoseCountForFiveYears",
      "aDoseCountForSixtoNineYears",
      "aDoseCountForTentoFourteenYears",
      "aDoseCountForFifteentoNineteenYears",
      "aDoseCountForTwentytoTwentyFourYears",
      "aDoseCountForTwentyFivetoFourtyFourYears",
      "aDoseCountForFourtyFivetoSixtyFourYears",
      "aDoseCountForGreaterThanSixtyFiveYears",
      "anUnknown",
      "aTotalDoses",
      "aUserDefinedCategory1",
      "aUserDefinedCategory2",
      "aUserDefinedCategory3"},
     ""},
    {"DepotProviderOrderUpdate",
     0x60030012,
     {"aShipmentDate", "aDepotID", "aPIN", "aVaccine", "aDoseCount", "aLotNumber", "anExcessAllow",
      "anOrderDate"},
     ""},
    {"providerEnrollmentAddUpdate",
     0x60030013,
     {"aPIN", "aSource", "aAgeGroup", "aAll", "aMedicaid", "aUninsured", "aAmIndian", "aFQHC_RHC",
      "aVFC", "aG317", "aState"},
     ""},
    {"providerAdditionalInfoUpdate",
     0x60030014,
     {"aPIN", "aProviderType", "aClassification", "aCurrentVFCCert", "aCohort", "aEmpIdNum",
      "aQuorvin"},
     ""},
    {"physicianAddUpdate",
     0x60030015,
     {"aPIN", "aLastName", "aFirstName", "aMiddleInitial", "aTitle", "aSiteMedID", "aMedicaidNum",
      "aLicenseNum"},
     ""},
    {"provinvAdd", 0x60030016, {"aPIN", "aVacc", "aInv", "aIdate"}, ""},
    {"physicianDeleteByPin", 0x60030017, {"aPIN"}, ""},
    {"CheckVaccActive", 0x60030018, {"aVaccine"}, ""}};

TEST_F(CommandTest, OperationsListsThePublishedMembersInOrder) {
  const Outcome outcome = Run({"operations"});
  EXPECT_EQ(outcome.exitCode, 0);
  std::size_t from = 0;
  for (const Expected& member : kMembers) {
    const std::size_t at = outcome.out.find(member.name, from);
    ASSERT_NE(at, std::string::npos) << member.name;
    from = at;
    for (const std::string& parameter : member.parameters) {
      EXPECT_NE(outcome.out.find(parameter, from), std::string::npos) << parameter;
    }
  }
  EXPECT_FALSE(std::filesystem::exists(Path("lotrix.db")));
}

TEST_F(CommandTest, OperationsJsonHasEveryMemberWithItsParameters) {
  const Outcome outcome = Run({"operations", "--json"});
  EXPECT_EQ(outcome.exitCode, 0);
  const Json members = Json::parse(outcome.out);
  ASSERT_TRUE(members.is_array());
  ASSERT_EQ(members.size(), kMembers.size());
  for (std::size_t i = 0; i < kMembers.size(); ++i) {
    const Json& member = members[i];
    const std::string name = kMembers[i].name;
    EXPECT_EQ(member.size(), 5U) << member;
    EXPECT_EQ(member.at("name"), name);
    EXPECT_EQ(member.at("dispid"), kMembers[i].dispatchId) << name;
    EXPECT_TRUE(member.at("kind").is_string());
    Texts parameters;
    for (const Json& parameter : member.at("parameters")) {
      EXPECT_TRUE(parameter.at("type").is_string());
      EXPECT_TRUE(parameter.at("optional").is_boolean());
      EXPECT_TRUE(parameter.contains("default") || parameter.size() == 3U);
      parameters.push_back(parameter.at("name"));
    }
    EXPECT_EQ(parameters, kMembers[i].parameters) << name;
    ASSERT_TRUE(member.contains("result")) << name;
    const Json& result = member.at("result");
    const std::string text = result.is_string() ? result.get<std::string>() : "";
    if (name == "Connection") {
      EXPECT_NE(text.find("Connection"), std::string::npos);
      EXPECT_NE(member.at("kind"), members[1].at("kind"));
    } else {
      EXPECT_EQ(text, kMembers[i].result) << name;
      EXPECT_EQ(member.at("kind"), members[1].at("kind"));
    }
  }
}

std::string AsText(const Json& value) {
  return value.is_string() ? value.get<std::string>() : value.dump();
}

TEST_F(CommandTest, OperationsJsonTellsTypesOptionalMarksAndDefaults) {
  const Json order =
      Json::parse(Run({"operations", "manufacturerProviderOrderCreateUpdate", "--json"}).out);
  ASSERT_TRUE(order.is_array());
  ASSERT_EQ(order.size(), 1U);
  const Json parameters = order[0].at("parameters");
  ASSERT_EQ(parameters.size(), 8U);
  const Texts types{"String", "String", "String", "Long", "String", "String", "String", "String"};
  for (std::size_t i = 0; i < 8; ++i) {
    EXPECT_EQ(parameters[i].at("type"), types[i]);
    EXPECT_EQ(parameters[i].at("optional"), i >= 5);
    EXPECT_EQ(AsText(parameters[i].value("default", Json())), i == 5 ? "1" : "null");
  }
  const Json doses =
      Json::parse(Run({"operations", "DosesAdministeredUpdate", "--json"}).out)[0].at("parameters");
  ASSERT_EQ(doses.size(), 22U);
  for (std::size_t i = 0; i < 22; ++i) {
    EXPECT_EQ(doses[i].at("type"), i < 5 ? "String" : "Long");
    EXPECT_EQ(doses[i].at("optional"), i >= 4);
    EXPECT_EQ(AsText(doses[i].value("default", Json())), i < 4 ? "null" : i == 4 ? "1" : "0");
  }
  const Json profile =
      Json::parse(Run({"operations", "providerProfileUpdate", "--json"}).out)[0].at("parameters");
  ASSERT_EQ(profile.size(), 33U);
  for (std::size_t i = 0; i < 33; ++i) {
    EXPECT_EQ(profile[i].at("type"), i < 19 ? "String" : i == 19 ? "Boolean" : "Variant");
    EXPECT_EQ(profile[i].at("optional"), i >= 20);
  }
}

// --- call ------------------------------------------------------------------

TEST_F(CommandTest, CallShowsATableOfTheResult) {
  MakeDatabase();
  const Outcome outcome = Run({"call", "stockTableRead", "aPIN=P1"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.err, "");
  const std::regex table(
      "[^\n]*\\bpin\\b[^\n]*\\bdatein\\b[^\n]*\\bdoses\\b[^\n]*\\blot\\b[^\n]*\\bvaccine\\b[^\n]*"
      "\\bmaker\\b[^\n]*\\bexpiry\\b[^\n]*\n(?:[^\n]*\n)?"
      "[^\n]*P1[^\n]*03/07/2004[^\n]*12[^\n]*AB-1[^\n]*DTAP[^\n]*12/31/2005[^\n]*\n"
      "[^\n]*P1[^\n]*03/06/2004[^\n]*5[^\n]*AB2[^\n]*DTAP[^\n]*\n[^]*");
  EXPECT_TRUE(std::regex_match(outcome.out, table)) << outcome.out;
}

TEST_F(CommandTest, CallOfAnEmptyResultShowsItsHeaders) {
  MakeDatabase();
  const Outcome outcome = Run({"call", "stockTableRead", "aLotNumber=NONE"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_NE(outcome.out.find("vaccine"), std::string::npos);
  EXPECT_EQ(outcome.out.find("DTAP"), std::string::npos);
}

TEST_F(CommandTest, CallShowsTheMessage) {
  MakeDatabase();
  Outcome outcome = Run({"call", "CheckVaccActive", "aVaccine=DTAP"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, "Vaccine is Active\n");
  EXPECT_EQ(outcome.err, "");
  outcome = Run({"call", "CheckVaccActive", "aVaccine=OLD"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, "Vaccine is inactive\n");
}

TEST_F(CommandTest, CallOfAWriteShowsNothing) {
  MakeDatabase();
  const Outcome outcome =
      Run({"call", "manufacturerProviderOrderCreateUpdate", "anOrderDate=1/5/2004", "aPIN=p1",
           "aVaccine=DTAP", "aDoseCount=10", "aFundingSource=1", "aMfg=SKB"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(Query("SELECT pin, orddate, orddose FROM neworder"),
            (std::vector<Row>{{"P1", "2004-01-05", "10"}}));
}

TEST_F(CommandTest, CallReadsNamesWithoutCaseAndValuesAfterTheFirstEqualsSign) {
  MakeDatabase();
  Query("INSERT INTO pvaccref (vaccine, locactiv) VALUES ('A=B', 0)");
  EXPECT_EQ(Run({"call", "CHECKVACCACTIVE", "AVACCINE=A=B"}).out, "Vaccine is Active\n");
  EXPECT_EQ(Run({"call", "CheckVaccActive", "aVaccine="}).out, "Vaccine is inactive\n");
}

TEST_F(CommandTest, CallShowsARefusalOnStandardError) {
  MakeDatabase();
  const Outcome outcome =
      Run({"call", "manufacturerProviderOrderRead", "aPIN= ", "aShipmentBeginDate=1/5/2004"});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "-2147219504 (2000) LOTRIX DLL: A null provider PIN was entered\n");
}

TEST_F(CommandTest, CallShowsAnEnginesRefusalOnStandardError) {
  const Outcome outcome = Run({"call", "vaccineReferenceTableRead"});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "-2147217865 (80040E37) LOTRIX DLL: no such table: pvaccref\n");
}

TEST_F(CommandTest, CallOfAnUnknownMemberOrArgumentIsRefused) {
  MakeDatabase();
  const std::vector<std::pair<Texts, std::string>> calls{
      {{"call", "nosuch"}, "438"},
      {{"call", "CheckVaccActive", "aBogus=1"}, "448"},
      {{"call", "CheckVaccActive"}, "449"},
      {{"call", "manufacturerProviderOrderCreateUpdate", "anOrderDate=1/5/2004", "aPIN=P1",
        "aVaccine=DTAP", "aDoseCount=many", "aFundingSource=1"},
       "13"},
      {{"call", "CheckVaccActive", "aVaccine=\xff"}, "5"}};
  for (const auto& [arguments, number] : calls) {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.exitCode, 1) << number;
    EXPECT_EQ(outcome.out, "") << number;
    EXPECT_TRUE(std::regex_match(outcome.err, std::regex(number + " \\([^)]*\\) Lotrix: [^\n]+\n")))
        << outcome.err;
  }
}

TEST_F(CommandTest, CallJsonIsTheAnswerOfABatchRefusedOrNot) {
  MakeDatabase();
  Outcome outcome = Run({"call", "CheckVaccActive", "aVaccine=DTAP", "--json"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(Json::parse(outcome.out),
            (Json{{"id", nullptr}, {"ok", true}, {"message", "Vaccine is Active"}}));
  outcome = Run({"call", "stockTableRead", "aLotNumber=AB1", "--json"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(
      Json::parse(outcome.out),
      (Json{{"id", nullptr},
            {"ok", true},
            {"result",
             {{"headers", {"pin", "datein", "doses", "lot", "vaccine", "maker", "expiry"}},
              {"rows", {{"P1", "03/07/2004", "12", "AB-1", "DTAP", nullptr, "12/31/2005"}}}}}}));
  outcome = Run({"call", "closeConnection", "--json"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(Json::parse(outcome.out), (Json{{"id", nullptr}, {"ok", true}}));
  outcome = Run({"call", "inventoryOnHandRead", "aDepotPIN=", "--json"});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(Json::parse(outcome.out), (Json{{"id", nullptr},
                                            {"ok", false},
                                            {"error",
                                             {{"number", 20022},
                                              {"source", "LOTRIX DLL"},
                                              {"description", "A NULL depot pin is entered"}}}}));
  outcome = Run({"call", "nosuch", "--json"});
  EXPECT_EQ(outcome.exitCode, 1);
  ExpectRefusal(Json::parse(outcome.out), 438, nullptr);
}

TEST_F(CommandTest, AnUnknownProviderHasItsText) {
  const Outcome outcome =
      Run({"--connection", "Provider=NoSuch", "call", "vaccineReferenceTableRead"});
  EXPECT_TRUE(std::regex_match(
      outcome.err, std::regex("3706 \\([^)]*\\) LOTRIX DLL: Provider cannot be found\\. It may not "
                              "be properly installed\\.\n")))
      << outcome.err;
  EXPECT_EQ(outcome.out, "");
}

// --- The trace -------------------------------------------------------------

TEST_F(CommandTest, TraceLinesHaveTimeProcessAndEvent) {
  MakeDatabase();
  const Outcome outcome = Run({"call", "inventoryOnHandRead", "aDepotPIN="});
  const Texts lines = Lines(Content(LogPath()));
  const std::regex form(
      "\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{6} (\\d+) (information|error) \\S.*");
  for (const std::string& line : lines) {
    std::smatch parts;
    ASSERT_TRUE(std::regex_match(line, parts, form)) << line;
    EXPECT_EQ(parts[1], std::to_string(outcome.process));
  }
  EXPECT_EQ(TraceLines(LogPath()),
            (Texts{"information Begin: openConnection()", "information Begin: openConnection()",
                   "information Begin: inventoryOnHandRead()",
                   "error Problem: In inventoryOnHandRead() A NULL depot pin is entered",
                   "information Begin: Class_Terminate()", "information End: Class_Terminate()"}));
}

TEST_F(CommandTest, TheLogIsTheOptionsElseTheVariables) {
  MakeDatabase();
  EXPECT_EQ(Run({"--log", Path("option.log"), "call", "closeConnection"}).exitCode, 0);
  EXPECT_GT(TraceLines(Path("option.log")).size(), 2U);
  EXPECT_FALSE(std::filesystem::exists(LogPath()));
  EXPECT_EQ(Run({"call", "closeConnection"}).exitCode, 0);
  EXPECT_GT(TraceLines(LogPath()).size(), 2U);
}

TEST_F(CommandTest, WithoutEitherTheLogIsInTheStateFolderWhichIsMade) {
  std::filesystem::create_directory(Path("state"));
  const Variables variables{{"LOTRIX_LOG", ""}, {"XDG_STATE_HOME", Path("state")}};
  EXPECT_EQ(Run({"call", "closeConnection"}, "", variables).exitCode, 0);
  EXPECT_GT(TraceLines(Path("state/lotrix/Lotrix.log")).size(), 2U);
  struct stat status {};
  ASSERT_EQ(stat(Path("state/lotrix").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0700U);
}

TEST_F(CommandTest, NoOtherFolderIsMadeAndAMissingLogIsNoFailure) {
  MakeDatabase();
  EXPECT_EQ(
      Run({"--log", Path("no/such/trace.log"), "call", "CheckVaccActive", "aVaccine=DTAP"}).out,
      "Vaccine is Active\n");
  EXPECT_FALSE(std::filesystem::exists(Path("no")));
  const Variables variables{{"LOTRIX_LOG", ""}, {"XDG_STATE_HOME", Path("nostate")}};
  const Outcome outcome = Run({"call", "CheckVaccActive", "aVaccine=DTAP"}, "", variables);
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, "Vaccine is Active\n");
  EXPECT_FALSE(std::filesystem::exists(Path("nostate")));
}

// --- batch: order and frame ------------------------------------------------

// A batch that is talked with over pipes.
class Talk {
 public:
  template <class Become>
  explicit Talk(Become become) {
    std::array<int, 2> in{};
    std::array<int, 2> out{};
    if (pipe(in.data()) != 0 || pipe(out.data()) != 0) throw std::runtime_error("no pipe");
    child_ = fork();
    if (child_ == 0) {
      dup2(in[0], STDIN_FILENO);
      dup2(out[1], STDOUT_FILENO);
      for (const int end : {in[0], in[1], out[0], out[1]}) close(end);
      become();
    }
    close(in[0]);
    close(out[1]);
    in_ = in[1];
    out_ = out[0];
  }
  ~Talk() {
    if (child_ != 0) static_cast<void>(Finish());
  }
  Talk(const Talk&) = delete;
  Talk& operator=(const Talk&) = delete;

  void Say(const std::string& text) const {
    ASSERT_EQ(write(in_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }
  // The next line of the answers, or nothing when none comes.
  std::string Hear(int milliseconds = 20000) {
    while (heard_.find('\n') == std::string::npos) {
      pollfd waiting{.fd = out_, .events = POLLIN, .revents = 0};
      if (poll(&waiting, 1, milliseconds) <= 0) return {};
      std::array<char, 4096> bytes{};
      const ssize_t size = read(out_, bytes.data(), bytes.size());
      if (size <= 0) return {};
      heard_.append(bytes.data(), static_cast<std::size_t>(size));
    }
    const std::string line = heard_.substr(0, heard_.find('\n'));
    heard_.erase(0, line.size() + 1);
    return line;
  }
  int Finish() {
    close(in_);
    int status = 0;
    waitpid(child_, &status, 0);
    close(out_);
    child_ = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  pid_t child_ = 0;
  int in_ = -1;
  int out_ = -1;
  std::string heard_;
};

TEST_F(CommandTest, EveryAnswerIsWrittenBeforeTheNextRequestIsRead) {
  MakeDatabase();
  Talk talk([this] { Become({"batch"}, {}); });
  talk.Say(R"({"id": 1, "op": "CheckVaccActive", "args": ["DTAP"]})"
           "\n");
  EXPECT_EQ(Json::parse(talk.Hear()), kActive);
  Query("UPDATE pvaccref SET locactiv = 1");
  talk.Say(R"({"id": 1, "op": "CheckVaccActive", "args": ["DTAP"]})"
           "\n");
  EXPECT_EQ(Json::parse(talk.Hear()), kInactive);
  talk.Say("rubbish\n");
  ExpectRefusal(Json::parse(talk.Hear()), 5, nullptr);
  talk.Say("\n   \n");
  EXPECT_EQ(talk.Hear(200), "");
  talk.Say(R"({"id": 1, "op": "closeConnection"})"
           "\n");
  EXPECT_EQ(Json::parse(talk.Hear()), kDone);
  EXPECT_EQ(talk.Finish(), 1);
}

TEST_F(CommandTest, AWriteIsThereWhenItsAnswerComes) {
  MakeDatabase();
  Talk talk([this] { Become({"batch"}, {}); });
  talk.Say(Request("manufacturerProviderOrderCreateUpdate",
                   {"1/5/2004", "P1", "DTAP", 10, "1", nullptr, nullptr, "SKB"}) +
           "\n");
  EXPECT_EQ(Json::parse(talk.Hear()), kDone);
  EXPECT_EQ(Query("SELECT orddose FROM neworder"), (std::vector<Row>{{"10"}}));
  EXPECT_EQ(talk.Finish(), 0);
}

TEST_F(CommandTest, AnswersComeInTheOrderOfTheRequestsWithTheirIds) {
  MakeDatabase();
  const std::vector<Json> ids{1,  "two", 2.5,  true, nullptr,        Json::array({1, "a"}),
                              -7, "",    "é😀", 0,    {{"key", "x"}}, 9007199254740993};
  Texts requests;
  for (const Json& id : ids) {
    requests.push_back(Json{{"id", id}, {"op", "closeConnection"}}.dump());
  }
  requests.emplace_back(R"({"op": "closeConnection"})");
  const std::vector<Json> answers = Batch(requests);
  EXPECT_EQ(exitCode(), 0);
  ASSERT_EQ(answers.size(), ids.size() + 1);
  for (std::size_t i = 0; i < ids.size(); ++i) {
    EXPECT_EQ(answers[i], (Json{{"id", ids[i]}, {"ok", true}}));
  }
  EXPECT_EQ(answers.back(), (Json{{"id", nullptr}, {"ok", true}}));
}

TEST_F(CommandTest, ABatchWithoutRequestsIsWell) {
  const Outcome outcome = Run({"batch"}, "");
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, "");
  const Outcome blank = Run({"batch"}, "\n  \n\n");
  EXPECT_EQ(blank.exitCode, 0);
  EXPECT_EQ(blank.out, "");
}

TEST_F(CommandTest, ABatchMayBeAFileAndItsLastLineMayHaveNoEnd) {
  MakeDatabase();
  std::ofstream(Path("requests.jsonl")) << Request("CheckVaccActive", {"DTAP"}) << "\n\n"
                                        << Request("CheckVaccActive", {"OLD"});
  const std::vector<Json> answers = Answers(Run({"batch", "requests.jsonl"}));
  EXPECT_EQ(answers, (std::vector<Json>{kActive, kInactive}));
  EXPECT_EQ(exitCode(), 0);
}

TEST_F(CommandTest, AMissingFileIsReported) {
  const Outcome outcome = Run({"batch", "nosuch.jsonl"});
  EXPECT_TRUE(outcome.exitCode == 1 || outcome.exitCode == 2) << outcome.exitCode;
  EXPECT_EQ(outcome.out, "");
  EXPECT_NE(outcome.err, "");
}

TEST_F(CommandTest, ABatchIsOneWhenAnyAnswerWasARefusal) {
  MakeDatabase();
  EXPECT_EQ(
      Batch({Request("closeConnection"), Request("nosuch"), Request("closeConnection")}).size(),
      3U);
  EXPECT_EQ(exitCode(), 1);
}

TEST_F(CommandTest, ABatchWithoutItsDatabaseAnswersEveryRequest) {
  const std::vector<Json> answers =
      Batch({Request("vaccineReferenceTableRead"), Request("Connection")},
            {{"LOTRIX_CONNECTION", "Provider=SQLite;Data Source=no/such/lotrix.db"}});
  ASSERT_EQ(answers.size(), 2U);
  ExpectRefusal(answers[0], Hex(0x80004005U), 1, "LOTRIX DLL");
  ExpectRefusal(answers[1], Hex(0x80004005U), 1, "LOTRIX DLL");
  EXPECT_EQ(exitCode(), 1);
}

TEST_F(CommandTest, OneServiceObjectServesTheWholeRun) {
  MakeDatabase();
  static_cast<void>(Batch({Request("Connection"), Request("closeConnection")}));
  EXPECT_EQ(TraceLines(LogPath()),
            (Texts{"information Begin: openConnection()", "information Begin: openConnection()",
                   "information Begin: Get Connection()", "information End: GetConnection()",
                   "information Begin: closeConnection()", "information End: closeConnection()",
                   "information Begin: Class_Terminate()", "information End: Class_Terminate()"}));
}

// --- batch: requests that are none -----------------------------------------

TEST_F(CommandTest, ALineThatIsNoObjectWithAnOpIsFiveWithItsId) {
  const std::vector<std::pair<std::string, Json>> lines{
      {"rubbish", nullptr},
      {"{", nullptr},
      {"}", nullptr},
      {"[]", nullptr},
      {R"([{"id": 1, "op": "closeConnection"}])", nullptr},
      {"5", nullptr},
      {"null", nullptr},
      {"\"closeConnection\"", nullptr},
      {"{}", nullptr},
      {R"({"id": 7})", 7},
      {R"({"id": "x", "args": []})", "x"},
      {R"({"id": 7, "op": 5})", 7},
      {R"({"id": 7, "op": null})", 7},
      {R"({"id": 7, "op": ["closeConnection"]})", 7},
      {R"({"id": 7, "OP": "closeConnection"})", 7},
      {R"({"id": 7, "op": "closeConnection", "args": 5})", 7},
      {R"({"id": 7, "op": "closeConnection", "args": "x"})", 7},
      {R"({"id": 7, "op": "closeConnection", "args": true})", 7},
      {R"({"op": "closeConnection", "args": 5})", nullptr},
      {R"({"id": 7, "op": "closeConnection"} x)", nullptr},
      {R"({"id": 7, "op": "closeConnection"}{"id": 8, "op": "closeConnection"})", nullptr},
      {R"({'id': 7, 'op': 'closeConnection'})", nullptr}};
  Texts requests;
  for (const auto& [line, id] : lines) requests.push_back(line);
  const std::vector<Json> answers = Batch(requests);
  EXPECT_EQ(exitCode(), 1);
  ASSERT_EQ(answers.size(), lines.size());
  for (std::size_t i = 0; i < lines.size(); ++i) {
    SCOPED_TRACE(lines[i].first);
    ExpectRefusal(answers[i], 5, lines[i].second);
  }
}

TEST_F(CommandTest, ATextThatIsNoUnicodeIsFiveWithItsId) {
  MakeDatabase();
  const Texts values{"\xff",    "a\xC3",   "\xC0\xAF",  "\xED\xA0\x80",  "\xF4\x90\x80\x80",
                     "\\ud800", "\\udc00", "x\\ud83dy", "\\ude00\\ud83d"};
  Texts requests;
  for (const std::string& value : values) {
    requests.push_back(R"({"id": 9, "op": "CheckVaccActive", "args": {"aVaccine": ")" + value +
                       "\"}}");
  }
  requests.push_back(Request("CheckVaccActive", {"DTAP"}));
  const std::vector<Json> answers = Batch(requests);
  ASSERT_EQ(answers.size(), values.size() + 1);
  for (std::size_t i = 0; i < values.size(); ++i) {
    SCOPED_TRACE(values[i]);
    ExpectRefusal(answers[i], 5, 9);
  }
  EXPECT_EQ(answers.back(), kActive);
}

TEST_F(CommandTest, ANumberBeyondAllOrANestTooDeepKeepsItsId) {
  const std::string deep = std::string(250, '[') + std::string(250, ']');
  const std::vector<Json> answers =
      Batch({R"({"id": 1, "op": "stockTableRead", "args": {"aPIN": 1e999}})",
             R"({"id": 2, "op": "stockTableRead", "args": {"aPIN": )" + deep + "}}"});
  ASSERT_EQ(answers.size(), 2U);
  ExpectRefusal(answers[0], 5, 1);
  ExpectRefusal(answers[1], 5, 2);
}

TEST_F(CommandTest, NoUnicodeInOtherPlacesIsFiveToo) {
  const std::vector<Json> answers =
      Batch({"{\"id\": \"\xff\", \"op\": \"closeConnection\"}",
             R"({"id": "\ud800", "op": "closeConnection"})", "{\"id\": 3, \"op\": \"close\xff\"}",
             "\xff\xfe", Request("closeConnection")});
  ASSERT_EQ(answers.size(), 5U);
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(answers[i].at("ok"), false);
    EXPECT_EQ(answers[i].at("error").at("number"), 5) << answers[i];
    EXPECT_EQ(answers[i].at("error").at("source"), "Lotrix");
  }
  EXPECT_EQ(answers[4], kDone);
}

TEST_F(CommandTest, ValidEscapesAreTheirCharacters) {
  MakeDatabase();
  Query("INSERT INTO pvaccref (vaccine, locactiv) VALUES ('é😀', 0)");
  EXPECT_EQ(Answer(R"({"id": 1, "op": "CheckVaccActive", "args": ["\u00e9\ud83d\ude00"]})"),
            kActive);
  EXPECT_EQ(Answer("{\"id\": 1, \"op\": \"CheckVaccActive\", \"args\": [\"é😀\"]}"), kActive);
}

TEST_F(CommandTest, ANulInAValueIsRefusedByTheStatement) {
  MakeDatabase();
  ExpectRefusal(Answer(R"({"id": 1, "op": "CheckVaccActive", "args": ["DTAP\u0000"]})"),
                Hex(0x80040E14U), 1, "LOTRIX DLL");
}

TEST_F(CommandTest, DeepNestingAndNulBytesDoNotEndTheRun) {
  MakeDatabase();
  const std::string open(200000, '[');
  const std::string close(200000, ']');
  std::string objects;
  for (int i = 0; i < 100000; ++i) objects += "{\"a\":";
  const std::string head = R"({"id": 1, "op": "CheckVaccActive", "args": )";
  const Texts requests{open,
                       open + close,
                       objects,
                       objects + "1" + std::string(100000, '}'),
                       head + open + close + "}",
                       head + "{\"aVaccine\": " + open + close + "}}",
                       R"({"op": "closeConnection", "id": )" + open + close + "}",
                       "{\"id\": 1, \0\"op\": \"closeConnection\"}"s,
                       "\0"s};
  std::string input;
  for (const std::string& request : requests) input += request + "\n";
  const Outcome outcome = Run({"batch"}, input + Request("CheckVaccActive", {"DTAP"}) + "\n");
  EXPECT_EQ(outcome.exitCode, 1);
  const Texts lines = Lines(outcome.out);
  ASSERT_EQ(lines.size(), requests.size() + 1);
  EXPECT_EQ(Json::parse(lines.back()), kActive);
  for (const std::size_t refused : {0U, 1U, 2U, 3U, 4U, 5U, 7U, 8U}) {
    const Json answer = Json::parse(lines[refused]);
    EXPECT_EQ(answer.at("ok"), false) << refused;
    const Json number = answer.at("error").at("number");
    EXPECT_TRUE(number == 5 || number == 13) << refused << number;
  }
}

TEST_F(CommandTest, VeryLongLinesAreAnswered) {
  MakeDatabase();
  const std::string name(5000000, 'A');
  Query("INSERT INTO pvaccref (vaccine, locactiv) VALUES ('" + name + "', 0)");
  const std::vector<Json> answers =
      Batch({Request("CheckVaccActive", {name}), Request("CheckVaccActive", {name + "B"}),
             std::string(5000000, 'x'), Request("CheckVaccActive", {"DTAP"})});
  ASSERT_EQ(answers.size(), 4U);
  EXPECT_EQ(answers[0], kActive);
  EXPECT_EQ(answers[1], kInactive);
  ExpectRefusal(answers[2], 5, nullptr);
  EXPECT_EQ(answers[3], kActive);
}

// --- batch: arguments ------------------------------------------------------

TEST_F(CommandTest, ArgumentsComeByNameOrInOrder) {
  MakeDatabase();
  const std::vector<Json> answers = Batch(
      {Request("CheckVaccActive", {{"aVaccine", "DTAP"}}), Request("CheckVaccActive", {"DTAP"}),
       Request("cHECKvACCaCTIVE", {{"AVACCINE", "DTAP"}}), Request("closeConnection"),
       Request("closeConnection", Json::array()), Request("closeConnection", Json::object())});
  EXPECT_EQ(answers, (std::vector<Json>{kActive, kActive, kActive, kDone, kDone, kDone}));
  EXPECT_EQ(exitCode(), 0);
}

TEST_F(CommandTest, NullAndAbsentAreOmitted) {
  MakeDatabase();
  const std::vector<Json> answers =
      Batch({Request("stockTableRead"), Request("stockTableRead", {nullptr, nullptr, nullptr}),
             Request("stockTableRead", {{"aPIN", nullptr}, {"aVaccine", "DTAP"}}),
             Request("stockTableRead", {nullptr, "DTAP"})});
  ASSERT_EQ(answers.size(), 4U);
  for (const Json& answer : answers) {
    EXPECT_EQ(answer, answers[0]);
    EXPECT_EQ(answer.at("result").at("rows").size(), 2U);
  }
}

TEST_F(CommandTest, AnOmittedArgumentPassesItsDefault) {
  MakeDatabase();
  const Json order{{"anOrderDate", "1/5/2004"}, {"aPIN", "P1"},          {"aVaccine", "DTAP"},
                   {"aDoseCount", 10},          {"aFundingSource", "1"}, {"aMfg", "SKB"}};
  EXPECT_EQ(Answer(Request("manufacturerProviderOrderCreateUpdate", order)), kDone);
  Json outOfRange = order;
  outOfRange["anExcessAllowance"] = "6";
  ExpectRefusal(Answer(Request("manufacturerProviderOrderCreateUpdate", outOfRange)),
                Hex(0x80040000U) + 20068, 1, "LOTRIX DLL");
  Json omitted = order;
  omitted["anExcessAllowance"] = nullptr;
  EXPECT_EQ(Answer(Request("manufacturerProviderOrderCreateUpdate", omitted)), kDone);
}

TEST_F(CommandTest, ARequiredArgumentOmittedIs449) {
  for (const std::string& request :
       {Request("CheckVaccActive"), Request("CheckVaccActive", Json::array()),
        Request("CheckVaccActive", Json::object()), Request("CheckVaccActive", {nullptr}),
        Request("CheckVaccActive", {{"aVaccine", nullptr}}),
        Request("manufacturerProviderOrderRead", {"P1"}),
        Request("manufacturerProviderOrderRead", {{"aShipmentBeginDate", "1/5/2004"}})}) {
    SCOPED_TRACE(request);
    ExpectRefusal(Answer(request), 449);
  }
}

TEST_F(CommandTest, TooManyArgumentsAre450) {
  ExpectRefusal(Answer(Request("closeConnection", {"x"})), 450);
  ExpectRefusal(Answer(Request("CheckVaccActive", {"x", "y"})), 450);
  ExpectRefusal(Answer(Request("CheckVaccActive", {"x", nullptr})), 450);
}

TEST_F(CommandTest, AnUnknownArgumentNameIs448) {
  ExpectRefusal(Answer(Request("closeConnection", {{"aBogus", "x"}})), 448);
  ExpectRefusal(Answer(Request("CheckVaccActive", {{"aVaccine", "x"}, {"aBogus", nullptr}})), 448);
}

TEST_F(CommandTest, ANameGivenTwiceIsFive) {
  ExpectRefusal(Answer(Request("CheckVaccActive", {{"aVaccine", "x"}, {"AVACCINE", "y"}})), 5);
}

TEST_F(CommandTest, AnUnknownMemberIs438) {
  for (const std::string name : {"nosuch", "", "Class_Terminate", "Class_Initialize", "GetNextID",
                                 "closeConnection ", "ValidateProviderPIN", "CLEAR"}) {
    SCOPED_TRACE(name);
    ExpectRefusal(Answer(Request(name)), 438);
  }
}

TEST_F(CommandTest, ChecksAreMadeInTheirOrder) {
  const Json bad{{"aBogus", 1}, {"aDoseCount", "many"}};
  ExpectRefusal(Answer(Request("nosuch", bad)), 438);
  ExpectRefusal(Answer(Request("manufacturerProviderOrderCreateUpdate", bad)), 448);
  ExpectRefusal(Answer(Request("manufacturerProviderOrderCreateUpdate",
                               {nullptr, "P1", "DTAP", "many", "1", "1", "", "", "too many"})),
                450);
  ExpectRefusal(Answer(Request("manufacturerProviderOrderCreateUpdate", {{"aDoseCount", "many"}})),
                449);
  ExpectRefusal(Answer(Request("manufacturerProviderOrderCreateUpdate",
                               {"1/5/2004", "P1", "DTAP", "many", "1"})),
                13);
}

TEST_F(CommandTest, ConversionsGoFromLeftToRight) {
  Json counts{"1/5/2004", "P1", "DTAP", "1", "1", "99999999999", "many"};
  ExpectRefusal(Answer(Request("DosesAdministeredUpdate", counts)), 6);
  counts[5] = "many";
  counts[6] = "99999999999";
  ExpectRefusal(Answer(Request("DosesAdministeredUpdate", counts)), 13);
  counts[3] = Json::array();
  counts[5] = "99999999999";
  ExpectRefusal(Answer(Request("DosesAdministeredUpdate", counts)), 13);
}

TEST_F(CommandTest, NothingOfTheseIsLogged) {
  static_cast<void>(Batch(
      {"rubbish", Request("nosuch"), Request("CheckVaccActive"),
       Request("CheckVaccActive", {{"aBogus", 1}}), Request("CheckVaccActive", {1, 2}),
       Request("CheckVaccActive", {Json::array()}),
       Request("manufacturerProviderOrderCreateUpdate", {"1/5/2004", "P1", "DTAP", "many", "1"})}));
  EXPECT_EQ(TraceLines(LogPath()),
            (Texts{"information Begin: openConnection()", "information Begin: openConnection()",
                   "information Begin: Class_Terminate()", "information End: Class_Terminate()"}));
}

TEST_F(CommandTest, NumbersAndLogicalsBecomeTexts) {
  MakeDatabase();
  Query(
      "INSERT INTO pvaccref (vaccine, locactiv) VALUES ('12', 0), ('1.5', 0), ('True', 0), "
      "('False', 0), ('-7', 0), ('1E+15', 0)");
  for (const Json& value : std::vector<Json>{12, 12.0, 1.5, true, false, -7, 1e15, "12"}) {
    EXPECT_EQ(Answer(Request("CheckVaccActive", Json::array({value}))), kActive) << value;
  }
  EXPECT_EQ(Answer(Request("CheckVaccActive", Json::array({13}))), kInactive);
}

TEST_F(CommandTest, AnArrayOrObjectIsThirteen) {
  ExpectRefusal(Answer(Request("CheckVaccActive", Json::array({Json::array()}))), 13);
  ExpectRefusal(Answer(Request("CheckVaccActive", Json::array({Json::object()}))), 13);
  ExpectRefusal(Answer(Request("CheckVaccActive", {{"aVaccine", {1, 2}}})), 13);
}

TEST_F(CommandTest, DoseCountsAreConvertedAsAutomationDoes) {
  MakeDatabase();
  const auto order = [this](const Json& doses) {
    Query("DELETE FROM neworder");
    return Answer(Request("manufacturerProviderOrderCreateUpdate", {{"anOrderDate", "1/5/2004"},
                                                                    {"aPIN", "P1"},
                                                                    {"aVaccine", "DTAP"},
                                                                    {"aDoseCount", doses},
                                                                    {"aFundingSource", "1"},
                                                                    {"aMfg", "SKB"}}));
  };
  const std::vector<std::pair<Json, std::string>> stored{
      {10, "10"},     {2.5, "2"},        {3.5, "4"},
      {"2.5", "2"},   {"1,000", "1000"}, {" $12 ", "12"},
      {"&H1F", "31"}, {"1e2", "100"},    {2147483647, "2147483647"}};
  for (const auto& [doses, expected] : stored) {
    EXPECT_EQ(order(doses), kDone) << doses;
    EXPECT_EQ(Query("SELECT orddose FROM neworder"), (std::vector<Row>{{expected}})) << doses;
  }
  const std::int32_t tooFew = Hex(0x80040000U) + 20025;
  ExpectRefusal(order(0), tooFew, 1, "LOTRIX DLL");
  ExpectRefusal(order(0.5), tooFew, 1, "LOTRIX DLL");
  ExpectRefusal(order(true), tooFew, 1, "LOTRIX DLL");
  ExpectRefusal(order(false), tooFew, 1, "LOTRIX DLL");
  ExpectRefusal(order(""), 13);
  ExpectRefusal(order("many"), 13);
  ExpectRefusal(order("1 234"), 13);
  ExpectRefusal(order("True"), 13);
  ExpectRefusal(order(2147483648), 6);
  ExpectRefusal(order(1e300), 6);
  ExpectRefusal(order("2147483647.5"), 6);
  ExpectRefusal(order(Json::array({1})), 13);
  EXPECT_EQ(Query("SELECT count(*) FROM neworder"), (std::vector<Row>{{"0"}}));
}

TEST_F(CommandTest, LogicalsAreTrueFalseOrNumbers) {
  MakeDatabase();
  const auto profile = [this](const Json& eligible) {
    Json arguments = Json::array();
    for (int i = 0; i < 19; ++i) arguments.push_back("");
    arguments.push_back(eligible);
    return Answer(Request("providerProfileUpdate", arguments));
  };
  for (const Json& value : std::vector<Json>{"maybe", "", "yes", "T", ".T.", Json::array()}) {
    SCOPED_TRACE(value);
    ExpectRefusal(profile(value), 13);
  }
  // What converts is refused for its blank fields only.
  for (const Json& value : std::vector<Json>{true, false, "tRuE", "FALSE", 0, 1, -1, 2.5, "7"}) {
    const Json answer = profile(value);
    EXPECT_EQ(answer.at("ok"), false) << value;
    EXPECT_LT(answer.at("error").at("number"), 0) << value << answer;
    EXPECT_EQ(answer.at("error").at("source"), "LOTRIX DLL") << value;
  }
}

// --- batch: answers --------------------------------------------------------

TEST_F(CommandTest, AReadIsAnsweredWithHeadersAndRows) {
  MakeDatabase();
  EXPECT_EQ(Answer(Request("stockTableRead", {"P1"})),
            (Json{{"id", 1},
                  {"ok", true},
                  {"result",
                   {{"headers", {"pin", "datein", "doses", "lot", "vaccine", "maker", "expiry"}},
                    {"rows",
                     {{"P1", "03/07/2004", "12", "AB-1", "DTAP", nullptr, "12/31/2005"},
                      {"P1", "03/06/2004", "5", "AB2", "DTAP", " ", nullptr}}}}}}));
  EXPECT_EQ(exitCode(), 0);
}

TEST_F(CommandTest, AReadWithoutRowsHasAnEmptyArray) {
  MakeDatabase();
  const Json answer = Answer(Request("stockTableRead", {nullptr, nullptr, "NONE"}));
  EXPECT_EQ(answer.at("result").at("rows"), Json::array());
  EXPECT_EQ(answer.at("result").at("headers").size(), 7U);
}

TEST_F(CommandTest, ARefusalHasNumberSourceAndDescription) {
  MakeDatabase();
  EXPECT_EQ(Answer(Request("manufacturerProviderOrderRead", {"P1", " "})),
            (Json{{"id", 1},
                  {"ok", false},
                  {"error",
                   {{"number", Hex(0x80040000U) + 20021},
                    {"source", "LOTRIX DLL"},
                    {"description", "A Null Shipment Date is entered"}}}}));
  EXPECT_EQ(exitCode(), 1);
}

TEST_F(CommandTest, AMessageIsOfItsOwnCallOnly) {
  MakeDatabase();
  EXPECT_EQ(Batch({Request("CheckVaccActive", {"DTAP"}), Request("closeConnection"),
                   Request("CheckVaccActive", {"OLD"}), Request("Connection")}),
            (std::vector<Json>{kActive, kDone, kInactive, kDone}));
  const std::vector<Json> answers =
      Batch({Request("CheckVaccActive", {"DTAP"}), Request("CheckVaccActive", {"O'Neil"})});
  ASSERT_EQ(answers.size(), 2U);
  ExpectRefusal(answers[1], Hex(0x80040E14U), 1, "LOTRIX DLL");
}

TEST_F(CommandTest, StoredTextThatIsNoUnicodeDoesNotBreakTheAnswer) {
  MakeDatabase();
  Query("UPDATE stock SET vaccine = CAST(x'41ff42' AS TEXT)");
  const Json answer = Answer(Request("stockTableRead"));
  EXPECT_EQ(answer.at("ok"), true);
  ASSERT_EQ(answer.at("result").at("rows").size(), 2U);
  const std::string vaccine = answer.at("result").at("rows")[0][4];
  EXPECT_EQ(vaccine.front(), 'A');
  EXPECT_EQ(vaccine.back(), 'B');
}

TEST_F(CommandTest, TheConnectionMembersAreOperations) {
  MakeDatabase();
  ASSERT_EQ(Run({"--connection", "Provider=SQLite;Data Source=other.db", "init"}).exitCode, 0);
  QueryFile(Path("other.db"), "INSERT INTO pvaccref (vaccine, locactiv) VALUES ('NEW', 0)");
  const std::vector<Json> answers = Batch(
      {Request("connection"),
       Request("OPENCONNECTION", {{"aConnectionString", "Provider=SQLite;Data Source=other.db"}}),
       Request("CheckVaccActive", {"NEW"}), Request("closeConnection"),
       Request("CheckVaccActive", {"NEW"}), Request("closeConnection"), Request("closeConnection"),
       Request("openConnection", {"Provider=NoSuch"}), Request("Connection")});
  ASSERT_EQ(answers.size(), 9U);
  EXPECT_EQ(answers[0], kDone);
  EXPECT_EQ(answers[1], kDone);
  EXPECT_EQ(answers[2], kInactive);
  EXPECT_EQ(answers[3], kDone);
  EXPECT_EQ(answers[4], kActive);
  EXPECT_EQ(answers[5], kDone);
  EXPECT_EQ(answers[6], kDone);
  EXPECT_EQ(answers[7], kDone);
  ExpectRefusal(answers[8], 3706, 1, "LOTRIX DLL");
  EXPECT_EQ(exitCode(), 1);
}

// --- demo ------------------------------------------------------------------

TEST_F(CommandTest, DemoShowsAWorkingDayOnADatabaseOfItsOwn) {
  MakeDatabase();
  const std::string tables =
      "SELECT (SELECT count(*) FROM provider), (SELECT count(*) FROM neworder), "
      "(SELECT count(*) FROM stock)";
  const std::vector<Row> before = Query(tables);
  const Outcome outcome =
      Run({"demo"}, "", {{"LOTRIX_CONNECTION", "Provider=SQLite;Data Source=lotrix.db"}});
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
  EXPECT_NE(outcome.out.find("Begin: "), std::string::npos);
  EXPECT_NE(outcome.out.find("Problem: In "), std::string::npos);
  EXPECT_EQ(Query(tables), before);
}

}  // namespace
}  // namespace lotrix::test

#include "tests/support/operation_fixture.h"

#include <chrono>
#include <optional>
#include <utility>

#include "tests/support/expected_trace.h"

namespace lotrix::test {

void OperationTest::WatchOperations() {
  Watch(*lotrix().Connection(),
        [this](const std::string& text) -> std::optional<std::vector<Value>> {
          if (!answer_) return std::nullopt;
          return answer_(text);
        });
  ForgetTrace();
}

void OperationTest::AnswerTo(const std::string& query, std::vector<Value> records) {
  answer_ = [query, records = std::move(records)](
                const std::string& text) -> std::optional<std::vector<Value>> {
    if (text != query) return std::nullopt;
    return records;
  };
}

void OperationTest::AnswerEveryQuery(std::vector<Value> records) {
  answer_ = [records = std::move(records)](
                const std::string&) -> std::optional<std::vector<Value>> { return records; };
}

void OperationTest::AddFilledProvider(const std::string& pin, const std::string& sector,
                                      const std::string& active) {
  Execute(
      "INSERT INTO provider (pin, contact, lastname, address, addres2, city, state, zipcode, "
      "ml_contact, ml_address, ml_addres2, ml_city, ml_state, ml_zipcode, note, phone, fax, "
      "codes, phone2, fax2, createdate, county, provid, sector, datevfc, extension, firstname, "
      "initial, title, linkpin, alphaid, active, subdiv, cat1, cat2, cat3, cat4, chgdate, "
      "userid) VALUES ('" +
      pin +
      "', 'OC', 'OL', 'OA1', 'OA2', 'OCI', 'OS', 'OZ', 'OMC', 'OMA1', 'OMA2', 'OMCI', 'OMS', "
      "'OMZ', 'ON', 'OP', 'OF', 'OV', 'OP2', 'OF2', '1999-01-02', 'OCO', 5, " +
      sector + ", '1999-03-04', 'OE', 'OFN', 'OI', 'OT', 'OLP', 'OAI', '" + active +
      "', 'OSD', 'OC1', 'OC2', 'OC3', 'OC4', '1999-05-06', 'OU')");
}

Rows OperationTest::Contents(std::initializer_list<std::string> tables) {
  Rows all;
  for (const std::string& table : tables) {
    const Rows rows = Query("SELECT * FROM " + table);
    all.push_back({table, std::to_string(rows.size())});
    all.insert(all.end(), rows.begin(), rows.end());
  }
  return all;
}

void OperationTest::RunAcrossMidnight(const std::function<void(cLotrix& own)>& call) {
  bool midnight = false;
  const Host host{.clock = [&] { return midnight ? Now() + std::chrono::hours(24) : Now(); },
                  .notify = {},
                  .logPath = logPath()};
  cLotrix own(host);
  own.openConnection(database().ConnectionString());
  Watch(*own.Connection(), [&](const std::string&) -> std::optional<std::vector<Value>> {
    midnight = true;
    return std::nullopt;
  });
  call(own);
}

std::string OperationTest::LastStatementOf(const std::function<void()>& call) {
  static_cast<void>(Statements());
  call();
  const Lines statements = Statements();
  return statements.empty() ? "" : statements.back();
}

Error OperationTest::ExpectRefusal(
    const std::string& operation, const std::function<void()>& call, std::int32_t number,
    const std::function<Lines(const std::string& description)>& lines) {
  ForgetTrace();
  static_cast<void>(Statements());
  Error error = Refusal(call);
  EXPECT_EQ(error.number(), number);
  EXPECT_EQ(error.source(), "LOTRIX DLL");
  EXPECT_FALSE(error.description().empty());
  EXPECT_EQ(Trace(), Joined({{BeginOf(operation)},
                             lines(error.description()),
                             {ProblemOf(operation, error.description())}}));
  return error;
}

}  // namespace lotrix::test

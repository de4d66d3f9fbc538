#include "tests/support/fixture.h"

#include <ctime>
#include <fstream>

#include "src/database/connection_access.h"

namespace lotrix::test {

namespace {

class GivenRows final : public Cursor {
 public:
  explicit GivenRows(std::vector<Value> rows) : rows_(std::move(rows)) {}
  [[nodiscard]] int ColumnCount() const override { return 1; }
  [[nodiscard]] const std::string& ColumnName(int /*column*/) const override { return name_; }
  [[nodiscard]] DataType DeclaredType(int /*column*/) const override { return DataType::kEmpty; }
  [[nodiscard]] ValueView ColumnValue(int /*column*/) const override {
    if (const auto* const number = std::get_if<std::int64_t>(&rows_[next_])) return *number;
    return Null{};
  }
  [[nodiscard]] bool AtEnd() const override { return next_ == rows_.size(); }
  void Next() override { ++next_; }

 private:
  std::vector<Value> rows_;
  std::size_t next_ = 0;
  std::string name_ = "given";
};

// Over a real session.
class WatchedSession final : public Session {
 public:
  WatchedSession(std::unique_ptr<Session> session, std::vector<std::string>& texts,
                 std::function<std::optional<std::vector<Value>>(const std::string&)> answer)
      : session_(std::move(session)), texts_(texts), answer_(std::move(answer)) {}

  std::unique_ptr<Cursor> Run(const Statement& statement) override {
    texts_.push_back(statement.text());
    if (answer_) {
      if (auto rows = answer_(texts_.back())) return std::make_unique<GivenRows>(std::move(*rows));
    }
    return session_->Run(statement);
  }
  void Begin() override { session_->Begin(); }
  void Commit() override { session_->Commit(); }
  void Rollback() override { session_->Rollback(); }
  [[nodiscard]] bool InTransaction() const override { return session_->InTransaction(); }
  void CreateSchema() override { session_->CreateSchema(); }
  [[nodiscard]] bool IsOpen() const override { return session_->IsOpen(); }

 private:
  std::unique_ptr<Session> session_;
  std::vector<std::string>& texts_;
  std::function<std::optional<std::vector<Value>>(const std::string&)> answer_;
};

}  // namespace

Error Refusal(const std::function<void()>& call) {
  try {
    call();
  } catch (const Error& error) {
    return error;
  }
  ADD_FAILURE() << "the call was not refused";
  return {0, "not refused"};
}

void ExpectError(const Error& error, std::int32_t number, const std::string& description,
                 const std::string& source) {
  EXPECT_EQ(error.number(), number);
  EXPECT_EQ(error.description(), description);
  EXPECT_EQ(error.source(), source);
}

Rows Cells(const cResultSet& table) {
  Rows rows;
  for (std::int32_t row = 1; row <= table.Rows(); ++row) {
    Row cells;
    for (std::int32_t column = 1; column <= table.Cols(); ++column) {
      const auto items =
          std::get<std::shared_ptr<Collection>>(table.Data()->Item(std::to_string(row)));
      const bool isNull = std::holds_alternative<Null>(items->Item(std::to_string(column)));
      cells.push_back(isNull ? "<null>" : table.GetValue(row, column));
    }
    rows.push_back(std::move(cells));
  }
  return rows;
}

Row HeaderNames(const cResultSet& table) {
  Row names;
  for (const Value& name : *table.Headers()) names.push_back(std::get<std::string>(name));
  return names;
}

Lines TraceLines(const std::string& path) {
  Lines lines;
  std::ifstream file(path, std::ios::binary);
  for (std::string line; std::getline(file, line);) {
    // "2026-11-20 13:45:12.123456 4711 information ..."
    std::size_t start = 0;
    for (int blanks = 0; blanks < 3; ++blanks) start = line.find(' ', start) + 1;
    lines.push_back(line.substr(start));
  }
  return lines;
}

DatabaseTest::DatabaseTest()
    : logPath_(folder_.path() + "/Lotrix.log"), database_(MakeTestDatabase()) {}

std::chrono::system_clock::time_point DatabaseTest::Now() {
  std::tm local{};
  local.tm_year = 126;
  local.tm_mon = 10;
  local.tm_mday = 20;
  local.tm_hour = 13;
  local.tm_min = 45;
  local.tm_sec = 12;
  local.tm_isdst = -1;
  return std::chrono::system_clock::from_time_t(std::mktime(&local)) +
         std::chrono::microseconds(123456);
}

Host DatabaseTest::MakeHost() {
  return {.clock = Now,
          .notify = [this](std::string_view text) { shown_.emplace_back(text); },
          .logPath = logPath_};
}

cLotrix& DatabaseTest::lotrix() {
  if (lotrix_ == nullptr) {
    lotrix_ = std::make_unique<cLotrix>(MakeHost());
    lotrix_->openConnection(database_->ConnectionString());
    ForgetTrace();
  }
  return *lotrix_;
}

Service& DatabaseTest::service() {
  if (service_ == nullptr) {
    service_ = std::make_unique<Service>(MakeHost());
    service_->connection.ConnectionString(database_->ConnectionString());
  }
  return *service_;
}

Connection& DatabaseTest::connection() {
  Connection& open = service().ReadConnection();
  ForgetTrace();
  return open;
}

void DatabaseTest::Watch(Connection& watched, Answer answer) {
  ConnectionAccess::WrapSession(watched, [&](std::unique_ptr<Session> session) {
    return std::make_unique<WatchedSession>(std::move(session), statements_, std::move(answer));
  });
}

Lines DatabaseTest::Statements() { return std::exchange(statements_, {}); }

Lines DatabaseTest::Trace() {
  Lines lines = TraceLines(logPath_);
  Lines fresh(lines.begin() + static_cast<std::ptrdiff_t>(linesSeen_), lines.end());
  linesSeen_ = lines.size();
  return fresh;
}

}  // namespace lotrix::test

#include "bench/postgresql_floor.h"

#include <libpq-fe.h>

#include <map>
#include <utility>

namespace lotrix::bench {

namespace {

struct ServerStatement {
  std::string sql;
  std::vector<unsigned> types;
};

// By connection and name. A connection is used by one thread.
thread_local std::map<std::pair<PGconn*, std::string>, ServerStatement> serverStatements;
thread_local std::vector<RecordedStatement>* recorded = nullptr;

void NoteExecution(const PGconn* connection, const ServerStatement& statement, int count,
                   const char* const* values) {
  RecordedStatement& execution = recorded->emplace_back();
  execution.sql = statement.sql;
  execution.types = statement.types;
  // Until what is sent ends.
  execution.goesWithNext = PQpipelineStatus(connection) == PQ_PIPELINE_ON;
  for (int i = 0; i < count; ++i) {
    execution.values.push_back(values[i] == nullptr ? BoundValue(Null{})
                                                    : BoundValue(std::string(values[i])));
  }
}

}  // namespace

}  // namespace lotrix::bench

// The linker puts these in the place of the library's own, by these names.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
int __real_PQsendPrepare(PGconn* connection, const char* name, const char* sql, int count,
                         const Oid* types);
int __real_PQsendQueryPrepared(PGconn* connection, const char* name, int count,
                               const char* const* values, const int* lengths, const int* formats,
                               int resultFormat);
int __real_PQsendQueryParams(PGconn* connection, const char* sql, int count, const Oid* types,
                             const char* const* values, const int* lengths, const int* formats,
                             int resultFormat);
int __real_PQsendQuery(PGconn* connection, const char* sql);
int __real_PQpipelineSync(PGconn* connection);

int __wrap_PQsendPrepare(PGconn* connection, const char* name, const char* sql, int count,
                         const Oid* types) {
  auto& statement = lotrix::bench::serverStatements[{connection, name}];
  statement.sql = sql;
  statement.types.assign(types, types + count);
  return __real_PQsendPrepare(connection, name, sql, count, types);
}

int __wrap_PQsendQueryPrepared(PGconn* connection, const char* name, int count,
                               const char* const* values, const int* lengths, const int* formats,
                               int resultFormat) {
  // What the floor does not do must not be measured either.
  if (lotrix::bench::recorded != nullptr) {
    lotrix::bench::NoteExecution(connection, lotrix::bench::serverStatements[{connection, name}],
                                 count, values);
  }
  return __real_PQsendQueryPrepared(connection, name, count, values, lengths, formats,
                                    resultFormat);
}

int __wrap_PQsendQueryParams(PGconn* connection, const char* sql, int count, const Oid* types,
                             const char* const* values, const int* lengths, const int* formats,
                             int resultFormat) {
  if (lotrix::bench::recorded != nullptr) {
    lotrix::bench::NoteExecution(connection, {sql, {types, types + count}}, count, values);
  }
  return __real_PQsendQueryParams(connection, sql, count, types, values, lengths, formats,
                                  resultFormat);
}

int __wrap_PQsendQuery(PGconn* connection, const char* sql) {
  if (lotrix::bench::recorded != nullptr) {
    lotrix::bench::NoteExecution(connection, {sql, {}}, 0, nullptr);
  }
  return __real_PQsendQuery(connection, sql);
}

int __wrap_PQpipelineSync(PGconn* connection) {
  if (lotrix::bench::recorded != nullptr && !lotrix::bench::recorded->empty()) {
    lotrix::bench::recorded->back().goesWithNext = false;
  }
  return __real_PQpipelineSync(connection);
}
}
// NOLINTEND(bugprone-reserved-identifier)

namespace lotrix::bench {

namespace {

class PostgresqlFloor final : public Floor {
 public:
  PostgresqlFloor(const std::string& connectionString, const std::string& logPath)
      : connection_(PQconnectdb(connectionString.c_str())), log_(logPath) {
    if (PQstatus(connection_) != CONNECTION_OK) Fail(PQerrorMessage(connection_));
  }
  ~PostgresqlFloor() override { PQfinish(connection_); }
  PostgresqlFloor(const PostgresqlFloor&) = delete;
  PostgresqlFloor& operator=(const PostgresqlFloor&) = delete;

  void Prepare(const Recording& recording) override {
    std::vector<Step>& steps = plans_[&recording];
    for (const RecordedStatement& statement : recording.statements) {
      Step step{PrepareOnServer(statement), static_cast<int>(statement.values.size()), {}};
      for (const BoundValue& value : statement.values) {
        const auto* const text = std::get_if<std::string>(&value);
        step.texts.push_back(text == nullptr ? nullptr : text->c_str());
      }
      steps.push_back(std::move(step));
    }
  }

  void Run(const Recording& recording, bool copyCells) override {
    std::vector<std::vector<std::string>> cells;
    const std::vector<RecordedStatement>& statements = recording.statements;
    const std::vector<Step>& steps = plans_.find(&recording)->second;
    for (std::size_t i = 0; i < steps.size(); ++i) {
      if (statements[i].goesWithNext) {
        i = RunTogether(statements, steps, i);
        continue;
      }
      PGresult* const answer = PQexecPrepared(connection_, steps[i].name, steps[i].count,
                                              steps[i].texts.data(), nullptr, nullptr, 0);
      RequireDone(answer, statements[i]);
      if (copyCells && i + 1 == steps.size()) CopyCells(answer, cells);
      PQclear(answer);
    }
    log_.Write(recording.lines);
  }

 private:
  struct Step {
    const char* name;
    int count;
    std::vector<const char*> texts;
  };

  const char* PrepareOnServer(const RecordedStatement& statement) {
    std::string& name = names_[{statement.sql, statement.types}];
    if (!name.empty()) return name.c_str();
    name = "floor" + std::to_string(names_.size());
    PGresult* const answer =
        PQprepare(connection_, name.c_str(), statement.sql.c_str(),
                  static_cast<int>(statement.types.size()), statement.types.data());
    RequireDone(answer, statement);
    PQclear(answer);
    return name.c_str();
  }

  static void CopyCells(const PGresult* answer, std::vector<std::vector<std::string>>& cells) {
    const int columns = PQnfields(answer);
    for (int row = 0; row < PQntuples(answer); ++row) {
      std::vector<std::string>& copy = cells.emplace_back();
      copy.reserve(static_cast<std::size_t>(columns));
      for (int column = 0; column < columns; ++column) {
        copy.emplace_back(PQgetvalue(answer, row, column),
                          static_cast<std::size_t>(PQgetlength(answer, row, column)));
      }
    }
  }

  // Gives the last one's place.
  std::size_t RunTogether(const std::vector<RecordedStatement>& statements,
                          const std::vector<Step>& steps, std::size_t first) {
    PQenterPipelineMode(connection_);
    std::size_t last = first;
    for (;; ++last) {
      if (PQsendQueryPrepared(connection_, steps[last].name, steps[last].count,
                              steps[last].texts.data(), nullptr, nullptr, 0) != 1) {
        Fail(PQerrorMessage(connection_));
      }
      if (!statements[last].goesWithNext) break;
    }
    PQpipelineSync(connection_);
    for (std::size_t i = first; i <= last; ++i) {
      while (PGresult* const answer = PQgetResult(connection_)) {
        RequireDone(answer, statements[i]);
        PQclear(answer);
      }
    }
    PQclear(PQgetResult(connection_));  // the end of what was sent together
    PQexitPipelineMode(connection_);
    return last;
  }

  static void RequireDone(const PGresult* answer, const RecordedStatement& statement) {
    const ExecStatusType status = PQresultStatus(answer);
    if (status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK) return;
    Fail(statement.sql + ": " + PQresultErrorMessage(answer));
  }

  PGconn* connection_;
  std::map<std::pair<std::string, std::vector<unsigned>>, std::string> names_;
  std::map<const Recording*, std::vector<Step>> plans_;
  Log log_;
};

}  // namespace

std::vector<RecordedStatement> RecordPostgresql(Connection& /*connection*/,
                                                const std::function<void()>& call) {
  std::vector<RecordedStatement> statements;
  recorded = &statements;
  call();
  recorded = nullptr;
  return statements;
}

std::unique_ptr<Floor> OpenPostgresqlFloor(const std::string& connectionString,
                                           const std::string& logPath) {
  return std::make_unique<PostgresqlFloor>(connectionString, logPath);
}

}  // namespace lotrix::bench

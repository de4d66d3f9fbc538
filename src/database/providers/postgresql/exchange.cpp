#include "src/database/providers/postgresql/exchange.h"

#include <poll.h>

#include <array>
#include <chrono>
#include <memory>

#include "src/database/providers/postgresql/errors.h"
#include "src/errors/raise_error.h"

namespace lotrix::postgresql {

namespace {

// The server says with these that it will not answer any more.
bool EndsSession(const PGresult* result) {
  const char* const severity = PQresultErrorField(result, PG_DIAG_SEVERITY_NONLOCALIZED);
  if (severity == nullptr) return false;
  return std::string_view(severity) == "FATAL" || std::string_view(severity) == "PANIC";
}

}  // namespace

bool IsFailure(const Result& answer) {
  switch (PQresultStatus(answer.get())) {
    case PGRES_COMMAND_OK:
    case PGRES_TUPLES_OK:
    case PGRES_SINGLE_TUPLE:
    case PGRES_PIPELINE_SYNC:
      return false;
    default:
      return answer != nullptr;
  }
}

Exchange::Exchange(Link link) : link_(std::move(link)) {
  PQsetNoticeReceiver(link_.get(), Hear, lastWord_.get());
}

// Between two exchanges the library takes a failure for a notice.
void Exchange::Hear(void* lastWord, const PGresult* notice) {
  constexpr std::string_view kShutdown = "57P";
  const std::string_view state = SqlState(notice);
  if (!EndsSession(notice) && !state.starts_with(kShutdown)) return;
  const char* const message = PQresultErrorField(notice, PG_DIAG_MESSAGE_PRIMARY);
  *static_cast<LastWord*>(lastWord) = {std::string(state), message == nullptr ? "" : message};
}

void Exchange::Begin(bool changes, bool alone) {
  RequireOpen();
  inDoubt_ = changes;
  BeginParts(alone && transaction_ == Transaction::kNone);
  if (transaction_ == Transaction::kWanted) Add("BEGIN");
  if (transaction_ == Transaction::kOpen) {
    if (hasSavepoint_) Add("RELEASE SAVEPOINT lotrix");
    Add("SAVEPOINT lotrix");
  }
}

void Exchange::BeginParts(bool alone) {
  added_ = 0;
  succeeded_ = 0;
  inPipeline_ = !alone;
  if (inPipeline_ && PQenterPipelineMode(link_.get()) != 1) Lose(nullptr);
}

void Exchange::Add(const std::string& command) {
  RequireSent(
      PQsendQueryParams(link_.get(), command.c_str(), 0, nullptr, nullptr, nullptr, nullptr, 0));
}

void Exchange::AddPreparation(const std::string& name, const std::string& sql,
                              const std::vector<Oid>& types) {
  RequireSent(PQsendPrepare(link_.get(), name.c_str(), sql.c_str(), static_cast<int>(types.size()),
                            types.data()));
}

void Exchange::AddExecution(const std::string& name, const Arguments& arguments, bool rowByRow) {
  RequireSent(PQsendQueryPrepared(link_.get(), name.c_str(),
                                  static_cast<int>(arguments.texts.size()), arguments.texts.data(),
                                  nullptr, nullptr, 0));
  rowByRow_ = rowByRow;
}

void Exchange::AddDescription(const std::string& name) {
  RequireSent(PQsendDescribePrepared(link_.get(), name.c_str()));
}

Result Exchange::Send() {
  if (inPipeline_ && PQpipelineSync(link_.get()) != 1) Lose(nullptr);
  for (; succeeded_ + 1 < added_; ++succeeded_) {
    Result answer = Read();
    if (IsFailure(answer)) return answer;
    static_cast<void>(Read());  // nothing stands between two answers
  }
  if (rowByRow_ && PQsetSingleRowMode(link_.get()) != 1) Lose(nullptr);
  Result answer = Read();
  if (!IsFailure(answer)) ++succeeded_;
  return answer;
}

void Exchange::Abandon() {
  constexpr auto kPatience = std::chrono::milliseconds(20);
  const auto end = std::chrono::steady_clock::now() + kPatience;
  bool cancelled = false;
  for (;;) {
    if (!cancelled && !AnswersBefore(end)) {
      Cancel();
      cancelled = true;
    }
    Result answer = Read();
    if (PQresultStatus(answer.get()) == PGRES_SINGLE_TUPLE) continue;
    Finish(std::move(answer));
    return;
  }
}

bool Exchange::AnswersBefore(std::chrono::steady_clock::time_point end) {
  using std::chrono::milliseconds;
  for (;;) {
    const auto left =
        std::chrono::duration_cast<milliseconds>(end - std::chrono::steady_clock::now());
    if (left.count() <= 0) return false;
    if (PQisBusy(link_.get()) == 0) return true;
    pollfd socket = {.fd = PQsocket(link_.get()), .events = POLLIN, .revents = 0};
    poll(&socket, 1, static_cast<int>(left.count()));
    if (PQconsumeInput(link_.get()) != 1) Lose(nullptr);
  }
}

// Returns when the server has heard it, so that it cannot hit what comes next.
void Exchange::Cancel() {
  struct FreeCancel {
    void operator()(PGcancel* cancel) const { PQfreeCancel(cancel); }
  };
  constexpr std::size_t kMessageSize = 256;
  std::array<char, kMessageSize> message{};
  const std::unique_ptr<PGcancel, FreeCancel> cancel(PQgetCancel(link_.get()));
  PQcancel(cancel.get(), message.data(), static_cast<int>(message.size()));
}

Result Exchange::Finish(Result last) {
  Result failure = ReadToEnd(std::move(last));
  SettleTransaction();
  return failure;
}

Result Exchange::ReadToEnd(Result last) {
  Result failure = IsFailure(last) ? std::move(last) : nullptr;
  bool afterNothing = false;
  for (;;) {
    Result answer = Read();
    if (answer == nullptr && !inPipeline_) break;
    if (PQresultStatus(answer.get()) == PGRES_PIPELINE_SYNC) break;
    if (answer == nullptr && afterNothing) Lose(nullptr);
    afterNothing = answer == nullptr;
    if (failure == nullptr && IsFailure(answer)) failure = std::move(answer);
  }
  if (inPipeline_ && PQexitPipelineMode(link_.get()) != 1) Lose(nullptr);
  inDoubt_ = false;
  lastAnswer_ = std::chrono::steady_clock::now();
  return failure;
}

void Exchange::SettleTransaction() {
  if (transaction_ == Transaction::kNone) return;
  const bool first = transaction_ == Transaction::kWanted;
  switch (PQtransactionStatus(link_.get())) {
    case PQTRANS_INTRANS:
      transaction_ = Transaction::kOpen;
      hasSavepoint_ = !first;
      break;
    case PQTRANS_INERROR:
      // A transaction whose first statement failed begins anew with the next.
      RunAlone(first ? "ROLLBACK" : "ROLLBACK TO SAVEPOINT lotrix");
      hasSavepoint_ = true;
      break;
    default:
      break;
  }
}

void Exchange::Commit() {
  const bool nothingRan = transaction_ == Transaction::kWanted;
  if (!nothingRan) {
    RequireOpen();
    inDoubt_ = true;
  }
  transaction_ = Transaction::kNone;
  if (nothingRan) return;
  const Result answer = RunAlone("COMMIT");
  if (IsFailure(answer)) RaisePostgresqlError(answer.get());
  if (std::string_view(PQcmdStatus(answer.get())) != "COMMIT") {
    RaiseEngineError(EngineError::kFailed, "The transaction was rolled back.");
  }
}

void Exchange::Rollback() {
  const bool nothingRan = transaction_ == Transaction::kWanted;
  transaction_ = Transaction::kNone;
  if (nothingRan) return;
  RequireOpen();
  inDoubt_ = false;
  const Result answer = RunAlone("ROLLBACK");
  if (IsFailure(answer)) RaisePostgresqlError(answer.get());
}

Result Exchange::RunText(const std::string& sql, bool changes) {
  RequireOpen();
  inDoubt_ = changes;
  Result answer(PQexec(link_.get(), sql.c_str()));
  if (answer == nullptr || EndsSession(answer.get()) || PQstatus(link_.get()) == CONNECTION_BAD) {
    Lose(answer.get());
  }
  return answer;
}

Result Exchange::RunAlone(const char* command) {
  BeginParts(true);
  RequireSent(PQsendQuery(link_.get(), command));
  Result answer = Send();
  if (IsFailure(answer)) return ReadToEnd(std::move(answer));
  Result failure = ReadToEnd(nullptr);
  return failure == nullptr ? std::move(answer) : std::move(failure);
}

void Exchange::RequireOpen() {
  if (link_ == nullptr) RaiseLost(false, {}, {});
  inDoubt_ = false;
  // An operation's statements follow each other closely; the first alone has to look.
  constexpr auto kJustNow = std::chrono::milliseconds(1);
  if (std::chrono::steady_clock::now() - lastAnswer_ < kJustNow) return;
  pollfd socket = {.fd = PQsocket(link_.get()), .events = POLLIN, .revents = 0};
  while (poll(&socket, 1, 0) > 0) {
    // Takes what the server has said unasked, a last word among it.
    static_cast<void>(PQisBusy(link_.get()));
    if (PQconsumeInput(link_.get()) != 1) Lose(nullptr);
  }
}

void Exchange::RequireSent(int sent) {
  if (sent != 1) Lose(nullptr);
  ++added_;
  rowByRow_ = false;
}

Result Exchange::Read() {
  if (link_ == nullptr) RaiseLost(false, {}, {});
  Result answer(PQgetResult(link_.get()));
  if (PQstatus(link_.get()) == CONNECTION_BAD || EndsSession(answer.get())) Lose(answer.get());
  return answer;
}

void Exchange::Lose(const PGresult* last) {
  const Link lost = std::move(link_);
  transaction_ = Transaction::kNone;
  const char* const said = PQresultErrorField(last, PG_DIAG_MESSAGE_PRIMARY);
  if (said != nullptr && !SqlState(last).empty()) RaiseLost(inDoubt_, said, SqlState(last));
  if (!lastWord_->message.empty()) RaiseLost(inDoubt_, lastWord_->message, lastWord_->sqlState);
  RaiseLost(inDoubt_, PQerrorMessage(lost.get()), {});
}

}  // namespace lotrix::postgresql

#include "lotrix/connection.h"

#include <algorithm>

#include "src/database/connection_access.h"
#include "src/database/connection_string.h"
#include "src/database/session.h"
#include "src/errors/raise_error.h"

namespace lotrix {

namespace {

void SetUnlessEmpty(ConnectionSettings& settings, const char* keyword, const std::string& value) {
  if (value.empty()) return;
  std::erase_if(settings.values, [&](const auto& pair) { return pair.first == keyword; });
  settings.values.emplace_back(keyword, value);
}

}  // namespace

Connection::Connection() = default;

Connection::~Connection() { DropSession(); }

const std::string& Connection::ConnectionString() const noexcept { return connectionString_; }

void Connection::ConnectionString(const Text& connectionString) {
  RequireClosed();
  connectionString_ = connectionString.str();
}

ConnectMode Connection::Mode() const noexcept { return mode_; }

void Connection::Mode(ConnectMode mode) {
  RequireClosed();
  mode_ = mode;
}

void Connection::Open(const Text& connectionString, const Text& userId, const Text& password,
                      int /*options*/) {
  RequireClosed();
  DropSession();
  if (!connectionString.str().empty()) connectionString_ = connectionString.str();
  ConnectionSettings settings = ParseConnectionString(connectionString_);
  SetUnlessEmpty(settings, "user id", userId);
  SetUnlessEmpty(settings, "password", password);
  session_ = lotrix::OpenSession({.connectionString = connectionString_,
                                  .userId = userId,
                                  .password = password,
                                  .settings = settings,
                                  .mode = mode_,
                                  .object = object_});
}

void Connection::Close() {
  OpenSession().Close();
  DropSession();
}

void Connection::DropSession() noexcept {
  for (Recordset* const recordset : recordsets_) recordset->connection_ = nullptr;
  for (Recordset* const recordset : recordsets_) recordset->Drop();
  recordsets_.clear();
  session_.reset();
}

ObjectState Connection::State() const noexcept {
  return session_ == nullptr || !session_->IsOpen() ? ObjectState::kClosed : ObjectState::kOpen;
}

std::unique_ptr<Recordset> Connection::Execute(const Text& commandText) {
  return Execute(Statement::Whole(commandText));
}

std::unique_ptr<Recordset> Connection::Execute(const Statement& statement) {
  auto recordset = std::make_unique<Recordset>();
  recordset->Execute(statement, *this);
  return recordset;
}

void Connection::BeginTrans() {
  if (OpenSession().InTransaction()) {
    RaiseEngineError(EngineError::kFailed, "A transaction is open already.");
  }
  UnlessLost([&] { session_->Begin(); });
}

void Connection::CommitTrans() {
  if (!OpenSession().InTransaction()) {
    RaiseEngineError(EngineError::kFailed, "No transaction is open.");
  }
  UnlessLost([&] { session_->Commit(); });
}

void Connection::RollbackTrans() {
  if (!OpenSession().InTransaction()) {
    RaiseEngineError(EngineError::kFailed, "No transaction is open.");
  }
  UnlessLost([&] { session_->Rollback(); });
}

bool Connection::InTransaction() const {
  return State() == ObjectState::kOpen && session_->InTransaction();
}

void Connection::CreateSchema() {
  if (OpenSession().InTransaction()) {
    RaiseEngineError(EngineError::kFailed, "A transaction is open already.");
  }
  UnlessLost([&] { session_->CreateSchema(); });
}

void ConnectionAccess::WrapSession(
    Connection& connection,
    const std::function<std::unique_ptr<Session>(std::unique_ptr<Session>)>& wrap) {
  connection.RequireOpen();
  connection.session_ = wrap(std::move(connection.session_));
}

std::shared_ptr<void> ConnectionAccess::ForeignObject(const Connection& connection) {
  return connection.State() == ObjectState::kOpen ? connection.object_ : nullptr;
}

bool ConnectionAccess::HasKeyTransactions(const Connection& connection) {
  return connection.OpenSession().HasKeyTransactions();
}

Session& Connection::OpenSession() const {
  RequireOpen();
  return *session_;
}

void Connection::RequireOpen() const {
  if (State() == ObjectState::kClosed) RaiseRuntimeError(RuntimeError::kObjectIsClosed);
}

void Connection::RequireClosed() const {
  if (State() == ObjectState::kOpen) RaiseRuntimeError(RuntimeError::kObjectIsOpen);
}

void Connection::DropIfLost() noexcept {
  if (session_ != nullptr && !session_->IsOpen()) DropSession();
}

}  // namespace lotrix

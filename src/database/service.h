// What a service object hands down to its operations and routines.
#ifndef LOTRIX_SRC_DATABASE_SERVICE_H
#define LOTRIX_SRC_DATABASE_SERVICE_H

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "lotrix/connection.h"
#include "lotrix/host.h"
#include "src/platform/clock.h"
#include "src/platform/trace_log.h"

namespace lotrix {

// The connection that opens itself and logs.
class ServiceConnection {
 public:
  explicit ServiceConnection(TraceLog& log) : log_(log) {}

  // Kept for the next time the connection is opened; opens nothing itself.
  void ConnectionString(const std::string& connectionString) {
    connectionString_ = connectionString;
  }
  // Writes its two lines, and opens the connection unless it is open.
  const std::shared_ptr<Connection>& Get();
  void CloseIfOpen();
  void Release() { connection_.reset(); }

 private:
  TraceLog& log_;
  std::string connectionString_;
  std::shared_ptr<Connection> connection_ = std::make_shared<Connection>();
};

struct Service {
  explicit Service(Host host);

  // The open connection. Every reading writes the connection's two lines, so it
  // is read once for each routine or statement that is given it.
  [[nodiscard]] Connection& ReadConnection() { return *connection.Get(); }

  Clock clock;
  std::function<void(std::string_view)> notify;
  TraceLog log;
  ServiceConnection connection;
};

}  // namespace lotrix

#endif

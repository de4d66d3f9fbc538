#include "src/database/service.h"

#include <utility>

#include "src/platform/frame.h"
#include "src/platform/system.h"

namespace lotrix {

const std::shared_ptr<Connection>& ServiceConnection::Get() {
  // The begin line alone is spelt with a blank.
  constexpr FrameTexts kTexts{.name = "GetConnection", .begin = ""};
  InFrame(log_, kTexts, [&] {
    log_.Information({"Begin: Get Connection()"});
    if (connection_->State() == ObjectState::kOpen) return;
    connection_->ConnectionString(connectionString_);
    connection_->Mode(ConnectMode::kReadWrite);
    connection_->Open();
  });
  return connection_;
}

void ServiceConnection::CloseIfOpen() {
  if (connection_->State() == ObjectState::kOpen) connection_->Close();
}

Service::Service(Host host)
    : clock(host.clock ? std::move(host.clock) : std::chrono::system_clock::now),
      notify(host.notify ? std::move(host.notify) : Notify),
      log(host.logPath.empty() ? DefaultLogPath() : host.logPath, clock),
      connection(log) {}

}  // namespace lotrix

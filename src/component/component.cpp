#include "lotrix/component.h"

#include <utility>

#include "src/database/service.h"
#include "src/platform/frame.h"

namespace lotrix {

cLotrix::cLotrix(Host host) : service_(std::make_unique<Service>(std::move(host))) {}

cLotrix::~cLotrix() {
  TraceLog& log = service_->log;
  try {
    log.Information({"Begin: Class_Terminate()"});
    service_->connection.Release();
    log.Information({"End: Class_Terminate()"});
  } catch (...) {
    // Memory for a line of the trace; a destructor has nobody to tell.
  }
}

std::shared_ptr<lotrix::Connection> cLotrix::Connection() { return service_->connection.Get(); }

void cLotrix::openConnection(const Text& aConnectionString) {
  TraceLog& log = service_->log;
  InFrame(log, {.name = "openConnection", .end = ""}, [&] {
    service_->connection.ConnectionString(aConnectionString);
    // This member's second line repeats its first.
    log.Information({"Begin: openConnection()"});
  });
}

void cLotrix::closeConnection() {
  InFrame(service_->log, {"closeConnection"}, [&] { service_->connection.CloseIfOpen(); });
}

}  // namespace lotrix

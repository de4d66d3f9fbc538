#include <array>

#include "lotrix/version.h"
#include "src/database/providers/postgresql/session.h"
#include "src/database/providers/sqlite/session.h"
#include "src/database/session.h"
#include "src/errors/raise_error.h"

namespace lotrix {

namespace {

struct Provider {
  std::string_view name;  // lower case
  std::unique_ptr<Session> (*open)(const ConnectionSettings& settings, ConnectMode mode);
  std::string (*engine)();  // name and version
};

constexpr std::array<Provider, 2> kProviders = {
    {{"sqlite", sqlite::Open, sqlite::Engine},
     {"postgresql", postgresql::Open, postgresql::Engine}}};

}  // namespace

std::unique_ptr<Session> OpenSession(const ConnectionSettings& settings, ConnectMode mode) {
  for (const Provider& provider : kProviders) {
    if (provider.name == settings.provider) return provider.open(settings, mode);
  }
  RaiseRuntimeError(RuntimeError::kUnknownProvider);
}

std::string_view Version() { return LOTRIX_VERSION; }

std::vector<std::string> Engines() {
  std::vector<std::string> engines;
  engines.reserve(kProviders.size());
  for (const Provider& provider : kProviders) engines.push_back(provider.engine());
  return engines;
}

}  // namespace lotrix

#include <array>

#include "lotrix/version.h"
#include "src/database/providers/sqlite/session.h"
#include "src/database/session.h"
#include "src/errors/raise_error.h"
#ifdef _WIN32
#include "src/database/providers/ado/session.h"
#else
#include "src/database/providers/postgresql/session.h"
#endif

namespace lotrix {

namespace {

struct Provider {
  std::string_view name;  // lower case
  std::unique_ptr<Session> (*open)(const ConnectionSettings& settings, ConnectMode mode);
  std::string (*engine)();  // name and version
};

constexpr auto kProviders = std::to_array<Provider>({
    {"sqlite", sqlite::Open, sqlite::Engine},
#ifndef _WIN32
    {"postgresql", postgresql::Open, postgresql::Engine},
#endif
});

}  // namespace

std::unique_ptr<Session> OpenSession(const Opening& opening) {
  for (const Provider& provider : kProviders) {
    if (provider.name == opening.settings.provider) {
      opening.object.reset();
      return provider.open(opening.settings, opening.mode);
    }
  }
#ifdef _WIN32
  // Whatever else is named is looked for among the providers of the system.
  if (!opening.settings.provider.empty()) return ado::Open(opening);
#endif
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

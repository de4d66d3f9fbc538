#include <array>

#include "lotrix/version.h"
#include "src/database/providers/sqlite/session.h"
#include "src/database/providers/sqlite/table_writer.h"
#include "src/database/session.h"
#include "src/database/table_writer.h"
#include "src/errors/raise_error.h"
#ifdef _WIN32
#include "src/database/providers/ado/session.h"
#else
#include "src/database/providers/postgresql/session.h"
#include "src/database/providers/postgresql/table_writer.h"
#endif

namespace lotrix {

namespace {

struct Provider {
  std::string_view name;  // lower case
  std::unique_ptr<Session> (*open)(const ConnectionSettings& settings, ConnectMode mode);
  std::string (*engine)();  // name and version
  std::unique_ptr<TableWriter> (*write)(const ConnectionSettings& settings,
                                        const TableColumns& table);
  std::string (*identity)(const ConnectionSettings& settings);
};

constexpr auto kProviders = std::to_array<Provider>({
    {"sqlite", sqlite::Open, sqlite::Engine, sqlite::OpenTableWriter, sqlite::Identity},
#ifndef _WIN32
    {"postgresql", postgresql::Open, postgresql::Engine, postgresql::OpenTableWriter,
     postgresql::Identity},
#endif
});

const Provider* FindProvider(const ConnectionSettings& settings) {
  for (const Provider& provider : kProviders) {
    if (provider.name == settings.provider) return &provider;
  }
  return nullptr;
}

const Provider& RequireProvider(const ConnectionSettings& settings) {
  const Provider* const provider = FindProvider(settings);
  if (provider == nullptr) RaiseRuntimeError(RuntimeError::kUnknownProvider);
  return *provider;
}

}  // namespace

std::unique_ptr<Session> OpenSession(const Opening& opening) {
  if (const Provider* const provider = FindProvider(opening.settings)) {
    opening.object.reset();
    return provider->open(opening.settings, opening.mode);
  }
#ifdef _WIN32
  // Whatever else is named is looked for among the providers of the system.
  if (!opening.settings.provider.empty()) return ado::Open(opening);
#endif
  RaiseRuntimeError(RuntimeError::kUnknownProvider);
}

std::unique_ptr<TableWriter> OpenTableWriter(const ConnectionSettings& settings,
                                             const TableColumns& table) {
  return RequireProvider(settings).write(settings, table);
}

std::string DatabaseIdentity(const ConnectionSettings& settings) {
  return RequireProvider(settings).identity(settings);
}

std::string_view Version() { return LOTRIX_VERSION; }

std::vector<std::string> Engines() {
  std::vector<std::string> engines;
  engines.reserve(kProviders.size());
  for (const Provider& provider : kProviders) engines.push_back(provider.engine());
  return engines;
}

}  // namespace lotrix

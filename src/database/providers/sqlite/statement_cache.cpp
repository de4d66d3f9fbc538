#include "src/database/providers/sqlite/statement_cache.h"

namespace lotrix::sqlite {

namespace {

// The operations have some sixty templates between them; the rest is room for a
// client's own texts, of which there may be endlessly many.
constexpr std::size_t kMostKept = 256;
constexpr std::size_t kLongestKept = 16384;

std::shared_ptr<PreparedStatement> Fresh(std::string_view templateText) {
  auto statement = std::make_shared<PreparedStatement>();
  statement->translation = Translate(templateText);
  statement->inUse = true;
  return statement;
}

}  // namespace

std::shared_ptr<PreparedStatement> StatementCache::Take(std::string_view templateText) {
  if (const auto found = byTemplate_.find(templateText); found != byTemplate_.end()) {
    const std::shared_ptr<PreparedStatement>& kept = found->second->statement;
    if (kept->inUse) return Fresh(templateText);
    entries_.splice(entries_.begin(), entries_, found->second);
    kept->inUse = true;
    return kept;
  }
  std::shared_ptr<PreparedStatement> statement = Fresh(templateText);
  if (templateText.size() > kLongestKept) return statement;
  entries_.push_front({std::string(templateText), statement});
  byTemplate_.emplace(entries_.front().templateText, entries_.begin());
  if (entries_.size() > kMostKept) {
    byTemplate_.erase(entries_.back().templateText);
    entries_.pop_back();
  }
  return statement;
}

}  // namespace lotrix::sqlite

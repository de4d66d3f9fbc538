// Prepared statements, kept by what they were made from.
#ifndef LOTRIX_SRC_DATABASE_PROVIDERS_STATEMENT_CACHE_H
#define LOTRIX_SRC_DATABASE_PROVIDERS_STATEMENT_CACHE_H

#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace lotrix {

// Holds at most a fixed number of statements and lets the one go first whose last
// use is longest ago. Not for more than one thread.
template <class Prepared>
class StatementCache {
 public:
  // The statement kept for that key, or else what `make` gives, a shared pointer,
  // which is kept from now on unless the key is very long.
  template <class Make>
  std::shared_ptr<Prepared> Take(std::string_view key, const Make& make) {
    if (const auto found = byKey_.find(key); found != byKey_.end()) {
      entries_.splice(entries_.begin(), entries_, found->second);
      return found->second->statement;
    }
    std::shared_ptr<Prepared> statement = make();
    if (key.size() > kLongestKept) return statement;
    entries_.push_front({std::string(key), statement});
    byKey_.emplace(entries_.front().key, entries_.begin());
    if (entries_.size() > kMostKept) {
      byKey_.erase(entries_.back().key);
      entries_.pop_back();
    }
    return statement;
  }

 private:
  // The operations have some sixty templates between them; the rest is room for a
  // client's own texts, of which there may be endlessly many.
  static constexpr std::size_t kMostKept = 256;
  static constexpr std::size_t kLongestKept = 16384;

  struct Entry {
    std::string key;
    std::shared_ptr<Prepared> statement;
  };
  std::list<Entry> entries_;  // latest used first
  std::unordered_map<std::string_view, typename std::list<Entry>::iterator> byKey_;
};

}  // namespace lotrix

#endif

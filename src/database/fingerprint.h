// What tells whether two tables hold the same rows.
#ifndef LOTRIX_SRC_DATABASE_FINGERPRINT_H
#define LOTRIX_SRC_DATABASE_FINGERPRINT_H

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "src/database/session.h"

namespace lotrix {

// A count and a checksum of rows in any order. A value counts as what it is, not as
// how an engine stores it: 5 and 5.0 are the same number. Made to notice mistakes,
// not malice.
class Fingerprint {
 public:
  void Add(const std::vector<ValueView>& row);

  [[nodiscard]] std::uint64_t rows() const { return rows_; }
  [[nodiscard]] bool operator==(const Fingerprint& other) const {
    return rows_ == other.rows_ && sums_ == other.sums_;
  }

 private:
  std::uint64_t rows_ = 0;
  std::array<std::uint64_t, 2> sums_{};
  std::string text_;  // kept for its room
};

}  // namespace lotrix

#endif

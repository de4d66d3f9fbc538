// The text type of every public argument.
#ifndef LOTRIX_TEXT_H
#define LOTRIX_TEXT_H

#include <string>
#include <string_view>

namespace lotrix {

// A UTF-8 text, checked once when it comes in: constructing one from bytes that
// are not valid UTF-8 throws Error 5 and nothing of the call runs. U+0000 is
// allowed. Value semantics; no thread-safety of its own.
class Text {
 public:
  Text() = default;
  Text(const char* utf8);       // NOLINT(google-explicit-constructor): arguments are texts
  Text(std::string utf8);       // NOLINT(google-explicit-constructor)
  Text(std::string_view utf8);  // NOLINT(google-explicit-constructor)

  operator const std::string&() const& { return utf8_; }  // NOLINT(google-explicit-constructor)
  operator std::string_view() const { return utf8_; }     // NOLINT(google-explicit-constructor)
  [[nodiscard]] const std::string& str() const { return utf8_; }

 private:
  std::string utf8_;
};

}  // namespace lotrix

#endif

// The one error type of the component.
//
// Every failure of a call is a lotrix::Error. Its number is what a late-bound
// automation client would see: a catalogue code plus hexadecimal 80040000 for a
// refused rule, a run-time number such as 13 (type mismatch), or an engine
// number such as 80040E14 (statement refused). Objects are immutable and may be
// copied and read from any thread.
#ifndef LOTRIX_ERROR_H
#define LOTRIX_ERROR_H

#include <cstdint>
#include <exception>
#include <memory>
#include <string>

namespace lotrix {

class Error : public std::exception {
 public:
  // An empty source stands for the application title, "Lotrix".
  Error(std::int32_t number, std::string description, std::string source = {}, int engineCode = 0);

  [[nodiscard]] std::int32_t number() const noexcept;
  [[nodiscard]] const std::string& source() const noexcept;
  // UTF-8.
  [[nodiscard]] const std::string& description() const noexcept;
  // The database engine's own code: an extended SQLite result code, or the SQLSTATE
  // of PostgreSQL read as a number to base 36 ("23505" is 3505685). 0 when no engine
  // was involved.
  [[nodiscard]] int engineCode() const noexcept;

  [[nodiscard]] const char* what() const noexcept override;

 private:
  struct Content {
    std::int32_t number;
    std::string description;
    std::string source;
    int engineCode;
  };
  // Shared, so that copying an error that is being thrown cannot itself throw.
  std::shared_ptr<const Content> content_;
};

}  // namespace lotrix

#endif

#include "tests/support/program.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace lotrix::test {

namespace {

std::string Content(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void Redirect(const std::string& path, int flags, int descriptor) {
  constexpr int kPrivate = 0600;
  const int file = open(path.c_str(), flags, kPrivate);
  if (file < 0 || dup2(file, descriptor) < 0) _exit(126);
}

// In the child.
[[noreturn]] void Become(const std::string& folder, const std::vector<std::string>& arguments,
                         const std::string& standardError) {
  constexpr unsigned kMostSeconds = 100;
  alarm(kMostSeconds);
  Redirect("/dev/null", O_RDONLY, STDIN_FILENO);
  Redirect(folder + "/stdout", O_WRONLY | O_CREAT | O_TRUNC, STDOUT_FILENO);
  Redirect(standardError, O_WRONLY | O_CREAT | O_TRUNC | O_NOCTTY, STDERR_FILENO);
  if (chdir(folder.c_str()) != 0) _exit(126);
  unsetenv("LOTRIX_CONNECTION");
  setenv("LOTRIX_LOG", (folder + "/trace.log").c_str(), 1);
  std::string program = LOTRIX_COMMAND;
  std::vector<std::string> texts = arguments;
  std::vector<char*> pointers{program.data()};
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  execv(program.c_str(), pointers.data());
  _exit(127);
}

class Terminal {
 public:
  Terminal() : descriptor_(posix_openpt(O_RDWR | O_NOCTTY)) {
    if (descriptor_ < 0 || grantpt(descriptor_) != 0 || unlockpt(descriptor_) != 0) {
      throw std::runtime_error("no terminal");
    }
    name_ = ptsname(descriptor_);
    // What was written is lost once nobody holds this end.
    held_ = open(name_.c_str(), O_RDWR | O_NOCTTY);
  }
  ~Terminal() {
    close(held_);
    close(descriptor_);
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  [[nodiscard]] const std::string& name() const { return name_; }
  // What has been written to it so far.
  [[nodiscard]] std::string Text() const {
    fcntl(descriptor_, F_SETFL, fcntl(descriptor_, F_GETFL) | O_NONBLOCK);
    std::string text;
    std::array<char, 4096> piece{};
    for (;;) {
      const ssize_t size = read(descriptor_, piece.data(), piece.size());
      if (size <= 0) return text;
      text.append(piece.data(), static_cast<std::size_t>(size));
    }
  }

 private:
  int descriptor_;
  int held_ = -1;
  std::string name_;
};

int ExitCodeOf(pid_t child) {
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

Outcome RunProgram(const std::string& folder, const std::vector<std::string>& arguments,
                   StandardError standardError) {
  if (standardError == StandardError::kFile) {
    const pid_t child = fork();
    if (child == 0) Become(folder, arguments, folder + "/stderr");
    const int exitCode = ExitCodeOf(child);
    return {exitCode, Content(folder + "/stdout"), Content(folder + "/stderr")};
  }
  Terminal terminal;
  const pid_t child = fork();
  if (child == 0) Become(folder, arguments, terminal.name());
  // A terminal keeps some kilobytes for its reader, more than the command says.
  const int exitCode = ExitCodeOf(child);
  return {exitCode, Content(folder + "/stdout"), terminal.Text()};
}

}  // namespace lotrix::test

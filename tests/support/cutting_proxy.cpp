#include "tests/support/cutting_proxy.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstring>
#include <stdexcept>

namespace lotrix::test {

namespace {

constexpr int kPollMilliseconds = 5;
constexpr int kAnswerMilliseconds = 10000;

sockaddr_un AddressIn(const std::string& folder) {
  const std::string path = folder + "/.s.PGSQL.5432";
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof(address.sun_path)) throw std::runtime_error("too long: " + path);
  std::memcpy(address.sun_path, path.c_str(), path.size());
  return address;
}

const sockaddr* Generic(const sockaddr_un& address) {
  return reinterpret_cast<const sockaddr*>(&address);
}

bool IsReadable(int socket, int milliseconds) {
  pollfd polled{.fd = socket, .events = POLLIN, .revents = 0};
  return poll(&polled, 1, milliseconds) > 0;
}

// Passes on what is there; false at the end.
bool Pass(int from, int to) {
  std::array<char, 65536> buffer{};
  const ssize_t size = read(from, buffer.data(), buffer.size());
  if (size <= 0) return false;
  const auto bytes = static_cast<std::size_t>(size);
  std::size_t sent = 0;
  while (sent < bytes) {
    const ssize_t done = send(to, buffer.data() + sent, bytes - sent, MSG_NOSIGNAL);
    if (done <= 0) return false;
    sent += static_cast<std::size_t>(done);
  }
  return true;
}

}  // namespace

CuttingProxy::CuttingProxy(const std::string& server)
    : server_(server), listener_(socket(AF_UNIX, SOCK_STREAM, 0)) {
  const sockaddr_un address = AddressIn(folder_.path());
  if (bind(listener_, Generic(address), sizeof(address)) != 0 || listen(listener_, 8) != 0) {
    throw std::runtime_error("no socket in " + folder_.path());
  }
  accepting_ = std::thread([this] { Accept(); });
}

CuttingProxy::~CuttingProxy() {
  ends_ = true;
  accepting_.join();
  for (std::thread& connection : connections_) connection.join();
  close(listener_);
}

void CuttingProxy::Cut() {
  ++cuts_;
  while (open_ > 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

void CuttingProxy::Accept() {
  while (!ends_) {
    if (!IsReadable(listener_, kPollMilliseconds)) continue;
    const int client = accept(listener_, nullptr, nullptr);
    const int server = socket(AF_UNIX, SOCK_STREAM, 0);
    const sockaddr_un address = AddressIn(server_);
    if (connect(server, Generic(address), sizeof(address)) == 0) {
      ++open_;
      connections_.emplace_back([this, client, server] { Forward(client, server); });
    } else {
      close(client);
      close(server);
    }
  }
}

void CuttingProxy::Forward(int client, int server) {
  const int cuts = cuts_;
  bool goesOn = true;
  while (goesOn && !ends_ && cuts == cuts_) {
    std::array<pollfd, 2> polled{{{.fd = client, .events = POLLIN, .revents = 0},
                                  {.fd = server, .events = POLLIN, .revents = 0}}};
    if (poll(polled.data(), polled.size(), kPollMilliseconds) <= 0) continue;
    if (polled[1].revents != 0) goesOn = Pass(server, client);
    if (goesOn && polled[0].revents != 0) {
      ++requests_;
      goesOn = Pass(client, server);
      if (losesAnswer_.exchange(false)) {
        // It answers when all is done.
        IsReadable(server, kAnswerMilliseconds);
        goesOn = false;
      }
    }
  }
  close(client);
  close(server);
  --open_;
}

}  // namespace lotrix::test

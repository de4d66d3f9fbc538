// A server's socket with a pair of scissors.
#ifndef LOTRIX_TESTS_SUPPORT_CUTTING_PROXY_H
#define LOTRIX_TESTS_SUPPORT_CUTTING_PROXY_H

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/engine.h"

namespace lotrix::test {

// Stands between a client and the PostgreSQL server, in a folder of its own.
class CuttingProxy {
 public:
  // In front of the socket in that folder.
  explicit CuttingProxy(const std::string& server);
  ~CuttingProxy();
  CuttingProxy(const CuttingProxy&) = delete;
  CuttingProxy& operator=(const CuttingProxy&) = delete;

  [[nodiscard]] const std::string& folder() const { return folder_.path(); }
  // Ends every connection, and waits until it is ended.
  void Cut();
  // The next request reaches the server and is done there; its answer is lost.
  void LoseNextAnswer() { losesAnswer_ = true; }
  // Requests that have passed.
  [[nodiscard]] int requests() const { return requests_; }

 private:
  void Accept();
  void Forward(int client, int server);

  TemporaryFolder folder_;
  std::string server_;
  int listener_ = -1;
  std::atomic<bool> ends_ = false;
  std::atomic<bool> losesAnswer_ = false;
  std::atomic<int> requests_ = 0;
  std::atomic<int> cuts_ = 0;
  std::atomic<int> open_ = 0;
  std::vector<std::thread> connections_;
  std::thread accepting_;
};

}  // namespace lotrix::test

#endif

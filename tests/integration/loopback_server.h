// A server on loopback that does to its clients whatever a test wants.
#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace tests {

/// A request and its connection, which ends with it. Replies are raw bytes.
struct Exchange {
  std::string target;
  std::string head;  ///< the request line and the header lines
  std::string host;  ///< the server's
  int socket;
  const std::atomic<bool>& stopping;
  bool keepsAlive = false;  ///< the connection serves another request after this one

  /// False when the client has gone or the test is over.
  bool send(std::string_view bytes) const;
  /// Waits for the client to go or the test to be over; true when neither comes in that time.
  bool wait(double seconds) const;
  /// Ends the connection with a reset.
  void reset() const;
};

/// A whole reply with its length.
std::string reply(std::string_view body, std::string_view status = "200 OK");
std::string redirect(std::string_view location);

class LoopbackServer {
 public:
  using Handler = std::function<void(Exchange&)>;
  explicit LoopbackServer(Handler handler);
  ~LoopbackServer();

  const std::string& host() const { return host_; }
  std::string address(std::string_view target) const {
    return "http://" + host_ + std::string(target);
  }

 private:
  void accept();
  void serve(int socket);

  const Handler handler_;
  int listener_ = -1;
  std::string host_;
  std::atomic<bool> stopping_ = false;
  std::mutex mutex_;
  std::condition_variable closed_;
  std::vector<int> sockets_;  // guarded by mutex_; each is served by a detached thread
  std::thread acceptor_;
};

}  // namespace tests

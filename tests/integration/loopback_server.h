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

/// One request on a connection. Everything is raw: the test writes status line and headers too.
class Exchange {
 public:
  Exchange(int socket, std::string received, std::string serverHost,
           const std::atomic<bool>& stopping)
      : head(std::move(received)),
        host(std::move(serverHost)),
        socket_(socket),
        stopping_(stopping) {}

  const std::string head;  ///< the request line and the header lines
  const std::string host;  ///< the server's
  std::string target() const;

  /// False when the client has gone or the test is over.
  bool send(std::string_view bytes);
  /// Closes with a reset instead of an orderly end.
  void reset();
  /// True until the test is over; waits for that long at most.
  bool wait(double seconds) const;
  /// The connection serves another request after this one.
  void keepAlive() { keptAlive_ = true; }
  bool isKeptAlive() const { return keptAlive_; }

 private:
  const int socket_;
  const std::atomic<bool>& stopping_;
  bool keptAlive_ = false;
};

/// A whole reply with a length.
std::string reply(std::string_view body, std::string_view status = "200 OK");
std::string redirect(std::string_view location);

class LoopbackServer {
 public:
  using Handler = std::function<void(Exchange&)>;
  explicit LoopbackServer(Handler handler);
  ~LoopbackServer();
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  std::string host() const { return "127.0.0.1:" + std::to_string(port_); }
  std::string address(std::string_view target = "/") const {
    return "http://" + host() + std::string(target);
  }
  int requestCount() const { return requestCount_; }

 private:
  void accept();
  void serve(int socket);

  const Handler handler_;
  int listener_ = -1;
  int port_ = 0;
  std::atomic<bool> stopping_ = false;
  std::atomic<int> requestCount_ = 0;
  std::mutex mutex_;
  std::condition_variable closed_;
  std::vector<int> sockets_;  // guarded by mutex_; each is served by a detached thread
  std::thread acceptor_;
};

}  // namespace tests

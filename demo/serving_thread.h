// The thread on which a server of the demo serves.
#pragma once

#include <httplib.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>

namespace demo {

/// Lets a server serve on a port of loopback. Declare it after what the server's answers use: it
/// stops the server when it goes.
class ServingThread {
 public:
  explicit ServingThread(httplib::Server& server) : server_(server) {
    // One request for each connection, so that no idle one keeps a thread.
    server_.set_keep_alive_max_count(1);
    server_.new_task_queue = [] { return std::make_unique<httplib::ThreadPool>(2).release(); };
  }
  ~ServingThread() {
    if (!thread_.joinable()) return;
    server_.stop();
    thread_.join();
  }
  ServingThread(const ServingThread&) = delete;
  ServingThread& operator=(const ServingThread&) = delete;

  /// False when no port can be had.
  bool start() {
    port_ = server_.bind_to_any_port("127.0.0.1");
    if (port_ <= 0) return false;
    thread_ = std::thread([this] {
      server_.listen_after_bind();
      ended_ = true;
    });
    // Stopping a server that is not running yet would be lost on it.
    while (!server_.is_running() && !ended_) std::this_thread::yield();
    return !ended_;
  }

  /// Where it listens, as "127.0.0.1:port".
  std::string host() const { return "127.0.0.1:" + std::to_string(port_); }

 private:
  httplib::Server& server_;
  int port_ = -1;
  std::atomic<bool> ended_ = false;
  std::thread thread_;
};

}  // namespace demo

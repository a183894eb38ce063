#include "tests/integration/loopback_server.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>

namespace tests {

std::string Exchange::target() const {
  const std::size_t start = head.find(' ') + 1;
  return head.substr(start, head.find(' ', start) - start);
}

bool Exchange::send(std::string_view bytes) {
  while (!bytes.empty() && !stopping_) {
    const ssize_t sent = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return !stopping_;
}

void Exchange::reset() {
  const linger atOnce{1, 0};
  setsockopt(socket_, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
}

bool Exchange::wait(double seconds) const {
  const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (!stopping_ && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return !stopping_;
}

std::string reply(std::string_view body, std::string_view status) {
  return "HTTP/1.1 " + std::string(status) + "\r\nContent-Length: " + std::to_string(body.size()) +
         "\r\n\r\n" + std::string(body);
}

std::string redirect(std::string_view location) {
  return "HTTP/1.1 302 Found\r\nLocation: " + std::string(location) +
         "\r\nContent-Length: 0\r\n\r\n";
}

LoopbackServer::LoopbackServer(Handler handler) : handler_(std::move(handler)) {
  listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  auto* plain = reinterpret_cast<sockaddr*>(&address);
  if (bind(listener_, plain, length) != 0 || listen(listener_, 128) != 0 ||
      getsockname(listener_, plain, &length) != 0) {
    throw std::runtime_error("no port of loopback can be had");
  }
  port_ = ntohs(address.sin_port);
  acceptor_ = std::thread([this] { accept(); });
}

LoopbackServer::~LoopbackServer() {
  stopping_ = true;
  shutdown(listener_, SHUT_RDWR);
  acceptor_.join();
  std::unique_lock lock(mutex_);
  for (const int socket : sockets_) shutdown(socket, SHUT_RDWR);
  closed_.wait(lock, [this] { return sockets_.empty(); });
  close(listener_);
}

void LoopbackServer::accept() {
  while (!stopping_) {
    const int socket = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (socket < 0) return;
    {
      const std::lock_guard lock(mutex_);
      sockets_.push_back(socket);
    }
    std::thread([this, socket] { serve(socket); }).detach();
  }
}

void LoopbackServer::serve(int socket) {
  std::string received;
  char bytes[4096];
  for (bool more = true; more && !stopping_;) {
    while (received.find("\r\n\r\n") == std::string::npos) {
      const ssize_t length = recv(socket, bytes, sizeof bytes, 0);
      if (length <= 0) break;
      received.append(bytes, static_cast<std::size_t>(length));
    }
    const std::size_t end = received.find("\r\n\r\n");
    if (end == std::string::npos) break;
    Exchange exchange(socket, received.substr(0, end + 2), host(), stopping_);
    received.erase(0, end + 4);
    ++requestCount_;
    handler_(exchange);
    more = exchange.isKeptAlive();
  }
  const std::lock_guard lock(mutex_);
  std::erase(sockets_, socket);
  close(socket);
  closed_.notify_all();
}

}  // namespace tests

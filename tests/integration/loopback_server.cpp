#include "tests/integration/loopback_server.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace tests {

bool Exchange::send(std::string_view bytes) const {
  while (!bytes.empty() && !stopping) {
    const ssize_t sent = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return !stopping;
}

bool Exchange::wait(double seconds) const {
  pollfd end{socket, POLLRDHUP, 0};
  return ::poll(&end, 1, static_cast<int>(seconds * 1000)) == 0 && !stopping;
}

void Exchange::reset() const {
  const linger atOnce{1, 0};
  setsockopt(socket, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
}

std::string reply(std::string_view body, std::string_view status) {
  return "HTTP/1.1 " + std::string(status) + "\r\nContent-Length: " + std::to_string(body.size()) +
         "\r\n\r\n" + std::string(body);
}

std::string redirect(std::string_view location) {
  return reply("", "302 Found\r\nLocation: " + std::string(location));
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
  host_ = "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
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
  while (true) {
    const int socket = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (socket < 0) return;
    const std::lock_guard lock(mutex_);
    sockets_.push_back(socket);
    std::thread([this, socket] { serve(socket); }).detach();
  }
}

void LoopbackServer::serve(int socket) {
  std::string head;
  char byte = 0;
  while (!stopping_ && recv(socket, &byte, 1, 0) == 1) {
    head += byte;
    if (!head.ends_with("\r\n\r\n")) continue;
    const std::size_t start = head.find(' ') + 1;
    Exchange exchange{head.substr(start, head.find(' ', start) - start), head, host_, socket,
                      stopping_};
    handler_(exchange);
    if (!exchange.keepsAlive) break;
    head.clear();
  }
  const std::lock_guard lock(mutex_);
  std::erase(sockets_, socket);
  close(socket);
  closed_.notify_all();
}

}  // namespace tests

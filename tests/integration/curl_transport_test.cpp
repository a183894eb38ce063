#include "platform/network/curl_transport.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <future>

#include "tests/integration/loopback_server.h"

using platform::CurlTransport;
using platform::HTTPResult;
using tests::Exchange;
using tests::LoopbackServer;
using tests::redirect;
using tests::reply;
using namespace std::string_literals;

namespace {

const std::string error = "(error)";

platform::HTTPRequest request(const std::string& url, double timeout = 20) {
  return {.url = url, .headers = {}, .timeout = timeout};
}

/// The body that a transfer brings, or error.
std::string fetch(CurlTransport& transport, const platform::HTTPRequest& request) {
  std::promise<HTTPResult> promise;
  transport.start(request, [&](HTTPResult result) { promise.set_value(std::move(result)); });
  const HTTPResult result = promise.get_future().get();
  EXPECT_EQ(result.body.has_value(), result.error.empty()) << result.error;
  return result.body ? std::string(result.body->view()) : error;
}

std::size_t openFiles() {
  const std::filesystem::directory_iterator all("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

}  // namespace

TEST(CurlTransport, ABodyArrivesWholeWhateverTheStatusOrNotAtAll) {
  const std::string ok = "HTTP/1.1 200 OK\r\n";
  const std::string chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
  std::vector<std::pair<std::string, std::string>> replies = {
      {reply("not found", "404 Not Found"), "not found"},
      {reply("nowhere", "302 Found"), "nowhere"},
      {reply(""), ""},
      {reply("a\0b"s), "a\0b"s},
      {chunked + "2\r\nab\r\n1\r\nc\r\n0\r\n\r\n", "abc"},
      {ok + "\r\nuntil the end", "until the end"},
      {ok + "Content-Length: 3\r\n\r\nabcdef", "abc"},
      {ok + "Content-Length: 99\r\n\r\nabc", error},
      {"\0\xFF\xFE\r\n\r\n"s, error},
      {chunked + "xyz\r\nabc", error},
      {chunked + "FFFFFFFFFFFFFFFFFF\r\nabc", error},
      {chunked + "3\r\nabc!!!", error},
      {chunked + "3\r\nabc\r\n", error},
  };
  const std::string whole = reply("hello");
  for (std::size_t cut = 0; cut < whole.size(); ++cut) {
    replies.emplace_back(whole.substr(0, cut), error);
  }
  replies.emplace_back(whole, "hello");

  LoopbackServer server([&](const Exchange& exchange) {
    exchange.send(replies.at(std::stoul(exchange.target.substr(2))).first);
    if (exchange.target[1] == 'r') exchange.reset();
  });
  CurlTransport transport;
  for (std::size_t index = 0; index < replies.size(); ++index) {
    const auto& [bytes, body] = replies[index];
    const std::string number = std::to_string(index);
    EXPECT_EQ(fetch(transport, request(server.address("/c" + number))), body) << bytes;
    if (body == error) {
      EXPECT_EQ(fetch(transport, request(server.address("/r" + number))), error) << bytes;
    }
  }
  EXPECT_EQ(fetch(transport, request("http://127.0.0.1:1/")), error) << "nobody listens";
  EXPECT_EQ(fetch(transport, request("")), error);
}

TEST(CurlTransport, SendsTheAddressByteForByteAndTheHeadersAndKeepsToTheBound) {
  LoopbackServer server([&](const Exchange& exchange) {
    const bool isRanged = exchange.head.find("\r\nRange: bytes=0-8192\r\n") != std::string::npos &&
                          exchange.head.find("\r\nPragma: no-cache\r\n") != std::string::npos;
    exchange.send(reply(isRanged ? std::string(9000, 'x') : exchange.target));
  });
  CurlTransport transport;
  for (const char* target :
       {"/search?term=A+&+B+++C+=+D%25%41+%22'(~/$!*:@%3Cx", "/a?b=../../.+%0D%0AX"}) {
    EXPECT_EQ(fetch(transport, request(server.address(target))), target);
  }
  auto ranged = request(server.address("/"));
  ranged.headers = {{"Range", "bytes=0-8192"}, {"Pragma", "no-cache"}};
  ranged.maximumLength = 9000;
  EXPECT_EQ(fetch(transport, ranged).size(), 9000U) << "a server may ignore the range";
  ranged.maximumLength = 8999;
  EXPECT_EQ(fetch(transport, ranged), error);
}

TEST(CurlTransport, FloodsStallsAndDripsEndAtTheirBoundOrWhenTheirTimeIsUp) {
  constexpr double endless = 1e6;
  struct Flow {
    std::string start, more;  // what is sent at once, and what again and again
    double pause = 0;
    double timeout = endless;
  };
  const std::string ok = "HTTP/1.1 200 OK\r\n";
  const std::string chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
  const std::string chunk = "8000\r\n" + std::string(0x8000, 'x') + "\r\n";
  const std::string noise = "X-Noise: " + std::string(1000, 'x');
  const std::vector<Flow> flows = {
      {ok + "\r\n", chunk},
      {chunked, chunk},
      {ok, noise + "\r\n"},
      {ok, noise},
      {"", "HTTP/1.1 100 Continue\r\n\r\n"},
      {"HTTP/1.1 302 Found\r\nLocation: /5\r\n\r\n", chunk},
      {chunked + "0\r\n", noise + "\r\n"},
      {"", "", endless, 0.3},
      {"", reply("late"), 0.8, 0.3},
      {ok + "Content-Length: 9\r\n\r\nab", "", endless, 0.3},
      {ok + "\r\n", "x", 0.01, 0.3},
      {ok, "A: b\r\n", 0.01, 0.3},
      {"", redirect("/12"), 0.1, 0.3},
  };
  LoopbackServer server([&](const Exchange& exchange) {
    const Flow& flow = flows.at(std::stoul(exchange.target.substr(1)));
    exchange.send(flow.start);
    while (exchange.wait(flow.pause) && exchange.send(flow.more)) {
    }
  });
  CurlTransport transport;
  for (std::size_t index = 0; index < flows.size(); ++index) {
    auto bounded = request(server.address("/" + std::to_string(index)), flows[index].timeout);
    bounded.maximumLength = 100'000;
    EXPECT_EQ(fetch(transport, bounded), error) << index;
  }
}

TEST(CurlTransport, FollowsTenRedirectsAndOnlyOverHTTP) {
  const std::vector<std::string> foreign = {"file:///proc/self/status", "ftp://127.0.0.1/x",
                                            "dict://127.0.0.1:1/d:x", "data:text/plain,x"};
  LoopbackServer server([&](Exchange& exchange) {
    exchange.keepsAlive = true;
    const std::size_t number = std::stoul(exchange.target.substr(2));
    if (exchange.target[1] == 'f') {
      exchange.send(redirect(foreign.at(number)));
    } else {
      exchange.send(number == 0 ? reply("there") : redirect("/n" + std::to_string(number - 1)));
    }
  });
  CurlTransport transport;
  EXPECT_EQ(fetch(transport, request(server.address("/n10"))), "there");
  EXPECT_EQ(fetch(transport, request(server.address("/n11"))), error);
  for (std::size_t index = 0; index < foreign.size(); ++index) {
    EXPECT_EQ(fetch(transport, request(server.address("/f" + std::to_string(index)))), error);
    EXPECT_EQ(fetch(transport, request(foreign[index])), error);
  }
}

TEST(CurlTransport, CancellationAndDestructionCompleteEveryTransferOnceWithoutBytes) {
  std::atomic<int> completed = 0;
  std::atomic<int> withBytes = 0;
  const std::size_t files = openFiles();
  std::shared_ptr<platform::HTTPTransfer> kept;
  constexpr int transfers = 60;
  {
    LoopbackServer server([](const Exchange& exchange) { exchange.wait(1e6); });
    CurlTransport transport;
    std::promise<void> cancelled;
    for (int index = 0; index < transfers; ++index) {
      kept = transport.start(request(server.address("/")), [&, index](const HTTPResult& result) {
        if (result.body) ++withBytes;
        ++completed;
        if (index != 0) return;
        // A completion, too, can start a transfer; this one ends with the transport.
        transport.start(request(server.address("/")), [&](const HTTPResult&) { ++completed; });
        cancelled.set_value();
      });
      if (index % 3 == 0) kept->cancel();
    }
    cancelled.get_future().wait();
    transport.stop();
    EXPECT_EQ(completed, transfers + 1);
    EXPECT_EQ(fetch(transport, request(server.address("/"))), error) << "it has stopped";
  }
  EXPECT_EQ(completed, transfers + 1);
  EXPECT_EQ(withBytes, 0);
  EXPECT_LE(openFiles(), files + 2);
  kept->cancel();  // of a transport that is gone
}

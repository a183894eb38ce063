#include "platform/curl_transport.h"

#include <gtest/gtest.h>
#include <httplib.h>
#include <malloc.h>

#include <chrono>
#include <filesystem>
#include <future>

#include "platform/platform.h"
#include "platform/url_session.h"
#include "tests/integration/loopback_server.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

using platform::CurlTransport;
using platform::HTTPRequest;
using platform::HTTPResult;
using tests::Exchange;
using tests::LoopbackServer;
using tests::redirect;
using tests::reply;
using namespace std::string_literals;

namespace {

struct Outcome {
  std::string body;  ///< "(error)" after a transport error
  double seconds = 0;
};

Outcome fetch(CurlTransport& transport, const HTTPRequest& request) {
  std::promise<HTTPResult> promise;
  const auto start = std::chrono::steady_clock::now();
  transport.start(request, [&](HTTPResult result) { promise.set_value(std::move(result)); });
  const HTTPResult result = promise.get_future().get();
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
  EXPECT_EQ(result.body.has_value(), result.error.empty()) << result.error;
  return {result.body ? std::string(result.body->view()) : "(error)", elapsed.count()};
}

HTTPRequest request(std::string url, double timeout = 5) {
  HTTPRequest result;
  result.url = std::move(url);
  result.timeout = timeout;
  return result;
}

std::size_t entries(const char* folder) {
  std::size_t count = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder)) ++count;
  return count;
}

std::size_t allocatedBytes() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  return __sanitizer_get_current_allocated_bytes();
#else
  return mallinfo2().uordblks;
#endif
}

}  // namespace

TEST(CurlTransport, AnswersTheBodyWhateverTheStatus) {
  const std::map<std::string, std::string> replies = {
      {"/", reply("hello")},
      {"/missing", reply("not found", "404 Not Found")},
      {"/broken", reply("internal", "500 Internal Server Error")},
      {"/empty", reply("")},
      {"/zero", reply("a\0b"s)},
      {"/chunked",
       "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n2\r\nab\r\n1\r\nc\r\n0\r\n\r\n"},
      {"/closed", "HTTP/1.1 200 OK\r\n\r\nuntil the end"},
      {"/short", "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nabcdef"},
      {"/lost", "HTTP/1.1 302 Found\r\nContent-Length: 7\r\n\r\nnowhere"}};
  LoopbackServer server([&](Exchange& exchange) { exchange.send(replies.at(exchange.target())); });
  CurlTransport transport;
  const std::map<std::string, std::string> bodies = {{"/", "hello"},
                                                     {"/missing", "not found"},
                                                     {"/broken", "internal"},
                                                     {"/empty", ""},
                                                     {"/zero", "a\0b"s},
                                                     {"/chunked", "abc"},
                                                     {"/closed", "until the end"},
                                                     {"/short", "abc"},
                                                     {"/lost", "nowhere"}};
  for (const auto& [target, body] : bodies) {
    EXPECT_EQ(fetch(transport, request(server.address(target))).body, body) << target;
  }
}

TEST(CurlTransport, SendsTheHeadersAndLetsTheServerIgnoreTheRange) {
  std::string head;
  LoopbackServer server([&](Exchange& exchange) {
    head = exchange.head;
    exchange.send(reply(std::string(9000, 'x')));
  });
  CurlTransport transport;
  HTTPRequest ranged = request(server.address());
  ranged.headers = {{"Range", "bytes=0-8192"}, {"Cache-Control", "no-cache"}};
  EXPECT_EQ(fetch(transport, ranged).body.size(), 9000U);
  EXPECT_NE(head.find("\r\nRange: bytes=0-8192\r\n"), std::string::npos) << head;
  EXPECT_NE(head.find("\r\nCache-Control: no-cache\r\n"), std::string::npos) << head;
}

TEST(CurlTransport, AReplyCutAtAnyByteIsAnError) {
  const std::string whole = reply("hello");
  LoopbackServer server([&](Exchange& exchange) {
    exchange.send(whole.substr(0, std::stoul(exchange.target().substr(2))));
    if (exchange.target()[1] == 'r') exchange.reset();
  });
  CurlTransport transport;
  for (std::size_t length = 0; length < whole.size(); ++length) {
    for (const char* end : {"/c", "/r"}) {
      const std::string target = end + std::to_string(length);
      EXPECT_EQ(fetch(transport, request(server.address(target))).body, "(error)") << target;
    }
  }
  EXPECT_EQ(fetch(transport, request(server.address("/c" + std::to_string(whole.size())))).body,
            "hello");
}

TEST(CurlTransport, MalformedRepliesAreErrors) {
  const std::string ok = "HTTP/1.1 200 OK\r\n";
  const std::vector<std::string> replies = {
      "nonsense\r\n\r\n",
      "\0\xFF\xFE\r\n\r\n"s,
      ok + "Content-Length: 99\r\n\r\nabc",
      ok + "Content-Length: -1\r\n\r\nabc",
      ok + "Transfer-Encoding: chunked\r\n\r\nxyz\r\nabc",
      ok + "Transfer-Encoding: chunked\r\n\r\nFFFFFFFFFFFFFFFFFF\r\nabc",
      ok + "Transfer-Encoding: chunked\r\n\r\n5\r\nabc",
      ok + "Transfer-Encoding: chunked\r\n\r\n3\r\nabc!!!",
      ok + "Transfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n",
  };
  LoopbackServer server([&](Exchange& exchange) {
    exchange.send(replies.at(std::stoul(exchange.target().substr(1))));
  });
  CurlTransport transport;
  for (std::size_t index = 0; index < replies.size(); ++index) {
    const std::string address = server.address("/" + std::to_string(index));
    EXPECT_EQ(fetch(transport, request(address)).body, "(error)") << replies[index];
  }
  EXPECT_EQ(fetch(transport, request("http://127.0.0.1:1/")).body, "(error)") << "nobody listens";
  EXPECT_EQ(fetch(transport, request("")).body, "(error)");
}

TEST(CurlTransport, FloodsEndAtTheirBoundLongBeforeTheirTime) {
  const std::string chunk = "8000\r\n" + std::string(0x8000, 'x') + "\r\n";
  const std::map<std::string, std::pair<std::string, std::string>> floods = {
      {"/body", {"HTTP/1.1 200 OK\r\n\r\n", chunk}},
      {"/chunks", {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n", chunk}},
      {"/headers", {"HTTP/1.1 200 OK\r\n", "X-Noise: " + std::string(1000, 'x') + "\r\n"}},
      {"/header", {"HTTP/1.1 200 OK\r\nX-Noise: ", std::string(1000, 'x')}},
      {"/informational", {"", "HTTP/1.1 100 Continue\r\n\r\n"}},
      {"/redirect", {"HTTP/1.1 302 Found\r\nLocation: /redirect\r\n\r\n", chunk}},
      {"/trailers",
       {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n", "X-Noise: noise\r\n"}},
  };
  LoopbackServer server([&](Exchange& exchange) {
    const auto& [start, more] = floods.at(exchange.target());
    exchange.send(start);
    while (exchange.send(more)) {
    }
  });
  CurlTransport transport;
  for (const auto& [target, flood] : floods) {
    HTTPRequest bounded = request(server.address(target), 20);
    bounded.maximumLength = 100'000;
    const Outcome outcome = fetch(transport, bounded);
    EXPECT_EQ(outcome.body, "(error)") << target;
    EXPECT_LT(outcome.seconds, 10) << target;
  }
}

TEST(CurlTransport, ABodyAsLongAsTheBoundIsWhole) {
  LoopbackServer server([](Exchange& exchange) { exchange.send(reply(std::string(1000, 'x'))); });
  CurlTransport transport;
  HTTPRequest bounded = request(server.address());
  bounded.maximumLength = 1000;
  EXPECT_EQ(fetch(transport, bounded).body.size(), 1000U);
  bounded.maximumLength = 999;
  EXPECT_EQ(fetch(transport, bounded).body, "(error)");
}

TEST(CurlTransport, StallsAndDripsEndWhenTheirTimeIsUp) {
  LoopbackServer server([](Exchange& exchange) {
    const std::string target = exchange.target();
    if (target == "/late" && exchange.wait(0.5)) exchange.send(reply("late"));
    if (target == "/silent") exchange.wait(20);
    if (target == "/half" && exchange.send("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nab")) {
      exchange.wait(20);
    }
    if (target == "/drip" && exchange.send("HTTP/1.1 200 OK\r\n\r\n")) {
      while (exchange.send("x") && exchange.wait(0.01)) {
      }
    }
    if (target == "/headers" && exchange.send("HTTP/1.1 200 OK\r\n")) {
      while (exchange.send("A: b\r\n") && exchange.wait(0.01)) {
      }
    }
    if (target == "/circle" && exchange.wait(0.1)) exchange.send(redirect("/circle"));
  });
  CurlTransport transport;
  std::vector<std::future<Outcome>> outcomes;
  for (const char* target : {"/late", "/silent", "/half", "/drip", "/headers", "/circle"}) {
    outcomes.push_back(std::async(std::launch::async, [&, target] {
      return fetch(transport, request(server.address(target), 0.3));
    }));
  }
  for (auto& pending : outcomes) {
    const Outcome outcome = pending.get();
    EXPECT_EQ(outcome.body, "(error)");
    EXPECT_GE(outcome.seconds, 0.29);
    EXPECT_LT(outcome.seconds, 2);
  }
}

TEST(CurlTransport, FollowsTenRedirectsAndOnlyOverHTTP) {
  const std::map<std::string, std::string> elsewhere = {{"/file", "file:///proc/self/status"},
                                                        {"/ftp", "ftp://127.0.0.1/x"},
                                                        {"/dict", "dict://127.0.0.1:1/d:x"},
                                                        {"/data", "data:text/plain,x"},
                                                        {"/loop", "/loop"},
                                                        {"/none", "http://127.0.0.1:1/"}};
  LoopbackServer server([&](Exchange& exchange) {
    exchange.keepAlive();
    const std::string target = exchange.target();
    if (elsewhere.contains(target)) {
      exchange.send(redirect(elsewhere.at(target)));
    } else {
      const int left = std::stoi(target.substr(1));
      exchange.send(left == 0 ? reply("there") : redirect("/" + std::to_string(left - 1)));
    }
  });
  CurlTransport transport;
  EXPECT_EQ(fetch(transport, request(server.address("/10"))).body, "there");
  EXPECT_EQ(fetch(transport, request(server.address("/11"))).body, "(error)");
  for (const auto& [target, location] : elsewhere) {
    EXPECT_EQ(fetch(transport, request(server.address(target))).body, "(error)") << location;
    if (target == "/loop" || target == "/none") continue;
    EXPECT_EQ(fetch(transport, request(location)).body, "(error)") << location;
  }
}

TEST(CurlTransport, CancellationAndDestructionCompleteEveryTransferOnceWithoutBytes) {
  LoopbackServer server([](Exchange& exchange) { exchange.wait(20); });
  std::atomic<int> completed = 0;
  std::atomic<int> withBytes = 0;
  std::shared_ptr<platform::HTTPTransfer> kept;
  constexpr int transfers = 30;
  {
    CurlTransport transport;
    std::promise<void> cancelled;
    for (int index = 0; index < transfers; ++index) {
      kept = transport.start(request(server.address()), [&, index](const HTTPResult& result) {
        if (result.body) ++withBytes;
        ++completed;
        if (index != 0) return;
        // From a completion, too, a transfer can be started; this one ends with the transport.
        transport.start(request(server.address()), [&](const HTTPResult&) { ++completed; });
        cancelled.set_value();
      });
      if (index % 3 == 0) kept->cancel();
      if (index % 6 == 0) kept->cancel();
    }
    cancelled.get_future().wait();
  }
  EXPECT_EQ(completed, transfers + 1);
  EXPECT_EQ(withBytes, 0);
  kept->cancel();  // of a transport that is gone
}

TEST(CurlTransport, VerifiesCertificates) {
  const auto folder = std::filesystem::temp_directory_path() / ("tls-" + std::to_string(getpid()));
  std::filesystem::create_directory(folder);
  const std::string key = folder / "key.pem";
  const std::string certificate = folder / "certificate.pem";
  ASSERT_EQ(std::system(("openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=loopback "
                         "-addext subjectAltName=IP:127.0.0.1 -keyout " +
                         key + " -out " + certificate + " 2>/dev/null")
                            .c_str()),
            0);
  httplib::SSLServer server(certificate.c_str(), key.c_str());
  server.Get("/", [](const httplib::Request&, httplib::Response& response) {
    response.set_content("secret", "text/plain");
  });
  const int port = server.bind_to_any_port("127.0.0.1");
  std::thread thread([&] { server.listen_after_bind(); });
  const std::string address = "https://127.0.0.1:" + std::to_string(port) + "/";
  EXPECT_EQ(fetch(*std::make_unique<CurlTransport>(), request(address)).body, "(error)");
  EXPECT_EQ(fetch(*std::make_unique<CurlTransport>(certificate), request(address)).body, "secret");
  const std::string otherName = "https://localhost:" + std::to_string(port) + "/";
  EXPECT_EQ(fetch(*std::make_unique<CurlTransport>(certificate), request(otherName)).body,
            "(error)");
  server.stop();
  thread.join();
  std::filesystem::remove_all(folder);
}

TEST(CurlTransport, TenThousandCyclesLeaveNothingBehind) {
  LoopbackServer server([](Exchange& exchange) {
    exchange.keepAlive();
    exchange.send(exchange.target() == "/cut" ? "HTTP/1.1 2" : reply(std::string(2000, 'x')));
    if (exchange.target() == "/cut") exchange.reset();
  });
  platform::Platform parts;
  const platform::PlatformScope scope(parts);
  CurlTransport transport;
  parts.http = &transport;
  const auto cycle = [&](int index) {
    std::promise<void> done;
    const auto session = platform::NSURLSession::sessionWithConfiguration_delegate_delegateQueue(
        platform::NSURLSessionConfiguration::defaultSessionConfiguration(), {}, nullptr);
    const auto task = session->dataTaskWithURL_completionHandler(
        *platform::URL::fromText(server.address("/")), [&done, session](auto&&...) {
          session->finishTasksAndInvalidate();
          done.set_value();
        });
    task->resume();
    if (index % 3 == 0) task->cancel();
    done.get_future().wait();
  };
  for (int index = 0; index < 200; ++index) cycle(index);
  const std::size_t files = entries("/proc/self/fd");
  const std::size_t bytes = allocatedBytes();
  for (int index = 0; index < 10'000; ++index) cycle(index);
  EXPECT_LE(entries("/proc/self/fd"), files + 4);
  EXPECT_LE(allocatedBytes(), bytes + 100'000);
}

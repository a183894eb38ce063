#include "platform/network/curl_transport.h"

#include <curl/curl.h>
#include <signal.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <map>
#include <mutex>
#include <new>
#include <thread>

namespace platform {
namespace {

constexpr std::size_t maximumHeaderLength = 256 * 1024;
constexpr long maximumRedirects = 10;
constexpr const char* stoppedError = "the transport was stopped";
constexpr TimeInterval longestTimeout = 24 * 60 * 60;

struct GlobalScope {
  GlobalScope() {
    if (curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK) throw std::bad_alloc();
  }
  ~GlobalScope() { curl_global_cleanup(); }
  GlobalScope(const GlobalScope&) = delete;
  GlobalScope& operator=(const GlobalScope&) = delete;
};

template <auto release>
struct Releaser {
  template <class T>
  void operator()(T* handle) const {
    release(handle);
  }
};
using Multi = std::unique_ptr<CURLM, Releaser<curl_multi_cleanup>>;
using Easy = std::unique_ptr<CURL, Releaser<curl_easy_cleanup>>;
using HeaderList = std::unique_ptr<curl_slist, Releaser<curl_slist_free_all>>;

long milliseconds(TimeInterval timeout) {
  // Zero would mean no limit to the library. Written so that not-a-number takes the shortest.
  const TimeInterval bounded = timeout > 0 ? std::min(timeout, longestTimeout) : 0;
  return std::max(1L, static_cast<long>(bounded * 1000));
}

std::string hostsWithoutProxy() {
  std::string hosts = "localhost,127.0.0.1,::1";
  for (const char* name : {"no_proxy", "NO_PROXY"}) {
    if (const char* value = std::getenv(name)) {
      // A lone asterisk means every host and does not combine with names.
      if (std::string_view(value) == "*") return "*";
      return hosts + "," + value;
    }
  }
  return hosts;
}

/// One transfer as the library sees it.
struct Job {
  std::uint64_t number = 0;
  HTTPRequest request;
  HTTPTransport::Completion completion;
  std::vector<std::uint8_t> body;
  std::size_t headerLength = 0;
  bool headersEnded = false;  // of the latest reply, with a blank line
  HeaderList headers;         // outlives the handle that uses it
  Easy easy;

  Job(HTTPRequest newRequest, HTTPTransport::Completion newCompletion)
      : request(std::move(newRequest)), completion(std::move(newCompletion)) {}

  bool prepare(const std::string& certificates);
  void complete(HTTPResult result) {
    const auto handler = std::move(completion);
    if (handler) handler(std::move(result));
  }

  // Answering another number than size * count ends the transfer with an error.
  static std::size_t receiveBody(char* bytes, std::size_t size, std::size_t count, void* self) {
    auto& job = *static_cast<Job*>(self);
    const std::size_t length = size * count;
    if (length > job.request.maximumLength - job.body.size()) return 0;
    job.body.insert(job.body.end(), bytes, bytes + length);
    return length;
  }
  static std::size_t receiveHeader(char* line, std::size_t size, std::size_t count, void* self) {
    auto& job = *static_cast<Job*>(self);
    const std::size_t length = size * count;
    const std::string_view text(line, length);
    if (text.starts_with("HTTP/")) job.headersEnded = false;
    if (text == "\r\n" || text == "\n") job.headersEnded = true;
    job.headerLength += length;
    return job.headerLength > maximumHeaderLength ? 0 : length;
  }
  // Sees the bodies of redirects too, which the library reads and drops.
  static int progress(void* self, curl_off_t, curl_off_t received, curl_off_t, curl_off_t) {
    const auto& job = *static_cast<const Job*>(self);
    return std::cmp_greater(received, job.request.maximumLength) ? 1 : 0;
  }
};

bool Job::prepare(const std::string& certificates) {
  easy.reset(curl_easy_init());
  if (!easy) return false;
  for (const auto& [name, value] : request.headers) {
    curl_slist* longer = curl_slist_append(headers.get(), (name + ": " + value).c_str());
    if (longer == nullptr) return false;
    static_cast<void>(headers.release());
    headers.reset(longer);
  }
  bool sound = true;
  const auto set = [&](CURLoption option, auto value) {
    sound = curl_easy_setopt(easy.get(), option, value) == CURLE_OK && sound;
  };
  set(CURLOPT_URL, request.url.c_str());
  set(CURLOPT_HTTPHEADER, headers.get());
  set(CURLOPT_PROTOCOLS_STR, "http,https");
  set(CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
  set(CURLOPT_FOLLOWLOCATION, 1L);
  set(CURLOPT_MAXREDIRS, maximumRedirects);
  set(CURLOPT_TIMEOUT_MS, milliseconds(request.timeout));
  set(CURLOPT_CONNECTTIMEOUT_MS, milliseconds(request.timeout));
  set(CURLOPT_SSL_VERIFYPEER, 1L);
  set(CURLOPT_SSL_VERIFYHOST, 2L);
  // Takes the place of the system's file of certificates; its folder of them stays.
  curl_blob additional{const_cast<char*>(certificates.data()), certificates.size(),  // NOLINT
                       CURL_BLOB_NOCOPY};
  if (!certificates.empty()) set(CURLOPT_CAINFO_BLOB, &additional);
  set(CURLOPT_NOPROXY, hostsWithoutProxy().c_str());
  set(CURLOPT_USERAGENT, "virelune-widget");
  set(CURLOPT_NOSIGNAL, 1L);
  // A name that resolves slowly must not hold up the thread when its transfer is over.
  set(CURLOPT_QUICK_EXIT, 1L);
  set(CURLOPT_WRITEFUNCTION, &Job::receiveBody);
  set(CURLOPT_WRITEDATA, this);
  set(CURLOPT_HEADERFUNCTION, &Job::receiveHeader);
  set(CURLOPT_HEADERDATA, this);
  set(CURLOPT_NOPROGRESS, 0L);
  set(CURLOPT_XFERINFOFUNCTION, &Job::progress);
  set(CURLOPT_XFERINFODATA, this);
  set(CURLOPT_PRIVATE, this);
  return sound;
}

}  // namespace

/// The library's multi handle and the thread that alone touches it. Other threads leave their
/// wishes in a list and wake it.
class CurlTransport::Engine {
 public:
  explicit Engine(std::string certificates)
      : certificates_(std::move(certificates)), multi_(curl_multi_init()) {
    if (!multi_) throw std::bad_alloc();
    curl_multi_setopt(multi_.get(), CURLMOPT_MAXCONNECTS, 6L);  // kept open for the next request
  }

  void startThread() {
    // The program's signals are for its main thread.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    thread_ = std::thread([this] { run(); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
  }

  void stopThread() {
    {
      const std::lock_guard lock(mutex_);
      stopping_ = true;
    }
    wake();
    thread_.join();
  }

  /// The job's number; 0 when the transport has stopped, with the job left to the caller.
  std::uint64_t add(std::unique_ptr<Job>& job) {
    std::uint64_t number = 0;
    {
      const std::lock_guard lock(mutex_);
      if (stopping_) return 0;
      number = job->number = ++lastNumber_;
      starting_.push_back(std::move(job));
    }
    wake();
    return number;
  }

  void cancel(std::uint64_t number) {
    {
      const std::lock_guard lock(mutex_);
      cancelling_.push_back(number);
    }
    wake();
  }

 private:
  using Jobs = std::map<std::uint64_t, std::unique_ptr<Job>>;

  void wake() { curl_multi_wakeup(multi_.get()); }

  void run() {
    while (carryOutWishes()) {
      int running = 0;
      curl_multi_perform(multi_.get(), &running);
      completeFinished();
      // Woken by traffic, by the library's own deadlines and by wake().
      curl_multi_poll(multi_.get(), nullptr, 0, std::numeric_limits<int>::max(), nullptr);
    }
  }

  /// False when the transport is to stop and every transfer has been completed.
  bool carryOutWishes() {
    std::vector<std::unique_ptr<Job>> starting;
    std::vector<std::uint64_t> cancelling;
    bool stopping = false;
    {
      const std::lock_guard lock(mutex_);
      starting.swap(starting_);
      cancelling.swap(cancelling_);
      stopping = stopping_;
    }
    for (auto& job : starting) begin(std::move(job));
    for (const std::uint64_t number : cancelling) end(jobs_.find(number), "cancelled");
    if (!stopping) return true;
    while (!jobs_.empty()) end(jobs_.begin(), stoppedError);
    return false;
  }

  void begin(std::unique_ptr<Job> job) {
    if (!job->prepare(certificates_) ||
        curl_multi_add_handle(multi_.get(), job->easy.get()) != CURLM_OK) {
      job->complete({std::nullopt, 0, "the transfer could not be prepared"});
      return;
    }
    const std::uint64_t number = job->number;
    jobs_.emplace(number, std::move(job));
  }

  /// Takes a job off the library; null when it has already ended.
  std::unique_ptr<Job> take(Jobs::iterator position) {
    if (position == jobs_.end()) return nullptr;
    auto job = std::move(position->second);
    jobs_.erase(position);
    curl_multi_remove_handle(multi_.get(), job->easy.get());
    return job;
  }

  void end(Jobs::iterator position, const char* reason) {
    if (const auto job = take(position)) {
      job->easy.reset();
      job->complete({std::nullopt, 0, reason});
    }
  }

  void completeFinished() {
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &left)) {
      if (message->msg != CURLMSG_DONE) continue;
      const CURLcode code = message->data.result;  // the message goes with its handle
      CURL* easy = message->easy_handle;
      long status = 0;
      curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
      Job* finished = nullptr;
      curl_easy_getinfo(easy, CURLINFO_PRIVATE, &finished);
      const auto job = take(jobs_.find(finished->number));
      job->easy.reset();
      HTTPResult result;
      result.status = static_cast<int>(status);
      if (code != CURLE_OK) {
        result.error = curl_easy_strerror(code);
      } else if (!job->headersEnded) {
        result.error = "the reply ended within its headers";  // the library takes it for empty
      } else {
        result.body = Data(std::move(job->body));
      }
      job->complete(std::move(result));
    }
  }

  const GlobalScope global_;
  const std::string certificates_;
  const Multi multi_;
  // Of the thread alone.
  Jobs jobs_;
  std::thread thread_;

  std::mutex mutex_;
  std::vector<std::unique_ptr<Job>> starting_;  // guarded by mutex_, as the rest
  std::vector<std::uint64_t> cancelling_;
  std::uint64_t lastNumber_ = 0;
  bool stopping_ = false;
};

class CurlTransport::Transfer final : public HTTPTransfer {
 public:
  Transfer(const std::shared_ptr<Engine>& engine, std::uint64_t number)
      : engine_(engine), number_(number) {}

  void cancel() override {
    if (const auto engine = engine_.lock()) engine->cancel(number_);
  }

 private:
  const std::weak_ptr<Engine> engine_;
  const std::uint64_t number_;
};

CurlTransport::CurlTransport(const std::string& additionalCertificates)
    : additionalCertificates_(additionalCertificates) {}

CurlTransport::~CurlTransport() { stop(); }

void CurlTransport::stop() {
  std::shared_ptr<Engine> engine;
  {
    const std::lock_guard lock(mutex_);
    isStopped_ = true;
    engine.swap(engine_);
  }
  if (engine) engine->stopThread();
}

std::shared_ptr<CurlTransport::Engine> CurlTransport::engine() {
  const std::lock_guard lock(mutex_);
  if (!engine_ && !isStopped_) {
    engine_ = std::make_shared<Engine>(additionalCertificates_);
    engine_->startThread();
  }
  return engine_;
}

std::shared_ptr<HTTPTransfer> CurlTransport::start(HTTPRequest request, Completion completion) {
  const auto engine = this->engine();
  auto job = std::make_unique<Job>(std::move(request), std::move(completion));
  const std::uint64_t number = engine ? engine->add(job) : 0;
  if (number == 0) job->complete({std::nullopt, 0, stoppedError});
  return std::make_shared<Transfer>(engine, number);
}

}  // namespace platform

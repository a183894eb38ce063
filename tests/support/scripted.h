// The outside world as tests script it: workspace, network, workers.
#pragma once

#include <deque>

#include "demo/demo_player.h"
#include "platform/loop/dispatch.h"
#include "platform/network/http.h"

namespace tests {

/// A workspace in which the demo player runs, and nothing else.
class ScriptedWorkspace final : public platform::WorkspaceBackend {
 public:
  explicit ScriptedWorkspace(const demo::DemoPlayer& player) : player_(player) {}

  platform::ObjectArray runningApplications(const std::string& bundleIdentifier) override {
    auto instances = player_.runningApplications(bundleIdentifier);
    if (listsTerminatedInstance) {
      const auto ended = platform::make<platform::NSRunningApplication>(bundleIdentifier, true);
      instances.insert(instances.begin(), ended);
    }
    return instances;
  }
  std::optional<std::string> applicationPath(const std::string& bundleIdentifier) override {
    const auto found = installed.find(bundleIdentifier);
    return found != installed.end() ? std::optional(found->second) : std::nullopt;
  }
  std::shared_ptr<platform::NSImage> icon(const std::string& path) override { return icons[path]; }
  void launchApplication(const std::string& bundleIdentifier) override {
    asked.push_back("launch " + bundleIdentifier);
  }
  void openURL(const platform::URL& url) override {
    asked.push_back("open " + url.absoluteString());
  }

  std::map<std::string, std::string> installed;                     ///< path by bundle identifier
  std::map<std::string, std::shared_ptr<platform::NSImage>> icons;  ///< by path
  bool listsTerminatedInstance = false;                             ///< before any other
  std::vector<std::string> asked;  ///< "launch <identifier>" and "open <address>"

 private:
  const demo::DemoPlayer& player_;
};

/// A network whose answers arrive when the test says so, on the test's own thread. For code that
/// waits for an answer, `replies` come at once, one to each request; a missing one fails.
class ScriptedHTTP final : public platform::HTTPTransport {
 public:
  struct Exchange final : platform::HTTPTransfer {
    void cancel() override { cancelled = true; }
    platform::HTTPRequest request;
    bool cancelled = false;
    bool completed = false;
    Completion completion;
  };

  std::shared_ptr<platform::HTTPTransfer> start(platform::HTTPRequest request,
                                                Completion completion) override;

  /// Answers an exchange with a body.
  void answer(std::size_t index, platform::Data body, int status = 200);
  void answer(std::size_t index, const std::string& body, int status = 200);
  /// Ends an exchange with a transport error; a cancelled one ends this way too.
  void fail(std::size_t index);

  std::size_t count() const { return exchanges_.size(); }
  const Exchange& at(std::size_t index) const { return *exchanges_.at(index); }
  const Exchange& last() const { return *exchanges_.back(); }
  std::size_t lastIndex() const { return exchanges_.size() - 1; }
  std::deque<std::optional<std::string>> replies;
  int replyStatus = 200;

  /// How many are neither completed nor cancelled.
  std::size_t inFlight() const;

 private:
  void complete(std::size_t index, platform::HTTPResult result);
  std::deque<std::shared_ptr<Exchange>> exchanges_;
};

/// A worker queue that works when told.
class ManualQueue final : public platform::DispatchQueue {
 public:
  void async(std::function<void()> task) override { tasks_.push_back(std::move(task)); }
  std::size_t count() const { return tasks_.size(); }
  void runAll() {
    for (; !tasks_.empty(); tasks_.pop_front()) tasks_.front()();
  }

 private:
  std::deque<std::function<void()>> tasks_;
};

}  // namespace tests

// The demo player among the applications of the desktop.
#pragma once

#include "demo/demo_player.h"
#include "platform/application/workspace.h"

namespace demo {

/// Answers for the demo player and hands every other question on.
class DemoWorkspace : public platform::WorkspaceBackend {
 public:
  /// Others may be null: then nothing else is installed and no address can be opened.
  explicit DemoWorkspace(DemoPlayer& player, platform::WorkspaceBackend* others = nullptr)
      : player_(player), others_(others) {}

  platform::ObjectArray runningApplications(const std::string& bundleIdentifier) override;
  std::optional<std::string> applicationPath(const std::string& bundleIdentifier) override;
  std::shared_ptr<platform::NSImage> icon(const std::string& path) override;
  /// The demo player has no window to press play in, so launching it starts the music.
  void launchApplication(const std::string& bundleIdentifier) override;
  void openURL(const platform::URL& url) override;

 private:
  DemoPlayer& player_;
  platform::WorkspaceBackend* others_;
};

}  // namespace demo

#include "widget/view_controller.h"

#include "tests/support/widget_fixture.h"
#include "widget/constants.h"

namespace virelune {
namespace {

/// Counts its updates.
class Probe : public VLViewController {
 public:
  bool update(NSObject* sender) override {
    EXPECT_EQ(sender, this);
    ++updates;
    return VLViewController::update(sender);
  }
  int updates = 0;
};

class ViewController : public tests::WidgetFixture {
 protected:
  std::shared_ptr<Probe> probe = platform::make<Probe>();
};

TEST_F(ViewController, UpdatesOnceForEachSignalAboutThePlayerAndForNoOther) {
  probe->viewWillAppear();
  EXPECT_EQ(probe->updates, 1);
  platform_.distributedCenter->postNotification(
      platform::NSNotification(VLDistributedNotificationName_PlayerInfo));
  EXPECT_EQ(probe->updates, 2);
  workspace.postDidLaunch("com.apple.iTunes");
  workspace.postDidTerminate("com.apple.iTunes");
  workspace.postDidLaunch("COM.APPLE.ITUNES");
  EXPECT_EQ(probe->updates, 5);
  for (const char* other : {"com.apple.iTunes.helper", "com.apple.iTune", "org.example", ""}) {
    workspace.postDidLaunch(other);
    workspace.postDidTerminate(other);
  }
  EXPECT_EQ(probe->updates, 5);
}

TEST_F(ViewController, IgnoresALaunchThatDoesNotSayOfWhat) {
  using platform::Dictionary;
  const char* name = platform::NSWorkspaceDidLaunchApplicationNotification;
  const char* key = platform::NSApplicationBundleIdentifierKey;
  const std::optional<Dictionary> infos[] = {std::nullopt, Dictionary{}, Dictionary{{key, 1}}};
  for (const auto& info : infos) {
    const platform::NSNotification notification(name, nullptr, info);
    EXPECT_FALSE(probe->iTunesDidTerminateOrLaunchWithNotification(&notification));
  }
  EXPECT_FALSE(probe->iTunesDidTerminateOrLaunchWithNotification(nullptr));
  EXPECT_EQ(probe->updates, 0);
}

}  // namespace
}  // namespace virelune

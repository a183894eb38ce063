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
    // Heard of already, so that whoever begins later hears of each change after this one.
    EXPECT_EQ(platform::current().distributedCenter->registrationCount(this), 1U);
    ++updates;
    return VLViewController::update(sender);
  }
  int updates = 0;
};

class ViewController : public tests::WidgetFixture {
 protected:
  std::shared_ptr<Probe> probe = platform::make<Probe>();
};

TEST_F(ViewController, UpdatesOnceForEachSignalAboutThePlayerWhileItIsShownAndForNoOther) {
  const auto updatesAfterSignals = [this] {
    probe->updates = 0;
    platform_.distributedCenter->postNotification(
        platform::NSNotification(VLDistributedNotificationName_PlayerInfo));
    workspace.postDidLaunch("com.apple.iTunes");
    workspace.postDidTerminate("com.apple.iTunes");
    workspace.postDidLaunch("COM.APPLE.ITUNES");
    for (const char* other : {"com.apple.iTunes.helper", "com.apple.iTune", "org.example", ""}) {
      workspace.postDidLaunch(other);
      workspace.postDidTerminate(other);
    }
    return probe->updates;
  };
  EXPECT_EQ(updatesAfterSignals(), 0);
  probe->viewWillAppear();
  EXPECT_EQ(probe->updates, 1);
  EXPECT_EQ(updatesAfterSignals(), 4);
  probe->viewWillAppear();
  EXPECT_EQ(updatesAfterSignals(), 4) << "nothing is registered twice";
  probe->viewWillDisappear();
  EXPECT_EQ(updatesAfterSignals(), 0);
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
  EXPECT_EQ(probe->updates, 0);
}

}  // namespace
}  // namespace virelune

#include "widget/view_controller.h"

#include "controls/view.h"
#include "platform/button.h"
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
  void postPlayerInfo() {
    platform_.distributedCenter.postNotification(
        platform::NSNotification(VLDistributedNotificationName_PlayerInfo));
  }
  std::size_t registrations(const Probe* observer) {
    return platform_.distributedCenter.registrationCount(observer) +
           workspace.notificationCenter().registrationCount(observer);
  }

  std::shared_ptr<Probe> probe = platform::make<Probe>();
};

TEST_F(ViewController, UpdatesOnceForEachSignalAboutThePlayerAndForNoOther) {
  probe->viewWillAppear();
  EXPECT_EQ(probe->updates, 1);
  postPlayerInfo();
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
  const platform::NSNotification notifications[] = {
      platform::NSNotification(name),
      platform::NSNotification(name, nullptr, Dictionary{}),
      platform::NSNotification(name, nullptr,
                               Dictionary{{platform::NSApplicationBundleIdentifierKey, 1}}),
  };
  for (const auto& notification : notifications) {
    EXPECT_FALSE(probe->iTunesDidTerminateOrLaunchWithNotification(&notification));
  }
  EXPECT_FALSE(probe->iTunesDidTerminateOrLaunchWithNotification(nullptr));
  EXPECT_EQ(probe->updates, 0);
}

TEST_F(ViewController, RegistersOnceHoweverOftenItAppears) {
  probe->viewWillAppear();
  probe->viewWillAppear();
  EXPECT_EQ(registrations(probe.get()), 3U) << "player, launch, termination";
  probe->updates = 0;
  postPlayerInfo();
  EXPECT_EQ(probe->updates, 1);
}

TEST_F(ViewController, HearsNothingWhileHiddenAndRefreshesWhenShownAgain) {
  window->setContentView(probe->view());
  window->setVisible(true);
  window->setVisible(false);
  probe->updates = 0;
  postPlayerInfo();
  workspace.postDidLaunch("com.apple.iTunes");
  EXPECT_EQ(probe->updates, 0);
  EXPECT_EQ(registrations(probe.get()), 0U);
  window->setVisible(true);
  EXPECT_EQ(probe->updates, 1);
}

TEST_F(ViewController, IsForgottenByBothCentresWhenDestroyedWhileShown) {
  window->setContentView(probe->view());
  window->setVisible(true);
  probe = nullptr;
  EXPECT_EQ(registrations(nullptr), 0U);
  postPlayerInfo();
  workspace.postDidLaunch("com.apple.iTunes");
  window->setVisible(false);
}

TEST_F(ViewController, WorksWithoutAWorkspaceAndWithAnotherKindOfView) {
  class WithButton : public Probe {
    std::shared_ptr<platform::NSView> preparedView() override {
      return platform::make<platform::NSButton>(preparedViewFrame());
    }
  };
  const auto controller = platform::make<WithButton>();
  ASSERT_NE(controller, nullptr);
  EXPECT_FALSE(controller->prepareViewBackgroundColor());

  class WithoutView : public Probe {
    std::shared_ptr<platform::NSView> preparedView() override { return nullptr; }
  };
  const auto viewless = platform::make<WithoutView>();
  ASSERT_NE(viewless, nullptr);
  EXPECT_FALSE(viewless->prepareView());
  EXPECT_FALSE(viewless->prepareViewBackgroundColor());

  platform_.workspace = nullptr;
  EXPECT_FALSE(viewless->startNotificationObserver());
  EXPECT_FALSE(viewless->stopNotificationObserver());
}

}  // namespace
}  // namespace virelune

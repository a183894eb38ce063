#include "widget/view_controller.h"

#include "panels/about_view_controller.h"
#include "panels/info_view_controller.h"
#include "tests/support/widget_fixture.h"
#include "track/track_view_controller.h"
#include "widget/widget_entry.h"
#include "widget/widget_view_controller.h"

namespace virelune {
namespace {

using testing::ElementsAre;

/// Counts its updates.
struct Probe : VLViewController {
  bool update(NSObject* sender) override {
    EXPECT_EQ(sender, this);
    // Heard of already, so that whoever begins later hears of each change after this one.
    EXPECT_EQ(platform::current().distributedCenter->registrationCount(this), 1U);
    ++updates;
    return VLViewController::update(sender);
  }
  int updates = 0;
};

struct ViewController : tests::WidgetFixture {
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
  EXPECT_EQ(tests::portrait(*probe->view()), "\nfill 0 0 320 40 grey 0/0");
  probe->viewWillAppear();
  EXPECT_EQ(probe->updates, 1);
  EXPECT_EQ(updatesAfterSignals(), 4);
  probe->viewWillAppear();
  EXPECT_EQ(updatesAfterSignals(), 4) << "nothing is registered twice";
  probe->viewWillDisappear();
  EXPECT_EQ(updatesAfterSignals(), 0);
}

struct Widget : tests::WidgetFixture {
  Widget() {
    window->setContentView(widget->view());
    widget->setPreferredContentSizeHandler(
        [this](platform::NSSize size) { heights.push_back(size.height); });
  }

  void show() {
    window->setVisible(true);
    clock.settle();
  }

  /// Which panel is shown, once everything that a complete switch promises has been checked.
  std::string panel() const {
    const auto& controller = widget->contentViewController();
    const auto& subviews = widget->view()->subviews();
    if (!controller) return subviews.empty() ? "none" : "none, but a view";
    EXPECT_THAT(subviews, ElementsAre(controller->view()));
    EXPECT_EQ(widget->view()->frame().size, controller->view()->frame().size);
    EXPECT_EQ(widget->preferredContentSize(), controller->view()->frame().size);
    if (widget->isAboutViewControllerVisible()) return "about";
    return widget->isTrackViewControllerVisible() ? "track" : "info";
  }

  std::shared_ptr<VLWidgetViewController> widget = platform::make<VLWidgetViewController>();
  std::vector<double> heights;
};

TEST_F(Widget, FollowsThePlayerThroughEveryTransition) {
  EXPECT_EQ(panel(), "none");
  show();
  EXPECT_EQ(panel(), "info");

  const auto edit = [this] { widget->widgetDidBeginEditing(); };
  const auto endEditing = [this] { widget->widgetDidEndEditing(); };
  const auto play = [this] { player.launch(demo::statePlaying); };
  const auto quit = [this] { player.quit(); };
  const auto answer = [this](bool answers) {
    player.setSilent(!answers);
    player.announce();
  };
  const struct {
    const char* event;
    std::function<void()> happens;
    const char* expected;
    bool isSamePanel;
  } steps[] = {
      {"launched, stopped", [this] { player.launch(); }, "info", true},
      {"plays", [this] { player.play(); }, "track", false},
      {"pauses", [this] { player.pause(); }, "track", true},
      {"next track", [this] { player.nextTrack(); }, "track", true},
      {"stops", [this] { player.stop(); }, "info", false},
      {"quits", quit, "info", true},
      {"launched, playing", play, "track", false},
      {"quits while playing", quit, "info", false},
      {"editing begins", edit, "about", false},
      {"plays while editing", play, "about", true},
      {"editing begins again", edit, "about", false},
      {"quits while editing", quit, "about", true},
      {"editing ends without player", endEditing, "info", false},
      {"launched again", play, "track", false},
      {"editing begins over the track", edit, "about", false},
      {"editing ends", endEditing, "track", false},
      {"falls silent", [&] { answer(false); }, "info", false},
      {"speaks again", [&] { answer(true); }, "track", false},
  };
  for (const auto& [event, happens, expected, isSamePanel] : steps) {
    SCOPED_TRACE(event);
    const auto before = widget->contentViewController();
    happens();
    clock.settle();
    EXPECT_EQ(panel(), expected);
    EXPECT_EQ(widget->contentViewController() == before, isSamePanel);
  }
}

TEST_F(Widget, AReplacedPanelAndTheWidgetItselfLeaveNoObserversAndTimersBehind) {
  show();
  startPlayer(demo::statePaused);
  const std::weak_ptr<VLViewController> track = widget->contentViewController();
  EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 1U) << "the heartbeat";
  player.stop();
  player.clearLog();
  clock.settle();
  EXPECT_EQ(player.asked(), "pPlS") << "the old panel is not refreshed once more";
  EXPECT_TRUE(track.expired());
  EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 0U);
  EXPECT_EQ(platform_.distributedCenter->registrationCount(), 2U) << "widget and panel";
  EXPECT_EQ(workspace.notificationCenter().registrationCount(), 4U);
  EXPECT_THAT(heights, ElementsAre(30, 64, 30));

  startPlayer(demo::statePaused, demo::liveStation);
  EXPECT_EQ(http.inFlight(), 1U);
  widget = nullptr;
  window->setContentView(nullptr);
  EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 0U);
  EXPECT_EQ(http.inFlight() + platform_.defaultCenter->registrationCount(), 0U);
  EXPECT_EQ(platform_.distributedCenter->registrationCount(), 0U);
  EXPECT_EQ(workspace.notificationCenter().registrationCount(), 0U);
}

TEST_F(Widget, AnsweringTheHostAlwaysBringsNewDataOnce) {
  EXPECT_NE(platform::NSExtensionMain(widgetEntry().principalClasses), nullptr)
      << "the bundle names it";
  std::vector<platform::NCUpdateResult> results;
  widget->widgetPerformUpdateWithCompletionHandler([&](platform::NCUpdateResult result) {
    EXPECT_EQ(panel(), "info") << "told once it is done";
    results.push_back(result);
  });
  EXPECT_THAT(results, ElementsAre(platform::NCUpdateResult::newData));
}

TEST_F(Widget, SettingNoPanelOrOneWithoutViewLeavesNone) {
  class WithoutView : public VLViewController {
    std::shared_ptr<platform::NSView> preparedView() override { return nullptr; }
  };
  show();
  const auto withoutView = platform::make<WithoutView>();
  ASSERT_NE(withoutView, nullptr);
  EXPECT_FALSE(widget->setViewController(withoutView));
  EXPECT_EQ(panel(), "none");
  widget->update(widget.get());
  EXPECT_EQ(panel(), "info");
  EXPECT_FALSE(widget->setViewController(nullptr));
  EXPECT_EQ(panel(), "none");
}

}  // namespace
}  // namespace virelune

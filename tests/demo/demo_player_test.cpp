#include "demo/demo_player.h"

#include <cmath>

#include "tests/support/listener.h"
#include "tests/support/widget_fixture.h"

namespace {

using demo::statePlaying;
using namespace platform;
using tests::Listener;

struct DemoPlayer : tests::WidgetFixture {
  DemoPlayer() {
    platform_.distributedCenter->addObserver(listener.get(), &Listener::heard,
                                             platform::player::infoNotification);
  }

  /// The index of the current track.
  std::size_t playing() {
    const auto isCurrent = [&](const auto& each) { return each.name == player.track()->name; };
    return static_cast<std::size_t>(std::ranges::find_if(library, isCurrent) - library.begin());
  }

  void playPause() const { application->sendEvent_id_parameters(code("hook"), code("PlPs")); }

  const std::vector<demo::Track> library = demo::library();
  std::shared_ptr<Listener> listener = platform::make<Listener>();
  std::shared_ptr<SBApplication> application =
      platform::make<SBApplication>(platform::player::bundleIdentifier);
  std::shared_ptr<SBObject> position = application->propertyWithCode(code("pPos"));
};

TEST_F(DemoPlayer, PositionRunsOnlyWhilePlayingAndStaysWithinTheTrack) {
  startPlayer(statePlaying);
  clock.advance(10);
  EXPECT_DOUBLE_EQ(position->doubleValue(), 10);
  playPause();
  for (const double target : {-5.0, std::nan(""), HUGE_VAL}) position->setTo(target);
  EXPECT_EQ(player.position(), 0);
  position->setTo(1e6);
  EXPECT_EQ(player.position(), player.currentTrack()->duration);
  EXPECT_EQ(playing(), 0U) << "a paused track does not end";
  position->setTo(50.5);
  clock.advance(100);
  playPause();
  clock.advance(2);
  EXPECT_DOUBLE_EQ(position->doubleValue(), 52.5);
  player.stop();
  position->setTo(7.0);
  EXPECT_EQ(position->doubleValue(), 0) << "a stopped player has no position";
}

TEST_F(DemoPlayer, TheEndOfATrackStartsTheNextAndIsAnnouncedOnce) {
  startPlayer(statePlaying);
  const double length = player.currentTrack()->duration;
  clock.advance(100);
  player.pause();
  clock.advance(length);
  player.play();
  player.seek(length - 10);
  clock.advance(9.999);
  EXPECT_EQ(playing(), 0U);

  const int before = listener->count;
  clock.advance(0.5);
  EXPECT_EQ(playing(), 1U);
  EXPECT_EQ(player.state(), statePlaying);
  EXPECT_NEAR(player.position(), 0.499, 1e-6);
  EXPECT_EQ(listener->count, before + 1);
}

}  // namespace

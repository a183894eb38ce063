#include "demo/demo_player.h"

#include <cmath>

#include "demo/demo_workspace.h"
#include "tests/support/listener.h"
#include "tests/support/widget_fixture.h"

namespace {

using demo::statePaused;
using demo::statePlaying;
using demo::stateStopped;
using platform::code;
using platform::FourCharCode;
using platform::SBApplication;
using platform::SBObject;
using tests::Listener;

class DemoPlayer : public tests::WidgetFixture {
 protected:
  DemoPlayer() {
    platform_.distributedCenter->addObserver(listener.get(), &Listener::heard,
                                             demo::playerInfoNotification);
  }

  /// How many announcements arrive from something that is done now.
  int announcementsOf(const std::function<void()>& action) {
    clock.settle();
    const int before = listener->count;
    action();
    EXPECT_EQ(listener->count, before) << "announced before the command returned";
    clock.settle();
    return listener->count - before;
  }

  void command(FourCharCode identifier) const {
    application->sendEvent_id_parameters(code("hook"), identifier);
  }
  std::shared_ptr<SBObject> trackProperty(FourCharCode property) const {
    return track->propertyWithCode(property);
  }

  std::shared_ptr<Listener> listener = platform::make<Listener>();
  std::shared_ptr<SBApplication> application =
      platform::make<SBApplication>(demo::playerBundleIdentifier);
  std::shared_ptr<SBObject> track = application->propertyWithCode(code("pTrk"));
  std::shared_ptr<SBObject> position = application->propertyWithCode(code("pPos"));
};

TEST_F(DemoPlayer, PositionRunsOnlyWhilePlayingAndStaysWithinTheTrack) {
  startPlayer(statePlaying);
  clock.advance(10);
  EXPECT_DOUBLE_EQ(position->doubleValue(), 10);
  command(code("PlPs"));
  for (const double target : {-5.0, std::nan(""), HUGE_VAL}) position->setTo(target);
  EXPECT_EQ(player.position(), 0);
  position->setTo(1e6);
  EXPECT_EQ(player.position(), player.currentTrack()->duration);
  EXPECT_EQ(player.currentTrackIndex(), 0U) << "a paused track does not end";
  position->setTo(50.5);
  clock.advance(100);
  command(code("PlPs"));
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
  EXPECT_EQ(player.currentTrackIndex(), 0U);

  const int before = listener->count;
  clock.advance(0.5);
  EXPECT_EQ(player.currentTrackIndex(), 1U);
  EXPECT_EQ(player.state(), statePlaying);
  EXPECT_NEAR(player.position(), 0.499, 1e-6);
  EXPECT_EQ(listener->count, before + 1);
}

TEST_F(DemoPlayer, TheLiveStationNeverEnds) {
  startPlayer(statePlaying, demo::liveStation);
  clock.advance(100'000);
  EXPECT_DOUBLE_EQ(position->doubleValue(), 100'000);
  EXPECT_EQ(track->resolvedClassCode(), code("cURT"));
  EXPECT_EQ(trackProperty(code("pTim"))->stringValue(), "");
}

TEST_F(DemoPlayer, PreviousLeavesTheTrackOnlyWithinItsFirstThreeSeconds) {
  startPlayer(statePaused, 2);
  player.setPosition(3.01);
  command(code("Prev"));
  EXPECT_EQ(player.currentTrackIndex(), 2U);
  EXPECT_EQ(player.position(), 0);
  player.setPosition(3);
  command(code("Prev"));
  EXPECT_EQ(player.currentTrackIndex(), 1U);
  EXPECT_EQ(player.state(), statePaused);

  player.setCurrentTrackIndex(0);
  command(code("Prev"));
  EXPECT_EQ(player.currentTrackIndex(), player.tracks().size() - 1);
  command(code("Next"));
  EXPECT_EQ(player.currentTrackIndex(), 0U);
}

TEST_F(DemoPlayer, EveryChangeIsAnnouncedOnceAfterTheCommandReturned) {
  startPlayer(statePlaying);
  EXPECT_EQ(announcementsOf([this] { command(code("PlPs")); }), 1);
  EXPECT_EQ(announcementsOf([this] { command(code("Next")); }), 1);
  EXPECT_EQ(announcementsOf([this] { position->setTo(5.0); }), 1);
  EXPECT_EQ(announcementsOf([this] { trackProperty(code("pLov"))->setTo(true); }), 1);
  EXPECT_EQ(announcementsOf([this] { player.pause(); }), 0) << "paused already";
  EXPECT_EQ(announcementsOf([this] { player.setState(statePlaying); }), 0);
  EXPECT_EQ(announcementsOf([this] { player.quit(); }), 0);
  EXPECT_EQ(announcementsOf([this] { player.play(); }), 0) << "there is no process to play";
  EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 0U) << "nothing ticks any more";
}

TEST_F(DemoPlayer, RatingsOutsideTheScaleAndOfTheWrongClassAreRefused) {
  startPlayer(statePaused, demo::japaneseTrack);
  const auto rating = trackProperty(code("pRte"));
  const auto kind = trackProperty(code("pRtk"));
  EXPECT_EQ(announcementsOf([&] {
              rating->setTo(-1);
              rating->setTo(101);
              rating->setTo("80");
              trackProperty(code("pLov"))->setTo("yes");
              trackProperty(code("pnam"))->setTo("Renamed");
            }),
            0);
  EXPECT_EQ(rating->integerValue(), 60);
  rating->setTo(0);
  EXPECT_EQ(rating->integerValue(), 0);
  EXPECT_EQ(kind->enumCodeValue(), demo::ratedByUser);
}

TEST_F(DemoPlayer, WithoutATrackOrAnyTracksNothingHappens) {
  startPlayer(statePlaying);
  player.setCurrentTrackIndex(std::nullopt);
  EXPECT_EQ(announcementsOf([this] {
              for (const auto skip : {code("Next"), code("Prev")}) command(skip);
              trackProperty(code("pRte"))->setTo(20);
              position->setTo(1.0);
            }),
            0);
  demo::DemoPlayer empty{std::vector<demo::Track>()};
  empty.launch(statePlaying);
  empty.nextTrack();
  empty.playTrack(0);
  EXPECT_EQ(empty.currentTrack(), nullptr);
}

TEST_F(DemoPlayer, LaunchingItFromTheDesktopStartsTheMusicAndOthersAreLeftToTheOthers) {
  demo::DemoWorkspace desktop(player, &workspaceBackend);
  desktop.launchApplication("org.virelune.Virelune");
  EXPECT_FALSE(player.isRunning());
  for (const FourCharCode state : {stateStopped, statePaused}) {
    player.launch(state);
    player.setState(state);
    desktop.launchApplication(demo::playerBundleIdentifier);
    EXPECT_EQ(player.state(), statePlaying);
  }
  EXPECT_THAT(workspaceBackend.asked, testing::ElementsAre("launch org.virelune.Virelune"));
}

}  // namespace

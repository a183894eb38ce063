// The bridge and players that come and go, die, hang, stammer and lie: the interface never stands
// still for long, and all is well again when the player is.

#include "desktop/player/changes.h"
#include "tests/integration/bridge_fixture.h"
#include "tests/integration/fake_player.h"
#include "tests/support/scripted.h"
#include "track/track_view_controller.h"

namespace tests {
namespace {

using platform::code;
using platform::textFromCode;
using PlayerBridge = BridgeFixture;

/// What a player tells, with more about the track.
QVariantMap song(const QString& title, const QVariantMap& more = {},
                 const char* status = "Playing") {
  QVariantMap metadata{{"xesam:title", title}, {"mpris:trackid", "/track/1"}};
  metadata.insert(more);
  return {{"PlaybackStatus", status}, {"Position", qlonglong{20'000'000}}, {"Metadata", metadata}};
}

/// As a player that has ratings of its own.
QVariantMap rated(double rating) {
  QVariantMap properties =
      song("Song", {{"mpris:length", 30'000'000.0}, {"xesam:userRating", 0.2}});
  properties["Rating"] = rating;
  return properties;
}

TEST_F(PlayerBridge, FollowsTheNamedPlayerElseTheOneThatPlays) {
  FakePlayer first(bus, "first", song("one", {}, "Paused"));
  FakePlayer second(bus, "second.instance7", song("two"));
  const FakePlayer proxy(bus, "playerctld", song("proxy"));
  for (const auto& [name, followed] :
       {std::pair("FIRST", "one"), {"second", "two"}, {"third", "two"}, {"", "two"}}) {
    follow({.playerName = name});
    EXPECT_EQ(title(), followed) << name;
  }
  // Both play: the one that is followed stays. Only the other plays: it takes over.
  first.tell(song("one"));
  second.tell(song("two", {}, "Paused"));
  EXPECT_TRUE(waitForTitle("one"));
  // It leaves: the last one is still there, and nothing has terminated.
  first.leaveBus();
  EXPECT_TRUE(waitForTitle("two"));
  EXPECT_EQ(terminated->count, 0);

  const auto listing = desktop::PlayerBridge::listPlayers(bus.connection());
  ASSERT_EQ(listing.size(), 2U);
  EXPECT_EQ(listing[1].name, "second.instance7");
  EXPECT_EQ(listing[1].status, "Paused");
}

TEST_F(PlayerBridge, ARemoteTrackThatGrowsAndGrowsIsAStreamAndItsGrowthIsNoNews) {
  const auto told = [](double seconds) {
    return QVariantMap{{"Metadata", QVariantMap{{"xesam:url", "http://127.0.0.1/prog.m3u8"},
                                                {"mpris:trackid", "/track/1"},
                                                {"mpris:length", seconds * 1e6}}}};
  };
  FakePlayer player(bus, "grower", told(10));
  const QString name = "org.mpris.MediaPlayer2.grower";
  desktop::PlayerMirror mirror(bus.connection(), name, name);
  desktop::PlayerMirror* const all[] = {&mirror};
  desktop::PlayerMirror::askTogether(all);
  int news = 0;
  QObject::connect(&mirror, &desktop::PlayerMirror::changed, [&news] { ++news; });
  // At first it may be an estimate that became better; one that shrinks is no live stream.
  const std::tuple<double, double, int> lengths[] = {
      {12, 12, 1}, {14, 0, 2}, {16, 0, 2}, {9, 9, 3}};
  for (const auto& [length, shown, newsSoFar] : lengths) {
    player.setProperties(told(length));
    mirror.receivedPropertiesChanged(FakePlayer::changeSignal(told(length)));
    ASSERT_NE(mirror.snapshot(), nullptr);
    EXPECT_EQ(mirror.snapshot()->length, shown);
    EXPECT_EQ(mirror.snapshot()->isStream(), shown == 0);
    EXPECT_EQ(news, newsSoFar) << length;
  }
}

TEST_F(PlayerBridge, WhatPlaysOnAfterItsLengthIsAStreamWhenItIsElsewhere) {
  for (const auto& [address, isStream] :
       {std::pair("http://radio.example/live", true), {"file:///music/song.flac", false}}) {
    const FakePlayer player(
        bus, "endless", song("Station", {{"xesam:url", address}, {"mpris:length", 3'400'000.0}}));
    follow();
    position();
    EXPECT_EQ(trackText(code("pTim")),
              isStream ? std::nullopt : std::optional<std::string>("0:03"));
    EXPECT_EQ(textFromCode(track()->resolvedClassCode()), isStream ? "cURT" : "cFlT");
  }
}

TEST_F(PlayerBridge, WritesWhatThePlayerKeepsItselfAndASlowOnesOldAnswerDoesNotUndoIt) {
  FakePlayer player(bus, "rater", rated(0.6));
  follow();
  ASSERT_TRUE(waitForRating(60));
  app()->propertyWithCode(code("pPos"))->setTo(99.0);
  player.hold();
  player.signalChange({{"PlaybackStatus", "Playing"}});
  ASSERT_TRUE(waitUntil([&] { return announced->count > 0; }));
  state();  // which it is too slow to answer
  rating()->setTo(100);
  EXPECT_EQ(rating()->integerValue(), 100) << "the rule reads it";
  player.release();  // answers the question from before first
  EXPECT_TRUE(waitUntil([&] {
    EXPECT_EQ(rating()->integerValue(), 100);
    return player.calls().size() == 2;
  }));
  EXPECT_THAT(player.calls(), testing::ElementsAre("SetPosition /track/1 30000000",
                                                   "Set org.mpris.MediaPlayer2.Player Rating 1"));
  player.tell(rated(0.5));
  EXPECT_TRUE(waitForRating(50));
}

TEST_F(PlayerBridge, WhatAPlayerChangesWithoutAWordIsAnnouncedOnceItsLastAnswerIsOld) {
  FakePlayer player(bus, "wordless", song("Song", {{"xesam:userRating", 0.2}}, "Paused"));
  follow();
  state();
  player.setProperties(song("Song", {{"xesam:userRating", 0.8}}, "Paused"));
  EXPECT_TRUE(waitUntil([&] {
    position();  // as the panel asks every second
    return announced->count > 0;
  }));
  EXPECT_EQ(rating()->integerValue(), 80);
  EXPECT_LT(player.questionCount(), 100) << "its position stands, and is believed";
}

TEST_F(PlayerBridge, AFloodOfSignalsIsNotReadAndCaughtUpWithAfterwards) {
  const FakePlayer player(bus, "flood", song("Song"));
  desktop::PlayerMirror mirror(bus.connection(), "org.mpris.MediaPlayer2.flood",
                               "org.mpris.MediaPlayer2.flood");
  desktop::PlayerMirror* const asked[] = {&mirror};
  desktop::PlayerMirror::askTogether(asked);
  int changes = 0;
  QObject::connect(&mirror, &desktop::PlayerMirror::changed, &mirror, [&changes] { ++changes; });
  const QDBusMessage signal = FakePlayer::changeSignal(song("Song"));
  for (int i = 0; i < 1000; ++i) mirror.receivedPropertiesChanged(signal);
  for (int i = 0; i < 1000; ++i) mirror.receivedSeeked();
  const int taken = std::exchange(changes, 0);
  EXPECT_GE(taken, 1);
  EXPECT_LT(taken, 1000);
  EXPECT_TRUE(waitUntil([&] { return changes > 0; }));
  EXPECT_EQ(mirror.snapshot()->title, "Song");
}

TEST_F(PlayerBridge, WhatNoPanelShowsIsToldToOthersWithoutARefreshOrAQuestion) {
  FakePlayer player(bus, "loud", song("Song", {{"Volume", 0.5}}));
  follow();
  state();
  const int questions = player.questionCount();
  int heard = 0;
  const auto changes = desktop::PlayerChanges::observe([&] { ++heard; });
  for (int i = 0; i < 3; ++i) player.tell({{"Volume", 0.9}, {"Shuffle", true}, {"CanSeek", false}});
  EXPECT_TRUE(waitUntil([&] { return heard > 0; }));
  EXPECT_EQ(announced->count, 0);
  EXPECT_EQ(bridge->glance()->volume, 0.9);
  EXPECT_EQ(player.questionCount(), questions);
  player.tell({{"Volume", 0.1}});
  player.tell(song("Other"));
  EXPECT_TRUE(waitUntil([&] { return announced->count == 1; }));
  EXPECT_EQ(title(), "Other");
}

TEST_F(PlayerBridge, ATrackIsAnnouncedOnceItsMarksHaveBeenReadOnAWorker) {
  FakePlayer player(bus, "ahead", song("Song"));
  ManualQueue reader;
  follow({.ratings = &ratings, .marksReader = &reader});
  player.tell(song("Other"));
  EXPECT_TRUE(waitUntil([&] { return reader.count() == 1; }));
  player.tell(song("Other", {}, "Paused"));
  EXPECT_TRUE(waitUntil([&] { return state() == "kPSp"; }));
  EXPECT_EQ(announced->count, 0);
  reader.runAll();
  EXPECT_TRUE(waitUntil([&] { return announced->count == 1; }));
  EXPECT_EQ(title(), "Other");
}

TEST_F(PlayerBridge, AClickOnTheArtworkRaisesThePlayerOnce) {
  const FakePlayer player(bus, "raised", song("Song"));
  follow();
  const auto panel = platform::make<virelune::VLTrackViewController>();
  EXPECT_TRUE(panel->clickedArtworkButton(nullptr));
  command(code("Next"));
  EXPECT_TRUE(waitUntil([&] { return player.calls().contains("Next"); }));
  EXPECT_THAT(player.calls(), testing::ElementsAre("Raise", "Next"));
}

TEST_F(PlayerBridge, APlayerIsWaitedForOnceIsSilentInTheEndAndCountsAgainWhenItAnswers) {
  FakePlayer player(bus, "hanging", song("Song"));
  follow();
  ASSERT_EQ(title(), "Song");
  const int questions = player.questionCount();
  player.hold();
  player.setProperties(song("Later"));
  player.signalChange(song("Signalled"));
  // One slow answer: what was signalled is shown, and goes on being shown.
  ASSERT_TRUE(waitUntil([&] { return announced->count > 0; }));
  const auto panel = platform::make<virelune::VLTrackViewController>();
  for (int i = 0; i < 5; ++i) {
    command(code("PlPs"));
    for (int refreshes = 0; refreshes < 3; ++refreshes) panel->update(nullptr);
  }
  EXPECT_EQ(title(), "Signalled");
  EXPECT_EQ(state(), "kPSP");
  // No answer at all.
  EXPECT_TRUE(waitUntil([] { return state() != "kPSP"; }));
  EXPECT_EQ(title(), "(none)");
  EXPECT_TRUE(bridge->isRunning());
  // A widget that starts meanwhile does not hang either.
  follow();
  EXPECT_TRUE(bridge->isRunning());

  player.release();
  EXPECT_TRUE(waitForTitle("Later"));
  EXPECT_LT(player.questionCount() - questions, 30) << "a question for each value asked for";
}

}  // namespace
}  // namespace tests

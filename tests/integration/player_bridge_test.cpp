// The bridge with mpv as the player and playerctl as the witness.
#include <gmock/gmock.h>

#include <QtDBus/QDBusMessage>

#include "desktop/player/mirror.h"
#include "tests/integration/bridge_fixture.h"
#include "tests/integration/fake_player.h"
#include "tests/integration/mpv.h"
#include "track/track_view_controller.h"

namespace tests {
namespace {

using platform::code;
using PlayerBridge = BridgeFixture;

TEST_F(PlayerBridge, FollowsTheNamedPlayerElseTheOneThatPlays) {
  const auto player = [](const char* status, const char* title) {
    return QVariantMap{{"PlaybackStatus", QLatin1String(status)},
                       {"Metadata", QVariantMap{{"xesam:title", QLatin1String(title)}}}};
  };
  FakePlayer first(bus, "first", player("Paused", "one"));
  FakePlayer second(bus, "second.instance7", player("Playing", "two"));
  FakePlayer proxy(bus, "playerctld", player("Playing", "proxy"));

  follow({.playerName = "FIRST"});
  EXPECT_EQ(trackText(code("pnam")), "one");
  follow({.playerName = "second"});
  EXPECT_EQ(trackText(code("pnam")), "two");
  follow({.playerName = "third"});
  EXPECT_EQ(trackText(code("pnam")), "two") << "while it is not there, the one that plays";

  follow();
  EXPECT_EQ(trackText(code("pnam")), "two");
  // Both play: the one that is followed stays. Only the other plays: it takes over.
  first.setProperties(player("Playing", "one"));
  first.signalChange(player("Playing", "one"));
  second.setProperties(player("Paused", "two"));
  second.signalChange(player("Paused", "two"));
  EXPECT_TRUE(waitUntil([&] { return trackText(code("pnam")) == "one"; }));
  // It leaves: the last one is still there, and nothing has terminated.
  first.leaveBus();
  EXPECT_TRUE(waitUntil([&] { return trackText(code("pnam")) == "two"; }));
  EXPECT_EQ(announced->terminations, 0);

  const auto listing = desktop::PlayerBridge::listPlayers(bus.connection());
  ASSERT_EQ(listing.size(), 2U);
  EXPECT_EQ(listing[1].name, "second.instance7");
  EXPECT_EQ(listing[1].status, "Paused");
}

TEST_F(PlayerBridge, ARemoteTrackThatGrowsAndGrowsIsAStreamAndItsGrowthIsNoNews) {
  const auto metadata = [](double seconds) {
    return QVariantMap{{"Metadata", QVariantMap{{"xesam:title", "Beats 1"},
                                                {"xesam:url", "http://127.0.0.1/prog.m3u8"},
                                                {"mpris:trackid", "/track/1"},
                                                {"mpris:length", seconds * 1e6}}}};
  };
  FakePlayer player(bus, "grower", metadata(10));
  desktop::PlayerMirror mirror(bus.connection(), "org.mpris.MediaPlayer2.grower",
                               "org.mpris.MediaPlayer2.grower");
  desktop::PlayerMirror* const all[] = {&mirror};
  desktop::PlayerMirror::askTogether(all);
  int news = 0;
  QObject::connect(&mirror, &desktop::PlayerMirror::changed, [&news] { ++news; });
  /// The length that is shown once the player has told another one.
  const auto lengthAfter = [&](double seconds) {
    player.setProperties(metadata(seconds));
    auto signal = QDBusMessage::createSignal(desktop::playerPath, desktop::propertiesInterface,
                                             "PropertiesChanged");
    signal << QString(desktop::playerInterface) << metadata(seconds) << QStringList();
    mirror.receivedPropertiesChanged(signal);
    const auto now = mirror.snapshot();
    return now != nullptr ? now->length : -1;
  };
  EXPECT_EQ(lengthAfter(12), 12);  // may be an estimate that became better
  EXPECT_FALSE(mirror.snapshot()->isStream());
  EXPECT_EQ(lengthAfter(14), 0);
  EXPECT_TRUE(mirror.snapshot()->isStream());
  EXPECT_EQ(news, 2);
  EXPECT_EQ(lengthAfter(16), 0);
  EXPECT_EQ(news, 2);
  EXPECT_EQ(lengthAfter(9), 9);  // shrunk: no live stream after all
  EXPECT_EQ(news, 3);
}

TEST_F(PlayerBridge, WhatPlaysOnAfterItsLengthIsAStreamWhenItIsElsewhere) {
  for (const auto& [address, isStream] :
       {std::pair("http://radio.example/live", true), {"file:///music/song.flac", false}}) {
    FakePlayer player(bus, "endless",
                      {{"PlaybackStatus", "Playing"},
                       {"Position", QVariant::fromValue<qlonglong>(20'000'000)},
                       {"Metadata", QVariantMap{{"xesam:title", "Station"},
                                                {"xesam:url", address},
                                                {"mpris:length", 3'400'000.0}}}});
    follow();
    position();
    EXPECT_EQ(trackText(code("pTim")),
              isStream ? std::nullopt : std::optional<std::string>("0:03"));
    EXPECT_EQ(platform::textFromCode(track()->resolvedClassCode()), isStream ? "cURT" : "cFlT");
  }
}

TEST_F(PlayerBridge, WritesTheRatingThatThePlayerKeepsItself) {
  const QVariantMap properties = {{"PlaybackStatus", "Paused"},
                                  {"Rating", 0.6},
                                  {"Metadata", QVariantMap{{"xesam:title", "Rated"},
                                                           {"mpris:trackid", "/track/1"},
                                                           {"mpris:length", 30'000'000.0},
                                                           {"xesam:userRating", 0.2}}}};
  FakePlayer player(bus, "rater", properties);
  follow();
  const auto rating = track()->propertyWithCode(code("pRte"));
  EXPECT_TRUE(waitUntil([&] { return rating->integerValue() == 60; }));
  rating->setTo(80);
  app()->propertyWithCode(code("pPos"))->setTo(99.0);
  EXPECT_TRUE(waitUntil([&] { return player.calls().size() == 2; }));
  EXPECT_THAT(player.calls(), testing::ElementsAre("Set org.mpris.MediaPlayer2.Player Rating 0.8",
                                                   "SetPosition /track/1 30000000"));
}

TEST_F(PlayerBridge, ASlowPlayersOwnRatingIsWhatItWasToldAndNotWhatItAnswersFromBefore) {
  const auto rated = [](double rating) {
    return QVariantMap{{"PlaybackStatus", "Paused"},
                       {"Rating", rating},
                       {"Metadata", QVariantMap{{"xesam:title", "Song"}}}};
  };
  FakePlayer player(bus, "slow", rated(0.75));
  follow();
  const auto rating = track()->propertyWithCode(code("pRte"));
  ASSERT_TRUE(waitUntil([&] { return rating->integerValue() == 75; }));
  player.hold();
  player.signalChange({{"Volume", 1.0}});
  ASSERT_TRUE(waitUntil([&] { return announced->changes > 0; }));
  state();  // which it is too slow to answer
  rating->setTo(100);
  EXPECT_EQ(rating->integerValue(), 100) << "the rule reads it";
  player.release();  // answers the question from before first
  EXPECT_TRUE(waitUntil([&] {
    EXPECT_EQ(rating->integerValue(), 100);
    return player.calls().contains("Set org.mpris.MediaPlayer2.Player Rating 1");
  }));
  player.setProperties(rated(0.5));
  player.signalChange(rated(0.5));
  EXPECT_TRUE(waitUntil([&] { return rating->integerValue() == 50; }));
}

TEST_F(PlayerBridge, WhatAPlayerChangesWithoutAWordIsAnnouncedOnceItsLastAnswerIsOld) {
  const auto rated = [](double rating) {
    return QVariantMap{
        {"PlaybackStatus", "Playing"},
        {"Metadata", QVariantMap{{"xesam:title", "Song"}, {"xesam:userRating", rating}}}};
  };
  FakePlayer player(bus, "wordless", rated(0.2));
  follow();
  state();
  player.setProperties(rated(0.8));
  EXPECT_TRUE(waitUntil([&] {
    position();  // as the panel asks every second
    return announced->changes > 0;
  }));
  EXPECT_EQ(track()->propertyWithCode(code("pRte"))->integerValue(), 80);
}

TEST_F(PlayerBridge, AClickOnTheArtworkRaisesThePlayerOnce) {
  FakePlayer player(
      bus, "raised",
      {{"PlaybackStatus", "Playing"}, {"Metadata", QVariantMap{{"xesam:title", "Song"}}}});
  follow();
  const auto panel = platform::make<virelune::VLTrackViewController>();
  EXPECT_TRUE(panel->clickedArtworkButton(nullptr));
  command(code("Next"));
  EXPECT_TRUE(waitUntil([&] { return player.calls().contains("Next"); }));
  EXPECT_THAT(player.calls(), testing::ElementsAre("Raise", "Next"));
}

TEST_F(PlayerBridge, KeepsRatingsAndLoveForPlayersThatHaveNone) {
  const TemporaryFolder folder;
  desktop::RatingsStore ratings(folder.path() / "ratings.sqlite");
  const Mpv mpv(bus);
  follow({.ratings = &ratings});
  const auto of = [](platform::FourCharCode property) {
    return track()->propertyWithCode(property);
  };
  EXPECT_EQ(of(code("pRtk"))->enumCodeValue(), platform::FourCharCode{});
  of(code("pRte"))->setTo(100);
  of(code("pLov"))->setTo(true);
  of(code("pAlR"))->setTo(40);
  of(code("pALv"))->setTo(true);
  follow({.ratings = &ratings});
  EXPECT_EQ(of(code("pRte"))->integerValue(), 100);
  EXPECT_EQ(platform::textFromCode(of(code("pRtk"))->enumCodeValue()), "kRtU");
  EXPECT_TRUE(of(code("pLov"))->boolValue());
  EXPECT_EQ(of(code("pAlR"))->integerValue(), 40);
  // The next track of the album has the album's marks and none of its own.
  command(code("Next"));
  ASSERT_TRUE(waitUntil([&] { return trackText(code("pnam")) == "夜の海"; }));
  EXPECT_FALSE(of(code("pLov"))->boolValue());
  EXPECT_EQ(of(code("pRte"))->integerValue(), 0);
  EXPECT_TRUE(of(code("pALv"))->boolValue());
}

}  // namespace
}  // namespace tests

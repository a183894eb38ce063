#include "player/itunes.h"

#include "player/process_queries.h"
#include "tests/support/widget_fixture.h"

namespace virelune {
namespace {

using platform::code;
using platform::Value;
using ITunes = tests::WidgetFixture;

TEST_F(ITunes, ATrackResolvesToItsMostSpecificClass) {
  startPlayer();
  const auto track = AEiTunesApplication::vl_currentTrack();
  EXPECT_NE(std::dynamic_pointer_cast<AEiTunesFileTrack>(track->get()), nullptr);
  player.setCurrentTrackIndex(demo::liveStation);
  EXPECT_NE(std::dynamic_pointer_cast<AEiTunesURLTrack>(track->get()), nullptr);

  player.setReply(code("pTrk"), code("cZzz"));
  const auto unknown = track->get();
  ASSERT_NE(unknown, nullptr);
  EXPECT_EQ(std::dynamic_pointer_cast<AEiTunesTrack>(unknown), nullptr);
  player.setReply(code("pTrk"), std::nullopt);
  EXPECT_EQ(track->get(), nullptr);
}

TEST_F(ITunes, WhatAPlayerDoesNotAnswerOrGetsWrongReadsAsZero) {
  startPlayer();
  const auto application = AEiTunesApplication::vl_iTunesApplication();
  const auto track = AEiTunesApplication::vl_currentTrack();
  for (const bool silent : {true, false}) {
    player.setSilent(silent);
    for (const auto property :
         {code("pPlS"), code("pPos"), code("pnam"), code("pRte"), code("pLov"), code("cArt")}) {
      player.setReply(property, platform::ScriptingReply(Value(platform::Array{})));
    }
    EXPECT_EQ(application->playerState(), FourCharCode{});
    EXPECT_EQ(application->playerPosition(), 0.0);
    EXPECT_EQ(track->name(), std::nullopt);
    EXPECT_EQ(track->rating(), 0);
    EXPECT_FALSE(track->loved());
    EXPECT_EQ(track->artworks().count(), 0);
  }
}

TEST_F(ITunes, APlayerThatDoesNotRunIsNeverAsked) {
  EXPECT_FALSE(vl_iTunesIsRunning());
  EXPECT_FALSE(vl_iTunesIsPlayingBeats1());
  startPlayer();
  player.clearLog();
  workspaceBackend.listsTerminatedInstance = true;
  EXPECT_FALSE(vl_iTunesIsRunningAndPlaying()) << "only the first instance counts";
  EXPECT_EQ(player.requestCount(), 0U);
}

TEST_F(ITunes, PlaysInEveryReadableStateButStopped) {
  startPlayer();
  player.setState(code("kPSF"));
  EXPECT_TRUE(vl_iTunesIsRunningAndPlaying());
  player.setState(FourCharCode{});
  EXPECT_FALSE(vl_iTunesIsRunningAndPlaying());
  player.setSilent(true);
  EXPECT_TRUE(vl_iTunesIsRunning());
}

TEST_F(ITunes, TheLiveStationIsAStreamOfExactlyThatName) {
  startPlayer(demo::stateStopped, demo::liveStation);
  const std::tuple<const char*, bool, bool, std::size_t> cases[] = {
      {"Beats 1", true, true, 2},         {"BEATS 1", true, true, 2},
      {"Beats 1", false, false, 2},       {"Beats 1 ", true, false, 1},
      {"Beats 1 Replay", true, false, 1}, {"", true, false, 1},
  };
  for (const auto& [name, isStream, isStation, requests] : cases) {
    player.currentTrack()->name = name;
    player.currentTrack()->isStream = isStream;
    player.clearLog();
    EXPECT_EQ(vl_iTunesIsPlayingBeats1(), isStation) << name;
    EXPECT_EQ(player.requestCount(), requests) << name;
  }
}

}  // namespace
}  // namespace virelune

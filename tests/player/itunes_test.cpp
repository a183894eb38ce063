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
  player.setCurrentTrackIndex(demo::kLiveStation);
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
    for (const auto property : {code("pPlS"), code("pPos"), code("pnam"), code("pDur"),
                                code("pRte"), code("pRtk"), code("pLov"), code("cArt")}) {
      player.setReply(property, platform::ScriptingReply(Value(platform::Array{})));
    }
    EXPECT_EQ(application->playerState(), FourCharCode{});
    EXPECT_EQ(application->playerPosition(), 0.0);
    EXPECT_EQ(track->name(), std::nullopt);
    EXPECT_EQ(track->duration(), 0.0);
    EXPECT_EQ(track->rating(), 0);
    EXPECT_EQ(track->ratingKind(), FourCharCode{});
    EXPECT_FALSE(track->loved());
    EXPECT_EQ(track->artworks().count(), 0);
  }
}

TEST_F(ITunes, APlayerThatDoesNotRunIsNeverAsked) {
  EXPECT_FALSE(vl_iTunesIsRunning());
  EXPECT_FALSE(vl_iTunesIsRunningAndPlaying());
  EXPECT_FALSE(vl_iTunesIsPlayingBeats1());
  startPlayer();
  player.clearLog();
  player.setListsTerminatedInstance(true);
  EXPECT_FALSE(vl_iTunesIsRunningAndPlaying()) << "only the first instance counts";
  EXPECT_EQ(player.requestCount(), 0U);
}

TEST_F(ITunes, PlaysInEveryReadableStateButStopped) {
  startPlayer();
  const std::pair<platform::FourCharCode, bool> states[] = {
      {demo::kPlaying, true},
      {demo::kPaused, true},
      {code("kPSF"), true},
      {demo::kStopped, false},
      {platform::FourCharCode{}, false},
  };
  for (const auto& [state, plays] : states) {
    player.setState(state);
    EXPECT_EQ(vl_iTunesIsRunningAndPlaying(), plays) << platform::textFromCode(state);
  }
  player.setState(demo::kPlaying);
  player.setSilent(true);
  EXPECT_TRUE(vl_iTunesIsRunning());
  EXPECT_FALSE(vl_iTunesIsRunningAndPlaying());
}

TEST_F(ITunes, TheLiveStationIsAStreamOfExactlyThatName) {
  startPlayer(demo::kStopped, demo::kLiveStation);
  const struct {
    const char* name;
    bool isStream;
    bool isStation;
    std::size_t requests;
  } cases[] = {
      {"Beats 1", true, true, 2},   {"beats 1", true, true, 2},         {"BEATS 1", true, true, 2},
      {"Beats 1", false, false, 2}, {"Beats 1 ", true, false, 1},       {"Beats", true, false, 1},
      {"", true, false, 1},         {"Beats 1 Replay", true, false, 1},
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

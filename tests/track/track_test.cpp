// The now-playing panel: what it shows, does and asks, over the simulated player.
#include "track/track_view_controller.h"

#include "extensions/application_paths.h"
#include "tests/support/temporary_data_home.h"
#include "tests/support/widget_fixture.h"

namespace virelune {
namespace {

using namespace platform;

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using tests::nameOf;

/// A panel in a window, over the simulated player.
struct Track : tests::WidgetFixture {
  /// Puts a new panel on screen, over a player in a state.
  void show(FourCharCode state = demo::statePlaying, std::size_t track = 0) {
    startPlayer(state, track);
    panel = make<VLTrackViewController>();
    window->setContentView(panel->view());
    window->setVisible(true);
    clock.settle();
    player.clearLog();
    marked.clear();
  }

  tests::TemporaryDataHome dataHome;
  std::shared_ptr<VLTrackViewController> panel;
};

TEST_F(Track, PutsEveryControlInItsPlaceInItsLookFromTheArtworkBelowToTheTimeAbove) {
  show(demo::statePaused, 6);
  player.setPosition(46.75);
  panel->update(panel.get());
  EXPECT_EQ(tests::portrait(*panel->view()), R"(
fill 0 0 320 64 grey 0/0
cover 6 9 50 50 round 3
fill 59 25 191 20 grey 0/0
Copper Wire 62.82 25.4 183.36 19.2 label size 16 left
fill 59 45 258 19 grey 0/0
Low Orbit Parade — Signals for Small Rooms 64.16 45.4 247.68 19.2 64.16 45.4 247.68 18.6 label size 12 left
VLImageControllerNext 292 27 16 16 alpha 0.5
VLImageControllerPlay 272 27 16 16 alpha 0.5
VLImageControllerPrevious 252 27 16 16 alpha 0.5
fill 0 0 320 7 grey 0/0
fill 0 -3.5 80 7 0 0 80 3.5 grey 0.5/1
fill 80 -3.5 240 7 80 0 240 3.5 grey 0.5/0.5
fill 77.6667 -7 2.33333 14 77.6667 0 2.33333 7 grey 0.5/1
VLImageLoveOn 64 10 11 11 alpha 0.5
fill 79 10 65 12 alpha 0.5 grey 0/0
VLImageRatingStarFull 79 10 13 12 alpha 0.5
VLImageRatingStarFull 92 10 13 12 alpha 0.5
VLImageRatingStarFull 105 10 13 12 alpha 0.5
VLImageRatingStarHalf 118 10 13 12 alpha 0.5
VLImageRatingStarDot 131 10 13 12 alpha 0.5
fill 240 8 80 15 grey 0/0
00:46 | 3:07 241.6 9.25 76.8 12.5 label size 10 equal digits centred)");
}

struct TrackReadout : Track {
  TrackReadout() { show(demo::statePaused); }
  demo::Track& track() { return *player.currentTrack(); }
  VLBeats1InfoLoader& loader() { return *panel->contentBeats1InfoLoader(); }
};

TEST_F(TrackReadout, TellsWhatThereIsAndFallsBackWhereThereIsNothing) {
  using Given = std::function<void()>;
  const auto text = [](const std::optional<std::string>& told) { return told.value_or("none"); };
  const auto at = [this](double seconds) { return [=, this] { player.setPosition(seconds); }; };
  const auto time = [&] { return text(panel->infoTrackTimeDescription()); };
  const auto by = [this](const char* artist, const char* album) {
    return [=, this] { track().artist = artist, track().album = album; };
  };
  const auto artist = [&] { return text(panel->infoTrackArtistWithAlbum()); };
  const auto artwork = [&] {
    return (panel->infoTrackHasArtwork() ? "has " : "no ") + nameOf(panel->infoTrackArtwork());
  };
  const auto play = [&] { return nameOf(panel->infoTrackPlayImage()); };
  const auto rated = [this](FourCharCode kind) {
    return [=, this] { track().marks.ratingKind = kind; };
  };
  const auto kind = [&] { return std::to_string(panel->infoTrackRatingType()); };
  const auto name = [&] { return text(panel->infoTrackName()); };
  const auto live = [this](const char* key, const Value& value) {
    return [=, this] { loader().trackInfoUpdateForKey_withValue(key, value); };
  };
  const Value image(imageWithData(tests::imageBytes("live")));
  const std::tuple<Given, std::function<std::string()>, std::string> rows[] = {
      {at(59.999), time, "00:59 | 3:45"},
      {at(3600), time, "60:00 | 3:45"},
      {at(3600.5), time, "01:00:00 | 3:45"},
      {at(36000), time, "10:00:00 | 3:45"},
      {[this] { track().duration = 0, player.setPosition(0); }, time, "00:00"},
      {[this] { player.setReply(code("pPos"), Value(HUGE_VAL)); }, time, "none"},
      {by("X", "Y"), artist, "X — Y"},
      {by("X", ""), artist, "X"},
      {by("", "Y"), artist, "Y"},
      {by("", ""), artist, "none"},
      {[] {}, artwork, "has cover"},
      {[this] { player.setReply(code("pRaw"), Value(Data::fromText("no image"))); }, artwork,
       "has VLImageArtworkBackground"},
      {[this] { player.setReply(code("pRaw"), std::nullopt); }, artwork,
       "has VLImageArtworkBackground"},
      {[this] { track().cover = {}; }, artwork, "no VLImageArtworkBackground"},
      {[this] { player.setState(demo::stateStopped); }, artwork, "no "},
      {[this] { player.setState(demo::statePlaying); }, play, VLImageControllerPause},
      {[this] { player.setState(code("kPSF")); }, play, VLImageControllerPlay},
      {rated(demo::ratingComputed), kind, std::to_string(VLRatingTypeComputed)},
      {rated(code("kXyz")), kind, std::to_string(VLRatingTypeUnknown)},
      {[this] { player.playTrack(demo::liveStation), clock.settle(); }, name, "Beats 1"},
      {[] {}, artist, "Live radio — On air now"},
      {[] {}, artwork, "has VLImageArtworkBeats1"},
      {live("track name", "Title"), name, "Title"},
      {live("track album", "Album"), artist, "Album"},
      {live("track artist", "Artist"), artist, "Artist — Album"},
      {live("track artwork", image), artwork, "has live"}};
  for (const auto& [given, told, expected] : rows) {
    given();
    EXPECT_EQ(told(), expected);
  }
}

struct TrackActions : Track {
  void clickControl(std::size_t index, std::uint64_t flags = 0) {
    click(centerOf(*panel->view()->subviews().at(index)), flags);
  }
  static constexpr std::size_t artwork = 0, next = 3, play = 4, previous = 5, love = 7;
  /// The middle of the third star.
  static constexpr NSPoint threeStars{79 + 39, 16};
};

TEST_F(TrackActions, TransportClicksChangeNothingUntilThePlayerSaysSo) {
  show();
  const std::tuple<std::size_t, const char*, const char*> clicks[] = {
      {play, "pPlS command hook/PlPs", "Paper Lanterns"},
      {next, "pPlS command hook/Next", "Night Bus, Upper Deck"},
      {previous, "pPlS command hook/Prev", "Paper Lanterns"}};
  for (const auto& [control, requests, track] : clicks) {
    player.clearLog();
    const auto shown = tests::portrait(*panel->view());
    clickControl(control);
    EXPECT_EQ(player.asked(), requests);
    EXPECT_EQ(tests::portrait(*panel->view()), shown);
    clock.settle();
    EXPECT_NE(tests::portrait(*panel->view()), shown);
    EXPECT_EQ(panel->contentNameTextLabel()->text(), track);
  }
  player.clearLog();
  sendMouse(NSEventType::leftMouseDown, {160, 3});
  EXPECT_EQ(player.asked(), "pPlS set pPos 112.5 pPlS pPos") << "half of the bar";
  EXPECT_EQ(panel->contentProgressIndicator()->nowValue(), 112.5);
  sendMouse(NSEventType::leftMouseUp, {160, 3});
  player.quit();
  player.clearLog();
  for (const std::size_t control : {artwork, next, play, previous, love}) clickControl(control);
  for (const auto point : {NSPoint{160, 3}, threeStars}) click(point);
  EXPECT_EQ(player.asked(), "") << "a player that has quit is not asked";
}

TEST_F(TrackActions, LoveAndStarsActOnTheTrackWithOptionOnItsAlbumAndShowAtOnceByTheRuleToo) {
  show(demo::statePaused, demo::trackWithoutCover);
  const auto told = [](std::int64_t rating, bool loved) {
    return std::to_string(rating) + (loved ? "+ " : "- ");
  };
  const auto state = [&] {
    const auto& track = player.currentTrack()->marks;
    const auto& album = player.albumMarks(*player.currentTrack());
    return told(track.rating, track.loved) + told(album.rating, album.loved) +
           told(panel->contentRatingIndicator()->nowValue(),
                nameOf(panel->contentLoveButton()->image()) == VLImageLoveOn);
  };
  constexpr auto option = NSEventModifierFlagOption | NSEventModifierFlagShift;
  const std::tuple<const char*, std::uint64_t, const char*> steps[] = {
      {"heart", option, "0- 0+ 0- "}, {"stars", option, "0- 60+ 0- "},
      {"heart", 0, "0+ 60+ 0+ "},     {"stars", 0, "60+ 60+ 60+ "},
      {"rule", 0, "60+ 60+ 60+ "},    {"heart", 0, "50- 60+ 50- "},
      {"stars", 0, "60+ 60+ 60+ "},   {"heart", 0, "50- 60+ 50- "},
      {"heart", 0, "60+ 60+ 60+ "},   {"heart", option, "60+ 50- 60+ "},
      {"refuses", 0, "60+ 50- 60+ "}, {"heart", 0, "60+ 50- 60+ "}};
  for (const auto& [what, flags, expected] : steps) {
    const std::string step = what;
    if (step == "heart") clickControl(love, flags);
    if (step == "stars") click(threeStars, flags);
    if (step == "refuses") player.setRefusesWrites(true);
    if (step == "rule") {
      std::ofstream(*vl_applicationPreferencesURLForPlistGeneral()->filePath())
          << "<plist version=\"1.0\"><dict><key>UseAutoLove</key><true/>"
             "<key>UseAutoLoveValue</key><integer>60</integer></dict></plist>";
    }
    EXPECT_EQ(state(), expected) << what;
  }
}

TEST_F(TrackActions, TheArtworkRevealsTheTrackAndWithOptionOpensTheArtistsPageFromAWorker) {
  show();
  clickControl(artwork);
  EXPECT_EQ(player.asked(), "pnam pPlS command misc/actv command pTrk hook/Revl");
  player.clearLog();
  EXPECT_EQ(workers.count(), 0U);
  player.currentTrack()->albumArtist = "Various";
  http.replies = {R"({"results":[{"artistName":"MARLOW & FINCH",
                       "artistLinkUrl":"https://store.example/artist/7"}]})"};
  clickControl(artwork, NSEventModifierFlagOption);
  EXPECT_THAT(player.asked(), Not(HasSubstr("actv")));
  EXPECT_EQ(http.count(), 0U);
  ASSERT_EQ(workers.count(), 1U);
  workers.runAll();
  EXPECT_THAT(http.at(0).request.url, HasSubstr("Marlow+&+Finch"));
  EXPECT_THAT(workspaceBackend.asked, ElementsAre("open itms://store.example/artist/7?at=4p8d27M"));
}

TEST_F(Track, TheLookUpGoesByTheAlbumArtistAndOnlyWithoutOneByTheArtist) {
  show(demo::statePaused, demo::trackWithoutCover);
  player.currentTrack()->albumArtist = "Various";
  panel->updateArtworkButton();
  EXPECT_THAT(http.last().request.url, HasSubstr("Various+Last+Stops"));
  player.currentTrack()->albumArtist = "";
  panel->updateArtworkButton();
  EXPECT_THAT(http.last().request.url, HasSubstr("Oda+Brenner+Last+Stops"));
}

TEST_F(Track, TheHeartbeatAsksForAndRepaintsOnlyThePositionEverySecondWhileShown) {
  show(demo::statePaused);
  player.setPosition(7);
  clock.advance(0.9);
  EXPECT_EQ(player.asked(), "");
  clock.advance(0.1);
  EXPECT_EQ(player.asked(), "pPlS pPos pPlS pPlS pPos pTim");
  EXPECT_EQ(panel->contentProgressIndicator()->nowValue(), 7.0);
  EXPECT_EQ(panel->contentTimeTextLabel()->text(), "00:07 | 3:45");
  EXPECT_THAT(marked, testing::ElementsAre(NSMakeRect(0, 0, 320, 7),
                                           panel->contentTimeTextLabel()->frame()));
  player.clearLog();
  clock.advance(10);
  EXPECT_EQ(player.requestCount(), 60U);

  panel->startHeartbeatTimer(panel.get());
  EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 1U) << "never two";
  window->setVisible(false);
  player.clearLog();
  clock.advance(60);
  EXPECT_EQ(player.asked(), "") << "hidden";
  EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 0U);
  window->setVisible(true);
  EXPECT_THAT(player.asked(), AllOf(HasSubstr("pDur"), Not(testing::ContainsRegex("pDur.*pDur"))))
      << "refreshed once";

  player.setRequestHook([this](const auto&) { clock.pass(5); });
  clock.advance(1);
  EXPECT_EQ(clock.runLoop().nextDeadline(), clock.now() + 1)
      << "a slow player stretches the rhythm";
  window->setVisible(false);
  window->setVisible(true);
  EXPECT_EQ(clock.runLoop().nextDeadline(), clock.now() + 1) << "begins after the first refresh";
}

TEST_F(Track, WhatIsNotKnownAnyMoreIsCleared) {
  show(demo::statePaused);
  player.setPosition(20);
  clock.advance(1);
  player.quit();
  panel->update(panel.get());
  EXPECT_EQ(panel->contentNameTextLabel()->text(), std::nullopt);
  EXPECT_EQ(panel->contentArtistTextLabel()->text(), std::nullopt);
  EXPECT_EQ(panel->contentTimeTextLabel()->text(), std::nullopt);
  const std::string painted = tests::portrait(*panel->view());
  EXPECT_THAT(painted, HasSubstr("\nVLImageLoveOff 64 "));
  EXPECT_THAT(painted, testing::ContainsRegex("(VLImageRatingStarDot [^\n]*\n){5}"));
  EXPECT_THAT(painted, Not(HasSubstr("cover")));
  EXPECT_FALSE(panel->contentProgressIndicator()->isMaxValueValid());
  EXPECT_EQ(panel->contentProgressIndicator()->nowValue(), 0);
}

TEST_F(Track, APlayerThatGoesInTheMiddleOfARefreshIsSurvivedAndFoundAgain) {
  show(demo::statePaused);
  panel->update(panel.get());
  const std::size_t requests = player.requestCount();
  for (const bool quits : {true, false}) {
    for (std::size_t last = 1; last <= requests; ++last) {
      player.clearLog();
      player.setRequestHook([&](const ScriptingRequest&) {
        if (player.requestCount() < last) return;
        quits ? player.quit() : player.setSilent(true);
      });
      panel->update(panel.get());
      player.setRequestHook(nullptr);
      clock.settle();
      player.setSilent(false);
      startPlayer(demo::statePaused);
      ASSERT_EQ(panel->contentNameTextLabel()->text(), "Paper Lanterns") << last;
      ASSERT_EQ(panel->contentRatingIndicator()->nowValue(), 80);
    }
  }
}

TEST_F(Track, EachRefreshLeavesOneFreshLoaderUntilAnotherTrackOrHidingEndsIt) {
  show(demo::statePlaying, demo::liveStation);
  const auto first = panel->contentBeats1InfoLoader();
  ASSERT_NE(first, nullptr);
  for (int i = 0; i < 2; ++i) player.announce();
  clock.settle();
  EXPECT_NE(panel->contentBeats1InfoLoader(), first);
  EXPECT_EQ(http.inFlight(), 1U);
  EXPECT_EQ(platform_.defaultCenter->registrationCount(), 1U);
  first->postInfoNotification();
  player.clearLog();
  clock.settle();
  EXPECT_EQ(player.requestCount(), 0U) << "a replaced loader is not heard any more";

  player.playTrack(0);
  clock.settle();
  EXPECT_EQ(panel->contentBeats1InfoLoader(), nullptr);
  EXPECT_EQ(http.inFlight() + platform_.defaultCenter->registrationCount(), 0U);
  player.playTrack(demo::liveStation);
  clock.settle();
  EXPECT_EQ(http.inFlight(), 1U);
  window->setVisible(false);
  EXPECT_EQ(panel->contentBeats1InfoLoader(), nullptr);
  EXPECT_EQ(http.inFlight() + platform_.defaultCenter->registrationCount(), 0U);
}

}  // namespace
}  // namespace virelune

#include "tests/track/track_fixture.h"

namespace virelune {
namespace {

using platform::code;
using platform::Value;
using tests::nameOf;

using TrackLayout = tests::TrackFixture;

TEST_F(TrackLayout, PutsEveryControlInItsPlaceInItsLookFromTheArtworkBelowToTheTimeAbove) {
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

class TrackReadout : public tests::TrackFixture {
 protected:
  TrackReadout() { show(demo::statePaused); }
  demo::Track& track() { return *player.currentTrack(); }
  VLBeats1InfoLoader& loader() { return *panel->contentBeats1InfoLoader(); }
};

TEST_F(TrackReadout, ThePositionIsCutAndPaddedAndShowsHoursOnlyBeyondOne) {
  const std::pair<double, const char*> cases[] = {{59.999, "00:59 | 3:45"},
                                                  {3600.0, "60:00 | 3:45"},
                                                  {3600.5, "01:00:00 | 3:45"},
                                                  {36000, "10:00:00 | 3:45"}};
  for (const auto& [position, text] : cases) {
    player.setPosition(position);
    EXPECT_EQ(panel->infoTrackTimeDescription(), text) << position;
  }
  track().duration = 0;
  player.setPosition(0);
  EXPECT_EQ(panel->infoTrackTimeDescription(), "00:00");
  player.setReply(code("pPos"), platform::ScriptingReply(Value(HUGE_VAL)));
  EXPECT_EQ(panel->infoTrackTimeDescription(), std::nullopt) << "no position, no length";
}

TEST_F(TrackReadout, TheArtistLineJoinsWhatThereIs) {
  const std::tuple<const char*, const char*, std::optional<std::string>> cases[] = {
      {"X", "Y", "X — Y"}, {"X", "", "X"}, {"", "Y", "Y"}, {"", "", std::nullopt}};
  for (const auto& [artist, album, line] : cases) {
    track().artist = artist;
    track().album = album;
    EXPECT_EQ(panel->infoTrackArtistWithAlbum(), line);
  }
}

TEST_F(TrackReadout, ArtworkFallsBackToThePlaceholder) {
  EXPECT_TRUE(panel->infoTrackHasArtwork());
  EXPECT_EQ(nameOf(panel->infoTrackArtwork()), "cover");
  player.setReply(code("pRaw"), Value(platform::Data::fromText("not an image")));
  EXPECT_EQ(nameOf(panel->infoTrackArtwork()), VLImageArtworkBackground);
  player.setReply(code("pRaw"), std::nullopt);
  EXPECT_EQ(nameOf(panel->infoTrackArtwork()), VLImageArtworkBackground);
  track().cover = {};
  EXPECT_FALSE(panel->infoTrackHasArtwork());
  EXPECT_EQ(nameOf(panel->infoTrackArtwork()), VLImageArtworkBackground);
  player.setState(demo::stateStopped);
  EXPECT_EQ(panel->infoTrackArtwork(), nullptr) << "without a track not even the placeholder";
}

TEST_F(TrackReadout, StatesAndRatingKindsThatAreUnknownReadAsPausedAndUnknown) {
  const auto playImage = [this] { return nameOf(panel->infoTrackPlayImage()); };
  player.setState(demo::statePlaying);
  EXPECT_EQ(playImage(), VLImageControllerPause);
  player.setState(code("kPSF"));
  EXPECT_EQ(playImage(), VLImageControllerPlay);
  track().marks = {60, demo::ratingComputed, false};
  EXPECT_EQ(panel->infoTrackRatingType(), VLRatingTypeComputed);
  track().marks.ratingKind = code("kXyz");
  EXPECT_EQ(panel->infoTrackRatingType(), VLRatingTypeUnknown);
  player.setSilent(true);
  EXPECT_EQ(playImage(), VLImageControllerPlay);
}

TEST_F(TrackReadout, LiveTheProgrammeComesFirstAndTheStreamAfterIt) {
  player.playTrack(demo::liveStation);
  clock.settle();
  EXPECT_EQ(panel->infoTrackName(), "Beats 1");
  EXPECT_EQ(panel->infoTrackArtistWithAlbum(), "Live radio — On air now");
  EXPECT_TRUE(panel->infoTrackHasArtwork());
  EXPECT_EQ(nameOf(panel->infoTrackArtwork()), VLImageArtworkBeats1);

  loader().trackInfoUpdateForKey_withValue("track name", "Title");
  EXPECT_EQ(panel->infoTrackName(), "Title");
  loader().trackInfoUpdateForKey_withValue("track album", "Album");
  EXPECT_EQ(panel->infoTrackArtistWithAlbum(), "Album");
  loader().trackInfoUpdateForKey_withValue("track artist", "Artist");
  EXPECT_EQ(panel->infoTrackArtistWithAlbum(), "Artist — Album");
  loader().trackInfoUpdateForKey_withValue("track artwork",
                                           platform::imageWithData(tests::imageBytes("live")));
  EXPECT_EQ(nameOf(panel->infoTrackArtwork()), "live");
}

}  // namespace
}  // namespace virelune

#include "tests/track/track_fixture.h"
#include "widget/constants.h"

namespace virelune {
namespace {

using platform::code;
using platform::Value;
using tests::nameOf;

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

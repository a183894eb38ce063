#include "tests/track/track_fixture.h"
#include "widget/constants.h"

namespace virelune {
namespace {

using platform::code;
using platform::Value;
using tests::nameOf;

class TrackReadout : public tests::TrackFixture {
 protected:
  TrackReadout() { show(demo::kPaused); }
  demo::Track& track() { return *player.currentTrack(); }
  VLBeats1InfoLoader& loader() { return *panel->contentBeats1InfoLoader(); }
  void playLiveStation() {
    player.playTrack(demo::kLiveStation);
    clock.settle();
  }
};

TEST_F(TrackReadout, ThePositionIsCutAndPaddedAndShowsHoursOnlyBeyondOne) {
  track().time = "3:45";
  const std::pair<double, const char*> cases[] = {
      {0, "00:00 | 3:45"},      {59.999, "00:59 | 3:45"},    {65, "01:05 | 3:45"},
      {3600.0, "60:00 | 3:45"}, {3600.5, "01:00:00 | 3:45"}, {36000, "10:00:00 | 3:45"},
      {3599.9, "59:59 | 3:45"},
  };
  for (const auto& [position, text] : cases) {
    player.setPosition(position);
    EXPECT_EQ(panel->infoTrackTimeDescription(), text) << position;
  }
  track().time = "";
  player.setPosition(0);
  EXPECT_EQ(panel->infoTrackTimeDescription(), "00:00");
  player.setReply(code("pPos"), platform::ScriptingReply(Value(HUGE_VAL)));
  EXPECT_EQ(panel->infoTrackTimeDescription(), std::nullopt) << "no position, no length";
}

TEST_F(TrackReadout, TheArtistLineJoinsWhatThereIs) {
  const struct {
    const char* artist;
    const char* album;
    std::optional<std::string> line;
  } cases[] = {{"X", "Y", "X — Y"}, {"X", "", "X"}, {"", "Y", "Y"}, {"", "", std::nullopt}};
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
  track().cover.reset();
  EXPECT_FALSE(panel->infoTrackHasArtwork());
  EXPECT_EQ(nameOf(panel->infoTrackArtwork()), VLImageArtworkBackground);
  player.setState(demo::kStopped);
  EXPECT_EQ(panel->infoTrackArtwork(), nullptr) << "without a track not even the placeholder";
}

TEST_F(TrackReadout, ThePlayButtonShowsWhatAClickWouldDo) {
  EXPECT_EQ(nameOf(panel->infoTrackPlayImage()), VLImageControllerPlay);
  player.setState(demo::kPlaying);
  EXPECT_EQ(nameOf(panel->infoTrackPlayImage()), VLImageControllerPause);
  player.setState(code("kPSF"));
  EXPECT_EQ(nameOf(panel->infoTrackPlayImage()), VLImageControllerPlay);
  player.setSilent(true);
  EXPECT_EQ(nameOf(panel->infoTrackPlayImage()), VLImageControllerPlay);
}

TEST_F(TrackReadout, TheRatingKindTellsWhoRated) {
  const std::pair<platform::FourCharCode, std::int64_t> kinds[] = {
      {demo::kRatedByUser, VLRatingTypeUser},
      {demo::kRatingComputed, VLRatingTypeComputed},
      {code("kXyz"), VLRatingTypeUnknown},
      {platform::FourCharCode{}, VLRatingTypeUnknown},
  };
  for (const auto& [kind, type] : kinds) {
    track().marks = {60, kind, false};
    EXPECT_EQ(panel->infoTrackRatingType(), type);
    EXPECT_EQ(panel->infoTrackRating(), 60);
  }
}

TEST_F(TrackReadout, LiveTheProgrammeComesFirstAndTheStreamAfterIt) {
  playLiveStation();
  track().albumArtist = "Stream Artist";
  EXPECT_EQ(panel->infoTrackName(), "Beats 1");
  EXPECT_EQ(panel->infoTrackAlbumArtist(), "Stream Artist");
  EXPECT_EQ(panel->infoTrackArtistWithAlbum(), "Live radio — On air now");
  EXPECT_TRUE(panel->infoTrackHasArtwork());
  EXPECT_EQ(nameOf(panel->infoTrackArtwork()), VLImageArtworkBeats1);

  loader().trackInfoUpdateForKey_withValue("track name", "Title");
  EXPECT_EQ(panel->infoTrackName(), "Title");
  EXPECT_EQ(panel->infoTrackArtistWithAlbum(), "Live radio — On air now") << "a title alone";
  loader().trackInfoUpdateForKey_withValue("track album", "Album");
  EXPECT_EQ(panel->infoTrackArtistWithAlbum(), "Album");
  loader().trackInfoUpdateForKey_withValue("track artist", "Artist");
  EXPECT_EQ(panel->infoTrackArtistWithAlbum(), "Artist — Album");
  EXPECT_EQ(panel->infoTrackAlbumArtist(), "Artist");
  loader().trackInfoUpdateForKey_withValue("track artwork",
                                           platform::imageWithData(tests::imageBytes("live")));
  EXPECT_EQ(nameOf(panel->infoTrackArtwork()), "live");

  track().isStream = false;
  EXPECT_EQ(panel->infoTrackName(), "Beats 1") << "a file of that name is not the station";
}

TEST_F(TrackReadout, LiveWithoutTheStationsImageShowsThePlaceholder) {
  graphics.hideImage(VLImageArtworkBeats1);
  playLiveStation();
  EXPECT_EQ(nameOf(panel->infoTrackArtwork()), VLImageArtworkBackground);
}

}  // namespace
}  // namespace virelune

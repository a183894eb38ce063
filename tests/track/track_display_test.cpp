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
  const auto rated = [this](platform::FourCharCode kind) {
    return [=, this] { track().marks.ratingKind = kind; };
  };
  const auto kind = [&] { return std::to_string(panel->infoTrackRatingType()); };
  const auto name = [&] { return text(panel->infoTrackName()); };
  const auto live = [this](const char* key, const Value& value) {
    return [=, this] { loader().trackInfoUpdateForKey_withValue(key, value); };
  };
  const Value image(platform::imageWithData(tests::imageBytes("live")));
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
      {[this] { player.setReply(code("pRaw"), Value(platform::Data::fromText("no image"))); },
       artwork, "has VLImageArtworkBackground"},
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

}  // namespace
}  // namespace virelune

#include "player/love_rating.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "extensions/application_paths.h"
#include "tests/support/temporary_data_home.h"
#include "tests/support/widget_fixture.h"

namespace virelune {
namespace {

using demo::kRatedByUser;
using demo::kRatingComputed;
using demo::Marks;
constexpr platform::FourCharCode kUnknownKind{};

/// Writes the companion application's preferences, and the requests to the player in short:
/// "set pRte 80" for the rating of the current track.
class LoveRating : public tests::WidgetFixture {
 protected:
  static void writePreferences(const std::string& text) {
    std::ofstream(*vl_applicationPreferencesURLForPlistGeneral()->filePath()) << text;
  }

  static void writeRule(const std::string& entries) {
    writePreferences("<plist version=\"1.0\"><dict>" + entries + "</dict></plist>");
  }

  static void switchRuleOn(int threshold) {
    writeRule("<key>UseAutoLove</key><true/><key>UseAutoLoveValue</key><integer>" +
              std::to_string(threshold) + "</integer>");
  }

  std::string requests() const {
    std::string text;
    for (std::string entry : player.log()) {
      if (const auto at = entry.find(" pTrk"); at != std::string::npos) {
        entry.erase(at + 1, std::string("pTrk.").size());
      }
      text += (text.empty() ? "" : ", ") + entry;
    }
    return text;
  }

  tests::TemporaryDataHome dataHome;
};

struct Chain {
  const char* what;
  std::optional<int> threshold;  ///< none: the rule is off
  bool (*command)();
  Marks before;
  bool isStream;
  bool answer;
  const char* requests;
  std::int64_t rating;
  bool loved;
};

template <std::int64_t rating>
bool rateTrack() {
  return vl_setCurrentTrackRating(rating);
}
template <std::int64_t rating>
bool rateAlbum() {
  return vl_setCurrentAlbumRating(rating);
}

const Chain chains[] = {
    {"off: love",
     {},
     vl_toggleTrackLoved,
     {60, kRatedByUser, false},
     false,
     true,
     "get pLov, set pLov true",
     60,
     true},
    {"off: end love",
     {},
     vl_toggleTrackLoved,
     {60, kRatedByUser, true},
     false,
     true,
     "get pLov, set pLov false",
     60,
     false},
    {"off: rate",
     {},
     rateTrack<80>,
     {0, kUnknownKind, false},
     false,
     true,
     "set pRte 80",
     80,
     false},
    {"off: rate below the scale",
     {},
     rateTrack<-5>,
     {60, kRatedByUser, true},
     false,
     true,
     "set pRte 0",
     0,
     true},
    {"off: rate above the scale",
     {},
     rateTrack<130>,
     {60, kRatedByUser, true},
     false,
     true,
     "set pRte 100",
     100,
     true},

    {"80: love below it",
     80,
     vl_toggleTrackLoved,
     {60, kRatedByUser, false},
     false,
     true,
     "get pLov, set pLov true, get pRtk, get pRte, get pLov, set pRte 80",
     80,
     true},
    {"80: love at it",
     80,
     vl_toggleTrackLoved,
     {80, kRatedByUser, false},
     false,
     true,
     "get pLov, set pLov true, get pRtk, get pRte, get pLov",
     80,
     true},
    {"80: love a computed 100",
     80,
     vl_toggleTrackLoved,
     {100, kRatingComputed, false},
     false,
     true,
     "get pLov, set pLov true, get pRtk, get pLov, set pRte 80",
     80,
     true},
    {"80: end love above",
     80,
     vl_toggleTrackLoved,
     {100, kRatedByUser, true},
     false,
     true,
     "get pLov, set pLov false, get pRtk, get pRte, get pLov, set pRte 70",
     70,
     false},
    {"80: end love at 70",
     80,
     vl_toggleTrackLoved,
     {70, kRatedByUser, true},
     false,
     true,
     "get pLov, set pLov false, get pRtk, get pRte, get pLov, set pRte 70",
     70,
     false},
    {"80: end love below",
     80,
     vl_toggleTrackLoved,
     {60, kRatedByUser, true},
     false,
     true,
     "get pLov, set pLov false, get pRtk, get pRte, get pLov",
     60,
     false},
    {"80: rate 80",
     80,
     rateTrack<80>,
     {0, kUnknownKind, false},
     false,
     true,
     "set pRte 80, resolve , get pRtk, get pRte, set pLov true, get pRtk, get pRte, get pLov",
     80,
     true},
    {"80: rate 75",
     80,
     rateTrack<75>,
     {100, kRatedByUser, true},
     false,
     true,
     "set pRte 75, resolve , get pRtk, get pRte, set pLov false, get pRtk, get pRte, get pLov, "
     "set pRte 70",
     70,
     false},
    {"80: rate 60",
     80,
     rateTrack<60>,
     {100, kRatedByUser, true},
     false,
     true,
     "set pRte 60, resolve , get pRtk, get pRte, set pLov false, get pRtk, get pRte, get pLov",
     60,
     false},
    {"80: rate a stream",
     80,
     rateTrack<100>,
     {0, kUnknownKind, false},
     true,
     true,
     "set pRte 100, resolve ",
     100,
     false},
    {"80: love a stream",
     80,
     vl_toggleTrackLoved,
     {0, kUnknownKind, false},
     true,
     true,
     "get pLov, set pLov true, get pRtk, get pLov, set pRte 80",
     80,
     true},

    {"0: rate 0",
     0,
     rateTrack<0>,
     {60, kRatedByUser, false},
     false,
     true,
     "set pRte 0, resolve , get pRtk, get pRte, set pLov true, get pRtk, get pRte, get pLov",
     0,
     true},
    {"0: end love",
     0,
     vl_toggleTrackLoved,
     {60, kRatedByUser, true},
     false,
     true,
     "get pLov, set pLov false, get pRtk, get pRte, get pLov, set pRte 0",
     0,
     false},
    {"5: end love",
     5,
     vl_toggleTrackLoved,
     {0, kUnknownKind, true},
     false,
     true,
     "get pLov, set pLov false, get pRtk, get pLov, set pRte 0",
     0,
     false},
    {"5: love",
     5,
     vl_toggleTrackLoved,
     {0, kUnknownKind, false},
     false,
     true,
     "get pLov, set pLov true, get pRtk, get pLov, set pRte 5",
     5,
     true},
    {"100: rate 95",
     100,
     rateTrack<95>,
     {0, kUnknownKind, true},
     false,
     true,
     "set pRte 95, resolve , get pRtk, get pRte, set pLov false, get pRtk, get pRte, get pLov, "
     "set pRte 90",
     90,
     false},
    {"100: rate 100",
     100,
     rateTrack<100>,
     {0, kUnknownKind, false},
     false,
     true,
     "set pRte 100, resolve , get pRtk, get pRte, set pLov true, get pRtk, get pRte, get pLov",
     100,
     true},

    {"automatic love of a computed rating",
     80,
     vl_setCurrentTrackAutoLoved,
     {100, kRatingComputed, true},
     false,
     true,
     "resolve , get pRtk, set pLov false, get pRtk, get pLov",
     100,
     false},
    {"automatic love of a stream",
     80,
     vl_setCurrentTrackAutoLoved,
     {100, kRatedByUser, false},
     true,
     false,
     "resolve ",
     100,
     false},
    {"automatic rating that fits",
     80,
     vl_setCurrentTrackAutoRating,
     {90, kRatedByUser, true},
     false,
     false,
     "get pRtk, get pRte, get pLov",
     90,
     true},
};

const Chain albumChains[] = {
    {"off: love",
     {},
     vl_toggleAlbumLoved,
     {60, kRatedByUser, false},
     false,
     true,
     "get pALv, set pALv true",
     60,
     true},
    {"off: rate above the scale",
     {},
     rateAlbum<130>,
     {60, kRatedByUser, false},
     false,
     true,
     "set pAlR 100",
     100,
     false},
    {"80: love a computed 60",
     80,
     vl_toggleAlbumLoved,
     {60, kRatingComputed, false},
     false,
     true,
     "get pALv, set pALv true, get pARk, get pALv, set pAlR 80",
     80,
     true},
    {"80: end love",
     80,
     vl_toggleAlbumLoved,
     {100, kRatedByUser, true},
     false,
     true,
     "get pALv, set pALv false, get pARk, get pAlR, get pALv, set pAlR 70",
     70,
     false},
    {"80: rate the album of a stream",
     80,
     rateAlbum<80>,
     {0, kUnknownKind, false},
     true,
     true,
     "set pAlR 80, get pARk, get pAlR, set pALv true, get pARk, get pAlR, get pALv",
     80,
     true},
    {"automatic rating that fits",
     80,
     vl_setCurrentAlbumAutoRating,
     {60, kRatedByUser, false},
     false,
     false,
     "get pARk, get pAlR, get pALv",
     60,
     false},
};

TEST_F(LoveRating, TrackCommandsAskAndChangeExactlyThisInThisOrder) {
  for (const Chain& chain : chains) {
    SCOPED_TRACE(chain.what);
    chain.threshold ? switchRuleOn(*chain.threshold) : writeRule("");
    startPlayer();
    player.currentTrack()->isStream = chain.isStream;
    player.currentTrack()->marks = chain.before;
    player.setLogging(true);
    player.clearLog();
    EXPECT_EQ(chain.command(), chain.answer);
    EXPECT_EQ(requests(), chain.requests);
    EXPECT_EQ(player.currentTrack()->marks.rating, chain.rating);
    EXPECT_EQ(player.currentTrack()->marks.loved, chain.loved);
  }
}

TEST_F(LoveRating, AlbumCommandsDoTheSameToTheAlbumAlone) {
  for (const Chain& chain : albumChains) {
    SCOPED_TRACE(chain.what);
    chain.threshold ? switchRuleOn(*chain.threshold) : writeRule("");
    startPlayer();
    player.currentTrack()->isStream = chain.isStream;
    player.currentTrack()->marks = {30, kRatedByUser, true};
    Marks& album = player.albumMarks(*player.currentTrack());
    album = chain.before;
    player.setLogging(true);
    player.clearLog();
    EXPECT_EQ(chain.command(), chain.answer);
    EXPECT_EQ(requests(), chain.requests);
    EXPECT_EQ(album.rating, chain.rating);
    EXPECT_EQ(album.loved, chain.loved);
    EXPECT_EQ(player.currentTrack()->marks.rating, 30);
    EXPECT_TRUE(player.currentTrack()->marks.loved);
  }
}

TEST_F(LoveRating, TheRuleIsReadAfreshAtEveryStep) {
  switchRuleOn(80);
  startPlayer();
  player.currentTrack()->marks = {0, kRatedByUser, false};
  player.setRequestHook([](const platform::ScriptingRequest& request) {
    if (request.kind == platform::ScriptingRequest::Kind::resolve) switchRuleOn(100);
    if (request.path.back().code == platform::code("pLov")) writeRule("");
  });
  vl_setCurrentTrackRating(90);
  EXPECT_FALSE(player.currentTrack()->marks.loved) << "the threshold was 100 by then";
  EXPECT_EQ(player.currentTrack()->marks.rating, 90) << "the rule was off by then";
}

TEST_F(LoveRating, WithoutATrackOrWithAPlayerThatRefusesNothingChangesAndNothingLoops) {
  switchRuleOn(80);
  EXPECT_FALSE(vl_toggleTrackLoved());
  EXPECT_FALSE(vl_setCurrentAlbumRating(60));
  EXPECT_EQ(player.requestCount(), 0U) << "a command must not wake the player";

  startPlayer();
  player.currentTrack()->marks = {60, kRatedByUser, false};
  player.setRefusesWrites(true);
  vl_toggleTrackLoved();
  vl_setCurrentTrackRating(100);
  EXPECT_EQ(player.currentTrack()->marks.rating, 60);
  EXPECT_FALSE(player.currentTrack()->marks.loved);

  player.setRefusesWrites(false);
  player.setCurrentTrackIndex(std::nullopt);
  player.clearLog();
  vl_setCurrentTrackRating(100);
  EXPECT_LE(player.requestCount(), 9U);
}

TEST_F(LoveRating, PreferencesThatCannotBeUnderstoodLeaveTheRuleOff) {
  std::filesystem::remove(*vl_applicationPreferencesURLForPlistGeneral()->filePath());
  EXPECT_FALSE(vl_generalPreferencesInfo()) << "no file";
  for (const char* text :
       {"", "{", "<plist><array/></plist>", "<plist version=\"1.0\"><dict></dict></plist>",
        "<plist version=\"1.0\"><dict><key>UseAutoLove</key><true/>"}) {
    writePreferences(text);
    EXPECT_FALSE(vl_generalPreferencesInfo()) << text;
    EXPECT_FALSE(vl_useAutoLovedRating()) << text;
    EXPECT_EQ(vl_autoLovedRating(), 0) << text;
  }
}

TEST_F(LoveRating, TheRuleTakesNumbersOfAnyKindAndNothingElse) {
  const struct {
    const char* use;
    const char* value;
    bool isOn;
    std::int64_t threshold;
  } cases[] = {
      {"<true/>", "<integer>80</integer>", true, 80},
      {"<integer>1</integer>", "<real>79.9</real>", true, 79},
      {"<real>0</real>", "<integer>130</integer>", false, 100},
      {"<false/>", "<integer>-5</integer>", false, 0},
      {"<string>YES</string>", "<string>80</string>", false, 0},
      {"<array/>", "<true/>", false, 1},
  };
  for (const auto& [use, value, isOn, threshold] : cases) {
    writeRule(std::string("<key>UseAutoLove</key>") + use + "<key>UseAutoLoveValue</key>" + value);
    EXPECT_EQ(vl_useAutoLovedRating(), isOn) << use;
    EXPECT_EQ(vl_autoLovedRating(), threshold) << value;
  }
}

}  // namespace
}  // namespace virelune

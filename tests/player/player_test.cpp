#include "player/itunes.h"

#include "extensions/application_paths.h"
#include "player/love_rating.h"
#include "player/process_queries.h"
#include "tests/support/temporary_data_home.h"
#include "tests/support/widget_fixture.h"

namespace virelune {
namespace {

using demo::Marks;
using demo::ratedByUser;
using demo::ratingComputed;
using platform::code;

using ITunes = tests::WidgetFixture;

TEST_F(ITunes, PlaysInEveryReadableStateButStoppedAndOnlyTheFirstInstanceCounts) {
  EXPECT_FALSE(vl_toggleTrackLoved()) << "must not wake the player";
  startPlayer();
  for (const auto& [state, plays] :
       {std::pair(code("kPSF"), true), {FourCharCode{}, false}, {demo::stateStopped, false}}) {
    player.setState(state);
    EXPECT_EQ(vl_iTunesIsRunningAndPlaying(), plays);
  }
  player.clearLog();
  workspaceBackend.listsTerminatedInstance = true;
  EXPECT_FALSE(vl_iTunesIsRunningAndPlaying());
  EXPECT_EQ(player.requestCount(), 0U);
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

constexpr platform::FourCharCode unknownKind{};

/// Writes the companion application's preferences.
struct LoveRating : tests::WidgetFixture {
  static void writePreferences(const std::string& text) {
    std::ofstream(*vl_applicationPreferencesURLForPlistGeneral()->filePath()) << text;
  }

  static void writeRule(const std::string& use, const std::string& threshold) {
    writePreferences("<plist version=\"1.0\"><dict><key>UseAutoLove</key>" + use +
                     "<key>UseAutoLoveValue</key>" + threshold + "</dict></plist>");
  }

  tests::TemporaryDataHome dataHome;
};

// One chain a line: the threshold (off: no rule), the command, the marks before (U: rated by the
// user, C: computed, N: not rated; the rating; + loved, - not), the kind of track, the answer, the
// marks afterwards, and the requests in their order.
constexpr const char* trackChains = R"(
off toggle    U60- file   yes 60+  pLov set pLov true
off rate=-5   U60+ file   yes 0+   set pRte 0
off rate=130  U60+ file   yes 100+ set pRte 100
80  toggle    U80- file   yes 80+  pLov set pLov true pRtk pRte pLov
80  toggle    C99- file   yes 80+  pLov set pLov true pRtk pLov set pRte 80
80  toggle    U99+ file   yes 70-  pLov set pLov false pRtk pRte pLov set pRte 70
80  toggle    U70+ file   yes 70-  pLov set pLov false pRtk pRte pLov set pRte 70
80  toggle    U60+ file   yes 60-  pLov set pLov false pRtk pRte pLov
80  rate=80   N0-  file   yes 80+  set pRte 80 resolve pTrk pRtk pRte set pLov true pRtk pRte pLov
80  rate=75   U99+ file   yes 70-  set pRte 75 resolve pTrk pRtk pRte set pLov false pRtk pRte pLov set pRte 70
80  rate=60   U99+ file   yes 60-  set pRte 60 resolve pTrk pRtk pRte set pLov false pRtk pRte pLov
80  rate=100  N0-  stream yes 100- set pRte 100 resolve pTrk
80  toggle    N0-  stream yes 80+  pLov set pLov true pRtk pLov set pRte 80
80  autolove  C99+ file   yes 99-  resolve pTrk pRtk set pLov false pRtk pLov
80  autolove  U99- stream no  99-  resolve pTrk
80  autorate  U90+ file   no  90+  pRtk pRte pLov
0   rate=0    U60- file   yes 0+   set pRte 0 resolve pTrk pRtk pRte set pLov true pRtk pRte pLov
5   toggle    N0+  file   yes 0-   pLov set pLov false pRtk pLov set pRte 0
5   toggle    N0-  file   yes 5+   pLov set pLov true pRtk pLov set pRte 5
)";
constexpr const char* albumChains = R"(
off rate=130  U60- file   yes 100- set pAlR 100
80  toggle    C60- file   yes 80+  pALv set pALv true pARk pALv set pAlR 80
80  toggle    U99+ file   yes 70-  pALv set pALv false pARk pAlR pALv set pAlR 70
80  rate=80   N0-  stream yes 80+  set pAlR 80 pARk pAlR set pALv true pARk pAlR pALv
80  autorate  U60- file   no  60-  pARk pAlR pALv
)";

Marks marksFrom(const std::string& text) {
  const auto kind = text[0] == 'U' ? ratedByUser : text[0] == 'C' ? ratingComputed : unknownKind;
  return {std::stoll(text.substr(1)), kind, text.back() == '+'};
}

bool perform(const std::string& command, bool onAlbum) {
  if (command == "toggle") return onAlbum ? vl_toggleAlbumLoved() : vl_toggleTrackLoved();
  if (command == "autolove") return vl_setCurrentTrackAutoLoved();
  if (command == "autorate") {
    return onAlbum ? vl_setCurrentAlbumAutoRating() : vl_setCurrentTrackAutoRating();
  }
  const std::int64_t rating = std::stoll(command.substr(command.find('=') + 1));
  return onAlbum ? vl_setCurrentAlbumRating(rating) : vl_setCurrentTrackRating(rating);
}

TEST_F(LoveRating, EveryChainAsksAndChangesExactlyThisInThisOrder) {
  const Marks untouched{30, ratedByUser, true};
  for (const bool onAlbum : {false, true}) {
    std::istringstream table(onAlbum ? albumChains : trackChains);
    for (std::string line; std::getline(table, line);) {
      if (line.empty()) continue;
      SCOPED_TRACE(line);
      std::istringstream fields(line);
      std::string threshold, command, before, kind, answer, after, requested;
      fields >> threshold >> command >> before >> kind >> answer >> after >> std::ws;
      std::getline(fields, requested);

      const bool isOn = threshold != "off";
      writeRule(isOn ? "<true/>" : "<false/>",
                "<integer>" + (isOn ? threshold : "80") + "</integer>");
      startPlayer();
      player.currentTrack()->isStream = kind == "stream";
      Marks& track = player.currentTrack()->marks;
      Marks& album = player.albumMarks(*player.currentTrack());
      track = onAlbum ? untouched : marksFrom(before);
      album = onAlbum ? marksFrom(before) : untouched;
      player.clearLog();
      EXPECT_EQ(perform(command, onAlbum) ? "yes" : "no", answer);
      EXPECT_EQ(player.asked(), requested);
      const auto told = [](const Marks& marks) {
        return std::to_string(marks.rating) + (marks.loved ? '+' : '-');
      };
      EXPECT_EQ(told(onAlbum ? album : track), after);
      EXPECT_EQ(told(onAlbum ? track : album), told(untouched));
    }
  }
}

TEST_F(LoveRating, TheRuleTakesNumbersOfAnyKindAndIsOffWithoutThem) {
  for (const char* text :
       {"", "<plist><array/></plist>", "<plist version=\"1.0\"><dict><key>UseAuto"}) {
    writePreferences(text);
    EXPECT_FALSE(vl_generalPreferencesInfo()) << text;
    EXPECT_FALSE(vl_useAutoLovedRating()) << text;
  }
  const std::tuple<const char*, const char*, bool, std::int64_t> cases[] = {
      {"<true/>", "<integer>80</integer>", true, 80},
      {"<integer>1</integer>", "<real>79.9</real>", true, 79},
      {"<real>0</real>", "<integer>130</integer>", false, 100},
      {"<false/>", "<integer>-5</integer>", false, 0},
      {"<string>YES</string>", "<string>80</string>", false, 0},
      {"<array/>", "<true/>", false, 1},
  };
  for (const auto& [use, value, isOn, threshold] : cases) {
    writeRule(use, value);
    EXPECT_EQ(vl_useAutoLovedRating(), isOn) << use;
    EXPECT_EQ(vl_autoLovedRating(), threshold) << value;
  }
}

}  // namespace
}  // namespace virelune

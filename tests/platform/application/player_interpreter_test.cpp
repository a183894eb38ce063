#include "platform/application/player_interpreter.h"

#include <gmock/gmock.h>

#include <cmath>

namespace platform {
namespace {

using Kind = ScriptingRequest::Kind;
using Reply = std::optional<ScriptingReply>;

/// Plays what it is given, and notes what it is told to do.
class NotingPlayer final : public ScriptablePlayer {
 public:
  FourCharCode state() override { return code("kPSp"); }
  double position() override { return 7.5; }
  bool seek(double seconds) override { return note("seek", seconds); }
  std::optional<PlayerTrack> track() override { return played; }
  bool hasArtwork() override { return true; }
  Data artwork() override { return Data::fromText("cover"); }
  Rating rating(Marked of) override {
    return of == Marked::track ? Rating{60, code("kRtC")} : Rating{40, code("kRtU")};
  }
  bool setRating(Marked of, std::int64_t rating) override {
    return note(of == Marked::track ? "rate" : "rate album", static_cast<double>(rating));
  }
  bool isLoved(Marked of) override { return of == Marked::track; }
  bool setLoved(Marked of, bool loved) override {
    return note(of == Marked::track ? "love" : "love album", loved);
  }
  bool playPause() override { return note("play"); }
  bool nextTrack() override { return note("next"); }
  bool previousTrack() override { return note("previous"); }
  bool activate() override { return note("activate"); }
  bool reveal() override { return note("reveal"); }

  std::optional<PlayerTrack> played = PlayerTrack{
      .name = "Name", .artist = "Artist", .album = "Album", .albumArtist = "", .duration = 61};
  std::string told;

 private:
  bool note(const std::string& what, double value = 0) {
    told = what + " " + std::to_string(std::lround(value));
    return true;
  }
};

constexpr const char* identifier = "COM.apple.itunes";  // the case is of no matter

/// A path as text: steps of four characters with dots between them, or "cArt0" for an element.
ScriptingPath path(const std::string& text) {
  ScriptingPath steps;
  for (std::size_t at = 0; at < text.size();
       at = std::min(text.find('.', at), text.size() - 1) + 1) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
      value = value << 8 | static_cast<unsigned char>(text[at + i]);
    steps.push_back({FourCharCode{value}, std::nullopt});
    if (at + 4 < text.size() && text[at + 4] != '.') steps.back().index = text[at + 4] - '0';
  }
  return steps;
}

TEST(PlayerInterpreter, AnswersWhatTheDictionaryHasAndNothingElse) {
  const std::tuple<Kind, const char*, Reply> cases[] = {
      {Kind::get, "pPlS", code("kPSp")},
      {Kind::get, "pPos", Value(7.5)},
      {Kind::get, "pTrk.pnam", Value("Name")},
      {Kind::get, "pTrk.pArt", Value("Artist")},
      {Kind::get, "pTrk.pAlb", Value("Album")},
      {Kind::get, "pTrk.pAlA", {}},
      {Kind::get, "pTrk.pDur", Value(61.0)},
      {Kind::get, "pTrk.pTim", Value("1:01")},
      {Kind::get, "pTrk.pRte", Value(60)},
      {Kind::get, "pTrk.pRtk", code("kRtC")},
      {Kind::get, "pTrk.pLov", Value(true)},
      {Kind::get, "pTrk.pAlR", Value(40)},
      {Kind::get, "pTrk.pARk", code("kRtU")},
      {Kind::get, "pTrk.pALv", Value(false)},
      {Kind::get, "pTrk.cArt0.pRaw", Value(Data::fromText("cover"))},
      {Kind::count, "pTrk.cArt", Value(1)},
      {Kind::resolve, "", code("capp")},
      {Kind::resolve, "pTrk", code("cFlT")},
      {Kind::resolve, "pTrk.cArt0", code("cArt")},
      {Kind::get, "", {}},
      {Kind::get, "pTrk", {}},
      {Kind::get, "pTrk.pXyz", {}},
      {Kind::get, "pTrk.pnam0", {}},
      {Kind::get, "pTrk0.pnam", {}},
      {Kind::get, "pTrk.cArt1.pRaw", {}},
      {Kind::count, "cArt", {}},
      {Kind::resolve, "pTrk.cArt1", {}},
      {Kind::make, "pTrk", {}},
      {Kind::remove, "pTrk.cArt0", {}},
  };
  NotingPlayer player;
  for (const auto& [kind, steps, reply] : cases) {
    const ScriptingRequest request{
        .bundleIdentifier = identifier, .kind = kind, .path = path(steps)};
    EXPECT_EQ(interpret(request, player), reply) << steps;
  }
  EXPECT_EQ(interpret({.bundleIdentifier = "org.example", .path = path("pPlS")}, player), Reply());
  player.played.reset();
  for (const char* steps : {"pTrk.pnam", "pTrk.pRte", "pTrk.cArt0.pRaw"}) {
    EXPECT_EQ(interpret({.bundleIdentifier = identifier, .path = path(steps)}, player), Reply());
  }
}

TEST(PlayerInterpreter, CarriesOutWhatMakesSenseAndRefusesTheRest) {
  const std::tuple<const char*, Value, const char*> writes[] = {
      {"pPos", 12.0, "seek 12"},
      {"pTrk.pRte", 100, "rate 100"},
      {"pTrk.pAlR", 0, "rate album 0"},
      {"pTrk.pLov", true, "love 1"},
      {"pTrk.pALv", 0, "love album 0"},
      {"pTrk.pRte", 101, ""},
      {"pTrk.pAlR", -1, ""},
      {"pTrk.pRte", "80", ""},
      {"pTrk.pLov", "yes", ""},
      {"pTrk.pnam", 1, ""},
      {"pTrk.pPos", 1, ""},
  };
  NotingPlayer player;
  for (const auto& [steps, value, told] : writes) {
    player.told.clear();
    const auto reply = interpret(
        {.bundleIdentifier = identifier, .kind = Kind::set, .path = path(steps), .value = value},
        player);
    EXPECT_EQ(player.told, told) << steps;
    EXPECT_EQ(reply.has_value(), !player.told.empty()) << steps;
  }
  const std::tuple<FourCharCode, FourCharCode, const char*, const char*> commands[] = {
      {code("hook"), code("PlPs"), "", "play 0"},
      {code("hook"), code("Next"), "", "next 0"},
      {code("hook"), code("Prev"), "", "previous 0"},
      {code("misc"), code("actv"), "", "activate 0"},
      {code("hook"), code("Revl"), "pTrk", "reveal 0"},
      {code("hook"), code("Revl"), "", ""},
      {code("hook"), code("Next"), "pTrk", ""},
      {code("hook"), code("actv"), "", ""},
  };
  for (const auto& [eventClass, event, steps, told] : commands) {
    player.told.clear();
    interpret({.bundleIdentifier = identifier,
               .kind = Kind::command,
               .path = path(steps),
               .eventClass = eventClass,
               .eventIdentifier = event},
              player);
    EXPECT_EQ(player.told, told) << textFromCode(event) << steps;
  }
}

TEST(PlayerInterpreter, WritesTheLengthInMinutesOrHoursAndNothingWhenItIsUnknown) {
  NotingPlayer player;
  const std::pair<double, Reply> cases[] = {
      {-3, {}},
      {0, {}},
      {std::nan(""), {}},
      {0.4, Value("0:00")},
      {59.9, Value("0:59")},
      {3599, Value("59:59")},
      {3600, Value("1:00:00")},
      {36'061, Value("10:01:01")},
  };
  for (const auto& [seconds, text] : cases) {
    player.played->duration = seconds;
    EXPECT_EQ(interpret({.bundleIdentifier = identifier, .path = path("pTrk.pTim")}, player), text)
        << seconds;
  }
}

}  // namespace
}  // namespace platform

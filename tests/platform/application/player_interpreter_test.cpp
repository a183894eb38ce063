#include "platform/application/player_interpreter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace platform {
namespace {

using Kind = ScriptingRequest::Kind;

/// Notes what it is told to do.
class NotingPlayer final : public ScriptablePlayer {
 public:
  FourCharCode state() override { return code("kPSp"); }
  double position() override { return 7; }
  bool seek(double seconds) override { return note("seek", static_cast<std::int64_t>(seconds)); }
  std::optional<PlayerTrack> track() override { return played; }
  bool hasArtwork() override { return true; }
  Data artwork() override { return Data::fromText("cover"); }
  Rating rating(Marked of) override {
    return of == Marked::track ? Rating{60, code("kRtC")} : Rating{40, code("kRtU")};
  }
  bool setRating(Marked of, std::int64_t value) override { return note("rate", value, of); }
  bool isLoved(Marked of) override { return of == Marked::track; }
  bool setLoved(Marked of, bool loved) override { return note("love", loved, of); }
  bool playPause() override { return note("play"); }
  bool nextTrack() override { return note("next"); }
  bool previousTrack() override { return note("previous"); }
  bool activate() override { return note("activate"); }
  bool reveal() override { return note("reveal"); }

  std::optional<PlayerTrack> played = PlayerTrack{
      .name = "Name", .artist = "Artist", .album = "Album", .albumArtist = "", .duration = 61};
  std::string told;

 private:
  bool note(const std::string& what, std::int64_t value = 0, Marked of = Marked::track) {
    told = what + std::to_string(value) + (of == Marked::album ? "album" : "");
    return true;
  }
};

FourCharCode codeFrom(const std::string& text) {
  std::uint32_t value = 0;
  for (const char c : text.substr(0, 4)) value = value << 8 | static_cast<unsigned char>(c);
  return FourCharCode{value};
}

/// The request that a text such as "get pTrk.cArt[0].pRaw", "set pPos 12" or "hook/Next" means.
ScriptingRequest requestFrom(const std::string& text) {
  static const std::map<std::string, Kind> kinds{
      {"get", Kind::get}, {"count", Kind::count}, {"resolve", Kind::resolve},
      {"set", Kind::set}, {"make", Kind::make},   {"remove", Kind::remove},
  };
  std::istringstream words(text);
  std::string verb, path, value;
  words >> verb >> path >> value;
  ScriptingRequest request{.bundleIdentifier = "COM.apple.itunes"};  // the case is of no matter
  const auto kind = kinds.find(verb);
  request.kind = kind != kinds.end() ? kind->second : Kind::command;
  if (kind == kinds.end()) {
    request.eventClass = codeFrom(verb);
    request.eventIdentifier = codeFrom(verb.substr(5));
  }
  std::istringstream steps(path);
  for (std::string step; std::getline(steps, step, '.');) {
    request.path.push_back({codeFrom(step), std::nullopt});
    if (step.size() > 4) request.path.back().index = step[5] - '0';
  }
  request.value = value;
  if (value == "true") request.value = true;
  if (value.find_first_not_of("-0123456789") == std::string::npos)
    request.value = std::atoi(value.c_str());
  return request;
}

/// What came of a request: what was told to the player, else the reply; "-" when there is neither.
std::string outcome(NotingPlayer& player, const ScriptingRequest& request) {
  player.told.clear();
  const auto reply = interpret(request, player);
  if (!player.told.empty()) return reply == ScriptingReply(Value()) ? player.told : "not confirmed";
  if (!reply) return "-";
  if (const auto* found = std::get_if<FourCharCode>(&*reply)) return textFromCode(*found);
  const Value& value = std::get<Value>(*reply);
  if (const auto number = value.as<Number>()) return std::to_string(number->integerValue());
  if (const auto data = value.as<Data>()) return std::string(data->view());
  return value.as<std::string>().value_or("?");
}

TEST(PlayerInterpreter, AnswersAndCarriesOutWhatTheDictionaryHasAndNothingElse) {
  NotingPlayer player;
  std::istringstream table(R"(
    get pPlS: kPSp          get pTrk.pnam: Name     get pTrk.pRte: 60     get pTrk.pAlR: 40
    get pPos: 7             get pTrk.pArt: Artist   get pTrk.pRtk: kRtC   get pTrk.pARk: kRtU
    get pTrk.pDur: 61       get pTrk.pAlb: Album    get pTrk.pLov: 1      get pTrk.pALv: 0
    get pTrk.pTim: 1:01     get pTrk.pAlA: -        get pTrk.pXyz: -      get pTrk.pnam[0]: -
    get: -                  get pTrk: -             get pTrk[0].pnam: -   get pTrk.cArt[1].pRaw: -
    count pTrk.cArt: 1      count cArt: -           get pTrk.cArt[0].pRaw: cover
    resolve: capp           resolve pTrk: cFlT      resolve pTrk.cArt[0]: cArt
    resolve pTrk.cArt[1]: - make pTrk: -            remove pTrk.cArt[0]: -
    set pTrk.pRte 100: rate100      set pTrk.pRte 101: -    set pTrk.pRte eighty: -
    set pTrk.pAlR 0: rate0album     set pTrk.pAlR -1: -     set pTrk.pnam 1: -
    set pTrk.pLov true: love1       set pTrk.pLov yes: -    set pTrk.pPos 1: -
    set pTrk.pALv 0: love0album     set pPos 12: seek12     set pPos soon: -
    hook/PlPs: play0        hook/Next: next0        hook/Prev: previous0  hook/Next pTrk: -
    misc/actv: activate0    hook/Revl pTrk: reveal0 hook/Revl: -          hook/actv: -
  )");
  for (std::string request, expected; std::getline(table >> std::ws, request, ':');) {
    table >> expected;
    EXPECT_EQ(outcome(player, requestFrom(request)), expected) << request;
  }
  ScriptingRequest toAnother = requestFrom("get pPlS");
  toAnother.bundleIdentifier = "org.example";
  EXPECT_EQ(outcome(player, toAnother), "-");
  player.played.reset();
  for (const char* text : {"get pTrk.pRte", "get pTrk.cArt[0].pRaw", "set pTrk.pLov true"}) {
    EXPECT_EQ(outcome(player, requestFrom(text)), "-") << "without a track: " << text;
  }
}

TEST(PlayerInterpreter, WritesTheLengthInMinutesOrHoursAndNothingWhenItIsUnknown) {
  NotingPlayer player;
  for (const auto& [seconds, text] : {std::pair(-3.0, "-"),
                                      {0, "-"},
                                      {std::nan(""), "-"},
                                      {0.4, "0:00"},
                                      {59.9, "0:59"},
                                      {3599, "59:59"},
                                      {3600, "1:00:00"},
                                      {36'061, "10:01:01"}}) {
    player.played->duration = seconds;
    EXPECT_EQ(outcome(player, requestFrom("get pTrk.pTim")), text) << seconds;
  }
}

}  // namespace
}  // namespace platform

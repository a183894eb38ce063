// What scripting requests come to; what the widget asks for is covered by its own tests.
#include "platform/application/player_interpreter.h"

#include <cmath>

#include "tests/support/widget_fixture.h"

namespace platform {
namespace {

using Kind = ScriptingRequest::Kind;
using Reply = std::optional<ScriptingReply>;

constexpr ScriptingStep track{code("pTrk"), {}}, name{code("pnam"), {}}, rating{code("pRte"), {}},
    loved{code("pLov"), {}}, length{code("pTim"), {}}, bytes{code("pRaw"), {}};

ScriptingStep artwork(std::int64_t index) { return {code("cArt"), index}; }

struct PlayerInterpreter : tests::WidgetFixture {
  Reply get(const ScriptingPath& path) {
    return interpret({"COM.apple.itunes", Kind::get, path}, player);
  }
  bool set(const ScriptingStep& property, const Value& value) {
    return interpret({"com.apple.iTunes", Kind::set, {track, property}, value}, player).has_value();
  }
  bool send(FourCharCode eventClass, FourCharCode event, const ScriptingPath& path) {
    return interpret({"com.apple.iTunes", Kind::command, path, {}, eventClass, event}, player)
        .has_value();
  }
};

TEST_F(PlayerInterpreter, RefusesWhatTheDictionaryDoesNotHaveAndValuesThatMakeNoSense) {
  startPlayer(demo::statePaused);
  EXPECT_EQ(get({track, name}), Reply(Value("Paper Lanterns")));
  EXPECT_NE(get({track, artwork(0), bytes}), std::nullopt);
  for (const ScriptingPath& path :
       std::initializer_list<ScriptingPath>{{},
                                            {track},
                                            {name},
                                            {track, {name.code, 0}},
                                            {{track.code, 0}, name},
                                            {track, bytes},
                                            {track, artwork(1), bytes}}) {
    EXPECT_EQ(get(path), std::nullopt) << path.size();
  }
  EXPECT_EQ(interpret({"org.example", Kind::get, {track, name}}, player), std::nullopt);
  EXPECT_EQ(interpret({"com.apple.iTunes", Kind::count, {track, name}}, player), std::nullopt);

  EXPECT_TRUE(set(rating, 100) && set(rating, 0));
  EXPECT_FALSE(set(rating, -1) || set(rating, 101) || set(rating, "80") || set(loved, "yes"));
  EXPECT_FALSE(set(name, 1) || set(length, 1));
  EXPECT_EQ(player.currentTrack()->marks.rating, 0);

  constexpr FourCharCode own = code("hook"), common = code("misc");
  EXPECT_TRUE(send(common, code("actv"), {}) && send(own, code("Revl"), {track}));
  EXPECT_FALSE(send(own, code("actv"), {}) || send(common, code("Next"), {}));
  EXPECT_FALSE(send(own, code("Revl"), {}) || send(own, code("Next"), {track}) ||
               send(own, code("Next"), {name}));

  player.setCurrentTrackIndex(std::nullopt);
  EXPECT_EQ(get({track, rating}), std::nullopt);
  EXPECT_FALSE(set(rating, 20));
}

TEST_F(PlayerInterpreter, WritesTheLengthInMinutesOrHoursAndNothingWhenItIsUnknown) {
  for (const auto& [seconds, text] : {std::pair(-3.0, ""),
                                      {0, ""},
                                      {std::nan(""), ""},
                                      {0.4, "0:00"},
                                      {609.9, "10:09"},
                                      {3599, "59:59"},
                                      {3600, "1:00:00"},
                                      {36'610, "10:10:10"},
                                      {1e300, "878400:00:00"}}) {
    player.currentTrack()->duration = seconds;
    EXPECT_EQ(get({track, length}), *text != 0 ? Reply(Value(text)) : std::nullopt) << seconds;
  }
}

}  // namespace
}  // namespace platform

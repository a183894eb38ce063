// Players that die, hang, stammer and lie: the interface never stands still for long, and all is
// well again when the player is.
#include <gmock/gmock.h>

#include <QtDBus/QDBusVariant>

#include "tests/integration/bridge_fixture.h"
#include "tests/integration/fake_player.h"
#include "tests/integration/memory.h"

namespace tests {
namespace {

using platform::code;

QVariantMap playing(const QVariantMap& metadata) {
  return {{"PlaybackStatus", "Playing"},
          {"Position", QVariant::fromValue<qlonglong>(5'000'000)},
          {"Metadata", metadata}};
}

const QVariantMap song = {{"xesam:title", "Song"}};

class PlayerFaults : public BridgeFixture {
 protected:
  /// Asks everything that three full refreshes ask.
  static void refresh() {
    for (int i = 0; i < 3; ++i) {
      state();
      position();
      for (const auto property : {code("pnam"), code("pArt"), code("pAlb"), code("pTim")}) {
        trackText(property);
      }
      track()->elementCount(code("cArt"));
      track()->resolvedClassCode();
    }
  }
  static bool shows(const char* title) { return trackText(code("pnam")) == title; }
};

TEST_F(PlayerFaults, APlayerIsWaitedForOnceIsSilentInTheEndAndCountsAgainWhenItAnswers) {
  FakePlayer player(bus, "hanging", playing(song));
  follow();
  ASSERT_TRUE(shows("Song"));
  const int questions = player.questionCount();
  player.hold();
  player.setProperties(playing({{"xesam:title", "Later"}}));
  player.signalChange(playing({{"xesam:title", "Signalled"}}));
  // One slow answer: what was signalled is shown, and goes on being shown.
  ASSERT_TRUE(waitUntil([&] { return announced->changes > 0; }));
  for (int i = 0; i < 5; ++i) {
    command(code("PlPs"));
    refresh();
  }
  EXPECT_TRUE(shows("Signalled"));
  EXPECT_EQ(state(), "kPSP");
  // No answer at all.
  EXPECT_TRUE(waitUntil([] { return state() != "kPSP"; }));
  EXPECT_FALSE(trackText(code("pnam")));
  EXPECT_TRUE(bridge->isRunning());
  // A widget that starts meanwhile does not hang either.
  follow();
  EXPECT_TRUE(bridge->isRunning());

  player.release();
  EXPECT_TRUE(waitUntil([&] { return shows("Later"); }));
  EXPECT_LT(player.questionCount() - questions, 30) << "a question for each value asked for";
}

TEST_F(PlayerFaults, ALostQuestionIsAskedAgain) {
  FakePlayer player(bus, "swallower", playing(song));
  player.swallow(3);  // at first
  follow();
  EXPECT_FALSE(trackText(code("pnam")));
  EXPECT_TRUE(waitUntil([&] { return shows("Song"); }));
  player.swallow(1);  // later
  player.setProperties(playing({{"xesam:title", "Later"}}));
  player.signalChange({});
  EXPECT_TRUE(waitUntil([&] {
    EXPECT_EQ(state(), "kPSP") << "the panel does not change and back";
    return shows("Later");
  }));
}

TEST_F(PlayerFaults, ValuesOfTheWrongKindCountAsMissingAndNothingOfThemSticks) {
  const QVariantMap garbage[] = {
      {{"PlaybackStatus", 7}, {"Position", "soon"}, {"Metadata", "none"}},
      {{"PlaybackStatus", QVariantMap{{"a", 1}}},
       {"Position", QVariant::fromValue<qlonglong>(-7)},
       {"Rating", "many"},
       {"Metadata", QVariantMap{{"xesam:title", QStringList()},
                                {"xesam:album", QVariantList{1, 2.5, QVariantMap()}},
                                {"mpris:trackid", 12},
                                {"mpris:artUrl", QByteArray("\xff\xfe")},
                                {"xesam:url", "::%%%"}}}},
  };
  FakePlayer player(bus, "liar", {});
  follow();
  for (const QVariantMap& properties : garbage) {
    player.setProperties(properties);
    const int changes = announced->changes;
    player.signalChange(properties);
    ASSERT_TRUE(waitUntil([&] { return announced->changes > changes; }));
    EXPECT_EQ(app()->propertyWithCode(code("pPlS"))->enumCodeValue(), platform::FourCharCode{});
    EXPECT_EQ(position(), 0);
    EXPECT_FALSE(trackText(code("pAlb")));
    EXPECT_EQ(track()->propertyWithCode(code("pRte"))->integerValue(), 0);
    EXPECT_EQ(track()->elementCount(code("cArt")), 0);
    app()->propertyWithCode(code("pPos"))->setTo(3.0);
  }
  player.setProperties(playing({{"xesam:title", QVariant::fromValue(QDBusVariant("Nested"))}}));
  player.signalChange({});
  EXPECT_TRUE(waitUntil([&] { return shows("Nested"); }));
  EXPECT_EQ(position(), 5);
}

TEST_F(PlayerFaults, AFloodOfSignalsIsAnnouncedAFewTimesAndLeavesNothingBehind) {
  FakePlayer player(bus, "stammerer", playing(song));
  follow();
  constexpr int signalCount = 10'000;
  const auto flood = [&](const char* lastTitle) {
    for (int i = 0; i < signalCount; ++i) player.signalChange(playing(song));
    player.setProperties(playing({{"xesam:title", QLatin1String(lastTitle)}}));
    player.signalChange({});
    return waitUntil([&] {
      refresh();
      return shows(lastTitle);
    });
  };
  ASSERT_TRUE(flood("Once"));  // whatever is made once is made now
  const std::size_t bytesBefore = allocatedBytes();
  const int changesBefore = announced->changes;
  ASSERT_TRUE(flood("Twice"));
  EXPECT_TRUE(waitUntil([&] { return allocatedBytes() < bytesBefore + 256 * 1024; }));
  EXPECT_LT(announced->changes - changesBefore, signalCount / 10);
}

}  // namespace
}  // namespace tests

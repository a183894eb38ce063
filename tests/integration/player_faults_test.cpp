// Players that die, hang, stammer and lie: the interface never stands still for long, and all is
// well again when the player is.
#include <gmock/gmock.h>

#include <QtCore/QElapsedTimer>
#include <QtDBus/QDBusVariant>

#include "tests/integration/bridge_fixture.h"
#include "tests/integration/fake_player.h"
#include "tests/integration/memory.h"
#include "tests/integration/mpv.h"

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
  /// Everything that a full refresh asks for; milliseconds that it took.
  static qint64 refresh() {
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 3; ++i) {
      state();
      position();
      for (const auto property : {code("pnam"), code("pArt"), code("pAlb"), code("pTim")}) {
        trackText(property);
      }
      track()->elementCount(code("cArt"));
      track()->resolvedClassCode();
    }
    return timer.elapsed();
  }
};

TEST_F(PlayerFaults, AHangingPlayerIsGivenUpOnAndCountsAgainWhenItAnswers) {
  const Mpv mpv(bus);
  follow();
  refresh();
  mpv.program().send(SIGSTOP);
  // Fresh questions have to be asked: each change of mind is one more chance to hang.
  qint64 blocked = 0;
  for (int i = 0; i < 5; ++i) {
    command(code("PlPs"));
    blocked += refresh();
  }
  EXPECT_LT(blocked, 1000);
  EXPECT_TRUE(bridge->isRunning());
  EXPECT_EQ(app()->propertyWithCode(code("pPlS"))->enumCodeValue(), platform::FourCharCode{});

  // A widget that starts meanwhile does not hang either.
  QElapsedTimer timer;
  timer.start();
  follow();
  EXPECT_LT(timer.elapsed(), 1000);

  const int changes = announced->changes;
  mpv.program().send(SIGCONT);
  EXPECT_TRUE(waitUntil(
      [&] { return announced->changes > changes && trackText(code("pnam")) == "First Light"; }));
  const QString status = bus.playerctl({"status"});
  EXPECT_TRUE(waitUntil([&] { return state() == (status == "Paused" ? "kPSp" : "kPSP"); }));
}

TEST_F(PlayerFaults, AKilledPlayerIsGoneAndTheNextOneIsFollowed) {
  {
    const Mpv mpv(bus);
    follow();
    mpv.program().send(SIGKILL);
    EXPECT_LT(refresh(), 1000);
    EXPECT_TRUE(waitUntil([&] { return announced->terminations == 1; }));
  }
  const Mpv next(bus);
  EXPECT_TRUE(waitUntil([&] { return trackText(code("pnam")) == "First Light"; }));
  EXPECT_EQ(announced->launches, 1);
}

TEST_F(PlayerFaults, ASlowPlayerIsShownWithoutWaitingForIt) {
  FakePlayer player(bus, "slow", playing(song));
  follow();
  ASSERT_EQ(trackText(code("pnam")), "Song");
  player.setAnswerTime(std::chrono::milliseconds(180));
  player.setProperties(playing({{"xesam:title", "Later"}}));
  player.signalChange({});
  qint64 blocked = 0;
  const int answers = player.answerCount();
  EXPECT_TRUE(waitUntil([&] {
    blocked += refresh();
    return trackText(code("pnam")) == "Later" && player.answerCount() > answers + 3;
  })) << "the position goes on being asked for, without waiting";
  EXPECT_LT(blocked, 1000);
  EXPECT_EQ(state(), "kPSP");
}

TEST_F(PlayerFaults, ValuesOfTheWrongKindCountAsMissing) {
  const auto nested =
      QVariant::fromValue(QDBusVariant(QVariant::fromValue(QDBusVariant("Nested"))));
  const QVariantMap garbage[] = {
      {},
      {{"PlaybackStatus", 7}, {"Position", "soon"}, {"Metadata", "none"}},
      {{"PlaybackStatus", QVariantMap{{"a", 1}}},
       {"Position", QVariant::fromValue<qlonglong>(-7)},
       {"Rating", "many"},
       {"Metadata", QVariantMap{{"xesam:title", QStringList()},
                                {"xesam:artist", QVariantMap()},
                                {"xesam:album", QVariantList{1, 2.5, QVariantMap()}},
                                {"mpris:length", QVariant::fromValue<qlonglong>(-1)},
                                {"mpris:trackid", 12},
                                {"xesam:userRating", -3.0},
                                {"mpris:artUrl", QByteArray("\xff\xfe")},
                                {"xesam:url", "::%%%"}}}},
  };
  FakePlayer player(bus, "liar", garbage[0]);
  follow();
  for (const QVariantMap& properties : garbage) {
    player.setProperties(properties);
    const int changes = announced->changes;
    player.signalChange(properties);
    ASSERT_TRUE(waitUntil([&] { return announced->changes > changes; }));
    EXPECT_EQ(app()->propertyWithCode(code("pPlS"))->enumCodeValue(), platform::FourCharCode{});
    EXPECT_EQ(position(), 0);
    for (const auto property : {code("pArt"), code("pAlb"), code("pTim")}) {
      EXPECT_EQ(trackText(property), std::nullopt);
    }
    EXPECT_EQ(track()->propertyWithCode(code("pRte"))->integerValue(), 0);
    EXPECT_EQ(track()->elementCount(code("cArt")), 0);
    app()->propertyWithCode(code("pPos"))->setTo(3.0);
  }
  // Nothing of it sticks.
  player.setProperties(playing({{"xesam:title", nested}}));
  player.signalChange({});
  EXPECT_TRUE(waitUntil([&] { return trackText(code("pnam")) == "Nested"; }));
  EXPECT_EQ(position(), 5);
}

TEST_F(PlayerFaults, AFloodOfSignalsIsAnnouncedAFewTimesASecond) {
  FakePlayer player(bus, "stammerer", playing(song));
  follow();
  const auto flood = [&](const char* lastTitle) {
    for (int i = 0; i < 10'000; ++i) player.signalChange(playing(song));
    player.setProperties(playing({{"xesam:title", QLatin1String(lastTitle)}}));
    player.signalChange({});
    return waitUntil([&] {
      refresh();
      return trackText(code("pnam")) == lastTitle;
    });
  };
  ASSERT_TRUE(flood("Once"));  // whatever is made once is made now
  const std::size_t bytesBefore = allocatedBytes();
  const int changesBefore = announced->changes;
  QElapsedTimer timer;
  timer.start();
  ASSERT_TRUE(flood("Twice"));
  EXPECT_TRUE(waitUntil([&] { return allocatedBytes() < bytesBefore + 256 * 1024; }));
  EXPECT_LE(announced->changes - changesBefore, timer.elapsed() / 50 + 2);
}

}  // namespace
}  // namespace tests

// Players that die, hang, stammer and lie: the interface never stands still for long, and all is
// well again when the player is.
#include <gmock/gmock.h>
#include <malloc.h>

#include <QtCore/QElapsedTimer>
#include <QtDBus/QDBusVariant>

#include "tests/integration/bridge_fixture.h"
#include "tests/integration/fake_player.h"
#include "tests/integration/mpv.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// Of the sanitizers' run-time library; not every compiler installs the header.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace tests {
namespace {

using platform::code;

QVariantMap playing(const QVariantMap& metadata) {
  return {{QStringLiteral("PlaybackStatus"), QStringLiteral("Playing")},
          {QStringLiteral("Position"), QVariant::fromValue<qlonglong>(5'000'000)},
          {QStringLiteral("Metadata"), metadata}};
}

const QVariantMap kSong = {{QStringLiteral("xesam:title"), QStringLiteral("Song")}};

/// What this process has allocated and not freed.
std::size_t bytesInUse() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  return __sanitizer_get_current_allocated_bytes();
#else
  return ::mallinfo2().uordblks;
#endif
}

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
  const QString status = bus.playerctl({QStringLiteral("status")});
  EXPECT_TRUE(
      waitUntil([&] { return state() == (status == QLatin1String("Paused") ? "kPSp" : "kPSP"); }));
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
  FakePlayer player(bus, QStringLiteral("slow"), playing(kSong));
  follow();
  ASSERT_EQ(trackText(code("pnam")), "Song");
  player.setAnswerTime(std::chrono::milliseconds(180));
  player.setProperties(playing({{QStringLiteral("xesam:title"), QStringLiteral("Later")}}));
  player.signalChange({});
  qint64 blocked = 0;
  const auto refreshed = [&] {
    blocked += refresh();
    return trackText(code("pnam")) == "Later";
  };
  EXPECT_TRUE(waitUntil(refreshed));
  // The position goes on being asked for, without waiting.
  const int answers = player.answerCount();
  EXPECT_TRUE(waitUntil([&] {
    blocked += refresh();
    return player.answerCount() > answers + 2;
  }));
  EXPECT_LT(blocked, 1000);
  EXPECT_EQ(state(), "kPSP");
}

TEST_F(PlayerFaults, ValuesOfTheWrongKindCountAsMissing) {
  const auto nested = QVariant::fromValue(
      QDBusVariant(QVariant::fromValue(QDBusVariant(QStringLiteral("Nested")))));
  const QVariantMap garbage[] = {
      {},
      {{QStringLiteral("PlaybackStatus"), 7},
       {QStringLiteral("Position"), QStringLiteral("soon")},
       {QStringLiteral("Metadata"), QStringLiteral("none")}},
      {{QStringLiteral("PlaybackStatus"), QVariantMap{{QStringLiteral("a"), 1}}},
       {QStringLiteral("Position"), QVariant::fromValue<qlonglong>(-7)},
       {QStringLiteral("Rating"), QStringLiteral("many")},
       {QStringLiteral("Metadata"),
        QVariantMap{{QStringLiteral("xesam:title"), QStringList()},
                    {QStringLiteral("xesam:artist"), QVariantMap()},
                    {QStringLiteral("xesam:album"), QVariantList{1, 2.5, QVariantMap()}},
                    {QStringLiteral("mpris:length"), QVariant::fromValue<qlonglong>(-1)},
                    {QStringLiteral("mpris:trackid"), 12},
                    {QStringLiteral("xesam:userRating"), -3.0},
                    {QStringLiteral("mpris:artUrl"), QByteArray("\xff\xfe")},
                    {QStringLiteral("xesam:url"), QStringLiteral("::%%%")}}}},
  };
  FakePlayer player(bus, QStringLiteral("liar"), garbage[0]);
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
  player.setProperties(playing({{QStringLiteral("xesam:title"), nested}}));
  player.signalChange({});
  EXPECT_TRUE(waitUntil([&] { return trackText(code("pnam")) == "Nested"; }));
  EXPECT_EQ(position(), 5);
}

TEST_F(PlayerFaults, APlayerMayDropOffTheBusAndReturn) {
  FakePlayer player(bus, QStringLiteral("waverer"), playing(kSong));
  follow();
  for (int i = 1; i <= 3; ++i) {
    player.leaveBus();
    EXPECT_TRUE(waitUntil([&] { return announced->terminations == i; }));
    player.returnToBus();
    EXPECT_TRUE(waitUntil([&] { return announced->launches == i && state() == "kPSP"; }));
  }
}

TEST_F(PlayerFaults, AFloodOfSignalsIsAnnouncedAFewTimesASecond) {
  FakePlayer player(bus, QStringLiteral("stammerer"), playing(kSong));
  follow();
  const auto flood = [&](const char* lastTitle) {
    for (int i = 0; i < 10'000; ++i) player.signalChange(playing(kSong));
    player.setProperties(playing({{QStringLiteral("xesam:title"), QLatin1String(lastTitle)}}));
    player.signalChange({});
    return waitUntil([&] {
      refresh();
      return trackText(code("pnam")) == lastTitle;
    });
  };
  ASSERT_TRUE(flood("Once"));  // whatever is made once is made now
  const std::size_t bytesBefore = bytesInUse();
  const int changesBefore = announced->changes;
  QElapsedTimer timer;
  timer.start();
  ASSERT_TRUE(flood("Twice"));
  EXPECT_TRUE(waitUntil([&] { return bytesInUse() < bytesBefore + 256 * 1024; }));
  EXPECT_LE(announced->changes - changesBefore, timer.elapsed() / 50 + 2);
}

}  // namespace
}  // namespace tests

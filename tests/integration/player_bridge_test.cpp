// The bridge with mpv as the player and playerctl as the witness.
#include <gmock/gmock.h>

#include <QtCore/QFile>
#include <cmath>

#include "tests/integration/bridge_fixture.h"
#include "tests/integration/fake_player.h"
#include "tests/integration/mpv.h"

namespace tests {
namespace {

using platform::code;
using testing::ElementsAre;
using testing::Optional;

class PlayerBridge : public BridgeFixture {
 protected:
  QString witness(const char* question) const { return bus.playerctl({QLatin1String(question)}); }
  double witnessedPosition() const { return witness("position").toDouble(); }
};

TEST_F(PlayerBridge, TellsTheTagsOfTheFileThatPlays) {
  const Mpv mpv(bus);
  follow();
  EXPECT_EQ(state(), "kPSP");
  EXPECT_THAT(trackText(code("pnam")), Optional(std::string("First Light")));
  EXPECT_THAT(trackText(code("pArt")), Optional(std::string("The Tides")));
  EXPECT_THAT(trackText(code("pAlb")), Optional(std::string("Harbour")));
  EXPECT_THAT(trackText(code("pTim")), Optional(std::string("0:40")));
  EXPECT_NEAR(track()->propertyWithCode(code("pDur"))->doubleValue(), Media::kSeconds, 0.1);
  EXPECT_NEAR(position(), witnessedPosition(), 1);
  EXPECT_EQ(platform::textFromCode(track()->resolvedClassCode()), "cFlT");

  // The folder's cover, the same bytes each time so that it is decoded once.
  ASSERT_EQ(track()->elementCount(code("cArt")), 1);
  const auto cover = platform::SBElementArray<platform::SBObject>(track(), code("cArt"))
                         .objectAtIndex(0)
                         ->propertyWithCode(code("pRaw"));
  QFile file(QString::fromStdString(Media::shared().cover().string()));
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(cover->data().view(), file.readAll().toStdString());
  EXPECT_TRUE(cover->data().isIdenticalTo(cover->data()));
}

TEST_F(PlayerBridge, CommandsReachThePlayerAndItsAnswersAreFresh) {
  const Mpv mpv(bus);
  follow();
  command(code("PlPs"));
  EXPECT_TRUE(waitUntil([&] { return witness("status") == QLatin1String("Paused"); }));
  EXPECT_TRUE(waitUntil([&] { return state() == "kPSp"; }));

  app()->propertyWithCode(code("pPos"))->setTo(20.5);
  EXPECT_TRUE(waitUntil([&] { return std::abs(witnessedPosition() - 20.5) < 0.2; }));
  EXPECT_TRUE(waitUntil([&] { return std::abs(position() - 20.5) < 0.2; }));

  command(code("Next"));
  EXPECT_TRUE(waitUntil([&] { return trackText(code("pnam")) == "夜の海"; }));
  command(code("Prev"));
  EXPECT_TRUE(waitUntil([&] { return trackText(code("pnam")) == "First Light"; }));
  EXPECT_GT(announced->changes, 0);
}

TEST_F(PlayerBridge, FollowsThePlayersStopEndAndReturn) {
  auto mpv = std::make_unique<Mpv>(bus);
  follow();
  bus.playerctl({QStringLiteral("stop")});
  EXPECT_TRUE(waitUntil([&] { return state() == "kPSS"; }));

  mpv->program().send(SIGTERM);
  EXPECT_TRUE(waitUntil([&] { return announced->terminations == 1; }));
  EXPECT_TRUE(platform::runningApplicationsWithBundleIdentifier("com.apple.iTunes").empty());
  EXPECT_EQ(app()->propertyWithCode(code("pPlS"))->enumCodeValue(), platform::FourCharCode{});
  EXPECT_EQ(trackText(code("pnam")), std::nullopt);

  mpv = std::make_unique<Mpv>(bus);
  EXPECT_TRUE(waitUntil([&] { return announced->launches == 1 && state() == "kPSP"; }));
}

TEST_F(PlayerBridge, FollowsTheNamedPlayerElseTheOneThatPlays) {
  const auto player = [](const char* status, const char* title) {
    return QVariantMap{{QStringLiteral("PlaybackStatus"), QLatin1String(status)},
                       {QStringLiteral("Metadata"),
                        QVariantMap{{QStringLiteral("xesam:title"), QLatin1String(title)}}}};
  };
  FakePlayer first(bus, QStringLiteral("first"), player("Paused", "one"));
  FakePlayer second(bus, QStringLiteral("second.instance7"), player("Playing", "two"));
  FakePlayer proxy(bus, QStringLiteral("playerctld"), player("Playing", "proxy"));

  follow({.playerName = "FIRST"});
  EXPECT_EQ(trackText(code("pnam")), "one");
  follow({.playerName = "second"});
  EXPECT_EQ(trackText(code("pnam")), "two");
  follow({.playerName = "third"});
  EXPECT_FALSE(bridge->isRunning());

  follow();
  EXPECT_EQ(trackText(code("pnam")), "two");
  // Both play: the one that is followed stays. Only the other plays: it takes over.
  first.setProperties(player("Playing", "one"));
  first.signalChange(player("Playing", "one"));
  second.setProperties(player("Paused", "two"));
  EXPECT_TRUE(
      waitUntil([&] { return announced->changes > 0 || trackText(code("pnam")) == "two"; }));
  second.signalChange(player("Paused", "two"));
  EXPECT_TRUE(waitUntil([&] { return trackText(code("pnam")) == "one"; }));
  // It leaves: the last one is still there, and nothing has terminated.
  first.leaveBus();
  EXPECT_TRUE(waitUntil([&] { return trackText(code("pnam")) == "two"; }));
  EXPECT_EQ(announced->terminations, 0);

  const auto listing = desktop::PlayerBridge::listPlayers(bus.connection());
  ASSERT_EQ(listing.size(), 2U);
  EXPECT_EQ(listing[1].name, "second.instance7");
  EXPECT_EQ(listing[1].status, "Paused");
}

TEST_F(PlayerBridge, WritesTheRatingThatThePlayerKeepsItself) {
  const QVariantMap properties = {
      {QStringLiteral("PlaybackStatus"), QStringLiteral("Paused")},
      {QStringLiteral("Rating"), 0.6},
      {QStringLiteral("Metadata"),
       QVariantMap{{QStringLiteral("xesam:title"), QStringLiteral("Rated")},
                   {QStringLiteral("mpris:trackid"), QStringLiteral("/track/1")},
                   {QStringLiteral("mpris:length"), 30'000'000.0},
                   {QStringLiteral("xesam:userRating"), 0.2}}}};
  FakePlayer player(bus, QStringLiteral("rater"), properties);
  follow();
  const auto rating = track()->propertyWithCode(code("pRte"));
  EXPECT_TRUE(waitUntil([&] { return rating->integerValue() == 60; }));
  rating->setTo(80);
  app()->propertyWithCode(code("pPos"))->setTo(99.0);
  EXPECT_TRUE(waitUntil([&] { return player.calls().size() == 2; }));
  EXPECT_THAT(player.calls(),
              ElementsAre(QStringLiteral("Set org.mpris.MediaPlayer2.Player Rating 0.8"),
                          QStringLiteral("SetPosition /track/1 30000000")));
}

TEST_F(PlayerBridge, KeepsRatingsAndLoveForPlayersThatHaveNone) {
  const TemporaryFolder folder;
  desktop::RatingsStore ratings(folder.path() / "ratings.sqlite");
  const Mpv mpv(bus);
  follow({.ratings = &ratings});
  const auto of = [](platform::FourCharCode property) {
    return track()->propertyWithCode(property);
  };
  EXPECT_EQ(of(code("pRtk"))->enumCodeValue(), platform::FourCharCode{});
  of(code("pRte"))->setTo(130);
  of(code("pLov"))->setTo(true);
  of(code("pAlR"))->setTo(40);
  of(code("pALv"))->setTo(true);
  follow({.ratings = &ratings});
  EXPECT_EQ(of(code("pRte"))->integerValue(), 100);
  EXPECT_EQ(platform::textFromCode(of(code("pRtk"))->enumCodeValue()), "kRtU");
  EXPECT_TRUE(of(code("pLov"))->boolValue());
  EXPECT_EQ(of(code("pAlR"))->integerValue(), 40);
  // The next track of the album has the album's marks and none of its own.
  command(code("Next"));
  ASSERT_TRUE(waitUntil([&] { return trackText(code("pnam")) == "夜の海"; }));
  EXPECT_FALSE(of(code("pLov"))->boolValue());
  EXPECT_EQ(of(code("pRte"))->integerValue(), 0);
  EXPECT_TRUE(of(code("pALv"))->boolValue());
}

}  // namespace
}  // namespace tests

#include "desktop/player_snapshot.h"

#include <gtest/gtest.h>

#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusVariant>
#include <limits>

namespace desktop {
namespace {

QVariantMap withMetadata(const QVariantMap& metadata) {
  return {{QStringLiteral("Metadata"), metadata}};
}

TEST(PlayerSnapshot, TextsComeFromWhateverAPlayerSends) {
  const QVariant nested =
      QVariant::fromValue(QDBusVariant(QVariant::fromValue(QDBusVariant(QStringLiteral("a")))));
  const std::pair<QVariant, const char*> cases[] = {
      {QStringLiteral("a"), "a"},
      {QStringList{QStringLiteral("a"), QString(), QStringLiteral("b")}, "a, b"},
      {QVariantList{QStringLiteral("a"), 7, nested}, "a, a"},
      {nested, "a"},
      {QVariant::fromValue(QDBusObjectPath(QStringLiteral("/t/1"))), "/t/1"},
      {QStringList(), ""},
      {7, ""},
      {true, ""},
      {QByteArray("\xff\xfe"), ""},
      {QVariantMap{{QStringLiteral("a"), 1}}, ""},
      {QVariant(), ""},
  };
  for (const auto& [value, expected] : cases) {
    EXPECT_EQ(textFromVariant(value).toStdString(), expected) << value.typeName();
  }
}

TEST(PlayerSnapshot, OnlyFiniteNumbersAreNumbers) {
  EXPECT_EQ(numberFromVariant(QVariant::fromValue<qlonglong>(-2)), -2);
  EXPECT_EQ(numberFromVariant(2.5), 2.5);
  EXPECT_EQ(numberFromVariant(QStringLiteral("2")), std::nullopt);
  EXPECT_EQ(numberFromVariant(true), std::nullopt);
  EXPECT_EQ(numberFromVariant(std::numeric_limits<double>::quiet_NaN()), std::nullopt);
  EXPECT_EQ(secondsFromMicroseconds(QVariant::fromValue<qulonglong>(1'500'000)), 1.5);
  EXPECT_EQ(secondsFromMicroseconds(-5), 0);
  EXPECT_EQ(microsecondsFromSeconds(1.0000004), 1'000'000);
  EXPECT_EQ(microsecondsFromSeconds(-1), 0);
  EXPECT_EQ(microsecondsFromSeconds(std::numeric_limits<double>::quiet_NaN()), 0);
  EXPECT_GT(microsecondsFromSeconds(1e300), 0);
}

TEST(PlayerSnapshot, LengthTextHasHoursOnlyWhenThereAreAny) {
  const std::pair<double, const char*> cases[] = {{0, ""},
                                                  {-3, ""},
                                                  {0.4, "0:00"},
                                                  {59.9, "0:59"},
                                                  {65, "1:05"},
                                                  {3599, "59:59"},
                                                  {3600, "1:00:00"},
                                                  {36'061, "10:01:01"},
                                                  {std::numeric_limits<double>::quiet_NaN(), ""}};
  for (const auto& [seconds, expected] : cases) EXPECT_EQ(lengthText(seconds), expected) << seconds;
}

TEST(PlayerSnapshot, ATrackWithoutATitleGoesByTheNameOfItsFile) {
  const auto titleOf = [](const char* address) {
    return snapshotFromProperties(
               withMetadata({{QStringLiteral("xesam:url"), QString::fromUtf8(address)}}))
        .title;
  };
  EXPECT_EQ(titleOf("file:///music/A%20%C3%BC.flac"), "A ü.flac");
  EXPECT_EQ(titleOf("/music/plain name.flac"), "plain name.flac");
  EXPECT_EQ(titleOf("http://radio.example/"), "radio.example");
  EXPECT_EQ(titleOf(""), "");
}

TEST(PlayerSnapshot, AStreamIsElsewhereAndHasNoLength) {
  const auto isStream = [](const char* address, qlonglong length) {
    return snapshotFromProperties(
               withMetadata({{QStringLiteral("xesam:url"), QString::fromUtf8(address)},
                             {QStringLiteral("mpris:length"), length}}))
        .isStream();
  };
  EXPECT_TRUE(isStream("https://radio.example/live", 0));
  EXPECT_TRUE(isStream("rtsp://radio.example/live", -1));
  EXPECT_FALSE(isStream("https://radio.example/song", 1));
  EXPECT_FALSE(isStream("file:///song", 0));
  EXPECT_FALSE(isStream("file://host/song", 0));
  EXPECT_FALSE(isStream("spotify:track:1", 0));
  EXPECT_FALSE(isStream("", 0));
}

TEST(PlayerSnapshot, TrackIdsThatAreNoObjectPathsAreNotUsed) {
  const auto idOf = [](const QVariant& id) {
    return snapshotFromProperties(withMetadata({{QStringLiteral("mpris:trackid"), id}}))
        .trackId.toStdString();
  };
  EXPECT_EQ(idOf(QStringLiteral("/track/1")), "/track/1");
  EXPECT_EQ(idOf(QVariant::fromValue(QDBusObjectPath(QStringLiteral("/a")))), "/a");
  for (const char* id : {"", "1", "/a/", "//", "/a b", "spotify:track:1",
                         "/org/mpris/MediaPlayer2/TrackList/NoTrack"}) {
    EXPECT_EQ(idOf(QString::fromLatin1(id)), "") << id;
  }
}

TEST(PlayerSnapshot, RatingsBelowZeroStandForNone) {
  const auto snapshot = snapshotFromProperties(
      {{QStringLiteral("Rating"), -1.0},
       {QStringLiteral("Metadata"), QVariantMap{{QStringLiteral("xesam:userRating"), -0.5},
                                                {QStringLiteral("xesam:autoRating"), 7.0}}}});
  EXPECT_EQ(snapshot.ratingProperty, QStringLiteral("Rating"));
  EXPECT_EQ(snapshot.ownRating, std::nullopt);
  EXPECT_EQ(snapshot.userRating, std::nullopt);
  EXPECT_EQ(snapshot.autoRating, 1.0);
}

}  // namespace
}  // namespace desktop

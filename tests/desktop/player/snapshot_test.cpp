#include "desktop/player/snapshot.h"

#include <gtest/gtest.h>

#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusVariant>

namespace desktop {
namespace {

PlayerSnapshot withMetadata(const QVariantMap& metadata) {
  return snapshotFromProperties({{"Metadata", metadata}});
}

TEST(PlayerSnapshot, TextsComeFromWhateverAPlayerSends) {
  const QVariant nested = QVariant::fromValue(QDBusVariant(QVariant::fromValue(QDBusVariant("a"))));
  const std::pair<QVariant, const char*> cases[] = {
      {"a", "a"},
      {QStringList{"a", QString(), "b"}, "a, b"},
      {QVariantList{"a", 7, nested}, "a, a"},
      {nested, "a"},
      {QVariant::fromValue(QDBusObjectPath("/t/1")), "/t/1"},
      {QStringList(), ""},
      {7, ""},
      {true, ""},
      {QByteArray("\xff\xfe"), ""},
      {QVariantMap{{"a", 1}}, ""},
      {QVariant(), ""},
  };
  for (const auto& [value, expected] : cases) {
    EXPECT_EQ(textFromVariant(value).toStdString(), expected) << value.typeName();
  }
}

TEST(PlayerSnapshot, EveryTextIsBoundedBetweenCharactersAndTooLongAddressesAreNone) {
  constexpr qsizetype bound = longestText;
  const QString acute(QChar(0x301));
  const QString huge = QString(10'000'000, 'x');
  const QStringList artists(1'000'000, "Artist");
  const std::pair<QVariant, QString> cases[] = {
      {QString(bound, 'x'), QString(bound, 'x')},
      {QString(bound + 1, 'x'), QString(bound, 'x')},
      {QString(bound - 1, 'x') + acute, QString(bound - 2, 'x')},
      {QString(bound - 3, 'x') + QString::fromUtf8("😀"), QString(bound - 3, 'x')},
      {QString(bound - 4, 'x') + QString::fromUtf8("😀"), QString(bound - 4, 'x') + "😀"},
      {"e" + acute.repeated(18'000), "e" + acute.repeated((bound - 1) / 2)},
      {huge, QString(bound, 'x')},
      {artists, artists.join(", ").left(bound)},
      {QStringList{huge, "x"}, QString(bound, 'x')},
  };
  for (const auto& [value, expected] : cases) {
    EXPECT_EQ(textFromVariant(value), expected);
    const auto snapshot = withMetadata({{"xesam:title", value},
                                        {"xesam:artist", value},
                                        {"xesam:album", value},
                                        {"xesam:albumArtist", value}});
    EXPECT_EQ(snapshot.title + snapshot.artist + snapshot.album + snapshot.albumArtist,
              expected.repeated(4).toStdString());
  }
  const auto whole = withMetadata({{"xesam:url", "/" + QString(longestAddress - 1, 'x')}});
  EXPECT_EQ(whole.address.size(), longestAddress);
  EXPECT_EQ(whole.title, std::string(bound, 'x'));
  const auto none = withMetadata({{"xesam:url", "/" + QString(longestAddress, 'x')},
                                  {"mpris:artUrl", "file:///" + huge},
                                  {"mpris:trackid", "/" + huge}});
  EXPECT_EQ(none.address + none.artworkAddress + none.trackId, "");
  EXPECT_GT(withMetadata({{"mpris:artUrl", "data:," + huge}}).artworkAddress.size(), huge.size());
}

TEST(PlayerSnapshot, ATrackWithoutATitleGoesByItsFileAndAStreamIsElsewhereWithoutALength) {
  for (const auto& [address, length, title, isStream] :
       std::vector<std::tuple<const char*, qlonglong, const char*, bool>>{
           {"file:///music/A%20%C3%BC.flac", 0, "A ü.flac", false},
           {"/music/plain name.flac", 0, "plain name.flac", false},
           {"http://radio.example/", 0, "radio.example", true},
           {"rtsp://radio.example/live", -1, "live", true},
           {"https://radio.example/song", 1, "song", false},
           {"file://host/song", 0, "song", false},
           {"", 0, "", false}}) {
    const auto snapshot =
        withMetadata({{"xesam:url", QString::fromUtf8(address)}, {"mpris:length", length}});
    EXPECT_EQ(snapshot.title, title) << address;
    EXPECT_EQ(snapshot.isStream(), isStream) << address;
  }
}

TEST(PlayerSnapshot, AStationsWordOfWhatIsOnAirTakesThePlaceOfItsFileNameOnly) {
  for (const char* key : {"vlc:nowplaying", "icy-title"}) {
    for (const char* title : {"", "live.mp3", "http://radio.example/live.mp3", "Station"}) {
      const auto snapshot = withMetadata({{"xesam:url", "http://radio.example/live.mp3"},
                                          {"xesam:title", title},
                                          {key, "On Air"}});
      EXPECT_EQ(snapshot.title, title == std::string("Station") ? "Station" : "On Air") << title;
    }
  }
}

TEST(PlayerSnapshot, RatingsBelowZeroAndTrackIdsThatAreNoObjectPathsAreNone) {
  const auto idOf = [](const QVariant& id) {
    return withMetadata({{"mpris:trackid", id}}).trackId.toStdString();
  };
  EXPECT_EQ(idOf(QVariant::fromValue(QDBusObjectPath("/a"))), "/a");
  for (const char* id : {"", "1", "/a/", "//", "/a b", "spotify:track:1",
                         "/org/mpris/MediaPlayer2/TrackList/NoTrack"}) {
    EXPECT_EQ(idOf(id), "") << id;
  }
  const auto rated = withMetadata({{"xesam:userRating", -0.5}, {"xesam:autoRating", 7.0}});
  EXPECT_EQ(rated.userRating, std::nullopt);
  EXPECT_EQ(rated.autoRating, 1.0);
}

}  // namespace
}  // namespace desktop

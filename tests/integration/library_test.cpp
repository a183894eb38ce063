// Ratings on their way into the players' own libraries and back, with a service that speaks each
// player's interface.
#include <gmock/gmock.h>

#include <QtDBus/QDBusMetaType>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusVirtualObject>
#include <cmath>

#include "tests/integration/bridge_fixture.h"
#include "tests/integration/fake_player.h"
#include "tests/support/temporary_folder.h"

namespace tests {
namespace {

using desktop::LibraryNote;
using platform::code;
using State = LibraryNote::State;

/// A player with a library that is reached in its own way.
class Library final : public QDBusVirtualObject {
 public:
  Library(const PrivateBus& bus, const QString& player)
      : player_(player),
        connection_(QDBusConnection::connectToBus(bus.address(), player)),
        service_(QDBusConnection::connectToBus(bus.address(), player + "-service")) {
    for (QDBusConnection* each : {&connection_, &service_}) {
      each->registerVirtualObject("/", this, QDBusConnection::SubPath);
    }
    qDBusRegisterMetaType<QMap<QString, QString>>();
    // Quod Libet has two connections.
    for (const char* name : {"org.gnome.Rhythmbox3", "net.sacredchao.QuodLibet"}) {
      service_.registerService(name);
    }
    appear();
  }
  ~Library() override {
    for (const QDBusConnection& each : {connection_, service_}) {
      QDBusConnection::disconnectFromBus(each.name());
    }
  }

  void appear() { connection_.registerService("org.mpris.MediaPlayer2." + player_); }
  void vanish() { connection_.unregisterService("org.mpris.MediaPlayer2." + player_); }
  void play(int number) {
    current = number;
    signal();
  }
  /// The rating, as somebody gives it in the player's own window.
  void rate(double rating) {
    ratings[current] = rating;
    signal();
  }
  void signal() {
    auto changed = QDBusMessage::createSignal(desktop::playerPath, desktop::propertiesInterface,
                                              "PropertiesChanged");
    changed << desktop::playerInterface << QVariantMap{{"Metadata", metadata()}} << QStringList();
    connection_.send(changed);
  }

  int current = 1;
  std::map<int, double> ratings;  ///< 0 to 1, by the number of the track
  double step = 0.1;              ///< what it rounds to
  bool refuses = false;
  std::function<void()> atQuestion = [] {};  ///< done before the next question for the metadata
  int writes = 0;
  bool isMet = false;  ///< asked what it offers

 private:
  static QString address(int number) { return QString("file:///music/%1.flac").arg(number); }
  QVariantMap metadata() const {
    QVariantMap all{{"mpris:trackid", QString("/track/%1").arg(current)},
                    {"xesam:url", address(current)},
                    {"xesam:title", QString("Song %1").arg(current)}};
    if (ratings.contains(current)) all["xesam:userRating"] = ratings.at(current);
    return all;
  }
  void take(int number, double rating) {
    ++writes;
    ratings[number] = std::round(rating / step) * step;
  }
  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    return connection.send(answer(message, connection.baseService() == service_.baseService()));
  }
  QDBusMessage answer(const QDBusMessage& message, bool isOfService) {
    const QVariantList arguments = message.arguments();
    const QString member = message.member();
    const auto reply = [&](const QVariant& value) {
      return message.createReply(QVariant::fromValue(QDBusVariant(value)));
    };
    if (member == "GetAll") {
      return message.createReply(
          QVariantMap{{"PlaybackStatus", "Playing"}, {"Metadata", metadata()}});
    }
    if (member == "Get" && arguments.value(1) == "Metadata") {
      std::exchange(atQuestion, [] {})();
      return reply(metadata());
    }
    if (member == "Get" && arguments.value(1) == "HasRatingsExtension") {
      isMet = true;
      if (player_ == "lollypop") return reply(true);
    }
    const bool isWrite =
        member == "SetRating" || member == "SetEntryProperties" || member == "Rate";
    if (isWrite && refuses) return message.createErrorReply(QDBusError::AccessDenied, "no");
    if (member == "SetRating" && player_ == "lollypop") {
      take(arguments.at(0).value<QDBusObjectPath>().path().section('/', -1).toInt(),
           arguments.at(1).toDouble());
      return message.createReply();
    }
    if (isOfService && message.path() == "/org/gnome/Rhythmbox3/RhythmDB" &&
        player_ == "rhythmbox") {
      const int number = arguments.at(0).toString().section('/', -1).section('.', 0, 0).toInt();
      if (member == "GetEntryProperties") {
        return message.createReply(QVariantMap{{"rating", ratings[number] * 5}});
      }
      take(number, desktop::mapFromVariant(arguments.at(1)).value("rating").toDouble() / 5);
      return message.createReply();
    }
    if (isOfService && member == "CurrentSong" && player_ == "quodlibet") {
      return message.createReply(QVariant::fromValue(QMap<QString, QString>{
          {"~uri", address(current)}, {"~#rating", QString::number(ratings[current])}}));
    }
    if (isOfService && message.path() == "/net/sacredchao/QuodLibet" && member == "Rate" &&
        player_ == "quodlibet") {
      take(current, arguments.at(0).toString().toDouble());
      return message.createReply();
    }
    return message.createErrorReply(QDBusError::UnknownMethod, member);
  }

  const QString player_;
  QDBusConnection connection_, service_;
};

class LibraryTest : public BridgeFixture {
 protected:
  void open(const char* name, bool writes = true) {
    library = std::make_unique<Library>(bus, name);
    follow({.ratings = &store, .writesLibraries = writes});
    player = name;
    // The player is in this thread: nothing that waits for it gets an answer.
    EXPECT_TRUE(waitUntil([] { return shown() >= 0 && trackText(code("pnam")); }));
    // What it offers is asked for meanwhile; a signal after that answer comes after it.
    EXPECT_TRUE(waitUntil([&] { return library->isMet || !writes; }));
    const int changes = announced->changes;
    library->signal();
    EXPECT_TRUE(waitUntil([&] { return announced->changes > changes; }));
  }
  static std::int64_t shown() { return track()->propertyWithCode(code("pRte"))->integerValue(); }
  static void click(int rating) { track()->propertyWithCode(code("pRte"))->setTo(rating); }
  std::optional<LibraryNote> noteOf(int number) {
    return store
        .trackRating({.address = QString("/music/%1.flac").arg(number).toStdString()}, player)
        .note;
  }
  bool isNoted(int number, State state) {
    return waitUntil([&] { return noteOf(number) && noteOf(number)->state == state; });
  }
  static bool shows(int rating) {
    return waitUntil([&] { return shown() == rating; });
  }

  const TemporaryFolder folder;
  desktop::RatingsStore store{folder.path() / "ratings.sqlite"};
  std::unique_ptr<Library> library;
  std::string player;
};

TEST_F(LibraryTest, AStarLandsInEachKindOfLibraryAndAHalfOneStaysOneWhereItIsRounded) {
  for (const auto& [name, step] :
       {std::pair("rhythmbox", 0.1), {"quodlibet", 0.1}, {"lollypop", 0.2}}) {
    SCOPED_TRACE(name);
    open(name);
    library->step = step;
    click(70);
    EXPECT_EQ(shown(), 70) << "without waiting for the library";
    EXPECT_TRUE(isNoted(1, State::written));
    EXPECT_NEAR(library->ratings[1], 0.7, step / 2 + 0.01);
    library->signal();
    EXPECT_FALSE(waitUntil([] { return shown() != 70; }, std::chrono::milliseconds(50)));
    library->rate(0.2);
    EXPECT_TRUE(shows(20)) << "the last hand";
    library->rate(0.8);
    EXPECT_TRUE(shows(80));
    click(0);
    EXPECT_TRUE(isNoted(1, State::written));
    library->rate(1.0);
    EXPECT_TRUE(shows(100)) << "also over a rating that was cleared here";
    library.reset();
    store.setTrackRating({.address = "/music/1.flac"}, 100);
  }
}

TEST_F(LibraryTest, TheNextTrackIsNeverRatedInThePlaceOfTheOneThatWas) {
  for (const char* name : {"quodlibet", "lollypop"}) {
    open(name);
    library->atQuestion = [&] { library->play(2); };
    click(90);
    EXPECT_TRUE(waitUntil([&] { return trackText(code("pnam")) == "Song 2"; }));
    EXPECT_TRUE(isNoted(1, State::pending));
    EXPECT_EQ(library->writes, 0) << name;
    library.reset();
  }
}

TEST_F(LibraryTest, ARefusalIsFinalAndNothingIsWrittenWhereThatIsNotWanted) {
  open("rhythmbox");
  library->refuses = true;
  click(60);
  EXPECT_TRUE(isNoted(1, State::refused));
  EXPECT_EQ(shown(), 60);
  library.reset();
  for (const auto& [name, writes] : {std::pair("rhythmbox", false), {"mpv", true}}) {
    open(name, writes);
    click(40);
    EXPECT_TRUE(isNoted(1, State::none));
    EXPECT_FALSE(waitUntil([&] { return library->writes > 0; }, std::chrono::milliseconds(50)));
    library.reset();
  }
}

TEST_F(LibraryTest, WhatQuodLibetGivesEveryTrackIsComputed) {
  open("quodlibet");
  library->rate(0.5);
  EXPECT_TRUE(shows(50));
  const auto kind = track()->propertyWithCode(code("pRtk"));
  EXPECT_EQ(platform::textFromCode(kind->enumCodeValue()), "kRtC");
  library->rate(0.6);
  EXPECT_TRUE(shows(60));
  EXPECT_EQ(platform::textFromCode(kind->enumCodeValue()), "kRtU");
}

}  // namespace
}  // namespace tests

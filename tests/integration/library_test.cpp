// Ratings on their way into the players' own libraries and back, with a service that speaks each
// player's interface.

#include <QtDBus/QDBusMetaType>
#include <QtDBus/QDBusVariant>
#include <cmath>

#include "tests/integration/bridge_fixture.h"
#include "tests/integration/fake_player.h"

namespace tests {
namespace {

using platform::code;
using State = desktop::LibraryNote::State;

/// A player with a library that is reached in its own way.
class Library final : public QDBusVirtualObject {
 public:
  Library(const PrivateBus& bus, const QString& player)
      : player_(player), connection_(QDBusConnection::connectToBus(bus.address(), player)) {
    qDBusRegisterMetaType<QMap<QString, QString>>();
    connection_.registerVirtualObject("/", this, QDBusConnection::SubPath);
    for (const QString& name :
         {QString("org.gnome.Rhythmbox3"), QString("net.sacredchao.QuodLibet"),
          "org.mpris.MediaPlayer2." + player}) {
      connection_.registerService(name);
    }
  }
  ~Library() override { QDBusConnection::disconnectFromBus(connection_.name()); }

  void play(int number) {
    current = number;
    signal();
  }
  /// The rating, as somebody gives it in the player's own window.
  void rate(double rating) {
    ratings[current] = rating;
    signal();
  }
  void signal() { connection_.send(FakePlayer::changeSignal({{"Metadata", metadata()}})); }

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
  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override {
    const QVariantList arguments = message.arguments();
    const auto reply = [&](const QVariantList& values) {
      return connection_.send(message.createReply(values));
    };
    const auto take = [&](int number, double rating) {
      if (refuses) return connection_.send(message.createErrorReply(QDBusError::AccessDenied, ""));
      ++writes;
      ratings[number] = std::round(rating / step) * step;
      return reply({});
    };
    const auto property = [&](const QVariant& value) {
      return reply({QVariant::fromValue(QDBusVariant(value))});
    };
    const QString member = message.member(), asked = arguments.value(1).toString();
    const bool isQuodLibet =
        player_ == "quodlibet" && message.path() == "/net/sacredchao/QuodLibet";
    if (member == "GetAll") {
      return reply({QVariantMap{{"PlaybackStatus", "Playing"}, {"Metadata", metadata()}}});
    }
    if (member == "Get" && asked == "Metadata") {
      std::exchange(atQuestion, [] {})();
      return property(metadata());
    }
    if (member == "Get" && asked == "HasRatingsExtension") {
      isMet = true;
      if (player_ == "lollypop") return property(true);
    }
    if (member == "SetRating" && player_ == "lollypop") {
      return take(arguments.at(0).value<QDBusObjectPath>().path().section('/', -1).toInt(),
                  arguments.at(1).toDouble());
    }
    if (member.endsWith("EntryProperties") && player_ == "rhythmbox") {
      const int number = arguments.at(0).toString().section('/', -1).section('.', 0, 0).toInt();
      if (member.startsWith("Get")) return reply({QVariantMap{{"rating", ratings[number] * 5}}});
      return take(number, desktop::mapFromVariant(arguments.at(1)).value("rating").toDouble() / 5);
    }
    if (isQuodLibet && member == "CurrentSong") {
      return reply({QVariant::fromValue(QMap<QString, QString>{
          {"~uri", address(current)}, {"~#rating", QString::number(ratings[current])}})});
    }
    if (isQuodLibet && member == "Rate") {
      return take(current, arguments.at(0).toString().toDouble());
    }
    return connection_.send(message.createErrorReply(QDBusError::UnknownMethod, member));
  }

  const QString player_;
  QDBusConnection connection_;
};

struct LibraryTest : BridgeFixture {
  void open(const char* name, bool writes = true) {
    library = std::make_unique<Library>(bus, name);
    follow({.ratings = &ratings, .writesLibraries = writes});
    player = name;
    // The player is in this thread: nothing that waits for it gets an answer.
    EXPECT_TRUE(waitUntil([] { return shown() >= 0 && trackText(code("pnam")); }));
    // What it offers is asked for meanwhile; a signal after that answer comes after it.
    EXPECT_TRUE(waitUntil([&] { return library->isMet || !writes; }));
    const int changes = announced->count;
    library->signal();
    EXPECT_TRUE(waitUntil([&] { return announced->count > changes; }));
  }
  static std::int64_t shown() { return rating()->integerValue(); }
  static void click(int stars) { rating()->setTo(stars); }
  /// The same of the first track.
  bool isNoted(State state) {
    return BridgeFixture::isNoted({.address = "/music/1.flac"}, player, state);
  }

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
    EXPECT_TRUE(isNoted(State::written));
    EXPECT_NEAR(library->ratings[1], 0.7, step / 2 + 0.01);
    library->signal();
    EXPECT_FALSE(waitUntil([] { return shown() != 70; }, std::chrono::milliseconds(50)));
    library->rate(0.2);
    std::optional<desktop::PlayerReport> report;
    EXPECT_TRUE(waitUntil([&] {
      report = bridge->report();
      return report && report->rating.value == 20;
    })) << "the last hand";
    EXPECT_EQ(report->library, "none") << "what it says is its own, from the first report on";
    library->rate(0.8);
    EXPECT_TRUE(waitForRating(80));
    click(0);
    EXPECT_TRUE(isNoted(State::written));
    library->rate(1.0);
    EXPECT_TRUE(waitForRating(100)) << "also over a rating that was cleared here";
    library.reset();
    ratings.setTrackRating({.address = "/music/1.flac"}, 100);
  }
}

TEST_F(LibraryTest, TheNextTrackIsNeverRatedInThePlaceOfTheOneThatWas) {
  for (const char* name : {"quodlibet", "lollypop"}) {
    open(name);
    library->atQuestion = [&] { library->play(2); };
    click(90);
    EXPECT_TRUE(waitForTitle("Song 2"));
    EXPECT_TRUE(isNoted(State::pending));
    EXPECT_EQ(library->writes, 0) << name;
    library.reset();
  }
}

TEST_F(LibraryTest, ARefusalIsFinalAndNothingIsWrittenWhereThatIsNotWanted) {
  open("rhythmbox");
  library->refuses = true;
  click(60);
  EXPECT_TRUE(isNoted(State::refused));
  EXPECT_EQ(shown(), 60);
  library.reset();
  for (const auto& [name, writes] : {std::pair("rhythmbox", false), {"mpv", true}}) {
    open(name, writes);
    click(40);
    EXPECT_TRUE(isNoted(State::none));
    EXPECT_FALSE(waitUntil([&] { return library->writes > 0; }, std::chrono::milliseconds(50)));
    library.reset();
  }
}

TEST_F(LibraryTest, WhatQuodLibetGivesEveryTrackIsComputed) {
  open("quodlibet");
  library->rate(0.5);
  EXPECT_TRUE(waitForRating(50));
  const auto kind = track()->propertyWithCode(code("pRtk"));
  EXPECT_EQ(platform::textFromCode(kind->enumCodeValue()), "kRtC");
  library->rate(0.6);
  EXPECT_TRUE(waitForRating(60));
  EXPECT_EQ(platform::textFromCode(kind->enumCodeValue()), "kRtU");
}

}  // namespace
}  // namespace tests

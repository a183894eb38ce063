// The program as scripts and other programs use it: verbs with a card and without, and the bus.
#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtDBus/QDBusMetaType>
#include <QtDBus/QDBusReply>
#include <QtGui/QImage>
#include <csignal>
#include <fstream>

#include "tests/integration/fake_player.h"

namespace tests {
namespace {

const auto service = QStringLiteral("org.virelune.Virelune.Widget");
const auto object = QStringLiteral("/org/virelune/Virelune/Widget");
const auto interface = QStringLiteral("org.virelune.Virelune.Widget1");

/// Hears of changed properties.
class Listener final : public QObject {
  Q_OBJECT

 public:
  explicit Listener(QDBusConnection bus) {
    bus.connect({}, object, "org.freedesktop.DBus.Properties", "PropertiesChanged", this,
                SLOT(heard(QString, QVariantMap, QStringList)));
  }
  QVariantMap changed;

 public slots:
  void heard(const QString&, const QVariantMap& values, const QStringList&) {
    changed.insert(values);
  }
};

/// A desktop whose file dialogs answer at once.
class FakePortal final : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.FileChooser")

 public:
  FakePortal(QDBusConnection bus, QString file) : bus_(bus), file_(std::move(file)) {
    bus_.registerObject("/org/freedesktop/portal/desktop", this, QDBusConnection::ExportAllSlots);
    bus_.registerService("org.freedesktop.portal.Desktop");
  }
  bool isCancelled = false;

 public slots:
  QDBusObjectPath SaveFile(const QString&, const QString&, const QVariantMap& options,
                           const QDBusMessage& call) {
    const QString path = "/org/freedesktop/portal/desktop/request/" +
                         call.service().mid(1).replace('.', '_') + '/' +
                         options.value("handle_token").toString();
    auto signal = QDBusMessage::createTargetedSignal(call.service(), path,
                                                     "org.freedesktop.portal.Request", "Response");
    const uint response = isCancelled ? 1 : 0;
    signal << response << QVariantMap{{"uris", QStringList{"file://" + file_}}};
    bus_.send(signal);
    return QDBusObjectPath(path);
  }
  QDBusObjectPath OpenFile(const QString& parent, const QString& title, const QVariantMap& options,
                           const QDBusMessage& call) {
    return SaveFile(parent, title, options, call);
  }

 private:
  QDBusConnection bus_;
  const QString file_;
};

using SettingGroups = QMap<QString, QVariantMap>;

/// A desktop that says how things are to look.
class FakeSettings final : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

 public:
  FakeSettings(QDBusConnection bus, SettingGroups groups) : groups_(std::move(groups)) {
    qDBusRegisterMetaType<SettingGroups>();
    bus.registerObject("/org/freedesktop/portal/desktop", this, QDBusConnection::ExportAllSlots);
    bus.registerService("org.freedesktop.portal.Desktop");
  }

 public slots:
  tests::SettingGroups ReadAll(const QStringList& names) const {
    SettingGroups groups;
    for (const QString& name : names) groups[name] = groups_.value(name);
    return groups;
  }

 private:
  const SettingGroups groups_;
};

struct Remote : testing::Test {
  std::unique_ptr<Program> start(const QStringList& arguments) const {
    return std::make_unique<Program>(VIRELUNE_PROGRAM, arguments, environment_);
  }
  int run(const QStringList& arguments) const { return start(arguments)->exitStatus(); }
  std::string say(const QStringList& arguments) const {
    return outputOf(VIRELUNE_PROGRAM, arguments, environment_).toStdString();
  }
  QDBusMessage call(const char* method, const QVariantList& arguments = {}) const {
    auto message = QDBusMessage::createMethodCall(service, object, interface, method);
    message.setArguments(arguments);
    return bus_.connection().call(message);
  }

  const PrivateBus bus_;
  const Display display_{bus_};
  FakePlayer player_{bus_,
                     "tape",
                     {{"PlaybackStatus", "Playing"},
                      {"Volume", 0.5},
                      {"CanGoNext", false},
                      {"Metadata", QVariantMap{{"xesam:title", "Song"},
                                               {"xesam:artist", QStringList{"Band"}},
                                               {"xesam:album", "Album"},
                                               {"xesam:url", "file:///music/song.flac"},
                                               {"mpris:length", 200'000'000LL}}}}};

 private:
  const TemporaryFolder home_;
  const Environment environment_ = atHome(display_.environment(), home_);
};

TEST_F(Remote, VerbsDoWithoutACardWhatTheySayAndTellWhyNot) {
  EXPECT_EQ(run({"rate", "4.5"}), 0);
  EXPECT_EQ(say({"rate"}), "4.5");
  EXPECT_EQ(run({"rate", "-", "--album"}), 0);
  EXPECT_EQ(run({"love"}), 0);
  EXPECT_EQ(run({"love", "on"}), 0);
  EXPECT_EQ(run({"love", "on", "--album"}), 0);
  const char* marks = "{{artist}} {{title}} {{stars}} {{loved}} {{albumRating}} {{albumLoved}}";
  EXPECT_EQ(say({"status", "--format", marks}), "Band Song ★★★★½ true 0 true");
  EXPECT_EQ(say({"list", "--loved", "--format", "m3u"}),
            "#EXTM3U\n#EXTINF:200,Band – Song\n/music/song.flac");
  EXPECT_EQ(run({"volume", "+5"}), 0);
  EXPECT_TRUE(waitUntil([&] { return player_.calls().join(' ').contains("0.55"); }));
  for (const auto& [status, arguments] :
       std::vector<std::pair<int, QStringList>>{{2, {"rate", "6"}},
                                                {2, {"seek", "here"}},
                                                {2, {"next", "please"}},
                                                {2, {"status", "--format", "{{"}},
                                                {2, {"list", "--min", "+"}},
                                                {1, {"next"}},
                                                {1, {"--player", "none", "play"}},
                                                {1, {"follow", "tape"}}}) {
    EXPECT_EQ(run(arguments), status) << arguments.join(' ').toStdString();
  }
  EXPECT_EQ(say({"rate"}), "4.5");
  player_.leaveBus();
  EXPECT_EQ(run({"status"}), 1);
}

TEST_F(Remote, AStatusThatIsFollowedHasALineForEachChangeAndSurvivesThePlayer) {
  const auto follower = start({"status", "--follow", "--format", "{{title}} {{stars}}"});
  EXPECT_EQ(follower->readLine(), "Song");
  EXPECT_EQ(run({"rate", "2"}), 0);
  EXPECT_EQ(follower->readLine(), "Song ★★");
  player_.signalChange({{"Volume", 0.7}});
  FakePlayer other(
      bus_, "other",
      {{"PlaybackStatus", "Paused"}, {"Metadata", QVariantMap{{"xesam:title", "Other"}}}});
  player_.leaveBus();
  EXPECT_EQ(follower->readLine(), "Other");
  other.leaveBus();
  EXPECT_EQ(follower->readLine(), "");
  const FakePlayer third(bus_, "third", {{"Metadata", QVariantMap{{"xesam:title", "Third"}}}});
  EXPECT_EQ(follower->readLine(), "Third");
  follower->send(SIGTERM);
  EXPECT_EQ(follower->exitStatus(), 0);
}

TEST_F(Remote, TheBusAnswersWithoutAWindowUntilACardTakesOverAndRatingsShowEverywhere) {
  const auto windowless = start({"--service"});
  ASSERT_TRUE(waitUntil([&] { return bus_.hasName(service); }));
  EXPECT_EQ(call("Act", {"love", "on"}).type(), QDBusMessage::ReplyMessage);
  const QVariantMap track{{"address", "file:///music/song.flac"}};
  const QVariantMap named{{"artist", "A"}, {"title", "T"}, {"length", 100}};
  EXPECT_EQ(call("SetMarks", {named, QVariantMap{{"rating", 3.5}}}).errorName(), "");
  const QString invalid = "org.freedesktop.DBus.Error.InvalidArgs";
  for (const QVariantList& arguments : std::vector<QVariantList>{
           {track, QVariantMap{{"rating", 3.3}}},
           {track, QVariantMap{{"rating", "much"}}},
           {track, QVariantMap{{"loved", 1}}},
           {track, QVariantMap{{"rating", 1}, {"beauty", 2}}},
           {QVariantMap{{"address", QString(5000, 'x')}}, QVariantMap{{"rating", 1}}},
           {QVariantMap{{"adress", "x"}}, QVariantMap{{"rating", 1}}}}) {
    EXPECT_EQ(call("SetMarks", arguments).errorName(), invalid);
  }
  EXPECT_EQ(call("Act", {"rate", QString(1'000'000, '5')}).errorName(), invalid);
  EXPECT_EQ(call("Act", {"dance", ""}).errorName(), invalid);
  EXPECT_EQ(call("Act", {"next", ""}).errorName(), interface + ".Error.Impossible");
  EXPECT_EQ(call("Act", {1, 2}).errorName(), "org.freedesktop.DBus.Error.UnknownMethod");
  const auto marks = [&](const QVariantMap& of) {
    return QDBusReply<QVariantMap>(call("Marks", {of})).value();
  };
  EXPECT_EQ(marks(track), (QVariantMap{{"loved", true}})) << "and nothing of the bad ones";
  EXPECT_EQ(marks(named), (QVariantMap{{"rating", 3.5}}));

  const auto card = start({});
  EXPECT_EQ(windowless->exitStatus(), 0);
  const auto isFollowed = [&] {
    return QDBusReply<QVariantMap>(call("Status")).value().value("title") == "Song";
  };
  ASSERT_TRUE(waitUntil(isFollowed));
  const Listener listener(bus_.connection());
  EXPECT_EQ(run({"--player", "tape", "rate", "4"}), 0) << "by another program";
  EXPECT_TRUE(waitUntil([&] { return listener.changed.value("Rating") == 4.0; }));
  EXPECT_FALSE(listener.changed.contains("Title"));
  EXPECT_EQ(say({"rate"}), "4") << "asked of the card";
  EXPECT_EQ(run({"rate", "9"}), 2);
  EXPECT_EQ(run({"next"}), 1);
  EXPECT_EQ(run({"follow", "any"}), 0);
}

TEST_F(Remote, TheCardHasTheContrastAndTheSizeOfTextThatTheDesktopWants) {
  const FakeSettings settings(
      bus_.connection(),
      {{"org.freedesktop.appearance", {{"color-scheme", 1U}, {"contrast", 1U}}},
       {"org.gnome.desktop.interface", {{"text-scaling-factor", 1.5}, {"clock-format", "24h"}}}});
  const TemporaryFolder folder;
  const QString picture = (folder.path() / "card.png").c_str();
  const auto snapshot = start({"--demo", "--snapshot", picture});
  EXPECT_TRUE(waitUntil([&] { return QFile::exists(picture); }));
  EXPECT_EQ(snapshot->exitStatus(), 0);
  EXPECT_EQ(QImage(picture).pixelColor(400, 10), QColor(Qt::black));
  for (const char* size : {"480x132", "320x88"}) {
    const auto card = start(size[0] == '4' ? QStringList{} : QStringList{"--scale", "1"});
    EXPECT_TRUE(waitUntil([&] {
      const QString window = display_.window("virelune-widget");
      return display_.xdotool("getwindowgeometry " + window).endsWith(size);
    })) << size;
  }
}

TEST_F(Remote, RatingsGoToTheFileThatTheDesktopsDialogChoseAndComeFromIt) {
  const TemporaryFolder folder;
  const auto file = folder.path() / "my ratings.jsonl";
  const auto card = start({});
  ASSERT_TRUE(waitUntil([&] { return call("Act", {"love", "on"}).errorName().isEmpty(); }));
  EXPECT_EQ(call("Act", {"export-ratings", ""}).errorName(), interface + ".Error.Impossible")
      << "this desktop has no dialogs";
  FakePortal portal(bus_.connection(), QString::fromStdString(file.string()));
  EXPECT_EQ(call("Act", {"export-ratings", ""}).errorName(), "");
  EXPECT_TRUE(waitUntil([&] { return contents(file).find("Song") != std::string::npos; }));
  const std::string imported =
      R"({"kind":"track","artist":"A","title":"T","length":9,"loved":true})";
  std::ofstream(file) << imported;
  const auto isImported = [&] {
    const QVariantMap track{{"artist", "A"}, {"title", "T"}, {"length", 9}};
    return QDBusReply<QVariantMap>(call("Marks", {track})).value().value("loved") == true;
  };
  portal.isCancelled = true;
  EXPECT_EQ(call("Act", {"import-ratings", ""}).errorName(), "");
  EXPECT_EQ(run({"love", "on"}), 0);  // the card has heard of it then
  EXPECT_FALSE(isImported());
  portal.isCancelled = false;
  EXPECT_EQ(call("Act", {"import-ratings", ""}).errorName(), "");
  EXPECT_TRUE(waitUntil(isImported));
}

}  // namespace
}  // namespace tests

#include "remote_test.moc"

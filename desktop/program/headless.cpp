#include "desktop/program/headless.h"

#include <unistd.h>
#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>
#include <QtDBus/QDBusConnectionInterface>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <optional>

#include "desktop/actions/player_actions.h"
#include "desktop/actions/values.h"
#include "desktop/files/module.h"
#include "desktop/files/settings.h"
#include "desktop/player/bridge.h"
#include "desktop/player/changes.h"
#include "desktop/player/marks_signal.h"
#include "desktop/program/ending.h"
#include "desktop/program/qt_run_loop.h"
#include "desktop/program/resources.h"
#include "desktop/program/worker_pool.h"
#include "desktop/ratings/backups.h"
#include "desktop/ratings/exchange.h"
#include "desktop/ratings/listing.h"
#include "desktop/remote/card_programme.h"
#include "desktop/remote/names.h"
#include "desktop/remote/service.h"
#include "desktop/remote/status.h"
#include "desktop/remote/verbs.h"
#include "platform/loop/run_loop.h"
#include "platform/platform.h"

namespace desktop {

namespace {

/// The player runs, and nothing else is known of the desktop.
class PlayerOnly final : public platform::WorkspaceBackend {
 public:
  explicit PlayerOnly(PlayerApplication& player) : player_(player) {}
  platform::ObjectArray runningApplications(const std::string& bundleIdentifier) override {
    return runningInstances(&player_, bundleIdentifier);
  }
  std::optional<std::string> applicationPath(const std::string&) override { return std::nullopt; }
  std::shared_ptr<platform::NSImage> icon(const std::string&) override { return nullptr; }
  void launchApplication(const std::string&) override {}
  void openURL(const platform::URL&) override {}

 private:
  PlayerApplication& player_;
};

/// What of the program has to do with the player, without views and without graphics.
class Headless final : public Remote {
 public:
  Headless(const QDBusConnection& bus, const std::string& player,
           const virelune::WidgetEntry& widget, PlayerRegistry::Watch watch)
      : bridge_(bus, {.playerName = player, .ratings = &ratings_, .watch = watch}) {
    ratings_.setChangeHandler([bus] { MarksSignal::send(bus); });
    driver_.setPass([this] { runLoop_.runPass(); });
    platform_.runLoop = &runLoop_;
    platform_.scripting = &bridge_;
    platform_.workspace = &workspace_;
    platform_.globalQueue = &workers_;
    // To tell what plays, and to control it, goes without the bundle.
    virelune::WidgetEntry commands = widget;
    commands.setRating = [this, set = widget.setRating](std::int64_t rating, bool album) {
      openBundleForMarks();
      return set(rating, album);
    };
    commands.setLoved = [this, set = widget.setLoved](bool loved, bool album) {
      openBundleForMarks();
      return set(loved, album);
    };
    addPlayerActions(actions_, bridge_, commands);
  }

  QVariantMap status() override { return statusOf(bridge_.report()); }

  std::optional<Refusal> act(const std::string& action, const std::string& argument) override {
    if (!bridge_.isRunning()) return Refusal{.text = "no music player is on the session bus"};
    const auto problem = actions_.perform(action, argument);
    if (!problem) return std::nullopt;
    const bool isBad = problem->kind == ActionProblem::Kind::badValue;
    return Refusal{isBad ? badValueStatus : impossibleStatus, problem->text};
  }

  PlayerBridge& bridge() { return bridge_; }
  RatingsStore& ratings() { return ratings_; }
  const Actions& actions() const { return actions_; }

 private:
  /// What the widget's commands read.
  void openBundleForMarks() {
    if (!bundle_) bundle_ = openBundle(resourceFolder());
    platform_.mainBundle = bundle_.get();
  }

  platform::Platform platform_;
  platform::PlatformScope scope_{platform_};
  QtRunLoop driver_;
  platform::RunLoop runLoop_{driver_};
  std::unique_ptr<platform::NSBundle> bundle_;
  RatingsStore ratings_{RatingsStore::defaultFile()};
  PlayerBridge bridge_;
  PlayerOnly backend_{bridge_};
  platform::NSWorkspace workspace_{backend_};
  WorkerPool workers_;
  Actions actions_;
};

/// Turns the event loop until nothing is on its way any more, for a while at most.
void finish(const QDBusConnection& bus, const PlayerBridge& bridge) {
  constexpr qint64 patience = 2000;  // milliseconds
  QElapsedTimer sinceBegin;
  sinceBegin.start();
  while (bridge.isWriting() && !sinceBegin.hasExpired(patience)) {
    constexpr int interval = 20;  // milliseconds
    QCoreApplication::processEvents(QEventLoop::AllEvents, interval);
  }
  // What was sent before is on the bus when this is answered.
  bus.interface()->isServiceRegistered(cardService);
}

std::string playerWanted(const Verb& verb) {
  return verb.player ? *verb.player : Settings(Settings::defaultFile()).player();
}

int followStatus(const Verb& verb, const QDBusConnection& bus, Headless& headless) {
  std::optional<QString> last;
  int status = EXIT_SUCCESS;
  std::optional<CardProgramme> card;
  const auto write = [&] {
    const auto report = headless.bridge().report();
    // A player that has just come has nothing to tell yet.
    if (report && !report->track && report->state == platform::FourCharCode{}) return;
    QVariantMap now = statusOf(report);
    if (card && report) addProgramme(now, card->programmeOf(report->player));
    const auto line = lineOf(verb, now);
    if (!line) {
      status = refuse({badValueStatus, line.problem().text});
      return QCoreApplication::quit();
    }
    // Time that passes is no change unless it was asked for.
    if (!verb.position) now.remove(QStringLiteral("position"));
    const QString change = verb.position ? *line : *lineOf(verb, now);
    if (last == change) return;
    last = change;
    std::cout << line->toStdString() << std::endl;
  };
  const auto changes = PlayerChanges::observe(write);
  card.emplace(bus, write);
  QTimer heartbeat;
  QObject::connect(&heartbeat, &QTimer::timeout, &heartbeat, write);
  constexpr int second = 1000;  // milliseconds
  if (verb.position) heartbeat.start(second);
  QSocketNotifier pipe(STDOUT_FILENO, QSocketNotifier::Exception);
  QObject::connect(&pipe, &QSocketNotifier::activated, &pipe, [] { QCoreApplication::quit(); });
  const EndingSignals endings;
  QTimer::singleShot(0, write);
  QCoreApplication::exec();
  return status;
}

int runOnPlayer(const Verb& verb, const virelune::WidgetEntry& widget) {
  const auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return refuse({.text = "there is no session bus"});
  using Watch = PlayerRegistry::Watch;
  Headless headless(bus, playerWanted(verb), widget, verb.follow ? Watch::always : Watch::once);
  if (verb.follow) return followStatus(verb, bus, headless);
  if (verb.player && !headless.bridge().follows(*verb.player)) {
    return refuse({.text = "no player \"" + *verb.player + "\" is on the session bus; " +
                           "\"players\" names those that are"});
  }
  if (verb.name == "follow") return refuse({.text = "no card runs"});
  const int status = runVerb(verb, headless).value_or(impossibleStatus);
  if (verb.name != "status") finish(bus, headless.bridge());
  endAtOnce(status);
}

// Without a player.

int listPlayers() {
  const auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return refuse({.text = "there is no session bus"});
  const auto players = PlayerBridge::listPlayers(bus);
  if (players.empty()) std::cout << "No music player is on the session bus.\n";
  for (const PlayerListing& player : players) {
    std::cout << player.name;
    if (!player.identity.empty()) std::cout << "  " << player.identity;
    if (!player.status.empty()) std::cout << "  " << player.status;
    std::cout << '\n';
  }
  return EXIT_SUCCESS;
}

int list(const Verb& verb, RatingsStore& ratings) {
  Listing wanted{.lovedOnly = verb.loved};
  if (verb.format == "json") {
    wanted.format = Listing::Format::json;
  } else if (verb.format == "m3u") {
    wanted.format = Listing::Format::m3u;
  } else if (verb.format) {
    return refuse({badValueStatus, "list takes --format json or m3u"});
  }
  if (verb.minimum) {
    const auto minimum = ratingFromText(*verb.minimum, 0);
    const bool isStep = *verb.minimum == "+" || *verb.minimum == "-";
    if (!minimum || isStep) return refuse({badValueStatus, "--min takes 0 to 5 stars in halves"});
    wanted.minimum = static_cast<int>(*minimum);
  }
  const auto listed = listRatings(ratings, wanted, std::cout);
  return listed ? EXIT_SUCCESS : refuse({.text = listed.problem().text});
}

int exchange(const Verb& verb, RatingsStore& ratings) {
  const std::string file = verb.value.empty() ? "-" : verb.value;
  const bool exports = verb.name == "export";
  const auto report = verb.name == "restore"  ? restoreRatings(ratings, verb.value)
                      : verb.name == "import" ? importRatings(ratings, verb.value)
                      : verb.salvage          ? salvageRatings(ratings, file)
                                              : exportRatings(ratings, file);
  if (!report) return refuse({.text = report.problem().text});
  // What is exported may go to the standard output.
  (exports ? std::cerr : std::cout) << *report << std::endl;
  if (exports) return EXIT_SUCCESS;
  const auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return EXIT_SUCCESS;
  MarksSignal::send(bus);
  bus.interface()->isServiceRegistered(cardService);
  return EXIT_SUCCESS;
}

}  // namespace

int runHeadless(const Verb& verb, const virelune::WidgetEntry& widget) {
  if (verb.name == "players") return listPlayers();
  RatingsStore ratings(RatingsStore::defaultFile());
  if (verb.name == "list") return list(verb, ratings);
  if (verb.name == "backups") {
    std::cout << listOfBackups(ratings.file()) << std::flush;
    return EXIT_SUCCESS;
  }
  const bool exchanges = verb.name == "export" || verb.name == "import" || verb.name == "restore";
  return exchanges ? exchange(verb, ratings) : runOnPlayer(verb, widget);
}

int runService(int argc, char** argv, const virelune::WidgetEntry& widget) {
  constexpr int longestRest = 60'000;  // milliseconds
  const QCoreApplication application(argc, argv);
  auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return refuse({.text = "there is no session bus"});
  Headless headless(bus, Settings(Settings::defaultFile()).player(), widget,
                    PlayerRegistry::Watch::always);
  QTimer rest;
  rest.setSingleShot(true);
  QObject::connect(&rest, &QTimer::timeout, &rest, [] { QCoreApplication::quit(); });
  QObject object;
  Service service(&object, {.actions = headless.actions(),
                            .player = headless.bridge(),
                            .ratings = &headless.ratings(),
                            .called = [&rest] { rest.start(longestRest); }});
  service.setBus(bus);
  bus.registerObject(cardObject, &object, QDBusConnection::ExportAdaptors);
  QObject::connect(bus.interface(), &QDBusConnectionInterface::serviceUnregistered, &rest,
                   [] { QCoreApplication::quit(); });
  const auto claimed =
      bus.interface()->registerService(cardService, QDBusConnectionInterface::DontQueueService,
                                       QDBusConnectionInterface::AllowReplacement);
  if (claimed.value() != QDBusConnectionInterface::ServiceRegistered) return EXIT_SUCCESS;
  rest.start(longestRest);
  const EndingSignals endings;
  QCoreApplication::exec();
  finish(bus, headless.bridge());
  return EXIT_SUCCESS;
}

}  // namespace desktop

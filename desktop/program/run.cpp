#include "desktop/program/run.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLoggingCategory>
#include <QtGui/QGuiApplication>
#include <QtGui/QIcon>
#include <QtGui/QPixmap>
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "desktop/graphics/qt_image.h"
#include "desktop/program/composition.h"
#include "desktop/program/tour.h"
#include "desktop/ratings/exchange.h"
#include "desktop/window/card_menu.h"

namespace desktop {

namespace {

constexpr double pictureScale = 2;
constexpr const char* defaultTourFolder = "virelune-tour";

int fail(const std::string& message) {
  std::cerr << "virelune-widget: " << message << '\n';
  return EXIT_FAILURE;
}

bool isSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

bool hasDisplay() { return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY"); }

std::string bundlePath() {
  const std::filesystem::path folder = QCoreApplication::applicationDirPath().toStdString();
  return (folder.parent_path() / "share" / "virelune-widget").string();
}

int listPlayers() {
  const auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return fail("there is no session bus");
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

int exchangeRatings(const CommandLine& commandLine) {
  RatingsStore ratings(RatingsStore::defaultFile());
  const auto report = commandLine.importRatings ? importRatings(ratings, *commandLine.importRatings)
                      : commandLine.salvage ? salvageRatings(ratings, *commandLine.exportRatings)
                                            : exportRatings(ratings, *commandLine.exportRatings);
  if (!report) return fail(report.problem().text);
  // What is exported may go to the standard output.
  (commandLine.exportRatings ? std::cerr : std::cout) << *report << std::endl;
  return EXIT_SUCCESS;
}

int tour(const CommandLine& commandLine, Composition& composition,
         const virelune::WidgetEntry& widget) {
  const auto taken = takeTour({.folder = commandLine.tour.value_or(defaultTourFolder),
                               .scale = commandLine.scale.value_or(pictureScale),
                               .appearance = ColorScheme().appearance(),
                               .showsLiveProgramme = widget.showsLiveProgramme},
                              *composition.card(), *composition.demoPlayer(), std::cout);
  return taken ? EXIT_SUCCESS : fail(taken.problem().text);
}

int snapshot(const CommandLine& commandLine, Card& card) {
  constexpr int patience = 600;  // milliseconds, for artwork and the colour scheme
  const ColorScheme colorScheme;
  card.window().setVisible(true);
  settle(patience);
  const bool isWritten =
      writePicture(card, *commandLine.snapshot, commandLine.scale.value_or(pictureScale),
                   colorScheme.appearance());
  return isWritten ? EXIT_SUCCESS : fail("cannot write " + *commandLine.snapshot);
}

/// The icon that task switchers show for the card.
void setWindowIcon() {
  const auto icon = std::dynamic_pointer_cast<QtImage>(
      platform::imageNamed(platform::NSImageNameApplicationIcon));
  if (icon) QGuiApplication::setWindowIcon(QIcon(QPixmap::fromImage(icon->pixels())));
}

int showWindow(const CommandLine& commandLine, Composition& composition,
               const virelune::WidgetEntry& widget) {
  CardSurface window(*composition.card(), composition.graphics(),
                     QString::fromStdString(composition.displayName()), commandLine.onTop);
  const CardMenu menu(window, composition.graphics(), widget);
  composition.useDrag(window);
  setWindowIcon();
  window.open();
  return QGuiApplication::exec();
}

}  // namespace

int runProgram(const CommandLine& commandLine, int argc, char** argv,
               const virelune::WidgetEntry& widget) {
  if (commandLine.exportRatings || commandLine.importRatings) return exchangeRatings(commandLine);
  // What is wrong with an image or with the session is told by what is shown; Qt's own remarks
  // would only bury the one line that counts.
  QLoggingCategory::setFilterRules("default.warning=false\nqt.gui.imageio*=false\nqt.svg*=false");
  if (commandLine.listPlayers) {
    const QCoreApplication application(argc, argv);
    return listPlayers();
  }

  const bool takesTour = commandLine.tour || (!hasDisplay() && !commandLine.snapshot);
  if (takesTour && (commandLine.player || commandLine.waitForPlayer)) {
    return fail("there is no display for the card; --snapshot writes it to a file");
  }
  const bool isOffScreen = takesTour || commandLine.snapshot;
  if (isOffScreen) qputenv("QT_QPA_PLATFORM", "offscreen");
  if (!isOffScreen && commandLine.scale) {
    qputenv("QT_SCALE_FACTOR", QByteArray::number(*commandLine.scale));
  }
  const QGuiApplication application(argc, argv);
  QGuiApplication::setDesktopFileName("org.virelune.Virelune.Widget");

  auto bundle = openBundle(bundlePath());
  if (!bundle) return fail("the resources are missing: " + bundlePath());
  std::optional<QDBusConnection> bus;
  if (!takesTour && !commandLine.demo) {
    bus = QDBusConnection::sessionBus();
    if (!bus->isConnected()) {
      return fail("there is no session bus; --demo shows the built-in player");
    }
  }
  Composition composition({.bundle = std::move(bundle),
                           .widget = widget.principalClasses,
                           .bus = bus,
                           .playerName = commandLine.player,
                           .demoStandsIn = !commandLine.player && !commandLine.waitForPlayer,
                           .streamHost = commandLine.streamHost,
                           .storeHost = commandLine.storeHost});
  if (composition.card() == nullptr) return fail("the resources name no widget");
  if (takesTour) return tour(commandLine, composition, widget);
  if (commandLine.player && !commandLine.waitForPlayer && !composition.isPlayerRunning()) {
    return fail("no player \"" + *commandLine.player +
                "\" is on the session bus; --list-players names those that are");
  }
  if (bus && composition.demoPlayer() != nullptr) {
    std::cout << "No music player is on the session bus; this is the demo player." << std::endl;
  }
  return commandLine.snapshot ? snapshot(commandLine, *composition.card())
                              : showWindow(commandLine, composition, widget);
}

}  // namespace desktop

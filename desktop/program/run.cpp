#include "desktop/program/run.h"

#include <malloc.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QLoggingCategory>
#include <QtGui/QGuiApplication>
#include <QtGui/QIcon>
#include <QtGui/QPixmap>
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>

#include "desktop/access/accessible_card.h"
#include "desktop/access/keyboard.h"
#include "desktop/actions/player_actions.h"
#include "desktop/files/module.h"
#include "desktop/files/settings.h"
#include "desktop/graphics/qt_image.h"
#include "desktop/program/card_actions.h"
#include "desktop/program/card_showing.h"
#include "desktop/program/composition.h"
#include "desktop/program/daily_backup.h"
#include "desktop/program/ending.h"
#include "desktop/program/hand_on.h"
#include "desktop/program/instance.h"
#include "desktop/program/tour.h"
#include "desktop/program/trace.h"
#include "desktop/program/tray_program.h"
#include "desktop/remote/service.h"
#include "desktop/window/card_menu.h"
#include "desktop/window/localized.h"
#include "desktop/window/tool_tip.h"

namespace desktop {

namespace {

constexpr double pictureScale = 2;
constexpr const char* updateDelay = "QT_QPA_UPDATE_IDLE_TIME";
constexpr const char* noSharedMemory = "QT_XCB_NO_MITSHM";
constexpr const char* defaultTourFolder = "virelune-tour";

int fail(const std::string& message) {
  std::cerr << "virelune-widget: " << message << '\n';
  return EXIT_FAILURE;
}

int tour(const CommandLine& commandLine, Composition& composition,
         const virelune::WidgetEntry& widget) {
  bool isOnAir = false;
  widget.setLiveProgrammeHandler([&] { isOnAir = widget.liveProgramme().has_value(); });
  const auto taken = takeTour({.folder = commandLine.tour.value_or(defaultTourFolder),
                               .scale = commandLine.scale.value_or(pictureScale),
                               .appearance = DesktopStyle().appearance(),
                               .showsLiveProgramme = [&isOnAir] { return isOnAir; }},
                              *composition.card(), *composition.player().demoPlayer(), std::cout);
  widget.setLiveProgrammeHandler(nullptr);
  return taken ? EXIT_SUCCESS : fail(taken.problem().text);
}

int snapshot(const CommandLine& commandLine, Card& card) {
  constexpr int patience = 600;  // milliseconds, for artwork and the colour scheme
  const DesktopStyle style;
  card.window().setVisible(true);
  settle(patience);
  const bool isWritten = writePicture(card, *commandLine.snapshot,
                                      commandLine.scale.value_or(pictureScale), style.appearance());
  return isWritten ? EXIT_SUCCESS : fail("cannot write " + *commandLine.snapshot);
}

/// The icon that task switchers show for the card.
void setWindowIcon() {
  const auto icon = std::dynamic_pointer_cast<QtImage>(
      platform::imageNamed(platform::NSImageNameApplicationIcon));
  if (icon) QGuiApplication::setWindowIcon(QIcon(QPixmap::fromImage(icon->pixels())));
}

/// Pixels per point: as the user set them, else as large as the desktop wants texts.
std::optional<double> wantedScale(const CommandLine& commandLine, const Settings& settings) {
  if (commandLine.scale) return commandLine.scale;
  return settings.scale() ? settings.scale() : settings.textScale();
}

/// Remembers how large the desktop wants texts. True when the card is to be another size for that.
bool changesSize(double textScale, const CommandLine& commandLine, Settings& settings) {
  const auto before = wantedScale(commandLine, settings);
  const double wanted = std::clamp(textScale, 1.0, 4.0);
  if (settings.textScale().value_or(1) == wanted) return false;
  settings.setTextScale(wanted);
  // What cannot be kept would not be known after a new start either.
  const Settings kept(Settings::defaultFile());
  return kept.textScale() == wanted && wantedScale(commandLine, settings) != before;
}

int showWindow(const CommandLine& commandLine, Composition& composition, Settings& settings,
               Instance& instance, LostDisplay& display, const virelune::WidgetEntry& widget) {
  PlayerSource& player = composition.player();
  const bool onTop = commandLine.onTop || settings.isOnTop();
  CardSurface window(*composition.card(), composition.graphics(),
                     {.title = QString::fromStdString(composition.displayName()),
                      .onTop = onTop,
                      .settings = &settings,
                      .cardNumber = instance.number()});
  if (commandLine.onTop && !window.canStayOnTop()) {
    std::cerr << "virelune-widget: this desktop does not let programs stay on top" << std::endl;
  }
  const Trace trace(window);
  CardShowing showing(window, settings, player);
  Actions actions;
  bool restarts = false;
  std::optional<CardMenu> menu;
  FileChooser files(QDBusConnection::sessionBus());
  TrayProgram tray(QDBusConnection::sessionBus(), [&showing] { showing.setHiddenByHand(false); });
  window.setCloseHandler([&] {
    if (tray.isShown()) showing.setHiddenByHand(true);
    return tray.isShown();
  });
  const CardParts parts{
      .surface = window,
      .card = *composition.card(),
      .player = player,
      .settings = settings,
      .widget = widget,
      .files = files,
      .restart =
          [&restarts] {
            restarts = true;
            QGuiApplication::quit();
          },
      .showKeys = [&] { menu->open(window.geometry().center(), keyItems(actions)); },
      .showing = showing,
      .tray = tray};
  addPlayerActions(actions, player, widget);
  addCardActions(actions, parts);
  ToolTip toolTip(window, composition.graphics());
  menu.emplace(window, composition.graphics(), [&] { return menuItems(actions, parts); });
  Keyboard keyboard(window, *composition.card(), actions, player);
  const AccessibleCard accessible(window, *composition.card(), keyboard);
  Service service(&instance, {.actions = actions,
                              .player = player,
                              .ratings = composition.ratings(),
                              .label = localizedString,
                              .programme = widget.liveProgramme});
  widget.setLiveProgrammeHandler([&service] { service.update(); });
  composition.useDrag(window);
  setWindowIcon();
  instance.setHandler([&](const CardRequest& request) {
    if (request.demo) player.playDemo();
    if (request.player) {
      settings.setPlayer(*request.player);
      player.followPlayer(*request.player);
    }
    if (request.onTop) window.setOnTop(true);
    showing.setHiddenByHand(false);
    window.bringToFront(request.activationToken);
  });
  QObject::connect(&player, &PlayerSource::playerHeard, &window, [&settings, &player] {
    if (player.isRunning()) settings.setLastPlayer(player.desktopEntry());
  });
  QObject::connect(&player, &PlayerSource::busReturned, &window, [&](const QDBusConnection& bus) {
    instance.claim(bus);
    service.setBus(bus);
  });
  service.setBus(QDBusConnection::sessionBus());
  composition.loginItems().followMovedProgram();
  const EndingSignals endings;
  const DailyBackup backup(RatingsStore::defaultFile());
  display.setLastAct([&window] { window.rememberPlace(); });
  window.open();
  showing.update();
  // The icon is the first card's, which is the one that other programs reach.
  window.setTextScaleHandler([&](double scale) {
    if (changesSize(scale, commandLine, settings)) parts.restart();
  });
  tray.setWanted(settings.showsStatusIcon() && instance.number() == 1);
  const int status = QGuiApplication::exec();
  instance.setHandler(nullptr);
  widget.setLiveProgrammeHandler(nullptr);
  return restarts ? restartStatus : status;
}

}  // namespace

int runProgram(const CommandLine& commandLine, int argc, char** argv,
               const virelune::WidgetEntry& widget) {
#ifdef __GLIBC__
  // A cover that goes gives its memory back. Left to itself the library would keep, from the first
  // large one on, room for others of its size.
  constexpr int large = 128 * 1024;
  ::mallopt(M_MMAP_THRESHOLD, large);
  ::mallopt(M_TRIM_THRESHOLD, large);
#endif
  // What is wrong with an image or with the session is told by what is shown; Qt's own remarks
  // would only bury the one line that counts.
  QLoggingCategory::setFilterRules(
      "default.warning=false\nqt.gui.imageio*=false\nqt.svg*=false\nqt.accessibility*=false");

  const bool takesTour = commandLine.takesTour();
  if (takesTour && (commandLine.player || commandLine.waitForPlayer)) {
    return fail("there is no display for the card; --snapshot writes it to a file");
  }
  const bool isOffScreen = takesTour || commandLine.snapshot;
  std::optional<Settings> settings;
  settings.emplace(isOffScreen ? std::filesystem::path() : Settings::defaultFile());
  const auto scale = wantedScale(commandLine, *settings);
  if (isOffScreen) qputenv("QT_QPA_PLATFORM", "offscreen");
  if (!isOffScreen && scale) qputenv("QT_SCALE_FACTOR", QByteArray::number(*scale));
  // What a player signals is painted at once, and not five milliseconds later.
  if (!qEnvironmentVariableIsSet(updateDelay)) qputenv(updateDelay, "0");
  // The card paints little and seldom. Shared memory would have it wait for the X server each time,
  // until that has read what was painted before.
  const bool isDecided = qEnvironmentVariableIsSet(noSharedMemory);
  if (!isDecided) qputenv(noSharedMemory, "1");
  LostDisplay display;
  const QGuiApplication application(argc, argv);
  if (!isDecided) qunsetenv(noSharedMemory);  // other programs decide for themselves
  QGuiApplication::setDesktopFileName("org.virelune.Virelune.Widget");

  auto bundle = openBundle(resourceFolder());
  if (!bundle) return fail("the resources are missing: " + resourceFolder().string());
  auto bus = QDBusConnection::sessionBus();
  Instance instance;
  if (!takesTour && bus.isConnected()) {
    if (!isOffScreen) instance.claim(bus);
    if (instance.number() > 1 && !commandLine.newCard) {
      // Another start was faster.
      if (const auto status = handOn(bus, commandLine)) return *status;
    }
  } else if (!takesTour && !commandLine.demo) {
    return fail("there is no session bus; --demo shows the built-in player");
  }
  if (commandLine.player) settings->setPlayer(*commandLine.player);
  const bool isDemo = takesTour || commandLine.demo;
  Composition composition(
      {.bundle = std::move(bundle),
       .widget = widget.principalClasses,
       .bus = takesTour || !bus.isConnected() ? std::nullopt : std::optional(bus),
       .demo = isDemo,
       .playerName = commandLine.player.value_or(settings->player()),
       .lastPlayer = settings->lastPlayer(),
       .demoStandsIn = !commandLine.player && !commandLine.waitForPlayer,
       .writesLibraries = !commandLine.noLibrary && settings->writesLibraries(),
       .streamHost = commandLine.streamHost,
       .storeHost = commandLine.storeHost});
  if (composition.card() == nullptr) return fail("the resources name no widget");
  if (takesTour) return tour(commandLine, composition, widget);
  PlayerSource& player = composition.player();
  if (commandLine.player && !commandLine.waitForPlayer && !player.hasPlayer(*commandLine.player)) {
    const std::string problem = "no player \"" + *commandLine.player +
                                "\" is on the session bus; --list-players names those that are";
    if (commandLine.snapshot) return fail(problem);
    std::cerr << "virelune-widget: " << problem << std::endl;
  }
  if (!isDemo && player.demoPlayer() != nullptr) {
    std::cout << "No music player runs and none is installed; this is the demo player."
              << std::endl;
  }
  if (commandLine.snapshot) return snapshot(commandLine, *composition.card());
  return showWindow(commandLine, composition, *settings, instance, display, widget);
}

}  // namespace desktop

#include "desktop/program/ending.h"

#include <fcntl.h>
#include <unistd.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QtGlobal>
#include <array>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <string>

namespace desktop {

namespace {

constexpr std::array endings{SIGTERM, SIGINT, SIGHUP};

// A handler has nothing but globals to reach for.
std::array<int, 2> signalPipe{-1, -1};

void noteSignal(int) {
  for (const int ending : endings) std::signal(ending, SIG_DFL);
  const char byte = 0;
  [[maybe_unused]] const auto written = ::write(signalPipe[1], &byte, 1);
}

std::function<void()> lastAct;

std::string displayName() {
  const char* wayland = std::getenv("WAYLAND_DISPLAY");
  const char* x11 = std::getenv("DISPLAY");
  return wayland != nullptr && *wayland != 0 ? wayland : x11 != nullptr ? x11 : "";
}

/// In the place of all that Qt has to say about it.
void tellDisplayIsMissing(QtMsgType type, const QMessageLogContext&, const QString&) {
  if (type != QtFatalMsg) return;
  std::cerr << "virelune-widget: cannot reach the display " << displayName() << std::endl;
  std::_Exit(EXIT_FAILURE);
}

void endWithoutDisplay() {
  if (!lastAct) return;
  lastAct();
  std::cerr << "virelune-widget: the display has gone" << std::endl;
}

}  // namespace

EndingSignals::EndingSignals() {
  if (::pipe2(signalPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
  notifier_.emplace(signalPipe[0], QSocketNotifier::Read);
  connect(&*notifier_, &QSocketNotifier::activated, this, [] { QCoreApplication::quit(); });
  for (const int ending : endings) {
    // What was started to be deaf to one of them stays so (nohup).
    if (std::signal(ending, &noteSignal) == SIG_IGN) std::signal(ending, SIG_IGN);
  }
}

EndingSignals::~EndingSignals() {
  for (const int ending : endings) std::signal(ending, SIG_DFL);
  notifier_.reset();
  for (int& end : signalPipe) {
    if (end >= 0) ::close(end);
    end = -1;
  }
}

LostDisplay::LostDisplay() { qInstallMessageHandler(&tellDisplayIsMissing); }

LostDisplay::~LostDisplay() {
  qInstallMessageHandler(nullptr);
  lastAct = nullptr;
}

void LostDisplay::setLastAct(std::function<void()> act) {
  qInstallMessageHandler(nullptr);
  lastAct = std::move(act);
  static const bool isPlanned = std::atexit(&endWithoutDisplay) == 0;
  static_cast<void>(isPlanned);
}

}  // namespace desktop

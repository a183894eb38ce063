#include "desktop/program/tray_program.h"

#include <QtDBus/QDBusConnectionInterface>
#include <utility>

#include "desktop/files/module.h"

namespace desktop {

namespace {

constexpr const char* iconFile = "images/NSApplicationIcon.svg";
const auto statusArea = QStringLiteral("org.kde.StatusNotifierWatcher");

}  // namespace

TrayProgram::TrayProgram(const QDBusConnection& bus, std::function<void()> gone)
    : bus_(bus), gone_(std::move(gone)) {
  program_.setStandardOutputFile(QProcess::nullDevice());
  program_.setStandardErrorFile(QProcess::nullDevice());
  connect(&program_, &QProcess::finished, this, [this] { gone_(); });
  connect(&program_, &QProcess::errorOccurred, this, [this] {
    if (!isRunning()) gone_();
  });
  watcher_.setConnection(bus_);
  watcher_.addWatchedService(statusArea);
  watcher_.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
  connect(&watcher_, &QDBusServiceWatcher::serviceUnregistered, this, [this] { gone_(); });
}

TrayProgram::~TrayProgram() {
  program_.disconnect(this);
  setWanted(false);
}

bool TrayProgram::hasStatusArea() const {
  return bus_.isConnected() && bus_.interface()->isServiceRegistered(statusArea);
}

void TrayProgram::setWanted(bool wanted) {
  isWanted_ = wanted;
  if (wanted && !isRunning()) {
    program_.start(QString::fromStdString(moduleFile("virelune-tray").string()),
                   {QString::fromStdString((resourceFolder() / iconFile).string())});
  } else if (!wanted && isRunning()) {
    constexpr int patience = 500;  // milliseconds
    program_.terminate();
    if (!program_.waitForFinished(patience)) program_.kill();
  }
}

}  // namespace desktop

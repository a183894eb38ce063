#include "tests/integration/processes.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QProcessEnvironment>
#include <QtCore/QTimer>
#include <QtDBus/QDBusConnectionInterface>
#include <stdexcept>

namespace tests {

namespace {

QProcessEnvironment processEnvironment(const Environment& additions) {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  for (const auto& [name, value] : additions) environment.insert(name, value);
  return environment;
}

QString nextConnectionName() {
  static int count = 0;
  return QStringLiteral("test-bus-%1").arg(++count);
}

}  // namespace

bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds patience) {
  QElapsedTimer timer;
  timer.start();
  QEventLoop loop;
  QTimer tick;
  QObject::connect(&tick, &QTimer::timeout, &loop, &QEventLoop::quit);
  tick.start(std::chrono::milliseconds(10));
  while (!condition()) {
    if (timer.hasExpired(patience.count())) return false;
    loop.exec();
  }
  return true;
}

Program::Program(const QString& name, const QStringList& arguments,
                 const Environment& environment) {
  process_.setProcessEnvironment(processEnvironment(environment));
  process_.setStandardErrorFile(QProcess::nullDevice());
  process_.start(name, arguments);
  if (!process_.waitForStarted()) throw std::runtime_error("cannot start " + name.toStdString());
}

Program::~Program() {
  process_.kill();
  process_.waitForFinished();
}

void Program::send(int signal) const { ::kill(static_cast<pid_t>(process_.processId()), signal); }

int Program::exitStatus() {
  const bool hasEnded =
      process_.state() == QProcess::NotRunning || process_.waitForFinished(10'000);
  return hasEnded && process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
}

QString Program::readLine() {
  while (!process_.canReadLine() && process_.waitForReadyRead()) {
  }
  return QString::fromUtf8(process_.readLine()).trimmed();
}

QString outputOf(const QString& name, const QStringList& arguments,
                 const Environment& environment) {
  QProcess process;
  process.setProcessEnvironment(processEnvironment(environment));
  process.start(name, arguments);
  process.waitForFinished();
  return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

PrivateBus::PrivateBus()
    : daemon_("dbus-daemon", {"--session", "--print-address", "--nofork", "--nopidfile"}),
      address_(daemon_.readLine()),
      connectionName_(nextConnectionName()),
      connection_(QDBusConnection::connectToBus(address_, connectionName_)) {
  if (!connection_.isConnected()) throw std::runtime_error("cannot connect to the test's bus");
}

PrivateBus::~PrivateBus() { QDBusConnection::disconnectFromBus(connectionName_); }

Environment PrivateBus::environment() const { return {{"DBUS_SESSION_BUS_ADDRESS", address_}}; }

QString PrivateBus::playerctl(const QStringList& arguments) const {
  return outputOf("playerctl", arguments, environment());
}

bool PrivateBus::hasName(const QString& name) const {
  return connection_.interface()->isServiceRegistered(name).value();
}

Environment atHome(Environment environment, const TemporaryFolder& home) {
  for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"}) {
    environment[name] = home.path().c_str();
  }
  environment["XDG_DATA_DIRS"] = "/none";
  return environment;
}

Display::Display(const PrivateBus& bus)
    : server_("Xvfb", {"-displayfd", "1", "-screen", "0", "1000x600x24", "-ac"}),
      environment_(bus.environment()) {
  environment_["DISPLAY"] = ':' + server_.readLine();
  environment_["QT_QPA_PLATFORM"] = "xcb";
}

QString Display::xdotool(const QString& commands) const {
  return outputOf("xdotool", commands.split(' '), environment_).section('\n', -1);
}

QString Display::window(const char* windowClass) const {
  return xdotool(QString("search --sync --onlyvisible --class ") + windowClass);
}

}  // namespace tests

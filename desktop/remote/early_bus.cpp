#include "desktop/remote/early_bus.h"

#include <QtCore/QCoreApplication>

namespace desktop {

std::optional<int> askEarly(
    int argc, char** argv,
    const std::function<std::optional<int>(const QDBusConnection& bus)>& question) {
  const QCoreApplication application(argc, argv);
  const auto name = QStringLiteral("virelune-start");
  {
    const auto bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
    if (bus.isConnected()) {
      if (const auto answer = question(bus)) return answer;
    }
  }
  QDBusConnection::disconnectFromBus(name);
  return std::nullopt;
}

}  // namespace desktop

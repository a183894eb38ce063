#include "desktop/program/instance.h"

#include <QtDBus/QDBusConnectionInterface>

namespace desktop {

namespace {

constexpr int mostCards = 100;

QString nameOf(int number) {
  return number == 1 ? cardService : cardService + QStringLiteral(".Card%1").arg(number);
}

}  // namespace

void Instance::claim(const QDBusConnection& bus) {
  QDBusConnection connection = bus;
  number_ = 0;
  connection.registerObject(cardObject, this,
                            QDBusConnection::ExportAllSlots | QDBusConnection::ExportAdaptors);
  for (int number = 1; number <= mostCards && number_ == 0; ++number) {
    // What answers without a window gives way.
    const auto claimed = connection.interface()->registerService(
        nameOf(number), QDBusConnectionInterface::ReplaceExistingService,
        QDBusConnectionInterface::DontAllowReplacement);
    if (claimed.value() == QDBusConnectionInterface::ServiceRegistered) number_ = number;
  }
}

void Instance::Show(const QVariantMap& request) {
  if (handler_) handler_(requestOf(request));
}

}  // namespace desktop

#include "moc_instance.cpp"

#include "desktop/session/file_chooser.h"

#include <QtCore/QUrl>
#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusMessage>
#include <utility>

namespace desktop {

namespace {

const auto service = QStringLiteral("org.freedesktop.portal.Desktop");
const auto object = QStringLiteral("/org/freedesktop/portal/desktop");
const auto interface = QStringLiteral("org.freedesktop.portal.FileChooser");
const auto requestInterface = QStringLiteral("org.freedesktop.portal.Request");

}  // namespace

bool FileChooser::isThere() const {
  auto* daemon = bus_.interface();
  if (daemon == nullptr) return false;
  if (daemon->isServiceRegistered(service)) return true;
  const QDBusMessage reply = daemon->call(QStringLiteral("ListActivatableNames"));
  return reply.arguments().value(0).toStringList().contains(service);
}

void FileChooser::open(const std::string& title, Chosen chosen) {
  ask(QStringLiteral("OpenFile"), title, {}, std::move(chosen));
}

void FileChooser::save(const std::string& title, const std::string& name, Chosen chosen) {
  ask(QStringLiteral("SaveFile"), title,
      {{QStringLiteral("current_name"), QString::fromStdString(name)}}, std::move(chosen));
}

void FileChooser::ask(const QString& method, const std::string& title, QVariantMap options,
                      Chosen chosen) {
  QDBusConnection bus = bus_;
  const auto response = QStringLiteral("Response");
  if (!request_.isEmpty()) {
    bus.disconnect(service, request_, requestInterface, response, this,
                   SLOT(responded(uint, QVariantMap)));
  }
  // The answer may come before the reply that would name its object, so the name is ours.
  const QString token = QStringLiteral("virelune%1").arg(++count_);
  const QString sender = bus.baseService().mid(1).replace('.', '_');
  request_ = object + QStringLiteral("/request/") + sender + '/' + token;
  chosen_ = std::move(chosen);
  bus.connect(service, request_, requestInterface, response, this,
              SLOT(responded(uint, QVariantMap)));
  options.insert(QStringLiteral("handle_token"), token);
  QDBusMessage call = QDBusMessage::createMethodCall(service, object, interface, method);
  call << QString() << QString::fromStdString(title) << options;
  bus.send(call);
}

void FileChooser::responded(uint response, const QVariantMap& results) {
  request_.clear();
  const auto chosen = std::exchange(chosen_, nullptr);
  const QUrl address(results.value(QStringLiteral("uris")).toStringList().value(0));
  if (response == 0 && address.isLocalFile() && chosen) {
    chosen(address.toLocalFile().toStdString());
  }
}

}  // namespace desktop

#include "moc_file_chooser.cpp"

// The baselines of a second start and of a verb: a program without a display that connects to the
// session bus, and with an argument makes one call there.
#include <QtCore/QCoreApplication>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <cstdlib>

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  const auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return EXIT_FAILURE;
  if (argc == 1) return EXIT_SUCCESS;
  const QString name = QStringLiteral("org.freedesktop.DBus");
  const auto reply = bus.call(QDBusMessage::createMethodCall(
      name, QStringLiteral("/org/freedesktop/DBus"), name, QStringLiteral("GetId")));
  return reply.type() == QDBusMessage::ReplyMessage ? EXIT_SUCCESS : EXIT_FAILURE;
}

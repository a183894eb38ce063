// The baseline of a second start: a program without a display that connects to the session bus.
#include <QtCore/QCoreApplication>
#include <QtDBus/QDBusConnection>
#include <cstdlib>

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  return QDBusConnection::sessionBus().isConnected() ? EXIT_SUCCESS : EXIT_FAILURE;
}

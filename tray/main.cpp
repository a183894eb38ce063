// The icon in the desktop's status area. The card starts it, and it ends when the card does.
#include <QtCore/QCoreApplication>
#include <QtDBus/QDBusConnection>
#include <cstdlib>
#include <iostream>

#include "tray/tray_icon.h"

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  if (!QDBusConnection::sessionBus().isConnected()) {
    std::cerr << "virelune-tray: there is no session bus" << std::endl;
    return EXIT_FAILURE;
  }
  const tray::TrayIcon icon(QDBusConnection::sessionBus(), QCoreApplication::arguments().value(1));
  return QCoreApplication::exec();
}

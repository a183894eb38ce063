// The icon in the desktop's status area. The card starts it, and it ends when the card does.
#include <QtDBus/QDBusConnection>
#include <QtWidgets/QApplication>
#include <cstdlib>
#include <iostream>

#include "tray/tray_icon.h"

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setDesktopFileName("org.virelune.Virelune.Widget");
  if (!QDBusConnection::sessionBus().isConnected()) {
    std::cerr << "virelune-tray: there is no session bus" << std::endl;
    return EXIT_FAILURE;
  }
  const tray::TrayIcon icon(QDBusConnection::sessionBus(), QApplication::arguments().value(1));
  return QApplication::exec();
}

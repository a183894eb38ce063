#include <gmock/gmock.h>

#include <QtCore/QLoggingCategory>
#include <QtGui/QGuiApplication>

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  QLoggingCategory::setFilterRules("qt.gui.imageio*=false\nqt.svg*=false");
  return RUN_ALL_TESTS();
}

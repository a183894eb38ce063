// The tests with real components paint off-screen; the program itself gets a display of its own.
#include <gmock/gmock.h>

#include <QtGui/QGuiApplication>

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}

#include <gmock/gmock.h>

#include <QtCore/QLoggingCategory>
#include <QtGui/QGuiApplication>

// Or the leak check reads tables of plug-ins' thread-local storage that the C library has moved
// meanwhile, and falls over them.
extern "C" const char* __asan_default_options() {  // NOLINT(bugprone-reserved-identifier)
  return "intercept_tls_get_addr=0";
}

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  QLoggingCategory::setFilterRules("qt.gui.imageio*=false\nqt.svg*=false");
  return RUN_ALL_TESTS();
}

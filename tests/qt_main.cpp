#include <gmock/gmock.h>

#include <QtCore/QLoggingCategory>
#include <QtGui/QGuiApplication>

// The leak check falls over the thread-local storage of threads that end meanwhile, so it leaves
// that aside, and with it what GLib alone keeps there.
extern "C" const char* __lsan_default_options() {  // NOLINT(bugprone-reserved-identifier)
  return "use_tls=0:print_suppressions=0";
}
extern "C" const char* __lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
  return "leak:libglib-2.0";
}

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  QLoggingCategory::setFilterRules("qt.gui.imageio*=false\nqt.svg*=false");
  return RUN_ALL_TESTS();
}

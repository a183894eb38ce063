#include <gmock/gmock.h>

#include <QtCore/QLoggingCategory>
#include <QtGui/QGuiApplication>

// The leak check reads tables of thread-local storage, of plug-ins and of threads, that the C
// library has moved or freed meanwhile, and falls over them. So tests among threads of real
// components leave it to the programs that they start.
extern "C" [[gnu::visibility("default")]] const char*
__asan_default_options() {  // NOLINT(bugprone-reserved-identifier)
#ifdef VIRELUNE_PROGRAM
  return "detect_leaks=0";
#else
  return "intercept_tls_get_addr=0";
#endif
}

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  QLoggingCategory::setFilterRules("qt.gui.imageio*=false\nqt.svg*=false");
  return RUN_ALL_TESTS();
}

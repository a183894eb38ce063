#include <QtCore/QtGlobal>

#include "desktop/program/headless.h"
#include "widget/widget_entry.h"

extern "C" Q_DECL_EXPORT int virelune_run_headless(const desktop::Verb* verb, int argc,
                                                   char** argv) {
  const auto widget = virelune::widgetEntry();
  return verb != nullptr ? desktop::runHeadless(*verb, widget)
                         : desktop::runService(argc, argv, widget);
}

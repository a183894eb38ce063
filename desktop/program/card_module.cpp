#include "desktop/program/card_module.h"

#include <QtCore/QtGlobal>

#include "desktop/program/run.h"
#include "widget/widget_entry.h"

extern "C" Q_DECL_EXPORT int virelune_run_card(const desktop::CommandLine& commandLine, int argc,
                                               char** argv) {
  return desktop::runProgram(commandLine, argc, argv, virelune::widgetEntry());
}

// The program without a window: verbs where no card runs, and the service that other programs call.
#pragma once

#include "desktop/remote/verb.h"
#include "widget/widget_entry.h"

namespace desktop {

/// Does a verb and answers its exit status. Needs a QCoreApplication, which the service makes.
int runHeadless(const Verb& verb, const virelune::WidgetEntry& widget);

/// Answers on the bus in the place of a card, until one comes or nobody has asked for a minute.
int runService(int argc, char** argv, const virelune::WidgetEntry& widget);

/// As the module exports them; no verb is the service.
using RunHeadless = int(const Verb* verb, int argc, char** argv);
inline constexpr const char* headlessModule = "headless";
inline constexpr const char* runHeadlessName = "virelune_run_headless";

}  // namespace desktop

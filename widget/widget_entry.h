// The widget's way in: what the extension host is given to create the widget from, and what it
// asks of it besides.
#pragma once

#include <functional>

#include "platform/application/extension.h"

namespace virelune {

/// What a program that shows the widget is given of it.
struct WidgetEntry {
  /// The controllers that the bundle can name as its principal class, by class name.
  platform::PrincipalClasses principalClasses;
  std::function<bool()> isLaunchingAtLogin;
  std::function<bool(bool)> setLaunchingAtLogin;  ///< true once tried, whatever came of it
  /// True while the controller made last shows the live station and knows what is on air.
  std::function<bool()> showsLiveProgramme;
};
WidgetEntry widgetEntry();

}  // namespace virelune

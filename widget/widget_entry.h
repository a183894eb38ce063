// The widget's way in: what the extension host is given to create the widget from, and what it
// asks of it besides.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "platform/application/extension.h"
#include "widget/live_programme.h"

namespace virelune {

/// What a program that shows the widget is given of it.
struct WidgetEntry {
  /// The controllers that the bundle can name as its principal class, by class name.
  platform::PrincipalClasses principalClasses;
  std::function<bool()> isLaunchingAtLogin;
  std::function<bool(bool)> setLaunchingAtLogin;  ///< true once tried, whatever came of it
  // Marks of the current track, or of its album, as clicks set them; false without a player to send
  // them to. A rating is limited to 0…100.
  std::function<bool(std::int64_t rating, bool album)> setRating;
  std::function<bool(bool loved, bool album)> setLoved;
  /// The rating from which love goes with stars by itself; none while that is off.
  std::function<std::optional<std::int64_t>()> loveRule;
  /// False when it cannot be kept.
  std::function<bool(std::optional<std::int64_t> from)> setLoveRule;
  /// What is on air while the controller made last shows the live station; none while it does not
  /// know.
  std::function<std::optional<LiveProgramme>()> liveProgramme;
  /// The handler is called when that may have changed, until another takes its place.
  std::function<void(std::function<void()>)> setLiveProgrammeHandler;
};
WidgetEntry widgetEntry();

}  // namespace virelune

// How the panels present an application: its icon, a line of text, and a click that launches it.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/foundation/attributed_string.h"
#include "platform/foundation/image.h"

namespace virelune {

/// The icon of an installed application, the widget's own when it has none; null when the
/// application is not installed.
std::shared_ptr<platform::NSImage> applicationImage(const std::string& bundleIdentifier);

/// Asks the workspace to launch an application, or to bring it forward; what comes of it is not
/// waited for. False without a workspace.
bool launchApplication(const std::string& bundleIdentifier);

/// A text in the widget's text colour and the system font of a size in points; none when the
/// text is empty or the colour or the font is missing.
std::optional<platform::NSAttributedString> titleWithText(const std::optional<std::string>& text,
                                                          double fontSize);

}  // namespace virelune

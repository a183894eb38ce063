#include "panels/application_item.h"

#include "extensions/colors.h"
#include "platform/application/bundle.h"
#include "platform/application/workspace.h"
#include "platform/foundation/font.h"

namespace virelune {

using platform::NSWorkspace;

std::shared_ptr<platform::NSImage> applicationImage(const std::string& bundleIdentifier) {
  NSWorkspace* workspace = NSWorkspace::sharedWorkspace();
  if (workspace == nullptr) return nullptr;
  const auto path = workspace->absolutePathForAppBundleWithIdentifier(bundleIdentifier);
  if (!path || path->empty()) return nullptr;
  const auto icon = workspace->iconForFile(*path);
  return icon ? icon : platform::imageNamed(platform::NSImageNameApplicationIcon);
}

bool launchApplication(const std::string& bundleIdentifier) {
  NSWorkspace* workspace = NSWorkspace::sharedWorkspace();
  if (workspace == nullptr) return false;
  workspace->launchAppWithBundleIdentifier(bundleIdentifier, platform::NSWorkspaceLaunchAsync);
  return true;
}

std::optional<platform::NSAttributedString> titleWithText(const std::optional<std::string>& text,
                                                          double fontSize) {
  const auto color = vl_widgetTextColor();
  const auto font = platform::NSFont::systemFontOfSize(fontSize);
  if (!text || text->empty() || !color || !font) return std::nullopt;
  return platform::NSAttributedString{
      *text,
      {{platform::NSForegroundColorAttributeName, *color}, {platform::NSFontAttributeName, *font}}};
}

}  // namespace virelune

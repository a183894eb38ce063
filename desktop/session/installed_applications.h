// The applications that are installed: finding them, their icons, and starting them.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "desktop/result.h"

namespace desktop {

/// The identifier of this program's own entry.
inline constexpr const char* ownDesktopEntry = "org.virelune.Virelune.Widget.desktop";

/// Answers from the desktop entries of the user and the system. An application is named by the path
/// of its entry; none that is hidden, or whose program is missing, is answered. Main thread only.
class InstalledApplications {
 public:
  virtual ~InstalledApplications() = default;

  /// The application with an identifier, or with its last component ("org.videolan.VLC" finds
  /// "vlc.desktop"), ignoring case.
  virtual std::optional<std::string> pathForIdentifier(const std::string& identifier) = 0;
  /// The user's application for a media type or "x-scheme-handler/…".
  virtual std::optional<std::string> pathForType(const std::string& type) = 0;
  /// The first application, by name, that is listed as an audio or video player.
  virtual std::optional<std::string> pathForPlayer() = 0;
  /// The name of an application's icon in the icon theme, or the path of its file.
  virtual std::optional<std::string> iconName(const std::string& path) = 0;
  /// Starts an application by itself, with an address to open unless that is empty. False when it
  /// cannot be started.
  virtual bool launch(const std::string& path, const std::string& address) = 0;
};

/// The function that the module exports under this name: what it answers is the caller's.
using MakeInstalledApplications = InstalledApplications*();
inline constexpr const char* makeInstalledApplicationsName = "virelune_installed_applications";

}  // namespace desktop

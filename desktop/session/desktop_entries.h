// Installed applications: desktop entries, the defaults for types, icons, and starting programs
// (freedesktop.org: Desktop Entry 1.5, MIME Applications Associations 1.0, Icon Theme 0.13).
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace desktop {

/// An application's desktop entry, as far as it is used here.
struct DesktopEntry {
  std::string identifier;  ///< file name without ".desktop"; folders become "-"
  std::string path;
  std::string name;
  std::string exec;  ///< the command line as written, with its field codes
  std::string tryExec;
  std::string icon;              ///< a name in the icon theme, or an absolute path
  std::string workingDirectory;  ///< may be empty
  bool needsTerminal = false;
  std::vector<std::string> types;  ///< media types and "x-scheme-handler/…"
  std::map<std::string, std::string, std::less<>> vendorKeys;  ///< those that begin with "X-"
};

/// Reads the text of an entry. None when it is no application, is marked hidden (removed), or
/// has no command.
std::optional<DesktopEntry> parseDesktopEntry(std::string_view text);

/// The entry of a file; none also when its program is not there (TryExec).
std::optional<DesktopEntry> desktopEntryAtPath(const std::string& path,
                                               const std::string& identifier);

/// The entry with an identifier, or with its last component ("org.videolan.VLC" finds
/// "vlc.desktop"), ignoring case; the user's own folder goes before the system's.
std::optional<DesktopEntry> desktopEntryWithIdentifier(const std::string& identifier);

/// The user's or the system's default application for a media type or "x-scheme-handler/…",
/// else any that names the type.
std::optional<DesktopEntry> defaultApplicationForType(const std::string& type);

/// The program and its arguments, the address in the place of %u, %U, %f or %F; empty when the
/// command line is malformed.
std::vector<std::string> commandLine(const DesktopEntry& entry, const std::string& address = {});

/// Starts a program by itself, without a shell and without waiting; false when it cannot.
bool startProgram(const std::vector<std::string>& arguments,
                  const std::string& workingDirectory = {});

/// Starts the application of an entry; false when it cannot.
bool launchDesktopEntry(const DesktopEntry& entry, const std::string& address = {});

/// The file of an entry's icon (SVG or PNG, the largest); none when it has none.
std::optional<std::string> iconPath(const DesktopEntry& entry);

}  // namespace desktop

// The login items of "com.apple.systemevents": the entries of the user's autostart folder (Desktop
// Application Autostart 0.5, freedesktop.org).
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/application/scripting.h"

namespace desktop {

/// Answers requests for login items and hands all others on.
///
/// An item is an entry that is started at login: an application with a command, neither marked
/// hidden (which means deleted) nor switched off. Its path is the program of its command; for this
/// program's own entry the path of its bundle. The list has the entries of others first, by file
/// name, then the ones made here in the order of their making. Other entries are never written to.
/// The folder is read anew for every request.
class LoginItems : public platform::ScriptingTransport {
 public:
  struct Options {
    std::filesystem::path folder;  ///< see defaultFolder()
    std::string bundlePath;        ///< how the widget names this program
    std::string executablePath;    ///< what starts it
    std::string argument = {};     ///< what it is started with; empty: nothing
  };
  /// `others` takes what is not for System Events; null: such requests have no answer.
  LoginItems(Options options, platform::ScriptingTransport* others);

  /// autostart under $XDG_CONFIG_HOME, else under ~/.config; empty when neither is known.
  static std::filesystem::path defaultFolder();

  std::optional<platform::ScriptingReply> send(const platform::ScriptingRequest& request) override;

  /// Lets items that started this program from where it is no more start it from where it is now.
  void followMovedProgram() const;

 private:
  struct Item {
    std::filesystem::path file;
    std::string path;
    bool isEnabled = true;
    int order = 0;  ///< 0 for entries of others
  };

  std::optional<Item> itemInFile(const std::filesystem::path& file) const;
  std::vector<Item> items() const;
  std::optional<platform::ScriptingReply> answer(const platform::ScriptingRequest& request,
                                                 const Item& item) const;
  bool add(const platform::Value& properties) const;
  std::string ownCommand() const;
  std::filesystem::path fileForNewItem(const std::string& program, const std::string& exec) const;

  const Options options_;
  platform::ScriptingTransport* const others_;
};

}  // namespace desktop

// The installed applications as GIO knows them. GIO is loaded with this module only when they are
// first asked for.
#include <fcntl.h>
#include <gio/gdesktopappinfo.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>

#include "desktop/files/file_descriptor.h"
#include "desktop/session/installed_applications.h"

namespace desktop {

namespace {

struct Unreference {
  void operator()(gpointer object) const { g_object_unref(object); }
};
struct Free {
  void operator()(gpointer memory) const { g_free(memory); }
};
using Application = std::unique_ptr<GDesktopAppInfo, Unreference>;

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), g_ascii_tolower);
  return text;
}

std::optional<std::string> pathOf(const Application& application) {
  const char* path = application ? g_desktop_app_info_get_filename(application.get()) : nullptr;
  return path != nullptr ? std::optional<std::string>(path) : std::nullopt;
}

/// True for what the desktop's menus list among the players; this program is none.
bool isPlayer(GDesktopAppInfo* application) {
  const char* identifier = g_app_info_get_id(G_APP_INFO(application));
  const char* categories = g_desktop_app_info_get_categories(application);
  if (identifier == nullptr || categories == nullptr) return false;
  const std::string list = ';' + std::string(categories) + ';';
  return list.find(";AudioVideo;") != std::string::npos &&
         list.find(";Player;") != std::string::npos && std::string(identifier) != ownDesktopEntry;
}

class GioApplications final : public InstalledApplications {
 public:
  std::optional<std::string> pathForIdentifier(const std::string& identifier) override {
    if (auto path = pathForWholeIdentifier(identifier)) return path;
    return pathForWholeIdentifier(identifier.substr(identifier.rfind('.') + 1));
  }

  std::optional<std::string> pathForType(const std::string& type) override {
    GAppInfo* found = g_app_info_get_default_for_type(type.c_str(), FALSE);
    return pathOf(Application(found != nullptr ? G_DESKTOP_APP_INFO(found) : nullptr));
  }

  std::optional<std::string> pathForPlayer() override {
    std::optional<std::pair<std::string, std::string>> first;  // its name and path
    GList* all = g_app_info_get_all();
    for (GList* item = all; item != nullptr; item = item->next) {
      GDesktopAppInfo* application = G_DESKTOP_APP_INFO(item->data);
      const char* path = g_desktop_app_info_get_filename(application);
      if (path == nullptr || !isPlayer(application) ||
          g_app_info_should_show(G_APP_INFO(application)) == FALSE) {
        continue;
      }
      auto entry =
          std::pair(lowerCase(g_app_info_get_name(G_APP_INFO(application))), std::string(path));
      if (!first || entry < *first) first = std::move(entry);
    }
    g_list_free_full(all, g_object_unref);
    return first ? std::optional(first->second) : std::nullopt;
  }

  std::optional<std::string> iconName(const std::string& path) override {
    const Application application(g_desktop_app_info_new_from_filename(path.c_str()));
    GIcon* icon = application ? g_app_info_get_icon(G_APP_INFO(application.get())) : nullptr;
    const std::unique_ptr<char, Free> name(icon != nullptr ? g_icon_to_string(icon) : nullptr);
    return name ? std::optional<std::string>(name.get()) : std::nullopt;
  }

  bool launch(const std::string& path, const std::string& address) override {
    const Application application(g_desktop_app_info_new_from_filename(path.c_str()));
    if (!application) return false;
    std::string only = address;
    GList addresses{only.data(), nullptr, nullptr};
    // What it has to say is not said to this program's terminal.
    const FileDescriptor nowhere(::open("/dev/null", O_WRONLY | O_CLOEXEC));
    return g_desktop_app_info_launch_uris_as_manager_with_fds(
               application.get(), address.empty() ? nullptr : &addresses, nullptr,
               G_SPAWN_SEARCH_PATH, nullptr, nullptr, nullptr, nullptr, -1, nowhere.get(),
               nowhere.get(), nullptr) != FALSE;
  }

 private:
  std::optional<std::string> pathForWholeIdentifier(const std::string& identifier) {
    const std::string file = identifier + ".desktop";
    if (auto path = pathOf(Application(g_desktop_app_info_new(file.c_str())))) return path;
    const auto known = identifiers().find(lowerCase(file));
    if (known == identifiers().end()) return std::nullopt;
    return pathOf(Application(g_desktop_app_info_new(known->second.c_str())));
  }

  /// The identifiers by what they are in lower case. Reading all entries takes its time: those that
  /// come later are found when their case is right.
  const std::map<std::string, std::string>& identifiers() {
    if (!identifiers_.empty()) return identifiers_;
    GList* all = g_app_info_get_all();
    for (GList* item = all; item != nullptr; item = item->next) {
      const char* identifier = g_app_info_get_id(G_APP_INFO(item->data));
      if (identifier != nullptr) identifiers_.emplace(lowerCase(identifier), identifier);
    }
    g_list_free_full(all, g_object_unref);
    return identifiers_;
  }

  std::map<std::string, std::string> identifiers_;
};

}  // namespace

}  // namespace desktop

extern "C" __attribute__((visibility("default"))) desktop::InstalledApplications*
virelune_installed_applications() {
  return std::make_unique<desktop::GioApplications>().release();
}

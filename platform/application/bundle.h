// Bundles: a folder with an information dictionary, string tables by language, and images.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/image.h"
#include "platform/foundation/value.h"

namespace platform {

/// A bundle: <path>/Info.plist, <path>/<language>.lproj/<table>.strings (property lists) and
/// <path>/images/<name>.svg (or .png). The information dictionary is read at once, the others on
/// demand; they are kept after that.
class NSBundle {
 public:
  /// Languages are language tags in the order the user prefers them ("pt-BR", "ja"); English is
  /// the last resort. None when the folder is not there.
  static std::unique_ptr<NSBundle> bundleWithPath(const std::string& path,
                                                  std::vector<std::string> languages);

  NSBundle(std::string path, std::vector<std::string> languages);

  /// The bundle of the running program; null when it has none.
  static NSBundle* mainBundle();

  const std::string& bundlePath() const { return path_; }
  /// Any thread.
  const Dictionary& infoDictionary() const { return info_; }
  /// Replaces an entry of the information dictionary, before other threads read it.
  void setInfoDictionaryEntry(const std::string& key, Value value);
  std::optional<std::string> bundleIdentifier() const;

  /// The text of a key in a table (none: "Localizable"), the key itself when there is no entry.
  std::string localizedStringForKey_table(const std::string& key,
                                          const std::optional<std::string>& table);
  /// Null when there is no image of that name.
  std::shared_ptr<NSImage> imageForResource(const std::string& name);

 private:
  const Dictionary& table(const std::string& name);

  std::string path_;
  std::vector<std::string> languages_;
  Dictionary info_;
  std::map<std::string, Dictionary> tables_;
  std::map<std::string, std::shared_ptr<NSImage>> images_;
};

inline constexpr const char* NSImageNameApplicationIcon = "NSApplicationIcon";

/// The named image of the main bundle; null when the bundle has none of that name.
std::shared_ptr<NSImage> imageNamed(const std::string& name);

}  // namespace platform

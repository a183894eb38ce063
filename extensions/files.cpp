#include "extensions/files.h"

#include "platform/foundation/file_manager.h"

using platform::URL;

namespace virelune {

std::optional<std::vector<URL>> vl_visibleContentsOfDirectoryAtURL(const std::optional<URL>& url) {
  if (!url) return std::nullopt;
  return platform::contentsOfDirectoryAtURL(*url, platform::NSDirectoryEnumerationSkipsHiddenFiles);
}

bool vl_hasVisibleContentsOfDirectoryAtURL(const std::optional<URL>& url) {
  const auto contents = vl_visibleContentsOfDirectoryAtURL(url);
  return contents && !contents->empty();
}

}  // namespace virelune

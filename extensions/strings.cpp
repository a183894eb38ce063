#include "extensions/strings.h"

#include <utility>

using platform::NSBundle;

namespace virelune {

std::optional<std::string> vl_localizedString(const std::string& key) {
  return vl_localizedString_fromTable(key, std::nullopt);
}

std::optional<std::string> vl_localizedString_fromTable(const std::string& key,
                                                        const std::optional<std::string>& table) {
  return vl_localizedString_fromTable_inBundle(key, table, nullptr);
}

std::optional<std::string> vl_localizedString_fromTable_inBundle(
    const std::string& key, const std::optional<std::string>& table, NSBundle* bundle) {
  if (bundle == nullptr) bundle = NSBundle::mainBundle();
  if (bundle == nullptr) return std::nullopt;
  auto text = bundle->localizedStringForKey_table(key, table);
  return text.empty() ? std::nullopt : std::optional(std::move(text));
}

}  // namespace virelune

#include "desktop/window/localized.h"

#include "platform/application/bundle.h"

namespace desktop {

std::string localizedString(const std::string& key) {
  auto* bundle = platform::NSBundle::mainBundle();
  return bundle != nullptr ? bundle->localizedStringForKey_table(key, std::nullopt) : key;
}

}  // namespace desktop

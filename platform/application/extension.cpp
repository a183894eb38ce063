#include "platform/application/extension.h"
#include "platform/application/bundle.h"

#include "platform/platform.h"

namespace platform {

std::shared_ptr<NSViewController> NSExtensionMain(const PrincipalClasses& classes) {
  NSBundle* bundle = NSBundle::mainBundle();
  if (bundle == nullptr) return nullptr;
  const auto entry = bundle->infoDictionary().find("NSExtension");
  if (entry == bundle->infoDictionary().end()) return nullptr;
  const auto* extension = entry->second.get<Dictionary>();
  if (extension == nullptr) return nullptr;
  const auto name = extension->find("NSExtensionPrincipalClass");
  const auto* className = name != extension->end() ? name->second.get<std::string>() : nullptr;
  const auto principal = className != nullptr ? classes.find(*className) : classes.end();
  return principal != classes.end() ? principal->second() : nullptr;
}

}  // namespace platform

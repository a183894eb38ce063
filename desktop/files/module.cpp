#include "desktop/files/module.h"

#include <dlfcn.h>

#include <iostream>
#include <system_error>

namespace desktop {

std::filesystem::path programFile() {
  std::error_code unreadable;
  return std::filesystem::read_symlink("/proc/self/exe", unreadable);
}

std::filesystem::path resourceFolder() {
  return programFile().parent_path().parent_path() / "share" / "virelune-widget";
}

std::filesystem::path moduleFile(const std::string& name) {
  return programFile().parent_path() / VIRELUNE_MODULES / name;
}

void* functionOfModule(const char* module, const char* function) {
  const auto file = moduleFile(std::string(module) + ".so");
  void* library = dlopen(file.c_str(), RTLD_LAZY | RTLD_LOCAL);
  void* found = library != nullptr ? dlsym(library, function) : nullptr;
  if (found == nullptr) std::cerr << "virelune-widget: " << dlerror() << std::endl;
  return found;
}

}  // namespace desktop

#include "demo/demo_cover.h"

#include "platform/application/bundle.h"
#include "platform/foundation/file_manager.h"

namespace demo {

platform::Data cover(const std::string& name) {
  constexpr std::uintmax_t largest = 1024 * 1024;
  const platform::NSBundle* bundle = platform::NSBundle::mainBundle();
  if (bundle == nullptr) return {};
  const std::string path = bundle->bundlePath() + "/covers/" + name + ".png";
  return platform::dataWithContentsOfFile(path, largest).value_or(platform::Data());
}

}  // namespace demo

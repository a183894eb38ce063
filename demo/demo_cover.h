// The covers of the demo: pictures of our own in the bundle.
#pragma once

#include <string>

#include "platform/foundation/data.h"

namespace demo {

/// The bytes of a PNG image of 300 × 300 pixels by its name, such as "waves"; empty when the main
/// bundle has none of that name. Main thread only.
platform::Data cover(const std::string& name);

}  // namespace demo

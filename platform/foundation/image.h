// Images, as far as the widget handles them; the pixels belong to the graphics backend.
#pragma once

#include "platform/foundation/geometry.h"
#include "platform/foundation/object.h"

namespace platform {

/// A decoded image. Immutable, so it may be handed between threads.
class NSImage : public NSObject {
 public:
  virtual NSSize size() const = 0;  ///< points
};

}  // namespace platform

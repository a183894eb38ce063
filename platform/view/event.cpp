#include "platform/view/event.h"

#include "platform/platform.h"

namespace platform {

std::uint64_t NSEvent::pressedMouseButtons() {
  return current().application->pressedMouseButtons();
}

}  // namespace platform

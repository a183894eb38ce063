#include "platform/loop/dispatch.h"

#include "platform/platform.h"

namespace platform {

DispatchQueue* dispatch_get_global_queue() { return current().globalQueue; }

}  // namespace platform

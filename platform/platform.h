// The one object through which the widget reaches everything outside itself.
#pragma once

#include "platform/bundle.h"
#include "platform/dispatch.h"
#include "platform/drag.h"
#include "platform/event.h"
#include "platform/graphics.h"
#include "platform/http.h"
#include "platform/notification.h"
#include "platform/run_loop.h"
#include "platform/scripting.h"
#include "platform/workspace.h"

namespace platform {

/// Composed by main (or a test fixture), which owns the parts behind the pointers. A part may be
/// missing; what needs it then answers none.
struct Platform {
  RunLoop* runLoop = nullptr;
  NSWorkspace* workspace = nullptr;
  ScriptingTransport* scripting = nullptr;
  HTTPTransport* http = nullptr;
  Graphics* graphics = nullptr;
  NSBundle* mainBundle = nullptr;
  DragBackend* drag = nullptr;
  DispatchQueue* globalQueue = nullptr;  ///< for work that would block the main thread

  NSApplication application;
  NSNotificationCenter defaultCenter;            ///< between the objects of the widget
  NSNotificationCenter distributedCenter;        ///< from other applications
  NSGraphicsContext* graphicsContext = nullptr;  ///< while views paint
};

/// The installed platform. There is always one: an empty one outside any PlatformScope.
Platform& current();

/// Installs a platform for the life of this object. Main thread, while no other thread runs.
class PlatformScope {
 public:
  explicit PlatformScope(Platform& platform);
  ~PlatformScope();
  PlatformScope(const PlatformScope&) = delete;
  PlatformScope& operator=(const PlatformScope&) = delete;

 private:
  Platform* previous_;
};

}  // namespace platform

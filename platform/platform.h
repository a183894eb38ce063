// The one object through which the widget reaches everything outside itself. It declares what it
// points to and includes none of it, so that every room may include this header.
#pragma once

#include <memory>

namespace platform {

class DispatchQueue;
class DragBackend;
class Graphics;
class HTTPTransport;
class NSApplication;
class NSBundle;
class NSGraphicsContext;
class NSNotificationCenter;
class NSWorkspace;
class RunLoop;
class ScriptingTransport;

/// Composed by main (or a test fixture), which owns the parts behind the pointers. A part may be
/// missing; what needs it then answers none. The application and the two centres are always there.
struct Platform {
  Platform();
  ~Platform();
  Platform(const Platform&) = delete;
  Platform& operator=(const Platform&) = delete;

  RunLoop* runLoop = nullptr;
  NSWorkspace* workspace = nullptr;
  ScriptingTransport* scripting = nullptr;
  HTTPTransport* http = nullptr;
  Graphics* graphics = nullptr;
  NSBundle* mainBundle = nullptr;
  DragBackend* drag = nullptr;
  DispatchQueue* globalQueue = nullptr;          ///< for work that would block the main thread
  NSGraphicsContext* graphicsContext = nullptr;  ///< while views paint

  const std::unique_ptr<NSApplication> application;
  const std::unique_ptr<NSNotificationCenter> defaultCenter;      ///< between the widget's objects
  const std::unique_ptr<NSNotificationCenter> distributedCenter;  ///< from other applications
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

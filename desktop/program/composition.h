// The program put together: the platform's parts, the player and the widget on its card.
#pragma once

#include <QtDBus/QDBusConnection>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "demo/demo_player.h"
#include "demo/demo_station.h"
#include "demo/demo_store.h"
#include "demo/demo_workspace.h"
#include "desktop/drag/source.h"
#include "desktop/graphics/backend.h"
#include "desktop/player/bridge.h"
#include "desktop/program/qt_run_loop.h"
#include "desktop/program/worker_pool.h"
#include "desktop/ratings/store.h"
#include "desktop/session/login_items.h"
#include "desktop/session/workspace.h"
#include "desktop/window/card.h"
#include "desktop/window/card_style.h"
#include "platform/application/bundle.h"

#include "platform/network/curl_transport.h"
#include "platform/platform.h"

namespace desktop {

/// Owns every part; the widget and its card go first, what they stand on follows. Needs a
/// QGuiApplication. Without a player from useBus() or useDemo() nothing is playing.
class Composition {
 public:
  Composition();
  ~Composition();
  Composition(const Composition&) = delete;
  Composition& operator=(const Composition&) = delete;

  /// Opens the bundle in a folder; false when there is none.
  bool openBundle(const std::string& path);
  // The servers of the live station and of the store, "host" or "host:port", in the place of the
  // bundle's; before the widget is made.
  void setStreamHost(const std::string& host);
  void setStoreHost(const std::string& host);
  /// Lets the widget use the network.
  void useNetwork();
  /// Follows a player on the bus: the named one, else the one that plays, else the one heard from
  /// last. False when it is not there yet; the first one that comes is followed then, unless the
  /// demo player is brought in.
  bool useBus(const QDBusConnection& bus, const std::optional<std::string>& playerName);
  /// Brings in the demo player, which does not run yet.
  demo::DemoPlayer& useDemo();
  /// Starts the demo's live station, in the place of the bundle's; before the widget is made.
  /// False when it cannot serve.
  bool useDemoStation();
  /// Starts the demo's store, in the place of the bundle's, and lets the network trust it; after
  /// useNetwork() and before the widget is made. False when it cannot serve.
  bool useDemoStore();

  /// Makes the widget and lays it on its card; null when the bundle names no widget.
  Card* makeCard(const platform::PrincipalClasses& classes);
  /// Lets things be dragged out of the window that shows the card.
  void useDrag(QWindow& window);

  QtGraphics& graphics() { return graphics_; }
  /// The widget's name as the user sees it.
  std::string displayName();

 private:
  void install(platform::WorkspaceBackend& workspace, platform::ScriptingTransport& player);

  platform::Platform platform_;
  platform::PlatformScope scope_{platform_};
  QtRunLoop driver_;
  platform::RunLoop runLoop_{driver_};
  QtGraphics graphics_{opaqueLabelColor};
  std::unique_ptr<platform::NSBundle> bundle_;
  std::unique_ptr<RatingsStore> ratings_;
  std::unique_ptr<PlayerBridge> bridge_;
  std::unique_ptr<demo::DemoPlayer> demoPlayer_;
  std::unique_ptr<demo::DemoStation> demoStation_;
  std::unique_ptr<demo::DemoStore> demoStore_;
  std::unique_ptr<LoginItems> loginItems_;
  std::unique_ptr<DesktopWorkspace> desktopWorkspace_;
  std::unique_ptr<demo::DemoWorkspace> demoWorkspace_;
  std::unique_ptr<platform::NSWorkspace> workspace_;
  std::unique_ptr<platform::CurlTransport> http_;
  std::unique_ptr<WorkerPool> workers_;
  std::unique_ptr<DragSource> drag_;
  std::unique_ptr<Card> card_;
};

}  // namespace desktop

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

/// The bundle in a folder, in the user's languages; null when there is none.
std::unique_ptr<platform::NSBundle> openBundle(const std::string& path);

/// Owns every part and puts them together; the widget and its card go first, what they stand on
/// follows. Needs a QGuiApplication.
class Composition {
 public:
  /// What the program is made of.
  struct Options {
    std::unique_ptr<platform::NSBundle> bundle;  ///< never null
    platform::PrincipalClasses widget;
    /// Where the player is looked for; none: it is the demo player.
    std::optional<QDBusConnection> bus = std::nullopt;
    /// The player to follow; none: the one that plays, else the one heard from last. Those that are
    /// not there yet are waited for.
    std::optional<std::string> playerName = std::nullopt;
    bool demoStandsIn = false;  ///< the demo player takes the place of one that is not there
    bool usesNetwork = true;
    // Servers, "host" or "host:port", in the place of the bundle's. For what is not named, the demo
    // player brings its own.
    std::optional<std::string> streamHost = std::nullopt;
    std::optional<std::string> storeHost = std::nullopt;
  };
  explicit Composition(Options options);
  ~Composition();
  Composition(const Composition&) = delete;
  Composition& operator=(const Composition&) = delete;

  Card* card() { return card_.get(); }  ///< null when the bundle names no widget
  /// Plays from the beginning; null when a player on the bus is followed.
  demo::DemoPlayer* demoPlayer() { return demoPlayer_.get(); }
  bool isPlayerRunning() const { return demoPlayer_ || bridge_->isRunning(); }
  QtGraphics& graphics() { return graphics_; }
  /// The widget's name as the user sees it.
  std::string displayName() const;

  /// Lets things be dragged out of the window that shows the card.
  void useDrag(QWindow& window);

 private:
  void makePlayer(const Options& options);
  void makeNetwork(const Options& options);
  void makeCard(const platform::PrincipalClasses& widget);

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

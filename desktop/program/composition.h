// The program put together: the platform's parts, the player and the widget on its card.
#pragma once

#include <QtDBus/QDBusConnection>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "demo/demo_servers.h"
#include "desktop/drag/source.h"
#include "desktop/graphics/backend.h"
#include "desktop/program/network.h"
#include "desktop/program/player_source.h"
#include "desktop/program/qt_run_loop.h"
#include "desktop/program/resources.h"
#include "desktop/program/worker_pool.h"
#include "desktop/ratings/store.h"
#include "desktop/session/login_items.h"
#include "desktop/window/card.h"
#include "desktop/window/card_style.h"
#include "platform/application/bundle.h"
#include "platform/platform.h"

namespace desktop {

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
    bool demo = false;  ///< see PlayerSource, as the next four
    std::string playerName = {};
    std::string lastPlayer = {};
    bool demoStandsIn = false;
    bool writesLibraries = true;
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
  PlayerSource& player() { return *player_; }
  const LoginItems& loginItems() const { return *loginItems_; }
  QtGraphics& graphics() { return graphics_; }
  RatingsStore* ratings() { return ratings_.get(); }  ///< null without a bus
  /// The widget's name as the user sees it.
  std::string displayName() const;

  /// Lets things be dragged out of the window that shows the card.
  void useDrag(QWindow& window);

 private:
  void makePlayer(const Options& options);
  void makeNetwork();
  void makeDemoServers();
  void endNetwork();
  void makeCard(const platform::PrincipalClasses& widget);

  platform::Platform platform_;
  platform::PlatformScope scope_{platform_};
  QtRunLoop driver_;
  platform::RunLoop runLoop_{driver_};
  QtGraphics graphics_{opaqueLabelColor};
  std::unique_ptr<platform::NSBundle> bundle_;
  std::map<std::string, platform::Value> servers_;  ///< entries of the bundle, without the demo's
  std::unique_ptr<RatingsStore> ratings_;
  WorkerPool coverReaders_;
  WorkerPool marksReader_{1};
  std::unique_ptr<PlayerSource> player_;
  std::unique_ptr<demo::DemoServers> demoServers_;
  std::unique_ptr<LoginItems> loginItems_;
  std::unique_ptr<platform::NSWorkspace> workspace_;
  std::unique_ptr<Network> http_;
  std::unique_ptr<WorkerPool> workers_;
  std::unique_ptr<DragSource> drag_;
  std::unique_ptr<Card> card_;
};

}  // namespace desktop

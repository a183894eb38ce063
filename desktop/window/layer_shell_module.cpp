#include <QtGui/qguiapplication_platform.h>
#include <relative-pointer-unstable-v1.h>
#include <wayland-client.h>
#include <LayerShellQt/Window>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>

#include <cstdint>
#include <string_view>
#include <utility>

#include "desktop/window/layer_surface.h"

namespace desktop {

namespace {

using Wayland = QNativeInterface::QWaylandApplication;

template <auto destroy>
struct Destroy {
  void operator()(auto* object) const { destroy(object); }
};
template <class Object, auto destroy>
using Owned = std::unique_ptr<Object, Destroy<destroy>>;
using PointerManager =
    Owned<zwp_relative_pointer_manager_v1, zwp_relative_pointer_manager_v1_destroy>;

/// What the compositor can do, of what is needed here.
struct Globals {
  bool hasLayerShell = false;
  PointerManager pointerManager;
};

void add(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
         std::uint32_t /*version*/) {
  auto& globals = *static_cast<Globals*>(data);
  const std::string_view kind = interface;
  if (kind == "zwlr_layer_shell_v1") globals.hasLayerShell = true;
  if (kind != zwp_relative_pointer_manager_v1_interface.name) return;
  globals.pointerManager.reset(static_cast<zwp_relative_pointer_manager_v1*>(
      wl_registry_bind(registry, name, &zwp_relative_pointer_manager_v1_interface, 1)));
}

void remove(void* /*data*/, wl_registry* /*registry*/, std::uint32_t /*name*/) {}

Globals globalsOf(const Wayland& application) {
  Globals globals;
  // Asked on a queue of its own, so that nothing of Qt's is handled meanwhile.
  const Owned<wl_event_queue, wl_event_queue_destroy> queue(
      wl_display_create_queue(application.display()));
  const Owned<wl_display, wl_proxy_wrapper_destroy> display(
      static_cast<wl_display*>(wl_proxy_create_wrapper(application.display())));
  wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(display.get()), queue.get());
  const Owned<wl_registry, wl_registry_destroy> registry(wl_display_get_registry(display.get()));
  constexpr wl_registry_listener listener{.global = add, .global_remove = remove};
  wl_registry_add_listener(registry.get(), &listener, &globals);
  wl_display_roundtrip_queue(application.display(), queue.get());
  // What comes of it belongs to Qt's queue again.
  if (globals.pointerManager) {
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(globals.pointerManager.get()), nullptr);
  }
  return globals;
}

class LayerShellSurface final : public QObject, public LayerSurface {
 public:
  LayerShellSurface(QWindow& window, const Wayland& application, PointerManager manager)
      : window_(window), manager_(std::move(manager)) {
    if (manager_ && application.pointer() != nullptr) {
      pointer_.reset(zwp_relative_pointer_manager_v1_get_relative_pointer(manager_.get(),
                                                                          application.pointer()));
      static constexpr zwp_relative_pointer_v1_listener listener{.relative_motion = moved};
      zwp_relative_pointer_v1_add_listener(pointer_.get(), &listener, this);
    }
    // A surface belongs to one screen for good.
    connect(&window, &QWindow::screenChanged, this, [this] {
      if (!isOnTop() || !window_.isVisible()) return;
      window_.hide();
      window_.show();
    });
  }

  void setOnTop(bool onTop) override {
    if (onTop == isOnTop()) return;
    window_.destroy();
    if (!onTop) {
      surface_.reset();
      return;
    }
    surface_.reset(LayerShellQt::Window::get(&window_));
    surface_->setScope(QGuiApplication::desktopFileName());
    surface_->setLayer(LayerShellQt::Window::LayerTop);
    surface_->setAnchors({LayerShellQt::Window::AnchorTop, LayerShellQt::Window::AnchorLeft});
    surface_->setExclusiveZone(-1);  // places count from the screen's corner
    surface_->setKeyboardInteractivity(LayerShellQt::Window::KeyboardInteractivityOnDemand);
    surface_->setCloseOnDismissed(false);  // its screen has gone, and it goes on on another
  }
  bool isOnTop() const override { return surface_ != nullptr; }

  void setPlace(QPoint place) override {
    QScreen* screen = QGuiApplication::screenAt(QRect(place, window_.size()).center());
    if (!isOnTop() || screen == nullptr) return;
    const QPoint margins = place - screen->geometry().topLeft();
    surface_->setMargins({margins.x(), margins.y(), 0, 0});
    window_.setScreen(screen);
    window_.requestUpdate();  // which has the surface committed
  }

  void setPointerHandler(std::function<void(QPointF)> handler) override {
    handler_ = std::move(handler);
  }

 private:
  static void moved(void* data, zwp_relative_pointer_v1* /*pointer*/, std::uint32_t /*timeHigh*/,
                    std::uint32_t /*timeLow*/, wl_fixed_t x, wl_fixed_t y, wl_fixed_t /*rawX*/,
                    wl_fixed_t /*rawY*/) {
    const auto& handler = static_cast<LayerShellSurface*>(data)->handler_;
    if (handler) handler({wl_fixed_to_double(x), wl_fixed_to_double(y)});
  }

  QWindow& window_;
  const PointerManager manager_;
  Owned<zwp_relative_pointer_v1, zwp_relative_pointer_v1_destroy> pointer_;
  std::function<void(QPointF)> handler_;
  std::unique_ptr<LayerShellQt::Window> surface_;
};

}  // namespace

extern "C" Q_DECL_EXPORT void virelune_layer_surface(QWindow& window,
                                                     std::unique_ptr<LayerSurface>& surface) {
  const auto* application = qGuiApp->nativeInterface<Wayland>();
  if (application == nullptr || application->display() == nullptr) return;
  Globals globals = globalsOf(*application);
  if (!globals.hasLayerShell) return;
  surface =
      std::make_unique<LayerShellSurface>(window, *application, std::move(globals.pointerManager));
}

}  // namespace desktop

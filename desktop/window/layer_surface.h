// A window above the others under Wayland, where the compositor speaks layer-shell.
#pragma once

#include <QtCore/QPointF>
#include <QtGui/QWindow>
#include <functional>
#include <memory>

namespace desktop {

/// What a compositor that speaks layer-shell (wlr-layer-shell-unstable-v1) does for a window: keeps
/// it above the others, at a place that the program chooses.
class LayerSurface {
 public:
  virtual ~LayerSurface() = default;

  /// A window that is shown is hidden by a change; its owner shows it again.
  virtual void setOnTop(bool onTop) = 0;
  virtual bool isOnTop() const = 0;
  /// Puts the window's upper left corner there; the screens lie as Qt says.
  virtual void setPlace(QPoint place) = 0;
  /// Calls this with each way (points) that the pointer goes. Where it is in a window that moves
  /// meanwhile, compositors tell differently.
  virtual void setPointerHandler(std::function<void(QPointF)> handler) = 0;
};

/// Null where the compositor does not speak it, or the program was built without LayerShellQt.
std::unique_ptr<LayerSurface> makeLayerSurface(QWindow& window);

}  // namespace desktop

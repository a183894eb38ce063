#include "desktop/window/layer_surface.h"

#include <QtGui/QGuiApplication>
#include <filesystem>
#include <system_error>

#include "desktop/files/module.h"

namespace desktop {

std::unique_ptr<LayerSurface> makeLayerSurface(QWindow& window) {
  if (!QGuiApplication::platformName().startsWith(QLatin1String("wayland"))) return nullptr;
  std::error_code unreadable;
  if (!std::filesystem::exists(moduleFile("layer-shell.so"), unreadable)) return nullptr;
  using Make = void (*)(QWindow&, std::unique_ptr<LayerSurface>&);
  const auto make =
      reinterpret_cast<Make>(functionOfModule("layer-shell", "virelune_layer_surface"));
  std::unique_ptr<LayerSurface> surface;
  if (make != nullptr) make(window, surface);
  return surface;
}

}  // namespace desktop

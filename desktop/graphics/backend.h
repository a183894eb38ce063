// The graphics backend of the desktop, on Qt Gui.
#pragma once

#include <mutex>
#include <vector>

#include "desktop/graphics/qt_image.h"
#include "platform/graphics/canvas.h"
#include "platform/graphics/graphics.h"

namespace desktop {

/// Needs a QGuiApplication. Decoding may happen on any thread, all else on the main one.
class QtGraphics final : public platform::Graphics {
 public:
  /// The ink is what drawings take for "currentColor".
  explicit QtGraphics(InkColor ink) : ink_(ink) {}

  std::shared_ptr<platform::NSImage> decode(const platform::Data& data) override;
  std::shared_ptr<platform::NSImage> imageAtPath(const std::string& path) override;
  platform::Data encode(const platform::NSImage& image, platform::NSBitmapImageFileType type,
                        double quality) override;
  platform::NSSize measure(const platform::NSAttributedString& text, platform::NSSize size,
                           unsigned options) override;
  std::shared_ptr<platform::NSImage> render(
      platform::NSSize size, const std::function<void(platform::Canvas&)>& draw) override;

  /// What rendered images are made for: device pixels per point, and the appearance.
  void setDisplay(double scale, platform::Appearance appearance);

 private:
  struct Decoded {
    platform::Data data;
    std::shared_ptr<platform::NSImage> image;  ///< null when the bytes are no image
  };

  const InkColor ink_;
  std::mutex decodedMutex_;
  std::vector<Decoded> decoded_;  // guarded by decodedMutex_; the newest at the end
  double scale_ = 1;
  platform::Appearance appearance_ = platform::Appearance::light;
};

}  // namespace desktop

#include "tests/support/test_graphics.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include "platform/graphics/canvas.h"

namespace tests {

using platform::Data;
using platform::NSSize;

std::string nameOf(const std::shared_ptr<platform::NSImage>& image) {
  const auto* known = dynamic_cast<const TestImage*>(image.get());
  return known != nullptr ? known->name() : "";
}

Data imageBytes(const std::string& name) { return Data::fromText("image:" + name); }

std::shared_ptr<platform::NSImage> TestGraphics::decode(const Data& data) {
  constexpr std::string_view mark = "image:";
  const std::string_view bytes = data.view();
  const NSSize size{100, 100};
  if (bytes.starts_with(mark)) {
    return platform::make<TestImage>(std::string(bytes.substr(mark.size())), size);
  }
  // Real PNG and JPEG files, such as the demo player's covers.
  const bool real = bytes.starts_with("\x89PNG") || bytes.starts_with("\xFF\xD8");
  return real ? platform::make<TestImage>("cover", size) : nullptr;
}

std::shared_ptr<platform::NSImage> TestGraphics::imageAtPath(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return nullptr;
  const std::string name = std::filesystem::path(path).stem().string();
  if (std::find(hidden_.begin(), hidden_.end(), name) != hidden_.end()) return nullptr;
  return platform::make<TestImage>(name, NSSize{20, 20});
}

Data TestGraphics::encode(const platform::NSImage& image, platform::NSBitmapImageFileType type,
                          double quality) {
  const std::string& name = dynamic_cast<const TestImage&>(image).name();
  return Data::fromText(type == platform::NSBitmapImageFileType::png
                            ? "PNG of " + name
                            : "JPEG of " + name + " at " + std::to_string(quality));
}

NSSize TestGraphics::measure(const platform::NSAttributedString& text, NSSize size,
                             unsigned options) {
  double fontSize = 13;
  const auto font = text.attributes.find(platform::NSFontAttributeName);
  if (font != text.attributes.end()) {
    if (const auto* known = font->second.get<platform::NSFont>()) fontSize = known->size;
  }
  const double width = static_cast<double>(text.text.size()) * fontSize / 2;
  const double lineHeight = fontSize * 1.25;
  double lines = std::max(1.0, std::ceil(width / std::max(size.width, 1.0)));
  if ((options & platform::NSStringDrawingTruncatesLastVisibleLine) != 0) {
    lines = std::min(lines, std::max(1.0, std::floor(size.height / lineHeight)));
  }
  return {std::min(width, size.width), lines * lineHeight};
}

std::shared_ptr<platform::NSImage> TestGraphics::render(
    NSSize size, const std::function<void(platform::Canvas&)>& draw) {
  RecordingCanvas canvas;
  draw(canvas);
  return platform::make<TestImage>("rendered", size);
}

}  // namespace tests

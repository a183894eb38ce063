#include "tests/support/test_graphics.h"

#include <cmath>
#include <filesystem>

namespace tests {

using namespace platform;

std::string nameOf(const std::shared_ptr<NSImage>& image) {
  const auto* known = dynamic_cast<const TestImage*>(image.get());
  return known != nullptr ? known->name() : "";
}

Data imageBytes(const std::string& name) { return Data::fromText("image:" + name); }

void RecordingCanvas::clip(NSRect rect, double cornerRadius) {
  rect = NSOffsetRect(rect, state_.origin.x, state_.origin.y);
  state_.clip = state_.clip ? NSIntersectionRect(*state_.clip, rect) : rect;
  state_.cornerRadius = cornerRadius;
}

void RecordingCanvas::drawText(const NSAttributedString& text, NSRect rect, unsigned options) {
  add(text.text, rect);
  for (const auto& [key, value] : text.attributes) {
    if (const auto* color = value.get<NSColor>()) tell(*color);
    if (const auto* font = value.get<NSFont>()) {
      text_ << " size " << font->size << (font->monospacedDigits ? " equal digits" : "");
    }
    constexpr const char* alignments[] = {" left", " right", " centred", " justified", ""};
    if (const auto* style = value.get<NSParagraphStyle>()) {
      text_ << alignments[static_cast<std::size_t>(style->alignment)];
    }
  }
  constexpr unsigned usual =
      NSStringDrawingUsesLineFragmentOrigin | NSStringDrawingTruncatesLastVisibleLine;
  if (options != usual) text_ << " options " << options;
}

void RecordingCanvas::add(const std::string& name, NSRect rect, double fraction) {
  rect = NSOffsetRect(rect, state_.origin.x, state_.origin.y);
  const auto visible = state_.clip ? NSIntersectionRect(rect, *state_.clip) : rect;
  const auto told = [](const NSRect& area) {
    std::ostringstream figures;
    figures << ' ' << area.minX() << ' ' << area.minY() << ' ' << area.size.width << ' '
            << area.size.height;
    return figures.str();
  };
  text_ << '\n' << name << told(rect) << (told(visible) != told(rect) ? told(visible) : "");
  if (state_.cornerRadius != 0) text_ << " round " << state_.cornerRadius;
  if (state_.alpha * fraction != 1) text_ << " alpha " << state_.alpha * fraction;
}

void RecordingCanvas::tell(NSColor color) {
  const bool isLabel = color == NSColor::labelColor();
  isLabel ? text_ << " label" : text_ << " grey " << color.red() << '/' << color.alpha();
}

std::string portrait(NSView& view, std::optional<NSRect> rect) {
  RecordingCanvas canvas;
  view.displayRect(canvas, rect.value_or(view.bounds()));
  return canvas.text();
}

std::shared_ptr<NSImage> TestGraphics::decode(const Data& data) {
  constexpr std::string_view mark = "image:";
  const std::string_view bytes = data.view();
  const NSSize size{100, 100};
  if (bytes.starts_with(mark)) {
    return make<TestImage>(std::string(bytes.substr(mark.size())), size);
  }
  // Real PNG and JPEG files, such as the demo player's covers.
  const bool real = bytes.starts_with("\x89PNG") || bytes.starts_with("\xFF\xD8");
  return real ? make<TestImage>("cover", size) : nullptr;
}

std::shared_ptr<NSImage> TestGraphics::imageAtPath(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return nullptr;
  const std::string name = std::filesystem::path(path).stem().string();
  return make<TestImage>(name, NSSize{20, 20});
}

Data TestGraphics::encode(const NSImage& image, NSBitmapImageFileType type, double quality) {
  const std::string& name = dynamic_cast<const TestImage&>(image).name();
  return Data::fromText(type == NSBitmapImageFileType::png
                            ? "PNG of " + name
                            : "JPEG of " + name + " at " + std::to_string(quality));
}

NSSize TestGraphics::measure(const NSAttributedString& text, NSSize size, unsigned options) {
  double fontSize = 13;
  const auto font = text.attributes.find(NSFontAttributeName);
  if (font != text.attributes.end()) {
    if (const auto* known = font->second.get<NSFont>()) fontSize = known->size;
  }
  const double width = static_cast<double>(text.text.size()) * fontSize / 2;
  const double lineHeight = fontSize * 1.25;
  double lines = std::max(1.0, std::ceil(width / std::max(size.width, 1.0)));
  if ((options & NSStringDrawingTruncatesLastVisibleLine) != 0) {
    lines = std::min(lines, std::max(1.0, std::floor(size.height / lineHeight)));
  }
  return {std::min(width, size.width), lines * lineHeight};
}

std::shared_ptr<NSImage> TestGraphics::render(NSSize size,
                                              const std::function<void(Canvas&)>& draw) {
  RecordingCanvas canvas;
  draw(canvas);
  return make<TestImage>("rendered", size);
}

}  // namespace tests

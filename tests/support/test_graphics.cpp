#include "tests/support/test_graphics.h"

#include <cmath>
#include <filesystem>
#include <sstream>

namespace tests {

using platform::Data;
using platform::NSSize;

std::string nameOf(const std::shared_ptr<platform::NSImage>& image) {
  const auto* known = dynamic_cast<const TestImage*>(image.get());
  return known != nullptr ? known->name() : "";
}

Data imageBytes(const std::string& name) { return Data::fromText("image:" + name); }

void RecordingCanvas::clip(platform::NSRect rect, double cornerRadius) {
  rect = platform::NSOffsetRect(rect, state_.origin.x, state_.origin.y);
  state_.clip = state_.clip ? platform::NSIntersectionRect(*state_.clip, rect) : rect;
  state_.cornerRadius = cornerRadius;
}

void RecordingCanvas::drawText(const platform::NSAttributedString& text, platform::NSRect rect,
                               unsigned options) {
  DrawingStep& step = add(rect, text.text);
  step.options = options;
  for (const auto& [key, value] : text.attributes) {
    if (const auto* color = value.get<platform::NSColor>()) step.color = *color;
    if (const auto* font = value.get<platform::NSFont>()) step.font = *font;
    if (const auto* style = value.get<platform::NSParagraphStyle>())
      step.alignment = style->alignment;
  }
}

std::vector<std::string> RecordingCanvas::names() const {
  std::vector<std::string> found;
  for (const auto& step : steps_) {
    if (!step.name.empty()) found.push_back(step.name);
  }
  return found;
}

DrawingStep& RecordingCanvas::add(platform::NSRect rect, std::string name) {
  rect = platform::NSOffsetRect(rect, state_.origin.x, state_.origin.y);
  const auto visible = state_.clip ? platform::NSIntersectionRect(rect, *state_.clip) : rect;
  return steps_.emplace_back(
      DrawingStep{rect, visible, state_.cornerRadius, state_.alpha, std::move(name)});
}

std::string portrait(platform::NSView& view) {
  RecordingCanvas canvas;
  view.displayRect(canvas, view.bounds());
  std::ostringstream text;
  const auto told = [](const platform::NSRect& rect) {
    std::ostringstream figures;
    figures << ' ' << rect.minX() << ' ' << rect.minY() << ' ' << rect.size.width << ' '
            << rect.size.height;
    return figures.str();
  };
  constexpr const char* alignments[] = {" left", " right", " centred", " justified", ""};
  for (const DrawingStep& step : canvas.steps()) {
    text << '\n' << (step.name.empty() ? "fill" : step.name) << told(step.rect);
    if (told(step.visible) != told(step.rect)) text << told(step.visible);
    if (step.cornerRadius != 0) text << " round " << step.cornerRadius;
    if (step.alpha != 1) text << " alpha " << step.alpha;
    if (const auto color = step.color) {
      const bool isLabel = color == platform::NSColor::labelColor();
      isLabel ? text << " label" : text << " grey " << color->red() << '/' << color->alpha();
    }
    if (step.font) text << " size " << step.font->size;
    if (step.font && step.font->monospacedDigits) text << " equal digits";
    if (step.alignment) text << alignments[static_cast<std::size_t>(*step.alignment)];
  }
  return text.str();
}

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

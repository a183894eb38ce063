// Graphics without pixels: a font of fixed advance, images that know their origin, and a canvas
// that writes down what is drawn.
#pragma once

#include <sstream>

#include "platform/graphics/canvas.h"
#include "platform/graphics/graphics.h"
#include "platform/view/view.h"

namespace tests {

/// An image that remembers where it came from.
class TestImage final : public platform::NSImage {
 public:
  TestImage(std::string name, platform::NSSize size) : name_(std::move(name)), size_(size) {}
  platform::NSSize size() const override { return size_; }
  const std::string& name() const { return name_; }

 private:
  std::string name_;
  platform::NSSize size_;
};

/// The name of a test image; empty for null.
std::string nameOf(const std::shared_ptr<platform::NSImage>& image);

/// Bytes that decode to a test image of that name, 100 × 100 points.
platform::Data imageBytes(const std::string& name);

/// Writes down what is drawn, one step a line: the name of the image, the text or "fill", then x y
/// width height, and of what differs from the usual the part that is not cut off, "round 3",
/// "alpha 0.5", colour, "size 12", "equal digits", the alignment and the options of a text.
class RecordingCanvas final : public platform::Canvas {
 public:
  void save() override { stack_.push_back(state_); }
  void restore() override {
    state_ = stack_.at(stack_.size() - 1);
    stack_.pop_back();
  }
  void translate(double dx, double dy) override {
    state_.origin = {state_.origin.x + dx, state_.origin.y + dy};
  }
  void clip(platform::NSRect rect, double cornerRadius) override;
  void multiplyAlpha(double alpha) override { state_.alpha *= alpha; }
  void fillRect(platform::NSRect rect, platform::NSColor color) override {
    if (rect.isEmpty()) return;
    add("fill", rect);
    tell(color);
  }
  void fillRoundedRect(platform::NSRect rect, double, platform::NSColor color) override {
    fillRect(rect, color);
  }
  void drawImage(const platform::NSImage& image, platform::NSRect rect, double fraction) override {
    add(dynamic_cast<const TestImage&>(image).name(), rect, fraction);
  }
  void drawText(const platform::NSAttributedString& text, platform::NSRect rect,
                unsigned options) override;

  std::string text() const { return text_.str(); }
  bool isBalanced() const { return stack_.empty(); }

 private:
  struct State {
    platform::NSPoint origin;
    double alpha = 1;
    std::optional<platform::NSRect> clip;
    double cornerRadius = 0;
  };
  void add(const std::string& name, platform::NSRect rect, double fraction = 1);
  void tell(platform::NSColor color);

  State state_;
  std::vector<State> stack_;
  std::ostringstream text_;
};

/// What a view draws, or what of it shows in a rectangle.
std::string portrait(platform::NSView& view, std::optional<platform::NSRect> rect = std::nullopt);

/// Every character is half as wide as the font's size; a line is 1.25 times as high as it.
struct TestGraphics final : platform::Graphics {
  std::shared_ptr<platform::NSImage> decode(const platform::Data& data) override;
  std::shared_ptr<platform::NSImage> imageAtPath(const std::string& path) override;
  /// "PNG of <name>" or "JPEG of <name> at <quality>".
  platform::Data encode(const platform::NSImage& image, platform::NSBitmapImageFileType type,
                        double quality) override;
  platform::NSSize measure(const platform::NSAttributedString& text, platform::NSSize size,
                           unsigned options) override;
  std::shared_ptr<platform::NSImage> render(
      platform::NSSize size, const std::function<void(platform::Canvas&)>& draw) override;
};

}  // namespace tests

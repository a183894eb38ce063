// Buttons: an image or a text that sends an action when it is clicked.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/foundation/attributed_string.h"
#include "platform/view/view.h"

namespace platform {

enum class NSButtonType { momentaryLight = 0, momentaryChange = 5 };
enum class NSImageScaling { proportionallyDown = 0, proportionallyUpOrDown = 3 };

/// A push button. While it is pressed and the pointer is inside, it is drawn dimmed.
class NSButton : public NSView {
 public:
  using NSView::NSView;

  const std::shared_ptr<NSImage>& image() const { return image_; }
  virtual void setImage(std::shared_ptr<NSImage> image);
  const std::optional<NSAttributedString>& attributedTitle() const { return attributedTitle_; }
  void setAttributedTitle(const std::optional<NSAttributedString>& title);
  /// A plain title in the system font; empty for none.
  void setTitle(const std::string& title);

  NSTextAlignment alignment() const { return alignment_; }
  void setAlignment(NSTextAlignment alignment);
  void setBordered(bool bordered);
  void setButtonType(NSButtonType type) { buttonType_ = type; }
  void setImageScaling(NSImageScaling scaling);

  /// The target is not owned.
  std::shared_ptr<NSObject> target() const { return target_.lock(); }
  void setTarget(const std::shared_ptr<NSObject>& target) { target_ = target; }
  const Selector& action() const { return action_; }
  void setAction(Selector action) { action_ = std::move(action); }

  /// Makes it a toggle for those who cannot see its picture; none: a plain button.
  void setAccessibilityState(std::optional<bool> isOn) { state_ = isOn; }
  NSAccessibilityRole accessibilityRole() const override {
    return state_ ? NSAccessibilityRole::toggle : NSAccessibilityRole::button;
  }
  /// Its title, unless it has been given another.
  std::string accessibilityLabel() const override;
  std::optional<NSAccessibilityValue> accessibilityValue() const override;
  bool accessibilityPerformPress() override;

  /// Sends the action to the target when both are set and the target responds to it.
  virtual void performClick(NSObject* sender);

  void drawRect(NSRect dirtyRect) override;
  void mouseDown(const NSEvent* event) override;
  void mouseDragged(const NSEvent* event) override;
  void mouseUp(const NSEvent* event) override;
  void mouseCancelled() override { setHighlighted(false); }

 protected:
  bool isHighlighted() const { return highlighted_; }
  /// The rectangle the image is drawn into.
  NSRect imageRect() const;

 private:
  void setHighlighted(bool highlighted);
  bool contains(const NSEvent* event) const;

  std::shared_ptr<NSImage> image_;
  std::optional<NSAttributedString> attributedTitle_;
  NSTextAlignment alignment_ = NSTextAlignment::center;
  NSButtonType buttonType_ = NSButtonType::momentaryLight;
  NSImageScaling imageScaling_ = NSImageScaling::proportionallyDown;
  bool bordered_ = true;
  bool highlighted_ = false;
  std::optional<bool> state_;
  std::weak_ptr<NSObject> target_;
  Selector action_;
};

}  // namespace platform

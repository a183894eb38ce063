// The playback position bar, on which the user can seek.
#pragma once

#include <memory>
#include <optional>
#include <utility>

#include "controls/view.h"
#include "platform/loop/run_loop.h"

namespace virelune {

/// A horizontal bar: the elapsed part in the bar's colour, the remaining part at half opacity, a
/// knob between them. Values are in the unit that the owner chooses. The action is sent at the
/// press, whenever a drag rests for 0.2 seconds, and at the release.
class VLProgressIndicator : public VLView {
 public:
  using VLView::VLView;
  ~VLProgressIndicator() override;

  // Mouse. Without a valid scale the indicator ignores it.
  void mouseUp(const platform::NSEvent* event) override;
  void mouseDown(const platform::NSEvent* event) override;
  void mouseDragged(const platform::NSEvent* event) override;

  // Values. Negative ones count as 0.
  bool setMaxValue(double value);
  double maxValue() const;
  /// Takes over a position, unless the left mouse button is held: then the user's choice stays
  /// and the answer is false.
  bool setNowValue(double value);
  double nowValue() const;
  /// There is no upper limit.
  bool setNowValueImmediately(double value);
  bool setNowValueFromEvent(const platform::NSEvent* event);
  /// The value under a point in the indicator's coordinates, from 0 to maxValue.
  double nowValueFromPoint(platform::NSPoint point) const;
  /// True when there is a scale, that is a maxValue above 0.
  bool isMaxValueValid() const;

  // Accessibility: a scale in seconds, on which a step is five of them.
  platform::NSAccessibilityRole accessibilityRole() const override {
    return platform::NSAccessibilityRole::position;
  }
  std::optional<platform::NSAccessibilityValue> accessibilityValue() const override;
  bool setAccessibilityValue(double value) override;

  // Drawing
  void drawRect(platform::NSRect dirtyRect) override;
  platform::NSColor drawProgressLeftColor() const;
  platform::NSColor drawProgressRightColor() const;
  bool drawProgress();
  bool drawProgressLeft();
  bool drawProgressRight();
  bool drawProgressCenter();
  double drawProgressLeftWidthFromRect(platform::NSRect rect) const;
  double drawProgressRightWidthFromRect(platform::NSRect rect) const;
  platform::NSRect drawProgressLeftRect() const;    ///< the elapsed part
  platform::NSRect drawProgressRightRect() const;   ///< the remaining part
  platform::NSRect drawProgressCenterRect() const;  ///< the knob

  // The timer of a resting drag
  bool startActionTimer(NSObject* sender);
  bool stopActionTimer(NSObject* sender);  ///< false when none was pending
  bool firedActionTimer(platform::NSTimer* timer);

  // Target and action
  /// Sends the action to the target; false when either is missing or the target does not respond.
  bool performTargetAction(NSObject* sender);
  /// The target is not owned.
  bool setTarget(const std::shared_ptr<NSObject>& target);
  std::shared_ptr<NSObject> target() const { return contentActionTarget(); }
  bool setAction(platform::Selector action);
  const platform::Selector& action() const { return contentActionSelector(); }

  // Colour of the bar; white when none is set.
  bool setColor(std::optional<platform::NSColor> color);
  platform::NSColor color() const;

  double contentMaxValue() const { return contentMaxValue_; }
  void setContentMaxValue(double value) { contentMaxValue_ = value; }
  double contentNowValue() const { return contentNowValue_; }
  void setContentNowValue(double value) { contentNowValue_ = value; }
  const std::shared_ptr<platform::NSTimer>& contentActionTimer() const {
    return contentActionTimer_;
  }
  void setContentActionTimer(std::shared_ptr<platform::NSTimer> timer) {
    contentActionTimer_ = std::move(timer);
  }
  std::shared_ptr<NSObject> contentActionTarget() const { return contentActionTarget_.lock(); }
  void setContentActionTarget(const std::shared_ptr<NSObject>& target) {
    contentActionTarget_ = target;
  }
  const platform::Selector& contentActionSelector() const { return contentActionSelector_; }
  void setContentActionSelector(platform::Selector action) {
    contentActionSelector_ = std::move(action);
  }
  std::optional<platform::NSColor> contentColor() const { return contentColor_; }
  void setContentColor(std::optional<platform::NSColor> color) { contentColor_ = color; }

 private:
  double contentMaxValue_ = 0;
  double contentNowValue_ = 0;
  std::shared_ptr<platform::NSTimer> contentActionTimer_;
  std::weak_ptr<NSObject> contentActionTarget_;
  platform::Selector contentActionSelector_;
  std::optional<platform::NSColor> contentColor_;
};

}  // namespace virelune

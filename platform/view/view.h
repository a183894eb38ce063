// Views: rectangles in a tree that draw themselves and take mouse and key events.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/foundation/geometry.h"
#include "platform/foundation/image.h"
#include "platform/foundation/object.h"
#include "platform/view/accessibility.h"
#include "platform/view/event.h"

namespace platform {

class Canvas;
class NSDraggingItem;
class NSDraggingSession;
class NSDraggingSource;
class NSViewController;
class NSWindow;

/// What a view's backing layer does.
struct NSLayer {
  double cornerRadius = 0;  ///< points
  bool masksToBounds = false;
};

/// A view. Its frame is in its parent's coordinates, y upwards; it draws only inside its parent.
class NSView : public NSObject {
 public:
  NSView() = default;
  explicit NSView(NSRect frame) : frame_(frame) {}
  ~NSView() override;

  // Geometry
  NSRect frame() const { return frame_; }
  NSRect bounds() const { return {{0, 0}, frame_.size}; }
  void setFrame(NSRect frame);
  void setFrameOrigin(NSPoint origin) { setFrame({origin, frame_.size}); }
  void setFrameSize(NSSize size) { setFrame({frame_.origin, size}); }
  NSPoint convertPointFromWindow(NSPoint point) const;
  NSRect convertRectToWindow(NSRect rect) const;

  // Tree. A parent owns its subviews; later ones lie above earlier ones.
  void addSubview(const std::shared_ptr<NSView>& view);
  void removeFromSuperview();
  const std::vector<std::shared_ptr<NSView>>& subviews() const { return subviews_; }
  NSWindow* window() const { return window_; }

  // Looks
  double alphaValue() const { return alphaValue_; }
  void setAlphaValue(double alpha);
  void setHidden(bool hidden);
  void setWantsLayer(bool wantsLayer);
  NSLayer* layer() { return layer_ ? &*layer_ : nullptr; }  ///< null until a layer is wanted

  // Drawing
  /// Marks the view, or a part of it in its own coordinates, to be drawn again.
  void setNeedsDisplay(bool needsDisplay);
  void setNeedsDisplayInRect(NSRect rect);
  virtual bool isOpaque() const { return false; }
  /// Hook: draws into the current graphics context, in the view's own coordinates.
  virtual void drawRect(NSRect dirtyRect);
  /// Draws the view and its subviews where they meet the rectangle (own coordinates).
  void displayRect(Canvas& canvas, NSRect dirtyRect);

  // Events. The mouse hooks of a view do nothing; a key goes on to the parent.
  /// The topmost visible view under a point in the parent's coordinates; null when outside.
  virtual NSView* hitTest(NSPoint pointInSuperview);
  virtual bool acceptsFirstMouse(const NSEvent* event);
  virtual void mouseDown(const NSEvent* event);
  virtual void mouseDragged(const NSEvent* event);
  virtual void mouseUp(const NSEvent* event);
  /// Hook: the press that went to this view sees no release.
  virtual void mouseCancelled();
  virtual void keyDown(const NSEvent* event);

  /// Turns the press that the event belongs to into a drag; the press ends, without a release for
  /// the view. Null, with nothing changed, when no drag can begin.
  std::shared_ptr<NSDraggingSession> beginDraggingSessionWithItems_event_source(
      std::vector<std::shared_ptr<NSDraggingItem>> items, const NSEvent* event,
      std::shared_ptr<NSDraggingSource> source);

  // Accessibility, which the keyboard uses as well
  /// What is told while the pointer rests on the view; none: nothing.
  virtual std::optional<std::string> toolTip() const { return std::nullopt; }

  virtual NSAccessibilityRole accessibilityRole() const { return NSAccessibilityRole::none; }
  /// What it is called, in the user's language; empty for what needs no name.
  virtual std::string accessibilityLabel() const { return accessibilityLabel_; }
  void setAccessibilityLabel(std::string label) { accessibilityLabel_ = std::move(label); }
  /// Of what another view tells as well.
  void setAccessibilityHidden(bool hidden) { accessibilityHidden_ = hidden; }
  bool isAccessibilityHidden() const { return accessibilityHidden_; }
  /// None for what has no value at present.
  virtual std::optional<NSAccessibilityValue> accessibilityValue() const { return std::nullopt; }
  /// As the user does it with the pointer; false when it cannot be done.
  virtual bool setAccessibilityValue(double) { return false; }
  virtual bool accessibilityPerformPress() { return false; }
  bool isHidden() const { return hidden_; }

  // Full screen
  bool isInFullScreenMode() const { return inFullScreenMode_; }
  void enterFullScreenMode() { inFullScreenMode_ = true; }
  void exitFullScreenModeWithOptions() { inFullScreenMode_ = false; }

 private:
  friend class NSWindow;
  friend class NSViewController;
  void setWindow(NSWindow* window);
  void updateAppearance(bool visible);

  NSRect frame_;
  std::vector<std::shared_ptr<NSView>> subviews_;
  NSView* superview_ = nullptr;  // never outlives it: a parent detaches its subviews first
  NSWindow* window_ = nullptr;   // likewise
  NSViewController* controller_ = nullptr;  // set by the controller, cleared when it goes
  std::string accessibilityLabel_;
  double alphaValue_ = 1;
  bool hidden_ = false;
  bool accessibilityHidden_ = false;
  bool inFullScreenMode_ = false;
  std::optional<NSLayer> layer_;
};

/// A view that wraps another one as its document.
class NSScrollView : public NSView {
 public:
  using NSView::NSView;
  const std::shared_ptr<NSView>& documentView() const { return documentView_; }
  void setDocumentView(std::shared_ptr<NSView> view);

 private:
  std::shared_ptr<NSView> documentView_;
};

}  // namespace platform

// The window's side of the view tree: marks, painting, event routing, appearance calls.
#pragma once

#include <functional>
#include <memory>

#include "platform/view/view.h"

namespace platform {

/// Hosts a view tree in something that is shown on a screen. The desktop's window paints it when
/// asked and passes its events on; tests do the same by hand.
class NSWindow : public NSObject {
 public:
  ~NSWindow() override;

  const std::shared_ptr<NSView>& contentView() const { return contentView_; }
  void setContentView(std::shared_ptr<NSView> view);

  /// Showing and hiding sends viewWillAppear and viewWillDisappear to the controllers inside.
  bool isVisible() const { return visible_; }
  void setVisible(bool visible);

  /// Called with each marked rectangle, in window coordinates.
  void setMarkHandler(std::function<void(NSRect)> handler) { markHandler_ = std::move(handler); }

  /// Paints what meets the rectangle (window coordinates).
  void display(Canvas& canvas, NSRect dirtyRect);

  /// Routes an event: the view under a press gets its drags and its release as well; keys go to
  /// the view last pressed, else to the content. Keeps NSApplication's current event and pressed
  /// buttons.
  void sendEvent(const NSEvent& event);

  /// Forgets a press that will see no release (a drag took the pointer over, or it was lost).
  void cancelMouseTracking();

 private:
  friend class NSView;
  void mark(NSRect rect);

  std::shared_ptr<NSView> contentView_;
  std::weak_ptr<NSView> pressedView_;
  std::weak_ptr<NSView> firstResponder_;
  std::function<void(NSRect)> markHandler_;
  bool visible_ = false;
};

}  // namespace platform

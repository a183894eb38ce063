// Controllers: the owners of a view that are told when it comes on screen and leaves it.
#pragma once

#include <functional>
#include <memory>

#include "platform/view/view.h"

namespace platform {

/// Owns one view. When the view enters a visible window (or its window is shown) the controller
/// gets viewWillAppear once, when it leaves viewWillDisappear once, just before it is removed.
class NSViewController : public NSObject {
 public:
  ~NSViewController() override;

  const std::shared_ptr<NSView>& view() const { return view_; }
  void setView(std::shared_ptr<NSView> view);

  /// Hooks.
  virtual void viewWillAppear() {}
  virtual void viewWillDisappear() {}

  NSSize preferredContentSize() const { return preferredContentSize_; }
  void setPreferredContentSize(NSSize size);
  /// Called after every change of the preferred content size.
  void setPreferredContentSizeHandler(std::function<void(NSSize)> handler) {
    preferredContentSizeHandler_ = std::move(handler);
  }

 private:
  friend class NSView;
  void viewVisibilityChanged(bool visible);

  std::shared_ptr<NSView> view_;
  NSSize preferredContentSize_;
  std::function<void(NSSize)> preferredContentSizeHandler_;
  bool appeared_ = false;
};

}  // namespace platform

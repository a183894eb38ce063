#include "platform/view/view_controller.h"

namespace platform {

NSViewController::~NSViewController() {
  if (view_ && view_->controller_ == this) view_->controller_ = nullptr;
}

void NSViewController::setView(std::shared_ptr<NSView> view) {
  if (view_ && view_->controller_ == this) view_->controller_ = nullptr;
  view_ = std::move(view);
  if (view_) view_->controller_ = this;
}

void NSViewController::setPreferredContentSize(NSSize size) {
  if (size == preferredContentSize_) return;
  preferredContentSize_ = size;
  if (preferredContentSizeHandler_) preferredContentSizeHandler_(size);
}

void NSViewController::viewVisibilityChanged(bool visible) {
  if (visible == appeared_) return;
  const auto self = shared_from_this();
  appeared_ = visible;
  if (visible) {
    viewWillAppear();
  } else {
    viewWillDisappear();
  }
}

}  // namespace platform

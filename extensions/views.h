// Snapshots of views and changes to their tree. Null is a legal receiver everywhere.
#pragma once

#include <memory>

#include "platform/foundation/image.h"
#include "platform/view/view.h"

namespace virelune {

/// A snapshot of the view and its subviews, as large as its bounds; null when the bounds are
/// empty or there is nothing to draw with.
std::shared_ptr<platform::NSImage> vl_image(const std::shared_ptr<platform::NSView>& view);

/// A new scroll view in the view's frame with the view, moved to the origin, as its document.
/// The caller adds the scroll view where it belongs; null without a view.
std::shared_ptr<platform::NSScrollView> vl_embededInScrollView(
    const std::shared_ptr<platform::NSView>& view);

/// Removes every subview that the view has when the call begins; false when it has none.
bool vl_removeSubviews(const std::shared_ptr<platform::NSView>& view);

}  // namespace virelune

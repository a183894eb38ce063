#include "extensions/views.h"

#include "platform/graphics/canvas.h"
#include "platform/graphics/graphics.h"
#include "platform/platform.h"

using platform::NSImage;
using platform::NSScrollView;
using platform::NSView;

namespace virelune {

std::shared_ptr<NSImage> vl_image(const std::shared_ptr<NSView>& view) {
  auto* graphics = platform::current().graphics;
  if (view == nullptr || graphics == nullptr) return nullptr;
  const auto bounds = view->bounds();
  if (bounds.isEmpty()) return nullptr;
  return graphics->render(bounds.size,
                          [&](platform::Canvas& canvas) { view->displayRect(canvas, bounds); });
}

std::shared_ptr<NSScrollView> vl_embededInScrollView(const std::shared_ptr<NSView>& view) {
  if (view == nullptr) return nullptr;
  auto scrollView = platform::make<NSScrollView>(view->frame());
  view->setFrameOrigin({0, 0});
  scrollView->setDocumentView(view);
  return scrollView;
}

bool vl_removeSubviews(const std::shared_ptr<NSView>& view) {
  if (view == nullptr || view->subviews().empty()) return false;
  const auto subviews = view->subviews();
  for (const auto& subview : subviews) subview->removeFromSuperview();
  return true;
}

}  // namespace virelune

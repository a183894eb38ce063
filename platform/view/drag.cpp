#include "platform/view/drag.h"

#include <utility>

#include "platform/platform.h"
#include "platform/view/view.h"
#include "platform/view/window.h"

namespace platform {

void NSDraggingItem::setDraggingFrame_contents(NSRect frame, std::shared_ptr<NSImage> contents) {
  draggingFrame_ = frame;
  contents_ = std::move(contents);
}

NSDraggingSession::NSDraggingSession(std::vector<std::shared_ptr<NSDraggingItem>> items,
                                     std::shared_ptr<NSDraggingSource> source, NSPoint location)
    : pasteboard_(make<NSPasteboard>(NSPasteboardNameDrag)),
      items_(std::move(items)),
      source_(std::move(source)),
      location_(location) {
  std::vector<std::shared_ptr<NSPasteboardItem>> data;
  for (const auto& item : items_) data.push_back(item->item());
  pasteboard_->writeObjects(std::move(data));
}

std::shared_ptr<NSDraggingSession> NSView::beginDraggingSessionWithItems_event_source(
    std::vector<std::shared_ptr<NSDraggingItem>> items, const NSEvent* event,
    std::shared_ptr<NSDraggingSource> source) {
  DragBackend* drag = current().drag;
  if (drag == nullptr || window_ == nullptr || event == nullptr || items.empty() || !source) {
    return nullptr;
  }
  auto session = make<NSDraggingSession>(std::move(items), std::move(source),
                                         convertPointFromWindow(event->locationInWindow));
  if (!drag->begin(session)) return nullptr;
  // The release belongs to the drag; here it must neither click nor be waited for.
  window_->cancelMouseTracking();
  return session;
}

}  // namespace platform

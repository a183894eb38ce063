// Dragging sessions: what the user drags out of a view, and the desktop that takes it.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/geometry.h"
#include "platform/foundation/image.h"
#include "platform/foundation/object.h"
#include "platform/view/event.h"
#include "platform/view/pasteboard.h"

namespace platform {

class NSDraggingSession;

enum NSDragOperation : unsigned { NSDragOperationNone = 0, NSDragOperationCopy = 1 };
enum class NSDraggingContext { outsideApplication = 0, withinApplication = 1 };

/// Decides how what it has begun to drag may be used.
class NSDraggingSource {
 public:
  virtual ~NSDraggingSource() = default;
  virtual NSDragOperation draggingSession_sourceOperationMaskForDraggingContext(
      NSDraggingSession* session, NSDraggingContext context) = 0;
};

/// One thing being dragged: its data, and its picture where it lay in its view.
class NSDraggingItem : public NSObject {
 public:
  explicit NSDraggingItem(std::shared_ptr<NSPasteboardItem> item) : item_(std::move(item)) {}

  const std::shared_ptr<NSPasteboardItem>& item() const { return item_; }
  /// The frame is in the coordinates of the view that is dragged from.
  void setDraggingFrame_contents(NSRect frame, std::shared_ptr<NSImage> contents);
  NSRect draggingFrame() const { return draggingFrame_; }
  const std::shared_ptr<NSImage>& contents() const { return contents_; }

 private:
  const std::shared_ptr<NSPasteboardItem> item_;
  NSRect draggingFrame_;
  std::shared_ptr<NSImage> contents_;
};

/// A drag under way. It lives until no receiver can ask for its data any more, and so does its
/// source.
class NSDraggingSession : public NSObject {
 public:
  NSDraggingSession(std::vector<std::shared_ptr<NSDraggingItem>> items,
                    std::shared_ptr<NSDraggingSource> source, NSPoint location);

  NSPasteboard& draggingPasteboard() const { return *pasteboard_; }
  const std::vector<std::shared_ptr<NSDraggingItem>>& items() const { return items_; }
  NSDraggingSource& source() const { return *source_; }
  /// Where the pointer took hold, in the coordinates of the items' frames.
  NSPoint draggingLocation() const { return location_; }

 private:
  const std::shared_ptr<NSPasteboard> pasteboard_;
  const std::vector<std::shared_ptr<NSDraggingItem>> items_;
  const std::shared_ptr<NSDraggingSource> source_;
  const NSPoint location_;
};

/// Drag and drop as the desktop does it.
class DragBackend {
 public:
  virtual ~DragBackend() = default;
  /// Takes a drag over from the pressed left button, and answers at once; false when it cannot.
  /// From then on the pasteboard answers the receivers, on the main thread.
  virtual bool begin(std::shared_ptr<NSDraggingSession> session) = 0;
};

}  // namespace platform

// The artwork button's drag-out: a picture file for file managers, PNG bytes for the rest.
#include <filesystem>

#include "controls/artwork_button.h"
#include "extensions/pasteboard.h"
#include "platform/foundation/date_formatter.h"
#include "platform/foundation/file_manager.h"
#include "platform/foundation/url.h"
#include "platform/loop/run_loop.h"
#include "platform/platform.h"

using platform::Data;
using platform::NSBitmapImageFileType;
using platform::NSDraggingItem;
using platform::NSEvent;
using platform::NSPasteboard;
using platform::NSPasteboardItem;

namespace virelune {
namespace {

constexpr double jpegQuality = 1.0;

/// None for a type that the button does not write.
std::optional<std::string> extensionForType(NSBitmapImageFileType type) {
  switch (type) {
    case NSBitmapImageFileType::jpeg:
      return "jpg";
    case NSBitmapImageFileType::png:
      return "png";
  }
  return std::nullopt;
}

std::optional<std::string> fileName(const std::optional<std::string>& name,
                                    NSBitmapImageFileType type) {
  const auto extension = extensionForType(type);
  if (!name || name->empty() || !extension) return std::nullopt;
  return *name + "." + *extension;
}

}  // namespace

// The session

std::vector<std::string> VLArtworkButton::draggingTypes() const {
  return {platform::NSPasteboardTypePNG, platform::NSPasteboardTypePromisedFileURL};
}

bool VLArtworkButton::beginDraggingSessionWithEvent(const NSEvent* event) {
  auto types = draggingTypes();
  if (image() == nullptr || types.empty()) return false;
  const auto self = std::static_pointer_cast<VLArtworkButton>(shared_from_this());
  const auto item = platform::make<NSPasteboardItem>();
  item->setDataProvider_forTypes(self, std::move(types));
  const auto draggingItem = platform::make<NSDraggingItem>(item);
  draggingItem->setDraggingFrame_contents(bounds(), image());
  return beginDraggingSessionWithItems_event_source({draggingItem}, event, self) != nullptr;
}

platform::NSDragOperation VLArtworkButton::draggingSession_sourceOperationMaskForDraggingContext(
    platform::NSDraggingSession*, platform::NSDraggingContext) {
  return platform::NSDragOperationCopy;
}

// The data

void VLArtworkButton::pasteboard_item_provideDataForType(NSPasteboard* pasteboard,
                                                         NSPasteboardItem* item,
                                                         const std::string& type) {
  if (item == nullptr) return;
  if (type == platform::NSPasteboardTypePromisedFileURL) {
    const auto directory = vl_copyPasteLocation(pasteboard);
    if (!directory || directory->empty()) return;
    const auto path = saveImageInDirectory(*directory);
    const auto url = path ? platform::URL::fileURLWithPath(*path) : std::nullopt;
    if (url) item->setString_forType(url->absoluteString(), type);
  } else if (type == platform::NSPasteboardTypePNG) {
    if (auto data = imageDataForType(NSBitmapImageFileType::png)) {
      item->setData_forType(std::move(*data), type);
    }
  }
}

std::optional<Data> VLArtworkButton::imageDataForType(NSBitmapImageFileType type) const {
  auto* graphics = platform::current().graphics;
  if (image() == nullptr || graphics == nullptr) return std::nullopt;
  auto data = graphics->encode(*image(), type, jpegQuality);
  return data.isEmpty() ? std::nullopt : std::optional(std::move(data));
}

// The file

std::optional<std::string> VLArtworkButton::imageName() const {
  const auto* runLoop = platform::current().runLoop;
  if (runLoop == nullptr) return std::nullopt;
  platform::NSDateFormatter formatter;
  formatter.setDateFormat("yyyy-MM-dd HH-mm-ss");
  return formatter.stringFromDate(runLoop->date());
}

std::optional<std::string> VLArtworkButton::imagePathForDirectory_withType(
    const std::string& directory, NSBitmapImageFileType type) const {
  std::error_code error;
  if (directory.empty() || !std::filesystem::is_directory(directory, error)) return std::nullopt;
  const auto name = fileName(imageName(), type);
  return name ? std::optional((std::filesystem::path(directory) / *name).string()) : std::nullopt;
}

std::optional<std::string> VLArtworkButton::saveImageInDirectory(
    const std::string& directory) const {
  const auto data = imageDataForType(NSBitmapImageFileType::jpeg);
  if (!data) return std::nullopt;
  auto path = imagePathForDirectory_withType(directory, NSBitmapImageFileType::jpeg);
  // Whoever asked for the file sees by itself whether it is there.
  if (path) platform::writeToFileAtomically(*path, data->view());
  return path;
}

}  // namespace virelune

#include "platform/view/pasteboard.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "platform/foundation/url.h"

namespace platform {

void NSPasteboardItem::setDataProvider_forTypes(
    std::shared_ptr<NSPasteboardItemDataProvider> provider, std::vector<std::string> types) {
  provider_ = std::move(provider);
  types_ = std::move(types);
}

void NSPasteboardItem::setString_forType(std::string_view text, const std::string& type) {
  setData_forType(Data::fromText(text), type);
}

std::optional<Data> NSPasteboardItem::providedData(NSPasteboard& pasteboard,
                                                   const std::string& type) {
  // An earlier answer no longer holds: the receiver may have named another folder.
  data_.erase(type);
  if (provider_) provider_->pasteboard_item_provideDataForType(&pasteboard, this, type);
  const auto found = data_.find(type);
  return found != data_.end() ? std::optional(found->second) : std::nullopt;
}

void NSPasteboard::writeObjects(std::vector<std::shared_ptr<NSPasteboardItem>> items) {
  items_ = std::move(items);
}

std::vector<std::string> NSPasteboard::types() const {
  std::vector<std::string> types;
  for (const auto& item : items_) {
    types.insert(types.end(), item->types().begin(), item->types().end());
  }
  return types;
}

std::optional<Data> NSPasteboard::dataForType(const std::string& type) {
  for (const auto& item : items_) {
    const auto& types = item->types();
    if (std::find(types.begin(), types.end(), type) == types.end()) continue;
    return item->providedData(*this, type);
  }
  return std::nullopt;
}

std::optional<std::string> NSPasteboard::receivePromisedFileInDirectory(
    const std::string& directory) {
  pasteLocation_ = directory;
  const auto address = dataForType(NSPasteboardTypePromisedFileURL);
  pasteLocation_.reset();
  const auto url = address ? URL::fromText(address->view()) : std::nullopt;
  auto path = url ? url->filePath() : std::nullopt;
  std::error_code error;
  return path && std::filesystem::is_regular_file(*path, error) ? path : std::nullopt;
}

}  // namespace platform

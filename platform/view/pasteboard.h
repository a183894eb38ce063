// Pasteboards: data of several types, made when a receiver asks for them.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/data.h"
#include "platform/foundation/object.h"

namespace platform {

class NSPasteboard;
class NSPasteboardItem;

inline constexpr const char* NSPasteboardNameDrag = "drag";

inline constexpr const char* NSPasteboardTypePNG = "public.png";
/// The address of a file that is written, where the receiver wants it, when it asks.
inline constexpr const char* NSPasteboardTypePromisedFileURL =
    "com.apple.pasteboard.promised-file-url";

/// Makes the data that a pasteboard item promises.
class NSPasteboardItemDataProvider {
 public:
  virtual ~NSPasteboardItemDataProvider() = default;
  /// Hook: puts the data of a promised type on the item, or nothing when it cannot.
  virtual void pasteboard_item_provideDataForType(NSPasteboard* pasteboard, NSPasteboardItem* item,
                                                  const std::string& type) = 0;
};

/// One thing on a pasteboard, in one or more types.
class NSPasteboardItem : public NSObject {
 public:
  /// Promises data of these types, the preferred one first. The item holds its provider until it
  /// goes itself: what was promised can be had.
  void setDataProvider_forTypes(std::shared_ptr<NSPasteboardItemDataProvider> provider,
                                std::vector<std::string> types);
  const std::vector<std::string>& types() const { return types_; }

  void setData_forType(Data data, const std::string& type) { data_[type] = std::move(data); }
  void setString_forType(std::string_view text, const std::string& type);

 private:
  friend class NSPasteboard;
  std::optional<Data> providedData(NSPasteboard& pasteboard, const std::string& type);

  std::shared_ptr<NSPasteboardItemDataProvider> provider_;
  std::vector<std::string> types_;
  std::map<std::string, Data> data_;
};

/// What passes from a source to a receiver. Main thread only.
class NSPasteboard : public NSObject {
 public:
  explicit NSPasteboard(std::string name) : name_(std::move(name)) {}

  const std::string& name() const { return name_; }
  void writeObjects(std::vector<std::shared_ptr<NSPasteboardItem>> items);

  // What a receiver takes

  /// The types there are to be had, the preferred one first.
  std::vector<std::string> types() const;
  /// The data of a type, asked of their provider each time; none when there are none.
  std::optional<Data> dataForType(const std::string& type);
  /// Has the promised file written into a folder and answers its path; none when no file is there
  /// afterwards.
  std::optional<std::string> receivePromisedFileInDirectory(const std::string& directory);
  /// The folder that takes the promised file; none unless the receiver has just named one.
  const std::optional<std::string>& pasteLocation() const { return pasteLocation_; }

 private:
  const std::string name_;
  std::vector<std::shared_ptr<NSPasteboardItem>> items_;
  std::optional<std::string> pasteLocation_;
};

}  // namespace platform

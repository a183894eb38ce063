// The button that shows the track's artwork, lets it be dragged out, and finds a cover for an album
// that has none.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/data.h"
#include "platform/foundation/value.h"
#include "platform/graphics/graphics.h"
#include "platform/network/url_session.h"
#include "platform/view/button.h"
#include "platform/view/drag.h"

namespace virelune {

/// Shows the artwork; a click is its owner's business. A look-up asks the store's search service
/// for the album, then for its cover; each image shown and each look-up ends the one before.
class VLArtworkButton : public platform::NSButton,
                        public platform::NSDraggingSource,
                        public platform::NSPasteboardItemDataProvider {
 public:
  using NSButton::NSButton;
  ~VLArtworkButton() override;

  // Display

  /// Shows an image, and ends the look-up in progress.
  void setImage(std::shared_ptr<platform::NSImage> image) override;
  /// Shows an image and, when download is true, looks the album's cover up. Answers true.
  bool setArtwork_forArtist_withAlbum_download(std::shared_ptr<platform::NSImage> image,
                                               const std::optional<std::string>& artist,
                                               const std::optional<std::string>& album,
                                               bool download);

  // Clicks. The release inside the bounds clicks; a press is not highlighted, and any movement
  // while it lasts turns it into a drag.

  bool acceptsFirstMouse(const platform::NSEvent* event) override;
  void mouseDown(const platform::NSEvent* event) override;
  void mouseDragged(const platform::NSEvent* event) override;
  void mouseUp(const platform::NSEvent* event) override;

  // Dragging out. Nothing is encoded or written before a receiver asks for it, and then what is
  // shown at that moment. Main thread.

  /// The types offered, the preferred one first: PNG bytes, then the address of a promised file.
  std::vector<std::string> draggingTypes() const;
  /// Begins to drag the image; false without one and when the desktop takes no drag.
  bool beginDraggingSessionWithEvent(const platform::NSEvent* event);
  /// Answers copy, wherever the drag goes.
  platform::NSDragOperation draggingSession_sourceOperationMaskForDraggingContext(
      platform::NSDraggingSession* session, platform::NSDraggingContext context) override;
  /// Puts the PNG bytes, or the address of the file written into the drop's folder, on the item.
  void pasteboard_item_provideDataForType(platform::NSPasteboard* pasteboard,
                                          platform::NSPasteboardItem* item,
                                          const std::string& type) override;
  /// The image shown, in full size and at the highest quality; none when there is none or it
  /// cannot be encoded.
  std::optional<platform::Data> imageDataForType(platform::NSBitmapImageFileType type) const;
  /// The name of a file of this moment, without extension: "2016-03-05 14-07-09", local time.
  std::optional<std::string> imageName() const;
  /// The path of a file of this moment in a folder; none when that is no folder.
  std::optional<std::string> imagePathForDirectory_withType(
      const std::string& directory, platform::NSBitmapImageFileType type) const;
  /// Writes the image as JPEG into a folder, as a whole or not at all, and replaces a file of the
  /// same name. Answers the path, also when the writing failed; none without image or folder.
  std::optional<std::string> saveImageInDirectory(const std::string& directory) const;

  // Look-up. Searching, then loading the image, then idle. The requests complete on the URL
  // session's thread; the image is shown on the main thread.

  /// Numbers the requests of a button. What a completion goes on to do happens only while its
  /// request is the latest: later requests, cancellations and images leave it behind.
  using Request = std::uint64_t;

  /// Starts the search; false when either text is missing or empty. Main thread.
  bool startDownloadForArtist_withAlbum(const std::optional<std::string>& artist,
                                        const std::optional<std::string>& album);
  /// Starts to load the cover that the reply to a search names for the album; false when it names
  /// none. Any thread.
  bool handleIncomingJSONData_forArtist_withAlbum(const platform::Data& data,
                                                  const std::string& artist,
                                                  const std::string& album, Request finished);
  /// Starts to load an image; false when the text is not an address. Any thread.
  bool startDownloadForArtwork(const std::string& address, Request finished);
  /// Shows the image, the placeholder when the bytes are none. Answers true. Main thread.
  bool handleIncomingArtworkData(const platform::Data& data);
  /// Ends the look-up; false when no request was in flight. Main thread.
  bool cancelDownload(NSObject* sender);

  // Matching, in the "results" of a search reply. All texts compare without regard to case.

  /// The first entry of the artist whose album is the given one, else the first one whose album
  /// contains it. Null when there is none. The entry lies in the array.
  static const platform::Dictionary* iTMSfindInfoForArtist_withAlbum_inItems(
      const std::string& artist, const std::string& album, const platform::Array& items);
  /// The matching entry's text for a key; none when it is missing or empty.
  static std::optional<std::string> iTMSfindValueForArtist_withAlbum_inItems_withKey(
      const std::string& artist, const std::string& album, const platform::Array& items,
      const std::string& key);
  /// The address of the matching entry's cover, in the large size; none without one.
  static std::optional<std::string> iTMSfindArtworkAddressForArtist_withAlbum_inItems(
      const std::string& artist, const std::string& album, const platform::Array& items);

  /// The request in flight; null when there is none. Any thread.
  std::shared_ptr<platform::NSURLSessionDataTask> contentURLSessionDataTask() const;

 private:
  using Completion = std::function<void(const std::shared_ptr<VLArtworkButton>& button,
                                        const platform::Data& data, Request finished)>;

  Request latestRequest() const;
  bool isLatest(Request request) const { return latestRequest() == request; }
  bool startRequest(const platform::URL& url, Request finished, Completion completion);
  bool finishRequest(Request request);

  mutable std::mutex mutex_;
  Request latestRequest_ = 0;  // guarded by mutex_, as is the next
  std::shared_ptr<platform::NSURLSessionDataTask> contentURLSessionDataTask_;
};

}  // namespace virelune

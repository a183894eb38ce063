// What is on air on the live radio station: title, artist, album and artwork.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "extensions/collections.h"
#include "platform/foundation/data.h"
#include "platform/foundation/date.h"
#include "platform/foundation/image.h"
#include "platform/foundation/object.h"
#include "platform/foundation/url.h"
#include "platform/foundation/value.h"
#include "platform/loop/notification.h"
#include "platform/loop/run_loop.h"
#include "platform/network/url_session.h"
#include "widget/constants.h"

namespace virelune {

/// Follows the station's programme playlist (HLS, RFC 8216). One cycle fetches the playlist, the
/// head of a segment near the live edge, and the artwork that the segment's ID3 tag points to;
/// then it posts VLBeats1InfoLoaderNotificationName_Update and waits until the next segment is
/// due, or five seconds after a failure, which is reported by the same notification with an empty
/// record. Main thread only. The transfers hold the loader weakly; destroying it stops it.
class VLBeats1InfoLoader : public platform::NSObject, public platform::NSURLSessionDelegate {
 public:
  /// A stretch of bytes; one that was not found lies at `notFound` and is empty.
  struct BytesRange {
    static constexpr std::uint64_t notFound = 0x7FFF'FFFF'FFFF'FFFF;
    std::uint64_t location = notFound;
    std::uint64_t length = 0;
    bool operator==(const BytesRange&) const = default;
  };

  VLBeats1InfoLoader() = default;
  ~VLBeats1InfoLoader() override;
  bool init() override;

  // For the owner.

  /// Starts afresh with the playlist; false when no request could be started.
  bool start(platform::NSObject* sender);
  /// Ends all activity; true when a transfer was recorded. Whatever still arrives is dropped.
  bool stop(platform::NSObject* sender);

  std::optional<std::string> infoTrackName() const;
  std::optional<std::string> infoTrackArtist() const;
  std::optional<std::string> infoTrackAlbum() const;
  std::shared_ptr<platform::NSImage> infoTrackArtwork() const;  ///< null: none

  // Addresses. None when a part is missing or the text is no address.

  static std::optional<std::string> streamBaseAddress();
  static std::optional<std::string> streamBaseAddressWithSubpath(std::string_view subpath);
  static std::optional<platform::URL> streamPlaylistURL();
  static std::optional<platform::URL> streamTrackURLWithName(std::string_view name);
  std::optional<std::string> artworkWebAddress() const;
  std::optional<platform::URL> artworkURL() const;

  // Requests and transfers. None when there is no address or no network.

  static std::optional<platform::NSMutableURLRequest> preparedURLRequestWithURL(
      const std::optional<platform::URL>& url);
  static std::optional<platform::NSURLRequest> preparedPlaylistRequest();
  static std::optional<platform::NSURLRequest> preparedTrackRequestWithName(std::string_view name);
  std::optional<platform::NSURLRequest> preparedArtworkRequest() const;
  std::shared_ptr<platform::NSURLSessionDataTask> preparedPlaylistConnection();
  std::shared_ptr<platform::NSURLSessionDataTask> preparedTrackConnectionWithName(
      std::string_view name);
  std::shared_ptr<platform::NSURLSessionDataTask> preparedArtworkConnection();
  bool startPlaylistConnection();
  bool startTrackConnectionWithName(std::string_view name);
  bool startArtworkConnection();

  // The steps of a cycle. Each answers false when the cycle fails there.

  void handleReceivedData(const std::optional<platform::Data>& data);
  bool handleReceivedDataForPlaylist(const std::optional<platform::Data>& data);
  bool handleReceivedDataForTrack(const std::optional<platform::Data>& data);
  bool handleReceivedDataForArtwork(const std::optional<platform::Data>& data);

  /// The lines of a playlist that name an audio segment; none when there is no such line.
  static std::optional<platform::Array> playlistTracksFromText(std::string_view text);
  /// When a segment starts, from the last "-" piece of its name ("…-20260731T120000Z.aac").
  static std::optional<platform::Date> trackDateFromName(std::string_view name);

  // The head of a segment: an ID3v2 tag, searched as raw bytes.

  /// Where the content of the first frame with that identifier lies; it may reach past the data.
  static BytesRange trackInfoBytesRangeForKey_fromData(std::string_view identifier,
                                                       const platform::Data& data);
  /// The text of a frame without control characters; none when it is missing, cut short, empty
  /// or not UTF-8.
  static std::optional<std::string> trackInfoTextForKey_fromData(std::string_view identifier,
                                                                 const platform::Data& data);
  /// The first "http….jpg" after the word "artwork".
  static std::optional<std::string> trackInfoArtworkWebAddressFromData(const platform::Data& data);

  // The record.

  /// Replaces one entry; null removes it. False for an empty key.
  bool trackInfoUpdateForKey_withValue(const std::string& key, platform::Value value);
  template <class T>
  std::optional<T> infoTrackValueForKey_andClass(std::string_view key) const {
    return vl_objectForKey_withClass<T>(contentTrackInfo_, key);
  }
  std::optional<std::string> infoTrackTextForKey(std::string_view key) const;
  bool cleanup(platform::NSObject* sender);

  // The reload timer.

  bool startTimer(platform::NSObject* sender);
  bool cancelTimer(platform::NSObject* sender);
  bool firedTimer(platform::NSTimer* timer);
  /// The longest duration of a segment in the recorded playlist, in seconds; 0: unknown.
  double infoPlaylistDuration() const;
  /// Seconds until the next cycle; 0: unknown.
  double infoPlaylistLoadingTimeInterval() const;

  // Notifications.

  static bool postNotification(const std::optional<platform::NSNotification>& notification);
  bool postInfoNotification();
  bool postErrorNotification();

  // Fields.

  const std::shared_ptr<platform::NSURLSessionDataTask>& contentURLSessionDataTask() const {
    return contentURLSessionDataTask_;
  }
  void setContentURLSessionDataTask(std::shared_ptr<platform::NSURLSessionDataTask> task) {
    contentURLSessionDataTask_ = std::move(task);
  }
  std::int64_t contentLoadingAction() const { return contentLoadingAction_; }
  void setContentLoadingAction(std::int64_t action) { contentLoadingAction_ = action; }
  const std::optional<platform::Dictionary>& contentTrackInfo() const { return contentTrackInfo_; }
  void setContentTrackInfo(std::optional<platform::Dictionary> info) {
    contentTrackInfo_ = std::move(info);
  }
  const std::shared_ptr<platform::NSTimer>& contentTimer() const { return contentTimer_; }
  void setContentTimer(std::shared_ptr<platform::NSTimer> timer) {
    contentTimer_ = std::move(timer);
  }

 private:
  std::shared_ptr<platform::NSURLSessionDataTask> preparedConnectionWithRequest(
      const std::optional<platform::NSURLRequest>& request);
  bool startConnection(std::shared_ptr<platform::NSURLSessionDataTask> task, std::int64_t action);

  std::shared_ptr<platform::NSURLSessionDataTask> contentURLSessionDataTask_;
  std::int64_t contentLoadingAction_ = VLBeats1InfoLoadingNone;
  std::optional<platform::Dictionary> contentTrackInfo_;
  std::shared_ptr<platform::NSTimer> contentTimer_;
};

}  // namespace virelune

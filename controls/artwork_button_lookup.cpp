// The artwork button's look-up of a cover in the store.
#include <string_view>
#include <utility>

#include "controls/artwork_button.h"
#include "extensions/collections.h"
#include "extensions/store_search.h"
#include "platform/application/bundle.h"
#include "platform/foundation/json.h"
#include "platform/foundation/text.h"
#include "platform/loop/run_loop.h"
#include "platform/platform.h"
#include "widget/constants.h"

using platform::Array;
using platform::Data;
using platform::Dictionary;
using platform::NSURLSession;
using platform::NSURLSessionDataTask;
using platform::URL;
using platform::Value;

namespace virelune {
namespace {

constexpr std::string_view smallCover = "100x100";
constexpr std::string_view largeCover = "1000x1000";

/// A text that is there and not empty; null otherwise.
const std::string* textForKey(const Dictionary* entry, std::string_view key) {
  const Value* value = vl_valueForKey(entry, key);
  const auto* text = value != nullptr ? value->get<std::string>() : nullptr;
  return text != nullptr && !text->empty() ? text : nullptr;
}

std::string replacingOccurrences(std::string text, std::string_view part,
                                 std::string_view replacement) {
  for (std::size_t at = text.find(part); at != std::string::npos;
       at = text.find(part, at + replacement.size())) {
    text.replace(at, part.size(), replacement);
  }
  return text;
}

}  // namespace

// Requests

VLArtworkButton::Request VLArtworkButton::latestRequest() const {
  const std::lock_guard lock(mutex_);
  return latestRequest_;
}

std::shared_ptr<NSURLSessionDataTask> VLArtworkButton::contentURLSessionDataTask() const {
  const std::lock_guard lock(mutex_);
  return contentURLSessionDataTask_;
}

/// Starts a request that takes the place of the finished one, unless another has done so already.
bool VLArtworkButton::startRequest(const URL& url, Request finished, Completion completion) {
  const auto session = NSURLSession::sharedSession();
  if (session == nullptr) return false;
  const Request request = finished + 1;
  const auto task = session->dataTaskWithURL_completionHandler(
      url, [weak = platform::weakReference(this), request, completion = std::move(completion)](
               std::optional<Data> data, const std::optional<std::string>&) {
        auto button = weak.lock();
        if (button == nullptr) return;
        if (button->finishRequest(request)) completion(button, data.value_or(Data()), request);
        // The owner may have let go of the button meanwhile; views end on the main thread.
        if (auto* runLoop = platform::current().runLoop) {
          runLoop->dispatchAsync([button = std::move(button)] {});
        }
      });
  if (task == nullptr) return false;
  {
    const std::lock_guard lock(mutex_);
    if (latestRequest_ != finished) return false;
    latestRequest_ = request;
    contentURLSessionDataTask_ = task;
  }
  task->resume();
  return true;
}

/// Notes that a request has completed; false when it had been left behind.
bool VLArtworkButton::finishRequest(Request request) {
  const std::lock_guard lock(mutex_);
  if (latestRequest_ != request) return false;
  contentURLSessionDataTask_ = nullptr;
  return true;
}

bool VLArtworkButton::cancelDownload(NSObject*) {
  std::shared_ptr<NSURLSessionDataTask> task;
  {
    const std::lock_guard lock(mutex_);
    ++latestRequest_;
    task = std::exchange(contentURLSessionDataTask_, nullptr);
  }
  if (task == nullptr) return false;
  task->cancel();
  return true;
}

// The search

bool VLArtworkButton::startDownloadForArtist_withAlbum(const std::optional<std::string>& artist,
                                                       const std::optional<std::string>& album) {
  cancelDownload(this);
  if (!artist || artist->empty() || !album || album->empty()) return false;
  const auto url =
      storeSearchURL("term=" + storeSearchTerm(*artist + " " + *album) + "&entity=album");
  if (!url) return false;
  return startRequest(
      *url, latestRequest(),
      [artist = *artist, album = *album](const auto& button, const Data& data, Request finished) {
        button->handleIncomingJSONData_forArtist_withAlbum(data, artist, album, finished);
      });
}

bool VLArtworkButton::handleIncomingJSONData_forArtist_withAlbum(const Data& data,
                                                                 const std::string& artist,
                                                                 const std::string& album,
                                                                 Request finished) {
  if (data.isEmpty()) return false;
  const auto reply = platform::jsonObjectWithData(data);
  if (!reply) return false;
  const Value* results = vl_valueForKey(reply->get<Dictionary>(), "results");
  const auto* items = results != nullptr ? results->get<Array>() : nullptr;
  if (items == nullptr) return false;
  const auto address = iTMSfindArtworkAddressForArtist_withAlbum_inItems(artist, album, *items);
  return address && startDownloadForArtwork(*address, finished);
}

// The image

bool VLArtworkButton::startDownloadForArtwork(const std::string& address, Request finished) {
  const auto url = URL::fromText(address);
  if (!url) return false;
  return startRequest(*url, finished,
                      [](const auto& button, const Data& data, Request finishedImage) {
                        auto* runLoop = platform::current().runLoop;
                        if (runLoop == nullptr) return;
                        // Decoded here, so that the main thread finds the image ready.
                        platform::imageWithData(data);
                        runLoop->dispatchAsync([button, data, finishedImage] {
                          if (button->isLatest(finishedImage))
                            button->handleIncomingArtworkData(data);
                        });
                      });
}

bool VLArtworkButton::handleIncomingArtworkData(const Data& data) {
  const auto image = platform::imageWithData(data);
  setImage(image != nullptr ? image : platform::imageNamed(VLImageArtworkBackground));
  return true;
}

// Matching

const Dictionary* VLArtworkButton::iTMSfindInfoForArtist_withAlbum_inItems(
    const std::string& artist, const std::string& album, const Array& items) {
  if (artist.empty() || album.empty()) return nullptr;
  const Dictionary* partial = nullptr;
  for (const Value& item : items) {
    const auto* entry = item.get<Dictionary>();
    const auto* entryArtist = textForKey(entry, "artistName");
    const auto* entryAlbum = textForKey(entry, "collectionName");
    if (entryArtist == nullptr || entryAlbum == nullptr) continue;
    if (!platform::caseInsensitiveEqual(*entryArtist, artist)) continue;
    if (platform::caseInsensitiveEqual(*entryAlbum, album)) return entry;
    if (partial == nullptr && platform::caseInsensitiveContains(*entryAlbum, album)) {
      partial = entry;
    }
  }
  return partial;
}

std::optional<std::string> VLArtworkButton::iTMSfindValueForArtist_withAlbum_inItems_withKey(
    const std::string& artist, const std::string& album, const Array& items,
    const std::string& key) {
  const auto* text = textForKey(iTMSfindInfoForArtist_withAlbum_inItems(artist, album, items), key);
  return text != nullptr ? std::optional(*text) : std::nullopt;
}

std::optional<std::string> VLArtworkButton::iTMSfindArtworkAddressForArtist_withAlbum_inItems(
    const std::string& artist, const std::string& album, const Array& items) {
  auto address =
      iTMSfindValueForArtist_withAlbum_inItems_withKey(artist, album, items, "artworkUrl100");
  if (!address) return std::nullopt;
  return replacingOccurrences(std::move(*address), smallCover, largeCover);
}

}  // namespace virelune

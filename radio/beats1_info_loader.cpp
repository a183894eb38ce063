// The cycle: transfers, steps, record, reload timer and notifications.
#include "radio/beats1_info_loader.h"

#include <utility>

#include "extensions/collections.h"
#include "platform/foundation/text.h"
#include "platform/graphics/graphics.h"
#include "platform/platform.h"

namespace virelune {
namespace {

// Entries of the record.
constexpr const char* playlistKey = "playlist";
constexpr const char* tracksKey = "tracks";
constexpr const char* dateKey = "date";
constexpr const char* albumKey = "track album";
constexpr const char* artistKey = "track artist";
constexpr const char* nameKey = "track name";
constexpr const char* artworkAddress = "artwork web address";
constexpr const char* artworkKey = "track artwork";

constexpr double intervalAfterFailure = 5.0;  // seconds

template <class T>
platform::Value valueOrNull(std::optional<T> value) {
  return value ? platform::Value(std::move(*value)) : platform::Value();
}

bool isEmpty(const std::optional<platform::Data>& data) { return !data || data->isEmpty(); }

}  // namespace

VLBeats1InfoLoader::~VLBeats1InfoLoader() {
  cancelTimer(this);
  stop(this);
  cleanup(this);
}

bool VLBeats1InfoLoader::init() { return NSObject::init() && cleanup(this); }

bool VLBeats1InfoLoader::start(platform::NSObject*) {
  stop(this);
  cleanup(this);
  return startPlaylistConnection();
}

bool VLBeats1InfoLoader::stop(platform::NSObject*) {
  const auto task = std::exchange(contentURLSessionDataTask_, nullptr);
  if (task != nullptr) task->cancel();
  cancelTimer(this);
  cleanup(this);
  return task != nullptr;
}

// Transfers

std::shared_ptr<platform::NSURLSessionDataTask> VLBeats1InfoLoader::preparedConnectionWithRequest(
    const std::optional<platform::NSURLRequest>& request) {
  platform::RunLoop* mainRunLoop = platform::current().runLoop;
  if (!request || mainRunLoop == nullptr) return nullptr;
  const auto weak = platform::weakReference(this);
  const auto session = platform::NSURLSession::sessionWithConfiguration_delegate_delegateQueue(
      platform::NSURLSessionConfiguration::defaultSessionConfiguration(), weak, nullptr);
  if (session == nullptr) return nullptr;
  return session->dataTaskWithRequest_completionHandler(
      *request, [weak, session, mainRunLoop](std::optional<platform::Data> data,
                                             const std::optional<std::string>&) {
        session->finishTasksAndInvalidate();
        mainRunLoop->dispatchAsync([weak, session, data = std::move(data)] {
          const auto loader = weak.lock();
          if (loader == nullptr) return;
          // What was stopped or replaced meanwhile is no longer heard.
          const auto& recorded = loader->contentURLSessionDataTask();
          if (recorded != nullptr && recorded->session() == session) {
            loader->handleReceivedData(data);
          }
        });
      });
}

std::shared_ptr<platform::NSURLSessionDataTask> VLBeats1InfoLoader::preparedPlaylistConnection() {
  return preparedConnectionWithRequest(preparedPlaylistRequest());
}

std::shared_ptr<platform::NSURLSessionDataTask> VLBeats1InfoLoader::preparedTrackConnectionWithName(
    std::string_view name) {
  return preparedConnectionWithRequest(preparedTrackRequestWithName(name));
}

std::shared_ptr<platform::NSURLSessionDataTask> VLBeats1InfoLoader::preparedArtworkConnection() {
  return preparedConnectionWithRequest(preparedArtworkRequest());
}

bool VLBeats1InfoLoader::startConnection(std::shared_ptr<platform::NSURLSessionDataTask> task,
                                         std::int64_t action) {
  if (task == nullptr) return false;
  setContentLoadingAction(action);
  setContentURLSessionDataTask(task);
  task->resume();
  return true;
}

bool VLBeats1InfoLoader::startPlaylistConnection() {
  return startConnection(preparedPlaylistConnection(), VLBeats1InfoLoadingPlaylist);
}

bool VLBeats1InfoLoader::startTrackConnectionWithName(std::string_view name) {
  return startConnection(preparedTrackConnectionWithName(name), VLBeats1InfoLoadingTrack);
}

bool VLBeats1InfoLoader::startArtworkConnection() {
  return startConnection(preparedArtworkConnection(), VLBeats1InfoLoadingArtwork);
}

// Steps

void VLBeats1InfoLoader::handleReceivedData(const std::optional<platform::Data>& data) {
  bool succeeded = false;
  switch (contentLoadingAction()) {
    case VLBeats1InfoLoadingPlaylist:
      succeeded = handleReceivedDataForPlaylist(data);
      break;
    case VLBeats1InfoLoadingTrack:
      succeeded = handleReceivedDataForTrack(data);
      break;
    case VLBeats1InfoLoadingArtwork:
      succeeded = handleReceivedDataForArtwork(data);
      break;
    default:
      return;
  }
  if (succeeded) return;
  cleanup(this);
  postErrorNotification();
  startTimer(this);
}

bool VLBeats1InfoLoader::handleReceivedDataForPlaylist(const std::optional<platform::Data>& data) {
  if (isEmpty(data) || !platform::isValidUTF8(data->view())) return false;
  trackInfoUpdateForKey_withValue(playlistKey, std::string(data->view()));

  const auto tracks = playlistTracksFromText(data->view());
  if (!tracks) return false;
  trackInfoUpdateForKey_withValue(tracksKey, *tracks);

  // The third from the end is complete on every server; a short playlist leaves only its end.
  const auto count = static_cast<std::int64_t>(tracks->size());
  const auto name =
      vl_objectAtIndex_withClass<std::string>(*tracks, count >= 4 ? count - 3 : count - 1);
  if (!name || name->empty()) return false;
  trackInfoUpdateForKey_withValue(dateKey, valueOrNull(trackDateFromName(*name)));
  return startTrackConnectionWithName(*name);
}

bool VLBeats1InfoLoader::handleReceivedDataForTrack(const std::optional<platform::Data>& data) {
  if (isEmpty(data)) return false;
  const auto updateText = [&](const char* key, std::string_view identifier) {
    trackInfoUpdateForKey_withValue(key,
                                    valueOrNull(trackInfoTextForKey_fromData(identifier, *data)));
  };
  updateText(albumKey, "TALB");
  updateText(artistKey, "TPE1");
  updateText(nameKey, "TIT2");
  trackInfoUpdateForKey_withValue(artworkAddress,
                                  valueOrNull(trackInfoArtworkWebAddressFromData(*data)));
  return startArtworkConnection();
}

bool VLBeats1InfoLoader::handleReceivedDataForArtwork(const std::optional<platform::Data>& data) {
  const auto image = isEmpty(data) ? nullptr : platform::imageWithData(*data);
  trackInfoUpdateForKey_withValue(artworkKey, image);
  postInfoNotification();
  return startTimer(this);
}

// Record

bool VLBeats1InfoLoader::trackInfoUpdateForKey_withValue(const std::string& key,
                                                         platform::Value value) {
  if (key.empty()) return false;
  if (!contentTrackInfo_) contentTrackInfo_.emplace();
  contentTrackInfo_->erase(key);
  if (!value.isNull()) contentTrackInfo_->emplace(key, std::move(value));
  return true;
}

std::optional<std::string> VLBeats1InfoLoader::infoTrackTextForKey(std::string_view key) const {
  auto text = infoTrackValueForKey_andClass<std::string>(key);
  return text && !text->empty() ? std::move(text) : std::nullopt;
}

std::optional<std::string> VLBeats1InfoLoader::infoTrackName() const {
  return infoTrackTextForKey(nameKey);
}

std::optional<std::string> VLBeats1InfoLoader::infoTrackArtist() const {
  return infoTrackTextForKey(artistKey);
}

std::optional<std::string> VLBeats1InfoLoader::infoTrackAlbum() const {
  return infoTrackTextForKey(albumKey);
}

std::shared_ptr<platform::NSImage> VLBeats1InfoLoader::infoTrackArtwork() const {
  return infoTrackValueForKey_andClass<std::shared_ptr<platform::NSImage>>(artworkKey)
      .value_or(nullptr);
}

bool VLBeats1InfoLoader::cleanup(platform::NSObject*) {
  cancelTimer(this);
  setContentLoadingAction(VLBeats1InfoLoadingNone);
  setContentURLSessionDataTask(nullptr);
  setContentTrackInfo(std::nullopt);
  setContentTimer(nullptr);
  return true;
}

// Reload timer

bool VLBeats1InfoLoader::startTimer(platform::NSObject*) {
  cancelTimer(this);
  double interval = infoPlaylistLoadingTimeInterval();
  if (!(interval > 0)) interval = intervalAfterFailure;
  auto timer =
      platform::NSTimer::timerWithTimeInterval(interval, this, &VLBeats1InfoLoader::firedTimer);
  platform::RunLoop* runLoop = platform::RunLoop::currentRunLoop();
  if (timer == nullptr || runLoop == nullptr) return false;
  setContentTimer(timer);
  runLoop->addTimer(timer);
  return true;
}

bool VLBeats1InfoLoader::cancelTimer(platform::NSObject*) {
  const auto timer = std::exchange(contentTimer_, nullptr);
  if (timer == nullptr) return false;
  timer->invalidate();
  return true;
}

bool VLBeats1InfoLoader::firedTimer(platform::NSTimer*) {
  cancelTimer(this);
  return start(this);
}

// Notifications

bool VLBeats1InfoLoader::postNotification(
    const std::optional<platform::NSNotification>& notification) {
  auto* queue = platform::NSNotificationQueue::defaultQueue();
  if (!notification || queue == nullptr) return false;
  queue->enqueueNotification(*notification, platform::NSPostWhenIdle);
  return true;
}

bool VLBeats1InfoLoader::postInfoNotification() {
  return postNotification(
      platform::NSNotification(VLBeats1InfoLoaderNotificationName_Update, shared_from_this()));
}

bool VLBeats1InfoLoader::postErrorNotification() {
  postInfoNotification();
  return true;
}

}  // namespace virelune

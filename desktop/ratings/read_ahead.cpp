#include "desktop/ratings/read_ahead.h"

#include <utility>

#include "platform/platform.h"

namespace desktop {

namespace {

/// What was read lies in the system's memory for so long at least, unless that runs short.
constexpr platform::TimeInterval remembered = 60;

}  // namespace

ReadAhead::ReadAhead(platform::DispatchQueue& reader, std::filesystem::path file,
                     std::function<void()> read)
    : reader_(reader),
      file_(std::move(file)),
      read_(std::move(read)),
      self_(std::make_shared<ReadAhead*>(this)) {}

bool ReadAhead::hasRead(const TrackIdentity& track, const std::string& player) {
  platform::RunLoop* runLoop = platform::current().runLoop;
  if (track == track_) {
    if (isReading_) return false;
    if (readAt_ && runLoop->now() - *readAt_ < remembered) return true;
  }
  track_ = track;
  isReading_ = true;
  reader_.async([weak = std::weak_ptr(self_), runLoop, file = file_, track, player] {
    RatingsStore::readAhead(file, track, player);
    runLoop->dispatchAsync([weak, runLoop, track] {
      const auto self = weak.lock();
      if (!self || (*self)->track_ != track) return;
      (*self)->isReading_ = false;
      (*self)->readAt_ = runLoop->now();
      (*self)->read_();
    });
  });
  return false;
}

}  // namespace desktop

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
  const auto now = platform::current().runLoop->now();
  if (track == track_ && readAt_ && now - *readAt_ < remembered) return true;
  track_ = track;
  player_ = player;
  readAt_.reset();
  if (!isReading_) begin();
  return false;
}

void ReadAhead::begin() {
  isReading_ = true;
  reader_.async([weak = std::weak_ptr(self_), runLoop = platform::current().runLoop, file = file_,
                 track = track_, player = player_] {
    RatingsStore::readAhead(file, track, player);
    runLoop->dispatchAsync([weak, track] {
      if (const auto self = weak.lock()) (*self)->complete(track);
    });
  });
}

void ReadAhead::complete(const TrackIdentity& track) {
  isReading_ = false;
  if (track != track_) return begin();
  readAt_ = platform::current().runLoop->now();
  read_();
}

}  // namespace desktop

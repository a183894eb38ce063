#include "desktop/ratings/moved_files.h"

#include <cstdlib>
#include <filesystem>

#include "platform/loop/dispatch.h"
#include "platform/loop/run_loop.h"
#include "platform/platform.h"

namespace desktop {

namespace {

namespace fs = std::filesystem;

fs::path pathOf(const TrackIdentity& track) { return pathOfFileAddress(track.address); }

/// True when it is known that there is no such file: not when the disk cannot be asked.
bool hasGone(const fs::path& path) {
  std::error_code error;
  return fs::status(path, error).type() == fs::file_type::not_found;
}

/// True when one file of the folder, and no other, begins with a name that was cut at '#' or '?'.
bool isOnlyOneCutTo(const fs::path& cut) {
  int found = 0;
  std::error_code error;
  for (fs::directory_iterator each(cut.parent_path(), error), end; !error && each != end;
       each.increment(error)) {
    const std::string name = each->path().filename();
    const std::string start = cut.filename();
    if (name.starts_with(start + '#') || name.starts_with(start + '?')) ++found;
  }
  return !error && found == 1;
}

}  // namespace

std::optional<TrackIdentity> formerIdentity(const TrackIdentity& track,
                                            const std::vector<TrackIdentity>& namesakes) {
  const fs::path path = pathOf(track);
  std::error_code error;
  if (!fs::is_regular_file(path, error)) return std::nullopt;
  const bool hasOnlyTitle = track.artist.empty() && track.album.empty();
  std::optional<TrackIdentity> found;
  for (const TrackIdentity& other : namesakes) {
    const fs::path former = pathOf(other);
    if (former.empty() || !hasGone(former)) continue;
    const bool isCut = path.native().starts_with(former.native() + '#') ||
                       path.native().starts_with(former.native() + '?');
    const auto difference = wholeSeconds(track.length) - wholeSeconds(other.length);
    if (isCut && std::abs(difference) <= 1 &&
        (areNamesakes(track, other) || isOnlyOneCutTo(former))) {
      return other;
    }
    const bool hasSameName = former.filename() == path.filename();
    if (isCut || (hasOnlyTitle && !hasSameName)) continue;
    if (!found || hasSameName) found = other;
  }
  return found;
}

MovedFiles::MovedFiles(RatingsStore& ratings, std::function<void()> moved)
    : ratings_(ratings), moved_(std::move(moved)), self_(std::make_shared<MovedFiles*>(this)) {}

void MovedFiles::heard(const TrackIdentity& track) {
  if (track.address == lastAddress_) return;
  lastAddress_ = track.address;
  platform::DispatchQueue* workers = platform::dispatch_get_global_queue();
  platform::RunLoop* runLoop = platform::current().runLoop;
  if (workers == nullptr || runLoop == nullptr) return;
  auto namesakes = ratings_.namesakes(track);
  if (namesakes.empty()) return;
  workers->async([weak = std::weak_ptr(self_), runLoop, track, namesakes = std::move(namesakes)] {
    const auto former = formerIdentity(track, namesakes);
    if (!former) return;
    runLoop->dispatchAsync([weak, track, former = *former] {
      if (const auto self = weak.lock()) (*self)->take(former, track);
    });
  });
}

void MovedFiles::take(const TrackIdentity& from, const TrackIdentity& to) {
  if (ratings_.moveTrack(from, to)) {
    moved_();
  } else {
    lastAddress_.clear();  // the next time that it is heard
  }
}

}  // namespace desktop

// Marks that follow their files when these are renamed, or come back under another mount point.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/ratings/store.h"

namespace desktop {

/// The one of a track's namesakes whose file this is, as far as the disk tells: it has gone, and
/// the track's file is there. Of several the one with the same file name comes first. An address
/// that was cut at '#' or '?' stands for the one file in its folder that begins so. Asks the disk,
/// which may take its time. None when there is no such one.
std::optional<TrackIdentity> formerIdentity(const TrackIdentity& track,
                                            const std::vector<TrackIdentity>& namesakes);

/// Looks after each track that is heard. Main thread only; the disk is asked on a worker.
class MovedFiles {
 public:
  /// `moved` is called when a track that was heard has got marks.
  MovedFiles(RatingsStore& ratings, std::function<void()> moved);

  /// Does nothing for a track that was heard last as well.
  void heard(const TrackIdentity& track);

 private:
  void take(const TrackIdentity& from, const TrackIdentity& to);

  RatingsStore& ratings_;
  const std::function<void()> moved_;
  std::string lastAddress_;
  const std::shared_ptr<MovedFiles*> self_;  ///< what workers hold weakly
};

}  // namespace desktop

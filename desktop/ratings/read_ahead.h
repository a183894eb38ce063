// Marks that are read before they are asked for.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "desktop/ratings/store.h"
#include "platform/loop/dispatch.h"
#include "platform/loop/run_loop.h"

namespace desktop {

/// Has a worker read what the store has of a track, so that the main thread finds it in memory and
/// does not wait for a disk that has gone to sleep. Main thread only.
class ReadAhead {
 public:
  /// `read` is called on the main thread when the track that was asked about last has been read.
  ReadAhead(platform::DispatchQueue& reader, std::filesystem::path file,
            std::function<void()> read);

  /// True when this track was read last, a short while ago; else it is read as soon as one that is
  /// being read is done.
  bool hasRead(const TrackIdentity& track, const std::string& player);

 private:
  void begin();
  void complete(const TrackIdentity& track);

  platform::DispatchQueue& reader_;
  const std::filesystem::path file_;
  const std::function<void()> read_;
  // What was asked about last.
  TrackIdentity track_;
  std::string player_;
  std::optional<platform::TimeInterval> readAt_;  ///< none before that is done
  bool isReading_ = false;                        ///< that or what was asked about before
  const std::shared_ptr<ReadAhead*> self_;        ///< what the reader holds weakly
};

}  // namespace desktop

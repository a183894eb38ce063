// The covers of tracks, from wherever there is one.
#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <vector>

#include "desktop/covers/sources.h"
#include "platform/loop/dispatch.h"
#include "platform/network/http.h"

namespace desktop {

/// Looks covers up and keeps those of the last albums, so that one cover asked for again and again
/// is the same bytes in the same place. Never waits: what is read or comes over the network is
/// announced when it is there, decoded already. Main thread only.
class Covers {
 public:
  /// The readers run what may take long, and may stay with a file that never answers; null: no
  /// covers. The callback runs on the main thread when a cover has come, changed or turned out
  /// missing.
  Covers(platform::DispatchQueue* readers, std::function<void()> arrived);
  ~Covers();
  Covers(const Covers&) = delete;
  Covers& operator=(const Covers&) = delete;

  /// True when the track has a cover or one is looked for.
  bool exists(const CoverWanted& wanted);
  /// Empty when there is none. Until it is known: the one of a track of the same album before.
  platform::Data bytes(const CoverWanted& wanted);

 private:
  struct Entry;
  struct Door;

  Entry& entryFor(const CoverWanted& wanted);
  void forget();
  void look(Entry& entry);
  void startTransfer(Entry& entry);
  void startReading(Entry& entry, platform::Data fetched);
  void complete(std::uint64_t number, platform::Data found);
  Entry* entryOf(std::uint64_t number);

  platform::DispatchQueue* const readers_;
  const std::function<void()> arrived_;
  std::list<Entry> entries_;  // the last one used in front
  std::uint64_t lookCount_ = 0;
  const std::shared_ptr<StandIns> standIns_;
  const std::shared_ptr<Door> door_;     // what readers go through to come back
  const std::shared_ptr<Covers*> self_;  // what transfers and readers hold weakly
};

}  // namespace desktop

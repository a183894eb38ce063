// The bytes behind the address of a cover: files, "data:" addresses (RFC 2397) and the web.
#pragma once

#include <QtCore/QString>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>

#include "platform/foundation/data.h"
#include "platform/network/http.h"

namespace desktop {

/// Looks covers up and keeps the last few, so that one cover asked for again and again is the
/// same bytes in the same place. Never waits: what comes over the network is announced when it
/// is there. Main thread only.
class PlayerArtwork {
 public:
  /// The callback runs on the main thread when a cover has arrived or turned out missing.
  explicit PlayerArtwork(std::function<void()> arrived);
  ~PlayerArtwork();
  PlayerArtwork(const PlayerArtwork&) = delete;
  PlayerArtwork& operator=(const PlayerArtwork&) = delete;

  /// True when there is a cover behind the address or one is on its way.
  bool exists(const QString& address);
  /// Empty when there is none, or none yet. Regular files only; 32 MiB at most.
  platform::Data bytes(const QString& address);

 private:
  struct Entry;

  const Entry& entryFor(const QString& address);
  void load(Entry& entry);
  void loadFile(Entry& entry, const QString& path);
  void startTransfer(Entry& entry);
  void completeTransfer(std::uint64_t number, const platform::HTTPResult& result);

  const std::function<void()> arrived_;
  std::list<Entry> entries_;  // the last one used in front
  std::uint64_t transferCount_ = 0;
  const std::shared_ptr<PlayerArtwork*> self_;  // what transfers hold weakly
};

}  // namespace desktop

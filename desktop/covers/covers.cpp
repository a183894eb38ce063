#include "desktop/covers/covers.h"

#include <QtCore/QUrl>
#include <algorithm>
#include <filesystem>
#include <mutex>
#include <optional>
#include <utility>

#include "platform/graphics/graphics.h"
#include "platform/loop/run_loop.h"
#include "platform/platform.h"

namespace desktop {

namespace {

using platform::Data;
using platform::TimeInterval;

constexpr std::size_t keptTracks = 16;
constexpr std::size_t keptBytes = 8 * 1024 * 1024;
constexpr TimeInterval transferTimeout = 30;
/// A cover on the web that could not be had is asked for again after this many seconds.
constexpr TimeInterval retryAfter = 60;
/// What a player rewrites in its place, or a user puts beside the music, is seen after this many.
constexpr TimeInterval readAgainAfter = 2;

bool isWeb(const QString& address) {
  return address.startsWith(QLatin1String("http://"), Qt::CaseInsensitive) ||
         address.startsWith(QLatin1String("https://"), Qt::CaseInsensitive);
}

bool areOfOneAlbum(const CoverWanted& a, const CoverWanted& b) {
  using std::filesystem::path;
  return !a.album.empty() && a.album == b.album &&
         path(a.path).parent_path() == path(b.path).parent_path();
}

}  // namespace

struct Covers::Entry {
  CoverWanted wanted;
  Data bytes;
  std::optional<TimeInterval> knownSince;
  bool isLooking = false;
  std::uint64_t look = 0;  // tells the last one from earlier ones
  std::shared_ptr<platform::HTTPTransfer> transfer;

  ~Entry() {
    if (transfer) transfer->cancel();
  }
};

/// A reader may come back from a dead disk long after everything else has gone.
struct Covers::Door {
  std::mutex mutex;
  bool isOpen = true;
  platform::RunLoop* const runLoop = platform::current().runLoop;

  /// Decodes as well, so that showing it does not.
  bool isPicture(const Data& data) {
    const std::lock_guard lock(mutex);
    return isOpen && platform::imageWithData(data) != nullptr;
  }
  void handOver(std::function<void()> result) {
    const std::lock_guard lock(mutex);
    if (isOpen && runLoop != nullptr) runLoop->dispatchAsync(std::move(result));
  }
};

Covers::Covers(platform::DispatchQueue* readers, std::function<void()> arrived)
    : readers_(readers),
      arrived_(std::move(arrived)),
      standIns_(std::make_shared<StandIns>()),
      door_(std::make_shared<Door>()),
      self_(std::make_shared<Covers*>(this)) {}

Covers::~Covers() {
  const std::lock_guard lock(door_->mutex);
  door_->isOpen = false;
}

bool Covers::exists(const CoverWanted& wanted) {
  if (readers_ == nullptr || (wanted.address.isEmpty() && wanted.path.empty())) return false;
  const Entry& entry = entryFor(wanted);
  return !entry.knownSince || !entry.bytes.isEmpty();
}

Data Covers::bytes(const CoverWanted& wanted) {
  if (!exists(wanted)) return {};
  const Entry& entry = entries_.front();
  if (entry.knownSince) return entry.bytes;
  const auto before = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& other) {
    return !other.bytes.isEmpty() && areOfOneAlbum(other.wanted, wanted);
  });
  return before != entries_.end() ? before->bytes : Data();
}

Covers::Entry& Covers::entryFor(const CoverWanted& wanted) {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& entry) { return entry.wanted == wanted; });
  if (found != entries_.end()) {
    entries_.splice(entries_.begin(), entries_, found);
  } else {
    entries_.emplace_front().wanted = wanted;
    forget();
  }
  look(entries_.front());
  return entries_.front();
}

void Covers::forget() {
  std::size_t count = 0;
  std::size_t bytes = 0;
  const auto last = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
    bytes += entry.bytes.length();
    return ++count > keptTracks || (count > 1 && bytes > keptBytes);
  });
  entries_.erase(last, entries_.end());
}

void Covers::look(Entry& entry) {
  if (entry.isLooking) return;
  if (entry.knownSince) {
    const bool isFetched = isWeb(entry.wanted.address);
    if (isFetched && !entry.bytes.isEmpty()) return;
    const TimeInterval age = platform::current().runLoop->now() - *entry.knownSince;
    if (age < (isFetched ? retryAfter : readAgainAfter)) return;
  }
  entry.isLooking = true;
  entry.look = ++lookCount_;
  if (isWeb(entry.wanted.address) && platform::current().http != nullptr) {
    startTransfer(entry);
  } else {
    startReading(entry, {});
  }
}

void Covers::startTransfer(Entry& entry) {
  entry.transfer = platform::current().http->start(
      {.url = QUrl(entry.wanted.address).toEncoded().toStdString(),
       .headers = {},
       .timeout = transferTimeout,
       .maximumLength = longestCover},
      [weak = std::weak_ptr(self_), runLoop = door_->runLoop,
       number = entry.look](platform::HTTPResult result) {
        constexpr int firstErrorStatus = 400;
        Data body = result.body && result.status < firstErrorStatus ? *result.body : Data();
        runLoop->dispatchAsync([weak, number, body = std::move(body)] {
          const auto self = weak.lock();
          Entry* found = self ? (*self)->entryOf(number) : nullptr;
          if (found != nullptr) (*self)->startReading(*found, body);
        });
      });
}

void Covers::startReading(Entry& entry, Data fetched) {
  entry.transfer.reset();
  // One cover of many tracks is one picture, decoded once.
  std::vector<Data> known;
  for (const Entry& other : entries_) known.push_back(other.bytes);
  readers_->async([weak = std::weak_ptr(self_), door = door_, standIns = standIns_,
                   known = std::move(known), wanted = entry.wanted, fetched = std::move(fetched),
                   number = entry.look] {
    Data found;
    for (const CoverSource& source : coverSources()) {
      source.offer({wanted, fetched}, [&](const Data& picture) {
        const auto same = std::find(known.begin(), known.end(), picture);
        const Data& one = same != known.end() ? *same : picture;
        if (!door->isPicture(one)) return false;
        if (source.mayStandIn && standIns->isOne(one, wanted.album)) return false;
        found = one;
        return true;
      });
      if (!found.isEmpty()) break;
    }
    door->handOver([weak, number, found = std::move(found)] {
      if (const auto self = weak.lock()) (*self)->complete(number, found);
    });
  });
}

Covers::Entry* Covers::entryOf(std::uint64_t number) {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& entry) { return entry.look == number; });
  return found != entries_.end() ? &*found : nullptr;
}

void Covers::complete(std::uint64_t number, Data found) {
  Entry* const entry = entryOf(number);
  if (entry == nullptr) return;
  const bool isNews = !entry->knownSince || !entry->bytes.isIdenticalTo(found);
  entry->bytes = std::move(found);
  entry->isLooking = false;
  entry->knownSince = platform::current().runLoop->now();
  forget();
  if (isNews) arrived_();
}

}  // namespace desktop

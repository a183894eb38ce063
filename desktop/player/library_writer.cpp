#include "desktop/player/library_writer.h"

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusVariant>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "desktop/files/module.h"
#include "platform/loop/dispatch.h"
#include "platform/loop/run_loop.h"
#include "platform/platform.h"

namespace desktop {

namespace {

using State = LibraryNote::State;

constexpr int patience = 10'000;               // milliseconds for one answer
constexpr qint64 betweenTrials = 60'000;       // milliseconds
constexpr int halfStar = 10;                   // more than any library rounds by
constexpr std::size_t mostTrialsKnown = 1000;  // tracks

// Services of players beside MPRIS, which may lie on connections of their own.
const auto rhythmboxService = QStringLiteral("org.gnome.Rhythmbox3");
const auto quodLibetService = QStringLiteral("net.sacredchao.QuodLibet");

constexpr auto extensionInterface = "org.mpris.MediaPlayer2.ExtensionSetRatings";

QDBusMessage callOf(const QString& service, const char* path, const char* interface,
                    const char* member) {
  QDBusMessage message = QDBusMessage::createMethodCall(
      service, QLatin1String(path), QLatin1String(interface), QLatin1String(member));
  message.setAutoStartService(false);
  return message;
}

QDBusMessage getMetadata(const QString& owner) {
  QDBusMessage message = callOf(owner, playerPath, propertiesInterface, "Get");
  message << QLatin1String(playerInterface) << QStringLiteral("Metadata");
  return message;
}

PlayerSnapshot trackFrom(const QDBusMessage& metadata) {
  return snapshotFromProperties({{QStringLiteral("Metadata"), metadata.arguments().value(0)}});
}

bool isRefusal(const QDBusMessage& reply) {
  switch (QDBusError(reply).type()) {
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
    case QDBusError::Disconnected:
    case QDBusError::ServiceUnknown:
      return false;  // it is gone, or busy
    default:
      return true;
  }
}

std::shared_ptr<MpdServer> loadMpdServer() {
  auto* make = reinterpret_cast<MakeMpdServer*>(functionOfModule("mpd-server", makeMpdServerName));
  return std::shared_ptr<MpdServer>(make != nullptr ? make() : nullptr);
}

std::optional<int> percent(std::optional<double> rating) {
  return rating ? std::optional(static_cast<int>(std::lround(*rating * 100))) : std::nullopt;
}

}  // namespace

/// A rating on its way. The numbers tell it from later ones of the same track.
struct LibraryWriter::Job {
  const Way* way;
  QString owner;
  std::string player;
  PlayerSnapshot track;
  TrackIdentity identity;
  int rating;
  int number;
};

/// The messages that carry a rating (0 to 1) in and out.
struct LibraryWriter::Way {
  bool onlyCurrent;  ///< it rates what plays, whatever that is by then
  QDBusMessage (*writing)(const Job& job, double rating);
  QDBusMessage (*reading)(const Job& job);
  std::optional<double> (*ratingFrom)(const Job& job, const QDBusMessage& reply);

  static QDBusMessage metadataOf(const Job& job) { return getMetadata(job.owner); }
  static std::optional<double> currentRating(const Job& job, const QDBusMessage& reply) {
    const PlayerSnapshot now = trackFrom(reply);
    return now.isSameTrack(job.track) ? now.userRating : std::nullopt;
  }
  static QDBusMessage rhythmDB(const Job& job, const char* member) {
    QDBusMessage message = callOf(rhythmboxService, "/org/gnome/Rhythmbox3/RhythmDB",
                                  "org.gnome.Rhythmbox3.RhythmDB", member);
    message << job.track.address;
    return message;
  }

  static QDBusMessage quodLibetCall(const char* member) {
    return callOf(quodLibetService, "/net/sacredchao/QuodLibet", "net.sacredchao.QuodLibet",
                  member);
  }

  static const Way extension, rhythmbox, quodLibet, mpd;
};

/// Lollypop, Pithos: the track is named, but some take the current one only.
constexpr LibraryWriter::Way LibraryWriter::Way::extension{
    .onlyCurrent = true,
    .writing =
        [](const Job& job, double rating) {
          QDBusMessage message = callOf(job.owner, playerPath, extensionInterface, "SetRating");
          message << QVariant::fromValue(QDBusObjectPath(job.track.trackId)) << rating;
          return message;
        },
    .reading = &metadataOf,
    .ratingFrom = &currentRating};

constexpr LibraryWriter::Way LibraryWriter::Way::rhythmbox{
    .onlyCurrent = false,
    .writing =
        [](const Job& job, double rating) {
          constexpr double stars = 5;
          QDBusMessage message = rhythmDB(job, "SetEntryProperties");
          message << QVariantMap{{QStringLiteral("rating"), rating * stars}};
          return message;
        },
    .reading = [](const Job& job) { return rhythmDB(job, "GetEntryProperties"); },
    .ratingFrom = [](const Job&, const QDBusMessage& reply) -> std::optional<double> {
      constexpr double stars = 5;
      const QVariantMap entry = mapFromVariant(reply.arguments().value(0));
      const auto rating = numberFromVariant(entry.value(QStringLiteral("rating")));
      return rating ? std::optional(*rating / stars) : std::nullopt;
    }};

constexpr LibraryWriter::Way LibraryWriter::Way::quodLibet{
    .onlyCurrent = true,
    .writing =
        [](const Job&, double rating) {
          QDBusMessage message = quodLibetCall("Rate");
          message << QString::number(rating);
          return message;
        },
    // Its metadata stay as they are for a song that is not in its library.
    .reading = [](const Job&) { return quodLibetCall("CurrentSong"); },
    .ratingFrom = [](const Job& job, const QDBusMessage& reply) -> std::optional<double> {
      if (reply.signature() != QLatin1String("a{ss}")) return std::nullopt;
      const auto song = qdbus_cast<QMap<QString, QString>>(reply.arguments().value(0));
      bool isNumber = false;
      const double rating = song.value(QStringLiteral("~#rating")).toDouble(&isNumber);
      const bool isSame = song.value(QStringLiteral("~uri")) == job.track.address;
      return isSame && isNumber ? std::optional(rating) : std::nullopt;
    }};

/// Not over the bus.
constexpr LibraryWriter::Way LibraryWriter::Way::mpd{
    .onlyCurrent = false, .writing = nullptr, .reading = nullptr, .ratingFrom = nullptr};

LibraryWriter::LibraryWriter(QDBusConnection bus, RatingsStore& store)
    : bus_(std::move(bus)), store_(store), self_(std::make_shared<LibraryWriter*>(this)) {}

LibraryWriter::~LibraryWriter() = default;

std::string LibraryWriter::nameOf(const PlayerMirror& player) {
  return player.shortName().section(QLatin1Char('.'), 0, 0).toLower().toStdString();
}

const LibraryWriter::Way* LibraryWriter::wayInto(const PlayerMirror& player) const {
  const auto extension = hasExtension_.find(player.owner());
  if (extension != hasExtension_.end() && extension->second) return &Way::extension;
  if (nameOf(player) == "rhythmbox") return &Way::rhythmbox;
  if (nameOf(player) == "quodlibet") return &Way::quodLibet;
  if (nameOf(player) == "mpd") return &Way::mpd;  // whichever front it has
  return nullptr;
}

void LibraryWriter::meet(const PlayerMirror& player) {
  const QString& owner = player.owner();
  if (!hasExtension_.emplace(owner, false).second) return;
  QDBusMessage question = callOf(owner, playerPath, propertiesInterface, "Get");
  question << QLatin1String(extensionInterface) << QStringLiteral("HasRatingsExtension");
  call(question, [this, owner](const QDBusMessage& reply) {
    const auto answer = reply.arguments().value(0).value<QDBusVariant>().variant();
    hasExtension_[owner] = reply.type() == QDBusMessage::ReplyMessage && answer.toBool();
  });
}

void LibraryWriter::write(const PlayerMirror& player, const PlayerSnapshot& track,
                          const TrackIdentity& identity, int rating) {
  const Way* way = wayInto(player);
  const auto key = trackKey(identity);
  if (way == nullptr || !key) return;
  const Job job{way, player.owner(), nameOf(player), track, identity, rating, ++jobs_};
  latest_[*key] = job.number;
  if (trials_.size() >= mostTrialsKnown) trials_.clear();
  trials_[*key].start();
  if (!way->onlyCurrent) return send(job);
  // What plays by now may be another track.
  call(getMetadata(job.owner), [this, job](const QDBusMessage& reply) {
    if (trackFrom(reply).isSameTrack(job.track)) {
      send(job);
    } else {
      end(job, State::pending);
    }
  });
}

void LibraryWriter::writeAgain(const PlayerMirror& player, const PlayerSnapshot& track,
                               const TrackIdentity& identity, int rating) {
  const auto key = trackKey(identity);
  const auto last = key ? trials_.find(*key) : trials_.end();
  if (last != trials_.end() && !last->second.hasExpired(betweenTrials)) return;
  write(player, track, identity, rating);
}

void LibraryWriter::send(const Job& job) {
  if (!isLatest(job)) return;
  if (job.way == &Way::mpd) return sendToMpd(job);
  call(job.way->writing(job, job.rating / 100.0), [this, job](const QDBusMessage& reply) {
    if (reply.type() == QDBusMessage::ReplyMessage) return readBack(job);
    end(job, isRefusal(reply) ? State::refused : State::pending);
  });
}

/// One after the other, so that the last one is the last there too.
void LibraryWriter::sendToMpd(const Job& job) {
  mpdJobs_.push_back(job);
  if (mpdJobs_.size() == 1) sendNextToMpd();
}

void LibraryWriter::sendNextToMpd() {
  while (!mpdJobs_.empty() && !isLatest(mpdJobs_.front())) mpdJobs_.pop_front();
  if (mpdJobs_.empty()) return;
  const Job& job = mpdJobs_.front();
  platform::DispatchQueue* workers = platform::dispatch_get_global_queue();
  platform::RunLoop* runLoop = platform::current().runLoop;
  if (!mpd_) mpd_ = loadMpdServer();
  if (!mpd_ || workers == nullptr || runLoop == nullptr) return answered(State::none);
  const MpdServer::Song song{
      .address = job.identity.address,
      .path = pathOfFileAddress(lastingAddress(job.identity).value_or(job.identity.address)),
      .title = job.identity.title,
      .artist = job.identity.artist};
  workers->async([server = mpd_, weak = std::weak_ptr(self_), runLoop, song, rating = job.rating] {
    const auto answer = server->rate(song, rating);
    runLoop->dispatchAsync([weak, answer] {
      const auto self = weak.lock();
      if (!self) return;
      switch (answer) {
        case MpdServer::Answer::written:
          return (*self)->answered(State::written);
        case MpdServer::Answer::refused:
          return (*self)->answered(State::refused);
        case MpdServer::Answer::noStickers:
          return (*self)->answered(State::none);
        case MpdServer::Answer::otherSong:
        case MpdServer::Answer::unreachable:
          return (*self)->answered(State::pending);
      }
    });
  });
}

void LibraryWriter::answered(State state) {
  const Job job = mpdJobs_.front();
  mpdJobs_.pop_front();
  end(job, state, state == State::written ? std::optional(job.rating) : std::nullopt);
  sendNextToMpd();
}

void LibraryWriter::readBack(const Job& job) {
  call(job.way->reading(job), [this, job](const QDBusMessage& reply) {
    if (reply.type() != QDBusMessage::ReplyMessage) return end(job, State::pending);
    const auto found = percent(job.way->ratingFrom(job, reply));
    // Where another track plays by now nothing is known.
    if (!found) return end(job, State::pending);
    const bool hasArrived = std::abs(*found - job.rating) <= halfStar;
    end(job, hasArrived ? State::written : State::refused, found);
  });
}

/// Notes how it ended, unless the track was rated again meanwhile.
void LibraryWriter::end(const Job& job, State state, std::optional<int> found) {
  if (!isLatest(job)) return;
  latest_.erase(*trackKey(job.identity));
  const auto [track, album, note] = store_.known(job.identity, job.player);
  if (!note || track.rating != job.rating) return;
  LibraryNote ended = *note;
  ended.state = state;
  // Where the library has what it had before, nothing else is to be expected of it.
  if (state == State::refused || state == State::none || (found && found == note->said)) {
    ended.awaitsOurs = false;
  }
  if (ended != *note) store_.note(job.identity, job.player, ended);
}

bool LibraryWriter::isLatest(const Job& job) const {
  const auto latest = latest_.find(trackKey(job.identity).value_or(std::string()));
  return latest != latest_.end() && latest->second == job.number;
}

void LibraryWriter::call(const QDBusMessage& message, Answered answered) {
  auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(message, patience), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this,
          [answered = std::move(answered)](QDBusPendingCallWatcher* finished) {
            finished->deleteLater();
            answered(finished->reply());
          });
}

}  // namespace desktop

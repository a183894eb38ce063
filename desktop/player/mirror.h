// One player on the bus: what it told last, and the questions and commands to it.
#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTimer>
#include <QtCore/QVariant>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusError>
#include <QtDBus/QDBusMessage>
#include <memory>
#include <optional>
#include <span>

#include "desktop/player/attention.h"
#include "desktop/player/position_clock.h"
#include "desktop/player/snapshot.h"
#include "platform/application/player_dictionary.h"

namespace desktop {

inline constexpr const char* playerNamePrefix = "org.mpris.MediaPlayer2.";
inline constexpr const char* playerPath = "/org/mpris/MediaPlayer2";
inline constexpr const char* playerInterface = "org.mpris.MediaPlayer2.Player";
inline constexpr const char* rootInterface = "org.mpris.MediaPlayer2";
inline constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";

/// Asks a player for all it tells in one message, and keeps the answer until the player speaks
/// or is spoken to. The position alone changes without a word; it goes with the clock while the
/// player keeps to that, and is asked for each time when it does not (PositionClock).
///
/// Waiting for an answer ends after a quarter of a second. From then on, and for a player that is
/// slow in answering, questions are sent without waiting for the answer, and what was last
/// answered or signalled holds; after a silence that is nothing (PlayerAttention). Prompt answers
/// end this.
class PlayerMirror final : public QObject {
  Q_OBJECT

 public:
  /// A bus name and the unique name of its owner. Asks nothing yet.
  PlayerMirror(const QDBusConnection& bus, QString name, QString owner);

  const QString& name() const { return name_; }
  const QString& owner() const { return owner_; }
  QString shortName() const;  ///< without the common prefix

  /// Asks several players at once and waits for all of them a quarter of a second at most.
  static void askTogether(std::span<PlayerMirror* const> players);
  /// Asks without waiting; changed() tells when the answer is there.
  void probe();

  // What the player told last, without asking.
  bool isPlaying() const { return state_ == platform::player::statePlaying; }
  bool isPaused() const { return state_ == platform::player::statePaused; }
  platform::FourCharCode state() const { return state_; }
  const QString& identity() const { return identity_; }
  const QString& desktopEntry() const { return desktopEntry_; }

  // Questions. Null and 0 when it does not answer.
  std::shared_ptr<const PlayerSnapshot> snapshot();
  double position();  ///< seconds
  /// False when the player says so of itself: "CanGoNext", "CanSeek", …
  bool can(const QString& property);
  std::optional<double> volume();  ///< 0 to 1 and beyond; none when it has none
  /// True when the player has a rating of its own that can be set.
  bool hasWritableRating(const PlayerSnapshot& now);

  // Commands, sent without waiting. False when the player does not answer at present.
  bool command(const char* member);  ///< of the player interface: "PlayPause", "Next", …
  bool setPosition(double seconds);
  bool setVolume(double volume);
  bool setOwnRating(const PlayerSnapshot& now, double rating);  ///< 0 to 1
  bool raise();

  // What the bus delivered from it.
  void receivedPropertiesChanged(const QDBusMessage& message);
  void receivedSeeked();

 signals:
  void changed();        ///< there is something new to ask for, or it answers no more or again
  void detailChanged();  ///< as changed(), but the track, its state and its position are as before

 private slots:  // called by the bus
  void probeAnswered(const QDBusMessage& reply);
  void probeFailed(const QDBusError& error, const QDBusMessage& call);
  void described(const QDBusMessage& reply);
  void descriptionFailed(const QDBusError& error, const QDBusMessage& call);
  void ratingAnswered();
  void introspected(const QDBusMessage& reply);
  void introspectionFailed(const QDBusError& error, const QDBusMessage& call);

 private:
  QDBusMessage methodCall(const char* interface, const char* member) const;
  QDBusMessage propertiesCall(const char* member, const char* interface) const;
  PlayerAttention::Time now() const { return PlayerAttention::Time(clock_.elapsed()); }
  void planNext();
  void doWhatIsDue();
  void describe();
  std::optional<QVariant> ask(const QDBusMessage& message);
  bool tell(const QDBusMessage& message);
  void dropWhatWasTold();
  void adopt(const QVariant& properties);
  void keepRatingUnderWay();
  void readWhatWasTold();
  PlayerSnapshot withoutGrowingLength(PlayerSnapshot told);
  bool lengthIsGrowing() const;
  bool isFlooding();
  void catchUp();
  void receivedSomething();
  void readPosition(const QVariant& told);
  void runPosition();
  void comparePositionWithLength(double position);
  void forget();

  const QDBusConnection bus_;
  const QString name_;
  const QString owner_;
  QString identity_;
  QString desktopEntry_;
  platform::FourCharCode state_{};

  QElapsedTimer clock_;
  PlayerAttention attention_;
  QTimer due_;

  QVariantMap told_;  ///< the properties of the player interface, as answered and signalled
  std::shared_ptr<const PlayerSnapshot> snapshot_;  ///< made from them; null when nothing holds
  bool isStale_ = false;                            ///< the player may have more to tell
  bool isRead_ = true;                              ///< the snapshot has all that was told
  QElapsedTimer snapshotAge_;
  PlayerSnapshot lastTold_;  ///< the last track as the player told it
  int growths_ = 0;          ///< how often its length has grown, without shrinking in between
  bool hasPassedLength_ =
      false;                   ///< it is elsewhere and plays on after what it told for its length
  int ratingsUnderWay_ = 0;    ///< ratings of its own that the player has not answered yet
  PlayerSnapshot ratedTrack_;  ///< the track that the last one was set on, with it
  PositionClock position_;

  PlayerAttention::Time lastWindow_{};  ///< when signals were counted anew
  int signalCount_ = 0;
  QTimer catchUp_;  ///< runs while signals were passed over

  bool isDescribing_ = false;
  bool askedForWritableProperties_ = false;
  QStringList writableProperties_;  ///< of the player interface
};

}  // namespace desktop

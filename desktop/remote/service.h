// The program on the session bus, for other programs.
#pragma once

#include <QtCore/QVariantMap>
#include <QtDBus/QDBusAbstractAdaptor>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <functional>
#include <memory>
#include <optional>

#include "desktop/actions/action.h"
#include "desktop/player/changes.h"
#include "desktop/player/controls.h"
#include "desktop/ratings/store.h"
#include "widget/live_programme.h"

namespace desktop {

/// What can be done with the player that is followed, and with the marks of any track; docs/
/// scripting.md describes the interface, which is stable. Arguments of wrong types, unknown keys,
/// and texts longer than a player's may be are answered with an error and change nothing.
class Service final : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.virelune.Virelune.Widget1")
  Q_PROPERTY(QString Player READ player)
  Q_PROPERTY(QString State READ state)
  Q_PROPERTY(QString Title READ title)
  Q_PROPERTY(QString Artist READ artist)
  Q_PROPERTY(QString Album READ album)
  Q_PROPERTY(QString Address READ address)
  Q_PROPERTY(double Rating READ rating)
  Q_PROPERTY(bool Loved READ loved)
  Q_PROPERTY(double AlbumRating READ albumRating)
  Q_PROPERTY(bool AlbumLoved READ albumLoved)
  Q_PROPERTY(double Volume READ volume)
  Q_PROPERTY(QString Programme READ programme)
  Q_PROPERTY(QString ProgrammeArtist READ programmeArtist)
  Q_PROPERTY(QString ProgrammeAlbum READ programmeAlbum)

 public:
  struct Options {
    const desktop::Actions& actions;
    PlayerControls& player;
    RatingsStore* ratings = nullptr;  ///< null: marks of named tracks are not known
    std::function<std::string(const std::string& key)> label = {};  ///< of an action, by its key
    std::function<void()> called = {};                              ///< before each call
    std::function<std::optional<virelune::LiveProgramme>()> programme = {};
  };
  /// The parent is the object that is found on the bus.
  Service(QObject* parent, Options options);

  /// The bus to speak on from now on.
  void setBus(const QDBusConnection& bus);
  /// Tells what has changed of the status.
  void update();

  QString player() const { return text("player"); }
  QString state() const { return text("state"); }
  QString title() const { return text("title"); }
  QString artist() const { return text("artist"); }
  QString album() const { return text("album"); }
  QString address() const { return text("address"); }
  double rating() const { return number("rating"); }
  bool loved() const { return status_.value(QStringLiteral("loved")).toBool(); }
  double albumRating() const { return number("albumRating"); }
  bool albumLoved() const { return status_.value(QStringLiteral("albumLoved")).toBool(); }
  double volume() const { return number("volume"); }
  QString programme() const { return text("programme"); }
  QString programmeArtist() const { return text("programmeArtist"); }
  QString programmeAlbum() const { return text("programmeAlbum"); }

 public slots:  // called by the bus
  /// See statusOf().
  QVariantMap Status();
  /// Does an action with an argument, which is empty for most.
  void Act(const QString& action, const QString& argument, const QDBusMessage& message);
  /// The actions: "name", "label", "possible" and, of a switch, "on".
  QList<QVariantMap> Actions();
  /// The marks of a track that is named by "address", or by "artist", "album", "albumArtist",
  /// "title" and "length": "rating" and "albumRating" (d, stars), "loved" and "albumLoved" (b); a
  /// mark that was never set is left out.
  QVariantMap Marks(const QVariantMap& track, const QDBusMessage& message);
  /// Sets those of the marks that are given.
  void SetMarks(const QVariantMap& track, const QVariantMap& marks, const QDBusMessage& message);

 private:
  QString text(const char* key) const { return status_.value(QLatin1String(key)).toString(); }
  double number(const char* key) const { return status_.value(QLatin1String(key)).toDouble(); }
  void refuse(const QDBusMessage& message, const QString& error, const std::string& why);
  void readStatus();

  const Options options_;
  QDBusConnection bus_;
  QVariantMap status_;  ///< what was told last
  const std::shared_ptr<PlayerChanges> changes_;
};

}  // namespace desktop

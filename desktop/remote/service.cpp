#include "desktop/remote/service.h"

#include <QtCore/QStringList>
#include <QtDBus/QDBusMetaType>
#include <array>
#include <map>
#include <utility>

#include "desktop/actions/values.h"
#include "desktop/player/snapshot.h"
#include "desktop/remote/names.h"
#include "desktop/remote/status.h"

namespace desktop {

namespace {

constexpr double ratingPerStar = 20;
constexpr std::array properties{"player",          "state",         "title",  "artist",
                                "album",           "address",       "rating", "loved",
                                "albumRating",     "albumLoved",    "volume", "programme",
                                "programmeArtist", "programmeAlbum"};

QString propertyName(const QString& key) { return key.left(1).toUpper() + key.mid(1); }

bool isShort(const QString& text) { return text.toUtf8().size() <= qsizetype(longestText); }

/// None when a key is unknown or its value is of the wrong type or too long.
std::optional<TrackIdentity> trackFrom(const QVariantMap& values) {
  TrackIdentity track;
  const std::map<QString, std::string*> texts{{QStringLiteral("address"), &track.address},
                                              {QStringLiteral("artist"), &track.artist},
                                              {QStringLiteral("album"), &track.album},
                                              {QStringLiteral("albumArtist"), &track.albumArtist},
                                              {QStringLiteral("title"), &track.title}};
  for (auto value = values.begin(); value != values.end(); ++value) {
    const auto text = texts.find(value.key());
    if (value.key() == QLatin1String("length")) {
      const auto length = numberFromVariant(*value);
      if (!length || *length < 0) return std::nullopt;
      track.length = *length;
    } else if (text == texts.end() || value->typeId() != QMetaType::QString ||
               !isShort(value->toString())) {
      return std::nullopt;
    } else {
      *text->second = value->toString().toStdString();
    }
  }
  return track;
}

/// What is given of the marks of a track or of its album. False when it makes no sense.
bool readMarks(QVariantMap& values, const QString& ratingKey, const QString& loveKey,
               Marks& marks) {
  const QVariant rating = values.take(ratingKey);
  const QVariant loved = values.take(loveKey);
  if (rating.isValid()) {
    const auto stars = numberFromVariant(rating);
    const auto value =
        stars ? ratingFromText(QString::number(*stars).toStdString(), 0) : std::nullopt;
    if (!value) return false;
    marks.rating = static_cast<int>(*value);
  }
  if (loved.isValid() && loved.typeId() != QMetaType::Bool) return false;
  if (loved.isValid()) marks.loved = loved.toBool();
  return true;
}

void addMarks(QVariantMap& values, const QString& ratingKey, const QString& loveKey,
              const Marks& marks) {
  if (marks.rating) values.insert(ratingKey, *marks.rating / ratingPerStar);
  if (marks.loved) values.insert(loveKey, *marks.loved);
}

const auto ratingKey = QStringLiteral("rating");
const auto lovedKey = QStringLiteral("loved");
const auto albumRatingKey = QStringLiteral("albumRating");
const auto albumLovedKey = QStringLiteral("albumLoved");

}  // namespace

Service::Service(QObject* parent, Options options)
    : QDBusAbstractAdaptor(parent),
      options_(std::move(options)),
      bus_(QString()),
      changes_(PlayerChanges::observe([this] { update(); })) {
  qDBusRegisterMetaType<QList<QVariantMap>>();
  readStatus();
}

void Service::setBus(const QDBusConnection& bus) { bus_ = bus; }

void Service::readStatus() {
  status_ = statusOf(options_.player.report());
  if (options_.programme) addProgramme(status_, options_.programme());
}

void Service::update() {
  const QVariantMap before = status_;
  readStatus();
  QVariantMap changed;
  for (const char* property : properties) {
    const QString key = QLatin1String(property);
    if (before.value(key) == status_.value(key)) continue;
    const QString name = propertyName(key);
    changed.insert(name, this->property(name.toLatin1().constData()));
  }
  if (changed.isEmpty()) return;
  QDBusMessage signal =
      QDBusMessage::createSignal(cardObject, QStringLiteral("org.freedesktop.DBus.Properties"),
                                 QStringLiteral("PropertiesChanged"));
  signal << publicInterface << changed << QStringList();
  bus_.send(signal);
}

void Service::refuse(const QDBusMessage& message, const QString& error, const std::string& why) {
  message.setDelayedReply(true);
  bus_.send(message.createErrorReply(error, QString::fromStdString(why)));
}

QVariantMap Service::Status() {
  if (options_.called) options_.called();
  readStatus();
  return status_;
}

void Service::Act(const QString& action, const QString& argument, const QDBusMessage& message) {
  if (options_.called) options_.called();
  if (!isShort(action) || !isShort(argument)) {
    return refuse(message, badValueError, "the text is too long");
  }
  const auto problem = options_.actions.perform(action.toStdString(), argument.toStdString());
  if (!problem) return;
  const bool isBad = problem->kind == ActionProblem::Kind::badValue;
  refuse(message, isBad ? badValueError : impossibleError, problem->text);
}

QList<QVariantMap> Service::Actions() {
  if (options_.called) options_.called();
  QList<QVariantMap> list;
  for (const Action& action : options_.actions.all()) {
    const std::string label = options_.label ? options_.label(action.labelKey) : action.name;
    QVariantMap entry{{QStringLiteral("name"), QString::fromStdString(action.name)},
                      {QStringLiteral("label"), QString::fromStdString(label)},
                      {QStringLiteral("possible"), action.isPossible()}};
    if (action.isOn) entry.insert(QStringLiteral("on"), action.isOn());
    list.append(entry);
  }
  return list;
}

QVariantMap Service::Marks(const QVariantMap& track, const QDBusMessage& message) {
  if (options_.called) options_.called();
  const auto identity = trackFrom(track);
  if (!identity) refuse(message, badValueError, "the track is named by what makes no sense");
  if (!identity || options_.ratings == nullptr) return {};
  QVariantMap marks;
  const auto known = options_.ratings->known(*identity);
  addMarks(marks, ratingKey, lovedKey, known.track);
  addMarks(marks, albumRatingKey, albumLovedKey, known.album);
  return marks;
}

void Service::SetMarks(const QVariantMap& track, const QVariantMap& marks,
                       const QDBusMessage& message) {
  if (options_.called) options_.called();
  const auto identity = trackFrom(track);
  desktop::Marks ofTrack;
  desktop::Marks ofAlbum;
  QVariantMap rest = marks;
  const bool isSense = identity && readMarks(rest, ratingKey, lovedKey, ofTrack) &&
                       readMarks(rest, albumRatingKey, albumLovedKey, ofAlbum) && rest.isEmpty();
  if (!isSense) return refuse(message, badValueError, "the track or its marks make no sense");
  RatingsStore* store = options_.ratings;
  const bool isDone = store != nullptr &&
                      (!ofTrack.rating || store->setTrackRating(*identity, *ofTrack.rating)) &&
                      (!ofTrack.loved || store->setTrackLoved(*identity, *ofTrack.loved)) &&
                      (!ofAlbum.rating || store->setAlbumRating(*identity, *ofAlbum.rating)) &&
                      (!ofAlbum.loved || store->setAlbumLoved(*identity, *ofAlbum.loved));
  if (!isDone) refuse(message, impossibleError, "the marks cannot be kept");
}

}  // namespace desktop

#include "moc_service.cpp"

#include "player/itunes.h"

#include "platform/application/player_dictionary.h"
#include "platform/platform.h"
#include "widget/constants.h"

namespace virelune {

using platform::SBObject;
namespace player = platform::player;

namespace {

/// The reference to a property by its name in the player's dictionary.
std::shared_ptr<SBObject> property(const SBObject& owner, std::string_view name) {
  return owner.propertyWithCode(AEiTunesApplication::codesForPropertyNames().find(name)->second);
}

void command(const SBObject& receiver, FourCharCode eventIdentifier) {
  receiver.sendEvent_id_parameters(player::commandClass, eventIdentifier);
}

using Maker = std::shared_ptr<AEiTunesItem> (*)(const SBObject& reference);

template <class T>
std::shared_ptr<AEiTunesItem> makeFrom(const SBObject& reference) {
  return platform::make<T>(reference.bundleIdentifier(), reference.path());
}

/// What makes the object of a class of the dictionary; a plain item for a class not used here.
Maker makerForClassName(const std::string& name) {
  static const std::map<std::string, Maker> makers{
      {"AEiTunesTrack", makeFrom<AEiTunesTrack>},
      {"AEiTunesFileTrack", makeFrom<AEiTunesFileTrack>},
      {"AEiTunesURLTrack", makeFrom<AEiTunesURLTrack>},
      {"AEiTunesArtwork", makeFrom<AEiTunesArtwork>},
  };
  const auto found = makers.find(name);
  return found != makers.end() ? found->second : makeFrom<AEiTunesItem>;
}

}  // namespace

// The dictionary

const std::map<FourCharCode, std::string>& AEiTunesApplication::classNamesForCodes() {
  static const std::map<FourCharCode, std::string> names{
      {player::applicationClass, "AEiTunesApplication"},
      {player::itemClass, "AEiTunesItem"},
      {player::trackClass, "AEiTunesTrack"},
      {player::fileTrackClass, "AEiTunesFileTrack"},
      {player::urlTrackClass, "AEiTunesURLTrack"},
      {player::artworkClass, "AEiTunesArtwork"},
  };
  return names;
}

const std::map<std::string, FourCharCode, std::less<>>&
AEiTunesApplication::codesForPropertyNames() {
  static const std::map<std::string, FourCharCode, std::less<>> codes{
      {"currentTrack", player::currentTrack},
      {"playerState", player::playerState},
      {"playerPosition", player::playerPosition},
      {"name", player::name},
      {"artist", player::artist},
      {"album", player::album},
      {"albumArtist", player::albumArtist},
      {"duration", player::duration},
      {"time", player::time},
      {"rating", player::rating},
      {"ratingKind", player::ratingKind},
      {"loved", player::loved},
      {"albumRating", player::albumRating},
      {"albumRatingKind", player::albumRatingKind},
      {"albumLoved", player::albumLoved},
      {"rawData", player::rawData},
  };
  return codes;
}

// Items

std::shared_ptr<AEiTunesItem> AEiTunesItem::get() const {
  const FourCharCode classCode = resolvedClassCode();
  if (classCode == FourCharCode{}) return nullptr;
  const auto& names = AEiTunesApplication::classNamesForCodes();
  const auto name = names.find(classCode);
  return makerForClassName(name != names.end() ? name->second : "")(*this);
}

std::optional<std::string> AEiTunesItem::name() const {
  return property(*this, "name")->stringValue();
}

void AEiTunesItem::reveal() const { command(*this, player::reveal); }

// Artworks

platform::Data AEiTunesArtwork::rawData() const { return property(*this, "rawData")->data(); }

// Tracks

std::optional<std::string> AEiTunesTrack::artist() const {
  return property(*this, "artist")->stringValue();
}

std::optional<std::string> AEiTunesTrack::album() const {
  return property(*this, "album")->stringValue();
}

std::optional<std::string> AEiTunesTrack::albumArtist() const {
  return property(*this, "albumArtist")->stringValue();
}

double AEiTunesTrack::duration() const { return property(*this, "duration")->doubleValue(); }

std::optional<std::string> AEiTunesTrack::time() const {
  return property(*this, "time")->stringValue();
}

platform::SBElementArray<AEiTunesArtwork> AEiTunesTrack::artworks() const {
  return {std::static_pointer_cast<const SBObject>(shared_from_this()), player::artworkClass};
}

std::int64_t AEiTunesTrack::rating() const { return property(*this, "rating")->integerValue(); }

void AEiTunesTrack::setRating(std::int64_t rating) const {
  property(*this, "rating")->setTo(rating);
}

FourCharCode AEiTunesTrack::ratingKind() const {
  return property(*this, "ratingKind")->enumCodeValue();
}

bool AEiTunesTrack::loved() const { return property(*this, "loved")->boolValue(); }

void AEiTunesTrack::setLoved(bool loved) const { property(*this, "loved")->setTo(loved); }

std::int64_t AEiTunesTrack::albumRating() const {
  return property(*this, "albumRating")->integerValue();
}

void AEiTunesTrack::setAlbumRating(std::int64_t rating) const {
  property(*this, "albumRating")->setTo(rating);
}

FourCharCode AEiTunesTrack::albumRatingKind() const {
  return property(*this, "albumRatingKind")->enumCodeValue();
}

bool AEiTunesTrack::albumLoved() const { return property(*this, "albumLoved")->boolValue(); }

void AEiTunesTrack::setAlbumLoved(bool loved) const { property(*this, "albumLoved")->setTo(loved); }

// The application

std::shared_ptr<AEiTunesApplication> AEiTunesApplication::applicationWithBundleIdentifier(
    const std::string& bundleIdentifier) {
  if (platform::current().scripting == nullptr) return nullptr;
  return platform::make<AEiTunesApplication>(bundleIdentifier);
}

std::shared_ptr<AEiTunesApplication> AEiTunesApplication::vl_iTunesApplication() {
  return applicationWithBundleIdentifier(VLBundleIdentifier_iTunes);
}

std::shared_ptr<AEiTunesTrack> AEiTunesApplication::vl_currentTrack() {
  const auto application = vl_iTunesApplication();
  return application ? application->currentTrack() : nullptr;
}

std::shared_ptr<AEiTunesTrack> AEiTunesApplication::currentTrack() const {
  const FourCharCode currentTrack = codesForPropertyNames().find("currentTrack")->second;
  return propertyWithClass_code<AEiTunesTrack>(currentTrack);
}

FourCharCode AEiTunesApplication::playerState() const {
  return property(*this, "playerState")->enumCodeValue();
}

double AEiTunesApplication::playerPosition() const {
  return property(*this, "playerPosition")->doubleValue();
}

void AEiTunesApplication::setPlayerPosition(double seconds) const {
  property(*this, "playerPosition")->setTo(seconds);
}

void AEiTunesApplication::playpause() const { command(*this, player::playPause); }

void AEiTunesApplication::nextTrack() const { command(*this, player::nextTrack); }

void AEiTunesApplication::previousTrack() const { command(*this, player::previousTrack); }

}  // namespace virelune

// Scripting requests to the player, each translated into what MPRIS has for it.
#include <algorithm>

#include "desktop/player/bridge.h"

namespace desktop {

namespace {

using platform::code;
using platform::FourCharCode;
using platform::Number;
using platform::ScriptingPath;
using platform::Value;

constexpr FourCharCode currentTrackCode = code("pTrk");
constexpr FourCharCode artworkClass = code("cArt");

/// True when the path consists of these plain properties.
bool isPath(const ScriptingPath& path, std::initializer_list<FourCharCode> codes) {
  return std::equal(path.begin(), path.end(), codes.begin(), codes.end(),
                    [](const platform::ScriptingStep& step, FourCharCode expected) {
                      return step.code == expected && !step.index;
                    });
}

/// True for a plain property of the current track.
bool isTrackProperty(const ScriptingPath& path) {
  return path.size() == 2 && isPath({path.front()}, {currentTrackCode}) && !path.back().index;
}

/// True for the bytes of the current track's first artwork.
bool isFirstArtworkBytes(const ScriptingPath& path) {
  return path.size() == 3 && isPath({path[0]}, {currentTrackCode}) &&
         path[1].code == artworkClass && path[1].index == 0 && isPath({path[2]}, {code("pRaw")});
}

/// A text that is there; none for an empty one.
std::optional<platform::ScriptingReply> textReply(const std::string& text) {
  if (text.empty()) return std::nullopt;
  return Value(text);
}

}  // namespace

PlayerBridge::Reply PlayerBridge::get(PlayerMirror& player, const ScriptingPath& path) {
  const auto now = player.snapshot();
  if (now == nullptr) return std::nullopt;
  if (isPath(path, {code("pPlS")})) return now->state;
  if (isPath(path, {code("pPos")})) return Value(player.position());
  if (isTrackProperty(path)) return getOfTrack(player, path.back().code);
  if (isFirstArtworkBytes(path)) return Value(artwork_.bytes(now->artworkAddress));
  return std::nullopt;
}

PlayerBridge::Reply PlayerBridge::getOfTrack(PlayerMirror& player, FourCharCode property) {
  const auto track = player.snapshot();
  if (track == nullptr || !track->hasTrack) return std::nullopt;
  switch (property) {
    case code("pnam"):
      return textReply(track->title);
    case code("pArt"):
      return textReply(track->artist);
    case code("pAlb"):
      return textReply(track->album);
    case code("pAlA"):
      return textReply(track->albumArtist);
    case code("pDur"):
      return Value(track->length);
    case code("pTim"):
      return textReply(lengthText(track->length));
    case code("pRte"):
      return Value(trackRating(player, *track).value);
    case code("pRtk"):
      return trackRating(player, *track).kind;
    case code("pAlR"):
      return Value(albumRating(*track).value);
    case code("pARk"):
      return albumRating(*track).kind;
    case code("pLov"):
      return Value(trackMarks(*track).loved.value_or(false));
    case code("pALv"):
      return Value(albumMarks(*track).loved.value_or(false));
    default:
      return std::nullopt;
  }
}

PlayerBridge::Reply PlayerBridge::set(PlayerMirror& player, const ScriptingPath& path,
                                      const Value& value) {
  const auto number = value.as<Number>();
  if (!number) return std::nullopt;
  const auto done = [](bool isDone) { return isDone ? Reply(Value()) : std::nullopt; };
  if (isPath(path, {code("pPos")})) return done(player.setPosition(number->doubleValue()));

  const auto track = player.snapshot();
  if (!isTrackProperty(path) || track == nullptr || !track->hasTrack) return std::nullopt;
  const auto rating = static_cast<int>(std::clamp<std::int64_t>(number->integerValue(), 0, 100));
  switch (path.back().code) {
    case code("pRte"):
      return done(setTrackRating(player, *track, rating));
    case code("pAlR"):
      return done(ratings_ != nullptr && ratings_->setAlbumRating(identityOf(*track), rating));
    case code("pLov"):
      return done(ratings_ != nullptr &&
                  ratings_->setTrackLoved(identityOf(*track), number->boolValue()));
    case code("pALv"):
      return done(ratings_ != nullptr &&
                  ratings_->setAlbumLoved(identityOf(*track), number->boolValue()));
    default:
      return std::nullopt;
  }
}

PlayerBridge::Reply PlayerBridge::count(PlayerMirror& player, const ScriptingPath& path) {
  const auto track = player.snapshot();
  if (track == nullptr || !isPath(path, {currentTrackCode, artworkClass})) return std::nullopt;
  return Value(artwork_.exists(track->artworkAddress) ? 1 : 0);
}

PlayerBridge::Reply PlayerBridge::resolve(PlayerMirror& player, const ScriptingPath& path) {
  const auto track = player.snapshot();
  if (track == nullptr) return std::nullopt;
  if (path.empty()) return code("capp");
  if (!isPath(path, {currentTrackCode}) || !track->hasTrack) return std::nullopt;
  return track->isStream() ? code("cURT") : code("cFlT");
}

PlayerBridge::Reply PlayerBridge::command(PlayerMirror& player,
                                          const platform::ScriptingRequest& request) {
  struct Command {
    FourCharCode eventClass;
    FourCharCode eventIdentifier;
    bool (*carryOut)(PlayerMirror&);
  };
  static constexpr Command commands[] = {
      {code("hook"), code("PlPs"), [](PlayerMirror& to) { return to.command("PlayPause"); }},
      {code("hook"), code("Next"), [](PlayerMirror& to) { return to.command("Next"); }},
      {code("hook"), code("Prev"), [](PlayerMirror& to) { return to.command("Previous"); }},
      {code("hook"), code("Revl"), [](PlayerMirror& to) { return to.raise(); }},
      {code("misc"), code("actv"), [](PlayerMirror& to) { return to.raise(); }},
  };
  for (const Command& known : commands) {
    if (known.eventClass != request.eventClass) continue;
    if (known.eventIdentifier != request.eventIdentifier) continue;
    return known.carryOut(player) ? Reply(Value()) : std::nullopt;
  }
  return std::nullopt;
}

}  // namespace desktop

#include "platform/application/player_interpreter.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <initializer_list>

#include "platform/application/player_dictionary.h"
#include "platform/foundation/text.h"

namespace platform {

namespace {

using Reply = std::optional<ScriptingReply>;
using Marked = ScriptablePlayer::Marked;

constexpr ScriptingStep currentTrack{player::currentTrack, std::nullopt};

/// True when the path consists of these steps.
bool isPath(const ScriptingPath& path, std::initializer_list<ScriptingStep> steps) {
  return std::equal(path.begin(), path.end(), steps.begin(), steps.end());
}

/// The code of a plain property of the current track; none for any other path.
std::optional<FourCharCode> trackProperty(const ScriptingPath& path) {
  if (path.size() != 2 || path.front() != currentTrack || path.back().index) return std::nullopt;
  return path.back().code;
}

Reply textReply(std::string text) {
  if (text.empty()) return std::nullopt;
  return Value(std::move(text));
}

Reply done(bool isDone) { return isDone ? Reply(Value()) : std::nullopt; }

/// The length as players write it: m:ss or h:mm:ss, fractions cut; empty when unknown.
std::string lengthText(double seconds) {
  constexpr double century = 100.0 * 366 * 24 * 3600;
  if (!(seconds > 0)) return {};
  const auto whole = static_cast<long long>(std::min(seconds, century));
  const long long hours = whole / 3600;
  const long long minutes = whole / 60 % 60;
  std::array<char, 32> text{};
  hours > 0
      ? std::snprintf(text.data(), text.size(), "%lld:%02lld:%02lld", hours, minutes, whole % 60)
      : std::snprintf(text.data(), text.size(), "%lld:%02lld", minutes, whole % 60);
  return text.data();
}

Reply getOfTrack(ScriptablePlayer& target, FourCharCode property) {
  const auto track = target.track();
  if (!track) return std::nullopt;
  switch (property) {
    case player::name:
      return textReply(track->name);
    case player::artist:
      return textReply(track->artist);
    case player::album:
      return textReply(track->album);
    case player::albumArtist:
      return textReply(track->albumArtist);
    case player::duration:
      return Value(track->duration);
    case player::time:
      return textReply(lengthText(track->duration));
    case player::rating:
      return Value(target.rating(Marked::track).value);
    case player::ratingKind:
      return target.rating(Marked::track).kind;
    case player::loved:
      return Value(target.isLoved(Marked::track));
    case player::albumRating:
      return Value(target.rating(Marked::album).value);
    case player::albumRatingKind:
      return target.rating(Marked::album).kind;
    case player::albumLoved:
      return Value(target.isLoved(Marked::album));
    default:
      return std::nullopt;
  }
}

Reply get(ScriptablePlayer& target, const ScriptingPath& path) {
  if (isPath(path, {{player::playerState, {}}})) return target.state();
  if (isPath(path, {{player::playerPosition, {}}})) return Value(target.position());
  if (const auto property = trackProperty(path)) return getOfTrack(target, *property);
  const bool wantsArtwork =
      isPath(path, {currentTrack, {player::artworkClass, 0}, {player::rawData, {}}});
  return wantsArtwork ? Reply(Value(target.artwork())) : std::nullopt;
}

Reply setOfTrack(ScriptablePlayer& target, FourCharCode property, const Number& value) {
  if (!target.track()) return std::nullopt;
  const std::int64_t rating = value.integerValue();
  const bool isRating = rating >= 0 && rating <= 100;
  switch (property) {
    case player::rating:
      return done(isRating && target.setRating(Marked::track, rating));
    case player::albumRating:
      return done(isRating && target.setRating(Marked::album, rating));
    case player::loved:
      return done(target.setLoved(Marked::track, value.boolValue()));
    case player::albumLoved:
      return done(target.setLoved(Marked::album, value.boolValue()));
    default:
      return std::nullopt;
  }
}

Reply set(ScriptablePlayer& target, const ScriptingPath& path, const Value& value) {
  const auto number = value.as<Number>();
  if (!number) return std::nullopt;
  if (isPath(path, {{player::playerPosition, {}}})) {
    return done(target.seek(number->doubleValue()));
  }
  const auto property = trackProperty(path);
  return property ? setOfTrack(target, *property, *number) : std::nullopt;
}

Reply count(ScriptablePlayer& target, const ScriptingPath& path) {
  if (trackProperty(path) != player::artworkClass) return std::nullopt;
  return Value(target.hasArtwork() ? 1 : 0);
}

Reply resolve(ScriptablePlayer& target, const ScriptingPath& path) {
  const auto track = target.track();
  if (!track || !isPath(path, {currentTrack})) return std::nullopt;
  return track->isStream ? player::urlTrackClass : player::fileTrackClass;
}

Reply command(ScriptablePlayer& target, const ScriptingRequest& request) {
  struct Command {
    FourCharCode eventClass;
    FourCharCode event;
    bool isToTrack;
    bool (ScriptablePlayer::*carryOut)();
  };
  static constexpr Command commands[] = {
      {player::commandClass, player::playPause, false, &ScriptablePlayer::playPause},
      {player::commandClass, player::nextTrack, false, &ScriptablePlayer::nextTrack},
      {player::commandClass, player::previousTrack, false, &ScriptablePlayer::previousTrack},
      {player::commandClass, player::reveal, true, &ScriptablePlayer::reveal},
      {miscellaneousClass, activateEvent, false, &ScriptablePlayer::activate},
  };
  const bool isToTrack = isPath(request.path, {currentTrack});
  if (!isToTrack && !request.path.empty()) return std::nullopt;
  for (const Command& known : commands) {
    if (known.eventClass != request.eventClass || known.event != request.eventIdentifier) continue;
    return done(known.isToTrack == isToTrack && (target.*known.carryOut)());
  }
  return std::nullopt;
}

}  // namespace

std::optional<ScriptingReply> interpret(const ScriptingRequest& request, ScriptablePlayer& player) {
  using Kind = ScriptingRequest::Kind;
  if (!caseInsensitiveEqual(request.bundleIdentifier, player::bundleIdentifier)) {
    return std::nullopt;
  }
  switch (request.kind) {
    case Kind::get:
      return get(player, request.path);
    case Kind::set:
      return set(player, request.path, request.value);
    case Kind::count:
      return count(player, request.path);
    case Kind::resolve:
      return resolve(player, request.path);
    case Kind::command:
      return command(player, request);
    case Kind::make:
    case Kind::remove:
      return std::nullopt;
  }
  return std::nullopt;
}

}  // namespace platform

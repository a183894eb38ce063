// The demo player's answers to scripting requests.
#include <array>
#include <charconv>
#include <cstdio>

#include "demo/demo_player.h"

namespace demo {

using platform::code;
using platform::FourCharCode;
using platform::Number;
using platform::ScriptingPath;
using platform::ScriptingRequest;
using platform::Value;

namespace {

std::string text(double number) {
  std::array<char, 32> characters{};
  const auto end = std::to_chars(characters.begin(), characters.end(), number).ptr;
  return {characters.begin(), end};
}

std::string text(const Value& value) {
  if (const auto flag = value.as<bool>()) return *flag ? "true" : "false";
  if (const auto number = value.as<Number>()) return text(number->doubleValue());
  return value.as<std::string>().value_or("?");
}

std::string text(const ScriptingPath& path) {
  std::string result;
  for (const auto& step : path) {
    if (!result.empty()) result += '.';
    result += platform::textFromCode(step.code);
    if (step.index) result += '[' + std::to_string(*step.index) + ']';
  }
  return result;
}

std::string text(const ScriptingRequest& request) {
  using Kind = ScriptingRequest::Kind;
  const std::string path = text(request.path);
  switch (request.kind) {
    case Kind::get:
      return "get " + path;
    case Kind::set:
      return "set " + path + ' ' + text(request.value);
    case Kind::count:
      return "count " + path;
    case Kind::resolve:
      return "resolve " + path;
    case Kind::make:
      return "make " + path;
    case Kind::remove:
      return "remove " + path;
    case Kind::command:
      return "command " + (path.empty() ? path : path + ' ') +
             platform::textFromCode(request.eventClass) + '/' +
             platform::textFromCode(request.eventIdentifier);
  }
  return {};
}

/// The length as players write it: m:ss or h:mm:ss, empty when unknown.
std::string lengthText(double duration) {
  constexpr double longest = 1e9;  // nothing that could be meant as a length
  if (!(duration > 0 && duration < longest)) return {};
  const auto seconds = static_cast<long long>(duration);
  std::array<char, 32> characters{};
  if (seconds >= 3600) {
    std::snprintf(characters.data(), characters.size(), "%lld:%02lld:%02lld", seconds / 3600,
                  seconds / 60 % 60, seconds % 60);
  } else {
    std::snprintf(characters.data(), characters.size(), "%lld:%02lld", seconds / 60, seconds % 60);
  }
  return characters.data();
}

constexpr FourCharCode currentTrackCode = code("pTrk");
constexpr FourCharCode artworkClass = code("cArt");

bool isProperty(const platform::ScriptingStep& step, FourCharCode property) {
  return step.code == property && !step.index;
}

/// A whole number from 0 to 100; none for anything else.
std::optional<std::int64_t> ratingFrom(const Value& value) {
  const auto number = value.as<Number>();
  if (!number) return std::nullopt;
  const std::int64_t rating = number->integerValue();
  return rating >= 0 && rating <= 100 ? std::optional(rating) : std::nullopt;
}

bool rate(Marks& marks, const Value& value) {
  const auto rating = ratingFrom(value);
  if (!rating) return false;
  marks.rating = *rating;
  marks.ratingKind = ratedByUser;
  return true;
}

bool love(Marks& marks, const Value& value) {
  const auto number = value.as<Number>();
  if (!number) return false;
  marks.loved = number->boolValue();
  return true;
}

}  // namespace

DemoPlayer::Reply DemoPlayer::send(const Request& request) {
  if (request.bundleIdentifier != playerBundleIdentifier) return std::nullopt;
  ++requestCount_;
  if (logging_) log_.push_back(text(request));
  if (const auto hook = requestHook_) hook(request);
  if (!running_ || silent_) return std::nullopt;

  using Kind = ScriptingRequest::Kind;
  const bool asks =
      request.kind == Kind::get || request.kind == Kind::count || request.kind == Kind::resolve;
  if (asks && !request.path.empty()) {
    const auto reply = replies_.find(request.path.back().code);
    if (reply != replies_.end()) return reply->second;
  }
  switch (request.kind) {
    case Kind::get:
      return get(request.path);
    case Kind::set:
      return set(request);
    case Kind::count:
      return count(request.path);
    case Kind::resolve:
      return resolve(request.path);
    case Kind::command:
      return command(request);
    case Kind::make:
    case Kind::remove:
      return std::nullopt;
  }
  return std::nullopt;
}

DemoPlayer::Reply DemoPlayer::get(const ScriptingPath& path) {
  if (path.empty()) return std::nullopt;
  if (path.size() == 1 && isProperty(path[0], code("pPlS"))) return state_;
  if (path.size() == 1 && isProperty(path[0], code("pPos"))) return Value(position());
  if (!isProperty(path[0], currentTrackCode)) return std::nullopt;
  if (path.size() == 2 && !path[1].index) return trackProperty(path[1].code);

  const Track* track = currentTrack();
  const bool wantsCover = path.size() == 3 && path[1].code == artworkClass && path[1].index == 0 &&
                          isProperty(path[2], code("pRaw"));
  if (!wantsCover || track == nullptr || !track->cover) return std::nullopt;
  return Value(track->cover->bytes());
}

DemoPlayer::Reply DemoPlayer::trackProperty(FourCharCode property) {
  const Track* track = currentTrack();
  if (track == nullptr) return std::nullopt;
  switch (property) {
    case code("pnam"):
      return Value(track->name);
    case code("pArt"):
      return Value(track->artist);
    case code("pAlb"):
      return Value(track->album);
    case code("pAlA"):
      return Value(track->albumArtist);
    case code("pDur"):
      return Value(track->duration);
    case code("pTim"):
      return Value(track->time ? *track->time : lengthText(track->duration));
    case code("pRte"):
      return Value(track->marks.rating);
    case code("pRtk"):
      return track->marks.ratingKind;
    case code("pLov"):
      return Value(track->marks.loved);
    case code("pAlR"):
      return Value(albumMarks(*track).rating);
    case code("pARk"):
      return albumMarks(*track).ratingKind;
    case code("pALv"):
      return Value(albumMarks(*track).loved);
    default:
      return std::nullopt;
  }
}

DemoPlayer::Reply DemoPlayer::count(const ScriptingPath& path) {
  const Track* track = currentTrack();
  const bool countsArtworks = path.size() == 2 && isProperty(path[0], currentTrackCode) &&
                              isProperty(path[1], artworkClass);
  if (!countsArtworks || track == nullptr) return std::nullopt;
  return Value(track->cover ? 1 : 0);
}

DemoPlayer::Reply DemoPlayer::resolve(const ScriptingPath& path) {
  if (path.empty()) return code("capp");
  const Track* track = currentTrack();
  if (!isProperty(path[0], currentTrackCode) || track == nullptr) return std::nullopt;
  if (path.size() == 1) return track->isStream ? code("cURT") : code("cFlT");
  const bool isCover = path.size() == 2 && path[1].code == artworkClass && path[1].index == 0;
  return isCover && track->cover ? Reply(artworkClass) : std::nullopt;
}

DemoPlayer::Reply DemoPlayer::set(const Request& request) {
  if (refusesWrites_) return std::nullopt;
  const ScriptingPath& path = request.path;
  if (path.size() == 1 && isProperty(path[0], code("pPos"))) {
    const auto seconds = request.value.as<Number>();
    return seconds && seek(seconds->doubleValue()) ? Reply(Value()) : std::nullopt;
  }
  const bool isTrackProperty =
      path.size() == 2 && isProperty(path[0], currentTrackCode) && !path[1].index;
  if (!isTrackProperty || !setTrackProperty(path[1].code, request.value)) return std::nullopt;
  announce();
  return Value();
}

bool DemoPlayer::setTrackProperty(FourCharCode property, const Value& value) {
  Track* track = currentTrack();
  if (track == nullptr) return false;
  switch (property) {
    case code("pRte"):
      return rate(track->marks, value);
    case code("pLov"):
      return love(track->marks, value);
    case code("pAlR"):
      return rate(albumMarks(*track), value);
    case code("pALv"):
      return love(albumMarks(*track), value);
    default:
      return false;
  }
}

DemoPlayer::Reply DemoPlayer::command(const Request& request) {
  const ScriptingPath& path = request.path;
  if (path.empty() && request.eventClass == code("misc") &&
      request.eventIdentifier == code("actv")) {
    ++activationCount_;
    return Value();
  }
  if (request.eventClass != code("hook")) return std::nullopt;
  if (path.empty()) {
    switch (request.eventIdentifier) {
      case code("PlPs"):
        playPause();
        return Value();
      case code("Next"):
        nextTrack();
        return Value();
      case code("Prev"):
        previousTrack();
        return Value();
      default:
        return std::nullopt;
    }
  }
  const Track* track = currentTrack();
  const bool reveals = path.size() == 1 && isProperty(path[0], currentTrackCode) &&
                       request.eventIdentifier == code("Revl");
  if (!reveals || track == nullptr) return std::nullopt;
  revealedTracks_.push_back(track->name);
  return Value();
}

}  // namespace demo

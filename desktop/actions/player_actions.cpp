#include "desktop/actions/player_actions.h"

#include <memory>

#include "desktop/actions/values.h"
#include "platform/application/player_dictionary.h"

namespace desktop {

namespace {

using Outcome = Action::Outcome;
using Kind = ActionProblem::Kind;

Outcome done(bool isDone) {
  return isDone ? Outcome() : ActionProblem{.text = "the player did not take it"};
}

Outcome badValue(std::string_view argument, const char* wanted) {
  constexpr std::size_t longest = 40;
  return ActionProblem{Kind::badValue, std::string("takes ") + wanted + ", not \"" +
                                           std::string(argument.substr(0, longest)) + '"'};
}

bool hasTrack(PlayerControls& player) {
  const auto seen = player.glance();
  return seen && seen->track && seen->state != platform::player::stateStopped;
}

Action command(PlayerControls& player, const char* name, const char* labelKey,
               PlayerCommand command) {
  return {.name = name,
          .labelKey = labelKey,
          .isPossible = [&player, command] { return player.can(command); },
          .isOn = {},
          .perform = withoutArgument([&player, command] { return player.command(command); })};
}

Action rating(PlayerControls& player, const virelune::WidgetEntry& widget, bool album) {
  return {
      .name = album ? "rate-album" : "rate",
      .labelKey = album ? "0004.0012" : "0004.0011",
      .isPossible = [&player] { return hasTrack(player); },
      .isOn = {},
      .perform = [&player, set = widget.setRating, album](std::string_view argument) -> Outcome {
        const auto report = player.report();
        if (!report) return done(false);
        const auto now = album ? report->albumRating : report->rating;
        const auto value = ratingFromText(argument, now.value);
        if (!value) return badValue(argument, "0 to 5 stars in halves, + or -");
        return done(set(*value, album));
      }};
}

Action love(PlayerControls& player, const virelune::WidgetEntry& widget, bool album) {
  const auto isLoved = [&player, album] {
    const auto report = player.report();
    return report && (album ? report->isAlbumLoved : report->isLoved);
  };
  return {.name = album ? "love-album" : "love",
          .labelKey = album ? "0004.0010" : "0004.0009",
          .isPossible = [&player] { return hasTrack(player); },
          .isOn = isLoved,
          .perform = [isLoved, set = widget.setLoved, album](std::string_view argument) -> Outcome {
            const auto value = switchFromText(argument, isLoved());
            return value ? done(set(*value, album)) : badValue(argument, "on, off or toggle");
          }};
}

Action seek(PlayerControls& player) {
  return {.name = "seek",
          .labelKey = "0004.0008",
          .isPossible = [&player] { return hasTrack(player); },
          .isOn = {},
          .perform = [&player](std::string_view argument) -> Outcome {
            const auto seen = player.glance();
            if (!seen || !seen->track) return done(false);
            const auto position =
                amountFromText(argument, player.position(), seen->track->duration);
            if (!position) return badValue(argument, "seconds, +seconds, -seconds or a per cent");
            return done(player.seek(*position));
          }};
}

/// The volume in per cent; none when there is none to set.
std::optional<double> volumeOf(PlayerControls& player) {
  const auto seen = player.glance();
  return seen && seen->volume ? std::optional(*seen->volume * 100) : std::nullopt;
}

Action volume(PlayerControls& player) {
  return {.name = "volume",
          .labelKey = "0004.0013",
          .isPossible = [&player] { return volumeOf(player).has_value(); },
          .isOn = {},
          .perform = [&player](std::string_view argument) -> Outcome {
            const double now = volumeOf(player).value_or(0);
            const bool isStep = argument.starts_with('+') || argument.starts_with('-');
            auto value = amountFromText(argument, now, 100);
            if (!value) return badValue(argument, "0 to 100, +per cent or -per cent");
            // Steps end at what players call full; beyond it one can only be on purpose.
            if (isStep && *value > now) *value = std::min(*value, std::max(now, 100.0));
            return done(player.setVolume(*value / 100));
          }};
}

Action mute(PlayerControls& player) {
  // MPRIS knows no muting: silence, and back to what was.
  const auto before = std::make_shared<double>(0);
  const auto isMute = [&player] { return volumeOf(player) == 0.0; };
  return {.name = "mute",
          .labelKey = "0004.0014",
          .isPossible = [&player] { return volumeOf(player).has_value(); },
          .isOn = isMute,
          .perform = [&player, before, isMute](std::string_view argument) -> Outcome {
            const auto mutes = switchFromText(argument, isMute());
            if (!mutes) return badValue(argument, "on, off or toggle");
            if (*mutes == isMute()) return std::nullopt;
            if (*mutes) *before = volumeOf(player).value_or(0);
            constexpr double unknown = 50;  // which startles nobody
            return done(player.setVolume(*mutes ? 0 : (*before > 0 ? *before : unknown) / 100));
          }};
}

}  // namespace

void addPlayerActions(Actions& actions, PlayerControls& player,
                      const virelune::WidgetEntry& widget) {
  actions.add(command(player, "play-pause", "0004.0001", PlayerCommand::playPause));
  actions.add(command(player, "play", "0004.0002", PlayerCommand::play));
  actions.add(command(player, "pause", "0004.0003", PlayerCommand::pause));
  actions.add(command(player, "stop", "0004.0004", PlayerCommand::stop));
  actions.add(command(player, "next", "0004.0005", PlayerCommand::next));
  actions.add(command(player, "previous", "0004.0006", PlayerCommand::previous));
  actions.add(command(player, "raise", "0004.0007", PlayerCommand::raise));
  actions.add(seek(player));
  for (const bool album : {false, true}) actions.add(love(player, widget, album));
  for (const bool album : {false, true}) actions.add(rating(player, widget, album));
  actions.add(volume(player));
  actions.add(mute(player));
}

}  // namespace desktop

#include "desktop/program/card_actions.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QProcess>
#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "desktop/actions/values.h"
#include "desktop/files/module.h"
#include "desktop/window/localized.h"
#include "desktop/window/placement.h"
#include "desktop/window/shortcuts.h"

namespace desktop {

namespace {

using Outcome = Action::Outcome;

bool always() { return true; }

Outcome badValue(const char* wanted) {
  return ActionProblem{ActionProblem::Kind::badValue, std::string("takes ") + wanted};
}

/// A switch with its two sides.
Action toggle(const char* name, const char* labelKey, std::function<bool()> isOn,
              std::function<bool(bool)> set, std::function<bool()> isPossible = always) {
  return {.name = name,
          .labelKey = labelKey,
          .isPossible = std::move(isPossible),
          .isOn = isOn,
          .perform = [isOn, set = std::move(set)](std::string_view argument) -> Outcome {
            const auto value = switchFromText(argument, isOn());
            if (!value) return badValue("on, off or toggle");
            if (!set(*value)) return ActionProblem{.text = "it cannot be changed"};
            return std::nullopt;
          }};
}

Action plain(const char* name, const char* labelKey, std::function<void()> act) {
  return {.name = name,
          .labelKey = labelKey,
          .isPossible = always,
          .isOn = {},
          .perform = withoutArgument([act = std::move(act)] {
            act();
            return true;
          })};
}

/// Has a program of its own exchange ratings with a file, which may take a while, and tells how it
/// went.
void exchangeRatings(const CardParts& parts, const char* verb, const std::string& file,
                     const std::string& title) {
  auto* program = new QProcess(&parts.surface);  // NOLINT: the window owns it
  program->setProcessChannelMode(QProcess::ForwardedErrorChannel);
  program->setStandardOutputFile(QProcess::nullDevice());
  QObject::connect(program, &QProcess::finished, &parts.surface,
                   [&surface = parts.surface, program, title](int status) {
                     surface.showNotice(title + (status == 0 ? "  ✓" : "  ✗"));
                     program->deleteLater();
                   });
  program->start(QString::fromStdString(programFile().string()),
                 {QString::fromLatin1(verb), QString::fromStdString(file)});
}

Action fileAction(const CardParts& parts, const char* name, const char* labelKey,
                  const char* verb) {
  return {.name = name,
          .labelKey = labelKey,
          .isPossible = [parts] { return parts.files.isThere(); },
          .isOn = {},
          .perform = withoutArgument([parts, labelKey, verb] {
            const std::string title = localizedString(labelKey);
            const auto chosen = [parts, verb, title](const std::string& file) {
              exchangeRatings(parts, verb, file, title);
            };
            if (std::string_view(verb) == "import") {
              parts.files.open(title, chosen);
            } else {
              parts.files.save(title, "ratings.jsonl", chosen);
            }
            return true;
          })};
}

std::string withNumber(const std::string& pattern, const std::string& number) {
  std::string text = pattern;
  const auto place = text.find("%@");
  if (place != std::string::npos) text.replace(place, 2, number);
  return text;
}

}  // namespace

void addCardActions(Actions& actions, const CardParts& parts) {
  actions.add({.name = "follow",
               .labelKey = "0003.0004",
               .isPossible = always,
               .isOn = {},
               .perform = [parts](std::string_view name) -> Outcome {
                 if (name.empty()) return badValue("a player's name, any or demo");
                 if (name == "demo") {
                   parts.player.playDemo();
                   return std::nullopt;
                 }
                 const std::string player = name == "any" ? std::string() : std::string(name);
                 parts.settings.setPlayer(player);
                 parts.player.followPlayer(player);
                 return std::nullopt;
               }});
  actions.add({.name = "size",
               .labelKey = "0003.0007",
               .isPossible = always,
               .isOn = {},
               .perform = [parts](std::string_view argument) -> Outcome {
                 const auto percent = amountFromText(argument, 0, 0);
                 if (!percent || *percent < 100 || *percent > 400) {
                   return badValue("100 to 400 per cent");
                 }
                 parts.settings.setScale(*percent / 100);
                 parts.restart();
                 return std::nullopt;
               }});
  actions.add({.name = "love-rule",
               .labelKey = "0003.0008",
               .isPossible = always,
               .isOn = {},
               .perform = [parts](std::string_view argument) -> Outcome {
                 const auto from = argument == "off" ? std::nullopt : ratingFromText(argument, 0);
                 const bool isStep = argument == "+" || argument == "-";
                 if (argument != "off" && (!from || isStep)) return badValue("off or 0 to 5 stars");
                 if (!parts.widget.setLoveRule(from)) {
                   return ActionProblem{.text = "the preferences cannot be changed"};
                 }
                 return std::nullopt;
               }});
  actions.add(toggle(
      "hide-when-idle", "0003.0011", [parts] { return parts.settings.hidesWhenIdle(); },
      [parts](bool hides) {
        parts.settings.setHidesWhenIdle(hides);
        parts.showing.update();
        return true;
      }));
  actions.add(toggle("launch-at-login", "0003.0001", parts.widget.isLaunchingAtLogin,
                     parts.widget.setLaunchingAtLogin));
  actions.add(toggle(
      "on-top", "0003.0002", [parts] { return parts.surface.isOnTop(); },
      [parts](bool onTop) {
        parts.surface.setOnTop(onTop);
        return true;
      },
      [parts] { return parts.surface.canStayOnTop(); }));
  actions.add(toggle(
      "write-library", "0003.0014", [parts] { return parts.player.writesLibraries(); },
      [parts](bool writes) {
        parts.settings.setWritesLibraries(writes);
        parts.player.setWritesLibraries(writes);
        return true;
      }));
  actions.add(fileAction(parts, "export-ratings", "0003.0012", "export"));
  actions.add(fileAction(parts, "import-ratings", "0003.0013", "import"));
  actions.add(toggle(
      "about", "0003.0015", [parts] { return parts.card.isEditing(); },
      [parts](bool editing) {
        parts.card.setEditing(editing);
        return true;
      }));
  actions.add(toggle(
      "status-icon", "0003.0018", [parts] { return parts.tray.isWanted(); },
      [parts](bool shows) {
        parts.settings.setShowsStatusIcon(shows);
        parts.tray.setWanted(shows);
        return true;
      },
      [parts] { return parts.tray.hasStatusArea(); }));
  actions.add(toggle(
      "show", "0003.0020", [parts] { return parts.showing.isShown(); },
      [parts](bool shows) {
        parts.showing.setHiddenByHand(!shows);
        return parts.showing.isShown() == shows;
      }));
  actions.add(plain("menu", "0003.0019", [parts] { parts.surface.openMenu(); }));
  actions.add(plain("keys", "0003.0017", parts.showKeys));
  actions.add(plain("close", "0003.0003", [parts] { parts.surface.close(); }));
  actions.add(plain("quit", "0003.0021", [] { QCoreApplication::quit(); }));
}

namespace {

class MenuBuilder {
 public:
  MenuBuilder(const Actions& actions, const CardParts& parts) : actions_(actions), parts_(parts) {}

  std::vector<MenuItem> items() {
    std::vector<MenuItem> items{parent("0003.0004", players())};
    for (const char* name : {"play-pause", "previous", "next", "raise", "love", "love-album"}) {
      items.push_back(item(name));
    }
    items[1].beginsGroup = true;
    items.push_back(parent("0004.0013", volumes()));
    items.back().isEnabled = actions_.find("volume")->isPossible();
    items.push_back(parent("0003.0007", sizes()));
    items.back().beginsGroup = true;
    items.push_back(parent("0003.0008", loveRules()));
    for (const char* name : {"write-library", "export-ratings", "import-ratings", "hide-when-idle",
                             "launch-at-login", "on-top"}) {
      // What this desktop never lets a program do is not shown.
      if (actions_.find(name)->isPossible()) items.push_back(item(name));
    }
    items.push_back(item("status-icon"));
    if (!items.back().isEnabled) items.back().title = localizedString("0003.0022");
    items.push_back(item("keys"));
    items.back().beginsGroup = true;
    items.push_back(item("about"));
    items.push_back(item("close"));
    if (parts_.tray.isShown()) items.push_back(item("quit"));
    return items;
  }

 private:
  MenuItem item(const char* name, const std::string& argument = {}) const {
    const Action& action = *actions_.find(name);
    return {.title = localizedString(action.labelKey),
            .key = keyText(name, argument),
            .isChecked = action.isOn && action.isOn(),
            .isEnabled = action.isPossible(),
            .choose = [&actions = actions_, name = action.name, argument] {
              actions.perform(name, argument);
            }};
  }

  MenuItem titled(const char* name, const std::string& argument, const std::string& title,
                  bool isChecked) const {
    MenuItem made = item(name, argument);
    made.title = title;
    made.isChecked = isChecked;
    return made;
  }

  static MenuItem parent(const char* labelKey, std::vector<MenuItem> children) {
    return {.title = localizedString(labelKey), .children = std::move(children)};
  }

  std::vector<MenuItem> players() const {
    const bool isDemo = parts_.player.demoPlayer() != nullptr;
    const std::string wanted = parts_.settings.player();
    std::vector<MenuItem> items{
        titled("follow", "any", localizedString("0003.0005"), !isDemo && wanted.empty())};
    for (const PlayerListing& player : parts_.player.players()) {
      items.push_back(titled("follow", player.name,
                             player.identity.empty() ? player.name : player.identity,
                             !isDemo && player.name == wanted));
      items.back().icon = [&source = parts_.player, entry = player.desktopEntry] {
        const auto path = entry.empty() ? std::nullopt : source.applicationPath(entry);
        return path ? source.icon(*path) : nullptr;
      };
    }
    items.push_back(titled("follow", "demo", localizedString("0003.0006"), isDemo));
    items.back().beginsGroup = true;
    return items;
  }

  std::vector<MenuItem> volumes() const {
    std::vector<MenuItem> items;
    for (const char* percent : {"100", "75", "50", "25"}) {
      items.push_back(titled("volume", percent, std::string(percent) + " %", false));
    }
    items.push_back(item("mute"));
    items.back().beginsGroup = true;
    return items;
  }

  std::vector<MenuItem> sizes() const {
    const double scale = parts_.settings.scale().value_or(1);
    std::vector<MenuItem> items;
    for (const int percent : {100, 125, 150, 200}) {
      const std::string text = std::to_string(percent);
      items.push_back(titled("size", text, text + " %", scale * 100 == percent));
    }
    return items;
  }

  std::vector<MenuItem> loveRules() const {
    const auto rule = parts_.widget.loveRule();
    std::vector<MenuItem> items{titled("love-rule", "off", localizedString("0003.0009"), !rule)};
    constexpr std::array<std::int64_t, 5> thresholds{60, 70, 80, 90, 100};
    for (const std::int64_t rating : thresholds) {
      const std::string stars = textFromRating(rating);
      std::string shown = stars;
      if (const auto half = shown.find(".5"); half != std::string::npos)
        shown.replace(half, 2, "½");
      items.push_back(titled("love-rule", stars, withNumber(localizedString("0003.0010"), shown),
                             rule == rating));
    }
    return items;
  }

  const Actions& actions_;
  const CardParts& parts_;
};

}  // namespace

std::vector<MenuItem> menuItems(const Actions& actions, const CardParts& parts) {
  return MenuBuilder(actions, parts).items();
}

std::vector<MenuItem> keyItems(const Actions& actions) {
  std::vector<MenuItem> items;
  std::string before;
  for (const Shortcut& shortcut : shortcuts()) {
    // Of the keys of one action the first is shown, and of a scale both its ends.
    const std::string_view argument = shortcut.argument;
    const bool isShown = shortcut.action != before || argument == "5" || argument == "+" ||
                         argument.starts_with('-') || argument.starts_with('+');
    before = shortcut.action;
    const Action* action = actions.find(shortcut.action);
    if (!isShown || action == nullptr) continue;
    std::string title = localizedString(action->labelKey);
    if (!argument.empty()) title += "  " + std::string(argument);
    items.push_back(
        {.title = title,
         .key = keyText(shortcut.action, shortcut.argument),
         .isEnabled = action->isPossible(),
         .choose = [&actions, shortcut] { actions.perform(shortcut.action, shortcut.argument); }});
  }
  return items;
}

}  // namespace desktop

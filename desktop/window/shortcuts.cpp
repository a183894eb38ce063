#include "desktop/window/shortcuts.h"

#include <QtGui/QKeySequence>
#include <algorithm>
#include <array>

namespace desktop {

namespace {

constexpr std::array keys{
    Shortcut{Qt::Key_Space, {}, "play-pause"},
    Shortcut{Qt::Key_N, {}, "next"},
    Shortcut{Qt::Key_P, {}, "previous"},
    Shortcut{Qt::Key_L, {}, "love"},
    Shortcut{Qt::Key_L, Qt::AltModifier, "love-album"},
    Shortcut{Qt::Key_0, {}, "rate", "0"},
    Shortcut{Qt::Key_1, {}, "rate", "1"},
    Shortcut{Qt::Key_2, {}, "rate", "2"},
    Shortcut{Qt::Key_3, {}, "rate", "3"},
    Shortcut{Qt::Key_4, {}, "rate", "4"},
    Shortcut{Qt::Key_5, {}, "rate", "5"},
    Shortcut{Qt::Key_Plus, {}, "rate", "+"},
    Shortcut{Qt::Key_Minus, {}, "rate", "-"},
    Shortcut{Qt::Key_0, Qt::AltModifier, "rate-album", "0"},
    Shortcut{Qt::Key_1, Qt::AltModifier, "rate-album", "1"},
    Shortcut{Qt::Key_2, Qt::AltModifier, "rate-album", "2"},
    Shortcut{Qt::Key_3, Qt::AltModifier, "rate-album", "3"},
    Shortcut{Qt::Key_4, Qt::AltModifier, "rate-album", "4"},
    Shortcut{Qt::Key_5, Qt::AltModifier, "rate-album", "5"},
    Shortcut{Qt::Key_Plus, Qt::AltModifier, "rate-album", "+"},
    Shortcut{Qt::Key_Minus, Qt::AltModifier, "rate-album", "-"},
    Shortcut{Qt::Key_Left, {}, "seek", "-5"},
    Shortcut{Qt::Key_Right, {}, "seek", "+5"},
    Shortcut{Qt::Key_Up, {}, "volume", "+5"},
    Shortcut{Qt::Key_Down, {}, "volume", "-5"},
    Shortcut{Qt::Key_M, {}, "mute"},
    Shortcut{Qt::Key_F10, {}, "menu"},
    Shortcut{Qt::Key_Menu, {}, "menu"},
    Shortcut{Qt::Key_F1, {}, "keys"},
    Shortcut{Qt::Key_Question, {}, "keys"},
    Shortcut{Qt::Key_Q, Qt::ControlModifier, "close"},
};

}  // namespace

std::span<const Shortcut> shortcuts() { return keys; }

const Shortcut* shortcutOf(const QKeyEvent& event) {
  const auto modifiers = event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier);
  const auto* found = std::find_if(keys.begin(), keys.end(), [&](const Shortcut& shortcut) {
    return shortcut.key == event.key() && shortcut.modifiers == modifiers;
  });
  return found != keys.end() ? found : nullptr;
}

std::string keyText(const std::string& action, const std::string& argument) {
  const auto* found = std::find_if(keys.begin(), keys.end(), [&](const Shortcut& shortcut) {
    return shortcut.action == action && shortcut.argument == argument;
  });
  if (found == keys.end()) return {};
  return QKeySequence(QKeyCombination(found->modifiers, found->key))
      .toString(QKeySequence::NativeText)
      .toStdString();
}

}  // namespace desktop

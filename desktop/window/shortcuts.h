// The keys of the card.
#pragma once

#include <QtCore/QString>
#include <QtGui/QKeyEvent>
#include <span>
#include <string>

namespace desktop {

/// A key that does an action anywhere in the card.
struct Shortcut {
  Qt::Key key;
  Qt::KeyboardModifiers modifiers;  ///< Shift does not count: it is a matter of the layout
  const char* action;
  const char* argument = "";
};

std::span<const Shortcut> shortcuts();

/// The one that a key means; null for none.
const Shortcut* shortcutOf(const QKeyEvent& event);

/// How the user's desktop writes the first key of an action; empty for none.
std::string keyText(const std::string& action, const std::string& argument = {});

}  // namespace desktop

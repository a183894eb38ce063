// The parts of a card that can be operated, and how each is operated without a pointer.
#pragma once

#include <Qt>
#include <memory>
#include <string>
#include <vector>

#include "desktop/window/card.h"

namespace desktop {

using ControlView = std::shared_ptr<platform::NSView>;

/// The visible parts of a card that have a name or a value, in reading order, texts included.
std::vector<ControlView> accessibleViews(Card& card);

/// True for those that take the keyboard.
bool isControl(const platform::NSView& view);

/// Presses a button. The modifiers are held meanwhile, as at a click.
bool press(platform::NSView& view, Qt::KeyboardModifiers modifiers);

/// Moves a value by so many of its steps; false for what has none.
bool step(platform::NSView& view, double steps, Qt::KeyboardModifiers modifiers);
bool setValue(platform::NSView& view, double value, Qt::KeyboardModifiers modifiers);

/// The value in words, in the user's language: "1:23 of 3:45", "3½ of 5 stars"; empty for none.
std::string valueText(const platform::NSView& view);

}  // namespace desktop

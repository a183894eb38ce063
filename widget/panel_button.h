// What all buttons of the panels have in common.
#pragma once

#include <memory>

#include "platform/view/button.h"

namespace virelune {

/// Makes the button a plain picture to click on: no border, no title, the image scaled to fit.
/// A null image leaves it empty.
void configurePanelButton(platform::NSButton& button, std::shared_ptr<platform::NSImage> image,
                          const std::shared_ptr<platform::NSObject>& target,
                          platform::Selector action);

/// A new button that shows a text, flush left, and nothing else.
std::shared_ptr<platform::NSButton> preparedTextButton(
    platform::NSRect frame, platform::NSAttributedString title,
    const std::shared_ptr<platform::NSObject>& target, platform::Selector action);

}  // namespace virelune

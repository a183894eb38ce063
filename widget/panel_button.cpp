#include "widget/panel_button.h"

#include <utility>

namespace virelune {

using platform::NSButton;

void configurePanelButton(NSButton& button, std::shared_ptr<platform::NSImage> image,
                          const std::shared_ptr<platform::NSObject>& target,
                          platform::Selector action) {
  button.setBordered(false);
  button.setButtonType(platform::NSButtonType::momentaryChange);
  button.setImageScaling(platform::NSImageScaling::proportionallyUpOrDown);
  button.setTitle("");
  button.setImage(std::move(image));
  button.setTarget(target);
  button.setAction(std::move(action));
}

std::shared_ptr<NSButton> preparedTextButton(platform::NSRect frame,
                                             platform::NSAttributedString title,
                                             const std::shared_ptr<platform::NSObject>& target,
                                             platform::Selector action) {
  auto button = platform::make<NSButton>(frame);
  configurePanelButton(*button, nullptr, target, std::move(action));
  button->setAlignment(platform::NSTextAlignment::left);
  button->setAttributedTitle(std::move(title));
  return button;
}

}  // namespace virelune

// The artwork button in a window, with a target.
#pragma once

#include "controls/artwork_button.h"
#include "tests/support/listener.h"
#include "tests/support/widget_fixture.h"

namespace tests {

class ArtworkFixture : public WidgetFixture {
 protected:
  ArtworkFixture() {
    const auto root = platform::make<platform::NSView>(platform::NSMakeRect(0, 0, 320, 64));
    root->addSubview(button);
    window->setContentView(root);
    button->setTarget(target);
    button->setAction(&Listener::clicked);
  }
  static std::shared_ptr<platform::NSImage> image(const std::string& name) {
    return platform::make<TestImage>(name, platform::NSSize{10, 10});
  }

  std::shared_ptr<virelune::VLArtworkButton> button =
      platform::make<virelune::VLArtworkButton>(platform::NSMakeRect(6, 9, 50, 50));
  std::shared_ptr<Listener> target = platform::make<Listener>();
};

}  // namespace tests

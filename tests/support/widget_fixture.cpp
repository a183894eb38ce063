#include "tests/support/widget_fixture.h"

namespace tests {

using platform::NSEventType;
using platform::NSPoint;

const char* bundlePath() { return VIRELUNE_TEST_BUNDLE; }

WidgetFixture::WidgetFixture()
    : bundle(platform::NSBundle::bundleWithPath(bundlePath(), {})), composed_([this] {
        platform_.runLoop = &clock.runLoop();
        platform_.graphics = &graphics;
        platform_.http = &http;
        platform_.globalQueue = &workers;
        platform_.mainBundle = bundle.get();
        return true;
      }()) {
  platform_.scripting = &player;
  platform_.workspace = &workspace;
  window = platform::make<platform::NSWindow>();
  window->setMarkHandler([this](platform::NSRect rect) { marked.push_back(rect); });
}

WidgetFixture::~WidgetFixture() { window->setVisible(false); }

void WidgetFixture::startPlayer(platform::FourCharCode state, std::size_t track) {
  player.launch(state);
  player.playTrack(track);
  player.setState(state);
  clock.settle();
}

void WidgetFixture::sendMouse(NSEventType type, NSPoint point, std::uint64_t modifierFlags) {
  window->sendEvent({.type = type,
                     .locationInWindow = point,
                     .clickCount = 1,
                     .modifierFlags = modifierFlags,
                     .keyCode = 0});
}

void WidgetFixture::click(NSPoint point, std::uint64_t modifierFlags) {
  sendMouse(NSEventType::leftMouseDown, point, modifierFlags);
  sendMouse(NSEventType::leftMouseUp, point, modifierFlags);
}

NSPoint WidgetFixture::centerOf(const platform::NSView& view) {
  const platform::NSRect rect = view.convertRectToWindow(view.bounds());
  return {rect.minX() + rect.size.width / 2, rect.minY() + rect.size.height / 2};
}

}  // namespace tests

// The fixture of the unit tests: a whole platform in which nothing is real and time stands still.
#pragma once

#include <gmock/gmock.h>

#include "platform/application/bundle.h"
#include "platform/platform.h"
#include "platform/view/window.h"
#include "tests/support/manual_clock.h"
#include "tests/support/scripted.h"
#include "tests/support/simulated_player.h"
#include "tests/support/test_graphics.h"

namespace tests {

/// The folder of the real bundle.
const char* bundlePath();

/// Installs the platform on a manual clock, the simulated player (not running at first), a
/// scripted workspace and network, and graphics without pixels. The bundle is the real one, in
/// English.
struct WidgetFixture : testing::Test {
  WidgetFixture();
  ~WidgetFixture() override;

  /// Lets the player run with a track in the given state.
  void startPlayer(platform::FourCharCode state = demo::statePlaying, std::size_t track = 0);

  /// A press and release at a point of the window, with modifier keys.
  void click(platform::NSPoint point, std::uint64_t modifierFlags = 0);
  void sendMouse(platform::NSEventType type, platform::NSPoint point,
                 std::uint64_t modifierFlags = 0);
  /// The middle of a view, in window coordinates.
  static platform::NSPoint centerOf(const platform::NSView& view);

  platform::Platform platform_;
  platform::PlatformScope scope_{platform_};
  ManualClock clock;
  TestGraphics graphics;
  std::unique_ptr<platform::NSBundle> bundle;
  ScriptedHTTP http;
  ManualQueue workers;

 private:
  const bool composed_;  // the parts that the player needs from its first moment are installed

 protected:
  SimulatedPlayer player;
  ScriptedWorkspace workspaceBackend{player};
  platform::NSWorkspace workspace{workspaceBackend};

  /// A window for the views under test, shown or not as the test says.
  std::shared_ptr<platform::NSWindow> window;
  std::vector<platform::NSRect> marked;  ///< what was marked in the window
};

}  // namespace tests

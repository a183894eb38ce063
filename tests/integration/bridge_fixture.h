// The player bridge between a private bus and an otherwise empty platform.
#pragma once

#include <gmock/gmock.h>

#include "desktop/player/bridge.h"
#include "desktop/program/qt_run_loop.h"
#include "desktop/session/workspace.h"
#include "platform/platform.h"
#include "tests/integration/processes.h"
#include "tests/support/listener.h"

namespace tests {

struct BridgeFixture : testing::Test {
  BridgeFixture() {
    driver_.setPass([this] { runLoop_.runPass(); });
    platform_.runLoop = &runLoop_;
  }

  void follow(const desktop::PlayerBridge::Options& options = {}) {
    bridge = std::make_unique<desktop::PlayerBridge>(bus.connection(), options);
    backend_ = std::make_unique<desktop::DesktopWorkspace>(bridge.get());
    workspace_ = std::make_unique<platform::NSWorkspace>(*backend_);
    platform_.workspace = workspace_.get();
    platform_.scripting = bridge.get();
    using platform::NSWorkspaceDidTerminateApplicationNotification;
    platform_.distributedCenter->removeObserver(announced.get());
    platform_.distributedCenter->addObserver(announced.get(), &Listener::heard,
                                             platform::player::infoNotification);
    workspace_->notificationCenter().addObserver(terminated.get(), &Listener::heard,
                                                 NSWorkspaceDidTerminateApplicationNotification);
  }

  static std::string state() {
    return platform::textFromCode(app()->propertyWithCode(platform::code("pPlS"))->enumCodeValue());
  }
  static double position() {
    return app()->propertyWithCode(platform::code("pPos"))->doubleValue();
  }
  static std::shared_ptr<platform::SBObject> track() {
    return app()->propertyWithCode(platform::code("pTrk"));
  }
  static std::optional<std::string> trackText(platform::FourCharCode property) {
    return track()->propertyWithCode(property)->stringValue();
  }
  static std::shared_ptr<platform::SBObject> rating() {
    return track()->propertyWithCode(platform::code("pRte"));
  }
  static std::string title() { return trackText(platform::code("pnam")).value_or("(none)"); }
  static bool waitForTitle(const char* expected) {
    return waitUntil([&] { return title() == expected; });
  }
  static bool waitForRating(int expected) {
    return waitUntil([&] { return rating()->integerValue() == expected; });
  }
  /// Waits until a rating of the track has come that far on its way into the player's library.
  bool isNoted(const desktop::TrackIdentity& track, const std::string& player,
               desktop::LibraryNote::State state) {
    return waitUntil([&] {
      const auto note = ratings.known(track, player).note;
      return note && note->state == state;
    });
  }
  static void command(platform::FourCharCode identifier) {
    app()->sendEvent_id_parameters(platform::code("hook"), identifier);
  }
  static std::shared_ptr<platform::SBApplication> app() {
    return platform::make<platform::SBApplication>(platform::player::bundleIdentifier);
  }

  const PrivateBus bus;
  const TemporaryFolder folder;
  desktop::RatingsStore ratings{folder.path() / "ratings.sqlite"};  // outlives the bridge

 private:
  platform::Platform platform_;
  platform::PlatformScope scope_{platform_};
  desktop::QtRunLoop driver_;
  platform::RunLoop runLoop_{driver_};
  std::unique_ptr<desktop::DesktopWorkspace> backend_;
  std::unique_ptr<platform::NSWorkspace> workspace_;

 protected:
  std::unique_ptr<desktop::PlayerBridge> bridge;
  const std::shared_ptr<Listener> announced = platform::make<Listener>();  ///< of changes
  const std::shared_ptr<Listener> terminated = platform::make<Listener>();
};

}  // namespace tests

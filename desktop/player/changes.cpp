#include "desktop/player/changes.h"

#include "platform/application/player_dictionary.h"
#include "platform/application/workspace.h"
#include "platform/platform.h"

namespace desktop {

std::shared_ptr<PlayerChanges> PlayerChanges::observe(std::function<void()> changed) {
  auto changes = platform::make<PlayerChanges>(std::move(changed));
  for (const char* name : {platform::player::infoNotification, playerDetailNotification}) {
    platform::current().distributedCenter->addObserver(changes.get(), &PlayerChanges::received,
                                                       name);
  }
  if (auto* workspace = platform::NSWorkspace::sharedWorkspace()) {
    for (const char* name : {platform::NSWorkspaceDidLaunchApplicationNotification,
                             platform::NSWorkspaceDidTerminateApplicationNotification}) {
      workspace->notificationCenter().addObserver(changes.get(), &PlayerChanges::received, name);
    }
  }
  return changes;
}

bool PlayerChanges::received(const platform::NSNotification*) {
  changed_();
  return true;
}

}  // namespace desktop

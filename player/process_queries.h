// Is the player running, is it playing, is it playing the live station? Every call asks the
// system and the player again. A player that does not run is never sent anything. Main thread.
#pragma once

#include <memory>

#include "platform/application/workspace.h"

namespace virelune {

/// The player's process; null when none runs. Only the first one listed counts.
std::shared_ptr<platform::NSRunningApplication> vl_iTunes();

bool vl_iTunesIsRunning();

/// True when the player runs and reports a state other than stopped, a paused player included.
bool vl_iTunesIsRunningAndPlaying();

/// True when the player runs and its current track is the live station's stream, whatever the
/// player's state.
bool vl_iTunesIsPlayingBeats1();

}  // namespace virelune

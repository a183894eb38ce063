#include "player/process_queries.h"

#include "extensions/collections.h"
#include "platform/foundation/text.h"
#include "player/itunes.h"
#include "widget/constants.h"

namespace virelune {

std::shared_ptr<platform::NSRunningApplication> vl_iTunes() {
  const auto applications =
      platform::runningApplicationsWithBundleIdentifier(VLBundleIdentifier_iTunes);
  const auto first = vl_objectAtIndex_withClass<platform::NSRunningApplication>(applications, 0);
  return first && !first->isTerminated() ? first : nullptr;
}

bool vl_iTunesIsRunning() { return vl_iTunes() != nullptr; }

bool vl_iTunesIsRunningAndPlaying() {
  if (!vl_iTunesIsRunning()) return false;
  const auto application =
      AEiTunesApplication::applicationWithBundleIdentifier(VLBundleIdentifier_iTunes);
  if (!application) return false;
  const FourCharCode state = application->playerState();
  return state != FourCharCode{} && state != AEiTunesPlayerStateStopped;
}

bool vl_iTunesIsPlayingBeats1() {
  if (!vl_iTunesIsRunning()) return false;
  const auto track = AEiTunesApplication::vl_currentTrack();
  if (!track) return false;
  const auto name = track->name();
  if (!name || name->empty()) return false;
  if (!platform::caseInsensitiveEqual(*name, VLIdentifierBeats1)) return false;
  return std::dynamic_pointer_cast<AEiTunesURLTrack>(track->get()) != nullptr;
}

}  // namespace virelune

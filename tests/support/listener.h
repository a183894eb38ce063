// A target, observer or timer's target that counts.
#pragma once

#include "platform/loop/run_loop.h"

namespace tests {

/// Counts its calls, and does something at each.
class Listener : public platform::NSObject {
 public:
  bool clicked(platform::NSObject*) { return note(); }
  bool fired(platform::NSTimer*) { return note(); }
  bool heard(const platform::NSNotification*) { return note(); }

  int count = 0;
  std::function<void()> onCall;

 private:
  bool note() {
    ++count;
    if (onCall) onCall();
    return true;
  }
};

}  // namespace tests

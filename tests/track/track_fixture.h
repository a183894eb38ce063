// The now-playing panel in a window, over the simulated player.
#pragma once

#include "tests/support/temporary_data_home.h"
#include "tests/support/widget_fixture.h"
#include "track/track_view_controller.h"

namespace tests {

class TrackFixture : public WidgetFixture {
 protected:
  /// Puts a new panel on screen, over a player in a state.
  void show(platform::FourCharCode state = demo::statePlaying, std::size_t track = 0) {
    startPlayer(state, track);
    panel = platform::make<virelune::VLTrackViewController>();
    window->setContentView(panel->view());
    window->setVisible(true);
    clock.settle();
    player.clearLog();
    marked.clear();
  }

  /// The texts and images as painted, from the lowest to the highest.
  std::vector<std::string> painted() const {
    RecordingCanvas canvas;
    panel->view()->displayRect(canvas, panel->view()->bounds());
    return canvas.names();
  }

  /// The requests to the player in short: "pnam" for getting the current track's name.
  std::string asked() const {
    std::string all;
    for (std::string entry : player.log()) {
      for (const std::string usual : {"get ", "pTrk."}) {
        const auto at = entry.find(usual);
        if (at != std::string::npos) entry.erase(at, usual.size());
      }
      all += (all.empty() ? "" : " ") + entry;
    }
    return all;
  }

  TemporaryDataHome dataHome;
  std::shared_ptr<virelune::VLTrackViewController> panel;
};

}  // namespace tests

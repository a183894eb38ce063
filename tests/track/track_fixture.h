// The now-playing panel in a window, over the simulated player.
#pragma once

#include "tests/support/temporary_data_home.h"
#include "tests/support/widget_fixture.h"
#include "track/track_view_controller.h"

namespace tests {

class TrackFixture : public WidgetFixture {
 protected:
  /// Puts a new panel on screen, over a player in a state.
  void show(platform::FourCharCode state = demo::kPlaying, std::size_t track = 0) {
    startPlayer(state, track);
    panel = platform::make<virelune::VLTrackViewController>();
    window->setContentView(panel->view());
    window->setVisible(true);
    clock.settle();
    player.setLogging(true);
    player.clearLog();
    marked.clear();
  }

  /// The texts and images as painted, from the lowest to the highest.
  std::vector<std::string> painted() const {
    RecordingCanvas canvas;
    panel->view()->displayRect(canvas, panel->view()->bounds());
    std::vector<std::string> names;
    for (const auto& step : canvas.steps()) {
      if (!step.name.empty()) names.push_back(step.name);
    }
    return names;
  }

  std::string artistLine() const { return panel->contentArtistTextLabel()->text().value_or("-"); }

  TemporaryDataHome dataHome;
  std::shared_ptr<virelune::VLTrackViewController> panel;
};

}  // namespace tests

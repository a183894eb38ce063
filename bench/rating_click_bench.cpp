// A rating click with the automatic love rule on, against the simulated player. The rule is read
// from its file four times for each.
#include <QtGui/QGuiApplication>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <vector>

#include "bench/measured_process.h"
#include "desktop/program/composition.h"
#include "extensions/application_paths.h"
#include "player/love_rating.h"

namespace {

constexpr double limit = 0.2;  // milliseconds

constexpr const char* loveRule =
    "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>UseAutoLove</key><true/>"
    "<key>UseAutoLoveValue</key><integer>80</integer></dict></plist>";

double medianClick() {
  std::vector<double> times;
  for (int i = 0; i < 2000; ++i) {
    const std::int64_t started = bench::nowNanoseconds();
    virelune::vl_setCurrentTrackRating(i % 2 == 0 ? 100 : 40);
    times.push_back(static_cast<double>(bench::nowNanoseconds() - started) / 1e6);
  }
  std::nth_element(times.begin(), times.begin() + 1000, times.end());
  return times[1000];
}

}  // namespace

int main(int argc, char** argv) {
  char folder[] = "/tmp/virelune-bench-XXXXXX";
  if (mkdtemp(folder) == nullptr) return EXIT_FAILURE;
  setenv("XDG_DATA_HOME", folder, 1);
  double click = -1;
  {
    const QGuiApplication application(argc, argv);
    if (auto bundle = desktop::openBundle(VIRELUNE_BENCH_BUNDLE)) {
      desktop::Composition composition(
          {.bundle = std::move(bundle), .widget = {}, .usesNetwork = false});
      const auto file = virelune::vl_applicationPreferencesURLForPlistGeneral();
      if (file) std::ofstream(file->filePath().value_or("")) << loveRule;
      click = medianClick();
      // Proof that the rule was on: a track rated 40 is not loved, one rated 100 is.
      virelune::vl_setCurrentTrackRating(100);
      if (!composition.player().demoPlayer()->isLoved(demo::DemoPlayer::Marked::track)) click = -1;
    }
  }
  std::filesystem::remove_all(folder);
  std::printf("rating click, rule on: median %.4f ms, at most %.1f\n", click, limit);
  return click >= 0 && click <= limit ? EXIT_SUCCESS : EXIT_FAILURE;
}

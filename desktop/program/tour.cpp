#include "desktop/program/tour.h"

#include <QtCore/QEventLoop>
#include <QtCore/QTimer>
#include <array>
#include <chrono>
#include <system_error>

namespace desktop {

namespace {

constexpr std::chrono::seconds longestWait{10};

/// Lets the events run until the condition holds; false when it does not in time.
bool waitFor(const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + longestWait;
  while (!condition()) {
    if (std::chrono::steady_clock::now() >= deadline) return false;
    settle(10);
  }
  return true;
}

}  // namespace

void settle(int milliseconds) {
  QEventLoop loop;
  QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
  loop.exec();
}

bool writePicture(Card& card, const std::filesystem::path& file, double scale,
                  platform::Appearance appearance) {
  return card.picture(scale, appearance).save(QString::fromStdString(file.string()), "PNG");
}

Result<> takeTour(const Tour& tour, Card& card, demo::DemoPlayer& player, std::ostream& output) {
  struct Stop {
    const char* name;
    std::function<void()> arrive;
    bool isLive = false;
  };
  constexpr double shownPosition = 83;  // seconds
  const std::array<Stop, 6> stops{{
      {"playing.png",
       [&] {
         player.launch(demo::statePlaying);
         player.seek(shownPosition);
       }},
      {"paused.png", [&] { player.pause(); }},
      {"stopped.png", [&] { player.stop(); }},
      {"about.png", [&] { card.setEditing(true); }},
      {"not-running.png",
       [&] {
         card.setEditing(false);
         player.quit();
       }},
      {"live.png",
       [&] {
         player.launch(demo::statePlaying);
         player.playTrack(demo::liveStation);
       },
       true},
  }};

  std::error_code error;
  std::filesystem::create_directories(tour.folder, error);
  if (error) return Problem{"cannot write " + tour.folder.string()};
  card.window().setVisible(true);
  for (const Stop& stop : stops) {
    stop.arrive();
    if (stop.isLive && !waitFor(tour.showsLiveProgramme)) {
      return Problem{"the live station does not tell its programme"};
    }
    settle(20);
    const std::filesystem::path file = tour.folder / stop.name;
    if (!writePicture(card, file, tour.scale, tour.appearance)) {
      return Problem{"cannot write " + file.string()};
    }
    output << file.string() << '\n';
  }
  card.window().setVisible(false);
  return {};
}

}  // namespace desktop

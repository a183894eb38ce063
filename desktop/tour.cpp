#include "desktop/tour.h"

#include <QtCore/QEventLoop>
#include <QtCore/QTimer>
#include <array>
#include <functional>
#include <system_error>

namespace desktop {

void settle(int milliseconds) {
  QEventLoop loop;
  QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
  loop.exec();
}

bool writePicture(Card& card, const std::filesystem::path& file, double scale,
                  platform::Appearance appearance) {
  return card.picture(scale, appearance).save(QString::fromStdString(file.string()), "PNG");
}

std::filesystem::path takeTour(Card& card, demo::DemoPlayer& player,
                               const std::filesystem::path& folder, double scale,
                               platform::Appearance appearance, std::ostream& output) {
  struct Stop {
    const char* name;
    std::function<void()> arrive;
  };
  constexpr double shownPosition = 83;  // seconds
  const std::array<Stop, 5> stops{{
      {"playing.png",
       [&] {
         player.launch(demo::kPlaying);
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
  }};

  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) return folder;
  card.window().setVisible(true);
  for (const Stop& stop : stops) {
    stop.arrive();
    settle(20);
    const std::filesystem::path file = folder / stop.name;
    if (!writePicture(card, file, scale, appearance)) return file;
    output << file.string() << '\n';
  }
  card.window().setVisible(false);
  return {};
}

}  // namespace desktop

// The widget as the program composes it, measured from the inside.
//
//   widget-window refresh COUNT    full refreshes on the demo player
//   widget-window signals COUNT    from a player's signal to the finished repaint
#include <QtCore/QTimer>
#include <QtDBus/QDBusInterface>
#include <QtDBus/QDBusMessage>
#include <QtGui/QGuiApplication>
#include <algorithm>
#include <cstdio>
#include <string_view>
#include <vector>

#include "bench/measured_process.h"
#include "desktop/program/composition.h"
#include "desktop/window/card_surface.h"
#include "platform/application/player_dictionary.h"
#include "widget/widget_entry.h"

namespace {

using Milliseconds = double;

Milliseconds percentile(std::vector<Milliseconds> values, double fraction) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  const auto index = static_cast<std::size_t>(fraction * static_cast<double>(values.size() - 1));
  return values[index];
}

Milliseconds since(std::int64_t started) {
  return static_cast<double>(bench::nowNanoseconds() - started) / 1e6;
}

void refresh() {
  platform::current().distributedCenter->postNotification(
      platform::NSNotification(platform::player::infoNotification));
}

/// Counts the requests on their way to the player.
class CountingTransport final : public platform::ScriptingTransport {
 public:
  std::optional<platform::ScriptingReply> send(const platform::ScriptingRequest& request) override {
    ++count;
    return player_.send(request);
  }
  int count = 0;

 private:
  platform::ScriptingTransport& player_ = *platform::current().scripting;
};

int refreshes(desktop::CardSurface& window, int count) {
  window.open();
  CountingTransport requests;
  platform::current().scripting = &requests;
  QTimer::singleShot(500, [&] {
    std::vector<Milliseconds> times;
    requests.count = 0;
    for (int i = 0; i < count; ++i) {
      const std::int64_t started = bench::nowNanoseconds();
      refresh();
      times.push_back(since(started));
    }
    std::printf("full refresh, simulated player: median %.4f ms, 95 %% %.4f ms, %.1f requests\n",
                percentile(times, 0.5), percentile(times, 0.95),
                static_cast<double>(requests.count) / count);
    QCoreApplication::quit();
  });
  return QGuiApplication::exec();
}

/// Makes the player jump now and then, and measures what its signal sets off.
class Signals final : public QObject {
  Q_OBJECT

 public:
  Signals(desktop::CardSurface& window, int count) : window_(window), left_(count) {}

  int run() {
    auto bus = QDBusConnection::sessionBus();
    const QString path = QStringLiteral("/org/mpris/MediaPlayer2");
    const QString interface = QStringLiteral("org.mpris.MediaPlayer2.Player");
    bus.connect({}, path, interface, QStringLiteral("Seeked"), this, SLOT(seeked()));
    window_.setPaintObserver([this](const QRegion&) {
      if (signalled_ == 0) return;
      repaints_.push_back(since(signalled_));
      signalled_ = 0;
      QTimer::singleShot(100, this, &Signals::next);
    });
    window_.open();
    QTimer::singleShot(1000, this, &Signals::next);
    return QGuiApplication::exec();
  }

 private slots:
  void seeked() {
    if (signalled_ != 0) return;
    signalled_ = bench::nowNanoseconds();
  }

 private:
  void next() {
    if (left_-- <= 0) {
      std::printf("signal to finished repaint: median %.3f ms, 95 %% %.3f ms\n",
                  percentile(repaints_, 0.5), percentile(repaints_, 0.95));
      std::printf("full refresh, player on the bus: median %.3f ms\n", percentile(refreshes_, 0.5));
      QCoreApplication::quit();
      return;
    }
    // A command makes the bridge forget what it knew, so this refresh asks the player anew.
    auto* scripting = platform::current().scripting;
    scripting->send({.bundleIdentifier = platform::player::bundleIdentifier,
                     .kind = platform::ScriptingRequest::Kind::set,
                     .path = {{platform::player::playerPosition, std::nullopt}},
                     .value = 10.0 + left_});
    const std::int64_t started = bench::nowNanoseconds();
    refresh();
    refreshes_.push_back(since(started));
    signalled_ = 0;
  }

  desktop::CardSurface& window_;
  int left_;
  std::int64_t signalled_ = 0;
  std::vector<Milliseconds> repaints_;
  std::vector<Milliseconds> refreshes_;
};

}  // namespace

int main(int argc, char** argv) {
  const std::string_view what = argc > 1 ? argv[1] : "";
  const int number = argc > 2 ? std::atoi(argv[2]) : 0;
  const QGuiApplication application(argc, argv);
  desktop::Composition::Options options{.bundle = desktop::openBundle(VIRELUNE_BENCH_BUNDLE),
                                        .widget = virelune::widgetEntry().principalClasses};
  if (!options.bundle) return EXIT_FAILURE;
  if (what == "signals") {
    options.bus = QDBusConnection::sessionBus();
  } else {
    options.usesNetwork = false;  // and with it the demo player's own servers
  }
  desktop::Composition composition(std::move(options));
  if (!composition.player().demoPlayer() && !composition.player().isRunning()) {
    std::fprintf(stderr, "widget-window: no player is on the bus\n");
    return EXIT_FAILURE;
  }
  desktop::Card* card = composition.card();
  if (card == nullptr) return EXIT_FAILURE;
  desktop::CardSurface window(*card, composition.graphics(), {.title = "bench"});
  if (what == "refresh") return refreshes(window, number);
  if (what == "signals") return Signals(window, number).run();
  std::fprintf(stderr, "widget-window: refresh or signals\n");
  return EXIT_FAILURE;
}

#include "widget_window.moc"

// A cover of 1000 × 1000 pixels: decoding it, and what its arrival costs the main thread, from the
// bytes handed over to the finished first painting.
#include <QtCore/QBuffer>
#include <QtGui/QGuiApplication>
#include <QtGui/QPainter>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "controls/artwork_button.h"
#include "desktop/graphics/backend.h"
#include "desktop/graphics/qt_canvas.h"
#include "desktop/window/card_style.h"
#include "platform/loop/run_loop.h"
#include "platform/platform.h"
#include "platform/view/window.h"

namespace {

using platform::Data;

constexpr int side = 1000;

/// Milliseconds by a clock, from its start to now.
double millisecondsOf(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

/// What a call took, in milliseconds.
struct Cost {
  double elapsed;
  double processor;  ///< of this thread, so that other programs do not count
};

template <class Call>
Cost cost(Call call) {
  const Cost before{millisecondsOf(CLOCK_MONOTONIC), millisecondsOf(CLOCK_THREAD_CPUTIME_ID)};
  call();
  return {millisecondsOf(CLOCK_MONOTONIC) - before.elapsed,
          millisecondsOf(CLOCK_THREAD_CPUTIME_ID) - before.processor};
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// A picture with the grain of a photograph, so that there is something to decode.
std::string cover(const char* format) {
  std::mt19937 random(1000);
  QImage picture(side, side, QImage::Format_RGB32);
  for (int y = 0; y < side; ++y) {
    for (int x = 0; x < side; ++x) {
      const int grain = static_cast<int>(random() % 24);
      picture.setPixel(x, y, qRgb(x / 5 + grain, y / 5 + grain, (x + y) / 10 + grain));
    }
  }
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  picture.save(&buffer, format, 90);
  return bytes.toStdString();
}

/// Answers a search with a cover's address and every other request with the cover, each on a
/// thread of its own that has ended when the completion has run.
class CoverTransport final : public platform::HTTPTransport {
 public:
  explicit CoverTransport(std::string cover) : cover_(std::move(cover)) {}

  std::shared_ptr<platform::HTTPTransfer> start(platform::HTTPRequest request,
                                                Completion completion) override {
    const bool isSearch = request.url.find("/search?") != std::string::npos;
    waiting_ = [body = isSearch ? search : cover_, completion = std::move(completion)] {
      completion({.body = Data::fromText(body), .status = 200, .error = {}});
    };
    return std::make_shared<Transfer>();
  }

  /// Completes what was started, and what that starts, away from the main thread.
  void completeAll() {
    while (waiting_) std::thread(std::exchange(waiting_, nullptr)).join();
  }

 private:
  struct Transfer final : platform::HTTPTransfer {
    void cancel() override {}
  };

  const std::string search =
      R"({"results":[{"artistName":"Foo","collectionName":"Bar","artworkUrl100":"http://cover/"}]})";
  const std::string cover_;
  std::function<void()> waiting_;
};

/// Turned by hand.
class StillDriver final : public platform::RunLoopDriver {
 public:
  platform::TimeInterval now() const override { return 0; }
  platform::Date date() const override { return {}; }
  void wakeAt(std::optional<platform::TimeInterval>) override {}
  void wakeNow() override {}
};

bool measure(const char* format, double scale) {
  constexpr double limit = 8;  // milliseconds
  constexpr int turns = 50;
  CoverTransport transport(cover(format));
  StillDriver driver;
  platform::Platform parts;
  const platform::PlatformScope scope(parts);
  platform::RunLoop runLoop(driver);
  desktop::QtGraphics graphics(desktop::opaqueLabelColor);
  parts.runLoop = &runLoop;
  parts.graphics = &graphics;
  parts.http = &transport;

  const auto window = platform::make<platform::NSWindow>();
  const auto button = platform::make<virelune::VLArtworkButton>(platform::NSMakeRect(0, 0, 50, 50));
  button->setImageScaling(platform::NSImageScaling::proportionallyUpOrDown);
  window->setContentView(button);
  QImage screen(QSize(50, 50) * scale, QImage::Format_ARGB32_Premultiplied);
  screen.setDevicePixelRatio(scale);
  screen.fill(Qt::transparent);

  bool isShown = true;
  std::vector<double> away, arrivals;
  double longest = 0;
  for (int turn = 0; turn < turns; ++turn) {
    button->setArtwork_forArtist_withAlbum_download(nullptr, "Foo", "Bar", true);
    away.push_back(cost([&] { transport.completeAll(); }).elapsed);
    const Cost arrival = cost([&] {
      runLoop.runPass();
      QPainter painter(&screen);
      desktop::QtCanvas canvas(painter, 50, platform::Appearance::light);
      window->display(canvas, button->bounds());
    });
    arrivals.push_back(arrival.elapsed);
    longest = std::max(longest, arrival.processor);
    isShown = isShown && button->image() != nullptr && button->image()->size().width == side &&
              qAlpha(screen.pixel(screen.rect().center())) == 255;
  }
  std::printf(
      "%-4s at %g x: search, transfer and decoding %6.2f ms away from the main thread; arrival "
      "and first painting on it: median %.2f ms, at most %.2f ms of "
      "processor time %s %g\n",
      format, scale, median(away), median(arrivals), longest,
      longest <= limit ? "within" : "MISSED", limit);
  if (!isShown) std::printf("the cover was not shown\n");
  return isShown && longest <= limit;
}

}  // namespace

int main(int argc, char** argv) {
  const QGuiApplication application(argc, argv);
  bool areMet = true;
  for (const char* format : {"jpeg", "png"}) {
    for (const double scale : {1.0, 2.0}) areMet = measure(format, scale) && areMet;
  }
  return areMet ? 0 : 1;
}

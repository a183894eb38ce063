// The baseline: a bare window that paints the same three texts and opens a D-Bus connection.
#include <QtCore/QTimer>
#include <QtDBus/QDBusConnection>
#include <QtGui/QGuiApplication>
#include <QtGui/QPainter>
#include <QtGui/QRasterWindow>
#include <cstdio>

#include "bench/measured_process.h"

namespace {

class BareWindow final : public QRasterWindow {
 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.fillRect(QRect(QPoint(), size()), Qt::white);
    const auto draw = [&painter](int pixelSize, int y, const char* text) {
      QFont font;
      font.setPixelSize(pixelSize);
      painter.setFont(font);
      painter.drawText(64, y, QString::fromUtf8(text));
    };
    draw(12, 20, "Marlow & Finch — The Evening Ferry");
    draw(16, 40, "Paper Lanterns");
    draw(10, 60, "01:23 | 3:45");
    painter.end();
    if (painted_) return;
    painted_ = true;
    firstFrame_ = bench::millisecondsSinceStart();
    constexpr int settling = 1000;  // milliseconds until the peak of memory is behind
    QTimer::singleShot(settling, this, [this] {
      std::printf("first-frame %.3f peak %ld\n", firstFrame_, bench::peakMemory());
      QCoreApplication::quit();
    });
  }

 private:
  bool painted_ = false;
  double firstFrame_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  const QGuiApplication application(argc, argv);
  const auto bus = QDBusConnection::sessionBus();
  BareWindow window;
  window.resize(320, 88);
  window.show();
  return bus.isConnected() ? QGuiApplication::exec() : EXIT_FAILURE;
}

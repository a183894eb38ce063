#include "tray/status_item.h"

#include <QtCore/QtEndian>
#include <QtDBus/QDBusMetaType>
#include <QtGui/QImage>
#include <QtGui/QImageReader>
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "tray/structure.h"

namespace tray {

namespace {

constexpr int notch = 120;          // in eighths of a degree
constexpr int mostLines = 10;       // of one turn, for who counts lines
constexpr int smallStepEvery = 50;  // milliseconds

Pixels pixelsOf(const QString& file, int size) {
  QImageReader reader(file);
  reader.setScaledSize({size, size});
  const QImage image = reader.read().convertToFormat(QImage::Format_ARGB32);
  Pixels pixels{image.width(), image.height(), {}};
  pixels.bytes.reserve(image.sizeInBytes());
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const quint32 pixel = qToBigEndian<quint32>(image.pixel(x, y));
      pixels.bytes.append(reinterpret_cast<const char*>(&pixel), sizeof pixel);
    }
  }
  return pixels;
}

}  // namespace

StatusItem::StatusItem(QObject* parent, Options options)
    : QDBusAbstractAdaptor(parent), options_(std::move(options)) {
  qDBusRegisterMetaType<Pixels>();
  qDBusRegisterMetaType<QList<Pixels>>();
  qDBusRegisterMetaType<ItemToolTip>();
  setAutoRelaySignals(true);
}

void StatusItem::setToolTip(const QStringList& lines) {
  // Some status areas read the heading as markup and some do not.
  toolTip_.title = title();
  toolTip_.text = lines.join(QLatin1Char('\n')).toHtmlEscaped();
  emit NewToolTip();
}

QList<Pixels> StatusItem::icon() const {
  QList<Pixels> icon;
  for (const int size : {22, 32, 48}) icon.append(pixelsOf(options_.iconFile, size));
  return icon;
}

void StatusItem::Activate(int, int) { options_.activated(); }

void StatusItem::SecondaryActivate(int, int) { options_.middleClicked(); }

void StatusItem::ContextMenu(int, int) const {}

void StatusItem::Scroll(int delta, const QString& orientation) {
  if (delta == 0 || orientation.compare(QLatin1String("vertical"), Qt::CaseInsensitive) != 0)
    return;
  const int size = std::abs(delta);
  // Nobody has said in what it is counted: those made with Qt send 120 for a notch upwards, those
  // made with GTK -1 or -2. Smooth devices make many small numbers with both.
  if (size > mostLines) countsDegrees_ = true;
  if (size < notch) {
    if (sinceSmallStep_.isValid() && !sinceSmallStep_.hasExpired(smallStepEvery)) return;
    sinceSmallStep_.start();
  }
  const bool isUpwards = (delta > 0) == countsDegrees_;
  options_.scrolled(std::max(1, size / notch) * (isUpwards ? 1 : -1));
}

QDBusArgument& operator<<(QDBusArgument& argument, const Pixels& pixels) {
  return writeStructure(argument, pixels.width, pixels.height, pixels.bytes);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, Pixels& pixels) {
  return readStructure(argument, pixels.width, pixels.height, pixels.bytes);
}

QDBusArgument& operator<<(QDBusArgument& argument, const ItemToolTip& toolTip) {
  return writeStructure(argument, toolTip.iconName, toolTip.icon, toolTip.title, toolTip.text);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, ItemToolTip& toolTip) {
  return readStructure(argument, toolTip.iconName, toolTip.icon, toolTip.title, toolTip.text);
}

}  // namespace tray

#include "desktop/drag/source.h"

#include <QtCore/QEvent>
#include <QtCore/QTimer>
#include <QtGui/QDrag>
#include <QtGui/QGuiApplication>

#include "desktop/drag/mime_data.h"
#include "desktop/graphics/qt_image.h"
#include "desktop/window/compositing.h"
#include "platform/graphics/canvas.h"

namespace desktop {

namespace {

constexpr double cornerRadius = 3;  // points

/// Where the whole picture of an item lies, scaled to its frame.
platform::NSRect pictureRect(const platform::NSDraggingItem& item) {
  const platform::NSRect frame = item.draggingFrame();
  const platform::NSSize full = item.contents()->size();
  const QSizeF size = QSizeF(full.width, full.height)
                          .scaled(frame.size.width, frame.size.height, Qt::KeepAspectRatio);
  return platform::NSMakeRect(frame.minX() + (frame.size.width - size.width()) / 2,
                              frame.minY() + (frame.size.height - size.height()) / 2, size.width(),
                              size.height());
}

}  // namespace

DragSource::DragSource(QWindow& window, QtGraphics& graphics)
    : window_(&window), graphics_(graphics) {}

bool DragSource::begin(std::shared_ptr<platform::NSDraggingSession> session) {
  if (underWay_ || !window_ || session->items().empty()) return false;
  underWay_ = std::move(session);
  // Qt's drag returns only when it is over; the event that begins it ends first.
  QTimer::singleShot(0, this, [this] {
    if (QGuiApplication::mouseButtons().testFlag(Qt::LeftButton) && window_) run(underWay_);
    underWay_ = nullptr;
  });
  return true;
}

void DragSource::run(const std::shared_ptr<platform::NSDraggingSession>& session) {
  folder_.removeOldFiles();
  const auto entry = sessions_.insert(sessions_.end(), session);
  auto data = std::make_unique<DragMimeData>(session, folder_);
  connect(data.get(), &QObject::destroyed, this, [this, entry] { sessions_.erase(entry); });

  const platform::NSDraggingItem& item = *session->items().front();
  const platform::NSRect place = pictureRect(item);
  const platform::NSPoint location = session->draggingLocation();
  auto drag = std::make_unique<QDrag>(window_);
  drag->setMimeData(data.release());  // which it owns
  drag->setPixmap(picture(*item.contents(), place.size));
  drag->setHotSpot({qRound(location.x - place.minX()), qRound(place.maxY() - location.y)});
  const auto mask = session->source().draggingSession_sourceOperationMaskForDraggingContext(
      session.get(), platform::NSDraggingContext::outsideApplication);
  // From here on Qt owns the drag: receivers may ask for its data long after the drop.
  drag.release()->exec(mask == platform::NSDragOperationCopy ? Qt::CopyAction : Qt::IgnoreAction);
}

QPixmap DragSource::picture(const platform::NSImage& image, platform::NSSize size) {
  const platform::NSRect whole{{0, 0}, size};
  const auto rendered = graphics_.render(size, [&](platform::Canvas& canvas) {
    canvas.clip(whole, isScreenComposited() ? cornerRadius : 0);
    canvas.drawImage(image, whole, 1);
  });
  const auto* pixels = dynamic_cast<const QtImage*>(rendered.get());
  if (pixels == nullptr) return {};
  QPixmap picture = QPixmap::fromImage(pixels->pixels());
  picture.setDevicePixelRatio(picture.width() / size.width);
  return picture;
}

}  // namespace desktop

// Drag and drop with Qt.
#pragma once

#include <QtCore/QPointer>
#include <QtGui/QPixmap>
#include <QtGui/QWindow>
#include <list>
#include <memory>

#include "desktop/drag/folder.h"
#include "desktop/graphics/backend.h"
#include "platform/view/drag.h"

namespace desktop {

/// Drags out of a window: the bytes of a picture, and the address of a file that is written into a
/// private folder when a receiver asks for it. (X Direct Save would have it written where a file
/// manager wants it. But those that know it still take an address first where there is one, and
/// browsers, among others, need to see one from the beginning.)
class DragSource final : public QObject, public platform::DragBackend {
 public:
  DragSource(QWindow& window, QtGraphics& graphics);

  /// False while another drag is under way.
  bool begin(std::shared_ptr<platform::NSDraggingSession> session) override;

 private:
  void run(const std::shared_ptr<platform::NSDraggingSession>& session);
  QPixmap picture(const platform::NSImage& image, platform::NSSize size);

  const QPointer<QWindow> window_;
  QtGraphics& graphics_;
  const DragFolder folder_;
  std::shared_ptr<platform::NSDraggingSession> underWay_;  // while the pointer drags
  // Those that receivers may still ask.
  std::list<std::shared_ptr<platform::NSDraggingSession>> sessions_;
};

}  // namespace desktop

// Drag and drop with Qt.
#pragma once

#include <QtCore/QPointer>
#include <QtGui/QPixmap>
#include <QtGui/QWindow>
#include <list>
#include <memory>

#include "desktop/drag/direct_save.h"
#include "desktop/drag/folder.h"
#include "desktop/graphics/backend.h"
#include "platform/view/drag.h"

namespace desktop {

/// Drags out of a window: the bytes of a picture, and a file that is written where the receiver
/// wants it (X Direct Save) or, for receivers of addresses, into a private folder.
class DragSource final : public QObject, public platform::DragBackend {
 public:
  DragSource(QWindow& window, QtGraphics& graphics);

  /// False while another drag is under way.
  bool begin(std::shared_ptr<platform::NSDraggingSession> session) override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void run(const std::shared_ptr<platform::NSDraggingSession>& session);
  void started();
  void suggestName();
  QPixmap picture(const platform::NSImage& image, platform::NSSize size);

  const QPointer<QWindow> window_;
  QtGraphics& graphics_;
  const DragFolder folder_;
  const std::unique_ptr<DirectSave> directSave_;
  std::shared_ptr<platform::NSDraggingSession> underWay_;  // while the pointer drags
  // Those that receivers may still ask.
  std::list<std::shared_ptr<platform::NSDraggingSession>> sessions_;
};

}  // namespace desktop

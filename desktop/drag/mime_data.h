// The data of a drag as Qt hands them to receivers.
#pragma once

#include <QtCore/QMimeData>
#include <memory>
#include <string>

#include "desktop/drag/folder.h"
#include "platform/view/drag.h"

namespace desktop {

/// Makes data when a receiver asks for them. Lives until Qt has no use for it, and has nothing to
/// give once the session is gone.
class DragMimeData final : public QMimeData {
 public:
  /// The folder outlives the session.
  DragMimeData(const std::shared_ptr<platform::NSDraggingSession>& session,
               const DragFolder& folder);

  /// What every receiver is offered.
  QStringList formats() const override;

 protected:
  QVariant retrieveData(const QString& type, QMetaType preferred) const override;

 private:
  QByteArray picture(platform::NSPasteboard& pasteboard) const;
  QByteArray addressList(platform::NSPasteboard& pasteboard) const;

  const std::weak_ptr<platform::NSDraggingSession> session_;
  const DragFolder& folder_;
  mutable std::string file_;  // written for receivers of addresses; empty at first
};

}  // namespace desktop

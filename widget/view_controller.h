// The base of the widget's controller and of every panel.
#pragma once

#include <memory>
#include <optional>

#include "platform/foundation/color.h"
#include "platform/foundation/geometry.h"
#include "platform/loop/notification.h"
#include "platform/view/view_controller.h"
#include "widget/live_programme.h"

namespace virelune {

/// Builds its root view at creation and, while that view is on screen, answers whatever the player
/// does with update(). Subclasses extend prepare() with what belongs into the view.
class VLViewController : public platform::NSViewController {
 public:
  VLViewController() = default;
  ~VLViewController() override;
  bool init() override;  ///< prepare(), whatever it answers

  void viewWillAppear() override;
  void viewWillDisappear() override;

  // Building. prepare… installs something and answers whether it did; prepared… makes it.

  virtual bool prepare();
  bool prepareView();
  bool prepareViewBackgroundColor();  ///< false when the view is not a VLView
  virtual std::shared_ptr<platform::NSView> preparedView();
  virtual platform::NSRect preparedViewFrame();  ///< 320 × 40 points
  virtual platform::NSColor preparedViewBackgroundColor();

  /// Hook: refreshes what the controller shows.
  virtual bool update(platform::NSObject* sender);
  /// Hook: what is on air while the live station is shown; none while that is not known.
  virtual std::optional<LiveProgramme> liveProgramme() const { return std::nullopt; }

  // The player's process starting and ending. Each start begins with its stop, so nothing is
  // ever registered twice.

  bool startNotificationObserver();  ///< false without a workspace
  bool stopNotificationObserver();
  /// Updates when the notification is about the player; false for any other application.
  bool iTunesDidTerminateOrLaunchWithNotification(const platform::NSNotification* notification);

  // The player's own word that something changed.

  bool startDistributedNotificationObserver();
  bool stopDistributedNotificationObserver();
  bool iTunesPlayerInfoDidChangeWithNotification(const platform::NSNotification* notification);
};

}  // namespace virelune

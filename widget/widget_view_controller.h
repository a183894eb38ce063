// The widget's principal controller: it shows nothing itself but chooses the panel that does.
#pragma once

#include <functional>
#include <memory>

#include "platform/application/extension.h"
#include "widget/view_controller.h"

namespace virelune {

/// Holds one panel: About while the user edits the widget, else the track panel while the player
/// runs and is not stopped, else the information panel. A panel of the right kind stays; another
/// one is made afresh and takes its place, and the widget takes the size of its view.
class VLWidgetViewController : public VLViewController, public platform::NCWidgetProviding {
 public:
  VLWidgetViewController() = default;
  ~VLWidgetViewController() override;

  // What the host asks

  /// Updates, then calls the handler once, always with new data.
  void widgetPerformUpdateWithCompletionHandler(
      const std::function<void(platform::NCUpdateResult)>& handler) override;
  /// None: panels reach the edges.
  platform::NSEdgeInsets widgetMarginInsetsForProposedMarginInsets(
      platform::NSEdgeInsets proposed) override;
  bool widgetAllowsEditing() const override { return true; }
  void widgetDidBeginEditing() override;
  void widgetDidEndEditing() override;

  // Choosing the panel

  bool update(platform::NSObject* sender) override;
  /// True when it asked for another panel.
  bool updateViewController(platform::NSObject* sender);
  bool showAboutViewController(platform::NSObject* sender);
  bool showInfoViewController(platform::NSObject* sender);
  bool showTrackViewController(platform::NSObject* sender);

  std::optional<LiveProgramme> liveProgramme() const override;

  // Replacing the panel

  /// Lets go of the panel shown, then shows this one. False when there is no panel to show, or
  /// when it has no view; the widget is then left without one.
  bool setViewController(std::shared_ptr<VLViewController> controller);
  /// Makes the view the only one in the root view and takes its size; false for none.
  bool setSubview(const std::shared_ptr<platform::NSView>& view);

  bool isAboutViewControllerVisible() const;
  bool isInfoViewControllerVisible() const;
  bool isTrackViewControllerVisible() const;

  const std::shared_ptr<VLViewController>& contentViewController() const {
    return contentViewController_;
  }
  void setContentViewController(std::shared_ptr<VLViewController> controller) {
    contentViewController_ = std::move(controller);
  }

 private:
  std::shared_ptr<VLViewController> contentViewController_;
};

}  // namespace virelune

// The panel shown while the player does not play.
#pragma once

#include <memory>
#include <optional>

#include "platform/foundation/attributed_string.h"
#include "platform/view/button.h"
#include "widget/view_controller.h"

namespace virelune {

/// One line: the player's icon and what state the player is in. A click on either launches it.
class VLTInfoViewController : public VLViewController {
 public:
  VLTInfoViewController() = default;
  ~VLTInfoViewController() override;

  // Building
  bool prepare() override;
  bool prepareActionButton();
  bool prepareTitleButton();
  std::shared_ptr<platform::NSButton> preparedActionButton();
  std::shared_ptr<platform::NSButton> preparedTitleButton();  ///< null without a text
  platform::NSRect preparedViewFrame() override;              ///< 320 × 30 points
  platform::NSRect preparedActionButtonFrame() const;
  platform::NSRect preparedTitleButtonFrame() const;

  // Values, asked for afresh
  std::optional<platform::NSAttributedString> infoItemTitle() const;
  std::shared_ptr<platform::NSImage> infoItemActionImage() const;

  // Refresh. A single button's update answers false when the panel does not have the button.
  bool update(platform::NSObject* sender) override;
  bool updateActionButton();
  bool updateTitleButton();

  /// Launches the player; false without a workspace.
  bool clickedActionButton(platform::NSObject* sender);

  const std::shared_ptr<platform::NSButton>& contentTitleButton() const {
    return contentTitleButton_;
  }
  void setContentTitleButton(std::shared_ptr<platform::NSButton> button) {
    contentTitleButton_ = std::move(button);
  }
  const std::shared_ptr<platform::NSButton>& contentActionButton() const {
    return contentActionButton_;
  }
  void setContentActionButton(std::shared_ptr<platform::NSButton> button) {
    contentActionButton_ = std::move(button);
  }

 private:
  std::shared_ptr<platform::NSButton> contentTitleButton_;
  std::shared_ptr<platform::NSButton> contentActionButton_;
};

}  // namespace virelune

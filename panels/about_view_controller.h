// The panel shown while the user edits the widget: the companion application and its maker.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/foundation/attributed_string.h"
#include "platform/view/button.h"
#include "widget/view_controller.h"

namespace virelune {

/// The companion application's icon, which launches it, a web address and an e-mail address, which
/// open. Everything is fixed at creation.
class VLAboutViewController : public VLViewController {
 public:
  // Building
  bool prepare() override;
  bool prepareActionButton();
  bool prepareWebButton();
  bool prepareEmailButton();
  /// Null when the companion application is not installed.
  std::shared_ptr<platform::NSButton> preparedActionButton();
  std::shared_ptr<platform::NSButton> preparedWebButton();    ///< null without a text
  std::shared_ptr<platform::NSButton> preparedEmailButton();  ///< null without a text
  std::optional<platform::NSAttributedString> preparedWebButtonAttributedTitle() const;
  std::optional<platform::NSAttributedString> preparedEmailButtonAttributedTitle() const;
  platform::NSRect preparedViewFrame() override;  ///< 320 × 64 points
  platform::NSRect preparedActionButtonFrame() const;
  platform::NSRect preparedWebButtonFrame() const;
  platform::NSRect preparedEmailButtonFrame() const;

  // Values
  std::optional<std::string> infoItemWeb() const;    ///< without scheme
  std::optional<std::string> infoItemEmail() const;  ///< without scheme
  std::shared_ptr<platform::NSImage> infoItemActionImage() const;

  // Clicks. False when there is nothing to open, when it is no address, and without a workspace.
  bool clickedActionButton(platform::NSObject* sender);
  bool clickedWebButton(platform::NSObject* sender);
  bool clickedEmailButton(platform::NSObject* sender);

 private:
  bool installButton(const std::shared_ptr<platform::NSButton>& button);
};

}  // namespace virelune

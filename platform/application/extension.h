// The widget protocol and the entry that makes a widget's principal controller.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "platform/foundation/geometry.h"
#include "platform/view/view_controller.h"

namespace platform {

enum class NCUpdateResult { newData = 0, noData = 1, failed = 2 };

/// What the host of a widget asks of its principal controller.
class NCWidgetProviding {
 public:
  virtual ~NCWidgetProviding() = default;
  virtual void widgetPerformUpdateWithCompletionHandler(
      const std::function<void(NCUpdateResult)>& handler) = 0;
  virtual NSEdgeInsets widgetMarginInsetsForProposedMarginInsets(NSEdgeInsets proposed) = 0;
  virtual bool widgetAllowsEditing() const = 0;
  virtual void widgetDidBeginEditing() = 0;
  virtual void widgetDidEndEditing() = 0;
};

/// The controllers that a bundle can name as its principal class.
using PrincipalClasses = std::map<std::string, std::function<std::shared_ptr<NSViewController>()>>;

/// Makes the controller that the main bundle's information dictionary names under "NSExtension" /
/// "NSExtensionPrincipalClass"; null when the entry or the class is missing.
std::shared_ptr<NSViewController> NSExtensionMain(const PrincipalClasses& classes);

}  // namespace platform

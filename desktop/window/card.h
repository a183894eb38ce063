// The card that the widget lies on: what it is made of and how it looks, without a screen.
#pragma once

#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtGui/QRegion>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "desktop/window/card_header.h"
#include "platform/application/extension.h"
#include "platform/foundation/color.h"
#include "platform/view/view_controller.h"
#include "platform/view/window.h"

namespace desktop {

/// The smallest area around one (points) whose edges lie between two pixels, so that it can be
/// painted again as a whole; at 1.5 pixels to the point that is every second point.
QRect areaOfWholePixels(const QRectF& area, double scale);

/// A header above the widget's view, in one window of views. The card is as wide as the widget
/// and as high as its preferred content size and the header together.
class Card {
 public:
  /// The controller is the widget's; when it is an NCWidgetProviding that allows editing, the
  /// header has an edit toggle.
  Card(std::shared_ptr<platform::NSViewController> controller, const std::string& title);
  ~Card();
  Card(const Card&) = delete;
  Card& operator=(const Card&) = delete;

  // Structure
  platform::NSWindow& window() { return *window_; }
  CardHeader& header() { return *header_; }
  platform::NSSize size() const;  ///< points
  void setSizeHandler(std::function<void(platform::NSSize)> handler);

  // Widget
  const platform::NSViewController& controller() const { return *controller_; }
  /// Asks the widget to bring itself up to date.
  void update();
  /// Tells the widget that the user begins or ends editing it.
  void setEditing(bool editing);
  bool isEditing() const { return editing_; }

  // Looks
  /// Without translucency the card is painted opaque into its corners, which a mask then cuts.
  void setTranslucent(bool translucent) { translucent_ = translucent; }
  /// Paints the parts in a region; the painter's area is the card, upper left at the origin.
  void paint(QPainter& painter, const QRegion& region, platform::Appearance appearance);
  /// The whole card as a picture, scale pixels to the point, transparent around its corners.
  QImage picture(double scale, platform::Appearance appearance);

 private:
  void layOut();
  void paintBackground(QPainter& painter, platform::Appearance appearance) const;
  platform::NCWidgetProviding* widget() const;

  std::shared_ptr<platform::NSViewController> controller_;
  std::shared_ptr<platform::NSWindow> window_;
  std::shared_ptr<platform::NSView> content_;
  std::shared_ptr<CardHeader> header_;
  std::function<void(platform::NSSize)> sizeHandler_;
  bool editing_ = false;
  bool translucent_ = true;
};

}  // namespace desktop

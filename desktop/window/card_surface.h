// The card on the screen.
#pragma once

#include <QtCore/QTimer>
#include <QtGui/QRasterWindow>
#include <functional>
#include <optional>
#include <string>

#include "desktop/graphics/backend.h"
#include "desktop/window/card.h"
#include "desktop/window/desktop_style.h"
#include "desktop/window/mouse_input.h"
#include "desktop/window/placement.h"

namespace desktop {

/// A borderless window that shows a card in the desktop's appearance, passes the user's input to
/// it, is moved by its header and stays where it was put. While it is hidden or minimised the
/// card's views know that they are not seen.
class CardSurface final : public QRasterWindow {
 public:
  struct Options {
    QString title;
    bool onTop = false;
    Settings* settings = nullptr;  ///< what the user sets up is remembered there; null: nowhere
    int cardNumber = 1;            ///< among the session's cards
  };
  CardSurface(Card& card, QtGraphics& graphics, const Options& options);
  ~CardSurface() override;

  /// Shows the window, where it was last time when the desktop lets windows choose.
  void open();

  bool canStayOnTop() const { return placement_.canStayOnTop(); }
  bool isOnTop() const { return placement_.isOnTop(); }
  /// Remembered, and done where the desktop lets windows choose.
  void setOnTop(bool onTop);
  /// What is to be added to places by Qt's account for those on the screens: nothing, but where the
  /// compositor alone knows of the card's place.
  QPoint unknownToQt() const { return placement_.position() - position(); }
  void rememberPlace() { placement_.save(); }
  /// Shows the window above the others and lets the user type there. The token is the one that
  /// another program was given for it (XDG Activation); empty for none.
  void bringToFront(const std::string& activationToken);
  platform::Appearance appearance() const { return style_.appearance(); }
  /// Called with the size of texts that the desktop wants, whenever it tells one (1 is usual).
  void setTextScaleHandler(std::function<void(double)> handler) {
    textScaleHandler_ = std::move(handler);
  }

  /// Asked when the user closes the card: true when that has hidden it, and the program goes on.
  void setCloseHandler(std::function<bool()> handler) { closeHandler_ = std::move(handler); }
  /// Called with the place on the screen where the user asks for the context menu.
  void setMenuHandler(std::function<void(QPoint)> handler) { menuHandler_ = std::move(handler); }
  /// Asks for the context menu as the keyboard does, in the middle of the card.
  void openMenu();
  /// Is given each key and each turn of the wheel first; what it does not use goes on to the card.
  void setKeyHandler(std::function<bool(const QKeyEvent&)> handler) {
    keyHandler_ = std::move(handler);
  }
  void setWheelHandler(std::function<void(const QWheelEvent&)> handler) {
    wheelHandler_ = std::move(handler);
  }

  /// What assistive technology is told of the card; null: that it is a window.
  void setAccessibleRoot(std::function<QAccessibleInterface*()> root) {
    accessibleRoot_ = std::move(root);
  }
  QAccessibleInterface* accessibleRoot() const override;

  /// The widget's view at a point of the window; null for none.
  const platform::NSView* viewAt(QPointF position) const;

  /// Draws a ring around a part of the card (its window's coordinates); none: none.
  void setFocusRing(std::optional<platform::NSRect> focus);
  /// Shows a short text above the card for a second.
  void showNotice(const std::string& text);
  /// A part of the card's window on the screen.
  QRect placeOnScreen(platform::NSRect rect) const;
  /// Called after each painting with the region (points, y downwards) that was painted.
  void setPaintObserver(std::function<void(const QRegion&)> observer) {
    paintObserver_ = std::move(observer);
  }

 protected:
  bool event(QEvent* event) override;
  bool eventFilter(QObject* object, QEvent* event) override;
  void exposeEvent(QExposeEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  void paintAbove(QPainter& painter, platform::Appearance appearance) const;
  void mark(platform::NSRect rect);
  void fitCard();
  void updateVisibility();
  void updateCompositing();
  void moveCard(const QMouseEvent& event);
  platform::NSPoint cardPoint(QPointF position) const;

  Card& card_;
  QtGraphics& graphics_;
  DesktopStyle style_;
  MouseInput mouse_;
  std::optional<QPointF> grip_;  // where in the window the user took hold of it
  Settings* const settings_;
  Placement placement_;
  std::function<void(double)> textScaleHandler_;
  std::function<bool()> closeHandler_;
  bool isQuitting_ = false;  ///< the program, which closes its windows
  std::function<void(QPoint)> menuHandler_;
  std::function<bool(const QKeyEvent&)> keyHandler_;
  std::function<void(const QWheelEvent&)> wheelHandler_;
  std::function<QAccessibleInterface*()> accessibleRoot_;
  std::optional<platform::NSRect> focus_;
  std::string notice_;
  QTimer noticeEnd_;
  std::function<void(const QRegion&)> paintObserver_;
};

}  // namespace desktop

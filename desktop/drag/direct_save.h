// The X11 side of a drag: X Direct Save, and addresses for those who take nothing else.
#pragma once

#include <xcb/xcb.h>

#include <QtCore/QAbstractNativeEventFilter>
#include <QtCore/QByteArray>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/view/pasteboard.h"

namespace desktop {

inline constexpr const char* directSaveType = "XdndDirectSave0";
inline constexpr const char* addressListType = "text/uri-list";  // RFC 2483

/// X Direct Save (freedesktop.org): a property of the drag's source window holds the name that the
/// file is to have; at the drop the receiver puts the file's full address there and asks for the
/// data of the same name, upon which the source writes the file.
///
/// File managers that speak it still prefer an address they are offered. So receivers are offered
/// none at first, and only one that has refused the rest is offered it too (XDND, version 5).
class DirectSave final : private QAbstractNativeEventFilter {
 public:
  /// Null where the windows are not X11's.
  static std::unique_ptr<DirectSave> forApplication();
  explicit DirectSave(xcb_connection_t* connection);
  ~DirectSave() override;

  /// The application's drag has begun; until end() receivers may be offered an address.
  void begin();
  void end();
  /// The name that the file would have now. After the drop it must stay.
  void suggestName(const std::string& name);

  /// Writes the promised file where the receiver wants it. "S" for success; "F" when it is to go
  /// where files cannot be written to from here; "E" for an error.
  QByteArray save(platform::NSPasteboard& pasteboard) const;
  /// The same with the address at hand.
  static QByteArray saveAtAddress(platform::NSPasteboard& pasteboard, std::string_view address);

 private:
  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
  xcb_atom_t atom(const char* name) const;
  std::optional<std::uint32_t> value(xcb_window_t window, xcb_atom_t property,
                                     xcb_atom_t type) const;
  void offerAddress(xcb_window_t target);

  xcb_connection_t* const connection_;  // Qt's
  const xcb_atom_t directSave_;
  const xcb_atom_t status_;
  xcb_window_t source_ = XCB_WINDOW_NONE;  // the drag's
  xcb_window_t offeredTo_ = XCB_WINDOW_NONE;
  std::chrono::steady_clock::time_point offeredAt_;
};

}  // namespace desktop

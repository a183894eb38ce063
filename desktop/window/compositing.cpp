#include "desktop/window/compositing.h"

#include <xcb/xcb.h>

#include <QtGui/QGuiApplication>
#include <cstdint>
#include <string_view>

#include "desktop/window/x11_reply.h"

namespace desktop {

bool isScreenComposited() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  xcb_connection_t* connection = x11 != nullptr ? x11->connection() : nullptr;
  if (connection == nullptr) return true;
  constexpr std::string_view selection = "_NET_WM_CM_S0";
  const auto atom = owned(xcb_intern_atom_reply(
      connection,
      xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(selection.size()),
                      selection.data()),
      nullptr));
  if (!atom) return true;
  const auto owner = owned(xcb_get_selection_owner_reply(
      connection, xcb_get_selection_owner(connection, atom->atom), nullptr));
  return owner && owner->owner != XCB_WINDOW_NONE;
}

}  // namespace desktop

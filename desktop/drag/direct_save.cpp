#include "desktop/drag/direct_save.h"

#include <QtCore/QSysInfo>
#include <QtGui/QGuiApplication>
#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>

#include "desktop/window/x11_reply.h"
#include "platform/foundation/url.h"

namespace desktop {

namespace {

constexpr std::uint32_t longestAddress = 64 * 1024;  // bytes
constexpr std::uint32_t protocolVersion = 5;
// A refusal may answer what was said before the offer, so it is given some time.
constexpr auto offerInterval = std::chrono::milliseconds(500);

/// The path of a file on this machine, which its address may call by name.
std::optional<std::string> localPath(std::string_view address) {
  const auto url = platform::URL::fromText(address);
  if (!url) return std::nullopt;
  const bool isNamed = QSysInfo::machineHostName().compare(QString::fromStdString(url->host()),
                                                           Qt::CaseInsensitive) == 0;
  return url->scheme() == "file" && isNamed ? url->path() : url->filePath();
}

}  // namespace

std::unique_ptr<DirectSave> DirectSave::forApplication() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  xcb_connection_t* connection = x11 != nullptr ? x11->connection() : nullptr;
  return connection != nullptr ? std::make_unique<DirectSave>(connection) : nullptr;
}

DirectSave::DirectSave(xcb_connection_t* connection)
    : connection_(connection), directSave_(atom(directSaveType)), status_(atom("XdndStatus")) {}

DirectSave::~DirectSave() { end(); }

xcb_atom_t DirectSave::atom(const char* name) const {
  const auto length = static_cast<std::uint16_t>(std::strlen(name));
  const auto reply = owned(
      xcb_intern_atom_reply(connection_, xcb_intern_atom(connection_, 0, length, name), nullptr));
  return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

// Saving

void DirectSave::begin() {
  const auto reply = owned(xcb_get_selection_owner_reply(
      connection_, xcb_get_selection_owner(connection_, atom("XdndSelection")), nullptr));
  source_ = reply ? reply->owner : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
  offeredTo_ = XCB_WINDOW_NONE;
  qGuiApp->installNativeEventFilter(this);
}

void DirectSave::end() {
  if (qGuiApp != nullptr) qGuiApp->removeNativeEventFilter(this);
}

void DirectSave::suggestName(const std::string& name) {
  if (source_ == XCB_WINDOW_NONE) return;
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, source_, directSave_, atom("text/plain"),
                      8, static_cast<std::uint32_t>(name.size()), name.data());
  xcb_flush(connection_);
}

QByteArray DirectSave::save(platform::NSPasteboard& pasteboard) const {
  const auto reply = owned(
      xcb_get_property_reply(connection_,
                             xcb_get_property(connection_, 0, source_, directSave_,
                                              XCB_GET_PROPERTY_TYPE_ANY, 0, longestAddress / 4),
                             nullptr));
  if (!reply || reply->format != 8) return "F";
  return saveAtAddress(pasteboard,
                       {static_cast<const char*>(xcb_get_property_value(reply.get())),
                        static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))});
}

QByteArray DirectSave::saveAtAddress(platform::NSPasteboard& pasteboard, std::string_view address) {
  // Some receivers count the end of a C string with it.
  const auto path = localPath(address.substr(0, address.find('\0')));
  if (!path) return "F";
  const std::filesystem::path file(*path);
  const auto saved = pasteboard.receivePromisedFileInDirectory(file.parent_path().string());
  if (!saved) return "E";
  if (*saved == file) return "S";
  // The receiver has its own idea of the name, or a second has passed since it heard ours.
  std::error_code error;
  std::filesystem::rename(*saved, file, error);
  if (!error) return "S";
  std::filesystem::remove(*saved, error);
  return "E";
}

// Offering an address

bool DirectSave::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
  if (eventType != "xcb_generic_event_t") return false;
  const auto* event = static_cast<const xcb_generic_event_t*>(message);
  constexpr unsigned typeMask = 0x7F;  // without the mark of events sent by other programs
  if ((event->response_type & typeMask) != XCB_CLIENT_MESSAGE) return false;
  xcb_client_message_event_t reply;
  std::memcpy(&reply, event, sizeof reply);
  if (reply.type != status_ || reply.window != source_) return false;
  const bool isAccepted = (reply.data.data32[1] & 1U) != 0;
  if (!isAccepted) offerAddress(reply.data.data32[0]);
  return false;
}

/// A property of one number, of a window that may have gone.
std::optional<std::uint32_t> DirectSave::value(xcb_window_t window, xcb_atom_t property,
                                               xcb_atom_t type) const {
  const auto reply = owned(xcb_get_property_reply(
      connection_, xcb_get_property(connection_, 0, window, property, type, 0, 1), nullptr));
  if (!reply || reply->format != 32 || reply->value_len == 0) return std::nullopt;
  std::uint32_t number = 0;
  std::memcpy(&number, xcb_get_property_value(reply.get()), sizeof number);
  return number;
}

/// Lets the drag leave the window and come again, with an address among what it brings.
void DirectSave::offerAddress(xcb_window_t target) {
  const auto now = std::chrono::steady_clock::now();
  if (target == offeredTo_ && now - offeredAt_ < offerInterval) return;
  const auto version = value(target, atom("XdndAware"), XCB_ATOM_ATOM);
  const auto screen = xcb_setup_roots_iterator(xcb_get_setup(connection_));
  const auto pointer = owned(xcb_query_pointer_reply(
      connection_, xcb_query_pointer(connection_, screen.data->root), nullptr));
  if (!version || !pointer) return;
  offeredTo_ = target;
  offeredAt_ = now;

  const xcb_window_t receiver = value(target, atom("XdndProxy"), XCB_ATOM_WINDOW).value_or(target);
  const auto send = [&](const char* type, std::array<std::uint32_t, 4> data) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = target;
    message.type = atom(type);
    message.data.data32[0] = source_;
    std::copy(data.begin(), data.end(), message.data.data32 + 1);
    xcb_send_event(connection_, 0, receiver, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&message));
  };
  const auto at = [](std::int16_t coordinate) { return static_cast<std::uint16_t>(coordinate); };
  const std::uint32_t place = std::uint32_t{at(pointer->root_x)} << 16U | at(pointer->root_y);
  send("XdndLeave", {});
  send("XdndEnter", {std::min(*version, protocolVersion) << 24U, atom(addressListType),
                     atom("image/png"), directSave_});
  send("XdndPosition", {0, place, XCB_CURRENT_TIME, atom("XdndActionCopy")});
  xcb_flush(connection_);
}

}  // namespace desktop

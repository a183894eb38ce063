#include "desktop/drag/mime_data.h"

#include <filesystem>

#include "platform/foundation/url.h"

namespace desktop {

namespace {

constexpr const char* pictureType = "image/png";
constexpr const char* addressListType = "text/uri-list";  // RFC 2483

}  // namespace

DragMimeData::DragMimeData(const std::shared_ptr<platform::NSDraggingSession>& session,
                           const DragFolder& folder)
    : session_(session), folder_(folder) {}

QStringList DragMimeData::formats() const { return {pictureType, addressListType}; }

QVariant DragMimeData::retrieveData(const QString& type, QMetaType) const {
  const auto session = session_.lock();
  if (!session) return {};
  platform::NSPasteboard& pasteboard = session->draggingPasteboard();
  if (type == QLatin1String(pictureType)) return picture(pasteboard);
  if (type == QLatin1String(addressListType)) return addressList(pasteboard);
  return {};
}

QByteArray DragMimeData::picture(platform::NSPasteboard& pasteboard) const {
  const auto data = pasteboard.dataForType(platform::NSPasteboardTypePNG);
  if (!data) return {};
  const std::string_view bytes = data->view();
  return {bytes.data(), static_cast<qsizetype>(bytes.size())};
}

QByteArray DragMimeData::addressList(platform::NSPasteboard& pasteboard) const {
  // Receivers ask while the pointer is above them and at the drop again; one file serves both.
  std::error_code error;
  if (!std::filesystem::is_regular_file(file_, error)) {
    const auto folder = folder_.path();
    if (!folder) return {};
    file_ = pasteboard.receivePromisedFileInDirectory(folder->string()).value_or(std::string());
  }
  const auto url = platform::URL::fileURLWithPath(file_);
  return url ? QByteArray::fromStdString(url->absoluteString() + "\r\n") : QByteArray();
}

}  // namespace desktop

// The addresses on the station's stream server, and the requests for them.
#include "extensions/collections.h"
#include "platform/application/bundle.h"
#include "platform/platform.h"
#include "radio/beats1_info_loader.h"

namespace virelune {
namespace {

/// The entry of the information dictionary that names the stream server: a host, or host:port.
constexpr std::string_view streamHostEntry = "VLStreamHost";

/// An address made of texts that may be none.
std::optional<platform::URL> urlFromText(const std::optional<std::string>& text) {
  return text ? platform::URL::fromText(*text) : std::nullopt;
}

}  // namespace

std::optional<std::string> VLBeats1InfoLoader::streamBaseAddress() {
  const platform::NSBundle* bundle = platform::current().mainBundle;
  if (bundle == nullptr) return std::nullopt;
  const auto host =
      vl_objectForKey_withClass<std::string>(bundle->infoDictionary(), streamHostEntry);
  if (!host || host->empty()) return std::nullopt;
  return "http://" + *host + "/streams/hub02/session02/64k/";
}

std::optional<std::string> VLBeats1InfoLoader::streamBaseAddressWithSubpath(
    std::string_view subpath) {
  auto address = streamBaseAddress();
  if (!address || subpath.empty()) return std::nullopt;
  return address->append(subpath);
}

std::optional<platform::URL> VLBeats1InfoLoader::streamPlaylistURL() {
  return urlFromText(streamBaseAddressWithSubpath("prog.m3u8"));
}

std::optional<platform::URL> VLBeats1InfoLoader::streamTrackURLWithName(std::string_view name) {
  return urlFromText(streamBaseAddressWithSubpath(name));
}

std::optional<std::string> VLBeats1InfoLoader::artworkWebAddress() const {
  return infoTrackTextForKey("artwork web address");
}

std::optional<platform::URL> VLBeats1InfoLoader::artworkURL() const {
  return urlFromText(artworkWebAddress());
}

std::optional<platform::NSMutableURLRequest> VLBeats1InfoLoader::preparedURLRequestWithURL(
    const std::optional<platform::URL>& url) {
  if (!url) return std::nullopt;
  platform::NSMutableURLRequest request(*url);
  request.setCachePolicy(platform::NSURLRequestReloadIgnoringLocalAndRemoteCacheData);
  request.setTimeoutInterval(3.0);
  return request;
}

std::optional<platform::NSURLRequest> VLBeats1InfoLoader::preparedPlaylistRequest() {
  return preparedURLRequestWithURL(streamPlaylistURL());
}

std::optional<platform::NSURLRequest> VLBeats1InfoLoader::preparedTrackRequestWithName(
    std::string_view name) {
  auto request = preparedURLRequestWithURL(streamTrackURLWithName(name));
  if (!request) return std::nullopt;
  request->setValue_forHTTPHeaderField("bytes=0-8192", "Range");
  return request;
}

std::optional<platform::NSURLRequest> VLBeats1InfoLoader::preparedArtworkRequest() const {
  return preparedURLRequestWithURL(artworkURL());
}

}  // namespace virelune

#include <QtCore/QtGlobal>
#include <memory>

#include "desktop/program/network.h"
#include "platform/network/curl_transport.h"

extern "C" Q_DECL_EXPORT platform::HTTPTransport* virelune_http_transport(
    const std::string& additionalCertificates) {
  return std::make_unique<platform::CurlTransport>(additionalCertificates).release();
}

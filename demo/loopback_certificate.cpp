#include "demo/loopback_certificate.h"

#include <openssl/pem.h>
#include <openssl/x509v3.h>

namespace demo {
namespace {

constexpr long validity = 7L * 24 * 60 * 60;  // seconds; it lives no longer than the program

bool setName(X509* certificate) {
  X509_NAME* name = X509_get_subject_name(certificate);
  const std::string text = "127.0.0.1";
  return X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC,
                                    reinterpret_cast<const unsigned char*>(text.data()),
                                    static_cast<int>(text.size()), -1, 0) == 1 &&
         X509_set_issuer_name(certificate, name) == 1;
}

bool addExtension(X509* certificate, int identifier, const char* value) {
  const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> extension(
      X509V3_EXT_conf_nid(nullptr, nullptr, identifier, value), X509_EXTENSION_free);
  return extension != nullptr && X509_add_ext(certificate, extension.get(), -1) == 1;
}

}  // namespace

std::optional<LoopbackCertificate> LoopbackCertificate::make() {
  LoopbackCertificate made;
  made.key_.reset(EVP_PKEY_Q_keygen(nullptr, nullptr, "EC", "P-256"));
  made.certificate_.reset(X509_new());
  if (!made.key_ || !made.certificate_) return std::nullopt;
  X509* certificate = made.certificate();
  constexpr long yesterday = -24L * 60 * 60;  // clocks may be set while it is in use
  const bool isMade = X509_set_version(certificate, X509_VERSION_3) == 1 &&
                      ASN1_INTEGER_set(X509_get_serialNumber(certificate), 1) == 1 &&
                      X509_gmtime_adj(X509_getm_notBefore(certificate), yesterday) != nullptr &&
                      X509_gmtime_adj(X509_getm_notAfter(certificate), validity) != nullptr &&
                      X509_set_pubkey(certificate, made.key()) == 1 && setName(certificate) &&
                      addExtension(certificate, NID_subject_alt_name, "IP:127.0.0.1") &&
                      addExtension(certificate, NID_ext_key_usage, "serverAuth") &&
                      X509_sign(certificate, made.key(), EVP_sha256()) > 0;
  return isMade ? std::optional(std::move(made)) : std::nullopt;
}

std::string LoopbackCertificate::pem() const {
  const std::unique_ptr<BIO, decltype(&BIO_free)> text(BIO_new(BIO_s_mem()), BIO_free);
  if (!text || PEM_write_bio_X509(text.get(), certificate()) != 1) return {};
  const char* bytes = nullptr;
  const long length = BIO_ctrl(text.get(), BIO_CTRL_INFO, 0, &bytes);
  return length > 0 ? std::string(bytes, static_cast<std::size_t>(length)) : std::string();
}

}  // namespace demo

// The certificate of a server on loopback.
#pragma once

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <memory>
#include <optional>
#include <string>

namespace demo {

/// A key and the certificate for "127.0.0.1" that it signs itself (RFC 5280), made in memory and
/// never written down. Whoever is to believe it has to be given its text.
class LoopbackCertificate {
 public:
  /// Makes a key of its own at every call; none when the library fails.
  static std::optional<LoopbackCertificate> make();

  X509* certificate() const { return certificate_.get(); }
  EVP_PKEY* key() const { return key_.get(); }
  /// The certificate in PEM (RFC 7468); the key is not in it.
  std::string pem() const;

 private:
  template <auto release>
  struct Releaser {
    template <class T>
    void operator()(T* object) const {
      release(object);
    }
  };

  std::unique_ptr<EVP_PKEY, Releaser<EVP_PKEY_free>> key_;
  std::unique_ptr<X509, Releaser<X509_free>> certificate_;
};

}  // namespace demo

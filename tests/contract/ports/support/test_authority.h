#pragma once

#include <openssl/ssl.h>
#include <openssl/x509.h>

#include <memory>
#include <string>

namespace lumora::contract {

struct FreeOpenSsl {
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    void operator()(X509* certificate) const { X509_free(certificate); }
    void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
    void operator()(SSL* connection) const { SSL_free(connection); }
};
template <class T>
using OpenSslPointer = std::unique_ptr<T, FreeOpenSsl>;

/// When a certificate holds, in seconds from now.
struct Validity {
    long from = -3600;
    long until = 3600;
};

/// A certificate authority of the test's own.
class TestAuthority {
  public:
    explicit TestAuthority(const char* name = "Test authority");

    /// Writes its certificate for a client to trust.
    void writeCertificate(const std::string& path) const;

    /// A server's context with a new certificate. @param names  as OpenSSL has them: "DNS:localhost,IP:127.0.0.1"
    [[nodiscard]] OpenSslPointer<SSL_CTX> makeServerContext(const std::string& names,
                                                            Validity validity = {}) const;

  private:
    OpenSslPointer<EVP_PKEY> key_;
    OpenSslPointer<X509> certificate_;
};

} // namespace lumora::contract

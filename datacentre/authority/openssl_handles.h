#pragma once

#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace datacentre {

template <auto Free>
struct OpensslDeleter {
    template <typename T>
    void operator()(T* object) const {
        Free(object);
    }
};

/// BIO_free reports a status, which a deleter has no use for.
inline void freeBio(BIO* bio) { (void)BIO_free(bio); }

using KeyHandle = std::unique_ptr<EVP_PKEY, OpensslDeleter<EVP_PKEY_free>>;
using CertificateHandle = std::unique_ptr<X509, OpensslDeleter<X509_free>>;
using ExtensionHandle = std::unique_ptr<X509_EXTENSION, OpensslDeleter<X509_EXTENSION_free>>;
using GeneralNamesHandle = std::unique_ptr<GENERAL_NAMES, OpensslDeleter<GENERAL_NAMES_free>>;
using BioHandle = std::unique_ptr<BIO, OpensslDeleter<freeBio>>;
using SslContextHandle = std::unique_ptr<SSL_CTX, OpensslDeleter<SSL_CTX_free>>;
using SslHandle = std::unique_ptr<SSL, OpensslDeleter<SSL_free>>;

/// Carries what OpenSSL's error queue says about the failed step, and empties the queue.
class OpensslError : public std::runtime_error {
  public:
    explicit OpensslError(const std::string& step);
};

/// Throws OpensslError when an OpenSSL call did not answer 1.
void requireSuccess(int outcome, const char* step);

/// Hands a fresh object to its handle; throws OpensslError when OpenSSL made none.
template <typename Handle, typename T>
[[nodiscard]] Handle owned(T* object, const char* step) {
    if (object == nullptr)
        throw OpensslError(step);
    return Handle(object);
}

} // namespace datacentre

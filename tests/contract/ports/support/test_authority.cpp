#include "support/test_authority.h"

#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <cstdio>
#include <stdexcept>

namespace lumora::contract {

namespace {

constexpr const char* kCurve = "P-256";
constexpr long kVersion3 = 2;

OpenSslPointer<X509> makeCertificate(EVP_PKEY* key, const char* name, X509* issuer, EVP_PKEY* issuerKey,
                                     Validity validity, int extension, const char* value) {
    static long serial = 1;
    OpenSslPointer<X509> certificate(X509_new());
    X509_set_version(certificate.get(), kVersion3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), serial++);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), validity.from);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), validity.until);
    X509_set_pubkey(certificate.get(), key);
    X509_NAME* subject = X509_get_subject_name(certificate.get());
    X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>(name), -1,
                               -1, 0);
    X509_set_issuer_name(certificate.get(),
                         X509_get_subject_name(issuer == nullptr ? certificate.get() : issuer));
    X509_EXTENSION* entry = X509V3_EXT_conf_nid(nullptr, nullptr, extension, value);
    X509_add_ext(certificate.get(), entry, -1);
    X509_EXTENSION_free(entry);
    if (X509_sign(certificate.get(), issuerKey, EVP_sha256()) == 0)
        throw std::runtime_error("cannot sign a certificate");
    return certificate;
}

} // namespace

TestAuthority::TestAuthority(const char* name)
    : key_(EVP_EC_gen(kCurve)), certificate_(makeCertificate(key_.get(), name, nullptr, key_.get(), {},
                                                             NID_basic_constraints, "critical,CA:TRUE")) {}

void TestAuthority::writeCertificate(const std::string& path) const {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "w"), &std::fclose);
    if (!file || PEM_write_X509(file.get(), certificate_.get()) == 0)
        throw std::runtime_error("cannot write a certificate");
}

OpenSslPointer<SSL_CTX> TestAuthority::makeServerContext(const std::string& names, Validity validity) const {
    const OpenSslPointer<EVP_PKEY> key(EVP_EC_gen(kCurve));
    const auto certificate = makeCertificate(key.get(), "Test server", certificate_.get(), key_.get(),
                                             validity, NID_subject_alt_name, names.c_str());
    OpenSslPointer<SSL_CTX> context(SSL_CTX_new(TLS_server_method()));
    if (SSL_CTX_use_certificate(context.get(), certificate.get()) != 1 ||
        SSL_CTX_use_PrivateKey(context.get(), key.get()) != 1)
        throw std::runtime_error("cannot use a certificate");
    return context;
}

} // namespace lumora::contract

#include "authority/certificate.h"

#include <fmt/format.h>
#include <openssl/bn.h>
#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/rand.h>

#include <arpa/inet.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>

namespace datacentre {

namespace {

constexpr long kVersion3 = 2;
constexpr int kSerialBytes = 16;
constexpr const char* kOrganisation = "Embedded data centre";

KeyHandle makeKey() { return owned<KeyHandle>(EVP_EC_gen("P-256"), "making a key"); }

void setRandomSerial(X509* certificate) {
    std::array<unsigned char, kSerialBytes> bytes{};
    requireSuccess(RAND_bytes(bytes.data(), kSerialBytes), "drawing a serial number");
    bytes[0] = static_cast<unsigned char>((bytes[0] & 0x7fU) | 0x01U); // positive and of full length
    const std::unique_ptr<BIGNUM, OpensslDeleter<BN_free>> number(
        BN_bin2bn(bytes.data(), kSerialBytes, nullptr));
    if (!number || BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(certificate)) == nullptr)
        throw OpensslError("setting the serial number");
}

void addNamePart(X509_NAME* name, const char* field, const std::string& text) {
    requireSuccess(X509_NAME_add_entry_by_txt(name, field, MBSTRING_UTF8,
                                              reinterpret_cast<const unsigned char*>(text.data()),
                                              static_cast<int>(text.size()), -1, 0),
                   "setting a name");
}

void addExtension(X509* certificate, X509* issuer, int nid, const std::string& value) {
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    const auto extension = owned<ExtensionHandle>(X509V3_EXT_conf_nid(nullptr, &context, nid, value.c_str()),
                                                  "making an extension");
    requireSuccess(X509_add_ext(certificate, extension.get(), -1), "adding an extension");
}

bool isAddress(const std::string& host) {
    std::array<unsigned char, sizeof(in6_addr)> ignored{};
    return inet_pton(AF_INET, host.c_str(), ignored.data()) == 1 ||
           inet_pton(AF_INET6, host.c_str(), ignored.data()) == 1;
}

std::string alternativeNames(const std::vector<std::string>& hosts) {
    std::string names;
    for (const auto& host : hosts)
        names += fmt::format("{}{}:{}", names.empty() ? "" : ",", isAddress(host) ? "IP" : "DNS", host);
    return names;
}

CertificateHandle makeBareCertificate(const std::string& commonName, Validity validity, EVP_PKEY* key) {
    auto certificate = owned<CertificateHandle>(X509_new(), "making a certificate");
    requireSuccess(X509_set_version(certificate.get(), kVersion3), "setting the version");
    setRandomSerial(certificate.get());
    const auto seconds = [](std::chrono::hours hours) { return std::chrono::seconds(hours).count(); };
    if (X509_gmtime_adj(X509_getm_notBefore(certificate.get()), seconds(validity.begins)) == nullptr ||
        X509_gmtime_adj(X509_getm_notAfter(certificate.get()), seconds(validity.ends)) == nullptr)
        throw OpensslError("setting the validity");
    addNamePart(X509_get_subject_name(certificate.get()), "O", kOrganisation);
    addNamePart(X509_get_subject_name(certificate.get()), "CN", commonName);
    requireSuccess(X509_set_pubkey(certificate.get(), key), "setting the public key");
    return certificate;
}

void sign(X509* certificate, X509* issuer, EVP_PKEY* issuerKey) {
    requireSuccess(X509_set_issuer_name(certificate, X509_get_subject_name(issuer)), "setting the issuer");
    if (X509_sign(certificate, issuerKey, EVP_sha256()) == 0)
        throw OpensslError("signing a certificate");
}

BioHandle openFile(const std::filesystem::path& file, const char* mode) {
    return owned<BioHandle>(BIO_new_file(file.c_str(), mode), file.c_str());
}

// The key must never be readable by others, not even between its creation and a chmod.
BioHandle createPrivateFile(const std::filesystem::path& file) {
    std::filesystem::remove(file);
    const int descriptor = ::open(file.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor < 0)
        throw OpensslError(fmt::format("creating {}", file.string()));
    return owned<BioHandle>(BIO_new_fd(descriptor, BIO_CLOSE), file.c_str());
}

} // namespace

Identity makeAuthority(const std::string& commonName, Validity validity) {
    Identity authority{nullptr, makeKey()};
    authority.certificate = makeBareCertificate(commonName, validity, authority.key.get());
    X509* const certificate = authority.certificate.get();
    requireSuccess(X509_set_issuer_name(certificate, X509_get_subject_name(certificate)),
                   "setting the issuer");
    addExtension(certificate, certificate, NID_basic_constraints, "critical,CA:TRUE,pathlen:0");
    addExtension(certificate, certificate, NID_key_usage, "critical,keyCertSign,cRLSign");
    addExtension(certificate, certificate, NID_subject_key_identifier, "hash");
    addExtension(certificate, certificate, NID_authority_key_identifier, "keyid:always");
    sign(certificate, certificate, authority.key.get());
    return authority;
}

Identity makeServerIdentity(const Identity& authority, const std::vector<std::string>& hosts,
                            Validity validity) {
    Identity server{nullptr, makeKey()};
    server.certificate = makeBareCertificate("Embedded data centre server", validity, server.key.get());
    X509* const certificate = server.certificate.get();
    X509* const issuer = authority.certificate.get();
    addExtension(certificate, issuer, NID_basic_constraints, "critical,CA:FALSE");
    addExtension(certificate, issuer, NID_key_usage, "critical,digitalSignature");
    addExtension(certificate, issuer, NID_ext_key_usage, "serverAuth");
    addExtension(certificate, issuer, NID_subject_key_identifier, "hash");
    addExtension(certificate, issuer, NID_authority_key_identifier, "keyid:always");
    addExtension(certificate, issuer, NID_subject_alt_name, alternativeNames(hosts));
    sign(certificate, issuer, authority.key.get());
    return server;
}

void writeIdentity(const Identity& identity, const std::filesystem::path& certificateFile,
                   const std::filesystem::path& keyFile) {
    const auto keyOutput = createPrivateFile(keyFile);
    requireSuccess(
        PEM_write_bio_PrivateKey(keyOutput.get(), identity.key.get(), nullptr, nullptr, 0, nullptr, nullptr),
        "writing a key");
    const auto certificateOutput = openFile(certificateFile, "w");
    requireSuccess(PEM_write_bio_X509(certificateOutput.get(), identity.certificate.get()),
                   "writing a certificate");
}

Identity readIdentity(const std::filesystem::path& certificateFile, const std::filesystem::path& keyFile) {
    Identity identity;
    identity.certificate = owned<CertificateHandle>(
        PEM_read_bio_X509(openFile(certificateFile, "r").get(), nullptr, nullptr, nullptr),
        "reading a certificate");
    identity.key = owned<KeyHandle>(
        PEM_read_bio_PrivateKey(openFile(keyFile, "r").get(), nullptr, nullptr, nullptr), "reading a key");
    requireSuccess(X509_check_private_key(identity.certificate.get(), identity.key.get()),
                   "matching key and certificate");
    return identity;
}

} // namespace datacentre

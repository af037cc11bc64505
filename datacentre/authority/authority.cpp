#include "authority/authority.h"

#include "authority/certificate.h"

#include <arpa/inet.h>

#include <chrono>
#include <ctime>
#include <set>

namespace datacentre {

namespace {

using std::chrono::hours;

constexpr hours kDay{24};
constexpr Validity kAuthorityValidity{-kDay, 3650 * kDay};
// Longer than 825 days and the product's home refuses a server certificate.
constexpr Validity kServerValidity{-kDay, 397 * kDay};
constexpr Validity kExpiredValidity{-60 * kDay, -30 * kDay};
constexpr hours kRenewBefore = 30 * kDay;
constexpr const char* kWrongHost = "elsewhere.invalid";

std::set<std::string> hostsOf(X509* certificate) {
    std::set<std::string> hosts;
    const GeneralNamesHandle names(
        static_cast<GENERAL_NAMES*>(X509_get_ext_d2i(certificate, NID_subject_alt_name, nullptr, nullptr)));
    if (!names)
        return hosts;
    for (int i = 0; i < sk_GENERAL_NAME_num(names.get()); ++i) {
        int type = 0;
        const auto* value = static_cast<const ASN1_STRING*>(
            GENERAL_NAME_get0_value(sk_GENERAL_NAME_value(names.get(), i), &type));
        const unsigned char* data = ASN1_STRING_get0_data(value);
        const auto length = static_cast<std::size_t>(ASN1_STRING_length(value));
        if (type == GEN_DNS) {
            hosts.emplace(reinterpret_cast<const char*>(data), length);
        } else if (type == GEN_IPADD) {
            std::array<char, INET6_ADDRSTRLEN> text{};
            inet_ntop(length == sizeof(in_addr) ? AF_INET : AF_INET6, data, text.data(), text.size());
            hosts.emplace(text.data());
        }
    }
    return hosts;
}

bool holdsForAWhile(X509* certificate) {
    std::time_t limit = std::time(nullptr) + std::chrono::seconds(kRenewBefore).count();
    return X509_cmp_time(X509_get0_notAfter(certificate), &limit) > 0;
}

bool signedBy(X509* certificate, X509* authority) {
    return X509_check_issued(authority, certificate) == X509_V_OK &&
           X509_verify(certificate, X509_get0_pubkey(authority)) == 1;
}

// Any trouble with what is on disk means only that a new set is made.
bool isStillGood(const AuthorityPaths& paths, const std::set<std::string>& hosts) {
    try {
        const auto authority = readIdentity(paths.authority, paths.authorityKey);
        if (!holdsForAWhile(authority.certificate.get()))
            return false;
        for (const auto name : kCertificateNames) {
            const auto server = readIdentity(paths.certificate(name), paths.key(name));
            X509* const certificate = server.certificate.get();
            if (signedBy(certificate, authority.certificate.get()) == (name == "unknown-authority"))
                return false;
            if (holdsForAWhile(certificate) == (name == "expired"))
                return false;
            if (hostsOf(certificate) != (name == "wrong-host" ? std::set<std::string>{kWrongHost} : hosts))
                return false;
        }
        return true;
    } catch (const OpensslError&) {
        return false;
    }
}

void makeSet(const AuthorityPaths& paths, const std::vector<std::string>& hosts) {
    std::filesystem::create_directories(paths.certificates);
    const auto authority = makeAuthority("Embedded data centre authority", kAuthorityValidity);
    const auto stranger = makeAuthority("Some other authority", kAuthorityValidity);
    const auto write = [&](std::string_view name, const Identity& identity) {
        writeIdentity(identity, paths.certificate(name), paths.key(name));
    };
    write("good", makeServerIdentity(authority, hosts, kServerValidity));
    write("unknown-authority", makeServerIdentity(stranger, hosts, kServerValidity));
    write("wrong-host", makeServerIdentity(authority, {kWrongHost}, kServerValidity));
    write("expired", makeServerIdentity(authority, hosts, kExpiredValidity));
    // Last, so that a set whose making was cut off is never taken for complete.
    writeIdentity(authority, paths.authority, paths.authorityKey);
}

} // namespace

AuthorityPaths::AuthorityPaths(const std::filesystem::path& dataFolder)
    : authority(dataFolder / "authority.pem"), authorityKey(dataFolder / "authority.key"),
      certificates(dataFolder / "certificates") {}

std::filesystem::path AuthorityPaths::certificate(std::string_view name) const {
    return certificates / (std::string(name) + ".pem");
}

std::filesystem::path AuthorityPaths::key(std::string_view name) const {
    return certificates / (std::string(name) + ".key");
}

AuthorityOutcome ensureAuthority(const std::filesystem::path& dataFolder,
                                 const std::vector<std::string>& hosts) {
    const AuthorityPaths paths(dataFolder);
    if (isStillGood(paths, {hosts.begin(), hosts.end()}))
        return AuthorityOutcome::kept;
    makeSet(paths, hosts);
    return AuthorityOutcome::made;
}

} // namespace datacentre

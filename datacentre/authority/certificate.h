#pragma once

#include "authority/openssl_handles.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace datacentre {

/// A certificate with its private key, as it lies on disk in NAME.pem and NAME.key.
struct Identity {
    CertificateHandle certificate;
    KeyHandle key;
};

/// When a certificate holds, as distances from now.
struct Validity {
    std::chrono::hours begins;
    std::chrono::hours ends;
};

/// X.509 version 3 with the extensions that OpenSSL, GnuTLS and the product's home all ask for (basic constraints, key
/// usage, subject and authority key identifiers, alternative names, server authentication). P-256 keys, SHA-256. All
/// throw OpensslError.
[[nodiscard]] Identity makeAuthority(const std::string& commonName, Validity validity);
[[nodiscard]] Identity makeServerIdentity(const Identity& authority, const std::vector<std::string>& hosts,
                                          Validity validity);

void writeIdentity(const Identity& identity, const std::filesystem::path& certificateFile,
                   const std::filesystem::path& keyFile);
[[nodiscard]] Identity readIdentity(const std::filesystem::path& certificateFile,
                                    const std::filesystem::path& keyFile);

} // namespace datacentre

#pragma once

#include "authority/certificate.h"
#include "server/tls_manners.h"

#include <filesystem>
#include <map>
#include <string>

namespace datacentre {

/// The server's TLS settings. Each connection asks TlsManners, while its hello is read, which certificate and versions
/// it gets.
class TlsContext {
  public:
    /// Reads the certificates that `lumora-datacentre authority` left in the folder. Throws OpensslError.
    TlsContext(const std::filesystem::path& dataFolder, const TlsManners& manners);
    TlsContext(const TlsContext&) = delete;
    TlsContext& operator=(const TlsContext&) = delete;

    [[nodiscard]] SSL_CTX* get() const { return context_.get(); }

  private:
    static int onClientHello(SSL* ssl, int* alert, void* self);
    [[nodiscard]] bool apply(const TlsManner& manner, SSL* ssl) const;

    const TlsManners& manners_;
    std::map<std::string, Identity> identities_;
    SslContextHandle context_;
};

} // namespace datacentre

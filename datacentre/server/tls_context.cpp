#include "server/tls_context.h"

#include "authority/authority.h"
#include "server/connection.h"

#include <openssl/ssl.h>

namespace datacentre {

namespace {

// The server name in a client's hello: a list length, a type (0 = host name) and the name with its length, all big endian.
std::string serverNameIn(SSL* ssl) {
    constexpr std::size_t kHead = 5;
    const unsigned char* data = nullptr;
    std::size_t size = 0;
    if (SSL_client_hello_get0_ext(ssl, TLSEXT_TYPE_server_name, &data, &size) != 1 || size < kHead ||
        data[2] != 0)
        return {};
    const auto length = static_cast<std::size_t>((data[3] << 8) | data[4]);
    if (length > size - kHead)
        return {};
    return {reinterpret_cast<const char*>(data + kHead), length};
}

} // namespace

TlsContext::TlsContext(const std::filesystem::path& dataFolder, const TlsManners& manners)
    : manners_(manners),
      context_(owned<SslContextHandle>(SSL_CTX_new(TLS_server_method()), "making a TLS context")) {
    const AuthorityPaths paths(dataFolder);
    for (const auto name : kCertificateNames)
        identities_.emplace(name, readIdentity(paths.certificate(name), paths.key(name)));

    SSL_CTX* const context = context_.get();
    const auto& good = identities_.at("good");
    requireSuccess(SSL_CTX_use_certificate(context, good.certificate.get()), "using a certificate");
    requireSuccess(SSL_CTX_use_PrivateKey(context, good.key.get()), "using a key");
    SSL_CTX_set_min_proto_version(context, TLS1_2_VERSION);
    // A resumed session would skip the certificate, and a test that has just exchanged it would see nothing.
    SSL_CTX_set_session_cache_mode(context, SSL_SESS_CACHE_OFF);
    SSL_CTX_set_options(context, SSL_OP_NO_TICKET);
    SSL_CTX_set_num_tickets(context, 0);
    SSL_CTX_set_client_hello_cb(context, &TlsContext::onClientHello, this);
}

int TlsContext::onClientHello(SSL* ssl, int* alert, void* self) {
    const auto& context = *static_cast<TlsContext*>(self);
    auto& connection = Connection::of(ssl);
    connection.serverName = serverNameIn(ssl);
    const TlsManner manner = context.manners_.of(connection.serverName);
    *alert = SSL_AD_INTERNAL_ERROR;
    if (manner.hangHandshake) {
        connection.waitUntilClientLeaves();
        return SSL_CLIENT_HELLO_ERROR;
    }
    return context.apply(manner, ssl) ? SSL_CLIENT_HELLO_SUCCESS : SSL_CLIENT_HELLO_ERROR;
}

bool TlsContext::apply(const TlsManner& manner, SSL* ssl) const {
    if (manner.maxVersion != 0) {
        if (manner.maxVersion < TLS1_2_VERSION) {
            // OpenSSL counts the digests of these versions as too weak for any level above.
            SSL_set_security_level(ssl, 0);
            if (SSL_set_min_proto_version(ssl, manner.maxVersion) != 1)
                return false;
        }
        if (SSL_set_max_proto_version(ssl, manner.maxVersion) != 1)
            return false;
    }
    const auto& identity = identities_.at(manner.certificate);
    return SSL_use_certificate(ssl, identity.certificate.get()) == 1 &&
           SSL_use_PrivateKey(ssl, identity.key.get()) == 1;
}

} // namespace datacentre

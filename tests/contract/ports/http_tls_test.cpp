#include "support/http_fixture.h"

#include <cstdlib>

namespace lumora::contract {
namespace {

using platform::HttpAnswer;
using platform::HttpSessionConfiguration;
using platform::TlsVersion;

constexpr int kUntrusted = -1202;

/// The machine's OpenSSL may refuse old versions by its own configuration. This process's refuses none, so that what
/// is refused here is refused by the session. In place before the library first looks for it.
class PermissiveOpenSsl {
  public:
    PermissiveOpenSsl() {
        writeFile(folder_ / "openssl.cnf",
                  "openssl_conf = all\n[all]\nssl_conf = ssl\n[ssl]\nsystem_default = old\n"
                  "[old]\nMinProtocol = TLSv1\nCipherString = DEFAULT:@SECLEVEL=0\n");
        ::setenv("OPENSSL_CONF", (folder_ / "openssl.cnf").c_str(), 1);
    }

  private:
    TemporaryFolder folder_;
};
const PermissiveOpenSsl permissiveOpenSsl;

class HttpTlsContract : public HttpFixture {
  protected:
    HttpTlsContract() {
        authority_.writeCertificate(folder_ / "authority.pem");
        sessions_ = makeHttpSessionsTrusting(folder_ / "authority.pem");
    }

    static void answer(Connection& client, const std::string&) { client.answer("secure"); }

    static HttpSessionConfiguration atLeastTls12() {
        HttpSessionConfiguration configuration;
        configuration.minimumTls = TlsVersion::tls12;
        return configuration;
    }

    /// Whether nothing but its authority can have kept the server from answering: what the sessions trust is the machine's
    /// own matter on some systems.
    static bool isTaken(const HttpAnswer& answer) {
        return kTestsChooseAuthorities ? answer.body == "secure" : codeOf(answer) == kUntrusted;
    }

    OpenSslPointer<SSL_CTX> contextSpeaking(int version) {
        auto context = authority_.makeServerContext("DNS:localhost");
        SSL_CTX_set_security_level(context.get(), 0);
        SSL_CTX_set_min_proto_version(context.get(), version);
        SSL_CTX_set_max_proto_version(context.get(), version);
        return context;
    }

    TestAuthority authority_;
};

TEST_F(HttpTlsContract, anOlderVersionThanTheMinimumIsRefused) {
    for (const int version : {TLS1_VERSION, TLS1_1_VERSION}) {
        const auto context = contextSpeaking(version);
        const TestServer server(answer, context.get());

        const HttpAnswer refused = data(get(server.url()), atLeastTls12());
        EXPECT_EQ(-1200, codeOf(refused)) << version;
        EXPECT_EQ("An SSL error has occurred and a secure connection to the server cannot be made.",
                  refused.error->localizedDescription);
        EXPECT_EQ(0, server.requests());
        EXPECT_TRUE(isTaken(data(get(server.url())))) << "without a minimum";
        EXPECT_EQ(-1200, codeOf(data(get(server.url()), atLeastTls12())))
            << "nor is that connection used again";
    }
}

TEST_F(HttpTlsContract, theMinimumAndLaterVersionsAreTaken) {
    for (const int version : {TLS1_2_VERSION, TLS1_3_VERSION}) {
        const auto context = contextSpeaking(version);
        const TestServer server(answer, context.get());

        const HttpAnswer taken = data(get(server.url()), atLeastTls12());
        EXPECT_TRUE(isTaken(taken)) << version << ": " << codeOf(taken);
    }
}

TEST_F(HttpTlsContract, anUnknownAuthorityIsUntrusted) {
    const TestAuthority other("Other authority");
    const auto context = other.makeServerContext("DNS:localhost");
    const TestServer server(answer, context.get());

    const HttpAnswer answered = data(get(server.url()));

    EXPECT_EQ(kUntrusted, codeOf(answered));
    EXPECT_EQ(server.url(), answered.error->failingUrl);
    EXPECT_EQ(0, server.requests());
}

TEST_F(HttpTlsContract, theTestsAuthorityIsUnknownToTheSystem) {
    sessions_ = makeHttpSessions();
    const auto context = authority_.makeServerContext("DNS:localhost");
    const TestServer server(answer, context.get());

    EXPECT_EQ(kUntrusted, codeOf(data(get(server.url()))));
}

TEST_F(HttpTlsContract, aCertificateForAnotherHostIsUntrusted) {
    const auto context = authority_.makeServerContext("DNS:other.example");
    const TestServer server(answer, context.get());

    EXPECT_EQ(kUntrusted, codeOf(data(get(server.url()))));
}

TEST_F(HttpTlsContract, aServerThatEndsTheHandshakeIsNoSecureConnection) {
    const auto context = authority_.makeServerContext("DNS:localhost");
    SSL_CTX_set_ciphersuites(context.get(), "");
    SSL_CTX_set_min_proto_version(context.get(), TLS1_3_VERSION);
    const TestServer server(answer, context.get());

    EXPECT_EQ(-1200, codeOf(data(get(server.url()))));
}

} // namespace
} // namespace lumora::contract

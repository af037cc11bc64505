#include "support/linux_http_fixture.h"

namespace lumora::contract {
namespace {

using platform::HttpSessionConfiguration;
using platform::TlsVersion;

/// Servers that only a test can make trusted.
class LinuxHttpTlsContract : public LinuxHttpFixture {
  protected:
    LinuxHttpTlsContract() {
        authority_.writeCertificate(folder_ / "authority.pem");
        use({.certificateAuthorities = folder_ / "authority.pem", .maximumBodySize = 1 << 20});
    }

    static void answer(Connection& client, const std::string&) { client.answer("secure"); }

    static HttpSessionConfiguration atLeastTls12() {
        HttpSessionConfiguration configuration;
        configuration.minimumTls = TlsVersion::tls12;
        return configuration;
    }

    TestAuthority authority_;
};

TEST_F(LinuxHttpTlsContract, aTrustedServerAnswers) {
    const auto context = authority_.makeServerContext("DNS:localhost,IP:127.0.0.1");
    const TestServer server(answer, context.get());

    EXPECT_EQ("secure", data(get(server.url())).body);
    EXPECT_EQ("secure", data(get(server.url("/", "127.0.0.1"))).body);
    EXPECT_EQ("secure", download(get(server.url()), atLeastTls12()).contents);
}

TEST_F(LinuxHttpTlsContract, aCertificateOutOfItsTimeHasABadDate) {
    const auto expired = authority_.makeServerContext("DNS:localhost", {-7200, -3600});
    const TestServer expiredServer(answer, expired.get());
    EXPECT_EQ(-1201, codeOf(data(get(expiredServer.url()))));

    const auto early = authority_.makeServerContext("DNS:localhost", {3600, 7200});
    const TestServer earlyServer(answer, early.get());
    EXPECT_EQ(-1204, codeOf(data(get(earlyServer.url()))));
}

TEST_F(LinuxHttpTlsContract, aTruncatedBodyIsALostConnection) {
    const auto context = authority_.makeServerContext("DNS:localhost");
    const TestServer server(
        [](Connection& client, const std::string&) {
            client.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\npart of an image");
            client.close();
        },
        context.get());

    const Downloaded result = download(get(server.url()));

    EXPECT_EQ(-1005, codeOf(result));
    EXPECT_FALSE(result.contents);
}

TEST_F(LinuxHttpTlsContract, aSecureServersResetIsALostConnection) {
    const auto context = authority_.makeServerContext("DNS:localhost");
    const TestServer server([](Connection& client, const std::string&) { client.reset(); }, context.get());

    EXPECT_EQ(-1005, codeOf(data(get(server.url()))));
}

} // namespace
} // namespace lumora::contract

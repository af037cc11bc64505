#include "support/linux_http_fixture.h"

#include <atomic>
#include <chrono>

namespace lumora::contract {
namespace {

using platform::HttpAnswer;
using platform::HttpRequest;
using platform::HttpSessionConfiguration;
using std::chrono::milliseconds;
using std::chrono::seconds;

/// What depends on the network path, and on a limit that only a test lowers.
class HttpConnectivityContract : public LinuxHttpFixture {};

std::size_t sizeAskedFor(const std::string& head) {
    return static_cast<std::size_t>(std::stoi(head.substr(head.find('/') + 1)));
}

TEST_F(HttpConnectivityContract, withoutANetworkPathAnUnknownHostIsNoConnection) {
    use({}, [] { return false; });

    EXPECT_EQ(-1009, codeOf(data(get("https://host.invalid/"))));
}

TEST_F(HttpConnectivityContract, withoutANetworkPathAWaitingSessionFailsAtItsTimeOut) {
    use({}, [] { return false; });
    const TestServer server([](Connection& client, const std::string&) { client.answer("x"); });
    HttpSessionConfiguration configuration;
    configuration.waitsForConnectivity = true;
    configuration.resourceTimeout = seconds(1);

    HttpRequest request = get(server.url());
    request.timeout = seconds(10);
    const auto start = std::chrono::steady_clock::now();
    const HttpAnswer answer = data(request, configuration);

    EXPECT_EQ(-1001, codeOf(answer));
    EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(950));
    EXPECT_EQ(0, server.requests());
    EXPECT_EQ("x", data(get(server.url())).body) << "a session that does not wait simply tries";
}

TEST_F(HttpConnectivityContract, aBodyBeyondTheLimitIsAnErrorInMemoryAndFineInAFile) {
    use({.certificateAuthorities = {}, .maximumBodySize = 1000});
    const TestServer server([](Connection& client, const std::string& head) {
        client.answer(std::string(sizeAskedFor(head), 'x'));
    });

    EXPECT_EQ(0, codeOf(data(get(server.url("/1000")))));
    EXPECT_EQ(-1103, codeOf(data(get(server.url("/1001")))));
    EXPECT_EQ(5000U, download(get(server.url("/5000"))).contents->size());
}

TEST_F(HttpConnectivityContract, aWaitingRequestIsSentWhenANetworkPathComes) {
    std::atomic<int> asked = 0;
    use({}, [&] { return ++asked > 3; });
    const TestServer server([](Connection& client, const std::string&) { client.answer("x"); });
    HttpSessionConfiguration configuration;
    configuration.waitsForConnectivity = true;

    EXPECT_EQ("x", data(get(server.url()), configuration).body);
    EXPECT_GE(asked, 4);
}

TEST_F(HttpConnectivityContract, theSystemsOwnMonitorAnswers) {
    // What it answers depends on the machine; that it does, and stays with it, does not.
    EXPECT_EQ(platform::linux_backend::systemHasNetworkPath(),
              platform::linux_backend::systemHasNetworkPath());
}

} // namespace
} // namespace lumora::contract

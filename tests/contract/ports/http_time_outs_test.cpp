#include "support/eventually.h"
#include "support/http_fixture.h"

namespace lumora::contract {
namespace {

using platform::HttpAnswer;
using platform::HttpRequest;
using platform::HttpSessionConfiguration;
using std::chrono::milliseconds;
using std::chrono::seconds;

class HttpTimeOutsContract : public HttpFixture {
  protected:
    static HttpRequest getWithin(const std::string& url, seconds timeout) {
        HttpRequest request = get(url);
        request.timeout = timeout;
        return request;
    }

    /// Runs the task and notes how long it took.
    HttpAnswer timed(const HttpRequest& request, const HttpSessionConfiguration& configuration = {}) {
        const auto start = std::chrono::steady_clock::now();
        HttpAnswer answer = data(request, configuration);
        took_ = std::chrono::steady_clock::now() - start;
        return answer;
    }

    /// A body that comes in pieces, one every 900 ms.
    static void trickle(Connection& client, int pieces) {
        client.send("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(pieces) + "\r\n\r\n");
        for (int piece = 0; piece < pieces; ++piece) {
            std::this_thread::sleep_for(milliseconds(900));
            client.send("x");
        }
    }

    std::chrono::steady_clock::duration took_{};
};

TEST_F(HttpTimeOutsContract, aServerThatNeverAnswersTimesOut) {
    const TestServer server([](Connection& client, const std::string&) { client.awaitClient(); });

    const HttpAnswer answer = timed(getWithin(server.url(), seconds(1)));

    EXPECT_EQ(-1001, codeOf(answer));
    EXPECT_EQ("The request timed out.", answer.error->localizedDescription);
    EXPECT_EQ(server.url(), answer.error->failingUrl);
    EXPECT_GE(took_, milliseconds(950));
    EXPECT_LT(took_, seconds(10));
}

TEST_F(HttpTimeOutsContract, aHandshakeThatNeverEndsTimesOut) {
    // It takes the client's first TLS message for the beginning of a request and waits for more.
    const TestServer server([](Connection&, const std::string&) {});

    const HttpAnswer answer = timed(getWithin("https" + server.url().substr(4), seconds(1)));

    EXPECT_EQ(-1001, codeOf(answer));
    EXPECT_GE(took_, milliseconds(950));
}

TEST_F(HttpTimeOutsContract, progressStartsTheTimeOutAnew) {
    const TestServer server([](Connection& client, const std::string&) { trickle(client, 6); });

    const HttpAnswer answer = timed(getWithin(server.url(), seconds(4)));

    EXPECT_EQ("xxxxxx", answer.body);
    EXPECT_GE(took_, milliseconds(5400));
}

TEST_F(HttpTimeOutsContract, aStallInTheMiddleTimesOutDownloadsToo) {
    const TestServer server([](Connection& client, const std::string&) {
        client.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\npart");
        client.awaitClient();
    });

    const Downloaded result = download(getWithin(server.url(), seconds(4)));

    EXPECT_EQ(-1001, codeOf(result));
    EXPECT_FALSE(result.contents);
    EXPECT_EQ(200, result.response->statusCode);
}

TEST_F(HttpTimeOutsContract, theResourceTimeOutIsATotal) {
    const TestServer server([](Connection& client, const std::string&) { trickle(client, 10); });
    HttpSessionConfiguration configuration;
    configuration.resourceTimeout = seconds(1);

    const HttpAnswer answer = timed(getWithin(server.url(), seconds(60)), configuration);

    EXPECT_EQ(-1001, codeOf(answer));
    EXPECT_GE(took_, milliseconds(950));
    EXPECT_LT(took_, seconds(7));
}

TEST_F(HttpTimeOutsContract, oneTasksTimeOutLeavesOthersAlone) {
    const TestServer server([](Connection& client, const std::string& head) {
        if (head.starts_with("GET /slow"))
            return trickle(client, 5);
        client.awaitClient();
    });
    std::promise<std::string> body;
    const auto session = sessions_->makeSession({});
    session->startDataTask(getWithin(server.url("/slow"), seconds(30)),
                           [&](HttpAnswer answer) { body.set_value(answer.body.value_or("error")); });

    EXPECT_EQ(-1001, codeOf(data(getWithin(server.url("/never"), seconds(1)))));
    EXPECT_EQ("xxxxx", body.get_future().get());
}

TEST_F(HttpTimeOutsContract, aWaitingSessionWithAPathFailsAtOnceWhenRefused) {
    int port = 0;
    {
        const TestServer server([](Connection&, const std::string&) {});
        port = server.port();
    }
    HttpSessionConfiguration configuration;
    configuration.waitsForConnectivity = true;

    const HttpAnswer answer = timed(get("http://127.0.0.1:" + std::to_string(port) + "/"), configuration);

    EXPECT_EQ(-1004, codeOf(answer));
    EXPECT_LT(took_, seconds(10));
}

} // namespace
} // namespace lumora::contract

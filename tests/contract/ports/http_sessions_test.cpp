#include "support/eventually.h"
#include "support/http_fixture.h"

#include <fmt/format.h>

#include <cstdlib>

namespace lumora::contract {
namespace {

using platform::HttpAnswer;
using platform::HttpRedirects;
using platform::HttpRequest;
using platform::HttpSessionConfiguration;
using testing::HasSubstr;
using testing::Not;

class HttpSessionsContract : public HttpFixture {};

TEST_F(HttpSessionsContract, aDataTaskGivesStatusBodyAndFinalAddress) {
    const std::string body("a\0b\r\n\xff", 6);
    const TestServer server([&](Connection& client, const std::string&) { client.answer(body); });

    const HttpAnswer answer = data(get(server.url("/path?q=1")));

    EXPECT_EQ(0, codeOf(answer));
    EXPECT_EQ(body, answer.body);
    EXPECT_EQ(200, answer.response->statusCode);
    EXPECT_EQ(server.url("/path?q=1"), answer.response->url);
}

TEST_F(HttpSessionsContract, theRequestIsSentAsItIs) {
    std::string head;
    const TestServer server([&](Connection& client, const std::string& received) {
        head = received;
        client.answer("");
    });
    HttpRequest request = get(server.url("/a/../b%20c/?x=%2F&y=a+b"));
    request.headers = {{"User-Agent", "Debian GNU/Linux 12"}, {"X-Empty", ""}};

    EXPECT_EQ(0, codeOf(data(request)));

    EXPECT_TRUE(head.starts_with("GET /a/../b%20c/?x=%2F&y=a+b HTTP/1.1\r\n")) << head;
    EXPECT_THAT(head, HasSubstr("\r\nUser-Agent: Debian GNU/Linux 12\r\n"));
    EXPECT_THAT(head, HasSubstr("\r\nX-Empty:\r\n"));
    EXPECT_THAT(head, Not(HasSubstr("Cookie")));
    EXPECT_THAT(head, Not(HasSubstr("Authorization")));
}

TEST_F(HttpSessionsContract, everyStatusIsAnAnswer) {
    const TestServer server([](Connection& client, const std::string& head) {
        client.answer("page", pathOf(head).substr(1) + " Status");
    });
    for (const int status : {200, 304, 404, 500, 503}) {
        const HttpAnswer answer = data(get(server.url(fmt::format("/{}", status))));
        EXPECT_EQ(0, codeOf(answer)) << status;
        EXPECT_EQ(status, answer.response->statusCode);
    }
    EXPECT_EQ("page", download(get(server.url("/404"))).contents);
}

TEST_F(HttpSessionsContract, anEmptyBodyIsABodyAndAFile) {
    const TestServer server([](Connection& client, const std::string&) { client.answer(""); });

    EXPECT_EQ("", data(get(server.url())).body);
    EXPECT_EQ("", download(get(server.url())).contents);
}

TEST_F(HttpSessionsContract, aDownloadIsAPrivateFileForTheTimeOfItsCompletion) {
    const std::string body(3 << 20, 'd');
    const TestServer server([&](Connection& client, const std::string&) { client.answer(body); });

    const Downloaded result = download(get(server.url()));

    EXPECT_EQ(0, codeOf(result));
    EXPECT_EQ(body, result.contents);
    EXPECT_EQ(std::filesystem::perms(0600), result.mode);
    EXPECT_TRUE(eventually([&] { return !std::filesystem::exists(result.path); }));
}

TEST_F(HttpSessionsContract, noTaskLeavesAFileBehind) {
    if (!kTestsChooseTemporaryFolder)
        GTEST_SKIP() << "others' files come and go where this system keeps downloads";
    ::setenv("TMPDIR", folder_.path().c_str(), 1);
    const TestServer server([](Connection& client, const std::string& head) {
        if (pathOf(head) == "/whole")
            return client.answer("body");
        client.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\npart");
        client.close();
    });

    EXPECT_EQ(folder_.path(), std::filesystem::path(download(get(server.url("/whole"))).path).parent_path());
    EXPECT_NE(0, codeOf(download(get(server.url("/cut")))));
    EXPECT_NE(0, codeOf(download(get("ftp://localhost/x"))));

    EXPECT_TRUE(eventually([&] { return std::filesystem::is_empty(folder_.path()); }));
    ::unsetenv("TMPDIR");
}

TEST_F(HttpSessionsContract, anAddressThatDidNotParseIsABadUrl) {
    const HttpAnswer answer = data(HttpRequest{});

    EXPECT_EQ(-1000, codeOf(answer));
    EXPECT_EQ("NSURLErrorDomain", answer.error->domain);
    EXPECT_EQ("bad URL", answer.error->localizedDescription);
    EXPECT_EQ(std::nullopt, answer.error->failingUrl);
    EXPECT_FALSE(answer.body);
    EXPECT_FALSE(answer.response);
}

TEST_F(HttpSessionsContract, otherSchemesAndNoneAreUnsupported) {
    writeFile(folder_ / "secret", "text");
    for (const std::string& url :
         {std::string("ftp://localhost/x"), "file://" + (folder_ / "secret"),
          std::string("javascript:alert(1)"), std::string("bare.host.example/agent/OvraMac.dmg"),
          std::string("localhost:8443/x"), std::string("//host/x"), std::string("/path"), std::string(""),
          std::string("?q=http://x"), std::string("gopher://localhost/"), std::string("dict://localhost/"),
          std::string("data:text/plain,x"), std::string("ws://localhost/")}) {
        const HttpAnswer answer = data(get(url));
        EXPECT_EQ(-1002, codeOf(answer)) << url;
        EXPECT_EQ("unsupported URL", answer.error->localizedDescription);
        EXPECT_EQ(url, answer.error->failingUrl);
        EXPECT_EQ(-1002, codeOf(download(get(url)))) << url;
    }
}

TEST_F(HttpSessionsContract, anAddressWithoutAHostIsABadUrl) {
    for (const std::string url : {"https://", "http:///path", "https:path", "http://a b/", "http://[::1/"})
        EXPECT_EQ(-1000, codeOf(data(get(url)))) << url;
}

TEST_F(HttpSessionsContract, theSchemesCaseDoesNotMatter) {
    const TestServer server([](Connection& client, const std::string&) { client.answer("ok"); });

    EXPECT_EQ("ok", data(get(fmt::format("HTTP://localhost:{}/", server.port()))).body);
}

TEST_F(HttpSessionsContract, redirectsAreFollowedToTheFinalAddress) {
    const TestServer server([](Connection& client, const std::string& head) {
        const int left = std::stoi(pathOf(head).substr(1));
        if (left == 0)
            return client.answer("end");
        client.answer("ignored", "302 Found", fmt::format("Location: /{}\r\n", left - 1));
    });

    const HttpAnswer followed = data(get(server.url("/20")));
    EXPECT_EQ("end", followed.body);
    EXPECT_EQ(server.url("/0"), followed.response->url);
    EXPECT_EQ("end", download(get(server.url("/3"))).contents);

    const HttpAnswer tooMany = data(get(server.url("/21")));
    EXPECT_EQ(-1007, codeOf(tooMany));
    EXPECT_FALSE(tooMany.response);
}

TEST_F(HttpSessionsContract, aSessionThatStopsAtRedirectsGivesTheRedirect) {
    const TestServer server([](Connection& client, const std::string&) {
        client.answer("moved", "302 Found", "Location: /other\r\n");
    });
    HttpSessionConfiguration configuration;
    configuration.redirects = HttpRedirects::stop;

    const HttpAnswer answer = data(get(server.url()), configuration);

    EXPECT_EQ(302, answer.response->statusCode);
    EXPECT_EQ("moved", answer.body);
    EXPECT_EQ(1, server.requests());
}

TEST_F(HttpSessionsContract, aRedirectToAnotherSchemeIsUnsupported) {
    writeFile(folder_ / "secret", "text");
    std::string target;
    const TestServer server([&](Connection& client, const std::string&) {
        client.answer("", "302 Found", "Location: " + target + "\r\n");
    });
    for (const std::string& scheme : {"file://" + (folder_ / "secret"), std::string("ftp://localhost/x")}) {
        target = scheme;
        const HttpAnswer answer = data(get(server.url()));
        EXPECT_EQ(-1002, codeOf(answer)) << target;
        EXPECT_FALSE(answer.body);
        EXPECT_FALSE(answer.response);
    }
}

TEST_F(HttpSessionsContract, aTruncatedOrBrokenTransferIsALostConnection) {
    const TestServer server([](Connection& client, const std::string& head) {
        const std::string path = pathOf(head);
        if (path == "/short")
            client.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\npart");
        else if (path == "/chunk")
            client.send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n4\r\npart\r\n");
        else if (path == "/head")
            client.send("HTTP/1.1 200 OK\r\nContent-Le");
        else if (path == "/reset")
            return client.reset();
        client.close();
    });
    for (const std::string path : {"/short", "/chunk", "/head", "/reset", "/nothing"}) {
        const HttpAnswer answer = data(get(server.url(path)));
        EXPECT_EQ(-1005, codeOf(answer)) << path;
        EXPECT_EQ("The network connection was lost.", answer.error->localizedDescription);
        EXPECT_EQ(server.url(path), answer.error->failingUrl);
        EXPECT_FALSE(answer.body) << path;
        const Downloaded file = download(get(server.url(path)));
        EXPECT_EQ(-1005, codeOf(file)) << path;
        EXPECT_FALSE(file.contents) << path;
    }
    EXPECT_EQ(200, data(get(server.url("/short"))).response->statusCode);
}

TEST_F(HttpSessionsContract, anAnswerThatIsNotHttpIsABadServerResponse) {
    const TestServer server([](Connection& client, const std::string&) {
        client.send("SSH-2.0-Server\r\n\r\n");
        client.close();
    });

    const HttpAnswer answer = data(get(server.url()));

    EXPECT_THAT(codeOf(answer), testing::AnyOf(-1011, -1002)) << answer.error->localizedDescription;
    EXPECT_FALSE(answer.body);
}

TEST_F(HttpSessionsContract, aRefusedConnectionAndAnUnknownHostFailAtOnce) {
    int port = 0;
    {
        const TestServer server([](Connection&, const std::string&) {});
        port = server.port();
    }
    const HttpAnswer refused = data(get(fmt::format("https://127.0.0.1:{}/", port)));
    EXPECT_EQ(-1004, codeOf(refused));
    EXPECT_EQ("Could not connect to the server.", refused.error->localizedDescription);

    const HttpAnswer unknown = data(get("https://host.invalid/"));
    EXPECT_EQ(-1003, codeOf(unknown)) << unknown.error->localizedDescription;
    EXPECT_EQ("https://host.invalid/", unknown.error->failingUrl);
}

TEST_F(HttpSessionsContract, compressedBodiesAreDecoded) {
    const std::string gzip("\x1f\x8b\x08\0\0\0\0\0\0\xff\xcb\x48\xcd\xc9\xc9\x07\0\x86\xa6\x10\x36\x05\0\0\0",
                           25);
    std::string head;
    const TestServer server([&](Connection& client, const std::string& received) {
        head = received;
        client.answer(pathOf(received) == "/junk" ? "no gzip at all" : gzip, "200 OK",
                      "Content-Encoding: gzip\r\n");
    });

    EXPECT_EQ("hello", data(get(server.url())).body);
    EXPECT_EQ("hello", download(get(server.url())).contents);
    EXPECT_THAT(head, HasSubstr("gzip"));
    EXPECT_EQ(-1016, codeOf(data(get(server.url("/junk")))));
}

TEST_F(HttpSessionsContract, aHeaderWithALineEndReachesNoServer) {
    const TestServer server([](Connection& client, const std::string&) { client.answer(""); });
    for (const auto& [name, value] :
         std::vector<std::pair<std::string, std::string>>{{"User-Agent", "a\r\nX-Injected: b"},
                                                          {"User-Agent", "a\nb"},
                                                          {"X\n", "b"},
                                                          {"", "b"},
                                                          {"A:B", "c"},
                                                          {"X", std::string("a\0b", 3)}}) {
        HttpRequest request = get(server.url());
        request.headers = {{name, value}};
        EXPECT_NE(0, codeOf(data(request)));
    }
    EXPECT_EQ(0, server.requests());
}

TEST_F(HttpSessionsContract, nothingOfOneAnswerReturnsInTheNextRequest) {
    ::setenv("HOME", folder_.path().c_str(), 1);
    writeFile(folder_ / ".netrc", "machine localhost login user password secret\n");
    writeFile(folder_ / ".curlrc", "user-agent = injected\n");
    std::string heads;
    const TestServer server([&](Connection& client, const std::string& head) {
        heads += head;
        client.answer("x", "200 OK",
                      "Set-Cookie: id=1; Path=/\r\nETag: \"e\"\r\nCache-Control: max-age=1000\r\n");
    });
    const auto session = sessions_->makeSession({});
    for (int round = 0; round < 2; ++round) {
        std::promise<void> done;
        session->startDataTask(get(server.url()), [&](HttpAnswer) { done.set_value(); });
        done.get_future().wait();
    }

    EXPECT_EQ(2, server.requests());
    for (const char* word : {"Cookie", "Authorization", "injected", "If-None-Match"})
        EXPECT_THAT(heads, Not(HasSubstr(word)));
}

TEST_F(HttpSessionsContract, aSessionUsesNoConnectionOfAnother) {
    const TestServer server([](Connection& client, const std::string&) { client.answer("kept open"); });
    constexpr int kSessions = 3;

    for (int session = 0; session < kSessions; ++session)
        EXPECT_EQ("kept open", data(get(server.url())).body);

    EXPECT_EQ(kSessions, server.connections());
}

TEST_F(HttpSessionsContract, aSynchronousRequestFollowsRedirectsAndTellsErrors) {
    const TestServer server([](Connection& client, const std::string& head) {
        if (pathOf(head) == "/end")
            return client.answer("body");
        client.answer("", "302 Found", "Location: /end\r\n");
    });

    EXPECT_EQ("body", sessions_->sendSynchronously(get(server.url("/start"))).body);
    EXPECT_EQ(-1002, codeOf(sessions_->sendSynchronously(get("ftp://localhost/"))));
    EXPECT_EQ(-1000, codeOf(sessions_->sendSynchronously(HttpRequest{})));
}

} // namespace
} // namespace lumora::contract

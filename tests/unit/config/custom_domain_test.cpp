#include "config/session_details.h"
#include "config/utils.h"
#include "fakes/core_test.h"
#include "fakes/failing_streams.h"
#include "fakes/log_lines.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace lumora {
namespace {

using ::testing::ElementsAre;

constexpr const char* kServiceDomainUrl =
    "https://eu.ovratessel.example/api/v2/service_domain?src=rs&lumora_token=t1";

std::string line(const std::string& text) { return "+[Utils getCustomDomain] : " + text; }

const std::string kFetching = line("********************** Fetching Custom Domain for session");

class CustomDomain : public CoreTest {
  protected:
    CustomDomain() {
        session().setWebServerName("eu.ovratessel.example");
        session().setStaticWebServerName("eu.ovratessel.example");
        session().setLumoraToken("t1");
        session().setCustomDomainEnabled("false");
        answer(200, "{}");
    }

    SessionDetails& session() { return SessionDetails::getInstance(); }

    void answer(long status, const std::string& body) {
        http.answerSynchronously = [status, body](const platform::HttpRequest& request) {
            return platform::HttpAnswer{body, platform::HttpResponse{status, request.url.value_or("")}, {}};
        };
    }

    void fail(const platform::Error& error) {
        http.answerSynchronously = [error](const auto&) { return platform::HttpAnswer{{}, {}, error}; };
    }

    void expectUnchanged() {
        EXPECT_EQ(session().webServerName(), "eu.ovratessel.example");
        EXPECT_EQ(session().customDomainEnabled(), "false");
    }
};

TEST_F(CustomDomain, takesTheServersPlace) {
    answer(200, R"({"representation": {"service_domain": "help.customer.example", "other": 1}})");

    Utils::getCustomDomain();

    EXPECT_EQ(session().webServerName(), "help.customer.example");
    EXPECT_EQ(session().customDomainEnabled(), "true");
    EXPECT_EQ(session().staticWebServerName(), "eu.ovratessel.example");
    EXPECT_THAT(streams.logged(),
                ElementsAre(kFetching, line(std::string("Requesting URL : ") + kServiceDomainUrl),
                            line(std::string("Request Url URL : ") + kServiceDomainUrl),
                            line("Status code : 200"),
                            line(R"(Response : {"other":1,"service_domain":"help.customer.example"})")));
}

TEST_F(CustomDomain, isLoggedBeforeItIsTaken) {
    answer(200, R"({"representation":{"service_domain":"help.customer.example"}})");
    fakes::FailingStreams failing(streams, 5); // the line with the answer
    platform::ports().standardStreams = &failing;

    Utils::getCustomDomain();

    expectUnchanged();
    EXPECT_EQ(streams.logged().back(), fakes::exceptionLine("+[Utils getCustomDomain]", "write failed"));
}

TEST_F(CustomDomain, endsTheUrlLineOnce) {
    Utils::getCustomDomain();

    EXPECT_EQ(streams.raw().find("\n\n"), std::string::npos);
}

TEST_F(CustomDomain, sendsOneGetWithDefaultTimeoutAndCaching) {
    Utils::getCustomDomain();

    ASSERT_EQ(http.synchronousRequests.size(), 1U);
    const auto& request = http.synchronousRequests.front();
    EXPECT_EQ(request.url, kServiceDomainUrl);
    EXPECT_EQ(request.method, "GET");
    EXPECT_EQ(request.timeout, std::chrono::seconds(60));
    EXPECT_EQ(request.cachePolicy, platform::HttpCachePolicy::useProtocolCachePolicy);
    EXPECT_TRUE(request.headers.empty());
}

TEST_F(CustomDomain, percentEncodesTheWholeAddress) {
    session().setLumoraToken("a b%c#d&e=\u00E4\"");

    Utils::getCustomDomain();

    EXPECT_EQ(
        http.synchronousRequests.at(0).url,
        "https://eu.ovratessel.example/api/v2/service_domain?src=rs&lumora_token=a%20b%25c%23d&e=%C3%A4%22");
}

TEST_F(CustomDomain, equalToTheConfiguredServerIsNone) {
    answer(200, R"({"representation":{"service_domain":"eu.ovratessel.example"}})");

    Utils::getCustomDomain();

    expectUnchanged();
}

TEST_F(CustomDomain, comparesWithTheConfiguredServerNotTheCurrentOne) {
    session().setWebServerName("help.customer.example");
    session().setCustomDomainEnabled("true");
    answer(200, R"({"representation":{"service_domain":"eu.ovratessel.example"}})");

    Utils::getCustomDomain();

    EXPECT_EQ(session().webServerName(), "eu.ovratessel.example");
    EXPECT_EQ(session().customDomainEnabled(), "false");
}

TEST_F(CustomDomain, letterCaseMakesADifference) {
    answer(200, R"({"representation":{"service_domain":"EU.ovratessel.example"}})");

    Utils::getCustomDomain();

    EXPECT_EQ(session().webServerName(), "EU.ovratessel.example");
    EXPECT_EQ(session().customDomainEnabled(), "true");
}

TEST_F(CustomDomain, withoutAConfiguredServerEveryDomainIsCustom) {
    session().setStaticWebServerName(std::nullopt);
    answer(200, R"({"representation":{"service_domain":"eu.ovratessel.example"}})");

    Utils::getCustomDomain();

    EXPECT_EQ(session().customDomainEnabled(), "true");
}

TEST_F(CustomDomain, emptyOneChangesNothing) {
    answer(200, R"({"representation":{"service_domain":""}})");

    Utils::getCustomDomain();

    expectUnchanged();
    EXPECT_EQ(streams.logged().back(), line(R"(Response : {"service_domain":""})"));
}

/// Bodies of a 200 answer that name no domain, each with what the log shows as its representation.
class AnswerWithoutDomain : public CustomDomain,
                            public ::testing::WithParamInterface<std::pair<const char*, const char*>> {};

TEST_P(AnswerWithoutDomain, changesNothing) {
    const auto [body, shown] = GetParam();
    answer(200, body);

    Utils::getCustomDomain();

    expectUnchanged();
    EXPECT_THAT(streams.logged(),
                ElementsAre(kFetching, line(std::string("Requesting URL : ") + kServiceDomainUrl),
                            line(std::string("Request Url URL : ") + kServiceDomainUrl),
                            line("Status code : 200"), line(std::string("Response : ") + shown)));
}

INSTANTIATE_TEST_SUITE_P(
    Bodies, AnswerWithoutDomain,
    ::testing::Values(
        std::pair("", "(null)"), std::pair("<html>", "(null)"), std::pair("[1]", "(null)"),
        std::pair("\"representation\"", "(null)"), std::pair("null", "(null)"),
        std::pair("{\"other\":1}", "(null)"), std::pair("{\"representation\":null}", "(null)"),
        std::pair("{\"representation\":\"text\"}", "text"),
        std::pair("{\"representation\":[\"service_domain\"]}", "[\"service_domain\"]"),
        std::pair("{\"representation\":{}}", "{}"),
        std::pair("{\"representation\":{\"service_domain\":7}}", "{\"service_domain\":7}"),
        std::pair("{\"representation\":{\"service_domain\":null}}", "{\"service_domain\":null}"),
        std::pair("{\"representation\":{\"service_domain\":[\"a\"]}}", "{\"service_domain\":[\"a\"]}")));

TEST_F(CustomDomain, deeplyNestedAnswerChangesNothing) {
    answer(200, "{\"representation\":" + std::string(100000, '['));

    Utils::getCustomDomain();

    expectUnchanged();
    EXPECT_EQ(streams.logged().back(), line("Response : (null)"));
}

TEST_F(CustomDomain, otherStatusStopsSilently) {
    for (const long status : {100L, 201L, 204L, 301L, 404L, 500L}) {
        forgetLines();
        answer(status, R"({"representation":{"service_domain":"help.customer.example"}})");

        Utils::getCustomDomain();

        expectUnchanged();
        EXPECT_THAT(streams.logged(),
                    ElementsAre(kFetching, line(std::string("Requesting URL : ") + kServiceDomainUrl),
                                line(std::string("Request Url URL : ") + kServiceDomainUrl),
                                line("Status code : " + std::to_string(status))));
    }
}

TEST_F(CustomDomain, networkFailureLogsBothLines) {
    fail({"NSURLErrorDomain", -1001, "The request timed out.", kServiceDomainUrl});

    Utils::getCustomDomain();

    expectUnchanged();
    EXPECT_THAT(streams.logged(),
                ElementsAre(kFetching, line(std::string("Requesting URL : ") + kServiceDomainUrl),
                            line("Check Update failed : Error Domain=NSURLErrorDomain Code=-1001 "
                                 "\"The request timed out.\""),
                            line(std::string("Error in the HTTP Request(URL: ") + kServiceDomainUrl +
                                 ") : The request timed out.")));
}

TEST_F(CustomDomain, missingBodyWithoutErrorStopsWithItsLine) {
    http.answerSynchronously = [](const auto&) {
        return platform::HttpAnswer{{}, platform::HttpResponse{200, ""}, {}};
    };

    Utils::getCustomDomain();

    expectUnchanged();
    EXPECT_THAT(
        streams.logged(),
        ElementsAre(kFetching, line(std::string("Requesting URL : ") + kServiceDomainUrl),
                    line(std::string("Error in the HTTP Request(URL: ") + kServiceDomainUrl + ") : (null)")));
}

TEST_F(CustomDomain, bodyWithoutResponseHasStatusZero) {
    http.answerSynchronously = [](const auto&) { return platform::HttpAnswer{"{}", {}, {}}; };

    Utils::getCustomDomain();

    EXPECT_EQ(streams.logged().back(), line("Status code : 0"));
}

TEST_F(CustomDomain, withoutAServerTheHostIsTheNullPlaceholder) {
    session().setWebServerName(std::nullopt);
    session().setStaticWebServerName(std::nullopt);
    fail({"NSURLErrorDomain", -1003, "A server with the specified hostname could not be found.", {}});

    Utils::getCustomDomain();

    const std::string url = "https://(null)/api/v2/service_domain?src=rs&lumora_token=t1";
    EXPECT_EQ(http.synchronousRequests.at(0).url, url);
    EXPECT_EQ(session().webServerName(), std::nullopt);
    EXPECT_EQ(session().customDomainEnabled(), "false");
    EXPECT_THAT(streams.logged(),
                ElementsAre(kFetching, line("Requesting URL : " + url),
                            line("Check Update failed : Error Domain=NSURLErrorDomain Code=-1003 "
                                 "\"A server with the specified hostname could not be found.\""),
                            line("Error in the HTTP Request(URL: " + url +
                                 ") : A server with the specified hostname could not be found.")));
}

TEST_F(CustomDomain, addressThatDoesNotParseIsSentAsNoneAndShownAsTheNullPlaceholder) {
    session().setWebServerName("host:port");
    fail({"NSURLErrorDomain", -1000, "bad URL", {}});

    Utils::getCustomDomain();

    EXPECT_EQ(http.synchronousRequests.at(0).url, std::nullopt);
    EXPECT_THAT(
        streams.logged(),
        ElementsAre(kFetching, line("Requesting URL : (null)"),
                    line("Check Update failed : Error Domain=NSURLErrorDomain Code=-1000 \"bad URL\""),
                    line("Error in the HTTP Request(URL: (null)) : bad URL")));
}

TEST_F(CustomDomain, exceptionIsLoggedUnderItsName) {
    http.answerSynchronously = [](const auto&) -> platform::HttpAnswer {
        throw std::runtime_error("no transport");
    };

    Utils::getCustomDomain();

    expectUnchanged();
    EXPECT_THAT(streams.logged(),
                ElementsAre(kFetching, line(std::string("Requesting URL : ") + kServiceDomainUrl),
                            fakes::exceptionLine("+[Utils getCustomDomain]", "no transport")));
}

} // namespace
} // namespace lumora

#include "webhost/server_trust.h"
#include "webhost/web_host_test.h"

namespace lumora {
namespace {

class ServerTrust : public WebHostTest {
  protected:
    AuthenticationChallenge challenge{true, true, [this] {
                                          ++evaluations;
                                          return failed;
                                      }};
    std::optional<platform::Error> failed;
    int evaluations = 0;

    ChallengeAnswer answer() { return answerTo(challenge, *controller); }
};

TEST_F(ServerTrust, isUsedWhenTheSystemTrustsTheServer) {
    EXPECT_EQ(answer(), ChallengeAnswer::useCredential);
    EXPECT_EQ(evaluations, 1);
    EXPECT_TRUE(streams.printed().empty());
}

TEST_F(ServerTrust, thatFailsIsPrintedAndEndsTheLoad) {
    failed = {"NSOSStatusErrorDomain", -67843, "The certificate has expired.", {}};

    EXPECT_EQ(answer(), ChallengeAnswer::cancel);
    EXPECT_EQ(
        streams.printed(),
        Lines{"webView(_:didReceive:completionHandler:) : Server trust evaluation failed: "
              "Optional(Error Domain=NSOSStatusErrorDomain Code=-67843 \"The certificate has expired.\")"});
}

TEST_F(ServerTrust, isNotEvaluatedForAnotherMethod) {
    challenge.isOfServerTrust = false;

    EXPECT_EQ(answer(), ChallengeAnswer::performDefaultHandling);
    EXPECT_EQ(evaluations, 0);
}

TEST_F(ServerTrust, isNotEvaluatedWhenThereIsNone) {
    challenge.hasServerTrust = false;

    EXPECT_EQ(answer(), ChallengeAnswer::performDefaultHandling);
    EXPECT_EQ(evaluations, 0);
}

} // namespace
} // namespace lumora

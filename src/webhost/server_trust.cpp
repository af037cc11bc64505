#include "webhost/server_trust.h"

namespace lumora {

ChallengeAnswer answerTo(const AuthenticationChallenge& challenge, platform::WebViewDelegate& host) {
    if (!challenge.isOfServerTrust || !challenge.hasServerTrust)
        return ChallengeAnswer::performDefaultHandling;
    if (const auto failure = challenge.evaluate()) {
        host.didFailServerTrust(*failure);
        return ChallengeAnswer::cancel;
    }
    return ChallengeAnswer::useCredential;
}

} // namespace lumora

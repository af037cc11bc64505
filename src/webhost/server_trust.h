#pragma once

#include "platform/result.h"
#include "platform/web_view.h"

#include <functional>
#include <optional>

namespace lumora {

/// For a web engine that asks its host before it trusts a server: what it asks about.
struct AuthenticationChallenge {
    bool isOfServerTrust = false; ///< not of a client's certificate, a name and password, or another method
    bool hasServerTrust = false;  ///< the server's certificates are there to be evaluated

    /// The system's own evaluation, of certificates and host name; the error, if it fails.
    std::function<std::optional<platform::Error>()> evaluate;
};

/// In the order of such an engine's own dispositions.
enum class ChallengeAnswer { useCredential, performDefaultHandling, cancel };

/// A server is trusted if the system trusts it: nothing is pinned and no exception is made. A failed evaluation is told
/// to the host. Anything else is the system's to handle.
[[nodiscard]] ChallengeAnswer answerTo(const AuthenticationChallenge& challenge,
                                       platform::WebViewDelegate& host);

} // namespace lumora

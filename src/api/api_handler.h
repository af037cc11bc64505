#pragma once

#include <functional>
#include <optional>
#include <string>

namespace lumora {

/// The client of the web server's update endpoints. It has no state: answers go into SessionDetails.
class ApiHandler {
  public:
    /// True when an HTTP 200 answer was received and applied. Runs on the HTTP session's own thread, except after a
    /// failure to build the request, when it runs before the check returns.
    using Completion = std::function<void(bool)>;

    [[nodiscard]] static ApiHandler& getInstance();
    static void resetForTesting();

    /// Asks whether the agent must be installed or updated, and from where. Returns at once.
    void checkOvraTesselUpdate(Completion completion);

    /// Asks whether this application has a newer version; a positive answer starts staging it. Returns at once.
    void checkLumoraUpdate(Completion completion);

    /// Takes a data centre's key and web server into the session record.
    void findServerNameUsingDC(const std::optional<std::string>& dcName);

    /// Derives the data centre from the shape of a session key (9 characters: "com"; 10: the fourth one tells).
    void findDcNameUsingKey(const std::string& key);
};

} // namespace lumora

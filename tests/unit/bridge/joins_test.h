#pragma once

#include "bridge/bridge_test.h"
#include "config/session_details.h"

#include <string>

namespace lumora {

/// A page of one server, while the preferences name another.
class Joins : public BridgeTest {
  protected:
    Joins() {
        session.setWebServerName("shown.example");
        session.setDcName("shown");
        session.setPlistDcName("eu");
        session.setPlistWebServerName("configured.example");
    }

    static std::string joinBody(const std::string& key, const std::string& more = "") {
        return R"({"sessionKey":)" + key + R"(,"email":"casey@example.com")" + more + "}";
    }

    static std::string sharedDetailsLine(const std::string& key) {
        return "handleMessageFromWebView(message:) : Details Shared for Joining a session - email: "
               "casey@example.com, sessionid: " +
               key;
    }

    void storeProxy() {
        preferences.user.emplace("host", "proxy");
        preferences.user.emplace("port", std::int64_t{8080});
        preferences.user.emplace("authRequired", false);
        preferences.user.emplace("userName", "");
        preferences.user.emplace("password", "");
    }

    [[nodiscard]] bool updateCheckStarted() const {
        return http.tasks.size() == 1 && http.tasks[0].request.url &&
               http.tasks[0].request.url->find("/api/v2/agent/check_update?") != std::string::npos;
    }

    SessionDetails& session = SessionDetails::getInstance();
};

} // namespace lumora

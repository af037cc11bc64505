#pragma once

#include "config/session_details.h"
#include "fakes/core_test.h"
#include "webhost/view_controller.h"

#include <memory>
#include <string>
#include <vector>

namespace lumora {

/// A window's content over a fake view: configured for "server.example" and "join", both local pages in the bundle.
class WebHostTest : public CoreTest {
  protected:
    using Lines = std::vector<std::string>;

    static constexpr const char* kLoad = "load https://server.example/join";
    static constexpr const char* kOffline = "file /App/Resources/NoInternetPage.html reading /App/Resources";
    static constexpr const char* kMisconfigured =
        "file /App/Resources/MisconfigurationPage.html reading /App/Resources";

    WebHostTest() {
        configure("server.example", "join");
        bundles.resources = {{"NoInternetPage.html", "/App/Resources/NoInternetPage.html"},
                             {"MisconfigurationPage.html", "/App/Resources/MisconfigurationPage.html"}};
    }

    void configure(std::optional<std::string> server, std::optional<std::string> path,
                   std::optional<std::string> token = std::nullopt) {
        session.setWebServerName(std::move(server));
        session.setPathForLumora(std::move(path));
        session.setLumoraToken(std::move(token));
    }

    /// The view stands and its first page is asked for; what that did is out of sight.
    void showView() {
        controller->viewDidLoad();
        webViewHost.journal.clear();
        webViewHost.requests.clear();
        forgetLines();
    }

    /// The addresses that the monitor's next probe asks for; empty when nothing is watched.
    Lines probedAddresses() {
        if (!paths.made.empty())
            paths.update(platform::PathStatus::satisfied);
        loop.runMain();
        http.tasks.clear();
        loop.fireTimers();
        Lines addresses;
        for (const auto& task : http.tasks)
            addresses.push_back(task.request.url.value_or("(null)"));
        http.tasks.clear();
        return addresses;
    }

    static platform::Error failure(std::optional<std::string> url = std::nullopt) {
        return {"NSURLErrorDomain", -1004, "Could not connect to the server.", std::move(url)};
    }

    SessionDetails& session = SessionDetails::getInstance();
    std::unique_ptr<ViewController> controller = std::make_unique<ViewController>();
};

} // namespace lumora

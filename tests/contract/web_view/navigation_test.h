#pragma once

#include "view_test.h"

namespace lumora::contract {

/// The policy guards reloads and navigations of type "other" of the main frame: only "localhost" is theirs. The server is
/// also reached as 127.0.0.1, which is foreign.
class NavigationTest : public ViewTest {
  protected:
    void SetUp() override {
        delegate.policy = [this](const NavigationAction& action) {
            const bool guarded = action.type == NavigationType::reload ||
                                 (action.type == NavigationType::other && action.sourceFrameIsMainFrame);
            if (!guarded && action.url.value_or("").starts_with("ovrajoin:")) {
                ++deepLinks;
                return NavigationPolicy::cancel;
            }
            return !guarded || action.url.value_or("").find("localhost") != std::string::npos
                       ? NavigationPolicy::allow
                       : NavigationPolicy::cancel;
        };
        server.page("/page", "<title>page</title>");
        server.page("/own", "<title>own</title>");
        server.page("/foreign", "<title>foreign</title>");
        server.redirect("/away", server.url("/foreign", kForeign));
        show(server.url("/page"));
        delegate.asked.clear();
    }

    static constexpr const char* kForeign = "127.0.0.1";
    int deepLinks = 0; ///< handed on by the policy

    [[nodiscard]] std::string foreign() const { return server.url("/foreign", kForeign); }

    void expectThePageStays() {
        runFor(600ms);
        EXPECT_EQ(title(), "page");
        EXPECT_EQ(server.requests("/foreign"), 0);
        EXPECT_EQ(delegate.reportedFailures(), 0U);
    }

    void click(const std::string& href, const std::string& target = "") {
        run("var a = document.createElement('a'); a.href = '" + href + "'; a.target = '" + target +
            "'; document.body.appendChild(a); a.click()");
    }

    void frame(const std::string& source) {
        run("document.body.innerHTML = '<iframe name=\"inner\" src=\"" + source + "\"></iframe>'");
    }

    [[nodiscard]] bool waitForRequest(const std::string& path, int count = 1) {
        return runUntil([&] { return server.requests(path) == count; });
    }
};

} // namespace lumora::contract

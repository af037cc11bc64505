#include "bridge/bridge_test.h"

namespace lumora {
namespace {

class ReportAbuseLink : public BridgeTest {};

TEST_F(ReportAbuseLink, opensInTheDefaultBrowser) {
    post("sendJoinReportAbuseLinkToNative", "https://server.example/abuse?a=1#top");

    EXPECT_EQ(workspace.opened, Lines{"https://server.example/abuse?a=1#top"});
    EXPECT_EQ(streams.printed(),
              Lines{"handleMessageFromWebView(message:) Opened Report Abuse Page in the Default browser"});
    EXPECT_TRUE(page.journal.empty());
}

TEST_F(ReportAbuseLink, thatCannotBeOpenedIsNotLogged) {
    workspace.openSucceeds = false;

    post("sendJoinReportAbuseLinkToNative", "https://server.example/abuse");

    EXPECT_EQ(workspace.opened.size(), 1U);
    EXPECT_TRUE(streams.printed().empty());
}

TEST_F(ReportAbuseLink, thatIsNoAddressDoesNothing) {
    for (const char* text : {"", "not a link", "https://server.example/a b", "http://[", "%zz"})
        post("sendJoinReportAbuseLinkToNative", text);

    EXPECT_TRUE(workspace.opened.empty());
    EXPECT_TRUE(streams.printed().empty());
}

} // namespace
} // namespace lumora

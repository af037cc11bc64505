#include "view_test.h"

namespace lumora::contract {

class RequestsOfAPage : public ViewTest {
  protected:
    void SetUp() override {
        server.page("/page", "<title>page</title>");
        show(server.url("/page"));
    }
};

TEST_F(RequestsOfAPage, anAlertDoesNotHoldUpThePage) {
    run("alert('x'); document.title = 'after'");
    EXPECT_TRUE(waitForTitle("after"));
}

TEST_F(RequestsOfAPage, aConfirmIsAnsweredNo) { EXPECT_EQ(valueOf("confirm('sure?')"), "false"); }

TEST_F(RequestsOfAPage, aPromptIsAnsweredWithNothing) {
    EXPECT_EQ(valueOf("prompt('name?', 'default')"), "null");
}

TEST_F(RequestsOfAPage, aPageCannotHoldUpItsLeaving) {
    server.page("/next", "<title>next</title>");
    run("addEventListener('beforeunload', event => { event.preventDefault(); event.returnValue = 'stay' })");
    show(server.url("/next"));
}

TEST_F(RequestsOfAPage, permissionsAreDenied) {
    run("const asked = window.Notification ? Notification.requestPermission() : Promise.resolve('do not exist');"
        "asked.then(answer => document.title = 'notifications ' + answer)");
    EXPECT_TRUE(runUntil([this] { return title().starts_with("notifications "); }));
    EXPECT_NE(title(), "notifications granted");
}

TEST_F(RequestsOfAPage, nothingIsDownloaded) {
    run("var a = document.createElement('a'); a.href = '/page'; a.download = 'page.html'; "
        "document.body.appendChild(a); a.click(); document.title = 'clicked'");
    EXPECT_TRUE(waitForTitle("clicked"));
    runFor(300ms);
    EXPECT_EQ(delegate.reportedFailures(), 0U);
}

} // namespace lumora::contract

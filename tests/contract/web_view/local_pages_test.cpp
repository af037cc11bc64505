#include "silent_listener.h"
#include "support/temporary_folder.h"
#include "view_test.h"

#include <filesystem>

namespace lumora::contract {

class LocalPages : public ViewTest {
  protected:
    LocalPages() {
        std::filesystem::create_directories(folder_);
        write("Offline.html", "<title>offline</title><script src='sibling.js'></script>");
        write("sibling.js", "document.documentElement.dataset.sibling = 'loaded'");
    }

    void write(const std::string& name, const std::string& text) { writeFile(folder_ / name, text); }

    [[nodiscard]] std::string page() const { return (folder_ / "Offline.html").string(); }

    void showLocal() {
        view.loadFile(page(), folder_.string());
        ASSERT_TRUE(waitForTitle("offline"));
        ASSERT_TRUE(waitUntilLoaded());
    }

    const TemporaryFolder around_;
    const std::filesystem::path folder_ = around_.path() / "local pages"; // an address escapes the space
};

TEST_F(LocalPages, aLocalPageMayLoadItsSiblings) {
    showLocal();
    EXPECT_EQ(valueOf("document.documentElement.dataset.sibling"), "loaded");
}

TEST_F(LocalPages, aLocalPageThatStandsIsNotLoadedAgain) {
    showLocal();
    run("window.kept = 'kept'");
    for (int i = 0; i < 3; ++i)
        view.loadFile(page(), folder_.string());
    runFor(500ms);
    EXPECT_EQ(valueOf("window.kept"), "kept");
    EXPECT_EQ(delegate.reportedFailures(), 0U);
}

TEST_F(LocalPages, aLocalPageThatIsOnItsWayIsNotLoadedTwice) {
    for (int i = 0; i < 3; ++i)
        view.loadFile(page(), folder_.string());
    ASSERT_TRUE(waitForTitle("offline"));
    run("window.kept = 'kept'");
    runFor(500ms);
    EXPECT_EQ(valueOf("window.kept"), "kept");
}

TEST_F(LocalPages, aLocalPageRightAfterALoadTakesItsPlace) {
    server.page("/page", "<title>page</title>");
    server.page("/next", "<title>next</title>");
    show(server.url("/page"));
    load(server.url("/next"));
    view.loadFile(page(), folder_.string());
    ASSERT_TRUE(waitForTitle("offline"));
    runFor(500ms);
    EXPECT_EQ(title(), "offline");
    EXPECT_EQ(server.requests("/next"), 0);
    EXPECT_EQ(delegate.reportedFailures(), 0U);
}

TEST_F(LocalPages, aLoadRightBeforeTheLocalPageThatStandsNeverComes) {
    server.page("/next", "<title>next</title>");
    showLocal();
    run("window.kept = 'kept'");
    load(server.url("/next"));
    view.loadFile(page(), folder_.string());
    runFor(500ms);
    EXPECT_EQ(valueOf("window.kept"), "kept");
    EXPECT_EQ(server.requests("/next"), 0);
    EXPECT_EQ(delegate.reportedFailures(), 0U);
}

TEST_F(LocalPages, aLoadUnderWayIsStoppedForTheLocalPageThatStands) {
    server.hang("/hang");
    showLocal();
    run("window.kept = 'kept'");
    load(server.url("/hang"), kPatience);
    ASSERT_TRUE(runUntil([this] { return server.requests("/hang") == 1; }));
    view.loadFile(page(), folder_.string());
    outwaitPatience();
    EXPECT_EQ(valueOf("window.kept"), "kept");
    EXPECT_EQ(delegate.reportedFailures(), 0U);
}

TEST_F(LocalPages, theViewTellsTheAddressOfThePageThatItIsAskedForAndThenOfTheOneThatStands) {
    EXPECT_EQ(view.address(), "");
    server.page("/page", "<title>page</title>");
    server.page("/next", "<title>next</title>");
    server.hang("/hang");
    load(server.url("/page"));
    EXPECT_EQ(view.address(), server.url("/page"));
    ASSERT_TRUE(waitForTitle("page"));
    run("location.href = '/next'"); // nobody's load but the page's
    ASSERT_TRUE(waitForTitle("next"));
    EXPECT_EQ(view.address(), server.url("/next"));
    load(server.url("/hang"));
    view.loadFile(page(), folder_.string());
    EXPECT_TRUE(view.address().ends_with("/Offline.html")) << view.address();
    ASSERT_TRUE(waitForTitle("offline"));
    load(server.url("/hang"), 1s);
    EXPECT_EQ(view.address(), server.url("/hang"));
    ASSERT_TRUE(runUntil([this] { return delegate.reportedFailures() > 0; }));
    EXPECT_TRUE(view.address().ends_with("/Offline.html")) << view.address();
}

TEST_F(LocalPages, theRemotePageComesBackAfterALocalOne) {
    server.page("/page", "<title>page</title>");
    showLocal();
    show(server.url("/page"));
    showLocal();
    EXPECT_EQ(delegate.reportedFailures(), 0U);
}

TEST_F(LocalPages, aFailureAnsweredByAReloadAndTheLocalPageDoesNotGoRound) {
    const std::string refused = "http://localhost:" + std::to_string(refusingPort()) + "/join";
    delegate.onFailure = [&] {
        load(refused);
        view.loadFile(page(), folder_.string());
    };
    load(refused);
    ASSERT_TRUE(waitForTitle("offline"));
    runFor(700ms);
    EXPECT_EQ(delegate.reportedFailures(), 1U);

    delegate.provisionalFailures.clear();
    load(refused); // as when the connection seems to be back
    ASSERT_TRUE(runUntil([this] { return delegate.reportedFailures() == 1; }));
    runFor(700ms);
    EXPECT_EQ(delegate.reportedFailures(), 1U);
    EXPECT_EQ(title(), "offline");
}

TEST_F(LocalPages, aMissingLocalPageFailsUnderItsAddress) {
    view.loadFile((folder_ / "Missing.html").string(), folder_.string());
    ASSERT_TRUE(runUntil([this] { return delegate.reportedFailures() > 0; }));
    ASSERT_EQ(delegate.provisionalFailures.size(), 1U);
    const std::string address = delegate.provisionalFailures.front().failingUrl.value_or("");
    EXPECT_TRUE(address.starts_with("file:")) << address;
    EXPECT_TRUE(address.ends_with("/Missing.html")) << address;
}

TEST_F(LocalPages, aLocalPageWhoseProcessDiesMayBeShownAgainAtOnce) {
    delegate.onLostPage = [this] { view.loadFile(page(), folder_.string()); };
    showLocal();
    run("document.title = 'before'");
    ASSERT_TRUE(waitForTitle("before"));
    if (!killProcess())
        GTEST_SKIP() << "the engine does not tell which process shows the page";
    ASSERT_TRUE(waitForTitle("offline"));
    ASSERT_EQ(delegate.lostPages.size(), 1U);
    EXPECT_TRUE(delegate.lostPages.front().ends_with("/Offline.html")) << delegate.lostPages.front();
    EXPECT_EQ(delegate.reportedFailures(), 0U);
}

TEST_F(LocalPages, aLocalPageThatThePolicyRefusesIsNotShown) {
    showLocal();
    write("Other.html", "<title>other</title>");
    delegate.policy = [](const NavigationAction&) { return NavigationPolicy::cancel; };
    view.loadFile((folder_ / "Other.html").string(), folder_.string());
    runFor(400ms);
    EXPECT_EQ(title(), "offline");
}

} // namespace lumora::contract

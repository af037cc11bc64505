#include "fakes/fake_main_loop.h"
#include "platform/linux/gui/webkit_view.h"
#include "support/temporary_folder.h"
#include "view_test.h"

#include <sys/stat.h>

#include <filesystem>

namespace lumora::contract {

/// What a load's time-out begins and ends with. It runs out when the test says so, however slow the machine.
class LoadWatches : public ::testing::Test {
  protected:
    LoadWatches() {
        view.setDelegate(&delegate);
        server.page("/page", "<title>page</title>");
        std::filesystem::create_directories(folder);
        writeFile(folder / "Offline.html", "<title>offline</title>");
    }

    void load(const std::string& url) { view.load({url}); }
    void loadFile(const std::string& name) { view.loadFile((folder / name).string(), folder.string()); }

    [[nodiscard]] bool waitForTitle(const std::string& title) {
        return runUntil([&] {
            return platform::linux_backend::textOf(webkit_web_view_get_title(view.widget())) == title;
        });
    }

    [[nodiscard]] bool isWatched() const { return loop.validTimers() > 0; }

    RecordingDelegate delegate;
    fakes::FakeMainLoop loop;
    platform::linux_backend::WebKitView view{loop, "ovrajoin"};
    PageServer server;
    const TemporaryFolder around;
    const std::filesystem::path folder = around.path() / "50% für Lumora"; // an address escapes most of it
};

TEST_F(LoadWatches, aLocalPageThatNeverComesFailsAndMayBeAskedForAgain) {
    const std::string late = (folder / "Late.html").string();
    ASSERT_EQ(::mkfifo(late.c_str(), 0600), 0);
    loadFile("Offline.html");
    ASSERT_TRUE(waitForTitle("offline"));
    ASSERT_TRUE(runUntil([this] { return !isWatched(); }));
    loadFile("Late.html");
    EXPECT_TRUE(isWatched());
    loop.fireTimers();
    ASSERT_EQ(delegate.provisionalFailures.size(), 1U);
    EXPECT_EQ(delegate.provisionalFailures.front().code, -1001);
    EXPECT_TRUE(delegate.provisionalFailures.front().failingUrl.value_or("").ends_with("/Late.html"));
    std::filesystem::remove(late);
    writeFile(late, "<title>late</title>");
    loadFile("Late.html");
    EXPECT_TRUE(waitForTitle("late"));
    EXPECT_EQ(delegate.reportedFailures(), 1U);
}

TEST_F(LoadWatches, aPageThatARedirectLeadsToInAnotherProcessIsWatchedToItsEndOnly) {
    server.redirect("/start", server.url("/page", "127.0.0.1"));
    loadFile("Offline.html");
    ASSERT_TRUE(waitForTitle("offline"));
    load(server.url("/start"));
    EXPECT_TRUE(isWatched());
    ASSERT_TRUE(waitForTitle("page"));
    EXPECT_TRUE(runUntil([this] { return !isWatched(); }));
}

} // namespace lumora::contract

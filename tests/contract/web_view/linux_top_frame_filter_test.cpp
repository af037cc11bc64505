#include "platform/linux/gui/top_frame_filter.h"
#include "support/temporary_folder.h"
#include "view_test.h"

#include <filesystem>

namespace lumora::contract {

namespace {

using platform::linux_backend::CharPointer;
using platform::linux_backend::ObjectRef;
using platform::linux_backend::TopFrameFilter;

/// The engine's compiler of filters finds a file where its folder should be.
class NoFilterFolder {
  public:
    NoFilterFolder() {
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_.parent_path());
        writeFile(path_, "in the way");
    }
    ~NoFilterFolder() { std::filesystem::remove(path_); }
    NoFilterFolder(const NoFilterFolder&) = delete;
    NoFilterFolder& operator=(const NoFilterFolder&) = delete;

  private:
    std::filesystem::path path_ =
        CharPointer(g_build_filename(g_get_user_cache_dir(), g_get_prgname(), "content-filters", nullptr))
            .get();
};

} // namespace

/// Nothing stops the top frame before it asks the server: its answers are refused.
class WithoutTheFilter : public NoFilterFolder, public ViewTest {
  protected:
    void SetUp() override {
        delegate.policy = [this](const NavigationAction& action) {
            const std::string url = action.url.value_or("");
            if (!action.sourceFrameIsMainFrame && url.starts_with("ovrajoin:")) {
                ++deepLinks;
                return NavigationPolicy::cancel;
            }
            return url.find("localhost") != std::string::npos ? NavigationPolicy::allow
                                                              : NavigationPolicy::cancel;
        };
        server.page("/page", "<title>page</title>");
        server.page("/foreign", "<title>foreign</title><script>parent.postMessage('here', '*')</script>");
        show(server.url("/page"));
    }

    int deepLinks = 0; ///< handed on by the policy

    void frame(const std::string& source) {
        run("document.body.innerHTML = '<iframe src=\"" + source + "\"></iframe>'");
    }

    void expectThePageStays() {
        runFor(600ms);
        EXPECT_EQ(title(), "page");
        EXPECT_EQ(delegate.reportedFailures(), 0U);
    }
};

TEST_F(WithoutTheFilter, framesMayStillGoAnywhere) {
    run("onmessage = event => document.title = event.data");
    frame(server.url("/foreign", "127.0.0.1"));
    EXPECT_TRUE(waitForTitle("here"));
    EXPECT_EQ(delegate.reportedFailures(), 0U);
}

TEST_F(WithoutTheFilter, thePageStaysWhereItIs) {
    run("location.href = '" + server.url("/foreign", "127.0.0.1") + "'");
    ASSERT_TRUE(runUntil([this] { return server.requests("/foreign") == 1; }));
    expectThePageStays();
}

TEST_F(WithoutTheFilter, aDeepLinkInAFrameIsHandedOn) {
    frame("ovrajoin://session/1");
    ASSERT_TRUE(runUntil([this] { return deepLinks > 0; }));
    expectThePageStays();
    EXPECT_EQ(deepLinks, 1);
}

TEST_F(WithoutTheFilter, aDeepLinkOfTheWholePageIsOnlyCancelled) {
    run("location.href = 'ovrajoin://session/2'");
    expectThePageStays();
    EXPECT_EQ(deepLinks, 0);
}

class TopFrameFilters : public ::testing::Test {
  protected:
    /// Whether the filter is ready when it says that it is settled.
    [[nodiscard]] bool isReadyWhenSettled(const std::string& folder) {
        const auto manager = ObjectRef<WebKitUserContentManager>::adopt(webkit_user_content_manager_new());
        int told = 0;
        const TopFrameFilter filter(manager.get(), folder, [&told] { ++told; });
        EXPECT_FALSE(filter.isSettled());
        EXPECT_TRUE(runUntil([&told] { return told > 0; }));
        EXPECT_TRUE(filter.isSettled());
        return filter.ready();
    }

    const TemporaryFolder folder_;
};

TEST_F(TopFrameFilters, areReadyWhenTheyAreCompiled) {
    EXPECT_TRUE(isReadyWhenSettled(folder_.path() / "filters"));
}

TEST_F(TopFrameFilters, areSettledWhenTheyCannotBeCompiled) {
    writeFile(folder_.path() / "filters", "in the way");
    EXPECT_FALSE(isReadyWhenSettled(folder_.path() / "filters"));
}

} // namespace lumora::contract

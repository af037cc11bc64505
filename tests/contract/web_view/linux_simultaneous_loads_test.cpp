#include "platform/linux/gui/glib_main_loop.h"
#include "platform/linux/gui/webkit_view.h"
#include "support/temporary_folder.h"
#include "view_test.h"

#include <thread>

namespace lumora::contract {

namespace {

namespace backend = platform::linux_backend;

/// Sees the engine's own news of a view.
class EngineNews {
  public:
    explicit EngineNews(WebKitWebView* view) : signals_(view) {
        signals_.connect("decide-policy", &EngineNews::asked, this);
        signals_.connect("load-changed", &EngineNews::changed, this);
    }

    bool hasAnswer = false; ///< of a server, to what was asked for last
    int pages = 0;          ///< that have begun to stand

  private:
    static gboolean asked(WebKitWebView*, WebKitPolicyDecision*, WebKitPolicyDecisionType type,
                          gpointer self) {
        if (type == WEBKIT_POLICY_DECISION_TYPE_RESPONSE)
            static_cast<EngineNews*>(self)->hasAnswer = true;
        return FALSE;
    }

    static void changed(WebKitWebView*, WebKitLoadEvent event, gpointer self) {
        if (event == WEBKIT_LOAD_COMMITTED)
            ++static_cast<EngineNews*>(self)->pages;
    }

    backend::SignalConnections signals_;
};

} // namespace

/// A load that the host asks for in the moment in which the page of the one before begins to stand.
class SimultaneousLoads : public ::testing::Test {
  protected:
    SimultaneousLoads() {
        view.setDelegate(&delegate);
        for (const std::string name : {"first", "second", "third"})
            server.page("/" + name, "<title>" + name + "</title>");
        writeFile(folder.path() / "Offline.html", "<title>offline</title>");
    }

    void load(const std::string& path) { view.load({server.url(path)}); }
    void loadFile() { view.loadFile((folder.path() / "Offline.html").string(), folder.path().string()); }

    [[nodiscard]] bool waitForTitle(const std::string& title) {
        return runUntil([&] { return backend::textOf(webkit_web_view_get_title(view.widget())) == title; });
    }

    /// The page comes, and while the news of it is on its way the host does something else. On a machine too busy to
    /// have the page come within a pause it gives way instead: then once more, with a longer one.
    [[nodiscard]] bool comesWhile(const std::function<void()>& before, const std::string& path,
                                  const std::function<void()>& something) {
        for (auto pause = 250ms; pause < 10s; pause *= 2) {
            before();
            news.hasAnswer = false;
            load(path);
            if (!runUntil([this] { return news.hasAnswer; }))
                return false;
            std::this_thread::sleep_for(pause);
            const int pages = news.pages;
            something();
            if (!runUntil([&] { return news.pages > pages; }))
                return false;
            WebKitWebResource* page = webkit_web_view_get_main_resource(view.widget());
            if (backend::textOf(webkit_web_resource_get_uri(page)).ends_with(path))
                return true;
        }
        return false;
    }

    RecordingDelegate delegate;
    backend::GlibMainLoop loop;
    backend::WebKitView view{loop, "ovrajoin"};
    EngineNews news{view.widget()};
    PageServer server;
    const TemporaryFolder folder;
};

TEST_F(SimultaneousLoads, aLocalPageThatOneWasAboutToReplaceIsNotTakenForTheOneThatStands) {
    const auto showFirst = [this] {
        load("/first");
        ASSERT_TRUE(waitForTitle("first"));
    };
    ASSERT_TRUE(comesWhile(showFirst, "/second", [this] { loadFile(); }));
    load("/third");
    loadFile();
    EXPECT_TRUE(waitForTitle("offline"));
    EXPECT_EQ(delegate.reportedFailures(), 0U);
}

TEST_F(SimultaneousLoads, theSecondIsNotLostWhereTheFirstChangesTheProcess) {
    const auto showLocal = [this] {
        loadFile();
        ASSERT_TRUE(waitForTitle("offline"));
    };
    ASSERT_TRUE(comesWhile(showLocal, "/second", [this] { load("/third"); }));
    EXPECT_TRUE(waitForTitle("third"));
    EXPECT_EQ(view.address(), server.url("/third"));
    EXPECT_EQ(delegate.reportedFailures(), 0U);
}

} // namespace lumora::contract

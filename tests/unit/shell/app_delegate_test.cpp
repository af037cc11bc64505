#include "config/session_details.h"
#include "fakes/core_test.h"
#include "shell/app_delegate.h"
#include "support/notification_center.h"

#include <algorithm>
#include <csignal>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lumora {
namespace {

/// Passes everything on and notes how far the launch was at each write.
class WatchedPreferences final : public platform::Preferences {
  public:
    WatchedPreferences(fakes::FakePreferences& real, std::function<std::string()> progress)
        : real_(real), progress_(std::move(progress)) {}

    std::vector<std::string> notes;

    std::optional<platform::PropertyListValue> objectForKey(const std::string& key) override {
        return real_.objectForKey(key);
    }
    void setObject(const std::string& key, const platform::PropertyListValue& value) override {
        notes.push_back("set " + key + " " + progress_());
        real_.setObject(key, value);
    }
    void synchronize() override {
        notes.push_back("synchronize " + progress_());
        real_.synchronize();
    }
    void setValue(const std::string& key, const platform::PropertyListValue& value, const std::string& domain,
                  platform::PreferenceLevel level) override {
        real_.setValue(key, value, domain, level);
    }
    bool synchronize(const std::string& domain, platform::PreferenceLevel level) override {
        return real_.synchronize(domain, level);
    }

  private:
    fakes::FakePreferences& real_;
    std::function<std::string()> progress_;
};

/// Passes everything on, and tells of each write to standard error before it.
class WatchedStreams final : public platform::StandardStreams {
  public:
    WatchedStreams(platform::StandardStreams& behind, std::function<void(std::string_view)> onWrite)
        : behind_(behind), onWrite_(std::move(onWrite)) {}

    void writeError(std::string_view text) override {
        onWrite_(text);
        behind_.writeError(text);
    }
    void writeOutput(std::string_view text) override { behind_.writeOutput(text); }
    void reopenAll(const std::string& path) override { behind_.reopenAll(path); }
    void withWritersHeld(const std::function<void()>& section) override { behind_.withWritersHeld(section); }

  private:
    platform::StandardStreams& behind_;
    std::function<void(std::string_view)> onWrite_;
};

class Launch : public CoreTest {
  protected:
    using Lines = std::vector<std::string>;

    /// The position of the first logged line that contains the text; the number of lines when none does.
    [[nodiscard]] std::size_t lineWith(const std::string& text) const {
        const auto lines = streams.logged();
        const auto found = std::ranges::find_if(
            lines, [&](const auto& line) { return line.find(text) != std::string::npos; });
        return static_cast<std::size_t>(found - lines.begin());
    }

    [[nodiscard]] bool logged(const std::string& text) const {
        return lineWith(text) < streams.logged().size();
    }

    AppDelegate delegate;
};

TEST_F(Launch, beginsWithNothingButADelegate) {
    EXPECT_TRUE(streams.logged().empty());
    EXPECT_TRUE(files.journal.empty());
    EXPECT_TRUE(loop.timers.empty());
}

TEST_F(Launch, makesTheFoldersBeforeItReadsTheArguments) {
    delegate.awakeFromNib();

    EXPECT_TRUE(files.folderExists("/Users/casey/Library/Application Support/OvraLumoraNativeFolder"));
    EXPECT_TRUE(logged("Ovra Lumora App Started"));
    EXPECT_TRUE(logged("App Invoked By User"));
    EXPECT_LT(lineWith("Ovra Lumora Native Folder Created"), lineWith("App Invoked By User"));
    EXPECT_EQ(SessionDetails::getInstance().defaultOvraDirectoryManager(), &files);
}

TEST_F(Launch, knowsItsArgumentsBeforeAnyLaunchNotification) {
    preferences.arguments.emplace("DC", "eu");
    preferences.arguments.emplace("pathForLumora", "join");

    delegate.awakeFromNib();

    EXPECT_EQ(SessionDetails::getInstance().webServerName(), "eu.ovratessel.example");
    EXPECT_EQ(SessionDetails::getInstance().pathForLumora(), "join");
}

TEST_F(Launch, namesTheFileManagerOnceTheArgumentsAreRead) {
    auto& session = SessionDetails::getInstance();
    WatchedStreams watched(streams, [&](std::string_view text) {
        if (text.find("Arguments Read From Preferences") != std::string_view::npos)
            session.setDefaultOvraDirectoryManager(nullptr);
    });
    platform::ports().standardStreams = &watched;

    delegate.awakeFromNib();

    EXPECT_TRUE(logged("Arguments Read From Preferences"));
    EXPECT_EQ(session.defaultOvraDirectoryManager(), &files);
}

TEST_F(Launch, recordsPathAndThenVersion) {
    files.putFolder(bundles.path);
    bundles.info.emplace(std::pair(bundles.path, std::string("CFBundleShortVersionString")), "7.1");

    delegate.applicationWillFinishLaunching();

    EXPECT_EQ(SessionDetails::getInstance().lumoraAppPath(), bundles.path);
    EXPECT_EQ(SessionDetails::getInstance().localOvraLumoraAppVersion(), "7.1");
    EXPECT_LT(lineWith("Ovra Lumora App path"), lineWith("local Ovra Tessel Lumora App version"));
}

TEST_F(Launch, hasItsSlowWorkDoneInTheBackground) {
    delegate.applicationDidFinishLaunching();

    EXPECT_EQ(loop.backgroundWork.size(), 1U);
    EXPECT_TRUE(streams.logged().empty());
    EXPECT_TRUE(preferences.journal.empty());
    EXPECT_TRUE(http.tasks.empty());
}

TEST_F(Launch, looksForTheAgentThenSetsTheCacheThenAsksForAnUpdate) {
    WatchedPreferences watched(preferences, [this] {
        const auto version = SessionDetails::getInstance().localOvraAppVersion().value_or("unknown");
        return "agent " + version + " requests " + std::to_string(http.tasks.size());
    });
    platform::ports().preferences = &watched;

    delegate.applicationDidFinishLaunching();
    loop.runBackground();

    EXPECT_EQ(watched.notes, (Lines{"set WebKitOfflineWebApplicationCacheEnabled agent 0 requests 0",
                                    "synchronize agent 0 requests 0"}));
    ASSERT_EQ(http.tasks.size(), 1U);
    EXPECT_NE(http.tasks[0].request.url.value_or("").find("/api/v1/customer_plugin/check_update?"),
              std::string::npos);
}

TEST_F(Launch, switchesTheCacheOnWhateverWasStored) {
    preferences.user.emplace("WebKitOfflineWebApplicationCacheEnabled", false);

    delegate.applicationDidFinishLaunching();
    loop.runBackground();

    EXPECT_EQ(preferences.user.at("WebKitOfflineWebApplicationCacheEnabled"),
              platform::PropertyListValue(true));
}

TEST_F(Launch, printsOneLineWhenTheUpdateCheckIsGood) {
    delegate.applicationDidFinishLaunching();
    loop.runBackground();

    http.finishData(0, 200, "{}");

    EXPECT_EQ(streams.printed(), Lines{"applicationDidFinishLaunching(_:) Update Available for Lumora"});
    EXPECT_EQ(http.tasks.size(), 1U);
    EXPECT_EQ(application.terminations, 0);
}

TEST_F(Launch, printsNothingWhenTheUpdateCheckFails) {
    delegate.applicationDidFinishLaunching();
    loop.runBackground();

    http.finishData(0, 503, "");

    EXPECT_TRUE(streams.printed().empty());
}

class Termination : public Launch {
  protected:
    static constexpr const char* kBanner = "Ovra Lumora App terminated";

    Termination() { delegate.applicationWillFinishLaunching(); }

    /// How often the staged-update step has run.
    [[nodiscard]] std::ptrdiff_t updateSteps() const {
        return std::ranges::count_if(
            streams.logged(), [](const auto& line) { return line.find(kBanner) != std::string::npos; });
    }
};

TEST_F(Termination, appliesTheStagedUpdateBeforeTheApplicationEnds) {
    std::ptrdiff_t stepsAtEnd = 0;
    application.onTerminate = [&] { stepsAtEnd = updateSteps(); };

    EXPECT_TRUE(delegate.applicationShouldTerminateAfterLastWindowClosed());

    EXPECT_EQ(stepsAtEnd, 1);
    EXPECT_EQ(application.terminations, 1);
}

TEST_F(Termination, postsItsNotificationOnceForNobodyInParticular) {
    std::vector<const void*> senders;
    NotificationCenter::defaultCenter().addObserver(this, "OvraLumoraTerminate",
                                                    [&](const void* sender) { senders.push_back(sender); });

    EXPECT_TRUE(delegate.applicationShouldTerminateAfterLastWindowClosed());

    EXPECT_EQ(senders, std::vector<const void*>{nullptr});
    NotificationCenter::defaultCenter().removeObserver(this);
}

TEST_F(Termination, comesAfterTheLastWindowWhateverIsRaisedOnTheWay) {
    NotificationCenter::defaultCenter().addObserver(
        this, "OvraLumoraTerminate", [](const void*) { throw std::runtime_error("raised by a test"); });

    EXPECT_TRUE(delegate.applicationShouldTerminateAfterLastWindowClosed());

    NotificationCenter::defaultCenter().removeObserver(this);
}

TEST_F(Termination, followsANotificationFromAnyone) {
    NotificationCenter::defaultCenter().post("OvraLumoraTerminate", this);

    EXPECT_EQ(updateSteps(), 1);
    EXPECT_EQ(application.terminations, 1);
}

TEST_F(Termination, happensOnce) {
    EXPECT_TRUE(delegate.applicationShouldTerminateAfterLastWindowClosed());
    EXPECT_TRUE(delegate.applicationShouldTerminateAfterLastWindowClosed());
    NotificationCenter::defaultCenter().post("OvraLumoraTerminate", nullptr);

    EXPECT_EQ(updateSteps(), 1);
    EXPECT_EQ(application.terminations, 1);
}

TEST_F(Termination, isNotEnteredAgainFromItsOwnEnd) {
    application.onTerminate = [] {
        NotificationCenter::defaultCenter().post("OvraLumoraTerminate", nullptr);
    };

    delegate.terminateApp();

    EXPECT_EQ(application.terminations, 1);
}

TEST_F(Termination, isNotEnteredAgainWhileItAppliesTheUpdate) {
    bool posted = false;
    WatchedStreams watched(streams, [&](std::string_view) { // the staged-update step always writes
        if (!std::exchange(posted, true))
            NotificationCenter::defaultCenter().post("OvraLumoraTerminate", nullptr);
    });
    platform::ports().standardStreams = &watched;

    delegate.terminateApp();

    EXPECT_EQ(updateSteps(), 1);
    EXPECT_EQ(application.terminations, 1);
}

TEST_F(Termination, byTheQuitCommandAppliesNothing) {
    delegate.applicationWillTerminate();

    EXPECT_EQ(updateSteps(), 0);
    EXPECT_EQ(application.terminations, 0);
}

TEST_F(Termination, ignoresOtherNotifications) {
    NotificationCenter::defaultCenter().post("ovralumoraterminate", nullptr);

    EXPECT_EQ(application.terminations, 0);
}

TEST_F(Termination, isNotObservedBeforeTheLaunch) {
    AppDelegate unlaunched;
    delegate.terminateApp(); // the launched one's place is empty now
    ASSERT_EQ(application.terminations, 1);

    EXPECT_TRUE(unlaunched.applicationShouldTerminateAfterLastWindowClosed());

    EXPECT_EQ(application.terminations, 1);
}

TEST_F(Termination, findsNobodyAfterTheDelegatesEnd) {
    delegate.terminateApp();
    {
        AppDelegate other;
        other.applicationWillFinishLaunching();
    }

    NotificationCenter::defaultCenter().post("OvraLumoraTerminate", nullptr);

    EXPECT_EQ(application.terminations, 1);
}

using TerminationDeathTest = Termination;

TEST_F(TerminationDeathTest, withoutAnApplicationStopsTheProcess) {
    platform::ports().application = nullptr;

    EXPECT_EXIT(delegate.terminateApp(), ::testing::KilledBySignal(SIGABRT), "");
}

} // namespace
} // namespace lumora

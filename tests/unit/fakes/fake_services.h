#pragma once

#include "platform/alerts.h"
#include "platform/apple_script.h"
#include "platform/application.h"
#include "platform/bundle.h"
#include "platform/distributed_notifications.h"
#include "platform/menu.h"
#include "platform/process_info.h"
#include "platform/standard_streams.h"
#include "platform/system_version.h"
#include "platform/task.h"
#include "platform/workspace.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace lumora::fakes {

class FakeAlerts final : public platform::Alerts {
  public:
    std::vector<platform::Alert> shown;
    int answer = platform::kAlertFirstButtonReturn;
    std::function<void(const platform::Alert&)> onShow = [](const platform::Alert&) {};

    int runModal(const platform::Alert& alert) override {
        shown.push_back(alert);
        onShow(alert);
        return answer;
    }
};

/// Records the sources that were really run.
class FakeAppleScripts final : public platform::AppleScripts {
  public:
    std::vector<std::string> sources;
    std::optional<platform::AppleScriptError> error;
    bool refuses = false; ///< makes no script of anything
    std::function<void()> onExecute = [] {};

    std::unique_ptr<platform::AppleScript> makeScript(const std::string& source) override {
        return refuses ? nullptr : std::make_unique<Script>(*this, source);
    }

  private:
    class Script final : public platform::AppleScript {
      public:
        Script(FakeAppleScripts& owner, std::string source) : owner_(owner), source_(std::move(source)) {}
        std::optional<platform::AppleScriptError> execute() override {
            owner_.sources.push_back(source_);
            owner_.onExecute();
            return owner_.error;
        }

      private:
        FakeAppleScripts& owner_;
        std::string source_;
    };
};

class FakeMenuItem;

class FakeMenu final : public platform::Menu {
  public:
    std::vector<std::shared_ptr<platform::MenuItem>> entries;

    FakeMenuItem& add(std::string title, std::string action = {});
    std::vector<std::shared_ptr<platform::MenuItem>> items() override { return entries; }
};

/// As it was made, until somebody wires it.
class FakeMenuItem final : public platform::MenuItem {
  public:
    std::string titleText, actionName;
    std::unique_ptr<FakeMenu> opens;
    platform::MenuTarget* target = nullptr;
    bool hidden = true;
    bool enabled = false;

    std::string title() override { return titleText; }
    std::string action() override { return actionName; }
    platform::Menu* submenu() override { return opens.get(); }
    void setTarget(platform::MenuTarget* value) override { target = value; }
    void setAction(const std::string& value) override { actionName = value; }
    void setHidden(bool value) override { hidden = value; }
    void setEnabled(bool value) override { enabled = value; }

    FakeMenu& openMenu() {
        if (!opens)
            opens = std::make_unique<FakeMenu>();
        return *opens;
    }
};

inline FakeMenuItem& FakeMenu::add(std::string title, std::string action) {
    auto item = std::make_shared<FakeMenuItem>();
    item->titleText = std::move(title);
    item->actionName = std::move(action);
    entries.push_back(item);
    return *item;
}

class FakeApplication final : public platform::Application {
  public:
    int terminations = 0;
    std::function<void()> onTerminate = [] {};
    std::unique_ptr<FakeMenu> menu; ///< none at first

    void terminate() override {
        ++terminations;
        onTerminate();
    }
    platform::Menu* mainMenu() override { return menu.get(); }
};

class FakeBundles final : public platform::Bundles {
  public:
    std::string path = "/Applications/Ovra Tessel Lumora.app";
    std::optional<std::string> identifier = "com.ovra.tessel.OvraTesselLumora";
    std::map<std::string, std::string> resources; ///< "NoInternetPage.html" -> path
    std::map<std::pair<std::string, std::string>, platform::PropertyListValue>
        info; ///< (bundle path, key) -> value
    bool throwOnPath = false;

    std::string mainBundlePath() override {
        if (throwOnPath)
            throw std::runtime_error("no bundle");
        return path;
    }
    std::optional<std::string> mainBundleIdentifier() override { return identifier; }
    std::optional<std::string> pathForResource(const std::string& name, const std::string& type) override {
        const auto found = resources.find(name + "." + type);
        return found == resources.end() ? std::nullopt : std::optional(found->second);
    }
    std::optional<platform::PropertyListValue> infoDictionaryValue(const std::string& bundlePath,
                                                                   const std::string& key) override {
        const auto found = info.find({bundlePath, key});
        return found == info.end() ? std::nullopt : std::optional(found->second);
    }
};

class FakeDistributedNotifications final : public platform::DistributedNotifications {
  public:
    struct Post {
        std::string name, key;
        std::int64_t value;
        bool operator==(const Post&) const = default;
    };
    std::vector<Post> posts;
    void post(const std::string& name, const std::string& key, std::int64_t value) override {
        posts.push_back({name, key, value});
    }
};

class FakeProcessInfo final : public platform::ProcessInfo {
  public:
    std::string processName() override { return "Ovra Tessel Lumora"; }
    std::int64_t processIdentifier() override { return 4242; }
    std::uint64_t currentThreadIdentifier() override { return 7; }
    std::string localTimestamp() override { return "2026-11-21 09:41:07.123"; }
    std::vector<std::string> callStackSymbols() override { return {"frame one", "frame two"}; }
};

/// Collects lines instead of writing them. Thread-safe, as several tests log from several threads.
class FakeStandardStreams final : public platform::StandardStreams {
  public:
    void writeError(std::string_view text) override {
        std::lock_guard lock(mutex_);
        raw_ += text;
        static constexpr std::string_view kPrefix = "2026-11-21 09:41:07.123 Ovra Tessel Lumora[4242:7] ";
        if (text.starts_with(kPrefix))
            text.remove_prefix(kPrefix.size());
        logged_.emplace_back(text.substr(0, text.size() - 1)); // without the line's own end
    }
    void writeOutput(std::string_view text) override {
        std::lock_guard lock(mutex_);
        raw_ += text;
        printed_.emplace_back(text.substr(0, text.size() - 1));
    }
    void reopenAll(const std::string& path) override {
        reopened.push_back(path);
        onReopen(path);
    }
    void withWritersHeld(const std::function<void()>& section) override { section(); }

    std::vector<std::string> reopened;
    std::function<void(const std::string&)> onReopen = [](const std::string&) {};

    /// Logged messages (standard error) without their time-stamp prefix and closing line feed.
    std::vector<std::string> logged() const { return copy(logged_); }
    /// Printed lines (standard output) without their closing line feed.
    std::vector<std::string> printed() const { return copy(printed_); }
    std::string raw() const { return copy(raw_); }
    void clear() {
        std::lock_guard lock(mutex_);
        logged_.clear();
        printed_.clear();
        raw_.clear();
    }

  private:
    template <class T>
    T copy(const T& value) const {
        std::lock_guard lock(mutex_);
        return value;
    }

    mutable std::mutex mutex_;
    std::vector<std::string> logged_, printed_;
    std::string raw_;
};

class FakeSystemVersions final : public platform::SystemVersions {
  public:
    platform::SystemVersion version{"macOS", "13.2.1"};
    platform::SystemVersion current() override { return version; }
};

/// Records tool runs; `onRun` may act (mount something) and decides the result.
class FakeTaskRunner final : public platform::TaskRunner {
  public:
    std::vector<std::vector<std::string>> runs; ///< executable first, then its arguments
    std::function<platform::Result<platform::TaskResult>(const std::vector<std::string>&,
                                                         platform::TaskOutput)>
        onRun = [](const auto&, platform::TaskOutput) { return platform::TaskResult{}; };

    platform::Result<platform::TaskResult> run(const std::string& executable,
                                               const std::vector<std::string>& arguments,
                                               platform::TaskOutput output) override {
        std::vector<std::string> line{executable};
        line.insert(line.end(), arguments.begin(), arguments.end());
        runs.push_back(line);
        return onRun(line, output);
    }
};

class FakeWorkspace final : public platform::Workspace {
  public:
    struct Launch {
        std::string path;
        std::vector<std::string> arguments;
    };
    std::vector<std::string> opened;
    std::vector<Launch> launches;
    bool openSucceeds = true;
    bool throwOnLaunch = false;
    std::optional<platform::Error> launchError;
    std::function<void(const std::string&)> onLaunch = [](const std::string&) {};

    bool openUrl(const std::string& url) override {
        opened.push_back(url);
        return openSucceeds;
    }
    platform::Result<void> launchApplication(const std::string& path,
                                             const std::vector<std::string>& arguments) override {
        if (throwOnLaunch)
            throw std::runtime_error("launch services unavailable");
        launches.push_back({path, arguments});
        onLaunch(path);
        if (launchError)
            return *launchError;
        return {};
    }
};

} // namespace lumora::fakes

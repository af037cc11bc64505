#pragma once

#include "platform/web_view.h"

#include <functional>
#include <string>
#include <vector>

namespace lumora::fakes {

class FakeWindow final : public platform::Window {
  public:
    std::string current = "Ovra Tessel Lumora";
    std::string title() override { return current; }
    void setTitle(const std::string& title) override { current = title; }
};

/// Records what the host asks of its web view: "handler NAME", "load URL", "file PATH", "script TEXT", "remove NAME".
class FakeWebViewHost final : public platform::WebViewHost {
  public:
    std::vector<std::string> journal;
    std::vector<platform::PageRequest> requests;
    std::string address;                        ///< as if every load were shown
    std::optional<platform::Error> scriptError; ///< reported for every script
    platform::WebViewDelegate* delegate = nullptr;
    platform::Window* currentWindow = nullptr; ///< none, as while the view is being built
    std::function<void()> onLoad = [] {};      ///< looks around in the moment of a load

    std::unique_ptr<platform::WebView> makeWebView() override { return std::make_unique<View>(*this); }
    platform::Window* window() override { return currentWindow; }

  private:
    class View final : public platform::WebView {
      public:
        explicit View(FakeWebViewHost& owner) : owner_(owner) {}
        void addScriptMessageHandler(const std::string& name) override {
            owner_.journal.push_back("handler " + name);
        }
        void removeScriptMessageHandler(const std::string& name) override {
            owner_.journal.push_back("remove " + name);
        }
        void setDelegate(platform::WebViewDelegate* receiver) override { owner_.delegate = receiver; }
        void load(const platform::PageRequest& request) override {
            owner_.journal.push_back("load " + request.url);
            owner_.requests.push_back(request);
            owner_.address = request.url;
            owner_.onLoad();
        }
        void loadFile(const std::string& path, const std::string& folder) override {
            owner_.journal.push_back("file " + path + " reading " + folder);
            owner_.address = "file://" + path;
        }
        std::string address() override { return owner_.address; }
        void evaluateJavaScript(const std::string& script,
                                std::function<void(std::optional<platform::Error>)> completion) override {
            owner_.journal.push_back("script " + script);
            completion(owner_.scriptError);
        }

      private:
        FakeWebViewHost& owner_;
    };
};

} // namespace lumora::fakes

#include "agent/ovra_app_upgrader.h"
#include "api/api_handler.h"
#include "platform/bundle.h"
#include "platform/ports.h"
#include "support/log.h"
#include "support/url.h"
#include "webhost/join_url.h"
#include "webhost/local_pages.h"
#include "webhost/view_controller.h"

#include <filesystem>

namespace lumora {

bool ViewController::isWebServerConfigured() const { return isWebServerNameAndPathKnown(); }

void ViewController::loadJoinPageURl() {
    if (!isWebServerConfigured()) {
        print("loadJoinPageURl() : webServerName is null or empty — showing misconfiguration page.");
        loadMisconfigurationPage();
        return;
    }
    const auto url = parseUrl(joinUrl());
    if (!url) {
        loadMisconfigurationPage();
        return;
    }
    reloadOnce_.renew();
    revival_.reset();
    webView().load(joinRequest(*url));
}

void ViewController::loadMisconfigurationPage() { showResourcePage(kMisconfigurationPage); }

void ViewController::loadStaticNoInternetPage() { showResourcePage(kNoInternetPage); }

// By value: the timer that may hold the original goes first.
void ViewController::showResourcePage(std::string name) {
    revival_.reset();
    const auto path = platform::ports().bundles->pathForResource(name, "html");
    if (!path)
        return;                                                     // the view keeps what it shows
    const auto folder = std::filesystem::path(*path).parent_path(); // the page's own images lie beside it
    webView().loadFile(*path, folder.string());
}

void ViewController::didRestoreConnection() {
    if (!isWebServerConfigured()) {
        loadMisconfigurationPage();
        return;
    }
    OvraAppUpgrader::getInstance().ovraAppVersionCheck();
    ApiHandler::getInstance().checkLumoraUpdate([](bool isUpdateAvailable) {
        if (isUpdateAvailable)
            print("didRestoreConnection() : Updateing webview since the network is restored.");
    });
    loadJoinPageURl();
}

void ViewController::didFailedToConnect() {
    if (isWebServerConfigured())
        loadStaticNoInternetPage();
    else
        loadMisconfigurationPage();
}

} // namespace lumora

#include "shell/app_delegate.h"

#include "agent/ovra_app_upgrader.h"
#include "api/api_handler.h"
#include "config/session_details.h"
#include "config/utils.h"
#include "platform/application.h"
#include "platform/main_loop.h"
#include "platform/ports.h"
#include "platform/preferences.h"
#include "support/exception_guard.h"
#include "support/fatal.h"
#include "support/log.h"
#include "support/notification_center.h"

namespace lumora {

namespace {

constexpr const char* kTerminateNotification = "OvraLumoraTerminate";

/// The launch's slow work, on the background queue. Nobody waits for it, not even the end of the process.
void doLaunchChecks() {
    OvraAppUpgrader::getInstance().ovraAppVersionCheck();
    auto& preferences = *platform::ports().preferences;
    preferences.setObject("WebKitOfflineWebApplicationCacheEnabled", true);
    preferences.synchronize();
    ApiHandler::getInstance().checkLumoraUpdate([](bool isUpdateAvailable) {
        if (isUpdateAvailable)
            print("applicationDidFinishLaunching(_:) Update Available for Lumora");
    });
}

} // namespace

AppDelegate::AppDelegate() : logHandler_(std::make_shared<LogHandler>()) {}

AppDelegate::~AppDelegate() { NotificationCenter::defaultCenter().removeObserver(this); }

void AppDelegate::awakeFromNib() {
    Utils::createLumoraDirectoriesWithLogHandler(logHandler_.get());
    Utils::parseCommandLineArgs();
    SessionDetails::getInstance().setDefaultOvraDirectoryManager(platform::ports().fileManager);
}

void AppDelegate::applicationWillFinishLaunching() {
    Utils::findCurrentAppPath();
    Utils::getOvraLumoraAppVersion();
    NotificationCenter::defaultCenter().addObserver(this, kTerminateNotification,
                                                    [this](const void*) { terminateApp(); });
    configureUninstallMenuItem();
}

void AppDelegate::applicationDidFinishLaunching() {
    configureUninstallMenuItem(); // the menu may be complete only now
    platform::ports().mainLoop->asyncInBackground(doLaunchChecks);
}

bool AppDelegate::applicationShouldTerminateAfterLastWindowClosed() {
    // Whatever is raised on the way: the window has gone, and no process is to stay behind it.
    guarded("applicationShouldTerminateAfterLastWindowClosed(_:)",
            [] { NotificationCenter::defaultCenter().post(kTerminateNotification, nullptr); });
    return true;
}

void AppDelegate::terminateApp() {
    NotificationCenter::defaultCenter().removeObserver(this); // a second post finds nobody
    Utils::updateLumoraIfNeeded();
    auto* application = platform::ports().application;
    if (application == nullptr)
        fatal("there is no application object to terminate");
    application->terminate();
}

void AppDelegate::applicationWillTerminate() {}

} // namespace lumora

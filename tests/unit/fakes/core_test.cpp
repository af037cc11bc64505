#include "fakes/core_test.h"

#include "agent/ovra_app_upgrader.h"
#include "api/api_handler.h"
#include "api/network_monitor.h"
#include "bridge/native_message_handler.h"
#include "config/session_details.h"

namespace lumora {

namespace {

void forgetSharedInstances() {
    SessionDetails::resetForTesting();
    ApiHandler::resetForTesting();
    OvraAppUpgrader::resetForTesting();
    NetworkMonitor::resetForTesting();
    NativeMessageHandler::resetForTesting();
}

} // namespace

CoreTest::CoreTest() {
    platform::ports() = platform::Ports{
        .alerts = &alerts,
        .appleScripts = &appleScripts,
        .application = &application,
        .bundles = &bundles,
        .distributedNotifications = &distributed,
        .fileManager = &files,
        .httpSessions = &http,
        .mainLoop = &loop,
        .pathMonitors = &paths,
        .preferences = &preferences,
        .processInfo = &process,
        .propertyLists = &propertyLists,
        .standardStreams = &streams,
        .systemVersions = &systemVersions,
        .tasks = &tasks,
        .webViewHost = &webViewHost,
        .workspace = &workspace,
    };
    forgetSharedInstances();
}

CoreTest::~CoreTest() { forgetSharedInstances(); }

} // namespace lumora

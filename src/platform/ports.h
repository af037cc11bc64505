#pragma once

namespace lumora::platform {

class Alerts;
class AppleScripts;
class Application;
class Bundles;
class DistributedNotifications;
class FileManager;
class HttpSessions;
class MainLoop;
class PathMonitors;
class Preferences;
class ProcessInfo;
class PropertyListSerialization;
class StandardStreams;
class SystemVersions;
class TaskRunner;
class WebViewHost;
class Workspace;

/// Everything the core asks of the operating system: filled once, by the composition root before any core code runs,
/// or by a test's fixture with fakes. Nothing is owned; every port outlives the core's use of it.
struct Ports {
    Alerts* alerts = nullptr;
    AppleScripts* appleScripts = nullptr;
    Application* application = nullptr;
    Bundles* bundles = nullptr;
    DistributedNotifications* distributedNotifications = nullptr;
    FileManager* fileManager = nullptr;
    HttpSessions* httpSessions = nullptr;
    MainLoop* mainLoop = nullptr;
    PathMonitors* pathMonitors = nullptr;
    Preferences* preferences = nullptr;
    ProcessInfo* processInfo = nullptr;
    PropertyListSerialization* propertyLists = nullptr;
    StandardStreams* standardStreams = nullptr;
    SystemVersions* systemVersions = nullptr;
    TaskRunner* tasks = nullptr;
    WebViewHost* webViewHost = nullptr;
    Workspace* workspace = nullptr;
};

/// The ports in use. Read from any thread; write only before other threads use the core.
Ports& ports();

} // namespace lumora::platform

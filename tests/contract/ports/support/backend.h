#pragma once

/// The backend that the suites run on: the system's own, or the macOS one on whatever Foundation there is. A suite links
/// the part of it that it makes ports of.
#if defined(__APPLE__) || defined(LUMORA_MACOS_BACKEND)

#include "platform/macos/foundation/foundation_apple_scripts.h"
#include "platform/macos/foundation/foundation_bundles.h"
#include "platform/macos/foundation/foundation_distributed_notifications.h"
#include "platform/macos/foundation/foundation_file_manager.h"
#include "platform/macos/foundation/foundation_http_sessions.h"
#include "platform/macos/foundation/foundation_preferences.h"
#include "platform/macos/foundation/foundation_property_lists.h"
#include "platform/macos/foundation/foundation_system_versions.h"
#include "platform/macos/foundation/foundation_tasks.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <map>
#include <memory>
#include <string>

namespace lumora::contract {

namespace backend = platform::macos_backend;
using FileManager = backend::FoundationFileManager;
using PropertyLists = backend::FoundationPropertyLists;

inline std::unique_ptr<platform::AppleScripts> makeAppleScripts() {
    return std::make_unique<backend::FoundationAppleScripts>();
}

inline std::unique_ptr<platform::Bundles> makeBundles() {
    return std::make_unique<backend::FoundationBundles>();
}

inline std::unique_ptr<platform::DistributedNotifications> makeDistributedNotifications() {
    return std::make_unique<backend::FoundationDistributedNotifications>();
}

inline std::unique_ptr<platform::HttpSessions> makeHttpSessions() {
    return std::make_unique<backend::FoundationHttpSessions>();
}

/// The sessions trust the machine's own authorities, and no test's.
constexpr bool kTestsChooseAuthorities = false;

/// Downloads come into a folder of the system's choice, and a session's completions to whatever thread is free.
constexpr bool kTestsChooseTemporaryFolder = false;
constexpr bool kSessionsHaveAThread = false;

inline std::unique_ptr<platform::HttpSessions> makeHttpSessionsTrusting(const std::string&) {
    return makeHttpSessions();
}

/// The home folder is the user's own.
inline FileManager makeFileManager(const std::string&) { return {}; }

inline std::string homeOf(const std::string&) { return ::getpwuid(::getuid())->pw_dir; }

/// Whether a copy is written, or made of its source by the volume in one step.
#ifdef __APPLE__
constexpr bool kCopiesAreWritten = false;
#else
constexpr bool kCopiesAreWritten = true;
#endif

/// Of the running program's own domain and its launch arguments.
inline std::unique_ptr<platform::Preferences> makePreferences() {
    return std::make_unique<backend::FoundationPreferences>();
}

inline std::unique_ptr<platform::SystemVersions> makeSystemVersions() {
    return std::make_unique<backend::FoundationSystemVersions>();
}

/// The environment is this process's.
inline std::unique_ptr<platform::TaskRunner> makeTasks() {
    return std::make_unique<backend::FoundationTasks>();
}

/// What prints the system's own words about itself.
constexpr const char* kProductNameCommand = "sw_vers -productName";
constexpr const char* kProductVersionCommand = "sw_vers -productVersion";

/// The error number behind an error: the platform words its own kinds of failure.
inline int errnoOf(const platform::Error& error) {
    static const std::map<int, int> numbers{{4, ENOENT},   {260, ENOENT}, {257, EACCES}, {513, EACCES},
                                            {516, EEXIST}, {518, EINVAL}, {640, ENOSPC}, {642, EROFS}};
    const auto number = numbers.find(error.code);
    return error.domain != "NSCocoaErrorDomain" || number == numbers.end() ? error.code : number->second;
}

} // namespace lumora::contract

#else

#include "platform/linux/ports/linux_apple_scripts.h"
#include "platform/linux/ports/linux_bundles.h"
#include "platform/linux/ports/linux_distributed_notifications.h"
#include "platform/linux/ports/linux_file_manager.h"
#include "platform/linux/ports/linux_http_sessions.h"
#include "platform/linux/ports/linux_property_lists.h"
#include "platform/linux/ports/linux_system_versions.h"
#include "platform/linux/ports/linux_task_runner.h"

#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>

namespace lumora::contract {

namespace backend = platform::linux_backend;
using FileManager = backend::LinuxFileManager;
using PropertyLists = backend::LinuxPropertyLists;

inline std::unique_ptr<platform::AppleScripts> makeAppleScripts() {
    const auto waitOnAThread = [](std::function<void()> work) {
        std::thread(std::move(work)).join();
        return true;
    };
    return std::make_unique<backend::LinuxAppleScripts>(backend::currentEnvironment(), waitOnAThread);
}

inline std::unique_ptr<platform::Bundles> makeBundles() {
    static PropertyLists lists;
    return std::make_unique<backend::LinuxBundles>(backend::LinuxBundles::runningExecutable(),
                                                   backend::HomeFolder(), lists);
}

inline std::unique_ptr<platform::DistributedNotifications> makeDistributedNotifications() {
    return std::make_unique<backend::LinuxDistributedNotifications>();
}

/// As on a machine with a network: the suites' own servers are reached over the loopback interface.
inline std::unique_ptr<platform::HttpSessions> makeHttpSessions() {
    return std::make_unique<backend::LinuxHttpSessions>(backend::HttpTransferSettings{}, [] { return true; });
}

/// The sessions trust the authority of the certificate instead of the machine's own.
constexpr bool kTestsChooseAuthorities = true;

/// Downloads come into the environment's temporary folder, and completions to the one thread of their session.
constexpr bool kTestsChooseTemporaryFolder = true;
constexpr bool kSessionsHaveAThread = true;

inline std::unique_ptr<platform::HttpSessions> makeHttpSessionsTrusting(const std::string& certificate) {
    backend::HttpTransferSettings settings;
    settings.certificateAuthorities = certificate;
    return std::make_unique<backend::LinuxHttpSessions>(settings, [] { return true; });
}

inline FileManager makeFileManager(const std::string& home) { return FileManager(backend::HomeFolder(home)); }

inline std::string homeOf(const std::string& chosen) { return chosen; }

/// Whether a copy is written, or made of its source by the volume in one step.
constexpr bool kCopiesAreWritten = true;

inline std::unique_ptr<platform::SystemVersions> makeSystemVersions() {
    return std::make_unique<backend::LinuxSystemVersions>();
}

inline std::unique_ptr<platform::TaskRunner> makeTasks() {
    return std::make_unique<backend::LinuxTaskRunner>(backend::Environment{"PATH=/usr/bin:/bin"});
}

/// What prints the system's own words about itself.
constexpr const char* kProductNameCommand = ". /etc/os-release && echo \"$NAME\"";
constexpr const char* kProductVersionCommand = ". /etc/os-release && echo \"$VERSION_ID\"";

inline int errnoOf(const platform::Error& error) { return error.code; }

} // namespace lumora::contract

#endif

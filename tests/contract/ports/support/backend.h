#pragma once

/// The backend that the suites run on: the system's own, or the macOS one on whatever Foundation there is.
#if defined(__APPLE__) || defined(LUMORA_MACOS_BACKEND)

#include "platform/macos/foundation/foundation_bundles.h"
#include "platform/macos/foundation/foundation_http_sessions.h"
#include "platform/macos/foundation/foundation_property_lists.h"
#include "platform/macos/foundation/foundation_system_versions.h"

#include <memory>

namespace lumora::contract {

namespace backend = platform::macos_backend;
using Bundles = backend::FoundationBundles;
using PropertyLists = backend::FoundationPropertyLists;
using SystemVersions = backend::FoundationSystemVersions;

inline std::unique_ptr<platform::HttpSessions> makeHttpSessions() {
    return std::make_unique<backend::FoundationHttpSessions>();
}

} // namespace lumora::contract

#else

#include "platform/linux/ports/linux_bundles.h"
#include "platform/linux/ports/linux_http_sessions.h"
#include "platform/linux/ports/linux_property_lists.h"
#include "platform/linux/ports/linux_system_versions.h"

#include <memory>

namespace lumora::contract {

namespace backend = platform::linux_backend;
using PropertyLists = backend::LinuxPropertyLists;
using SystemVersions = backend::LinuxSystemVersions;

/// As on a machine with a network: the suites' own servers are reached over the loopback interface.
inline std::unique_ptr<platform::HttpSessions> makeHttpSessions() {
    return std::make_unique<backend::LinuxHttpSessions>(backend::HttpTransferSettings{}, [] { return true; });
}

} // namespace lumora::contract

#endif

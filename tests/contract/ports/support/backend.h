#pragma once

/// The backend that the suites run on: the system's own, or the macOS one on whatever Foundation there is.
#if defined(__APPLE__) || defined(LUMORA_MACOS_BACKEND)

#include "platform/macos/foundation/foundation_file_manager.h"
#include "platform/macos/foundation/foundation_http_sessions.h"
#include "platform/macos/foundation/foundation_property_lists.h"

#include <cerrno>
#include <map>
#include <memory>
#include <string>

namespace lumora::contract {

namespace backend = platform::macos_backend;
using FileManager = backend::FoundationFileManager;
using PropertyLists = backend::FoundationPropertyLists;

inline std::unique_ptr<platform::HttpSessions> makeHttpSessions() {
    return std::make_unique<backend::FoundationHttpSessions>();
}

/// The home folder is the user's own.
inline FileManager makeFileManager(const std::string&) { return {}; }

/// The error number behind an error: the platform words its own kinds of failure.
inline int errnoOf(const platform::Error& error) {
    static const std::map<int, int> numbers{{4, ENOENT},   {260, ENOENT}, {257, EACCES}, {513, EACCES},
                                            {516, EEXIST}, {518, EINVAL}, {640, ENOSPC}, {642, EROFS}};
    const auto number = numbers.find(error.code);
    return error.domain != "NSCocoaErrorDomain" || number == numbers.end() ? error.code : number->second;
}

} // namespace lumora::contract

#else

#include "platform/linux/ports/linux_file_manager.h"
#include "platform/linux/ports/linux_http_sessions.h"
#include "platform/linux/ports/linux_property_lists.h"

#include <memory>
#include <string>

namespace lumora::contract {

namespace backend = platform::linux_backend;
using FileManager = backend::LinuxFileManager;
using PropertyLists = backend::LinuxPropertyLists;

/// As on a machine with a network: the suites' own servers are reached over the loopback interface.
inline std::unique_ptr<platform::HttpSessions> makeHttpSessions() {
    return std::make_unique<backend::LinuxHttpSessions>(backend::HttpTransferSettings{}, [] { return true; });
}

inline FileManager makeFileManager(const std::string& home) { return FileManager(backend::HomeFolder(home)); }

inline int errnoOf(const platform::Error& error) { return error.code; }

} // namespace lumora::contract

#endif

#pragma once

#include <string>
#include <string_view>

namespace lumora::platform::posix_backend {

/// What a process that is killed leaves half made. Whoever makes such an entry locks it until it is done; one of this
/// user's that nobody locks has no living maker. Locks, unlike process numbers, are neither given out again nor
/// different in a container that shares the folder. Where a file system has none, nothing is ever taken for abandoned.

/// Locks an entry just created at `path` and open as `descriptor`, for as long as that stays open. False when it was
/// taken for abandoned before: its maker then makes another.
[[nodiscard]] bool holdNewEntry(int descriptor, const std::string& path);

/// Removes this user's abandoned files and folders whose names `isOurs` knows. What cannot be removed stays: the
/// next caller tries again.
void removeAbandonedEntries(const std::string& folder, bool (*isOurs)(std::string_view name));

} // namespace lumora::platform::posix_backend

#pragma once

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/xattr.h>
#ifndef __APPLE__
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>
#endif

#include <ctime>
#include <string>

namespace lumora::contract {

/// What the file systems' calls name differently from one system to the next.

inline struct stat statusOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(0, ::lstat(path.c_str(), &status)) << path;
    return status;
}

inline timespec modificationOf(const std::string& path) {
#ifdef __APPLE__
    return statusOf(path).st_mtimespec;
#else
    return statusOf(path).st_mtim;
#endif
}

/// 0, or -1 with errno.
inline int setAttribute(const std::string& path, const char* name, const std::string& bytes) {
#ifdef __APPLE__
    return ::setxattr(path.c_str(), name, bytes.data(), bytes.size(), 0, 0);
#else
    return ::setxattr(path.c_str(), name, bytes.data(), bytes.size(), 0);
#endif
}

inline long attributeSize(const std::string& path, const char* name) {
#ifdef __APPLE__
    return ::getxattr(path.c_str(), name, nullptr, 0, 0, 0);
#else
    return ::getxattr(path.c_str(), name, nullptr, 0);
#endif
}

/// Protects a file against every change, removal included, or ends that; false without the right, or on a file system that
/// knows no protection.
inline bool setProtected(const std::string& path, bool isProtected) {
#ifdef __APPLE__
    return ::chflags(path.c_str(), isProtected ? UF_IMMUTABLE : 0) == 0;
#else
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const int flags = isProtected ? FS_IMMUTABLE_FL : 0;
    const bool isSet = ::ioctl(file, FS_IOC_SETFLAGS, &flags) == 0;
    ::close(file);
    return isSet;
#endif
}

} // namespace lumora::contract

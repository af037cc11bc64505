#pragma once

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/xattr.h>

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

} // namespace lumora::contract

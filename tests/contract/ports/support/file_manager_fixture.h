#pragma once

#include "support/backend.h"
#include "support/file_metadata.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <string>
#include <vector>

namespace lumora::contract {

/// The file manager in a folder of its own, part of which is the home folder where the backend lets a test choose one.
class FileManagerContract : public testing::Test {
  protected:
    FileManagerContract() {
        std::filesystem::create_directory(home_);
        std::filesystem::permissions(folder_.path(), std::filesystem::perms(0755));
    }

    static void setTimes(const std::string& path, long seconds, long nanoseconds) {
        const timespec times[2] = {{seconds, nanoseconds}, {seconds, nanoseconds}};
        ASSERT_EQ(0, ::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW));
    }

    static std::vector<std::string> namesIn(const std::string& path) {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(path))
            names.push_back(entry.path().filename());
        return names;
    }

    TemporaryFolder folder_;
    const std::string home_ = folder_ / "home";
    FileManager files_ = makeFileManager(home_ + "/");
};

} // namespace lumora::contract

#include "platform/linux/ports/linux_file_manager.h"
#include "support/in_child.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <thread>

namespace lumora::contract {
namespace {

namespace fs = std::filesystem;
using platform::linux_backend::HomeFolder;
using platform::linux_backend::LinuxFileManager;

constexpr int kFiles = 50;

/// A bundle in a folder. What a removal that is refused must not have touched.
class FileRemovalContract : public testing::Test {
  protected:
    FileRemovalContract() {
        fs::create_directories(bundle_ + "/Contents/MacOS");
        for (int file = 0; file < kFiles; ++file)
            writeFile(bundle_ + "/Contents/MacOS/" + std::to_string(file), "x");
        fs::permissions(folder_.path(), fs::perms(0755));
    }

    static std::size_t entriesIn(const std::string& path) {
        std::error_code missing;
        const auto entries = fs::recursive_directory_iterator(path, missing);
        return missing ? 0 : static_cast<std::size_t>(std::distance(entries, {}));
    }

    std::string removedByAnOrdinaryUser(int expectedError) {
        return inChildAsOrdinaryUser([&]() -> std::string {
            const auto removed = files_.removeItem(bundle_);
            if (removed)
                return "removed";
            return removed.error().code == expectedError ? "" : removed.error().localizedDescription;
        });
    }

    void expectUntouched() {
        EXPECT_EQ(kWhole, entriesIn(bundle_));
        EXPECT_EQ(kWhole + 1, entriesIn(around_)) << "something else was left beside it";
    }

    static constexpr std::size_t kWhole = kFiles + 2;
    TemporaryFolder folder_;
    const std::string around_ = folder_ / "Applications";
    const std::string bundle_ = around_ + "/Bundle.app";
    LinuxFileManager files_{HomeFolder(folder_ / "home")};
};

TEST_F(FileRemovalContract, leavesNothingBehind) {
    ASSERT_TRUE(files_.removeItem(bundle_));
    EXPECT_EQ(0U, entriesIn(around_));
}

TEST_F(FileRemovalContract, aFolderIsNeverSeenHalf) {
    std::atomic<bool> half = false;
    std::atomic<bool> done = false;
    std::thread watcher([&] {
        while (!done) {
            std::error_code missing;
            const auto files = fs::directory_iterator(bundle_ + "/Contents/MacOS", missing);
            // The listing of a folder that is renamed meanwhile goes on in it: what counts is the place.
            const bool stood = !missing && std::distance(files, {}) < kFiles;
            half = half || (stood && fs::exists(bundle_));
        }
    });
    EXPECT_TRUE(files_.removeItem(bundle_));
    done = true;
    watcher.join();
    EXPECT_FALSE(half);
}

TEST_F(FileRemovalContract, ofAWritableBundleInAReadOnlyFolderTouchesNothing) {
    fs::permissions(bundle_, fs::perms(0777));
    fs::permissions(around_, fs::perms(0555));
    if (::geteuid() != 0) {
        EXPECT_EQ("", removedByAnOrdinaryUser(EACCES));
    } else {
        for (const char* inner : {"", "/Contents", "/Contents/MacOS"})
            fs::permissions(bundle_ + inner, fs::perms(0777));
        EXPECT_EQ("", removedByAnOrdinaryUser(EACCES));
    }
    fs::permissions(around_, fs::perms(0755));
    expectUntouched();
}

TEST_F(FileRemovalContract, ofAnothersWritableBundleInASharedFolderTouchesNothing) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser can make a bundle of another user";
    for (const char* inner : {"", "/Contents", "/Contents/MacOS"})
        fs::permissions(bundle_ + inner, fs::perms(0777));
    fs::permissions(around_, fs::perms(01777));

    EXPECT_EQ("", removedByAnOrdinaryUser(EPERM));
    expectUntouched();
}

TEST_F(FileRemovalContract, ofAFolderWithAnothersClosedFolderInItTouchesNothing) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser can make a folder of another user";
    constexpr uid_t kOrdinaryUser = 65534;
    for (const std::string& own : {around_, bundle_, bundle_ + "/Contents"})
        ASSERT_EQ(0, ::chown(own.c_str(), kOrdinaryUser, kOrdinaryUser));

    EXPECT_EQ("", removedByAnOrdinaryUser(EACCES));
    expectUntouched();
}

TEST_F(FileRemovalContract, ofAFolderWithAProtectedFileInItTouchesNothing) {
    const int file = ::open((bundle_ + "/Contents/MacOS/7").c_str(), O_RDONLY);
    int flags = FS_IMMUTABLE_FL;
    if (::ioctl(file, FS_IOC_SETFLAGS, &flags) != 0) {
        ::close(file);
        GTEST_SKIP() << "no right to protect a file, or no file system that knows it";
    }
    const auto removed = files_.removeItem(bundle_);
    flags = 0;
    EXPECT_EQ(0, ::ioctl(file, FS_IOC_SETFLAGS, &flags));
    ::close(file);

    ASSERT_FALSE(removed);
    EXPECT_EQ(EPERM, removed.error().code);
    expectUntouched();
}

} // namespace
} // namespace lumora::contract

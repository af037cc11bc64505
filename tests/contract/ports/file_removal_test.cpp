#include "support/file_metadata.h"
#include "support/file_removal_fixture.h"

#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <thread>

namespace lumora::contract {
namespace {

namespace fs = std::filesystem;

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
    const std::string file = bundle_ + "/Contents/MacOS/7";
    if (!setProtected(file, true))
        GTEST_SKIP() << "no right to protect a file, or no file system that knows it";
    const auto removed = files_.removeItem(bundle_);
    EXPECT_TRUE(setProtected(file, false));

    ASSERT_FALSE(removed);
    EXPECT_EQ(EPERM, removed.error().code);
    expectUntouched();
}

} // namespace
} // namespace lumora::contract

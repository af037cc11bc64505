#include "support/file_removal_fixture.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>

namespace lumora::contract {
namespace {

namespace fs = std::filesystem;

/// What another user owns, or the file system protects.
class LinuxFileRemovalContract : public FileRemovalContract {};

TEST_F(LinuxFileRemovalContract, ofAnothersWritableBundleInASharedFolderTouchesNothing) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser can make a bundle of another user";
    for (const char* inner : {"", "/Contents", "/Contents/MacOS"})
        fs::permissions(bundle_ + inner, fs::perms(0777));
    fs::permissions(around_, fs::perms(01777));

    EXPECT_EQ("", removedByAnOrdinaryUser(EPERM));
    expectUntouched();
}

TEST_F(LinuxFileRemovalContract, ofAFolderWithAnothersClosedFolderInItTouchesNothing) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser can make a folder of another user";
    constexpr uid_t kOrdinaryUser = 65534;
    for (const std::string& own : {around_, bundle_, bundle_ + "/Contents"})
        ASSERT_EQ(0, ::chown(own.c_str(), kOrdinaryUser, kOrdinaryUser));

    EXPECT_EQ("", removedByAnOrdinaryUser(EACCES));
    expectUntouched();
}

TEST_F(LinuxFileRemovalContract, ofAFolderWithAProtectedFileInItTouchesNothing) {
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

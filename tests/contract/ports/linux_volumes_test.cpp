#include "platform/linux/ports/linux_file_manager.h"
#include "platform/linux/ports/volumes.h"
#include "platform/posix/unique_fd.h"
#include "support/in_child.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <future>
#include <memory>

namespace lumora::contract {
namespace {

using namespace std::chrono_literals;
using platform::linux_backend::HomeFolder;
using platform::linux_backend::LinuxFileManager;
using platform::linux_backend::VolumeReading;
using platform::posix_backend::UniqueFd;

class VolumesContract : public ::testing::Test {
  protected:
    VolumesContract() {
        std::filesystem::permissions(folder_.path(), std::filesystem::perms(0755));
        std::filesystem::create_directories(volume_);
        std::filesystem::create_symlink("Lumora Plugin", link_);
    }

    [[nodiscard]] int obstacle(const std::string& path) const {
        return VolumeReading(path, folder_.path().string()).obstacle();
    }

    /// The volume's folder, not yet locked, as the disk-image tool has it.
    [[nodiscard]] UniqueFd tool() const {
        return UniqueFd(::open(volume_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    }

    const TemporaryFolder folder_;
    const std::string volume_ = folder_ / "Lumora Plugin";
    const std::string link_ = folder_ / "link";
};

TEST_F(VolumesContract, onesOwnVolumeIsTakenForWhatItSeems) {
    EXPECT_EQ(0, obstacle(volume_));
    EXPECT_EQ(0, obstacle(volume_ + "/A.app/Contents"));
    EXPECT_EQ(0, obstacle(folder_.path().string() + "//Lumora Plugin//A.app"));
}

TEST_F(VolumesContract, nothingIsTakenOutOfAVolumeThatIsNotThere) {
    EXPECT_EQ(ENOENT, obstacle(folder_ / "missing/A.app"));
}

TEST_F(VolumesContract, otherPlacesAreNoVolumes) {
    EXPECT_EQ(0, obstacle(folder_.path().string()));
    EXPECT_EQ(0, obstacle(folder_.path().string() + "/"));
    EXPECT_EQ(0, obstacle(folder_.path().string() + " of others/A.app"));
    EXPECT_EQ(0, obstacle(""));
}

TEST_F(VolumesContract, anotherUsersVolumeIsRefusedAndSoIsHisLink) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser gives things away";
    constexpr uid_t kStranger = 4711;
    ASSERT_EQ(0, ::lchown(volume_.c_str(), kStranger, kStranger));
    EXPECT_EQ(EPERM, obstacle(volume_ + "/A.app"));

    ASSERT_EQ(0, ::lchown(volume_.c_str(), 0, 0));
    ASSERT_EQ(0, ::lchown(link_.c_str(), kStranger, kStranger));
    EXPECT_EQ(0, obstacle(volume_ + "/A.app"));
    EXPECT_EQ(EPERM, obstacle(link_ + "/A.app"));
}

TEST_F(VolumesContract, theAdministratorsVolumeIsEverybodys) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser is somebody else for a while";
    EXPECT_EQ(
        "", asOrdinaryUser([this] { return obstacle(volume_ + "/A.app") == 0 ? std::string() : "refused"; }));
}

TEST_F(VolumesContract, aVolumeIsHeldForAsLongAsItIsRead) {
    const UniqueFd volume = tool();
    {
        const VolumeReading reading(volume_ + "/A.app", folder_.path().string());
        const VolumeReading another(volume_ + "/B.app", folder_.path().string());
        EXPECT_EQ(-1, ::flock(volume.get(), LOCK_EX | LOCK_NB));
        EXPECT_EQ(EWOULDBLOCK, errno);
    }
    EXPECT_EQ(0, ::flock(volume.get(), LOCK_EX | LOCK_NB));
}

TEST_F(VolumesContract, aVolumeThatIsJustBeingDetachedIsGone) {
    const std::string elsewhere = folder_ / "detached";
    UniqueFd volume = tool();
    ASSERT_EQ(0, ::flock(volume.get(), LOCK_EX | LOCK_NB));
    auto reading = std::async(std::launch::async, [this] { return obstacle(volume_ + "/A.app"); });
    // Without the waiting it is done well within this, with it never.
    EXPECT_EQ(std::future_status::timeout, reading.wait_for(500ms));

    std::filesystem::rename(volume_, elsewhere);
    volume.reset();

    EXPECT_EQ(ENOENT, reading.get());
}

TEST_F(VolumesContract, aVolumeThatIsJustBeingReplacedIsTheNewOne) {
    const std::string newer = folder_ / "newer";
    std::filesystem::create_directory(newer);
    UniqueFd former = tool();
    ASSERT_EQ(0, ::flock(former.get(), LOCK_EX | LOCK_NB));
    auto reading = std::async(std::launch::async, [this] {
        return std::make_unique<VolumeReading>(volume_ + "/A.app", folder_.path().string());
    });
    EXPECT_EQ(std::future_status::timeout, reading.wait_for(500ms));

    ASSERT_EQ(0, ::renameat2(AT_FDCWD, newer.c_str(), AT_FDCWD, volume_.c_str(), RENAME_EXCHANGE));
    former.reset();

    const auto held = reading.get();
    EXPECT_EQ(0, held->obstacle());
    EXPECT_EQ(-1, ::flock(tool().get(), LOCK_EX | LOCK_NB));
}

TEST_F(VolumesContract, aCopyHoldsTheVolumeThatItComesFrom) {
    const TemporaryFolder home;
    std::ofstream(volume_ + "/tool") << "tool";
    LinuxFileManager files(HomeFolder(home.path().string()), folder_.path().string());
    UniqueFd volume = tool();
    ASSERT_EQ(0, ::flock(volume.get(), LOCK_EX | LOCK_NB));
    auto copying = std::async(std::launch::async, [&] {
        return static_cast<bool>(files.copyItem(volume_ + "/tool", home / "tool"));
    });
    EXPECT_EQ(std::future_status::timeout, copying.wait_for(500ms));

    volume.reset();

    EXPECT_TRUE(copying.get());
    EXPECT_TRUE(std::filesystem::exists(home / "tool"));
}

} // namespace
} // namespace lumora::contract

#include "platform/linux/ports/volumes.h"
#include "support/in_child.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cerrno>
#include <filesystem>

namespace lumora::contract {
namespace {

using platform::linux_backend::findVolumeObstacle;

class VolumesContract : public ::testing::Test {
  protected:
    VolumesContract() {
        std::filesystem::permissions(folder_.path(), std::filesystem::perms(0755));
        std::filesystem::create_directories(volume_);
        std::filesystem::create_symlink("Lumora Plugin", link_);
    }

    [[nodiscard]] int obstacle(const std::string& path) const {
        return findVolumeObstacle(path, folder_.path().string());
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
    EXPECT_EQ("", asOrdinaryUser(
                      [this] { return obstacle(volume_ + "/A.app") == 0 ? std::string() : "refused"; }));
}

} // namespace
} // namespace lumora::contract

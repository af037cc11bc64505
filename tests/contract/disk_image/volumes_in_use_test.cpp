#include "disk_image_fixture.h"
#include "platform/posix/unique_fd.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <chrono>
#include <future>

namespace lumora::testing {
namespace {

using namespace std::chrono_literals;
using platform::linux_backend::DiskImages;
using platform::posix_backend::UniqueFd;

/// Whoever copies something out of a volume holds its folder locked, shared.
class VolumesInUse : public DiskImageFixture {
  protected:
    void SetUp() override {
        fillTree();
        ASSERT_TRUE(images().mount(makeOvraImage()));
        before_ = pictureOf(ovra_);
        writeFile(tree_ / "new", "new");
        newer_ = makeOvraImage("newer.iso");
    }

    [[nodiscard]] UniqueFd use() const {
        UniqueFd volume(::open(ovra_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        EXPECT_EQ(::flock(volume.get(), LOCK_SH | LOCK_NB), 0);
        return volume;
    }

    std::filesystem::path ovra_ = volumes_ / "Ovra";
    TreePicture before_;
    std::filesystem::path newer_;
};

TEST_F(VolumesInUse, areNotDetached) {
    UniqueFd reader = use();

    const auto refused = images().detach(ovra_);

    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().code, EBUSY);
    EXPECT_NE(refused.error().localizedDescription.find("is in use"), std::string::npos);
    EXPECT_EQ(pictureOf(ovra_), before_);
    expectVolumes({"Ovra"});

    reader = UniqueFd();
    EXPECT_TRUE(images().detach(ovra_));
    expectNoVolumes();
}

TEST_F(VolumesInUse, areReplacedOnlyWhenTheirUserIsDone) {
    UniqueFd reader = use();
    auto mounting = std::async(std::launch::async, [&] { return images().mount(newer_); });

    // Without the waiting it is done well within this, with it never.
    EXPECT_EQ(mounting.wait_for(1s), std::future_status::timeout);
    EXPECT_EQ(pictureOf(ovra_), before_);

    reader = UniqueFd();
    const auto mounted = mounting.get();
    ASSERT_TRUE(mounted) << mounted.error().localizedDescription;
    EXPECT_EQ(pictureOf(ovra_), pictureOf(tree_));
    expectVolumes({"Ovra"});
}

TEST_F(VolumesInUse, areReplacedAllTheSameWhenTheirUserHangs) {
    const UniqueFd reader = use();

    const auto mounted = DiskImages(volumes_, {}, 10ms).mount(newer_);

    ASSERT_TRUE(mounted) << mounted.error().localizedDescription;
    EXPECT_EQ(pictureOf(ovra_), pictureOf(tree_));
    expectVolumes({"Ovra"});
}

} // namespace
} // namespace lumora::testing

#include "disk_image_fixture.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

namespace lumora::testing {
namespace {

class InterruptedMounts : public DiskImageFixture, public ::testing::WithParamInterface<int> {
  protected:
    void SetUp() override {
        fillTree();
        writeFile(tree_ / "zz big", noise(2'000'000, 9));
        image_ = makeOvraImage();
    }
    std::filesystem::path image_;
};

volatile std::sig_atomic_t deadlySignal = 0;

/// Mounts in a process that gets `signal` in the middle of its big file: the system tells it that the file grows beyond
/// the limit just when it does.
int mountUntilSignalled(const std::filesystem::path& volumes, const std::filesystem::path& image,
                        int signal) {
    return waitForProcess(startProcess([&] {
        deadlySignal = signal;
        std::signal(SIGXFSZ, [](int) { ::raise(deadlySignal); });
        const rlimit limit{1'000'000, 1'000'000};
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) {
            return 97;
        }
        return platform::linux_backend::DiskImages(volumes).mount(image) ? 0 : 1;
    }));
}

TEST_P(InterruptedMounts, nextMountRemovesWhatAKilledOneLeft) {
    ASSERT_EQ(mountUntilSignalled(volumes_, image_, GetParam()), 128 + GetParam());
    ASSERT_EQ(namesIn(volumes_).size(), 1U); // the half volume, hidden
    EXPECT_FALSE(std::filesystem::exists(volumes_ / "Ovra"));

    const auto mounted = images().mount(image_);

    ASSERT_TRUE(mounted) << mounted.error().localizedDescription;
    EXPECT_EQ(pictureOf(volumes_ / "Ovra"), pictureOf(tree_));
    expectVolumes({"Ovra"});
}

TEST_P(InterruptedMounts, killedMountLeavesTheFormerVolumeMounted) {
    ASSERT_TRUE(images().mount(image_));

    ASSERT_EQ(mountUntilSignalled(volumes_, image_, GetParam()), 128 + GetParam());

    EXPECT_EQ(pictureOf(volumes_ / "Ovra"), pictureOf(tree_));
    EXPECT_TRUE(images().detach(volumes_ / "Ovra"));
    expectNoVolumes();
}

INSTANTIATE_TEST_SUITE_P(Signals, InterruptedMounts, ::testing::Values(SIGTERM, SIGKILL),
                         [](const auto& signal) {
                             return signal.param == SIGTERM ? "terminated" : "killed";
                         });

using MountsUnderWay = DiskImageFixture;

TEST_F(MountsUnderWay, areLeftAloneAsLongAsTheirProcessLives) {
    fillTree();
    const auto image = makeOvraImage();
    const auto underWay = volumes_ / ".Ovra.aside-0123456789abcdef";
    writeFile(underWay / "half", "half");
    const int held = ::open(underWay.c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_EQ(::flock(held, LOCK_EX | LOCK_NB), 0);

    ASSERT_TRUE(images().mount(image));
    expectVolumes({".Ovra.aside-0123456789abcdef", "Ovra"});
    EXPECT_EQ(readFile(underWay / "half"), "half");

    ::close(held);
    ASSERT_TRUE(images().mount(image));
    expectVolumes({"Ovra"});
}

TEST_F(MountsUnderWay, onlyFoldersOfThisToolCountAsAbandoned) {
    fillTree();
    const std::vector<std::string> foreign{".Ovra", ".Ovra.aside-", ".Ovra.aside-xyz", ".Trashes",
                                           "Ovra.aside-0123456789abcdef"};
    for (const std::string& name : foreign) {
        writeFile(volumes_ / name / "precious", "precious");
    }
    writeFile(volumes_ / ".File.aside-0123456789abcdef", "precious");
    std::filesystem::create_symlink(tree_, volumes_ / ".Link.aside-0123456789abcdef");
    auto expected = foreign;
    expected.insert(expected.end(), {".File.aside-0123456789abcdef", ".Link.aside-0123456789abcdef", "Ovra"});

    ASSERT_TRUE(images().mount(makeOvraImage()));

    expectVolumes(expected);
    EXPECT_EQ(pictureOf(volumes_ / "Ovra"), pictureOf(tree_));
}

TEST_F(MountsUnderWay, failingWriteLeavesNothing) {
    fillTree();
    writeFile(tree_ / "zz big", noise(2'000'000, 9));
    const auto image = makeOvraImage();

    const int status = waitForProcess(startProcess([&] {
        std::signal(SIGXFSZ, SIG_IGN); // the write fails instead
        const rlimit limit{1'000'000, 1'000'000};
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) {
            return 97;
        }
        const auto mounted = images().mount(image);
        return !mounted && mounted.error().code == EFBIG ? 0 : 1;
    }));

    EXPECT_EQ(status, 0);
    expectNoVolumes();
}

} // namespace
} // namespace lumora::testing

#include "disk_image_fixture.h"

#include <sys/wait.h>

#include <algorithm>

namespace lumora::testing {
namespace {

constexpr int kProcesses = 5;
constexpr int kRounds = 8;

class SimultaneousMounts : public DiskImageFixture {
  protected:
    void SetUp() override {
        fillTree();
        for (int index = 0; index < 40; ++index) {
            writeFile(tree_ / "tools" / std::to_string(index), noise(4000, static_cast<unsigned>(index)));
        }
        image_ = makeOvraImage();
    }
    std::filesystem::path image_;
    std::filesystem::path ovra_ = volumes_ / "Ovra";
};

TEST_F(SimultaneousMounts, allSucceedAndTheVolumeIsNeverAbsent) {
    ASSERT_TRUE(images().mount(image_));
    std::vector<int> running;
    for (int index = 0; index < kProcesses; ++index) {
        running.push_back(startProcess([&] {
            for (int round = 0; round < kRounds; ++round) {
                const auto mounted = images().mount(image_);
                if (!mounted || mounted.value().mountPoint != ovra_) {
                    return 1;
                }
            }
            return 0;
        }));
    }

    std::size_t absent = 0;
    std::size_t finished = 0;
    while (finished < running.size()) {
        absent += std::filesystem::exists(ovra_) ? 0U : 1U;
        int status = 0;
        const auto ended = std::find_if(running.begin(), running.end(), [&](int process) {
            return process > 0 && ::waitpid(process, &status, WNOHANG) == process;
        });
        if (ended != running.end()) {
            EXPECT_EQ(status, 0);
            *ended = 0;
            ++finished;
        }
    }

    EXPECT_EQ(absent, 0U);
    EXPECT_EQ(pictureOf(ovra_), pictureOf(tree_));
    expectVolumes({"Ovra"});
}

TEST_F(SimultaneousMounts, mountsAndDetachesInTurnLeaveNoHalfVolume) {
    std::vector<int> running;
    for (int index = 0; index < kProcesses; ++index) {
        running.push_back(startProcess([&] {
            for (int round = 0; round < kRounds; ++round) {
                if (!images().mount(image_)) {
                    return 1;
                }
                // Another process may have been quicker: then there is nothing to detach.
                static_cast<void>(static_cast<bool>(images().detach(ovra_)));
            }
            return 0;
        }));
    }
    for (const int process : running) {
        EXPECT_EQ(waitForProcess(process), 0);
    }

    // Each process detached after its last mount, so the last of them all removed what was there.
    expectNoVolumes();
}

} // namespace
} // namespace lumora::testing

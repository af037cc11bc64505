#include "selfupdate/self_update_test.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace lumora {
namespace {

using namespace std::chrono_literals;

/// An image tool whose first detach takes its time.
class SimultaneousChains : public SelfUpdateTest {
  protected:
    SimultaneousChains() {
        tasks.onRun = [this](const auto& run, platform::TaskOutput) {
            std::unique_lock lock(mutex_);
            if (run.at(1) == "mount") {
                ++mounts_;
                putVolume("new version");
            } else if (!detaching_) {
                detaching_ = true;
                changed_.notify_all();
                // Long enough for the second chain to come by when nothing holds it back.
                changed_.wait_for(lock, 300ms, [this] { return mounts_ > 1; });
                overlapped_ = mounts_ > 1;
            }
            changed_.notify_all();
            return platform::TaskResult{0, "/Volumes/Lumora Plugin"};
        };
    }

    void awaitDetach() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return detaching_; });
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    int mounts_ = 0;
    bool detaching_ = false;
    bool overlapped_ = false;
};

TEST_F(SimultaneousChains, takeTurnsWithTheImageAndItsVolume) {
    files.putFile("/tmp/first", "image");
    files.putFile("/tmp/second", "image");
    updater->downloadLumoradmg();
    OvraLumoraUpdater::getInstance()->downloadLumoradmg();

    std::thread first([this] { http.finishDownload(0, 200, "/tmp/first"); });
    awaitDetach();
    http.finishDownload(1, 200, "/tmp/second");
    first.join();

    EXPECT_FALSE(overlapped_);
    EXPECT_EQ(mounts_, 2);
    EXPECT_EQ(staged(), "new version");
    EXPECT_EQ(files.file(kUpdateImage), nullptr);
}

} // namespace
} // namespace lumora

#include "config/utils.h"
#include "selfupdate/self_update_test.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace lumora {
namespace {

using namespace std::chrono_literals;

constexpr const char* kTarget = "/Applications/Ovra Tessel Lumora.app";

/// A file system on which the staging copy takes its time, and which notes what is done to the staged bundle meanwhile.
/// One call at a time reaches the files behind.
class SlowStaging final : public platform::FileManager {
    template <class Call>
    auto locked(Call&& call) {
        std::lock_guard lock(mutex_);
        return call();
    }

  public:
    explicit SlowStaging(platform::FileManager& behind) : behind_(behind) {}

    /// Waits until the staging copy is under way.
    void awaitCopy() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return copying_; });
    }

    [[nodiscard]] bool touchedDuringCopy() {
        std::lock_guard lock(mutex_);
        return touchedDuringCopy_;
    }

    platform::Result<void> copyItem(const std::string& source, const std::string& destination) override {
        std::unique_lock lock(mutex_);
        if (destination == kStagedBundle) {
            copying_ = true;
            changed_.notify_all();
            // Long enough for the swap to come by when nothing holds it back.
            changed_.wait_for(lock, 300ms, [this] { return touchedDuringCopy_; });
            copying_ = false;
        }
        noteUseOf(source);
        return behind_.copyItem(source, destination);
    }

    bool fileExists(const std::string& path) override {
        std::lock_guard lock(mutex_);
        noteUseOf(path);
        return behind_.fileExists(path);
    }

    std::string homeDirectory() override { return behind_.homeDirectory(); }
    std::string libraryDirectory() override { return behind_.libraryDirectory(); }
    platform::Result<void> createDirectoryWithIntermediates(const std::string& path) override {
        return locked([&] { return behind_.createDirectoryWithIntermediates(path); });
    }
    platform::Result<void> removeItem(const std::string& path) override {
        return locked([&] { return behind_.removeItem(path); });
    }
    platform::Result<void> createFile(const std::string& path, std::string_view contents,
                                      const platform::FileAttributes& attributes) override {
        return locked([&] { return behind_.createFile(path, contents, attributes); });
    }
    platform::Result<std::string> readFile(const std::string& path) override {
        return locked([&] { return behind_.readFile(path); });
    }
    platform::Result<void> overwriteFile(const std::string& path, std::string_view contents) override {
        return locked([&] { return behind_.overwriteFile(path, contents); });
    }
    platform::Result<std::uint64_t> fileSize(const std::string& path) override {
        return locked([&] { return behind_.fileSize(path); });
    }
    platform::Result<void> truncateFile(const std::string& path) override {
        return locked([&] { return behind_.truncateFile(path); });
    }
    std::shared_ptr<void> holdFolder(const std::string& path) override {
        return locked([&] { return behind_.holdFolder(path); });
    }

  private:
    void noteUseOf(const std::string& path) {
        if (copying_ && path == kStagedBundle) {
            touchedDuringCopy_ = true;
            changed_.notify_all();
        }
    }

    platform::FileManager& behind_;
    std::mutex mutex_;
    std::condition_variable changed_;
    bool copying_ = false;
    bool touchedDuringCopy_ = false;
};

using SimultaneousSwap = SelfUpdateTest;

TEST_F(SimultaneousSwap, findsTheStagedBundleWholeWhileASecondChainReplacesIt) {
    putVolume("newest");
    files.putFolder(kStagedBundle);
    files.putFile(std::string(kStagedBundle) + "/Contents/MacOS/Ovra Tessel Lumora", "new");
    files.putFolder(kTarget);
    session.setIsAppReplaceFlag(true); // a first chain has staged already
    session.setLumoraAppPath(kTarget);
    session.setOvraLumoraNativeFolder(kStagingFolder);
    SlowStaging slow(files);
    platform::ports().fileManager = &slow;

    std::thread secondChain([this] { updater->copyAppFile(); });
    slow.awaitCopy();
    Utils::updateLumoraIfNeeded();
    secondChain.join();

    EXPECT_FALSE(slow.touchedDuringCopy());
    const auto* installed = files.file(std::string(kTarget) + "/Contents/MacOS/Ovra Tessel Lumora");
    ASSERT_NE(installed, nullptr);
    EXPECT_EQ(installed->contents, "newest");
}

} // namespace
} // namespace lumora

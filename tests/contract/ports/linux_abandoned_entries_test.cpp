// What a killed process leaves half made, and who removes it.

#include "platform/linux/ports/linux_file_manager.h"
#include "platform/linux/ports/temporary_file.h"
#include "platform/posix/temporary_sibling.h"
#include "support/in_child.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <thread>

namespace lumora::contract {
namespace {

namespace fs = std::filesystem;
using platform::linux_backend::HomeFolder;
using platform::linux_backend::LinuxFileManager;
using platform::linux_backend::TemporaryFile;
using platform::posix_backend::TemporarySibling;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

class AbandonedEntriesContract : public testing::Test {
  protected:
    AbandonedEntriesContract() {
        fs::create_directory(place_);
        fs::create_directory(source_);
        writeFile(source_ + "/big", "text");
        ::setenv("TMPDIR", place_.c_str(), 1);
    }
    ~AbandonedEntriesContract() override { ::unsetenv("TMPDIR"); }

    std::vector<std::string> names() {
        std::vector<std::string> found;
        for (const auto& entry : fs::directory_iterator(place_))
            found.push_back(entry.path().filename());
        return found;
    }

    TemporaryFolder folder_;
    const std::string place_ = folder_ / "place";
    const std::string source_ = folder_ / "source";
    LinuxFileManager files_{HomeFolder(folder_ / "home")};
};

TEST_F(AbandonedEntriesContract, aKilledCopyOfAFileGoesWithTheNextCreation) {
    ASSERT_EQ("", killedAtItsFirstByte(
                      [&] { static_cast<void>(files_.copyItem(source_ + "/big", place_ + "/copy")); }));
    ASSERT_THAT(names(), SizeIs(1));

    ASSERT_TRUE(files_.createFile(place_ + "/file", "text", {}));

    EXPECT_THAT(names(), ElementsAre("file"));
}

TEST_F(AbandonedEntriesContract, aKilledCreationGoesWithTheNextRemovalOfAFolder) {
    ASSERT_EQ("", killedAtItsFirstByte(
                      [&] { static_cast<void>(files_.createFile(place_ + "/file", "text", {})); }));
    ASSERT_THAT(names(), SizeIs(1));
    fs::create_directories(place_ + "/folder/inner");

    ASSERT_TRUE(files_.removeItem(place_ + "/folder"));

    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(AbandonedEntriesContract, aKilledDownloadGoesWithTheNextDownload) {
    ASSERT_EQ("", killedAtItsFirstByte([] {
                  TemporaryFile file;
                  while (file.append(std::string(4096, 'x'))) {
                  }
              }));
    ASSERT_THAT(names(), SizeIs(1));

    const TemporaryFile next;

    EXPECT_TRUE(next.isOpen());
    EXPECT_THAT(names(), ElementsAre(fs::path(next.path()).filename().string()));
}

TEST_F(AbandonedEntriesContract, whatALivingProcessMakesIsLeftAlone) {
    TemporarySibling folder(place_ + "/a");
    TemporarySibling file(place_ + "/b");
    ASSERT_GE(folder.createFolder(), 0);
    ASSERT_GE(file.createFile(0600), 0);
    const TemporaryFile download;
    writeFile(folder.path() + "/half", "half");

    // As another process sees it, too.
    EXPECT_EQ("", inChild([&]() -> std::string {
                  const bool created = static_cast<bool>(files_.createFile(place_ + "/c", "text", {}));
                  return created && TemporaryFile().isOpen() ? "" : "not created";
              }));
    ASSERT_TRUE(files_.createFile(place_ + "/d", "text", {}));
    const TemporaryFile second;

    EXPECT_EQ("half", contentsOf(folder.path() + "/half"));
    EXPECT_TRUE(fs::exists(file.path()));
    EXPECT_TRUE(fs::exists(download.path()));
    EXPECT_EQ(0, folder.placeIfFree());
    EXPECT_EQ(0, file.placeIfFree());
    EXPECT_TRUE(fs::exists(place_ + "/a/half"));
}

TEST_F(AbandonedEntriesContract, whatIsMadeInsideAHeldFolderIsPlacedWholeOrGoesWithIt) {
    fs::permissions(folder_.path(), fs::perms(0755));
    fs::permissions(place_, fs::perms(0777));
    EXPECT_EQ("", asOrdinaryUser([&]() -> std::string {
                  TemporarySibling folder(place_ + "/folder");
                  TemporarySibling again(place_ + "/folder");
                  if (folder.createFolder() < 0 || again.createFolder() < 0)
                      return "not created";
                  for (const TemporarySibling* each : {&folder, &again}) {
                      fs::create_directory(each->inside());
                      writeFile(each->inside() + "/file", "text");
                      fs::permissions(each->inside(), fs::perms(0555));
                  }
                  if (folder.placeInsideIfFree() != 0)
                      return "not placed";
                  return again.placeInsideIfFree() == EEXIST ? "" : "placed over another";
              }));

    EXPECT_THAT(names(), ElementsAre("folder"));
    EXPECT_EQ("text", contentsOf(place_ + "/folder/file"));
    EXPECT_EQ(fs::perms(0555), fs::status(place_ + "/folder").permissions());
}

TEST_F(AbandonedEntriesContract, nothingNewIsLostToOneWhoSweepsAtTheSameMoment) {
    std::atomic<bool> done = false;
    std::thread sweeper([&] {
        while (!done)
            const TemporarySibling sweeps(place_ + "/other");
    });
    for (int round = 0; round < 300; ++round) {
        const std::string name = place_ + "/" + std::to_string(round);
        ASSERT_TRUE(files_.createFile(name, "text", {})) << round;
        ASSERT_EQ("text", contentsOf(name)) << round;
        TemporarySibling folder(name + " folder");
        ASSERT_GE(folder.createFolder(), 0) << round;
        ASSERT_EQ(0, folder.placeIfFree()) << round;
    }
    done = true;
    sweeper.join();
}

TEST_F(AbandonedEntriesContract, onlyFilesAndFoldersOfThisFormCount) {
    const std::vector<std::string> others{
        ".lumora-",        ".lumora-abc",   ".lumora-1-ab",     ".lumora-1-xy-0",
        ".lumora-1-ab-0x", "lumora-1-ab-0", "lumora-download-", "lumora-download-abcdefg"};
    for (const std::string& name : others)
        writeFile(place_ + "/" + name, "kept");
    fs::create_symlink(source_, place_ + "/.lumora-1-ab-0");
    ASSERT_EQ(0, ::mkfifo((place_ + "/.lumora-2-ab-0").c_str(), 0600));
    auto expected = others;
    expected.insert(expected.end(), {".lumora-1-ab-0", ".lumora-2-ab-0"});
    for (const char* abandoned : {".lumora-3-ab-0", "lumora-download-a1B2c3"})
        writeFile(place_ + "/" + abandoned, "gone");

    { const TemporaryFile download; }
    { const TemporarySibling sibling(place_ + "/x"); }

    EXPECT_THAT(names(), testing::UnorderedElementsAreArray(expected));
    EXPECT_TRUE(fs::exists(source_ + "/big"));
}

TEST_F(AbandonedEntriesContract, whatAnotherUserLeftIsHis) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser can make a file of another user";
    writeFile(place_ + "/.lumora-1-ab-0", "another's");
    ASSERT_EQ(0, ::chown((place_ + "/.lumora-1-ab-0").c_str(), 65534, 65534));

    { const TemporarySibling sibling(place_ + "/x"); }

    EXPECT_THAT(names(), UnorderedElementsAre(".lumora-1-ab-0"));
}

} // namespace
} // namespace lumora::contract

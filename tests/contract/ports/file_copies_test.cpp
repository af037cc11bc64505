#include "support/file_manager_fixture.h"
#include "support/in_child.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <thread>

namespace lumora::contract {
namespace {

namespace fs = std::filesystem;

TEST_F(FileManagerContract, aBundleIsCopiedWhole) {
    const std::string source = folder_ / "Source.app";
    const std::string target = home_ + "/Copy.app";
    fs::create_directories(source + "/Contents/MacOS");
    writeFile(source + "/Contents/MacOS/tool", "program");
    fs::permissions(source + "/Contents/MacOS/tool", fs::perms(0751));
    writeFile(source + "/Contents/empty", "");
    writeFile(source + "/Contents/large", std::string(3 << 20, 'z'));
    fs::create_symlink("MacOS/tool", source + "/Contents/link");
    fs::create_symlink("/nowhere/at/all", source + "/Contents/dangling");
    ASSERT_EQ(0, setAttribute((source + "/Contents/empty"), "user.note", std::string("a\0b", 3)));
    ASSERT_EQ(0, setAttribute(source, "user.folder", std::string("x", 1)));
    setTimes(source + "/Contents/MacOS/tool", 1000000001, 123456789);
    setTimes(source + "/Contents/link", 1000000002, 2);
    fs::permissions(source + "/Contents/MacOS", fs::perms(0555));
    setTimes(source + "/Contents/MacOS", 1000000003, 3);
    setTimes(source, 1000000004, 4);

    const auto copied = files_.copyItem(source, target);

    ASSERT_TRUE(copied) << copied.error().localizedDescription;
    EXPECT_EQ("program", contentsOf(target + "/Contents/MacOS/tool"));
    EXPECT_EQ(0751U, statusOf(target + "/Contents/MacOS/tool").st_mode & 07777U);
    EXPECT_EQ(1000000001, modificationOf(target + "/Contents/MacOS/tool").tv_sec);
    EXPECT_EQ(123456789, modificationOf(target + "/Contents/MacOS/tool").tv_nsec);
    EXPECT_EQ(0555U, statusOf(target + "/Contents/MacOS").st_mode & 07777U);
    EXPECT_EQ(1000000003, modificationOf(target + "/Contents/MacOS").tv_sec);
    EXPECT_EQ(1000000004, modificationOf(target).tv_sec);
    EXPECT_EQ("MacOS/tool", fs::read_symlink(target + "/Contents/link"));
    EXPECT_EQ(1000000002, modificationOf(target + "/Contents/link").tv_sec);
    EXPECT_EQ("/nowhere/at/all", fs::read_symlink(target + "/Contents/dangling"));
    EXPECT_EQ(std::string(3 << 20, 'z'), contentsOf(target + "/Contents/large"));
    EXPECT_EQ(3, attributeSize((target + "/Contents/empty"), "user.note"));
    EXPECT_EQ(1, attributeSize(target, "user.folder"));
    EXPECT_THAT(namesIn(home_), testing::ElementsAre("Copy.app"));
}

TEST_F(FileManagerContract, aReadOnlyBundleIsCopiedByAnOrdinaryUser) {
    const std::string source = folder_ / "Source.app";
    fs::create_directories(source + "/Contents");
    writeFile(source + "/Contents/file", "text");
    for (const char* inner : {"/Contents", ""})
        fs::permissions(source + inner, fs::perms(0555));
    fs::permissions(home_, fs::perms(0777));

    EXPECT_EQ("", asOrdinaryUser([&]() -> std::string {
                  if (const auto copied = files_.copyItem(source, home_ + "/Copy.app"); !copied)
                      return copied.error().localizedDescription;
                  if (contentsOf(home_ + "/Copy.app/Contents/file") != "text")
                      return "not the file's contents";
                  const auto removed = files_.removeItem(home_ + "/Copy.app");
                  return removed ? "" : removed.error().localizedDescription;
              }));
    EXPECT_THAT(namesIn(home_), testing::IsEmpty());
}

TEST_F(FileManagerContract, aSingleLinkIsCopiedAsALink) {
    fs::create_symlink("nowhere", home_ + "/link");

    ASSERT_TRUE(files_.copyItem(home_ + "/link", home_ + "/copy"));

    EXPECT_EQ("nowhere", fs::read_symlink(home_ + "/copy"));
}

TEST_F(FileManagerContract, copyRefusesAnExistingDestination) {
    writeFile(home_ + "/source", "new");
    writeFile(home_ + "/file", "old");
    fs::create_directory(home_ + "/folder");
    fs::create_symlink("nowhere", home_ + "/dangling");

    for (const char* name : {"/file", "/folder", "/dangling"}) {
        const auto copied = files_.copyItem(home_ + "/source", home_ + name);
        ASSERT_FALSE(copied) << name;
        EXPECT_EQ(EEXIST, errnoOf(copied.error())) << name;
    }
    EXPECT_EQ("old", contentsOf(home_ + "/file"));
    EXPECT_THAT(namesIn(home_), testing::UnorderedElementsAre("source", "file", "folder", "dangling"));
}

TEST_F(FileManagerContract, copyOfNothingOrIntoNowhereFails) {
    writeFile(home_ + "/source", "");

    EXPECT_EQ(ENOENT, errnoOf(files_.copyItem(home_ + "/missing", home_ + "/copy").error()));
    EXPECT_EQ(ENOENT, errnoOf(files_.copyItem(home_ + "/source", home_ + "/missing/copy").error()));
    EXPECT_FALSE(fs::exists(home_ + "/copy"));
}

TEST_F(FileManagerContract, aFolderIsNotCopiedIntoItself) {
    fs::create_directories(home_ + "/folder/inner");
    fs::create_symlink("folder/inner", home_ + "/way-in");

    EXPECT_EQ(EINVAL, errnoOf(files_.copyItem(home_ + "/folder", home_ + "/folder/inner/copy").error()));
    EXPECT_EQ(EINVAL, errnoOf(files_.copyItem(home_ + "/folder", home_ + "/folder/copy").error()));
    EXPECT_EQ(EINVAL, errnoOf(files_.copyItem(home_ + "/folder", home_ + "/way-in/copy").error()));
    EXPECT_TRUE(files_.copyItem(home_ + "/folder", home_ + "/folder copy"));
    EXPECT_THAT(namesIn(home_ + "/folder"), testing::ElementsAre("inner"));
}

TEST_F(FileManagerContract, aSpecialFileFailsTheWholeCopyAndLeavesNothing) {
    fs::create_directory(home_ + "/folder");
    writeFile(home_ + "/folder/file", "text");
    ASSERT_EQ(0, ::mkfifo((home_ + "/folder/pipe").c_str(), 0600));

    const auto copied = files_.copyItem(home_ + "/folder", home_ + "/copy");

    ASSERT_FALSE(copied);
    EXPECT_EQ(ENOTSUP, errnoOf(copied.error()));
    EXPECT_THAT(namesIn(home_), testing::ElementsAre("folder"));
}

TEST_F(FileManagerContract, anUnreadableFileFailsTheWholeCopyAndLeavesNothing) {
    fs::create_directory(home_ + "/folder");
    writeFile(home_ + "/folder/secret", "text");
    fs::permissions(home_ + "/folder/secret", fs::perms(0));
    fs::permissions(home_, fs::perms(0777));

    EXPECT_EQ("", asOrdinaryUser([&]() -> std::string {
                  const auto copied = files_.copyItem(home_ + "/folder", home_ + "/copy");
                  if (copied)
                      return "copied";
                  return errnoOf(copied.error()) == EACCES ? "" : copied.error().localizedDescription;
              }));
    EXPECT_THAT(namesIn(home_), testing::ElementsAre("folder"));
}

TEST_F(FileManagerContract, aCopyIsNeverSeenHalf) {
    const std::string source = folder_ / "source";
    fs::create_directory(source);
    constexpr int kFiles = 50;
    for (int file = 0; file < kFiles; ++file)
        writeFile(fmt::format("{}/{}", source, file), "x");

    for (int round = 0; round < 20; ++round) {
        const std::string target = fmt::format("{}/copy{}", home_, round);
        std::atomic<bool> half = false;
        std::atomic<bool> done = false;
        std::thread watcher([&] {
            while (!done) {
                std::error_code missing;
                const auto count =
                    std::distance(fs::directory_iterator(target, missing), fs::directory_iterator());
                if (!missing && count != kFiles)
                    half = true;
            }
        });
        EXPECT_TRUE(files_.copyItem(source, target));
        done = true;
        watcher.join();
        EXPECT_FALSE(half);
    }
}

TEST_F(FileManagerContract, whatAKilledCopyLeavesGoesWithTheNextCopy) {
    if (!kCopiesAreWritten)
        GTEST_SKIP() << "nothing ends a copy midway that the file system makes in one step";
    fs::create_directory(folder_ / "source");
    writeFile(folder_ / "source/file", "text");
    const auto copy = [this] { return files_.copyItem(folder_ / "source", home_ + "/copy"); };
    ASSERT_EQ("", killedAtItsFirstByte([&] { static_cast<void>(copy()); }));
    ASSERT_THAT(namesIn(home_), testing::SizeIs(1));
    ASSERT_FALSE(fs::exists(home_ + "/copy"));

    ASSERT_TRUE(copy());

    EXPECT_THAT(namesIn(home_), testing::ElementsAre("copy"));
    EXPECT_EQ("text", contentsOf(home_ + "/copy/file"));
}

TEST_F(FileManagerContract, twoCopiesToOnePlaceGiveOneWholeCopy) {
    for (const char* name : {"a", "b"}) {
        fs::create_directory(folder_ / name);
        for (int file = 0; file < 20; ++file)
            writeFile(fmt::format("{}/{}{}", folder_ / name, name, file), name);
    }
    int successes = 0;
    std::thread other([&] { successes += files_.copyItem(folder_ / "a", home_ + "/copy") ? 1 : 0; });
    const bool own = static_cast<bool>(files_.copyItem(folder_ / "b", home_ + "/copy"));
    other.join();

    EXPECT_EQ(1, successes + (own ? 1 : 0));
    EXPECT_EQ(20U, namesIn(home_ + "/copy").size());
    EXPECT_THAT(namesIn(home_), testing::ElementsAre("copy"));
}

} // namespace
} // namespace lumora::contract

#include "support/eventually.h"
#include "support/file_manager_fixture.h"
#include "support/in_child.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <thread>

namespace lumora::contract {
namespace {

namespace fs = std::filesystem;
using platform::FileAttributes;

TEST_F(FileManagerContract, tellsTheFoldersWithoutATrailingSlash) {
    const std::string home = homeOf(home_);

    EXPECT_EQ(home, files_.homeDirectory());
    EXPECT_EQ(home + "/Library", files_.libraryDirectory());
}

TEST_F(FileManagerContract, foldersAreCreatedWithTheirParentsAndAgain) {
    ASSERT_TRUE(files_.createDirectoryWithIntermediates(home_ + "/Library//Logs/a/b/"));
    ASSERT_TRUE(files_.createDirectoryWithIntermediates(home_ + "/Library//Logs/a/b/"));
    EXPECT_TRUE(fs::is_directory(home_ + "/Library/Logs/a/b"));

    writeFile(home_ + "/file", "");
    const auto overAFile = files_.createDirectoryWithIntermediates(home_ + "/file/inner");
    ASSERT_FALSE(overAFile);
    EXPECT_EQ(ENOTDIR, errnoOf(overAFile.error()));
    EXPECT_FALSE(files_.createDirectoryWithIntermediates(home_ + "/file"));
    EXPECT_FALSE(files_.createDirectoryWithIntermediates(""));
}

TEST_F(FileManagerContract, existenceFollowsLinks) {
    fs::create_symlink("nowhere", home_ + "/dangling");
    fs::create_symlink(".", home_ + "/link");

    EXPECT_FALSE(files_.fileExists(home_ + "/dangling"));
    EXPECT_TRUE(files_.fileExists(home_ + "/link"));
    EXPECT_TRUE(files_.fileExists(home_ + "//link///"));
    EXPECT_FALSE(files_.fileExists(std::string(home_ + "/link") + '\0' + "more"));
    EXPECT_FALSE(files_.fileExists(""));
}

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

TEST_F(FileManagerContract, aPathThatHoldsANulIsNoShorterOne) {
    const std::string cut = home_ + "/source" + '\0' + "more";
    EXPECT_EQ(EINVAL, errnoOf(files_.createDirectoryWithIntermediates(cut).error()));
    EXPECT_FALSE(fs::exists(home_ + "/source"));

    writeFile(home_ + "/source", "");
    EXPECT_FALSE(files_.fileExists(cut));
    EXPECT_EQ(EINVAL, errnoOf(files_.copyItem(cut, home_ + "/copy").error()));
    EXPECT_EQ(EINVAL, errnoOf(files_.removeItem(cut).error()));
    EXPECT_TRUE(fs::exists(home_ + "/source"));
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

TEST_F(FileManagerContract, removalNeverTouchesALinksTarget) {
    fs::create_directory(folder_ / "kept");
    writeFile(folder_ / "kept/file", "text");
    fs::create_directory(home_ + "/folder");
    fs::create_symlink(folder_ / "kept", home_ + "/folder/link");
    fs::create_symlink(folder_ / "kept", home_ + "/link");

    ASSERT_TRUE(files_.removeItem(home_ + "/folder"));
    ASSERT_TRUE(files_.removeItem(home_ + "/link/"));

    EXPECT_THAT(namesIn(home_), testing::IsEmpty());
    EXPECT_EQ("text", contentsOf(folder_ / "kept/file"));
}

TEST_F(FileManagerContract, removalOpensUpReadOnlyFoldersInsideButNotTheOneAround) {
    fs::permissions(home_, fs::perms(0777));

    EXPECT_EQ("", asOrdinaryUser([&]() -> std::string {
                      fs::create_directories(home_ + "/a/closed/inner");
                      writeFile(home_ + "/a/closed/inner/file", "text");
                      fs::permissions(home_ + "/a/closed/inner", fs::perms(0));
                      fs::permissions(home_ + "/a/closed", fs::perms(0555));
                      if (const auto removed = files_.removeItem(home_ + "/a"); !removed)
                          return removed.error().localizedDescription;
                      fs::create_directory(home_ + "/around");
                      writeFile(home_ + "/around/file", "text");
                      fs::permissions(home_ + "/around", fs::perms(0555));
                      if (files_.removeItem(home_ + "/around/file"))
                          return "removed from a read-only folder";
                      return contentsOf(home_ + "/around/file");
                  }).replace(0, 4, ""));
    EXPECT_FALSE(fs::exists(home_ + "/a"));
}

TEST_F(FileManagerContract, removalOfNothingIsAnError) {
    EXPECT_EQ(ENOENT, errnoOf(files_.removeItem(home_ + "/missing").error()));
    EXPECT_FALSE(files_.removeItem(""));
}

TEST_F(FileManagerContract, aCreatedFileHasItsModeWhateverTheUmask) {
    FileAttributes attributes;
    attributes.posixPermissions = 0600;
    attributes.completeProtection = true;
    const mode_t previous = ::umask(0277);
    const auto restricted = files_.createFile(home_ + "/restricted", "secret", attributes);
    ::umask(0022);
    const auto plain = files_.createFile(home_ + "/plain", "text", {});
    ::umask(previous);

    ASSERT_TRUE(restricted);
    ASSERT_TRUE(plain);
    EXPECT_EQ(0600U, statusOf(home_ + "/restricted").st_mode & 07777U);
    EXPECT_EQ(0644U, statusOf(home_ + "/plain").st_mode & 07777U);
    EXPECT_EQ("secret", contentsOf(home_ + "/restricted"));
}

TEST_F(FileManagerContract, aRestrictedFileIsAtNoMomentOpenToOthers) {
    std::atomic<bool> done = false;
    std::atomic<bool> open = false;
    std::thread watcher([&] {
        while (!done) {
            for (const auto& entry : fs::directory_iterator(home_)) {
                struct stat status {};
                if (::lstat(entry.path().c_str(), &status) == 0 && (status.st_mode & 077U) != 0)
                    open = true;
            }
        }
    });
    FileAttributes attributes;
    attributes.posixPermissions = 0600;
    for (int round = 0; round < 500; ++round) {
        EXPECT_TRUE(files_.createFile(home_ + "/details", std::string(4096, 's'), attributes));
        EXPECT_TRUE(files_.removeItem(home_ + "/details"));
    }
    done = true;
    watcher.join();

    EXPECT_FALSE(open);
}

TEST_F(FileManagerContract, aCreatedFileReplacesAFileAndAPlantedLinkButNoFolder) {
    writeFile(folder_ / "victim", "untouched");
    writeFile(home_ + "/file", "old, and longer than the new text");
    fs::create_symlink(folder_ / "victim", home_ + "/planted");
    fs::create_symlink(folder_ / "absent", home_ + "/dangling");
    fs::create_directory(home_ + "/folder");

    EXPECT_TRUE(files_.createFile(home_ + "/file", "new", {}));
    EXPECT_TRUE(files_.createFile(home_ + "/planted", "new", {}));
    EXPECT_TRUE(files_.createFile(home_ + "/dangling", "new", {}));
    EXPECT_FALSE(files_.createFile(home_ + "/folder", "new", {}));
    EXPECT_FALSE(files_.createFile(home_ + "/missing/file", "new", {}));

    EXPECT_EQ("new", contentsOf(home_ + "/file"));
    EXPECT_EQ("untouched", contentsOf(folder_ / "victim"));
    EXPECT_FALSE(fs::exists(folder_ / "absent"));
    EXPECT_FALSE(fs::is_symlink(home_ + "/dangling"));
    EXPECT_THAT(namesIn(home_), testing::UnorderedElementsAre("file", "planted", "dangling", "folder"));
}

TEST_F(FileManagerContract, overwritingKeepsTheFileItself) {
    writeFile(home_ + "/file", "old, and longer");
    const auto before = statusOf(home_ + "/file").st_ino;
    fs::create_hard_link(home_ + "/file", home_ + "/second name");

    ASSERT_TRUE(files_.overwriteFile(home_ + "/file", "new"));

    EXPECT_EQ(before, statusOf(home_ + "/file").st_ino);
    EXPECT_EQ("new", contentsOf(home_ + "/second name"));
    EXPECT_EQ(ENOENT, errnoOf(files_.overwriteFile(home_ + "/missing", "new").error()));
    EXPECT_FALSE(fs::exists(home_ + "/missing"));
}

TEST_F(FileManagerContract, readingTellsTheBytesOrTheError) {
    const std::string bytes("a\0b\xff", 4);
    writeFile(home_ + "/file", bytes);
    ASSERT_EQ(0, ::mkfifo((home_ + "/pipe").c_str(), 0600));

    EXPECT_EQ(bytes, files_.readFile(home_ + "/file").value());
    EXPECT_EQ(ENOENT, errnoOf(files_.readFile(home_ + "/missing").error()));
    EXPECT_EQ(EISDIR, errnoOf(files_.readFile(home_).error()));
    EXPECT_FALSE(files_.readFile(home_ + "/pipe")) << "without waiting for a writer";
}

TEST_F(FileManagerContract, sizeAndTruncationKeepTheFile) {
    writeFile(home_ + "/log", "12345");
    const int appending = ::open((home_ + "/log").c_str(), O_WRONLY | O_APPEND);

    EXPECT_EQ(5U, files_.fileSize(home_ + "/log").value());
    ASSERT_TRUE(files_.truncateFile(home_ + "/log"));
    ASSERT_EQ(2, ::write(appending, "ab", 2));
    ::close(appending);

    EXPECT_EQ("ab", contentsOf(home_ + "/log"));
    EXPECT_FALSE(files_.fileSize(home_ + "/missing"));
    EXPECT_FALSE(files_.truncateFile(home_ + "/missing"));
    EXPECT_FALSE(fs::exists(home_ + "/missing"));
}

TEST_F(FileManagerContract, aHeldFolderIsWaitedForByOtherProcesses) {
    Child holder([&]() -> std::string {
        const auto hold = files_.holdFolder(home_ + "/");
        writeFile(folder_ / "held", "");
        std::this_thread::sleep_for(std::chrono::milliseconds(300)); // for the other to come by
        writeFile(folder_ / "done", "");
        return hold ? "" : "not held";
    });
    ASSERT_TRUE(eventually([&] { return fs::exists(folder_ / "held"); }));

    const auto hold = files_.holdFolder(home_);

    EXPECT_TRUE(hold);
    EXPECT_TRUE(fs::exists(folder_ / "done")) << "held by two at once";
    EXPECT_EQ("", holder.report());
    EXPECT_FALSE(files_.holdFolder(home_ + "/missing"));
}

TEST_F(FileManagerContract, aHoldEndsWithItsLastOwnerAndWithItsProcess) {
    { const auto hold = files_.holdFolder(home_); }
    EXPECT_EQ("", inChild([&]() -> std::string {
                  auto* forgotten = new std::shared_ptr<void>(files_.holdFolder(home_));
                  return *forgotten ? "" : "not held";
              }));
    EXPECT_TRUE(files_.holdFolder(home_));
}

} // namespace
} // namespace lumora::contract

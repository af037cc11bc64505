#include "support/eventually.h"
#include "support/file_manager_fixture.h"
#include "support/in_child.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
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

#include "support/file_manager_fixture.h"
#include "support/in_child.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace lumora::contract {
namespace {

namespace fs = std::filesystem;
using platform::linux_backend::HomeFolder;

TEST_F(FileManagerContract, homeIsTheEnvironmentsOrTheUserDatabases) {
    EXPECT_EQ("", inChild([]() -> std::string {
                  ::setenv("HOME", "/some/where//", 1);
                  if (HomeFolder().path() != "/some/where")
                      return "environment: " + HomeFolder().path();
                  ::unsetenv("HOME");
                  return ::getuid() != 0 || HomeFolder().path() == "/root"
                             ? ""
                             : "database: " + HomeFolder().path();
              }));
}

TEST_F(FileManagerContract, aLoneFilesCopyInAFolderThatEverybodyWritesIsItsOwnersToChange) {
    const std::string script = home_ + "/script.sh";
    const std::string shared = folder_ / "shared";
    fs::create_directory(shared);
    fs::permissions(shared, fs::perms(0755));
    writeFile(script, "echo");
    fs::permissions(script, fs::perms(0777));

    ASSERT_TRUE(files_.copyItem(script, shared + "/private folder"));
    fs::permissions(shared, fs::perms(01777));
    ASSERT_TRUE(files_.copyItem(script, shared + "/shared folder"));

    EXPECT_EQ(0777U, statusOf(shared + "/private folder").st_mode & 07777U);
    EXPECT_EQ(0755U, statusOf(shared + "/shared folder").st_mode & 07777U);
}

TEST_F(FileManagerContract, insideTheHomeFolderAnEntryIsFoundWhateverItsCase) {
    fs::create_directories(home_ + "/Library/\xC3\x89t\xC3\xA9");
    writeFile(home_ + "/Library/\xC3\x89t\xC3\xA9/Ovra.app", "agent");

    EXPECT_TRUE(files_.fileExists(home_ + "/library//e\xCC\x81T\xC3\x89/Ovra.App"));
    EXPECT_EQ("agent", files_.readFile(home_ + "/LIBRARY/\xC3\xA9t\xC3\xA9/OVRA.APP").value());
    ASSERT_TRUE(files_.removeItem(home_ + "/Library/\xC3\x89t\xC3\xA9/Ovra.App"));
    EXPECT_FALSE(fs::exists(home_ + "/Library/\xC3\x89t\xC3\xA9/Ovra.app"));
}

TEST_F(FileManagerContract, theExactSpellingWinsAndNewNamesKeepTheirCase) {
    writeFile(home_ + "/name", "lower");
    writeFile(home_ + "/NAME", "upper");
    fs::create_directory(home_ + "/Folder");

    EXPECT_EQ("lower", files_.readFile(home_ + "/name").value());
    EXPECT_EQ("upper", files_.readFile(home_ + "/NAME").value());
    EXPECT_EQ("upper", files_.readFile(home_ + "/Name").value()) << "the first in byte order";
    ASSERT_TRUE(files_.createDirectoryWithIntermediates(home_ + "/FOLDER/Inner/MoreInner"));
    ASSERT_TRUE(files_.createFile(home_ + "/folder/inner/NewFile", "x", {}));
    EXPECT_TRUE(fs::exists(home_ + "/Folder/Inner/MoreInner"));
    EXPECT_TRUE(fs::exists(home_ + "/Folder/Inner/NewFile"));
    EXPECT_EQ(EEXIST, files_.copyItem(home_ + "/name", home_ + "/folder/inner/NEWFILE").error().code);
}

TEST_F(FileManagerContract, outsideTheHomeFolderCaseCounts) {
    writeFile(folder_ / "File", "");

    EXPECT_FALSE(files_.fileExists(folder_ / "file"));
    EXPECT_FALSE(files_.fileExists(folder_ / "HOME"));
}

} // namespace
} // namespace lumora::contract

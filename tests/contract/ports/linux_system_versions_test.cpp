#include "platform/linux/ports/linux_system_versions.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

namespace lumora::contract {
namespace {

using platform::linux_backend::LinuxSystemVersions;

class OsReleaseContract : public testing::Test {
  protected:
    platform::SystemVersion read(const std::string& text) {
        writeFile(folder_ / "os-release", text);
        return LinuxSystemVersions({folder_ / "missing", folder_ / "os-release"}).current();
    }

    TemporaryFolder folder_;
};

TEST_F(OsReleaseContract, quotesAndEscapesAreTakenOff) {
    const auto plain = read("PRETTY_NAME=\"no\"\nNAME=Debian\nVERSION_ID=12\n");
    EXPECT_EQ("Debian", plain.productName);
    EXPECT_EQ("12", plain.productVersion);

    const auto quoted =
        read("# NAME=comment\nNAME=\"A \\\"B\\\" \\$5 \\`c\\` \\\\ 'd'\"\nVERSION_ID='1\\2'\n");
    EXPECT_EQ("A \"B\" $5 `c` \\ 'd'", quoted.productName);
    EXPECT_EQ("1\\2", quoted.productVersion);

    const auto last = read("NAME=first\r\nNAME=second\nVERSION_ID=\"\"");
    EXPECT_EQ("second", last.productName);
    EXPECT_EQ("", last.productVersion);
}

TEST_F(OsReleaseContract, whatTheFileDoesNotTellIsAbsent) {
    EXPECT_EQ(std::nullopt, read("NAME=Rolling\n").productVersion);
    EXPECT_EQ(std::nullopt, read("junk\n").productName);
    const auto missing = LinuxSystemVersions({folder_ / "missing"}).current();
    EXPECT_EQ(std::nullopt, missing.productName);
    EXPECT_EQ(std::nullopt, missing.productVersion);
}

} // namespace
} // namespace lumora::contract

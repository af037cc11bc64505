#include "support/backend.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>

namespace lumora::contract {
namespace {

/// What a command prints, without the last line's end.
std::string printed(const char* command) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command, "r"), &::pclose);
    std::array<char, 256> bytes{};
    std::string text(bytes.data(), std::fread(bytes.data(), 1, bytes.size(), pipe.get()));
    if (text.ends_with('\n'))
        text.pop_back();
    return text;
}

TEST(SystemVersionsContract, thisSystemTellsItsNameAndVersion) {
    const auto version = makeSystemVersions()->current();

    EXPECT_NE("", version.productName.value_or(""));
    EXPECT_EQ(printed(kProductNameCommand), version.productName);
    EXPECT_NE("", version.productVersion.value_or(""));
    EXPECT_EQ(printed(kProductVersionCommand), version.productVersion);
}

} // namespace
} // namespace lumora::contract

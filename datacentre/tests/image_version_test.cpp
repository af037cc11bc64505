#include "images/image_version.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace datacentre {
namespace {

TEST(Versions, areComparedPartByPart) {
    EXPECT_TRUE(isOlder("9.9", "9.10"));
    EXPECT_TRUE(isOlder("12.4", "12.4.1"));
    EXPECT_FALSE(isOlder("12.4.0", "12.4"));
    EXPECT_FALSE(isOlder("12.5", "12.4.9"));
    EXPECT_FALSE(isOlder("12.4.0", "12.4.0"));
}

TEST(Versions, whatIsNoVersionCountsAsOlder) {
    for (const char* text : {"0", "", "(null)", "12.", "12.x"})
        EXPECT_TRUE(isOlder(text, "12.4.0")) << text;
}

TEST(Versions, areReplacedInAPropertyList) {
    const std::string list =
        "<dict>\n\t<key>CFBundleShortVersionString</key>\n\t<string>1.0</string>\n</dict>";
    EXPECT_EQ(withVersion(list, "2.1"),
              "<dict>\n\t<key>CFBundleShortVersionString</key>\n\t<string>2.1</string>\n</dict>");
    EXPECT_THROW((void)withVersion("<dict/>", "2.1"), std::runtime_error);
}

TEST(Versions, aMissingImageHasNone) { EXPECT_EQ(imageVersion("/nonexistent/OvraMac.dmg"), std::nullopt); }

} // namespace
} // namespace datacentre

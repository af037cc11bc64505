#include "command_line.h"
#include "server/listen_address.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace datacentre {
namespace {

TEST(CommandLine, collectsRepeatedValues) {
    const CommandLine line({"--host", "a", "--drive", "--host", "b"}, {"host"}, {"drive"});
    EXPECT_EQ(line.all("host"), (std::vector<std::string>{"a", "b"}));
    EXPECT_TRUE(line.has("drive"));
}

TEST(CommandLine, aFlagThatWasNotGivenIsNotThere) {
    EXPECT_FALSE(CommandLine({}, {}, {"drive"}).has("drive"));
}

TEST(CommandLine, refusesWhatItDoesNotKnow) {
    EXPECT_THROW(CommandLine({"--nonsense"}, {"host"}, {}), UsageError);
    EXPECT_THROW(CommandLine({"host"}, {"host"}, {}), UsageError);
    EXPECT_THROW(CommandLine({"--host"}, {"host"}, {}), UsageError);
    EXPECT_THROW((void)CommandLine({}, {"host"}, {}).required("host"), UsageError);
}

TEST(ListenAddress, readsBothFamilies) {
    EXPECT_EQ(ListenAddress::parse("127.0.0.1:443").host, "127.0.0.1");
    EXPECT_EQ(ListenAddress::parse("[::1]:443").host, "::1");
    EXPECT_EQ(ListenAddress::parse("[::1]:443").text(), "[::1]:443");
}

TEST(ListenAddress, refusesAPortThatIsNone) {
    for (const char* text : {"localhost", ":443", "a:", "a:65536", "a:-1", "a:80x"})
        EXPECT_THROW((void)ListenAddress::parse(text), std::invalid_argument) << text;
}

} // namespace
} // namespace datacentre

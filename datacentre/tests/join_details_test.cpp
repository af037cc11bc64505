#include "agent/join_details.h"

#include <gtest/gtest.h>

namespace datacentre::agent {
namespace {

JoinDetails parsed(const std::string& bytes) {
    JoinDetails details;
    details.bytes = bytes;
    parseJoinDetails(details);
    return details;
}

TEST(JoinDetails, readsEveryPairAsItStands) {
    const auto details = parsed("OVRA_VARLO_IND\n&key=123456789&lumora_token=&DC=(null)&email=a=b@c%20d&");
    EXPECT_TRUE(details.wellFormed);
    EXPECT_EQ(details.marker, "OVRA_VARLO_IND");
    EXPECT_EQ(details.pairs.size(), 4U);
    EXPECT_EQ(details.value("key"), "123456789");
    EXPECT_EQ(details.value("lumora_token"), "");
    EXPECT_EQ(details.value("DC"), "(null)");
    EXPECT_EQ(details.value("email"), "a=b@c%20d");
}

TEST(JoinDetails, anAmpersandInsideAValueSplitsIt) {
    const auto details = parsed("OVRA_VARLO_IND\n&email=a&b=c&");
    EXPECT_EQ(details.value("email"), "a");
    EXPECT_EQ(details.value("b"), "c");
}

TEST(JoinDetails, anyOtherLayoutIsNotWellFormed) {
    for (const char* bytes :
         {"", "OVRA_VARLO_IND", "OVRA_VARLO_IND\n", "OVRA_VARLO_IND\nkey=1&", "OVRA_VARLO_IND\n&key=1",
          "OVRA_VARLO_IND\n&key=1&\n", "OTHER\n&key=1&", "OVRA_VARLO_IND\n&key&"})
        EXPECT_FALSE(parsed(bytes).wellFormed) << bytes;
}

TEST(JoinDetails, aMissingFileIsNotPresent) {
    EXPECT_FALSE(readJoinDetails("/nonexistent/ovrajoindetails.conf").present);
}

} // namespace
} // namespace datacentre::agent

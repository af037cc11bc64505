#include "agent/session_texts.h"

#include <gtest/gtest.h>

namespace datacentre::agent {

namespace {

JoinDetails detailsOf(const std::string& line) {
    JoinDetails details;
    details.present = true;
    details.bytes = "OVRA_VARLO_IND\n" + line;
    parseJoinDetails(details);
    return details;
}

} // namespace

TEST(SessionTexts, nameTheSessionByItsKeyInGroups) {
    const auto details = detailsOf("&key=1234567890&webServerName=a.example&");
    EXPECT_EQ(windowTitle(details), "Ovra – session 123 456 7890");
    EXPECT_EQ(heading(details), "Session 123 456 7890");
    EXPECT_EQ(stateText(details), "●  Connected");
    EXPECT_EQ(heading(detailsOf("&key=12345&")), "Session 12345");
}

TEST(SessionTexts, sayWhenThereIsNoSession) {
    const JoinDetails none;
    EXPECT_EQ(windowTitle(none), "Ovra");
    EXPECT_EQ(heading(none), "No session to join");
    EXPECT_EQ(stateText(none), "The join details are missing or cannot be read.");
    EXPECT_EQ(heading(detailsOf("&key=123456789")), "No session to join"); // cut off
}

TEST(SessionTexts, showADashForWhatIsMissingOrNull) {
    const auto rows = detailRows(detailsOf("&key=123456789&webServerName=a.example&email=(null)&"));
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0].name, "Server");
    EXPECT_EQ(rows[0].value, "a.example");
    EXPECT_EQ(rows[1].name, "Data centre");
    EXPECT_EQ(rows[1].value, "–");
    EXPECT_EQ(rows[2].name, "You are");
    EXPECT_EQ(rows[2].value, "–");
}

} // namespace datacentre::agent

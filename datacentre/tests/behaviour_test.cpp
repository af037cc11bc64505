#include "server/behaviour.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace datacentre {
namespace {

Behaviour behaviour(const char* json) { return Behaviour::fromJson(Json::parse(json)); }

TEST(Behaviour, anErrorStatusBringsItsOwnText) {
    Answer answer{200, "application/json", "{}"};
    behaviour(R"({"status":503})").replaceIn(answer);
    EXPECT_EQ(answer.status, 503);
    EXPECT_NE(answer.body, "{}");
}

TEST(Behaviour, aSuccessfulStatusKeepsTheBody) {
    Answer answer{200, "application/json", "{}"};
    behaviour(R"({"status":202})").replaceIn(answer);
    EXPECT_EQ(answer.status, 202);
    EXPECT_EQ(answer.body, "{}");
}

TEST(Behaviour, notModifiedHasNoBody) {
    Answer answer{200, "application/json", "{}"};
    behaviour(R"({"status":304})").replaceIn(answer);
    EXPECT_TRUE(answer.body.empty());
}

TEST(Behaviour, aMisspeltMemberIsRefused) {
    EXPECT_THROW((void)behaviour(R"({"statu":503})"), std::invalid_argument);
    EXPECT_THROW((void)behaviour(R"({"delay_ms":-1})"), std::invalid_argument);
    EXPECT_THROW((void)behaviour(R"({"hang":1})"), std::invalid_argument);
    EXPECT_THROW((void)behaviour(R"([])"), std::invalid_argument);
}

TEST(BehaviourTable, aCountedBehaviourWearsOff) {
    BehaviourTable table;
    table.set("/a", behaviour(R"({"status":500,"times":2})"));
    EXPECT_TRUE(table.take("/a"));
    EXPECT_TRUE(table.take("/a"));
    EXPECT_FALSE(table.take("/a"));
}

TEST(BehaviourTable, anExceptedAgentIsSparedAndNotCounted) {
    BehaviourTable table;
    table.set("/a", behaviour(R"({"reset":true,"times":1,"except_agent":"probe"})"));
    EXPECT_FALSE(table.take("/a", "probe"));
    EXPECT_TRUE(table.take("/a", "another"));
    EXPECT_FALSE(table.take("/a", "another"));
}

TEST(BehaviourTable, everyPathGivesWayToAPathOfItsOwn) {
    BehaviourTable table;
    table.set("*", behaviour(R"({"status":500})"));
    table.set("/a", behaviour(R"({"status":404})"));
    EXPECT_EQ(table.take("/a")->status, 404);
    EXPECT_EQ(table.take("/b")->status, 500);
    table.clear("*");
    EXPECT_FALSE(table.take("/b"));
}

TEST(BehaviourTable, showsWhatWasSet) {
    BehaviourTable table;
    const char* json =
        R"({"/a":{"status":500,"headers":{"X":"1"},"delay_ms":20,"truncate_at":0,"reset":true}})";
    table.set("/a", Behaviour::fromJson(Json::parse(json)["/a"]));
    EXPECT_EQ(table.toJson(), Json::parse(json));
}

} // namespace
} // namespace datacentre

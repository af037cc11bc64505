#include "support/another_process.h"
#include "support/backend.h"
#include "support/notification_world.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdint>
#include <iostream>

namespace lumora::contract {
namespace {

class DistributedNotificationsContract : public testing::Test {
  protected:
    NotificationWorld world_;
    /// Nobody else posts or hears it.
    const std::string name_ = fmt::format("LumoraContract{}", ::getpid());
    std::unique_ptr<platform::DistributedNotifications> notifications_ = makeDistributedNotifications();
};

TEST_F(DistributedNotificationsContract, aPostReachesOtherProcesses) {
    AnotherProcess first({"listen", name_});
    AnotherProcess second({"listen", name_});
    ASSERT_EQ("listening", first.nextLine());
    ASSERT_EQ("listening", second.nextLine());

    notifications_->post(name_, "status", 0);

    EXPECT_EQ("status=0;", first.output());
    EXPECT_EQ("status=0;", second.output());
}

TEST_F(DistributedNotificationsContract, anyIntegerArrivesAsItIs) {
    for (const std::int64_t value : {std::int64_t{-7}, INT64_MAX, INT64_MIN}) {
        AnotherProcess listener({"listen", name_});
        ASSERT_EQ("listening", listener.nextLine());

        notifications_->post(name_, "key", value);

        EXPECT_EQ(fmt::format("key={};", value), listener.output());
    }
}

TEST_F(DistributedNotificationsContract, onlyListenersOfTheNameHear) {
    AnotherProcess listener({"listen", name_});
    ASSERT_EQ("listening", listener.nextLine());

    notifications_->post(name_ + "Other", "key", 1);
    notifications_->post(name_, "key", 2);

    EXPECT_EQ("key=2;", listener.output());
}

} // namespace

int asAnotherProcess(const std::vector<std::string>& arguments) {
    if (arguments.front() != "listen")
        return 1;
    const auto payload = awaitNotification(arguments.at(1), [] { std::cout << "listening" << std::endl; });
    if (!payload)
        return 2;
    for (const auto& [key, value] : *payload) {
        const auto* number = value.as<std::int64_t>();
        std::cout << key << '=' << (number == nullptr ? "no integer" : fmt::to_string(*number)) << ';';
    }
    return 0;
}

} // namespace lumora::contract

#include "config/session_details.h"
#include "fakes/core_test.h"

#include <atomic>
#include <thread>
#include <vector>

namespace lumora {
namespace {

using Text = SessionDetails::Text;

struct TextField {
    Text (SessionDetails::*get)() const;
    void (SessionDetails::*set)(Text);
};

const std::vector<TextField> kTextFields{
    {&SessionDetails::sessionKey, &SessionDetails::setSessionKey},
    {&SessionDetails::name, &SessionDetails::setName},
    {&SessionDetails::webServerName, &SessionDetails::setWebServerName},
    {&SessionDetails::dcName, &SessionDetails::setDcName},
    {&SessionDetails::plistDcName, &SessionDetails::setPlistDcName},
    {&SessionDetails::plistWebServerName, &SessionDetails::setPlistWebServerName},
    {&SessionDetails::localOvraAppVersion, &SessionDetails::setLocalOvraAppVersion},
    {&SessionDetails::localOvraLumoraAppVersion, &SessionDetails::setLocalOvraLumoraAppVersion},
    {&SessionDetails::lumoraAppPath, &SessionDetails::setLumoraAppPath},
    {&SessionDetails::customDomainEnabled, &SessionDetails::setCustomDomainEnabled},
    {&SessionDetails::staticWebServerName, &SessionDetails::setStaticWebServerName},
    {&SessionDetails::sessionDigest, &SessionDetails::setSessionDigest},
    {&SessionDetails::lumoraToken, &SessionDetails::setLumoraToken},
    {&SessionDetails::pathForLumora, &SessionDetails::setPathForLumora},
    {&SessionDetails::ovraLumoraNativeFolder, &SessionDetails::setOvraLumoraNativeFolder},
    {&SessionDetails::lumoraDownloadUrl, &SessionDetails::setLumoraDownloadUrl},
    {&SessionDetails::awsUrl, &SessionDetails::setAwsUrl},
    {&SessionDetails::awsServer, &SessionDetails::setAwsServer},
    {&SessionDetails::cdnUrl, &SessionDetails::setCdnUrl},
    {&SessionDetails::fallbackUrl, &SessionDetails::setFallbackUrl},
};

struct Flag {
    bool (SessionDetails::*get)() const;
    void (SessionDetails::*set)(bool);
};

const std::vector<Flag> kFlags{
    {&SessionDetails::lumoraUpdateNeeded, &SessionDetails::setLumoraUpdateNeeded},
    {&SessionDetails::isAppReplaceFlag, &SessionDetails::setIsAppReplaceFlag},
    {&SessionDetails::isUpdateNeeded, &SessionDetails::setIsUpdateNeeded},
    {&SessionDetails::isAwsAvailable, &SessionDetails::setIsAwsAvailable},
    {&SessionDetails::isCdnAvailable, &SessionDetails::setIsCdnAvailable},
};

/// Runs the same piece of work on two threads that begin as close together as two threads can.
void onTwoThreadsAtOnce(const std::function<void(std::size_t)>& work) {
    std::atomic<int> ready = 0;
    const auto race = [&](std::size_t index) {
        ++ready;
        while (ready < 2)
            std::this_thread::yield();
        work(index);
    };
    std::thread other(race, 1U);
    race(0);
    other.join();
}

class SessionRecord : public CoreTest {};

TEST_F(SessionRecord, freshOneIsEmpty) {
    const auto& session = SessionDetails::getInstance();

    for (const auto& field : kTextFields)
        EXPECT_EQ((session.*field.get)(), std::nullopt);
    for (const auto& flag : kFlags)
        EXPECT_FALSE((session.*flag.get)());
    EXPECT_EQ(session.retryCounter(), 0);
    EXPECT_EQ(session.isvalidSessionKey(), nullptr);
    EXPECT_EQ(session.isInvokeFromInstaller(), nullptr);
}

TEST_F(SessionRecord, beginsWithTheSharedFileManager) {
    EXPECT_EQ(SessionDetails::getInstance().defaultOvraDirectoryManager(), &files);
}

TEST_F(SessionRecord, isOne) { EXPECT_EQ(&SessionDetails::getInstance(), &SessionDetails::getInstance()); }

TEST_F(SessionRecord, everyTextFieldIsItsOwn) {
    auto& session = SessionDetails::getInstance();
    for (std::size_t index = 0; index < kTextFields.size(); ++index)
        (session.*kTextFields[index].set)("value " + std::to_string(index));

    for (std::size_t index = 0; index < kTextFields.size(); ++index)
        EXPECT_EQ((session.*kTextFields[index].get)(), "value " + std::to_string(index));
}

TEST_F(SessionRecord, textFieldsTellEmptyFromAbsent) {
    auto& session = SessionDetails::getInstance();
    for (const auto& field : kTextFields) {
        (session.*field.set)("");
        EXPECT_EQ((session.*field.get)(), "");
        (session.*field.set)(std::nullopt);
        EXPECT_EQ((session.*field.get)(), std::nullopt);
    }
}

TEST_F(SessionRecord, everyFlagIsItsOwn) {
    auto& session = SessionDetails::getInstance();
    for (const auto& chosen : kFlags) {
        for (const auto& flag : kFlags)
            (session.*flag.set)(&flag == &chosen);
        for (const auto& flag : kFlags)
            EXPECT_EQ((session.*flag.get)(), &flag == &chosen);
    }
}

TEST_F(SessionRecord, otherFieldsTakeValues) {
    auto& session = SessionDetails::getInstance();
    bool valid = false;
    bool invoked = false;
    fakes::FakeFileManager otherFiles;
    session.setRetryCounter(-2147483647 - 1);
    session.setIsvalidSessionKey(&valid);
    session.setIsInvokeFromInstaller(&invoked);
    session.setDefaultOvraDirectoryManager(&otherFiles);

    EXPECT_EQ(session.retryCounter(), -2147483647 - 1);
    EXPECT_EQ(session.isvalidSessionKey(), &valid);
    EXPECT_EQ(session.isInvokeFromInstaller(), &invoked);
    EXPECT_EQ(session.defaultOvraDirectoryManager(), &otherFiles);
}

TEST_F(SessionRecord, twoFirstCallsAtOnceYieldOneInstanceAndOneFileManagerAssignment) {
    fakes::FakeFileManager otherFiles;
    for (int round = 0; round < 500; ++round) {
        SessionDetails::resetForTesting();
        std::array<SessionDetails*, 2> seen{};
        onTwoThreadsAtOnce([&](std::size_t index) {
            seen[index] = &SessionDetails::getInstance();
            if (index == 0) // a second assignment would undo this one
                seen[index]->setDefaultOvraDirectoryManager(&otherFiles);
        });

        ASSERT_EQ(seen[0], seen[1]);
        ASSERT_EQ(seen[0]->defaultOvraDirectoryManager(), &otherFiles);
    }
}

TEST_F(SessionRecord, readerNeverSeesHalfOfAWrite) {
    auto& session = SessionDetails::getInstance();
    const std::string first(100, 'a');
    const std::string second(200, 'b');
    session.setWebServerName(first);
    onTwoThreadsAtOnce([&](std::size_t index) {
        for (int round = 0; round < 2000; ++round) {
            if (index == 0)
                session.setWebServerName(round % 2 == 0 ? second : first);
            else if (const auto seen = session.webServerName(); seen != first && seen != second)
                ADD_FAILURE() << seen.value_or("(null)");
        }
    });
}

} // namespace
} // namespace lumora

#include "agent/agent_test.h"
#include "fakes/failing_streams.h"

namespace lumora {
namespace {

using fakes::exceptionLine;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

const std::string kOperation = "-[OvraAppUpgrader modifyOvraJoinDetails]";

class JoinDetailsFile : public AgentTest {
  protected:
    JoinDetailsFile() {
        session.setSessionKey("123456789");
        session.setWebServerName("eu.ovratessel.example");
        session.setLumoraToken("token");
        session.setDcName("eu");
        session.setName("casey@example.org");
        session.setCustomDomainEnabled("false");
        static_cast<void>(OvraAppUpgrader::getInstance());
        forgetLines();
    }

    static void write() { OvraAppUpgrader::getInstance().modifyOvraJoinDetails(); }

    [[nodiscard]] std::string content() const {
        const auto* file = files.file(kJoinDetails);
        return file != nullptr ? file->contents : "no file";
    }
};

TEST_F(JoinDetailsFile, hasTwoLinesAndNoLineFeedAtItsEnd) {
    write();

    EXPECT_EQ(content(),
              "OVRA_VARLO_IND\n"
              "&key=123456789&webServerName=eu.ovratessel.example&lumora_token=token&c_plugin=true&DC=eu"
              "&email=casey@example.org&is_custom_domain=false&");
}

TEST_F(JoinDetailsFile, isReadableByItsOwnerOnly) {
    write();

    const auto* file = files.file(kJoinDetails);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->attributes.posixPermissions, 0600U);
    EXPECT_TRUE(file->attributes.completeProtection);
}

TEST_F(JoinDetailsFile, namesAbsentValuesByTheNullPlaceholderAndEmptyOnesByNothing) {
    session.setSessionKey(std::nullopt);
    session.setWebServerName(std::nullopt);
    session.setLumoraToken(std::nullopt);
    session.setDcName(std::nullopt);
    session.setName("");
    session.setCustomDomainEnabled(std::nullopt);

    write();

    EXPECT_EQ(content(),
              "OVRA_VARLO_IND\n&key=(null)&webServerName=(null)&lumora_token=(null)&c_plugin=true&DC=(null)"
              "&email=&is_custom_domain=(null)&");
}

TEST_F(JoinDetailsFile, takesValuesAsTheyAre) {
    session.setName("a&b=c %20 é\"{}");

    write();

    EXPECT_THAT(content(), HasSubstr("&email=a&b=c %20 é\"{}&is_custom_domain=false&"));
}

TEST_F(JoinDetailsFile, logsItsFirstWritingWithoutTheCustomDomain) {
    write();

    EXPECT_THAT(streams.logged(),
                ElementsAre(kOperation + " : Modify joindetails called!",
                            kOperation + " : ovrajoindetails.conf file Not Present in folder " + kJoinDetails,
                            kOperation + " : Ovra Joindetails Content : Session key=123456789 "
                                         "webServerName=eu.ovratessel.example DC=eu",
                            kOperation +
                                " : New ovrajoindetails.conf file has been created by Lumora in folder " +
                                kJoinDetails + " "));
}

TEST_F(JoinDetailsFile, logsItsReplacementWithTheCustomDomain) {
    files.putFile(kJoinDetails, "old");

    write();

    EXPECT_THAT(
        streams.logged(),
        ElementsAre(kOperation + " : Modify joindetails called!",
                    kOperation + " : ovrajoindetails.conf file already Present in folder " + kJoinDetails,
                    kOperation + " : Ovra Joindetails Content : Session key=123456789 "
                                 "webServerName=eu.ovratessel.example DC=eu customDomain=false",
                    kOperation + " : New ovrajoindetails.conf file has been created by Lumora in folder " +
                        kJoinDetails + " "));
}

TEST_F(JoinDetailsFile, isRemovedAndMadeAnewRatherThanEdited) {
    files.putFile(kJoinDetails, "old");

    write();

    EXPECT_THAT(files.journal, ElementsAre("remove " + kJoinDetails, "create " + kJoinDetails));
    EXPECT_EQ(files.file(kJoinDetails)->attributes.posixPermissions, 0600U);
}

TEST_F(JoinDetailsFile, isTheSameByteForByteWhenWrittenAgain) {
    write();
    const auto first = content();

    write();

    EXPECT_EQ(content(), first);
}

TEST_F(JoinDetailsFile, keepsItsOldContentWhenItCannotBeRemoved) {
    files.putFile(kJoinDetails, "old");
    files.failRemove(kJoinDetails);

    write();

    EXPECT_EQ(content(), "old");
    EXPECT_EQ(streams.logged().size(), 4U);
    EXPECT_EQ(streams.logged().back(),
              kOperation + " : Unable to Remove old ovrajoindetails.conf file by Lumora in folder " +
                  kJoinDetails);
}

TEST_F(JoinDetailsFile, logsThatItCouldNotBeCreated) {
    files.failCreateFile(kJoinDetails);
    const auto unable =
        kOperation + " : Unable to create New ovrajoindetails.conf file by Lumora in folder " + kJoinDetails;

    write();
    EXPECT_EQ(streams.logged().back(), unable);

    files.putFile(kJoinDetails, "old");
    write();
    EXPECT_EQ(streams.logged().back(), unable);
    EXPECT_EQ(content(), "no file"); // the old one was removed before
}

TEST_F(JoinDetailsFile, keepsTokenAndEmailOutOfTheLog) {
    session.setLumoraToken("secret-token");

    write();
    write();

    EXPECT_THAT(streams.raw(), Not(HasSubstr("secret-token")));
    EXPECT_THAT(streams.raw(), Not(HasSubstr("casey@example.org")));
}

TEST_F(JoinDetailsFile, isNotWrittenAfterAnException) {
    fakes::FailingStreams failing(streams, 3);
    platform::ports().standardStreams = &failing;

    write();

    EXPECT_EQ(streams.logged().back(), exceptionLine(kOperation, "write failed"));
    EXPECT_EQ(content(), "no file");
}

} // namespace
} // namespace lumora

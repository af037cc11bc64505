#include "api/api_handler.h"
#include "config/session_details.h"
#include "fakes/core_test.h"
#include "fakes/failing_streams.h"

#include <gmock/gmock.h>

#include <utility>

namespace lumora {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DataCentreLookups : public CoreTest {
  protected:
    DataCentreLookups() : handler(ApiHandler::getInstance()) {
        forgetLines(); // the handler says that it was made
    }

    SessionDetails& session() { return SessionDetails::getInstance(); }

    ApiHandler& handler;
};

class ServerNameUsingDc : public DataCentreLookups {};

TEST_F(ServerNameUsingDc, takesKeyAndHost) {
    handler.findServerNameUsingDC("lab_com");

    EXPECT_EQ(session().dcName(), "lab_com");
    EXPECT_EQ(session().webServerName(), "lab.ovratessel.example");
    EXPECT_THAT(
        streams.logged(),
        ElementsAre(
            "-[ApiHandler findServerNameUsingDC:]  Dc = lab_com , WebServerName = lab.ovratessel.example"));
}

TEST_F(ServerNameUsingDc, logsADevelopersHostOnce) {
    handler.findServerNameUsingDC("COM");

    EXPECT_EQ(session().dcName(), "COM");
    EXPECT_EQ(session().webServerName(), "COM.dev.ovratessel.example");
    EXPECT_THAT(
        streams.logged(),
        ElementsAre(
            "-[ApiHandler findServerNameUsingDC:]  Dc = COM , WebServerName = COM.dev.ovratessel.example"));
}

TEST_F(ServerNameUsingDc, takesAnEmptyKeyToo) {
    handler.findServerNameUsingDC("");

    EXPECT_EQ(session().dcName(), "");
    EXPECT_EQ(session().webServerName(), ".dev.ovratessel.example");
    EXPECT_THAT(
        streams.logged(),
        ElementsAre("-[ApiHandler findServerNameUsingDC:] : *** DcName is nil or empty.",
                    "-[ApiHandler findServerNameUsingDC:]  Dc =  , WebServerName = .dev.ovratessel.example"));
}

TEST_F(ServerNameUsingDc, takesAnAbsentKeyToo) {
    session().setDcName("eu");

    handler.findServerNameUsingDC(std::nullopt);

    EXPECT_EQ(session().dcName(), std::nullopt);
    EXPECT_EQ(session().webServerName(), "(null).dev.ovratessel.example");
    EXPECT_THAT(streams.logged(),
                ElementsAre("-[ApiHandler findServerNameUsingDC:] : *** DcName is nil or empty.",
                            "-[ApiHandler findServerNameUsingDC:]  Dc = (null) , WebServerName = "
                            "(null).dev.ovratessel.example"));
}

TEST_F(ServerNameUsingDc, leavesThePreferencesFieldsAlone) {
    handler.findServerNameUsingDC("eu");

    EXPECT_EQ(session().plistDcName(), std::nullopt);
    EXPECT_EQ(session().plistWebServerName(), std::nullopt);
    EXPECT_EQ(session().staticWebServerName(), std::nullopt);
    EXPECT_EQ(session().customDomainEnabled(), std::nullopt);
}

TEST_F(ServerNameUsingDc, stopsAtAnException) {
    session().setDcName("eu");
    session().setWebServerName("eu.ovratessel.example");
    fakes::FailingStreams failing(streams, 1);
    platform::ports().standardStreams = &failing;

    handler.findServerNameUsingDC("com");

    EXPECT_EQ(session().dcName(), "eu");
    EXPECT_EQ(session().webServerName(), "eu.ovratessel.example");
    EXPECT_THAT(
        streams.logged(),
        ElementsAre(
            "************ EXCEPTION ************ -[ApiHandler findServerNameUsingDC:] : write failed : "
            R"(["frame one","frame two"])"));
}

class DcNameUsingKey : public DataCentreLookups {};

TEST_F(DcNameUsingKey, nineCharactersAreCom) {
    handler.findDcNameUsingKey("123456789");

    EXPECT_EQ(session().dcName(), "com");
    EXPECT_EQ(session().webServerName(), "com.ovratessel.example");
    EXPECT_THAT(streams.logged(), IsEmpty());
}

TEST_F(DcNameUsingKey, nineCharactersNeedNotBeDigits) {
    handler.findDcNameUsingKey("abcdefgh\u00E9");

    EXPECT_EQ(session().dcName(), "com");
}

class DigitCode : public DataCentreLookups,
                  public ::testing::WithParamInterface<std::pair<char, const char*>> {};

TEST_P(DigitCode, fourthOfTenCharactersTells) {
    const auto [digit, dcName] = GetParam();

    handler.findDcNameUsingKey(std::string("000") + digit + "000000");

    EXPECT_EQ(session().dcName(), dcName);
    EXPECT_EQ(session().webServerName(), std::string(dcName) + ".ovratessel.example");
}

INSTANTIATE_TEST_SUITE_P(EveryDigit, DigitCode,
                         ::testing::Values(std::pair('1', "eu"), std::pair('2', "in"), std::pair('3', "au"),
                                           std::pair('4', "cn"), std::pair('5', "jp"), std::pair('6', "ca"),
                                           std::pair('7', "uk"), std::pair('8', "sa"), std::pair('9', "ae")));

class KeysThatTellNothing : public DataCentreLookups, public ::testing::WithParamInterface<const char*> {};

TEST_P(KeysThatTellNothing, changeNothing) {
    session().setDcName("sg");
    session().setWebServerName("sg.ovratessel.example");

    handler.findDcNameUsingKey(GetParam());

    EXPECT_EQ(session().dcName(), "sg");
    EXPECT_EQ(session().webServerName(), "sg.ovratessel.example");
    EXPECT_THAT(streams.logged(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(ShapesAndDigits, KeysThatTellNothing,
                         ::testing::Values("", "1", "12345678", "12345678901", "0000000000", "123a567890",
                                           "123-567890", "123\u00E9567890", "12\u00E9x7567890"));

TEST_F(DcNameUsingKey, indexCountsCharactersNotBytes) {
    handler.findDcNameUsingKey("\u00E9\u00E9\u00E97000000");

    EXPECT_EQ(session().dcName(), "uk");
}

} // namespace
} // namespace lumora

#include "config/utils.h"
#include "fakes/core_test.h"
#include "fakes/failing_streams.h"

#include <gmock/gmock.h>

#include <set>

namespace lumora {
namespace {

using ::testing::ElementsAre;

std::string lookupLine(const std::string& key, const std::string& host) {
    return "+[Utils findWebserverNameWithDCName:]  Dc = " + key + " , WebServerName = " + host;
}

const std::string kEmptyLine = "+[Utils findWebserverNameWithDCName:] : *** DcName is nil or empty.";

class ServerOfDataCentre : public CoreTest {
  protected:
    static std::string host(const std::string& key) { return Utils::findWebserverNameWithDCName(key); }
};

TEST_F(ServerOfDataCentre, productionKeysHaveAHostEach) {
    std::set<std::string> hosts;
    for (const char* key : {"com", "eu", "in", "jp", "au", "cn", "uk", "ca", "sa", "ae", "inec", "sg"}) {
        EXPECT_EQ(host(key), std::string(key) + ".ovratessel.example");
        hosts.insert(host(key));
    }
    EXPECT_EQ(hosts.size(), 12U);
}

TEST_F(ServerOfDataCentre, labAndStagingKeysShareHosts) {
    EXPECT_EQ(host("lab"), "lab.ovratessel.example");
    EXPECT_EQ(host("lab_com"), host("lab"));
    EXPECT_EQ(host("lab_in"), "lab-in.ovratessel.example");
    EXPECT_EQ(host("stage"), "stage.ovratessel.example");
    EXPECT_EQ(host("stage_com"), host("stage"));
}

TEST_F(ServerOfDataCentre, preProductionKeysHaveTheirDataCentresHost) {
    EXPECT_EQ(host("pre"), "pre.ovratessel.example");
    EXPECT_EQ(host("pre_com"), host("pre"));
    for (const std::string name : {"eu", "in", "jp", "au", "cn", "uk", "ca", "sa", "ae", "inec", "sg"})
        EXPECT_EQ(host("pre_" + name), "pre-" + name + ".ovratessel.example");
}

TEST_F(ServerOfDataCentre, foundKeyIsLoggedTwice) {
    EXPECT_EQ(host("com"), "com.ovratessel.example");

    EXPECT_THAT(streams.logged(), ElementsAre(lookupLine("com", "com.ovratessel.example"),
                                              lookupLine("com", "com.ovratessel.example")));
}

TEST_F(ServerOfDataCentre, unknownKeyIsADevelopersMachine) {
    EXPECT_EQ(host("casey"), "casey.dev.ovratessel.example");

    EXPECT_THAT(streams.logged(), ElementsAre(lookupLine("casey", "(null)"),
                                              lookupLine("casey", "casey.dev.ovratessel.example"),
                                              lookupLine("casey", "casey.dev.ovratessel.example")));
}

TEST_F(ServerOfDataCentre, letterCaseAndBlanksMatter) {
    EXPECT_EQ(host("COM"), "COM.dev.ovratessel.example");
    EXPECT_EQ(host(" com"), " com.dev.ovratessel.example");
    EXPECT_EQ(host("lab_eu"), "lab_eu.dev.ovratessel.example");
}

TEST_F(ServerOfDataCentre, absentKeyGivesTheNullPlaceholderBeforeTheSuffix) {
    EXPECT_EQ(Utils::findWebserverNameWithDCName(std::nullopt), "(null).dev.ovratessel.example");

    EXPECT_THAT(streams.logged(), ElementsAre(kEmptyLine, lookupLine("(null)", "(null)"),
                                              lookupLine("(null)", "(null).dev.ovratessel.example"),
                                              lookupLine("(null)", "(null).dev.ovratessel.example")));
}

TEST_F(ServerOfDataCentre, emptyKeyGivesAnEmptyNameBeforeTheSuffix) {
    EXPECT_EQ(host(""), ".dev.ovratessel.example");

    EXPECT_THAT(streams.logged(),
                ElementsAre(kEmptyLine, lookupLine("", "(null)"), lookupLine("", ".dev.ovratessel.example"),
                            lookupLine("", ".dev.ovratessel.example")));
}

TEST_F(ServerOfDataCentre, exceptionGivesTheCallStackInPlaceOfAHost) {
    fakes::FailingStreams failing(streams, 1);
    platform::ports().standardStreams = &failing;

    EXPECT_EQ(host("com"), R"(["frame one","frame two"])");

    EXPECT_THAT(streams.logged(), ElementsAre("************ EXCEPTION ************ +[Utils "
                                              "findWebserverNameWithDCName:] : write failed : "
                                              R"(["frame one","frame two"])"));
}

} // namespace
} // namespace lumora

#include "config/session_details.h"
#include "config/utils.h"
#include "fakes/core_test.h"
#include "fakes/failing_streams.h"
#include "fakes/log_lines.h"

#include <gmock/gmock.h>

namespace lumora {
namespace {

using fakes::exceptionLine;
using ::testing::ElementsAre;

constexpr const char* kApp = "/Applications/Ovra Tessel Lumora.app";
constexpr const char* kMissing =
    "+[Utils getOvraLumoraAppVersion] : Ovra Tessel Lumora app not found, Setting app "
    "version to zero ( default)";

class AppPath : public CoreTest {
  protected:
    SessionDetails& session() { return SessionDetails::getInstance(); }
};

TEST_F(AppPath, isTheMainBundles) {
    Utils::findCurrentAppPath();

    EXPECT_EQ(session().lumoraAppPath(), kApp);
    EXPECT_THAT(streams.logged(),
                ElementsAre(std::string("+[Utils findCurrentAppPath] Ovra Lumora App path : ") + kApp));
}

TEST_F(AppPath, exceptionIsLoggedUnderItsName) {
    bundles.throwOnPath = true;

    Utils::findCurrentAppPath();

    EXPECT_EQ(session().lumoraAppPath(), std::nullopt);
    EXPECT_THAT(streams.logged(), ElementsAre(exceptionLine("+[Utils findCurrentAppPath]", "no bundle")));
}

class AppVersion : public AppPath {
  protected:
    AppVersion() { session().setLumoraAppPath(kApp); }

    void putVersion(const platform::PropertyListValue& version) {
        files.putFolder(kApp);
        bundles.info.insert_or_assign({kApp, "CFBundleShortVersionString"}, version);
    }
};

TEST_F(AppVersion, isTheBundlesShortVersion) {
    putVersion("1.2.3");

    Utils::getOvraLumoraAppVersion();

    EXPECT_EQ(session().localOvraLumoraAppVersion(), "1.2.3");
    EXPECT_THAT(streams.logged(),
                ElementsAre("+[Utils getOvraLumoraAppVersion] local Ovra Tessel Lumora App version : 1.2.3"));
}

TEST_F(AppVersion, numberIsFormatted) {
    putVersion(std::int64_t{7});

    Utils::getOvraLumoraAppVersion();

    EXPECT_EQ(session().localOvraLumoraAppVersion(), "7");
}

TEST_F(AppVersion, bundleWithoutTheEntryHasTheNullPlaceholder) {
    files.putFolder(kApp);

    Utils::getOvraLumoraAppVersion();

    EXPECT_EQ(session().localOvraLumoraAppVersion(), "(null)");
    EXPECT_THAT(
        streams.logged(),
        ElementsAre("+[Utils getOvraLumoraAppVersion] local Ovra Tessel Lumora App version : (null)"));
}

TEST_F(AppVersion, fileInTheBundlesPlaceIsAskedToo) {
    files.putFile(kApp, "a file");

    Utils::getOvraLumoraAppVersion();

    EXPECT_EQ(session().localOvraLumoraAppVersion(), "(null)");
}

TEST_F(AppVersion, withoutTheBundleItIsZero) {
    Utils::getOvraLumoraAppVersion();

    EXPECT_EQ(session().localOvraLumoraAppVersion(), "0");
    EXPECT_THAT(streams.logged(), ElementsAre(kMissing));
}

TEST_F(AppVersion, beforeThePathIsKnownItIsZero) {
    putVersion("1.2.3");
    session().setLumoraAppPath(std::nullopt);

    Utils::getOvraLumoraAppVersion();

    EXPECT_EQ(session().localOvraLumoraAppVersion(), "0");
    EXPECT_THAT(streams.logged(), ElementsAre(kMissing));
}

TEST_F(AppVersion, exceptionIsLoggedUnderItsName) {
    fakes::FailingStreams failing(streams, 1);
    platform::ports().standardStreams = &failing;

    Utils::getOvraLumoraAppVersion();

    EXPECT_EQ(session().localOvraLumoraAppVersion(), std::nullopt);
    EXPECT_THAT(streams.logged(),
                ElementsAre(exceptionLine("+[Utils getOvraLumoraAppVersion]", "write failed")));
}

} // namespace
} // namespace lumora

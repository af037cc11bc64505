#include "agent/agent_test.h"
#include "support/notification_center.h"

#include <stdexcept>

namespace lumora {
namespace {

using fakes::exceptionLine;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string kAgentDownload = "-[OvraDmgDownloader startDownLoadingOvraMacDmg]";
const std::string kAgentDownloadBlock = kAgentDownload + "_block_invoke";

class AgentDownload : public AgentTest {
  protected:
    AgentDownload() {
        session.setWebServerName("com.ovratessel.example");
        NotificationCenter::defaultCenter().addObserver(
            this, "RetryDMGDownloadig", [this](const void* sender) { retries.push_back(sender); });
    }
    ~AgentDownload() override { NotificationCenter::defaultCenter().removeObserver(this); }

    void start() {
        downloader->startDownLoadingOvraMacDmg();
        forgetLines();
    }

    std::vector<const void*> retries;
    std::shared_ptr<OvraDmgDownloader> downloader = std::make_shared<OvraDmgDownloader>();
};

TEST_F(AgentDownload, comesFromTheDeliveryNetworkExactlyAsStored) {
    session.setIsCdnAvailable(true);
    session.setCdnUrl("https://anywhere.example:8443/x/OvraMac.dmg?a=%20b#c");

    downloader->startDownLoadingOvraMacDmg();

    ASSERT_EQ(http.tasks.size(), 1U);
    const auto& task = http.tasks[0];
    EXPECT_EQ(task.request.url, "https://anywhere.example:8443/x/OvraMac.dmg?a=%20b#c");
    EXPECT_EQ(task.request.method, "GET");
    EXPECT_EQ(task.request.timeout, std::chrono::seconds(240));
    EXPECT_EQ(task.request.cachePolicy, platform::HttpCachePolicy::useProtocolCachePolicy);
    EXPECT_THAT(task.request.headers,
                ElementsAre(std::pair<std::string, std::string>("User-Agent", "macOS 13.2.1")));
    EXPECT_EQ(task.configuration.kind, platform::HttpSessionKind::ephemeral);
    EXPECT_EQ(task.configuration.minimumTls, platform::TlsVersion::tls12);
    EXPECT_FALSE(task.invalidated);
    EXPECT_THAT(
        streams.logged(),
        ElementsAre(kAgentDownload + " : Ovra Dmg Url : https://anywhere.example:8443/x/OvraMac.dmg?a=%20b#c",
                    kAgentDownload + " : System version details macOS",
                    kAgentDownload + " : System version : 13.2.1"));
}

TEST_F(AgentDownload, comesFromTheWebServerWithoutASchemeOtherwise) {
    session.setCdnUrl("https://cdn.example/OvraMac.dmg"); // stored, but not said to be available

    downloader->startDownLoadingOvraMacDmg();

    EXPECT_EQ(http.tasks.at(0).request.url, "com.ovratessel.example/agent/OvraMac.dmg");
    EXPECT_EQ(streams.logged().at(0),
              kAgentDownload + " : Ovra Dmg Url : com.ovratessel.example/agent/OvraMac.dmg");
}

TEST_F(AgentDownload, makesNoAddressOfAMalformedOrAbsentOne) {
    session.setIsCdnAvailable(true);
    for (const SessionDetails::Text& address :
         {SessionDetails::Text("https://two words/"), SessionDetails::Text()}) {
        forgetLines();
        session.setCdnUrl(address);
        downloader->startDownLoadingOvraMacDmg();
        EXPECT_EQ(http.tasks.back().request.url, std::nullopt);
        EXPECT_EQ(streams.logged().at(0), kAgentDownload + " : Ovra Dmg Url : (null)");
    }
}

TEST_F(AgentDownload, namesAnUnknownSystemByTwoNullPlaceholders) {
    systemVersions.version = {};

    downloader->startDownLoadingOvraMacDmg();

    EXPECT_THAT(http.tasks.at(0).request.headers,
                ElementsAre(std::pair<std::string, std::string>("User-Agent", "(null) (null)")));
    EXPECT_THAT(streams.logged(),
                ElementsAre(kAgentDownload + " : Ovra Dmg Url : com.ovratessel.example/agent/OvraMac.dmg",
                            kAgentDownload + " : System version details (null)",
                            kAgentDownload + " : System version : (null)"));
}

TEST_F(AgentDownload, logsAFailureToStart) {
    http.throwOnMakeSession = true;

    downloader->startDownLoadingOvraMacDmg();

    EXPECT_EQ(streams.logged().back(), exceptionLine(kAgentDownload, "no session"));
    EXPECT_THAT(distributed.posts, IsEmpty());
}

TEST_F(AgentDownload, reportsAFailureAndAsksForARetry) {
    start();

    http.failDownload(
        0, {"NSURLErrorDomain", -1002, "unsupported URL", "com.ovratessel.example/agent/OvraMac.dmg"});

    EXPECT_THAT(streams.logged(),
                ElementsAre(kAgentDownloadBlock + " : Download failed! Error - unsupported URL "
                                                  "com.ovratessel.example/agent/OvraMac.dmg",
                            kAgentDownloadBlock + " : Download failed! Whole Error - Error "
                                                  "Domain=NSURLErrorDomain Code=-1002 \"unsupported URL\""));
    EXPECT_THAT(retries, ElementsAre(downloader.get()));
    EXPECT_THAT(tasks.runs, IsEmpty());
    EXPECT_THAT(files.journal, IsEmpty());
    EXPECT_THAT(distributed.posts, IsEmpty());
}

TEST_F(AgentDownload, reportsAFailureWithoutAnAddress) {
    start();

    http.failDownload(0, {"NSURLErrorDomain", -1000, "bad URL", {}});

    EXPECT_EQ(streams.logged().at(0), kAgentDownloadBlock + " : Download failed! Error - bad URL (null)");
}

TEST_F(AgentDownload, takesThePlaceOfAnOlderImageAndIsMounted) {
    files.putFile(kAgentImage, "older image");
    files.putFile("/tmp/download", "image");
    std::string mounted;
    tasks.onRun = [&](const auto& run, platform::TaskOutput) {
        if (run.at(1) == "mount")
            mounted = files.file(kAgentImage)->contents;
        return platform::TaskResult{};
    };
    start();

    http.finishDownload(0, 200, "/tmp/download");

    EXPECT_EQ(mounted, "image");
    EXPECT_EQ(files.journal.at(0), "remove " + kAgentImage);
    EXPECT_EQ(files.journal.at(1), "copy /tmp/download -> " + kAgentImage);
    EXPECT_EQ(streams.logged().at(0), kAgentDownloadBlock + " : Download finished successfully");
}

TEST_F(AgentDownload, stopsWhenItCannotBeCopied) {
    files.putFile("/tmp/download", "image");
    files.failCreateFile(kAgentImage);
    start();

    http.finishDownload(0, 200, "/tmp/download");

    EXPECT_THAT(streams.logged(),
                ElementsAre(kAgentDownloadBlock +
                            " : Error copying file to destination - Error Domain=NSCocoaErrorDomain "
                            "Code=513 \"The item could not be copied.\""));
    EXPECT_THAT(tasks.runs, IsEmpty());
    EXPECT_THAT(retries, IsEmpty());
}

TEST_F(AgentDownload, isNotJudgedByItsStatus) {
    files.putFile("/tmp/download", "<html>not found</html>");
    tasks.onRun = [](const auto&, platform::TaskOutput) { return platform::TaskResult{1, ""}; };
    start();

    http.finishDownload(0, 404, "/tmp/download");

    EXPECT_THAT(
        streams.logged(),
        ElementsAre(
            kAgentDownloadBlock + " : Download finished successfully",
            "-[OvraDmgDownloader mountingOvraMacDmg] : dmg mount task termination status : 1", kLaunchLine,
            "-[OvraDmgDownloader copyAppFileAndLaunch] : App Path : " + kAgent + " ovra app file launched!",
            "-[OvraDmgDownloader unMountingOvraMacDmg] : Dmg unmount task termination status : 1",
            "-[OvraDmgDownloader unMountingOvraMacDmg] : Dmg unmount task termination status : 1"));
    EXPECT_EQ(workspace.launches.size(), 1U);
    EXPECT_EQ(files.file(kAgentImage), nullptr);
}

TEST_F(AgentDownload, isAFileEvenWithoutABody) {
    files.putFile("/tmp/download", "");
    start();

    http.finishDownload(0, 200, "/tmp/download");

    EXPECT_EQ(tasks.runs.at(0), (std::vector<std::string>{"/usr/bin/hdiutil", "mount", kAgentImage}));
}

TEST_F(AgentDownload, keepsItsDownloaderAlive) {
    start();
    const std::weak_ptr<OvraDmgDownloader> watched = downloader;
    downloader.reset();
    EXPECT_FALSE(watched.expired());

    http.tasks.clear();
    EXPECT_TRUE(watched.expired());
}

TEST_F(AgentDownload, letsNothingEscapeFromItsCompletion) {
    start();
    const int breaking = 0;
    NotificationCenter::defaultCenter().addObserver(
        &breaking, "RetryDMGDownloadig", [](const void*) { throw std::runtime_error("observer broke"); });

    EXPECT_NO_THROW(http.failDownload(0, {"NSURLErrorDomain", -1001, "The request timed out.", {}}));

    NotificationCenter::defaultCenter().removeObserver(&breaking);
    EXPECT_EQ(streams.logged().size(), 3U); // both lines about the failure come before the notification
    EXPECT_EQ(streams.logged().back(), exceptionLine(kAgentDownloadBlock, "observer broke"));
}

} // namespace
} // namespace lumora

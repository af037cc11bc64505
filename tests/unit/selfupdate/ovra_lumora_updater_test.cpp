#include "fakes/failing_streams.h"
#include "selfupdate/self_update_test.h"
#include "support/notification_center.h"

#include <array>
#include <stdexcept>
#include <thread>

namespace lumora {
namespace {

using fakes::exceptionLine;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kStagingBlock = "-[OvraLumoraUpdater downloadLumoradmg]_block_invoke";

class LumoraUpdater : public SelfUpdateTest {
  protected:
    /// Observes the retry notification; returns its senders so far.
    std::vector<const void*> retries;
    LumoraUpdater() {
        NotificationCenter::defaultCenter().addObserver(
            this, "RetryDMGDownloadig", [this](const void* sender) { retries.push_back(sender); });
    }
    ~LumoraUpdater() override { NotificationCenter::defaultCenter().removeObserver(this); }
};

TEST_F(LumoraUpdater, isNewAndLoggedOnEveryCall) {
    const auto first = OvraLumoraUpdater::getInstance();
    const auto second = OvraLumoraUpdater::getInstance();

    EXPECT_NE(first, second);
    EXPECT_THAT(streams.logged(),
                ElementsAre("+[OvraLumoraUpdater getInstance] : Update Info Object Allocated",
                            "+[OvraLumoraUpdater getInstance] : Update Info Object Allocated"));
}

TEST_F(LumoraUpdater, isOneForEachOfTwoConcurrentCalls) {
    std::array<std::shared_ptr<OvraLumoraUpdater>, 2> made;
    {
        std::thread one([&made] { made[0] = OvraLumoraUpdater::getInstance(); });
        std::thread other([&made] { made[1] = OvraLumoraUpdater::getInstance(); });
        one.join();
        other.join();
    }

    EXPECT_NE(made[0], nullptr);
    EXPECT_NE(made[1], nullptr);
    EXPECT_NE(made[0], made[1]);
    EXPECT_EQ(streams.logged().size(), 2U);
}

TEST_F(LumoraUpdater, logsAFailureToMakeOne) {
    fakes::FailingStreams failing(streams, 1);
    platform::ports().standardStreams = &failing;

    EXPECT_EQ(OvraLumoraUpdater::getInstance(), nullptr);

    EXPECT_THAT(streams.logged(),
                ElementsAre(exceptionLine("+[OvraLumoraUpdater getInstance]", "write failed")));
}

TEST_F(LumoraUpdater, saysThatTheVersionIsTheLatest) {
    session.setLumoraUpdateNeeded(false);

    updater->checkOvraLumoraUpdate();

    EXPECT_THAT(streams.logged(),
                ElementsAre("-[OvraLumoraUpdater checkOvraLumoraUpdate] Ovra Tessel Lumora has "
                            "Latest Version."));
    EXPECT_THAT(http.tasks, IsEmpty());
}

TEST_F(LumoraUpdater, logsAFailureOfTheCheck) {
    session.setLumoraUpdateNeeded(false);
    fakes::FailingStreams failing(streams, 1);
    platform::ports().standardStreams = &failing;

    updater->checkOvraLumoraUpdate();

    EXPECT_THAT(streams.logged(),
                ElementsAre(exceptionLine("-[OvraLumoraUpdater checkOvraLumoraUpdate]", "write failed")));
}

TEST_F(LumoraUpdater, downloadsFromTheAddressThatTheCheckStored) {
    session.setLumoraDownloadUrl("https://cdn.example/x.dmg");

    updater->checkOvraLumoraUpdate();

    ASSERT_EQ(http.tasks.size(), 1U);
    const auto& task = http.tasks[0];
    EXPECT_EQ(task.request.url, "https://cdn.example/x.dmg");
    EXPECT_EQ(task.request.method, "GET");
    EXPECT_EQ(task.request.timeout, std::chrono::seconds(240));
    EXPECT_EQ(task.request.cachePolicy, platform::HttpCachePolicy::useProtocolCachePolicy);
    EXPECT_THAT(task.request.headers, IsEmpty()); // the agent's download has a User-Agent, this one has none
    EXPECT_EQ(task.configuration.kind, platform::HttpSessionKind::ephemeral);
    EXPECT_EQ(task.configuration.minimumTls, platform::TlsVersion::tls12);
    EXPECT_FALSE(task.invalidated);
    EXPECT_THAT(streams.logged(),
                ElementsAre("-[OvraLumoraUpdater downloadLumoradmg] : Ovra Lumora Dmg Url : "
                            "https://cdn.example/x.dmg"));
}

TEST_F(LumoraUpdater, downloadsFromTheWebServerWithoutAnAddress) {
    updater->downloadLumoradmg();

    EXPECT_EQ(http.tasks.at(0).request.url, "https://com.ovratessel.example/agent/OvraTesselLumora.dmg");
}

TEST_F(LumoraUpdater, asksAHostThatDoesNotExistWithoutAWebServer) {
    session.setWebServerName(std::nullopt);

    updater->downloadLumoradmg();

    EXPECT_EQ(http.tasks.at(0).request.url, "https://(null)/agent/OvraTesselLumora.dmg");
}

TEST_F(LumoraUpdater, makesNoAddressOfAnEmptyOrMalformedOne) {
    for (const std::string address : {"", "https://two words/"}) {
        session.setLumoraDownloadUrl(address);
        updater->downloadLumoradmg();
        EXPECT_EQ(http.tasks.back().request.url, std::nullopt);
    }

    EXPECT_THAT(streams.logged(),
                ElementsAre("-[OvraLumoraUpdater downloadLumoradmg] : Ovra Lumora Dmg Url : (null)",
                            "-[OvraLumoraUpdater downloadLumoradmg] : Ovra Lumora Dmg Url : (null)"));
}

TEST_F(LumoraUpdater, makesTheStagingFolderWhenItIsMissing) {
    static_cast<void>(files.removeItem(kStagingFolder));

    updater->downloadLumoradmg();

    EXPECT_TRUE(files.folderExists(kStagingFolder));
}

TEST_F(LumoraUpdater, downloadsEvenWhenTheStagingFolderCannotBeMade) {
    static_cast<void>(files.removeItem(kStagingFolder));
    files.failCreateFolder(kStagingFolder);

    updater->downloadLumoradmg();

    EXPECT_EQ(http.tasks.size(), 1U);
    EXPECT_EQ(streams.logged().size(), 1U);
}

TEST_F(LumoraUpdater, leavesAStandingStagingFolderAlone) {
    updater->downloadLumoradmg();

    EXPECT_THAT(files.journal, IsEmpty());
}

TEST_F(LumoraUpdater, logsAFailureToStartTheDownload) {
    http.throwOnMakeSession = true;

    updater->downloadLumoradmg();

    EXPECT_THAT(streams.logged(),
                ElementsAre("-[OvraLumoraUpdater downloadLumoradmg] : Ovra Lumora Dmg Url : "
                            "https://com.ovratessel.example/agent/OvraTesselLumora.dmg",
                            exceptionLine("-[OvraLumoraUpdater downloadLumoradmg]", "no session")));
}

TEST_F(LumoraUpdater, reportsAFailedDownload) {
    updater->downloadLumoradmg();
    forgetLines();

    http.failDownload(
        0, {"NSURLErrorDomain", -1001, "The request timed out.", "https://com.ovratessel.example/a"});

    EXPECT_THAT(streams.logged(),
                ElementsAre(std::string(kStagingBlock) + " : Download failed! Error - The request timed out. "
                                                         "https://com.ovratessel.example/a ",
                            std::string(kStagingBlock) +
                                " : Download failed! Whole Error - Error "
                                "Domain=NSURLErrorDomain Code=-1001 \"The request timed out.\""));
    EXPECT_THAT(retries, ElementsAre(updater.get()));
    EXPECT_THAT(tasks.runs, IsEmpty());
}

TEST_F(LumoraUpdater, reportsAFailedDownloadWithoutAnAddress) {
    updater->downloadLumoradmg();
    forgetLines();

    http.failDownload(0, {"NSURLErrorDomain", -1002, "unsupported URL", {}});

    EXPECT_EQ(streams.logged().at(0),
              std::string(kStagingBlock) + " : Download failed! Error - unsupported URL (null) ");
}

TEST_F(LumoraUpdater, putsTheDownloadInThePlaceOfAnOlderImage) {
    files.putFile(kUpdateImage, "older image");
    files.putFile("/tmp/download", "image");
    std::string mounted;
    tasks.onRun = [&](const auto& run, platform::TaskOutput) {
        if (run.at(1) == "mount")
            mounted = files.file(kUpdateImage)->contents;
        return platform::TaskResult{};
    };
    updater->downloadLumoradmg();
    forgetLines();

    http.finishDownload(0, 200, "/tmp/download");

    EXPECT_EQ(mounted, "image");
    EXPECT_THAT(files.journal, ElementsAre("remove " + std::string(kUpdateImage),
                                           "copy /tmp/download -> " + std::string(kUpdateImage),
                                           "remove " + std::string(kUpdateImage)));
    EXPECT_EQ(streams.logged().at(0), std::string(kStagingBlock) + " : Download finished successfully");
}

TEST_F(LumoraUpdater, doesNotLookAtTheStatusCode) {
    files.putFile("/tmp/download", "");
    updater->downloadLumoradmg();
    forgetLines();

    http.finishDownload(0, 404, "/tmp/download");

    EXPECT_EQ(streams.logged().at(0), std::string(kStagingBlock) + " : Download finished successfully");
    EXPECT_EQ(tasks.runs.at(0), (std::vector<std::string>{"/usr/bin/hdiutil", "mount", kUpdateImage}));
}

TEST_F(LumoraUpdater, stopsWhenTheDownloadCannotBeCopied) {
    files.putFile("/tmp/download", "image");
    files.failCreateFile(kUpdateImage);
    updater->downloadLumoradmg();
    forgetLines();

    http.finishDownload(0, 200, "/tmp/download");

    EXPECT_THAT(streams.logged(), ElementsAre(std::string(kStagingBlock) +
                                              " : Error copying file to destination - Error "
                                              "Domain=NSCocoaErrorDomain Code=513 \"The item could not be "
                                              "copied.\""));
    EXPECT_THAT(tasks.runs, IsEmpty());
    EXPECT_THAT(retries, IsEmpty());
}

TEST_F(LumoraUpdater, livesAsLongAsItsDownload) {
    mountWorks();
    files.putFile("/tmp/download", "image");
    updater->downloadLumoradmg();
    const std::weak_ptr<OvraLumoraUpdater> watched = updater;
    updater.reset();
    EXPECT_FALSE(watched.expired());

    http.finishDownload(0, 200, "/tmp/download");
    EXPECT_EQ(staged(), "new version");

    http.tasks.clear();
    EXPECT_TRUE(watched.expired());
}

TEST_F(LumoraUpdater, letsNothingEscapeFromItsCompletion) {
    updater->downloadLumoradmg();
    const int breaking = 0;
    NotificationCenter::defaultCenter().addObserver(
        &breaking, "RetryDMGDownloadig", [](const void*) { throw std::runtime_error("observer broke"); });
    forgetLines();

    EXPECT_NO_THROW(http.failDownload(0, {"NSURLErrorDomain", -1001, "The request timed out.", {}}));

    NotificationCenter::defaultCenter().removeObserver(&breaking);
    EXPECT_EQ(streams.logged().size(), 3U); // both lines about the failure come before the notification
    EXPECT_EQ(streams.logged().back(), exceptionLine(kStagingBlock, "observer broke"));
}

} // namespace
} // namespace lumora

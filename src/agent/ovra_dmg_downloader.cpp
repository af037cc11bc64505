#include "agent/ovra_dmg_downloader.h"

#include "agent/agent_paths.h"
#include "config/session_details.h"
#include "platform/ports.h"
#include "platform/system_version.h"
#include "support/disk_images.h"
#include "support/exception_guard.h"
#include "support/log.h"
#include "support/notification_center.h"
#include "support/rendering.h"
#include "support/url.h"

namespace lumora {

namespace {

constexpr const char* kStart = "-[OvraDmgDownloader startDownLoadingOvraMacDmg]";
constexpr const char* kStartCompletion = "-[OvraDmgDownloader startDownLoadingOvraMacDmg]_block_invoke";

/// The second address has no scheme of its own: with a bare host the download fails and is reported as failed, so
/// that the agent comes from the delivery network or not at all.
std::optional<std::string> imageUrl(const SessionDetails& session) {
    if (session.isCdnAvailable())
        return parseUrl(session.cdnUrl().value_or(""));
    return parseUrl(fmt::format("{}/agent/OvraMac.dmg", render(session.webServerName())));
}

/// Logs the system's own words about itself and returns them as the download's user agent.
std::string systemUserAgent() {
    const auto version = platform::ports().systemVersions->current();
    log("{} : System version details {}", kStart, render(version.productName));
    log("{} : System version : {}", kStart, render(version.productVersion));
    return fmt::format("{} {}", render(version.productName), render(version.productVersion));
}

} // namespace

void OvraDmgDownloader::startDownLoadingOvraMacDmg() {
    guarded(kStart, [this] {
        auto request = imageRequest(imageUrl(SessionDetails::getInstance()));
        log("{} : Ovra Dmg Url : {}", kStart, render(request.url));
        request.headers = {{"User-Agent", systemUserAgent()}};
        startImageDownload(std::move(request), [self = shared_from_this()](const auto& download) {
            guarded(kStartCompletion, [&] { self->downloadFinished(download); });
        });
    });
}

void OvraDmgDownloader::downloadFinished(const platform::HttpDownload& download) {
    if (download.error) {
        log("{} : Download failed! Error - {} {}", kStartCompletion, download.error->localizedDescription,
            render(download.error->failingUrl));
        log("{} : Download failed! Whole Error - {}", kStartCompletion, render(*download.error));
        NotificationCenter::defaultCenter().post(kRetryDownloadNotification, this);
        return;
    }
    if (saveDownloadedImage(kStartCompletion, download, agentImagePath()))
        mountingOvraMacDmg();
}

} // namespace lumora

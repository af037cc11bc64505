#include "selfupdate/ovra_lumora_updater.h"

#include "config/session_details.h"
#include "platform/file_manager.h"
#include "platform/ports.h"
#include "selfupdate/staged_bundle.h"
#include "support/disk_images.h"
#include "support/exception_guard.h"
#include "support/log.h"
#include "support/notification_center.h"
#include "support/rendering.h"
#include "support/url.h"

#include <mutex>

namespace lumora {

namespace {

constexpr const char* kGetInstance = "+[OvraLumoraUpdater getInstance]";
constexpr const char* kCheck = "-[OvraLumoraUpdater checkOvraLumoraUpdate]";
constexpr const char* kDownload = "-[OvraLumoraUpdater downloadLumoradmg]";
constexpr const char* kDownloadCompletion = "-[OvraLumoraUpdater downloadLumoradmg]_block_invoke";

/// Where the check said that the image is; else where every web server has it.
std::optional<std::string> imageUrl(const SessionDetails& session) {
    if (const auto url = session.lumoraDownloadUrl())
        return parseUrl(*url);
    return parseUrl(fmt::format("https://{}/agent/OvraTesselLumora.dmg", render(session.webServerName())));
}

} // namespace

std::shared_ptr<OvraLumoraUpdater> OvraLumoraUpdater::getInstance() {
    static auto* classLock = new std::recursive_mutex;
    std::shared_ptr<OvraLumoraUpdater> updater;
    guarded(kGetInstance, [&updater] {
        std::lock_guard lock(*classLock);
        auto made = std::make_shared<OvraLumoraUpdater>();
        log("{} : Update Info Object Allocated", kGetInstance);
        updater = std::move(made);
    });
    return updater;
}

void OvraLumoraUpdater::checkOvraLumoraUpdate() {
    guarded(kCheck, [this] {
        if (SessionDetails::getInstance().lumoraUpdateNeeded())
            downloadLumoradmg();
        else
            log("{} Ovra Tessel Lumora has Latest Version.", kCheck);
    });
}

void OvraLumoraUpdater::downloadLumoradmg() {
    guarded(kDownload, [this] {
        auto& files = *platform::ports().fileManager;
        const auto folder = stagingFolder();
        if (!files.fileExists(folder)) // a failure shows when the image cannot be saved
            static_cast<void>(files.createDirectoryWithIntermediates(folder));

        auto request = imageRequest(imageUrl(SessionDetails::getInstance()));
        log("{} : Ovra Lumora Dmg Url : {}", kDownload, render(request.url));
        startImageDownload(std::move(request), [self = shared_from_this()](const auto& download) {
            guarded(kDownloadCompletion, [&] { self->downloadFinished(download); });
        });
    });
}

void OvraLumoraUpdater::downloadFinished(const platform::HttpDownload& download) {
    if (download.error) {
        // The blank at the end is part of the line.
        log("{} : Download failed! Error - {} {} ", kDownloadCompletion, download.error->localizedDescription,
            render(download.error->failingUrl));
        log("{} : Download failed! Whole Error - {}", kDownloadCompletion, render(*download.error));
        NotificationCenter::defaultCenter().post(kRetryDownloadNotification, this);
        return;
    }
    std::lock_guard turn(imageMutex());
    if (saveDownloadedImage(kDownloadCompletion, download, lumoraImagePath()))
        mountingOvraLumoraDmg();
}

} // namespace lumora

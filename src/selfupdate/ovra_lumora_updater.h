#pragma once

#include "platform/http_session.h"

#include <memory>
#include <optional>
#include <string>

namespace lumora {

/// Downloads a newer image of this application and stages its bundle in the support folder; the running bundle is
/// not touched. One instance a chain; the download keeps it alive.
class OvraLumoraUpdater : public std::enable_shared_from_this<OvraLumoraUpdater> {
  public:
    /// A new instance on every call: each update check gets a chain of its own.
    /// Absent when making one raised.
    [[nodiscard]] static std::shared_ptr<OvraLumoraUpdater> getInstance();

    /// Starts the chain when the update check said that a newer version exists.
    void checkOvraLumoraUpdate();

    /// Starts the download and returns at once; the rest of the chain runs on the download session's own thread.
    void downloadLumoradmg();

    /// Mounts the downloaded image, remembers its mount point and stages the bundle.
    void mountingOvraLumoraDmg();

    /// Replaces the staged bundle by the mounted image's, marks it for the exit, detaches and deletes the image.
    void copyAppFile();

    /// Detaches what this instance mounted; the tool's status is only logged.
    void unMountingOvraLumoraDmg();

  private:
    void downloadFinished(const platform::HttpDownload& download);

    std::optional<std::string> latestLumoraDmgPath_; ///< mount point, as the image tool reported it
};

} // namespace lumora

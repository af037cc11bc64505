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
    [[nodiscard]] static std::shared_ptr<OvraLumoraUpdater> getInstance();

    void checkOvraLumoraUpdate();
    void downloadLumoradmg();
    void mountingOvraLumoraDmg();
    void copyAppFile();
    void unMountingOvraLumoraDmg();

  private:
    void downloadFinished(const platform::HttpDownload& download, const std::string& folder);

    std::optional<std::string> latestLumoraDmgPath_; ///< mount point, as the image tool reported it
};

} // namespace lumora

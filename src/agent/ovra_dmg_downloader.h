#pragma once

#include "platform/http_session.h"

#include <memory>
#include <string>

namespace lumora {

/// Downloads the agent's disk image, installs the agent and its helper tools from it, and launches the agent.
/// One instance a join; a running download keeps its own instance alive.
class OvraDmgDownloader : public std::enable_shared_from_this<OvraDmgDownloader> {
  public:
    /// Starts the download and returns at once; the rest of the chain runs on the download session's own thread.
    void startDownLoadingOvraMacDmg();

    /// Mounts the downloaded image and, unless an agent stands there already, installs and launches it.
    void mountingOvraMacDmg();

    /// Copies the agent, launches it, copies its helper tools, removes the image and detaches the volume.
    void copyAppFileAndLaunch();

    /// Detaches the agent's volume; the tool's status is only logged.
    void unMountingOvraMacDmg();

    /// Asks the workspace to start the bundle with the agent's launch arguments.
    /// @return always true: a failed launch is not noticed here.
    bool workspaceLaunchApplication(const std::string& path);

  private:
    void downloadFinished(const platform::HttpDownload& download);
};

} // namespace lumora
